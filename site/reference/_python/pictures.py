# SPDX-License-Identifier: MIT
"""Pictures of layouts: what stands where in memory, drawn from the tables that the tests hold the
library to."""

import csv
import re

CELL, HEIGHT, MARGIN = 46, 34, 128


def rows_of(path):
    with path.open() as file:
        return list(csv.DictReader(line for line in file if not line.startswith("#")))


def value(formula, N, k):
    """A position: a formula in N and k such as 2k-1."""
    return eval(re.sub(r"(\d)([Nk])", r"\1*\2", formula), {}, {"N": N, "k": k})


def packed(layout, N, tables):
    """The elements of a packed half spectrum as (text, zero)."""
    column = layout if layout != "perm" else "perm_even" if N % 2 == 0 else "perm_odd"
    cells = {}
    for row in rows_of(tables / "packed_positions.csv"):
        if not row[column] or (row["lengths"] == "even" and N % 2):
            continue
        bins = {"R[0]": [0], "I[0]": [0], "R[H]": [N // 2], "I[H]": [N // 2]}.get(
            row["term"], range(1, (N - 1) // 2 + 1))
        for k in bins:
            cells[value(row[column], N, k)] = ("0" if row["zero"] == "1" else f"{row['term'][0]}{k}",
                                               row["zero"] == "1")
    return [cells[i] for i in sorted(cells)]


def strip(label, cells, y):
    text = f'<text class="label" x="4" y="{y + 22}">{label}</text>'
    for i, (what, kind) in enumerate(cells):
        x = MARGIN + i * CELL
        text += (f'<rect class="cell {kind}" x="{x}" y="{y}" width="{CELL}" height="{HEIGHT}"/>'
                 f'<text x="{x + CELL / 2}" y="{y + 22}">{what}</text>'
                 f'<text class="small" x="{x + CELL / 2}" y="{y + HEIGHT + 13}">{i}</text>')
    return text


def drawing(strips):
    width = MARGIN + max(len(cells) for _, cells in strips) * CELL + 4
    step = HEIGHT + 26
    body = "".join(strip(label, cells, 4 + i * step) for i, (label, cells) in enumerate(strips))
    size = f'width="{width}" height="{len(strips) * step + 4}"'
    described = "; ".join(f"{label}: {' '.join(what for what, _ in cells)}" for label, cells in strips)
    return f'<svg {size} aria-hidden="true">{body}</svg>', described


def half_spectra(N, tables):
    def kinds(cells):
        return [(what, "zero" if zero else "real" if what[0] == "R" else "") for what, zero in cells]
    samples = [(f"x{n}", "real") for n in range(N)]
    return [(f"samples, N = {N}", samples)] + [
        (label, kinds(packed(column, N, tables)))
        for label, column in (("CCS", "ccs"), ("Pack", "pack"), ("Perm", "perm"))]


def complex_array(N):
    return [(f"N = {N}", [(f"{part} {n}", "real" if part == "re" else "") for n in range(N)
                          for part in ("re", "im")])]


def reals(N, names=("src", "dst"), letters=("x", "H")):
    return [(name, [(f"{letter}{n}", "real") for n in range(N)]) for name, letter in zip(names, letters)]


def signs(tables):
    rows = rows_of(tables / "wht_signs.csv")
    return [(f"y{row['row']}", [("+" if sign == "+" else "−", "real" if sign == "+" else "")
                                for sign in row["signs"]]) for row in rows]


def strides(rows):
    N, count = 4, 3
    order = ([(t, j) for t in range(count) for j in range(N)] if rows
             else [(t, j) for j in range(N) for t in range(count)])
    label = "rows" if rows else "columns"
    return [(label, [(f"{'abc'[t]}{j}", "real" if t % 2 == 0 else "") for t, j in order])]


def picture(name, tables):
    """A picture and its description in words."""
    kind, _, number = name.partition("-")
    strips = {
        "half": lambda: half_spectra(int(number), tables),
        "complex": lambda: complex_array(int(number)),
        "hartley": lambda: reals(int(number)),
        "dct4": lambda: reals(int(number), letters=("x", "y")),
        "signs": lambda: signs(tables),
        "batch": lambda: strides(True) + strides(False),
    }[kind]()
    return drawing(strips)

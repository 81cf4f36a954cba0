# SPDX-License-Identifier: MIT
"""explorer_data.py BENCH FOLDER: what the explorer shows beside the data of the kernel compiler.

FOLDER/functions.js: the functions that are not generated, and the pages of all. FOLDER/measured.js:
errors from docs/accuracy.md, cycles from BENCH, the table of the last benchmark, if it is there.
"""

import csv
import json
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tools/reference"))

import families  # noqa: E402
import header  # noqa: E402

# The columns of docs/accuracy.md and the families that they speak of. CCS, Pack and Perm hold the same
# numbers to the bit, but for the inverse from CCS at 7 and 49, which was not measured.
COLUMNS = {
    "complex fwd 32fc": ["DFTFwd_CToC_{}_32fc"],
    "complex inv 32fc": ["DFTInv_CToC_{}_32fc"],
    "complex fwd 64fc": ["DFTFwd_CToC_{}_64fc"],
    "complex inv 64fc": ["DFTInv_CToC_{}_64fc"],
    "real fwd 32f": ["DFTFwd_RToCCS_{}_32f", "DFTFwd_RToPack_{}_32f", "DFTFwd_RToPerm_{}_32f"],
    "real fwd 64f": ["DFTFwd_RToCCS_{}_64f", "DFTFwd_RToPack_{}_64f", "DFTFwd_RToPerm_{}_64f"],
    "real inv 32f": ["DFTInv_CCSToR_{}_32f", "DFTInv_PackToR_{}_32f", "DFTInv_PermToR_{}_32f"],
    "real inv 64f": ["DFTInv_CCSToR_{}_64f", "DFTInv_PackToR_{}_64f", "DFTInv_PermToR_{}_64f"],
    "Hartley 32f": ["Hartley_{}_32f"],
    "Hartley 64f": ["Hartley_{}_64f"],
}
NOT_MEASURED = [f"orvgDFTInv_CCSToR_{n}_{t}" for n in (7, 49) for t in ("32f", "64f")]


def errors(page: str) -> dict:
    """Measured errors by kernel, from the table of docs/accuracy.md."""
    rows = [[cell.strip() for cell in line.strip("|").split("|")]
            for line in page.splitlines() if line.startswith("|")]
    heads, found = rows[0], {}
    if heads != ["N", *COLUMNS]:
        raise SystemExit(f"docs/accuracy.md has other columns: {heads}")
    for row in rows[2:]:
        for column, cell in zip(heads[1:], row[1:]):
            for name in COLUMNS[column]:
                found["orvg" + name.format(row[0])] = float(cell)
    for name in NOT_MEASURED:
        del found[name]
    return found


def cycles(table: Path) -> tuple:
    """The libraries that were measured beside ours, and by kernel our cycles and theirs; the DCT-IV,
    measured by length too, has no kernels of its own."""
    if not table.exists():
        return [], {}
    with table.open() as file:
        rows = list(csv.DictReader(file))
    libraries = [re.sub("^ratio ", "", column) for column in rows[0] if column.startswith("ratio ")]
    number = lambda text: float(text) if text else None  # noqa: E731
    return libraries, {
        row["kernel"]: {"cycles": number(row["cycles"]), "others": [number(row[name]) for name in libraries]}
        for row in rows if not re.fullmatch(r"orvgDCT4_\w+ of \d+", row["kernel"])}


def main():
    table, folder = Path(sys.argv[1]), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    functions = [f.name for f in header.functions(ROOT / "include/orvgen.h")]
    kernels = [name for name in functions if families.is_kernel(name)]
    pages = {re.sub(r"^orvg(.*)_\d+_\w+$", r"\1", name): families.page_of(name) for name in kernels}
    others = [[name, f"{families.page_of(name)}#c.{name}"] for name in functions if name not in set(kernels)]
    (folder / "functions.js").write_text(f"explorer.functions({json.dumps({'pages': pages, 'others': others})});\n")

    libraries, measured = cycles(table)
    unknown = set(measured) - set(kernels)
    if unknown:
        raise SystemExit(f"{table} has kernels that are not there: {sorted(unknown)[:3]}")
    for name, error in errors((ROOT / "docs/accuracy.md").read_text()).items():
        if name not in kernels:
            raise SystemExit(f"docs/accuracy.md speaks of {name}")
        measured.setdefault(name, {})["error"] = error
    (folder / "measured.js").write_text(
        f"explorer.measured({json.dumps({'libraries': libraries, 'kernels': measured}, separators=(',', ':'))});\n")


if __name__ == "__main__":
    main()

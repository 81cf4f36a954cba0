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

import accuracy  # noqa: E402
import families  # noqa: E402
import header  # noqa: E402


def cycles(table: Path) -> tuple:
    """The libraries that were measured beside ours, and by kernel our cycles and theirs; the DCT-IV,
    measured by length too, has no kernels of its own."""
    if not table.exists():
        return [], {}
    with table.open() as file:
        rows = list(csv.DictReader(file))
    # A column of medians beside that of the cycles is what others have, and the second build has not.
    libraries = [column.removeprefix("ratio ") for column in rows[0]
                 if column.startswith("ratio ") and f"{column.removeprefix('ratio ')} median" in rows[0]]
    number = lambda text: float(text) if text else None  # noqa: E731
    return libraries, {
        row["kernel"]: {"cycles": number(row["cycles"]), "coreBound": number(row["bound"]),
                        "secondBuild": number(row.get("v3 cycles")),
                        "others": [number(row[name]) for name in libraries]}
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
    for name, error in accuracy.errors((ROOT / "docs/accuracy.md").read_text()).items():
        if name not in kernels:
            raise SystemExit(f"docs/accuracy.md speaks of {name}")
        measured.setdefault(name, {})["error"] = error
    (folder / "measured.js").write_text(
        f"explorer.measured({json.dumps({'libraries': libraries, 'kernels': measured}, separators=(',', ':'))});\n")


if __name__ == "__main__":
    main()

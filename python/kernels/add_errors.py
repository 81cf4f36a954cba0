# SPDX-License-Identifier: MIT
"""add_errors.py TABLE PAGE OUT: the table of write_kernels, with the errors that docs/accuracy.md has."""

import csv
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/reference"))

import accuracy  # noqa: E402


def main():
    table, page, out = map(Path, sys.argv[1:])
    errors = accuracy.errors(page.read_text())
    with table.open() as file:
        rows = list(csv.DictReader(file))
    different = set(errors) ^ {row["name"] for row in rows}
    if different:
        raise SystemExit(f"{page} and {table} have different kernels: {sorted(different)[:3]}")
    with out.open("w", newline="") as file:
        writer = csv.DictWriter(file, [*rows[0], "error"], lineterminator="\n")
        writer.writeheader()
        for row in rows:
            writer.writerow({**row, "error": errors[row["name"]]})


main()

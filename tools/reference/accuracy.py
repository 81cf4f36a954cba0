# SPDX-License-Identifier: MIT
"""The table of docs/accuracy.md, which is made and kept true by the tests, as data."""

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

# SPDX-License-Identifier: MIT
"""The tables of docs/accuracy.md, which are made and kept true by the tests, as data."""

# The columns of its tables, in their order, and the families that they speak of.
COLUMNS = {
    "complex fwd 32fc": ["DFTFwd_CToC_{}_32fc"],
    "complex inv 32fc": ["DFTInv_CToC_{}_32fc"],
    "complex fwd 64fc": ["DFTFwd_CToC_{}_64fc"],
    "complex inv 64fc": ["DFTInv_CToC_{}_64fc"],
    "real fwd 32f": ["DFTFwd_RToCCS_{}_32f", "DFTFwd_RToPack_{}_32f", "DFTFwd_RToPerm_{}_32f"],
    "real fwd 64f": ["DFTFwd_RToCCS_{}_64f", "DFTFwd_RToPack_{}_64f", "DFTFwd_RToPerm_{}_64f"],
    "real inv 32f": ["DFTInv_PackToR_{}_32f"],
    "real inv 64f": ["DFTInv_PackToR_{}_64f"],
    "Hartley 32f": ["Hartley_{}_32f"],
    "Hartley 64f": ["Hartley_{}_64f"],
    "inv CCS 32f": ["DFTInv_CCSToR_{}_32f"],
    "inv CCS 64f": ["DFTInv_CCSToR_{}_64f"],
    "inv Perm 32f": ["DFTInv_PermToR_{}_32f"],
    "inv Perm 64f": ["DFTInv_PermToR_{}_64f"],
    "WHT 32f": ["WHT_{}_32f"],
    "WHT 64f": ["WHT_{}_64f"],
}


def errors(page: str) -> dict:
    """Measured errors by kernel, from the tables of docs/accuracy.md."""
    found, heads, told = {}, None, []
    for line in page.splitlines():
        if not line.startswith("|"):
            heads = None
        elif heads is None:
            heads = [cell.strip() for cell in line.strip("|").split("|")][1:]
            told += heads
        elif not line.startswith("|---"):
            number, *cells = [cell.strip() for cell in line.strip("|").split("|")]
            for column, cell in zip(heads, cells):
                for name in COLUMNS.get(column, []):
                    found["orvg" + name.format(number)] = float(cell)
    if told != [*COLUMNS]:
        raise SystemExit(f"docs/accuracy.md has other columns: {told}")
    return found

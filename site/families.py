# SPDX-License-Identifier: MIT
"""The pages of the reference, one a transform family, and which function stands on which."""

import re

# Page, and what the names of its functions begin with behind the prefix.
PAGES = {
    "complex": r"DFT(Fwd|Inv)_CToC_",
    "real-forward": r"DFTFwd_RTo(CCS|Pack|Perm)_",
    "real-inverse": r"DFTInv_(CCS|Pack|Perm)ToR_",
    "hartley": r"Hartley_",
    "wht": r"WHT(GetBufferSize)?_",
    "dct4": r"DCT4(GetSize|Init|InitAlloc|Free)?_",
    "batch": r"Batch",
    "library": r"enGetLibVersion",
}


def page_of(function: str) -> str:
    """The page of a function, as an address from the top of the site."""
    found = [page for page, pattern in PAGES.items() if re.match("orvg(" + pattern + ")", function)]
    if len(found) != 1:
        raise ValueError(f"{function} stands on {len(found)} pages")
    return f"functions/{found[0]}.html"


def is_kernel(function: str) -> bool:
    """Whether a function has its length or order in its name: one of the generated kernels."""
    return re.fullmatch(r"orvg(DFT\w+|Hartley|WHT)_\d+_\d+fc?", function) is not None

# SPDX-License-Identifier: MIT
"""The datasheet as data."""

import math

import pytest

import orvgen


def test_every_generated_kernel_is_there(library):
    names = [k.name for k in orvgen.kernels()]
    assert len(names) == len(set(names)) == 18 * 63 + 2 * 13
    for name in names:
        assert getattr(library.library, name)


def test_figures_are_possible():
    for k in orvgen.kernels():
        assert k.family.rsplit("_", 1)[0] in k.name
        assert k.points >= 2 and k.plan
        # Every result depends on every input, and is scaled.
        assert k.additions >= k.points and k.multiplications >= k.points - 1, k
        assert k.instructions > 0 and k.frame >= 0 and k.spills >= 0 and k.cycles > 0
        # Relative, where the bound is absolute for a result of up to N (in the L2 norm).
        assert 0 < k.error < 3.2 and k.error < k.bound * math.sqrt(2), k


@pytest.mark.parametrize("pattern,count", [
    ("orvgDFTInv_CToC_64_32fc", 1), ("DFTInv_CToC_64_32fc", 1), ("dftinv_ctoc_64_32FC", 1),
    ("*Inv_CToC_64_32fc", 1), ("CToC_64_32fc", 2), ("DFTInv_CToC_?4_32fc", 6), ("WHT_64f", 13), ("WHT", 26),
    ("CToC_64fc", 126), ("orvgHartley_32f", 63), ("*", 1160),
])
def test_names_are_those_of_show(pattern, count):
    assert len(orvgen.kernels(pattern)) == count


def test_figures_of_some():
    k = orvgen.kernels("orvgDFTFwd_CToC_4_64fc")[0]
    # Four points: 8 complex sums; the scale multiplies 8 reals.
    assert (k.points, k.additions, k.multiplications, k.conversions) == (4, 16, 8, 0)
    k = orvgen.kernels("orvgWHT_3_32f")[0]
    assert (k.points, k.additions, k.multiplications) == (8, 24, 8)
    assert orvgen.kernels("nothing") == orvgen.kernels("32fc") == orvgen.kernels("") == []
    with pytest.raises(AttributeError):
        k.points = 3

# SPDX-License-Identifier: MIT
"""Every result has the bits of the C function for that transform alone."""

import numpy as np
import pytest
from conftest import FORWARD_FLAGS, INVERSE_FLAGS, NONE, SUFFIX, numbers, same_bits

import orvgen

TARGETS = orvgen.which().targets
LENGTHS = [2, 3, 5, 7, 8, 13, 16, 19, 30, 32, 47, 48, 49, 59, 62, 64]


@pytest.fixture(params=TARGETS, autouse=True)
def target(request):
    orvgen.use(request.param)
    yield
    orvgen.use()


@pytest.mark.parametrize("norm", FORWARD_FLAGS)
def test_complex(library, random, norm):
    for char in "FD":
        for n in LENGTHS:
            x = numbers(random, (21, n), char)
            for ours, name, flags in ((orvgen.fft, "Fwd", FORWARD_FLAGS), (orvgen.ifft, "Inv", INVERSE_FLAGS)):
                name = f"orvgDFT{name}_CToC_{SUFFIX[char]}"
                assert same_bits(ours(x, norm=norm), library.rows(name, x, n, char, n, flags[norm])), n


@pytest.mark.parametrize("norm", FORWARD_FLAGS)
def test_real(library, random, norm):
    swapped = {"backward": "forward", "forward": "backward", "ortho": "ortho"}
    for char in "fd":
        C = char.upper()
        for n in LENGTHS:
            x, bins = numbers(random, (21, n), char), n // 2 + 1
            name = f"orvgDFTFwd_RToCCS_{SUFFIX[char]}"
            half = library.rows(name, x, bins, C, n, FORWARD_FLAGS[norm])
            assert same_bits(orvgen.rfft(x, norm=norm), half), n
            assert same_bits(orvgen.ihfft(x, norm=swapped[norm]), half.conj()), n
            # The whole spectrum is the half one and its mirror.
            mirror = half[:, (n - 1) // 2 : 0 : -1].conj()
            whole = np.concatenate([half, mirror], axis=1)
            assert same_bits(orvgen.fft(x, norm=norm), whole), n
            assert same_bits(orvgen.ifft(x, norm=swapped[norm]), whole.conj()), n

            name = f"orvgDFTInv_CCSToR_{SUFFIX[char]}"
            back = library.rows(name, half, n, char, n, INVERSE_FLAGS[norm])
            assert same_bits(orvgen.irfft(half, n, norm=norm), back), n
            assert same_bits(orvgen.hfft(half.conj(), n, norm=swapped[norm]), back), n


def test_hartley_and_hadamard(library, random):
    for char in "fd":
        for norm, flag in FORWARD_FLAGS.items():
            for n in LENGTHS:
                x = numbers(random, (21, n), char)
                rows = library.rows(f"orvgHartley_{SUFFIX[char]}", x, n, char, n, flag)
                assert same_bits(orvgen.dht(x, norm=norm), rows), n
            for order in (1, 2, 5, 8, 11, 13):
                x = numbers(random, (9, 1 << order), char)
                assert same_bits(orvgen.wht(x, norm=norm), library.wht(x, flag)), order


def test_cosine(library, random):
    for char in "fd":
        for n in (2, 4, 8, 16, 32, 64, 256, 4096):
            x = numbers(random, (21, n), char)
            sums = library.dct4(x)
            assert same_bits(orvgen.dct4(x), sums), n
            assert same_bits(orvgen.dct4(x, norm="forward"), sums * x.dtype.type(2 / n)), n
            assert same_bits(orvgen.dct4(x, norm="ortho"), sums * x.dtype.type(np.sqrt(2 / n))), n


def test_rotation(library, random):
    for char in "fd":
        for size in (6, 384, 1536):
            x = numbers(random, (5, size), char)
            row = size & -size
            # The signs, as turned unit vectors show them in element 0, which sums all.
            signs = np.copysign(1, orvgen.rotate(np.eye(size, dtype=char))[:, 0]).astype(char)
            y = library.wht((x * signs).reshape(-1, row), 4).reshape(5, size // row, row)
            columns = y.transpose(0, 2, 1).reshape(-1, size // row)
            m = size // row
            z = library.rows(f"orvgHartley_{SUFFIX[char]}", columns, m, char, m, 4)
            z = z.reshape(5, row, m).transpose(0, 2, 1).reshape(5, size)
            assert same_bits(orvgen.rotate(x), z)


@pytest.mark.parametrize("function,char,n", [
    (orvgen.fft, "F", 24), (orvgen.fft, "f", 15), (orvgen.ifft, "D", 24), (orvgen.rfft, "f", 17),
    (orvgen.irfft, "F", 9), (orvgen.hfft, "D", 9), (orvgen.ihfft, "d", 20), (orvgen.dht, "f", 40),
    (orvgen.wht, "d", 256), (orvgen.dct4, "f", 16), (orvgen.dct4, "d", 128), (orvgen.rotate, "f", 24),
])
def test_do_not_depend_on_neighbours_and_places(random, function, char, n):
    x = numbers(random, (37, n), char)
    whole = function(x)
    for t in (0, 5, 36):
        assert same_bits(function(x[t]), whole[t])
    assert same_bits(function(x.T, axis=0), whole.T)
    assert same_bits(function(np.asfortranarray(x)), whole)
    assert same_bits(function(x[::-1]), whole[::-1])
    assert same_bits(function(x, workers=2), whole)


def test_non_finite_values(library):
    x = np.array([[np.inf, 1, 2, 3, 4], [np.nan, 0, 0, 0, 0], [-0.0, -0.0, -0.0, -0.0, -0.0]], "F")
    with np.errstate(all="raise"):
        y = orvgen.fft(x)
    exact = library.rows("orvgDFTFwd_CToC_32fc", x, 5, "F", 5, NONE)
    assert np.array_equal(y, exact, equal_nan=True)

# SPDX-License-Identifier: MIT
"""What the tests of the package share: the C functions, called one transform at a time."""

import ctypes
import os

import hypothesis
import numpy as np
import pytest

import orvgen

hypothesis.settings.register_profile("house", deadline=None, derandomize=True, max_examples=150)
hypothesis.settings.load_profile("house")

NONE, BY_ROOT = 8, 4
FORWARD_FLAGS = {"backward": NONE, "ortho": BY_ROOT, "forward": 1}
INVERSE_FLAGS = {"backward": 2, "ortho": BY_ROOT, "forward": NONE}
SUFFIX = {"f": "32f", "d": "64f", "F": "32fc", "D": "64fc"}


class Library:
    """The single functions of the library that the package itself has loaded."""

    def __init__(self):
        self.library = ctypes.CDLL(orvgen.which().kernels)

    def call(self, name, *arguments):
        status = getattr(self.library, name)(*arguments)
        assert status == 0, (name, status)

    def row(self, name, row, bins, dtype, length, flag):
        """One transform: by-length function `name`, `bins` elements of type dtype come out."""
        # Behind the source as much as two kernels read along.
        src = np.zeros(row.size + 2, row.dtype)
        src[: row.size] = row
        dst = np.full(bins, np.nan, dtype)
        self.call(name, pointer(src), pointer(dst), length, flag)
        return dst

    def rows(self, name, x, bins, dtype, length, flag):
        return np.stack([self.row(name, row, bins, dtype, length, flag) for row in x])

    def wht(self, x, flag):
        order = x.shape[-1].bit_length() - 1
        out = np.full_like(x, np.nan)
        for src, dst in zip(np.ascontiguousarray(x), out):
            name = f"orvgWHT_{SUFFIX[x.dtype.char]}"
            self.call(name, pointer(src), pointer(dst), order, flag, None)
        return out

    def dct4(self, x):
        suffix = SUFFIX[x.dtype.char]
        plan, out = ctypes.c_void_p(), np.full_like(x, np.nan)
        self.call(f"orvgDCT4InitAlloc_{suffix}", ctypes.byref(plan), x.shape[-1])
        for src, dst in zip(np.ascontiguousarray(x), out):
            self.call(f"orvgDCT4_{suffix}", pointer(src), pointer(dst), plan)
        self.call(f"orvgDCT4Free_{suffix}", plan)
        return out


def pointer(array):
    return array.ctypes.data_as(ctypes.c_void_p)


@pytest.fixture(scope="session")
def library():
    return Library()


@pytest.fixture(autouse=True)
def threads_for_small_arrays(monkeypatch):
    """So that `workers` means threads in the tests, too, and on any machine."""
    monkeypatch.setattr(orvgen._threads, "_WORTH", 1 << 10)
    monkeypatch.setattr(os, "cpu_count", lambda: 8)


@pytest.fixture
def random():
    return np.random.default_rng(6)


def numbers(random, shape, char):
    """Normal numbers of a type."""
    x = random.standard_normal(shape)
    if char in "FD":
        x = x + 1j * random.standard_normal(shape)
    return x.astype(char)


def same_bits(x, y):
    """Equal to the bit, also in the signs of zeros."""
    return (
        x.shape == y.shape
        and x.dtype == y.dtype
        and np.ascontiguousarray(x).tobytes() == np.ascontiguousarray(y).tobytes()
    )

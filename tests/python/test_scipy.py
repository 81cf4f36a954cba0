# SPDX-License-Identifier: MIT
"""The backend for SciPy: what it takes, what it leaves, how it is asked."""

import numpy as np
import pytest
import scipy.fft
from conftest import numbers, same_bits

import orvgen

NORMS = ["backward", "ortho", "forward", None]
BACKEND = orvgen.scipy_backend


def only(function, *args, **kwargs):
    """By our backend, or an exception where it does not take the call."""
    with scipy.fft.set_backend(BACKEND, only=True):
        return function(*args, **kwargs)


def near(x, y):
    return x.shape == y.shape and x.dtype == y.dtype and np.allclose(x, y, rtol=0, atol=1e-5 * np.abs(y).max())


ONE = {"fft": "fFdD", "ifft": "fFdD", "rfft": "fd", "irfft": "fFdD", "hfft": "fFdD", "ihfft": "fd"}


@pytest.mark.parametrize("name", ONE)
def test_one_axis(random, name):
    function = getattr(scipy.fft, name)
    for char in ONE[name]:
        x = numbers(random, (9, 12, 20), char)
        for norm in NORMS:
            for options in ({}, {"n": 7}, {"n": 33}, {"axis": 0}, {"n": 16, "axis": 1}, {"workers": 2}):
                y = only(function, x.copy(), norm=norm, **options)
                assert near(y, function(x, norm=norm, **options)), (char, norm, options)
                assert near(only(function, x.copy(), norm=norm, overwrite_x=True, **options), y)


@pytest.mark.parametrize("name", ONE)
@pytest.mark.parametrize("suffix", "2n")
def test_several_axes(random, name, suffix):
    function = getattr(scipy.fft, name + suffix)
    for char in ONE[name]:
        x = numbers(random, (9, 12, 20), char)
        for norm in NORMS:
            for options in ({}, {"s": (7, 5)}, {"axes": (0, 2)}, {"s": (8, 40), "axes": (2, 0)}):
                assert near(only(function, x.copy(), norm=norm, **options), function(x, norm=norm, **options))


@pytest.mark.parametrize("name", ["dct", "idct"])
def test_cosine(random, name):
    function = getattr(scipy.fft, name)
    for char in "fd":
        for n in (2, 8, 32, 64, 256):
            x = numbers(random, (9, n), char)
            for norm in NORMS:
                for options in ({}, {"orthogonalize": True}, {"orthogonalize": False}, {"workers": 2}):
                    y = only(function, x, type=4, norm=norm, **options)
                    assert near(y, function(x, type=4, norm=norm, **options))
    x = numbers(random, (40, 16), "f")
    assert same_bits(only(scipy.fft.dct, x, type=4), 2 * orvgen.dct4(x))
    assert same_bits(only(scipy.fft.dct, x, type=4, norm="ortho"), orvgen.dct4(x, norm="ortho"))


def test_gives_the_bits_of_the_package(random):
    x = numbers(random, (40, 16), "F")
    with scipy.fft.set_backend(BACKEND):
        assert same_bits(scipy.fft.fft(x), orvgen.fft(x))
        assert same_bits(scipy.fft.fft2(x), orvgen.fft2(x))


@pytest.mark.parametrize("leave", [
    lambda: scipy.fft.fft(np.zeros(100)),
    lambda: scipy.fft.fft(np.zeros(1)),
    lambda: scipy.fft.fft(np.zeros(16), n=65),
    lambda: scipy.fft.fft(np.zeros(16, np.longdouble)),
    lambda: scipy.fft.fft(np.zeros(16, np.clongdouble)),
    lambda: scipy.fft.fftn(np.zeros((4, 100))),
    lambda: scipy.fft.rfftn(np.zeros((100, 4))),
    lambda: scipy.fft.irfft2(np.zeros((4, 100), complex)),
    lambda: scipy.fft.dct(np.zeros(16)),
    lambda: scipy.fft.dct(np.zeros(16), type=1),
    lambda: scipy.fft.dct(np.zeros(24), type=4),
    lambda: scipy.fft.dctn(np.zeros((4, 4)), type=4),
    lambda: scipy.fft.dst(np.zeros(16), type=4),
    lambda: scipy.fft.fht(np.zeros(16), 0.1, 0.1),
])
def test_leaves_the_rest(leave):
    with scipy.fft.set_backend(BACKEND, only=True), pytest.raises(NotImplementedError):
        leave()
    with scipy.fft.set_backend(BACKEND):
        leave()


def test_leaves_plans():
    with scipy.fft.set_backend(BACKEND), pytest.raises(NotImplementedError):
        scipy.fft.fft(np.zeros(16), plan="any")


@pytest.mark.parametrize("wrong", [
    lambda: scipy.fft.fft(np.zeros(16), norm="wrong"),
    lambda: scipy.fft.fft(np.zeros(16), n=0),
    lambda: scipy.fft.fft(np.zeros(16), n=8.0),
    lambda: scipy.fft.fft(np.zeros(16), workers=0),
    lambda: scipy.fft.rfft2(np.zeros((4, 4)), workers=-1000),
    lambda: scipy.fft.dct(np.zeros(16), type=4, workers="1"),
    lambda: scipy.fft.fft(np.zeros((16, 16)), axis=5),
    lambda: scipy.fft.rfft(np.zeros(16, complex)),
    lambda: scipy.fft.fftn(np.zeros((4, 4)), axes=(0, 0)),
    lambda: scipy.fft.dct(np.zeros(16, "U1"), type=4),
])
def test_errors_are_those_of_scipy(wrong):
    with pytest.raises(Exception) as alone:
        wrong()
    with scipy.fft.set_backend(BACKEND), pytest.raises(Exception) as ours:
        wrong()
    assert (type(ours.value), str(ours.value)) == (type(alone.value), str(alone.value))


def test_honours_set_workers(random, monkeypatch):
    from orvgen import _run

    seen = []

    def split(ufunc, x, task, y, axis, workers):
        seen.append(workers)
        ufunc(x, task, y, axes=[(axis,), (), (axis,)])

    monkeypatch.setattr(_run, "split", split)
    x = numbers(random, (2000, 16), "F")
    with scipy.fft.set_backend(BACKEND), scipy.fft.set_workers(3):
        assert same_bits(scipy.fft.fft(x), orvgen.fft(x))
        scipy.fft.fft(x, workers=2)
        scipy.fft.fft(x, workers=1)
    assert seen == [3, 2]


def test_overwrites_where_it_may(random):
    x = numbers(random, (20, 16), "F")
    exact = orvgen.fft(x)
    y = x.copy()
    assert only(scipy.fft.fft, y, overwrite_x=True) is y
    assert same_bits(y, exact)
    y = x.copy()
    only(scipy.fft.fft, y)
    assert same_bits(y, x)


def test_examples():
    import doctest

    assert doctest.testmod(BACKEND).failed == 0

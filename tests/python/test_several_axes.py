# SPDX-License-Identifier: MIT
"""Transforms along several axes in pieces: the same bits, errors and places as axis by axis."""

import numpy as np
import pytest
from conftest import numbers, same_bits
from hypothesis import given
from hypothesis import strategies as st

import orvgen
from orvgen import _axes

FUNCTIONS = {"fftn": "F", "ifftn": "d", "rfftn": "f", "irfftn": "D", "hfftn": "F", "ihfftn": "d"}


@st.composite
def cases(draw):
    """A function, an array of any order of memory and steps, and its axes."""
    name = draw(st.sampled_from(sorted(FUNCTIONS)))
    ndim = draw(st.integers(3, 4))
    axes = draw(st.permutations(range(ndim)))[: draw(st.integers(2, ndim - 1))]
    shape = [draw(st.integers(2, 6)) if i in axes else draw(st.integers(0, 9)) for i in range(ndim)]
    order = draw(st.permutations(range(ndim)))
    steps = [draw(st.sampled_from([1, 1, 2, -1])) for _ in range(ndim)]
    random = np.random.default_rng(draw(st.integers(0, 1 << 30)))
    memory = numbers(random, [shape[i] * abs(steps[i]) for i in order], FUNCTIONS[name])
    x = memory.transpose(np.argsort(order))[tuple(slice(None, None, s) for s in steps)]
    return name, x, tuple(axes)


def in_pieces(monkeypatch):
    """Pieces of a few transforms, of neighbours or not."""
    monkeypatch.setattr(_axes, "_PIECE", 1 << 9)
    monkeypatch.setattr(_axes, "_RUN", 1)


def whole(monkeypatch):
    monkeypatch.setattr(_axes, "_PIECE", 1 << 40)


@given(cases(), st.sampled_from([1, 3]))
def test_pieces_have_the_bits_of_the_whole(case, workers):
    name, x, axes = case
    function = getattr(orvgen, name)
    before = x.copy()
    with pytest.MonkeyPatch.context() as patch:
        whole(patch)
        exact = function(x, axes=axes)
        in_pieces(patch)
        assert same_bits(function(x, axes=axes, workers=workers), exact)
        out = np.full((*exact.shape[:-1], 2 * exact.shape[-1]), 77, exact.dtype)
        place = out[..., ::2]
        assert function(x, axes=axes, out=place, workers=workers) is place
    assert same_bits(place, exact)
    assert (out[..., 1::2] == 77).all()
    assert same_bits(x, before)


@pytest.mark.parametrize("workers", [1, 2])
def test_pieces_in_place_and_over_each_other(random, monkeypatch, workers):
    memory = numbers(random, (301, 6, 5), "F")
    whole(monkeypatch)
    exact = orvgen.fft2(memory)
    in_pieces(monkeypatch)
    x = memory.copy()
    assert orvgen.fft2(x, out=x, workers=workers) is x
    assert same_bits(x, exact)
    for source, place in ((slice(0, 300), slice(1, 301)), (slice(1, 301), slice(0, 300))):
        x = memory.copy()
        orvgen.fft2(x[source], out=x[place], workers=workers)
        assert same_bits(x[place], exact[source])


def test_pieces_are_made(random, monkeypatch):
    """Of what does not fit into the cache, and of nothing that would fall into single lines."""
    made = []

    def through(steps, norm, pieces):
        made.extend(x.nbytes for x, _ in pieces)
        original(steps, norm, pieces)

    original = _axes._through
    monkeypatch.setattr(_axes, "_through", through)
    orvgen.fft2(numbers(random, (400, 16, 16), "F"))
    assert len(made) > 1 and sum(made) == 400 * 16 * 16 * 8 and max(made) <= _axes._PIECE
    made.clear()
    orvgen.fftn(numbers(random, (20, 60, 16, 16), "F"), axes=(1, 3))
    assert len(made) > 1 and max(made) <= _axes._PIECE
    made.clear()
    orvgen.fftn(numbers(random, (16, 16, 16, 300), "F"), axes=(0, 1, 2))
    orvgen.fft2(numbers(random, (40, 16, 16), "F"))
    orvgen.fftn(numbers(random, (64, 64, 16), "F"))
    assert not made


def test_pieces_convert_as_the_whole_does(random, monkeypatch):
    for given in ("e", "i2", "?", ">f8", "O"):
        x = random.integers(-9, 9, (50, 6, 4)).astype(given)
        whole(monkeypatch)
        exact = orvgen.fft2(x)
        in_pieces(monkeypatch)
        assert same_bits(orvgen.fft2(x), exact)


def test_errors_are_those_of_the_whole(monkeypatch):
    x = np.zeros((50, 6, 100), np.complex64)
    wrong = [
        lambda: orvgen.fft2(x),
        lambda: orvgen.fft2(x, s=(4, 65)),
        lambda: orvgen.fft2(x[..., :8], norm="wrong"),
        lambda: orvgen.rfft2(x[..., :8]),
        lambda: orvgen.fft2(x[..., :8], workers=0),
        lambda: orvgen.fft2(x[..., :8], out=np.zeros((50, 6, 8))),
        lambda: orvgen.fft2(x[..., :8], out=[1]),
        lambda: orvgen.fft2(x[..., :8].astype(np.clongdouble)),
    ]
    for call in wrong:
        texts = []
        for how in (whole, in_pieces):
            how(monkeypatch)
            with pytest.raises((TypeError, ValueError)) as error:
                call()
            texts.append((type(error.value), str(error.value)))
        assert texts[0] == texts[1]

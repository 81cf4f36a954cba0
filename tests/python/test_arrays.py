# SPDX-License-Identifier: MIT
"""Arrays of every kind: strides, types, shapes, places for the result."""

import numpy as np
import pytest
from conftest import numbers, same_bits
from hypothesis import given
from hypothesis import strategies as st

import orvgen

FUNCTIONS = {
    "fft": "F", "ifft": "D", "rfft": "f", "irfft": "D", "hfft": "F", "ihfft": "d", "dht": "f", "wht": "d",
    "dct4": "f", "rotate": "d",
}
# Spectra of real data through fft, too.
CASES = [*FUNCTIONS.items(), ("fft", "f"), ("ifft", "d"), ("irfft", "F"), ("dct4", "d")]
POWERS = {"wht": [2, 4, 16, 64, 128], "dct4": [2, 4, 16, 32, 64, 128], "rotate": [2, 4, 6, 12, 24, 40]}


def lengths_of(name):
    if name in ("irfft", "hfft"):
        return st.integers(2, 33)
    return st.sampled_from(POWERS[name]) if name in POWERS else st.integers(2, 64)


@st.composite
def views(draw):
    """A function, an array of any strides, and the axis to transform."""
    name, char = draw(st.sampled_from(CASES))
    ndim = draw(st.integers(1, 3))
    axis = draw(st.integers(0, ndim - 1))
    shape = [draw(st.integers(0, 20)) for _ in range(ndim)]
    shape[axis] = draw(lengths_of(name))
    order = draw(st.permutations(range(ndim)))
    steps = [draw(st.sampled_from([1, 1, 1, 2, -1, -2])) for _ in range(ndim)]
    random = np.random.default_rng(draw(st.integers(0, 1 << 30)))
    memory = numbers(random, [shape[i] * abs(steps[i]) for i in order], char)
    x = memory.transpose(np.argsort(order))[tuple(slice(None, None, s) for s in steps)]
    return name, x, axis


@given(views())
def test_strides(case):
    name, x, axis = case
    function = getattr(orvgen, name)
    y = function(x, axis=axis)
    # As rows of a fresh array, one by one.
    rows = np.moveaxis(x, axis, -1)
    exact = np.empty((*rows.shape[:-1], y.shape[axis]), y.dtype)
    for t in np.ndindex(rows.shape[:-1]):
        exact[t] = function(np.array(rows[t]))
    assert same_bits(np.moveaxis(y, axis, -1), exact)


@given(views(), st.sampled_from([1, 2, -1]), st.booleans())
def test_places_for_results(case, step, fortran):
    name, x, axis = case
    function = getattr(orvgen, name)
    y = function(x, axis=axis)
    shape = [*y.shape[:-1], y.shape[-1] * abs(step)]
    memory = np.full(shape, 77, y.dtype, order="F" if fortran else "C")
    out = memory[..., ::step]
    before = x.copy()
    assert function(x, axis=axis, out=out) is out
    assert same_bits(out, y)
    assert same_bits(x, before)
    if step == 2:
        assert (memory[..., 1::2] == 77).all()


@given(views(), st.integers(1, 9), st.booleans())
def test_misaligned_and_read_only(case, offset, swapped):
    name, x, axis = case
    function = getattr(orvgen, name)
    plain = np.ascontiguousarray(x)
    exact = function(plain, axis=axis)
    odd = np.zeros(plain.nbytes + 16, np.uint8)[offset : offset + plain.nbytes].view(plain.dtype)
    odd = odd.reshape(plain.shape)
    odd[...] = plain
    odd.flags.writeable = False
    if swapped:
        odd = odd.astype(odd.dtype.newbyteorder())
    assert same_bits(function(odd, axis=axis), exact)
    place = np.zeros(exact.nbytes + 16, np.uint8)[offset : offset + exact.nbytes].view(exact.dtype)
    place = place.reshape(exact.shape)
    assert same_bits(function(plain, axis=axis, out=place), exact)


@pytest.mark.parametrize("name,char", CASES)
def test_fields_of_records(random, name, char):
    """Strides that are no multiples of an element."""
    x = numbers(random, (40, 16), char)
    function = getattr(orvgen, name)
    exact = function(x)
    for pad in ("f4", "f8", "u1"):
        records = np.zeros((40, 16), np.dtype([("x", char), ("pad", pad)], align=pad != "u1"))
        records["x"] = x
        assert same_bits(function(records["x"]), exact)
        places = np.zeros(exact.shape, np.dtype([("y", exact.dtype), ("pad", pad)], align=pad != "u1"))
        function(records["x"], out=places["y"])
        assert same_bits(places["y"], exact)
        assert (places["pad"] == 0).all()
        function(x, out=places["y"])
        assert same_bits(places["y"], exact)


@pytest.mark.parametrize("name,char", CASES)
def test_overlaps(random, name, char):
    function = getattr(orvgen, name)
    x = numbers(random, (60, 16), char)
    exact = function(x)
    if exact.dtype == x.dtype and exact.shape == x.shape:
        for workers in (1, 2):
            y = x.copy()
            assert function(y, out=y, workers=workers) is y
            assert same_bits(y, exact)
        memory = numbers(random, (2000, 16), char)
        exact = function(memory[:-1])
        for workers in (1, 3):
            again = memory.copy()
            function(again[:-1], out=again[1:], workers=workers)
            assert same_bits(again[1:], exact)


@pytest.mark.parametrize("name,char", CASES)
def test_repeated_elements(random, name, char):
    function = getattr(orvgen, name)
    row = numbers(random, 16, char)
    y = function(np.broadcast_to(row, (30, 16)))
    assert same_bits(y, np.stack([function(row)] * 30))
    same = np.broadcast_to(row[:1], (16,))
    assert same_bits(function(same), function(same.copy()))


@pytest.mark.parametrize("name,char", CASES)
def test_nothing_to_do(name, char):
    function = getattr(orvgen, name)
    for shape in ((0, 16), (3, 0, 16), (0, 0, 16)):
        y = function(np.zeros(shape, char))
        assert y.shape[:-1] == shape[:-1] and y.size == 0
    if name not in ("irfft", "hfft"):
        with pytest.raises(ValueError, match=f"{name}: no .* 0 points; possible are"):
            function(np.zeros((3, 0), char))
    if name != "rotate":
        padded = function(np.zeros((3, 0), char), 16)
        assert padded.shape[0] == 3 and not padded.any()


class Labelled(np.ndarray):
    pass


@pytest.mark.filterwarnings("ignore:the matrix subclass")
def test_subclasses_come_out_as_arrays(random):
    x = numbers(random, (5, 8), "F")
    exact = orvgen.fft(x)
    for other in (x.view(Labelled), np.ma.array(x), np.asmatrix(x)):
        y = orvgen.fft(other)
        assert type(y) is np.ndarray and same_bits(y, exact)
    out = np.empty((5, 8), "F").view(Labelled)
    assert orvgen.fft(x, out=out) is out
    assert same_bits(np.asarray(out), exact)


def test_results_lie_as_the_input_does(random):
    x = numbers(random, (6, 10, 16), "F")
    assert orvgen.fft(x).flags.c_contiguous
    assert orvgen.fft(np.asfortranarray(x)).flags.f_contiguous
    assert orvgen.fft(x.transpose(1, 0, 2)).transpose(1, 0, 2).flags.c_contiguous
    assert orvgen.irfft(np.asfortranarray(x)).flags.f_contiguous


@pytest.mark.parametrize("given,taken", [
    ("e", "f"), ("f", "f"), ("d", "d"), ("b", "d"), ("L", "d"), ("?", "d"), (">f", "f"), (">D", "D"),
    ("O", "d"), (">i2", "d"),
])
def test_types(given, taken):
    x = np.arange(24).reshape(3, 8).astype(given)
    y = orvgen.fft(x)
    assert y.dtype == np.result_type(taken, np.complex64)
    assert same_bits(y, orvgen.fft(x.astype(taken)))
    if taken in "fd":
        assert orvgen.dht(x).dtype == taken
        assert orvgen.irfft(x).dtype == taken
    assert same_bits(orvgen.fft(x.tolist()), orvgen.fft(np.array(x.tolist())))


def test_types_that_there_are_not():
    for char in "gG":
        with pytest.raises(TypeError, match="long doubles"):
            orvgen.fft(np.zeros(8, char))
    for function in (orvgen.rfft, orvgen.ihfft, orvgen.dht, orvgen.wht, orvgen.dct4, orvgen.rotate):
        with pytest.raises(TypeError, match="must be real"):
            function(np.zeros(8, complex))
    with pytest.raises((TypeError, ValueError)):
        orvgen.fft(np.array(["a", "b"]))


def test_errors_say_what_is_possible():
    x = np.zeros((4, 16))
    for function in (orvgen.fft, orvgen.ifft, orvgen.rfft, orvgen.irfft, orvgen.hfft, orvgen.ihfft, orvgen.dht):
        for n in (-3, 0, 1, 65, 1 << 40):
            with pytest.raises(ValueError, match="possible are 2 to 64 points"):
                function(x, n)
    for n in (0, 1, 3, 1 << 14):
        with pytest.raises(ValueError, match=r"powers of two from 2 to 8192 \(orders 1 to 13\)"):
            orvgen.wht(x, n)
    for n in (-4, 0, 1, 48, 1 << 27):
        with pytest.raises(ValueError, match="powers of two from 2"):
            orvgen.dct4(x, n)
    with pytest.raises(ValueError, match="powers of two from 2"):
        orvgen.dct4(x, 1 << 26)
    for n in (1, 3, 130, 1 << 14):
        with pytest.raises(ValueError, match="times an odd number up to 63"):
            orvgen.rotate(np.zeros(n))
    for norm in ("", "orthonormal", 3, ["ortho"]):
        with pytest.raises(ValueError, match="possible are None, 'backward', 'ortho', 'forward'"):
            orvgen.fft(x, norm=norm)
    for axis in (2, -3, 1 << 70):
        # NumPy and SciPy raise one or the other.
        for error in (ValueError, IndexError):
            with pytest.raises(error, match=f"fft: no axis {axis}; possible are -2 to 1"):
                orvgen.fft(x, axis=axis)
            with pytest.raises(error, match=f"fftn: no axis {axis}; possible are -2 to 1"):
                orvgen.fftn(x, axes=(axis,))
    for n in (8.0, "8"):
        with pytest.raises(TypeError):
            orvgen.fft(x, n)
    with pytest.raises(ValueError, match="scalar"):
        orvgen.fft(3.0)
    with pytest.raises(ValueError, match="unique"):
        orvgen.fftn(x, axes=(1, 1))
    with pytest.raises(ValueError, match="same length"):
        orvgen.fftn(x, s=(4,), axes=(0, 1))
    with pytest.raises(ValueError, match="more lengths"):
        orvgen.fftn(x, s=(4, 4, 4))
    with pytest.raises(ValueError, match="at least one axis"):
        orvgen.fftn(x, axes=())
    for workers in (0, -1000):
        with pytest.raises(ValueError, match="workers"):
            orvgen.fft(x, workers=workers)


ALONG_SEVERAL = [name + form for name in ("fft", "ifft", "rfft", "irfft", "hfft", "ihfft") for form in ("2", "n")]


@pytest.mark.parametrize("name", [*FUNCTIONS, *ALONG_SEVERAL])
def test_errors_begin_with_the_function_that_was_called(name):
    function = getattr(orvgen, name)
    x = np.zeros((3, 8, 8))
    wrong = [
        ((x.astype("g"),), {}), ((3.0,), {}), ((x[..., :1],), {}), ((x,), {"out": [0]}),
        ((x,), {"out": np.zeros(1)}), ((x,), {"workers": 0}), ((x,), {"workers": 1.5}),
    ]
    if name in ALONG_SEVERAL:
        wrong += [
            ((x,), {"axes": (0, 3)}), ((x,), {"axes": (0, 0.5)}), ((x,), {"axes": (1, 1)}), ((x,), {"axes": ()}),
            ((x,), {"s": (4, 100)}), ((x,), {"s": (100, 4)}), ((x,), {"s": ("4", 4)}), ((x,), {"s": (4, 4, 4, 4)}),
        ]
    else:
        wrong += [((x,), {"axis": 3}), ((x,), {"axis": "0"}), ((x, 1.5), {})]
    if name != "rotate":
        wrong += [((x,), {"norm": "wrong"})]
    for arguments, options in wrong:
        # Of small arrays and of such as are worked on in pieces.
        for a in (arguments[0], np.zeros((4000, 8, 8))) if arguments[0] is x else arguments[:1]:
            with pytest.raises((TypeError, ValueError)) as error:
                function(a, *arguments[1:], **options)
            assert str(error.value).startswith(name + ": "), (options, str(error.value))
            # One error, not one during the handling of another.
            assert error.value.__context__ is None or error.value.__suppress_context__


def test_an_axis_is_anything_that_counts(random):
    x = numbers(random, (8, 8), "F")
    for axis in (1, np.int8(1), True, np.array(1)):
        assert same_bits(orvgen.fft(x, axis=axis), orvgen.fft(x))
    for axis in (0, np.int64(0), False, np.array(0)):
        assert same_bits(orvgen.fft(x, axis=axis), orvgen.fft(x, axis=0))


def test_places_that_do_not_fit():
    x = np.zeros((4, 16))
    for out in (np.zeros((4, 16)), np.zeros((4, 15), complex), np.zeros((4, 16), "F"), np.zeros((4, 16), ">D")):
        with pytest.raises(ValueError, match=r"out must be of shape \(4, 16\) and type complex128"):
            orvgen.fft(x, out=out)
    with pytest.raises(TypeError, match="out must be an array"):
        orvgen.fft(x, out=[0])
    out = np.zeros((4, 16), complex)
    out.flags.writeable = False
    with pytest.raises(ValueError, match="read-only"):
        orvgen.fft(x, out=out)

# SPDX-License-Identifier: MIT
"""The functions of the package as data: ufunc, types, norms, lengths."""

from __future__ import annotations

from copy import copy
from operator import index
from typing import Any, Callable, Dict, Mapping, Tuple

import numpy as np

from . import _batch
from ._types import Array, Dtype

try:
    from numpy.exceptions import AxisError
except ImportError:  # NumPy before 1.25
    from numpy import AxisError

# The scaling flags of the library: 1/N for the forward, for the inverse transform, 1/sqrt(N), 1.
BY_N_FORWARD, BY_N_INVERSE, BY_ROOT, NONE = 1, 2, 4, 8

FORWARD = {None: NONE, "backward": NONE, "ortho": BY_ROOT, "forward": BY_N_FORWARD}
INVERSE = {None: BY_N_INVERSE, "backward": BY_N_INVERSE, "ortho": BY_ROOT, "forward": NONE}
# The same scales where the kernel below is one of the other direction.
FORWARD_BY_INVERSE = {None: NONE, "backward": NONE, "ortho": BY_ROOT, "forward": BY_N_INVERSE}
INVERSE_BY_FORWARD = {None: BY_N_FORWARD, "backward": BY_N_FORWARD, "ortho": BY_ROOT, "forward": NONE}
# The factors of the DCT-IV: 1, 2, sqrt(2/N), 2/N, 1/N.
COSINE = {None: 0, "backward": 0, "ortho": 2, "forward": 3}
SCIPY_COSINE = {None: 1, "backward": 1, "ortho": 2, "forward": 4}
SCIPY_COSINE_INVERSE = {None: 4, "backward": 4, "ortho": 2, "forward": 1}
ROTATION = {"forward": 0, "inverse": 1}

_f, _d, _F, _D = (np.dtype(c) for c in "fdFD")
TO_COMPLEX = {_F: _F, _D: _D, _f: _F, _d: _D}
FROM_HALF = {_F: _f, _D: _d}
TO_HALF = {_f: _F, _d: _D}
REAL = {_f: _f, _d: _d}


def same(n: int) -> int:
    return n


def half(n: int) -> int:
    return n // 2 + 1


def full(bins: int) -> int:
    return 2 * (bins - 1)


def order(n: int) -> int:
    return n.bit_length() - 1


def is_power_of_two(n: int) -> bool:
    return n > 0 and n & (n - 1) == 0


def short_lengths(n: int, dtype: Dtype) -> Any:
    return None if 2 <= n <= 64 else "2 to 64 points"


def hadamard_lengths(n: int, dtype: Dtype) -> Any:
    possible = is_power_of_two(n) and 2 <= n <= 1 << 13
    return None if possible else "powers of two from 2 to 8192 (orders 1 to 13)"


def cosine_lengths(n: int, dtype: Dtype) -> Any:
    possible = is_power_of_two(n) and 2 <= n <= 1 << (26 if dtype == _f else 25)
    return None if possible else "powers of two from 2 to 2**26 (float64: 2**25)"


def rotation_lengths(n: int, dtype: Dtype) -> Any:
    k = order(n & -n) if n > 0 else 0
    possible = 1 <= k <= 13 and n >> k <= 63
    return None if possible else "a power of two, 2 to 8192, times an odd number up to 63"


def whole(name: str, what: str, value: Any) -> int:
    """An argument that counts or numbers something."""
    try:
        return int(index(value))
    except TypeError:
        raise TypeError(f"{name}: {what} must be an integer, not {value!r}") from None


def checked_axis(name: str, axis: Any, ndim: int) -> int:
    """An AxisError is a ValueError and, as what NumPy and SciPy raise here, an IndexError."""
    number = whole(name, "axis", axis)
    if ndim == 0:
        raise AxisError(f"{name}: a scalar has no axis to transform")
    if not -ndim <= number < ndim:
        raise AxisError(f"{name}: no axis {number}; possible are {-ndim} to {ndim - 1}")
    return number


# The ufuncs in the order that `_batch.rows` knows them by.
_NUMBERS = ("fft", "ifft", "rfft", "irfft", "hfft", "ihfft", "dht", "wht", "dct4", "rotate")


class Kind:
    """A function of the package. `missing` says what lengths are possible where one is not for results
    of a type."""

    def __init__(
        self,
        name: str,
        types: Dict[Dtype, Dtype],
        norms: Mapping[Any, int],
        *,
        result: Callable[[int], int] = same,
        default: Callable[[int], int] = same,
        length: Callable[[int], int] = same,
        missing: Callable[[int, Dtype], Any] = short_lengths,
    ) -> None:
        self.name = name
        self.types = types
        self.norms = norms
        self.ufunc = getattr(_batch, name)
        self.number = _NUMBERS.index(name)
        self.result = result
        self.default = default
        self.length = length
        self.missing = missing
        self.tasks: Dict[Tuple[int, Any], Tuple[Array, int]] = {}

    def called(self, name: str) -> Kind:
        """The same for a function of another name, for what its messages begin with."""
        other = copy(self)
        other.name = name
        return other

    def task(self, n: int, norm: Any, dtype: Dtype) -> Tuple[Array, int]:
        """The scalar operand of the ufunc and the length of the result; raises ValueError."""
        possible = self.missing(n, dtype)
        if possible is not None:
            raise ValueError(f"{self.name}: no transform of {n} points; possible are {possible}")
        try:
            code = self.norms[norm]
        except (KeyError, TypeError):
            names = ", ".join(repr(k) for k in self.norms)
            raise ValueError(f"{self.name}: norm is {norm!r}; possible are {names}") from None
        word = np.array(self.length(n) * 16 + code, np.int64)
        word.flags.writeable = False
        known = word, self.result(n)
        # Where a length depends on the type, it is looked at again.
        if n <= 1 << 25:
            self.tasks[n, norm] = known
        return known


fft = Kind("fft", TO_COMPLEX, FORWARD)
ifft = Kind("ifft", TO_COMPLEX, INVERSE)
rfft = Kind("rfft", TO_HALF, FORWARD, result=half)
irfft = Kind("irfft", FROM_HALF, INVERSE, default=full)
hfft = Kind("hfft", FROM_HALF, FORWARD_BY_INVERSE, default=full)
ihfft = Kind("ihfft", TO_HALF, INVERSE_BY_FORWARD, result=half)
dht = Kind("dht", REAL, FORWARD)
wht = Kind("wht", REAL, FORWARD, length=order, missing=hadamard_lengths)
dct4 = Kind("dct4", REAL, COSINE, missing=cosine_lengths)
scipy_dct4 = Kind("dct4", REAL, SCIPY_COSINE, missing=cosine_lengths)
scipy_idct4 = Kind("dct4", REAL, SCIPY_COSINE_INVERSE, missing=cosine_lengths)
rotate = Kind("rotate", REAL, ROTATION, missing=rotation_lengths)

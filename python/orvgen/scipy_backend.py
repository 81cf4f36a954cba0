# SPDX-License-Identifier: MIT
"""A backend for `scipy.fft`: what fits is computed here, all else by SciPy itself.

>>> import numpy as np, orvgen, scipy.fft
>>> x = np.ones((1000, 16), np.float32)
>>> with scipy.fft.set_backend(orvgen.scipy_backend):
...     y = scipy.fft.fft(x)
>>> bool((y == orvgen.fft(x)).all())
True

It takes fft, ifft, rfft, irfft, hfft and ihfft, their forms of two and n axes where every length fits,
and dct and idct of type 4, of float16, float32, float64, their complex types and whatever SciPy
converts to these. The DCT-IV is computed as `orvgen.dct4` has it; SciPy's factor 2 is exact, and with
norm="ortho" the rounded sum is multiplied by the rounded root of 2/n.

With `scipy.fft.set_global_backend` name SciPy itself as the next one, as NumPy's protocol asks no other
of its own accord: ``scipy.fft.register_backend("scipy")``.
"""

from __future__ import annotations

from typing import Any, Callable, Dict, Optional, Sequence

import numpy as np

from . import _kinds
from ._axes import axes_of, run_axes
from ._run import run

__ua_domain__ = "numpy.scipy.fft"

_Answer = Any  # an array, or NotImplemented


def __ua_function__(method: Callable, args: Sequence[Any], kwargs: Dict[str, Any]) -> _Answer:
    ours = _FUNCTIONS.get(method.__name__)
    return NotImplemented if ours is None else ours(*args, **kwargs)


def _data(x: Any) -> Optional[np.ndarray]:
    """The data as an array that there are transforms for, or None."""
    if hasattr(x, "__array_function__") and not isinstance(x, np.ndarray):
        return None
    try:
        x = np.asarray(x)
    except (TypeError, ValueError):
        return None
    return x if x.dtype.kind in "biufc" and x.dtype.char not in "gG" and x.ndim > 0 else None


def _workers(workers: Optional[int]) -> int:
    from scipy.fft import get_workers

    return get_workers() if workers is None else workers


def _real_type(dtype: np.dtype) -> np.dtype:
    return np.dtype(np.float32 if dtype.char in "efF" else np.float64)


def _fits(kind: _kinds.Kind, x: np.ndarray, n: Optional[int], axis: int, norm: Any) -> bool:
    """Whether this is a transform of ours. What is wrong in itself SciPy shall tell."""
    if kind.types in (_kinds.TO_HALF, _kinds.REAL) and x.dtype.kind == "c":
        return False
    try:
        points = kind.default(x.shape[axis]) if n is None else n
        return x.shape[axis] > 0 and kind.missing(points, _real_type(x.dtype)) is None and norm in kind.norms
    except (TypeError, IndexError, AttributeError):
        return False


def _along_one(kind: _kinds.Kind) -> Callable[..., _Answer]:
    def transform(
        x: Any,
        n: Optional[int] = None,
        axis: int = -1,
        norm: Optional[str] = None,
        overwrite_x: bool = False,
        workers: Optional[int] = None,
        *,
        plan: Any = None,
    ) -> _Answer:
        a = _data(x)
        if plan is not None or a is None or not _fits(kind, a, n, axis, norm):
            return NotImplemented
        return run(kind, a, n, axis, norm, _place(kind, a, n, axis, overwrite_x), _workers(workers))

    return transform


def _place(
    kind: _kinds.Kind, a: np.ndarray, n: Optional[int], axis: int, overwrite: bool
) -> Optional[np.ndarray]:
    """The data itself, if it may be overwritten and its shape and type are the result's."""
    if not overwrite or not a.flags.writeable:
        return None
    if a.dtype not in kind.types or kind.types[a.dtype] != a.dtype:
        return None
    points = a.shape[axis] if n is None else n
    return a if points == a.shape[axis] and kind.result(points) == points else None


def _along_several(
    first: _kinds.Kind, last: _kinds.Kind, last_axis_first: bool, two: bool
) -> Callable[..., _Answer]:
    """The kind of the last axis and that of all others."""

    def transform(
        x: Any,
        s: Any = None,
        axes: Any = (-2, -1) if two else None,
        norm: Optional[str] = None,
        overwrite_x: bool = False,
        workers: Optional[int] = None,
        *,
        plan: Any = None,
    ) -> _Answer:
        a = _data(x)
        if plan is not None or a is None:
            return NotImplemented
        try:
            chosen, lengths = axes_of(last.name, a, s, axes)
        except (TypeError, ValueError):
            return NotImplemented
        if not chosen or not _fits(last, a, lengths[-1], chosen[-1], norm):
            return NotImplemented
        others = list(zip(chosen[-2::-1], lengths[-2::-1]))
        if not all(_fits(first, a, n, axis, norm) for axis, n in others):
            return NotImplemented
        steps = [(first, axis, n) for axis, n in others]
        ends = [(last, chosen[-1], lengths[-1])]
        steps = ends + steps if last_axis_first else steps + ends
        return run_axes(steps, a, norm, None, _workers(workers))

    return transform


def _cosine(kind: _kinds.Kind) -> Callable[..., _Answer]:
    def transform(
        x: Any,
        type: int = 2,
        n: Optional[int] = None,
        axis: int = -1,
        norm: Optional[str] = None,
        overwrite_x: bool = False,
        workers: Optional[int] = None,
        orthogonalize: Optional[bool] = None,
    ) -> _Answer:
        a = _data(x)
        # A DCT-IV is orthogonal as it stands, so that `orthogonalize` changes nothing.
        if type != 4 or a is None or not _fits(kind, a, n, axis, norm):
            return NotImplemented
        return run(kind, a, n, axis, norm, _place(kind, a, n, axis, overwrite_x), _workers(workers))

    return transform


_k = _kinds
_FUNCTIONS: Dict[str, Callable[..., _Answer]] = {
    kind.name: _along_one(kind) for kind in (_k.fft, _k.ifft, _k.rfft, _k.irfft, _k.hfft, _k.ihfft)
}
for _name, _first, _last, _order in (
    ("fft", _k.fft, _k.fft, True),
    ("ifft", _k.ifft, _k.ifft, True),
    ("rfft", _k.fft, _k.rfft, True),
    ("irfft", _k.ifft, _k.irfft, False),
    ("hfft", _k.fft, _k.hfft, False),
    ("ihfft", _k.ifft, _k.ihfft, True),
):
    _FUNCTIONS[_name + "2"] = _along_several(_first, _last, _order, True)
    _FUNCTIONS[_name + "n"] = _along_several(_first, _last, _order, False)
_FUNCTIONS["dct"] = _cosine(_k.scipy_dct4)
_FUNCTIONS["idct"] = _cosine(_k.scipy_idct4)

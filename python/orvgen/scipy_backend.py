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

from operator import index
from typing import Any, Callable, Dict, Optional, Sequence, SupportsIndex

import numpy as np

from . import _kinds, _several
from ._axes import run_axes
from ._run import run
from ._several import Several, axes_of
from ._threads import count_of_workers
from ._types import Array, Dtype, IntOrNone, Norm, Out

__ua_domain__ = "numpy.scipy.fft"

_Answer = Any  # an array, or NotImplemented


def __ua_function__(method: Callable[..., Any], args: Sequence[Any], kwargs: Dict[str, Any]) -> _Answer:
    ours = _FUNCTIONS.get(method.__name__)
    return NotImplemented if ours is None else ours(*args, **kwargs)


def _data(x: Any) -> Out:
    """The data as an array that there are transforms for, or None."""
    if hasattr(x, "__array_function__") and not isinstance(x, np.ndarray):
        return None
    try:
        x = np.asarray(x)
    except (TypeError, ValueError):
        return None
    return x if x.dtype.kind in "biufc" and x.dtype.char not in "gG" and x.ndim > 0 else None


def _workers(workers: IntOrNone) -> IntOrNone:
    from scipy.fft import get_workers

    return int(get_workers()) if workers is None else workers


def _countable(workers: IntOrNone) -> bool:
    try:
        return workers is None or count_of_workers("", workers) > 0
    except (TypeError, ValueError):
        return False


def _real_type(dtype: Dtype) -> Dtype:
    return np.dtype(np.float32 if dtype.char in "efF" else np.float64)


def _fits(kind: _kinds.Kind, x: Array, n: IntOrNone, axis: SupportsIndex, norm: Any) -> bool:
    """Whether this is a transform of ours. What is wrong in itself SciPy shall tell."""
    if kind.types in (_kinds.TO_HALF, _kinds.REAL) and x.dtype.kind == "c":
        return False
    try:
        points = kind.default(x.shape[axis]) if n is None else index(n)
        return x.shape[axis] > 0 and kind.missing(points, _real_type(x.dtype)) is None and norm in kind.norms
    except (TypeError, IndexError, AttributeError):
        return False


def _along_one(kind: _kinds.Kind) -> Callable[..., _Answer]:
    def transform(
        x: Any,
        n: IntOrNone = None,
        axis: SupportsIndex = -1,
        norm: Norm = None,
        overwrite_x: bool = False,
        workers: IntOrNone = None,
        *,
        plan: Any = None,
    ) -> _Answer:
        a = _data(x)
        if plan is not None or a is None or not _countable(workers) or not _fits(kind, a, n, axis, norm):
            return NotImplemented
        return run(kind, a, n, axis, norm, _place(kind, a, n, axis, overwrite_x), _workers(workers))

    return transform


def _place(
    kind: _kinds.Kind, a: Array, n: IntOrNone, axis: SupportsIndex, overwrite: bool
) -> Out:
    """The data itself, if it may be overwritten and its shape and type are the result's."""
    if not overwrite or not a.flags.writeable:
        return None
    if a.dtype not in kind.types or kind.types[a.dtype] != a.dtype:
        return None
    points = a.shape[axis] if n is None else index(n)
    return a if points == a.shape[axis] and kind.result(points) == points else None


def _along_several(several: Several) -> Callable[..., _Answer]:
    two = several.name.endswith("2")

    def transform(
        x: Any,
        s: Any = None,
        axes: Any = (-2, -1) if two else None,
        norm: Norm = None,
        overwrite_x: bool = False,
        workers: IntOrNone = None,
        *,
        plan: Any = None,
    ) -> _Answer:
        a = _data(x)
        if plan is not None or a is None or not _countable(workers):
            return NotImplemented
        try:
            chosen, lengths = axes_of(several.name, a, s, axes)
        except (TypeError, ValueError):
            return NotImplemented
        if not chosen:
            return NotImplemented
        steps = several.steps(chosen, lengths)
        if not all(_fits(kind, a, n, axis, norm) for kind, axis, n in steps):
            return NotImplemented
        return run_axes(steps, a, norm, None, _workers(workers))

    return transform


def _cosine(kind: _kinds.Kind) -> Callable[..., _Answer]:
    def transform(
        x: Any,
        type: int = 2,
        n: IntOrNone = None,
        axis: SupportsIndex = -1,
        norm: Norm = None,
        overwrite_x: bool = False,
        workers: IntOrNone = None,
        orthogonalize: Optional[bool] = None,
    ) -> _Answer:
        a = _data(x)
        # A DCT-IV is orthogonal as it stands, so that `orthogonalize` changes nothing.
        if type != 4 or a is None or not _countable(workers) or not _fits(kind, a, n, axis, norm):
            return NotImplemented
        return run(kind, a, n, axis, norm, _place(kind, a, n, axis, overwrite_x), _workers(workers))

    return transform


_k = _kinds
_FUNCTIONS: Dict[str, Callable[..., _Answer]] = {
    kind.name: _along_one(kind) for kind in (_k.fft, _k.ifft, _k.rfft, _k.irfft, _k.hfft, _k.ihfft)
}
for _name in ("fft", "ifft", "rfft", "irfft", "hfft", "ihfft"):
    for _form in ("2", "n"):
        _FUNCTIONS[_name + _form] = _along_several(getattr(_several, _name + _form))
_FUNCTIONS["dct"] = _cosine(_k.scipy_dct4)
_FUNCTIONS["idct"] = _cosine(_k.scipy_idct4)

# SPDX-License-Identifier: MIT
"""From arrays to ufuncs: types, lengths, shapes and layout of the results."""

from __future__ import annotations

from typing import Any, Sequence, SupportsIndex, Tuple

import numpy as np

from ._batch import rows as _rows
from ._kinds import FROM_HALF, Kind, checked_axis, whole
from ._threads import count_of_workers, split
from ._types import Array, Dtype, IntOrNone, Norm, Out

_asarray, _empty, _ndarray = np.asarray, np.empty, np.ndarray


def run(
    kind: Kind,
    a: Any,
    n: IntOrNone,
    axis: SupportsIndex,
    norm: Norm,
    out: Out,
    workers: IntOrNone,
) -> Array:
    """One transform along one axis."""
    x = _asarray(a)
    dtype = kind.types.get(x.dtype)
    if dtype is None:
        x = converted(kind, x)
        dtype = kind.types[x.dtype]
    shape = x.shape
    # What is wrong is told outside of these, so that Python shows one error and not two.
    try:
        have = shape[axis]
    except (IndexError, TypeError):
        have = -1
    if have < 0:
        axis = checked_axis(kind.name, axis, x.ndim)
        have = shape[axis]
    n = kind.default(have) if n is None else whole(kind.name, "n", n)
    try:
        known = kind.tasks[n, norm]
    except (KeyError, TypeError):
        known = None
    task, m = known or kind.task(n, norm, dtype)
    last = axis == -1 or axis == len(shape) - 1
    if m != have:
        shape = (*shape[:-1], m) if last else replaced(shape, axis, m)
    if out is None:
        out = y = _empty(shape, dtype) if x.flags.c_contiguous else empty_alike(x, shape, dtype)
    else:
        y = checked_out(kind, out, shape, dtype)
    if workers is not None and workers != 1:
        split(kind.ufunc, x, task, y, int(axis) % x.ndim, count_of_workers(kind.name, workers))
    elif last:
        # Small plain arrays should not pay for what a ufunc can do with others.
        if not _rows(kind.number, x, task, y):
            kind.ufunc(x, task, y)
    else:
        number = int(axis)
        kind.ufunc(x, task, y, axes=[(number,), (), (number,)])
    return out


def replaced(shape: Sequence[int], axis: SupportsIndex, m: int) -> Tuple[int, ...]:
    changed = list(shape)
    changed[axis] = m
    return tuple(changed)


def converted(kind: Kind, x: Array) -> Array:
    """To a type that the transform has, as SciPy converts: float16 to float32, what is neither real
    nor complex to float64, real to complex where a spectrum is wanted."""
    dtype = x.dtype.newbyteorder("=")
    if dtype.char in "gG":
        raise TypeError(f"{kind.name}: no transform of long doubles; convert them to float64")
    if dtype.char == "e":
        dtype = np.dtype(np.float32)
    elif dtype.kind not in "fc":
        dtype = np.dtype(np.float64)
    if kind.types is FROM_HALF and dtype.kind == "f":
        dtype = np.result_type(dtype, np.complex64)
    if dtype not in kind.types:
        raise TypeError(f"{kind.name}: the data must be real, not {x.dtype}")
    return x.astype(dtype)


def checked_out(
    kind: Kind, out: Any, shape: Tuple[int, ...], dtype: Dtype
) -> Array:
    """The result's place as a plain array."""
    if not isinstance(out, _ndarray):
        raise TypeError(f"{kind.name}: out must be an array, not {type(out).__name__}")
    if out.shape != shape or out.dtype != dtype:
        raise ValueError(
            f"{kind.name}: out must be of shape {shape} and type {dtype}, "
            f"not {out.shape} and {out.dtype}"
        )
    if not out.flags.writeable:
        raise ValueError(f"{kind.name}: out is read-only")
    return out.view(_ndarray)


def empty_alike(x: Array, shape: Tuple[int, ...], dtype: Dtype) -> Array:
    """An empty array whose axes lie in memory in the order of x's: columns stay columns."""
    if 0 in x.strides:
        return _empty(shape, dtype)
    axes = sorted(range(x.ndim), key=lambda i: -abs(x.strides[i]))
    memory = _empty([shape[i] for i in axes], dtype)
    return memory.transpose(np.argsort(axes))

# SPDX-License-Identifier: MIT
"""Transforms along several axes, in pieces that stay in the cache from the first axis to the last."""

from __future__ import annotations

from typing import Any, Iterator, List, Optional, Sequence, Tuple

import numpy as np

from ._kinds import Kind, whole
from ._run import checked_out, empty_alike, replaced, run
from ._threads import count_of_workers, crosses, share
from ._types import Array, IntOrNone, Norm, Out

# Bytes of a piece, in the source or in a result. Half of a second-level cache holds a piece of the source,
# what is made of it on the way, and its result.
_PIECE = 1 << 17

# Bytes that a piece has at least side by side: else it is spread over more pages than it has lines.
_RUN = 1 << 10

Step = Tuple[Kind, int, Optional[int]]
"""A kind, the axis that it runs along, and the points, None for the axis's own."""


def run_axes(
    steps: Sequence[Step],
    a: Any,
    norm: Norm,
    out: Out,
    workers: IntOrNone,
) -> Array:
    """The steps one after the other, along different axes."""
    x = np.asarray(a)
    taken = {axis for _, axis, _ in steps}
    outer = [i for i in range(x.ndim) if i not in taken]
    if len(steps) == 1 or x.nbytes <= _PIECE or not outer:
        return _whole(steps, x, norm, out, workers)
    # An empty array tells the shape and the type of the result, and what is wrong.
    cut = outer[0]
    empty = _whole(steps, x[(slice(None),) * cut + (slice(0),)], norm, None, None)
    shape = replaced(empty.shape, cut, x.shape[cut])
    if out is None:
        out = y = empty_alike(x, shape, empty.dtype)
    else:
        y = checked_out(steps[-1][0], out, shape, empty.dtype)
    pieces = [(x, y)] if crosses(x, y) else list(_cut(x, y, outer))
    if len(pieces) == 1:
        return _whole(steps, x, norm, out, workers)
    threads = 1 if workers is None else count_of_workers(steps[0][0].name, workers)
    share(lambda some: _through(steps, norm, some), pieces, x.size, threads)
    return out


def _whole(
    steps: Sequence[Step],
    x: Array,
    norm: Norm,
    out: Out,
    workers: IntOrNone,
) -> Array:
    """Axis by axis."""
    spare: Out = None
    for number, (kind, axis, n) in enumerate(steps):
        place = out if number == len(steps) - 1 else None
        if place is None and spare is not None:
            m = kind.result(kind.default(x.shape[axis]) if n is None else whole(kind.name, "n", n))
            if spare.shape == replaced(x.shape, axis, m) and spare.dtype == kind.types[x.dtype]:
                place = spare
        result = run(kind, x, n, axis, norm, place, workers)
        # What this step has read is the next but one's place, unless it is the caller's.
        spare = x if number > 0 else None
        x = result
    return x


_Piece = Tuple[Array, Array]


def _cut(x: Array, y: Array, outer: List[int]) -> Iterator[_Piece]:
    """Source and result in pieces, along the outer axes whose elements lie farthest apart."""
    size = max(x.nbytes, y.nbytes)
    if size <= _PIECE or not outer:
        yield x, y
        return
    axis = max(outer, key=lambda i: abs(y.strides[i]))
    count = max(1, _PIECE * x.shape[axis] // size)
    if count * min(abs(x.strides[axis]), abs(y.strides[axis])) < _RUN:
        yield x, y
        return
    for begin in range(0, x.shape[axis], count):
        at = (slice(None),) * axis + (slice(begin, begin + count),)
        if count > 1:
            yield x[at], y[at]
        else:
            yield from _cut(x[at], y[at], [i for i in outer if i != axis])


def _through(steps: Sequence[Step], norm: Norm, pieces: Sequence[_Piece]) -> None:
    """All steps on one piece after the other. What comes between stays in the same memory."""
    shape: Tuple[int, ...] = ()
    between: List[Optional[Array]] = []
    for x, y in pieces:
        if x.shape != shape:
            shape, between = x.shape, [None] * (len(steps) - 1)
        for number, (kind, axis, n) in enumerate(steps[:-1]):
            x = between[number] = run(kind, x, n, axis, norm, between[number], None)
        kind, axis, n = steps[-1]
        run(kind, x, n, axis, norm, y, None)

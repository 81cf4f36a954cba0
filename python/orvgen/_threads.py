# SPDX-License-Identifier: MIT
"""Several threads for one call: the array is cut along an axis that is not transformed."""

from __future__ import annotations

import os
import threading
from concurrent.futures import ThreadPoolExecutor, wait
from typing import Any, Callable, List, Optional, SupportsIndex

import numpy as np

from ._kinds import whole
from ._types import Array

# Fewer elements than this are transformed before a second thread has begun.
_WORTH = 1 << 18

_lock = threading.Lock()
_pool: Optional[ThreadPoolExecutor] = None
_size = 0


def count_of_workers(name: str, workers: SupportsIndex) -> int:
    """Negative numbers count from the number of processors: -1 is all of them. More threads than
    processors would only be more to begin."""
    count, processors = whole(name, "workers", workers), os.cpu_count() or 1
    if count < 0:
        count += 1 + processors
    if count < 1:
        raise ValueError(
            f"{name}: workers is {workers}; possible are 1 and more, or -{processors} to -1, "
            f"which count from the {processors} processors"
        )
    return min(count, processors)


def _pool_of(size: int) -> ThreadPoolExecutor:
    """The threads are kept, and with them their plans."""
    global _pool, _size
    with _lock:
        if _pool is None or _size < size:
            # A smaller one ends by itself, when those who use it have done.
            _pool, _size = ThreadPoolExecutor(size, thread_name_prefix="orvgen"), size
        return _pool


def _forget() -> None:
    """A child of fork has none of the threads, and perhaps a lock that nobody will open."""
    global _pool, _size, _lock
    _pool, _size, _lock = None, 0, threading.Lock()


os.register_at_fork(after_in_child=_forget)


def crosses(x: Array, y: Array) -> bool:
    """Whether a part of y may lie on another part of x."""
    if not np.may_share_memory(x, y):
        return False
    same = x.__array_interface__["data"] == y.__array_interface__["data"]
    return not (same and x.strides == y.strides and x.shape == y.shape)


def split(
    ufunc: Any, x: Array, task: Array, y: Array, axis: int, workers: int
) -> None:
    """y = ufunc(x, task) along the axis, in up to so many threads, of which this is one."""
    axes = [(axis,), (), (axis,)]
    cut, parts = -1, 1
    if workers > 1 and x.size >= _WORTH and not crosses(x, y):
        outer = [i for i in range(x.ndim) if i != axis]
        cut = max(outer, key=lambda i: (x.shape[i] >= 4 * workers, abs(y.strides[i])), default=-1)
        parts = min(workers, x.shape[cut]) if cut >= 0 else 1
    if parts < 2:
        ufunc(x, task, y, axes=axes)
        return
    whole: List[slice] = [slice(None)] * x.ndim
    pieces = []
    for part in range(parts):
        begin, end = (x.shape[cut] * p // parts for p in (part, part + 1))
        whole[cut] = slice(begin, end)
        pieces.append((x[tuple(whole)], task, y[tuple(whole)]))
    _together(lambda piece: ufunc(*piece, axes=axes), pieces)


def share(work: Callable[[List[Any]], Any], pieces: List[Any], size: int, workers: int) -> None:
    """work(pieces), in up to so many threads, which take pieces of `size` elements altogether."""
    parts = min(workers, len(pieces)) if size >= _WORTH else 1
    bounds = [len(pieces) * p // parts for p in range(parts + 1)]
    _together(work, [pieces[begin:end] for begin, end in zip(bounds, bounds[1:])])


def _together(work: Callable[[Any], Any], parts: List[Any]) -> None:
    """work of each part in a thread of its own, the first one in this."""
    if len(parts) == 1:
        work(parts[0])
        return
    pool = _pool_of(len(parts) - 1)
    futures = [pool.submit(work, part) for part in parts[1:]]
    try:
        work(parts[0])
    finally:
        wait(futures)
    for future in futures:
        future.result()

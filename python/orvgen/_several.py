# SPDX-License-Identifier: MIT
"""The Fourier transforms along several axes as data: which one runs along which of the axes."""

from __future__ import annotations

from typing import Any, List, Optional, Sequence, Tuple

import numpy as np

from . import _kinds
from ._axes import Step, run_axes
from ._kinds import Kind, checked_axis, whole
from ._types import Array, IntOrNone, IntsOrNone, Norm


class Several:
    """A transform of one kind along the last of its axes and of another along all others."""

    def __init__(self, name: str, others: Kind, last: Kind, *, last_first: bool) -> None:
        self.name = name
        self.others = others.called(name)
        self.last = last.called(name)
        self.last_first = last_first

    def steps(self, axes: Sequence[int], lengths: Sequence[Optional[int]]) -> List[Step]:
        """In the order in which they run."""
        last = [(self.last, axes[-1], lengths[-1])]
        others = [(self.others, axis, n) for axis, n in zip(axes[-2::-1], lengths[-2::-1])]
        return last + others if self.last_first else others + last

    def __call__(
        self, a: Any, s: Any, axes: Any, norm: Norm, out: Any, workers: IntOrNone
    ) -> Array:
        x = np.asarray(a)
        chosen, lengths = axes_of(self.name, x, s, axes)
        if not chosen:
            raise ValueError(f"{self.name}: at least one axis must be transformed")
        return run_axes(self.steps(chosen, lengths), x, norm, out, workers)


def axes_of(
    name: str, x: Array, s: IntsOrNone, axes: IntsOrNone
) -> Tuple[List[int], List[Optional[int]]]:
    """The axes of an n-dimensional transform, and the length along each, None where it is the
    array's own."""
    lengths = None if s is None else _whole_numbers(name, "s", s)
    if axes is None:
        chosen = list(range(x.ndim))
        if lengths is not None:
            if len(lengths) > x.ndim:
                raise ValueError(f"{name}: s has more lengths than the array has axes")
            chosen = chosen[x.ndim - len(lengths) :]
    else:
        chosen = []
        for axis in _whole_numbers(name, "axes", axes):
            chosen.append(checked_axis(name, axis, x.ndim) % x.ndim)
        if len(set(chosen)) != len(chosen):
            raise ValueError(f"{name}: all axes must be unique")
    if lengths is None:
        return chosen, [None] * len(chosen)
    if len(lengths) != len(chosen):
        raise ValueError(f"{name}: s and axes must have the same length")
    return chosen, [None if n == -1 else n for n in lengths]


def _whole_numbers(name: str, what: str, values: Any) -> List[int]:
    """Of a sequence, or a single one."""
    return [whole(name, f"each of {what}", value) for value in np.atleast_1d(np.asarray(values)).tolist()]


fftn = Several("fftn", _kinds.fft, _kinds.fft, last_first=True)
ifftn = Several("ifftn", _kinds.ifft, _kinds.ifft, last_first=True)
rfftn = Several("rfftn", _kinds.fft, _kinds.rfft, last_first=True)
irfftn = Several("irfftn", _kinds.ifft, _kinds.irfft, last_first=False)
hfftn = Several("hfftn", _kinds.fft, _kinds.hfft, last_first=False)
ihfftn = Several("ihfftn", _kinds.ifft, _kinds.ihfft, last_first=True)
fft2 = Several("fft2", _kinds.fft, _kinds.fft, last_first=True)
ifft2 = Several("ifft2", _kinds.ifft, _kinds.ifft, last_first=True)
rfft2 = Several("rfft2", _kinds.fft, _kinds.rfft, last_first=True)
irfft2 = Several("irfft2", _kinds.ifft, _kinds.irfft, last_first=False)
hfft2 = Several("hfft2", _kinds.fft, _kinds.hfft, last_first=False)
ihfft2 = Several("ihfft2", _kinds.ifft, _kinds.ihfft, last_first=True)

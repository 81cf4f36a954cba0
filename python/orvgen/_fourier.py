# SPDX-License-Identifier: MIT
"""The Fourier transforms."""

from __future__ import annotations

from typing import SupportsIndex

import numpy.typing as npt

from . import _kinds, _several
from ._run import run
from ._types import Array, IntOrNone, IntsOrNone, Norm, Out


def fft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The discrete Fourier transform along an axis.

    ``y[k] = s sum_j a[j] exp(-2 pi i j k / n)``, in natural order. Every transform along the axis
    has the bits that it would have alone, whatever the shape, the strides, the threads and the
    processor.

    Parameters
    ----------
    a : array_like
        float32 gives complex64, float64 gives complex128, complex types stay; float16 becomes
        float32, integers become float64. Of real data the half spectrum is computed, and mirrored.
    n : int, optional
        Points, 2 to 64. A longer axis is cut, a shorter one padded with zeros. Default: the axis's.
    axis : int
        The axis to transform.
    norm : {"backward", "ortho", "forward"}, optional
        The scale s: 1 (default), 1/sqrt(n) or 1/n.
    out : ndarray, optional
        Where the result goes: of its shape and type, with any strides; may be `a` itself.
    workers : int, optional
        Threads among which the other axes are divided, one on each processor at most; -1 for all of
        these, -2 for all but one. Default: 1.

    Returns
    -------
    ndarray
        `out`, or a new array whose axes lie in memory in the order of `a`'s.

    Raises
    ------
    ValueError
        For lengths, axes, norms and outputs that there are not; the message says what is possible.
        For axes it is NumPy's AxisError, which is an IndexError as well.
    TypeError
        For types that there are not: long double, and whatever does not convert to float64.

    Examples
    --------
    >>> import numpy as np, orvgen
    >>> x = np.array([[1, 0, 0, 0], [1, 1, 1, 1]], np.float32)
    >>> orvgen.fft(x)
    array([[1.+0.j, 1.+0.j, 1.+0.j, 1.-0.j],
           [4.+0.j, 0.+0.j, 0.+0.j, 0.-0.j]], dtype=complex64)
    >>> orvgen.fft(np.zeros(100))
    Traceback (most recent call last):
    ...
    ValueError: fft: no transform of 100 points; possible are 2 to 64 points
    """
    return run(_kinds.fft, a, n, axis, norm, out, workers)


def ifft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `fft`: ``y[j] = s sum_k a[k] exp(2 pi i j k / n)``.

    Everything as in `fft`, but for the scale s: 1/n ("backward", default), 1/sqrt(n) ("ortho") or
    1 ("forward").

    >>> import numpy as np, orvgen
    >>> x = np.array([1, 2j, -1, 0.5], np.complex64)
    >>> bool(np.allclose(orvgen.ifft(orvgen.fft(x)), x))
    True
    """
    return run(_kinds.ifft, a, n, axis, norm, out, workers)


def rfft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The bins 0 to n/2 of the Fourier transform of real data.

    Parameters as in `fft`; the result has ``n // 2 + 1`` elements along the axis. Complex data is
    a TypeError.

    >>> import numpy as np, orvgen
    >>> orvgen.rfft(np.array([1, 1, -1, -1], np.float32))
    array([0.+0.j, 2.-2.j, 0.+0.j], dtype=complex64)
    """
    return run(_kinds.rfft, a, n, axis, norm, out, workers)


def irfft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `rfft`: real data from the bins 0 to n/2.

    `n` is the number of real points, by default the even one ``2 (bins - 1)``. The imaginary parts
    of bin 0, and for even n of bin n/2, are not looked at.

    >>> import numpy as np, orvgen
    >>> orvgen.irfft(np.array([0, 2 - 2j, 0], np.complex64))
    array([ 1.,  1., -1., -1.], dtype=float32)
    >>> orvgen.irfft(orvgen.rfft(np.arange(5.0)), 5).round(6)
    array([0., 1., 2., 3., 4.])
    """
    return run(_kinds.irfft, a, n, axis, norm, out, workers)


def hfft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The Fourier transform, which is real, of a signal given by its Hermitian half.

    `n` is the number of points of the result, by default the even one ``2 (m - 1)``; the scale is
    that of `fft`.

    >>> import numpy as np, orvgen
    >>> orvgen.hfft(np.array([1, 1j, 0]))
    array([ 1.,  3.,  1., -1.])
    """
    return run(_kinds.hfft, a, n, axis, norm, out, workers)


def ihfft(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `hfft`: the Hermitian half of a signal whose Fourier transform is real.

    The scale is that of `ifft`.

    >>> import numpy as np, orvgen
    >>> orvgen.ihfft(np.array([1.0, 3, 1, -1]))
    array([1.-0.j, 0.+1.j, 0.-0.j])
    """
    return run(_kinds.ihfft, a, n, axis, norm, out, workers)


def fftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The Fourier transform along several axes, each of 2 to 64 points.

    Parameters
    ----------
    s : sequence of int, optional
        Points along each of the axes (-1: the axis's own).
    axes : sequence of int, optional
        The axes, each once; by default the last ``len(s)``, without s all.

    The others, and the scale along each axis, as in `fft`. The last axis is transformed first.

    >>> import numpy as np, orvgen
    >>> orvgen.fftn(np.ones((2, 3), np.float32))
    array([[6.+0.j, 0.+0.j, 0.-0.j],
           [0.+0.j, 0.+0.j, 0.+0.j]], dtype=complex64)
    """
    return _several.fftn(a, s, axes, norm, out, workers)


def ifftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `fftn`, with its parameters.

    >>> import numpy as np, orvgen
    >>> x = np.arange(24.0).reshape(2, 3, 4)
    >>> bool(np.allclose(orvgen.ifftn(orvgen.fftn(x)), x))
    True
    """
    return _several.ifftn(a, s, axes, norm, out, workers)


def rfftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`rfft` along the last of the axes, then `fft` along the others; parameters as in `fftn`.

    >>> import numpy as np, orvgen
    >>> orvgen.rfftn(np.ones((3, 4), np.float32)).shape
    (3, 3)
    """
    return _several.rfftn(a, s, axes, norm, out, workers)


def irfftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `rfftn`; ``s`` counts the real points, by default ``2 (bins - 1)`` of the last.

    >>> import numpy as np, orvgen
    >>> x = np.arange(12.0).reshape(3, 4)
    >>> bool(np.allclose(orvgen.irfftn(orvgen.rfftn(x)), x))
    True
    """
    return _several.irfftn(a, s, axes, norm, out, workers)


def hfftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`hfft` along the last of the axes behind `fft` along the others; parameters as in `irfftn`.

    >>> import numpy as np, orvgen
    >>> orvgen.hfftn(np.ones((2, 3))).shape
    (2, 4)
    """
    return _several.hfftn(a, s, axes, norm, out, workers)


def ihfftn(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = None,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The inverse of `hfftn`; parameters as in `fftn`.

    >>> import numpy as np, orvgen
    >>> x = np.arange(12.0).reshape(3, 4)
    >>> bool(np.allclose(orvgen.hfftn(orvgen.ihfftn(x)), x))
    True
    """
    return _several.ihfftn(a, s, axes, norm, out, workers)

# SPDX-License-Identifier: MIT
"""The transforms of real data to real data."""

from __future__ import annotations

from typing import SupportsIndex

import numpy.typing as npt

from . import _kinds
from ._run import run
from ._types import Array, IntOrNone, Norm, Out


def dht(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The discrete Hartley transform of 2 to 64 points along an axis.

    ``y[k] = s sum_j a[j] (cos(2 pi j k / n) + sin(2 pi j k / n))``; parameters as in `fft`. With
    norm="ortho" it is its own inverse.

    >>> import numpy as np, orvgen
    >>> orvgen.dht(np.array([1, 0, 0, 1], np.float32))
    array([2., 0., 0., 2.], dtype=float32)
    """
    return run(_kinds.dht, a, n, axis, norm, out, workers)


def wht(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The Walsh-Hadamard transform along an axis, of 2 to 8192 points, a power of two.

    ``y[i] = s sum_j (-1)**popcount(i & j) a[j]``, rows in natural (Sylvester's) order; parameters
    as in `fft`. With norm="ortho" it is its own inverse.

    >>> import numpy as np, orvgen
    >>> orvgen.wht(np.array([1, 2, 3, 4], np.float32))
    array([10., -2., -4.,  0.], dtype=float32)
    """
    return run(_kinds.wht, a, n, axis, norm, out, workers)


def dct4(
    a: npt.ArrayLike,
    n: IntOrNone = None,
    axis: SupportsIndex = -1,
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """The discrete cosine transform IV along an axis, of a power of two of points, from 2 on.

    ``y[k] = s sum_j a[j] cos(pi/n (j + 1/2) (k + 1/2))`` with s = 1 ("backward"), sqrt(2/n)
    ("ortho", which is its own inverse) or 2/n ("forward", which undoes "backward"). SciPy's
    definition has another factor 2. The sum is computed and rounded first, then multiplied by s;
    sqrt(2/n) is the rounded root.

    From 64 points on each thread keeps a plan for each length. Parameters as in `fft`.

    >>> import numpy as np, orvgen
    >>> x = np.arange(8.0)
    >>> bool(np.allclose(orvgen.dct4(orvgen.dct4(x), norm="forward"), x))
    True
    """
    return run(_kinds.dct4, a, n, axis, norm, out, workers)


def rotate(
    a: npt.ArrayLike,
    axis: SupportsIndex = -1,
    out: Out = None,
    *,
    inverse: bool = False,
    workers: IntOrNone = None,
) -> Array:
    """Turns vectors by a fixed pseudo-random rotation without a matrix, or back.

    A vector of ``2**k * m`` elements (2**k from 2 to 8192, m odd and at most 63) gets fixed
    pseudo-random signs and is seen as m rows of 2**k; then come the Walsh-Hadamard transform of
    each row and the Hartley transform of each column, both orthonormal. Lengths and angles stay,
    while what stands out in single elements is spread over all: what vector databases do before
    they quantise. The bits are frozen: the same on every processor and in every release, so that
    turned vectors may be stored.

    >>> import numpy as np, orvgen
    >>> x = np.zeros((3, 768), np.float32)
    >>> x[:, 5] = 1
    >>> y = orvgen.rotate(x)
    >>> bool(np.allclose(abs(y), 768 ** -0.5, rtol=1.0)), y.dtype
    (True, dtype('float32'))
    >>> bool(np.allclose(orvgen.rotate(y, inverse=True), x, atol=1e-6))
    True
    """
    norm = "inverse" if inverse else "forward"
    return run(_kinds.rotate, a, None, axis, norm, out, workers)

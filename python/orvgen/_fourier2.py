# SPDX-License-Identifier: MIT
"""The Fourier transforms of two axes: those of `_fourier` with other defaults."""

from __future__ import annotations

import numpy.typing as npt

from . import _several
from ._types import Array, IntOrNone, IntsOrNone, Norm, Out


def fft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`fftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.fft2(x) == orvgen.fftn(x, axes=(1, 2))).all())
    True
    """
    return _several.fft2(a, s, axes, norm, out, workers)


def ifft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`ifftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.ifft2(x) == orvgen.ifftn(x, axes=(1, 2))).all())
    True
    """
    return _several.ifft2(a, s, axes, norm, out, workers)


def rfft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`rfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.rfft2(x) == orvgen.rfftn(x, axes=(1, 2))).all())
    True
    """
    return _several.rfft2(a, s, axes, norm, out, workers)


def irfft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`irfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.irfft2(x) == orvgen.irfftn(x, axes=(1, 2))).all())
    True
    """
    return _several.irfft2(a, s, axes, norm, out, workers)


def hfft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`hfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.hfft2(x) == orvgen.hfftn(x, axes=(1, 2))).all())
    True
    """
    return _several.hfft2(a, s, axes, norm, out, workers)


def ihfft2(
    a: npt.ArrayLike,
    s: IntsOrNone = None,
    axes: IntsOrNone = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: IntOrNone = None,
) -> Array:
    """`ihfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.ihfft2(x) == orvgen.ihfftn(x, axes=(1, 2))).all())
    True
    """
    return _several.ihfft2(a, s, axes, norm, out, workers)

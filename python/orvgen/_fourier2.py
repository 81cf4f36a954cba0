# SPDX-License-Identifier: MIT
"""The Fourier transforms of two axes: those of `_fourier` with other defaults."""

from __future__ import annotations

from typing import Optional, Sequence

import numpy as np
import numpy.typing as npt

from . import _fourier
from ._fourier import Norm, Out


def fft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`fftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.fft2(x) == orvgen.fftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.fftn(a, s, axes, norm, out, workers=workers)


def ifft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`ifftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.ifft2(x) == orvgen.ifftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.ifftn(a, s, axes, norm, out, workers=workers)


def rfft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`rfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.rfft2(x) == orvgen.rfftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.rfftn(a, s, axes, norm, out, workers=workers)


def irfft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`irfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.irfft2(x) == orvgen.irfftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.irfftn(a, s, axes, norm, out, workers=workers)


def hfft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`hfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.hfft2(x) == orvgen.hfftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.hfftn(a, s, axes, norm, out, workers=workers)


def ihfft2(
    a: npt.ArrayLike,
    s: Optional[Sequence[int]] = None,
    axes: Sequence[int] = (-2, -1),
    norm: Norm = None,
    out: Out = None,
    *,
    workers: Optional[int] = None,
) -> np.ndarray:
    """`ihfftn` along the last two axes, or two others; parameters as there.

    >>> import numpy as np, orvgen
    >>> x = np.ones((10, 4, 6))
    >>> bool((orvgen.ihfft2(x) == orvgen.ihfftn(x, axes=(1, 2))).all())
    True
    """
    return _fourier.ihfftn(a, s, axes, norm, out, workers=workers)

# SPDX-License-Identifier: MIT
"""Short signal transforms for arrays: many transforms of 2 to 64 points in one call.

The Fourier transforms have the names and the parameters that they have in `numpy.fft`; beside them
stand the Hartley (`dht`), Walsh-Hadamard (`wht`) and DCT-IV (`dct4`) transforms and a frozen
rotation (`rotate`). float32 stays float32. Every result has the same bits on every processor, in
whatever shape, order of memory and number of threads it is computed.

>>> import numpy as np, orvgen
>>> frames = np.ones((100_000, 16), np.float32)
>>> orvgen.rfft(frames).shape
(100000, 9)

`which` says what runs; `scipy.fft.set_backend(orvgen.scipy_backend)` gives the transforms to programs
written for SciPy.
"""

from . import scipy_backend
from ._about import Kernel, Which, kernels, use, which
from ._fourier import (
    fft,
    fftn,
    hfft,
    hfftn,
    ifft,
    ifftn,
    ihfft,
    ihfftn,
    irfft,
    irfftn,
    rfft,
    rfftn,
)
from ._fourier2 import fft2, hfft2, ifft2, ihfft2, irfft2, rfft2
from ._real import dct4, dht, rotate, wht

__version__ = which().release

__all__ = [
    "Kernel",
    "Which",
    "dct4",
    "dht",
    "fft",
    "fft2",
    "fftn",
    "hfft",
    "hfft2",
    "hfftn",
    "ifft",
    "ifft2",
    "ifftn",
    "ihfft",
    "ihfft2",
    "ihfftn",
    "irfft",
    "irfft2",
    "irfftn",
    "kernels",
    "rfft",
    "rfft2",
    "rfftn",
    "rotate",
    "scipy_backend",
    "use",
    "wht",
    "which",
]

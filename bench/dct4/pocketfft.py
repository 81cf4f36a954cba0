# SPDX-License-Identifier: MIT
"""Nanoseconds of one DCT of type 4 by pocketfft, which is inside SciPy: lines of type, length, time.

Transforms are called for by the row of an array, so that the cost of the call itself is spread."""

import sys
import time

try:
    import numpy
    import scipy.fft
except ImportError:
    sys.exit(0)

longest = int(sys.argv[1])
length = 2
while length <= longest:
    for name, kind in (("_32f", numpy.float32), ("_64f", numpy.float64)):
        rows = max(1, (1 << 17) // length)
        x = numpy.random.default_rng(length).uniform(-1, 1, (rows, length)).astype(kind)
        best = float("inf")
        for _ in range(15):
            start = time.perf_counter()
            scipy.fft.dct(x, type=4, axis=-1)
            best = min(best, time.perf_counter() - start)
        print(name, length, best / rows * 1e9)
    length *= 2

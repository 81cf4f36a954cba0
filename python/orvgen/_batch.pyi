from typing import Dict

import numpy as np

from ._types import Array

fft: np.ufunc
ifft: np.ufunc
rfft: np.ufunc
irfft: np.ufunc
hfft: np.ufunc
ihfft: np.ufunc
dht: np.ufunc
wht: np.ufunc
dct4: np.ufunc
rotate: np.ufunc

def targets() -> int: ...
def use(target: int) -> None: ...
def libraries() -> Dict[str, str]: ...
def rows(number: int, x: Array, task: Array, y: Array) -> bool: ...

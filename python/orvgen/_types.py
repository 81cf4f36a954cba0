# SPDX-License-Identifier: MIT
"""The types of parameters and results."""

from __future__ import annotations

from typing import Any, Optional, Sequence, SupportsIndex, Union

import numpy as np
import numpy.typing as npt

Array = npt.NDArray[Any]
Dtype = np.dtype[Any]

Norm = Optional[str]
Out = Optional[Array]
IntOrNone = Optional[SupportsIndex]
IntsOrNone = Union[SupportsIndex, Sequence[SupportsIndex], None]

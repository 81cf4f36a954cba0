# SPDX-License-Identifier: MIT
"""What runs."""

from __future__ import annotations

from typing import Dict, NamedTuple, Tuple

from . import _batch

_TARGETS = {"SSE2": 1, "AVX2": 2, "AVX512": 4}
_chosen = ""


class Which(NamedTuple):
    """Libraries and target; see `which`."""

    release: str
    """The release of the project."""
    interface: str
    """The version of the kernels' binary interface."""
    kernels: str
    """The file of the library of kernels."""
    batch: str
    """The file of the batch library."""
    targets: Tuple[str, ...]
    """What this library holds and this processor can run, the best one last."""
    target: str
    """What runs."""


def which() -> Which:
    """Which libraries are loaded, and which target they run on.

    >>> import orvgen
    >>> orvgen.which().target in orvgen.which().targets
    True
    """
    libraries: Dict[str, str] = _batch.libraries()
    there = _batch.targets()
    targets = tuple(name for name, bit in _TARGETS.items() if bit & there)
    return Which(
        release=libraries["release"],
        interface=libraries["interface"],
        kernels=libraries["kernels"],
        batch=libraries["batch"],
        targets=targets,
        target=_chosen or targets[-1],
    )


def use(target: str = "") -> None:
    """Chooses the target of all later calls, by default the best. The results do not depend on it.

    >>> import orvgen
    >>> orvgen.use("SSE2")
    >>> orvgen.which().target
    'SSE2'
    >>> orvgen.use()
    """
    global _chosen
    if target:
        possible = which().targets
        if target not in possible:
            raise ValueError(f"use: target is {target!r}; possible are {', '.join(possible)}")
    _batch.use(_TARGETS.get(target, 0))
    _chosen = target

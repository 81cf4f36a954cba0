# SPDX-License-Identifier: MIT
"""What runs, and what there is."""

from __future__ import annotations

import csv
from fnmatch import fnmatchcase
from functools import lru_cache
from pathlib import Path
from typing import Any, Callable, Dict, List, NamedTuple, Tuple

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
    """The one that runs."""


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


class Kernel(NamedTuple):
    """A generated kernel: a transform of one length; see `kernels`."""

    name: str
    """The C function, as in "orvgDFTFwd_CToC_16_32fc"."""
    family: str
    """The function that takes the length as an argument."""
    points: int
    """N."""
    plan: str
    """How the length is computed, in the notation of docs/plans.md."""
    additions: int
    """Real sums and differences; in the complex binary32 kernels those on distinct values."""
    multiplications: int
    """Real products, those by the scale included."""
    conversions: int
    """Between binary32 and binary64."""
    instructions: int
    """Of the body for aligned data."""
    frame: int
    """Bytes of stack."""
    spills: int
    """Values that pass through the stack."""
    cycles: float
    """By the kernel compiler's model of a core."""
    bound: float
    """The largest possible error of one real of a result, for inputs of at most 1, in units of u:
    2**-24 in binary32, 2**-53 in binary64."""
    error: float
    """The measured relative error in the L2 norm, in units of u, as in docs/accuracy.md."""


@lru_cache(maxsize=1)
def _table() -> Tuple[Kernel, ...]:
    convert: Dict[str, Callable[[str], Any]] = dict.fromkeys(Kernel._fields, int)
    convert.update(name=str, family=str, plan=str, cycles=float, bound=float, error=float)
    with open(Path(__file__).with_name("kernels.csv"), newline="") as file:
        rows = list(csv.DictReader(file))
    return tuple(Kernel(**{k: convert[k](v) for k, v in row.items()}) for row in rows)


def _forms(kernel: Kernel) -> List[str]:
    """What calls a kernel: its name, its family's with the type or without, each without "orvg" and
    without the words before an underscore. (The type alone would be half of the library.)"""
    untyped = kernel.family.rsplit("_", 1)[0]
    forms = []
    for name in (kernel.name, kernel.family, untyped):
        words = name[len("orvg") :].lower().split("_")
        tails = ["_".join(words[i:]) for i in range(len(words))]
        forms += ["orvg" + tails[0], *(tail for tail in tails if "_" in tail or name == untyped)]
    return forms


def kernels(pattern: str = "*") -> List[Kernel]:
    """The kernels of the library with their plans, operations, code and errors, by a pattern of names.

    Names are those that ``./dev show`` takes, in upper or lower case: a kernel's in full or short
    (DFTFwd_CToC_64_32fc, CToC_64_32fc) or a family's (WHT_32f). The data is that of ``./dev show`` and docs/accuracy.md. (A batch in wide vectors does the same
    operations, on as many transforms at once as a vector has lanes. A DCT-IV runs by its plan and
    has no kernel of its own.)

    >>> import orvgen
    >>> len(orvgen.kernels("Hartley_32f"))
    63
    >>> k = orvgen.kernels("DFTFwd_CToC_48_32fc")[0]
    >>> k.plan, k.additions, k.error < k.bound
    ('4 T (3, 4)', 636, True)
    """
    word = pattern.lower()
    return [k for k in _table() if any(fnmatchcase(form, word) for form in _forms(k))]

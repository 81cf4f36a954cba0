# SPDX-License-Identifier: MIT
"""The type hints, as mypy reads them: in the package itself, and in programs that use it."""

from pathlib import Path

import mypy.api

PACKAGE = Path(__file__).parents[2] / "python"

RIGHT = """\
from typing import Any, List, Tuple
import numpy as np
import numpy.typing as npt
import orvgen
x = np.ones((8, 16), np.float32)
y: npt.NDArray[np.complex64] = orvgen.rfft(x, np.int64(8), np.int8(-1), norm="ortho", out=None, workers=2)
z: npt.NDArray[Any] = orvgen.fft2([[1, 2], [3, 4]], (4, 4), axes=[0, 1])
z = orvgen.fftn(x, 4, -1, out=z)
z = orvgen.rotate(x, inverse=True)
k: List[orvgen.Kernel] = orvgen.kernels("WHT_32f")
t: Tuple[str, ...] = orvgen.which().targets
orvgen.use(t[0])
"""

WRONG = """\
import orvgen
orvgen.fft([1, 2], n="2")
orvgen.fft([1, 2], axis=None)
orvgen.fft2([[1, 2], [3, 4]], s=(4.0, 4))
orvgen.dht([1, 2], norm=1)
orvgen.wht([1, 2], out=[0, 0])
orvgen.dct4([1, 2], 2, -1, None, None, 2)
orvgen.rotate([1, 2], workers=2.5)
orvgen.fht([1, 2])
"""


def messages(tmp_path, monkeypatch, text):
    monkeypatch.setenv("MYPYPATH", str(PACKAGE))
    (tmp_path / "program.py").write_text(text)
    arguments = ["--strict", "--no-error-summary", "--cache-dir", str(tmp_path.parent / "mypy"), "--config-file="]
    # SciPy has no types.
    arguments += ["--ignore-missing-imports", str(tmp_path / "program.py"), str(PACKAGE / "orvgen")]
    out, err, _ = mypy.api.run(arguments)
    assert not err
    return [line for line in out.splitlines() if ": error: " in line]


def test_right_programs_and_the_package(tmp_path, monkeypatch):
    assert messages(tmp_path, monkeypatch, RIGHT) == []


def test_each_wrong_line(tmp_path, monkeypatch):
    found = messages(tmp_path, monkeypatch, WRONG)
    lines = sorted({int(line.split("program.py:")[1].split(":")[0]) for line in found})
    assert lines == list(range(2, WRONG.count("\n") + 1)), found

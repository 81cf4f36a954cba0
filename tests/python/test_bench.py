# SPDX-License-Identifier: MIT
"""The benchmark runs, and writes what it promises."""

import csv
import subprocess
import sys
from pathlib import Path

import pytest

BENCH = Path(__file__).parents[2] / "bench/python/main.py"


def test_the_benchmark_runs(tmp_path):
    command = [sys.executable, str(BENCH), "--quick", "--lengths", "8", "15", "--out", str(tmp_path)]
    done = subprocess.run(command, capture_output=True, text=True, check=True)
    assert "measuring: 100 %" in done.stderr and "too small for figures" in done.stdout
    assert "geometric mean" in done.stdout
    with open(tmp_path / "lengths.csv") as file:
        rows = list(csv.DictReader(file))
    assert [r["length"] for r in rows] == ["8"] * 4 + ["15"] * 4
    assert all(float(r["scipy / fresh"]) > 0 for r in rows)
    assert (tmp_path / "speed.png").read_bytes().startswith(b"\x89PNG")


@pytest.mark.parametrize("wrong", [
    ["--lengths", "65"], ["--lengths", "1"], ["--lengths"], ["--out", "/dev/null/x"], ["--loud"],
])
def test_wrong_arguments_get_one_line(wrong):
    done = subprocess.run([sys.executable, str(BENCH), *wrong], capture_output=True, text=True)
    lines = [line for line in done.stderr.splitlines() if "WARNING" not in line]
    assert done.returncode == 2 and len(lines) == 1 and lines[0].startswith("bench_python: ")
    assert wrong[0] in lines[0]

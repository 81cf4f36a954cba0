# SPDX-License-Identifier: MIT
"""The cluster example in a small form: two workers, one of them killed."""

import re
import subprocess
import sys
from pathlib import Path

import pytest

EXAMPLE = Path(__file__).parents[2] / "examples/cluster/channelize.py"


@pytest.mark.parametrize("wrong", [
    ["--channels", "0"], ["--channels", "1.5"], ["--seconds", "nan"], ["--seconds", "-1"], ["--workers", "0"], ["--loud"],
])
def test_wrong_arguments_get_one_line(wrong):
    done = subprocess.run([sys.executable, str(EXAMPLE), *wrong], capture_output=True, text=True)
    assert done.returncode == 2 and done.stderr.startswith("channelize.py: ") and done.stderr.count("\n") == 1
    assert wrong[0] in done.stderr


def test_the_bits_are_those_of_one_machine_though_a_worker_is_killed():
    command = [sys.executable, str(EXAMPLE), "--channels", "6", "--seconds", "8", "--workers", "1", "2", "--kill"]
    done = subprocess.run(command, capture_output=True, text=True, timeout=400)
    assert done.returncode == 0, done.stdout + done.stderr
    assert done.stdout.count("the same bits") == 3, done.stdout
    assert re.search(r"2 workers: .* 1 killed meanwhile", done.stdout), done.stdout
    assert "OTHER BITS" not in done.stdout

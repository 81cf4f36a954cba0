# SPDX-License-Identifier: MIT
"""The cluster example in a small form: two workers, one of them killed."""

import re
import subprocess
import sys
from pathlib import Path

EXAMPLE = Path(__file__).parents[2] / "examples/cluster/channelize.py"


def test_the_bits_are_those_of_one_machine_though_a_worker_is_killed():
    command = [sys.executable, str(EXAMPLE), "--channels", "6", "--seconds", "8", "--workers", "1", "2", "--kill"]
    done = subprocess.run(command, capture_output=True, text=True, timeout=400)
    assert done.returncode == 0, done.stdout + done.stderr
    assert done.stdout.count("the same bits") == 3, done.stdout
    assert re.search(r"2 workers: .* 1 killed meanwhile", done.stdout), done.stdout
    assert "OTHER BITS" not in done.stdout

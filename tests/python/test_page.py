# SPDX-License-Identifier: MIT
"""The examples of docs/python.md run as they stand, and draw its pictures."""

import re
from pathlib import Path

import page

ROOT = Path(__file__).parents[2]


def test_examples_and_pictures(tmp_path):
    source = ROOT / "docs/python.md"
    results = page.run(source, tmp_path)
    assert results.failed == 0 and results.attempted > 35
    pictures = set(re.findall(r"\]\((images/\S+)\)", source.read_text()))
    drawn = {f"images/{path.name}" for path in (tmp_path / "images").iterdir()}
    # One comes from the benchmark.
    assert pictures - drawn == {"images/python_speed.png"} and not drawn - pictures
    for picture in pictures:
        assert (ROOT / "docs" / picture).read_bytes().startswith(b"\x89PNG"), picture

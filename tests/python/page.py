# SPDX-License-Identifier: MIT
"""page.py PAGE FOLDER: runs the examples of a Markdown page, which draw its pictures into FOLDER/images."""

import doctest
import os
import re
import sys
from pathlib import Path


def run(page: Path, folder: Path) -> doctest.TestResults:
    """What the page shows must be what comes out; the examples run in the folder."""
    # The fences would be taken for output.
    text = re.sub(r"^```.*$", "", page.read_text(), flags=re.M)
    examples = doctest.DocTestParser().get_doctest(text, {}, page.name, str(page), 0)
    (folder / "images").mkdir(parents=True, exist_ok=True)
    before = os.getcwd()
    os.chdir(folder)
    try:
        runner = doctest.DocTestRunner()
        runner.run(examples)
        return runner.summarize()
    finally:
        os.chdir(before)


if __name__ == "__main__":
    raise SystemExit(1 if run(Path(sys.argv[1]).resolve(), Path(sys.argv[2])).failed else 0)

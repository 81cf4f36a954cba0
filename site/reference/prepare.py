# SPDX-License-Identifier: MIT
"""prepare.py ROOT SOURCES: the sources of the reference in one folder, as Sphinx wants them: the pages
of this folder, the pages of docs/, the headers, the examples and the tables that pictures are drawn
from."""

import re
import shutil
import sys
from pathlib import Path

ROOT, SOURCES = Path(sys.argv[1]), Path(sys.argv[2])


def on_the_site(match):
    """A link of a page in docs/: what is no page of the site, such as a source, is named only."""
    text, target = match[1], match[2]
    inside = re.match(r"https?:|#|images/|[\w-]+\.md", target)
    return match[0] if inside else f"`{ROOT.joinpath('docs', target).resolve().relative_to(ROOT)}`" \
        if text.strip("`") == Path(target).name else text


def listed(index):
    """The list of pages on the first one, with the pages of docs/ that it does not name at its end."""
    named = set(re.findall(r"^docs/([\w-]+)$", index, re.M))
    others = sorted(page.stem for page in (ROOT / "docs").glob("*.md") if page.stem not in named)
    return index.rstrip().removesuffix("```") + "".join(f"docs/{page}\n" for page in others) + "```\n"


def main():
    here = Path(__file__).parent
    shutil.rmtree(SOURCES, ignore_errors=True)
    shutil.copytree(here, SOURCES, ignore=shutil.ignore_patterns("__pycache__"))
    for folder, place in (("docs", "docs"), ("include", "include"), ("examples/small", "examples")):
        shutil.copytree(ROOT / folder, SOURCES / place)
    shutil.copy(ROOT / "site/base.css", SOURCES / "_static")
    python = SOURCES / "_python"
    shutil.copy(ROOT / "tools/reference/header.py", python)
    shutil.copy(ROOT / "site/families.py", python)
    (SOURCES / "data").mkdir()
    for table in ("packed_positions", "wht_signs", "flags", "statuses"):
        shutil.copy(ROOT / f"tests/data/{table}.csv", SOURCES / "data")
    for page in (SOURCES / "docs").glob("*.md"):
        text = page.read_text()
        page.write_text(re.sub(r"\[([^\]]*)\]\(([^)\s]+)\)", on_the_site, text))
    (SOURCES / "index.md").write_text(listed((SOURCES / "index.md").read_text()))
    shutil.copy(ROOT / "CHANGELOG.md", SOURCES / "changelog.md")


main()

# SPDX-License-Identifier: MIT
# Sphinx, for the reference site. Its sources are put together by prepare.py.
import re
import sys
from pathlib import Path

from pygments.formatters import HtmlFormatter

sys.path.insert(0, str(Path(__file__).parent / "_python"))

project = "orvgen"
release = re.search(r'ORVGEN_VERSION_TEXT "(.*)"', Path("include/orvgen.h").read_text())[1]
version = release
language = "en"

extensions = ["myst_parser", "mathml", "functions"]
myst_heading_anchors = 3
suppress_warnings = ["myst.header"]  # levels of headings that a page of docs/ leaves out
myst_enable_extensions = ["dollarmath"]
source_suffix = {".md": "markdown"}
primary_domain = "c"
highlight_language = "c"
exclude_patterns = ["_python", "examples", "include"]

html_theme = "basic"
html_title = "orvgen"
html_static_path = ["_static"]
html_css_files = ["base.css", "site.css"]
html_copy_source = False
html_show_sourcelink = False
html_show_search_summary = False  # it would fetch, which a page opened from disk may not
pygments_style = "default"
dark_pygments_style = "github-dark"
templates_path = ["_templates"]


# Sphinx writes a second stylesheet for dark pages only for themes that come with one.
def write_dark_colours(app, error):
    if error is None:
        style = HtmlFormatter(style=dark_pygments_style).get_style_defs(".highlight")
        (Path(app.outdir) / "_static" / "pygments_dark.css").write_text(style + "\n")


def setup(app):
    app.add_css_file("pygments_dark.css", media="(prefers-color-scheme: dark)")
    app.connect("build-finished", write_dark_colours)

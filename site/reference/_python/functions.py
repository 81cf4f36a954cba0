# SPDX-License-Identifier: MIT
"""Directives for pages of functions:

```{declared} orvgen.h complex
```
    the functions of a header that stand on a page (families.py): those that take the length as an
    argument one by one, those of one length as links into the kernel explorer.

```{said} orvgen.h Transforms of a fixed length
:of: Hartley
```
    what the header says in the section whose title begins like this; with `of` the paragraphs alone
    that begin so.

```{picture} ccs-8
```
    a picture of pictures.py.
"""

import html
import re
from pathlib import Path

from docutils import nodes
from docutils.parsers.rst import directives
from docutils.statemachine import StringList
from sphinx.util.docutils import SphinxDirective

import families
import header
import pictures


class Generated(SphinxDirective):
    has_content = False

    def header(self, name) -> Path:
        path = Path(self.env.srcdir) / "include" / name
        self.env.note_dependency(str(path))
        return path

    def parsed(self, lines):
        """What Markdown gives."""
        node = nodes.container()
        self.state.nested_parse(StringList(lines, self.env.docname), self.content_offset, node)
        return node.children


class Declared(Generated):
    required_arguments = 2

    def run(self):
        name, page = self.arguments
        found = [f for f in header.functions(self.header(name))
                 if families.page_of(f.name) == f"functions/{page}.html"]
        if not found:
            raise self.error(f"no function of {name} stands on {page}")
        kernels = [f.name for f in found if families.is_kernel(f.name)]
        lines = []
        for function in found:
            if function.name not in kernels:
                lines += ["```{eval-rst}", f".. c:function:: {function.declaration}", "```", ""]
        return self.parsed(lines) + [lengths(kernels)] if kernels else self.parsed(lines)


def lengths(kernels):
    """A line for each family: its lengths, as links into the kernel explorer. Their whole names are
    there for those who listen to the page or search it."""
    lines = {}
    for kernel in kernels:
        stem, number, type_ = kernel.rsplit("_", 2)
        lines.setdefault((stem, type_), []).append(
            f'<a id="c.{kernel}" href="../explorer/index.html#{kernel}">'
            f'<span class="away">{stem}_</span>{number}<span class="away">_{type_}</span></a>')
    text = "".join(f"<p><code>{stem}_N_{type_}</code> {' '.join(links)}</p>" for (stem, type_), links in lines.items())
    return nodes.raw("", f'<div class="kernel-list">{text}</div>', format="html")


def marked_up(text):
    """Plain text as Markdown: names as code, and nothing else means anything."""
    parts = re.split(r"(`\w+`|\b(?:lib)?[oO]rv\w*(?:(?:::|[.-])\w+|<\w+>\w*)*|\bORVGEN_\w+(?:<T>)?)", text)
    return "".join(f"`{part.strip('`')}`" if i % 2 else re.sub(r"([\\`*_<>\[\]#|])", r"\\\1", part)
                   for i, part in enumerate(parts))


class Said(Generated):
    required_arguments = 1
    final_argument_whitespace = True
    option_spec = {"of": directives.unchanged, "but": directives.unchanged}

    def run(self):
        name, _, title = self.arguments[0].partition(" ")
        found = [s for s in header.sections(self.header(name)) if s.title.startswith(title)]
        if len(found) != 1:
            raise self.error(f"{len(found)} sections of {name} begin with {title}")
        paragraphs = re.split(r"\n\n(?! {3})", found[0].text)
        of = self.options.get("of")
        if of:
            paragraphs = [p for p in paragraphs if p.startswith(of)]
            if not paragraphs:
                raise self.error(f"no paragraph of {title} begins with {of}")
        lines = []
        for kind, text in header.blocks("\n\n".join(paragraphs)):
            if kind == "code":
                lines += ["```c", *text.splitlines(), "```", ""]
            else:
                words = marked_up(text)
                lines += [words if kind == "text" else f"**{kind}.** {words}", ""]
        lines = [line for text in lines for line in text.splitlines() or [""]]
        return self.parsed(lines)


class Picture(Generated):
    required_arguments = 1

    def run(self):
        name = self.arguments[0]
        svg, description = pictures.picture(name, Path(self.env.srcdir) / "data")
        figure = (f'<div class="picture" role="img" aria-label="{html.escape(description, quote=True)}" '
                  f'tabindex="0">{svg}</div>')
        return [nodes.raw("", figure, format="html")]


def setup(app):
    app.add_directive("declared", Declared)
    app.add_directive("said", Said)
    app.add_directive("picture", Picture)
    return {"parallel_read_safe": True}

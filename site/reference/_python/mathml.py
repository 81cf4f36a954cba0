# SPDX-License-Identifier: MIT
"""Formulas as MathML, which browsers draw by themselves: pandoc writes it, once for each formula."""

import functools
import subprocess


@functools.cache
def mathml(formula: str) -> str:
    done = subprocess.run(["pandoc", "--from", "latex", "--to", "html", "--mathml"], input=formula,
                          check=True, capture_output=True, text=True)
    if "<math" not in done.stdout or done.stderr:
        raise ValueError(f"no formula: {formula} {done.stderr}")
    return done.stdout.strip().removeprefix("<p>").removesuffix("</p>")


def inline(self, node):
    self.body.append(mathml(f"${node.astext()}$"))
    from docutils.nodes import SkipNode
    raise SkipNode


def display(self, node):
    self.body.append(mathml(f"$${node.astext()}$$"))
    from docutils.nodes import SkipNode
    raise SkipNode


def setup(app):
    app.add_html_math_renderer("mathml", (inline, None), (display, None))
    app.config.html_math_renderer = "mathml"
    return {"parallel_read_safe": True}

# SPDX-License-Identifier: MIT
"""What the public headers say: every function with its declaration, and the text of every section.

The functions come out of lists (ORVGEN_LENGTH_FAMILIES and others), so that the headers are
preprocessed to see them; the text is that of the comments that begin with a title,
/* ---- Title ----.
"""

import re
import subprocess
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Parameter:
    type: str
    name: str


@dataclass(frozen=True)
class Function:
    name: str
    returns: str
    parameters: tuple

    @property
    def declaration(self):
        listed = ", ".join(f"{p.type} {p.name}" for p in self.parameters)
        return f"{self.returns} {self.name}({listed or 'void'})"


@dataclass(frozen=True)
class Section:
    title: str
    text: str


def functions(header: Path):
    """All functions that a header declares, in its order; those of headers that it includes apart."""
    done = subprocess.run(
        ["cc", "-E", "-xc", "-I", str(header.parent), "-DORVGEN_NODISCARD=", str(header)],
        check=True, capture_output=True, text=True)
    lines, own = [], False
    for line in done.stdout.splitlines():
        marker = re.match(r'# \d+ "(.*)"', line)
        if marker:
            own = Path(marker[1]).name == header.name
        elif own:
            lines.append(line)
    text = re.sub(r"__attribute__\(\(visibility\(\"default\"\)\)\)", "", " ".join(lines))
    found = []
    for returns, name, listed in re.findall(r"([\w ]+?[\s*]+)(orvg\w+)\s*\(([^()]*)\)\s*;", text):
        parameters = []
        for parameter in listed.split(","):
            words = re.fullmatch(r"\s*(.*?[\s*])(\w+)\s*", parameter)
            if words:
                parameters.append(Parameter(words[1].strip(), words[2]))
        found.append(Function(name, " ".join(returns.split()), tuple(parameters)))
    return found


def sections(header: Path):
    """The comments with a title, without the stars at the beginning of lines; first the head of the
    file, whose title is its first line."""
    text = header.read_text()
    head = re.search(r"/\* (orvgen[\w-]*: .*?)\*/", text, re.S)
    lines = [re.sub(r"^ \* ?", "", line) for line in head[1].splitlines()]
    found = [Section(lines[0], "\n".join(lines[1:]).strip("\n").rstrip())]
    for title, body in re.findall(r"/\* ---- (.+?) -+(.*?)\*/", text, re.S):
        lines = [re.sub(r"^ \* ?", "", line) for line in body.splitlines()]
        found.append(Section(title, "\n".join(lines).strip("\n").rstrip()))
    return found


# What paragraphs of the headers begin with, for emphasis.
TOPIC = re.compile(r"^([A-Z][a-z]+(?: [a-z]+){0,2}|Special values, rounding, exceptions)\. (?=\w)")


def blocks(text: str):
    """The text of a section as ("text" | "code" | topic, content): code is what is indented; a topic is
    what stands in front of a paragraph that tells of one thing ("Aliasing")."""
    found, kind, lines = [], "text", []

    def close():
        nonlocal lines
        if any(lines):
            margin = min(len(line) - len(line.lstrip()) for line in lines if line.strip())
            found.append((kind, "\n".join(line[margin:] for line in lines).strip("\n")))
        lines = []

    for line in text.splitlines():
        indented = line.startswith("   ")
        topic = TOPIC.match(line)
        if line.strip() and indented != (kind == "code"):
            close()
            kind = "code" if indented else "text"
        elif not line.strip() and kind != "code":
            close()
            kind = "text"
        if topic and not indented:
            close()
            kind, line = topic[1], line[topic.end():]
        lines.append(line)
    close()
    return found

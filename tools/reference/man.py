# SPDX-License-Identifier: MIT
"""man.py INCLUDE FOLDER: the manual pages, out of the text of the public headers: orvgen(7), a page of
section 3 for each family, and for each function a file that leads to its page.
"""

import os
import re
import sys
from dataclasses import dataclass
from datetime import datetime, timezone
from pathlib import Path

import header

# What each page of section 3 tells: the functions by pattern, one line, the header and the section of
# it, and of "Transforms of a fixed length" the paragraphs that begin with these words.
FIXED = "Transforms of a fixed length, 2 to 64"


@dataclass(frozen=True)
class Page:
    name: str
    pattern: str
    purpose: str
    header: str
    sections: tuple
    topics: tuple = ()
    record: bool = False  # tells of the version record


BATCH = ("Targets", "The lists", FIXED, "Complex transforms of split arrays, 2 to 64",
         "Walsh-Hadamard transform, orders 1 to 13", "DCT-IV")
PAGES = (
    Page("orvgDFTFwd_CToC", r"orvgDFT(Fwd|Inv)_CToC_", "complex discrete Fourier transform",
         "orvgen.h", (FIXED,), ("DFTFwd_CToC",)),
    Page("orvgDFTFwd_RToCCS", r"orvgDFTFwd_RTo", "discrete Fourier transform of real samples",
         "orvgen.h", (FIXED,), ("DFTFwd_RToCCS", "The _32f")),
    Page("orvgDFTInv_CCSToR", r"orvgDFTInv_\w+ToR_", "real samples from half a Fourier spectrum",
         "orvgen.h", (FIXED,), ("DFTFwd_RToCCS", "DFTInv_CCSToR", "The _32f")),
    Page("orvgHartley", r"orvgHartley_", "Hartley transform", "orvgen.h", (FIXED,),
         ("Hartley", "The _32f")),
    Page("orvgWHT", r"orvgWHT", "Walsh-Hadamard transform", "orvgen.h",
         ("Walsh-Hadamard transform, orders 1 to 13",)),
    Page("orvgDCT4", r"orvgDCT4", "discrete cosine transform of type IV", "orvgen.h", ("DCT-IV",)),
    Page("orvgBatch", r"orvgBatch", "arrays of short signal transforms", "orvgen_batch.h", BATCH),
    Page("orvgenGetLibVersion", r"orvgenGetLibVersion$", "version of the binary interface",
         "orvgen.h", (), record=True),
)


def date():
    """Of the sources, where a build is told it."""
    epoch = os.environ.get("SOURCE_DATE_EPOCH")
    day = datetime.fromtimestamp(int(epoch), timezone.utc) if epoch else datetime.now(timezone.utc)
    return f"{day:%B} {day.day}, {day.year}"


def escaped(text):
    text = text.replace("\\", "\\e")
    # Names are not hyphenated.
    text = re.sub(r"\b(?:orv|Orv|ORV)\w+", r"\\%\g<0>", text)
    return "\n".join("\\&" + line if line[:1] in (".", "'") else line for line in text.split("\n"))


def prose(text):
    """The text of a section: paragraphs, topics, code."""
    written = []
    for kind, content in header.blocks(text):
        if kind == "code":
            written += [".Bd -literal -offset indent", escaped(content), ".Ed"]
            continue
        # Sentences begin on lines of their own, so that troff sees where they end.
        lines = " ".join(content.split())
        lines = escaped(re.sub(r"([.!?]\)?) (?=[A-Z(\d])", r"\1\n", lines))
        if kind != "text":
            lines = f'.Em "{kind}" .\n' + lines
        written += [".Pp", lines]
    # Nothing stands between a heading and its first paragraph.
    return "\n".join(written[1:] if written[:1] == [".Pp"] else written)


def chosen(text, topics):
    """Of a section over several families the general paragraphs and those of the topics."""
    parts = re.split(r"\n\n(?=(?:DFT\w+|Hartley)[^\n]*(?:\(_|,$)|The _32f )", text)
    kept = [part for part in parts[1:] if part.startswith(topics)]
    if not topics:
        return text
    assert len(kept) == len(topics), f"the header has not {topics}"
    return "\n\n".join([parts[0], *kept])


def synopsis(functions):
    """Functions that take the number, in full; those that have it in their names once for all."""
    written, seen = [], set()
    for function in functions:
        name = re.sub(r"_\d+_(\d\dfc?)$", r"_\\fIN\\fP_\1", function.name)
        if name in seen:
            continue
        seen.add(name)
        arguments = [f'.Fa "{p.type} {p.name}"' for p in function.parameters]
        written += [f".Ft {function.returns}", f".Fo {name}", *(arguments or [".Fa void"]), ".Fc"]
    return "\n".join(written)


def page(page, include, functions, titles, release, day):
    said = {s.title: s.text for s in header.sections(include / page.header)}
    missing = [title for title in page.sections if title not in said]
    assert not missing, f"{page.header} has no section {missing}"
    own = [f for f in functions if re.match(page.pattern, f.name)]
    assert own, f"no function of {page.pattern}"
    body = []
    for title in page.sections:
        if len(page.sections) > 1:
            body.append(f".Ss {title}")
        body.append(prose(chosen(said[title], page.topics if title == FIXED else ())))
    if page.header == "orvgen_batch.h":
        body.insert(0, prose(header.sections(include / page.header)[0].text))
        library = "orvgenbatch"
    else:
        library = "orvgenm7"
    # With the number in the name: all of them, so that a search of the page finds them.
    numbered = [f.name for f in own if re.search(r"_\d+_\d\dfc?$", f.name)]
    if numbered:
        body += [".Ss Functions of one number", *(f".Fn {name} ," for name in numbered[:-1]),
                 f".Fn {numbered[-1]}"]
    if page.record:
        body.append(record(include))
    answers = "" if page.record else f".Sh RETURN VALUES\n{prose(statuses(include))}\n"
    others = "\n".join(f".Xr {name} 3 ," for name in titles if name != page.name)
    return f""".\\" Written by tools/reference/man.py from {page.header}.
.Dd {day}
.Dt {page.name.upper()} 3
.Os orvgen {release}
.Sh NAME
.Nm {page.name}
.Nd {page.purpose}
.Sh LIBRARY
.Pq Fl l Ns {library}
.Sh SYNOPSIS
.In {page.header}
{synopsis(own)}
.Sh DESCRIPTION
{chr(10).join(body)}
{answers}.Sh SEE ALSO
{others}
.Xr orvgen 7
"""


def record(include):
    """The version record, as its comment says, and its members."""
    text = (include / "orvgen.h").read_text()
    comment, members = re.search(r"/\* (A constant record.*?) \*/\n(typedef struct \{.*?\} \w+;)", text,
                                 re.S).groups()
    members = "\n".join("    " + line for line in members.split("\n"))
    return prose(re.sub(r"^ \* ?", "", comment, flags=re.M) + "\n\n" + members)


def statuses(include):
    """The statuses, as the comments beside them say."""
    text = (include / "orvgen.h").read_text()
    rows = re.findall(r"^    (orv(?:Ok|Err\w+)) = (-?\d+),? */\* (.*?) \*/", text, re.M)
    assert len(rows) == 5, "the statuses of the header"
    width = max(len(name) for name, _, _ in rows)
    return "What returns an\nOrvStatus gives one of these:\n\n" + "\n".join(
        f"    {name:{width}} {value:>3}  {meaning}" for name, value, meaning in rows)


def overview(include, titles, release, day):
    head, *others = header.sections(include / "orvgen.h")
    about = {"Element types", "Status", "Scaling flags", "Release"}
    body = [prose(head.text)]
    for section in others:
        if section.title in about:
            body += [f".Ss {section.title}", prose(section.text)]
    pages = ",\n".join(f".Xr {name} 3" for name in titles).replace(",\n", " ,\n")
    return f""".\\" Written by tools/reference/man.py from orvgen.h.
.Dd {day}
.Dt ORVGEN 7
.Os orvgen {release}
.Sh NAME
.Nm orvgen
.Nd {head.title.split(": ", 1)[1].split(",")[0]}
.Sh DESCRIPTION
{chr(10).join(body)}
.Ss Statuses
{prose(statuses(include))}
.Sh SEE ALSO
{pages}
"""


def main():
    include, folder = Path(sys.argv[1]), Path(sys.argv[2])
    release = re.search(r'ORVGEN_VERSION_TEXT "(.*)"', (include / "orvgen.h").read_text())[1]
    functions = {name: header.functions(include / name) for name in ("orvgen.h", "orvgen_batch.h")}
    titles = sorted((p.name for p in PAGES), key=str.lower)
    for section in ("man3", "man7"):
        (folder / section).mkdir(parents=True, exist_ok=True)
        for old in (folder / section).iterdir():
            old.unlink()
    (folder / "man7/orvgen.7").write_text(overview(include, titles, release, date()))
    for p in PAGES:
        text = page(p, include, functions[p.header], titles, release, date())
        (folder / f"man3/{p.name}.3").write_text(text)
        for function in functions[p.header]:
            # Also of the family without number and type: man orvgDFTInv_CToC.
            for name in {function.name, re.sub(r"(_\d+)?_\d\dfc?$", "", function.name)} - {p.name}:
                if re.match(p.pattern, function.name):
                    (folder / f"man3/{name}.3").write_text(f".so man3/{p.name}.3\n")


if __name__ == "__main__":
    main()

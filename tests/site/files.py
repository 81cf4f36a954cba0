# SPDX-License-Identifier: MIT
"""files.py SITE ROOT: what the files of the site promise: links that lead somewhere, nothing from
elsewhere, every function, small enough."""

import re
import sys
import tempfile
import unittest
from html import unescape
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urldefrag, urlsplit

SITE, ROOT = (Path(sys.argv.pop(1)).resolve() for _ in range(2))
sys.path[:0] = [str(ROOT / "tools/reference"), str(ROOT / "site")]

import accuracy  # noqa: E402
import explorer_data  # noqa: E402
import families  # noqa: E402
import header  # noqa: E402

MB = 1 << 20


class Document(HTMLParser):
    """Links, resources and anchors of a page."""

    def __init__(self, path):
        super().__init__()
        self.path, self.links, self.resources, self.anchors = path, [], [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            self.anchors.add(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        loads = {"link": "href", "script": "src", "img": "src", "iframe": "src", "source": "src"}.get(tag)
        if loads and values.get(loads) and values.get("rel") not in ("next", "prev", "index", "search"):
            self.resources.append(values[loads])


DOCUMENTS = {path: Document(path) for path in SITE.rglob("*.html")}


def target(document, link):
    """The file that a link of a page leads to."""
    return (document.path.parent / unquote(urlsplit(urldefrag(link)[0]).path)).resolve() \
        if urldefrag(link)[0] else document.path


class Files(unittest.TestCase):
    def test_links_lead_somewhere(self):
        self.assertGreater(len(DOCUMENTS), 20)
        names = {path.stem for path in (SITE / "explorer/data/kernels").glob("*.js")}
        broken = []
        for path, document in DOCUMENTS.items():
            for link in document.links:
                if urlsplit(link).scheme in ("http", "https"):
                    continue
                file, anchor = target(document, link), unquote(urldefrag(link)[1])
                if file == SITE / "explorer/index.html":
                    found = not anchor or anchor in names or anchor == "main"
                else:
                    found = file.exists() and (not anchor or file not in DOCUMENTS or
                                               anchor in DOCUMENTS[file].anchors)
                if not found:
                    broken.append(f"{path.relative_to(SITE)}: {link}")
        self.assertEqual(broken, [])

    def test_nothing_comes_from_elsewhere(self):
        for path, document in DOCUMENTS.items():
            for resource in document.resources:
                if not resource.startswith("data:"):
                    self.assertEqual(urlsplit(resource).scheme + urlsplit(resource).netloc, "", path)
                    self.assertTrue(target(document, resource).exists(), f"{path}: {resource}")
        for style in SITE.rglob("*.css"):
            self.assertNotRegex(style.read_text(), r"@import|url\((?!data:|file\.png|plus\.png|minus\.png)", style)

    def test_every_function_has_a_place(self):
        for name, count in (("orvgen.h", 1193), ("orvgen_batch.h", None)):
            functions = header.functions(ROOT / "include" / name)
            self.assertEqual(len(functions), count or len(functions))
            for function in functions:
                page = SITE / families.page_of(function.name)
                self.assertIn(f"c.{function.name}", DOCUMENTS[page].anchors, page)

    def test_every_kernel_has_its_data(self):
        functions = [f.name for f in header.functions(ROOT / "include/orvgen.h")]
        kernels = {name for name in functions if families.is_kernel(name)}
        self.assertEqual(len(kernels), 1160)
        self.assertEqual({path.stem for path in (SITE / "explorer/data/kernels").iterdir()}, kernels)

    def test_first_pages_are_small(self):
        for page in ("index.html", "explorer/index.html"):
            document = DOCUMENTS[SITE / page]
            files = {target(document, r) for r in document.resources if not r.startswith("data:")}
            self.assertLess(sum(file.stat().st_size for file in files | {document.path}), MB, page)

    def test_the_site_is_small(self):
        self.assertLess(sum(file.stat().st_size for file in SITE.rglob("*") if file.is_file()), 60 * MB)

    # As the benchmark writes it, two libraries and one of them without a figure.
    def test_measurements_come_from_the_benchmark(self):
        table = ("kernel,family,length,ratio FFTW,ratio KissFFT,cycles over bound,cycles,median,bound,FFTW,"
                 "FFTW median,KissFFT,KissFFT median,ratio of builds,v3 cycles,v3 median\n"
                 "orvgDFTFwd_CToC_64_32fc,DFTFwd_CToC_32fc,64,0.667,,1.1,150.0,151.0,136.0,100.0,101.0,,,1.2,125.0,126.0\n"
                 "orvgDCT4_32f of 64,DCT4_32f,64,1.5,,,100.0,101.0,,150.0,151.0,,,,,\n")
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "table.csv").write_text(table)
            libraries, measured = explorer_data.cycles(Path(folder) / "table.csv")
            self.assertEqual(explorer_data.cycles(Path(folder) / "none.csv"), ([], {}))
        self.assertEqual(libraries, ["FFTW", "KissFFT"])
        self.assertEqual(measured, {"orvgDFTFwd_CToC_64_32fc": {
            "cycles": 150.0, "coreBound": 136.0, "secondBuild": 125.0, "others": [100.0, None]}})

    def test_errors_are_those_of_their_page(self):
        errors = accuracy.errors((ROOT / "docs/accuracy.md").read_text())
        self.assertEqual(len(errors), 18 * 63 + 2 * 13)
        row = next(line for line in (ROOT / "docs/accuracy.md").read_text().splitlines() if line.startswith("| 13 |"))
        self.assertEqual(errors["orvgHartley_13_64f"], float(row.split("|")[-2]))

    # Examples are there as they are compiled and run by the tests.
    def test_examples_are_those_of_the_tree(self):
        pages = [unescape(re.sub(r"<[^>]*>", "", path.read_text())) for path in (SITE / "functions").glob("*.html")]
        shown = 0
        for source in (ROOT / "examples/small").glob("*.c*"):
            text = "\n".join(source.read_text().splitlines()[1:])
            shown += any(text in page for page in pages)
        self.assertGreaterEqual(shown, 6)


if __name__ == "__main__":
    unittest.main(verbosity=1)

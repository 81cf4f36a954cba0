# SPDX-License-Identifier: MIT
"""browser.py SITE KERNELS: opens the site from disk in Chromium, as a reader does, without a screen.

KERNELS is the folder of the assembly that the site was made of.
"""

import sys
import unittest
from pathlib import Path

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select, WebDriverWait

SITE, KERNELS = (Path(sys.argv.pop(1)).resolve() for _ in range(2))
EXPLORER = "explorer/index.html"

# The colours of text, with an example each, that are less than 4.5 times as bright or as dark as what they stand on.
FAINT_TEXT = r"""
const parts = (colour) => (colour.match(/[\d.]+/g) || []).map(Number);
const linear = (c) => c / 255 <= .04045 ? c / 255 / 12.92 : ((c / 255 + .055) / 1.055) ** 2.4;
const luminance = ([r, g, b]) => .2126 * linear(r) + .7152 * linear(g) + .0722 * linear(b);
const under = (element) => {
  for (; element; element = element.parentElement) {
    const ground = parts(getComputedStyle(element).backgroundColor);
    if (ground.length === 3) return luminance(ground);
  }
  return 1;
};
const faint = new Map();
const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
while (texts.nextNode()) {
  const element = texts.currentNode.parentElement, text = texts.currentNode.textContent.trim();
  if (!text || element.closest("svg, script, style") || !element.checkVisibility()) continue;
  const colour = getComputedStyle(element).color;
  const [low, high] = [luminance(parts(colour)), under(element)].sort((a, b) => a - b);
  if ((high + .05) / (low + .05) < 4.5)
    faint.set(`${element.tagName} ${element.className} ${colour}`, text.slice(0, 30));
}
return [...faint];
"""


def browser():
    options = Options()
    # Continuous integration runs as root and without a graphics card.
    for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
        options.add_argument(flag)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.driver = browser()

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()

    def setUp(self):
        self.size(1280, 900)
        self.media()
        self.driver.get_log("browser")

    # Every message of a page is a failure, also that of a file that is not there.
    def tearDown(self):
        self.assertEqual([entry["message"] for entry in self.driver.get_log("browser")], [])

    def size(self, width, height):
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})

    def media(self, scheme="light"):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open(self, page, shown=None):
        self.driver.get("about:blank")
        self.driver.get(f"{SITE.as_uri()}/{page}")
        if shown:
            self.wait_for_kernel(shown)

    def wait_for_kernel(self, name):
        WebDriverWait(self.driver, 20).until(
            lambda d: d.execute_script("return document.getElementById('page')?.dataset.shown") == name)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def script(self, text):
        return self.driver.execute_script(text)


class List(Page):
    def rows(self):
        return self.script("return [...document.querySelectorAll('#kernels tbody th')].map(e => e.textContent)")

    def test_holds_all_kernels_and_all_other_functions(self):
        self.open(EXPLORER)
        self.assertEqual(len(set(self.rows())), 1160)
        self.assertEqual(len(self.all("#others a")), 33)

    def test_is_searched_and_filtered(self):
        self.open(EXPLORER)
        self.one("#search").send_keys("RToPack_1?_64f")
        self.assertEqual(self.rows(), [f"DFTFwd_RToPack_{n}_64f" for n in range(10, 20)])
        self.one("#filter button").click()
        WebDriverWait(self.driver, 5).until(lambda d: len(self.rows()) == 1160)
        Select(self.one("#filter-transform")).select_by_value("Hartley")
        Select(self.one("#filter-type")).select_by_value("32f")
        self.assertEqual(len(self.rows()), 63)
        self.one("#filter-length").send_keys("48")
        self.assertEqual(self.rows(), ["Hartley_48_32f"])
        self.assertEqual(self.one("#count").text, "1 of 1,160 kernels")

    def test_is_sorted_by_the_keyboard(self):
        self.open(EXPLORER)
        head = self.one("#kernels [data-key=instructions]")
        head.find_element(By.TAG_NAME, "button").send_keys(Keys.ENTER)
        self.assertEqual(head.get_attribute("aria-sort"), "ascending")
        head.find_element(By.TAG_NAME, "button").send_keys(Keys.ENTER)
        self.assertEqual(head.get_attribute("aria-sort"), "descending")
        counts = self.script("return [...document.querySelectorAll('#kernels tbody tr')]"
                             ".map(r => Number(r.cells[6].textContent.replace(',', '')))")
        self.assertEqual(counts, sorted(counts, reverse=True))


class Kernel(Page):
    def test_is_reached_from_the_list(self):
        self.open(EXPLORER)
        self.one("#kernels tbody a").click()
        self.wait_for_kernel("orvgDFTFwd_CToC_2_32fc")

    # One of each way in which kernels are made.
    def test_shows_plan_flow_operations_and_assembly(self):
        for name, points in (("orvgDFTFwd_CToC_59_32fc", 59), ("orvgDFTInv_CToC_64_64fc", 64),
                             ("orvgDFTFwd_RToCCS_30_32f", 30), ("orvgDFTInv_PermToR_45_64f", 45),
                             ("orvgHartley_13_64f", 13), ("orvgWHT_5_32f", 32)):
            with self.subTest(name):
                self.open(f"{EXPLORER}#{name}", name)
                self.assertIn(f"{points} points", self.one("#page > p").text)
                self.assertTrue(self.all(".tree li"))
                self.assertGreater(len(self.all(".flow circle")), 2 * points)
                self.assertGreater(len(self.all(".flow .band")), 1)
                assembly = self.script("return document.querySelectorAll('.assembly code')[1].textContent")
                self.assertIn(f"{name}:\n\t.cfi_startproc\n", assembly)
                self.assertIn("\tret\n", assembly)
                self.assertIn("lower bound", self.one("[aria-label*='literature']").text)

    def test_has_the_assembly_of_the_build_to_the_letter(self):
        name = "orvgDFTFwd_CToC_12_64fc"
        self.open(f"{EXPLORER}#{name}", name)
        text = self.script(f"return explorer.assembly.textOf(explorer.byName.get('{name}'),"
                           f"explorer.pages.get('{name}').assembly)")
        self.assertEqual(text, (KERNELS / f"{name}.s").read_text())

    def test_with_passes_has_no_drawing_but_says_so(self):
        self.open(f"{EXPLORER}#orvgWHT_13_64f", "orvgWHT_13_64f")
        self.assertEqual(self.all(".flow"), [])
        self.assertIn("layers 0 to 6", self.one(".tree").text)

    def test_shows_one_stage_alone(self):
        self.open(f"{EXPLORER}#orvgDFTFwd_CToC_15_64fc", "orvgDFTFwd_CToC_15_64fc")
        button = self.one("#flow ~ * td button, #flow ~ * th button")
        button.send_keys(Keys.SPACE)
        self.assertEqual(button.get_attribute("aria-pressed"), "true")
        self.assertGreater(len(self.all(".flow circle.on")), 0)
        self.assertGreater(len(self.all(".assembly .run.on")), 0)
        stages = self.script("return [...new Set([...document.querySelectorAll('.run.on')]"
                             ".map(e => e.dataset.name))]")
        self.assertEqual(len(stages), 1)
        button.send_keys(Keys.SPACE)
        self.assertEqual(self.all(".flow.some"), [])

    def test_is_walked_by_the_keyboard(self):
        self.open(f"{EXPLORER}#orvgDFTFwd_RToCCS_8_64f", "orvgDFTFwd_RToCCS_8_64f")
        flow = self.one(".flow")
        self.script("document.querySelector('.flow').focus()")
        self.assertIn("src[0]", self.one(".status").text)
        flow.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("sum of src[0] and", self.one(".status").text)

    def test_is_chosen_by_transform_length_and_type(self):
        self.open(f"{EXPLORER}#orvgDFTFwd_CToC_15_64fc", "orvgDFTFwd_CToC_15_64fc")
        self.one("#next").click()
        self.wait_for_kernel("orvgDFTFwd_CToC_16_64fc")
        Select(self.one("#choose-transform")).select_by_value("Hartley")
        self.wait_for_kernel("orvgHartley_16_64f")
        Select(self.one("#choose-length")).select_by_value("60")
        self.wait_for_kernel("orvgHartley_60_64f")
        Select(self.one("#choose-type")).select_by_value("32f")
        self.wait_for_kernel("orvgHartley_60_32f")

    def test_that_is_not_there_is_said(self):
        self.open(f"{EXPLORER}#orvgDFTFwd_CToC_65_64fc")
        self.assertIn("There is no kernel", self.one("#page").text)


class Reference(Page):
    def test_draws_its_formulas_and_layouts(self):
        for page in ("complex", "real-forward", "real-inverse", "hartley", "wht", "dct4", "batch"):
            with self.subTest(page):
                self.open(f"functions/{page}.html")
                heights = self.script("return [...document.querySelectorAll('math[display=block]')]"
                                      ".map(e => e.getBoundingClientRect().height)")
                self.assertTrue(heights and min(heights) > 20, heights)
                self.assertTrue(self.all(".picture svg rect"))
                self.assertNotIn("$", self.one("main").text)

    def test_finds_words_from_disk(self):
        self.open("search.html?q=orvgHartley_48_32f")
        WebDriverWait(self.driver, 20).until(lambda d: self.all("#search-results li a"))
        links = [link.get_attribute("href") for link in self.all("#search-results li a")]
        self.assertTrue(any("functions/hartley.html" in link for link in links), links)

    def test_leads_to_the_explorer(self):
        self.open("functions/complex.html")
        self.script("document.getElementById('c.orvgDFTInv_CToC_17_64fc').click()")
        self.wait_for_kernel("orvgDFTInv_CToC_17_64fc")


class Everywhere(Page):
    PAGES = (EXPLORER, f"{EXPLORER}#orvgDFTFwd_CToC_30_64fc", "index.html", "functions/wht.html",
             "docs/plans.html", "functions/header.html")

    def test_fits_a_phone(self):
        self.size(360, 740)
        for page in self.PAGES:
            with self.subTest(page):
                self.open(page, page.partition("#")[2])
                self.assertGreater(len(self.one("main").text), 100)
                self.assertLessEqual(self.script("return document.documentElement.scrollWidth"), 360)

    def test_is_dark_where_the_reader_wants_it(self):
        def luminance():
            colour = self.script("return getComputedStyle(document.body).backgroundColor")
            return sum(int(part) for part in colour.strip("rgba()").split(",")[:3])
        for page in self.PAGES:
            with self.subTest(page):
                self.media("light")
                self.open(page)
                self.assertGreater(luminance(), 600)
                self.media("dark")
                self.open(page)
                self.assertLess(luminance(), 150)

    # The ratio that makes text legible to weak eyes, in both schemes.
    def test_has_text_that_stands_out(self):
        for scheme in ("light", "dark"):
            for page in (*self.PAGES, "functions/real-forward.html", "docs/python.html", "search.html?q=wht"):
                with self.subTest(f"{scheme}: {page}"):
                    self.media(scheme)
                    self.open(page, page.partition("#")[2])
                    self.assertEqual(self.script(FAINT_TEXT), [])

    def test_names_every_control(self):
        for page in self.PAGES:
            self.open(page, page.partition("#")[2])
            nameless = self.script(
                "return [...document.querySelectorAll('input, select, button, a, [tabindex=\"0\"]')]"
                ".filter(e => e.checkVisibility()).filter(e => !(e.labels?.length ||"
                " e.getAttribute('aria-label') || e.getAttribute('aria-labelledby') ||"
                " e.textContent.trim())).map(e => e.outerHTML)")
            self.assertEqual(nameless, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)

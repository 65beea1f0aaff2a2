"""The page of `pxrom report` in headless Chromium: its numbers are those of `pxrom eval`.

The command is compiled with one mathematical library and the page with another, so that functions
such as exp may differ in the last digits: numbers are compared to 1e-12. script/test-report runs
this; PXROM_COMMAND names the command and PXROM_PICTURES a folder for pictures.
"""

import json
import math
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

from browser import chromium
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMAND = os.environ["PXROM_COMMAND"]
PICTURES = pathlib.Path(os.environ["PXROM_PICTURES"])
sys.path.append(str(ROOT / "tests/support"))
from expensive_model import expensive_model  # noqa: E402

BEAM = ROOT / "examples/beam.pxdb"
CONSTANT = ROOT / "examples/constant.pxdb"
TOLERANCE = 1e-12

HOSTILE = '</script><script>hostile=1</script><img src=x onerror="hostile=1">\u2028&lt;<!--'


def pxrom(*arguments) -> subprocess.CompletedProcess:
    return subprocess.run([COMMAND, *map(str, arguments)], capture_output=True, text=True)


def from_words(output: dict) -> str:
    if output["error"] is None:
        return ""
    whose = output["error_origin"]
    if whose == "one surface":
        whose = f"surface {output['error_surface'] + 1} only"
    return f"from {whose}" + (", first order" if output["first_order"] else "")


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.browser = cls.enterClassContext(chromium())
        cls.browser.shape(1200, 1320)

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])
        self.assertEqual(self.browser.requests(), [])

    # ---- What a person does ----

    def open(self, model: pathlib.Path) -> None:
        self.model = model
        page = self.folder / (model.stem + ".html")
        written = pxrom("report", model, "-o", page)
        self.assertEqual((written.returncode, written.stdout, written.stderr), (0, "", ""))
        self.browser.open(page)
        self.browser.wait("document.querySelector('#live-body:not([hidden])') !== null")

    def open_text(self, name: str, text: str) -> None:
        path = self.folder / name
        path.write_text(text, encoding="utf-8", newline="")
        self.open(path)

    def element(self, selector: str):
        return self.browser.driver.find_element(By.CSS_SELECTOR, selector)

    def type_input(self, index: int, text: str) -> None:
        self.element(f"#input-{index}").send_keys(Keys.CONTROL, "a", Keys.NULL, text, Keys.TAB)

    def press(self, index: int, *keys: str) -> None:
        self.element(f".control:nth-of-type({index + 1}) input[type=range]").send_keys(*keys)

    def choose(self, index: int, value: int) -> None:
        self.browser.run(
            "const s = document.querySelectorAll('#combination select')[arguments[0]];"
            "s.value = arguments[1]; s.dispatchEvent(new Event('change'))", index, value)

    # ---- What the page then says ----

    def rows(self) -> list:
        """ID, shown value, all digits of it, shown error, all digits of it, unit."""
        return self.browser.run(
            "return [...document.querySelectorAll('#answers tbody tr')].map((row) => {"
            "const [value, error] = ['.value', '.error'].map((part) => row.querySelector(part));"
            "return [row.querySelector('.id').textContent, value.textContent, value.title,"
            " error.textContent, error.title, row.lastChild.textContent]})")

    def texts(self, selector: str) -> list:
        return self.browser.run(
            "return [...document.querySelectorAll(arguments[0])].map((part) => part.textContent)",
            selector)

    def notes(self) -> list:
        return self.browser.run(
            "return [...document.querySelectorAll('#notes li')].map((note) => note.textContent)")

    def command_line(self) -> list:
        """The words after `pxrom eval FILE` that the page offers to copy."""
        words = shlex.split(self.element("#command").get_attribute("textContent"))
        self.assertEqual(words[:3], ["pxrom", "eval", self.model.name])
        return words[3:]

    def point(self) -> dict:
        return dict(word.rsplit("=", 1) for word in self.command_line())

    def assert_near(self, text: str, expected: float) -> None:
        self.assertTrue(math.isclose(float(text), expected, rel_tol=TOLERANCE), (text, expected))

    def check_numbers(self) -> None:
        """The table shows what the command prints for the point."""
        said = pxrom("eval", self.model, *self.command_line(), "--json")
        self.assertEqual(said.returncode, 0, said.stderr)
        outputs = json.loads(said.stdout)["outputs"]
        rows = self.rows()
        self.assertEqual([row[0] for row in rows], [output["id"] for output in outputs])
        for (_, value, all_value, error, all_error, unit), output in zip(rows, outputs):
            self.assert_near(all_value, output["value"])
            self.assertEqual(float(value), float(f"{float(all_value):.6g}"))
            self.assertEqual(unit, output["unit"])
            if output["error"] is None:
                self.assertEqual((error, all_error), ("none", "no predicted error"))
                continue
            self.assert_near(all_error, output["error"])
            self.assertEqual(float(error), float(f"{float(all_error):.3g}"))
        self.assertEqual(self.texts("#answers .origin"), [from_words(output) for output in outputs])

    # ---- Tests ----

    def test_numbers_of_a_study(self):
        self.open(BEAM)
        self.check_numbers()
        self.press(2, Keys.ARROW_RIGHT * 7)
        self.assertEqual(self.point()["L"], "1.535")
        self.press(0, Keys.HOME)
        self.assertEqual(self.point()["h"], "60")
        self.check_numbers()
        for holes, material in ((0, 2), (2, 1), (4, 2)):
            self.choose(0, holes)
            self.choose(1, material)
            for index, value in enumerate(("91.2345678901234", "1.5e3", "1.0625", "33.3")):
                self.type_input(index, value)
            point = self.point()
            self.assertEqual((point["Holes"], point["Material"]), (str(holes), str(material)))
            self.assertEqual((point["h"], point["F"]), ("91.2345678901234", "1500"))
            self.check_numbers()

    def test_numbers_of_each_family(self):
        for model in sorted((ROOT / "tests/data/models").glob("*/model.pxdb")):
            with self.subTest(model.parent.name):
                self.open(model)
                self.check_numbers()
                sliders = len(self.browser.driver.find_elements(By.CSS_SELECTOR, "input[type=range]"))
                for index in range(sliders):
                    self.press(index, Keys.ARROW_LEFT * (3 + 5 * index))
                self.check_numbers()

    def test_all_digits(self):
        self.open(BEAM)
        self.element("#all-digits").click()
        for _, value, all_value, error, all_error, _ in self.rows():
            self.assertEqual((value, error), (all_value, all_error))

    def test_slices_move_the_point(self):
        self.open(BEAM)
        self.browser.wait("document.querySelectorAll('.curve[d]').length === 12")
        bands = self.browser.run(
            "return [...document.querySelectorAll('.profile')].map((block) =>"
            "[...block.querySelectorAll('.band')].every((band) => band.getAttribute('d') !== ''))")
        self.assertEqual(bands, [True, True, True])
        picture = self.element(".profile:nth-of-type(1) svg:nth-of-type(2) .frame")
        half = picture.rect["width"] / 2
        ActionChains(self.browser.driver).move_to_element(picture).click_and_hold().move_by_offset(
            int(half / 2), 3).release().perform()
        self.assertAlmostEqual(float(self.point()["F"]), 4000, delta=50)
        self.assertEqual(self.point()["h"], "90")
        slider = self.element(".control:nth-of-type(2) input[type=range]")
        self.assertAlmostEqual(int(slider.get_attribute("value")), 150, delta=3)
        self.check_numbers()
        # The dot lies on the curve.
        self.browser.wait("""[...document.querySelectorAll('.cells svg')].every((cell) => {
          const curve = cell.querySelector('.curve'), dot = cell.querySelector('.dot');
          const x = Number(dot.getAttribute('cx')), y = Number(dot.getAttribute('cy'));
          const points = curve.getAttribute('d').slice(1).split('L').map((p) => p.split(' ').map(Number));
          const k = points.findIndex((p) => p[0] >= x - 0.01);
          return Math.min(...points.slice(Math.max(0, k - 1), k + 1).map((p) => Math.abs(p[1] - y))) < 4;
        })""")

    def test_statuses_in_words(self):
        self.open(BEAM)
        self.type_input(2, "2.5")
        self.assertEqual(
            self.notes()[0], "L lies outside its bounds, 1 to 2 m: the surfaces extrapolate")
        self.check_numbers()
        said = pxrom("eval", self.model, *self.command_line()).stderr
        self.assertEqual(said, "".join(f"pxrom eval: note: {note}\n" for note in self.notes()))
        self.assertEqual(self.texts("#answers .outside"), ["outside the samples: L"] * 3)

        self.type_input(2, "1,5")
        field = self.element("#input-2")
        self.assertEqual(field.get_attribute("aria-invalid"), "true")
        self.assertEqual(self.point()["L"], "2.5")
        self.element("#reset").click()
        self.assertEqual((field.get_attribute("value"), self.notes()), ("1.5", []))
        self.assertEqual(self.texts("#answers .outside"), [""] * 3)

    def test_the_unsampled_parts_are_shaded(self):
        self.open(BEAM)
        self.type_input(2, "3")
        said = pxrom("eval", self.model, *self.command_line(), "--json")
        [sampled] = json.loads(said.stdout)["outputs"][1]["outside_samples"]
        shares = [float(self.browser.run(
            "return document.querySelectorAll('.track')[2].style.getPropertyValue(arguments[0])",
            name)) for name in ("--low", "--high")]
        for share, end in zip(shares, (sampled["lowest"], sampled["highest"])):
            self.assertAlmostEqual(1 + share, end, places=9)
        # The picture of mass over L goes from 1 to 3.
        self.browser.wait("document.querySelectorAll('.curve[d]').length === 12")
        left, width, *shaded = self.browser.run(
            "const cell = document.querySelectorAll('.profile')[1].querySelectorAll('svg')[2];"
            "return [...cell.querySelectorAll('.frame, .unsampled')].flatMap((part) =>"
            "[part.x.baseVal.value, part.width.baseVal.value])")
        ends = [1 + 2 * (end - left) / width
                for end in (shaded[0], shaded[0] + shaded[1], shaded[2], shaded[2] + shaded[3])]
        for end, expected in zip(ends, (1, sampled["lowest"], sampled["highest"], 3)):
            self.assertAlmostEqual(end, expected, places=5)

    def test_an_output_that_fails(self):
        self.open(ROOT / "tests/data/models/mls_np_franke_linear_gauss/model.pxdb")
        self.type_input(0, "1e300")
        said = pxrom("eval", self.model, *self.command_line())
        self.assertEqual((said.returncode, said.stderr), (1, f"pxrom eval: {self.notes()[0]}\n"))
        self.assertEqual([row[1:5] for row in self.rows()], [["could not be evaluated", "", "", ""]])
        self.element("#reset").click()
        self.check_numbers()

    def test_a_model_that_costs_too_much(self):
        self.open_text("expensive.pxdb", expensive_model(40))
        said = pxrom("eval", self.model, *self.command_line(), "--limit", "1e8")
        reason = said.stderr.removeprefix("pxrom eval: ").removesuffix(" --limit sets it.\n")
        self.assertEqual(
            self.notes(), ["this page does not evaluate the model on its own. " + reason])
        self.assertEqual([row[1] for row in self.rows()], [""])
        self.assertFalse(self.element("#profiles").is_displayed())
        self.type_input(0, "3")  # and it stays at hand
        self.element("#evaluate-anyway").click()
        self.check_numbers()
        *notes, last = self.notes()
        said = pxrom("eval", self.model, *self.command_line()).stderr
        self.assertEqual("".join(f"pxrom eval: note: {note}\n" for note in notes), said)
        self.assertEqual(last, "the pictures are left out: they would take too long")
        self.assertFalse(self.element("#evaluate-anyway").is_displayed())

        # The pictures of a model that takes some time are drawn piece by piece.
        self.open_text("slow.pxdb", expensive_model(16))
        self.browser.wait("document.querySelectorAll('.curve[d]').length === 16", 120)
        self.check_numbers()

    def test_a_combination_that_was_not_fitted(self):
        text = BEAM.read_text(encoding="utf-8")
        lines = [line for line in text.split("\n") if "{Material;2},{Holes;4}" not in line]
        self.open_text("five.pxdb", "\n".join(lines))
        self.choose(0, 4)
        self.choose(1, 2)
        said = pxrom("eval", self.model, *self.command_line())
        self.assertEqual((said.returncode, said.stderr), (1, f"pxrom eval: {self.notes()[0]}\n"))
        self.assertEqual([row[1] for row in self.rows()], ["", "", ""])
        self.assertFalse(self.element("#profiles").is_displayed())
        self.choose(1, 1)
        self.check_numbers()

    def test_hostile_names(self):
        text = CONSTANT.read_text(encoding="utf-8")
        for place in ("{x;Length}", "{y;Force}", "{x;m}", "{y;N}"):
            self.assertIn(place, text)
            text = text.replace(place, f"{place[:3]}{HOSTILE}}}")
        name = "it's <b>&$(x).pxdb"
        self.open_text(name, text)
        self.check_numbers()
        self.assertTrue(self.browser.run("return typeof hostile === 'undefined'"))
        self.assertEqual(self.browser.run("return document.querySelectorAll('img, b').length"), 0)
        for selector in ("#input-list td:nth-child(2)", "#output-list td:nth-child(4)"):
            self.assertEqual(self.element(selector).get_attribute("textContent"), HOSTILE)
        self.assertEqual(self.element(".control .caption").get_attribute("textContent"), f" {HOSTILE}")
        self.assertEqual(self.element("h1").text, name[:-5])

    def test_bounds_whose_distance_is_no_double(self):
        text = CONSTANT.read_text(encoding="utf-8")
        text = text.replace("LowerBounds={x;0}", "LowerBounds={x;-1.7e308}")
        self.open_text("wide.pxdb", text.replace("UpperBounds={x;1}", "UpperBounds={x;1.7e308}"))
        self.assertEqual(self.point(), {"x": "0"})
        self.press(0, Keys.HOME)
        self.assertEqual(self.point(), {"x": "-1.7e+308"})
        self.press(0, Keys.ARROW_RIGHT * 100)
        self.assertEqual(self.point(), {"x": "0"})
        self.press(0, Keys.ARROW_RIGHT)
        self.assertEqual(self.point(), {"x": "1.7e+306"})
        self.check_numbers()
        drawn = self.browser.run("return document.querySelector('.curve').getAttribute('d')")
        self.assertEqual(drawn.count("L"), 60)
        self.assertNotIn("NaN", self.browser.run("return document.querySelector('#profiles').innerHTML"))

    def test_no_character_changes_the_direction(self):
        text = CONSTANT.read_text(encoding="utf-8")
        text = text.replace("IDs=x,", "IDs=x\u202ey,").replace("{x;", "{x\u202ey;")
        self.open_text("turned.pxdb", text.replace("Length", "a\u2066b"))
        shown = self.browser.run("return document.body.innerText")
        self.assertIn("x\\u202Ey", shown)
        self.assertIn("a\\u2066b", shown)
        page = self.browser.run("return document.documentElement.innerHTML")
        self.assertNotRegex(page, "[\u202e\u2066]")
        # The command that is offered means the name all the same.
        command = self.element("#command").get_attribute("textContent")
        said = subprocess.run(["bash", "-c", command.replace("pxrom", shlex.quote(COMMAND), 1)],
                              cwd=self.folder, capture_output=True, text=True)
        self.assertEqual((said.returncode, said.stderr), (0, ""))

    def test_exceptions_of_the_library_become_sentences(self):
        page = self.folder / "damaged.html"
        page.write_text(pxrom("report", CONSTANT).stdout.replace("DataType=8", "DataType=99"))
        self.browser.open(page)
        state = "document.getElementById('live-state').textContent"
        self.browser.wait(f"{state}.includes('can\\'t evaluate')")
        damaged = self.folder / "damaged.pxdb"
        damaged.write_text(CONSTANT.read_text().replace("DataType=8", "DataType=99"))
        reason = pxrom("eval", damaged, "x=0").stderr.split("is a damaged database: ")[1]
        self.assertEqual(
            self.browser.run(f"return {state}"),
            "This page can't evaluate the model: " + reason.rstrip())

    def test_nothing_runs_or_loads_but_the_page(self):
        """The policy of the page blocks scripts and images that got into it."""
        self.open(CONSTANT)
        self.browser.run(
            "const s = document.createElement('script'); s.textContent = 'hostile = 1';"
            "document.body.append(s);"
            "document.body.append(Object.assign(new Image(), {src: 'http://localhost:9/x.png'}))")
        self.browser.wait("document.images[0]?.complete")
        self.assertTrue(self.browser.run("return typeof hostile === 'undefined'"))
        blocked = self.browser.complaints()
        self.assertEqual(len(blocked), 2, blocked)
        self.assertTrue(all("Content Security Policy" in line for line in blocked), blocked)
        self.assertEqual(self.browser.requests(), ["http://localhost:9/x.png"])  # was refused

    def test_pictures(self):
        """For people to look at; docs/pictures has one of them."""
        for name, width, dark in (("light", 1200, False), ("dark", 1200, True), ("phone", 390, False)):
            self.browser.shape(width, 1000, dark)
            self.open(BEAM)
            self.choose(0, 2)
            self.press(2, Keys.ARROW_RIGHT * 30)
            self.browser.run("document.activeElement.blur(); scrollTo(0, 0)")
            self.browser.wait("document.querySelectorAll('.curve[d]').length === 12")
            self.assertEqual(self.browser.run("return document.documentElement.scrollWidth"), width)
            end = self.browser.run(
                "return document.getElementById('profiler').getBoundingClientRect().bottom")
            self.browser.shape(width, math.ceil(end) + 24, dark)
            self.browser.picture(PICTURES / f"{name}.png")
        self.browser.shape(1200, 1320)


if __name__ == "__main__":
    unittest.main()

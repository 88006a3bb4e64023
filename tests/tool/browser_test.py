"""Opens pages of kord show --html in a headless Chromium and uses them as a person would.

    browser_test.py KORD SOURCES SCREENSHOTS

Ends with 77, and says so, where there is no Chromium with its driver: scripts/browser installs them. Leaves
screenshots to look at in the folder SCREENSHOTS.
"""

import base64
import json
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.request

KORD, SOURCES, SCREENSHOTS = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
EXPECTED = SOURCES / "tests/runs/expected"
SKIPPED = 77
MTMS = "9999-B2C*7ABCD12"


class Browser:
    """A Chromium behind its driver's WebDriver interface."""

    FLAGS = ("--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --hide-scrollbars "
             "--disable-background-networking --disable-component-update --disable-sync").split()

    def __init__(self, width=1400, height=1000, scheme="light"):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.driver = subprocess.Popen(["chromedriver", f"--port={self.port}"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.base = f"http://127.0.0.1:{self.port}"
        self.wait_for_driver()
        options = {"args": [*self.FLAGS, f"--user-data-dir={self.profile.name}"]}
        wanted = {"goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.post("/session", {"capabilities": {"alwaysMatch": wanted}})
        self.base += f"/session/{session['sessionId']}"
        self.command("Emulation.setDeviceMetricsOverride",
                     width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def wait_for_driver(self):
        for _ in range(100):
            try:
                return self.request("GET", "/status")
            except (urllib.error.URLError, ConnectionError):
                time.sleep(0.1)
        raise RuntimeError("chromedriver does not answer")

    def request(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"},
                                         method=method)
        with urllib.request.urlopen(request, timeout=120) as answer:
            return json.load(answer)["value"]

    def post(self, path, body):
        return self.request("POST", path, body)

    def command(self, name, **parameters):
        return self.post("/goog/cdp/execute", {"cmd": name, "params": parameters})

    def open(self, page):
        self.post("/url", {"url": pathlib.Path(page).resolve().as_uri()})

    def run(self, script, *arguments):
        return self.post("/execute/sync", {"script": script, "args": list(arguments)})

    def find(self, selector):
        return next(iter(self.post("/element", {"using": "css selector", "value": selector}).values()))

    def click(self, selector):
        self.post(f"/element/{self.find(selector)}/click", {})

    def type(self, selector, text):
        self.post(f"/element/{self.find(selector)}/value", {"text": text})

    def press(self, *keys):
        actions = [action for key in keys for action in ({"type": "keyDown", "value": key},
                                                         {"type": "keyUp", "value": key})]
        self.post("/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def messages(self):
        return self.post("/se/log", {"type": "browser"})

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent", selector)

    def count(self, selector):
        return self.run("return document.querySelectorAll(arguments[0]).length", selector)

    def wait_until(self, script, *arguments):
        for _ in range(100):
            if self.run(script, *arguments):
                return
            time.sleep(0.05)
        raise AssertionError(f"never true: {script}")

    def screenshot(self, name):
        SCREENSHOTS.mkdir(parents=True, exist_ok=True)
        (SCREENSHOTS / name).write_bytes(base64.b64decode(self.request("GET", "/screenshot")))

    def close(self):
        try:
            self.request("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.profile.cleanup()


DOWN, RIGHT, ENTER, ESCAPE = "\ue015", "\ue014", "\ue007", "\ue00c"


def page_of(document, folder):
    page = pathlib.Path(folder) / "page.html"
    subprocess.run([KORD, "show", document, "--html", page], check=True)
    return page


def collect(folder, *sizes):
    """The document of a run on a facility of that size."""
    facility = pathlib.Path(folder) / "facility.json"
    with facility.open("wb") as output:
        subprocess.run([KORD, "make", *sizes], check=True, stdout=output)
    root = pathlib.Path(folder) / "root"
    done = subprocess.run([KORD, "run", "--facility", facility, "--root", root, "--", "addTarnKord", "x", MTMS],
                          stdout=subprocess.DEVNULL)
    if done.returncode != 3:
        raise RuntimeError(f"the collector ended with {done.returncode}")
    return root / f"var/adm/stockmere/VPD/addTarnKord_{MTMS}.xml"


class PageTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def open(self, document, **how):
        browser = Browser(**how)
        self.addCleanup(browser.close)
        browser.open(page_of(document, self.folder))
        return browser

    def assert_quiet(self, browser):
        self.assertEqual(browser.messages(), [])


class BundledFacility(PageTest):
    document = EXPECTED / "facility.xml"

    def test_shows_what_there_is(self):
        browser = self.open(self.document)
        self.assert_quiet(browser)
        self.assertEqual(browser.run("return document.title"), "Inventory of 9999-B2C-7ABCD12")
        self.assertEqual(browser.count("#rack-figures figure"), 2)
        self.assertEqual(browser.count("svg .storageEnclosure"), 8)
        self.assertEqual(browser.count("svg .drive"), 128)
        self.assertEqual(browser.count("#drawer-figures figure"), 8)
        self.assertEqual(browser.count("#partition-cards article"), 2)
        self.assertEqual(browser.count(".pool"), 6)
        self.assertEqual(browser.count(".rank"), 12)
        self.assertEqual(browser.count(".array"), 12)
        self.assertEqual(browser.count(".stray"), 0)
        self.assertIn("128drives", browser.text("#summary"))
        self.assertIn("web-06", browser.text(".hosts"))
        browser.screenshot("light.png")

    def test_racks_are_to_scale(self):
        browser = self.open(self.document)
        drawn = browser.run("""
            const size = (selector) => { const box = document.querySelector(selector).getBoundingClientRect();
                                         return box.width / box.height; };
            return [size('svg .storageEnclosure'), size('svg .bay')]""")
        self.assertAlmostEqual(drawn[0], 482.6 / (3 * 44.45), delta=0.1)
        self.assertAlmostEqual(drawn[1], 482.6 / (42 * 44.45), delta=0.01)

    def test_a_click_shows_every_property_of_the_part(self):
        browser = self.open(self.document)
        browser.click("svg .drive[aria-label*='AB100001-P1-D7,']")
        self.assertFalse(browser.run("return document.getElementById('details').hidden"))
        shown = browser.run("return [...document.querySelectorAll('#details tbody tr')].map("
                            "(row) => [...row.children].map((cell) => cell.textContent))")
        text = self.document.read_text()
        resource = text[text.index('uniqueId="U1234.5X6.AB100001-P1-D7"'):].split("</Resource>")[0]
        in_document = re.findall(r'name="(..)" displayName="([^"]*)">\n..\n<Value type="string">(.*?)</Value>', resource)
        self.assertEqual(len(in_document), 9)
        self.assertEqual([tuple(row) for row in shown], in_document)
        browser.screenshot("details.png")
        browser.click("#details .close")
        self.assertTrue(browser.run("return document.getElementById('details').hidden"))
        self.assert_quiet(browser)

    def test_the_search_finds_and_lights(self):
        browser = self.open(self.document)
        serial = re.search(r"SN\n<Value type=\"string\">(WK\w+)<", self.document.read_text()).group(1)
        browser.type("#query", f"SN:{serial.lower()}")
        browser.wait_until("return document.getElementById('found').textContent === '1 part found.'")
        self.assertEqual(browser.count("svg .drive.hit"), 1)
        dimmed, lit = browser.run("""
            const opacity = (selector) => Number(getComputedStyle(document.querySelector(selector)).opacity);
            return new Promise((done) => setTimeout(() => done(
                [opacity('svg .drive:not(.hit)'), opacity('svg .drive.hit')]), 400))""")
        self.assertLess(dimmed, 0.5)
        self.assertEqual(lit, 1)
        browser.click("#results button")
        self.assertIn(serial, browser.text("#details .properties"))
        browser.run("document.getElementById('query').value = ''")
        browser.type("#query", "nothing has this")
        browser.wait_until("return document.getElementById('found').textContent === 'Nothing found.'")
        self.assertEqual(browser.count(".hit"), 0)
        browser.run("const q = document.getElementById('query'); q.value = ''; q.dispatchEvent(new Event('input'))")
        browser.wait_until("return !document.body.classList.contains('searching')")
        self.assert_quiet(browser)

    def test_a_rank_lights_its_drives(self):
        browser = self.open(self.document)
        browser.run("document.querySelector('.rank .part').click()")
        self.assertIn(browser.count("svg .drive.hit"), (8, 16))
        self.assertIn("rank", browser.text("#details .eyebrow"))
        self.assert_quiet(browser)

    def test_colours_tell_categories(self):
        browser = self.open(self.document)
        self.assertEqual(browser.count("#legend li"), 2)
        browser.run("const c = document.getElementById('colour'); c.value = 'array site'; "
                    "c.dispatchEvent(new Event('change'))")
        self.assertEqual(browser.count("#legend li"), 16)
        browser.click("#legend button")
        self.assertEqual(browser.count("svg .drive.hit"), 8)
        self.assert_quiet(browser)

    def test_the_keyboard_is_enough(self):
        browser = self.open(self.document)
        self.assertEqual(browser.count("#rack-figures svg [tabindex='0']"), 2)
        browser.run("document.querySelector('svg .drive').focus()")
        before = browser.run("return document.activeElement.getAttribute('aria-label')")
        browser.press(RIGHT)
        self.assertNotEqual(browser.run("return document.activeElement.getAttribute('aria-label')"), before)
        browser.press(DOWN)
        label = browser.run("return document.activeElement.getAttribute('aria-label')")
        browser.press(ENTER)
        identifier = browser.text("#details .id")
        self.assertIn(identifier, label)
        browser.press(ESCAPE)
        self.assertTrue(browser.run("return document.getElementById('details').hidden"))
        self.assertEqual(browser.run("return document.activeElement.getAttribute('aria-label')"), label)
        browser.press("/")
        self.assertEqual(browser.run("return document.activeElement.id"), "query")
        self.assert_quiet(browser)

    def test_dark_and_narrow(self):
        dark = self.open(self.document, scheme="dark")
        dark.screenshot("dark.png")
        ground = dark.run("return getComputedStyle(document.body).backgroundColor")
        self.assertLess(max(map(int, re.findall(r"\d+", ground))), 64)
        narrow = self.open(self.document, width=390, height=844)
        narrow.screenshot("narrow.png")
        self.assertEqual(narrow.run("return document.documentElement.scrollWidth"), 390)


def hostile(text, value):
    """The document with a value in every place that the resource manager fills."""
    text = re.sub(r'(<Value type="string">)[^<]*(</Value>)', lambda m: m.group(1) + value + m.group(2), text)
    return re.sub(r'(<Resource displayName="[^"]*" uniqueId=")([^"]*)(">\n)[^\n]*\n',
                  lambda m: m.group(1) + value + m.group(3) + value + "\n", text)


class HostileValues(PageTest):
    VALUES = ("</script><img src=x onerror=\"window.harmed=1\">", "<img src=x onerror=window.harmed=1>",
              "<!--<script>window.harmed=1</script>", "\"'><svg onload=window.harmed=1>",
              "javascript:window.harmed=1", "${window.harmed=1}", "&lt;script&gt;", "\u202e\u0000\u2028")

    def test_stay_text(self):
        plain = self.open(EXPECTED / "small.xml")
        tags = "return [...new Set([...document.querySelectorAll('*')].map((e) => e.tagName))].sort()"
        scripts = plain.count("script")
        for value in self.VALUES:
            document = pathlib.Path(self.folder) / "hostile.xml"
            document.write_text(hostile((EXPECTED / "small.xml").read_text(), value))
            plain.open(page_of(document, self.folder))
            plain.type("#query", "drive")
            plain.wait_until("return document.getElementById('found').textContent !== ''")
            plain.run("for (const part of document.querySelectorAll('.part')) "
                      "part.dispatchEvent(new MouseEvent('click', { bubbles: true }))")
            self.assertIsNone(plain.run("return window.harmed ?? null"), value)
            self.assertEqual(plain.count("script"), scripts, value)
            self.assertNotIn("IMG", plain.run(tags), value)
            self.assertEqual(plain.count("[onerror], [onload]"), 0, value)
            self.assertIn(value, plain.text("#details"), value)
            self.assert_quiet(plain)


class LargeFacilities(PageTest):
    def test_a_thousand_drives(self):
        browser = self.open(collect(self.folder, "--racks", "4", "--enclosures", "16", "--hosts", "200"))
        self.assertEqual(browser.count("svg .drive"), 1024)
        self.assertIn("all 200 hosts", browser.text(".hosts"))
        browser.screenshot("thousand.png")
        self.assert_quiet(browser)

    def test_ten_thousand_drives_are_used_without_waiting(self):
        browser = self.open(collect(self.folder, "--racks", "20", "--enclosures", "32"))
        self.assertEqual(browser.count("svg .drive"), 10240)
        loaded = browser.run("return performance.getEntriesByType('navigation')[0].loadEventEnd")
        self.assertLess(loaded, 10_000)
        searched = browser.run("""const query = document.getElementById('query'); query.value = 'D7';
            const start = performance.now(); query.dispatchEvent(new Event('focus'));
            document.body.offsetHeight; return performance.now() - start""")
        self.assertLess(searched, 3_000)
        browser.screenshot("tenThousand.png")
        self.assert_quiet(browser)


if __name__ == "__main__":
    missing = [program for program in ("chromium", "chromedriver") if shutil.which(program) is None]
    if missing:
        print(f"SKIPPED: no {' and no '.join(missing)}; the page was NOT opened in a browser. Run scripts/browser.")
        sys.exit(SKIPPED)
    unittest.main(argv=sys.argv[:1], verbosity=2)

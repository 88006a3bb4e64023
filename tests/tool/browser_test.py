"""Opens the pages of kord show --html and kord diff --html in a headless Chromium and uses them as a person would.

    browser_test.py KORD SOURCES SCREENSHOTS [AXE]

AXE is the script of the accessibility checker axe-core, which scripts/browser installs. Ends with 77, and says so, where
there is no Chromium with its driver. Leaves screenshots to look at in the folder SCREENSHOTS, and prints what pages of
many drives weigh and take.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest

from browser import DOWN, ENTER, ESCAPE, RIGHT, TAB, UP, Browser, missing_programs

KORD, SOURCES, SCREENSHOTS = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
AXE = next((path for path in map(pathlib.Path, sys.argv[4:5]) if path.exists()), None)
PROGRAMS = KORD.parent
EXPECTED = SOURCES / "tests/runs/expected"
sys.path.insert(0, str(SOURCES / "tests/security"))
import corpora  # noqa: E402, from the folder above

SKIPPED = 77
MTMS = "9999-B2C*7ABCD12"
FACILITY = EXPECTED / "facility.xml"


def page_of(document, folder):
    page = pathlib.Path(folder) / "page.html"
    subprocess.run([KORD, "show", document, "--html", page], check=True)
    return page


def page_of_two(old, new, folder):
    page = pathlib.Path(folder) / "changes.html"
    done = subprocess.run([KORD, "diff", "--html", page, old, new])
    assert done.returncode == 1, done.returncode
    return page


def collect(folder, *sizes):
    """The document of a run on a facility of that size."""
    facility = pathlib.Path(folder) / "facility.json"
    with facility.open("wb") as output:
        subprocess.run([PROGRAMS / "kord-console", "make", *sizes], check=True, stdout=output)
    root = pathlib.Path(folder) / "root"
    done = subprocess.run([PROGRAMS / "kord-console", "run", "--facility", facility, "--root", root, "--", "addTarnKord", "x", MTMS],
                          stdout=subprocess.DEVNULL)
    if done.returncode != 3:
        raise RuntimeError(f"the collector ended with {done.returncode}")
    return root / f"var/adm/stockmere/VPD/addTarnKord_{MTMS}.xml"


def element_of(text, identifier):
    """Where a resource without others inside begins and ends."""
    start = text.index(f'uniqueId="{identifier}"')
    start = text.rindex("<Resource ", 0, start)
    return start, text.index("</Resource>\n", start) + len("</Resource>\n")


def changed(text, identifier, change):
    start, end = element_of(text, identifier)
    return text[:start] + change(text[start:end]) + text[end:]


class PageTest(unittest.TestCase):
    document = FACILITY

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def open(self, document=None, **how):
        return self.open_page(page_of(document or self.document, self.folder), **how)

    def open_page(self, page, **how):
        browser = Browser(**how)
        self.addCleanup(browser.close)
        browser.open(page)
        return browser

    def assert_quiet(self, browser):
        self.assertEqual(browser.messages(), [])

    def search(self, browser, text):
        browser.run("const q = document.getElementById('query'); q.value = ''; q.focus()")
        browser.type("#query", text)
        browser.wait_until("return state.q === arguments[0] && document.getElementById('found').textContent !== ''", text)

    def lit(self, browser):
        """The identifiers of the drives that are lit."""
        return browser.run("return partsOf('drive').filter(isLit).map(idOf)")

    def picture(self, browser, name):
        browser.screenshot(SCREENSHOTS / name)


class Overview(PageTest):
    def test_shows_every_rack_every_partition_and_an_index(self):
        browser = self.open()
        self.assertEqual(browser.run("return document.title"), "Inventory of 9999-B2C-7ABCD12")
        self.assertEqual(browser.text("#totals"), "128 drives, 20.2 TB; 8 storage enclosures, 2 racks, 2 partitions, 12 hosts")
        self.assertEqual(browser.count("#racks .rack"), 2)
        self.assertEqual(browser.count("#racks .small"), 8)
        self.assertEqual(browser.count(".cards > li"), 2)
        self.assertEqual(browser.count(".cards .pools li"), 6)
        self.assertIn("16 array sites", browser.text("#index"))
        self.assertIn("Nothing odd", browser.text("#odd"))
        self.assertIn("heights, rack units", browser.text("#racks + .note"))
        self.assertEqual(browser.run("return document.querySelector('#racks .small').getAttribute('aria-label')"),
                         "Rack 1, enclosure 4: 16 drives: 16 T0A4")
        self.picture(browser, "overview.png")
        self.assert_quiet(browser)

    def test_the_first_screen_has_all_racks(self):
        for width, height in ((1400, 1000), (800, 1000), (390, 844)):
            browser = self.open(width=width, height=height)
            bottom = browser.run("return document.querySelector('#racks').getBoundingClientRect().bottom")
            self.assertLessEqual(bottom, height, width)
            self.assertEqual(browser.run("return document.documentElement.scrollWidth"), width)
            self.picture(browser, f"overview-{width}.png")

    def test_what_is_odd_is_told_with_its_place(self):
        text = FACILITY.read_text()
        text = changed(text, "U1234.5X6.AB100001-P1-D7", lambda drive: drive.replace("T0A4", "T0A9"))
        text = changed(text, "U1234.5X6.AB100002-P1-D3", lambda drive: "")
        odd = pathlib.Path(self.folder) / "odd.xml"
        odd.write_text(text)
        browser = self.open(odd)
        self.assertEqual(browser.run("return [...document.querySelectorAll('#odd summary')].map((one) => one.textContent)"),
                         ["Mixed firmware within an enclosure 1", "Arrays short of a drive 1"])
        browser.click("#odd summary")
        browser.wait_until("return document.querySelector('#odd details ul') !== null")
        self.assertEqual(browser.text("#odd details ul a"), "rack 1, enclosure 1: T0A4 × 15, T0A9 × 1")
        self.picture(browser, "odd.png")
        browser.click("#odd details ul a")
        self.assertEqual(browser.text("#view"), "Rack 1, enclosure 1")
        self.assert_quiet(browser)

    def test_an_incomplete_document_says_so_first(self):
        text = FACILITY.read_text()
        cut = pathlib.Path(self.folder) / "cut.xml"
        cut.write_text(text[:text.index('<ResourceList displayName="Partitions">')])
        browser = self.open(cut)
        self.assertIn("incomplete", browser.text("#missing"))
        self.assertIn("the partitions", browser.text("#missing"))

    def test_a_colour_stands_for_a_value(self):
        browser = self.open()
        self.assertEqual(browser.run("return [...document.querySelectorAll('#legend button')].map((one) => one.textContent)"),
                         ["2C0732", "T0A448", "T0B148"])
        browser.run("const c = document.getElementById('colour'); c.value = 'capacity_mb'; c.dispatchEvent(new Event('change'))")
        self.assertEqual(browser.run("return [...document.querySelectorAll('#legend button')].map((one) => one.textContent)"),
                         ["73.4 GB48", "146.8 GB48", "300 GB32"])
        self.assertIn("by=capacity_mb", browser.run("return location.hash"))
        self.assert_quiet(browser)


class Views(PageTest):
    def test_a_click_goes_into_a_rack_an_enclosure_a_drive_and_back(self):
        browser = self.open()
        browser.click("#racks h3 a")
        self.assertEqual(browser.text("#view"), "Rack 1")
        self.assertEqual(browser.run("return [...document.querySelectorAll('#shelves b')].map((one) => one.textContent)"),
                         ["Enclosure 4", "Enclosure 3", "Enclosure 2", "Enclosure 1"])
        self.assertIn("heights, rack units", browser.text(".note"))
        self.assertEqual(browser.count(".parts"), 5)
        browser.wait_until("return document.querySelectorAll('#shelves svg').length === 4")
        self.picture(browser, "rack.png")
        browser.run("""const cells = document.querySelectorAll('.cells')[2]; const box = cells.getBoundingClientRect();
            cells.dispatchEvent(new MouseEvent('click', { bubbles: true, cancelable: true,
                clientX: box.left + box.width * 6.5 / 16, clientY: box.top + box.height / 2 }))""")
        self.assertEqual(browser.text("#view"), "Rack 1, enclosure 2")
        self.assertEqual(browser.count("#slots a"), 16)
        self.assertEqual(browser.text("#details h2"), "Rack 1, enclosure 2, slot 7")
        self.picture(browser, "enclosure.png")
        address = browser.run("return location.href")
        browser.run("history.back()")
        browser.wait_until("return document.getElementById('view')?.textContent === 'Rack 1'")
        self.assertTrue(browser.run("return document.getElementById('details').hidden"))
        sent = Browser()
        self.addCleanup(sent.close)
        sent.post("/url", {"url": address})
        self.assertEqual(sent.text("#details h2"), "Rack 1, enclosure 2, slot 7")
        self.assert_quiet(browser)

    def test_every_property_of_a_part_is_shown_as_the_document_has_it(self):
        browser = self.open()
        self.search(browser, "AB100001-P1-D7")
        browser.press(ENTER)
        shown = browser.run("return [...document.querySelectorAll('#details tbody tr')].map("
                            "(row) => [...row.children].map((cell) => cell.textContent))")
        text = FACILITY.read_text()
        start, end = element_of(text, "U1234.5X6.AB100001-P1-D7")
        in_document = re.findall(r'name="(..)" displayName="([^"]*)">\n..\n<Value type="string">(.*?)</Value>', text[start:end])
        self.assertEqual(len(in_document), 9)
        self.assertEqual([tuple(row) for row in shown], in_document)
        self.assertIn("73.4 GB", browser.text("#details dl"))
        self.assertIn("15,000 rpm", browser.text("#details dl"))
        browser.click("#details .close")
        self.assertTrue(browser.run("return document.getElementById('details').hidden"))
        self.assert_quiet(browser)

    def test_numbers_that_a_rack_leaves_out_take_little_room(self):
        text = FACILITY.read_text().replace("RK000001-4</Value>", "RK000001-19</Value>")
        gaps = pathlib.Path(self.folder) / "gaps.xml"
        gaps.write_text(text)
        browser = self.open(gaps)
        self.assertEqual(browser.count("#racks .gap"), 1)
        browser.click("#racks h3 a")
        self.assertEqual(browser.text("#shelves .gap"), "No enclosures 4 to 18")
        self.assertLess(browser.run("return document.querySelector('#shelves .gap').offsetHeight"), 30)
        self.picture(browser, "gap.png")

    def test_a_partition_has_its_storage_hosts_and_counts_in_words(self):
        browser = self.open()
        browser.click(".cards h3 a")
        self.assertEqual(browser.text("#view"), "Partition SF00XY123Tarn01")
        self.assertIn("web-06", browser.text("#main"))
        self.assertIn("Logical volumes of volume type 10v09", browser.text(".counts"))
        self.assertEqual(browser.count(".pool"), 3)
        browser.click(".pool summary")
        browser.wait_until("return document.querySelectorAll('.pool .rank').length === 2")
        self.picture(browser, "partition.png")
        browser.click(".pool .array a")
        self.assertIn("8 drives", browser.text("#details"))
        browser.run("[...document.querySelectorAll('#details dd a')].find((one) => one.textContent.includes('light')).click()")
        self.assertEqual(len(self.lit(browser)), 8)
        self.assertEqual(browser.count("#racks .rack"), 2)
        self.assert_quiet(browser)

    def test_other_enclosures_have_their_cards(self):
        browser = self.open()
        browser.run("[...document.querySelectorAll('.tiles a')].find((one) => one.textContent.includes('I/O enclosure')).click()")
        self.assertEqual(browser.run("return [...document.querySelectorAll('.parts h3')].map((one) => one.textContent)"),
                         ["Device adapters4", "Host adapters4"])


class Search(PageTest):
    def test_the_slot_of_a_serial_number_is_one_action_away(self):
        serial = re.search(r"SN\n<Value type=\"string\">(WK\w+)<", FACILITY.read_text()).group(1)
        browser = self.open()
        self.search(browser, serial.lower())  # the one action
        self.assertEqual(browser.text("#results"), "U1234.5X6.AB100001-P1-D1drive · rack 1, enclosure 1, slot 1")
        self.assertEqual(browser.text("#found"), "1 part found.")
        self.picture(browser, "search.png")

    def test_the_oldest_firmware_in_a_rack_is_two_actions_away(self):
        document = collect(self.folder, "--racks", "4")
        browser = self.open(document)
        browser.run("document.querySelectorAll('#racks h3 a')[2].click()")  # the first: into rack 3
        self.assertEqual(browser.text("#view"), "Rack 3")
        browser.click("#legend button")  # the second: the first level of the legend
        listed = subprocess.run([KORD, "list", "drives", document, "--where", "rack = 3", "--sort", "firmware", "-c", "firmware,id",
                                 "--no-header"], capture_output=True, text=True, check=True).stdout.split()
        oldest = [identifier for level, identifier in zip(listed[::2], listed[1::2]) if level == listed[0]]
        lit_in_rack = browser.run("return enclosuresOf(racks[2]).flatMap(drivesIn).filter(isLit).map(idOf)")
        self.assertEqual(sorted(lit_in_rack), sorted(oldest))
        self.assertGreater(browser.count("#shelves path:not(.dim)"), 0)
        self.assertGreater(browser.count("#shelves path.dim"), 0)
        self.picture(browser, "oldest.png")
        browser.click("#legend button")
        self.assertEqual(browser.run("return state.q"), "")
        self.assert_quiet(browser)

    def test_arrows_and_enter_go_to_the_hits_and_the_focus_stays(self):
        browser = self.open()
        self.search(browser, "WK5")
        self.assertEqual(browser.run("return document.getElementById('query').getAttribute('aria-expanded')"), "true")
        browser.press(DOWN, DOWN)
        active = browser.run("return document.getElementById('query').getAttribute('aria-activedescendant')")
        second = browser.run("return document.getElementById(arguments[0]).firstChild.textContent", active)
        browser.press(ENTER)
        self.assertEqual(browser.text("#details .id"), second)
        self.assertEqual(browser.run("return document.activeElement.id"), "query")
        self.assertTrue(browser.run("""const box = document.querySelector('#slots [aria-current]').getBoundingClientRect();
            return box.top >= 0 && box.bottom <= innerHeight"""))
        browser.press(DOWN, ENTER)
        self.assertNotEqual(browser.text("#details .id"), second)
        narrow = self.open(width=390, height=844)
        self.search(narrow, "AB100004-P1-D16")
        narrow.press(ENTER)
        self.assertTrue(narrow.run("""const slot = document.querySelector('#slots [aria-current]').getBoundingClientRect();
            return slot.top >= 0 && slot.bottom <= document.getElementById('details').getBoundingClientRect().top"""))
        self.picture(narrow, "found-390.png")
        browser.press(UP, UP, UP, ENTER)  # from the third over the first to the last: the table
        self.assertEqual(browser.run("return state.view"), "table")
        self.assert_quiet(browser)

    def test_columns_are_search_words(self):
        browser = self.open()
        for query, arguments in (("drive rack:2", ["drives", "--where", "rack = 2"]),
                                 ("firmware=T0A4 rack:1 slot>14", ["drives", "--where", "firmware = T0A4", "--where", "rack = 1", "--where", "slot > 14"]),
                                 ('drive manufacturer:"kestrel storage"', ["drives", "--where", "manufacturer = Kestrel Storage"]),
                                 ("drives capacity_mb<=100000", ["drives", "--where", "capacity_mb <= 100000"]),
                                 ("host: partition:tarn02", None), ("R1:rk000002", ["storage-enclosures", "--where", "rack = 2"])):
            found = browser.run("return search(arguments[0]).found.map(idOf)", query)
            if arguments is None:
                self.assertEqual(found, [])  # a word that is no column, and that nothing has
                continue
            listed = subprocess.run([KORD, "list", *arguments[:1], FACILITY, *arguments[1:], "-c", "id", "--no-header"],
                                    capture_output=True, text=True, check=True).stdout.split()
            self.assertEqual(sorted(found), sorted(listed), query)
            self.assertGreater(len(listed), 0, query)

    def test_nothing_found_is_said(self):
        browser = self.open()
        self.search(browser, "nothing has this")
        self.assertEqual(browser.text("#found"), "Nothing found.")
        self.assertEqual(self.lit(browser), [])
        browser.press(ESCAPE)
        self.assert_quiet(browser)


class Tables(PageTest):
    def rows(self, browser):
        return browser.run("return [...document.querySelectorAll('#table tbody tr')].map("
                           "(row) => [...row.children].map((cell) => cell.textContent))")

    def test_sorted_filtered_and_copied(self):
        browser = self.open()
        browser.run("[...document.querySelectorAll('#index a')].find((one) => one.textContent.endsWith(' drives')).click()")
        self.assertEqual(browser.text("#view"), "Drives")
        self.assertEqual(len(self.rows(browser)), 100)
        self.assertIn("1 to 100 of 128", browser.text(".pages"))
        self.picture(browser, "table.png")
        self.search(browser, "rack:2 enclosure:3")
        self.assertEqual(len(self.rows(browser)), 16)
        browser.click("#table th[data-column=serial] button")
        serials = [row[4] for row in self.rows(browser)]
        listed = subprocess.run([KORD, "list", "drives", FACILITY, "--where", "rack = 2", "--where", "enclosure = 3", "--sort", "serial",
                                 "-c", "serial", "--no-header"], capture_output=True, text=True, check=True).stdout.split()
        self.assertEqual(serials, listed)
        self.assertEqual(browser.run("return document.querySelector('#table th[data-column=serial]').getAttribute('aria-sort')"), "ascending")
        browser.click("#table th[data-column=slot] button")
        browser.click("#table th[data-column=slot] button")
        self.assertEqual([row[3] for row in self.rows(browser)], [str(slot) for slot in range(16, 0, -1)])
        browser.run("window.copied = null; navigator.clipboard.writeText = async (text) => { window.copied = text; }")
        browser.run("document.getElementById('columns').click()")
        browser.run("[...document.querySelectorAll('.tools button')].find((one) => one.textContent === 'Copy as CSV').click()")
        browser.wait_until("return window.copied !== null")
        names = browser.run("return window.copied").split("\r\n")[0]
        listed = subprocess.run([KORD, "list", "drives", FACILITY, "--where", "rack = 2", "--where", "enclosure = 3", "--sort", "-slot",
                                 "--format", "csv", "-c", names], capture_output=True, check=True).stdout.decode()
        self.assertEqual(browser.run("return window.copied").replace("\r\n", "\n"), listed.replace("\r\n", "\n"))
        self.assertEqual(browser.text("#copied"), "16 rows are in the clipboard.")
        self.assert_quiet(browser)

    def test_a_page_is_turned_by_the_keyboard(self):
        browser = self.open()
        browser.run("go({ view: 'table' })")
        browser.run("[...document.querySelectorAll('.pages button')].at(-1).focus()")
        browser.press(ENTER)
        self.assertEqual(len(self.rows(browser)), 28)
        self.assertEqual(browser.run("return document.activeElement.id"), "view")

    def test_every_kind_has_one(self):
        browser = self.open()
        for kind in browser.run("return [...new Set(tables.filter((table) => table.rows > 0).map((table) => table.word))]"):
            browser.run("go({ view: 'table', kind: arguments[0], columns: 'all' })", kind)
            self.assertGreater(len(self.rows(browser)), 0, kind)
        self.assert_quiet(browser)

    def test_paper_has_the_drives_of_the_view(self):
        browser = self.open()
        browser.click("#racks h3 a")
        browser.run("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(browser.count("#paper tbody tr"), 64)
        browser.command("Emulation.setEmulatedMedia", media="print")
        self.assertEqual(browser.run("return getComputedStyle(document.querySelector('.columns')).display"), "none")
        self.picture(browser, "print.png")
        pdf = browser.command("Page.printToPDF")["data"]
        self.assertGreater(len(pdf), 1000)
        browser.run("dispatchEvent(new Event('afterprint'))")
        self.assertEqual(browser.count("#paper *"), 0)


class TwoDocuments(PageTest):
    """Last night a drive was replaced; besides, one went, one came, and one moved."""

    def pages(self):
        text = FACILITY.read_text()
        start, end = element_of(text, "U1234.5X6.AB100002-P1-D3")
        gone = text[start:end]
        old = text
        text = changed(text, "U1234.5X6.AB100001-P1-D7", lambda drive: re.sub(r"WK\w{8}", "WKNEW00007", drive).replace("T0A4", "T0A9"))
        text = changed(text, "U1234.5X6.AB100002-P1-D3", lambda drive: "")
        text = changed(text, "U1234.5X6.AB100004-P1-D16", lambda drive: drive.replace("U1234.5X6.AB100004-P1-D16", "U1234.5X6.AB100004-P1-D17"))
        text = changed(text, "U1234.5X6.AB100004-P1-D1", lambda drive: drive + gone.replace("AB100002-P1-D3", "AB100004-P1-D18").replace(
            re.search(r"WK\w{8}", gone).group(), "WKNEW00018"))
        before, after = (pathlib.Path(self.folder) / name for name in ("old.xml", "new.xml"))
        before.write_text(old)
        after.write_text(text)
        return page_of_two(before, after, self.folder)

    def test_what_a_replacement_changed_is_there_at_once(self):
        browser = self.open_page(self.pages())
        self.assertEqual(browser.text("#changes p"), "From old.xml to new.xml. 4 changes: 1 replaced, 1 removed, 1 added, 1 moved.")
        entries = browser.run("return [...document.querySelectorAll('#changes .change')].map((one) => one.textContent)")
        self.assertEqual(entries[0].count("⇄ replaced drive in rack 1, enclosure 1, slot 7"), 1)
        self.assertIn("WKNEW00007", entries[0])
        self.assertIn("firmware T0A4 → T0A9", entries[0])
        self.assertTrue(any("from rack 1, enclosure 4, slot 16" in entry for entry in entries), entries)
        self.picture(browser, "changes.png")
        browser.click("#changes .change a")
        self.assertEqual(browser.text("#details h2"), "Rack 1, enclosure 1, slot 7")
        self.assertIn("T0A4 → T0A9", browser.text("#details .change"))
        self.assertEqual(browser.run("return document.querySelector('#slots [aria-current] span').textContent"), "⇄ 7")
        self.picture(browser, "change.png")
        self.assert_quiet(browser)

    def test_what_is_gone_is_drawn_where_it_was_and_counts_for_nothing(self):
        browser = self.open_page(self.pages())
        self.assertIn("128 drives", browser.text("#totals"))
        self.search(browser, "AB100002-P1-D3")
        browser.press(ENTER)
        self.assertEqual(browser.run("return document.querySelector('#slots [aria-current] span').textContent"), "− 3")
        self.assertEqual(browser.run("return [...document.querySelectorAll('#legend .entry')].map((one) => one.textContent)"),
                         ["removed1", "as it was15"])
        self.assert_quiet(browser)


class Keyboard(PageTest):
    def test_is_enough(self):
        browser = self.open()
        label = "return document.activeElement.getAttribute('aria-label')"
        browser.run("document.querySelector('.stack .small[tabindex=\"0\"]').focus()")
        self.assertIn("Rack 1, enclosure 4", browser.run(label))
        browser.press(DOWN)
        self.assertIn("Rack 1, enclosure 3", browser.run(label))
        browser.press(ENTER)
        self.assertEqual(browser.run("return document.activeElement.id"), "view")
        browser.run("document.querySelector('#slots a[tabindex=\"0\"]').focus()")
        browser.press(RIGHT, RIGHT)
        self.assertIn("Slot 3,", browser.run(label))
        browser.press(ENTER)
        self.assertEqual(browser.text("#details h2"), "Rack 1, enclosure 3, slot 3")
        self.assertIn("Slot 3,", browser.run(label))
        browser.press(ESCAPE)
        self.assertTrue(browser.run("return document.getElementById('details').hidden"))
        self.assertIn("Slot 3,", browser.run(label))
        browser.press("/")
        self.assertEqual(browser.run("return document.activeElement.id"), "query")
        self.assert_quiet(browser)

    def test_tab_goes_through_and_out(self):
        browser = self.open()
        seen = []
        for _ in range(120):
            browser.press(TAB)
            seen.append(browser.run("const a = document.activeElement; return a === document.body ? null : a.outerHTML.slice(0, 120)"))
            if seen[-1] is None or seen[-1] in seen[:-1]:
                break
        self.assertLess(len(seen), 120)
        self.assertGreater(len(seen), 30)
        self.assertIn("skip", seen[0])

    def test_the_skip_link_leads_to_the_drawing(self):
        browser = self.open()
        browser.press(TAB)
        browser.press(ENTER)
        self.assertEqual(browser.run("return document.activeElement.id"), "main")
        self.assertEqual(browser.count("#racks"), 1)


@unittest.skipUnless(AXE, "axe-core is not installed: scripts/browser does that")
class Accessibility(PageTest):
    VIEWS = {"overview": "", "rack": "at=rack:U1234.5R0.RK000001", "search": "q=drive+rack:1",
             "found": "at=rack:U1234.5R0.RK000001&q=firmware%3DT0A4", "lit": "at=storageEnclosure:U1234.5X6.AB100001&q=slot%3E14",
             "enclosure": "at=storageEnclosure:U1234.5X6.AB100001&part=drive:U1234.5X6.AB100001-P1-D7",
             "partition": "at=partition:9999-B2C-7ABCD12-1", "table": "view=table&kind=drive&sort=serial"}

    def violations(self, browser):
        browser.run(AXE.read_text())
        browser.post("/timeouts", {"script": 60000})
        return browser.post("/execute/async", {"args": [], "script": """
            const done = arguments[arguments.length - 1];
            axe.run(document, { runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'] }).then((result) =>
              done(result.violations.map((one) => [one.id, one.help, one.nodes.slice(0, 3).map((node) => node.html.slice(0, 200))])))"""})

    def check(self, page):
        for scheme, width in (("light", 1400), ("dark", 1400), ("light", 390)):
            browser = self.open_page(page, scheme=scheme, width=width)
            for view, address in self.VIEWS.items():
                browser.run("location.hash = arguments[0]", address)
                browser.wait_until("return JSON.stringify(state) === JSON.stringify((readAddress(), state))")
                browser.run("for (const one of document.querySelectorAll('details')) one.open = true")
                time.sleep(0.3)
                self.assertEqual(self.violations(browser), [], f"{view}, {scheme}, {width}")
                self.assertEqual(browser.run("return document.documentElement.scrollWidth"), width, view)
                if scheme == "dark" or width == 390:
                    self.picture(browser, f"{view}-{scheme}-{width}.png")
            self.assert_quiet(browser)

    def test_every_view(self):
        self.check(page_of(FACILITY, self.folder))

    def test_every_view_of_two_documents(self):
        self.check(TwoDocuments.pages(self))

    def test_the_checker_finds_what_is_wrong(self):
        browser = self.open()
        browser.run("document.getElementById('query').labels[0].remove(); document.querySelector('#racks h3 a').textContent = ''")
        found = [one[0] for one in self.violations(browser)]
        self.assertIn("label-title-only", found)
        self.assertIn("link-name", found)


def hostile(text, value):
    """The document with a value in every place that the resource manager fills."""
    text = re.sub(r'(<Value type="string">)[^<]*(</Value>)', lambda m: m.group(1) + value + m.group(2), text)
    return re.sub(r'(<Resource displayName="[^"]*" uniqueId=")([^"]*)(">\n)[^\n]*\n',
                  lambda m: m.group(1) + value + m.group(3) + value + "\n", text)


class HostileValues(PageTest):
    VALUES = ("</script><img src=x onerror=\"window.harmed=1\">", "<img src=x onerror=window.harmed=1>",
              "<!--<script>window.harmed=1</script>", "\"'><svg onload=window.harmed=1>",
              "javascript:window.harmed=1", "${window.harmed=1}", "&lt;script&gt;", "\u202e\u0000\u2028")
    WALK = """
        for (const kind of new Set(tables.filter((table) => table.rows > 0).map((table) => table.word))) {
          go({ view: 'table', kind, columns: 'all', q: '', sort: 'id' });
          for (const part of partsOf(kind).slice(0, 3)) { go(addressOfPart(part)); go({ part: keyOf(part) }); }
        }
        go({ view: '', at: '', part: '' });
        for (const name of colourings.keys()) go({ by: name }, true);
        for (const entry of document.querySelectorAll('details')) entry.open = true;
        fillPaper();
        return [window.harmed ?? null, document.title, document.querySelectorAll('script').length,
          document.querySelectorAll('img, iframe, object, embed, form, base, link, meta[http-equiv=refresh], [onerror], [onload], [style*=url], [src]').length]"""

    def test_stay_text(self):
        browser = self.open(EXPECTED / "small.xml")
        regular = browser.run(self.WALK)
        self.assertEqual((regular[0], regular[3]), (None, 0))
        for value in self.VALUES:
            document = pathlib.Path(self.folder) / "hostile.xml"
            document.write_text(hostile((EXPECTED / "small.xml").read_text(), value))
            browser.open(page_of(document, self.folder))
            self.assertEqual(browser.run(self.WALK)[2:], regular[2:], value)
            self.assertIsNone(browser.run("return window.harmed ?? null"), value)
            browser.run("go(addressOfPart(partsOf('rack')[0])); go({ part: keyOf(partsOf('rack')[0]) })")
            listed = subprocess.run([KORD, "list", "racks", document, "--format", "json"], capture_output=True, check=True).stdout
            self.assertIn(json.loads(listed)[0]["serial"], browser.text("#details"), value)
            self.assert_quiet(browser)

    def test_documents_of_failed_collections(self):
        text = (EXPECTED / "small.xml").read_text().splitlines(keepends=True)
        documents = [(EXPECTED / name).read_text() for name in ("ioFails.xml", "processorComplexFails.xml")]
        documents += ["".join(text[:line]) for line in range(5, len(text) - 5, 37)]
        browser = self.open(EXPECTED / "small.xml")
        document = pathlib.Path(self.folder) / "cut.xml"
        for at, cut in enumerate(documents):
            document.write_text(cut)
            page = pathlib.Path(self.folder) / "page.html"
            done = subprocess.run([KORD, "show", document, "--html", page], capture_output=True, text=True)
            if done.returncode == 2:
                self.assertIn("cut.xml", done.stderr)  # that it ends too soon to be a document
                continue
            browser.open(page)
            self.assertEqual(browser.run(self.WALK)[3], 0, at)
            self.assertIn("incomplete", browser.text("#missing"), at)
            self.assert_quiet(browser)
        self.assertGreater(len(documents), 10)

    def test_nasty_texts_in_every_attribute(self):
        trial = corpora.Trial(PROGRAMS, SOURCES, pathlib.Path(self.folder))
        browser = self.open(trial.regular)
        regular = browser.run(self.WALK)
        runs = 8
        for run in range(runs):
            facility, _ = corpora.hostile(trial.facility, trial.kept, run * len(corpora.TEXTS) // runs)
            trial.collect(facility)
            trial.page(trial.document())
            browser.open(trial.folder / "page.html")
            started = time.monotonic()
            self.assertEqual(browser.run(self.WALK), regular, run)
            for text in corpora.TEXTS[run::runs * 4]:
                browser.run("search(arguments[0]); go({ q: arguments[0] }, true)", text)
            self.assertLess(time.monotonic() - started, 60, run)
            self.assert_quiet(browser)
            two = page_of_two(trial.regular, trial.document(), self.folder)
            browser.open(two)
            self.assertEqual(browser.run(self.WALK)[2:], regular[2:], run)
            self.assert_quiet(browser)


class ManyDrives(PageTest):
    """The figures are printed, for machines differ."""

    def measure(self, drives, *sizes):
        document = collect(self.folder, *sizes)
        page = page_of(document, self.folder)
        alone = page_of(EXPECTED / "small.xml", tempfile.mkdtemp(dir=self.folder)).stat().st_size
        browser = self.open_page(page)
        self.assertEqual(browser.run("return partsOf('drive').length"), drives)
        opened = browser.run("return performance.getEntriesByType('navigation')[0].loadEventEnd")
        took = browser.run("""const times = {}; const time = (name, work) => { const start = performance.now(); work();
              document.body.offsetHeight; times[name] = Math.round(performance.now() - start); };
            time('rack', () => go({ at: keyOf(racks[0]) })); time('search', () => go({ q: 'WK5', at: '' }));
            time('table', () => go({ view: 'table', sort: 'serial', q: '' })); return times""")
        weight = (page.stat().st_size - alone) / drives
        print(f"{drives:,} drives: {page.stat().st_size:,} bytes, {weight:.0f} a drive; opened in {opened:.0f} ms; "
              + ", ".join(f"{name} in {milliseconds} ms" for name, milliseconds in took.items()), file=sys.stderr)
        self.assertLessEqual(weight, 120)
        for width, height in ((1400, 1000), (800, 1000), (390, 844)):
            browser.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
            for view, changes in (("overview", {}), ("rack", {"at": browser.run("return keyOf(racks[0])")}),
                                  ("table", {"view": "table"}), ("found", {"q": "firmware:T0A4 rack:1"})):
                browser.run("state = { ...usual }; drawn = ''; go(arguments[0])", changes)
                time.sleep(0.3)
                self.assertEqual(browser.run("return document.documentElement.scrollWidth"), width, view)
                self.picture(browser, f"{drives}-{view}-{width}.png")
        self.assert_quiet(browser)
        return browser

    def test_ten_thousand_in_one_rack(self):
        self.measure(10_000, "--racks", "1", "--enclosures", "40", "--drives", "250")

    def test_ten_thousand_in_twenty_racks(self):
        self.measure(10_240, "--racks", "20", "--enclosures", "32")

    def test_a_hundred_thousand(self):
        browser = self.measure(100_000, "--racks", "10", "--enclosures", "40", "--drives", "250", "--hosts", "200")
        self.assertLess(browser.run("go({ view: '', at: '', q: '' }); return document.querySelectorAll('*').length"), 5_000)


if __name__ == "__main__":
    missing = missing_programs()
    if missing:
        print(f"SKIPPED: no {' and no '.join(missing)}; the page was NOT opened in a browser. Run scripts/browser.")
        sys.exit(SKIPPED)
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]], verbosity=2)

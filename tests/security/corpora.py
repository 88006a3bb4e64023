"""Texts that break programs, through the collector and every command of kord: nothing in them is run, nothing hangs, and
every output is what its reader expects. More than five hundred texts of sixteen kinds; each run gives every attribute that nothing
else asks by a text of its own, and the next run the next ones; a recording of the run, replayed, gives the same document. Every
text is a line of a trace log, a condition's value and a file's name as well. Status 1 when an output is not as it should be.

    corpora.py PROGRAMS SOURCE [RUNS]    as many runs as there are texts give every attribute every text
"""

import csv
import html.parser
import io
import itertools
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

MTMS = "9999-B2C*7ABCD12"
CANARY = "canary"
LIMIT = 60  # seconds


# ---- the texts, by kind ----

def commands():
    doers = ("touch canary", "/usr/bin/touch canary", "id>canary", ":>canary")
    around = ("$({})", "`{}`", ";{};", "|{}", "||{}", "&&{}", "&{}&", "\n{}\n", "';{};'", "\";{};\"", "'$({})'", "\"`{}`\"",
              "\\`{}\\`", "<({})", "{{{},}}", "${{IFS}}{}")
    return [frame.format(do) for do in doers for frame in around]


def markup():
    calls = ("alert(1)", "document.title='canary'", "fetch('//canary')")
    frames = ("<script>{}</script>", "</script><script>{}</script>", "<img src=x onerror=\"{}\">", "<svg onload=\"{}\">",
              "\"><b onmouseover=\"{}\">", "'><i onclick='{}'>", "<a href=\"javascript:{}\">x</a>", "<iframe srcdoc=\"{}\">",
              "<style>*{{background:url('javascript:{}')}}</style>", "<!--{}", "-->{}", "]]>{}", "<![CDATA[{}", "<body onload={}>",
              "</title><script>{}</script>", "</textarea><script>{}</script>", "<math><mtext></p><style><img onerror={}>",
              "<details open ontoggle={}>", "&lt;script&gt;{}&lt;/script&gt;", "&#60;script&#62;{}&#60;/script&#62;",
              "\\u003cscript\\u003e{}", "<ScRiPt>{}</sCrIpT>", "<script\n>{}</script\n>", "<//script>{}")
    return [frame.format(call) for call in calls for frame in frames]


def document_parts():
    return ["</Property>", "</Resource>", "</ResourceSet>", "</com.orvik.inventory>", "<Resource displayName=\"x\">",
            "</Properties>\n</Resource>\n<Resource displayName=\"y\">", "<Property name=\"a\" value=\"b\"/>", "<?xml version=\"1.0\"?>",
            "<!DOCTYPE a [<!ENTITY b SYSTEM \"file:///etc/passwd\">]>", "&b;", "&amp", "&", "<", ">", "\"", "'", "&#0;", "&#x1F;",
            "&#xD800;", "&lt;&gt;&amp;&quot;&apos;", "<a b='c'", "<a b=\"c", "a=\"b\" c=\"d", "<?php", "<%", "%>", "${a}", "{{a}}",
            "#{a}", "<xi:include href=\"/etc/passwd\"/>", "xmlns:a=\"b\"", "<value>1</value>", "<value>"]


def controls():
    return [f"a{chr(code)}b" for code in itertools.chain(range(1, 32), range(127, 160))]


def terminals():
    return ["\x1b[2J", "\x1b]0;title\x07", "\x1b[31mred", "\x1b]8;;http://canary\x1b\\link\x1b]8;;\x1b\\", "\x1bP$q\x1b\\",
            "\x1b[6n", "\x9b31m", "\x1b[?1049h", "\x1b]52;c;Y2FuYXJ5\x07", "a\rb", "a\bb", "\x07" * 20, "\x1bc", "\x1b[1;1H", "\x0e\x0f"]


def invisible():
    points = (0xAD, 0x34F, 0x61C, 0x115F, 0x17B4, 0x180E, *range(0x200B, 0x2010), *range(0x2028, 0x202F),
              *range(0x2060, 0x2070), 0x3164, 0xFE00, 0xFEFF, 0xFFA0, *range(0xFFF9, 0xFFFE), 0xE0001, 0xE0020, 0xE007F)
    return [f"a{chr(point)}b" for point in points]


def scripts_of_the_world():
    return ["田中さんにあげて下さい", "和製漢語", "部落格", "사회과학원", "찦차를", "ﷺ", "مناقشة سبل", "עברית", "Ṱ̺̺o͞ ̷i̲̬n͓", "Z̮̞̠͙͔ͅalgo",
            "ÅÍÎÏ˝ÓÔÒÚÆ☃", "Œ„´‰ˇÁ¨ˆØ∏", "¡™£¢∞§¶•ªº–≠", "⅛⅜⅝⅞", "ЁЂЃЄЅІЇЈЉЊ", "٠١٢٣٤٥٦٧٨٩", "⁰⁴⁵₀₁₂", "ด้้้้้็็็็็้้้้้", "👩‍👩‍👧‍👦", "🏳️‍🌈", "🇺🇸🇷🇺", "👾🙇💁",
            "ⅣⅩ", "ǅ", "ß", "ſ", "İı", "ﬃ", "﷽", "𐐷", "𝕿𝖍𝖊", "ʇxǝʇ", "‫بس‬", "a\u0301\u0301", "\u1e9b\u0323", "Ⱥ", "𠜎𠜱", "ꙮ"]


def numbers():
    return ["0", "-0", "1.0", "1e400", "-1e-400", "NaN", "nan", "Infinity", "-inf", "0x0", "0xffffffffffffffff", "1/0", "0/0",
            "2147483647", "2147483648", "-2147483649", "9223372036854775808", "-9223372036854775809", "18446744073709551616",
            "1" * 96, "0" * 96, "1,000", "1.2.3", "00", "+1", "--1", "0b1", "0o7", "1_000", " 1", "1 ", "１２３", "٣", "1E+02", ".",
            "0..0", "-", "+", "$1.00", "-9223372036854775808/-1"]


def words():
    return ["undefined", "undef", "null", "NULL", "nil", "none", "None", "true", "false", "hasOwnProperty", "constructor",
            "__proto__", "then", "toString", "(null)", "\\", "\\\\", "COM1", "CON", "AUX", "NUL", "..", ".", "/", "~", "*", "?",
            "__class__", "length", "N/A", "(nil)", "eval", "self"]


def formats():
    return ["%s", "%n", "%x" * 20, "%d%s%n", "%99999999s", "%p", "%*.*s", "%1$s%2$n", "%%", "%", "%c%c", "{0}", "{}", "%lld",
            "%(a)s", "$1", "\\1", "\\n", "\\0", "\\x00", "\\u0000", "%00", "%0a%0d", "%2e%2e%2f"]


def queries():
    return ["1;DROP TABLE parts", "1'; DROP TABLE parts--", "' OR 1=1 -- 1", "' OR '1'='1", "\" OR \"\"=\"", "'); DELETE FROM parts;--",
            "\\'; --", "admin'/*", "1 UNION SELECT 1", "' AND SLEEP(5)--", "*)(uid=*))(|(uid=*", "//*", "' or count(/)=1 or ''='",
            "\" && name==\"", "\" || \"\"==\"", "LIKE \"%\"", "LParID=\"1\"", "&& 1", "||"]


def paths():
    return ["../../../../etc/passwd", "..\\..\\windows", "/dev/null", "/dev/stdin", "file:///etc/passwd", "//canary/a", "\\\\canary\\a",
            "http://canary/", "-", "--", "-rf", "--help", "-n", "--output=canary", "@canary", ">canary", ">>canary", "2>canary",
            "<canary", "canary\n", ".hidden", "a/b/c", "C:\\a", "con.txt", "a" * 255]


def tables_of_others():
    return ["=1+1", "=cmd|' /C calc'!A0", "+1+1", "-1+1", "@SUM(A1)", "=HYPERLINK(\"http://canary\")", "a,b,c", "a;b", "a\tb",
            "\"a\",\"b\"", "a\"b", "\"\"", "\"", ",", ";", "\t", "a\r\nb", "\n", "\r", "\r\n", "#", "|", "=\"\""]


def blanks():
    return ["", " ", "  ", " a", "a ", " a ", "a  b", "\t", "\v", "\f", "\u00a0", "\u1680", "\u2000", "\u2003", "\u202f", "\u205f",
            "\u3000", "\x85", "\u2028", "\u2029", "a\nb", "\na", "a\n", "\n\n"]


def lengths():
    return [letter * length for letter in ("a", "ä", "&") for length in (29, 30, 31, 99, 100, 101, 499, 800, 4096, 10_000)]


def brackets():
    return ["(" * 200, "[" * 200, "{" * 200, "<" * 200, "()" * 100, "<a>" * 100, "[[[]", "((a)", "{{", "<<>>", "[1,[2,[3", "\"" * 100,
            "'" * 99, "\\" * 101, "&" * 100]


KINDS = (commands, markup, document_parts, controls, terminals, invisible, scripts_of_the_world, numbers, words, formats,
         queries, paths, tables_of_others, blanks, lengths, brackets)
TEXTS = [text for kind in KINDS for text in kind()]


# ---- a run ----

class Broken(Exception):
    """An output is not what its reader expects."""


def require(holds, what):
    if not holds:
        raise Broken(what)


def start(folder, *command, statuses=(0,)):
    try:
        done = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=LIMIT, check=False)
    except subprocess.TimeoutExpired as error:
        raise Broken(f"{command[0]} {command[1]} never ends") from error
    require(done.returncode in statuses, f"{command[:3]} ends with {done.returncode}, {done.stderr[-300:]!r}")
    check_terminal(done.stderr)
    return done.stdout


def asked_by(journal):
    """The attributes that selections name, and those whose values lead on."""
    return {name for line in journal.splitlines() for name in re.findall(r"(\w+)=+\\\"", line)}


def hostile(facility, kept, first):
    """The facility with the texts from `first` on in all attributes that are not kept."""
    texts = itertools.cycle(TEXTS[first:] + TEXTS[:first])
    changed = json.loads(json.dumps(facility))
    count = 0
    for resource in itertools.chain.from_iterable(changed["resources"].values()):
        for name, value in resource.items():
            if isinstance(value, str) and name not in kept:
                resource[name] = next(texts)
                count += 1
    return changed, count


# ---- what readers expect ----

UNSHOWN = re.compile("[\x00-\x08\x0b-\x1f\x7f-\x9f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u2069\ufeff]")


def check_terminal(output):
    found = UNSHOWN.search(output.decode("utf-8"))
    require(not found, f"the terminal gets {found and ascii(found.group())}")


def check_json(output):
    json.loads(output.decode("utf-8"))


def check_csv(output):
    rows = list(csv.reader(io.StringIO(output.decode("utf-8"), newline=""), strict=True))
    require(len({len(row) for row in rows}) <= 1, "rows of different lengths")


def check_xml(output):
    xml.etree.ElementTree.fromstring(output)


class Page(html.parser.HTMLParser):
    """Counts what could run."""

    def __init__(self):
        super().__init__()
        self.scripts = 0
        self.odd = []

    def handle_starttag(self, tag, attrs):
        self.scripts += tag == "script"
        if tag in ("iframe", "object", "embed", "base", "math"):
            self.odd.append(tag)
        for name, value in attrs:
            if name.startswith("on") or (value or "").strip().lower().startswith("javascript:"):
                self.odd.append(f"{tag} {name}={value}")


def page_of(output):
    page = Page()
    page.feed(output.decode("utf-8"))
    page.close()
    return page


def unstamped(document):
    return re.sub(rb'timestamp="[^"]*"', b"", document.read_bytes())


class Trial:
    def __init__(self, programs, source, folder):
        self.programs = programs
        self.folder = folder
        self.root = folder / "console"
        self.facility = json.loads((source / "console/facilities/facility.json").read_text())
        self.collect(self.facility)
        self.kept = asked_by((self.root / "journal.jsonl").read_text()) | {
            name for rule in ("MTMS", "Id", "ID", "PeerDomain", "dentifier", "Name", "Number") for resources in
            self.facility["resources"].values() for resource in resources for name in resource if name.endswith(rule)}
        self.regular = folder / "regular.xml"
        self.regular.write_bytes(self.document().read_bytes())
        self.regular_log = self.log().read_text()
        self.scripts = page_of(self.page(self.regular)).scripts
        require(self.scripts > 0, "the page has no script to compare with")

    def document(self, root=None):
        return (root or self.root) / f"var/adm/stockmere/VPD/addTarnKord_{MTMS}.xml"

    def log(self):
        return self.root / "var/tarnquay/log/kord.7ABCD12.log"

    def on_console(self, facility, root, *program):
        start(self.folder, self.programs / "kord-console", "run", "--facility", facility, "--root", root, "--", *program,
              "addTarnKord", "-t", MTMS, statuses=(3,))

    def collect(self, facility, *recorder):
        file = self.folder / "facility.json"
        file.write_text(json.dumps(facility))
        self.on_console(file, self.root, *recorder)

    def kord(self, *arguments, statuses=(0,)):
        return start(self.folder, self.programs / "kord", *arguments, statuses=statuses)

    def page(self, document):
        page = self.folder / "page.html"
        page.unlink(missing_ok=True)
        self.kord("show", "--html", page, document)
        return page.read_bytes()

    def try_from(self, first):
        facility, count = hostile(self.facility, self.kept, first)
        self.log().unlink()
        recording = self.folder / "recording.json"
        self.collect(facility, "kord", "record", "--verify", "--output", recording, "--")
        document = self.document()
        check_terminal(self.kord("show", document))
        check_terminal(self.kord("list", "drives", document))
        check_terminal(self.kord("list", "all", document))
        check_terminal(self.kord("diff", self.regular, document, statuses=(1,)))
        self.try_log(self.log())
        check_json(self.kord("json", document))
        check_xml(self.kord("xml", document))
        check_json(self.kord("list", "--format", "json", "all", document))
        check_csv(self.kord("list", "--format", "csv", "all", document))
        page = page_of(self.page(document))
        require(page.scripts == self.scripts and not page.odd, f"the page holds {page.scripts} scripts, {page.odd[:3]}")
        self.try_recording(recording, document)
        require(not list(self.folder.rglob(CANARY)), "something was run")
        return count

    def try_log(self, log):
        """What a trace log tells is shown."""
        check_terminal(self.kord("explain", log, statuses=(0, 1)))
        check_terminal(self.kord("follow", log))
        check_json(self.kord("explain", "--all", "--json", log, statuses=(0, 1)))

    def try_lines(self):
        """Every text as a line of a log and as the end of one."""
        lines = self.regular_log.splitlines(keepends=True)
        stamp = lines[0][:len("071505 13:04:59 ")]
        log = self.folder / "hostile.log"
        log.write_text("".join([*lines[:-1], *(f"{text}\n{stamp}{text}\n" for text in TEXTS), lines[-1]]), newline="")
        self.try_log(log)

    def try_arguments(self, texts):
        """Texts as values of conditions, and as names of files: most are none."""
        for text in texts:
            check_terminal(self.kord("list", "--where", f"serial={text}", "drives", self.regular, statuses=(0, 1)))
            check_terminal(self.kord("show", "--", text, statuses=(0, 1, 2)))
        require(not list(self.folder.rglob(CANARY)), "something was run")

    def try_recording(self, recording, document):
        """A recording holds all that the document needs; with stand-ins it is a facility as well."""
        start(self.folder, self.programs / "kord-console", "check", recording)
        root = self.folder / "replayed"
        self.on_console(recording, root)
        require(unstamped(self.document(root)) == unstamped(document), "the recording gives another document")
        self.on_console(self.folder / "facility.json", root, "kord", "record", "--redact", "--verify", "--output", recording, "--")
        start(self.folder, self.programs / "kord-console", "check", recording)


def main():
    programs, source = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 12
    require(len(TEXTS) >= 500, "too few texts")
    broken = 0
    count = 0
    with tempfile.TemporaryDirectory(prefix="kord-corpora-") as folder:
        trial = Trial(programs, source, pathlib.Path(folder))
        trial.try_lines()
        for run in range(runs):
            first, beyond = (number * len(TEXTS) // runs for number in (run, run + 1))
            try:
                count += trial.try_from(first)
                trial.try_arguments(TEXTS[first:beyond])
            except (Broken, ValueError, csv.Error, xml.etree.ElementTree.ParseError) as error:
                broken += 1
                print(f"from text {first} on: {type(error).__name__}: {error}")
    print(f"{len(TEXTS)} texts, {runs} runs, {count} attributes, {broken} broken")
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())

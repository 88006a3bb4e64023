"""Makes the pictures of README and docs from the bundled facility, or says which are out of date.

    pictures.py PROGRAMS SOURCES            makes all in docs/pictures
    pictures.py PROGRAMS SOURCES --check    status 1 when one is not what would be made now

Terminals, the architecture and the benchmarks' results are drawings, which are made anew and compared. What a browser draws differs between
machines: of such a picture the manifest holds what it was made from, and that is compared.
"""

import hashlib
import html
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

PROGRAMS, SOURCES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
sys.path.insert(0, str(SOURCES / "bench"))
import plots  # the results of the benchmarks

PICTURES = SOURCES / "docs/pictures"
MANIFEST = PICTURES / "manifest.json"
MOST_BYTES = 200_000
COLLECTED = {"monday.xml": "1794837663.94324", "friday.xml": "1795183263.12817"}


# ---- Two documents of the bundled facility, of a Monday and of the Friday behind it

def changed(text, identifier, change):
    start = text.rindex("<Resource ", 0, text.index(f'uniqueId="{identifier}"'))
    end = text.index("</Resource>\n", start)
    new = change(text[start:end])
    assert new != text[start:end], identifier
    return text[:start] + new + (text[end:] if new else text[end + len("</Resource>\n"):])


def documents(folder):
    monday = (SOURCES / "tests/runs/expected/facility.xml").read_text()
    friday = changed(monday, "U1234.5X6.AB100002-P1-D5", lambda drive: re.sub(r"WK\w{8}", "WK7NEW0001", drive))
    for slot in range(1, 17):
        friday = changed(friday, f"U1234.5X6.AB100004-P1-D{slot}", lambda drive: drive.replace("T0A4", "T0A9"))
    friday = changed(friday, "U1234.5X6.AB100006-P1-D9", lambda drive: "")
    start = friday.index('<ResourceList displayName="Partitions">')
    friday = friday[:start] + friday[start:].replace("5.1.0.309", "5.1.0.420", 1)
    for name, text in (("monday.xml", monday), ("friday.xml", friday)):
        (folder / name).write_text(re.sub(r'timestamp="[^"]*"', f'timestamp="{COLLECTED[name]}"', text))


def run(folder, command):
    done = subprocess.run(["/bin/sh", "-c", command], cwd=folder, capture_output=True, text=True,
                          env={**os.environ, "PATH": f"{PROGRAMS}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"})
    assert done.returncode in (0, 1) and done.stderr == "", (command, done)
    return done.stdout


# ---- Drawings

FONT = "ui-monospace, 'DejaVu Sans Mono', Menlo, Consolas, monospace"
COLOURS = {"31": "#e8808c", "32": "#4fbf9a", "33": "#e79a4b", "35": "#c483d3", "36": "#55b9d1"}
LETTER, LINE = 8.43, 20


def spans(line):
    """A line of a terminal, its colours as spans. Blanks that stay together are of the kind that does not break."""
    line = line.replace(" ", "\u00a0")
    pieces = re.split("\x1b\\[(\\d*)m", line)
    text = html.escape(pieces[0], quote=False)
    for code, piece in zip(pieces[1::2], pieces[2::2]):
        piece = html.escape(piece, quote=False)
        text += f'<tspan fill="{COLOURS[code]}">{piece}</tspan>' if code in COLOURS else piece
    return text


def clipped(line, columns):
    """As a terminal of that many columns shows a line that it does not fold."""
    left = columns
    text = ""
    for piece in re.split("(\x1b\\[\\d*m)", line):
        if not piece.startswith("\x1b"):
            piece = piece[:left]
            left -= len(piece)
        text += piece
    return text


def terminal(command, output, columns, lines):
    shown = [clipped(line, columns) for line in output.splitlines()[:lines]]
    width, height = round(columns * LETTER) + 40, (len(shown) + 1) * LINE + 60
    body = "".join(f'<text x="20" y="{62 + at * LINE}">{line}</text>\n' for at, line in enumerate(
        [f'<tspan fill="#7fb0ff">$</tspan> {spans(command)}'] + [spans(line) for line in shown]))
    dots = "".join(f'<circle cx="{22 + at * 18}" cy="20" r="5" fill="#465264"/>' for at in range(3))
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" role="img">\n'
            f'<title>{html.escape(command)}</title>\n<rect width="{width}" height="{height}" rx="9" fill="#161b23"/>\n{dots}\n'
            f'<g font-family="{FONT}" font-size="14" fill="#e4e8ef">\n{body}</g>\n</svg>\n')


def explained():
    """The first thing that docs/when-a-run-fails.md has kord explain tell; its own test keeps it true."""
    page = (SOURCES / "docs/when-a-run-fails.md").read_text()
    return re.search(r"```sh\n(kord explain[^\n]*)\n```\n\n```\n(.*?)(?:status \d+\n)?```\n", page, re.S).groups()


def terminals(folder):
    wanted = {
        "show": ("kord show monday.xml", 110, 24),
        "list": ("kord list drives monday.xml --where 'rack = 1' --where 'firmware < T0B' -c id,enclosure,slot,serial,firmware", 112, 20),
        "diff": ("kord diff --group monday.xml friday.xml", 112, 12),
    }
    for name, (command, columns, lines) in wanted.items():
        output = run(folder, command.replace("kord diff", "kord diff --color always"))
        yield f"{name}.svg", terminal(command, output, columns, lines)
    command, output = explained()
    yield "explain.svg", terminal(command, output, 118, 30)


STYLE = """<style>
.box { fill: #ffffff; stroke: #7c8494; } .own { fill: #e7effd; stroke: #1f5fd0; } .data { fill: #fff4de; stroke: #c26a10; }
text { font: 14px system-ui, 'DejaVu Sans', sans-serif; fill: #1b2230; } .name { font-weight: 700; font-size: 15px; } .soft { fill: #5d6779; }
path { stroke: #5d6779; stroke-width: 1.5; fill: none; marker-end: url(#tip); } marker path { fill: #5d6779; stroke: none; }
@media (prefers-color-scheme: dark) {
.box { fill: #1a202a; stroke: #707c8f; } .own { fill: #1e2d49; stroke: #7fb0ff; } .data { fill: #33290f; stroke: #e79a4b; }
text { fill: #e4e8ef; } .soft { fill: #98a3b5; } path { stroke: #98a3b5; } marker path { fill: #98a3b5; } }
</style>
<defs><marker id="tip" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="8" markerHeight="8" orient="auto"><path d="M0 0L8 4L0 8z"/></marker></defs>
"""


def box(kind, x, y, width, height, name, *lines):
    texts = "".join(f'<text class="soft" x="{x + 14}" y="{y + 46 + at * 20}">{html.escape(line)}</text>' for at, line in enumerate(lines))
    return (f'<rect class="{kind}" x="{x}" y="{y}" width="{width}" height="{height}" rx="8"/>'
            f'<text class="name" x="{x + 14}" y="{y + 24}">{html.escape(name)}</text>{texts}\n')


def arrow(path, text="", x=0, y=0):
    return f'<path d="{path}"/>' + (f'<text class="soft" x="{x}" y="{y}">{html.escape(text)}</text>\n' if text else "\n")


def architecture():
    parts = [
        box("box", 10, 20, 240, 106, "The console", "resource manager: Vale", "programs, ownership, events", "on the machine itself"),
        box("own", 10, 200, 240, 106, "kord-console", "the same console, simulated:", "facility file, faults, journal", "run, check, make"),
        box("own", 350, 90, 240, 146, "addTarnKord", "sessions and checks", "collectors: a table, a walk", "queries: asked, judged, traced", "writers: list, resource, property"),
        box("data", 690, 20, 240, 66, "Inventory document", "addTarnKord_MTMS.xml"),
        box("data", 690, 106, 240, 66, "Trace log", "kord.SERIAL.log"),
        box("data", 690, 192, 240, 66, "Serviceable events", "filed on the console"),
        box("data", 10, 370, 240, 66, "Facility file", "a console, recorded or made"),
        box("own", 350, 320, 240, 116, "kord record", "between collector and client:", "what was asked and answered,", "redacted if wanted"),
        box("own", 690, 320, 240, 116, "kord", "documents: show, list, json, diff", "fleets: import, history", "runs: explain, follow, metrics"),
        arrow("M250 73H300V140H348", "answers", 258, 64), arrow("M250 253H300V190H348", "or", 262, 244),
        arrow("M590 120H640V53H688"), arrow("M590 139H688"), arrow("M590 190H640V225H688"),
        arrow("M465 236V318"), arrow("M350 403H252"), arrow("M125 370V308", "replays", 136, 345),
        arrow("M930 53H956V356H932"), arrow("M930 139H944V376H932"),
    ]
    return ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 970 456" width="970" height="456" role="img">\n'
            "<title>What reads and writes what</title>\n" + STYLE + "".join(parts) + "</svg>\n")


# ---- Pictures of pages

SHOW = "kord show --html page.html monday.xml"
DIFF = "kord diff --html page.html monday.xml friday.xml"
PAGES = {
    "page-light.png": (SHOW, "", "light", 1200, 830),
    "page-dark.png": (SHOW, "", "dark", 1200, 830),
    "page-rack.png": (SHOW, "at=rack:U1234.5R0.RK000001&q=firmware%3DT0A4", "light", 1200, 620),
    "page-enclosure.png": (SHOW, "at=storageEnclosure:U1234.5X6.AB100002&part=drive:U1234.5X6.AB100002-P1-D5", "light", 1200, 700),
    "page-changes.png": (DIFF, "", "light", 1200, 700),
}


def made_from(folder, name):
    """A hash of the page and of how it is looked at."""
    command, *how = PAGES[name]
    run(folder, command)
    return hashlib.sha256((folder / "page.html").read_bytes() + repr(how).encode()).hexdigest()


def photograph(folder, name):
    sys.path.insert(0, str(SOURCES / "tests/tool"))
    from browser import Browser
    _, address, scheme, width, height = PAGES[name]
    browser = Browser(width=width, height=height, scheme=scheme)
    try:
        browser.open(folder / "page.html")
        browser.run("location.hash = arguments[0]", address)
        browser.wait_until("return document.querySelector('#main').childElementCount > 0 "
                           "&& [...document.querySelectorAll('.cells')].every((one) => one.childElementCount > 0)")
        browser.run("return new Promise((done) => setTimeout(done, 400))")
        browser.screenshot(PICTURES / name)
    finally:
        browser.close()


def hash_of(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


# ---- All of them

def drawings(folder):
    results = plots.drawings((SOURCES / "docs/performance.md").read_text())
    return {**dict(terminals(folder)), "architecture.svg": architecture(), **results}


def make(folder):
    PICTURES.mkdir(exist_ok=True)
    for name, drawing in drawings(folder).items():
        (PICTURES / name).write_text(drawing)
    known = json.loads(MANIFEST.read_text()) if MANIFEST.exists() else {}
    manifest = {}
    for name in PAGES:
        source = made_from(folder, name)
        if known.get(name, {}).get("from") != source or not (PICTURES / name).exists():
            photograph(folder, name)
            print(f"{name}: {(PICTURES / name).stat().st_size:,} bytes")
        manifest[name] = {"from": source, "is": hash_of(PICTURES / name)}
    MANIFEST.write_text(json.dumps(manifest, indent=2) + "\n")


def check(folder):
    wrong = []
    drawn = drawings(folder)
    for name, drawing in drawn.items():
        if not (PICTURES / name).exists() or (PICTURES / name).read_text() != drawing:
            wrong.append(f"{name} is not what would be drawn now")
    manifest = json.loads(MANIFEST.read_text())
    for name in PAGES:
        known = manifest.get(name, {})
        if known.get("from") != made_from(folder, name):
            wrong.append(f"{name} is of a page that looked otherwise")
        if not (PICTURES / name).exists() or known.get("is") != hash_of(PICTURES / name):
            wrong.append(f"{name} is not the picture of the manifest")
    there = {path.name for path in PICTURES.iterdir()} - {MANIFEST.name}
    pages = [SOURCES / "README.md", *(SOURCES / "docs").glob("*.md")]
    used = {name for page in pages for name in re.findall(r"pictures/([\w.-]+)", page.read_text())}
    for name in sorted(there ^ (set(drawn) | set(PAGES))):
        wrong.append(f"{name} is there, but nothing makes it, or the other way round")
    for name in sorted(there ^ used):
        wrong.append(f"{name} is in no page, or not there")
    wrong += [f"{name} has more than {MOST_BYTES:,} bytes" for name in sorted(there) if (PICTURES / name).stat().st_size > MOST_BYTES]
    for line in wrong:
        print(line)
    print(f"{len(there)} pictures, {len(wrong)} faults" + ("; scripts/pictures makes them anew" if wrong else ""))
    return 1 if wrong else 0


with tempfile.TemporaryDirectory() as working:
    documents(pathlib.Path(working))
    sys.exit(check(pathlib.Path(working)) if "--check" in sys.argv[3:] else make(pathlib.Path(working)))

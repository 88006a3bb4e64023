"""docs/architecture.md names each file of document/ in its table, and no other.

Usage: architecture_test.py SOURCES
"""

import re
import sys
from pathlib import Path

sources = Path(sys.argv[1])
page = (sources / "docs/architecture.md").read_text()
table = page[page.index("| files of `document/` |"):].split("\n\n")[0]
told = re.findall(r"`([\w/]+)`", "".join(row.split("|")[1] for row in table.splitlines()[2:]))
files = [path for path in (sources / "document").iterdir() if path.name != "CMakeLists.txt"]
there = {f"{path.name}/" if path.is_dir() else path.name.split(".")[0] for path in files}
missing, gone = sorted(there - set(told)), sorted(set(told) - there)
twice = sorted({name for name in told if told.count(name) > 1})
if missing or gone or twice:
    sys.exit(f"not told: {missing}, not there: {gone}, told twice: {twice}")

"""Runs the programs of a page and compares what they print with what the page says: programs_test.py PAGE HEADING
DOCUMENT BIN."""

import os
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
COMMANDS = {"sh": ["sh", "-eu"], "python": [sys.executable, "-"]}


def programs_of(page, heading):
    """Name, language, program and output of each section under the heading."""
    section = re.search(rf"^## {heading}\n(.*?)(?=^## |\Z)", page, re.M | re.S).group(1)
    for name, text in re.findall(r"^### (.*?)\n(.*?)(?=^### |\Z)", section, re.M | re.S):
        blocks = re.findall(r"^```(\w*)\n(.*?)^```$", text, re.M | re.S)
        (language, program), (plain, output) = blocks
        assert language in COMMANDS and not plain, name
        yield name, language, program, output


def main():
    page, heading, document, programs = sys.argv[1:]
    missing = [one for one in ["jq", "sqlite3", "xmllint"] if not shutil.which(one)]
    if missing:
        print("not installed:", *missing)
        return SKIPPED
    failures = ran = 0
    os.environ["PATH"] = os.path.abspath(programs) + ":" + os.environ["PATH"]
    with open(page, encoding="utf-8") as file:
        text = file.read()
    for name, language, program, wanted in programs_of(text, heading):
        ran += 1
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(document, os.path.join(folder, "inventory.xml"))
            run = subprocess.run(COMMANDS[language], input=program, cwd=folder, capture_output=True, text=True)
        start = wanted.removesuffix("...\n")
        fits = run.stdout == wanted if start == wanted else run.stdout.startswith(start)
        if run.returncode != 0 or run.stderr or not fits or len(program.splitlines()) > 10:
            print(f"{name}: status {run.returncode}, {run.stderr!r}, {run.stdout!r}, expected {wanted!r}")
            failures += 1
    print(ran, "programs,", failures, "failures")
    return 1 if failures or ran != 4 else 0


sys.exit(main())

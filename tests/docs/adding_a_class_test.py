"""Does what docs/adding-a-class.md says, in a copy of the sources, and runs the page's cases.

    adding_a_class_test.py SOURCES BUILD WORK

Only what the page changes is compiled; the rest is linked from the folder BUILD. WORK is made anew.
"""

import json
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import unittest

SOURCES, BUILD, WORK = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
PAGE = "docs/adding-a-class.md"
ROOMS = ["kord", "console", "tests", "docs"]
MOST_COLLECTOR_LINES = 45
MOST_FILES = 12
MADE_ANEW = {"docs/codes.md": [], "docs/man/kord-codes.7": ["--manual"]}

TREE, OBJECTS, BIN = WORK / "tree", WORK / "objects", WORK / "build/bin"


def blocks_of(page):
    """The page's blocks in order, each with the file named last before it."""
    file, block = None, None
    for line in page.splitlines():
        if block is not None and line != "```":
            block.append(line)
        elif block is not None:
            yield file, block
            block = None
        elif line == "```diff":
            block = []
        else:
            file = next(iter(re.findall(r"`([\w/.]+/[\w.]+\.(?:cpp|h|json))`", line)[-1:]), file)


def apply(file, block):
    """Puts the block's new lines in the place of its old ones, which stand in the file once."""
    text = (TREE / file).read_text()
    old, new = ("".join(line[1:] + "\n" for line in block if line[:1] != sign) for sign in "+-")
    if text.count("\n" + old) + text.startswith(old) != 1:
        raise AssertionError(f"{file} has these lines {text.count(old)} times, not once:\n{old}")
    (TREE / file).write_text(text.replace(old, new, 1))


def run(command, folder=BUILD):
    done = subprocess.run(command, cwd=folder, shell=isinstance(command, str), text=True, capture_output=True)
    if done.returncode != 0 or "warning:" in done.stderr:
        raise AssertionError(f"{command}\n{done.stdout}{done.stderr}")
    return done.stdout


class Compiler:
    """Compiles a file of the copy as the build compiles the original."""

    def __init__(self):
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        self.commands = {entry["file"]: entry for entry in commands}

    def compile(self, original, copy):
        entry = self.commands[str(original)]
        words = [self.moved(word) for word in shlex.split(entry["command"])]
        made = OBJECTS / (copy.name + ".o")
        words[words.index("-o") + 1] = str(made)
        words[words.index("-c") + 1] = str(copy)
        run(words, entry["directory"])
        return made

    @staticmethod
    def moved(word):
        for room in ROOMS:
            word = word.replace(f"{SOURCES}/{room}", f"{TREE}/{room}")
        return word.replace(f'KORD_SOURCE_DIR="{SOURCES}"', f'KORD_SOURCE_DIR="{TREE}"')


def link(program, objects):
    """Links a program anew: the objects come first, and take the place of a library's."""
    command = run(["ninja", "-t", "commands", f"bin/{program}"]).strip().splitlines()[-1]
    output = f"-o bin/{program}"
    assert output in command, command
    ours = " ".join(shlex.quote(str(made)) for made in objects)
    for made in objects:  # an object of the program's own
        command = re.sub(rf"\S*/{re.escape(made.name)}(?= )", "", command)
    run(command.replace(output, f"{ours} -o {shlex.quote(str(BIN / program))}"))


class AddingAClass(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(WORK, ignore_errors=True)
        for room in ROOMS:
            shutil.copytree(SOURCES / room, TREE / room)
        OBJECTS.mkdir()
        BIN.mkdir(parents=True)
        for companion in ("lib", "libexec"):
            (WORK / "build" / companion).symlink_to(BUILD / companion)
        cls.blocks = list(blocks_of((SOURCES / PAGE).read_text()))
        for file, block in cls.blocks:
            apply(file, block)

    def test_1_it_is_short(self):
        files = {file for file, _ in self.blocks} | set(MADE_ANEW)
        self.assertLessEqual(len(files), MOST_FILES, sorted(files))
        added = [line for file, block in self.blocks if file.startswith("kord/") for line in block
                 if line.startswith("+") and line != "+"]
        self.assertLessEqual(len(added), MOST_COLLECTOR_LINES)
        self.assertGreater(len(added), 20)

    def test_2_it_compiles_and_its_cases_pass(self):
        compiler = Compiler()
        changed = sorted({file for file, _ in self.blocks if file.endswith(".cpp")})
        made = {file: compiler.compile(SOURCES / file, TREE / file) for file in changed}
        collector = [made[file] for file in changed if file.startswith("kord/")]
        link("addTarnKord", collector)
        link("kord-tables", collector)
        link("kord-console", [compiler.compile(BUILD / "console/facility/schemaText.cpp", self.schema_text())])
        told = run([BIN / "kord-tables", "--json"])
        tables = compiler.compile(BUILD / "document/tablesText.cpp", self.tables_text(told))
        cases = compiler.compile(SOURCES / "tests/runs/run_test.cpp", TREE / "tests/runs/run_test.cpp")
        link("run_test", [cases, made["tests/support/documentReader.cpp"], tables])

        for page, options in MADE_ANEW.items():
            self.assertNotEqual(run([BIN / "kord-tables", *options]), (SOURCES / page).read_text())

        told = json.loads(told)
        self.assertIn("queryCooler", [query["function"] for query in told["queries"]])
        passed = run(["env", f"KORD_TRIED={BIN.parent}", BIN / "run_test",
                      "--gtest_filter=*oolers*:*documents_calls:*documents_small:*wholeTrace_small"])
        self.assertRegex(passed, r"\[  PASSED  \] 11 tests")

    @staticmethod
    def schema_text():
        template = (SOURCES / "console/facility/schemaText.cpp.in").read_text()
        schema = (TREE / "console/schema/facility.schema.json").read_text()
        copy = TREE / "console/facility/schemaText.cpp"
        copy.write_text(template.replace("@KORD_FACILITY_SCHEMA@", schema))
        return copy

    @staticmethod
    def tables_text(told):
        tables, copy = WORK / "tables.json", TREE / "document/tablesText.cpp"
        tables.write_text(told)
        run(["cmake", "-D", f"TABLES={tables}", "-D", f"TEXT={copy}", "-P", SOURCES / "document/tablesText.cmake"])
        return copy


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

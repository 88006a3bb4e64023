# Every block of docs/when-a-run-fails.md is what its command prints. A comment before the blocks of a failure says
# how the simulated console fails: {"faults": [...]} as in a facility file, {"folders": [...]} that lie in the way.
# An empty comment is a console where nothing fails.
#
#     when_a_run_fails_test.py BIN SOURCE [--update]
import json
import os
import re
import subprocess
import sys
import tempfile

bin, source = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
update = "--update" in sys.argv[3:]
page = os.path.join(source, "docs/when-a-run-fails.md")
facility = json.load(open(os.path.join(source, "console/facilities/facility.json")))
blocks = re.compile(r"<!-- console (?P<console>\{.*?\}) -->|```sh\n(?P<command>[^`]*)\n```\n\n```\n(?P<output>.*?)```\n", re.S)


class Console:
    """The simulated console of one failure, as its comment has it."""

    def __init__(self, told, root):
        self.root = root
        self.file = root + ".json"
        with open(self.file, "w") as out:
            json.dump(dict(facility, faults=told.get("faults", [])), out)
        for folder in told.get("folders", []):
            os.makedirs(root + folder)

    def output_of(self, command):
        """What the command prints and, where it is not 0, its status."""
        words = command.replace("/var/tarnquay/", self.root + "/var/tarnquay/")
        if command.startswith("addTarnKord"):
            words = "kord-console run --facility '%s' --root '%s' -- %s" % (self.file, self.root, words)
        done = subprocess.run(["/bin/sh", "-c", words], capture_output=True, text=True,
                              env=dict(os.environ, PATH=bin + ":" + os.environ["PATH"]))
        status = "" if done.returncode == 0 else "status %d\n" % done.returncode
        return at_a_fixed_time(done.stdout + done.stderr) + status


def at_a_fixed_time(text):
    text = re.sub(r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d to \d\d:\d\d:\d\d", "2026-11-21 13:41:03 to 13:41:09", text)
    return re.sub(r"(  line +\d+, )\d\d:\d\d:\d\d:", r"\g<1>13:41:05:", text)


def main():
    text = open(page).read()
    wrong = []
    compared = 0
    with tempfile.TemporaryDirectory() as folder:
        console = None
        consoles = 0

        def replaced(block):
            nonlocal console, compared, consoles
            if block["console"] is not None:
                consoles += 1
                root = os.path.join(folder, str(consoles))
                console = Console(json.loads(block["console"]), root)
                return block[0]
            compared += 1
            output = console.output_of(block["command"])
            if output != block["output"]:
                wrong.append("%s prints\n%snot\n%s" % (block["command"], output, block["output"]))
            return "```sh\n%s\n```\n\n```\n%s```\n" % (block["command"], output)

        made = blocks.sub(replaced, text)
    if update:
        open(page, "w").write(made)
        return 0
    print("\n".join(wrong))
    print("%d blocks, %d differ" % (compared, len(wrong)))
    return 1 if wrong or compared < 10 else 0


sys.exit(main())

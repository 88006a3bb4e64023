"""Asks a small fleet's database the questions of fleet/questions, and works the answers out from the rows of kord list
and from what was done to the fleet: questions_test.py KORD SOURCE"""

import collections
import json
import os
import pathlib
import pty
import sqlite3
import subprocess
import sys
import tempfile
import unittest

import makeFleet

KORD, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])
QUESTIONS = sorted((SOURCE / "fleet/questions").glob("*.sql"))
SYSTEMS, NIGHTS = 5, 3


def day(time):
    return time[:10]


class Fleet:
    def __init__(self, folder):
        text = (SOURCE / "tests/runs/expected/facility.xml").read_text()
        self.made = makeFleet.make(text, folder / "documents", SYSTEMS, NIGHTS)
        database = folder / "fleet.db"
        done = subprocess.run([KORD, "import", database, folder / "documents"], capture_output=True, text=True)
        assert done.stdout == f"{SYSTEMS * NIGHTS} documents imported\n", done
        self.database = sqlite3.connect(database)
        listed = subprocess.run([KORD, "list", "all", "--format", "jsonl", folder / "documents"], capture_output=True)
        self.rows = [json.loads(line) for line in listed.stdout.splitlines()]
        self.times = collections.defaultdict(set)
        for row in self.rows:
            self.times[row["system"]].add(row["collected"])
        self.newest = {system: max(times) for system, times in self.times.items()}

    def now(self, kind):
        return [row for row in self.rows if row["kind"] == kind and row["collected"] == self.newest[row["system"]]]

    def changes(self):
        """System, time, kind of change, old serial number, serial number of every change of a drive."""
        for system in self.made:
            times = sorted(self.times[system.name])
            for night, change, _, old, serial in system.changes:
                yield system.name, times[night], change, old, serial


def grouped(rows, *columns):
    groups = collections.defaultdict(list)
    for row in rows:
        groups[tuple(row.get(column) for column in columns)].append(row)
    return groups


def systems_of(rows):
    return len({row["system"] for row in rows})


def answers(fleet):
    drives, ranks = fleet.now("drive"), fleet.now("rank")
    changes = list(fleet.changes())
    new = [row for row in drives if row["firmware"] == makeFleet.NEW_FIRMWARE]
    of_facility = {row["system"]: row["facility"] for row in fleet.now("system")}
    cut = fleet.made[2].name
    there = {row["serial"] for row in drives}
    since = {}
    for row in sorted(fleet.rows, key=lambda row: row["collected"]):
        if row["kind"] == "drive" and row["firmware"] == makeFleet.NEW_FIRMWARE:
            since.setdefault((row["system"], row["serial"]), row["collected"])
    yield [(one, of_facility[one], time, int(one != cut)) for one, time in sorted(fleet.newest.items())]
    yield [(fleet.made[1].name, fleet.newest[fleet.made[1].name])]
    yield [(cut, fleet.newest[cut], '["the partitions","the end"]')]
    yield sorted(((one, min(times)) for one, times in fleet.times.items() if one != fleet.made[1].name),
                 key=lambda row: (row[1], row[0]))
    yield sorted(((key[0], len(group), sum(row["capacity_mb"] for row in group))
                  for key, group in grouped(drives, "system").items()), key=lambda row: (-row[2], row[0]))
    yield sorted((*key, len(group), systems_of(group))
                 for key, group in grouped(drives, "part_number", "firmware").items())
    yield sorted((*key, min(row["firmware"] for row in group), max(row["firmware"] for row in group))
                 for key, group in grouped(drives, "part_number").items())
    yield sorted((row["system"], row["rack"], row["enclosure"], row["slot"], row["serial"]) for row in new)
    yield sorted(((row["system"], row["serial"], since[row["system"], row["serial"]]) for row in new),
                 key=lambda row: (row[2], row[0], row[1]))
    replaced = collections.Counter(system for system, _, change, _, _ in changes if change == "replaced")
    yield sorted(replaced.items(), key=lambda row: (-row[1], row[0]))
    yield sorted(((time, system, old or serial) for system, time, change, old, serial in changes
                  if change in ("removed", "replaced") and (old or serial) not in there),
                 key=lambda row: (row[0], row[2]))
    yield sorted((row["collected"], row["system"], row["id"]) for row in fleet.rows
                 if row["kind"] == "drive" and row["serial"] == makeFleet.TRAVELLER)
    yield [(*key, systems_of(group)) for key, group in grouped(drives, "serial").items() if systems_of(group) > 1]
    yield sorted((*key, len(group), sum(row["segments"] for row in group))
                 for key, group in grouped(ranks, "system", "image", "pool").items())
    last = collections.Counter((system, "drive", change) for system, time, change, _, _ in changes
                               if time == fleet.newest[system])
    yield sorted((*key, count) for key, count in last.items())
    yield sorted(collections.Counter(change[0] for change in changes).items(), key=lambda row: (-row[1], row[0]))[:10]
    yield sorted((row["system"], row["id"], row["serial"], row["state"]) for row in drives if row["state"] != 0)
    yield sorted(((*key, systems_of(group), sum(row["ports"] for row in group))
                  for key, group in grouped(fleet.now("host"), "description").items()), key=lambda row: (-row[1], row[0]))
    yield sorted((*key, len(group), systems_of(group)) for key, group in grouped(fleet.now("partition"), "firmware").items())
    yield sorted(((row["system"], row["rack"], row["id"], row["remaining_life"]) for row in fleet.now("battery")
                  if row["remaining_life"] < 70), key=lambda row: (row[3], row[0], row[2]))


class Questions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.fleet = Fleet(pathlib.Path(cls.folder.name))

    @classmethod
    def tearDownClass(cls):
        cls.fleet.database.close()
        cls.folder.cleanup()

    def test_each_has_its_answer(self):
        wanted = list(answers(self.fleet))
        self.assertEqual(len(QUESTIONS), 20)
        self.assertEqual(len(wanted), 20)
        for question, answer in zip(QUESTIONS, wanted):
            with self.subTest(question.stem):
                self.assertTrue(answer)
                self.assertEqual(self.fleet.database.execute(question.read_text()).fetchall(), answer)

    def test_an_import_shows_its_progress_on_a_terminal_alone(self):
        database = pathlib.Path(self.folder.name) / "again.db"
        documents = sorted((pathlib.Path(self.folder.name) / "documents").iterdir())[:2]
        terminal, end = pty.openpty()
        done = subprocess.run([KORD, "import", database, *documents], stdout=subprocess.PIPE, stderr=end, text=True)
        os.close(end)
        shown = os.read(terminal, 10000).decode()
        os.close(terminal)
        self.assertEqual(done.stdout, "2 documents imported\n")
        self.assertRegex(shown, r"^\r1: .*\x1b\[K.*\r2: .*\x1b\[K\r\x1b\[K$")
        self.assertNotIn("\n", shown)
        done = subprocess.run([KORD, "import", database, *documents], capture_output=True, text=True)
        self.assertEqual((done.stdout, done.stderr), ("0 documents imported, 2 there already\n", ""))

    def test_the_page_asks_them(self):
        page = (SOURCE / "docs/fleet.md").read_text()
        at = 0
        for question in QUESTIONS:
            title, sql = question.read_text().split("\n", 1)
            at = page.find(f"### {title.removeprefix('-- ')}\n\n```sql\n{sql}```\n", at)
            self.assertNotEqual(at, -1, question.stem)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

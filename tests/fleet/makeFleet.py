"""Makes a fleet's documents out of one, night by night: makeFleet.py DOCUMENT FOLDER SYSTEMS NIGHTS

Each system has serial numbers of its own. Every night one in a hundred of its drives is replaced, gets new firmware or
another service state, in turn. In the last night

    system 0   swaps two drives, and shows a serial number that system 1 has
    system 1   has not been heard of for nine days: all its documents are that much older
    system 2   leaves a document without its partitions
    system 3   loses a drive
"""

import pathlib
import random
import re
import sys

LAST_NIGHT = 1795132800  # 20 November 2026
DAY = 86400
NEW_FIRMWARE = "T0C9"
TRAVELLER = "WK00000001"  # the serial number of one of the swapped drives
DRIVE = re.compile(r'<Resource displayName="OSK Physical Disk Drive" uniqueId="([^"]*)">.*?</Resource>\n', re.S)


def value_of(block, code):
    return re.search(rf'<Property name="{code}".*?<Value type="string">(.*?)</Value>', block, re.S).group(1)


def with_value(block, code, value):
    return re.sub(rf'(<Property name="{code}".*?<Value type="string">).*?(</Value>)',
                  lambda found: found[1] + value + found[2], block, count=1, flags=re.S)


class System:
    """A system's document, and what has happened to its drives: (night, change, id, old serial, serial)."""

    def __init__(self, text, number):
        self.number = number
        self.name = f"9999-B2C-7ABC{number:04d}"
        text = text.replace("7ABCD12", f"7ABC{number:04d}")
        self.between = DRIVE.split(text)[0::2]
        self.drives = [found[0] for found in DRIVE.finditer(text)]
        self.ids = [found[1] for found in DRIVE.finditer(text)]
        for place, drive in enumerate(self.drives):
            self.drives[place] = with_value(drive, "SN", f"{number:04d}{value_of(drive, 'SN')[4:]}")
        if number == 0:
            self.set(1, "SN", TRAVELLER)
        self.changes = []

    def serial(self, place):
        return value_of(self.drives[place], "SN")

    def set(self, place, code, value):
        self.drives[place] = with_value(self.drives[place], code, value)

    def note(self, night, change, place, old=None):
        self.changes.append((night, change, self.ids[place], old, self.serial(place)))

    def replace(self, night, place, serial):
        old = self.serial(place)
        self.set(place, "SN", serial)
        self.note(night, "replaced", place, old)

    def live(self, night):
        rnd = random.Random(self.number * 1000 + night)
        places = rnd.sample(range(8, len(self.drives)), max(1, len(self.drives) // 100))
        for turn, place in enumerate(places, self.number + night):
            if turn % 3 == 0:
                self.replace(night, place, f"N{self.number:04d}{night:02d}{place:05d}")
                continue
            if turn % 3 == 1 and value_of(self.drives[place], "LE") != NEW_FIRMWARE:
                self.set(place, "LE", NEW_FIRMWARE)
            else:
                items = value_of(self.drives[place], "DP")
                states = ("ST=0", "ST=2") if items.endswith("ST=0") else ("ST=2", "ST=0")
                self.set(place, "DP", items.replace(*states))
            self.note(night, "changed", place)

    def last(self, night):
        if self.number == 0:
            one, other = self.serial(1), self.serial(2)
            self.drives[1], self.drives[2] = self.at_place_of(2, 1), self.at_place_of(1, 2)
            self.changes += [(night, "moved", self.ids[1], None, other), (night, "moved", self.ids[2], None, one)]
            self.replace(night, 3, shared_serial)
        if self.number == 3:
            self.changes.append((night, "removed", self.ids[-1], None, self.serial(-1)))
            self.drives[-1] = ""

    def at_place_of(self, drive, place):
        return self.drives[drive].replace(self.ids[drive], self.ids[place])

    def document(self, night, nights):
        time = LAST_NIGHT - (nights - 1 - night) * DAY - (9 * DAY if self.number == 1 else 0)
        text = "".join(between + drive for between, drive in zip(self.between, self.drives + [""]))
        text = re.sub(r'timestamp="[0-9.]*"', f'timestamp="{time}.{self.number + 1}"', text, count=1)
        if self.number == 2 and night == nights - 1:
            text = text[:text.index('<ResourceList displayName="Partitions">')]
        return text


def make(text, folder, systems, nights):
    """Writes the documents, a system's one after the other, and returns the systems."""
    global shared_serial
    folder.mkdir(parents=True, exist_ok=True)
    made = [System(text, number) for number in range(systems)]
    shared_serial = made[1].serial(4)
    for system in made:
        for night in range(nights):
            if night > 0:
                system.live(night)
            if night > 0 and night == nights - 1:
                system.last(night)
            name = f"addTarnKord_9999-B2C*7ABC{system.number:04d}.{night:02d}.xml"
            (folder / name).write_text(system.document(night, nights))
    return made


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]).read_text(), pathlib.Path(sys.argv[2]), int(sys.argv[3]), int(sys.argv[4]))

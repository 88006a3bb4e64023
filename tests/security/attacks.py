"""Attacks on the collector and the tools, each tried in earnest on the simulated console: what a user who may write to
the console's folders can plant there, what whoever starts the collector can hand it. Prints a table; status 1 when one
of them does not end as it should. Run by root, everything is tried again as an ordinary user.

    attacks.py PROGRAMS SOURCE [SECTION...]     the folder of the built programs, the sources; some of the table only
"""

import contextlib
import json
import os
import pathlib
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import threading
import time
import zlib

MTMS = "9999-B2C*7ABCD12"
SUCCESS = "XML file was built successfully. This is the normal return.\n"
LOG = "var/tarnquay/log/kord.7ABCD12.log"
ERRORS = "var/tarnquay/log/kord.root.log"
OUTPUT = "var/brisk/log/tmp.7ABCD12"
DOCUMENT = f"var/adm/stockmere/VPD/addTarnKord_{MTMS}.xml"
SECRET = "a private file\n"
LIMIT = 30  # seconds; a run takes a tenth of one
NOBODY = 65534
NOBODYS_GROUP = 65533  # of another number than the user, so that one is not taken for the other
AS_NOBODY = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODYS_GROUP}", "--clear-groups", "--no-new-privs")

programs, source = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
wanted = sys.argv[3:]


class Failed(Exception):
    """An attack did not end as it should."""


def require(holds, what):
    if not holds:
        raise Failed(what)


class Console:
    """A simulated console of one attack's own, with a private file beside it."""

    def __init__(self, folder, faults=()):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "console"
        self.secret = self.folder / "secret"
        self.made = self.folder / "made"  # by nobody, if all is well
        facility = json.loads((source / "console/facilities/small.json").read_text())
        facility["faults"] = list(faults)
        self.facility = self.folder / "facility.json"
        self.facility.write_text(json.dumps(facility))
        for place in (LOG, OUTPUT, DOCUMENT):
            (self.root / place).parent.mkdir(parents=True, exist_ok=True)
        self.secret.write_text(SECRET)
        self.secret.chmod(0o600)

    def at(self, place):
        return self.root / place

    def command(self, *program, user=None):
        return [programs / "kord-console", "run", "--facility", self.facility, "--root", self.root,
                *(["--user", user] if user else []), "--", *program]

    def start(self, *program, user=None, umask=-1, **options):
        """Runs a program on the console; -1 is the status of one that never ended."""
        command = self.command(*program, user=user)
        with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              start_new_session=True, umask=umask, **options) as process:
            try:
                output, error = process.communicate(timeout=LIMIT)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)
                return -1, "", "it never ended"
        return process.returncode, output.decode(errors="replace"), error.decode(errors="replace")

    def run(self, before="", mtms=MTMS, around="exec \"$collector\" x \"$0\"", **options):
        """Runs the collector after some lines of shell."""
        return self.start("sh", "-c", f"collector='{programs}/addTarnKord'\n{before}\n{around}", mtms, **options)

    def document(self):
        with contextlib.suppress(FileNotFoundError):
            return re.sub(r'timestamp="[^"]*"', "", self.at(DOCUMENT).read_text(errors="replace"))
        return None

    def log(self):
        return self.at(LOG).read_text(errors="replace")

    def events(self):
        return (self.root / "journal.jsonl").read_text().count("pmProblemEventPoster")

    def require_spared(self):
        require(self.secret.read_text() == SECRET, "the private file was changed")
        require(self.secret.stat().st_mode & 0o7777 == 0o600, "the private file was opened to others")
        require(not self.made.exists(), "what the link led to was made")


def require_success(console, outcome, document=True):
    status, output, error = outcome
    require(status == 3 and output == SUCCESS, f"status {status}, {output!r} {error[-200:]!r}")
    require(not document or console.document() == regular_document(), "the document is another")


def require_end(outcome):
    """The run ended itself, well or not."""
    status, _, error = outcome
    require(status in (3, 255), f"status {status} {error[-200:]!r}")


@contextlib.contextmanager
def console_of(faults=()):
    with tempfile.TemporaryDirectory(prefix="kord-attack-") as folder:
        yield Console(folder, faults)


regular = []


def regular_document():
    if not regular:
        with console_of() as console:
            outcome = console.run()
            require(outcome[:2] == (3, SUCCESS), f"an ordinary run ends with {outcome}")
            regular.append(console.document())
    return regular[0]


# ---- what lies at a name ----

def plant_link(console, place):
    console.at(place).symlink_to(console.secret)


def plant_dangling_link(console, place):
    console.at(place).symlink_to(console.made)


def plant_fifo(console, place):
    os.mkfifo(console.at(place))


def plant_hard_link(console, place):
    os.link(console.secret, console.at(place))


def plant_empty_hard_link(console, place):
    console.at(place).parent.joinpath("other").touch(0o600)
    os.link(console.at(place).parent / "other", console.at(place))


def plant_folder(console, place):
    console.at(place).mkdir()


PLANTED = {
    "a link to a private file": plant_link,
    "a link that leads nowhere": plant_dangling_link,
    "a FIFO": plant_fifo,
    "a private file's second name": plant_hard_link,
    "an empty file's second name": plant_empty_hard_link,
    "a folder": plant_folder,
}

SESSIONS = {"call": "end_session", "fails": {"code": 7, "message": "no end\n"}}


def planted(place, plant, user=None):
    """With something planted at the name, and an event to file, the run ends as it should."""
    with console_of([SESSIONS]) as console:
        plant(console, place)
        outcome = console.run(user=user)
        is_folder = place == DOCUMENT and plant is plant_folder
        require_success(console, outcome, document=not is_folder)
        require(console.events() > 0, "no event was filed")
        console.require_spared()
        other = console.at(place).parent / "other"
        require(not other.exists() or (other.stat().st_size == 0 and other.stat().st_mode & 0o7777 == 0o600),
                "the empty file was changed")


def planted_attacks():
    for place, name in ((LOG, "the trace log"), (ERRORS, "the ownership command's errors"), (DOCUMENT, "the document"),
                        (OUTPUT, "a command's output")):
        for what, plant in PLANTED.items():
            if place == OUTPUT and plant is plant_folder:
                continue  # then there is no output: the checks count as passed, and the user is unknown
            yield f"{what} at {name}", lambda place=place, plant=plant: planted(place, plant)
    yield ("a private file's second name at the log, as another user",
           lambda: planted(LOG, plant_hard_link, user="guest"))


# ---- races ----

RACES = 8  # runs


@contextlib.contextmanager
def meanwhile(attack):
    """Attacks again and again as long as the block runs."""
    ended = threading.Event()

    def go_on():
        while not ended.is_set():
            with contextlib.suppress(OSError):
                attack()
    thread = threading.Thread(target=go_on)
    thread.start()
    try:
        yield
    finally:
        ended.set()
        thread.join()


def believed(attack_of):
    """How many runs took a forged state of the systems for what the console said."""
    count = 0
    for _ in range(RACES):
        with console_of() as console:
            with meanwhile(attack_of(console)):
                status, output, _ = console.run()
            require(status in (3, 255), f"status {status}")
            count += output == "Check State fails.\n"
    return count


def replaced_output():
    def attack_of(console):
        forged = console.folder / "forged"

        def attack():
            if console.at(OUTPUT).exists():
                forged.write_text("Forged\n")
                forged.replace(console.at(OUTPUT))
        return attack
    count = believed(attack_of)
    require(count == 0, f"{count} of {RACES} runs believed it")


def overwritten_output():
    def attack_of(console):
        def attack():
            with open(console.at(OUTPUT), "r+b", buffering=0) as file:
                file.write(b"Forged\n")
        return attack
    return f"{believed(attack_of)} of {RACES} runs believed it"


def link_at_the_log_in_between():
    made = 0
    for _ in range(RACES):
        with console_of([SESSIONS]) as console:
            other = console.at(LOG).parent / "other"

            def attack(console=console, other=other):
                other.unlink(missing_ok=True)
                other.symlink_to(console.made)
                other.replace(console.at(LOG))
                console.at(LOG).unlink()
            with meanwhile(attack):
                outcome = console.run()
            require(outcome[0] == 3, f"status {outcome[0]}")
            require(console.secret.read_text() == SECRET, "the private file was changed")
            made += console.made.exists()
    return f"{made} of {RACES} runs followed it"


def hard_link_at_the_document():
    for _ in range(RACES):
        with console_of() as console:
            def attack(console=console):
                os.link(console.secret, console.at(DOCUMENT))
                console.at(DOCUMENT).unlink()
            with meanwhile(attack):
                outcome = console.run()
            require(outcome[0] == 3, f"status {outcome[0]}")
            console.require_spared()


def link_at_the_output():
    written = 0
    for _ in range(RACES):
        with console_of() as console:
            other = console.at(OUTPUT).parent / "other"

            def attack(console=console, other=other):
                other.unlink(missing_ok=True)
                other.symlink_to(console.secret)
                if console.at(OUTPUT).exists():
                    other.replace(console.at(OUTPUT))
            with meanwhile(attack):
                outcome = console.run()
            require_end(outcome)
            written += console.secret.read_text() != SECRET
    return f"{written} of {RACES} runs wrote through it"


PLANTER = """
import os, sys
own = sys.argv[1] + "/of-nobody"
print(flush=True)
while True:
    for name in sys.argv[3:]:
        for plant in (os.symlink, os.link):
            for step in (lambda: os.unlink(own), lambda: plant(sys.argv[2], own), lambda: os.replace(own, name), lambda: os.unlink(name)):
                try:
                    step()
                except OSError:
                    pass
"""


def recommended_folders():
    """In folders with the sticky bit another user gets nothing to the names of a run that is on its way."""
    with console_of([SESSIONS]) as console:
        console.folder.chmod(0o755)
        for place in (LOG, OUTPUT, DOCUMENT):
            console.at(place).parent.chmod(0o1777)
        console.at(DOCUMENT).parent.chmod(0o755)
        names = [console.at(place) for place in (LOG, OUTPUT, DOCUMENT, ERRORS)]
        planter = [*AS_NOBODY, sys.executable, "-c", PLANTER, console.at(LOG).parent, console.secret, *names]
        require_success(console, console.run())  # the log is there
        with subprocess.Popen(planter, stdout=subprocess.PIPE) as attack:
            attack.stdout.readline()
            try:
                for _ in range(RACES):
                    outcome = console.run()
                    require(outcome[:2] == (3, SUCCESS), f"it ends with {outcome}")
                    console.require_spared()
            finally:
                attack.kill()


def race_attacks():
    yield "a private file's second name put at the document's name, again and again", hard_link_at_the_document
    yield "a file put in the place of a command's output, again and again", replaced_output
    if os.geteuid() == 0:
        yield "links of another user in the recommended folders, again and again", recommended_folders


def accepted_races():
    yield "a command's output overwritten in place, again and again", overwritten_output
    yield "a link put at the name of a command's output before the shell opens it", link_at_the_output
    yield "a link put at the log's name between two looks, again and again", link_at_the_log_in_between


# ---- arguments ----

def hostile_argument(mtms):
    with console_of() as console:
        status, output, _ = console.run(mtms=mtms)
        require(status == 255 and output == "", f"status {status}, {output!r}")
        require(list(console.at(LOG).parent.iterdir()) == [], "a log was written")
        require(not console.made.exists() and not os.path.exists("canary"), "something was run")


def argument_attacks():
    for mtms in ("9999-B2C*$(touch canary)", "9999-B2C*`id`;id", "9999-B2C*../../../", "9999-B2C*7AB\nid", "x" * 100_000 + "$",
                 "9999-B2C*7A'\"&|<>", "\x1b]0;title\x07", "%n%n%n%n%s%s%s%s%s%s%s%s", "", "-", "9999-B2C*7AB\xff\xfe"):
        name = mtms if len(mtms) < 40 else mtms[:10] + "..."
        yield f"the argument {ascii(name)}", lambda mtms=mtms: hostile_argument(mtms)


# ---- the environment ----

def in_environment(before, judge=require_success, around="exec \"$collector\" x \"$0\""):
    with console_of() as console:
        outcome = console.run(before, around=around, cwd=console.folder)
        judge(console, outcome)
        console.require_spared()


def ends(_, outcome):
    require_end(outcome)


def same_document(console, outcome):
    require(outcome[0] == 3, f"status {outcome[0]} {outcome[2][-200:]!r}")
    require(console.document() == regular_document(), "the document is another")


def gone_reader():
    with console_of() as console:
        status = console.folder / "status"
        console.run(around=f"{{ sleep 0.2; \"$collector\" x \"$0\"; echo $? >'{status}'; }} | :")
        require(status.read_text() == "3\n", f"status {status.read_text()!r}")
        require(console.document() == regular_document(), "the document is another")


def child_signals(before, wanted, around="exec \"$collector\" x \"$0\""):
    """What the run starts has the signals that the run was given."""
    with console_of() as console:
        tool = console.folder / "bin"
        tool.mkdir()
        found = console.folder / "signals"
        (tool / "whoami").write_text(f"#!/bin/sh\ngrep SigIgn /proc/self/status >'{found}'\necho root\n")
        (tool / "whoami").chmod(0o755)
        outcome = console.run(f"PATH='{tool}':$PATH\n{before}", around=around)
        require_success(console, outcome)
        ignored = int(found.read_text().split()[1], 16)
        signals = {signal for signal in (13, 17, 25) if ignored >> (signal - 1) & 1}  # PIPE, CHLD, XFSZ
        require(signals == wanted, f"ignored are {signals}")


BLOCKED = ("exec python3 -c 'import os, signal, sys\n"
           "signal.pthread_sigmask(signal.SIG_BLOCK, range(1, 65))\n"
           "os.execvp(sys.argv[1], sys.argv[1:])' \"$collector\" x \"$0\"")
IGNORED = BLOCKED.replace("signal.pthread_sigmask(signal.SIG_BLOCK, range(1, 65))",
                          "signal.signal(signal.SIGPIPE, signal.SIG_DFL)\n"
                          "signal.signal(signal.SIGXFSZ, signal.SIG_DFL)\n"
                          "signal.signal(signal.SIGCHLD, signal.SIG_IGN)")


def environment_attacks():
    for name, before in (
            ("PATH is empty", "PATH=; export PATH"),
            ("IFS is a minus sign", "export IFS=-"),
            ("LANG and LC_ALL are no locale's", "export LANG=../../etc LC_ALL=$(printf '%5000s' x)"),
            ("TZ leads nowhere", "export TZ=:/nonexistent"),
            ("TZ is long", "export TZ=$(printf 'A%50000s' 1)"),
            ("ENV and BASH_ENV name scripts", "echo 'exit 9' >e; export ENV=$PWD/e BASH_ENV=$PWD/e"),
            ("POSIXLY_CORRECT, GREP_OPTIONS and AWKPATH are set",
             "export POSIXLY_CORRECT=1 GREP_OPTIONS=-v GREP_COLORS=mt=1 AWKPATH=/nonexistent"),
            ("the environment holds a megabyte", "export BIG1=$(printf '%100000s' x) BIG2=$(printf '%100000s' x)"),
            ("the umask is 0", "umask 0"),
            ("the umask is 777", "umask 777"),
            ("standard input is closed", "exec <&-"),
            ("standard error is closed", "exec 2>&-"),
            ("PIPE is ignored", "trap '' PIPE"),
            ("HUP, INT, QUIT, TERM, ALRM and USR1 are ignored", "trap '' HUP INT QUIT TERM ALRM USR1"),
            ("the stack is small", "ulimit -s 512"),
            ("no core may be written", "ulimit -c 0"),
    ):
        judge = ends if name == "PATH is empty" else same_document
        if "umask is 777" in name:
            judge = lambda console, outcome: require(outcome[0] == 3, f"status {outcome[0]}")
        yield name, lambda before=before, judge=judge: in_environment(before, judge)
    yield "standard output is closed", lambda: in_environment("exec >&-", same_document)
    yield "all three streams are closed", lambda: in_environment("exec <&- >&- 2>&-", same_document)
    yield "standard output's reader is gone", gone_reader
    yield "standard output is a full disk", lambda: in_environment("exec >/dev/full", same_document)
    yield "all signals are blocked", lambda: in_environment("", same_document, BLOCKED)
    yield "ends of children are ignored", lambda: in_environment("", same_document, IGNORED)
    yield "what a run starts has the signals' defaults", lambda: child_signals("", set(), IGNORED)
    yield "what a run starts ignores what the run was told to ignore", lambda: child_signals("trap '' PIPE", {13})
    for files in (3, 4, 5, 6, 8, 12, 20):
        # The sanitizers' search for leaks needs files of its own, and ends a run that is over without them.
        before = f"export ASAN_OPTIONS=detect_leaks=0; ulimit -n {files}"
        yield f"{files} open files", lambda before=before: in_environment(before, started)
    for blocks in (0, 1, 8):
        yield f"files of {blocks * 512} bytes", lambda blocks=blocks: in_environment(f"ulimit -f {blocks}", ends)


def started(_, outcome):
    """With too few files the loader may not even reach the program; what it starts ends by itself."""
    require(outcome[0] in (3, 126, 127, 255), f"status {outcome[0]} {outcome[2][-200:]!r}")


# ---- the tools ----

def tool(arguments, statuses, before=""):
    with console_of() as console:
        require(console.run()[0] == 3, "no document to read")
        arguments = [argument.format(root=console.root, document=console.at(DOCUMENT), log=console.at(LOG),
                                     secret=console.secret, folder=console.folder) for argument in arguments]
        try:
            done = subprocess.run(["sh", "-c", f"cd '{console.folder}'\n{before}\nexec \"$0\" \"$@\"",
                                   programs / "kord", *arguments],
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=LIMIT, check=False)
        except subprocess.TimeoutExpired as error:
            raise Failed("it never ended") from error
        require(done.returncode in statuses, f"status {done.returncode} {done.stderr[-200:]!r}")
        console.require_spared()


def tool_attacks():
    trouble = range(1, 3)
    for name, arguments, statuses, before in (
            ("kord show of a folder", ["show", "{folder}"], trouble, ""),
            ("kord show of the null device", ["show", "/dev/null"], range(3), ""),
            ("kord show onto a full disk", ["show", "{document}"], trouble, "exec >/dev/full"),
            ("kord show without standard streams", ["show", "{document}"], range(3), "exec <&- >&- 2>&-"),
            ("kord show in a small stack", ["show", "{document}"], [0], "ulimit -s 512"),
            ("kord diff of a folder", ["diff", "{folder}", "{document}"], trouble, ""),
            ("kord show of deep nesting", ["show", "deep.xml"], range(3),
             "awk 'BEGIN { for (i = 0; i < 200000; ++i) printf \"<a>\" }' >deep.xml"),
            ("kord show of a name that is an option", ["show", "--", "--version"], trouble, ""),
            ("kord list of a folder with a FIFO among its documents", ["list", "drives", "documents"], [0],
             "mkdir -p documents/addTarnKord_b.xml; mkfifo documents/addTarnKord_a.xml; cp console/var/adm/stockmere/VPD/*.xml documents"),
            ("kord follow of a log that is a folder", ["follow", "{folder}"], trouble, ""),
    ):
        yield name, lambda arguments=arguments, statuses=statuses, before=before: tool(arguments, statuses, before)
    if os.geteuid() == 0:  # who alone can give a FIFO away
        yield "kord show onto a FIFO of another user that nobody reads", lambda: tool(
            ["show", "--html", "fifo", "{document}"], trouble, f"mkfifo fifo; chown {NOBODY} fifo")


# ---- the launcher ----

IMAGE = ".console/image"
KEY = ".console/image.key"
LAUNCHER_FILES = ("journal.jsonl", ".console/state", IMAGE, KEY)
LAUNCHER_FOLDERS = ("var", "var/adm/stockmere/VPD", "var/tarnquay/log", "opt/brisk/bin", ".console", ".console/bin")
OPEN_TO_ALL = 0o777


def require_answer(console):
    outcome = console.start("whoami")
    require(outcome == (0, "root\n", ""), f"the console answers {outcome}")


def require_refusal(console, reason):
    """One line of the launcher's own, and nothing run."""
    status, output, error = console.start("whoami")
    require(status == 125 and output == "", f"status {status}, {output!r}")
    require(error.startswith("kord-console: ") and error.count("\n") == 1 and error.endswith("\n") and reason in error,
            f"it says {error!r}")


@contextlib.contextmanager
def bare_console():
    """Without its folders, and with a private folder beside it, where nothing may be made."""
    with console_of() as console:
        shutil.rmtree(console.root)
        console.facility = source / "console/facilities/small.json"  # of a file just written no image is kept
        console.private = console.folder / "private"
        console.private.mkdir()
        yield console
        require(list(console.private.iterdir()) == [], "something was made in the private folder")
        console.require_spared()


def planted_file(name, plant):
    """In place of a file that the launcher left: it is made anew, or the launcher says why it cannot."""
    with bare_console() as console:
        require_answer(console)
        console.at(name).unlink()
        plant(console, name)
        if plant is plant_folder:
            require_refusal(console, f"{name}: Is a directory")
            return
        require_answer(console)
        status = console.at(name).lstat()
        require(stat.S_ISREG(status.st_mode) and status.st_nlink == 1, "it stayed what it was")


def given_away(place):
    os.chown(place, NOBODY, NOBODYS_GROUP, follow_symlinks=False)


def folder_of_another(place, _):
    place.mkdir()
    given_away(place)
    return "belongs to nobody"


def link_of_another(place, private):
    place.symlink_to(private)
    given_away(place)
    return "belongs to nobody"


def folder_open_to_all(place, _):
    place.mkdir()
    place.chmod(OPEN_TO_ALL)
    return "can be written by everyone"


def refused(place, plant, below=""):
    """Where another user has, or can have, his hands on a folder, nothing is written."""
    with bare_console() as console:
        at = console.root / place if place else console.root
        at.parent.mkdir(parents=True, exist_ok=True)
        reason = plant(at, console.private)
        console.root = f"{console.root}{below}"
        require_refusal(console, reason)
        require(not at.exists() or list(at.iterdir()) == [], "something was made there")


def root_of_the_machine():
    with bare_console() as console:
        console.root = "/"
        require_refusal(console, "/ belongs to ")


def open_umask():
    with bare_console() as console:
        console.start("true", umask=0)
        for folder, _, _ in os.walk(console.root):
            require(os.stat(folder).st_mode & 0o022 == 0, f"others may write to {folder}")


def damaged_image(damages):
    """However the image kept for the next run was damaged, it is made anew."""
    with bare_console() as console:
        require_answer(console)
        image = console.at(IMAGE).read_bytes()
        key = console.at(KEY).read_bytes()
        for number, (damaged_bytes, damaged_key) in enumerate(damages(image, key)):
            console.at(IMAGE).write_bytes(damaged_bytes)
            console.at(KEY).write_bytes(damaged_key)
            require_answer(console)
            require(console.at(IMAGE).read_bytes() == image, f"damage {number} stayed")
            require(console.at(KEY).read_bytes() == key, f"the key of damage {number} stayed")


def flipped(image, key):
    for i in range(40):
        damaged = bytearray(image)
        for place in (i * 8, i * 577, i * 7919):
            damaged[place % len(image)] ^= 1 << i % 8
        yield bytes(damaged), key


def cut(image, key):
    for length in (0, 1, len(image) // 2, len(image) - 1):
        yield image[:length], key
        yield image, key[:length]


def grown(image, key):
    yield image + b"\0", key
    yield image * 2, key
    yield image, key + key


def of_another_launcher(image, key):
    """Its checksum is right, but another program made it."""
    other = image[:4] + bytes([image[4] ^ 1]) + image[5:]
    lines = key.decode().splitlines(keepends=True)
    lines[1] = "1" + lines[1]
    lines[-1] = f"crc32 {zlib.crc32(other)}\n"
    yield other, "".join(lines).encode()


def launcher_attacks():
    for name in LAUNCHER_FILES:
        for what, plant in PLANTED.items():
            yield f"{what} at {name}", lambda name=name, plant=plant: planted_file(name, plant)
    for what, plant in (("a folder of another user", folder_of_another), ("a link of another user", link_of_another),
                        ("a folder open to all", folder_open_to_all)):
        if plant is not folder_open_to_all and os.geteuid() != 0:
            continue  # only root gives files away
        yield f"{what} as the console's root", lambda plant=plant: refused("", plant)
        yield f"{what} above the console's root", lambda plant=plant: refused("", plant, "/inner/root")
        for name in LAUNCHER_FOLDERS:
            yield f"{what} at {name}", lambda name=name, plant=plant: refused(name, plant)
    if os.geteuid() == 0:
        yield "a link of another user and a / as the console's root", lambda: refused("", link_of_another, "/")
    else:
        yield "the machine's root as the console's root", root_of_the_machine
    yield "a umask that opens every folder", open_umask
    for what, damages in (("with flipped bits", flipped), ("cut", cut), ("grown", grown), ("of another launcher", of_another_launcher)):
        yield f"a kept image {what}", lambda damages=damages: damaged_image(damages)


# ---- the table ----

SECTIONS = (("planted", planted_attacks), ("races", race_attacks), ("arguments", argument_attacks),
            ("environment", environment_attacks), ("launcher", launcher_attacks), ("tools", tool_attacks))


def try_all(user):
    broken = 0
    for section, attacks in SECTIONS:
        for name, attack in attacks() if not wanted or section in wanted else ():
            try:
                attack()
                result = "held"
            except Failed as failure:
                broken += 1
                result = f"BROKEN: {failure}"
            print(f"{user:7} {section:12} {name:70} {result}", flush=True)
    for name, attack in accepted_races() if not wanted or "accepted" in wanted else ():
        print(f"{user:7} {'accepted':12} {name:70} {attack()}", flush=True)
    return broken


def try_as_nobody():
    """Nothing where the programs cannot be reached by others."""
    reached = subprocess.run([*AS_NOBODY, programs / "kord-console", "--version"], capture_output=True, check=False)
    if shutil.which("setpriv") is None or reached.returncode != 0:
        print("*** NOT TRIED as an ordinary user: the programs lie where nobody else may look. ***")
        return 0
    return subprocess.run([*AS_NOBODY, sys.executable, "-B", __file__, programs, source, *wanted],
                          cwd="/", env={**os.environ, "HOME": "/nonexistent"}, check=False).returncode


def main():
    started_at = time.monotonic()
    is_root = os.geteuid() == 0
    broken = try_all("root" if is_root else "user")
    if is_root:
        broken += try_as_nobody()
    print(f"{time.monotonic() - started_at:.0f} seconds", flush=True)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())

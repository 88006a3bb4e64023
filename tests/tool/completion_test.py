"""Types into a real shell and sees what its completion makes of it: completion_test.py SHELL BIN."""

import os
import pty
import re
import select
import shutil
import sys
import tempfile
import time

SKIPPED = 77

# What is typed, up to the tabulator, and what the line is then. Names with blanks, quotes and line feeds come out
# quoted, each shell in its own way.
TYPED = {
    "kord sh": "kord show ",
    "kord show my": r"kord show my\ file.xml ",
    "kord show it": r"kord show it\'s.xml ",
    "kord show q": r"kord show q\"q.xml ",
    "kord show li": {
        "bash": "kord show 'line^Jfeed.xml' ",
        "zsh": r"kord show line$'\n'feed.xml ",
        "fish": r"kord show line\nfeed.xml ",
    },
    "kord show --html=my": r"kord show --html=my\ file.xml ",
    "kord show --co": "kord show --color ",
    "kord show --color al": "kord show --color always ",
    "kord show --color=n": "kord show --color=never ",
    "kord diff -o my": r"kord diff -o my\ file.xml ",
    "kord record -- kord-cons": "kord record -- kord-console ",
    "kord record -- kord sh": "kord record -- kord sh",  # the program's own business
    "kord completion f": "kord completion fish ",
    "kord-console run --root only": r"kord-console run --root only\ folder/",
    "kord-console ch": "kord-console check ",
}

OWN = ".own"  # the shell's folder, which completion does not offer

COMMANDS = {
    "bash": ["bash", "--norc", "--noprofile", "-i"],
    "zsh": ["zsh", "-f", "-i"],
    "fish": ["fish", "--no-config", "-i"],
}
START = {
    "bash": "bind 'set enable-bracketed-paste off'; source <(kord completion bash); source <(kord-console completion bash)",
    "zsh": "autoload -U compinit; compinit -u -D; source <(kord completion zsh); source <(kord-console completion zsh)",
    "fish": "kord completion fish | source; kord-console completion fish | source",
}


class Terminal:
    def __init__(self, shell, folder, programs):
        pid, self.descriptor = pty.fork()
        if pid == 0:
            os.chdir(folder)
            own = os.path.join(folder, OWN)
            os.environ.update(
                PATH=programs + ":" + os.environ["PATH"], TERM="dumb", PS1="$ ", HOME=folder, COLUMNS="200",
                TMPDIR=own, XDG_RUNTIME_DIR=own,
            )
            os.execvp(shell, COMMANDS[shell])

    def type(self, keys):
        os.write(self.descriptor, keys.encode())

    def until(self, wanted, seconds=20):
        """Reads until the wanted function of all that came is true."""
        text = ""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if select.select([self.descriptor], [], [], 0.1)[0]:
                text += os.read(self.descriptor, 65536).decode(errors="replace")
            elif wanted(text):
                return text
        return text


def line_of(output):
    """What stands in the line of a dumb terminal after these writes."""
    line, column = [], 0
    for piece in re.findall(r"\x1b\[[0-9?;]*[a-zA-Z]|.", output, re.S):
        if piece == "\r":
            column = 0
        elif piece == "\b":
            column -= 1
        elif len(piece) == 1 and piece >= " ":
            line[column : column + 1] = [piece]
            column += 1
    return re.sub(r"^.*?[$#>] +", "", "".join(line), count=1)


def main():
    shell, programs = sys.argv[1], os.path.abspath(sys.argv[2])
    if not shutil.which(shell):
        print(shell, "is not installed")
        return SKIPPED
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        for name in ["my file.xml", "it's.xml", 'q"q.xml', "line\nfeed.xml"]:
            open(os.path.join(folder, name), "w").close()
        os.mkdir(os.path.join(folder, "only folder"))
        os.mkdir(os.path.join(folder, OWN))
        open(os.path.join(folder, "only file"), "w").close()
        for typed, wanted in TYPED.items():
            wanted = wanted if isinstance(wanted, str) else wanted[shell]
            terminal = Terminal(shell, folder, programs)
            terminal.type(START[shell] + "; echo rea''dy\n")
            terminal.until(lambda text: re.search(r"ready\r?\n.*[$#>] ", text, re.S))
            terminal.type(typed + "\t")
            output = terminal.until(lambda text: line_of(text).rstrip() == wanted.rstrip(), 5)
            if line_of(output).rstrip() != wanted.rstrip():
                print(f"{shell}: {typed!r}: expected {wanted!r}, got {line_of(output)!r} of {output!r}")
                failures += 1
            os.close(terminal.descriptor)
    print(shell, len(TYPED), "completions,", failures, "failures")
    return 1 if failures else 0


sys.exit(main())

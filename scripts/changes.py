"""Finds the places of a C++ source where one small change can be made, and makes it: for scripts/mutants."""

import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
    |(?P<directive>^[ \t]*\#(?:[^\n\\]|\\.)*)
    |(?P<raw>R"(?P<mark>\w*)\(.*?\)(?P=mark)")
    |(?P<string>"(?:\\.|[^"\\\n])*")
    |(?P<character>'(?:\\.|[^'\\\n])+')
    |(?P<number>\b\d(?:'?[\w.])*)
    |(?P<word>[A-Za-z_]\w*)
    |(?P<sign>\.\.\.|<=>|<<=|>>=|->|::|\+\+|--|<<|==|!=|<=|>=|&&|\|\||\[\[|\]\]|[-+*/%&|^]=|[^\s\w])""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

CLOSERS = {"(": ")", "[": "]", "{": "}", "[[": "]]"}
OPPOSITES = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
JOINTS = {"&&": "||", "||": "&&"}
SUMS = {"+": "-", "-": "+", "+=": "-=", "-=": "+="}
NEGATED = {"true": "false", "false": "true"}
# A call without which the program does the same.
HINTS = {"reserve", "shrink_to_fit", "static_cast"}
# The order of their arguments is the same to them; texts are compared for being equal.
SYMMETRIC = {"min", "max", "strcmp", "strncmp", "memcmp", "equal"}
PARAMETER = re.compile(r"(const )?[\w:]+(<.*>)?[&*]* [&*]*\w+( = .*)?")
# What is judged by the compiler alone.
CHECKED_BY_COMPILER = {"static_assert", "template", "requires", "concept", "alignas"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass(frozen=True)
class Change:
    """One change of one place, and how it looks: the lines that it touches, squeezed into one."""

    kind: str
    file: str
    line: int
    old: str
    new: str
    text: str  # the whole file, changed


def squeezed(text):
    return " ".join(text.split())


def change_of(kind, file, text, start, end, replacement):
    begin = text.rfind("\n", 0, start) + 1
    finish = text.find("\n", end)
    finish = len(text) if finish < 0 else finish
    return Change(
        kind,
        file,
        text.count("\n", 0, start) + 1,
        squeezed(text[begin:finish]),
        squeezed(text[begin:start] + replacement + text[end:finish]),
        text[:start] + replacement + text[end:],
    )


def paragraphs(top, file):
    """The changes written down in a file, each as its title and its lines; the first paragraph tells of the file."""
    return [paragraph.split("\n") for paragraph in (top / file).read_text().strip().split("\n\n")[1:]]


def misplaced_changes(top):
    """What is wrong with the written changes: each names one place of a file that is there."""
    for title, file, old, _ in paragraphs(top, "tests/mutants.txt"):
        count = (top / file).read_text().count(old)
        if count != 1:
            yield f'{file}: the text of "{title}" stands there {count} times.'
    for known in equivalents(top):
        if not any(known.old in squeezed(path.read_text()) for path in known.files(top)):
            yield f"{known.file}: the line that cannot be noticed is not there: {known.old}"


@dataclass(frozen=True)
class Equivalent:
    """A change that no test can notice, and why."""

    reason: str
    file: str  # a folder: all of its files
    old: str
    new: str  # "(anything)": whatever it becomes; a kind in brackets: by any such change that touches the line

    def files(self, top):
        place = top / self.file
        return [path for path in sorted(place.rglob("*")) if path.is_file()] if place.is_dir() else [place]

    def covers(self, change):
        there = change.file.startswith(self.file) if self.file.endswith("/") else change.file == self.file
        if self.new == f"({change.kind})":
            return there and self.old in change.old
        return there and change.old == self.old and self.new in (change.new, "(anything)")


def equivalents(top):
    reason = ""
    for title, file, old, new in paragraphs(top, "tests/equivalents.txt"):
        reason = reason if title == "The same." else title
        yield Equivalent(reason, file, squeezed(old), squeezed(new))


class Source:
    def __init__(self, text):
        self.text = text
        found = (Token(match.lastgroup if match.lastgroup != "mark" else "raw", *spot(match))
                 for match in TOKEN.finditer(text))
        self.tokens = [token for token in found if token.kind not in ("comment", "directive")]
        self.partner = self.partners()
        self.left_out = self.parts_for_the_compiler()

    def partners(self):
        """The index of each bracket's other half."""
        partner, open_ones = {}, []
        for i, token in enumerate(self.tokens):
            if token.text in CLOSERS and token.kind == "sign":
                open_ones.append(i)
            elif token.text in CLOSERS.values() and token.kind == "sign" and open_ones:
                if CLOSERS[self.tokens[open_ones[-1]].text] == token.text:
                    partner[open_ones[-1]] = i
                    partner[i] = open_ones.pop()
        return partner

    def parts_for_the_compiler(self):
        left_out = set()
        for i, token in enumerate(self.tokens):
            if token.text == "[[":
                left_out.update(range(i, self.partner.get(i, i) + 1))
            elif token.text in CHECKED_BY_COMPILER:
                end = i
                while end + 1 < len(self.tokens) and self.tokens[end].text not in (";", "{", ">"):
                    end += 1
                left_out.update(range(i, end))
        return left_out

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def spaced(self, i):
        """Brackets of templates and signs of numbers have no blanks around them."""
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and self.text[token.end].isspace()

    def joins_text(self, i):
        return "string" in (self.tokens[i - 1].kind, self.tokens[i + 1].kind)

    def called(self, i):
        """The name that is called with the bracket at i, without its template arguments."""
        before = i - 1
        if self.at(before) == ">":
            while before > 0 and self.at(before) != "<":
                before -= 1
            before -= 1
        return self.at(before)

    def items(self, i):
        """The spans of what stands between the commas of the bracket at i, if it is a list."""
        items, begin, depth = [], i + 1, i + 1
        end = self.partner.get(i, i)
        while depth < end:
            if self.at(depth) in CLOSERS and depth in self.partner:
                depth = self.partner[depth]
            elif self.at(depth) == ",":
                items.append((begin, depth))
                begin = depth + 1
            elif self.at(depth) == ";" or (self.at(depth) == "." and depth == begin):
                return []  # statements, or members by name, which have their order
            depth += 1
        if begin < end:
            items.append((begin, end))
        return [(self.tokens[first].start, self.tokens[last - 1].end) for first, last in items if first < last]

    # Each of these yields (start, end, replacement).

    def letters(self, random):
        for i, token in enumerate(self.tokens):
            if token.kind not in ("string", "raw") or self.at(i - 1) == "extern":
                continue
            places = [match.start() for match in re.finditer(r"\\.|(?P<plain>[^\\])", token.text)
                      if match.group("plain") and 0 < match.start() < len(token.text) - 1]
            if token.kind == "raw":
                places = list(range(token.text.index("(") + 1, token.text.rindex(")")))
            if places:
                at = token.start + random.choice(places)
                yield at, at + 1, next_letter(self.text[at])

    def comparisons(self, random):
        for i, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text in OPPOSITES and self.spaced(i):
                yield token.start, token.end, OPPOSITES[token.text]

    def constants(self, random):
        for i, token in enumerate(self.tokens):
            if token.text in NEGATED:
                yield token.start, token.end, NEGATED[token.text]
            elif token.kind == "number":
                yield token.start, token.end, next_number(token.text)
            elif token.kind == "character" and len(token.text) == 3:
                yield token.start + 1, token.end - 1, next_letter(token.text[1]) or "_"

    def calls(self, random):
        """Statements that are nothing but a call."""
        for i, token in enumerate(self.tokens):
            if token.kind != "word" or self.at(i - 1) not in (";", "{", "}", ")", "else"):
                continue
            end, names = i, [token.text]
            while self.at(end + 1) in ("::", ".", "->") and self.tokens[end + 2].kind == "word":
                end += 2
                names.append(self.at(end))
            if self.at(end + 1) != "(" or names[-1] in HINTS or names[0] in ("if", "for", "while", "switch"):
                continue
            closing = self.partner.get(end + 1)
            if closing is not None and self.at(closing + 1) == ";":
                yield token.start, self.tokens[closing].end, ""

    def conditions(self, random):
        for i, token in enumerate(self.tokens):
            if token.text in ("if", "while") and self.at(i + 1) == "(" and i + 1 in self.partner:
                first, last = self.tokens[i + 1].end, self.tokens[self.partner[i + 1]].start
                inside = self.text[first:last]
                if ";" not in inside and not re.match(r"(const )?\w[\w:<>]*[*&]? \w+ = ", inside):
                    yield first, last, f"!({inside})"
            elif token.text == "!" and token.kind == "sign":
                yield token.start, token.end, ""

    def joints(self, random):
        for i, token in enumerate(self.tokens):
            if token.text in JOINTS and token.kind == "sign" and self.spaced(i):
                yield token.start, token.end, JOINTS[token.text]
            elif token.text in SUMS and token.kind == "sign" and self.spaced(i) and not self.joins_text(i):
                yield token.start, token.end, SUMS[token.text]

    def arguments(self, random):
        """Neighbours in a list, where the list is handed over and not declared."""
        for i, token in enumerate(self.tokens):
            if token.text not in ("(", "{") or token.kind != "sign" or i not in self.partner:
                continue
            if self.called(i) in SYMMETRIC or "enum" in [self.at(before) for before in range(i - 5, i)]:
                continue
            items = self.items(i)
            if any(PARAMETER.fullmatch(self.text[slice(*item)]) for item in items):
                continue
            pairs = [(a, b) for a, b in zip(items, items[1:])
                     if self.text[slice(*a)] != self.text[slice(*b)]]
            if pairs:
                (start, comma), (after, end) = random.choice(pairs)
                yield start, end, self.text[after:end] + self.text[comma:after] + self.text[start:comma]


def spot(match):
    return match.group(), match.start(), match.end()


def next_letter(letter):
    """A letter becomes the next one, a figure the next one; anything else goes."""
    if letter.isascii() and letter.isalnum():
        return {"z": "a", "Z": "A", "9": "0"}.get(letter) or chr(ord(letter) + 1)
    return ""


def next_number(text):
    figures = re.match(r"0[xX][0-9a-fA-F]+|\d+", text).group()
    if figures[:2] in ("0x", "0X"):
        return f"0x{int(figures, 16) + 1:0{len(figures) - 2}x}" + text[len(figures):]
    if len(figures) > 1 and figures[0] == "0":
        return f"0{int(figures, 8) + 1:o}" + text[len(figures):]
    return str(int(figures) + 1) + text[len(figures):]


KINDS = {
    "a letter of a text": Source.letters,
    "a comparison": Source.comparisons,
    "a constant": Source.constants,
    "a dropped call": Source.calls,
    "a negated condition": Source.conditions,
    "an operator": Source.joints,
    "swapped arguments": Source.arguments,
}


def random_changes(files, random):
    """All changes of the files, {name: text}, in random order: the kinds take turns at random, each as likely as
    the others, however many places it has."""
    places = {kind: [] for kind in KINDS}
    for file, text in files.items():
        source = Source(text)
        left_out = {source.tokens[i].start for i in source.left_out}
        for kind, find in KINDS.items():
            places[kind] += [(file, text, *place) for place in find(source, random) if place[0] not in left_out]
    for kind in places:
        random.shuffle(places[kind])
    while any(places.values()):
        kind = random.choice([kind for kind in places if places[kind]])
        yield change_of(kind, *places[kind].pop())

#!/usr/bin/env python3
"""Draws the benchmarks' results as SVG: plots.py PAGE FOLDER. PAGE holds what scripts/bench prints, in Markdown.

The colours stand out from white and from black; there is no background.
"""

import math
import re
import sys
from html import escape
from pathlib import Path

WIDTH = 720
STYLE = """<style>
text { font: 13px sans-serif; fill: #6e7781 }
.title { font-size: 15px; font-weight: bold }
.line { fill: none; stroke-width: 2.5 }
.grid { stroke: #6e7781; stroke-opacity: 0.35 }
.end { text-anchor: end }
.middle { text-anchor: middle }
@media (prefers-color-scheme: dark) { text { fill: #adbac7 } }
</style>"""
COLOURS = ["#3b82f6", "#d97706", "#16a34a", "#8b5cf6", "#e5484d"]


def tables(markdown):
    """The rows of every table by its heading, each a list of cells; the first row names the columns."""
    found = {}
    for section in re.split(r"^### ", markdown, flags=re.M)[1:]:
        rows = [
            [cell.strip() for cell in line.strip("|").split("|")]
            for line in section.splitlines()
            if line.startswith("|") and not line.startswith("| ---")
        ]
        found[section.splitlines()[0]] = rows
    return found


def number(cell):
    return float(re.match(r"[-+.\de]+", cell)[0])


def short(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


class Picture:
    def __init__(self, title, height):
        self.height = height
        self.parts = []
        self.text(8, 20, title, "title")

    def text(self, x, y, text, kind="", colour=None):
        style = f' style="fill: {colour}"' if colour else ""
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" class="{kind}"{style}>{escape(text)}</text>')

    def grid(self, x1, y1, x2, y2):
        self.parts.append(f'<line class="grid" x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}"/>')

    def bar(self, x, y, width, height, colour):
        self.parts.append(
            f'<rect x="{x:.1f}" y="{y:.1f}" width="{max(width, 1):.1f}" height="{height}" fill="{colour}"/>'
        )

    def line(self, points, colour):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polyline class="line" stroke="{colour}" points="{path}"/>')
        self.parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3.5" fill="{colour}"/>' for x, y in points]

    def drawing(self):
        head = f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{self.height}" viewBox="0 0 {WIDTH} {self.height}">'
        return "\n".join([head, STYLE, *self.parts, "</svg>", ""])


def curves(title, sizes, series, unit):
    """Values against the number of drives, both by powers of ten."""
    left, right, top, bottom = 70, 560, 50, 330
    picture = Picture(title, 375)
    values = [value for _, line in series for value in line]
    low, high = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))
    first, last = math.log10(sizes[0]), math.log10(sizes[-1])

    def x(size):
        return left + (math.log10(size) - first) / (last - first) * (right - left)

    def y(value):
        return bottom - (math.log10(value) - low) / (high - low) * (bottom - top)

    for power in range(low, high + 1):
        picture.grid(left, y(10**power), right, y(10**power))
        picture.text(left - 8, y(10**power) + 4, f"{10**power:,g}", "end")
    for size in sizes:
        picture.grid(x(size), top, x(size), bottom)
        picture.text(x(size), bottom + 20, f"{size:,}", "middle")
    picture.text((left + right) / 2, bottom + 38, "drives", "middle")
    picture.text(left - 8, top - 12, unit, "end")
    labels = []  # at the lines' ends, apart from each other
    for (name, line), colour in zip(series, COLOURS):
        picture.line([(x(size), y(value)) for size, value in zip(sizes, line)], colour)
        labels.append([y(line[-1]) + 4, f"{name}, {short(line[-1])}", colour])
    labels.sort()
    for above, label in zip(labels, labels[1:]):
        label[0] = max(label[0], above[0] + 16)
    for place, name, colour in labels:
        picture.text(right + 10, place, name, "", colour)
    return picture


def bars(title, rows, unit):
    """One bar a row; of pairs of values on a scale of powers of ten, two."""
    left, right, top = 250, 620, 40
    several = [row[1] if isinstance(row[1], tuple) else (row[1],) for row in rows]
    step = 10 + 16 * max(map(len, several))
    picture = Picture(title, top + step * len(rows) + 10)
    values = [value for row in several for value in row]
    low = math.log10(min(values)) - 0.3

    def width(value):
        share = (math.log10(value) - low) / (math.log10(max(values)) - low) if len(several[0]) > 1 else value / max(values)
        return share * (right - left)

    for place, ((name, _), row) in enumerate(zip(rows, several)):
        y = top + step * place
        picture.text(left - 10, y + 6 + 8 * len(row), name, "end")
        for at, value in enumerate(row):
            picture.bar(left, y + 1 + 16 * at, width(value), 14, COLOURS[at])
            picture.text(left + width(value) + 6, y + 13 + 16 * at, f"{short(value)} {unit}")
    return picture


def column(table, name):
    place = table[0].index(name)
    return [number(row[place]) for row in table[1:]]


def pictures(found):
    runs = found["Whole runs: own processor time, in ms"]
    sizes = [int(row[0]) for row in runs[1:]]
    costs = [
        (label, [1000 * ms / size for ms, size in zip(column(runs, name), sizes)])
        for label, name in (("collector", "collector"), ("its floor", "floor"), ("client", "of it the client"))
    ]
    yield "run-cost.svg", curves("Processor time of a run for each drive", sizes, costs, "µs")

    memory = found["Whole runs: peak memory, in MB"]
    lines = [("document", "document"), ("resident", "anonymous, resident"), ("own heap", "collector's heap")]
    lines = [(label, column(memory, name)) for label, name in lines]
    yield "run-memory.svg", curves("Peak memory of a run, and its document", sizes, lines, "MB")

    for file, start, title, name, unit in (
        ("document-writers.svg", "Writing the document", "Writing a document of 10,000 drives", "ms", "ms"),
        ("start.svg", "The start", "The start", "processor time, µs", "µs"),
        ("waiting.svg", "What a run at", "What a run at 100 drives waits for, by the wall clock", "ms", "ms"),
    ):
        table = next(rows for heading, rows in found.items() if heading.startswith(start))
        yield file, bars(title, list(zip([row[0] for row in table[1:]], column(table, name))), unit)

    for heading, table in found.items():
        if heading.startswith("The tools"):
            times = zip(column(table, "processor time, ms"), column(table, "the same bytes, ms"))
            rows = list(zip([row[0] for row in table[1:]], times))
            yield "tools.svg", bars("The tools at 100,000 drives, and the same bytes read and written, by powers of ten", rows, "ms")


def drawings(markdown):
    return {name: picture.drawing() for name, picture in pictures(tables(markdown))}


def main():
    page, folder = map(Path, sys.argv[1:])
    folder.mkdir(exist_ok=True)
    for name, drawing in drawings(page.read_text()).items():
        (folder / name).write_text(drawing)


if __name__ == "__main__":
    main()

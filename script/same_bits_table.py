#!/usr/bin/python3
"""Writes the table of script/same-bits --platforms into a document.

    same_bits_table.py FOLDER DOCUMENT

FOLDER holds for each platform what print_answers printed, and what it printed of the functions. The
first one is what the others are compared with.
"""

import math
import re
import sys
from pathlib import Path

PLATFORMS = {
    "linux": "Linux, x86-64",
    "arm64": "Linux, ARM64",
    "windows": "Windows",
    "webassembly": "WebAssembly",
}
START = "<!-- written by script/same-bits --platforms -->"
END = "<!-- end -->"


def read(path):
    """The lines of a file as pairs of words and numbers."""
    lines = []
    for line in path.read_text().splitlines():
        name = re.match(r"[^ ]*(?: (?!-?0x|-?nan|-?inf)[^ ]+)*", line).group()
        lines.append((name, [float.fromhex(word) for word in line[len(name) :].split()]))
    return lines


def is_same(a, b):
    return a == b or (math.isnan(a) and math.isnan(b))


def difference(a, b):
    """The largest difference of two lines, relative to the largest number of the line."""
    if any(math.isfinite(x) != math.isfinite(y) for x, y in zip(a, b)):
        return math.inf
    largest = max((abs(x) for x in a if math.isfinite(x)), default=0.0)
    steps = [abs(x - y) for x, y in zip(a, b) if math.isfinite(x)]
    return max(steps, default=0.0) / largest if largest > 0 else max(steps, default=0.0)


def compared(name, folder, chosen):
    """How many of the chosen lines differ from those of Linux, and by how much at most."""
    first, other = (read(folder / f"{one}.txt") for one in ("linux", name))
    if [line[0] for line in first] != [line[0] for line in other]:
        sys.exit(f"same_bits_table.py: {name} printed other lines")
    pairs = [(a[1], b[1]) for a, b in zip(first, other) if chosen(a[0])]
    unequal = [(a, b) for a, b in pairs if not all(map(is_same, a, b))]
    if any(len(a) != len(b) for a, b in pairs):
        sys.exit(f"same_bits_table.py: {name} printed lines of other lengths")
    return len(pairs), len(unequal), max((difference(a, b) for a, b in unequal), default=0.0)


def words(count, of, largest):
    return "none" if count == 0 else f"{count:,} of {of:,}, up to {largest:.1e}"


def functions(name, folder):
    """The functions that differ, the most frequent difference first."""
    first, other = (read(folder / f"{one}-functions.txt") for one in ("linux", name))
    found = []
    for (function, a), (_, b) in zip(first, other):
        unequal = [(x, y) for x, y in zip(a, b) if not is_same(x, y)]
        if unequal:
            units = max(abs(x - y) / math.ulp(x) for x, y in unequal)
            found.append((len(unequal) / len(a), f"{function} {100 * len(unequal) / len(a):.2g} % ({units:.0f})"))
    return ", ".join(text for _, text in sorted(found, reverse=True)) or "none"


def table(folder):
    rows = ["| | Lines of the exact mode | Lines of the fast mode | Functions |", "|---|---|---|---|"]
    for name, title in list(PLATFORMS.items())[1:]:
        total, count, largest = compared(name, folder, lambda line: not line.startswith("fast"))
        exact = words(count, total, largest)
        total, count, largest = compared(name, folder, lambda line: line.startswith("fast"))
        rows.append(f"| {title} | {exact} | {words(count, total, largest)} | {functions(name, folder)} |")
    return "\n".join(rows)


def main():
    folder, document = Path(sys.argv[1]), Path(sys.argv[2])
    rows = table(folder)
    print(rows)
    text = document.read_text()
    before, rest = text.split(START)
    document.write_text(before + START + "\n\n" + rows + "\n\n" + END + rest.split(END)[1])


main()

#!/usr/bin/env python3
"""How many lines of each room the tests ran.

    coverage.py COVERAGE.json [--lines]

COVERAGE.json is gcovr's. Lines of Objective-C++ are those of .mm and .m files and of headers that only they include.
"""
import collections
import json
import os
import sys

BARS = {"C++": 90.0, "Objective-C++": 80.0}


def language_of(path):
    if path.endswith((".mm", ".m")):
        return "Objective-C++"
    return "C++"


def ranges(lines):
    """[3, 4, 5, 9] as "3-5, 9"."""
    parts = []
    for line in lines:
        if parts and parts[-1][1] == line - 1:
            parts[-1][1] = line
        else:
            parts.append([line, line])
    return ", ".join(str(first) if first == last else f"{first}-{last}" for first, last in parts)


def main(path, show_lines):
    with open(path, encoding="utf-8") as source:
        files = json.load(source)["files"]
    rooms = collections.defaultdict(lambda: [0, 0])
    missed = {}
    for file in files:
        # A line of a template is counted once for each of its kinds.
        counts = collections.defaultdict(int)
        for line in file["lines"]:
            if not line.get("gcovr/noncode"):
                counts[line["line_number"]] += line["count"]
        room = os.path.dirname(file["file"]) or "."
        total = rooms[language_of(file["file"]), room]
        total[0] += sum(1 for count in counts.values() if count)
        total[1] += len(counts)
        missed[file["file"]] = sorted(line for line, count in counts.items() if not count)
    sums = collections.defaultdict(lambda: [0, 0])
    for (language, room), (ran, all_lines) in sorted(rooms.items()):
        print(f"{language:14} {room:24} {ran:6} of {all_lines:6} {100 * ran / max(all_lines, 1):6.1f} %")
        sums[language][0] += ran
        sums[language][1] += all_lines
    low = False
    for language, (ran, all_lines) in sums.items():
        share = 100 * ran / max(all_lines, 1)
        low = low or share < BARS[language]
        print(f"{language:14} {'all rooms':24} {ran:6} of {all_lines:6} {share:6.1f} %, bar {BARS[language]:.0f} %")
    if show_lines:
        for file, lines in sorted(missed.items()):
            if lines:
                print(f"{file}: {ranges(lines)}")
    return 1 if low or not sums else 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], "--lines" in sys.argv[2:]))

#!/usr/bin/python3
"""Compares what the bundle takes from the system with docs/system-names.tsv, the list of what macOS documents and since
when, and looks whether the xibs name only stock classes and the bundle's own.

    system_names.py SOURCES BUILD    fails, and says what is missing or left over
"""
import csv
import os
import re
import sys
import xml.etree.ElementTree as xml

import gather

# What a xib may name beside the bundle's classes. The first is no class: it stands for whoever has the focus.
STOCK_CLASSES = {"FirstResponder", "NSObject", "NSApplication", "NSMutableDictionary"}
OWN_PREFIX = "com_norvalt_tk_o_pde_vexolinddirectfax_"


def listed(path):
    with open(path, encoding="utf-8", newline="") as table:
        rows = list(csv.DictReader(table, delimiter="\t"))
    faults = [f"{path}: {row['name']}: no header or version" for row in rows
              if not row["header"].endswith(".h") or not re.fullmatch(r"10\.\d+|-", row["since"])]
    return {(row["kind"], row["name"]) for row in rows}, faults


def compare(used, known, path):
    faults = [f"{path} lacks the {kind} {name}, used in {', '.join(sorted(sources))}: does macOS document it?"
              for (kind, name), sources in sorted(used.items()) if (kind, name) not in known]
    faults += [f"{path} lists the {kind} {name}, which nothing uses" for kind, name in sorted(known - set(used))]
    return faults


def declared_classes(root):
    """Every class of ours, by its whole name."""
    names = set()
    for room in gather.ROOMS:
        for entry in os.scandir(os.path.join(root, room)):
            if entry.name.endswith((".h", ".mm")):
                with open(entry.path, encoding="utf-8") as source:
                    names |= set(re.findall(r"@implementation (\w+)|#define \w+ (" + OWN_PREFIX + r"\w+)", source.read()))
    return {name for pair in names for name in pair if name}


def foreign_classes(xib, own):
    root = xml.parse(xib).getroot()
    faults = []
    for element in root.iter():
        name = element.get("customClass")
        if name is None or name in STOCK_CLASSES:
            continue
        short = name.removeprefix(OWN_PREFIX)
        if not name.startswith(OWN_PREFIX) or not ({name, short} & own):
            faults.append(f"{xib} names the class {name}, which is neither stock nor the bundle's")
    return faults


def main(root, build):
    root = os.path.realpath(root)
    path = os.path.join(root, "docs/system-names.tsv")
    known, faults = listed(path)
    used = gather.system_names(root, build)
    faults += compare(used, known, os.path.relpath(path, root))
    own = declared_classes(root)
    xibs = [entry.path for entry in os.scandir(os.path.join(root, "resources")) if entry.name.endswith(".xib")]
    for xib in xibs:
        faults += foreign_classes(xib, own)
    print(f"{len(used)} names of the system in {len(gather.ROOMS)} rooms, {len(xibs)} xibs")
    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults or not used or not xibs else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))

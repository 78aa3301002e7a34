#!/usr/bin/env python3
"""One table, one JSON file and one plot of the figures that the programs of the bench wrote.

    python3 -B bench/summary.py SEED FOLDER FILE...

FILEs are lists of figures: name, who, value, unit, and where it has them entries (of the book), at_most, at_least (its
bar). FOLDER gets figures.json and, where gnuplot is installed, growth.png. Ends with 1 when a bar is missed.
"""

import json
import os
import shutil
import subprocess
import sys

PEERS = ("Qt 6", "GTK 3", "GTK 4", "OpenSSL")
GROWTH = (("A key in the search field", "µs a key, model to model"), ("Read a file", "ms from the file to its rows"),
          ("First sort", "ms"))
COLOURS = {"DirectFax": "#1f5fd0", "Qt 6": "#2f9e44", "GTK 4": "#d9480f", "SQLite": "#868e96"}


def load(files):
    figures = []
    for file in files:
        with open(file, encoding="utf-8") as opened:
            figures += json.load(opened)
    return figures


def has_bar(figure):
    return "at_most" in figure or "at_least" in figure


def met(figure):
    return (figure["value"] <= figure.get("at_most", figure["value"])
            and figure["value"] >= figure.get("at_least", figure["value"]))


def amount(value):
    """With three digits that count."""
    return f"{value:.0f}" if value >= 100 else f"{value:.3g}" if value >= 0.01 else f"{value:.2g}"


def bar_line(figure):
    sign, bar = next((sign, figure[key]) for key, sign in (("at_most", "<="), ("at_least", ">=")) if key in figure)
    entries = f"{figure['entries']:,}" if "entries" in figure else ""
    return (f"{figure['name']:<48}{figure['who']:<12}{entries:>8}{amount(figure['value']):>10} {figure['unit']:<4}"
            f"{sign} {bar:<7g}{'pass' if met(figure) else 'MISSED'}")


def growth_lines(figures):
    """A line for each figure of each who, its values by the size of the book, or the one value in the first column."""
    sizes = sorted({figure["entries"] for figure in figures if "entries" in figure})
    lines = {}
    for figure in figures:
        of_sizes = lines.setdefault((figure["name"], figure["who"], figure["unit"]), {})
        of_sizes[figure.get("entries", sizes[0])] = amount(figure["value"])
    yield f"{'':<48}{'':<24}" + "".join(f"{size:>10,}" for size in sizes)
    for (name, who, unit), of_sizes in lines.items():
        yield f"{name:<48}{who:<24}" + "".join(f"{of_sizes.get(size, ''):>10}" for size in sizes) + f" {unit}"


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = next((line.split(":", 1)[1].strip() for line in file if line.startswith("model name")), "unknown")
    return f"{model}, {os.cpu_count()} cores"


def plot(figures, output):
    """How cost grows with the book, both axes in powers of ten."""
    script = ["set terminal pngcairo size 1290,430 font 'DejaVu Sans,10' background '#ffffff'", f"set output '{output}'",
              "set logscale xy", "set grid lc rgb '#dee2e6'", "set border 3", "set tics nomirror", "set key left top",
              "set format x '%.0s%c'", "set xlabel 'entries'", "set xrange [700:150000]",
              f"set multiplot layout 1,{len(GROWTH)}"]
    for name, unit in GROWTH:
        lines = {}
        for figure in figures:
            if figure["name"] == name and figure["who"] in COLOURS:
                lines.setdefault(figure["who"], []).append((figure["entries"], figure["value"]))
        for at, points in enumerate(lines.values()):
            script += [f"$line{at} << EOD", *(f"{x} {y}" for x, y in sorted(points)), "EOD"]
        script += [f"set title '{name}'", f"set ylabel '{unit}'", "plot " + ", ".join(
            f"$line{at} with linespoints lw 2 pt 7 lc rgb '{COLOURS[who]}' title '{who}'" for at, who in enumerate(lines))]
    subprocess.run(["gnuplot"], input="\n".join(script), encoding="utf-8", check=True)


def main():
    seed, folder, *files = sys.argv[1:]
    figures = load(files)
    left_out = [peer for peer in PEERS if not any(figure["who"] == peer for figure in figures)]
    print(f"Medians; ratios (x) of one thread are those of the shortest times. Seed {seed}. {machine()}.\n")
    print(*map(bar_line, filter(has_bar, figures)), sep="\n")
    print("\nThe same and all others, by entries of the book:\n")
    print(*growth_lines(figures), sep="\n")
    if left_out:
        print(f"\nLeft out, for they are not installed (script/bootstrap --bench): {', '.join(left_out)}")
    with open(os.path.join(folder, "figures.json"), "w", encoding="utf-8") as file:
        json.dump({"seed": int(seed), "machine": machine(), "left_out": left_out,
                   "figures": [figure | {"met": met(figure)} for figure in figures]}, file, indent=1, ensure_ascii=False)
    if shutil.which("gnuplot"):
        plot(figures, os.path.join(folder, "growth.png"))
    else:
        print("\nNo plot, for gnuplot is not installed (script/bootstrap --bench)")
    missed = sum(not met(figure) for figure in figures)
    print(f"\n{missed} bars missed" if missed else "\nEvery bar that was measured is met")
    return 1 if missed else 0


sys.exit(main())

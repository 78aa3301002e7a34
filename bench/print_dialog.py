#!/usr/bin/env python3
"""How long the print dialog takes for its panel's view and, after Print, for the fax dialog.

    script/headless python3 -B bench/print_dialog.py FAXPRINT DOCUMENT ROUNDS FILE

Starts the dialog with --timing; a click prints, Escape leaves the fax dialog, once cold and twice warm. The environment
names the print service; its queue is "fax". The figures go into FILE.
"""

import json
import os
import re
import signal
import statistics
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "script", "tour"))
from screen import Screen, TourError, wait_for  # noqa: E402
from texts import Texts  # noqa: E402

PANEL_BAR, FAX_DIALOG_BAR = 60, 100  # milliseconds
FAX_DIALOG = "Send Fax"
PATIENCE = "60"  # seconds


class Dialog:
    """A print dialog that prints its times; it ends with this object's context."""

    def __init__(self, program, document):
        self.folder = tempfile.TemporaryDirectory()
        map_file = os.path.join(self.folder.name, "map.json")
        self.process = subprocess.Popen(
            ["timeout", "-s", "KILL", PATIENCE, program, "--timing", "--ui-map", map_file, "--printer", "fax", document],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, encoding="utf-8",
            start_new_session=True)
        build = os.path.dirname(os.path.dirname(program))
        self.screen = Screen(map_file, self.folder.name, self.process, Texts(build))

    def __enter__(self):
        return self

    def __exit__(self, *failure):
        os.killpg(self.process.pid, signal.SIGKILL)
        self.process.wait()
        self.process.stdout.close()
        self.folder.cleanup()

    def numbers(self, begin):
        """Those of the next line that begins so."""
        for line in self.process.stdout:
            if line.startswith(begin):
                return [float(number) for number in re.findall(r"[0-9.]+", line)]
        raise SystemExit(f"print_dialog.py: the dialog ended without a line '{begin}'")

    def title(self):
        return wait_for("the print dialog", lambda: next(
            (w["title"] for w in self.screen.windows() if any("Print" == c["title"] for c in w["controls"])), None))

    def fax_dialog_takes(self, title):
        """What it took, all times so far in one line; the fax dialog is gone again then."""
        self.screen.press(title, "Print")
        took = self.numbers("print to dialog")
        self.screen.go_to(FAX_DIALOG)
        self.screen.keys("Escape")
        return took


def one_round(program, document):
    with Dialog(program, document) as dialog:
        empty, = dialog.numbers("empty window")
        view, = dialog.numbers("panel view")
        title = dialog.title()
        cold, = dialog.fax_dialog_takes(title)
        warm = [dialog.fax_dialog_takes(title)[1] for _ in range(2)]
        return empty, view, cold, statistics.median(warm)


def main():
    program, document, rounds, output = sys.argv[1:]
    times = zip(*(one_round(program, document) for _ in range(int(rounds))))
    empty, view, cold, warm = (statistics.median(column) for column in times)
    figures = [("An empty window", empty, None), ("The panel's view", view, PANEL_BAR),
               ("Print to fax dialog, the first time", cold, None), ("Print to fax dialog", warm, FAX_DIALOG_BAR)]
    with open(output, "w", encoding="utf-8") as file:
        json.dump([{"name": name, "who": "DirectFax", "value": value, "unit": "ms"} | ({"at_most": bar} if bar else {})
                   for name, value, bar in figures], file)


try:
    main()
except TourError as failure:
    sys.exit(f"print_dialog.py: {failure}")

#!/usr/bin/env python3
"""The Address Book Editor through its windows, each pictured: a list, an entry, a group, an import, a printer's book.

    script/headless python3 tests/tour/address_book_editor.py --build BUILD [--theme THEME] DIR

Works by keys, and one click, in whatever language the environment asks for: no title is looked for. Exit code 0 only
when the address-book file then holds what was entered, imported and copied.
"""

import argparse
import csv
import json
import os
import re
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "script", "tour"))
sys.dont_write_bytecode = True
from address_books import PRINTER_PASSWORD, PRINTER_PEOPLE, PrinterBook  # noqa: E402
from screen import TourError, expect, run, wait_for  # noqa: E402

HEADER = ("Name", "Fax", "Company", "Notes", "Group")
NAMES = ("Anna Bergström", "Beppe Rossi", "Chloé Martin", "David Okafor", "Erika Lindqvist", "Farid Haddad", "Greta Holm",
         "Hiroshi Tanaka", "Ines Duarte", "Jonas Weber", "Karin Vogel", "Luis Herrera", "Mei Chen", "Nils Dahl",
         "Olga Petrova", "Paolo Conti", "Quentin Roux", "Rosa Jansen")
COMPANIES = ("Bergström & Co", "Rossi S.r.l.", "Martin SARL", "Okafor Ltd", "")
GROUPS = ("Sales", "Suppliers;Sales", "", "Branch offices")
NEW = ("Sofia Keller", "0301-555 01 22", "Keller GmbH", "Invoices only in the morning")
GROUP = "Press"
LIST = [("Tom Baker", "0301-5550171", "", "", "Sales"), ("Anna Bergström", "0300-100", "", "", ""),
        ("Uma Patel", "", "Patel & Sons", "", ""), ("Vera Novak", "+420 5550 173", "", "", "Suppliers"),
        ("W" * 70, "0301-5550174", "", "", "")]
IMPORTED = ("Tom Baker", "Vera Novak")
DRAWN = 0.4  # seconds


def write_list(path, rows):
    with open(path, "w", encoding="utf-8", newline="") as file:
        csv.writer(file).writerows([HEADER, *rows])


def keys(*names):
    run("xdotool", "key", "--delay", "60", *names)


def type_text(text):
    run("xdotool", "type", "--delay", "60", text)


class Windows:
    """The editor's windows, one of which has the keyboard."""

    def __init__(self, program, pictures):
        self.program, self.pictures, self.stack, self.taken = program, pictures, [], 0

    def active(self):
        if self.program.poll() is not None:
            raise TourError(f"the editor ended with code {self.program.returncode}")
        done = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, encoding="utf-8", check=False)
        return done.stdout.strip()

    def begin(self):
        """Until there are the main window and, in front, the list of the command line as it would be imported."""
        def both():
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--classname", "^AddressBookEditor$"],
                                   capture_output=True, encoding="utf-8", check=False).stdout.split()
            front = self.active()
            return len(found) == 2 and front in found and [one for one in found if one != front] + [front]

        self.stack = wait_for("the editor and its first question", both, 40)
        time.sleep(DRAWN)

    def new_window(self):
        """One that was not there before, and stays: the progress of a long work comes and goes."""
        window = self.active()
        if not window or window in self.stack:
            return None
        time.sleep(DRAWN)
        return window if self.active() == window else None

    def opens(self, how=lambda: None):
        """how, again when the window that just came had no ear for it, until a window is there that was not before."""
        for _ in range(5):
            how()
            try:
                self.stack.append(wait_for("a window", self.new_window, 4))
                return
            except TourError:
                continue
        raise TourError(f"no window came; open are {len(self.stack)}")

    def closes(self):
        self.stack.pop()
        wait_for("the window to close", lambda: self.active() == self.stack[-1])
        time.sleep(DRAWN)

    def picture(self, name):
        time.sleep(DRAWN)
        self.taken += 1
        run("import", "-silent", "-window", self.stack[-1], os.path.join(self.pictures, f"{self.taken:02d}-{name}.png"))

    def click_copy_from_printer(self):
        """The button in the corner at the bottom right."""
        size = dict(re.findall(r"(WIDTH|HEIGHT)=(\d+)", run("xdotool", "getwindowgeometry", "--shell", self.stack[-1])))
        run("xdotool", "mousemove", "--window", self.stack[-1], str(int(size["WIDTH"]) - 40),
            str(int(size["HEIGHT"]) - 28), "sleep", "0.1", "mousedown", "1", "sleep", "0.1", "mouseup", "1")


def work_through(windows):
    windows.begin()
    windows.picture("import")
    keys("Return")
    windows.closes()
    windows.picture("list")
    keys("ctrl+f")
    type_text("an")
    windows.picture("search")
    keys("Escape")

    windows.opens(lambda: keys("ctrl+n"))
    for text in NEW[:3]:
        type_text(text)
        keys("Tab")
    type_text(NEW[3])
    windows.picture("entry")
    keys("shift+Tab", "Return")
    windows.closes()

    windows.opens(lambda: keys("ctrl+shift+n"))
    type_text(GROUP)
    windows.picture("group")
    keys("Return")
    windows.closes()
    windows.picture("list-of-a-group")

    windows.opens(windows.click_copy_from_printer)
    keys("Return")  # without a password
    windows.picture("password")
    type_text(PRINTER_PASSWORD)
    keys("Return")
    windows.stack.pop()
    windows.opens()
    windows.picture("printer-book")
    keys("Return")
    windows.closes()
    windows.picture("copied")


def entries(gad, book):
    return {one["name"]: one for one in json.loads(run(gad, "list", "--format", "json", book))}


def check(gad, book, before):
    """Of the names in the file."""
    now = entries(gad, book)
    wait_for("the printer's entries", lambda: len(entries(gad, book)) == before + len(IMPORTED) + 1 + PRINTER_PEOPLE, 10)
    for name in IMPORTED:
        if name not in now:
            raise TourError(f"{name} was not imported")
    made = now[NEW[0]]
    expect((made["name"], made["number"], made["company"], made["note"]), NEW, "the new entry")
    expect(made["groups"], [GROUP], "the groups of the new entry")


def tour(arguments, work):
    run("setxkbmap", "de")
    gad, book, more = os.path.join(arguments.build, "gad", "gad"), os.path.join(work, "Office.gad"), os.path.join(work, "trade-fair.csv")
    run(gad, "create", book)
    people = [(name, f"0300-{100 + at}", COMPANIES[at % len(COMPANIES)], "", GROUPS[at % len(GROUPS)])
              for at, name in enumerate(NAMES)]
    write_list(os.path.join(work, "people.csv"), people)
    run(gad, "import", book, os.path.join(work, "people.csv"))
    write_list(more, LIST)
    printer = PrinterBook(work)
    editor = os.path.join(arguments.build, "editor", "AddressBookEditor.app", "AddressBookEditor")
    options = ["--theme", arguments.theme] if arguments.theme else []
    program = subprocess.Popen(
        [editor, *options, "-DFAXConnectionType NET", "-DFAXAddress 127.0.0.1", book, more],
        env={**os.environ, **printer.environment(), "DIRECTFAX_ADDRESSBOOKS": work},
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    windows = Windows(program, arguments.pictures)
    try:
        work_through(windows)
        check(gad, book, len(people))
    except Exception:
        run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, "failed.png"))
        raise
    finally:
        program.kill()
        program.wait()
        printer.stop()
    print(f"The file holds what was entered, imported and copied; {windows.taken} pictures in {arguments.pictures}")


def main():
    parser = argparse.ArgumentParser(description="The Address Book Editor through its windows.")
    parser.add_argument("--build", required=True, help="folder of the build")
    parser.add_argument("--theme", help="light or dark; otherwise as the desktop has it")
    parser.add_argument("pictures", metavar="DIR", help="where the pictures go")
    arguments = parser.parse_args()
    os.makedirs(arguments.pictures, exist_ok=True)
    with tempfile.TemporaryDirectory() as work:
        os.chmod(work, 0o711)
        try:
            tour(arguments, work)
        except (TourError, subprocess.TimeoutExpired) as error:
            print(f"address_book_editor.py: {error}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

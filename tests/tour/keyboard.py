#!/usr/bin/env python3
"""One whole fax through the real windows by keys alone: the mouse is never touched.

    script/headless python3 tests/tour/keyboard.py --build BUILD DIR FILE

Starts a private CUPS, makes an address book, starts the print dialog on FILE, and works it with Tab, arrows, letters,
Return and Escape. The pictures go to DIR. Exit code 0 only when the ticket of the driver's filter is what was entered.
"""

import json
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "script", "tour"))
sys.dont_write_bytecode = True
from address_books import FAX_DIALOG, SCRIPTS  # noqa: E402
from fax import CHOICES  # noqa: E402
from screen import Screen, TourError, differences, environment_of, run, run_tour, wait_for  # noqa: E402

PAGE = "the page"
MAP_PERIOD = 0.2  # seconds; the dialog writes its map ten times a second
BOOK_DIALOG = "Address Book"
SENDER = "Henry Marsh"
KEPT = ("Anna Adler", "0301-1")
EDITED = ("Bert Busch", "0302#22")
CHOSEN = ("Person 07", "0300007")
PRINT_RING = ["Printer", "Destination", "Copies", "Options", "Image Quality", "Transmission Report", "Cover Page",
              "Sender", "Sender Name", "Open Address Book Editor...", "Restore Defaults", PAGE, "Page 1 of 1",
              "Page 1 of 1", "documentPopUp", "Add Document\u2026", "Help", "Cancel", "Print"]
FAX_RING = ["Name", "Fax Number", "destinationTable", "From Address Book...", "From Printer...", "Address Book File",
            "Access Code", "Send at a later time", "Help", "Cancel", "Start"]
BOOK_RING = ["Search", "pcTable", "destinationTable", "Delete", "Help", "Cancel", "OK"]
ENTRY_RING = ["Close", "Name", "Fax Number", "Company", "Note"]


class Keyboard(Screen):
    def keys(self, *names):
        super().keys(*names)
        time.sleep(MAP_PERIOD)

    def point_at(self, frame):
        raise TourError("the mouse is not to be used")

    def type(self, text):
        run("xdotool", "type", "--delay", "30", text)

    def front_window(self):
        return wait_for("a window with the keyboard", lambda: next((w for w in self.windows() if w["key"]), None))

    def wait_front(self, title):
        wait_for(f'"{title}" in front', lambda: self.front_window()["title"] == title)

    def focused(self):
        """The control with the focus: the title it bears, its label's, or its name."""
        return next((name_of(c) for c in self.front_window()["controls"] if c["focused"]), None)

    def wait_focus(self, name):
        wait_for(f'the focus on "{name}"; it is on "{self.focused()}"', lambda: self.focused() == name, 3)

    def ring(self, key, first, count):
        """The names that key goes through from first on, which is taken in; as many as count."""
        names = [first]
        for _ in range(count - 1):
            before = self.focus()
            self.keys(key)
            names.append(self.name_after(before, key))
        return names

    def focus(self):
        return next((c for c in self.front_window()["controls"] if c["focused"]), None)

    def name_after(self, before, key):
        """Where the key takes the focus from the control before. The picture of a page is no control: PAGE."""
        end = time.monotonic() + 1
        while time.monotonic() < end:
            now = self.focus()
            if now and (not before or now["frame"] != before["frame"]):
                return name_of(now)
            time.sleep(0.05)
        wait_for(f"{key} to leave {before}", lambda: before and not self.focus())
        return PAGE

    def check_ring(self, wanted):
        """Tab goes through the names in this order and round again, Shift and Tab back."""
        self.wait_focus(wanted[0])
        there = self.ring("Tab", wanted[0], len(wanted) + 1)
        back = self.ring("shift+Tab", wanted[0], len(wanted) + 1)
        wrong = differences(there, wanted + wanted[:1], "Tab") + differences(back[::-1], wanted + wanted[:1], "back")
        if wrong:
            raise TourError("\n".join(wrong))

    def go_to(self, name):
        for _ in range(30):
            before = self.focused()
            if before == name:
                return
            self.keys("Tab")
            try:
                wait_for("Tab to move the focus", lambda: self.focused() not in (before, None), 2)
            except TourError:
                pass  # what was seen before was old already
        raise TourError(f'Tab does not come to "{name}"')

    def find(self, name):
        return next((c for c in self.front_window()["controls"] if name_of(c) == name), None)

    def rows(self, name):
        return [tuple(row["cells"]) for row in (self.find(name) or {}).get("rows", [])]

    def wait_rows(self, name, wanted):
        wait_for(f"{wanted} in {name}", lambda: self.rows(name) == wanted, 5)

    def wait_hint(self, text):
        wait_for(f'the hint "{text}"', lambda: any(c["value"] == text for c in self.front_window()["controls"]), 5)

    def wait_value(self, name, value):
        self.control(self.front_window()["title"], name, value=value)


def name_of(control):
    return control["title"] or control["identifier"]


def choose_options(screen, panel):
    """Pop-ups by letters, with the menu open and closed, and by arrows; the field by the keys of every desktop."""
    screen.go_to("Image Quality")
    screen.type("fi")
    screen.wait_value("Image Quality", "Fine")
    screen.wait_hint("Choose a cover page first.")
    screen.go_to("Transmission Report")
    screen.keys("Return")
    screen.menu_item("Always")
    screen.keys("Up", "Return")
    screen.wait_value("Transmission Report", "Always")
    screen.go_to("Cover Page")
    screen.keys("space")
    screen.menu_item("Business")
    screen.type("b")
    screen.keys("Escape")
    wait_for("the menu to close", lambda: not any(c["class"] == "NSMenuItem" for c in controls(screen)))
    screen.wait_value("Cover Page", "None")
    screen.type("b")
    screen.wait_value("Cover Page", "Business")
    screen.go_to("Sender")
    screen.type("e")
    screen.wait_value("Sender", "Enter a Name")
    screen.go_to("Sender Name")
    screen.type("Marsh Henry ")
    screen.keys("ctrl+a", "ctrl+x")
    screen.wait_value("Sender Name", "")
    screen.keys("ctrl+v", "ctrl+z", "ctrl+y", "ctrl+v")
    screen.wait_value("Sender Name", "Marsh Henry Marsh Henry ")
    screen.keys("Home", *["Delete"] * 6, "End", *["BackSpace"] * 7)
    screen.wait_value("Sender Name", SENDER)
    screen.type("\u00fc")
    screen.wait_hint("Up to 30 letters, digits and signs.")
    screen.picture("refused")
    screen.go_to("Printer")
    screen.check_ring(PRINT_RING)


def controls(screen):
    return [c for w in screen.windows() for c in w["controls"]]


def add(screen, name, number):
    screen.wait_focus("Name")
    screen.type(name)
    screen.keys("Tab")
    screen.type(number)
    screen.wait_value("Fax Number", number)
    screen.keys("Return")
    screen.wait_value("Fax Number", "")


def choose_from_book(screen):
    screen.go_to("From Address Book...")
    screen.keys("Return")
    screen.wait_front(BOOK_DIALOG)
    wait_for("the entries", lambda: screen.rows("pcTable"))
    screen.check_ring(BOOK_RING)
    # To the printer's tab, whose book cannot be read here, and back.
    screen.keys("ctrl+Next")
    answer_alert(screen, BOOK_DIALOG)
    wait_for("the printer's tab", lambda: screen.find("deviceTable"))
    screen.wait_focus("Search")
    screen.keys("ctrl+Prior")
    wait_for("the file's tab", lambda: screen.find("pcTable"))
    screen.wait_focus("Search")
    screen.type(CHOSEN[0])
    screen.keys("Tab")
    screen.wait_rows("pcTable", [CHOSEN])
    screen.wait_hint("Select entries to add them to the recipients.")
    screen.keys("Home")
    screen.go_to("Properties...")
    screen.keys("Return")
    screen.wait_front("Entry")
    screen.check_ring(ENTRY_RING)
    screen.keys("Escape")
    screen.wait_front(BOOK_DIALOG)
    screen.go_to("pcTable")
    screen.keys("Return")
    screen.wait_rows("destinationTable", [CHOSEN, EDITED, KEPT])
    screen.picture("address-book")
    screen.go_to("OK")
    screen.keys("Return")
    screen.wait_front(FAX_DIALOG)


def fill_fax_dialog(screen):
    screen.wait_front(FAX_DIALOG)
    screen.check_ring(FAX_RING)
    screen.wait_hint("Type a fax number, or take recipients from an address book.")
    screen.keys("Tab")
    screen.type("1x")
    screen.wait_hint("Digits, #, *, -, : and =; up to 50.")
    screen.wait_value("Fax Number", "1")
    screen.keys("BackSpace", "shift+Tab")
    for name, number in (KEPT, ("Bert Bach", EDITED[1]), ("Carl Cramer", "0303")):
        add(screen, name, number)
    screen.go_to("destinationTable")
    screen.keys("ctrl+a")
    screen.wait_hint("Select only one recipient to edit it.")
    screen.keys("Home", "Delete")
    screen.wait_rows("destinationTable", [("Bert Bach", EDITED[1]), KEPT])
    screen.wait_hint("Select a recipient to edit or delete it.")
    screen.keys("Home")
    screen.go_to("Edit")
    screen.keys("space")
    screen.wait_value("Name", "Bert Bach")
    screen.go_to("Name")
    screen.keys("End", "BackSpace", "BackSpace", "BackSpace")
    screen.type("usch")
    screen.keys("Return")
    screen.wait_rows("destinationTable", [EDITED, KEPT])
    screen.picture("fax-dialog")
    choose_from_book(screen)
    screen.wait_rows("destinationTable", [CHOSEN, EDITED, KEPT])
    # The same again: the alert's Cancel is on Escape.
    screen.go_to("Name")
    screen.type(KEPT[0])
    screen.keys("Tab")
    screen.type(KEPT[1])
    screen.keys("Return")
    answer_alert(screen, FAX_DIALOG)
    screen.wait_value("Fax Number", KEPT[1])
    screen.wait_rows("destinationTable", [CHOSEN, EDITED, KEPT])
    screen.go_to("Start")
    screen.keys("Return")


def answer_alert(screen, below):
    """Escape to what stands in front of the window below, once it is there."""
    wait_for("an alert", lambda: screen.front_window()["title"] != below)
    screen.picture("alert")
    screen.keys("Escape")
    screen.wait_front(below)


def send_one_fax(screen):
    panel = wait_for("the print dialog", lambda: screen.window_with("Print"))
    screen.wait_focus("Printer")
    screen.go_to("Copies")
    screen.keys("Up", "Up", "Down")
    screen.wait_value("Copies", "2")
    choose_options(screen, panel)
    screen.go_to("Copies")
    screen.keys("Return")
    fill_fax_dialog(screen)
    wait_for("the message that the job was handed over", lambda: next(
        (c for c in controls(screen) if c["title"] == "OK" and c["enabled"]), None))
    screen.keys("Escape")


def make_book(build, work):
    folder = os.path.join(work, "books")
    os.mkdir(folder)
    book, entries = os.path.join(folder, "office.gad"), os.path.join(work, "entries.csv")
    with open(entries, "w", encoding="utf-8") as file:
        file.write("Name,Fax\n" + "".join(f"Person {at:02d},03000{at:02d}\n" for at in range(40)))
    gad = os.path.join(build, "gad", "gad")
    run(gad, "create", book)
    run(gad, "import", book, entries)
    return folder


def expected_ticket():
    return {
        "copies": 2,
        "options": {key: choice for key, _, _, choice in CHOICES},
        "senderName": SENDER,
        "password": "",
        "delayed": False,
        "destinations": [{"name": name, "phoneNumber": number} for name, number in (CHOSEN, EDITED, KEPT)],
    }


def main_job(arguments, work, screen_of, send, ticket):
    """Starts what the dialog needs and the dialog, lets send(screen) use it, and compares the ticket."""
    cups = os.path.join(work, "cups")
    private_cups = os.path.join(SCRIPTS, "private-cups")
    server = run(private_cups, "start", cups, "--build", arguments.build, "--owner", str(os.getpid())).strip()
    map_file = os.path.join(work, "map.json")
    run("setxkbmap", "de")
    program = subprocess.Popen(
        [os.path.join(arguments.build, "faxprint.app", "faxprint"), "--ui-map", map_file, arguments.file],
        env={**environment_of(arguments), "CUPS_SERVER": server,
             "DIRECTFAX_ADDRESSBOOKS": make_book(arguments.build, work)},
        stdin=subprocess.DEVNULL)
    try:
        send(screen_of(map_file, arguments.pictures, program))
        if program.wait(timeout=30) != 0:
            raise TourError(f"the print dialog ended with code {program.returncode}")
        ticket_file = os.path.join(cups, "tickets", "job-1.json")
        wait_for("the ticket", lambda: os.path.exists(ticket_file))
        with open(ticket_file, encoding="utf-8") as file:
            got = json.load(file)
        if wrong := [line for key, value in ticket.items() for line in differences(got.get(key), value, key)]:
            raise TourError("\n".join(wrong))
        print("The ticket is what was entered.")
    except Exception:
        run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, "failed.png"))
        raise
    finally:
        if program.poll() is None:
            program.kill()
            program.wait()
        run(private_cups, "stop", cups)


def work_through(arguments, work):
    main_job(arguments, work, lambda *of: Keyboard(*of, arguments.texts), send_one_fax, expected_ticket())


if __name__ == "__main__":
    sys.exit(run_tour("keyboard.py", "One whole fax by keys alone.", work_through))

#!/usr/bin/env python3
"""One whole fax through the real windows by the mouse alone: no key is ever pressed.

    script/headless python3 tests/tour/mouse.py --build BUILD DIR FILE

Starts a private CUPS, makes an address book, starts the print dialog on FILE, and works it with clicks: copies, options,
recipients from the book, a later time, Start. The pictures go to DIR. Exit code 0 only when the ticket of the driver's
filter is what was chosen. Takes the tour's options, such as --scale 1.5.
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
sys.dont_write_bytecode = True
from keyboard import CHOSEN, main_job, make_book  # noqa: E402,F401  (keyboard finds the tour's modules)
from address_books import DIALOG, FAX_DIALOG, FILE_TABLE, RECIPIENTS  # noqa: E402
from fax import CHOICES  # noqa: E402
from screen import Screen, TourError, run_tour, scale_of, wait_for  # noqa: E402

ALSO_CHOSEN = ("Person 04", "0300004")
ROW = 8  # pixels of a row that can be clicked at
REMOVED = ("Person 05", "0300005")


class Mouse(Screen):
    def keys(self, *names):
        raise TourError("the keyboard is not to be used")

    def step_up(self, window_title, field):
        """The upper half of the arrows beside a field."""
        self.go_to(window_title)
        x, y, width, height = self.control(window_title, field, "TextField")["frame"]
        stepper = next(c for c in self.window(window_title)["controls"]
                       if c["class"] == "NSStepper" and 0 <= c["frame"][0] - (x + width) <= 20 * self.scale)
        left, top, wide, high = stepper["frame"]
        self.click((left, top, wide, high // 2))


def choose_recipients(screen):
    screen.press(FAX_DIALOG, "From Address Book...")
    screen.go_to(DIALOG)
    wait_for("the entries", lambda: screen.table(DIALOG, FILE_TABLE))
    for entry in (CHOSEN, ALSO_CHOSEN, REMOVED):
        for _ in range(40):
            if any(screen.same_row(row["cells"], entry) and row["frame"][3] > ROW for row in screen.table(DIALOG, FILE_TABLE)):
                break
            screen.scroll(DIALOG, FILE_TABLE)
        screen.select_row(DIALOG, FILE_TABLE, entry)
        screen.press(DIALOG, "Add")
    screen.wait_rows(DIALOG, RECIPIENTS, [CHOSEN, REMOVED, ALSO_CHOSEN])
    screen.picture("address-book")
    screen.press(DIALOG, "OK")
    screen.wait_closed(DIALOG)
    screen.select_row(FAX_DIALOG, RECIPIENTS, REMOVED)
    screen.press(FAX_DIALOG, "Delete")
    screen.wait_rows(FAX_DIALOG, RECIPIENTS, [CHOSEN, ALSO_CHOSEN])


def send_one_fax(screen):
    panel = wait_for("the print dialog", lambda: screen.window_with("Print"))
    screen.step_up(panel, "Copies")
    screen.control(panel, "Copies", value="2")
    for _, label, item, _ in CHOICES[:3]:
        screen.choose(panel, label, item)
    screen.picture("print-dialog")
    screen.press(panel, "Print")
    screen.go_to(FAX_DIALOG)
    choose_recipients(screen)
    screen.press(FAX_DIALOG, "Send at a later time")
    screen.picture("fax-dialog")
    screen.press(FAX_DIALOG, "Start")
    told = wait_for("the message that the job was handed over", lambda: next(
        (c for w in screen.windows() for c in w["controls"]
         if screen.texts.says(c["title"], "OK") and c["enabled"]), None))
    screen.click(told["frame"])


def expected_ticket():
    return {
        "copies": 2,
        "options": {**{key: choice for key, _, _, choice in CHOICES[:3]}, "QXFaxSenderMode": "PrinterDefault"},
        "password": "",
        "delayed": True,
        "destinations": [{"name": name, "phoneNumber": number} for name, number in (CHOSEN, ALSO_CHOSEN)],
    }


def work_through(arguments, work):
    main_job(arguments, work, lambda *of: Mouse(*of, arguments.texts, scale_of(arguments)), send_one_fax,
             expected_ticket())


if __name__ == "__main__":
    sys.exit(run_tour("mouse.py", "One whole fax by the mouse alone.", work_through))

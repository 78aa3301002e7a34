"""The fax: what is entered, step by step, and what the driver's ticket must then say."""

import os

import address_books
from editor import open_editor
from screen import run, wait_for

SENDER = "Henry Marsh"
PASSWORD = "0427"
DELAYED_TIME = "21:05"
TYPED = ("Jürgen Müller", "030-1234567")
TYPED_SLOWLY = ("山田太郎", "0312345678")

# What each choice is called on the screen, and in the job.
CHOICES = [
    ("QXFaxImageQuality", "Image Quality", "Fine", "Fine"),
    ("QXFaxTransmissionReport", "Transmission Report", "Always", "On"),
    ("QXFaxCoverPageMode", "Cover Page", "Business", "Business"),
    ("QXFaxSenderMode", "Sender", "Enter a Name", "EnterName"),
]

PANEL = "Fax Settings"
FAX_DIALOG = address_books.FAX_DIALOG
PASSWORD_FIELD = "Access Code"


def set_up_panel(screen, editor):
    """In the print dialog; answers its title."""
    panel = wait_for("the print dialog", lambda: screen.window_with("Print"))
    screen.picture("print-dialog")
    for _, label, item, _ in CHOICES:
        screen.choose(panel, label, item)
    screen.enter(panel, "Sender Name", SENDER)
    screen.picture("fax-settings-chosen")
    for item in ("Printer Features", "Summary", PANEL):
        screen.choose(panel, "Options", item)
        if item != PANEL:
            screen.picture(item.lower().replace(" ", "-"))
    look_for_a_document(screen, panel)
    open_editor(screen, panel, editor)
    return panel


def look_for_a_document(screen, panel):
    screen.press(panel, "Add Document\u2026")
    screen.go_to("Add Document")
    screen.picture("add-document")
    screen.keys("Escape")
    screen.wait_closed("Add Document")


def type_recipients(screen):
    # The keyboard lacks the Japanese letters: xdotool lends an unused key to each, which the toolkit has to notice in time.
    for (name, number), delay in ((TYPED, 30), (TYPED_SLOWLY, 600)):
        screen.enter(FAX_DIALOG, "Name", name, delay)
        screen.enter(FAX_DIALOG, "Fax Number", number)
        screen.press(FAX_DIALOG, "Add")
        screen.control(FAX_DIALOG, "Name", "TextField", value="")


def read_help(screen):
    before = [window["title"] for window in screen.windows()]
    screen.press(FAX_DIALOG, "Help")
    page = wait_for("the help page", lambda: next(
        (w["title"] for w in screen.windows() if w["key"] and w["title"] not in before), None))
    screen.picture("help")
    # A word that is the same in every language.
    screen.keys("ctrl+f", *"cups")
    screen.go_to(screen.texts.filled("Found for “{0}”", "cups"))
    screen.picture("help-search")
    # Out of the search, then out of the window.
    screen.keys("Escape")
    screen.go_to(page)
    screen.keys("Escape")
    screen.wait_closed(page)


def told_in(screen):
    """The title of the window that follows the job."""
    return wait_for("the window of the job", lambda: screen.window_with("Cancel Job"))


def send_one_fax(screen, editor, book):
    """From the first window to the last."""
    panel = set_up_panel(screen, editor)
    screen.press(panel, "Print")

    screen.go_to(FAX_DIALOG)
    screen.picture("fax-dialog")
    type_recipients(screen)
    address_books.choose_recipients(screen, book, PASSWORD_FIELD, [TYPED, TYPED_SLOWLY])
    screen.enter(FAX_DIALOG, PASSWORD_FIELD, PASSWORD, shown="*" * len(PASSWORD))
    screen.press(FAX_DIALOG, "Send at a later time")
    screen.enter(FAX_DIALOG, "Time of day (24 hours)", DELAYED_TIME)
    screen.keys("Tab")
    screen.picture("fax-dialog-filled-in")
    read_help(screen)
    screen.press(FAX_DIALOG, "Start")

    told = wait_for("the message that the job was handed over", lambda: next(
        (c for w in screen.windows() for c in w["controls"] if screen.texts.says(c["title"], "OK") and c["enabled"]), None))
    screen.control(told_in(screen), "Cancel Job", enabled=False)
    screen.picture("handed-over")
    screen.click(told["frame"])


def expected_ticket(title, document):
    destinations = address_books.as_shown([TYPED, TYPED_SLOWLY, *address_books.CHOSEN])
    return {
        "job": 1,
        "user": os.environ.get("USER") or run("id", "-un").strip(),
        "title": title,
        "document": {"file": "job-1.pdf", "bytes": os.path.getsize(document)},
        "copies": 1,
        "pageRanges": "",
        "options": {key: choice for key, _, _, choice in CHOICES},
        "senderName": SENDER,
        "password": PASSWORD,
        "delayed": True,
        "delayedTime": DELAYED_TIME,
        "destinations": [{"name": name, "phoneNumber": number} for name, number in destinations],
    }

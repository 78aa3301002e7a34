#!/usr/bin/env python3
"""One whole fax through the real windows, by X events alone.

    script/headless python3 -B script/tour --build BUILD DIR FILE

Starts a private CUPS, a directory server as the printer's address book, and the print dialog on FILE; imports a list of
customers into an address-book file with gad; then clicks and types as a person would. The positions of the controls come
from the dialog's own map of the screen (faxprint --ui-map). Every window is pictured in DIR.

At the end the ticket that the driver's filter wrote is printed and compared with what was entered and chosen, field by
field, and the document byte by byte. Compared are also what the dialogs show on the way, the address-book file, and the
arguments that a stand-in of the address book editor was started with. Exit code 0 only when all is equal.

Needs a display and application folders of its own (script/headless gives both), with a window manager, setxkbmap,
xdotool and import; slapd and openssl.
"""

import contextlib
import json
import os
import shutil
import subprocess
import sys

from address_books import SCRIPTS, BookFile, PrinterBook
from editor import Editor
from fax import expected_ticket, send_one_fax
from screen import Screen, TourError, differences, environment_of, run, run_tour, scale_of, wait_for


def start_cups(services, arguments, work):
    """Answers the folder of a private CUPS and its socket; services stops it."""
    folder = os.path.join(work, "cups")
    private_cups = os.path.join(SCRIPTS, "private-cups")
    address = run(private_cups, "start", folder, "--build", arguments.build, "--owner", str(os.getpid())).strip()
    services.callback(run, private_cups, "stop", folder)
    return folder, address


def end(program):
    if program.poll() is None:
        program.kill()
        program.wait()


def make_documents(arguments, work):
    """The folder that the dialog is started in, as somebody's folder looks."""
    folder = os.path.join(work, "henry", "Documents")
    os.makedirs(folder)
    for name in ("Letter to the school.pdf", "Order.pdf", "Price list.pdf"):
        shutil.copy(arguments.file, os.path.join(folder, name))
    return folder


def use_dialog(arguments, map_file, program, editor, book):
    """Answers the screen when the print dialog has ended well."""
    screen = Screen(map_file, arguments.pictures, program, arguments.texts, scale_of(arguments))
    try:
        send_one_fax(screen, editor, book)
        code = program.wait(timeout=30)
    except Exception:
        run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, "failed.png"))
        with contextlib.suppress(FileNotFoundError):
            shutil.copy(map_file, os.path.join(arguments.pictures, "failed.json"))
        raise
    if code != 0:
        raise TourError(f"the print dialog ended with code {code}")
    return screen


def compare(arguments, tickets):
    """The ticket and the document in the folder tickets with what was entered."""
    ticket_file = os.path.join(tickets, "job-1.json")
    wait_for("the ticket", lambda: os.path.exists(ticket_file))
    with open(ticket_file, encoding="utf-8") as file:
        text = file.read()
    print(text)
    got = json.loads(text)
    title = os.path.splitext(os.path.basename(arguments.file))[0]
    wrong = differences(got, expected_ticket(title, arguments.file), "ticket")
    with open(arguments.file, "rb") as sent, open(os.path.join(tickets, got["document"]["file"]), "rb") as kept:
        if sent.read() != kept.read():
            wrong.append("the document is not the one that was sent")
    if wrong:
        raise TourError("\n".join(wrong))


def tour(arguments, work):
    # A keyboard that has the letter ü: xdotool would lend an unused key to it, and the toolkit misses some of the loans.
    run("setxkbmap", "de")
    map_file = os.path.join(work, "map.json")
    editor = Editor(arguments.build, work)
    book = BookFile(arguments.build, work)
    with contextlib.ExitStack() as services:
        services.callback(editor.end)
        cups, cups_address = start_cups(services, arguments, work)
        printer_book = PrinterBook(work)
        services.callback(printer_book.stop)
        output = services.enter_context(open(os.path.join(work, "faxprint.log"), "w+", encoding="utf-8"))
        program = subprocess.Popen(
            [os.path.join(os.path.abspath(arguments.build), "faxprint.app", "faxprint"), "--ui-map", map_file, os.path.abspath(arguments.file)],
            env={**environment_of(arguments), **book.environment(), **printer_book.environment(), "CUPS_SERVER": cups_address,
                 "DIRECTFAX_EDITOR_RECORDS": editor.records},
            cwd=make_documents(arguments, work), stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        services.callback(end, program)
        try:
            screen = use_dialog(arguments, map_file, program, editor, book)
            compare(arguments, os.path.join(cups, "tickets"))
        except Exception:
            output.seek(0)
            print("".join(output.readlines()[-20:]), file=sys.stderr)
            raise
    print(f"The ticket and the document are what was entered; {screen.taken} pictures in {arguments.pictures}")


if __name__ == "__main__":
    sys.exit(run_tour("script/tour", "One whole fax through the real windows.", tour))

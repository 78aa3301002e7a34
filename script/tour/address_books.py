"""Recipients out of address books: files that gad makes, and a printer's book that a directory server holds."""

import csv
import json
import os
import signal
import socket

from screen import expect, run, wait_for

SCRIPTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PRIVATE_SLAPD = os.path.join(SCRIPTS, os.pardir, "tests", "quoltanis", "private-slapd")

FAX_DIALOG = "Send Fax"
DIALOG = "Address Book"
FILE_TABLE, PRINTER_TABLE = "pcTable", "deviceTable"
RECIPIENTS = "Recipients"

# What the tour imports. As many programs write it: a byte-order mark, semicolons, a line break inside a cell.
HEADER = ("Name", "Fax", "Company", "Notes", "Group")
ANNA = ("Anna Bergström", "+46 8 555 01 20", "Bergström & Co", "Invoices; copy to Eva", "Sales")
BEPPE = ("Beppe Rossi", "+39 06 5550147", "Rossi S.r.l.", "", "Sales")
CHLOE = ("Chloé Martin", "+33 1 55 50 01 83", "Martin SARL", "", "")
DAVID = ("David Okafor", "+44 20 5550 0166", "Okafor Ltd", "Contracts\nand offers", "")
ERIKA = ("Erika Lindqvist", "+46 31 555 02 11", "Lindqvist AB", "", "")
PEOPLE = [ANNA, BEPPE, CHLOE, DAVID, ERIKA]
# A group as its row shows it.
SALES = ("Sales", "Group")

PRINTER_PASSWORD = "1234"
OF_PRINTER = ("Person 42", "+46 8 000042")
# More than the table shows at a time.
PRINTER_PEOPLE = 60


def entry(person):
    return person[:2]


# Whom the steps below choose, in no order; with the typed ones no more than the shorter list shows at a time.
CHOSEN = [entry(person) for person in (ANNA, BEPPE, DAVID)] + [OF_PRINTER]


def as_shown(entries):
    """From Z to A, as every list of the dialogs."""
    return sorted(entries, key=lambda e: (e[0].lower(), e[1]), reverse=True)


class BookFile:
    """A file with what a list of customers holds."""

    def __init__(self, build, work):
        self.gad = os.path.join(build, "gad", "gad")
        self.folder = os.path.join(work, "addressbooks")
        os.mkdir(self.folder)
        self.path = os.path.join(self.folder, "office.gad")
        customers = os.path.join(work, "customers.csv")
        with open(customers, "w", encoding="utf-8-sig", newline="") as file:
            csv.writer(file, delimiter=";").writerows([HEADER, *PEOPLE])
        run(self.gad, "create", self.path)
        print(run(self.gad, "import", self.path, customers), end="")

    def entries(self):
        return [(one["name"], one["number"]) for one in json.loads(run(self.gad, "list", "--format", "json", self.path))]

    def environment(self):
        return {"DIRECTFAX_ADDRESSBOOKS": self.folder}


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class PrinterBook:
    """A directory server at the printer's address, which is loopback; it asks for encryption."""

    def __init__(self, work):
        self.folder = os.path.join(work, "printer")
        os.mkdir(self.folder)
        port = free_port()
        run(PRIVATE_SLAPD, self.folder, str(port), str(free_port()), str(PRINTER_PEOPLE), str(os.getpid()))
        self.settings = os.path.join(self.folder, "printer-book.conf")
        with open(self.settings, "w", encoding="utf-8") as file:
            file.write(f"port = {port}\nca-file = {self.folder}/ca.pem\n"
                       "base-dn = ou=addressbook,dc=printer,dc=local\nbind-dn = cn=addressbook,dc=printer,dc=local\n")

    def environment(self):
        return {"DIRECTFAX_PRINTER_BOOK": self.settings}

    def stop(self):
        with open(os.path.join(self.folder, "pid"), encoding="utf-8") as file:
            process = int(file.read())

        def gone():
            try:
                os.kill(process, signal.SIGTERM)
            except ProcessLookupError:
                return True
            return False

        wait_for("slapd to end", gone)


def save_recipient(screen, book, recipient):
    """Into the file that the pop-up shows."""
    screen.select_row(FAX_DIALOG, RECIPIENTS, recipient)
    screen.press(FAX_DIALOG, "Add to Address Book")
    screen.answer_alert("Added to Address Book.", "OK", "added-to-address-book")
    expect(sorted(book.entries()), sorted([*map(entry, PEOPLE), recipient]), book.path)
    print(f'"Add to Address Book" put {recipient} into the file')


def properties(screen, window, picture):
    screen.press(DIALOG, "Properties...")
    screen.go_to(window)
    screen.picture(picture)


def close_properties(screen, window):
    screen.press(window, "Close")
    screen.wait_closed(window)


def search(screen, text, found, table):
    screen.enter(DIALOG, "Search", text)
    screen.wait_rows(DIALOG, table, found)


def choose_individual(screen):
    screen.select_row(DIALOG, FILE_TABLE, entry(ANNA))
    properties(screen, "Entry", "properties-of-an-entry")
    for label, text in zip(("Name", "Fax Number", "Company", "Note"), ANNA):
        screen.control("Entry", label, "Field", value=text)
    close_properties(screen, "Entry")
    screen.press(DIALOG, "Add")


def choose_by_search(screen, shown):
    search(screen, "OKA", [entry(DAVID)], FILE_TABLE)
    screen.picture("search")
    screen.select_row(DIALOG, FILE_TABLE, entry(DAVID))
    screen.press(DIALOG, "Add")
    screen.clear(DIALOG, "Search")
    screen.wait_rows(DIALOG, FILE_TABLE, shown)


def choose_group(screen):
    """One of its members is a recipient already, and shall not be one twice."""
    screen.select_row(DIALOG, FILE_TABLE, SALES)
    properties(screen, "Group", "properties-of-a-group")
    screen.control("Group", "Name", "Field", value=SALES[0])
    screen.wait_rows("Group", "Members", as_shown(entry(p) for p in PEOPLE if p[4] == SALES[0]))
    close_properties(screen, "Group")
    screen.press(DIALOG, "Add")
    screen.answer_alert("Add the same address to destinations?", "Cancel", "duplicate-question")


def from_file(screen, recipients):
    """Answers the recipients that there are then."""
    screen.press(FAX_DIALOG, "From Address Book...")
    screen.go_to(DIALOG)
    shown = as_shown([*map(entry, PEOPLE), SALES, recipients[0]])
    screen.wait_rows(DIALOG, FILE_TABLE, shown)
    screen.picture("address-book")
    choose_individual(screen)
    choose_by_search(screen, shown)
    choose_group(screen)
    recipients = as_shown([*recipients, *map(entry, (ANNA, BEPPE, DAVID))])
    screen.wait_rows(DIALOG, RECIPIENTS, recipients)
    screen.picture("chosen-from-file")
    screen.press(DIALOG, "OK")
    screen.wait_closed(DIALOG)
    screen.wait_rows(FAX_DIALOG, RECIPIENTS, recipients)
    return recipients


def cancel_restores(screen, recipients):
    screen.press(FAX_DIALOG, "From Address Book...")
    screen.select_row(DIALOG, RECIPIENTS, entry(BEPPE))
    screen.press(DIALOG, "Delete")
    screen.select_row(DIALOG, FILE_TABLE, entry(ERIKA))
    screen.press(DIALOG, "Add")
    changed = as_shown([entry(ERIKA), *(one for one in recipients if one != entry(BEPPE))])
    screen.wait_rows(DIALOG, RECIPIENTS, changed)
    screen.picture("before-cancel")
    screen.press(DIALOG, "Cancel")
    screen.wait_closed(DIALOG)
    screen.wait_rows(FAX_DIALOG, RECIPIENTS, recipients)
    screen.picture("cancel-restored")


def from_printer(screen, password_field, recipients):
    screen.enter(FAX_DIALOG, password_field, "9999", shown="****")
    screen.press(FAX_DIALOG, "From Printer...")
    screen.answer_alert("Invalid Password", "OK", "wrong-password")
    screen.wait_rows(DIALOG, PRINTER_TABLE, [])
    screen.press(DIALOG, "Cancel")
    screen.wait_closed(DIALOG)

    screen.enter(FAX_DIALOG, password_field, PRINTER_PASSWORD, shown="****")
    screen.press(FAX_DIALOG, "From Printer...")
    screen.go_to(DIALOG)
    wait_for("the printer's book", lambda: screen.table(DIALOG, PRINTER_TABLE))
    screen.picture("printer-book")
    search(screen, OF_PRINTER[0], [OF_PRINTER], PRINTER_TABLE)
    screen.select_row(DIALOG, PRINTER_TABLE, OF_PRINTER)
    screen.press(DIALOG, "Add")
    recipients = as_shown([*recipients, OF_PRINTER])
    screen.wait_rows(DIALOG, RECIPIENTS, recipients)
    screen.picture("chosen-from-printer")
    screen.press(DIALOG, "OK")
    screen.wait_closed(DIALOG)
    screen.wait_rows(FAX_DIALOG, RECIPIENTS, recipients)


def choose_recipients(screen, book, password_field, typed):
    """The fax dialog is in front and shows the typed recipients, of which the first is saved into the file. Leaves the
    CHOSEN ones beside them, and the printer's password in the field."""
    save_recipient(screen, book, typed[0])
    recipients = from_file(screen, list(typed))
    cancel_restores(screen, recipients)
    from_printer(screen, password_field, recipients)

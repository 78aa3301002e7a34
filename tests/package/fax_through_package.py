#!/usr/bin/env python3
"""One fax through the installed package: a queue made of the installed PPD, the dialog, the filter, the device.

    unshare --net script/headless python3 fax_through_package.py ROOT

ROOT is a Debian with the package and CUPS, a user fax-sender, and /tmp/letter.pdf. Everything of the product and of CUPS
that runs is what is installed there, with the settings that Debian gives it; the X server, the keys and the device are
ours. One recipient is typed, the other chosen from an address book that gad made. Exit code 0 only when the driver's
ticket and what reached the device are what was entered and sent.
"""

import json
import os
import pwd
import socket
import subprocess
import sys
import threading

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "script"))
import tour  # noqa: E402

SENDER = "fax-sender"
TYPED = ("Anna Berg", "030-1234567")
CHOSEN = ("Erika Muster", "040-7654321")
BOOKS = f"/home/{SENDER}/.local/share/directfax/addressbooks"
BOOK_DIALOG = "Address Book"
MODEL = "lsb/usr/directfax/norvalt-fax.ppd"


class Device:
    """A network printer that keeps what it is sent."""

    def __init__(self):
        self.server = socket.create_server(("127.0.0.1", 0))
        self.port = self.server.getsockname()[1]
        self.received = None
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        connection, _ = self.server.accept()
        with connection:
            self.received = b"".join(iter(lambda: connection.recv(65536), b""))


class Root:
    def __init__(self, folder):
        self.folder = folder

    def path(self, inside):
        return os.path.join(self.folder, inside.lstrip("/"))

    def command(self, *words, user=None, **variables):
        home = f"/home/{user}" if user else "/root"
        who = [f"--userspec={user}", "--groups="] if user else []
        settings = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": home, "LC_ALL": "C.UTF-8", **variables}
        return ["chroot", *who, self.folder, "env", "-i", *(f"{k}={v}" for k, v in settings.items()), *words]

    def run(self, *words, user=None):
        return tour.run(*self.command(*words, user=user))

    def start(self, log, *words, **how):
        with open(self.path(log), "wb") as output:
            return subprocess.Popen(self.command(*words, **how), stdin=subprocess.DEVNULL, stdout=output, stderr=output)


def make_queue(root, device):
    tour.wait_for("the print service", lambda: subprocess.run(
        root.command("lpstat", "-r"), capture_output=True, check=False).stdout.startswith(b"scheduler is running"))
    if MODEL not in root.run("lpinfo", "-m"):
        raise tour.TourError(f"CUPS does not offer {MODEL}")
    root.run("lpadmin", "-p", "fax", "-m", MODEL, "-v", f"socket://127.0.0.1:{device.port}", "-E")
    print(f"Queue: {root.run('lpstat', '-p', 'fax').splitlines()[0]}")


def make_book(root):
    book = f"{BOOKS}/office.gad"
    root.run("mkdir", "-p", BOOKS, user=SENDER)
    root.run("gad", "create", book, user=SENDER)
    root.run("gad", "add", book, *CHOSEN, user=SENDER)
    print(f"Address book: {root.run('gad', 'list', book, user=SENDER).strip()}")


def choose_from_book(screen):
    screen.press(tour.FAX_DIALOG, "From Address Book...")
    tables = tour.wait_for("the address book", lambda: [
        c for c in (screen.window(BOOK_DIALOG) or {"controls": []})["controls"] if c["class"] == "NSTableView"])
    left, top, width, _ = tables[0]["frame"]
    screen.click((left, top, width, 20))
    screen.press(BOOK_DIALOG, "Add")
    screen.press(BOOK_DIALOG, "OK")
    tour.wait_for("the address book to close", lambda: not screen.window(BOOK_DIALOG))


def type_recipient(screen):
    name, number = TYPED
    screen.enter(tour.FAX_DIALOG, "Name", name)
    screen.enter(tour.FAX_DIALOG, "Fax Number", number)
    screen.press(tour.FAX_DIALOG, "Add")
    screen.control(tour.FAX_DIALOG, "Name", "TextField", value="")


def send(root):
    map_file = f"/home/{SENDER}/map.json"
    dialog = root.start("/tmp/faxprint.log", "faxprint", "--printer", "fax", "--ui-map", map_file, "/tmp/letter.pdf",
                        user=SENDER, DISPLAY=os.environ["DISPLAY"])
    screen = tour.Screen(root.path(map_file), None, dialog)
    try:
        panel = tour.wait_for("the print dialog", lambda: next(
            (w["title"] for w in screen.windows() if any("Print" == c["title"] for c in w["controls"])), None))
        screen.press(panel, "Print")
        screen.wait_window(tour.FAX_DIALOG)
        type_recipient(screen)
        choose_from_book(screen)
        with open(f"/proc/{dialog.pid}/maps", encoding="utf-8") as maps:
            loaded = sorted({line.split()[-1].removeprefix(root.folder) for line in maps if "/directfax/" in line})
        print("\n".join(["Loaded:", *loaded]))
        screen.press(tour.FAX_DIALOG, "Start")
        told = tour.wait_for("the message that the job was handed over", lambda: next(
            (c for w in screen.windows() for c in w["controls"] if c["title"] == "OK" and c["enabled"]), None))
        screen.click(told["frame"])
        if dialog.wait(timeout=30) != 0:
            raise tour.TourError(f"the print dialog ended with code {dialog.returncode}")
    except Exception:
        with open(root.path("/tmp/faxprint.log"), encoding="utf-8", errors="replace") as log:
            print(log.read(), file=sys.stderr)
        raise
    finally:
        dialog.kill()
        dialog.wait()


def compare(root, device):
    stem = root.path("/var/spool/directfax/job-1")
    tour.wait_for("the ticket", lambda: os.path.exists(f"{stem}.json"))
    with open(f"{stem}.json", encoding="utf-8") as file:
        ticket = json.load(file)
    print(json.dumps(ticket, ensure_ascii=False, indent=2))
    with open(root.path("/tmp/letter.pdf"), "rb") as file:
        letter = file.read()
    with open(f"{stem}.pdf", "rb") as file:
        kept = file.read()
    tour.wait_for("the fax to reach the device", lambda: device.received is not None)
    state = os.stat(f"{stem}.json")
    got = {"destinations": ticket["destinations"], "user": ticket["user"], "title": ticket["title"],
           "ticket": (pwd.getpwuid(state.st_uid).pw_name, oct(state.st_mode & 0o777)),
           "kept": kept == letter, "received": device.received == letter}
    # The list is sent in descending order of its names.
    recipients = [{"name": name, "phoneNumber": number} for name, number in sorted([TYPED, CHOSEN], reverse=True)]
    wanted = {"destinations": recipients, "user": SENDER, "title": "letter",
              "ticket": ("lp", "0o600"), "kept": True, "received": True}
    if wrong := tour.differences(got, wanted):
        raise tour.TourError("\n".join(wrong))
    print(f"The ticket and the {len(letter)} bytes that the device received are what was sent.")


def main():
    root, device = Root(os.path.abspath(sys.argv[1])), Device()
    tour.run("ip", "link", "set", "lo", "up")
    service = root.start("/tmp/cupsd.log", "cupsd", "-f")
    try:
        make_queue(root, device)
        make_book(root)
        send(root)
        compare(root, device)
    except (tour.TourError, subprocess.TimeoutExpired) as error:
        print(f"fax_through_package: {error}", file=sys.stderr)
        return 1
    finally:
        service.terminate()
        service.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main())

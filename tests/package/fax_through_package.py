#!/usr/bin/env python3
"""Faxes through the installed package, in two languages: a queue made of the installed PPD, the dialog, the filter, the
device.

    unshare --net script/headless python3 fax_through_package.py ROOT

ROOT is a Debian with the package and CUPS, a user fax-sender, and /tmp/letter.pdf. Everything of the product and of CUPS
that runs is what is installed there, with the settings that Debian gives it; the X server, the keys and the device are
ours. One recipient is typed, the other chosen from an address book that gad made. Exit code 0 only when the driver's
tickets and what reached the device are what was entered and sent, when the programs, the dialog and CUPS's own pages
speak German out of what is installed, and when the installed fonts have the letters of every language.
"""

import contextlib
import glob
import json
import os
import pwd
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import urllib.parse
import urllib.request

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "script", "tour"))
from address_books import DIALOG as BOOK_DIALOG, FILE_TABLE  # noqa: E402
from editor import OPEN_EDITOR  # noqa: E402
from fax import FAX_DIALOG, PANEL  # noqa: E402
from screen import Screen, TourError, expect, run, wait_for  # noqa: E402
from texts import Texts  # noqa: E402

SENDER = "fax-sender"
TYPED = ("Anna Berg", "030-1234567")
CHOSEN = ("Erika Muster", "040-7654321")
BOOKS = f"/home/{SENDER}/.local/share/directfax/addressbooks"
MODEL = "lsb/usr/directfax/norvalt-fax.ppd"


class Device:
    """A network printer that keeps the last document that it was sent."""

    def __init__(self):
        self.server = socket.create_server(("127.0.0.1", 0))
        self.port = self.server.getsockname()[1]
        self.received = None
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
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

    def run(self, *words, user=None, **variables):
        return run(*self.command(*words, user=user, **variables))

    def start(self, log, *words, **how):
        with open(self.path(log), "wb") as output:
            return subprocess.Popen(self.command(*words, **how), stdin=subprocess.DEVNULL, stdout=output, stderr=output)


def make_queue(root, device):
    wait_for("the print service", lambda: subprocess.run(
        root.command("lpstat", "-r"), capture_output=True, check=False).stdout.startswith(b"scheduler is running"))
    if MODEL not in root.run("lpinfo", "-m"):
        raise TourError(f"CUPS does not offer {MODEL}")
    root.run("lpadmin", "-p", "fax", "-m", MODEL, "-v", f"socket://127.0.0.1:{device.port}", "-E")
    print(f"Queue: {root.run('lpstat', '-p', 'fax').splitlines()[0]}")


def make_book(root):
    book = f"{BOOKS}/office.gad"
    root.run("mkdir", "-p", BOOKS, user=SENDER)
    root.run("gad", "create", book, user=SENDER)
    root.run("gad", "add", book, *CHOSEN, user=SENDER)
    print(f"Address book: {root.run('gad', 'list', book, user=SENDER).strip()}")


def fonts_suffice(root):
    """For every letter of every catalogue."""
    fonts = [file for file in glob.glob(root.path("/usr/share/fonts/**"), recursive=True)
             if file.endswith((".ttf", ".ttc", ".otf")) and not os.path.islink(file)]
    letters = set()
    for part in run("fc-query", "-f", "%{charset} ", *fonts).split():
        first, _, last = part.partition("-")
        letters.update(range(int(first, 16), int(last or first, 16) + 1))
    catalogues = glob.glob(root.path("/usr/share/locale/*/LC_MESSAGES/directfax.mo"))
    for catalogue in catalogues:
        if missing := {c for c in run("msgunfmt", catalogue) if c.isprintable() and ord(c) not in letters}:
            raise TourError(f"no font has {''.join(sorted(missing))} of {catalogue}")
    print(f"The fonts have the letters of all {len(catalogues)} catalogues.")


def installed_texts(root, folder, language):
    """The texts of what is installed, which stands in other places than in a build; folder is empty, and lives as long."""
    home, = glob.glob(root.path("/usr/lib/*/directfax"))
    for name, place in (("locale", root.path("/usr/share/locale")), ("driver", root.path("/usr/share/ppd/directfax")),
                        ("DirectFax.bundle", f"{home}/DirectFax.bundle")):
        os.symlink(place, os.path.join(folder, name))
    return Texts(folder, language)


def programs_speak(root, texts):
    for program in ("faxprint", "AddressBookEditor", "gad"):
        said = root.run(program, "--help", user=SENDER, **texts.environment())
        if said == root.run(program, "--help", user=SENDER):
            raise TourError(f"{program} speaks English")
        print(f"{program} --help: {' '.join(said.split()[:12])} ...")


def print_service_speaks(root, texts):
    """The page of CUPS where a queue's defaults are set."""
    form = {"org.cups.sid": "1", "OP": "set-printer-options", "printer_name": "fax"}
    request = urllib.request.Request("http://localhost:631/admin/", urllib.parse.urlencode(form).encode(),
                                     {"Cookie": "org.cups.sid=1", "Accept-Language": texts.language.replace("_", "-")})
    with urllib.request.urlopen(request, timeout=30) as answer:
        page = answer.read().decode("utf-8")
    shown = re.search(r'<A NAME="QXFaxImageQuality">([^<:]*)', page)
    if not shown or shown[1].strip() not in texts.forms("Image Quality") - {"Image Quality"}:
        raise TourError(f"CUPS shows {shown and shown[1]!r} for the image quality")
    print(f"CUPS's page of the queue: {shown[1].strip()}")


def choose_from_book(screen):
    screen.press(FAX_DIALOG, "From Address Book...")
    screen.go_to(BOOK_DIALOG)
    screen.select_row(BOOK_DIALOG, FILE_TABLE, CHOSEN)
    screen.press(BOOK_DIALOG, "Add")
    screen.press(BOOK_DIALOG, "OK")
    screen.wait_closed(BOOK_DIALOG)


def type_recipient(screen):
    name, number = TYPED
    screen.enter(FAX_DIALOG, "Name", name)
    screen.enter(FAX_DIALOG, "Fax Number", number)
    screen.press(FAX_DIALOG, "Add")
    screen.control(FAX_DIALOG, "Name", "TextField", value="")


def shows_no_english(screen, panel, texts):
    """Of programs, bundle and PPD file one text each."""
    if texts.language == "en":
        return
    shown = {text for c in screen.window(panel)["controls"] for text in (c["title"], c["value"])}
    for english in ("Print", PANEL, "Image Quality"):
        if not shown & (texts.forms(english) - {english}):
            raise TourError(f'the dialog has no other text for "{english}"')


def loaded(root, program):
    with open(f"/proc/{program.pid}/maps", encoding="utf-8") as maps:
        return sorted({line.split()[-1].removeprefix(root.folder) for line in maps if "/directfax/" in line})


def editor_windows():
    return subprocess.run(["xdotool", "search", "--onlyvisible", "--classname", "^AddressBookEditor$"],
                          capture_output=True, encoding="utf-8", check=False).stdout.split()


def processes():
    """Pairs of a number and the program's path, of all whose path can be read."""
    for link in glob.glob("/proc/[0-9]*/exe"):
        with contextlib.suppress(OSError):
            yield int(link.split("/")[2]), os.readlink(link)


def see_editor(root, screen, panel):
    """The panel's button finds the installed one."""
    screen.press(panel, OPEN_EDITOR)
    window, = wait_for("the editor", editor_windows)
    (process, path), = (one for one in processes() if one[1].endswith("/AddressBookEditor"))
    print(f"Editor: {run('xdotool', 'getwindowname', window).strip()}, {path.removeprefix(root.folder)}")
    os.kill(process, signal.SIGTERM)
    wait_for("the editor to end", lambda: not editor_windows())
    run("xdotool", "search", "--name", f"^{panel}$", "windowactivate", "--sync")
    screen.front = None


def use_dialog(root, screen):
    panel = wait_for("the print dialog", lambda: screen.window_with("Print"))
    shows_no_english(screen, panel, screen.texts)
    see_editor(root, screen, panel)
    screen.press(panel, "Print")
    screen.go_to(FAX_DIALOG)
    type_recipient(screen)
    choose_from_book(screen)
    print("\n".join(["Loaded:", *loaded(root, screen.program)]))
    screen.press(FAX_DIALOG, "Start")
    told = wait_for("the message that the job was handed over", lambda: next(
        (c for w in screen.windows() for c in w["controls"] if screen.texts.says(c["title"], "OK") and c["enabled"]), None))
    screen.click(told["frame"])


def send(root, texts):
    map_file = f"/home/{SENDER}/map-{texts.language}.json"
    dialog = root.start("/tmp/faxprint.log", "faxprint", "--printer", "fax", "--ui-map", map_file, "/tmp/letter.pdf",
                        user=SENDER, DISPLAY=os.environ["DISPLAY"], **texts.environment())
    try:
        use_dialog(root, Screen(root.path(map_file), None, dialog, texts))
        if dialog.wait(timeout=30) != 0:
            raise TourError(f"the print dialog ended with code {dialog.returncode}")
    except Exception:
        with open(root.path("/tmp/faxprint.log"), encoding="utf-8", errors="replace") as log:
            print(log.read(), file=sys.stderr)
        raise
    finally:
        dialog.kill()
        dialog.wait()


def compare(root, device, job):
    stem = root.path(f"/var/spool/directfax/job-{job}")
    wait_for("the ticket", lambda: os.path.exists(f"{stem}.json"))
    with open(f"{stem}.json", encoding="utf-8") as file:
        ticket = json.load(file)
    print(json.dumps(ticket, ensure_ascii=False))
    with open(root.path("/tmp/letter.pdf"), "rb") as file:
        letter = file.read()
    with open(f"{stem}.pdf", "rb") as file:
        kept = file.read()
    wait_for("the fax to reach the device", lambda: device.received is not None)
    state = os.stat(f"{stem}.json")
    got = {"destinations": ticket["destinations"], "user": ticket["user"], "title": ticket["title"],
           "ticket": (pwd.getpwuid(state.st_uid).pw_name, oct(state.st_mode & 0o777)),
           "kept": kept == letter, "received": device.received == letter}
    # The list is sent in descending order of its names.
    recipients = [{"name": name, "phoneNumber": number} for name, number in sorted([TYPED, CHOSEN], reverse=True)]
    wanted = {"destinations": recipients, "user": SENDER, "title": "letter",
              "ticket": ("lp", "0o600"), "kept": True, "received": True}
    expect(got, wanted, "job")
    print(f"The ticket and the {len(letter)} bytes that the device received are what was sent.")
    device.received = None


def main():
    root, device = Root(os.path.abspath(sys.argv[1])), Device()
    run("ip", "link", "set", "lo", "up")
    service = root.start("/tmp/cupsd.log", "cupsd", "-f")
    try:
        fonts_suffice(root)
        make_queue(root, device)
        make_book(root)
        for job, language in enumerate(("en", "de"), 1):
            with tempfile.TemporaryDirectory() as folder:
                texts = installed_texts(root, folder, language)
                if language != "en":
                    print(f"With LANG={texts.environment()['LANG']}:")
                    programs_speak(root, texts)
                    print_service_speaks(root, texts)
                send(root, texts)
                compare(root, device, job)
    except (TourError, subprocess.TimeoutExpired) as error:
        print(f"fax_through_package: {error}", file=sys.stderr)
        return 1
    finally:
        service.terminate()
        service.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""One whole fax through the real windows, by X events alone.

    script/headless python3 script/tour.py --build BUILD DIR FILE

Starts a private CUPS and the print dialog on FILE, then clicks and types as a person would; the positions of the
controls come from the dialog's own map of the screen (faxprint --ui-map). Every window is pictured in DIR. At the end
the ticket that the driver's filter wrote is printed and compared with what was entered, field by field, and the document
byte by byte. So are the arguments that a stand-in of the address book editor was started with by the panel's button.
Exit code 0 only when all is equal.

Needs a display and application folders of its own (script/headless gives both), with a window manager, setxkbmap,
xdotool and import.
"""

import argparse
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SCRIPTS = os.path.dirname(os.path.abspath(__file__))

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
FAX_DIALOG = "Send Fax"

OPEN_EDITOR = "Open Address Book Editor..."
EDITOR = "Address Book Editor"
# Of the queue that the private CUPS makes; each is one argument, with a space inside.
EDITOR_ARGUMENTS = ["-DFAXConnectionType NET", "-DFAXAddress 127.0.0.1"]


class TourError(Exception):
    pass


def run(*command, text=None, timeout=30):
    done = subprocess.run(command, input=text, capture_output=True, encoding="utf-8", timeout=timeout, check=False)
    if done.returncode != 0:
        raise TourError(f"{' '.join(command)}: {done.stderr.strip() or done.stdout.strip()}")
    return done.stdout


def wait_for(what, look, seconds=20):
    """The first true answer of look(); TourError when there is none in time."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        answer = look()
        if answer:
            return answer
        time.sleep(0.05)
    raise TourError(f"waited {seconds} s in vain for {what}")


def right_label(window, field):
    """The text that stands close to the right of a field, on its line; the map itself looks to the left and above."""
    x, y, width, height = field["frame"]
    for label in window["controls"]:
        left, top, _, label_height = label["frame"]
        if label["value"] and 0 <= left - (x + width) <= 20 and abs(top + label_height / 2 - (y + height / 2)) <= 6:
            return label["value"]
    return None


class Screen:
    """The windows as the dialog's map tells them, and the mouse and keys of the X server."""

    def __init__(self, map_file, pictures, program):
        self.map_file, self.pictures, self.program = map_file, pictures, program
        self.taken = 0

    def windows(self):
        if self.program.poll() is not None:
            raise TourError(f"the print dialog ended with code {self.program.returncode}")
        try:
            with open(self.map_file, encoding="utf-8") as file:
                return json.load(file)["windows"]
        except FileNotFoundError:
            return []

    def window(self, title):
        return next((w for w in self.windows() if w["title"] == title), None)

    def wait_window(self, title):
        return wait_for(f'the window "{title}"', lambda: self.window(title))

    def control(self, window_title, title, kind=None, **values):
        """A control by the text on it, or by that of its label; kind is part of its class's name."""

        def look():
            window = self.window(window_title)
            for control in window["controls"] if window else []:
                if (control["title"] or right_label(window, control)) != title or (kind and kind not in control["class"]):
                    continue
                if all(control[name] == value for name, value in values.items()):
                    return control
            return None

        wanted = " with " + ", ".join(f"{k} {v!r}" for k, v in values.items()) if values else ""
        return wait_for(f'"{title}"{wanted} in the window "{window_title}"', look)

    def point_at(self, frame):
        x, y, width, height = frame
        if x < 0 or y < 0 or width <= 0 or height <= 0:
            raise TourError(f"{frame} cannot be pointed at")
        run("xdotool", "mousemove", str(x + width // 2), str(y + height // 2), "sleep", "0.06")

    def click(self, frame):
        self.point_at(frame)
        # The toolkit's tracking loops lose a release that follows the press at once.
        run("xdotool", "mousedown", "1", "sleep", "0.06", "mouseup", "1", "sleep", "0.1")

    def press(self, window_title, title, kind="Button"):
        self.click(self.control(window_title, title, kind, enabled=True)["frame"])

    def keys(self, *names):
        run("xdotool", "key", "--delay", "30", *names)

    def focus(self, window_title, title):
        field = self.control(window_title, title, "TextField", enabled=True)
        self.click(field["frame"])
        return field

    def enter(self, window_title, title, text, delay=30, shown=None):
        """Replaces what a field holds by typing; delay is that between two keys, in milliseconds, shown what is then to
        be seen in the field."""
        self.focus(window_title, title)
        self.keys("Home", "shift+End", "BackSpace")
        run("xdotool", "type", "--delay", str(delay), text)
        self.control(window_title, title, "TextField", value=shown or text)

    def choose(self, window_title, title, item):
        """Picks an item of a pop-up. Now and then the toolkit closes the menu at a release without taking it for a
        choice, when it is slow to follow the mouse; a person tries again then, and so does the tour, twice."""
        for _ in range(3):
            popup = self.control(window_title, title, "PopUp", enabled=True)
            if popup["value"] == item:
                return
            self.drag_to_item(popup, item)
            end = time.monotonic() + 5
            while time.monotonic() < end and self.control(window_title, title, "PopUp")["value"] != item:
                time.sleep(0.1)
        self.control(window_title, title, "PopUp", value=item)

    def drag_to_item(self, popup, item):
        """Presses, goes to the item, releases, as with a mouse button held down."""
        self.point_at(popup["frame"])
        run("xdotool", "mousedown", "1")
        try:
            # Like a hand, until the menu shows what lies under the mouse: it misses a jump made while it opens.
            for wobble in range(100):
                x, y, width, height = self.menu_item(item)["frame"]
                self.point_at((x, y + wobble % 2, width, height))
                if self.menu_item(item)["focused"]:
                    break
        finally:
            run("xdotool", "mouseup", "1")

    def menu_item(self, title):
        return wait_for(f'the menu item "{title}"', lambda: next(
            (c for w in self.windows() for c in w["controls"] if c["class"] == "NSMenuItem" and c["title"] == title),
            None))

    def picture(self, name):
        """Pictures the window in front: the one that has the keyboard."""

        def look():
            front = [w for w in self.windows() if w["key"]]
            return front[0] if len(front) == 1 else None

        x, y, width, height = wait_for("one window that has the keyboard", look)["frame"]
        self.import_picture(name, "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage")

    def picture_of_active_window(self, name):
        """The same, of whatever program the window is."""
        self.import_picture(name, run("xdotool", "getactivewindow").strip())

    def import_picture(self, name, window, *part):
        time.sleep(0.3)  # drawn
        self.taken += 1
        run("import", "-silent", "-window", window, *part, os.path.join(self.pictures, f"{self.taken:02d}-{name}.png"))


class Editor:
    """The stand-in of the address book editor, not installed yet."""

    def __init__(self, build, work):
        self.built = os.path.join(build, "tests", "editor_stand_in", "AddressBookEditor.app")
        self.records = os.path.join(work, "editor")
        os.mkdir(self.records)

    def install(self):
        with open(os.environ["GNUSTEP_CONFIG_FILE"], encoding="utf-8") as file:
            settings = dict(line.rstrip("\n").split("=", 1) for line in file if re.match("[A-Z_]+=", line))
        shutil.copytree(self.built, os.path.join(settings["GNUSTEP_LOCAL_APPS"], os.path.basename(self.built)))

    def started(self):
        """The process numbers of those started so far."""
        return [int(name[:-4]) for name in os.listdir(self.records) if name.endswith(".txt")]

    def arguments(self, process):
        with open(os.path.join(self.records, f"{process}.txt"), encoding="utf-8") as file:
            return file.read().splitlines()[1:]

    def end(self):
        for process in self.started():
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass


def active_title():
    shown = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, encoding="utf-8",
                           check=False)
    return shown.stdout.strip()


def open_editor(screen, panel, editor):
    """The panel's button: nothing installed, then an editor that it starts, then one that runs behind the dialog."""
    screen.press(panel, OPEN_EDITOR)
    refusal = wait_for("the message that there is no editor", lambda: next(
        (c for w in screen.windows() for c in w["controls"] if c["title"] == "OK" and c["enabled"]), None))
    screen.picture("no-editor")
    screen.click(refusal["frame"])

    editor.install()
    screen.press(panel, OPEN_EDITOR)
    process = wait_for("the editor", editor.started)[0]
    run("xdotool", "search", "--sync", "--onlyvisible", "--name", f"^{EDITOR}$")
    run("xdotool", "search", "--name", f"^{panel}$", "windowactivate", "--sync")
    screen.press(panel, OPEN_EDITOR)
    wait_for("the editor to come forward", lambda: active_title() == EDITOR)
    screen.picture_of_active_window("address-book-editor")
    wrong = differences(editor.arguments(process), EDITOR_ARGUMENTS, "the editor's arguments")
    if editor.started() != [process]:
        wrong.append("the editor was started twice")
    editor.end()
    if wrong:
        raise TourError("\n".join(wrong))
    print(f"The editor was started once, with {editor.arguments(process)}")


def send_one_fax(screen, editor):
    """From the first window to the last."""
    panel = wait_for("the print dialog", lambda: next(
        (w["title"] for w in screen.windows() if any("Print" == c["title"] for c in w["controls"])), None))
    screen.picture("print-dialog")
    for _, label, item, _ in CHOICES:
        screen.choose(panel, label, item)
    screen.enter(panel, "Sender Name", SENDER)
    screen.picture("fax-settings-chosen")
    for item in ("Printer Features", "Summary", PANEL):
        screen.choose(panel, "Options", item)
        if item != PANEL:
            screen.picture(item.lower().replace(" ", "-"))
    open_editor(screen, panel, editor)
    screen.press(panel, "Print")

    screen.wait_window(FAX_DIALOG)
    screen.picture("fax-dialog")
    # The keyboard lacks the Japanese letters: xdotool lends an unused key to each, which the toolkit has to notice in time.
    for (name, number), delay in ((TYPED, 30), (TYPED_SLOWLY, 600)):
        screen.enter(FAX_DIALOG, "Name", name, delay)
        screen.enter(FAX_DIALOG, "Fax Number", number)
        screen.press(FAX_DIALOG, "Add")
        screen.control(FAX_DIALOG, "Name", "TextField", value="")
    screen.enter(FAX_DIALOG, "Access Code", PASSWORD, shown="*" * len(PASSWORD))
    screen.press(FAX_DIALOG, "Send at a later time")
    screen.enter(FAX_DIALOG, "Time of day (24 hours)", DELAYED_TIME)
    screen.keys("Tab")
    screen.picture("fax-dialog-filled-in")
    screen.press(FAX_DIALOG, "Help")
    page = wait_for("the help page", lambda: next(
        (w["title"] for w in screen.windows() if w["key"] and w["title"] not in (FAX_DIALOG, panel)), None))
    screen.picture("help")
    screen.keys("Escape")
    wait_for("the help window to close", lambda: not screen.window(page))
    screen.press(FAX_DIALOG, "Start")

    told = wait_for("the message that the job was handed over", lambda: next(
        (c for w in screen.windows() for c in w["controls"] if c["title"] == "OK" and c["enabled"]), None))
    screen.picture("handed-over")
    screen.click(told["frame"])


def expected_ticket(title, document):
    # The list is sent in descending order of its names.
    destinations = sorted([TYPED, TYPED_SLOWLY], reverse=True)
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


def differences(got, wanted, place="ticket"):
    if isinstance(got, dict) and isinstance(wanted, dict):
        return [line for key in sorted(got.keys() | wanted.keys())
                for line in differences(got.get(key), wanted.get(key), f"{place}.{key}")]
    return [] if got == wanted else [f"{place}: {got!r} instead of {wanted!r}"]


def tour(arguments, work):
    # A keyboard that has the letter ü: xdotool would lend an unused key to it, and the toolkit misses some of the loans.
    run("setxkbmap", "de")
    cups = os.path.join(work, "cups")
    start = run(os.path.join(SCRIPTS, "private-cups"), "start", cups, "--build", arguments.build,
                "--owner", str(os.getpid()))
    map_file = os.path.join(work, "map.json")
    output = open(os.path.join(work, "faxprint.log"), "w+", encoding="utf-8")
    program = None
    editor = Editor(arguments.build, work)
    try:
        title = os.path.splitext(os.path.basename(arguments.file))[0]
        program = subprocess.Popen(
            [os.path.join(arguments.build, "faxprint.app", "faxprint"), "--ui-map", map_file, arguments.file],
            env={**os.environ, "CUPS_SERVER": start.strip(), "DIRECTFAX_EDITOR_RECORDS": editor.records},
            stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        screen = Screen(map_file, arguments.pictures, program)
        try:
            send_one_fax(screen, editor)
            code = program.wait(timeout=30)
        except Exception:
            run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, "failed.png"))
            shutil.copy(map_file, os.path.join(arguments.pictures, "failed.json"))
            raise
        if code != 0:
            raise TourError(f"the print dialog ended with code {code}")
        ticket_file = os.path.join(cups, "tickets", "job-1.json")
        wait_for("the ticket", lambda: os.path.exists(ticket_file))
        with open(ticket_file, encoding="utf-8") as file:
            text = file.read()
        print(text)
        got = json.loads(text)
        wrong = differences(got, expected_ticket(title, arguments.file))
        with open(arguments.file, "rb") as sent, open(os.path.join(cups, "tickets", got["document"]["file"]), "rb") as kept:
            if sent.read() != kept.read():
                wrong.append("the document is not the one that was sent")
        if wrong:
            raise TourError("\n".join(wrong))
        print(f"The ticket and the document are what was entered; {screen.taken} pictures in {arguments.pictures}")
    except Exception:
        output.seek(0)
        print("".join(output.readlines()[-20:]), file=sys.stderr)
        raise
    finally:
        if program is not None and program.poll() is None:
            program.kill()
            program.wait()
        editor.end()
        output.close()
        run(os.path.join(SCRIPTS, "private-cups"), "stop", cups)


def main():
    parser = argparse.ArgumentParser(description="One whole fax through the real windows.")
    parser.add_argument("--build", required=True, help="folder of the build")
    parser.add_argument("pictures", metavar="DIR", help="where the pictures go")
    parser.add_argument("file", metavar="FILE", help="the document, a PDF")
    arguments = parser.parse_args()
    os.makedirs(arguments.pictures, exist_ok=True)
    work = tempfile.mkdtemp()
    os.chmod(work, 0o711)
    try:
        tour(arguments, work)
    except (TourError, subprocess.TimeoutExpired) as error:
        print(f"script/tour.py: {error}", file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())

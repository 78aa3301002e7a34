"""The windows of the print dialog as its map of the screen tells them, and the mouse and keys of the X server."""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

from texts import LOCALES, Texts

ALERT = "Alert"


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


def differences(got, wanted, place):
    """What differs, a line each; fields of dictionaries each on its own."""
    if isinstance(got, dict) and isinstance(wanted, dict):
        return [line for key in sorted(got.keys() | wanted.keys())
                for line in differences(got.get(key), wanted.get(key), f"{place}.{key}")]
    return [] if got == wanted else [f"{place}: {got!r} instead of {wanted!r}"]


def expect(got, wanted, place):
    """TourError when they differ."""
    if wrong := differences(got, wanted, place):
        raise TourError("\n".join(wrong))


def right_label(window, field, scale):
    """The text that stands close to the right of a field, on its line; the map itself looks to the left and above."""
    x, y, width, height = field["frame"]
    for label in window["controls"]:
        left, top, _, label_height = label["frame"]
        if (label["value"] and 0 <= left - (x + width) <= 20 * scale
                and abs(top + label_height / 2 - (y + height / 2)) <= 6 * scale):
            return label["value"]
    return None


def label_above(window, table, scale):
    """The text that stands above a table, its header and its scroller; the map looks for it right above the rows."""
    x, y, _, _ = table["frame"]
    for label in window["controls"]:
        left, top, _, height = label["frame"]
        if label["value"] and 0 <= x - left <= 30 * scale and 0 <= y - (top + height) <= 40 * scale:
            return label["value"]
    return None


class Screen:
    """The windows as the dialog's map tells them, and the mouse and keys of the X server.

    Windows and controls go by their English texts, whatever language the dialog speaks."""

    def __init__(self, map_file, pictures, program, texts, scale=1):
        self.map_file, self.pictures, self.program = map_file, pictures, program
        self.texts, self.scale = texts, scale
        self.taken = 0
        self.front = None  # the window used last, by its title

    def windows(self):
        if self.program.poll() is not None:
            raise TourError(f"the print dialog ended with code {self.program.returncode}")
        try:
            with open(self.map_file, encoding="utf-8") as file:
                return json.load(file)["windows"]
        except FileNotFoundError:
            return []

    def window(self, title):
        return next((w for w in self.windows() if self.texts.says(w["title"], title)), None)

    def window_with(self, button):
        """The title of the window that has such a button."""
        return next((w["title"] for w in self.windows()
                     if any(self.texts.says(c["title"], button) for c in w["controls"])), None)

    def key_window(self):
        front = [w for w in self.windows() if w["key"]]
        return front[0] if len(front) == 1 else None

    def go_to(self, title):
        """Waits until the window has the keyboard. The toolkit loses a click into one that has just come or come back."""
        if title == self.front:
            return
        wait_for(f'the window "{title}"', lambda: self.texts.says((self.key_window() or {}).get("title"), title))
        time.sleep(0.3)
        self.front = title

    def control(self, window_title, title, kind=None, **values):
        """A control by the text on it, or by that of its label; kind is part of its class's name."""

        def look():
            window = self.window(window_title)
            for control in window["controls"] if window else []:
                shown = control["title"] or right_label(window, control, self.scale)
                if not self.texts.says(shown, title) or (kind and kind not in control["class"]):
                    continue
                if all(self.equal(control[name], value) for name, value in values.items()):
                    return control
            return None

        wanted = " with " + ", ".join(f"{k} {v!r}" for k, v in values.items()) if values else ""
        return wait_for(f'"{title}"{wanted} in the window "{window_title}"', look)

    def equal(self, shown, wanted):
        return self.texts.says(shown, wanted) if isinstance(wanted, str) else shown == wanted

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
        self.go_to(window_title)
        self.click(self.control(window_title, title, kind, enabled=True)["frame"])

    def keys(self, *names):
        run("xdotool", "key", "--delay", "30", *names)

    def focus(self, window_title, title):
        self.go_to(window_title)
        self.click(self.control(window_title, title, "Field", enabled=True)["frame"])
        # Keys overtake a click that the window manager has yet to let through.
        self.control(window_title, title, "Field", focused=True)

    def enter(self, window_title, title, text, delay=30, shown=None):
        """Replaces what a field holds by typing; delay is that between two keys, in milliseconds, shown what is then to
        be seen in the field."""
        self.clear(window_title, title)
        run("xdotool", "type", "--delay", str(delay), text)
        self.control(window_title, title, "Field", value=text if shown is None else shown)

    def clear(self, window_title, title):
        self.focus(window_title, title)
        self.keys("Home", "shift+End", "BackSpace")

    def choose(self, window_title, title, item):
        """Picks an item of a pop-up. Now and then the toolkit closes the menu at a release without taking it for a
        choice, when it is slow to follow the mouse; a person tries again then, and so does the tour, twice."""
        for _ in range(3):
            popup = self.control(window_title, title, "PopUp", enabled=True)
            if self.texts.says(popup["value"], item):
                return
            self.drag_to_item(popup, item)
            end = time.monotonic() + 5
            while time.monotonic() < end and not self.texts.says(self.control(window_title, title, "PopUp")["value"], item):
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
            (c for w in self.windows() for c in w["controls"] if c["class"] == "NSMenuItem" and self.texts.says(c["title"], title)),
            None))

    def table(self, window_title, name):
        """The rows of a table that can be seen, None without the table; its name is that of its outlet, or its label."""
        window = self.window(window_title)
        for control in window["controls"] if window else []:
            names = (control["identifier"], label_above(window, control, self.scale))
            if "TableView" in control["class"] and any(self.texts.says(shown, name) for shown in names):
                return control.get("rows", [])
        return None

    def wait_rows(self, window_title, name, cells):
        """Until the table shows just these rows, in this order."""
        shown = None

        def look():
            nonlocal shown
            rows = self.table(window_title, name)
            shown = None if rows is None else [tuple(row["cells"]) for row in rows]
            return shown is not None and self.same_rows(shown, cells)

        try:
            wait_for(f'the table "{name}"', look)
        except TourError as error:
            raise TourError(f'{error} of "{window_title}" to show\n  {cells}\ninstead of\n  {shown}') from None

    def scroll(self, window_title, name):
        """Three notches of the wheel down, over a table."""
        window = self.window(window_title)
        self.point_at(next(c["frame"] for c in window["controls"]
                           if "TableView" in c["class"] and c["identifier"] == name))
        run("xdotool", "click", "--repeat", "3", "--delay", "60", "5")
        time.sleep(0.3)

    def same_row(self, shown, cells):
        return len(shown) == len(cells) and all(map(self.texts.says, shown, cells))

    def same_rows(self, shown, cells):
        return len(shown) == len(cells) and all(map(self.same_row, shown, cells))

    def select_row(self, window_title, name, cells):
        def row(**values):
            return next((r for r in self.table(window_title, name) or [] if self.same_row(r["cells"], cells)
                         and values.items() <= r.items()), None)

        self.go_to(window_title)
        self.click(wait_for(f'{cells} in the table "{name}"', row)["frame"])
        wait_for(f"{cells} to be selected", lambda: row(selected=True))

    def answer_alert(self, text, button, picture):
        """Pictures the alert that says this, answers it, and waits until it is gone."""
        def look():
            window = self.window(ALERT)
            return window and window["key"] and any(self.texts.says(c["value"], text) for c in window["controls"])

        wait_for(f'the alert "{text}"', look)
        self.picture(picture)
        self.press(ALERT, button)
        self.wait_closed(ALERT)

    def wait_closed(self, title):
        wait_for(f'the window "{title}" to close', lambda: not self.window(title))
        self.front = None

    def picture(self, name):
        """Pictures the window in front: the one that has the keyboard."""
        window = wait_for("one window that has the keyboard", self.key_window)
        x, y, width, height = window["frame"]
        self.import_picture(name, "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage")
        self.front = window["title"]

    def picture_of_active_window(self, name):
        """The same, of whatever program the window is."""
        self.import_picture(name, run("xdotool", "getactivewindow").strip())

    def import_picture(self, name, window, *part):
        time.sleep(0.3)  # drawn
        self.taken += 1
        run("import", "-silent", "-window", window, *part, os.path.join(self.pictures, f"{self.taken:02d}-{name}.png"))


def use_font_size(points):
    """Has the desktop say so, in the home that script/headless gives. GTK's points: 11 are usual."""
    folder = os.path.join(os.environ["HOME"], ".config", "gtk-3.0")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "settings.ini"), "w", encoding="utf-8") as file:
        file.write(f"[Settings]\ngtk-font-name=DejaVu Sans {points}\n")


def environment_of(arguments):
    """What the dialog is started with."""
    return {**os.environ, **arguments.texts.environment(), "DIRECTFAX_THEME": arguments.theme,
            "DIRECTFAX_SCALE": str(arguments.scale) if arguments.scale else ""}


def scale_of(arguments):
    """How many pixels a point is, as the dialog decides it; for finding labels, so that the eighths do not matter."""
    return arguments.scale or max(1, (arguments.font_size or 0) / 11)


def run_tour(program, description, tour):
    """The command line of a tour: tour(arguments, work) with arguments.build, .pictures and .file, .texts and how the dialog
    is to look, and a folder that goes with it. The exit code."""
    parser = argparse.ArgumentParser(prog=program, description=description)
    parser.add_argument("--build", required=True, help="folder of the build")
    parser.add_argument("--theme", choices=("light", "dark"), default="light")
    parser.add_argument("--scale", type=float, help="of the screen, such as 1.5; without it, as the desktop has it")
    parser.add_argument("--font-size", type=float, help="of the desktop's font in points; 11 is usual")
    parser.add_argument("--language", choices=sorted(LOCALES), default="en")
    parser.add_argument("pictures", metavar="DIR", help="where the pictures go")
    parser.add_argument("file", metavar="FILE", help="the document, a PDF")
    arguments = parser.parse_args()
    arguments.texts = Texts(arguments.build, arguments.language)
    if arguments.font_size:
        use_font_size(arguments.font_size)
    os.makedirs(arguments.pictures, exist_ok=True)
    work = tempfile.mkdtemp()
    os.chmod(work, 0o711)
    try:
        tour(arguments, work)
    except (TourError, subprocess.TimeoutExpired) as error:
        print(f"{program}: {error}", file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return 0

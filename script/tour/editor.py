"""The panel's button "Open Address Book Editor...", with a stand-in of the editor."""

import os
import re
import shutil
import signal
import subprocess

from screen import expect, wait_for

OPEN_EDITOR = "Open Address Book Editor..."
EDITOR = "Address Book Editor"
# Of the queue that the private CUPS makes; each is one argument, with a space inside.
EDITOR_ARGUMENTS = ["-DFAXConnectionType NET", "-DFAXAddress 127.0.0.1"]


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


def is_shown(title):
    """Another window may go while xdotool looks at it, which ends the search; whoever waits asks again."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], capture_output=True, check=False)
    return found.returncode == 0 and found.stdout.strip()


def bring_forward(title):
    done = subprocess.run(["xdotool", "search", "--name", f"^{title}$", "windowactivate", "--sync"], capture_output=True,
                          timeout=30, check=False)
    return done.returncode == 0


def active_title():
    shown = subprocess.run(["xdotool", "getactivewindow", "getwindowname"], capture_output=True, encoding="utf-8",
                           check=False)
    return shown.stdout.strip()


def open_editor(screen, panel, editor):
    """The panel's button: nothing installed, then an editor that it starts, then one that runs behind the dialog."""
    screen.press(panel, OPEN_EDITOR)
    screen.answer_alert("Address Book Editor not found.", "OK", "no-editor")

    editor.install()
    screen.press(panel, OPEN_EDITOR)
    process = wait_for("the editor", editor.started)[0]
    wait_for("the editor's window", lambda: is_shown(EDITOR))
    wait_for("the dialog to be brought forward", lambda: bring_forward(panel))
    screen.press(panel, OPEN_EDITOR)
    wait_for("the editor to come forward", lambda: active_title() == EDITOR)
    screen.picture_of_active_window("address-book-editor")
    expect(editor.arguments(process), EDITOR_ARGUMENTS, "the editor's arguments")
    expect(editor.started(), [process], "the editors started")
    editor.end()
    print(f"The editor was started once, with {editor.arguments(process)}")

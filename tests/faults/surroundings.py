#!/usr/bin/env python3
"""The programs where a home, the fonts or the message bus are not there: they start, do their work, and say what they
could not keep.

    script/headless python3 tests/faults/surroundings.py --build BUILD DIR FILE

FILE is printed into a file by the print dialog; an address book is opened by the editor. The pictures go to DIR.
"""

import os
import pwd
import shlex
import signal
import socket
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SCRIPTS = os.path.join(HERE, "..", "..", "script")
sys.path.insert(0, os.path.join(SCRIPTS, "tour"))
sys.dont_write_bytecode = True
from screen import Screen, TourError, run, run_tour, wait_for  # noqa: E402
from texts import Texts  # noqa: E402

NOTHING_KEPT = "Nothing is remembered for the next use"
FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"


def toolkit_home(work, home):
    """The toolkit takes the home from the user database: its configuration says where its own files are."""
    path = os.path.join(work, "toolkit.conf")
    with open(os.environ["GNUSTEP_CONFIG_FILE"], encoding="utf-8") as file:
        lines = [line for line in file if "USER_DEFAULTS_DIR" not in line]
    below = os.path.relpath(os.path.join(home, "defaults"), pwd.getpwuid(os.getuid()).pw_dir)
    with open(path, "w", encoding="utf-8") as file:
        file.writelines([*lines, f"GNUSTEP_USER_DEFAULTS_DIR={below}\n"])
    return path


def only_font(work):
    fonts = os.path.join(work, "fonts")
    os.mkdir(fonts)
    os.symlink(FONT, os.path.join(fonts, os.path.basename(FONT)))
    path = os.path.join(work, "fonts.conf")
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"<fontconfig><dir>{fonts}</dir><cachedir>{work}/font-cache</cachedir></fontconfig>\n")
    return path


def surroundings(work):
    """(name, changed environment, command before the program's, what the print dialog says at its end)"""
    read_only = os.path.join(work, "home")
    os.mkdir(read_only)
    mounts = ["unshare", "--mount", "sh", "-c", f'mount -t tmpfs -o ro none {shlex.quote(read_only)} && exec "$@"', "-"]
    rows = [
        ("no-home", {"HOME": None}, [], ""),
        ("home-nowhere", {"HOME": "/proc/nowhere", "GNUSTEP_CONFIG_FILE": toolkit_home(work, "/proc/nowhere")}, [],
         NOTHING_KEPT),
        ("one-font", {"FONTCONFIG_FILE": only_font(work)}, [], ""),
        ("one-font-japanese", {"FONTCONFIG_FILE": os.path.join(work, "fonts.conf"), "LC_ALL": "ja_JP.UTF-8"}, [], ""),
        ("no-bus", {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={work}/none", "DBUS_SYSTEM_BUS_ADDRESS":
                    f"unix:path={work}/none"}, [], ""),
    ]
    if subprocess.run([*mounts, "true"], stderr=subprocess.DEVNULL).returncode == 0:
        rows.append(("read-only-home", {"HOME": read_only}, mounts, NOTHING_KEPT))
    else:
        print("A read-only home was not tried: this process may mount nothing.")
    return rows


class Program:
    """A program that is ended with its block, and what it said."""

    def __init__(self, work, changes, command):
        environment = {key: value for key, value in {**os.environ, **changes}.items() if value is not None}
        self.said_file = os.path.join(work, "said")
        with open(self.said_file, "w", encoding="utf-8") as said:
            self.process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=said, stderr=said)

    def said(self):
        with open(self.said_file, encoding="utf-8", errors="replace") as file:
            return file.read()

    def wait(self):
        code = self.process.wait(timeout=20)
        if code != 0:
            raise TourError(f"ended with code {code}: {self.said()}")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()


def print_into_file(arguments, work, server, row):
    name, changes, before, says = row
    map_file, target = os.path.join(work, f"{name}.json"), os.path.join(work, f"{name}.pdf")
    faxprint = os.path.join(arguments.build, "faxprint.app", "faxprint")
    command = [*before, faxprint, "--ui-map", map_file, "--to", "file", "--output", target, arguments.file]
    with Program(work, {**changes, "CUPS_SERVER": server}, command) as program:
        screen = Screen(map_file, arguments.pictures, program.process, Texts(arguments.build))
        wait_for("the print dialog with its page", lambda: (screen.key_window() or {}).get("controls"))
        screen.picture(name)
        screen.keys("shift+Tab", "Return")  # from the first control to the last, which is Print
        program.wait()
        if says not in program.said() or (not says and NOTHING_KEPT in program.said()):
            raise TourError(f'it said not "{says}" but: {program.said()}')
    with open(target, "rb") as copy, open(arguments.file, "rb") as original:
        if copy.read() != original.read():
            raise TourError("the file is not the document")


def open_book(arguments, work, row):
    name, changes, before, _ = row
    book, gad = os.path.join(work, f"{name}.gad"), os.path.join(arguments.build, "gad", "gad")
    run(gad, "create", book)
    editor = os.path.join(arguments.build, "editor", "AddressBookEditor.app", "AddressBookEditor")
    with Program(work, changes, [*before, editor, book]) as program:
        wait_for("the editor's window", editor_is_shown)
        time.sleep(1)
        run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, f"editor-{name}.png"))
        if program.process.poll() is not None:
            raise TourError(f"the editor ended: {program.said()}")


def editor_is_shown():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--classname", "AddressBookEditor"], capture_output=True,
                           check=False)
    return found.returncode == 0 and found.stdout.strip()


def end_while_nothing_answers(arguments, work):
    """The toolkit has started by then, and would keep the signal for its loop, which has not."""
    with socket.socket() as silent:
        silent.bind(("127.0.0.1", 0))
        silent.listen()
        faxprint = os.path.join(arguments.build, "faxprint.app", "faxprint")
        server = "127.0.0.1:%d" % silent.getsockname()[1]
        with Program(work, {"CUPS_SERVER": server}, [faxprint, arguments.file]) as program:
            silent.settimeout(20)
            with silent.accept()[0]:
                time.sleep(1)
                program.process.terminate()
                code = program.process.wait(timeout=5)
    if code != -signal.SIGTERM:
        raise TourError(f"a print service that says nothing: ended with code {code}: {program.said()}")


def work_through(arguments, work):
    end_while_nothing_answers(arguments, work)
    private_cups = os.path.join(SCRIPTS, "private-cups")
    cups = os.path.join(work, "cups")
    server = run(private_cups, "start", cups, "--build", arguments.build, "--owner", str(os.getpid())).strip()
    try:
        for row in surroundings(work):
            try:
                print_into_file(arguments, work, server, row)
                open_book(arguments, work, row)
            except Exception as error:
                run("import", "-silent", "-window", "root", os.path.join(arguments.pictures, "failed.png"))
                raise TourError(f"{row[0]}: {error}") from None
            print(f"{row[0]}: printed, and a book opened")
    finally:
        run(private_cups, "stop", cups)


if __name__ == "__main__":
    sys.exit(run_tour("surroundings.py", "The programs without a home, fonts or a bus.", work_through))

#!/usr/bin/env python3
"""Installs the build into a folder of its own and looks at what stands there.

    installed_files.py --build BUILD --sources SOURCES --version VERSION [--sanitized]

Every file has the place and the mode of the list below, finds its libraries by its own place, and knows nothing of the
machine that built it; what desktops, software centres and manual readers get passes their own checkers, and is there in
every language that the programs speak.
"""

import argparse
import gzip
import os
import re
import stat
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

HOME = "/usr/lib/directfax"
BUNDLE = f"{HOME}/DirectFax.bundle"
FRAMEWORK = f"{BUNDLE}/Frameworks/QUOLTANIS.framework"
IDS = ["com.norvalt.tk.o.faxprint", "com.norvalt.tk.o.addressbookeditor"]
PPD = "/usr/share/ppd/directfax/norvalt-fax.ppd"
COMMANDS = ["faxprint", "AddressBookEditor", "gad"]
PAGES = [f"/usr/share/man/man1/{command}.1.gz" for command in COMMANDS]
DESKTOPS = [f"/usr/share/applications/{program}.desktop" for program in IDS]
METAINFOS = [f"/usr/share/metainfo/{program}.metainfo.xml" for program in IDS]
MEDIA_TYPE = f"/usr/share/mime/packages/{IDS[1]}.xml"
CHANGELOG = "/usr/share/doc/directfax/changelog.gz"

EDITOR = f"{HOME}/AddressBookEditor.app"
PROGRAMS = {f"{HOME}/faxprint.app/faxprint", f"{HOME}/faxprint.app/faxpages", f"{EDITOR}/AddressBookEditor",
            "/usr/bin/gad", "/usr/lib/cups/filter/norvalt-fax-filter"}
LIBRARIES = {f"{HOME}/libdirectfax-platform.so", f"{BUNDLE}/DirectFax", f"{FRAMEWORK}/Versions/A/QUOLTANIS"}
LINKS = {"/usr/bin/faxprint": f"{HOME}/faxprint.app/faxprint",
         "/usr/bin/AddressBookEditor": f"{EDITOR}/AddressBookEditor",
         f"{FRAMEWORK}/QUOLTANIS": f"{FRAMEWORK}/Versions/A/QUOLTANIS",
         f"{FRAMEWORK}/Versions/Current": f"{FRAMEWORK}/Versions/A"}
TEXTS = {PPD, *PAGES, *DESKTOPS, *METAINFOS, MEDIA_TYPE, CHANGELOG, "/usr/share/doc/directfax/copyright",
         *(f"/usr/share/icons/hicolor/scalable/apps/{program}.svg" for program in IDS),
         *(f"/usr/share/bash-completion/completions/{command}" for command in COMMANDS),
         *(f"/usr/share/zsh/vendor-completions/_{command}" for command in COMMANDS)}
# Their files are counted by the sources: what lies there is what is installed.
RESOURCES = {f"{BUNDLE}/Resources/": "resources", f"{HOME}/faxprint.app/Resources/": "host/resources",
             f"{EDITOR}/Resources/": "editor/resources"}
NO_RESOURCES = {"CMakeLists.txt", "exports.map", "Info.plist.in"}


def run(*command, stdout=subprocess.PIPE, **variables):
    """What the command said, standard error included, and whether it ended well."""
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=stdout, stderr=subprocess.PIPE, encoding="utf-8",
                          env={**os.environ, **variables}, timeout=60, check=False)
    return (done.stdout or "") + done.stderr, done.returncode == 0


class Staged:
    """What was installed, by the names that it will have on the system."""

    def __init__(self, root):
        self.root = root

    def path(self, name):
        return self.root + name

    def names(self):
        """Of everything but folders."""
        for folder, folders, files in os.walk(self.root):
            links = [name for name in folders if os.path.islink(os.path.join(folder, name))]
            yield from (os.path.join(folder, name)[len(self.root):] for name in files + links)

    def bytes(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def text(self, name):
        data = self.bytes(name)
        return (gzip.decompress(data) if name.endswith(".gz") else data).decode("utf-8")


def resources(sources):
    for installed, folder in RESOURCES.items():
        top = os.path.join(sources, folder)
        for place, _, files in os.walk(top):
            yield from (installed + os.path.relpath(os.path.join(place, name), top) for name in files
                        if name not in NO_RESOURCES)
    yield f"{BUNDLE}/Resources/Info-gnustep.plist"
    yield f"{EDITOR}/Resources/Info-gnustep.plist"


def languages(sources):
    """But for English; as gettext names them, which is what desktops do too."""
    return sorted(name.removesuffix(".po") for name in os.listdir(os.path.join(sources, "po")) if name.endswith(".po"))


def places_and_modes(staged, sources):
    found = set(staged.names())
    catalogues = (f"/usr/share/locale/{language}/LC_MESSAGES/directfax.mo" for language in languages(sources))
    wanted = {*PROGRAMS, *LIBRARIES, *LINKS, *TEXTS, *catalogues, *resources(sources)}
    yield from (f"{name} is missing" for name in sorted(wanted - found))
    yield from (f"{name} is not expected" for name in sorted(found - wanted))
    for name in sorted(found & wanted):
        path = staged.path(name)
        if os.path.islink(path):
            if os.path.realpath(path) != os.path.realpath(staged.path(LINKS.get(name, ""))):
                yield f"{name} leads to {os.readlink(path)}"
        elif (mode := stat.S_IMODE(os.stat(path).st_mode)) != (0o755 if name in PROGRAMS else 0o644):
            yield f"{name} has the mode {mode:o}"


def libraries_found(staged):
    """Run paths are relative to the file, and lead to the library that came with it."""
    own = os.path.basename(next(name for name in LIBRARIES if name.endswith(".so")))
    for name in sorted(PROGRAMS | LIBRARIES):
        dynamic, _ = run("readelf", "--dynamic", "--wide", staged.path(name))
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic)
        paths = ":".join(re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", dynamic)).split(":")
        paths = [path for path in paths if path]
        yield from (f"{name} looks for libraries in {path}" for path in paths if not path.startswith("$ORIGIN/.."))
        origin = os.path.dirname(staged.path(name))
        if own in needed and not any(os.path.isfile(os.path.join(path.replace("$ORIGIN", origin), own)) for path in paths):
            yield f"{name} does not find {own}"
        if own not in needed and paths:
            yield f"{name} has a run path, {paths}, for nothing"


def machine_unknown(staged, folders):
    for name in staged.names():
        if not os.path.islink(staged.path(name)):
            data = staged.bytes(name)
            yield from (f"{name} holds the path {folder}" for folder in folders if folder.encode() in data)


def programs_start(staged, version, sources):
    for name in COMMANDS:
        program = staged.path(f"/usr/bin/{name}")
        said, ended_well = run(program, "--version")
        if not ended_well or version not in said.split():
            yield f"{name} --version: {said}"
        texts = {}
        for language in ["en", *languages(sources)]:
            said, _ = run(program, "--help", LC_ALL=f"{language}.UTF-8", LANGUAGE="")
            texts.setdefault(said, []).append(language)
        yield from (f"{name} --help is the same in {', '.join(same)}" for same in texts.values() if len(same) > 1)


def translated(staged, sources):
    """Names of products and programs, which are the same everywhere, are no text."""
    wanted = set(languages(sources))
    for name in DESKTOPS:
        text = staged.text(name)
        for key in ("Name", "GenericName", "Comment", "Keywords"):
            if missing := wanted - set(re.findall(rf"^{key}\[(\w+)\]=.", text, re.MULTILINE)):
                yield f"{name}: no {key} in {', '.join(sorted(missing))}"
    language = "{http://www.w3.org/XML/1998/namespace}lang"
    for name in [*METAINFOS, MEDIA_TYPE]:
        found = {}
        for element in xml.etree.ElementTree.fromstring(staged.bytes(name)).iter():
            tag = element.tag.rpartition("}")[2]
            if tag in ("summary", "p", "li", "comment"):
                found.setdefault((tag, element.get(language)), []).append(element)
        for (tag, of), elements in found.items():
            missing = [other for other in wanted if len(found.get((tag, other), [])) != len(elements)]
            if of is None and missing:
                yield f"{name}: not every {tag} is there in {', '.join(sorted(missing))}"


def bundle_named(staged):
    extension = re.search(r'^\*APDialogExtension: "(.*)"$', staged.text(PPD), re.MULTILINE)
    if not extension or extension[1] != BUNDLE or not os.path.isdir(staged.path(BUNDLE)):
        yield f"{PPD} names the extension {extension and extension[1]}"


def checkers_pass(staged):
    said, _ = run("desktop-file-validate", *map(staged.path, DESKTOPS))
    if said:
        yield said
    said, ended_well = run("appstreamcli", "validate", "--strict", "--no-net", "--no-color",
                           *map(staged.path, METAINFOS))
    if not ended_well:
        yield said
    for page in PAGES:
        said, ended_well = run("man", "--warnings", "--local-file", staged.path(page), stdout=subprocess.DEVNULL)
        if said or not ended_well:
            yield f"{page}: {said}"


def version_told(staged, version):
    for name, words in ((CHANGELOG, f"directfax ({version}) "),
                        *((metainfo, f'<release version="{version}"') for metainfo in METAINFOS)):
        if words not in staged.text(name):
            yield f"{name} does not know version {version}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--sources", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--sanitized", action="store_true")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as root:
        os.environ["DESTDIR"] = root
        said, ended_well = run("cmake", "--install", arguments.build, "--prefix", "/usr", "--strip")
        if not ended_well:
            print(said)
            return 1
        staged = Staged(root)
        wrong = [*places_and_modes(staged, arguments.sources), *libraries_found(staged),
                 *programs_start(staged, arguments.version, arguments.sources), *bundle_named(staged),
                 *checkers_pass(staged), *translated(staged, arguments.sources), *version_told(staged, arguments.version)]
        if not arguments.sanitized:
            wrong += machine_unknown(staged, [arguments.sources, arguments.build, root])
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

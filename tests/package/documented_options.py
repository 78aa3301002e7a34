#!/usr/bin/env python3
"""The manual pages and the shell completion name exactly the options and commands that --help lists.

    documented_options.py --sources SOURCES FAXPRINT EDITOR GAD
"""

import argparse
import os
import re
import subprocess
import sys

OPTION = re.compile(r"(?<![\w-])(?:-DFAX\w+|--?[a-z][a-z-]*)")


def output(*command, **how):
    how.setdefault("env", {**os.environ, "LC_ALL": "C.UTF-8"})
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, encoding="utf-8", timeout=30,
                          check=True, **how)
    return done.stdout


def listed_options(help_text):
    """The option words that a line of the list begins with: "  -d, --printer NAME  ..." gives -d and --printer."""
    return {option for heads in re.findall(r"^ {2,6}(-\w\b)?(?:, ?)?(--[a-z-]+)?", help_text, re.MULTILINE)
            for option in heads if option}


def listed_in_editor(help_text):
    """There a line of options has nothing else, and what they mean stands below."""
    return set(OPTION.findall("\n".join(re.findall(r'^  (["-].*)$', help_text, re.MULTILINE))))


def listed_commands(help_text):
    return set(re.findall(r"^  (\w+)", help_text.split("Commands:")[1], re.MULTILINE))


def page_sections(page):
    """The rendered manual page as {heading: text}; of headings that contain others, the text is without these."""
    text = output("man", "--local-file", page, env={**os.environ, "MANWIDTH": "1000", "MAN_KEEP_FORMATTING": ""})
    parts = re.split(r"^(?: {3})?(\S.*)$", text, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def completed(script, *words):
    """What bash offers for the last word."""
    program = os.path.basename(script)
    return set(output("bash", "-c", '. "$1"; COMP_WORDS=("${@:2}"); COMP_CWORD=$(($# - 2)); "_$2"; '
                      'printf "%s\\n" "${COMPREPLY[@]}"', "bash", script, program, *words).split())


def completed_in_zsh(script, *words):
    """What zsh is given to choose from for the last word."""
    folder, program = os.path.split(script)
    return output("zsh", "-fc", 'compadd() { print -rl -- "$@" }; _arguments() { compadd "$@" }; '
                  'words=("${@:2}"); CURRENT=$#words; PREFIX=$words[-1]; . "$1"', "zsh",
                  os.path.join(folder, "_" + program), program, *words)


def differences(what, got, wanted):
    return [f"{what} lacks {word}" for word in sorted(wanted - got)] + \
           [f"{what} has {word}, which --help does not list" for word in sorted(got - wanted)]


def long_ones(options):
    return {option for option in options if option.startswith("--")}


def compare_program(name, listed, page, completion):
    sections = page_sections(page)
    named = {option for text in sections.values() for option in OPTION.findall(text)}
    # The examples and the text show options too, so those that are described are looked at apart.
    described = set(OPTION.findall("\n".join(re.findall(r'^ {7}(["-].*)$', sections["OPTIONS"], re.MULTILINE))))
    yield from differences(f"{name}.1", described, listed)
    yield from differences(f"{name}.1", named - described | listed, listed)
    yield from differences(f"completion of {name}", completed(completion, "--"), long_ones(listed))


def compare_faxprint(program, page, completion):
    # Its completion in zsh reads --help itself.
    yield from compare_program("faxprint", listed_options(output(program, "--help")), page, completion)


def compare_editor(program, page, completion):
    listed = listed_in_editor(output(program, "--help"))
    yield from compare_program("AddressBookEditor", listed, page, completion)
    offered = set(OPTION.findall(completed_in_zsh(completion, "")))
    yield from differences("zsh's completion of AddressBookEditor", long_ones(offered), long_ones(listed))


def compare_gad(program, page, completion):
    text = output(program, "--help")
    commands, sections = listed_commands(text), page_sections(page)
    described = {heading.split()[0]: OPTION.findall(body) for heading, body in sections.items()}
    of_all = listed_options(text)
    yield from differences("gad.1", set(described["OPTIONS"]), of_all)
    yield from differences("completion of gad", completed(completion, ""), commands)
    yield from differences("completion of gad", completed(completion, "--"), long_ones(of_all))
    in_zsh = set(completed_in_zsh(completion, "").split())
    yield from differences("zsh's completion of gad", in_zsh, {"--", *commands, *long_ones(of_all)})
    for command in commands:
        listed = listed_options(output(program, command, "--help"))
        yield from differences(f"gad.1, {command}", set(described[command]), listed - of_all)
        yield from differences(f"completion of gad {command}", completed(completion, command, "--"), long_ones(listed))
        in_zsh = set(OPTION.findall(completed_in_zsh(completion, command, "--")))
        yield from differences(f"zsh's completion of gad {command}", in_zsh, long_ones(listed))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sources", required=True)
    parser.add_argument("faxprint")
    parser.add_argument("editor")
    parser.add_argument("gad")
    arguments = parser.parse_args()

    def texts(room, name):
        """Of a program: its manual page, and its completion in bash."""
        return (os.path.join(arguments.sources, room, f"{name}.1"),
                os.path.join(arguments.sources, "packaging", "completions", name))

    # The completion of gad in zsh asks gad.
    os.environ["PATH"] = os.path.dirname(arguments.gad) + os.pathsep + os.environ["PATH"]
    wrong = [*compare_faxprint(arguments.faxprint, *texts("host", "faxprint")),
             *compare_editor(arguments.editor, *texts("editor", "AddressBookEditor")),
             *compare_gad(arguments.gad, *texts("gad", "gad"))]
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

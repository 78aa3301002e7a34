"""GCC's command for a source, as clang takes it."""
import functools
import glob
import json
import os
import shlex
import subprocess

# GCC's alone, or what clang has another word for.
DROPPED = ("-c", "-Wno-import", "-Winvalid-pch")
WITH_A_WORD = ("-o", "-x", "-include")  # the last one names headers that GCC has read already


@functools.cache
def system_headers():
    """Clang's own headers (stddef.h) first, GCC's last: those hold objc/objc.h."""
    gcc = subprocess.run(["gcc", "-print-file-name=include"], capture_output=True, text=True, check=True).stdout.strip()
    own = sorted(glob.glob("/usr/lib/llvm-*/lib/clang/*/include"))
    return [*(f"-isystem{folder}" for folder in own[:1]), "-idirafter", gcc]


def clang_arguments(command, source):
    kept = []
    given = iter(shlex.split(command)[1:])
    for argument in given:
        if argument in WITH_A_WORD:
            next(given)
        elif argument not in (*DROPPED, source) and not argument.startswith("-fno-sanitize"):
            kept.append(argument)
    language = {".mm": "objective-c++", ".m": "objective-c", ".c": "c"}.get(os.path.splitext(source)[1], "c++")
    return ["-x", language, "-fobjc-runtime=gcc", *system_headers(), *kept]


def commands(build):
    """(source, command) of every source that the build compiles, each once."""
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as entries:
        return sorted({entry["file"]: entry["command"] for entry in json.load(entries)}.items())

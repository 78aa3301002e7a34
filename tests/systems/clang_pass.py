#!/usr/bin/env python3
"""Reads every Objective-C source of the build with clang, as a second compiler whose warnings are errors too.

    clang_pass.py BUILD

Syntax and warnings only: clang cannot run C++ exceptions through GCC's Objective-C runtime.
"""
import concurrent.futures
import os
import subprocess
import sys

from clang_command import clang_arguments, commands

# The repairs of the toolkit are categories that take a method's place on purpose.
ACCEPTED = ("-Wno-objc-protocol-method-implementation",)


def look_at(source, command):
    compiler = "clang++" if source.endswith(".mm") else "clang"
    run = subprocess.run(
        [compiler, "-fsyntax-only", *clang_arguments(command, source), *ACCEPTED, source], capture_output=True, text=True)
    return "" if run.returncode == 0 and not run.stderr else run.stderr or f"{source}: {compiler} failed\n"


def main(build):
    sources = [(source, command) for source, command in commands(build) if source.endswith((".m", ".mm"))]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        faults = [fault for fault in workers.map(lambda pair: look_at(*pair), sources) if fault]
    print("".join(faults), end="")
    print(f"clang: {len(sources)} Objective-C sources, {len(faults)} with warnings or errors")
    return 1 if faults or not sources else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))

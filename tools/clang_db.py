#!/usr/bin/env python3
"""Writes a compile database that clang's tools understand, from one that was made for g++ with a precompiled header.

    tools/clang_db.py BUILD-FOLDER OUTPUT-FOLDER

Drops the compiler launcher, g++'s own flags and the precompiled header: each file must include what it uses.
"""

import json
import os
import shlex
import sys

GCC_ONLY = {"-fpch-preprocess", "-Winvalid-pch"}


def for_clang(arguments):
    kept = []
    arguments = iter(arguments)
    for argument in arguments:
        if argument in GCC_ONLY:
            continue
        if argument == "-include":
            header = next(arguments)
            if "cmake_pch" not in header:
                kept += [argument, header]
            continue
        kept.append(argument)
    return kept


def main():
    build, output = sys.argv[1:]
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    result = []
    seen = set()
    for entry in entries:
        # A file that is built twice, with other node sizes, is read once; generated files not at all.
        if entry["file"] in seen or entry["file"].startswith(os.path.abspath(build) + os.sep):
            continue
        seen.add(entry["file"])
        arguments = for_clang(shlex.split(entry["command"]))
        result.append({"directory": entry["directory"], "file": entry["file"], "arguments": arguments})
    os.makedirs(output, exist_ok=True)
    with open(os.path.join(output, "compile_commands.json"), "w", encoding="utf-8") as file:
        json.dump(result, file, indent=1)


if __name__ == "__main__":
    main()

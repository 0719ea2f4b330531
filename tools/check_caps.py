#!/usr/bin/env python3
"""Names the files and folders that outgrow the caps of the house: a .cpp of 600 lines, a header of 150 lines of code, a
folder of 15 pairs of files. Only advice: tables may be long. (Long functions are found by clang-tidy.)

    tools/check_caps.py FILE...
"""

import collections
import os
import re
import sys

SOURCE_LINES = 600
HEADER_LINES = 150
PAIRS = 15


def code_lines(text):
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    return sum(1 for line in text.splitlines() if line.strip() and not line.strip().startswith("//"))


def main():
    folders = collections.defaultdict(set)
    for path in sys.argv[1:]:
        with open(path, encoding="utf-8", errors="replace") as file:
            text = file.read()
        if path.endswith(".cpp") and text.count("\n") > SOURCE_LINES:
            print(f"{path}: {text.count(chr(10))} lines, the cap is {SOURCE_LINES}")
        if path.endswith(".h") and code_lines(text) > HEADER_LINES:
            print(f"{path}: {code_lines(text)} lines without comments, the cap is {HEADER_LINES}")
        folders[os.path.dirname(path)].update(os.path.splitext(name)[0] for name in os.listdir(os.path.dirname(path) or ".")
                                              if name.endswith((".cpp", ".h")))
    for folder, names in sorted(folders.items()):
        if len(names) > PAIRS and not folder.startswith("tests"):
            print(f"{folder}/: {len(names)} pairs of files, the cap is {PAIRS}")


if __name__ == "__main__":
    main()

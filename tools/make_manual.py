#!/usr/bin/env python3
"""Builds the user manual into a help file: make_manual.py FOLDER OUTPUT.chm [CHMCMD]

FOLDER holds the pages and two tables, topics.tsv (number, file, title) and contents.tsv (depth, title, file). The same
pages give the same bytes. The compiler is chmcmd, of Debian's package fp-utils.
"""

import csv
import html
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

TITLE = "Quillmark manual"
LEFT_OUT = {".tsv"}
TIME = bytes(4)
PLACE = "/proc/self/cwd/"  # the compiler keeps full paths for the topics; this one is the same everywhere


def fail(text):
    sys.exit(f"make_manual: {text}")


def table(path):
    with open(path, encoding="utf-8", newline="") as file:
        rows = list(csv.reader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    rows = [row for row in rows if row]
    return rows[1:] if rows and not rows[0][0].isdigit() else rows


def entry(title, target):
    return (f'<LI><OBJECT type="text/sitemap"><param name="Name" value="{html.escape(title)}">'
            f'<param name="Local" value="{html.escape(target)}"></OBJECT>\n')


def contents(rows):
    lines, depth = ["<HTML><BODY>\n<UL>\n"], 0
    for row in rows:
        at = int(row[0])
        lines.append("<UL>\n" * (at - depth) + "</UL>\n" * (depth - at) + entry(row[1], row[2]))
        depth = at
    return "".join(lines) + "</UL>\n" * (depth + 1) + "</BODY></HTML>\n"


def index(rows):
    words = sorted({(row[1], row[2]) for row in rows}, key=lambda word: (word[0].casefold(), word))
    return "<HTML><BODY>\n<UL>\n" + "".join(entry(*word) for word in words) + "</UL>\n</BODY></HTML>\n"


def project(files, topics, chapters):
    return "\n".join([
        "[OPTIONS]", "Compiled file=UM.chm", "Contents file=UM.hhc", "Index file=UM.hhk",
        f"Default topic={chapters[0][2]}", f"Title={TITLE}", "Language=0x409", "Full-text search=No", "Binary TOC=No",
        "Binary Index=No", "", "[FILES]", *files, "",
        "[ALIAS]", *(f"T{row[0]}={row[1]}" for row in topics), "",
        "[MAP]", *(f"#define T{row[0]} {row[0]}" for row in topics), ""])


def part_topics(rows, work, files):
    """The compiler knows one number for each page and none for places in it; the others get a page that leads there."""
    seen, parted = set(), []
    for number, target, title, *_ in rows:
        page = target
        if target in seen or "#" in target:
            page = f"topic{number}.html"
            link = html.escape(target)
            (work / page).write_text(
                f'<html><head><title>{html.escape(title)}</title><meta http-equiv="refresh" content="0; url={link}">'
                f'</head><body><p><a href="{link}">{html.escape(title)}</a></p></body></html>\n', encoding="utf-8")
            files.append(page)
        seen.add(page)
        parted.append((number, page))
    return parted


def without_time(chm):
    """The header holds it as its fifth number, and the system's table as its first entry, behind the version."""
    content = struct.unpack_from("<Q", chm, 0x58)[0]
    entry = chm.find(struct.pack("<IHH", 3, 10, 4), content) + 8
    if entry < 8:
        fail("the compiler wrote a file of another kind")
    return chm[:16] + TIME + chm[20:entry] + TIME + chm[entry + 4:]


def build(source, compiler):
    topics, chapters = table(source / "topics.tsv"), table(source / "contents.tsv")
    files = sorted(str(path.relative_to(source)) for path in source.rglob("*")
                   if path.is_file() and path.suffix not in LEFT_OUT)
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        for name in files:
            (work / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source / name, work / name)
        topics = part_topics(topics, work, files)
        (work / "UM.hhc").write_text(contents(chapters), encoding="utf-8")
        (work / "UM.hhk").write_text(index(chapters), encoding="utf-8")
        (work / "UM.hhp").write_text(project(files, topics, chapters), encoding="utf-8")
        done = subprocess.run([compiler, "--no-html-scan", PLACE + "UM.hhp"], cwd=work, capture_output=True, text=True,
                              errors="replace")
        result = work / "UM.chm"
        if done.returncode or not result.exists():
            fail(f"{compiler} failed:\n{done.stdout}{done.stderr}")
        return without_time(result.read_bytes())


def main():
    if len(sys.argv) not in (3, 4):
        fail("give the manual's folder and the file to write")
    compiler = shutil.which(sys.argv[3] if len(sys.argv) == 4 else "chmcmd")
    if not compiler:
        fail("chmcmd is missing; it is in Debian's package fp-utils (tools/setup.sh build installs it)")
    pathlib.Path(sys.argv[2]).write_bytes(build(pathlib.Path(sys.argv[1]), compiler))


if __name__ == "__main__":
    main()

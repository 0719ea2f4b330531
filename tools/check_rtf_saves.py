#!/usr/bin/env python3
"""What edited RTF files keep, and what other programs read of them.

    QUILLMARK_RTF_CORPUS=CORPUS QUILLMARK_RTF_CORPUS_OUT=OUT build/release/test_rtf --gtest_filter='RtfCorpus.*AllWords'
    tools/check_rtf_saves.py CORPUS OUT

The first leaves files edited/, rewritten/ (all of their text) and anew/ (without the file that was read) in OUT. This
prints, by feature, in how many files a control word is still there, and for LibreOffice and AbiWord, where they are
installed, of how many files they read the same words as of the original, but for the edit. Ends with 1 when a mark is
missed, of files that are edited or rewritten: 95 % and 98 %.
"""

import collections
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FEATURES = {
    "tables": r"\\trowd", "nested tables": r"\\nestcell", "pict png": r"\\pngblip", "pict jpeg": r"\\jpegblip",
    "pict wmf": r"\\wmetafile", "pict emf": r"\\emfblip", "objects": r"\\object\b", "objdata": r"\\objdata",
    "fields": r"\\field\b", "footnotes": r"\\footnote", "headers/footers": r"\\(header|footer)[lrf]?\b",
    "stylesheet": r"\\stylesheet", "listtable": r"\\listtable", "old pn": r"\\\*\\pn\b", "pnseclvl": r"\\pnseclvl",
    "bookmarks": r"\\bkmkstart", "revisions": r"\\(revised|deleted)\b", "annotations": r"\\annotation",
    "info title": r"\{\\title", "info author": r"\{\\author", "protect": r"\\protect\b", "hidden": r"\\v\b",
    "tx": r"\\tx\d", "fi": r"\\fi-?\d", "ri": r"\\ri-?\d", "colortbl": r"\\colortbl", "highlight": r"\\highlight",
    "cb/chcbpat": r"\\(cb|chcbpat)\d", "super": r"\\super\b", "sub": r"\\sub\b", "up": r"\\up\d", "dn": r"\\dn\d",
    "strike": r"\\strike\b", "generator": r"\\generator", "shapes": r"\\shp\b", "rsidtbl": r"\\rsidtbl",
    "themedata": r"\\themedata", "latentstyles": r"\\latentstyles", "datastore": r"\\datastore",
    "userprops": r"\\userprops", "mmathPr": r"\\mmathPr", "xmlnstbl": r"\\xmlnstbl", "htmltag": r"\\htmltag",
    "NeXTGraphic": r"\\NeXTGraphic", "panose": r"\\panose", "falt": r"\\falt", "lang": r"\\lang\d",
    "keep/keepn": r"\\keepn?\b", "sb/sa": r"\\s[ba]\d", "sl": r"\\sl-?\d", "page margins": r"\\marg[lrtb]\d",
    "paper": r"\\paper[wh]\d", "viewkind": r"\\viewkind", "deflang": r"\\deflang", "cocoartf": r"\\cocoartf",
    "expnd": r"\\expnd", "kerning": r"\\kerning", "caps": r"\\s?caps\b", "borders": r"\\brdr", "shading": r"\\shading",
    "formfield": r"\\formfield", "docvar": r"\\docvar",
}
KINDS = ("edited", "rewritten", "anew")
KEPT = KINDS[:2]
NEW_WORDS = ["quillmarkone", "quillmarktwo", "quillmarkthree", "quillmarkfour"]
SECONDS_TO_START = 60
SECONDS_FOR_A_FILE = 10


def words(text):
    return collections.Counter(re.findall(r"\w+", text))


def table(corpus, out):
    rows = {}
    for name, pattern in FEATURES.items():
        word = re.compile(pattern.encode())
        had = [file for file in sorted((out / "edited").iterdir()) if word.search((corpus / "in" / file.name).read_bytes())]
        if had:
            rows[name] = [len(had), *(sum(bool(word.search((out / kind / file.name).read_bytes())) for file in had)
                                      for kind in KINDS)]
    print("\t".join(["feature", *KINDS]))
    for name, (had, *still) in rows.items():
        print("\t".join([name, *(f"{files}/{had}" for files in still)]))
    return all(files >= 0.95 * had for had, *still in rows.values() for files in still[:len(KEPT)])


def office(files, folder):
    subprocess.run(["soffice", "--headless", f"-env:UserInstallation=file://{folder}/profile", "--convert-to",
                    "txt:Text (encoded):UTF8", "--outdir", folder, *files],
                   timeout=SECONDS_TO_START + len(files) * SECONDS_FOR_A_FILE, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=False)


def abiword(files, folder):
    for file in files:
        subprocess.run(["abiword", "--to=txt", f"--to-name={folder}/{file.stem}.txt", file],
                       timeout=SECONDS_TO_START + SECONDS_FOR_A_FILE, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=False)


def texts(convert, files):
    """The words of each file that the program reads, all in one go, then those alone that this left out."""
    found = {}
    with tempfile.TemporaryDirectory() as folder:
        for batch in [files] + [[file] for file in files]:
            if len(batch) == 1 and batch[0].name in found:
                continue
            try:
                convert(batch, folder)
            except subprocess.TimeoutExpired:
                pass
            for file in batch:
                text = pathlib.Path(folder) / (file.stem + ".txt")
                if text.exists():
                    found[file.name] = words(text.read_text(encoding="utf-8", errors="replace"))
    return found


def compare(program, convert, corpus, out):
    if not shutil.which(program):
        print(f"{program}: not installed, skipped")
        return True
    gone = dict(line.split("\t") for line in (out / "edits.tsv").read_text().splitlines())
    same = collections.Counter()
    originals = texts(convert, [corpus / "in" / name for name in sorted(gone)])
    if unread := sorted(gone.keys() - originals.keys()):
        print(f"{program}: reads no text of the originals {unread}")
    for kind in KINDS:
        results = texts(convert, [out / kind / name for name in originals])
        for name, wanted in originals.items():
            if kind == "edited":
                wanted = wanted + collections.Counter(NEW_WORDS) - collections.Counter([gone[name]] if gone[name] else [])
            found = results.get(name, collections.Counter())
            same[kind] += found == wanted
            if found != wanted:
                print(f"{program}: {kind}/{name}: lost {list((wanted - found).items())[:5]},"
                      f" new {list((found - wanted).items())[:5]}")
    for kind in KINDS:
        print(f"{program}: the same words of {same[kind]} of {len(originals)} files, {kind}")
    return all(same[kind] >= 0.98 * len(originals) for kind in KEPT)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    corpus, out = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    marks = [table(corpus, out), compare("soffice", office, corpus, out),
             compare("abiword", abiword, corpus, out)]
    sys.exit(0 if all(marks) else 1)


if __name__ == "__main__":
    main()

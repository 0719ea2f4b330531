#!/usr/bin/env python3
"""Fails when a file includes, or names a Qt class of, what its folder may not know.

The levels are those of docs/DESIGN.md: a folder knows the folders below it, the libraries of its row, and nothing else.
Includes of the project are written from its root. Prints "file:line: rule" for each forbidden arrow.

    tools/check_layers.py [--qt-headers FOLDER] [ROOT]
"""

import argparse
import bisect
import glob
import os
import re
import sys

STANDARD = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
    functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore
    set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view strstream
    syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray
    variant vector version
    assert.h ctype.h errno.h fenv.h float.h inttypes.h limits.h locale.h math.h setjmp.h signal.h stdarg.h stddef.h
    stdint.h stdio.h stdlib.h string.h time.h uchar.h wchar.h wctype.h
""".split())

# The system's interface: POSIX, its access control lists, Linux's extensions, and the processor's vector instructions.
POSIX = set("""
    dirent.h dlfcn.h fcntl.h fnmatch.h ftw.h glob.h grp.h langinfo.h libgen.h poll.h pthread.h pwd.h sched.h semaphore.h
    spawn.h strings.h sysexits.h syslog.h termios.h unistd.h utime.h mntent.h immintrin.h emmintrin.h xmmintrin.h
    arm_neon.h iconv.h acl/libacl.h
""".split())
POSIX_FOLDERS = ("sys/", "linux/")

LIBRARIES = {
    "icu": ("unicode/",),
    "xml": ("libxml/",),
    "gio": ("gio/", "glib.h", "glib-object.h", "glib/", "gobject/"),
    "xkb": ("xkbcommon/", "X11/", "xcb/"),
    "chm": ("chm_lib.h",),
    "json": ("nlohmann/",),
}

ENGINE = ["text", "text/plain", "text/search", "text/rtfsyntax", "text/rtf", "text/rtfwrite", "text/rtfsave", "text/html", "files"]
PAGES = ["text/pictures", "text/outline", "text/layout", "text/print"]
WINDOW = ENGINE + PAGES + ["ui/editing", "ui"]
FEATURES = ["documents", "autocomplete", "project", "foldertree", "search", "panes"]
ANY_QT = ["QtCore", "QtGui", "QtWidgets", "QtPrintSupport", "QtDBus", "QtSvg", "QtNetwork"]


def room(folders, libraries, sentence):
    return {"folders": folders, "libraries": ["std", "posix"] + libraries, "sentence": sentence}


# Folder: what it may include besides itself. The longest matching folder decides.
ROOMS = {
    "text": room([], ["icu"], "the engine knows the standard library, POSIX and ICU"),
    "text/plain": room(["text"], ["icu"], "plain text is built on the engine and knows the standard library, POSIX and ICU"),
    "text/search": room(["text"], ["icu"], "searching is built on the engine and knows the standard library, POSIX and ICU"),
    "text/rtfsyntax": room(["text", "text/plain"], ["icu"], "the syntax of RTF knows the engine, no reader and no writer"),
    "text/rtf": room(["text", "text/plain", "text/rtfsyntax"], ["icu"], "the RTF reader knows the engine, the syntax and no writer"),
    "text/rtfwrite": room(["text", "text/plain", "text/rtfsyntax", "text/rtf"], ["icu"],
                          "the RTF writer knows the engine, the syntax and the reader"),
    "text/rtfsave": room(["text", "text/plain", "text/rtfsyntax", "text/rtf", "text/rtfwrite"], ["icu"],
                         "saving RTF knows the engine, the syntax, the reader and the writer"),
    "text/html": room(["text", "text/plain"], ["icu", "xml"], "HTML is built on the engine and knows the standard library, POSIX, ICU and libxml2"),
    "files": room([], [], "files/ knows the standard library and POSIX"),
    "text/pictures": room(["text"], ["QtCore", "QtGui"], "pictures know the engine, QtCore and QtGui"),
    "text/outline": room(["text"], ["QtCore"], "the outline knows the engine and of Qt only QtCore"),
    "text/layout": room(["text", "text/pictures", "text/outline"], ["QtCore", "QtGui"],
                        "the layout knows the engine, the outline, pictures, QtCore and QtGui, but no widget and no file format"),
    "text/print": room(["text", "text/plain", "text/rtfsyntax", "text/rtf"] + PAGES, ["QtCore", "QtGui"],
                       "printing knows the layout, the RTF reader, QtCore and QtGui, but no widget"),
    "ui": room(WINDOW, ANY_QT, "the window layer knows the engine, files/, the layout and Qt"),
    "ui/editing": room(ENGINE + PAGES, ["QtCore", "QtGui"],
                       "the editor's controller knows the engine, files/, the layout, QtCore and QtGui, but no widget"),
    "ui/desktop": room(WINDOW, ANY_QT + ["gio", "xkb", "chm"], "ui/desktop/ knows what ui/ does, GIO, XKB and libchm"),
    "services": room(WINDOW, ["QtCore"], "services/ knows the window layer and below, and of Qt only QtCore"),
    "commands": room(WINDOW + ["services"] + FEATURES, ["QtCore"],
                     "commands/ knows the features and below, and of Qt only QtCore"),
    "shell": room(WINDOW + ["services", "commands"] + FEATURES, ["QtCore", "json"],
                  "shell/ knows every folder, and of Qt only QtCore"),
}
for feature in FEATURES:
    ROOMS[feature] = room(WINDOW + ["services"], ["QtCore"],
                          "a feature knows services/ and below, no other feature, and of Qt only QtCore")

# The one place outside ui/ that needs a class of QtWidgets.
EXCEPTIONS = {("shell/main.cpp", "QApplication")}

# Folders with C++ that are not part of the program: they may include anything, and no room may include them.
OUTSIDE = ["tests", "bench", "fuzz", "tools", "cmake"]
SKIPPED = {"build", ".git", ".cache", "data", "docs"}

TOKEN = re.compile(r"""
    (?P<comment>//(?:[^\n\\]|\\.|\\\n)*|/\*.*?\*/)
  | (?P<raw>R"(?P<mark>[^()\\\s]{0,16})\(.*?\)(?P=mark)")
  | (?P<string>"(?:[^"\\\n]|\\.)*"|(?:(?<=u8)|(?<![0-9a-fA-F]))'(?:[^'\\\n]|\\.)+')
""", re.VERBOSE | re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#[ \t]*include(?:_next)?\b[ \t]*(.*)$", re.MULTILINE)
QT_NAME = re.compile(r"\bQ[A-Z]\w*")


def blank(text):
    return re.sub(r"[^\n]", " ", text)


def without_comments(source):
    """The source without comments and raw strings; what an include names in quotes is left."""
    return TOKEN.sub(lambda m: m.group() if m.group("string") else blank(m.group()), source)


def code_only(source):
    """The source without comments, literals and include lines; every line keeps its number."""
    without_includes = DIRECTIVE.sub(lambda m: blank(m.group()), without_comments(source))
    return TOKEN.sub(lambda m: blank(m.group()), without_includes)


def qt_modules(folder):
    """Header or class name -> module, from the folder that holds QtCore, QtGui and the others."""
    modules = {}
    for path in sorted(glob.glob(os.path.join(folder, "Qt*"))):
        module = os.path.basename(path)
        for name in os.listdir(path) if os.path.isdir(path) else []:
            modules.setdefault(name, module)
    return modules


def longest_folder(path, folders):
    matching = [folder for folder in folders if path.startswith(folder + "/")]
    return max(matching, key=len, default=None)


class Checker:
    def __init__(self, root, modules):
        self.root = root
        self.modules = modules
        self.problems = []

    def report(self, path, line, text):
        self.problems.append(f"{path}:{line}: {text}")

    def library_of(self, header):
        if header in STANDARD:
            return "std"
        if header in POSIX or header.startswith(POSIX_FOLDERS):
            return "posix"
        for library, prefixes in LIBRARIES.items():
            if header.startswith(prefixes):
                return library
        first, _, rest = header.partition("/")
        if first.startswith("Qt") and rest and self.modules.get(rest) == first:
            return first
        return self.modules.get(header)

    def check_system_include(self, path, line, name, header):
        rules = ROOMS[name]
        library = self.library_of(header)
        if library is None:
            self.report(path, line, f"<{header}> is in no library that the project uses (tools/check_layers.py has the list)")
        elif library not in rules["libraries"] and (path, header) not in EXCEPTIONS:
            self.report(path, line, f"{name}/ may not include <{header}> ({library}): {rules['sentence']}")

    def check_project_include(self, path, line, name, header):
        if header.endswith(".moc") or re.fullmatch(r"moc_\w+\.cpp", header):
            return
        if not os.path.isfile(os.path.join(self.root, header)) or ".." in header.split("/"):
            self.report(path, line, f'"{header}" is not a path from the project\'s root')
            return
        target = longest_folder(header, list(ROOMS) + OUTSIDE)
        visible = "ui" if target == "ui/desktop" else target
        if target != name and visible not in ROOMS[name]["folders"]:
            self.report(path, line, f'{name}/ may not include "{header}": {ROOMS[name]["sentence"]}')

    def check_names(self, path, name, source):
        libraries = ROOMS[name]["libraries"]
        code = code_only(source)
        starts = [m.end() for m in re.finditer(r"\n", code)]
        for match in QT_NAME.finditer(code):
            module = self.modules.get(match.group())
            if module and module not in libraries and (path, match.group()) not in EXCEPTIONS:
                line = bisect.bisect_right(starts, match.start()) + 1
                self.report(path, line, f"{name}/ may not name {match.group()} ({module}): {ROOMS[name]['sentence']}")

    def check_file(self, path):
        with open(os.path.join(self.root, path), encoding="utf-8", errors="replace") as file:
            source = file.read()
        name = longest_folder(path, ROOMS)
        if name is None:
            self.report(path, 1, "this folder stands at no level (tools/check_layers.py has the table)")
            return
        text = without_comments(source)
        for match in DIRECTIVE.finditer(text):
            line = text.count("\n", 0, match.start()) + 1
            named = re.match(r'<([^>]+)>|"([^"]+)"', match.group(1))
            if not named:
                self.report(path, line, f"an include must name its file: {match.group(1).strip()}")
            elif named.group(1):
                self.check_system_include(path, line, name, named.group(1))
            else:
                self.check_project_include(path, line, name, named.group(2))
        self.check_names(path, name, source)

    def run(self):
        count = 0
        for folder, folders, files in os.walk(self.root):
            relative = os.path.relpath(folder, self.root)
            top = relative == "."
            folders[:] = sorted(f for f in folders if not (top and (f in SKIPPED or f in OUTSIDE)) and not f.startswith("."))
            for file in sorted(files):
                if file.endswith((".cpp", ".h", ".inc", ".hpp", ".cc")):
                    count += 1
                    self.check_file(file if top else os.path.join(relative, file))
        return count


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", nargs="?", default=os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    parser.add_argument("--qt-headers", help="the folder of QtCore, QtGui, ...; found in /usr/include when not given")
    arguments = parser.parse_args()
    qt = arguments.qt_headers or next(iter(sorted(glob.glob("/usr/include/*/qt6"))), "")
    modules = qt_modules(qt)
    if modules.get("QWidget") != "QtWidgets" or modules.get("QString") != "QtCore":
        sys.exit(f"check_layers: no Qt headers in '{qt}' (give --qt-headers)")
    checker = Checker(os.path.abspath(arguments.root), modules)
    count = checker.run()
    if count == 0:
        sys.exit(f"check_layers: no source files in {arguments.root}")
    for problem in checker.problems:
        print(problem)
    print(f"check_layers: {count} files, {len(checker.problems)} forbidden")
    return 1 if checker.problems else 0


if __name__ == "__main__":
    sys.exit(main())

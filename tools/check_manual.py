#!/usr/bin/env python3
"""Checks the user manual in data/manual.

    tools/check_manual.py           what must always hold; a test runs it
    tools/check_manual.py --ahead   names what the manual says of the program and the sources do not know, and messages
                                    of the sources that the manual does not explain

What must hold: the two tables fit each other, the files and what the program asks for; tags are closed; links, their
places in pages and pictures exist; no page is empty or nowhere to be found; every command of the menus stands on the page
of commands, under its menu and with its keys; commands named elsewhere stand there too; the settings are those of the
program, each explained.
"""

import html.parser
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
MANUAL = ROOT / "data/manual"
VOID = {"br", "img", "link", "meta", "hr"}
ROOT_VALUE = "Quillmark Toolbar1"
FEWEST_WORDS = 40
LARGEST_PICTURE = 60 * 1024
WIDEST_PICTURE = 600  # what the page of the help window shows

problems = []


def problem(where, what):
    problems.append(f"{where}: {what}")


def rows(name, columns):
    for number, line in enumerate((MANUAL / name).read_text(encoding="utf-8").splitlines(), 1):
        fields = line.split("\t")
        if len(fields) != columns:
            problem(f"{name}:{number}", f"{len(fields)} columns instead of {columns}")
        else:
            yield f"{name}:{number}", fields


class Page(html.parser.HTMLParser):
    """What a page holds: text, links, pictures, places to go to, menu paths, settings, messages, table rows."""

    def __init__(self, path):
        super().__init__()
        self.path, self.open, self.text = path, [], []
        self.links, self.pictures, self.places = [], [], set()
        self.marked = {"menu": [], "key": [], "msg": []}
        self.title, self.headings, self.table_rows = "", [], []
        self.feed(path.read_text(encoding="utf-8"))
        self.close()
        if self.open:
            problem(path.name, f"never closed: {self.open}")

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            if values["id"] in self.places:
                problem(self.path.name, f"two places are called {values['id']}")
            self.places.add(values["id"])
        if tag == "a" and "href" in values:
            self.links.append(values["href"])
        if tag == "link":
            self.links.append(values["href"])
        if tag == "img":
            self.pictures.append(values.get("src", ""))
            if not values.get("alt"):
                problem(self.path.name, f"nothing is said of the picture {values.get('src')}")
        if tag not in VOID:
            self.open.append((tag, values.get("class"), len(self.text)))
        if tag == "tr":
            self.table_rows.append((self.headings[-1] if self.headings else "", []))

    def handle_endtag(self, tag):
        if tag in VOID or not self.open or self.open[-1][0] != tag:
            problem(f"{self.path.name}:{self.getpos()[0]}", f"</{tag}> closes {self.open[-1:]}")
            return
        _, kind, begin = self.open.pop()
        text = " ".join("".join(self.text[begin:]).split())
        if kind in self.marked:
            self.marked[kind].append(text)
        if tag == "title":
            self.title = text
        if tag in ("h2", "h3"):
            self.headings.append(text)
        if tag == "td":
            self.table_rows[-1][1].append(text)

    def handle_data(self, data):
        self.text.append(data)

    def words(self):
        return " ".join("".join(self.text).split())


def check_tables(pages):
    """Gives back the files that the tables name."""
    listed, depth = {}, 0
    for where, (level, title, name) in rows("contents.tsv", 3):
        if not level.isdigit() or int(level) > depth:
            problem(where, f"a depth of {level}")
        depth = int(level or 0) + 1
        if name in listed:
            problem(where, f"{name} stands twice")
        listed[name] = title
        if name not in pages:
            problem(where, f"no such page: {name}")
        elif pages[name].title != title:
            problem(where, f'"{title}" is called "{pages[name].title}" on its page')
    topics, named, forms = {}, set(), set()
    for where, (number, target, title, form) in rows("topics.tsv", 4):
        if not number.isdigit() or number in topics or not title:
            problem(where, f"the number {number} stands twice, is none, or has no title")
        topics[number] = form
        if form and form in forms:
            problem(where, f"{form} has two topics")
        forms.add(form)
        name, _, place = target.partition("#")
        named.add(name)
        if not (MANUAL / name).is_file() or (place and place not in pages[name].places):
            problem(where, f"no such file or place: {target}")
    for name in sorted(set(pages) - set(listed)):
        problem(name, "is not in the contents")
    for name in sorted(set(listed) - named):
        problem(name, "has no topic")
    check_topics(topics, forms - {""})
    return named | set(listed)


def check_topics(topics, forms):
    """What the sources ask for by number is there, and each window is known by the name that it has there."""
    asked = {"50": "", "4000": "frmOptions", "10000": "frmNoExtApp"}
    table = (ROOT / "shell/help/HelpTopics.cpp").read_text(encoding="utf-8")
    asked |= {number: form for form, number in re.findall(r'\{"(\w+)", (\d+)\}', table)}
    if len(asked) < 10:
        problem("shell/help/HelpTopics.cpp", "the topics are not where they were")
    for number, form in asked.items():
        if topics.get(number) != form:
            problem("topics.tsv", f"the program asks for number {number}, for {form or 'no window'}")
    for form in sorted(forms - set(asked.values())):
        problem("topics.tsv", f"the program has no topic for {form}")


def check_picture(path):
    content = path.read_bytes()
    # The header of a PNG holds its width.
    if len(content) > LARGEST_PICTURE or int.from_bytes(content[16:20], "big") > WIDEST_PICTURE:
        problem(path.name, "is too large")


def check_files(pages, named):
    used = {"contents.tsv", "topics.tsv"} | named
    for name, page in pages.items():
        if len(page.words().split()) < FEWEST_WORDS:
            problem(name, "is empty, or nearly")
        for link in page.links:
            if re.match(r"(https?|mailto):", link):
                continue
            target, _, place = link.partition("#")
            used.add(target or name)
            if not (MANUAL / (target or name)).is_file():
                problem(name, f"a link leads nowhere: {link}")
            elif place and place not in pages[target or name].places:
                problem(name, f"a link to no place: {link}")
        for picture in page.pictures:
            used.add(picture)
            if not (MANUAL / picture).is_file():
                problem(name, f"no such picture: {picture}")
            else:
                check_picture(MANUAL / picture)
    for path in MANUAL.rglob("*"):
        name = path.relative_to(MANUAL).as_posix()
        if path.is_file() and name not in used:
            problem(name, "is used nowhere")


# --- The menus

LITERAL = r'"((?:[^"\\]|\\.)*)"'
ROW = re.compile(r"\b([A-Z]\w*)\(" + LITERAL + r', QT_TRANSLATE_NOOP\("Menu", ' + LITERAL + r"\)((?:, " + LITERAL + ")*)")
# Which of the literals behind the caption are the hint, the key with a document and the key without one.
KEYS = {"Main": (0, 1, 2), "Doc": (0, 1, None), "Search": (None, 0, None), "Check": (None, 0, None),
        "Choice": (None, 0, 0), "Quote": (0, None, 1)}


def bare(caption):
    """As it is seen: without the marks of mnemonics."""
    return caption.replace("&&", "\0").replace("&", "").replace("\0", "&").replace("\\'", "'")


def program_menus(table):
    """{"File > New document": "Ctrl+N"}; a key for no document alone stands in brackets."""
    commands, above = {}, []
    for line in table.splitlines():
        if re.match(r"\s*End\(\)", line):
            above.pop()
            continue
        row = ROW.search(line)
        if not row:
            continue
        kind, _, caption, rest = row.groups()[:4]
        above.append(bare(caption))
        if kind == "Menu":
            continue
        texts = re.findall(LITERAL, rest)
        hint, document, other = (texts[i] if i is not None and i < len(texts) else "" for i in KEYS.get(kind, (0, 1, 2)))
        commands[" > ".join(above)] = hint or document or (f"({other})" if other else "")
        above.pop()
    return commands


def check_commands(pages, ahead):
    source = (ROOT / "commands/MenuTable.cpp").read_text(encoding="utf-8")
    table = re.search(r"kMenus\[\] = \{\n(.*?)\n\};", source, re.DOTALL)
    if not table:
        return problem("commands/MenuTable.cpp", "the menus are not where they were")
    program = program_menus(table[1])
    manual = {f"{menu} > {cells[0]}": cells[1] for menu, cells in pages["menus.html"].table_rows if len(cells) == 3}
    if len(program) < 50 or len(manual) < 50:
        problem("menus.html", f"{len(program)} commands in the program, {len(manual)} in the manual: far too few")
    for path, key in program.items():
        # Their captions are the date and the time.
        if "Insert Date/Time" in path:
            continue
        if path not in manual:
            problem("menus.html", f"does not have {path}")
        elif manual[path] != key:
            problem("menus.html", f"{path} has the key {key or 'none'}, not {manual[path] or 'none'}")
    parents = {" > ".join(path.split(" > ")[:n]) for path in manual for n in (1, 2)} | {"Edit > Insert Date/Time"}
    for name, page in pages.items():
        for path in page.marked["menu"]:
            if path not in manual and path not in parents:
                problem(name, f"no such command: {path}")
    if ahead:
        print(*(f"not in the menus: {path}" for path in manual if path not in program), sep="\n")


# --- Settings and messages

def check_settings(pages):
    source = (ROOT / "services/Settings.cpp").read_text(encoding="utf-8")
    keys = set(re.findall(r'^  (?:\{\.key = |State\()"([^"]+)"', source, re.MULTILINE))
    if len(keys) < 25:
        problem("services/Settings.cpp", "the keys are not where they were")
    for name, page in pages.items():
        for key in page.marked["key"]:
            if key not in keys and key != ROOT_VALUE and not re.fullmatch("RecentFile[1-5]", key):
                problem(name, f"no such setting: {key}")
    for key in sorted(keys - set(pages["settings.html"].marked["key"])):
        problem("settings.html", f"says nothing of {key}")


def name_unknown_messages(pages):
    """Only named: the sources put a message together in many ways."""
    sources = [path for path in ROOT.glob("*/**/*.cpp") if path.relative_to(ROOT).parts[0] not in ("build", "tests")]
    text = " ".join(path.read_text(encoding="utf-8") for path in sources)
    text = " ".join(re.sub(r'"\s*\n\s*"', "", text).replace("\\r\\n", " ").replace('\\"', '"').split())
    known = text.replace("&", "")
    for page in pages.values():
        for message in page.marked["msg"]:
            for part in re.split(r"(?<=[.?:]) +", message):
                part = re.sub(r'\W*\b(name|address|number|encoding|text|items|folder|program)\b.*', "", part)
                if len(part) > 12 and part not in known:
                    print(f"{page.path.name}: not in the sources: {part}")


def name_untold_messages(pages):
    """Sentences that windows and questions show are among them; not all of these need words."""
    manual = " ".join(page.words() for page in pages.values())
    marked = re.compile(r"\b(?:[tT]r|translate)\((?:\"\w+\",\s*)?((?:" + LITERAL + r"\s*)+)")
    for path in sorted(ROOT.glob("*/**/*.cpp")):
        where = path.relative_to(ROOT)
        if where.parts[0] in ("build", "tests"):
            continue
        for found in marked.finditer(path.read_text(encoding="utf-8")):
            text = "".join(re.findall(LITERAL, found[1])).replace("\\r\\n", " ").replace('\\"', '"').replace("&", "")
            sentences = re.split(r"(?<=[.?]) |[:(] |%\d+", " ".join(text.split()))
            told = [part for part in sentences if len(part) <= 12 or part.lstrip('" ') in manual]
            untold = [part for part in sentences if part not in told and re.search(r"[^.][.?]$", part)]
            for part in untold:
                print(f"{where}: not in the manual: {part}")


def main():
    pages = {path.name: Page(path) for path in sorted(MANUAL.glob("*.html"))}
    check_files(pages, check_tables(pages))
    ahead = "--ahead" in sys.argv[1:]
    check_commands(pages, ahead)
    check_settings(pages)
    if ahead:
        name_unknown_messages(pages)
        name_untold_messages(pages)
    print(*problems, sep="\n", end="\n" if problems else "")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

"""Projects, by the keyboard alone: made, sorted, saved, cleared out, opened again, and what their entries open."""

import os
import subprocess

import atspi
import cases
from cases import EndToEndTest

LIST = "Project list"
FIRST = "_Open new document"


def text_of(name):
    """As a name is shown."""
    return "".join("\ufffd" if 0xDC80 <= ord(c) < 0xDD00 or c < " " else c for c in os.fsdecode(name))


class ProjectTest(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.work = os.fsencode(self.home.work)

    def put(self, name, content=b"text"):
        path = os.path.join(self.work, os.fsencode(name))
        with open(path, "wb") as file:
            file.write(content)
        return path

    def project(self, name):
        with open(os.path.join(self.work, os.fsencode(name)), "rb") as file:
            return file.read()

    def put_project(self, name, entries):
        return self.put(name, b"".join(entry + b"\r\n" for entry in entries) + b"\r\n")

    def paste(self, text):
        subprocess.run(["xclip", "-selection", "clipboard"], input=text.encode(), env=cases.SESSION.environment,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        cases.SESSION.keys("ctrl+v")

    def pick(self, program, title, name):
        """Answers a file dialog by the whole name."""
        program.wait_for_title(title)
        program.wait_for_focus()
        self.paste(os.path.join(self.home.work, text_of(name)))
        cases.SESSION.keys("Return")

    def choose(self, program, menu, caption):
        """By the arrow keys: some captions share their letter."""
        cases.SESSION.keys(menu)
        items = program.wait_until(lambda: atspi.menu_items(program.pid), "an open menu")
        self.assertIn(caption, items)
        cases.SESSION.keys(*["Down"] * items.index(caption), "Return")

    def recent(self, program):
        """Opens the File menu at its last item, and says what the items of projects are."""
        cases.SESSION.keys("alt+f", "Up")
        items = program.wait_until(lambda: atspi.menu_items(program.pid), "an open menu")
        return items[items.index("Exit") + 1:]

    def lines(self, program):
        return [text for text, _ in atspi.list_lines(program.pid, LIST)]

    def selected(self, program):
        return [text for text, selected in atspi.list_lines(program.pid, LIST) if selected]

    def wait_for_lines(self, program, *names):
        wanted = [FIRST, *map(text_of, names)]
        program.wait_until(lambda: self.lines(program) == wanted, f"the lines {wanted}")

    def wait_for_project(self, program, name, entries):
        wanted = b"".join(entry + b"\r\n" for entry in entries) + b"\r\n"
        program.wait_until(lambda: os.path.exists(os.path.join(self.work, name)) and self.project(name) == wanted,
                           f"a project {name} of {entries}")

    def end(self, program):
        program.wait_for_focus()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)


class Made(ProjectTest):
    NAMES = [b"two words.txt", b"a & b.txt", b"<b>bold<b>.rtf", b"line\nbreak.txt",
             "\u05e2\u05d1\u05e8\u05d9\u05ea.txt".encode(), b"caf\xe9.txt", b"Case.txt", b"case.txt"]

    def test_from_open_documents_links_and_a_folder(self):
        session = cases.SESSION
        paths = [self.put(name, b"{\\rtf1 text}" if name.endswith(b".rtf") else b"text") for name in self.NAMES]
        link = self.put("manual & <i>.pdf") + b".lnk"
        program = self.start(*paths)
        program.wait_until(lambda: len(program.documents()) == len(paths), "all documents")
        program.wait_for_focus()

        self.choose(program, "alt+l", "Add all open documents")
        self.wait_for_lines(program, *self.NAMES)
        self.choose(program, "alt+l", "Add 'read-only' file shortcut...")
        self.pick(program, "Select a file to create a read-only shortcut for", "manual & <i>.pdf")
        self.answer(program, f"Add a read-only shortcut to the project for\n{os.fsdecode(link)} ?", "alt+y")
        self.wait_for_lines(program, *self.NAMES, os.path.basename(link))

        # The list of a project without a name is saved under one before it is edited by hand.
        self.choose(program, "alt+l", "Edit project file as document")
        self.pick(program, "Save", "my \u00fc & <p>.prj")
        name = "my \u00fc & <p>.prj".encode()
        self.wait_for_project(program, name, [*paths, link])
        program.wait_for_document(text_of(name))
        program.wait_for_focus()
        folder = self.work + b"/"
        wanted = self.project(name) + folder
        session.keys("ctrl+End")
        session.type(folder.decode())
        session.keys("ctrl+s")
        program.wait_until(lambda: self.project(name) == wanted, "the edited project file")

        self.assertEqual(self.recent(program), [text_of(os.path.join(self.work, name))])
        session.keys("Return")
        names = [*self.NAMES, os.path.basename(link)]
        self.wait_for_lines(program, *names, folder)

        self.choose(program, "alt+l", "Sort")
        shown = [text_of(line) for line in [*names, folder]]
        wanted = sorted(line.upper() for line in shown)
        program.wait_until(lambda: [line.upper() for line in self.lines(program)[1:]] == wanted, "the lines in order")
        self.assertCountEqual(self.lines(program)[1:], shown)
        before = os.stat(os.path.join(self.work, name)).st_mtime_ns
        self.choose(program, "alt+f", "Save project file")
        program.wait_until(lambda: os.stat(os.path.join(self.work, name)).st_mtime_ns != before, "a save")
        self.assertEqual(self.project(name), b"".join(entry + b"\r\n" for entry in [*paths, link, folder]) + b"\r\n",
                         "sorting is about what is shown")

        # All questions but the first are answered at once.
        self.choose(program, "alt+l", "Clear selections")
        session.keys("Down", "shift+Down", "shift+Down")
        program.wait_until(lambda: len(self.selected(program)) == 3, "three selected lines")
        entries = dict(zip(shown, [*paths, link, folder]))
        stays, *going = [entries[line] for line in self.selected(program)]
        session.keys("Delete")
        self.answer(program, f"Remove {text_of(stays)}\nfrom the project?", "alt+n")
        self.answer(program, f"Remove {text_of(going[0])}\nfrom the project?", "alt+a")
        session.keys("alt+y")
        left = [entry for entry in entries.values() if entry not in going]
        self.assertEqual(len(left), 8)
        self.wait_for_lines(program, *[os.path.basename(entry) or entry for entry in left])
        self.choose(program, "alt+f", "Save project file")
        self.wait_for_project(program, name, left)
        self.end(program)


class Kept(ProjectTest):
    def test_pointed_elsewhere_saved_under_another_name_and_found_again(self):
        session = cases.SESSION
        gone, new = os.path.join(self.work, b"go\xf6ne.txt"), self.put(b"n\xe9w & <b>.txt")
        second = self.put("second.txt")
        self.put_project("p\udcf6r.prj", [gone, second])
        self.put("P\udcf6R.prj", b"to be replaced")
        program = self.start()
        program.wait_until(lambda: len(program.documents()) == 2, "the first documents")
        program.wait_for_focus()
        session.keys("ctrl+o")
        self.pick(program, "Select a project file", b"p\xf6r.prj")
        self.wait_for_lines(program, os.path.basename(gone), b"second.txt")

        session.keys("Down", "Down", "shift+F10", "c")
        program.wait_until(lambda: session.tool("xclip", "-o", "-selection", "clipboard") == os.fsdecode(second),
                           "the pathname on the clipboard")
        session.keys("Up", "Return")
        self.answer(program, f"Error: {text_of(gone)}\nNo such file or directory", "Return")
        self.pick(program, "Select a document to open", os.path.basename(new))
        program.wait_for_document(text_of(os.path.basename(new)))
        self.wait_for_lines(program, os.path.basename(new), b"second.txt")

        self.choose(program, "alt+f", "Save project file as...")
        self.pick(program, "Save", b"P\xf6R.prj")
        self.answer(program, "This file already exists.  Do you want to replace it?", "alt+y")
        self.wait_for_project(program, b"P\xf6R.prj", [new, second])
        self.assertEqual(self.project(b"p\xf6r.prj"), b"%s\r\n%s\r\n\r\n" % (gone, second), "the first one is as it was")

        self.choose(program, "alt+f", "New project")
        self.wait_for_lines(program)
        self.assertEqual(self.recent(program)[:2], [text_of(os.path.join(self.work, name))
                                                    for name in (b"P\xf6R.prj", b"p\xf6r.prj")], "the newest first")
        session.keys("Up", "Return")  # below it is the one of the first run
        self.wait_for_lines(program, os.path.basename(gone), b"second.txt")

        # A changed project is not given up unasked.
        session.keys("Escape")  # from the list to the document
        self.choose(program, "alt+l", "Add current document")
        self.wait_for_lines(program, os.path.basename(gone), b"second.txt", os.path.basename(new))
        self.choose(program, "alt+f", "New project")
        self.answer(program, "has been changed.\nDo you want to save the changes before continuing?", "Escape")
        program.wait_for_no_dialog()
        self.wait_for_lines(program, os.path.basename(gone), b"second.txt", os.path.basename(new))
        session.keys("alt+F4")
        self.answer(program, "has been changed.\nDo you want to save the changes before continuing?", "alt+y")
        self.expect_clean_end(program)
        self.assertEqual(self.project(b"p\xf6r.prj"), b"%s\r\n%s\r\n%s\r\n\r\n" % (gone, second, new))


class Opened(ProjectTest):
    """By the programs that the desktop names for a type."""

    def associate(self, mime, name, script):
        folder = self.home.at("data", "applications")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, name + ".desktop"), "w", encoding="utf-8") as file:
            field = "%u" if mime.startswith("x-scheme-handler/") else "%f"
            file.write(f"[Desktop Entry]\nType=Application\nName={name}\nExec={script} {field}\nMimeType={mime};\n")
        os.makedirs(self.home.at("config"), exist_ok=True)
        with open(self.home.at("config", "mimeapps.list"), "a", encoding="utf-8") as file:
            file.write(f"[Default Applications]\n{mime}={name}.desktop\n")

    def viewer(self):
        """Writes down what it was given."""
        script = self.home.at("viewer")
        with open(script, "w", encoding="utf-8") as file:
            file.write('#!/bin/sh\nprintf "%s\\n" "$1" >> "' + self.home.at("opened") + '"\n')
        os.chmod(script, 0o755)
        return script

    def opened(self):
        path = self.home.at("opened")
        if not os.path.exists(path):
            return []
        with open(path, "rb") as file:
            return file.read().splitlines()

    def test_shortcuts_documents_and_folders_together(self):
        session = cases.SESSION
        viewer = self.viewer()
        self.associate("application/pdf", "pdf", viewer)
        self.associate("x-scheme-handler/https", "web", viewer)
        manual = self.put(b"man\xfcal & $(touch x).pdf", b"%PDF-1.4\n")
        site = self.put("site.url", b"[InternetShortcut]\r\nURL=https://example.org/?a&b\r\n")
        script = self.put("run me.sh", b"#!/bin/sh\ntouch '%s/ran'\n" % self.work)
        os.chmod(script, 0o755)
        text = self.put("a.txt")
        self.put_project("p.prj", [manual + b".lnk", script, site + b".lnk", self.work + b"/", text])
        program = self.start()
        program.wait_until(lambda: len(program.documents()) == 2, "the first documents")
        program.wait_for_focus()
        session.keys("ctrl+o")
        self.pick(program, "Select a project file", "p.prj")
        program.wait_until(lambda: len(self.lines(program)) == 6, "five entries")
        program.wait_for_focus()
        self.choose(program, "alt+l", "Select all")
        program.wait_until(lambda: len(self.selected(program)) == 5, "all selected")
        session.keys("Return")
        question = "Should I open this item in its external application?"
        self.answer(program, f"Linked item: {text_of(manual)}.lnk\n\n{question}", "alt+y")
        self.answer(program, f"Linked item: {text_of(site)}.lnk\n\n{question}", "alt+y")
        program.wait_for_document("a.txt")
        self.assertTrue(any(title.endswith("/run me.sh") for title in program.documents()), "as a text")
        program.wait_until(lambda: len(self.opened()) == 2, "both shortcuts opened")
        self.assertCountEqual(self.opened(), [manual, b"https://example.org/?a&b"])
        self.end(program)
        self.assertEqual([name for name in os.listdir(self.work) if name in (b"ran", b"x")], [], "nothing was run")

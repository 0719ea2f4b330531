"""Quotes, notes and text blocks by the keyboard alone, from the first start of the program on."""

import os
import time

import atspi
import cases
from cases import EndToEndTest

QUOTES, NOTES, BLOCKS = "Quotes.txt", "Notes: ", "Text blocks: "


class Panes(EndToEndTest):
    PANES = True

    def open_all(self):
        self.home.put("a.txt", b"document")
        program = self.start("a.txt")
        for title in (QUOTES, NOTES, BLOCKS):
            program.wait_for_title(title)
        program.wait_for_document("a.txt")
        self.wait_for_active(program, "Quillmark - ")
        return program

    def wait_for_active(self, program, title):
        """Until a window whose title has that in it gets the keys."""
        def active():
            window = program.active_window()
            return any(int(number, 16) == window and title in shown
                       for number, _, shown in program.session.windows(program.pid))
        program.wait_until(lambda: active() and atspi.is_active(program.pid), f"the keys in {title!r}")

    def go_to(self, program, title):
        """F6 goes round through everything."""
        for _ in range(8):
            cases.SESSION.keys("F6")
            try:
                return self.wait_for_active_soon(program, title)
            except TimeoutError:
                continue
        self.fail(f"F6 never comes to {title!r}")

    def wait_for_active_soon(self, program, title):
        end = time.monotonic() + 1
        while time.monotonic() < end:
            window = program.active_window()
            if any(int(number, 16) == window and title in shown
                   for number, _, shown in program.session.windows(program.pid)):
                return
        raise TimeoutError

    def clipboard(self):
        return cases.SESSION.tool("xclip", "-selection", "clipboard", "-o")

    def notes_file(self):
        return next(name for name in self.home.files() if name.endswith("Templates/Notes.txt"))

    def read(self, name):
        with open(self.home.at(name), "rb") as file:
            return file.read()

    def test_round_the_panes(self):
        program = self.open_all()
        session = cases.SESSION
        self.go_to(program, QUOTES)
        session.keys("ctrl+f")
        program.wait_until(lambda: program.dialog() == "Input the search string", "the question")
        session.type("NO MAN")
        session.keys("Return")
        program.wait_until(lambda: [text for text, on in atspi.list_lines(program.pid, "Quotes") if on] ==
                           ["No man is an island, entire of itself.  - John Donne, Devotions upon Emergent Occasions"],
                           "the quote")
        self.wait_for_active(program, QUOTES)
        session.keys("ctrl+c")
        program.wait_until(lambda: self.clipboard().startswith("No man is an island"), "the quote on the clipboard")
        self.go_to(program, NOTES)
        before = self.read(self.notes_file())
        session.keys("ctrl+Home")
        session.type("mine ")
        session.keys("ctrl+s")
        program.wait_until(lambda: self.read(self.notes_file()) == b"mine " + before, "the notes")
        self.assertEqual(self.home.get("a.txt"), b"document")
        self.go_to(program, BLOCKS)
        session.keys("ctrl+Home", "shift+End", "ctrl+c")
        line = self.read(self.notes_file().replace("Notes.txt", "Often Used Text Blocks.txt")).splitlines()[0]
        program.wait_until(lambda: self.clipboard() == line.decode(), "the block on the clipboard")
        session.keys("Escape")
        self.wait_for_active(program, "Quillmark - ")
        session.type("x")
        session.keys("ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == b"xdocument", "the document")
        session.keys("alt+F4")
        self.expect_clean_end(program)

    def test_the_notes_are_asked_about_at_the_end(self):
        program = self.open_all()
        session = cases.SESSION
        before = self.read(self.notes_file())
        self.go_to(program, NOTES)
        session.keys("ctrl+End")
        session.type("more")
        session.keys("Escape")
        self.wait_for_active(program, "Quillmark - ")
        for answer in ("Escape", "alt+y"):
            session.keys("alt+F4")
            program.wait_until(lambda: (program.dialog() or "").startswith("Notes file has changed."), "the question")
            program.wait_for_focus()
            session.keys(answer)
            if answer == "Escape":
                program.wait_until(lambda: not (program.dialog() or "").startswith("Notes file"), "the question to go")
                self.wait_for_active(program, NOTES)
                session.keys("Escape")
                self.wait_for_active(program, "Quillmark - ")
        self.expect_clean_end(program)
        self.assertEqual(self.read(self.notes_file()), before + b"more")

    def test_notes_whose_file_became_read_only(self):
        program = self.open_all()
        session = cases.SESSION
        before = self.read(self.notes_file())
        os.chmod(self.home.at(self.notes_file()), 0o400)
        self.go_to(program, NOTES)
        session.keys("ctrl+Home")
        session.type("kept ")
        session.keys("alt+F4")
        program.wait_until(lambda: (program.dialog() or "").startswith("Notes file has changed."), "the question")
        program.wait_for_focus()
        session.keys("alt+y")
        program.wait_until(lambda: not any(NOTES in title for title in program.titles()), "the pad to go")
        self.assertEqual(self.read(self.notes_file()), before)
        self.assertEqual(self.home.recovery_entries(), {"Notes.txt": b"kept " + before})
        session.tool("wmctrl", "-i", "-c", session.windows(program.pid)[0][0], check=True)
        self.expect_clean_end(program, {"Notes.txt": b"kept " + before})

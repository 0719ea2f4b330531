"""Finding and replacing by the keyboard alone, with the dialog open and closed."""

import atspi
import cases
from cases import EndToEndTest

NOT_FOUND = 'Cannot find any (more) occurrences of\n"%s"'


class Finding(EndToEndTest):
    def open_dialog(self, program, key, text):
        cases.SESSION.keys(key)
        program.wait_for_title("Find/Replace")
        program.wait_for_focus()
        cases.SESSION.type(text)

    def wait_for_selection(self, program, name, *expected):
        """(begin, end) of what is selected in the document."""
        program.wait_until(lambda: atspi.selection(program.pid, name) == expected, f"{expected} selected in {name}")

    def say_yes_to(self, program, text):
        program.wait_for_dialog(NOT_FOUND % text)
        cases.SESSION.keys("Return")
        program.wait_until(lambda: len(program.titles()) <= 2 and not any("Quillmark" == t for t in program.titles()),
                           "the message to go")
        program.wait_for_focus()

    def test_find_on_and_on_with_the_dialog_open_and_closed(self):
        self.home.put("a.txt", b"one two one two one")
        program = self.open("a.txt")
        self.open_dialog(program, "ctrl+f", "TWO")
        cases.SESSION.keys("Return")
        self.wait_for_selection(program, "a.txt", 4, 7)
        cases.SESSION.keys("F3")
        self.wait_for_selection(program, "a.txt", 12, 15)
        cases.SESSION.keys("Escape")
        program.wait_until(lambda: "Find/Replace" not in program.titles(), "the dialog to go")
        program.wait_for_focus()
        cases.SESSION.keys("F3")
        self.say_yes_to(program, "TWO")
        cases.SESSION.keys("F3")
        self.wait_for_selection(program, "a.txt", 4, 7)
        cases.SESSION.type("2")
        self.wait_for_texts(program, "one 2 one two one")

    def test_replace_in_all_documents(self):
        for name in ("a.txt", "b.txt"):
            self.home.put(name, b"-- cat Cat")
        program = self.open("a.txt", "b.txt")
        self.open_dialog(program, "ctrl+h", "cat")
        cases.SESSION.keys("alt+p")
        cases.SESSION.type("dog")
        # Match Case has its letter in common with Cancel, so it is gone to by it and ticked by the space bar.
        cases.SESSION.keys("alt+p", "Tab", "space", "Tab", "Tab", "Down", "alt+a")
        self.say_yes_to(program, "cat")
        self.wait_for_texts(program, "-- dog Cat", "-- dog Cat")
        self.assertIn(("label", "2 replacements were made."), program.accessible_texts())
        cases.SESSION.keys("ctrl+s")  # a key of the main window's, while the dialog is in front
        program.wait_until(lambda: self.home.get("b.txt") == b"-- dog Cat", "the document to be saved")
        cases.SESSION.keys("Escape")
        program.wait_until(lambda: "Find/Replace" not in program.titles(), "the dialog to go")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+z")
        self.wait_for_texts(program, "-- dog Cat", "-- cat Cat")

    def test_the_dialog_uncovers_what_it_finds(self):
        text = b"".join(b"%03d  one more line of the text\n" % line for line in range(300))
        self.home.put("a.txt", text)
        program = self.open("a.txt")
        self.open_dialog(program, "ctrl+f", "line")
        for _ in range(40):
            cases.SESSION.keys("Return")
        match = text.index(b"line", text.index(b"039"))
        self.wait_for_selection(program, "a.txt", match, match + 4)
        found = atspi.selected_rectangle(program.pid, "a.txt")
        dialog = atspi.extents(program.pid, "dialog", "Find/Replace")
        self.assertTrue(found and found.width > 0, "nothing to be seen")
        apart = (found.x + found.width <= dialog.x or dialog.x + dialog.width <= found.x or
                 found.y + found.height <= dialog.y or dialog.y + dialog.height <= found.y)
        self.assertTrue(apart, f"the dialog at {dialog.x},{dialog.y} covers what is at {found.x},{found.y}")

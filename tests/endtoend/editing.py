"""A user at work: typing, saving, closing, and the questions on the way, by the keyboard alone."""

import os

import atspi
import cases
from cases import EndToEndTest

PROMPT = "has changed.\nDo you want to save the changes?"


class Saving(EndToEndTest):
    def test_type_save_close(self):
        self.home.put("a.txt", b"second line\n")
        program = self.open("a.txt")
        cases.SESSION.type("first")
        cases.SESSION.keys("Return", "ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == b"first\nsecond line\n", "the saved file")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(os.listdir(self.home.work), ["a.txt"])

    def test_keys_that_come_at_once_keep_their_order(self):
        self.home.put("a.txt", b"")
        program = self.open("a.txt")
        # The toolkit delivers keys behind a screen reader's back only when there is none.
        listener = atspi.listen("window:activate")
        self.addCleanup(listener.deregister, "window:activate")
        self.wait_for_texts(program, "")
        with program.stopped():
            cases.SESSION.type("abc")
            cases.SESSION.keys("ctrl+s")
            cases.SESSION.type("d")
        self.wait_for_texts(program, "abcd")
        self.assertEqual(self.home.get("a.txt"), b"abc")

    def test_a_new_document_is_saved_under_the_name_that_is_typed(self):
        program = self.open("other.txt")
        cases.SESSION.keys("ctrl+n")
        program.wait_for_document("Untitled:2")
        cases.SESSION.type("new text")
        cases.SESSION.keys("ctrl+s")
        program.wait_for_title("Save")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+a")
        cases.SESSION.type(os.path.join(self.home.work, "new.txt"))
        cases.SESSION.keys("Return")
        program.wait_until(lambda: os.path.exists(os.path.join(self.home.work, "new.txt")), "the new file")
        program.wait_for_document("new.txt")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(self.home.get("new.txt"), b"new text")


class ClosePrompt(EndToEndTest):
    def changed(self, *names):
        for name in names:
            self.home.put(name, b"old")
        program = self.open(*names)
        for _ in names:
            cases.SESSION.type("x")
            cases.SESSION.keys("ctrl+F6")
        self.wait_for_texts(program, *["xold"] * len(names))
        return program

    def test_cancel_then_no(self):
        program = self.changed("a.txt")
        cases.SESSION.keys("alt+F4")
        self.answer(program, "a.txt] " + PROMPT, "Escape")
        program.wait_for_no_dialog()
        self.wait_for_texts(program, "xold")
        cases.SESSION.keys("alt+F4")
        self.answer(program, PROMPT, "alt+n")
        self.expect_clean_end(program)
        self.assertEqual(self.home.get("a.txt"), b"old")

    def test_yes_by_the_default_button(self):
        program = self.changed("a.txt")
        cases.SESSION.keys("alt+F4")
        self.answer(program, PROMPT, "Return")
        self.expect_clean_end(program)
        self.assertEqual(self.home.get("a.txt"), b"xold")

    def test_cancel_on_the_second_of_three_keeps_all(self):
        program = self.changed("a.txt", "b.txt", "c.txt")
        cases.SESSION.keys("alt+F4")
        self.answer(program, "c.txt] " + PROMPT, "alt+n")
        self.answer(program, "b.txt] " + PROMPT, "Escape")
        program.wait_for_no_dialog()
        self.wait_for_texts(program, "xold", "xold", "xold")
        cases.SESSION.keys("alt+F4")
        self.answer(program, "c.txt] " + PROMPT, "alt+n")
        self.answer(program, "b.txt] " + PROMPT, "alt+y")
        self.answer(program, "a.txt] " + PROMPT, "alt+n")
        self.expect_clean_end(program)
        self.assertEqual([self.home.get(name) for name in ("a.txt", "b.txt", "c.txt")], [b"old", b"xold", b"old"])

    def test_a_cancelled_save_keeps_the_text_for_the_next_start(self):
        program = self.open("other.txt")
        cases.SESSION.keys("ctrl+n")
        program.wait_for_document("Untitled:2")
        cases.SESSION.type("precious")
        cases.SESSION.keys("alt+F4")
        self.answer(program, "[Untitled:2] " + PROMPT, "alt+y")
        program.wait_for_title("Save")
        program.wait_for_focus()
        cases.SESSION.keys("Escape")
        self.expect_clean_end(program, {"Untitled.txt": b"precious"})
        program = self.start()
        self.answer(program, "The text of [Untitled.txt] was not saved when its window was closed.\n"
                    "Do you want to open it now?", "alt+y")
        program.wait_for_document("Untitled.txt")
        self.assertIn("precious", self.texts_of(program))

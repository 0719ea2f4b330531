"""The program is ended from outside: no typed text is lost, whatever was open."""

import os
import signal

import atspi
import cases
import harness
from cases import EndToEndTest

OFFER = "was not saved when its window was closed.\nDo you want to open it now?"


class Signals(EndToEndTest):
    def changed(self):
        """a.txt changed, b.txt not, and a new text; the keyboard is in the new one."""
        self.home.put("a.txt", b"old")
        self.home.put("b.txt", b"as it is")
        program = self.open("b.txt", "a.txt")
        cases.SESSION.type("x")
        cases.SESSION.keys("ctrl+n")
        program.wait_for_document("Untitled:3")
        cases.SESSION.type("precious")
        self.wait_for_texts(program, "xold", "as it is", "precious")
        return program

    def expect_kept_and_offered(self, program):
        self.expect_clean_end(program, {"a.txt": b"xold", "Untitled:3": b"precious"})
        self.assertEqual(self.home.get("a.txt"), b"old")
        program = self.start()
        # Both were kept within one tick of the clock that files go by, so either may come first.
        first = program.wait_for_dialog(OFFER)
        program.session.keys("alt+y")
        self.answer(program, f"[Untitled:3] {OFFER}" if "a.txt]" in first else f"a.txt] {OFFER}", "alt+y")
        program.wait_for_no_dialog()
        self.wait_for_texts(program, "xold", "precious")
        # A second copy does not offer what the first one shows.
        other = self.start()
        other.wait_for_focus()
        self.assertEqual(other.documents(), [])
        cases.SESSION.keys("alt+F4")
        self.assertEqual(other.wait_for_end(), 0, other.output())
        program.signal(signal.SIGTERM)
        self.expect_clean_end(program, {"a.txt": b"xold", "Untitled:3": b"precious"})

    def test_without_a_dialog(self):
        program = self.changed()
        program.signal(signal.SIGTERM)
        self.expect_kept_and_offered(program)

    def test_in_the_close_prompt(self):
        program = self.changed()
        cases.SESSION.keys("alt+F4")
        program.wait_for_dialog("[Untitled:3] has changed.")
        program.signal(signal.SIGTERM)
        self.expect_kept_and_offered(program)

    def test_in_the_save_dialog(self):
        program = self.changed()
        cases.SESSION.keys("ctrl+s")
        program.wait_for_title("Save")
        program.signal(signal.SIGHUP)
        self.assertEqual(program.wait_for_end(), 0, program.output())
        self.assertEqual(self.home.recovery_entries(), {"a.txt": b"xold", "Untitled.txt": b"precious"})

    def test_several_signals_are_one(self):
        program = self.changed()
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
            program.signal(number)
        self.expect_clean_end(program, {"a.txt": b"xold", "Untitled:3": b"precious"})

    def test_nothing_changed_leaves_nothing(self):
        self.home.put("a.txt", b"old")
        program = self.open("a.txt")
        program.signal(signal.SIGTERM)
        self.expect_clean_end(program)

    def test_a_text_that_cannot_be_kept_keeps_the_program(self):
        program = self.changed()
        os.makedirs(self.home.at("state"), exist_ok=True)
        os.chmod(self.home.at("state"), 0o500)
        recovery = self.home.at("state", "quillmark")
        if os.path.isdir(recovery):
            os.chmod(recovery, 0o500)
        program.signal(signal.SIGTERM)
        program.wait_for_dialog("Permission denied")
        cases.SESSION.keys("Return")
        program.wait_for_no_dialog()
        self.wait_for_texts(program, "xold", "as it is", "precious")
        for folder in (self.home.at("state"), recovery):
            if os.path.isdir(folder):
                os.chmod(folder, 0o700)
        program.signal(signal.SIGTERM)
        self.expect_clean_end(program, {"a.txt": b"xold", "Untitled:3": b"precious"})


class LostDisplay(EndToEndTest):
    def test_the_text_survives(self):
        session = harness.Session(cases.SESSION.report_folder)
        self.addCleanup(session.close)
        self.home.put("a.txt", b"old")
        program = self.start("a.txt", session=session)
        program.wait_for_focus()
        session.type("x")
        # This session's accessibility bus is another one, so the title is all that can be asked.
        session.keys("ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == b"xold", "the saved file")
        session.type("yz")
        session.keys("ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == b"xyzold", "the saved file")
        session.type("!")
        session.keys("Home")
        # A round trip, so that the key has arrived.
        os.remove(session.picture("before-the-loss"))
        session.display.kill()
        self.assertNotEqual(program.wait_for_end(), 0)
        self.assertEqual(self.home.get("a.txt"), b"xyzold")
        self.assertEqual(self.home.recovery_entries(), {"a.txt": b"xyz!old"})

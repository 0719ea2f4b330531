"""What all end-to-end cases share. run.py sets the session and the places before the first one."""

import fcntl
import json
import os
import random
import time
import unittest

import atspi
from harness import Home, Program, wait_until

SESSION = BINARY = APPLICATION = None


def seeded():
    """A source of chance whose seed is printed, so that a run can be repeated."""
    seed = int(os.environ.get("QUILLMARK_SEED") or random.SystemRandom().randrange(1 << 32))
    print(f"QUILLMARK_SEED={seed}", flush=True)
    return random.Random(seed)


class EndToEndTest(unittest.TestCase):
    def setUp(self):
        begin = time.monotonic()
        self.addCleanup(lambda: print(f"{time.monotonic() - begin:.1f} s ", end="", flush=True))
        SESSION.release_keys()
        self.home = self.new_home()

    PANES = False  # whether quotes, notes and text blocks open at the start

    def new_home(self):
        home = Home(BINARY, APPLICATION, panes=self.PANES)
        self.addCleanup(home.remove)
        return home

    def start(self, *arguments, home=None, session=None, **options):
        program = Program(session or SESSION, home or self.home, *arguments, **options)
        self.addCleanup(program.kill)
        return program

    def open(self, *names, **options):
        """A program that shows these files of the work folder and has the keyboard."""
        program = self.start(*names, **options)
        for name in names:
            program.wait_for_document(name)
        program.wait_for_focus()
        return program

    def settings(self):
        """The keys and values of the settings file; nothing when there is none."""
        for name in self.home.files():
            if name.startswith("config/") and name.endswith(".json"):
                with open(self.home.at(name), encoding="utf-8") as file:
                    return json.load(file)
        return None

    # --- What must hold afterwards

    def expect_nothing_left(self, program):
        self.assertEqual(program.children(), [], "processes")
        self.assertEqual([name for name in self.home.files() if ".quillmark-" in name], [], "temporary files")
        self.expect_no_lock_held(program.home)

    def expect_no_lock_held(self, home):
        for name in home.files():
            # A FIFO would wait for a writer.
            if not os.path.isfile(home.at(name)) or not os.access(home.at(name), os.R_OK):
                continue
            with open(home.at(name), "rb") as file:
                try:
                    fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
                except BlockingIOError:
                    self.fail(f"still locked: {name}")

    def expect_clean_end(self, program, recovery=None):
        self.assertEqual(program.wait_for_end(), 0, program.output())
        self.assertEqual(program.output(), "")
        self.expect_nothing_left(program)
        self.assertEqual(program.home.recovery_entries(), recovery or {})

    def answer(self, program, text, keys):
        program.wait_for_dialog(text)
        program.session.keys(keys)

    def texts_of(self, program):
        return atspi.editors(program.pid)

    def wait_for_texts(self, program, *texts):
        program.wait_until(lambda: sorted(self.texts_of(program)) == sorted(texts), f"the texts {texts}")


__all__ = ["EndToEndTest", "seeded", "wait_until"]

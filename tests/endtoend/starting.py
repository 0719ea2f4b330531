"""Started and stopped very often, killed at any moment, and twice at a time."""

import concurrent.futures
import json
import os
import signal
import subprocess
import time

import atspi
import cases
from cases import EndToEndTest, seeded
from harness import SLOW

NO_SCREEN_READER = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "0"}
HOMES = 4
STARTS = 100 if SLOW == 1 else 40
ROUNDS = 20 if SLOW == 1 else 5


class Often(EndToEndTest):
    def start_and_stop(self, home):
        program = self.start(home=home, environment=NO_SCREEN_READER)
        program.close_by_window_manager()
        status = program.wait_for_end()
        self.assertEqual((status, program.output()), (0, ""))
        self.assertEqual(program.children(), [])
        return sorted(home.files())

    def many(self, home):
        self.start_and_stop(home)
        first = self.start_and_stop(home)
        for _ in range(STARTS // HOMES - 2):
            self.assertEqual(self.start_and_stop(home), first, "files that come or go")
        self.expect_no_lock_held(home)
        self.assertEqual(home.recovery_entries(), {})

    def test_a_hundred_times(self):
        homes = [self.new_home() for _ in range(HOMES)]
        with concurrent.futures.ThreadPoolExecutor(2 if SLOW == 1 else 1) as pool:
            for done in [pool.submit(self.many, home) for home in homes]:
                done.result()


class Killed(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.chance = seeded()
        self.content = b"".join(b"line %d\n" % number for number in range(200000))
        self.home.put("a.txt", self.content)

    def kill_after(self, program, seconds):
        # The one place that waits for a time: any moment must do.
        time.sleep(self.chance.random() * seconds * SLOW)
        program.kill()

    def while_starting(self):
        self.kill_after(self.start("a.txt", wait=False), 0.4)

    def opened(self):
        program = self.start("a.txt", environment=NO_SCREEN_READER)
        program.wait_for_focus()
        return program

    def while_typing(self):
        program = self.opened()
        typing = subprocess.Popen(["xdotool", "type", "--delay", "3", "x" * 100], env=cases.SESSION.environment)
        self.kill_after(program, 0.3)
        typing.kill()
        typing.wait()

    def while_saving(self):
        program = self.opened()
        typed = b"y" * self.chance.randrange(1, 5)
        cases.SESSION.type(typed.decode())
        cases.SESSION.keys("ctrl+s")
        self.kill_after(program, 0.08)
        now = self.home.get("a.txt")
        self.assertIn(now, (self.content, typed + self.content), "the file is neither the old nor the new one")
        self.content = now

    def while_ending(self):
        program = self.opened()
        cases.SESSION.keys("alt+F4")
        self.kill_after(program, 0.15)

    def test_at_any_moment(self):
        ways = [self.while_starting, self.while_typing, self.while_saving, self.while_ending]
        for number in range(ROUNDS):
            way = self.chance.choice(ways)
            with self.subTest(round=number, way=way.__name__):
                way()
                self.assertEqual(self.home.get("a.txt"), self.content)
                self.settings()  # fails when it is no JSON
                self.expect_no_lock_held(self.home)
        # And after all that the program works as ever.
        program = self.open("a.txt")
        self.assertIsNone(program.dialog())
        cases.SESSION.type("end")
        cases.SESSION.keys("ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == b"end" + self.content, "the saved file")
        cases.SESSION.keys("alt+F4")
        self.assertEqual(program.wait_for_end(), 0, program.output())
        self.assertEqual(program.output(), "")
        left = [name for name in os.listdir(self.home.work) if name != "a.txt"]
        self.assertTrue(all(name.startswith(".quillmark-") for name in left), left)


class Twice(EndToEndTest):
    def general(self):
        return self.settings()["Quillmark"]["General"]

    def test_two_copies_at_once_lose_no_setting(self):
        self.home.put("a.txt", b"a")
        self.home.put("b.txt", b"b")
        first = self.open("a.txt")
        second = self.open("b.txt")
        cases.SESSION.type("x")
        cases.SESSION.keys("ctrl+s")
        second.wait_until(lambda: self.home.get("b.txt") == b"xb", "the file of the second copy")
        first.close_by_window_manager()
        self.assertEqual(first.wait_for_end(), 0, first.output())
        written = self.general()
        # Somebody else, perhaps a third copy, adds a key while the second one runs.
        path = next(self.home.at(name) for name in self.home.files("config") if name.endswith(".json"))
        with open(path, encoding="utf-8") as file:
            store = json.load(file)
        store["Quillmark"]["General"]["Most Recent"] = "3"
        with open(path + ".new", "w", encoding="utf-8") as file:
            json.dump(store, file)
        os.replace(path + ".new", path)
        second.close_by_window_manager()
        self.expect_clean_end(second)
        self.assertEqual(self.general(), {**written, "Most Recent": "3", "TextState": self.general()["TextState"]})
        self.assertIn("ToolBarStyle", written)
        self.assertIn("QuoteFile", written, "of the first run")

    def test_the_lock_goes_with_a_killed_copy(self):
        first = self.start("a.txt")
        first.signal(signal.SIGKILL)
        first.process.wait()
        self.expect_no_lock_held(self.home)


class Customised(EndToEndTest):
    LAYOUT = "Quillmark Toolbar1"

    def shown(self, program):
        """The names of some buttons that are shown, from left to right."""
        places = {name: atspi.extents(program.pid, "push button", name) for name in ("Save", "Print", "View")}
        return sorted((name for name in places if places[name]), key=lambda name: places[name].x)

    def test_a_toolbar_by_the_keyboard_lasts(self):
        self.home.put("a.txt", b"a")
        session = cases.SESSION
        program = self.open("a.txt")
        self.assertEqual(self.shown(program), ["Save", "Print", "View"])
        session.keys("alt+o")
        program.wait_until(lambda: "Toolbar" in atspi.menu_items(program.pid), "the menu")
        session.keys("b", "c")
        program.wait_for_title("Customize the toolbar")
        program.wait_until(lambda: atspi.is_active(program.pid), "the dialog to get the keys")
        lines = lambda: [text for text, _ in atspi.list_lines(program.pid, "Buttons and separators")]
        before = lines()
        # Print goes, View comes before Save, with a separator behind it.
        session.keys("Down", "Down", "Down", "Down", "space", "Down", "alt+Up", "alt+Up", "alt+Up", "alt+s")
        program.wait_until(lambda: len(lines()) == len(before) + 1, "the separator")
        session.keys("Return")
        program.wait_until(lambda: self.shown(program) == ["View", "Save"], "the buttons in their new order")
        program.wait_until(lambda: self.LAYOUT in (self.settings() or {}), "the stored layout")
        layout = self.settings()[self.LAYOUT]
        self.assertTrue(layout.startswith("buttons,New,Open,View,|,Save,|,!Print,|,"), layout)
        session.keys("alt+F4")
        self.expect_clean_end(program)
        program = self.open("a.txt")
        program.wait_until(lambda: self.shown(program) == ["View", "Save"], "the buttons after a restart")
        session.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(self.settings()[self.LAYOUT], layout)

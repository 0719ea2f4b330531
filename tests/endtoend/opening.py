"""The first run, and what a command line may name."""

import os
import shutil

import cases
from cases import EndToEndTest


class FirstRun(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.assertTrue(cases.APPLICATION, "the build made no application folder")

    def test_the_first_run_shows_readme_and_welcome_and_the_second_nothing(self):
        program = self.start()
        program.wait_for_document("Quillmark readme.txt")
        program.wait_for_document("Welcome.rtf")
        self.assertEqual(len(program.documents()), 2)
        program.wait_for_focus()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        program = self.start()
        program.wait_for_focus()
        self.assertEqual(program.documents(), [])
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)


class PortableCopy(EndToEndTest):
    PANES = True

    def test_a_portable_copy_keeps_everything_beside_itself(self):
        with open(self.home.at("program", "application", "portable"), "w", encoding="ascii"):
            pass
        program = self.start()
        program.wait_for_document("Welcome.rtf")
        program.wait_for_focus(0)  # and not one of the panes, which open too
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual([name for name in self.home.files() if name.startswith(("config/", "data/"))], [])
        self.assertTrue([name for name in self.home.files("program", "application") if name.endswith(".json")])


class Refused(EndToEndTest):
    def expect_refused(self, path, text):
        program = self.start(path)
        program.wait_for_dialog(f"Error: {path}\n{text}")
        self.assertEqual(program.documents(), [])
        cases.SESSION.keys("Return")
        program.wait_for_no_dialog()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

    def test_a_folder(self):
        self.expect_refused(self.home.work, "Is a directory")

    def test_an_unreadable_file_never_comes_up_empty(self):
        path = self.home.put("secret.txt", b"secret")
        os.chmod(path, 0)
        with self.assertRaises(PermissionError):
            open(path, "rb")
        self.expect_refused(path, "Permission denied")

    def test_a_fifo_is_not_waited_for(self):
        path = os.path.join(self.home.work, "fifo.txt")
        os.mkfifo(path)
        self.expect_refused(path, "Not a regular file")

    def test_a_missing_folder(self):
        self.expect_refused(os.path.join(self.home.work, "no", "a.txt"), "No such file or directory")


class CommandLine(EndToEndTest):
    def test_a_missing_file_is_made_by_saving(self):
        program = self.open("later.txt")
        self.assertEqual(self.texts_of(program), [""])
        self.assertEqual(os.listdir(self.home.work), [])
        cases.SESSION.type("text")
        cases.SESSION.keys("ctrl+s")
        program.wait_until(lambda: os.path.exists(os.path.join(self.home.work, "later.txt")), "the file")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(self.home.get("later.txt"), b"text")

    def test_names_as_they_come(self):
        names = ["-dash.txt", "two words.txt", "line\nbreak.txt", "\u05e2\u05d1\u05e8\u05d9\u05ea.rtf"]
        for number, name in enumerate(names):
            content = f"text {number}"
            self.home.put(name, b"{\\rtf1 %s}" % content.encode() if name.endswith(".rtf") else content.encode())
        program = self.start('"two words.txt"', "file://" + self.home.work + "/line%0Abreak.txt", "--", *names)
        program.wait_until(lambda: len(program.documents()) == len(names), "four documents")
        self.wait_for_texts(program, *[f"text {number}" for number in range(len(names))])
        program.wait_for_focus()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

    def test_a_name_that_is_no_text_keeps_its_bytes(self):
        name = b"caf\xe9.txt"
        folder = os.fsencode(self.home.work)
        with open(os.path.join(folder, name), "wb") as file:
            file.write(b"old")
        program = self.start(name)
        program.wait_for_document("caf\ufffd.txt")
        program.wait_for_focus()
        cases.SESSION.type("x")
        cases.SESSION.keys("ctrl+s")

        def saved():
            with open(os.path.join(folder, name), "rb") as file:
                return file.read() == b"xold"
        program.wait_until(saved, "the saved file")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(os.listdir(folder), [name])

    def test_without_a_display_it_says_so_in_one_line(self):
        program = self.start(wait=False, environment={"DISPLAY": ":99999", "WAYLAND_DISPLAY": ""})
        self.assertEqual(program.wait_for_end(), 1)
        self.assertEqual(program.output(), "quillmark: cannot reach a display (is DISPLAY or WAYLAND_DISPLAY set?)\n")

    def test_a_removed_program_folder_is_no_obstacle(self):
        """An update may replace the files of a running program."""
        program = self.open("a.txt")
        shutil.rmtree(self.home.at("program"))
        cases.SESSION.type("text")
        cases.SESSION.keys("ctrl+s")
        program.wait_until(lambda: os.path.exists(os.path.join(self.home.work, "a.txt")), "the file")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

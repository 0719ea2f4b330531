"""Dates, objects and dragged text: what comes into a document by other ways than typing."""

import os
import time

import atspi
import cases
import harness
from dragging import DragTest, Peer

APPLICATION = """[Desktop Entry]
Type=Application
Name=Scribe
Exec=%s %%f
MimeType=text/plain;
"""


class InsertTest(DragTest):
    def edit_menu(self, *keys):
        """From its first row; "Up" goes to the last one."""
        cases.SESSION.keys("alt+e")
        cases.SESSION.keys(*keys)

    def install(self, script):
        """The user's default application for plain text."""
        run = self.home.at("scribe")
        with open(run, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n" + script)
        os.chmod(run, 0o755)
        folder = self.home.at("data", "applications")
        os.makedirs(folder)
        with open(os.path.join(folder, "scribe.desktop"), "w", encoding="utf-8") as file:
            file.write(APPLICATION % run)
        with open(os.path.join(folder, "mimeapps.list"), "w", encoding="utf-8") as file:
            file.write("[Default Applications]\ntext/plain=scribe.desktop\n")

    def insert_file(self, program, path):
        """By the dialog; it stands behind what was there."""
        before = "".join(self.texts_of(program)).count("\ufffc")
        self.edit_menu("Up", "Return")
        program.wait_for_title("Insert Object")
        program.wait_for_focus()
        cases.SESSION.keys("alt+f", "Tab")
        cases.SESSION.type(path)
        cases.SESSION.keys("Return")
        program.wait_until(lambda: "".join(self.texts_of(program)).count("\ufffc") > before, "the object")
        program.wait_for_focus()

    def copies(self):
        root = self.home.at("state", "quillmark", "objects")
        return sorted(name for _, _, names in os.walk(root) for name in names)

    def saved_with(self, program, name, part):
        """Saves until the file holds that."""
        def holds():
            cases.SESSION.keys("ctrl+s")
            return part in self.home.get(name)
        program.wait_until(holds, f"{name} with {part}")


class Dates(InsertTest):
    def test_a_medium_date_by_the_keyboard(self):
        self.home.put("a.txt", b"")
        program = self.open("a.txt")
        days = [time.strftime("%d-%b-%y")]
        self.edit_menu("Up", "Up", "Right", "Down", "Down", "Return")
        program.wait_until(lambda: self.texts_of(program) != [""], "a date")
        days.append(time.strftime("%d-%b-%y"))
        self.assertIn(self.texts_of(program)[0], days)
        cases.SESSION.keys("ctrl+z", "alt+F4")
        self.expect_clean_end(program)


class Objects(InsertTest):
    def test_a_file_is_inserted_kept_opened_and_taken_back(self):
        self.install('printf "%s" "written by the application" > "$1"\nln "$1" "$HOME/copy"\n')
        self.home.put("a.rtf", b"")
        note = self.home.put("note.txt", b"as it was")
        program = self.open("a.rtf")
        self.insert_file(program, note)
        self.saved_with(program, "a.rtf", b"as it was".hex().encode())
        self.assertFalse(os.path.exists(self.home.at("copy")), "opened by nobody's act")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

        program = self.open("a.rtf")
        self.wait_for_texts(program, "\ufffc")
        cases.SESSION.keys("ctrl+Return")
        program.wait_until(lambda: os.path.exists(self.home.at("copy")), "the application")
        # The title says nothing of it, so the file does.
        self.saved_with(program, "a.rtf", b"written by the application".hex().encode())
        self.assertEqual(self.home.get("note.txt"), b"as it was")
        copies = self.home.at("state", "quillmark", "objects")
        self.assertEqual([os.stat(os.path.join(copies, name)).st_mode & 0o777 for name in os.listdir(copies)], [0o700])
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(os.listdir(copies), [])

    def test_programs_and_links_are_not_opened(self):
        self.install('touch "$HOME/opened"\n')
        self.home.put("a.rtf", b"")
        for name in ("run.desktop", "a.url"):
            link = self.home.put(name, APPLICATION.encode() % self.home.at("scribe").encode())
            os.chmod(link, 0o755)
            program = self.open("a.rtf")
            self.insert_file(program, link)
            cases.SESSION.keys("ctrl+Return")
            self.answer(program, f"File: {name}\nis a program or a link and is not opened.", "Return")
            program.wait_for_no_dialog()
            cases.SESSION.keys("ctrl+z", "alt+F4")
            self.expect_clean_end(program)
            self.assertFalse(os.path.exists(self.home.at("opened")))


    def test_something_new_is_opened_and_not_what_stands_behind_it(self):
        self.install('basename "$1" >> "$HOME/opened"\n')
        self.home.put("a.rtf", b"")
        program = self.open("a.rtf")
        self.insert_file(program, self.home.put("existing.txt", b"X"))
        cases.SESSION.keys("ctrl+Home")
        self.edit_menu("Up", "Return")
        program.wait_for_title("Insert Object")
        program.wait_for_focus()
        cases.SESSION.keys("Return")
        self.wait_for_texts(program, "\ufffc\ufffc")
        opened = self.home.at("opened")
        program.wait_until(lambda: os.path.exists(opened) and os.path.getsize(opened), "the application")
        cases.SESSION.keys("ctrl+z", "ctrl+z", "alt+F4")
        self.expect_clean_end(program)
        with open(opened, encoding="utf-8") as file:
            names = file.read().splitlines()
        self.assertEqual(len(names), 1, names)
        self.assertNotEqual(names[0], "existing.txt")

    def test_what_an_application_still_has_open_is_told_of_and_kept(self):
        self.install('echo report > "$(dirname "$1")/report.pdf"\ntouch "$HOME/open"\n'
                     'while [ ! -e "$HOME/go" ]; do sleep 0.1; done\nprintf "late" > "$1"\ntouch "$HOME/done"\n')
        self.home.put("a.rtf", b"")
        program = self.open("a.rtf")
        self.insert_file(program, self.home.put("note.txt", b"as it was"))
        self.saved_with(program, "a.rtf", b"as it was".hex().encode())
        cases.SESSION.keys("ctrl+Return")
        program.wait_until(lambda: os.path.exists(self.home.at("open")), "the application")
        cases.SESSION.keys("alt+F4")
        self.answer(program, "These files out of documents may still be open in other programs.", "Return")
        self.assertEqual(program.wait_for_end(), 0)
        with open(self.home.at("go"), "w", encoding="utf-8"):
            pass
        harness.wait_until(lambda: os.path.exists(self.home.at("done")), "the application's end")
        program = self.start("a.rtf")
        self.answer(program, "What was changed in them since is not in the documents.", "Return")
        program.wait_for_no_dialog()
        program.wait_for_focus()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)
        self.assertEqual(self.copies(), ["note.txt", "report.pdf"])


class Drags(InsertTest):
    def pick_up_text(self, program, name):
        """All of the document's text, with Control."""
        cases.SESSION.keys("ctrl+a")
        place = program.wait_until(lambda: atspi.selected_rectangle(program.pid, name), "a selection")
        x, y = place.x + place.width // 2, place.y + place.height // 2
        self.mouse("keydown", "ctrl", "mousemove", str(x), str(y), "mousedown", "1")
        for step in range(1, 6):
            self.mouse("mousemove", str(x + 4 * step), str(y + 2 * step))

    def test_between_two_windows_and_within_one(self):
        self.home.put("a.txt", b"")
        self.home.put("b.rtf", rb"{\rtf1\ansi {\b dragged}}")
        program = self.open("a.txt", "b.rtf")
        self.choose(program, "alt+w", "Tile vertically")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+a")
        found = program.wait_until(lambda: atspi.selected_rectangle(program.pid, "b.rtf"), "a selection")
        own = (found.x + found.width + 60, found.y + 40)
        self.pick_up_text(program, "b.rtf")
        self.move(own)
        self.mouse("mouseup", "1", "keyup", "ctrl")
        self.pick_up_text(program, "b.rtf")
        other = self.place_of(program, "text", os.path.join(self.home.work, "a.txt"))
        self.move(other)
        self.tremble(other)
        self.mouse("mouseup", "1", "keyup", "ctrl")
        self.wait_for_texts(program, "dragged", "dragged")
        program.signal(15)
        self.expect_clean_end(program, {"a.txt": b"dragged"})

    def test_to_another_program_as_it_asks(self):
        self.home.put("b.rtf", rb"{\rtf1\ansi {\b dragged} \u1488?}")
        program = self.open("b.rtf")
        for kind, parts in (("text", ["dragged \u05d0".encode()]), ("text/rtf", [rb"\b\f0", b" dragged", rb"\u1488?"]),
                            ("text/uri-list", [os.path.join(self.home.work, "b.rtf").encode()])):
            peer = self.peer(arguments=("--take", kind))
            self.pick_up_text(program, "b.rtf")
            self.move(Peer.AT)
            peer.wait_for("over", lambda: self.tremble(Peer.AT))
            self.mouse("mouseup", "1", "keyup", "ctrl")
            program.wait_until(lambda: any(line.startswith("got ") for line in peer.said()), f"the text as {kind}")
            got = next(line for line in peer.said() if line.startswith("got "))
            for part in parts:
                self.assertIn(repr(part)[2:-1], got)
            peer.kill()
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

    def test_from_another_program_and_when_it_goes(self):
        self.home.put("a.txt", b"")
        program = self.open("a.txt")
        peer = self.peer(arguments=("--text", "from afar"))
        self.pick_up(peer)
        self.drop(peer, self.place_of(program, "text", os.path.join(self.home.work, "a.txt")))
        self.wait_for_texts(program, "from afar")
        peer.kill()
        peer = self.peer(arguments=("--text", "never comes"))
        self.pick_up(peer)
        place = self.place_of(program, "text", os.path.join(self.home.work, "a.txt"))
        self.move(place)
        peer.wait_for("offered copy", lambda: self.tremble(place))
        peer.kill()
        self.mouse("mouseup", "1")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+z")
        self.wait_for_texts(program, "")
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)


del DragTest

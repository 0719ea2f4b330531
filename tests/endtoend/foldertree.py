"""The folder tree by the keyboard alone: synchronised, opened, checked, and its files opened, named, copied, deleted."""

import os

import atspi
import cases
from projects import ProjectTest, text_of

TREE = "Folder tree"
NAMES = ["a & <b>.txt", "\u05e2\u05d1\u05e8\u05d9\u05ea.txt", "bad\udcff\nname.txt"]


class TreeTest(ProjectTest):
    def selected_node(self, program):
        return atspi.selected_node(program.pid, TREE)

    def wait_for_selected(self, program, name):
        program.wait_until(lambda: self.selected_node(program) == text_of(name), f"{name!r} selected")

    def wait_for_node(self, program, name):
        program.wait_until(lambda: atspi.has_node(program.pid, TREE, text_of(name)), f"a node {name!r}")

    def wait_for_no_node(self, program, name):
        program.wait_until(lambda: not atspi.has_node(program.pid, TREE, text_of(name)), f"no node {name!r}")

    def end(self, program):
        """The toolkit complains when a node goes just when it is asked for it."""
        said = program.output
        program.output = lambda: "".join(line for line in said().splitlines(keepends=True)
                                         if not line.startswith("QAccessibleTree::indexFromLogical: invalid index"))
        super().end(program)

    def wait_for_edit(self, program):
        program.wait_until(lambda: not atspi.tree_has_focus(program.pid, TREE), "a name to be changed")

    def start_synchronised(self):
        """The tree has the focus, with the work folder selected and open."""
        program = self.start()
        program.wait_until(lambda: len(program.documents()) == 2, "the first documents")
        program.wait_for_focus()
        self.choose(program, "alt+w", "Close all")
        program.wait_until(lambda: not program.documents(), "no documents")
        self.choose(program, "alt+t", "Synchronize w/current directory")
        self.wait_for_selected(program, os.path.basename(self.home.work))
        return program

    def go_to(self, program, name):
        """By the arrow keys."""
        steps = []
        program.wait_until(lambda: steps.append(atspi.steps_to(program.pid, TREE, text_of(name))) or steps[-1] is not None,
                           f"the way to {name!r}")
        cases.SESSION.keys(*["Down" if steps[-1] > 0 else "Up"] * abs(steps[-1]))
        self.wait_for_selected(program, name)

    def wait_for_check(self, program, name, checked=True):
        program.wait_until(lambda: atspi.is_checked(program.pid, TREE, text_of(name)) == checked,
                           f"{name!r} checked: {checked}")


class Keyboard(TreeTest):
    def test_open_check_and_copy(self):
        session = cases.SESSION
        os.mkdir(os.path.join(self.work, b"folder"))
        for name in [*NAMES, "folder/inside.txt"]:
            self.put(name, b"text of " + os.fsencode(name))
        program = self.start_synchronised()
        for name in [*NAMES, "folder"]:
            self.wait_for_node(program, name)
        self.go_to(program, "folder")
        session.keys("Right")
        self.wait_for_node(program, "inside.txt")
        session.keys("Right", "space")
        self.wait_for_check(program, "inside.txt")
        self.choose(program, "alt+t", "Copy selected pathname(s) to clipboard")
        inside = os.path.join(self.home.work, "folder", "inside.txt")
        program.wait_until(lambda: session.tool("xclip", "-o", "-selection", "clipboard") == inside, "the path")
        session.keys("Return")
        self.wait_for_texts(program, "text of folder/inside.txt")
        session.keys("F6", "F6")
        self.choose(program, "alt+t", "Clear Selections")
        self.wait_for_check(program, "inside.txt", False)
        session.keys("Left", "Left")
        self.wait_for_no_node(program, "inside.txt")
        self.go_to(program, NAMES[2])
        session.keys("Return")
        program.wait_until(lambda: len(program.documents()) == 2, "a second document")
        self.end(program)

    def test_folders_and_the_project(self):
        session = cases.SESSION
        os.mkdir(os.path.join(self.work, b"folder"))
        self.put("folder/inside.txt")
        program = self.start_synchronised()
        self.go_to(program, "folder")
        lines = len(self.lines(program))
        self.choose(program, "alt+t", "Add selected item(s) to project list")
        program.wait_until(lambda: len(self.lines(program)) == lines + 1, "a line for the folder")
        self.wait_for_check(program, "folder")
        self.choose(program, "alt+t", "Change to selected directory")
        self.wait_for_node(program, "inside.txt")
        self.choose(program, "alt+t", "Collapse All")
        self.wait_for_no_node(program, "inside.txt")
        self.wait_for_selected(program, "/")
        # The current directory is still the folder.
        self.choose(program, "alt+t", "Synchronize w/current directory")
        self.wait_for_selected(program, "folder")
        session.keys("Down")
        self.wait_for_selected(program, "inside.txt")
        session.keys("Menu", "Down", "Return")  # "Open" is the first row of the pop-up menu
        program.wait_until(lambda: len(program.documents()) == 1, "the file as a document")
        program.wait_for_focus()
        self.choose(program, "alt+f", "Save project file")
        self.end(program)

    def test_create_rename_and_delete(self):
        session = cases.SESSION
        self.put("old.txt", b"kept")
        self.put("gone.txt")
        program = self.start_synchronised()
        self.choose(program, "alt+t", "Create a new folder")
        self.wait_for_node(program, "New Folder")
        self.wait_for_edit(program)
        session.keys("ctrl+a")
        session.type("Made here")
        session.keys("Return")
        self.wait_for_selected(program, "Made here")
        self.assertTrue(os.path.isdir(os.path.join(self.work, b"Made here")))
        self.go_to(program, "old.txt")
        session.keys("F2")
        self.wait_for_edit(program)
        session.keys("ctrl+a")
        session.type("new.txt")
        session.keys("Return")
        self.wait_for_selected(program, "new.txt")
        self.assertEqual(self.project("new.txt"), b"kept")
        session.keys("Delete")
        self.answer(program, 'Do you want to move "new.txt" to the trash?', "alt+y")
        self.wait_for_no_node(program, "new.txt")
        self.assertTrue(os.path.exists(self.home.at("data", "Trash", "files", "new.txt")))
        self.go_to(program, "gone.txt")
        session.keys("shift+Delete")
        self.answer(program, 'Do you want to delete "gone.txt" for good?', "alt+n")
        program.wait_for_no_dialog()
        self.assertTrue(os.path.exists(os.path.join(self.work, b"gone.txt")))
        session.keys("shift+Delete")
        self.answer(program, 'Do you want to delete "gone.txt" for good?', "alt+y")
        self.wait_for_no_node(program, "gone.txt")
        self.assertCountEqual(os.listdir(self.work), [b"Made here"])
        self.put("later.txt")
        session.keys("F5")
        self.wait_for_node(program, "later.txt")
        self.end(program)

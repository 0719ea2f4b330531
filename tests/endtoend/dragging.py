"""Files dragged from another program and to it, by a pointer on a real display."""

import os
import subprocess
import sys
import urllib.parse

import atspi
import cases
import harness
from foldertree import TREE, TreeTest
from projects import LIST, text_of

PEER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "drag_peer.py")
with open(PEER, encoding="utf-8") as file:
    SOURCE = file.read()  # an ordinary user may not be able to


class Peer:
    """The other program. What it says comes line by line."""

    AT = (60, 45)

    def __init__(self, home, *paths, moves=False, arguments=()):
        self.log = home.at("peer")
        uris = ["--move"] * moves + ["file://" + urllib.parse.quote(path) for path in paths]
        uris = [*arguments] or uris
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen([sys.executable, "-c", SOURCE, *uris], stdin=subprocess.DEVNULL, stdout=log,
                                            stderr=subprocess.STDOUT, cwd=home.folder,
                                            env={**cases.SESSION.environment, **home.environment(), "NO_AT_BRIDGE": "1"})
        self.wait_for("ready")

    def said(self):
        with open(self.log, encoding="utf-8") as log:
            return log.read().splitlines()

    def wait_for(self, line, meanwhile=lambda: None):
        def heard():
            meanwhile()
            return line in self.said()
        harness.wait_until(heard, f"the other program says {line!r}", report=lambda: "\n".join(self.said()))

    def kill(self):
        self.process.kill()
        self.process.wait()


class DragTest(TreeTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.mouse, "mouseup", "1", "keyup", "ctrl", "keyup", "shift", "mousemove", "1279", "959")

    def mouse(self, *arguments):
        cases.SESSION.tool("xdotool", *arguments, check=True)

    def move(self, place):
        """On the way there too, as a hand does."""
        x, y = place
        for dx, dy in ((-9, -6), (-4, -3), (0, 0)):
            self.mouse("mousemove", str(x + dx), str(y + dy))

    def tremble(self, place):
        """The source asks where the pointer is only while it moves."""
        for x in (place[0] + 2, place[0]):
            self.mouse("mousemove", str(x), str(place[1]))

    def peer(self, *paths, **options):
        peer = Peer(self.home, *paths, **options)
        self.addCleanup(peer.kill)
        return peer

    def pick_up(self, peer):
        self.mouse("mousemove", *map(str, Peer.AT), "mousedown", "1")
        self.move((Peer.AT[0] + 40, Peer.AT[1] + 20))
        peer.wait_for("begun")

    def drop(self, peer, place, offered="copy"):
        self.move(place)
        peer.wait_for(f"offered {offered}", lambda: self.tremble(place))
        self.mouse("mouseup", "1")
        peer.wait_for(f"ended {offered}")

    def place_of(self, program, role, name=None, at=(0.5, 0.5)):
        found = program.wait_until(lambda: atspi.extents(program.pid, role, name), f"a {role} {name}")
        return int(found.x + at[0] * found.width), int(found.y + at[1] * found.height)

    def start_with_project(self, *entries):
        self.put_project("p.prj", entries)
        program = self.start()
        program.wait_until(lambda: len(program.documents()) == 2, "the first documents")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+o")
        self.pick(program, "Select a project file", "p.prj")
        self.wait_for_lines(program, *[os.path.basename(entry) for entry in entries])
        program.wait_for_focus()
        self.choose(program, "alt+w", "Close all")
        program.wait_until(lambda: not program.documents(), "no documents")
        return program


class In(DragTest):
    def test_onto_the_list(self):
        program = self.start_with_project()
        paths = [self.put(name) for name in (b"a & <b>.txt", b"caf\xe9.txt", b"line\nbreak.txt", b"vanished.txt")]
        folder = os.path.join(self.work, b"a folder")
        os.mkdir(folder)
        peer = self.peer(*paths, folder, paths[0])
        self.pick_up(peer)
        os.remove(paths[-1])
        self.drop(peer, self.place_of(program, "list", LIST))
        entries = [*paths, folder + b"/"]
        self.wait_for_lines(program, *[os.path.basename(path) for path in paths], entries[-1])
        program.wait_for_focus()
        self.choose(program, "alt+f", "Save project file")
        self.wait_for_project(program, b"p.prj", entries)
        self.end(program)
        self.assertCountEqual(os.listdir(self.work), [b"p.prj", b"a folder", *map(os.path.basename, paths[:-1])])

    def test_onto_the_empty_area(self):
        program = self.start_with_project()
        paths = [self.put(name, b"bytes of a file") for name in (b"caf\xe9 & <b>.txt", b"vanished.txt")]
        folder = os.path.join(self.work, b"a folder")
        os.mkdir(folder)
        peer = self.peer(folder, *paths)
        self.pick_up(peer)
        os.remove(paths[-1])
        # The other program does not wait until the question is answered.
        self.drop(peer, self.place_of(program, "layered pane", at=(0.9, 0.9)))
        self.answer(program, f"Item: {text_of(folder)}\n\nCannot open a directory as a document.", "Return")
        program.wait_for_document("vanished.txt")
        self.wait_for_texts(program, "bytes of a file", "")
        self.end(program)
        self.assertCountEqual(os.listdir(self.work), [b"p.prj", b"a folder", os.path.basename(paths[0])])

    def test_onto_a_document(self):
        program = self.start_with_project()
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+n")
        program.wait_for_document("Untitled:1")
        cases.SESSION.type("as it was")
        self.wait_for_texts(program, "as it was")
        folder = os.path.join(self.work, b"a folder")
        os.mkdir(folder)
        vanished = self.put(b"vanished.txt")
        peer = self.peer(folder, self.put("a.txt", b"embedded, not opened"), vanished)
        self.pick_up(peer)
        os.remove(vanished)
        self.drop(peer, self.place_of(program, "text"))
        self.answer(program, f"Error: {text_of(folder)}\nIs a directory\n\n"
                    f"Error: {text_of(vanished)}\nNo such file or directory", "Return")
        self.wait_for_texts(program, "as it was\ufffc")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+z")
        self.wait_for_texts(program, "as it was")
        program.signal(15)
        self.expect_clean_end(program, {"Untitled:1": b"as it was"})

    def test_from_a_program_that_dies(self):
        program = self.start_with_project()
        peer = self.peer(self.put("a.txt"))
        self.pick_up(peer)
        place = self.place_of(program, "list", LIST)
        self.move(place)
        peer.wait_for("offered copy", lambda: self.tremble(place))
        peer.kill()
        self.mouse("mouseup", "1")
        program.wait_for_focus()
        cases.SESSION.keys("ctrl+n")
        program.wait_for_document("Untitled:1")
        self.assertEqual(len(self.lines(program)), 1)
        cases.SESSION.keys("alt+F4")
        self.answer(program, "[Untitled:1] has changed.", "alt+n")
        self.expect_clean_end(program)


class Out(DragTest):
    def test_selected_entries(self):
        entries = [self.put(name) for name in (b"caf\xe9 & <b>.txt", b"line\nbreak.txt")]
        entries += [os.path.join(self.work, b"missing.pdf.lnk")]
        program = self.start_with_project(b"relative.txt", *entries)
        self.choose(program, "alt+l", "Select all")
        program.wait_until(lambda: len(self.selected(program)) == 4, "all selected")
        peer = self.peer()
        x, y = self.place_of(program, "list item", "missing.pdf.lnk")
        self.mouse("keydown", "ctrl", "mousemove", str(x), str(y), "mousedown", "1")
        for step in range(1, 6):
            self.mouse("mousemove", str(x + 5 * step), str(y + 3 * step))
        self.move(Peer.AT)
        peer.wait_for("over", lambda: self.tremble(Peer.AT))
        self.mouse("mouseup", "1", "keyup", "ctrl")
        uris = ["file://" + urllib.parse.quote(path) for path in [os.path.join(self.work, b"relative.txt"), *entries]]
        program.wait_until(lambda: any(line.startswith("got ") for line in peer.said()), "the files arrive")
        got = next(line for line in peer.said() if line.startswith("got ")).split()[1:]
        self.assertEqual([urllib.parse.unquote_to_bytes(uri) for uri in got],
                         [urllib.parse.unquote_to_bytes(uri) for uri in uris])
        self.assertEqual(len(self.lines(program)), 5)
        self.end(program)


class Tree(DragTest):
    ODD = [b"caf\xe9 & <b>.txt", b"line\nbreak.txt"]

    def setUp(self):
        super().setUp()
        for name in (b"source", b"target"):
            os.mkdir(os.path.join(self.work, name))

    def place_of_node(self, program, name):
        found = program.wait_until(lambda: atspi.node_extents(program.pid, TREE, text_of(name)), f"{name!r}")
        return int(found.x + 50), int(found.y + found.height / 2)

    def wait_for_files(self, program, folder, names):
        path = os.path.join(self.work, folder)
        program.wait_until(lambda: sorted(os.listdir(path)) == sorted(names), f"{names} in {folder}")

    def test_copied_and_moved_into_it(self):
        paths = [self.put(os.path.join(b"source", name), b"bytes of " + name) for name in self.ODD]
        program = self.start_synchronised()
        self.go_to(program, "target")
        peer = self.peer(*paths, moves=True)
        self.pick_up(peer)
        self.drop(peer, self.place_of_node(program, "target"))
        self.wait_for_files(program, b"target", self.ODD)
        self.wait_for_node(program, self.ODD[0])
        self.assertEqual(len(os.listdir(os.path.join(self.work, b"source"))), 2)
        peer.kill()
        # Moved: the other program is told "copied", so that it deletes nothing itself.
        later = self.put(b"source/later.txt", b"later")
        peer = self.peer(later, moves=True)
        self.pick_up(peer)
        self.mouse("keydown", "shift")
        self.drop(peer, self.place_of_node(program, "target"))
        self.mouse("keyup", "shift")
        self.wait_for_files(program, b"target", [*self.ODD, b"later.txt"])
        self.wait_for_files(program, b"source", self.ODD)
        self.wait_for_node(program, "later.txt")
        self.end(program)

    def drag_node(self, program, key, name, place):
        x, y = self.place_of_node(program, name)
        self.mouse("mousemove", str(x), str(y), "keydown", key, "mousedown", "1")
        for step in range(1, 6):
            self.mouse("mousemove", str(x + step), str(y + 4 * step))
        self.move(place)

    def test_dragged_out_and_within(self):
        for name in self.ODD:
            self.put(name)
        program = self.start_synchronised()
        for name in sorted(self.ODD):
            self.go_to(program, name)
            cases.SESSION.keys("space")
            self.wait_for_check(program, name)
        peer = self.peer()
        self.drag_node(program, "ctrl", self.ODD[0], Peer.AT)
        peer.wait_for("over", lambda: self.tremble(Peer.AT))
        self.mouse("mouseup", "1", "keyup", "ctrl")
        program.wait_until(lambda: any(line.startswith("got ") for line in peer.said()), "the files arrive")
        got = next(line for line in peer.said() if line.startswith("got ")).split()[1:]
        self.assertCountEqual([urllib.parse.unquote_to_bytes(uri) for uri in got],
                              [b"file://" + os.path.join(self.work, name) for name in self.ODD])
        peer.kill()
        self.go_to(program, "target")  # so that all of it is seen
        place = self.place_of_node(program, "target")
        self.drag_node(program, "shift", self.ODD[0], place)
        self.tremble(place)
        self.mouse("mouseup", "1", "keyup", "shift")
        self.wait_for_files(program, b"target", self.ODD)
        self.end(program)

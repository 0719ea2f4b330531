#!/usr/bin/python3
"""What a screen reader gets of an open document, over the real bus.

Usage: accessible_check.py [--quick] PROGRAM. With --quick there is no large document and no limit to the time of a call.
The display, the session bus and a window manager are those of the environment;
QT_LINUX_ACCESSIBILITY_ALWAYS_ON must be 1. Status 0 if everything held, else 1 with a line for each thing that did not.
"""

import os
import subprocess
import sys
import tempfile
import time
import traceback

import warnings

import gi

warnings.simplefilter("ignore", DeprecationWarning)
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 30 * (6 if os.environ.get("QUILLMARK_SANITIZED") == "1" else 1)
LONGEST_CALL = 1.0

RTF = (r"{\rtf1\ansi{\fonttbl{\f0 DejaVu Sans;}{\f1 DejaVu Serif;}}\f0\fs24 plain {\b bold} {\f1\fs40 large}\par "
       r"second\par}")
RED_DOT = ("89504e470d0a1a0a0000000d4948445200000001000000010802000000907753de0000000c49444154789c63f8cfc000"
           "0003010100c9fe92ef0000000049454e44ae426082")
OBJECTS = (r"{\rtf1 a {\pict{\*\picprop{\sp{\sn wzDescription}{\sv A red dot}}}\pngblip\picwgoal600\pichgoal450 " + RED_DOT +
           r"}b\par\trowd\cellx2000\cellx4000\pard\intbl one\cell two\cell\row\pard note{\footnote of the foot}\par}")
MIXED = "abc \u05d0\u05d1\u05d2 d\u0301ef\nsmile \U0001f600 \U0001f468\u200d\U0001f469\u200d\U0001f467 end\n\u05e9\u05dc\u05d5\u05dd\n"

# The toolkit answers the older questions only.
LINE = Atspi.TextBoundaryType.LINE_START
WORD = Atspi.TextBoundaryType.WORD_START

failures = []
slowest = (0.0, "")


def expect(what, found, wanted):
    if found != wanted:
        failures.append(f"{what}: {found!r}, not {wanted!r}")


def timed(what, call, *arguments):
    global slowest
    start = time.monotonic()
    result = call(*arguments)
    took = time.monotonic() - start
    slowest = max(slowest, (took, what))
    if took > LONGEST_CALL:
        failures.append(f"{what} took {took:.2f} s")
    return result


def let_events_come(seconds=0.0):
    end = time.monotonic() + seconds
    context = GLib.MainContext.default()
    while context.iteration(False) or time.monotonic() < end:
        pass


def wait_until(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        let_events_come()
        try:
            found = condition()
        except GLib.Error:
            found = None
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError(f"never: {what}")


def xdotool(*arguments):
    subprocess.run(["xdotool", *arguments], check=True)


def walk(node, depth=0):
    yield node
    if depth < 12:
        for i in range(node.get_child_count()):
            child = node.get_child_at_index(i)
            if child:
                yield from walk(child, depth + 1)


class Program:
    def __init__(self, binary, folder, name, content):
        self.path = os.path.join(folder, name)
        with open(self.path, "wb") as file:
            file.write(content)
        home = os.path.join(folder, "home")
        os.makedirs(home, exist_ok=True)
        environment = {**os.environ, "HOME": home, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "LANG": "C.UTF-8"}
        for variable in ("CONFIG", "DATA", "STATE", "CACHE"):
            environment[f"XDG_{variable}_HOME"] = os.path.join(home, variable.lower())
        self.process = subprocess.Popen([binary, self.path], env=environment, cwd=folder, stdin=subprocess.DEVNULL)
        self.editor = wait_until("an editor on the bus", self.find)
        self.text = self.editor.get_text_iface()
        self.edit = self.editor.get_editable_text_iface()

    def find(self):
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended: {self.process.returncode}")
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        for i in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(i)
            if not application or application.get_process_id() != self.process.pid:
                continue
            application.clear_cache()
            for node in walk(application):
                name = os.path.basename(self.path)
                if node.get_editable_text_iface() and name in (node.get_name() or ""):
                    return node
        return None

    def all(self):
        return self.text.get_text(0, -1)

    def wait_for_text(self, wanted):
        wait_until(f"the text {wanted!r}", lambda: self.all() == wanted)

    def focus(self):
        self.editor.get_component_iface().grab_focus()
        wait_until("the focus", lambda: self.editor.get_state_set().contains(Atspi.StateType.FOCUSED))

    def end(self):
        self.process.kill()
        self.process.wait()


class Listener:
    """The events of one editor, as (type, detail)."""

    def __init__(self, *kinds):
        self.heard = []
        self.listener = Atspi.EventListener.new(self.take)
        for kind in kinds:
            self.listener.register(kind)
        self.kinds = kinds

    def take(self, event):
        self.heard.append((event.type, event.detail1))

    def offsets(self, kind):
        let_events_come(0.3)
        return [detail for type_, detail in self.heard if type_.startswith(kind)]

    def end(self):
        for kind in self.kinds:
            self.listener.deregister(kind)


def check_description(program, name):
    editor = program.editor
    expect("role", editor.get_role_name(), "text")
    expect("the document's name is in the editor's", os.path.basename(name) in editor.get_name(), True)
    states = editor.get_state_set()
    for state in (Atspi.StateType.EDITABLE, Atspi.StateType.MULTI_LINE):
        expect(f"state {state.value_nick}", states.contains(state), True)


def check_formats(program):
    text = program.text
    expect("text", program.all(), "plain bold large\nsecond")
    expect("count", text.get_character_count(), 23)
    cases = [(0, {"family-name": "DejaVu Sans", "size": "12", "weight": None}, (0, 6)),
             (7, {"family-name": "DejaVu Sans", "size": "12", "weight": "bold"}, (6, 10)),
             (12, {"family-name": "DejaVu Serif", "size": "20", "weight": None}, (11, 16))]
    for offset, wanted, run in cases:
        attributes = text.get_attribute_run(offset, False)
        found = dict(attributes[0])
        for key, value in wanted.items():
            if value is None:
                expect(f"{key} at {offset}", found.get(key) in (None, "400", "normal"), True)
            else:
                expect(f"{key} at {offset}", found.get(key, "").strip('"'), value)
        expect(f"run at {offset}", (attributes[1], attributes[2]), run)


def check_extents(program, count):
    text = program.text
    frame = program.editor.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    for offset in range(count):
        box = text.get_character_extents(offset, Atspi.CoordType.SCREEN)
        inside = frame.x <= box.x <= frame.x + frame.width and frame.y <= box.y <= frame.y + frame.height
        expect(f"the extents of {offset} lie in the editor", inside, True)
        expect(f"the extents of {offset} have a height", 4 < box.height < 100, True)
        if box.width > 2:
            at = text.get_offset_at_point(box.x + 1, box.y + box.height // 2, Atspi.CoordType.SCREEN)
            expect(f"the offset at the point of {offset} is near", abs(at - offset) <= 4, True)


def check_selection(program):
    text = program.text
    text.add_selection(6, 10)
    expect("selections", text.get_n_selections(), 1)
    found = text.get_selection(0)
    expect("the selection", (found.start_offset, found.end_offset), (6, 10))
    text.set_selection(0, 0, 5)
    found = text.get_selection(0)
    expect("the changed selection", (found.start_offset, found.end_offset), (0, 5))
    text.remove_selection(0)
    expect("no selection", text.get_n_selections(), 0)
    text.set_caret_offset(3)
    expect("the caret", text.get_caret_offset(), 3)


def check_typing(program):
    listener = Listener("object:text-caret-moved", "object:text-changed:insert", "object:text-changed:delete")
    program.text.set_caret_offset(0)
    program.focus()
    let_events_come(0.3)
    listener.heard.clear()
    before = program.all()
    xdotool("type", "--delay", "30", "xyz")
    program.wait_for_text("xyz" + before)
    expect("caret events while typing", listener.offsets("object:text-caret-moved"), [1, 2, 3])
    expect("insertions while typing", listener.offsets("object:text-changed:insert"), [0, 1, 2])
    listener.heard.clear()
    xdotool("key", "BackSpace")
    program.wait_for_text("xy" + before)
    expect("caret events of Backspace", listener.offsets("object:text-caret-moved"), [2])
    expect("deletions of Backspace", listener.offsets("object:text-changed:delete"), [2])
    listener.heard.clear()
    xdotool("key", "End")
    end = program.text.get_text_at_offset(0, LINE).end_offset
    wait_until("the caret event of End", lambda: listener.offsets("object:text-caret-moved"))
    expect("the caret behind End", program.text.get_caret_offset() in (end, end - 1), True)
    xdotool("key", "Home", "Delete", "Delete")
    program.wait_for_text(before)
    listener.end()


def check_editing(program):
    before = program.all()
    edit = program.edit
    edit.insert_text(2, "INS", 3)
    expect("inserted", program.all(), before[:2] + "INS" + before[2:])
    edit.delete_text(2, 5)
    expect("deleted", program.all(), before)
    edit.copy_text(0, 3)
    edit.paste_text(3)
    program.wait_for_text(before[:3] + before[:3] + before[3:])
    edit.cut_text(0, 3)
    program.wait_for_text(before)
    edit.set_text_contents("\u05d0 new")
    program.wait_for_text("\u05d0 new")
    program.focus()
    xdotool("key", "ctrl+z")
    program.wait_for_text(before)


def in_units(text):
    return len(text.encode("utf-16-le")) // 2


def check_mixed(program):
    text = program.text
    expect("mixed text", program.all(), MIXED)
    expect("mixed count", text.get_character_count(), in_units(MIXED))
    listener = Listener("object:text-caret-moved")
    text.set_caret_offset(0)
    program.focus()
    let_events_come(0.3)
    listener.heard.clear()
    # Through the Hebrew word as it is seen, over the mark in one step.
    for _ in range(10):
        xdotool("key", "Right")
        let_events_come(0.1)
    expect("the caret's way", listener.offsets("object:text-caret-moved"), [1, 2, 3, 4, 6, 5, 7, 8, 10, 11])
    second = in_units(MIXED.split("\n", 1)[0]) + 1
    text.set_caret_offset(second + 6)
    let_events_come(0.3)
    listener.heard.clear()
    for _ in range(3):
        xdotool("key", "Right")
        let_events_come(0.1)
    expect("over emoji", listener.offsets("object:text-caret-moved"), [second + 8, second + 9, second + 17])
    line = text.get_text_at_offset(second, LINE)
    expect("a line", line.content, MIXED.split("\n")[1] + "\n")
    word = text.get_text_at_offset(5, WORD)
    expect("a word", word.content.strip(), "\u05d0\u05d1\u05d2")
    check_extents(program, 12)
    listener.end()


def check_large(program):
    text = program.text
    wait_until("the whole text", lambda: timed("count", text.get_character_count) > 90 * 1000 * 1000)
    count = text.get_character_count()
    for offset in (0, count // 2, count - 10):
        timed(f"set caret {offset}", text.set_caret_offset, offset)
        timed(f"line at {offset}", text.get_text_at_offset, offset, LINE)
        timed(f"word at {offset}", text.get_text_at_offset, offset, WORD)
        timed(f"attributes at {offset}", text.get_attribute_run, offset, False)
        timed(f"extents at {offset}", text.get_character_extents, offset, Atspi.CoordType.SCREEN)
        timed(f"insert at {offset}", program.edit.insert_text, offset, "X", 1)
        timed(f"delete at {offset}", program.edit.delete_text, offset, offset + 1)
    timed("select all", text.set_selection, 0, 0, count)
    timed("all text", text.get_text, 0, -1)
    timed("caret", text.get_caret_offset)


def check_objects(program):
    """A picture, a note and a table's cells, in the order of the text."""
    expect("text of cells and objects", program.all(), "a \ufffcb\none\ntwo\nnote\ufffc")
    editor = program.editor
    editor.clear_cache()
    objects = [child for child in (editor.get_child_at_index(i) for i in range(editor.get_child_count()))
               if child.get_role() in (Atspi.Role.IMAGE, Atspi.Role.COMMENT)]
    described = [(child.get_name(), child.get_description()) for child in objects]
    expect("objects", described, [("PNG picture: A red dot", "A red dot"), ("Note", "of the foot")])
    box = objects[0].get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    expect("the picture's size", (40 <= box.width <= 41, box.height > 29), (True, True))
    program.edit.delete_text(2, 3)
    editor.clear_cache()
    left = [editor.get_child_at_index(i).get_name() for i in range(editor.get_child_count())]
    expect("what is left", ("Note" in left, any("picture" in (name or "") for name in left)), (True, False))


DOCUMENTS = [
    ("formats.rtf", lambda: RTF.encode(),
     lambda p: [check_description(p, "formats.rtf"), check_formats(p), check_extents(p, 23), check_selection(p),
                check_typing(p), check_editing(p)]),
    ("objects.rtf", lambda: OBJECTS.encode(), check_objects),
    ("mixed.txt", lambda: MIXED.encode(), check_mixed),
    ("large.txt", lambda: b"".join(b"line %d of a large document, with some text in it\n" % i for i in range(1850000)),
     check_large),
]


def main():
    global LONGEST_CALL
    binary = os.path.abspath(sys.argv[-1])
    quick = "--quick" in sys.argv[1:-1]
    if quick:
        LONGEST_CALL = PATIENCE
    Atspi.init()
    Atspi.set_timeout(20000, 20000)
    with tempfile.TemporaryDirectory() as folder:
        for name, content, check in DOCUMENTS[:-1] if quick else DOCUMENTS:
            program = None
            try:
                program = Program(binary, folder, name, content())
                check(program)
            except (AssertionError, GLib.Error) as failure:
                failures.append(f"{name}: {failure}\n{traceback.format_exc()}")
            finally:
                if program:
                    program.end()
    for failure in failures:
        print(failure)
    print(f"slowest call: {slowest[0] * 1000:.0f} ms ({slowest[1]})")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Another program to drag files and text from and to: drag_peer.py [--move] [URI...], --text TEXT, --take TYPE

A small window at the upper left corner of the display. What is dragged out of it is a list of the given addresses, which
may be copied, and moved when it is told so. It prints a line for each thing that happens: "ready", "begun", "offered ACTION" (what the window under the
pointer would do), "taken", "ended ACTION"; and as a target "over" and "got ADDRESS...". With a text it is a source of
that text; with a type it is a target for it, and says "got SIZE DATA" with the beginning of what it got.
"""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

URIS = Gtk.TargetEntry.new("text/uri-list", 0, 0)


def say(*words):
    print(*words, flush=True)


def name_of(action):
    return {Gdk.DragAction.COPY: "copy", Gdk.DragAction.MOVE: "move", Gdk.DragAction.LINK: "link"}.get(action, "nothing")


class Peer(Gtk.Window):
    def __init__(self, uris, actions, text=None, take=None):
        super().__init__(title="Drag peer")
        self.set_decorated(False)
        self.set_accept_focus(False)
        self.set_default_size(120, 90)
        self.move(0, 0)
        self.over = False
        box = Gtk.EventBox()
        box.add(Gtk.Label(label="files"))
        self.add(box)
        self.text = text
        if uris or text:
            self.uris, self.offered, self.failed = uris, None, False
            box.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [] if text else [URIS], actions)
            if text:
                box.drag_source_add_text_targets()  # under all the names that text has
            box.connect("drag-begin", self.begin)
            box.connect("drag-data-get", self.give)
            box.connect("drag-failed", self.fail)
            box.connect("drag-end", self.end)
        else:
            taken = [] if take == "text" else [Gtk.TargetEntry.new(take, 0, 0) if take else URIS]
            box.drag_dest_set(Gtk.DestDefaults.ALL, taken, Gdk.DragAction.COPY)
            if take == "text":
                box.drag_dest_add_text_targets()
            box.connect("drag-motion", self.motion)
            box.connect("drag-leave", self.leave)
            box.connect("drag-data-received", self.receive)
        self.connect("map-event", lambda *_: say("ready"))
        self.show_all()

    def begin(self, _, context):
        say("begun")
        self.context = context
        GLib.timeout_add(20, self.look)

    def look(self):
        if self.context is None:
            return False
        offered = name_of(self.context.get_selected_action())
        if offered != self.offered:
            self.offered = offered
            say("offered", offered)
        return True

    def give(self, _, context, data, info, time):
        if self.text:
            data.set_text(self.text, -1)
        else:
            data.set_uris(self.uris)
        say("taken")

    def fail(self, *_):
        self.failed = True
        return True

    def end(self, _, context):
        self.context = None
        say("ended", "nothing" if self.failed else name_of(context.get_selected_action()))

    def motion(self, *_):
        if not self.over:
            self.over = True
            say("over")

    def leave(self, *_):
        self.over = False

    def receive(self, _, context, x, y, data, info, time):
        if data.get_target().name() == "text/uri-list":
            say("got", *data.get_uris())
        else:
            given = data.get_text().encode() if data.get_text() else data.get_data()
            say("got", len(given), repr(given[:2000]))


arguments = sys.argv[1:]
MOVES = arguments[:1] == ["--move"]
if arguments[:1] == ["--text"]:
    Peer([], Gdk.DragAction.COPY, text=arguments[1])
elif arguments[:1] == ["--take"]:
    Peer([], Gdk.DragAction.COPY, take=arguments[1])
else:
    Peer(arguments[MOVES:], Gdk.DragAction.COPY | Gdk.DragAction.MOVE if MOVES else Gdk.DragAction.COPY)
Gtk.main()

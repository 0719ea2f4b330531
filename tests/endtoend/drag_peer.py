#!/usr/bin/python3
"""Another program to drag files from and to: drag_peer.py [--move] [URI...]

A small window at the upper left corner of the display. What is dragged out of it is a list of the given addresses, which
may be copied, and moved when it is told so. It prints a line for each thing that happens: "ready", "begun", "offered ACTION" (what the window under the
pointer would do), "taken", "ended ACTION"; and as a target "over" and "got ADDRESS...".
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
    def __init__(self, uris, actions):
        super().__init__(title="Drag peer")
        self.set_decorated(False)
        self.set_accept_focus(False)
        self.set_default_size(120, 90)
        self.move(0, 0)
        self.over = False
        box = Gtk.EventBox()
        box.add(Gtk.Label(label="files"))
        self.add(box)
        if uris:
            self.uris, self.offered, self.failed = uris, None, False
            box.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [URIS], actions)
            box.connect("drag-begin", self.begin)
            box.connect("drag-data-get", self.give)
            box.connect("drag-failed", self.fail)
            box.connect("drag-end", self.end)
        else:
            box.drag_dest_set(Gtk.DestDefaults.ALL, [URIS], Gdk.DragAction.COPY)
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
        say("got", *data.get_uris())


arguments = sys.argv[1:]
MOVES = arguments[:1] == ["--move"]
Peer(arguments[MOVES:], Gdk.DragAction.COPY | Gdk.DragAction.MOVE if MOVES else Gdk.DragAction.COPY)
Gtk.main()

"""Auto-complete by the keyboard alone, and what a screen reader hears of it."""

import gi

import cases
from cases import EndToEndTest

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib


class Completing(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.heard = []
        listener = Atspi.EventListener.new(self.hear)
        listener.register("object:state-changed:focused")
        self.addCleanup(listener.deregister, "object:state-changed:focused")

    def hear(self, event):
        if event.detail1:
            self.heard.append(event.source.get_name())

    def wait_to_hear(self, program, name):
        def said():
            while GLib.MainContext.default().iteration(False):
                pass
            return self.heard and self.heard[-1] == name
        program.wait_until(said, f"the focus on {name!r}, after {self.heard}")

    def saved(self, program, text):
        self.wait_for_texts(program, text.decode())
        cases.SESSION.keys("ctrl+s")
        program.wait_until(lambda: self.home.get("a.txt") == text, f"the saved file {text!r}")

    def test_with_the_words_that_come_with_the_program(self):
        self.home.put("a.txt", b"one <tbo and ")
        program = self.open("a.txt")
        cases.SESSION.keys("ctrl+End", "less")
        self.wait_to_hear(program, "Auto-Complete")
        cases.SESSION.keys("t", "Down")
        self.wait_to_hear(program, "<table>")
        cases.SESSION.keys("Down")
        self.wait_to_hear(program, '<table class="">')
        cases.SESSION.keys("Return")
        self.saved(program, b'one <tbo and <table class="">')
        cases.SESSION.keys("ctrl+Home", *["Right"] * 8, "F4")
        self.wait_to_hear(program, "Auto-Complete")
        cases.SESSION.keys("d", "y", "greater")
        self.saved(program, b'one <tbody> and <table class="">')
        cases.SESSION.keys("F4", "Escape", "shift+F4", "less", "a")
        self.saved(program, b'one <tbody><a and <table class="">')
        cases.SESSION.keys("alt+F4")
        self.expect_clean_end(program)

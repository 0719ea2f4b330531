"""The manual by the keyboard alone, and the programs of the desktop that the Internet menu starts."""

import os
import stat

import cases
from cases import EndToEndTest


class Help(EndToEndTest):
    def wait_for_page(self, program, title):
        program.wait_until(lambda: ("label", title) in program.accessible_texts(), f"the page {title!r}")

    def open_manual(self, program):
        cases.SESSION.keys("F1")
        program.wait_until(lambda: "Quillmark manual" in program.titles(), "the help window")
        program.wait_for_focus()

    def test_contents_and_search_by_keyboard(self):
        program = self.start()
        program.wait_for_focus()
        self.open_manual(program)
        self.wait_for_page(program, "Quillmark")
        cases.SESSION.keys("alt+c", "Down")
        self.wait_for_page(program, "Getting started")
        cases.SESSION.keys("alt+Left")
        self.wait_for_page(program, "Quillmark")
        cases.SESSION.keys("alt+s")
        cases.SESSION.type("trash")
        cases.SESSION.keys("Return", "Return")
        self.wait_for_page(program, "Working with files in the tree")
        cases.SESSION.keys("Escape")
        program.wait_until(lambda: "Quillmark manual" not in program.titles(), "the help window to go")

    def test_beside_a_dialog(self):
        program = self.start()
        program.wait_for_focus()
        cases.SESSION.keys("alt+h", "a")
        program.wait_for_title("About Quillmark")
        program.wait_for_focus()
        self.open_manual(program)
        self.wait_for_page(program, "Dialogs")
        # The dialog waits for its answer, and the keys go to the manual.
        cases.SESSION.keys("alt+Home")
        self.wait_for_page(program, "Quillmark")
        cases.SESSION.keys("Escape")
        program.wait_until(lambda: "Quillmark manual" not in program.titles(), "the help window to go")
        program.wait_for_focus()
        cases.SESSION.keys("Escape")
        program.wait_until(lambda: "About Quillmark" not in program.titles(), "the box to go")

    def give_mail_program(self):
        program, ran = self.home.at("mail-program"), self.home.at("mailed")
        with open(program, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\necho "$1" > "{ran}.part"\nmv "{ran}.part" "{ran}"\n')
        os.chmod(program, stat.S_IRWXU)
        applications = self.home.at("data", "applications")
        os.makedirs(applications)
        with open(os.path.join(applications, "mail.desktop"), "w", encoding="utf-8") as file:
            file.write(f"[Desktop Entry]\nType=Application\nName=Mail\nExec={program} %u\n"
                       "MimeType=x-scheme-handler/mailto;\n")
        os.makedirs(self.home.at("config"), exist_ok=True)
        with open(self.home.at("config", "mimeapps.list"), "w", encoding="utf-8") as file:
            file.write("[Default Applications]\nx-scheme-handler/mailto=mail.desktop\n")
        return ran

    def test_mail_with_and_without_a_program_for_it(self):
        ran = self.give_mail_program()
        program = self.start()
        program.wait_for_focus()
        cases.SESSION.keys("alt+i", "e")
        program.wait_until(lambda: os.path.exists(ran), "the mail program")
        with open(ran, encoding="utf-8") as file:
            self.assertEqual(file.read(), "mailto:\n")
        cases.SESSION.keys("alt+i", "n")
        program.wait_for_dialog("Error: There was a problem starting news://")
        cases.SESSION.keys("Return")
        program.wait_for_no_dialog()

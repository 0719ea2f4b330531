#!/usr/bin/env python3
"""The layer check must find every kind of forbidden arrow, and nothing else."""

import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
sys.dont_write_bytecode = True
import check_layers  # noqa: E402

MODULES = {
    "QString": "QtCore", "QObject": "QtCore", "qglobal.h": "QtCore",
    "QPainter": "QtGui", "QTextLayout": "QtGui", "QImage": "QtGui",
    "QWidget": "QtWidgets", "QApplication": "QtWidgets", "QMenuBar": "QtWidgets", "QtWidgets": "QtWidgets",
}

# What the fixtures include must exist.
EXISTING = ["text/Units.h", "text/rtf/Rtf.h", "text/rtfsave/RtfSave.h", "text/layout/ViewLayout.h", "text/print/Printing.h", "files/Result.h", "ui/Forms.h",
            "ui/editor/RichTextBox.h", "ui/desktop/Shell.h", "services/Services.h", "documents/frmText.h",
            "project/Project.h", "commands/Menus.h", "shell/Main.h", "tests/support/Fake.h", "bench/Bench.h"]

# File, its text, and the line of the one problem that must be found.
FORBIDDEN = [
    ("text/A.cpp", '#include <QString>', 1),
    ("text/A.cpp", '#include <vector>\n\n#include "files/Result.h"', 3),
    ("text/A.cpp", '#include "text/rtf/Rtf.h"', 1),
    ("text/A.cpp", '#include "text/layout/ViewLayout.h"', 1),
    ("text/A.cpp", '#include <nlohmann/json.hpp>', 1),
    ("text/A.cpp", '#include <boost/regex.hpp>', 1),
    ("text/A.cpp", 'struct A {\n  QString name;\n};', 2),
    ("text/A.h", '#  include   <QtCore/QString>', 1),
    ("text/rtf/A.cpp", '#include <QString>', 1),
    ("text/rtf/A.cpp", '#include "files/Result.h"', 1),
    ("text/rtf/A.cpp", '#include "text/rtfsave/RtfSave.h"', 1),
    ("text/html/A.cpp", '#include "text/rtf/Rtf.h"', 1),
    ("files/A.cpp", '#include "text/Units.h"', 1),
    ("files/A.cpp", '#include <unicode/ucnv.h>', 1),
    ("files/A.cpp", '#include <QString>', 1),
    ("text/layout/A.cpp", '#include <QWidget>', 1),
    ("text/layout/A.cpp", '#include <QtWidgets>', 1),
    ("text/layout/A.cpp", '#include <QtWidgets/QWidget>', 1),
    ("text/layout/A.cpp", 'class QWidget;', 1),
    ("text/layout/A.cpp", '#include "files/Result.h"', 1),
    ("text/layout/A.cpp", '#include "text/rtf/Rtf.h"', 1),
    ("text/layout/A.cpp", '#include "text/print/Printing.h"', 1),
    ("text/outline/A.cpp", '#include "text/layout/ViewLayout.h"', 1),
    ("text/outline/A.cpp", '#include <QImage>', 1),
    ("text/print/A.cpp", '#include "text/rtfsave/RtfSave.h"', 1),
    ("ui/editor/A.cpp", '#include "services/Services.h"', 1),
    ("ui/editor/A.cpp", '#include <gio/gio.h>', 1),
    ("ui/frame/A.cpp", '#include <chm_lib.h>', 1),
    ("ui/A.cpp", '#include <private/qwidget_p.h>', 1),
    ("services/A.h", '#include <QPainter>', 1),
    ("services/A.h", '#include "documents/frmText.h"', 1),
    ("services/A.h", '#include "commands/Menus.h"', 1),
    ("documents/A.cpp", '#include <QWidget>', 1),
    ("documents/A.cpp", '#include <QImage>', 1),
    ("documents/A.cpp", 'void F() {\n  QImage image;\n}', 2),
    ("documents/A.cpp", '#include "project/Project.h"', 1),
    ("documents/A.cpp", '#include "commands/Menus.h"', 1),
    ("project/A.cpp", '#include "documents/frmText.h"', 1),
    ("commands/A.cpp", '#include "shell/Main.h"', 1),
    ("commands/A.cpp", '// a comment\n/* and\nanother */ class QMenuBar;', 3),
    ("commands/A.cpp", "auto c = '\"'; QMenuBar* bar; auto d = '\"';", 1),
    ("commands/A.cpp", "int n = 1'000'000; QMenuBar* bar; int m = 2'0;", 1),
    ("shell/A.cpp", '#include <QApplication>', 1),
    ("shell/A.cpp", '#include <QImage>', 1),
    ("shell/main.cpp", '#include <QWidget>', 1),
    ("shell/A.cpp", '#include "tests/support/Fake.h"', 1),
    ("ui/A.cpp", '#include "bench/Bench.h"', 1),
    ("ui/A.cpp", '#include "Forms.h"', 1),
    ("ui/editor/A.cpp", '#include "../Forms.h"', 1),
    ("ui/A.cpp", '#include "ui/Missing.h"', 1),
    ("ui/A.cpp", '#define HEADER <QString>\n#include HEADER', 2),
    ("ui/A.cpp", '/* */ #include "shell/Main.h"', 1),
    ("newroom/A.cpp", 'int a;', 1),
    ("A.cpp", 'int a;', 1),
]

ALLOWED = [
    ("text/A.cpp", '#include "text/Units.h"\n#include <unicode/ucnv.h>\n#include <sys/mman.h>\n#include <vector>'),
    ("text/A.cpp", '// #include <QString> and QString\n/* #include "shell/Main.h" */\nauto s = "QString";'),
    ("text/A.cpp", 'auto s = R"x(\n#include <QString>\n)x";'),
    ("text/A.cpp", 'int Queue, Q_OBJECT, QUOTES, myQString;'),
    ("text/rtf/A.cpp", '#include "text/Units.h"\n#include "text/rtf/Rtf.h"'),
    ("files/A.cpp", '#include "files/Result.h"\n#include <sys/acl.h>\n#include <filesystem>'),
    ("text/layout/A.cpp", '#include "text/Units.h"\n#include <QTextLayout>\n#include <QString>'),
    ("text/print/A.cpp", '#include "text/rtf/Rtf.h"\n#include "text/layout/ViewLayout.h"'),
    ("ui/editor/A.cpp", '#include "text/rtf/Rtf.h"\n#include "files/Result.h"\n#include "ui/Forms.h"\n#include <QWidget>'),
    ("ui/frame/A.cpp", '#include "ui/desktop/Shell.h"\n#include "A.moc"\n#include "moc_A.cpp"'),
    ("ui/desktop/A.cpp", '#include "ui/Forms.h"\n#include <gio/gio.h>\n#include <X11/XKBlib.h>\n#include <chm_lib.h>'),
    ("services/A.h", '#include "ui/editor/RichTextBox.h"\n#include "text/Units.h"\n#include <QObject>'),
    ("documents/A.cpp", '#include "documents/frmText.h"\n#include "services/Services.h"\n#include "ui/desktop/Shell.h"'),
    ("commands/A.cpp", '#include "documents/frmText.h"\n#include "project/Project.h"\n#include <QString>'),
    ("shell/A.cpp", '#include "commands/Menus.h"\n#include "shell/Main.h"\n#include <nlohmann/json.hpp>'),
    ("shell/main.cpp", '#include <QApplication>\nint main(int c, char** v) { QApplication a(c, v); }'),
    ("tests/text/A.cpp", '#include <QWidget>\n#include "shell/Main.h"'),
]


def problems_of(path, source):
    with tempfile.TemporaryDirectory() as root:
        for name, text in [(name, "") for name in EXISTING] + [(path, source)]:
            os.makedirs(os.path.join(root, os.path.dirname(name)), exist_ok=True)
            with open(os.path.join(root, name), "w", encoding="utf-8") as file:
                file.write(text)
        checker = check_layers.Checker(root, MODULES)
        checker.run()
        return checker.problems


class CheckLayersTest(unittest.TestCase):
    def test_forbidden(self):
        for path, source, line in FORBIDDEN:
            with self.subTest(path=path, source=source):
                problems = problems_of(path, source)
                self.assertTrue(problems, "not found")
                self.assertTrue(problems[0].startswith(f"{path}:{line}: "), problems)

    def test_allowed(self):
        for path, source in ALLOWED:
            with self.subTest(path=path, source=source):
                self.assertEqual(problems_of(path, source), [])

    def test_every_room_has_a_rule_that_names_known_rooms(self):
        for name, rules in check_layers.ROOMS.items():
            for folder in rules["folders"]:
                self.assertIn(folder, check_layers.ROOMS, name)


if __name__ == "__main__":
    unittest.main()

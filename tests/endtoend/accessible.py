"""What a screen reader gets, asked over the accessibility bus."""

import os
import subprocess
import sys

import cases
from cases import EndToEndTest

CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "accessible_check.py")
with open(CHECK, encoding="utf-8") as file:
    SOURCE = file.read()  # an ordinary user may not be able to


class Accessible(EndToEndTest):
    def test_documents(self):
        script = self.home.at("accessible_check.py")
        with open(script, "w", encoding="utf-8") as copy:
            copy.write(SOURCE)
        environment = {**cases.SESSION.environment, **self.home.environment(),
                       "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}
        check = subprocess.run([sys.executable, script, "--quick", cases.BINARY], env=environment, cwd=self.home.folder,
                               stdin=subprocess.DEVNULL, capture_output=True, text=True)
        print(check.stdout, end="")
        self.assertEqual(check.returncode, 0, check.stdout + check.stderr)

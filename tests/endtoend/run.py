#!/usr/bin/env python3
"""Runs the end-to-end cases of one module: run.py MODULE [CASE...]

Environment: QUILLMARK_BINARY_DIR (with the program in it), QUILLMARK_SANITIZED=1 for a sanitized one,
QUILLMARK_SEED to repeat a run. Status 77 means that there is no virtual display to run on.
"""

import faulthandler
import importlib
import os
import shutil
import signal
import sys
import tempfile
import time
import unittest

sys.dont_write_bytecode = True
import atspi
import cases
import harness

NO_DISPLAY = 77
NOBODY = 65534
LIMIT = 120 * harness.SLOW  # seconds for a module; ctest's own limit is above it


def prepare(binary_folder):
    """A scratch folder that an ordinary user may use, with the program in it."""
    scratch = tempfile.mkdtemp(prefix="quillmark-endtoend-")
    os.mkdir(os.path.join(scratch, "report"))
    shutil.copy2(os.path.join(binary_folder, "quillmark"), scratch)
    application = os.path.join(binary_folder, "application")
    if os.path.isdir(application):
        shutil.copytree(application, os.path.join(scratch, "application"))
        # A build keeps its settings beside itself; here they belong to each case's user.
        portable = os.path.join(scratch, "application", "portable")
        if os.path.exists(portable):
            os.remove(portable)
    if os.geteuid() == 0:
        os.makedirs("/tmp/.X11-unix", exist_ok=True)
        os.chmod("/tmp/.X11-unix", 0o1777)
        for folder, _, names in os.walk(scratch):
            for name in ["."] + names:
                os.chown(os.path.join(folder, name), NOBODY, NOBODY)
    return scratch


def become_ordinary():
    """Root may read and write anything, so nothing about permissions would be tested."""
    if os.geteuid() == 0:
        os.setgroups([])
        os.setgid(NOBODY)
        os.setuid(NOBODY)


def run_cases(module, names, scratch):
    """In a process of its own, which gives up root's rights."""
    tempfile.tempdir = scratch
    os.chdir(scratch)
    become_ordinary()
    session = harness.Session(os.path.join(scratch, "report"))
    try:
        atspi.connect(session.environment)
        session.has_accessibility = True
        cases.SESSION = session
        cases.BINARY = os.path.join(scratch, "quillmark")
        application = os.path.join(scratch, "application")
        cases.APPLICATION = application if os.path.isdir(application) else None
        loader = unittest.defaultTestLoader
        suite = loader.loadTestsFromNames(names, module) if names else loader.loadTestsFromModule(module)
        return 0 if unittest.TextTestRunner(verbosity=2, stream=sys.stdout).run(suite).wasSuccessful() else 1
    finally:
        session.close()


def end_group(child, number):
    try:
        os.killpg(child, number)
    except ProcessLookupError:
        pass


def wait_for(child):
    """The case's own watchdog tells more, but a bus that does not answer may stop that too."""
    end = time.monotonic() + LIMIT
    while time.monotonic() < end:
        done, status = os.waitpid(child, os.WNOHANG)
        if done:
            return status
        time.sleep(0.05)
    end_group(child, signal.SIGABRT)  # prints where it stands
    print(f"endtoend: still running after {LIMIT} seconds", flush=True)
    return os.waitpid(child, 0)[1]


def main():
    if not shutil.which("Xvfb"):
        print("endtoend: skipped, there is no Xvfb (tools/setup.sh test installs it)")
        return NO_DISPLAY
    binary_folder = os.environ["QUILLMARK_BINARY_DIR"]
    # Everything is loaded before the rights to read it may be gone.
    module = importlib.import_module(sys.argv[1])
    scratch = prepare(binary_folder)
    # ctest's own time limit must not leave a display behind.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    child = os.fork()
    if child == 0:
        signal.signal(signal.SIGTERM, signal.SIG_DFL)
        faulthandler.enable()
        os.setpgid(0, 0)
        status = 1
        try:
            status = run_cases(module, sys.argv[2:], scratch)
        finally:
            sys.stdout.flush()
            os._exit(status)
    try:
        status = wait_for(child)
    finally:
        end_group(child, signal.SIGTERM)
        time.sleep(0.05)
        end_group(child, signal.SIGKILL)
        report = os.path.join(scratch, "report")
        kept = os.path.join(binary_folder, "endtoend", sys.argv[1])
        shutil.rmtree(kept, ignore_errors=True)
        if os.listdir(report):
            shutil.copytree(report, kept)
            print(f"endtoend: pictures are in {kept}")
        shutil.rmtree(scratch, ignore_errors=True)
    return os.waitstatus_to_exitcode(status)


if __name__ == "__main__":
    sys.exit(main())

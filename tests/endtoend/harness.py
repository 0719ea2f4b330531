"""The real program on a virtual display: a session with a window manager and buses, and programs inside it.

Nothing here waits for a time alone: wait_until waits for a condition, and when that does not come it reports what is
open on the display, with a picture, and fails.
"""

import contextlib
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time

import atspi

SLOW = 6 if os.environ.get("QUILLMARK_SANITIZED") == "1" else 1
PATIENCE = 20 * SLOW  # seconds until a condition counts as never coming


class Hang(AssertionError):
    pass


def run(*command, check=True, **options):
    result = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=PATIENCE, **options)
    if check and result.returncode:
        raise AssertionError(f"{' '.join(command)}: status {result.returncode}\n{result.stderr}")
    return result.stdout


def wait_until(condition, what, patience=PATIENCE, every=0.03, report=None):
    """Returns what the condition gave when it was true for the first time."""
    end = time.monotonic() + patience
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > end:
            raise Hang(f"never happened: {what}\n{report() if report else ''}")
        time.sleep(every)


class Session:
    """One display, one window manager, one session bus; ended by close()."""

    def __init__(self, report_folder):
        self.report_folder = report_folder
        self.folder = tempfile.mkdtemp(prefix="session-")
        runtime = os.path.join(self.folder, "runtime")
        os.mkdir(runtime, 0o700)
        self.environment = {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "HOME": self.folder,
            "XDG_RUNTIME_DIR": runtime,
            "XDG_CURRENT_DESKTOP": "X-Generic",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            # libxkbcommon copies names of a known length that no NUL follows.
            "ASAN_OPTIONS": "strict_string_checks=0",
        }
        self.processes = []
        self.pictures = 0
        self.has_accessibility = False  # whether the questions of atspi.py go to this session's bus
        self._start_display()
        self._start_bus()
        self._start("openbox", "--sm-disable")
        wait_until(lambda: "_NET_SUPPORTING_WM_CHECK(WINDOW)" in self.tool("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                   "a window manager")

    def _start(self, *command, **options):
        process = subprocess.Popen(command, env=self.environment, stdin=options.pop("stdin", subprocess.DEVNULL),
                                   stdout=options.pop("stdout", subprocess.DEVNULL), stderr=subprocess.DEVNULL, **options)
        self.processes.append(process)
        return process

    def _start_display(self):
        ours, theirs = os.pipe()
        self.display = self._start("Xvfb", "-displayfd", str(theirs), "-screen", "0", "1280x960x24", "-nolisten", "tcp",
                                   "-noreset", "-r", pass_fds=[theirs])
        os.close(theirs)
        with os.fdopen(ours) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise AssertionError("Xvfb did not start")
        self.environment["DISPLAY"] = ":" + number

    def _start_bus(self):
        # It ends with its input, and takes the bus along.
        bus = self._start("dbus-run-session", "--", "sh", "-c", 'echo "$DBUS_SESSION_BUS_ADDRESS"; exec cat',
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().decode().strip()

    def tool(self, *command, check=False):
        return run(*command, check=check, env=self.environment)

    # --- The user's hands

    def release_keys(self):
        """A tool that was killed in the middle of a key leaves it pressed."""
        self.tool("xdotool", "keyup", "ctrl", "shift", "alt", "x", "y", "Return", "F4", "F6", check=True)

    def keys(self, *names):
        self.tool("xdotool", "key", "--delay", "15", *names, check=True)

    def type(self, text):
        self.tool("xdotool", "type", "--delay", "8", "--", text, check=True)

    # --- What is on the display

    def windows(self, pid=None):
        """(window, pid, title) of the windows that the window manager knows."""
        found = []
        for line in self.tool("wmctrl", "-lp").splitlines():
            window, _, owner, rest = line.split(None, 3)
            title = rest.split(None, 1)[1] if len(rest.split(None, 1)) > 1 else ""
            if pid is None or int(owner) == pid:
                found.append((window, int(owner), title))
        return found

    def picture(self, name):
        self.pictures += 1
        path = os.path.join(self.report_folder, f"{name}-{self.pictures}.png")
        self.tool("import", "-window", "root", path)
        return path

    def close(self):
        for process in reversed(self.processes):
            if process.stdin:
                process.stdin.close()
                try:
                    process.wait(2)
                except subprocess.TimeoutExpired:
                    pass
            if process.poll() is None:
                process.terminate()
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
            if process.stdout:
                process.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)


class Home:
    """The folders of one user, and a copy of the program in them. Without `panes` none of its windows but the main one
    opens by itself."""

    def __init__(self, binary, application=None, parent=None, panes=False):
        self.folder = tempfile.mkdtemp(prefix="home-", dir=parent)
        self.work = self.at("work")
        for name in ("work", "runtime", "program"):
            os.mkdir(self.at(name), 0o700)
        self.binary = self.at("program", "quillmark")
        try:
            os.link(binary, self.binary)
        except OSError:
            shutil.copy2(binary, self.binary)
        if application:
            shutil.copytree(application, self.at("program", "application"))
        if not panes:
            self.put_settings(QuoteFile="", NotesFile="", TextBlocks="")

    def at(self, *names):
        return os.path.join(self.folder, *names)

    def put_settings(self, **values):
        os.makedirs(self.at("config", "quillmark"), mode=0o700)
        with open(self.at("config", "quillmark", "settings.json"), "w", encoding="utf-8") as file:
            json.dump({"Quillmark": {"General": values}}, file)

    def put(self, name, content):
        path = os.path.join(self.work, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def get(self, name):
        with open(os.path.join(self.work, name), "rb") as file:
            return file.read()

    def environment(self):
        return {
            "HOME": self.folder,
            "XDG_CONFIG_HOME": self.at("config"),
            "XDG_DATA_HOME": self.at("data"),
            "XDG_STATE_HOME": self.at("state"),
            "XDG_CACHE_HOME": self.at("cache"),
            "XDG_RUNTIME_DIR": self.at("runtime"),
        }

    def files(self, *below):
        found = []
        for folder, folders, names in os.walk(self.at(*below)):
            folders.sort()
            found += sorted(os.path.relpath(os.path.join(folder, name), self.folder) for name in names)
        return found

    def recovery_entries(self):
        """The names of the texts in the recovery folder, each with its bytes."""
        found = {}
        folder = self.at("state", "quillmark", "recovery")
        for entry in sorted(os.listdir(folder)) if os.path.isdir(folder) else []:
            with open(os.path.join(folder, entry, "about"), "rb") as file:
                name = file.read().split(b"\n", 2)[2]
            with open(os.path.join(folder, entry, "text"), "rb") as file:
                found[os.path.basename(name).decode()] = file.read()
        return found

    def remove(self):
        shutil.rmtree(self.folder, ignore_errors=True)


class Program:
    """A running copy of the program."""

    def __init__(self, session, home, *arguments, wait=True, environment=None):
        self.session, self.home = session, home
        self.log = tempfile.TemporaryFile(dir=home.folder)
        self.accessible = environment is None and session.has_accessibility
        variables = {**session.environment, **home.environment(), **(environment or {})}
        self.process = subprocess.Popen([home.binary, *arguments], cwd=home.work, env=variables,
                                        stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log,
                                        start_new_session=True)
        self.pid = self.process.pid
        if wait:
            self.wait_for_window()

    # A reader may ask for a line of a list that has gone meanwhile; the toolkit says so, and all is well.
    LATE_QUESTION = re.compile(r"^QAccessibleTable::child: Invalid index at: .*\n", re.MULTILINE)

    def output(self):
        self.log.seek(0)
        return self.LATE_QUESTION.sub("", self.log.read().decode(errors="replace"))

    def report(self):
        """What is open and what it says; the program is killed, so that nothing waits for it any longer."""
        lines = [f"  {title!r} (process {pid})" for _, pid, title in self.session.windows()]
        said = [f"  {kind}: {text}" for kind, text in self.accessible_texts()]
        picture = self.session.picture("hang")
        state = self.process.poll()
        self.kill()
        return "\n".join([f"state: {'running' if state is None else f'ended with {state}'}", "windows:", *lines,
                          "texts:", *said, f"picture: {picture}", "output:", self.output()])

    def wait_until(self, condition, what):
        def check():
            return condition() or (self.process.poll() is not None and self._died(what))
        return wait_until(check, what, report=self.report)

    def _died(self, what):
        raise AssertionError(f"the program ended ({self.process.returncode}) before: {what}\n{self.output()}")

    @contextlib.contextmanager
    def stopped(self):
        """What the user does meanwhile comes to the program all at once, as on a machine under load."""
        os.kill(self.pid, signal.SIGSTOP)
        yield
        os.kill(self.pid, signal.SIGCONT)

    # --- Windows

    def titles(self):
        return [title for _, _, title in self.session.windows(self.pid)]

    def wait_for_window(self):
        self.wait_until(self.titles, "the main window")
        return self

    def active_window(self):
        for line in self.session.tool("xprop", "-root", "_NET_ACTIVE_WINDOW").splitlines():
            return int(line.rsplit(None, 1)[-1].rstrip(","), 16) if "0x" in line else 0
        return 0

    def wait_for_focus(self, window=-1):
        """Until the window that was opened last gets the keys, or the one of this number: 0 is the main window."""
        def focused():
            ours = [int(window, 16) for window, _, _ in self.session.windows(self.pid)]
            # The window manager's word comes before the program has heard of it.
            return ours and self.active_window() == ours[window] and (not self.accessible or atspi.is_active(self.pid))
        self.wait_until(focused, "the keyboard focus")

    def wait_for_title(self, part):
        self.wait_until(lambda: any(part in title for title in self.titles()), f"a window titled {part!r}")

    # --- What a screen reader is told

    def accessible_texts(self):
        try:
            return atspi.texts(self.pid)
        except Exception as error:  # the report of a hang must not fail itself
            return [("no texts", str(error))]

    def dialog(self):
        """The text of the open dialog, or nothing."""
        return atspi.dialog(self.pid)

    def documents(self):
        return atspi.documents(self.pid)

    def wait_for_document(self, name):
        self.wait_until(lambda: any(title == name or title.endswith("/" + name) for title in self.documents()),
                        f"a document {name!r}")

    def wait_for_dialog(self, part):
        found = self.wait_until(lambda: next((text for text in [self.dialog()] if text and part in text), None),
                                f"a message box that says {part!r}")
        self.wait_for_focus()
        return found

    def wait_for_no_dialog(self):
        self.wait_until(lambda: not self.dialog(), "the message box to go")
        self.wait_for_focus()

    # --- The end

    def close_by_window_manager(self):
        # The list is cut short when a window of another program goes while it is made.
        window = self.wait_until(lambda: self.session.windows(self.pid), "a window to close")[-1][0]
        self.session.tool("wmctrl", "-i", "-c", window, check=True)

    def wait_for_end(self):
        try:
            status = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            raise Hang("the program did not end\n" + self.report()) from None
        return status

    def signal(self, number):
        self.process.send_signal(number)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()

    def children(self):
        """Processes that were started by it and are still there, by their session."""
        found = []
        for name in os.listdir("/proc"):
            if not name.isdigit():
                continue
            try:
                with open(f"/proc/{name}/stat", "rb") as file:
                    fields = file.read().rpartition(b")")[2].split()
            except OSError:
                continue
            if fields[0] == b"Z" and fields[1] == b"1":
                continue  # has ended; the first process of a container may be slow to notice
            if int(fields[3]) == self.pid and int(name) != self.pid:
                found.append(int(name))
        return found

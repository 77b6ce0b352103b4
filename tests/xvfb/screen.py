"""A screen of a test's own: an X server without a monitor, a window manager, and the program under test on it."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import unittest

BUILD = pathlib.Path(os.environ["TAVORA_BUILD"])
SOURCE = pathlib.Path(__file__).resolve().parents[2]
PATIENCE = 20  # s
SLOWNESS = float(os.environ.get("TAVORA_SLOWNESS", 1))  # of a build that looks for faults as it runs


def wait_for(condition, what, seconds=PATIENCE):
    """The condition's first true value; the test fails with a sentence when there is none in time."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"in {seconds} s it did not happen that {what}")
        time.sleep(0.01)


class Screen:
    """Xvfb and openbox on a free display number."""

    def __init__(self, size="1280x800x24"):
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", size, "-nolisten", "tcp",
             "-noreset"],
            pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.display = ":" + number
        # Its property on the root window says that it is there long before it deals with every new window.
        with tempfile.TemporaryDirectory() as folder:
            ready = pathlib.Path(folder) / "ready"
            self.manager = subprocess.Popen(["openbox", "--sm-disable", "--startup", f"touch {ready}"],
                                            env={**os.environ, "DISPLAY": self.display},
                                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_for(ready.exists, "the window manager took over the screen")

    def close(self):
        for process in (self.manager, self.server):
            process.kill()
            process.wait()

    def run(self, *command):
        return subprocess.run(command, env={**os.environ, "DISPLAY": self.display}, capture_output=True,
                              text=True).stdout

    def window(self, title):
        """The number of the visible window whose title begins so; None if there is none."""
        found = self.run("xdotool", "search", "--onlyvisible", "--name", "^" + title).split()
        return found[-1] if found else None

    def wait_for_window(self, title):
        return wait_for(lambda: self.window(title), f"a window “{title}…” was shown")

    def place(self, window):
        """Left, top, width, height of what is inside the window's border."""
        text = self.run("xwininfo", "-id", window)
        fields = [r"Absolute upper-left X:\s+(-?\d+)", r"Absolute upper-left Y:\s+(-?\d+)", r"Width:\s+(\d+)",
                  r"Height:\s+(\d+)"]
        return tuple(int(re.search(field, text).group(1)) for field in fields)

    def picture(self, window):
        """The pixels of a window, or of all (“root”)."""
        which = ["-root"] if window == "root" else ["-id", window]
        return subprocess.run(["xwd", "-silent", *which], env={**os.environ, "DISPLAY": self.display},
                              capture_output=True).stdout


class Program:
    """One running `qubo` with settings of its own; its printed lines are collected as they come."""

    def __init__(self, screen, settings, *arguments, environment=None):
        self.started = time.monotonic()
        self.process = subprocess.Popen(
            [str(BUILD / "bin" / "qubo"), *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            text=True, errors="replace",
            env={**os.environ, **({"DISPLAY": screen.display} if screen else {}), "QUBO_AO": "null",
                 "QT_QPA_PLATFORM": "xcb", "XDG_CONFIG_HOME": str(settings), "XDG_RUNTIME_DIR": str(settings),
                 **(environment or {})})
        self.lines = []
        self.errors = []
        self.readers = [threading.Thread(target=self._read, args=pair) for pair in
                        ((self.process.stdout, self.lines), (self.process.stderr, self.errors))]
        for reader in self.readers:
            reader.start()

    @staticmethod
    def _read(pipe, lines):
        for line in pipe:
            lines.append(line.rstrip("\n"))

    def printed(self, text):
        return any(text in line for line in list(self.lines))

    def end(self, sent=signal.SIGTERM, seconds=PATIENCE):
        """Asks it to end; answers the exit code and how long it took."""
        begin = time.monotonic()
        if self.process.poll() is None:
            self.process.send_signal(sent)
        return self.wait(seconds), time.monotonic() - begin

    def wait(self, seconds=PATIENCE):
        try:
            code = self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise AssertionError(f"the program had not ended after {seconds} s\n" + "\n".join(self.errors))
        for reader in self.readers:
            reader.join()
        self.process.stdout.close()
        self.process.stderr.close()
        return code


class ScreenTest(unittest.TestCase):
    """Each test has a screen, a settings folder and a music folder with the demo songs."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tavora-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.settings = self.folder / "settings"
        self.settings.mkdir(mode=0o700)  # its ports are there too: what one program tells all others is for this test's only
        self.music = self.folder / "music"
        shutil.copytree(SOURCE / "demo", self.music)
        self.screen = Screen()
        self.addCleanup(self.screen.close)

    def start(self, *arguments, **options):
        program = Program(self.screen, self.settings, *arguments, **options)
        self.addCleanup(lambda: program.process.poll() is None and program.end(signal.SIGKILL))
        return program

    def songs(self):
        return sorted(self.music.glob("*.ogg"))

    def exit_state(self):
        return self.settings / "MERION" / "TavoraD" / "TavoraD_ExitStates.arc"

    def assert_ended_well(self, program, code, took, limit=1.0):
        self.assertEqual(code, 0, "\n".join(program.errors))
        shared = max(1, os.getloadavg()[0] / os.cpu_count())  # with so many others
        self.assertLess(took, limit * SLOWNESS * shared, "the end took too long")

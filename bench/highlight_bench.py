#!/usr/bin/env python3
"""How far the highlight is from the sound: for each line, the time at which the pixels changed less the time at which the
sound was at the line's tag. Under Xvfb; the sound's time is the player library's own, asked for past the program.

usage: TAVORA_BUILD=build/bench python3 bench/highlight_bench.py [LINES [OPTION OF THE PROGRAM]...]
"""

import ctypes
import json
import os
import pathlib
import socket
import statistics
import sys
import tempfile
import threading
import time
import wave

SOURCE = pathlib.Path(__file__).resolve().parent.parent
os.environ.setdefault("TAVORA_BUILD", str(SOURCE / "build" / "bench"))
sys.path.insert(0, str(SOURCE / "tests" / "xvfb"))
from screen import Program, Screen, wait_for  # noqa: E402

LINES = 40
LINE_TIME = 0.73  # s: no multiple of the display's interval, so that every phase of it comes
FIRST_LINE = 4.0  # s: the sound output has settled by then
LOOK_TIME = 0.001  # s between two pictures


class SoundClock:
    """Where the sound of a player library is, on time.monotonic(), by the library's own socket."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.path = str(path)
        self.readings = []  # (when, start): the time at which the song was at 0, as it looked then

    def connect(self):
        wait_for(self._connects, "the player library took a connection")

    def _connects(self):
        return self.socket.connect_ex(self.path) == 0

    def _ask(self):
        """(round trip, when, song's time in s)"""
        before = time.monotonic()
        self.socket.sendall(b'{"command": ["get_property", "audio-pts"], "request_id": 1}\n')
        while True:
            for line in self._lines():
                answer = json.loads(line)
                if answer.get("request_id") == 1:
                    after = time.monotonic()
                    return after - before, (before + after) / 2, answer.get("data")

    def _lines(self):
        text = b""
        while not text.endswith(b"\n"):
            text += self.socket.recv(65536)
        return text.splitlines()

    def read(self):
        """Of several readings the one that was answered fastest."""
        asked = [answer for answer in (self._ask() for _ in range(8)) if answer[2] is not None]
        if asked:
            _, when, position = min(asked)
            self.readings.append((when, when - position))

    def time_of(self, position):
        """When the song was at `position`, by the readings around it."""
        near = sorted(self.readings, key=lambda reading: abs(reading[0] - reading[1] - position))[:3]
        return statistics.median(start for _, start in near) + position


class XImage(ctypes.Structure):
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int),
                ("bitmap_unit", ctypes.c_int), ("bitmap_bit_order", ctypes.c_int),
                ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int), ("bytes_per_line", ctypes.c_int)]


class PixelWatch:
    """Looks at the middle of a window again and again, and notes when it became another picture. A thread of its own."""

    def __init__(self, screen, window):
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XGetImage.restype = ctypes.POINTER(XImage)
        self.x.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int,
                                     ctypes.c_uint, ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x.XDestroyImage.argtypes = [ctypes.POINTER(XImage)]
        self.display = self.x.XOpenDisplay(screen.display.encode())
        _, _, self.width, height = screen.place(window)
        self.window = int(window)
        self.top, self.height = max(height // 2 - 20, 0), min(40, height)
        self.changes = []
        self.looks = 0
        self.ends = False
        self.thread = threading.Thread(target=self._watch)
        self.thread.start()

    def _picture(self):
        image = self.x.XGetImage(self.display, self.window, 0, self.top, self.width, self.height, 0xFFFFFFFF, 2)
        picture = ctypes.string_at(image.contents.data, image.contents.bytes_per_line * image.contents.height)
        self.x.XDestroyImage(image)
        return picture

    def _watch(self):
        last = self._picture()
        while not self.ends:
            before = time.monotonic()
            picture = self._picture()
            if picture != last:
                self.changes.append((before + time.monotonic()) / 2)
                last = picture
            self.looks += 1
            time.sleep(LOOK_TIME)

    def end(self):
        self.ends = True
        self.thread.join()


def write_song(folder, lines):
    """A song with a line at each returned time (s)."""
    times = [round(FIRST_LINE + number * LINE_TIME, 2) for number in range(lines)]
    with wave.open(str(folder / "song.wav"), "wb") as song:
        song.setparams((1, 2, 44100, 0, "NONE", ""))
        song.writeframes(b"\0\0" * int(44100 * (times[-1] + 3)))
    (folder / "song.lrc").write_text("".join(
        f"[{int(at) // 60:02}:{int(at) % 60:02}:{round(at * 100) % 100:02}]line number {number}\n"
        for number, at in enumerate(times)))
    return times


def errors_of(times, clock, changes):
    """Pixels less sound, ms, of every line but the first, which the window shows from the start."""
    errors = []
    for at in times[1:]:
        sung = clock.time_of(at)
        nearest = min(changes, key=lambda change: abs(change - sung))
        errors.append(1000 * (nearest - sung))
    return errors


def report(errors, looks_per_second):
    ordered = sorted(errors, key=abs)
    print(f"highlight error of {len(errors)} lines: median {statistics.median(errors):+.1f} ms, "
          f"90 % within {ordered[int(len(ordered) * 0.9) - 1]:+.1f} ms, "
          f"{min(errors):+.1f} to {max(errors):+.1f} ms ({looks_per_second:.0f} looks/s)")


def measure(screen, folder, lines, start, clock):
    """`start(song)` starts the program that shows the lyrics, beside whatever has the sound's `clock`."""
    times = write_song(folder, lines)
    program = start(folder / "song.wav")
    clock.connect()
    watch = PixelWatch(screen, screen.wait_for_window("Lyrics"))
    began = time.monotonic()
    while time.monotonic() - began < times[-1] + 1:
        clock.read()
        time.sleep(0.5)
    took = time.monotonic() - began
    watch.end()
    program.end()
    if len(watch.changes) < len(times) - 1:
        sys.exit(f"only {len(watch.changes)} changes of the picture were seen")
    report(errors_of(times, clock, watch.changes), watch.looks / took)


def main():
    lines = int(sys.argv[1]) if len(sys.argv) > 1 else LINES
    screen = Screen()
    with tempfile.TemporaryDirectory(prefix="tavora-") as name:
        folder = pathlib.Path(name)
        environment = {"QUBO_MPV_SOCKET": str(folder / "mpv")}
        measure(screen, folder, lines,
                lambda song: Program(screen, folder / "settings", *sys.argv[2:], song, environment=environment),
                SoundClock(folder / "mpv"))
    screen.close()


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Following mpv under Xvfb, on a bus of their own: how far the highlight is from the sound, how long a start, a seek and another
track take until they show, and what following costs. The sound's time is mpv's own, asked for past the bus.

Of another PLAYER, vlc or audacious, only the highlight, against the position that it tells itself. Not as root, which VLC refuses.

usage: TAVORA_BUILD=build/bench python3 bench/follow_bench.py [LINES [PLAYER]]
"""

import json
import os
import pathlib
import socket
import statistics
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
os.environ.setdefault("TAVORA_BUILD", str(SOURCE / "build" / "bench"))
sys.path.insert(0, str(SOURCE / "tests" / "xvfb"))
from highlight_bench import PixelWatch, SoundClock, measure, write_song  # noqa: E402
from program_bench import TICKS, cpu_seconds, memory_mb, wake_ups  # noqa: E402
from screen import Program, Screen, wait_for  # noqa: E402

PLUG_IN = "/usr/lib/mpv-mpris/mpris.so"
STARTS = 9
CHANGES = 12   # seeks, and changes of the track
STEADY = 30    # s
QUIET = 0.6    # s: what comes of a change has come by then
LONG_LINE = 7  # s


class Bus:
    """A session bus that this process' children have."""

    def __init__(self):
        self.daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"],
                                       stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.daemon.stdout.readline().strip()

    def close(self):
        self.daemon.kill()
        self.daemon.wait()


class ToldClock:
    """Where the sound of a player is, by what it tells on the bus. That can only lag, so that the largest of many readings counts."""

    def __init__(self, player):
        self.question = ["busctl", "--user", "get-property", f"org.mpris.MediaPlayer2.{player}", "/org/mpris/MediaPlayer2",
                         "org.mpris.MediaPlayer2.Player", "Position"]
        self.starts = []  # at which the song was at 0, as it looked then

    def connect(self):
        wait_for(self._position, "the player told where it is")

    def _position(self):
        answer = subprocess.run(self.question, capture_output=True, text=True).stdout.split()
        return int(answer[1]) / 1e6 if len(answer) == 2 else 0

    def read(self):
        for _ in range(4):
            position = self._position()
            self.starts.append(time.monotonic() - position)

    def time_of(self, position):
        return min(self.starts) + position


class Mpv:
    """The player, without a picture or a sound."""

    def __init__(self, folder, *songs):
        self.path = folder / "mpv"
        self.process = subprocess.Popen(
            ["mpv", "--no-config", f"--script={PLUG_IN}", "--no-video", "--ao=null", "--really-quiet", "--idle",
             "--loop-playlist=inf", f"--input-ipc-server={self.path}", *map(str, songs)])
        wait_for(self._connects, "mpv took a connection")

    def _connects(self):
        with socket.socket(socket.AF_UNIX) as control:
            return control.connect_ex(str(self.path)) == 0

    def command(self, *words):
        """Answers when it was given."""
        with socket.socket(socket.AF_UNIX) as control:
            control.connect(str(self.path))
            given = time.monotonic()
            control.sendall(json.dumps({"command": words}).encode() + b"\n")
            while b'"error"' not in control.recv(65536):
                pass
        return given

    def close(self):
        self.process.kill()
        self.process.wait()
        self.path.unlink()


def write_slow_song(folder, name):
    """A minute of silence, with few lines."""
    (folder / "lines").mkdir(exist_ok=True)
    write_song(folder / "lines", 80)
    song = folder / f"{name}.wav"
    (folder / "lines" / "song.wav").rename(song)
    song.with_suffix(".lrc").write_text("".join(
        f"[{at // 60:02}:{at % 60:02}:00]{name} has this line from the second {at}\n" for at in range(0, 60, LONG_LINE)))
    return song


def follow(screen, folder, *options):
    program = Program(screen, folder / "settings", "--follow", "mpv", *options)
    window = screen.wait_for_window("Lyrics")
    time.sleep(2)
    return program, window


def highlight(screen, folder, lines):
    players = []

    def start(song):
        players.append(Mpv(folder, song))
        return Program(screen, folder / "settings", "--follow", "mpv")

    measure(screen, folder, lines, start, SoundClock(folder / "mpv"))
    players[0].close()


def highlight_of(player, screen, folder, lines):
    commands = {"vlc": ["cvlc", "--quiet", "--no-video", "--aout=adummy", "--control=dbus"],
                "audacious": ["audacious", "--headless"]}
    players = []

    def start(song):
        players.append(subprocess.Popen([*commands[player], str(song)], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        env={**os.environ, "SDL_AUDIODRIVER": "dummy"}))
        return Program(screen, folder / "settings", "--follow", player)

    try:
        measure(screen, folder, lines, start, ToldClock(player))
    finally:
        players[0].terminate()
        players[0].wait()


def starts(screen, folder, song):
    mpv = Mpv(folder, song)
    times = []
    for number in range(STARTS):
        program = Program(screen, folder / f"settings{number}", "--follow", "mpv", "--print")
        wait_for(lambda: program.lines, "the first line was printed")
        times.append(time.monotonic() - program.started)
        screen.wait_for_window("Lyrics")
        program.end()
    mpv.close()
    print(f"start to first line: median {statistics.median(times) * 1000:.0f} ms of {STARTS} starts "
          f"(slowest {max(times) * 1000:.0f})")


def change_times(watch, change):
    """Of some changes, the ms until the first and until the last new picture."""
    first, last = [], []
    for number in range(CHANGES):
        given = change(number)
        time.sleep(QUIET)
        pictures = [at for at in watch.changes if given < at < given + QUIET]
        if pictures:
            first.append(1000 * (pictures[0] - given))
            last.append(1000 * (pictures[-1] - given))
    return first, last


def told(what, times):
    print(f"{what}: median {statistics.median(times):.0f} ms, slowest {max(times):.0f} of {len(times)}")


def changes(screen, folder, songs):
    mpv = Mpv(folder, *songs)
    program, window = follow(screen, folder)
    watch = PixelWatch(screen, window)
    _, last = change_times(watch, lambda n: mpv.command("seek", (n * 3 + 1) % 8 * LONG_LINE + 2, "absolute+exact"))
    told("seek to the right line, mpv's own seek included", last)
    first, last = change_times(watch, lambda _: mpv.command("playlist-next", "force"))
    told("track change to the old lyrics gone", first)
    told("track change to the new ones", last)
    watch.end()
    program.end()
    mpv.close()


def thread_cost(pid, name):
    """CPU seconds and wake-ups of one thread."""
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        if (task / "comm").read_text().strip() == name:
            fields = (task / "stat").read_text().rsplit(")", 1)[1].split()
            status = (task / "status").read_text().splitlines()
            wakes = int(next(line.split()[1] for line in status if line.startswith("voluntary")))
            return (int(fields[11]) + int(fields[12])) / TICKS, wakes
    return 0, 0


def steady(screen, folder, song):
    mpv = Mpv(folder, song)
    program, _ = follow(screen, folder)
    pid = program.process.pid
    time.sleep(4)
    before = cpu_seconds(pid), wake_ups(pid), *thread_cost(pid, "Qubo bus")
    begin = time.monotonic()
    time.sleep(STEADY)
    took = time.monotonic() - begin
    after = cpu_seconds(pid), wake_ups(pid), *thread_cost(pid, "Qubo bus")
    cpu, wakes, bus_cpu, bus_wakes = ((b - a) / took for a, b in zip(before, after))
    print(f"following: {100 * bus_cpu:.2f} % of a core and {bus_wakes:.1f} wake-ups/s on the bus thread; "
          f"the program in all {100 * cpu:.2f} %, {wakes:.0f} wake-ups/s")
    resident, private = memory_mb(pid)
    maps = pathlib.Path(f"/proc/{pid}/maps").read_text()
    print(f"memory: {resident:.0f} MB resident, {private:.0f} MB of it private, player library "
          f"{'loaded' if 'libmpv' in maps else 'not loaded'}")
    program.end()
    mpv.close()


def main():
    lines = int(sys.argv[1]) if len(sys.argv) > 1 else 40
    bus = Bus()
    screen = Screen()
    try:
        with tempfile.TemporaryDirectory(prefix="tavora-") as name:
            folder = pathlib.Path(name)
            if len(sys.argv) > 2:
                highlight_of(sys.argv[2], screen, folder, lines)
                return
            songs = [write_slow_song(folder, word) for word in ("One", "Two")]
            starts(screen, folder, songs[0])
            changes(screen, folder, songs)
            steady(screen, folder, songs[0])
            highlight(screen, folder, lines)
    finally:
        screen.close()
        bus.close()


if __name__ == "__main__":
    main()

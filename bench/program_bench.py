#!/usr/bin/env python3
"""The whole program under Xvfb: its start, a minute of steady playing, its memory.

usage: TAVORA_BUILD=build/bench python3 bench/program_bench.py [SECONDS]
"""

import os
import pathlib
import statistics
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
os.environ.setdefault("TAVORA_BUILD", str(SOURCE / "build" / "bench"))
sys.path.insert(0, str(SOURCE / "tests" / "xvfb"))
from screen import Program, Screen, wait_for  # noqa: E402

STARTS = 9
TICKS = os.sysconf("SC_CLK_TCK")


def cpu_seconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def memory_mb(pid):
    """Resident, and the private part of it."""
    rollup = pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()
    kb = {line.split()[0]: int(line.split()[1]) for line in rollup[1:]}
    return kb["Rss:"] / 1024, (kb["Private_Clean:"] + kb["Private_Dirty:"]) / 1024


def wake_ups(pid):
    total = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        total += int(next(line.split()[1] for line in status.read_text().splitlines() if line.startswith("voluntary")))
    return total


def start_times(screen, folder, song):
    """From the start of the process to the first line of the lyrics being current in the shown window, s."""
    times = []
    for number in range(STARTS):
        program = Program(screen, folder / f"settings{number}", "--print", song)
        wait_for(lambda: program.lines, "the first line was printed")
        times.append(time.monotonic() - program.started)
        screen.wait_for_window("Lyrics")
        program.end()
    return times


def main():
    seconds = int(sys.argv[1]) if len(sys.argv) > 1 else 60
    songs = sorted((SOURCE / "demo").glob("*.ogg"))
    screen = Screen()
    with tempfile.TemporaryDirectory(prefix="tavora-") as name:
        folder = pathlib.Path(name)
        times = start_times(screen, folder, songs[0])
        print(f"start to first lyrics: median {statistics.median(times) * 1000:.0f} ms of {STARTS} starts "
              f"(first {times[0] * 1000:.0f}, slowest {max(times) * 1000:.0f})")
        program = Program(screen, folder / "settings", *songs * 4)
        screen.wait_for_window("Lyrics")
        time.sleep(5)
        pid = program.process.pid
        cpu, wakes, begin = cpu_seconds(pid), wake_ups(pid), time.monotonic()
        time.sleep(seconds)
        took = time.monotonic() - begin
        resident, private = memory_mb(pid)
        print(f"steady playing, {took:.0f} s: {100 * (cpu_seconds(pid) - cpu) / took:.2f} % of a core, "
              f"{(wake_ups(pid) - wakes) / took:.0f} wake-ups/s")
        print(f"memory: {resident:.0f} MB resident, {private:.0f} MB of it private")
        program.end()
    screen.close()


if __name__ == "__main__":
    main()

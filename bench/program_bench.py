#!/usr/bin/env python3
"""The whole program under Xvfb: its start, a minute of steady playing, its memory, and what it costs while nothing is to be done.

usage: TAVORA_BUILD=build/bench python3 bench/program_bench.py [SECONDS]
QUBO_AO=pulse or QUBO_AO=pipewire plays to a sound server that runs; else it plays in silence.
"""

import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parent.parent
os.environ.setdefault("TAVORA_BUILD", str(SOURCE / "build" / "bench"))
sys.path.insert(0, str(SOURCE / "tests" / "xvfb"))
from screen import Program, Screen, wait_for  # noqa: E402

STARTS = 9
MEMORY_SECONDS = 4
LOOKS = 15
LOOK_SECONDS = 1
BARE_RUNS = 3
BARE_SECONDS = 5
SETTLE_SECONDS = 4  # what follows a start or an end of playing
OUTPUT = {"QUBO_AO": os.environ.get("QUBO_AO", "null")}
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


def run_time(pid):
    """CPU time of the process, of ended threads too, s: its clock, by the number that the system gives it."""
    return time.clock_gettime(~pid << 3 | 2)


def idle(pid, what):
    """Other programs only add to it, by the caches that they take: so the least of many short looks counts too."""
    shares = []
    wakes, begin = wake_ups(pid), time.monotonic()
    for _ in range(LOOKS):
        cpu, start = run_time(pid), time.monotonic()
        time.sleep(LOOK_SECONDS)
        shares.append(100 * (run_time(pid) - cpu) / (time.monotonic() - start))
    took = time.monotonic() - begin
    print(f"{what}, {took:.0f} s: {statistics.median(shares):.2f} % of a core, at least {min(shares):.2f} %, "
          f"{(wake_ups(pid) - wakes) / took:.0f} wake-ups/s")


def bare_polling():
    """What three threads that wake each other as the polling does take on this machine, while nothing else runs, %."""
    program = pathlib.Path(os.environ["TAVORA_BUILD"]) / "bin" / "bare_polling"
    return statistics.median(float(subprocess.check_output([program, str(BARE_SECONDS)])) for _ in range(BARE_RUNS))


def measure_idleness(screen, pid):
    lyrics, player = screen.wait_for_window("Lyrics"), screen.wait_for_window("Qubo")
    screen.run("xdotool", "windowactivate", "--sync", player)
    screen.run("xdotool", "key", "space")
    time.sleep(SETTLE_SECONDS)
    idle(pid, "paused, lyrics shown")
    screen.run("xdotool", "windowactivate", "--sync", lyrics)
    screen.run("xdotool", "key", "--clearmodifiers", "alt+F4")
    wait_for(lambda: screen.window("Lyrics") is None, "the lyrics were hidden")
    time.sleep(SETTLE_SECONDS)
    idle(pid, "paused, lyrics hidden")
    screen.run("xdotool", "windowactivate", "--sync", player)
    screen.run("xdotool", "key", "space")
    time.sleep(SETTLE_SECONDS)
    idle(pid, "playing, lyrics hidden")


def main():
    seconds = int(sys.argv[1]) if len(sys.argv) > 1 else 60
    songs = sorted((SOURCE / "demo").glob("*.ogg"))
    screen = Screen()
    with tempfile.TemporaryDirectory(prefix="tavora-") as name:
        folder = pathlib.Path(name)
        times = start_times(screen, folder, songs[0])
        print(f"start to first lyrics: median {statistics.median(times) * 1000:.0f} ms of {STARTS} starts "
              f"(first {times[0] * 1000:.0f}, slowest {max(times) * 1000:.0f})")
        print(f"the polling's bare wake-ups on this machine: {bare_polling():.2f} % of a core")
        program = Program(screen, folder / "settings", *songs * 4, environment=OUTPUT)
        screen.wait_for_window("Lyrics")
        time.sleep(5)
        pid = program.process.pid
        cpu, wakes, begin = cpu_seconds(pid), wake_ups(pid), time.monotonic()
        memory = []
        while time.monotonic() - begin < seconds:
            time.sleep(MEMORY_SECONDS)
            memory.append(memory_mb(pid))
        took = time.monotonic() - begin
        print(f"steady playing, {took:.0f} s: {100 * (cpu_seconds(pid) - cpu) / took:.2f} % of a core, "
              f"{(wake_ups(pid) - wakes) / took:.0f} wake-ups/s")
        for name, values in zip(("resident", "private"), zip(*memory)):
            print(f"memory, {name}: median {statistics.median(values):.0f} MB, most {max(values):.0f} (at a song's start)")
        measure_idleness(screen, pid)
        program.end()
    screen.close()


if __name__ == "__main__":
    main()

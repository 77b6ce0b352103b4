#!/usr/bin/env python3
"""Makes the demo songs: two traditional melodies, synthesised, with lyrics in step with their notes.

    tools/make_demo.py [FOLDER]      (the folder: demo/ of this source tree)

Needs oggenc (vorbis-tools). Melodies and texts are in the public domain: "Sakura Sakura" is a Japanese folk song, "Auld Lang
Syne" has Robert Burns' words of 1788. A song is written as lines of lyrics over their notes; a note is "NAME:BEATS", "-" is a rest,
and the time tag of a line is the time of its first note, exact to the hundredth that a tag can say.
"""

import array
import math
import os
import subprocess
import sys
import tempfile
import wave

RATE = 44100
BEAT = 0.5  # seconds: 120 beats a minute keep every note on a whole hundredth
SEMITONES = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}

# (share of the loudness, multiple of the pitch, how fast it dies away per second)
KOTO = [(1.0, 1, 2.2), (0.55, 2, 3.2), (0.32, 3, 4.4), (0.2, 4, 6.0), (0.1, 5, 8.0), (0.05, 7, 11.0)]
MUSIC_BOX = [(1.0, 1, 1.6), (0.35, 2, 2.4), (0.12, 3, 3.5), (0.16, 4, 7.0), (0.05, 6, 10.0)]
PAD = [(1.0, 1, 0.5), (0.25, 2, 0.7), (0.1, 3, 1.0)]


class Song:
    def __init__(self, name, title, artist, instrument, encoding, line_end, intro, lines, chords, tail):
        self.name, self.title, self.artist = name, title, artist
        self.instrument, self.encoding, self.line_end = instrument, encoding, line_end
        self.intro, self.lines, self.chords, self.tail = intro, lines, chords, tail


SAKURA = Song(
    name="sakura", title="さくらさくら", artist="Japanese traditional", instrument=KOTO,
    encoding="shift_jis", line_end="\r\n",
    intro="E4:0.5 A4:0.5 B4:0.5 E5:2.5",
    lines=[
        ("さくら さくら", "A4:1 A4:1 B4:2 A4:1 A4:1 B4:2"),
        ("やよいの空は", "A4:1 B4:1 C5:1 B4:1 A4:1 B4:0.5 A4:0.5 F4:2"),
        ("見わたす限り", "E4:1 C4:1 E4:1 F4:1 E4:1 E4:0.5 C4:0.5 B3:2"),
        ("かすみか雲か", "A4:1 B4:1 C5:1 B4:1 A4:1 B4:0.5 A4:0.5 F4:2"),
        ("匂いぞ出ずる", "E4:1 C4:1 E4:1 F4:1 E4:1 E4:0.5 C4:0.5 B3:2"),
        ("いざや いざや", "A4:1 A4:1 B4:2 A4:1 A4:1 B4:2"),
        ("見にゆかん", "E4:1 F4:1 B4:0.5 A4:0.5 F4:1 E4:4"),
    ],
    # one chord for every bar of four beats, from the first bar of the intro on
    chords=["A2 E3", "A2 E3", "A2 E3", "A2 E3", "F2 C3", "A2 E3", "E2 B2", "A2 E3", "F2 C3", "A2 E3",
            "E2 B2", "A2 E3", "A2 E3", "F2 C3", "E2 B2 E3"],
    tail=2)

AULD_LANG_SYNE = Song(
    name="auld-lang-syne", title="Auld Lang Syne", artist="Scottish traditional", instrument=MUSIC_BOX,
    encoding="utf-8", line_end="\n",
    intro="-:3",
    lines=[
        ("Should auld acquaintance be forgot,", "C4:1 F4:1.5 F4:0.5 F4:1 A4:1 G4:1.5 F4:0.5 G4:1"),
        ("And never brought to mind?", "A4:1 F4:1.5 F4:0.5 A4:1 C5:1 D5:3"),
        ("Should auld acquaintance be forgot,", "D5:1 C5:1.5 A4:0.5 A4:1 F4:1 G4:1.5 F4:0.5 G4:1"),
        ("And auld lang syne!", "A4:1 F4:1.5 D4:0.5 D4:1 C4:1 F4:3"),
        ("For auld lang syne, my jo,", "D5:1 C5:1.5 A4:0.5 A4:1 F4:1 G4:1.5 F4:0.5 G4:1"),
        ("For auld lang syne,", "D5:1 C5:1.5 A4:0.5 A4:1 C5:1 D5:3"),
        ("We’ll tak a cup o’ kindness yet,", "D5:1 C5:1.5 A4:0.5 A4:1 F4:1 G4:1.5 F4:0.5 G4:1"),
        ("For auld lang syne.", "A4:1 F4:1.5 D4:0.5 D4:1 C4:1 F4:3"),
    ],
    chords=["F3 A3 C4", "F3 A3 C4", "C3 E3 G3", "F3 A3 C4", "A#2 D3 F3", "F3 A3 C4", "C3 E3 G3", "A#2 D3 F3",
            "F3 A3 C4", "F3 A3 C4", "C3 E3 G3", "F3 A3 C4", "A#2 D3 F3", "F3 A3 C4", "C3 E3 G3", "A#2 D3 F3",
            "F3 A3 C4"],
    tail=1)


def frequency(name):
    semitone = SEMITONES[name[0]] + ("#" in name) + 12 * (int(name[-1]) + 1)
    return 440.0 * 2 ** ((semitone - 69) / 12)


def notes(text):
    for word in text.split():
        name, beats = word.split(":")
        yield name, float(beats)


def add_note(samples, start, seconds, pitch, instrument, loudness):
    """A soft attack of 8 ms, partials that die away, a release of 150 ms after the note's own time."""
    release = 0.15
    first = int(start * RATE)
    count = min(int((seconds + release) * RATE), len(samples) - first)
    for share, multiple, decay in instrument:
        step = 2 * math.pi * pitch * multiple / RATE
        level = share * loudness
        fade = math.exp(-decay / RATE)
        for i in range(count):
            at = i / RATE
            envelope = min(1.0, at / 0.008) * min(1.0, max(0.0, (seconds + release - at) / release))
            samples[first + i] += level * envelope * math.sin(step * i)
            level *= fade


def compose(song):
    """The samples of the song and the lines of its lyrics with their times."""
    melody = [(None, song.intro)] + song.lines
    beats = sum(beat for _, text in melody for _, beat in notes(text)) + song.tail
    samples = array.array("d", bytes(8 * int(beats * BEAT * RATE)))
    times = []
    at = 0.0
    for line, text in melody:
        if line is not None:
            times.append((at * BEAT, line))
        for name, length in notes(text):
            if name != "-":
                add_note(samples, at * BEAT, length * BEAT, frequency(name), song.instrument, 0.3)
            at += length
    for bar, chord in enumerate(song.chords):
        for name in chord.split():
            add_note(samples, bar * 4 * BEAT, 4 * BEAT - 0.15, frequency(name), PAD, 0.07)
    return samples, times


def write_wave(path, samples):
    peak = max(abs(sample) for sample in samples)
    with wave.open(path, "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(array.array("h", (int(sample / peak * 26000) for sample in samples)).tobytes())


def time_tag(seconds):
    hundredths = round(seconds * 100)
    return "[%02d:%02d.%02d]" % (hundredths // 6000, hundredths // 100 % 60, hundredths % 100)


def write_lyrics(path, song, times):
    lines = [song.title] + [time_tag(time) + line for time, line in times]
    with open(path, "wb") as out:
        out.write("".join(line + song.line_end for line in lines).encode(song.encoding))


def make(song, folder):
    samples, times = compose(song)
    base = os.path.join(folder, song.name)
    write_lyrics(base + ".lrc", song, times)
    with tempfile.TemporaryDirectory() as work:
        raw = os.path.join(work, "song.wav")
        write_wave(raw, samples)
        subprocess.run(["oggenc", "--quiet", "--quality", "2", "--serial", "1", "--title", song.title,
                        "--artist", song.artist, "--output", base + ".ogg", raw], check=True,
                       env={**os.environ, "LC_ALL": "C.UTF-8"})


def main():
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "demo")
    os.makedirs(folder, exist_ok=True)
    for song in (SAKURA, AULD_LANG_SYNE):
        make(song, folder)


if __name__ == "__main__":
    main()

"""The lyrics window on a user's desktop: where it is, what is dragged to it, what a screen reader is told."""

import os
import re
import subprocess
import threading
import unittest

from screen import BUILD, Screen, ScreenTest, wait_for

LEFT = "left", "800/200x600/150+0+0"
RIGHT = "right", "800/200x600/150+800+0"
# One grey point, 24 bits
BITMAP = (b"BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\4\0\0\0" + bytes(16)
          + b"\x80\x80\x80\0")


class DesktopTest(ScreenTest):
    def open(self, *arguments, **options):
        program = self.start(*(arguments or (self.music,)), **options)
        self.host = self.screen.wait_for_window("Qubo")
        self.lyrics = self.screen.wait_for_window("Lyrics")
        self.settle()
        return program

    def settle(self):
        """Until both windows have stood still for a while."""
        places = []

        def stand_still():
            places.append([self.screen.place(window) for window in (self.host, self.lyrics)])
            return len(places) > 15 and all(place == places[-1] for place in places[-15:])

        wait_for(stand_still, "the windows stood still")

    def offset(self):
        host, lyrics = self.screen.place(self.host), self.screen.place(self.lyrics)
        return lyrics[0] - host[0], lyrics[1] - host[1]

    def move(self, window, left, top):
        self.screen.run("xdotool", "windowmove", window, str(left), str(top))
        self.settle()

    def lead(self, left, top):
        """Moves the player's window, and waits until the lyrics have followed at their distance."""
        offset = self.offset()
        self.move(self.host, left, top)
        wait_for(lambda: self.offset() == offset, f"the offset was {offset} again")

    def drag(self, start, *steps):
        """With the left button, in small steps, as a hand does it."""
        mouse = ["mousemove", *map(str, start), "mousedown", "1"]
        for step in steps:
            mouse += ["mousemove", *map(str, step), "sleep", "0.01"]
        self.screen.run("xdotool", *mouse, "mouseup", "1")
        self.settle()


class Placing(DesktopTest):
    def test_follows_without_drift(self):
        self.open()
        self.move(self.host, 300, 100)
        # The user's own placing first: dragged by its inside.
        left, top, width, height = self.screen.place(self.lyrics)
        at = left + width // 2, top + height // 2
        self.drag(at, *[(at[0] - 4 * i, at[1] + 5 * i) for i in range(1, 31)])
        wait_for(lambda: self.screen.place(self.lyrics) == (left - 120, top + 150, width, height),
                 "the window was dragged to its place")
        offset = self.offset()

        moves = [part for i in range(300)
                 for part in ("windowmove", self.host, str(100 + i * 37 % 500), str(60 + i * 53 % 200))]
        self.screen.run("xdotool", *moves)
        self.settle()
        wait_for(lambda: self.offset() == offset, f"the offset was {offset} after 300 moves")

        for i in range(10):
            left, top = self.screen.place(self.host)[:2]
            title = left + 150, top - 10
            to = (1 if i % 2 else -1) * (60 + 7 * i), 11 * i - 40
            self.drag(title, *[(title[0] + to[0] * j // 12, title[1] + to[1] * j // 12) for j in range(1, 13)])
            self.assertNotEqual(self.screen.place(self.host)[:2], (left, top), "the title bar was not hit")
        wait_for(lambda: self.offset() == offset, f"the offset was {offset} again, it is {self.offset()}")

    def test_stays_where_it_is_when_the_player_is_minimised_or_raised(self):
        self.open()
        place = self.screen.place(self.lyrics)
        self.screen.run("xdotool", "windowminimize", self.host)
        wait_for(lambda: self.screen.window("Qubo") is None, "the player was minimised")
        self.assertEqual(self.screen.window("Lyrics"), self.lyrics)
        self.screen.run("xdotool", "windowactivate", "--sync", self.host)
        wait_for(lambda: self.screen.window("Qubo") is not None, "the player was there again")
        self.settle()
        self.assertEqual(self.screen.place(self.lyrics), place)

    def test_knows_every_monitor(self):
        self.screen.close()
        self.screen = Screen("1600x600x24")
        self.addCleanup(lambda: self.screen.close())
        self.screen.run("xrandr", "--setmonitor", *LEFT, "screen")
        self.screen.run("xrandr", "--setmonitor", *RIGHT, "none")
        program = self.open()
        self.lead(900, 100)  # to the right one
        self.move(self.lyrics, 1200, 400)
        offset = self.offset()
        self.lead(100, 50)  # to the other monitor
        # Never off every screen, and back at its distance.
        self.move(self.host, 100, 500)
        self.assertLess(self.screen.place(self.lyrics)[1], 600)
        self.move(self.host, 900, 100)
        wait_for(lambda: self.offset() == offset, f"the offset was {offset} again")
        self.move(self.lyrics, 1200, 400)
        place = self.screen.place(self.lyrics)
        self.assert_ended_well(program, *program.end())
        program = self.open()
        wait_for(lambda: self.screen.place(self.lyrics) == place, f"it opened again at {place}")
        self.assert_ended_well(program, *program.end())

        # The right one is gone: it opens beside the player, where it can be seen.
        self.screen.close()
        self.screen = Screen("800x600x24")
        self.open()
        left, top, width, height = self.screen.place(self.lyrics)
        self.assertTrue(0 <= left and left + width <= 800 and 0 <= top and top + height <= 600, (left, top))

    def test_stays_on_top_as_soon_as_it_is_said(self):
        self.open()
        self.screen.run("xdotool", "windowactivate", "--sync", self.lyrics)
        for is_above in (True, False, True):
            self.screen.run("xdotool", "key", "--clearmodifiers", "alt+t")
            wait_for(lambda: ("ABOVE" in self.screen.run("xprop", "-id", self.lyrics, "_NET_WM_STATE")) == is_above,
                     f"the window manager heard “above: {is_above}”")
        self.screen.run("xdotool", "windowactivate", "--sync", self.host)
        order = self.screen.run("xprop", "-root", "_NET_CLIENT_LIST_STACKING").split("#")[1].split(",")
        self.assertEqual(int(order[-1], 16), int(self.lyrics), "it is not above the active window")


class Drags(DesktopTest):
    NAMES = ("a picture.bmp", "100% #1.bmp", "さくら 歌詞.bmp")

    def source(self, *paths):
        """A program that drags these, and the function that drags the next one to the lyrics and says what became of it."""
        process = subprocess.Popen([str(BUILD / "bin" / "drag_source"), *map(str, paths)], stdout=subprocess.PIPE,
                                   text=True, env={**os.environ, "DISPLAY": self.screen.display,
                                                   "QT_QPA_PLATFORM": "xcb"})
        self.addCleanup(process.wait)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.kill)
        window = self.screen.wait_for_window("Drag source")

        def drag():
            left, top, width, height = self.screen.place(window)
            to_left, to_top, to_width, to_height = self.screen.place(self.lyrics)
            start = left + width // 2, top + height // 2
            end = to_left + to_width // 2, to_top + to_height // 2
            way = [(start[0] + (end[0] - start[0]) * i // 20, start[1] + (end[1] - start[1]) * i // 20)
                   for i in range(1, 21)]
            mouse = ["mousemove", *map(str, start), "mousedown", "1"]
            for place in way:
                mouse += ["mousemove", *map(str, place), "sleep", "0.02"]
            self.screen.run("xdotool", *mouse)
            # A hand rests before it lets go: the view has answered by then.
            for shift in range(10):
                self.screen.run("xdotool", "mousemove", str(end[0] + shift % 2), str(end[1]), "sleep", "0.03")
            self.screen.run("xdotool", "mouseup", "1")
            said = []
            while not said or said[-1] not in ("taken", "moved", "refused"):
                line = process.stdout.readline()
                self.assertTrue(line, "the drag source ended")
                said.append(line.strip())
            return said

        return drag

    def preferences(self):
        try:
            return (self.settings / "MERION" / "Shared" / "TavoraShared_Prefs.arc").read_bytes()
        except FileNotFoundError:
            return b""

    def test_files_of_all_names_are_taken_and_others_refused(self):
        song = self.songs()[0]
        song = song.rename(self.folder / "music" / "曲 #1 100%.ogg")
        pictures = [self.folder / name for name in self.NAMES]
        for picture in pictures:
            picture.write_bytes(BITMAP)
        skin = self.folder / "a skin #2"
        skin.mkdir()
        (skin / "PLEDIT.TXT").write_text("[Text]\nNormal=#00FF80\n")
        lyrics = self.folder / "歌 100%.lrc"
        lyrics.write_text("[00:00]dropped words\n", "utf-8")
        other = self.folder / "song #3.ogg"
        other.write_bytes(b"OggS")

        program = self.open("--print", song)
        self.move(self.lyrics, 500, 100)
        drag = self.source(*pictures, skin, other, lyrics)
        for picture in pictures:
            self.assertEqual(drag()[-1], "taken", picture)
            wait_for(lambda: str(picture).encode() in self.preferences(), f"{picture} was in the preferences")
        self.assertEqual(drag()[-1], "taken", skin)
        wait_for(lambda: b"\x00\xff\x80\xff" in self.preferences(), "the skin's colours were in the preferences")
        said = drag()
        self.assertEqual(said[-2:], ["may not", "refused"], "it is not shown to be refused")
        self.assertEqual(drag()[-1], "taken", lyrics)
        wait_for(lambda: program.printed("dropped words"), "the dropped lyrics were sung")
        self.assertEqual(song.with_suffix(".lrc").read_bytes(), lyrics.read_bytes())
        self.assertTrue(all(picture.exists() for picture in pictures), "a picture was moved")


class Accessibility(DesktopTest):
    def test_a_screen_reader_finds_the_current_line_and_hears_of_the_next_quietly(self):
        # The accessibility bus leaves its socket there.
        runtime = self.folder / "run"
        runtime.mkdir(mode=0o700)
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE,
                               text=True)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(bus.kill)
        environment = {"DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().strip(), "DISPLAY": self.screen.display,
                       "XDG_RUNTIME_DIR": str(runtime)}
        launcher = subprocess.Popen(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"],
                                    env={**os.environ, **environment}, stderr=subprocess.DEVNULL)
        self.addCleanup(launcher.wait)
        self.addCleanup(launcher.terminate)

        song = self.songs()[0]
        seconds = range(0, 40)
        song.with_suffix(".lrc").write_text("".join(f"[00:{second:02}]line {second}\n" for second in seconds), "utf-8")
        self.open("--print", song, environment={**environment, "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"})
        probe = subprocess.Popen([str(BUILD / "bin" / "accessibility_probe"), "qubo"], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, text=True, env={**os.environ, **environment})
        self.addCleanup(probe.wait)
        self.addCleanup(probe.stdout.close)
        self.addCleanup(probe.stdin.close)
        self.addCleanup(probe.kill)
        watchdog = threading.Timer(60, probe.kill)
        watchdog.start()
        self.addCleanup(watchdog.cancel)
        heard = []
        for line in probe.stdout:
            heard.append(line.strip())
            if sum(line.startswith("name: line") for line in heard) == 3:
                break
        else:
            self.fail("the names of three lines were not heard:\n" + "\n".join(heard))
        at = heard.index("ready")
        texts = [text for text in heard[:at] if re.match(r"text: line \d+$", text)]
        self.assertEqual(len(texts), 1, heard)
        first = int(texts[0].split()[-1])
        names = [int(text.split()[-1]) for text in heard[at:] if text.startswith("name: line")]
        self.assertEqual(names, [names[0], names[0] + 1, names[0] + 2], heard)
        self.assertIn(names[0], (first, first + 1), heard)
        # The player's own clock is a text that changes too; but nothing is announced, and no text is said to be typed.
        others = [text for text in heard[at + 1:] if not text.startswith("name: ")]
        self.assertFalse([text for text in others if re.match("Announcement|Text", text)], others)


if __name__ == "__main__":
    unittest.main()

"""The program on a real screen: its windows, what a user does with them, and how it ends."""

import os
import signal
import time
import unittest

from screen import ScreenTest, wait_for


class Windows(ScreenTest):
    def test_lyrics_window_follows_the_players(self):
        self.start(self.music)
        host = self.screen.wait_for_window("Qubo")
        lyrics = self.screen.wait_for_window("Lyrics")
        # Once both stand where the window manager let them.
        self.settle(host, lyrics)
        for left, top in ((60, 90), (300, 200), (140, 130), (61, 91)):
            before_host, before_lyrics = self.screen.place(host), self.screen.place(lyrics)
            self.screen.run("xdotool", "windowmove", host, str(left), str(top))
            wait_for(lambda: self.screen.place(host)[:2] != before_host[:2], "the player's window moved")
            after = self.screen.place(host)
            expected = [before_lyrics[i] + after[i] - before_host[i] for i in (0, 1)]
            wait_for(lambda: list(self.screen.place(lyrics)[:2]) == expected,
                     f"the lyrics window stood at {expected}, it stands at {self.screen.place(lyrics)[:2]}")
            self.assertEqual(self.screen.place(lyrics)[2:], before_lyrics[2:])

    def settle(self, *windows):
        places = []

        def stand_still():
            places.append([self.screen.place(window) for window in windows])
            return len(places) > 20 and all(place == places[-1] for place in places[-20:])

        wait_for(stand_still, "the windows stood still")

    def test_place_is_kept_between_runs(self):
        program = self.start(self.music)
        lyrics = self.screen.wait_for_window("Lyrics")
        host = self.screen.wait_for_window("Qubo")
        self.settle(host, lyrics)
        self.screen.run("xdotool", "windowmove", lyrics, "700", "500")
        self.screen.run("xdotool", "windowsize", lyrics, "420", "180")
        wait_for(lambda: self.screen.place(lyrics)[2:] == (420, 180), "the lyrics window had its new size")
        self.settle(host, lyrics)
        place = self.screen.place(lyrics)
        self.assert_ended_well(program, *program.end())

        self.start(self.music)
        again = self.screen.wait_for_window("Lyrics")
        wait_for(lambda: self.screen.place(again) == place,
                 f"the window opened again at {place}, it is at {self.screen.place(again)}")

    def test_close_box_hides_the_lyrics_and_ends_the_player(self):
        program = self.start(self.music)
        lyrics = self.screen.wait_for_window("Lyrics")
        host = self.screen.wait_for_window("Qubo")
        self.close(lyrics, lambda: self.screen.window("Lyrics") is None, "the lyrics window was hidden")
        self.assertIsNone(program.process.poll(), "closing the lyrics ended the player")
        self.close(host, lambda: program.process.poll() is not None, "the player ended")
        self.assertEqual(program.wait(), 0)

    def close(self, window, is_closed, what):
        """By its key, and once more as a user would: the window manager drops one that comes while the focus is on its way."""
        for patience in (5, 20):
            self.screen.run("timeout", "5", "xdotool", "windowactivate", "--sync", window)
            if self.screen.run("xdotool", "getactivewindow").strip() == window:
                self.screen.run("xdotool", "key", "--clearmodifiers", "alt+F4")
            try:
                return wait_for(is_closed, what, patience)
            except AssertionError:
                if patience == 20:
                    raise

    def test_lyrics_window_does_not_take_the_focus(self):
        self.start(self.music)
        self.screen.wait_for_window("Lyrics")
        host = self.screen.wait_for_window("Qubo")
        wait_for(lambda: self.screen.run("xdotool", "getactivewindow").strip() == host,
                 "the player's window was the active one")


class Lyrics(ScreenTest):
    def test_edited_file_is_shown(self):
        song = self.songs()[0]
        program = self.start("--print", song)
        lyrics = self.screen.wait_for_window("Lyrics")
        wait_for(lambda: len(program.lines) >= 1, "a line of the demo was printed")
        time.sleep(1.1)  # a change within the second of the last one is not seen, as documented
        before = self.screen.picture(lyrics)
        song.with_suffix(".lrc").write_text(
            "".join(f"[00:{second:02}:00]words of second {second}\n" for second in range(0, 60)), "utf-8")
        wait_for(lambda: program.printed("words of second"), "a line of the edited file was printed")
        wait_for(lambda: self.screen.picture(lyrics) != before, "the window showed the edited file")

    def test_both_songs_are_printed_in_time(self):
        program = self.start("--print", "--headless", *self.songs(), environment={"QT_QPA_PLATFORM": "offscreen"})
        self.assertEqual(program.wait(150), 0, "\n".join(program.errors))
        self.assertTrue(program.printed("さくら"), program.lines)


class End(ScreenTest):
    def test_signals_end_it_and_the_place_is_saved(self):
        for sent in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=sent):
                program = self.start(self.music)
                self.screen.wait_for_window("Lyrics")
                self.exit_state().unlink(missing_ok=True)
                self.assert_ended_well(program, *program.end(sent))
                self.assertGreater(self.exit_state().stat().st_size, 68)

    def test_dying_screen_ends_it_and_the_place_is_saved(self):
        program = self.start(self.music)
        self.screen.wait_for_window("Lyrics")
        self.exit_state().unlink(missing_ok=True)
        self.screen.server.kill()
        self.assertGreaterEqual(program.wait(), 0, "it crashed:\n" + "\n".join(program.errors))
        self.assertGreater(self.exit_state().stat().st_size, 68)


if __name__ == "__main__":
    unittest.main()

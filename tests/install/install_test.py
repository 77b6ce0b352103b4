"""The program as `cmake --install` leaves it, and the files that tell the desktop about it."""

import contextlib
import os
import pathlib
import re
import subprocess
import tempfile
import time
import unittest

BUILD = pathlib.Path(os.environ["TAVORA_BUILD"])
SOURCE = pathlib.Path(__file__).resolve().parents[2]
SONG = SOURCE / "demo" / "auld-lang-syne.ogg"
# A component's list of installed files is a file of its own: the user's, for uninstalling, stays.
COMPONENT = "Unspecified"
MANIFEST = BUILD / f"install_manifest_{COMPONENT}.txt"


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=60, **options)


class WithFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tavora install ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def check(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(done.returncode, 0, f"{command}\n{done.stdout}{done.stderr}")
        return done.stdout + done.stderr

    def install(self, prefix, *options, **environment):
        self.check("cmake", "--install", BUILD, "--prefix", prefix, "--component", COMPONENT, *options,
                   env={**os.environ, **environment})


class Installed(WithFolder):
    def play(self, program, *arguments):
        home = self.folder / "home"
        home.mkdir()
        environment = {"HOME": str(home), "XDG_RUNTIME_DIR": str(home), "LC_ALL": "de_DE.UTF-8", "QUBO_AO": "null",
                       "PATH": os.environ["PATH"]}
        child = subprocess.Popen([str(part) for part in (program, *arguments)], cwd="/", env=environment, text=True,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(child.communicate)
        self.addCleanup(child.kill)
        return child

    def watches(self, child, folder):
        """Whether the program has a watch on the folder: so it does with the one that its languages are in."""
        watched = set()
        for info in pathlib.Path(f"/proc/{child.pid}/fdinfo").glob("*"):
            with contextlib.suppress(FileNotFoundError):
                watched.update(re.findall(r"^inotify wd:\w+ ino:(\w+)", info.read_text(), re.M))
        return f"{folder.stat().st_ino:x}" in watched

    def test_a_stripped_program_is_whole_wherever_its_prefix_is_moved(self):
        self.install(self.folder / "made here", "--strip")
        prefix = self.folder / "moved" / "to there"
        prefix.parent.mkdir()
        (self.folder / "made here").rename(prefix)

        picture = self.folder / "lyrics.png"
        child = self.play(prefix / "bin" / "qubo", "--headless", "--print", "--snapshot", picture, "--start", 29,
                          SONG, "/not there.ogg")
        end = time.monotonic() + 20
        while not self.watches(child, prefix / "lib/qubo/add-ons/Language"):
            self.assertIsNone(child.poll(), "the add-on has not found its languages before the song ended")
            self.assertLess(time.monotonic(), end, "the add-on does not find its languages")
            time.sleep(0.02)
        output, errors = child.communicate(timeout=60)
        self.assertIn("For auld lang syne.", output, errors)
        self.assertTrue(picture.read_bytes().startswith(b"\x89PNG"))
        self.assertIn("nicht vorhanden", errors, "the player has not found its languages")

    def test_nothing_is_looked_for_in_the_folder_of_the_build(self):
        self.install(self.folder)
        programs = [self.folder / "bin" / "qubo", *self.folder.rglob("*.so")]
        self.assertEqual(len(programs), 4)
        for program in programs:
            for way in re.findall(r"(?:RPATH|RUNPATH).*\[(.*)\]", self.check("readelf", "-d", program)):
                self.assertTrue(way.startswith("$ORIGIN"), f"{program.name}: {way}")

    def test_uninstalling_takes_what_was_installed_and_no_more(self):
        self.install("/usr", DESTDIR=str(self.folder))
        strange = self.folder / "usr/lib/qubo/add-ons/gen_Other.so"
        strange.write_text("another's")
        self.check("cmake", f"-DMANIFEST={MANIFEST}", "-P", SOURCE / "cmake" / "Uninstall.cmake",
                   env={**os.environ, "DESTDIR": str(self.folder)})
        self.assertEqual([path for path in self.folder.rglob("*") if path.is_file()], [strange])
        self.assertEqual([path for path in self.folder.rglob("qubo") if not strange.is_relative_to(path)], [])


class Texts(WithFolder):
    """What the desktop, its software centre and the manual say."""

    def setUp(self):
        super().setUp()
        self.install(self.folder)
        self.share = self.folder / "share"

    def test_the_manual_tells_the_options_that_there_are(self):
        page = self.share / "man/man1/qubo.1"
        self.assertEqual(self.check("groff", "-ww", "-man", "-Tutf8", "-z", page), "")
        self.assertEqual(self.check("mandoc", "-T", "lint", "-W", "warning", page), "")
        listed = re.findall(r"^  --([a-z-]+)(?: (\[?)([\w.]+))?", self.check(self.folder / "bin" / "qubo", "--help"), re.M)
        told = re.findall(r"^\.It Fl \\-([a-z-]+)(?: (Op )?Ar ([\w.]+))?", page.read_text(), re.M)
        self.assertGreater(len(listed), 8)
        self.assertEqual([(name, bool(optional), value.lower()) for name, optional, value in listed],
                         [(name, bool(optional), value.lower()) for name, optional, value in told])

    def test_the_desktop_takes_what_it_is_told(self):
        entry = self.share / "applications/qubo.desktop"
        self.assertEqual(self.check("desktop-file-validate", entry), "")
        self.check("appstreamcli", "validate", "--no-net", *self.share.glob("metainfo/*.xml"))
        types = re.search("^MimeType=(.*)$", entry.read_text(), re.M)[1]
        self.assertNotIn("lrc", types, "lyrics are opened in the editor")

    def test_lyrics_have_a_type_of_their_own(self):
        self.assertNotIn("error", self.check("update-mime-database", "-V", self.share / "mime").lower())
        self.assertIn("50:text/x-lrc:*.lrc", (self.share / "mime/globs2").read_text())
        self.assertIn("text/x-lrc text/plain", (self.share / "mime/subclasses").read_text())


if __name__ == "__main__":
    unittest.main()

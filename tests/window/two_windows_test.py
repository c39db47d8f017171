#!/usr/bin/python3
"""Two windows at a time, and links planted under the names of a run's files.

    two_windows_test.py FOLDER_OF_THE_PROGRAMS [NAME...]

Needs no display.
"""

import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from player import Player, environment

ROOT = pathlib.Path(__file__).resolve().parents[2]
TUNES = [ROOT / "examples" / name for name in ("auld_lang_syne.gui", "greensleeves.gui")]
PROGRAMS = pathlib.Path()  # set by main
PATIENCE = 20  # seconds


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come in {PATIENCE} s")
        time.sleep(0.01)


def catches(process, number):
    status = pathlib.Path(f"/proc/{process}/status").read_text()
    caught = next(line for line in status.splitlines() if line.startswith("SigCgt:"))
    return int(caught.split()[1], 16) >> (number - 1) & 1


class RunTest(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.home)
        self.work = self.home / "work"
        self.work.mkdir()
        self.runtime = self.home / "runtime"
        self.runtime.mkdir(0o700)

    def window(self, tune="", **more):
        own = {"XDG_RUNTIME_DIR": self.runtime, **more}
        window = Player(PROGRAMS, tune, self.work, environment(self.home, **own))
        self.addCleanup(window.close)
        return window

    def folder_of(self, window):
        """The current directory of the window."""
        return pathlib.Path(os.readlink(f"/proc/{window.pid()}/cwd"))

    def folders(self):
        return sorted(self.runtime.iterdir())

    def saved_after(self, tune, *lines):
        """What a window alone in the world saves."""
        path = self.home / "expected.gui"
        shutil.copy(tune, path)
        window = self.window(path, XDG_DATA_HOME=self.home / "other")
        window.do(*lines, "menu mnuSave")
        self.assertEqual((window.end(), window.boxes), (0, []))
        return path.read_bytes()


class TwoWindows(RunTest):
    INSERT = ("menu mnuInsMeas", "type 7", "key Enter", "press cmdNext")
    COPY = ("menu mnuCopy", "type 2", "key Enter", "type 2", "key Enter", "menu mnuPaste")

    def assert_each_has_its_own(self, lines):
        names = [shutil.copy(tune, self.work) for tune in TUNES]
        windows = [self.window(name) for name in names]
        for line in lines:
            for window in windows:
                window.do(line)
        for window, name, tune in zip(windows, names, TUNES):
            window.do("menu mnuSave")
            self.assertEqual((window.end(), window.boxes), (0, []))
            self.assertEqual(pathlib.Path(name).read_bytes(), self.saved_after(tune, *lines))

    def test_insert_measures_at_the_same_time(self):
        self.assert_each_has_its_own(self.INSERT)

    def test_copy_and_paste_at_the_same_time(self):
        self.assert_each_has_its_own(self.COPY)


class Journals(RunTest):
    """The first window has typed something into a tune."""

    def setUp(self):
        super().setUp()
        self.tune = pathlib.Path(shutil.copy(TUNES[1], self.work))
        self.first = self.window(self.tune)
        self.first.do("type 7", "key Enter")
        (self.journal,) = (self.home / "data/quillon").glob("Run-*.journal")

    def test_of_a_living_window_is_not_offered_and_of_a_dead_one_is(self):
        for tune in "", self.tune:
            second = self.window(tune)
            self.assertEqual((second.end(), second.notes, second.boxes), (0, [], []))
        os.kill(self.first.pid(), signal.SIGKILL)
        self.first.end()
        for tune in "", self.tune:
            second = self.window(tune)
            (note,) = second.notes
            self.assertRegex(note, r"^Unsaved work from an earlier session:\\ngreensleeves, [^,]+"
                             r"\\nTo bring it back, choose More > Rescued Tunes\.$")
            self.assertEqual((second.end(), second.boxes), (0, []))

    def test_of_a_living_window_is_not_written_by_another(self):
        held = self.journal.read_bytes()
        second = self.window(self.tune)
        second.do("type 5", "key Enter", f"file {self.journal}", "answer yes", "menu mnuSaveAs")
        self.assertTrue(second.open)
        self.assertEqual([box.partition(":")[0] for box in second.boxes], ["File Exists"])
        self.assertFalse(second.do("menu mnuSave"))
        lines = second.boxes[1].split(r"\n")
        self.assertEqual(lines[-1], f"The file: {self.journal} "
                         "(a Quillon that is running keeps its unsaved work there)")
        self.assertEqual(second.end(), 1)
        self.assertEqual(self.journal.read_bytes(), held)
        self.first.do("menu mnuSave")
        self.assertEqual((self.first.end(), self.first.boxes), (0, []))


class ScratchFolder(RunTest):
    def test_is_the_run_s_own_and_goes_at_its_end(self):
        first, second = self.window(), self.window()
        folders = [self.folder_of(first), self.folder_of(second)]
        self.assertEqual(self.folders(), sorted(folders))
        for folder in folders:
            self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        self.assertEqual(second.end(), 0)
        self.assertEqual(self.folders(), folders[:1])
        self.assertEqual(first.end(), 0)
        self.assertEqual(self.folders(), [])
        self.assertEqual(list(self.work.iterdir()), [])

    def test_goes_also_when_the_run_ends_with_a_fault(self):
        path = self.work / "tune.gui"
        shutil.copy(TUNES[0], path)
        window = self.window(path)
        path.unlink()
        path.mkdir()
        self.assertFalse(window.do("menu mnuSave"))
        self.assertEqual(window.end(), 1)
        self.assertEqual(self.folders(), [])

    def test_goes_also_at_a_signal(self):
        for sent in signal.SIGTERM, signal.SIGHUP, signal.SIGINT:
            process = subprocess.Popen(
                [PROGRAMS / "quillon"], cwd=self.work, stderr=subprocess.DEVNULL,
                env=environment(self.home, XDG_RUNTIME_DIR=self.runtime),
                preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL),
            )
            self.addCleanup(process.kill)
            wait_for("the window", lambda: catches(process.pid, signal.SIGTERM))
            self.assertEqual(len(self.folders()), 1)
            process.send_signal(sent)
            self.assertEqual(process.wait(PATIENCE), 0)
            self.assertEqual(self.folders(), [])

    def test_of_a_killed_run_goes_at_the_next_start_and_that_of_a_living_one_stays(self):
        living, killed = self.window(), self.window()
        folder = self.folder_of(living)
        (self.folder_of(killed) / "Temp.Sav").touch()
        os.kill(killed.pid(), signal.SIGKILL)
        killed.end()
        self.assertEqual(len(self.folders()), 2)
        foreign = self.runtime / "quillon-run-link"
        foreign.symlink_to(self.work)
        next_one = self.window()
        self.assertEqual(self.folders(), sorted([folder, self.folder_of(next_one), foreign]))
        self.assertTrue(self.work.exists())

    def test_is_not_where_file_dialogs_begin(self):
        window = self.window()
        window.do("type 7", "key Enter", "file first.gui", "menu mnuSaveAs")
        self.assertTrue((self.work / "first.gui").exists())

    def test_leaves_names_of_the_command_line_as_they_were_meant(self):
        shutil.copy(TUNES[0], self.work / "tune.gui")
        for name in "tune.gui", "./tune.gui", '"tune.gui"', '"tune.guix':
            with self.subTest(name):
                window = self.window(name)
                window.do("type 7", "key Enter", "menu mnuSave")
                self.assertEqual((window.end(), window.boxes), (0, []))
        self.assertNotEqual((self.work / "tune.gui").read_bytes(), TUNES[0].read_bytes())
        self.assertEqual(os.listdir(self.work), ["tune.gui"])


class Links(RunTest):
    """Whoever may write into a folder can put links there under names that are known."""

    def setUp(self):
        super().setUp()
        self.victim = self.home / "victim"
        self.victim.write_text("not a tune")
        self.addCleanup(lambda: self.assertEqual(self.victim.read_text(), "not a tune"))

    def lie_in_wait(self, folder, names):
        folder.mkdir(parents=True, exist_ok=True)
        for name in names:
            (folder / name).symlink_to(self.victim)

    def test_under_the_names_of_scratch_files_lead_nowhere(self):
        names = ["Temp.Sav", "Temp.Dat", "CopyBuff.Dat"]
        for folder in self.work, self.runtime, self.home / "temporary", self.home:
            self.lie_in_wait(folder, names)
        window = self.window(shutil.copy(TUNES[0], self.work))
        window.do(*TwoWindows.INSERT, *TwoWindows.COPY)
        self.assertEqual((window.open, window.boxes), (True, []))

    def test_under_the_names_of_rescue_copies_lead_nowhere(self):
        now = time.time()
        times = [time.strftime("%Y%m%d-%H%M%S", time.localtime(now + i)) for i in range(90)]
        names = [f"Rescue-{at}.gui.part" for at in times]
        for folder in self.home / "data/quillon", self.home / "temporary":
            self.lie_in_wait(folder, names)
        path = self.work / "tune.gui"
        shutil.copy(TUNES[0], path)
        window = self.window(path)
        window.do("type 7", "key Enter")
        shutil.rmtree(self.home / "data")  # the next copy goes among the temporary files
        (self.home / "data").touch()
        path.unlink()
        path.mkdir()
        self.assertFalse(window.do("menu mnuSave"))
        kept = pathlib.Path(window.boxes[0].partition("been saved in ")[2].partition(r"\n")[0])
        self.assertEqual(kept.parent, self.home / "temporary")
        self.assertFalse(kept.is_symlink())
        self.assertEqual(kept.stat().st_mode & 0o777, 0o600)


class Environment(RunTest):
    def test_a_sound_file_is_named_from_where_the_program_was_started(self):
        window = self.window(
            shutil.copy(TUNES[0], self.work), QUILLON_AUDIO_FILE="sound.wav",
        )
        window.do("menu mnuOpnMidi", "press FType_1", "press cmdCreate", "press cmdPlay")
        self.assertEqual((window.end(), window.boxes), (0, []))
        self.assertTrue((self.work / "sound.wav").exists())


def main():
    global PROGRAMS
    PROGRAMS = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main()


if __name__ == "__main__":
    main()

"""Printing through the print dialog, on a print service of the test's own."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import unittest

from desktop import PATIENCE, wait_for
from editor import ROOT, Editor

SCRIPT = pathlib.Path(__file__).parent / "print_queue.sh"


class PrintQueue:
    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=os.environ["HOME"]))
        self.process = subprocess.Popen([SCRIPT, self.folder], stderr=subprocess.PIPE)
        self.environment = {"CUPS_SERVER": str(self.folder / "state/sock")}
        wait_for("the print service", self._up)
        if not self._ready():
            errors = self.process.stderr.read().decode()
            self.close()
            raise unittest.SkipTest("no print service can run here: " + errors)

    def _ready(self):
        return (self.folder / "ready").exists()

    def _up(self):
        return self._ready() or self.process.poll() is not None

    def close(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(PATIENCE)
        self.process.stderr.close()
        shutil.rmtree(self.folder)

    def jobs(self, count):
        """The files of the jobs that were printed, when there are so many and none is under way."""

        def printed():
            command = ["lpstat", "-W", "not-completed", "-o"]
            waiting = subprocess.run(
                command, env={**os.environ, **self.environment}, capture_output=True
            ).stdout
            files = sorted((self.folder / "jobs").glob("*.pdf"))
            return files if not waiting and len(files) >= count else None

        return wait_for("the print jobs", printed)


class Printing(unittest.TestCase):
    def test_two_copies_are_two_jobs(self):
        if not shutil.which("cupsd", path=os.environ["PATH"] + ":/usr/sbin"):
            self.skipTest("cupsd is not installed")
        queue = PrintQueue()
        self.addCleanup(queue.close)
        tune = ROOT / "examples/greensleeves.gui"
        with Editor(tune.name, files=[tune], environment=queue.environment) as editor:
            editor.start()
            editor.menu("mnuPrint")
            dialog = editor.dialog("Print")
            small = editor.desktop.place(dialog)
            editor.press("Alt+o")
            wait_for("the dialog's options", lambda: editor.desktop.place(dialog) != small)
            editor.press(*["Shift+Tab"] * 4)  # from Name back to Copies
            editor.type("2")
            editor.settle()
            editor.look("print")
            editor.press("Enter")
            editor.back()
            jobs = queue.jobs(2)
            self.assertEqual(len(jobs), 2)
            for job in jobs:
                shown = subprocess.run(["pdftotext", job, "-"], check=True, capture_output=True)
                self.assertIn(b"Greensleeves", shown.stdout)
            editor.press("Alt+r")
            editor.press("l")  # Engraved Look
            editor.menu("mnuPrint")
            editor.dialog("Print")
            editor.press("Enter")
            editor.back()
            jobs = queue.jobs(3)
            self.assertEqual(len(jobs), 3, "the dialog's copies are 1 again")
            self.assertNotEqual(self.inked(jobs[2]), self.inked(jobs[0]), "thinner lines")

    @staticmethod
    def inked(job):
        picture = subprocess.run(["pdftoppm", "-r", "100", "-gray", job], check=True, capture_output=True)
        return picture.stdout

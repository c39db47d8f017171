#!/usr/bin/python3
"""Full disks and folders that cannot be written: saving, scratch files, the journal, building
MIDI files and every form of export end as they should, and leave no half result.

    full_disk_test.py FOLDER_OF_THE_PROGRAMS [NAME...]

A NAME is a test or a class of tests; by default all run. The disks are small real file systems,
mounted privately and removed with the process. This needs root, or a system
on which users may create namespaces.
"""

import errno
import json
import os
import pathlib
import re
import resource
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/window"))
from player import Player, environment  # noqa: E402

TUNE = ROOT / "examples/auld_lang_syne.gui"
APART = "--apart"  # first argument of the run that has its own mounts
PAGE = 4096  # bytes: what a disk gives away at a time
PROGRAMS = pathlib.Path()  # set by main
FAULT = "run-time error 75: path/file access error"
JOURNAL = object()  # where work is kept when the program's folder takes it
BOX = "Run-time error: Run-time error 75: path/file access error"

FORMS = ("pdf", "svg", "png", "mid", "wav", "gui", "measure-log", "page-log", "print-log")


def mount(*arguments):
    subprocess.run(["mount", *map(str, arguments)], check=True)


class Disk:
    """A file system of its own, 64 KB unless told otherwise."""

    def __init__(self, kilobytes=64):
        self.path = pathlib.Path(tempfile.mkdtemp())
        mount("-t", "tmpfs", "-o", f"size={kilobytes}k", "tmpfs", self.path)
        self.filler = self.path / "filler"

    def fill(self, spare=0):
        """Leaves room for `spare` bytes, whole pages of them."""
        with open(self.filler, "wb", buffering=0) as file:
            try:
                while file.write(bytes(PAGE)):
                    pass
            except OSError as full:
                assert full.errno == errno.ENOSPC
            file.truncate(file.tell() - spare)

    def free(self):
        self.filler.unlink()

    def protect(self, on=True):
        mount("-o", "remount,bind,ro" if on else "remount,bind,rw", self.path)

    def names(self):
        return sorted(path.name for path in self.path.iterdir() if path != self.filler)

    def close(self):
        subprocess.run(["umount", "--lazy", self.path], check=True)
        self.path.rmdir()


def long_tune(measures=120):
    """The bytes of a tune of measures of four quarters, several pages long unless told otherwise."""

    def record(measure, code, place):
        fret = f'"{measure % 10}"' if code == 7 else '""'
        lines = [f"{measure},{code},{48 + 36 * place}", "0,4,4,6", '0,""," "," ",""', '""', fret]
        return "".join(line + "\r\n" for line in lines + ['""'] * 4)

    header = '0,0,0\r\n0,0,0,0\r\n0,""," "," ","Long"\r\n' + '""\r\n' * 6
    return header.encode() + b"".join(
        (record(i, 999, 0) + "".join(record(i, 7, k) for k in range(4))).encode()
        for i in range(1, measures + 1)
    )


class DiskTest(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())  # on a disk with room
        self.addCleanup(shutil.rmtree, self.home)

    def disk(self, kilobytes=64):
        disk = Disk(kilobytes)
        self.addCleanup(disk.close)
        return disk

    def worlds(self, name):
        """Folders in which the file `name` cannot be written, each with what is wrong with it."""
        full, protected = self.disk(), self.disk()
        full.fill()
        protected.protect()
        taken = pathlib.Path(tempfile.mkdtemp(dir=self.home))
        (taken / name / "inside").mkdir(parents=True)
        device = pathlib.Path(tempfile.mkdtemp(dir=self.home))
        (device / name).symlink_to("/dev/full")
        return {
            "No space left on device": full.path,
            "Read-only file system": protected.path,
            "Is a directory": taken,
            "no space on a device": device,
        }


class Export(DiskTest):
    def setUp(self):
        super().setUp()
        self.tune = self.home / "tune.gui"
        self.tune.write_bytes(long_tune())

    def command(self, *arguments, tune=None):
        return [PROGRAMS / "quillon-export", "--tempo", "300", *arguments, tune or self.tune]

    def environment(self, temporary=None):
        own = {"TMPDIR": temporary or self.home, "XDG_RUNTIME_DIR": self.home}
        return {**os.environ, **{name: str(value) for name, value in own.items()},
                "SOURCE_DATE_EPOCH": "0"}

    def export(self, *arguments, tune=None, temporary=None, before=(), **more):
        return subprocess.run(
            [*before, *self.command(*arguments, tune=tune)],
            env=self.environment(temporary),
            stderr=subprocess.PIPE,
            text=True,
            check=False,
            **more,
        )

    def made(self, form, tune=None):
        """The bytes of the first file that is made in that form."""
        folder = self.folder()
        path, arguments = self.output(folder, form)
        self.assertEqual(self.export(*arguments, tune=tune).returncode, 0)
        return path.read_bytes()

    def folder(self):
        return pathlib.Path(tempfile.mkdtemp(dir=self.home))

    def output(self, folder, form):
        """A file in `folder` and the arguments that make it in that form."""
        if form.endswith("-log"):
            return folder / form, ("-o", folder / form, "--format", form)
        return folder / f"out.{form}", ("-o", folder / f"out.{form}")

    def assert_refused(self, done, what, reason, advice="name another place with -o"):
        self.assertEqual(
            done.stderr,
            f"quillon-export: {self.tune}: {what} cannot be written: {reason}; {advice}\n",
        )
        self.assertEqual(done.returncode, 1)

    def test_a_full_disk_takes_no_file(self):
        disk = self.disk()
        disk.fill()
        for form in FORMS:
            with self.subTest(form):
                path, arguments = self.output(disk.path, form)
                self.assert_refused(self.export(*arguments), path, "No space left on device")
                self.assertEqual(disk.names(), [])

    def test_a_disk_that_fills_up_keeps_no_half_file(self):
        disk = self.disk()
        disk.fill(spare=PAGE)
        for form in FORMS:
            with self.subTest(form):
                path, arguments = self.output(disk.path, form)
                self.assert_refused(self.export(*arguments), path, "No space left on device")
                self.assertEqual(disk.names(), [])

    def test_of_several_pages_none_is_kept_without_the_others(self):
        for form in ("svg", "png"):
            with self.subTest(form):
                disk = self.disk(1024)
                path, arguments = self.output(disk.path, form)
                self.assertEqual(self.export(*arguments).returncode, 0)
                pages = disk.names()
                self.assertGreater(len(pages), 2)
                last = disk.path / f"out-{len(pages)}.{form}"
                used = sum(-(-(disk.path / page).stat().st_size // PAGE) for page in pages)
                for page in pages:
                    (disk.path / page).unlink()
                disk.fill(spare=PAGE * (used - 1))
                self.assert_refused(self.export(*arguments), last, "No space left on device")
                self.assertEqual(disk.names(), [])
                disk.free()
                last.mkdir()
                self.assert_refused(self.export(*arguments), last, "Is a directory")
                self.assertEqual(disk.names(), [last.name])

    def test_a_full_disk_keeps_what_it_has(self):
        disk = self.disk(1024)
        shutil.copy(self.tune, disk.path / "out.gui")
        for form in FORMS:
            if form != "gui":
                self.output(disk.path, form)[0].write_text("earlier")
        for spare in 0, PAGE:
            disk.fill(spare)
            for form in FORMS:
                with self.subTest(form, spare=spare):
                    before = {name: (disk.path / name).read_bytes() for name in disk.names()}
                    path, arguments = self.output(disk.path, form)
                    tune = path if form == "gui" else self.tune  # the tune replaces itself
                    done = self.export(*arguments, tune=tune)
                    self.assertEqual(done.returncode, 1)
                    self.assertIn("No space left on device", done.stderr)
                    after = {name: (disk.path / name).read_bytes() for name in disk.names()}
                    self.assertEqual(after, before)

    def test_pages_replace_earlier_ones_all_or_none(self):
        for form in ("svg", "png"):
            with self.subTest(form):
                disk = self.disk(1024)
                path, arguments = self.output(disk.path, form)
                self.assertEqual(self.export(*arguments).returncode, 0)
                pages = disk.names()
                for page in pages:
                    (disk.path / page).write_text("earlier")
                disk.fill(spare=PAGE * 12)  # more than one page, less than all
                self.assertEqual(self.export(*arguments).returncode, 1)
                self.assertEqual(disk.names(), pages)
                for page in pages:
                    self.assertEqual((disk.path / page).read_text(), "earlier")

    def test_a_write_protected_target_stays(self):
        powerless = ("setpriv", "--inh-caps=-all", "--bounding-set=-all")  # for whom it counts
        for form in FORMS:
            with self.subTest(form):
                folder = self.folder()
                path, arguments = self.output(folder, form)
                path.write_text("earlier")
                path.chmod(0o444)
                done = self.export(*arguments, before=powerless)
                self.assert_refused(done, path, "Permission denied")
                self.assertEqual(path.read_text(), "earlier")
                self.assertEqual(os.listdir(folder), [path.name])

    def test_a_write_protected_tune_stays(self):
        powerless = ("setpriv", "--inh-caps=-all", "--bounding-set=-all")
        self.tune.chmod(0o444)
        done = self.export("-o", self.tune, before=powerless)
        self.assert_refused(done, self.tune, "Permission denied")
        self.assertEqual(self.tune.read_bytes(), long_tune())

    def test_a_replaced_file_keeps_its_mode(self):
        for form in FORMS:
            with self.subTest(form):
                path, arguments = self.output(self.folder(), form)
                path.touch()
                path.chmod(0o640)
                self.assertEqual(self.export(*arguments).returncode, 0)
                self.assertGreater(path.stat().st_size, PAGE)
                self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o640)

    def test_two_runs_onto_one_output_do_not_mix(self):
        for form, times in (("mid", 20), ("pdf", 5), ("wav", 3), ("print-log", 10)):
            expected = [self.made(form, tune) for tune in (self.tune, TUNE)]
            for _ in range(times):
                folder = self.folder()
                path, arguments = self.output(folder, form)
                runs = [
                    subprocess.Popen(
                        self.command(*arguments, tune=tune),
                        env=self.environment(), stderr=subprocess.DEVNULL,
                    )
                    for tune in (self.tune, TUNE)
                ]
                with self.subTest(form):
                    self.assertEqual([run.wait() for run in runs], [0, 0])
                    self.assertIn(path.read_bytes(), expected)
                    self.assertEqual(os.listdir(folder), [path.name])

    def test_the_time_for_many_tunes_grows_as_their_number(self):
        disk = self.disk(40000)

        def seconds(count):
            tunes = [disk.path / f"{count}-{i}.gui" for i in range(count)]
            for tune in tunes:
                tune.write_bytes(long_tune(1))
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            done = self.export("--format", "mid", "-o", disk.path / f"{count}", *tunes[1:],
                               tune=tunes[0])
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.assertEqual(done.returncode, 0)
            return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

        self.assertLess(seconds(2400), 20 * seconds(300))  # 8 times the tunes

    def test_links_that_lie_in_wait_lead_nowhere(self):
        victim = self.home / "victim"
        victim.write_text("earlier")
        folder = self.folder()
        (folder / "out.wav.part").symlink_to(victim)
        self.assertEqual(self.export("-o", folder / "out.wav").returncode, 0)
        self.assertTrue((folder / "out.wav").is_file())
        # Its process id is that of the shell which it replaces.
        lay_link = ("sh", "-c", f'ln -s {victim} "$TMPDIR/quillon-$$.wav"; exec "$@"', "sh")
        done = self.export("-o", "-", "--format", "wav", before=lay_link,
                           temporary=self.folder(), stdout=subprocess.DEVNULL)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(victim.read_text(), "earlier")

    def test_a_pipe_and_a_device_take_every_form(self):
        for form in FORMS:
            with self.subTest(form):
                folder = self.folder()
                pipe, arguments = self.output(folder, form)
                os.mkfifo(pipe)
                received = self.home / "received"
                with open(received, "wb") as file:
                    reader = subprocess.Popen(["cat", pipe], stdout=file)
                    done = self.export(*arguments)
                    reader.wait(20)
                self.assertEqual((done.stderr, done.returncode), ("", 0))
                self.assertEqual(received.read_bytes(), self.made(form))
                self.assertTrue(stat.S_ISFIFO(pipe.stat().st_mode))
                kind = form.replace("gui", "tune")
                done = self.export("-o", "/dev/null", "--format", kind)
                self.assertEqual((done.stderr, done.returncode), ("", 0))
                self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))

    def test_standard_output_may_be_named_as_a_device(self):
        for form in FORMS:
            if form in ("svg", "png"):
                continue  # several files
            with self.subTest(form):
                arguments = ("-o", "/dev/stdout", "--format", form.replace("gui", "tune"))
                with tempfile.TemporaryFile(dir=self.home) as file:
                    done = self.export(*arguments, stdout=file)
                    self.assertEqual((done.stderr, done.returncode), ("", 0))
                    file.seek(0)
                    self.assertEqual(file.read(), self.made(form))

    def test_a_run_that_is_stopped_leaves_no_part_of_a_sound_file(self):
        signal.signal(signal.SIGINT, signal.default_int_handler)  # a job in the background ignores it
        for end in signal.SIGINT, signal.SIGTERM:
            with self.subTest(end.name):
                folder = self.folder()
                (folder / "out.wav").write_text("earlier")
                run = subprocess.Popen(
                    self.command("-o", folder / "out.wav", "--tempo", "30"),
                    env=self.environment(), stderr=subprocess.DEVNULL,
                )
                while sum(path.stat().st_size for path in folder.iterdir()) < 100 * PAGE:
                    time.sleep(0.01)
                run.send_signal(end)
                self.assertEqual(run.wait(20), -end)
                self.assertEqual(os.listdir(folder), ["out.wav"])
                self.assertEqual((folder / "out.wav").read_text(), "earlier")

    def test_a_protected_disk_keeps_what_it_has(self):
        disk = self.disk()
        for form in FORMS:
            self.output(disk.path, form)[0].write_text("earlier")
        disk.protect()
        for form in FORMS:
            with self.subTest(form):
                path, arguments = self.output(disk.path, form)
                self.assert_refused(self.export(*arguments), path, "Read-only file system")
                self.assertEqual(path.read_text(), "earlier")

    def test_paths_that_lead_nowhere(self):
        for form in FORMS:
            for folder, reason in (
                (self.home / "missing", "No such file or directory"),
                (self.tune, "Not a directory"),
                (self.home / ("x" * 300), "File name too long"),
            ):
                with self.subTest(form, reason=reason):
                    path, arguments = self.output(folder, form)
                    self.assert_refused(self.export(*arguments), path, reason)

    def test_a_device_stays_what_it_is(self):
        for form in FORMS:
            with self.subTest(form):
                link, arguments = self.output(self.home, form)
                link.symlink_to("/dev/full")
                self.assert_refused(self.export(*arguments), link, "No space left on device")
                self.assertTrue(stat.S_ISCHR(link.stat().st_mode))
                self.assertTrue(link.is_symlink())

    def test_a_link_is_written_through(self):
        for form in FORMS:
            with self.subTest(form):
                link, arguments = self.output(self.home, form)
                target = self.home / f"target-{form}"
                link.symlink_to(target)
                target.write_text("earlier")
                self.assertEqual(self.export(*arguments).returncode, 0)
                self.assertTrue(link.is_symlink())
                self.assertGreater(target.stat().st_size, PAGE)

    def test_a_link_to_a_full_disk_stays_and_leads_to_no_half_file(self):
        disk = self.disk()
        disk.fill(spare=PAGE)
        for form in FORMS:
            with self.subTest(form):
                link, arguments = self.output(self.home, form)
                link.symlink_to(disk.path / "target")
                self.assert_refused(self.export(*arguments), link, "No space left on device")
                self.assertTrue(link.is_symlink())
                self.assertEqual(disk.names(), [])

    def test_a_folder_of_tunes_on_a_full_disk(self):
        disk = self.disk()
        disk.fill()
        done = self.export("-o", disk.path, "--format", "mid", tune=TUNE)
        self.assertEqual(done.returncode, 1)
        done = self.export("-o", disk.path, "--format", "pdf", TUNE)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(
            [line.split(": ")[-2:] for line in done.stderr.splitlines()],
            [
                [f"{disk.path}/{name} cannot be written", "No space left on device; "
                 "name another place with -o"]
                for name in ("auld_lang_syne.pdf", "tune.pdf")
            ],
        )
        self.assertEqual(disk.names(), [])

    def test_standard_output_that_is_full(self):
        full = ("standard output", "No space left on device", "send it to another place")
        with open("/dev/full", "w", encoding="ascii") as device:
            for form in FORMS:
                with self.subTest(form):
                    form = form.replace("gui", "tune")
                    done = self.export("-o", "-", "--format", form, stdout=device)
                    self.assert_refused(done, *full)
            self.assert_refused(self.export("--order", stdout=device), *full)
            self.tune.write_bytes(long_tune().replace(b"9,7,84", b"9,0,84"))
            self.assert_refused(self.export("--check", stdout=device), *full)
            done = self.export("--help", stdout=device)
            self.assertEqual(done.stderr, f"quillon-export: {full[0]} cannot be written: "
                             f"{full[1]}; {full[2]}\n")
            self.assertEqual(done.returncode, 1)
        self.assertEqual(os.listdir(self.home), ["tune.gui"])

    def test_sound_for_standard_output_when_no_scratch_file_fits(self):
        disk = self.disk()
        disk.fill(spare=PAGE)
        done = self.export(
            "-o", "-", "--format", "wav", temporary=disk.path, stdout=subprocess.PIPE
        )
        self.assertEqual(done.stdout, "")
        self.assertIn("cannot be written: No space left on device", done.stderr)
        self.assertEqual(done.stderr.count("\n"), 1)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(disk.names(), [])


class ScriptedWindow(DiskTest):
    """Two measures of quarters are typed before each script."""

    TYPED = "".join(f"type {fret}\nkey Enter\n" for fret in "0235") + "key Enter\n"
    TYPED *= 2

    def play(self, script, folder=None, stdout=subprocess.PIPE):
        path = self.home / "script.scn"
        path.write_text(self.TYPED + script)
        return subprocess.run(
            [PROGRAMS / "play-scenario", path], cwd=folder or self.home, stdout=stdout,
            stderr=subprocess.PIPE, text=True, check=False,
        )

    def assert_fault(self, done):
        self.assertEqual(done.stdout, f"fault: {FAULT}\n")
        self.assertEqual((done.stderr, done.returncode), ("", 1))

    def test_save_is_a_run_time_error(self):
        for reason, folder in self.worlds("tune.gui").items():
            with self.subTest(reason):
                good = self.home / "good.gui"
                script = f"dialog {good}\nmenu mnuSaveAs\n"
                script += f"dialog {folder}/tune.gui\nmenu mnuSaveAs\nmenu mnuSave\ntable\n"
                self.assert_fault(self.play(script))
                self.assertEqual(good.read_bytes().count(b"\r\n"), 9 * 11)

    def test_save_as_ends_silently_and_the_table_is_whole(self):
        good, better = self.home / "good.gui", self.home / "better.gui"
        self.play(f"dialog {good}\nmenu mnuSaveAs\n")
        table = self.play("table\n").stdout
        for reason, folder in self.worlds("tune.gui").items():
            with self.subTest(reason):
                path = folder / "tune.gui"
                done = self.play(
                    f"dialog {path}\nmenu mnuSaveAs\nshown\ntable\nstate\n"
                    f"dialog {better}\nmenu mnuSaveAs\n"
                )
                self.assertEqual((done.stderr, done.returncode), ("", 0))
                self.assertTrue(done.stdout.startswith("\n" + table), "no box, the same table")
                for line in ("Saved=0", "mnuSave=off", f"FileName={path}"):
                    self.assertIn(f"\n{line}\n", done.stdout)
                self.assertEqual(better.read_bytes(), good.read_bytes())

    def test_a_scratch_file_that_cannot_be_written_is_a_run_time_error(self):
        for name, script in (
            ("Temp.Sav", "press cmdPrevious\nmenu mnuInsMeas\n"),
            ("CopyBuff.Dat", "copy 1 1\n"),
        ):
            for reason, folder in self.worlds(name).items():
                with self.subTest(name, reason=reason):
                    self.assert_fault(self.play(script + "table\n", folder))

    def test_a_pasted_measure_whose_tail_cannot_be_parked_is_a_run_time_error(self):
        full = self.disk()
        full.fill(spare=PAGE)  # for the copied measure
        worlds = self.worlds("Temp.Dat")
        for folder in full.path, worlds["Is a directory"], worlds["no space on a device"]:
            done = self.play("copy 1 1\nprompt 1\npress lblMeasNum\nmenu mnuPaste\n", folder)
            self.assert_fault(done)

    def test_a_scratch_file_that_cannot_be_deleted_is_a_run_time_error(self):
        for end in "cmdNext", "cmdPrevious":
            folder = pathlib.Path(tempfile.mkdtemp(dir=self.home))
            scratch = folder / "Temp.Sav"
            scratch.touch()
            mount("--bind", scratch, scratch)
            self.addCleanup(subprocess.run, ["umount", scratch], check=True)
            with self.subTest(end):
                script = "prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nkey Enter\n"
                self.assert_fault(self.play(script + f"press {end}\n", folder))

    def test_standard_output_that_is_full(self):
        with open("/dev/full", "w", encoding="ascii") as device:
            done = self.play("table\n", stdout=device)
        self.assertEqual(done.stderr, "play-scenario: standard output cannot be written\n")
        self.assertEqual(done.returncode, 2)


class Window(DiskTest):
    """Home has room; what a test puts on a small disk it names."""

    GROW = ("menu mnuNoteBefore",) * 30  # more than fits into the last page of the tune's file

    def setUp(self):
        super().setUp()
        self.work = self.home / "work"
        self.work.mkdir()

    def window(self, tune="", folder=None, **more):
        player = Player(PROGRAMS, tune, folder or self.work, environment(self.home, **more))
        self.addCleanup(player.process.kill)
        return player

    def on(self, disk):
        """A tune on that disk."""
        return shutil.copy(TUNE, disk.path)

    def rescued(self, folder=None):
        """The bytes of the one tune there that the next start would bring back, None without any."""
        journals = list((folder or self.home / "data/quillon").glob("Run-*.journal"))
        told = subprocess.run([PROGRAMS / "read_journals"], input="\n".join(map(str, journals)),
                              capture_output=True, check=True, text=True).stdout
        tunes = []
        for journal in map(json.loads, told.splitlines()):
            saved = bytes.fromhex(journal.get("saved", ""))
            path = pathlib.Path(bytes.fromhex(journal.get("saved_path", "")).decode())
            spoilt = saved and not (path.is_file() and path.read_bytes() == saved)
            if journal.get("changed") or spoilt:
                tunes.append(bytes.fromhex(journal["tune"]))
        self.assertLess(len(tunes), 2)
        return tunes[0] if tunes else None

    def saved_after(self, *lines):
        """What the tune's file holds when those lines are done and it is saved."""
        path = self.home / "expected.gui"
        shutil.copy(TUNE, path)
        window = self.window(path, XDG_DATA_HOME=self.home / "other")
        self.assertTrue(window.do(*lines, "menu mnuSave"), window.boxes)
        self.assertEqual(window.end(), 0)
        return path.read_bytes()

    def assert_fault(self, window, doing, kept=None, file=None):
        self.assertFalse(window.open)
        self.assertEqual(window.end(), 1)
        self.assertEqual(len(window.boxes), 1)
        lines = window.boxes[0].split(r"\n")
        self.assertEqual(lines[:2], [BOX, f"The error occurred during: {doing}"])
        if kept is None:
            self.assertEqual(len(lines), 3)
        elif kept == JOURNAL:
            self.assertEqual(lines[2:-1], ["Start again goes on where you were before it happened.",
                                           "Your work is also kept under More > Rescued Tunes."])
        else:
            self.assertRegex(lines[2], f"^Your work has been saved in {re.escape(str(kept))}/")
            self.assertEqual(len(lines), 4)
        self.assertRegex(lines[-1], rf"^The file: {re.escape(str(file or '/'))}")

    # Saving

    def test_save_on_a_full_disk_keeps_the_work(self):
        disk = self.disk()
        window = self.window(self.on(disk))
        window.do(*self.GROW)
        disk.fill()
        window.do("menu mnuSave")
        self.assert_fault(window, "Save", JOURNAL,
                          f"{disk.path / TUNE.name} (No space left on device)")
        expected = self.saved_after(*self.GROW)
        self.assertEqual(self.rescued(), expected)
        self.assertGreater(len(expected), len((disk.path / TUNE.name).read_bytes()))
        self.window().end()
        (rescued,) = (self.home / "data/quillon/Rescued").glob("*.gui")
        self.assertEqual(rescued.read_bytes(), expected)

    def test_save_of_an_unchanged_tune_keeps_it_too(self):
        tune = self.work / "tune.gui"
        shutil.copy(TUNE, tune)
        window = self.window(tune)
        tune.unlink()
        tune.symlink_to("/dev/full")
        window.do("menu mnuSave")
        self.assert_fault(window, "Save", JOURNAL)
        self.assertEqual(self.rescued(), TUNE.read_bytes())

    def test_save_where_the_file_cannot_be_opened_leaves_it_whole(self):
        disk = self.disk()
        path = self.on(disk)
        for protected in True, False:
            window = self.window(path)
            window.do("type 7", "key Enter")
            if protected:
                disk.protect()
            else:
                disk.protect(False)
                os.rename(path, disk.path / "before.gui")
                os.mkdir(path)
            window.do("menu mnuSave")
            self.assert_fault(window, "Save", JOURNAL)
            self.assertEqual(self.rescued(), self.saved_after("type 7", "key Enter"))
            shutil.rmtree(self.home / "data")
        self.assertEqual((disk.path / "before.gui").read_bytes(), TUNE.read_bytes())

    def test_save_where_the_folder_has_gone(self):
        folder = self.home / "stick"
        folder.mkdir()
        window = self.window(shutil.copy(TUNE, folder))
        window.do("type 7", "key Enter")
        shutil.rmtree(folder)
        window.do("menu mnuSave")
        self.assert_fault(window, "Save", JOURNAL)
        self.assertEqual(self.rescued(), self.saved_after("type 7", "key Enter"))

    def test_save_as_on_a_full_disk_says_nothing_and_the_window_goes_on(self):
        disk = self.disk()
        disk.fill(spare=PAGE)
        window = self.window(shutil.copy(TUNE, self.work))
        window.do("type 7", "key Enter", f"file {disk.path}/new.gui", "menu mnuSaveAs")
        expected = self.saved_after("type 7", "key Enter")
        self.assertEqual((window.open, window.boxes), (True, []))
        self.assertEqual(self.rescued(), expected)
        self.assertEqual((disk.path / "new.gui").read_bytes(), expected[:PAGE])
        self.assertEqual((self.work / TUNE.name).read_bytes(), TUNE.read_bytes())
        window.do(f"file {self.work}/new.gui", "menu mnuSaveAs")
        self.assertEqual((self.work / "new.gui").read_bytes(), expected)
        self.assertIsNone(self.rescued())
        self.assertFalse(window.do("menu mnuExit"))
        self.assertEqual((window.end(), window.boxes), (0, []))

    # The journal

    def test_a_journal_that_finds_no_room_falls_behind_and_catches_up(self):
        disk = self.disk()
        window = self.window(shutil.copy(TUNE, self.work), XDG_DATA_HOME=disk.path)
        window.do("type 7", "key Enter")
        self.assertEqual(self.rescued(disk.path / "quillon"), self.saved_after("type 7", "key Enter"))
        disk.fill()
        window.do(*self.GROW)
        self.assertEqual((window.open, window.boxes), (True, []))
        expected = self.saved_after("type 7", "key Enter", *self.GROW)
        self.assertNotIn(self.rescued(disk.path / "quillon"), (None, expected))
        disk.free()
        window.do("key Down")
        self.assertEqual(self.rescued(disk.path / "quillon"), expected)
        window.do("menu mnuSave")
        self.assertEqual((self.work / TUNE.name).read_bytes(), expected)
        self.assertIsNone(self.rescued(disk.path / "quillon"))
        self.assertEqual(window.end(), 0)

    def test_a_folder_of_the_program_that_cannot_be_used_gives_way_to_a_private_one(self):
        disk = self.disk()
        self.window(XDG_DATA_HOME=disk.path).end()
        tunings = (disk.path / "quillon/Strings6.tun").read_bytes() + b'"Mine",1,2,3,4,5,6\r\n'
        (disk.path / "quillon/Strings6.tun").write_bytes(tunings)
        disk.protect()
        file, link = self.home / "file", self.home / "link"
        file.touch()
        link.symlink_to(self.home / "nowhere")
        for data, reason in (
            (disk.path, "Read-only file system"),
            (file, "Not a directory"),
            (link, "Not a directory"),
            ("/proc/nobody", "No such file or directory"),
        ):
            with self.subTest(data):
                path = self.work / "tune.gui"
                shutil.copy(TUNE, path)
                window = self.window(path, XDG_DATA_HOME=data)
                (own,) = (self.home / "temporary").glob("quillon-own-*")
                self.assertEqual(own.stat().st_mode & 0o777, 0o700)
                self.assertEqual(
                    window.notes,
                    [f"The folder for unsaved work and tunings cannot be used: {reason}.\\n"
                     f"Until it can, they are kept in {own}, which the system may clear."],
                )
                window.do("type 7", "key Enter")
                copy = self.rescued(own)
                window.do("menu mnuSave", "type 8")
                self.assertEqual((window.end(), window.boxes), (0, []))
                self.assertEqual(path.read_bytes(), copy)
                if data == disk.path:
                    self.assertEqual((own / "Strings6.tun").read_bytes(), tunings)
                again = self.window(XDG_DATA_HOME=data)
                self.assertEqual(len(again.notes), 1)
                self.assertIn("earlier session:\\ntune, ", again.notes[0])
                self.assertEqual((again.end(), again.boxes), (0, []))
                shutil.rmtree(own)

    def test_where_no_private_folder_can_be_made_either_everything_else_works(self):
        disk = self.disk()
        self.window(XDG_DATA_HOME=disk.path).end()  # leaves the tuning file
        disk.protect()
        window = self.window(
            shutil.copy(TUNE, self.work), XDG_DATA_HOME=disk.path, TMPDIR=disk.path
        )
        self.assertIn("cannot be used: Read-only file system.", window.notes[0])
        window.do("type 7", "key Enter", "menu mnuSave", "menu mnuExit")
        self.assertEqual((window.end(), window.boxes), (0, []))
        expected = self.saved_after("type 7", "key Enter")
        self.assertEqual((self.work / TUNE.name).read_bytes(), expected)

    def test_a_fault_finds_another_place_for_the_work(self):
        disk = self.disk()
        path = self.on(disk)
        for kept_before in (), ("type 7", "key Enter"):
            window = self.window(path, XDG_DATA_HOME=disk.path)
            window.do(*kept_before)
            disk.fill()
            window.do(*self.GROW, "menu mnuSave")
            self.assert_fault(window, "Save", self.home / "temporary")
            expected = self.saved_after(*kept_before, *self.GROW)
            (kept,) = (self.home / "temporary").glob("*.gui")
            self.assertEqual(kept.read_bytes(), expected)
            shutil.rmtree(self.home / "temporary")
            (self.home / "temporary").mkdir()
            disk.free()
            path = self.on(disk)

    def test_where_nothing_can_be_written_no_copy_is_claimed(self):
        disk, other = self.disk(), self.disk()
        other.fill()
        window = self.window(self.on(disk), XDG_DATA_HOME=disk.path, TMPDIR=other.path)
        disk.fill()
        window.do(*self.GROW)
        self.assertEqual((window.open, window.boxes), (True, []))
        window.do(f"file {self.work}/elsewhere.gui", "menu mnuSaveAs")
        self.assertEqual(
            (self.work / "elsewhere.gui").read_bytes(), self.saved_after(*self.GROW)
        )
        window.do("type 7", f"file {disk.path}/new.gui", "menu mnuSaveAs", "menu mnuSave")
        self.assert_fault(window, "Save")
        self.assertEqual(disk.names(), [TUNE.name, "new.gui", "quillon"])
        self.assertEqual(other.names(), [])

    # Scratch files

    def test_scratch_files_that_cannot_be_written_end_with_the_work_kept(self):
        for doing, lines in (
            ("Insert Measure", ["menu mnuInsMeas"]),
            ("Copy", ["menu mnuCopy", "type 1", "key Enter", "type 1", "key Enter"]),
        ):
            with self.subTest(doing):
                disk = self.disk()
                window = self.window(shutil.copy(TUNE, self.work), XDG_RUNTIME_DIR=disk.path)
                window.do("type 7", "key Enter")
                disk.fill()
                window.do(*lines)
                self.assert_fault(window, doing, JOURNAL)
                self.assertEqual(self.rescued(), self.saved_after("type 7", "key Enter"))
                shutil.rmtree(self.home / "data")

    def test_a_scratch_file_that_cannot_be_deleted_ends_with_the_work_kept(self):
        disk = self.disk()
        window = self.window(shutil.copy(TUNE, self.work), XDG_RUNTIME_DIR=disk.path)
        window.do("menu mnuInsMeas", "type 7", "key Enter")
        disk.protect()
        window.do("press cmdNext")
        self.assert_fault(window, "Next", JOURNAL)
        expected = self.saved_after("menu mnuInsMeas", "type 7", "key Enter", "press cmdNext")
        self.assertEqual(self.rescued(), expected)

    def test_where_no_folder_for_the_run_can_be_made_scratch_files_lie_among_the_temporary_ones(self):
        disk = self.disk()
        disk.protect()
        for runtime in disk.path, "relative":
            window = self.window(shutil.copy(TUNE, self.work), XDG_RUNTIME_DIR=runtime)
            window.do("menu mnuInsMeas")
            scratch = list((self.home / "temporary").glob("*/Temp.Sav"))
            self.assertEqual(len(scratch), 1)
            self.assertTrue(window.do("press cmdPrevious"))
            self.assertFalse(scratch[0].exists())
            self.assertEqual((window.end(), window.boxes), (0, []))

    # MIDI files

    def build(self, window, kind):
        """The box that a build brings up."""
        count = len(window.boxes)
        self.assertTrue(window.do("menu mnuOpnMidi", f"press FType_{kind}", "press cmdCreate"))
        return window.boxes[count:]

    def test_a_midi_file_on_a_full_disk_is_reported_and_none_is_left(self):
        disk = self.disk()
        path = disk.path / "long.gui"
        path.write_bytes(long_tune())
        window = self.window(path)
        report = BOX + r"\nThe MIDI file cannot be written."
        for spare in 0, PAGE:
            disk.fill(spare)
            self.assertEqual(self.build(window, 0), [report])
            self.assertEqual(disk.names(), [path.name])
        disk.free()
        disk.protect()
        self.assertEqual(self.build(window, 0), [report])
        disk.protect(False)
        self.assertEqual(self.build(window, 0), [])
        self.assertEqual(disk.names(), ["long.Mid", path.name])
        self.assertEqual(window.end(), 0)

    def test_a_play_file_in_a_full_folder_is_reported_and_none_is_left(self):
        disk = self.disk()
        window = self.window(shutil.copy(TUNE, self.work), XDG_DATA_HOME=disk.path)
        disk.fill()
        report = BOX + r"\nThe MIDI file cannot be written."
        self.assertEqual(self.build(window, 1), [report])
        left = {path.suffix for path in (disk.path / "quillon").iterdir() if path.is_file()}
        self.assertEqual(left, {".journal", ".tun"})
        disk.free()
        self.assertEqual(self.build(window, 1), [])
        play = disk.path / "quillon/Playfile.mid"
        whole = play.read_bytes()
        mount("--bind", play, play)  # what is mounted cannot be deleted
        self.addCleanup(subprocess.run, ["umount", str(play)], check=False)
        window.do("press cmdClear")
        report = BOX + r"\nThe MIDI file that is there cannot be deleted."
        self.assertEqual(self.build(window, 1), [report])
        self.assertEqual(play.read_bytes(), whole)
        self.assertEqual(window.end(), 0)

    # Settings and the program's folder

    def test_settings_that_cannot_be_written(self):
        disk = self.disk()
        self.window(XDG_CONFIG_HOME=disk.path).do("menu mnuBanjo", "menu mnuExit")
        settings = disk.path / "Quillon.ini"
        before = settings.read_bytes()
        for bar in disk.fill, disk.protect:
            bar()
            window = self.window(XDG_CONFIG_HOME=disk.path)
            self.assertTrue(window.do("menu mnuGuitar", "type 7"))
            window.do("answer no", "close")
            self.assertEqual((window.end(), len(window.boxes)), (0, 1))
            self.assertEqual(settings.read_bytes(), before)

    def test_the_program_starts_and_ends_on_protected_settings(self):
        disk = self.disk()
        disk.protect()
        program = subprocess.Popen(
            [PROGRAMS / "quillon"], cwd=self.work, env=environment(self.home, XDG_CONFIG_HOME=disk.path),
            stderr=subprocess.PIPE, text=True,
        )
        end = time.monotonic() + 20
        while not (self.home / "data/quillon/Strings6.tun").exists():
            self.assertLess(time.monotonic(), end)
            time.sleep(0.01)
        time.sleep(0.2)
        program.send_signal(signal.SIGTERM)
        errors = program.communicate(timeout=20)[1]
        self.assertEqual(program.returncode, 0)
        self.assertNotIn("ettings", errors)

    def test_without_its_tuning_file_and_a_place_for_it_the_program_cannot_start(self):
        disk = self.disk()
        disk.fill()
        window = self.window(XDG_DATA_HOME=disk.path)
        self.assert_fault(window, "Start")


class Result(unittest.TextTestResult):
    """Counts tests, and a failing part of a test as that test's failure."""

    def failed(self):
        return len({test.id().split(" ")[0] for test, _ in self.failures + self.errors})


def stay_apart():
    """Runs this program again where its mounts are its own."""
    for way in ["unshare", "--mount"], ["unshare", "--mount", "--map-root-user"]:
        mounts = subprocess.run(
            [*way, "mount", "-t", "tmpfs", "tmpfs", "/mnt"], stderr=subprocess.PIPE, check=False
        )
        if mounts.returncode == 0:
            os.execvp(way[0], [*way, sys.executable, __file__, APART, *sys.argv[1:]])
    print(mounts.stderr.decode(), end="")
    print("No disk can be mounted here: run as root, or allow users to have name spaces")
    print("0 passed, 1 failed")
    sys.exit(1)


def main():
    global PROGRAMS
    if APART not in sys.argv:
        stay_apart()
    sys.argv.remove(APART)
    for device in "/dev/full", "/dev/null":
        mount("--bind", device, device)  # over a mount no file can be renamed, by mistake
    PROGRAMS = pathlib.Path(sys.argv.pop(1)).resolve()
    program = unittest.main(
        exit=False, testRunner=unittest.TextTestRunner(sys.stdout, resultclass=Result)
    )
    result = program.result
    print(f"{result.testsRun - result.failed()} passed, {result.failed()} failed")
    sys.exit(0 if result.wasSuccessful() else 1)


if __name__ == "__main__":
    main()

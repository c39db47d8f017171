#!/usr/bin/python3
"""Cuts the power under the running editor, and checks what the disk has kept.

    power_cut.py [--bin FOLDER] [--feed KEY_FEED] [--cuts CUTS] [FILE_SYSTEM...]

The editor works on a disk of its own, a file that is mounted. For each cut it is stopped, at any
moment, the disk is copied as it is, and the editor goes on. The copies are mounted in the end, as
after a power cut. What must be on them is written by the models in Python (see kill_story.py):

- The journal has all but at most the last second of what was done.
- A tune that was saved is in its file. If the power was cut while it was saved again, the old or the
  new one is in the file, or the new one in the journal.

There are CUTS cuts on each file system while things are typed and as many around Save, 60 unless
given. Exit status 1 if something was lost. Needs a user who may mount: skipped with a word for others.
"""

import argparse
import contextlib
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from kill_story import Typist
from kill_test import Home, Life, Loss, Reader, latest, summary

ROOT = pathlib.Path(__file__).resolve().parents[2]
FILE_SYSTEMS = {
    "ext4": ("ext4", "loop"),
    "ext4-noauto_da_alloc": ("ext4", "loop,noauto_da_alloc"),
    "xfs": ("xfs", "loop"),
    "btrfs": ("btrfs", "loop"),
}
DISK_SIZE = 320_000_000  # bytes; the least that every mkfs takes
MOST_LOST = 1.0  # seconds
PACE = 0.02  # seconds between actions


class Skipped(Exception):
    """Why nothing can be tested here."""


class Disk:
    """A file with a file system in it, and where it is mounted."""

    def __init__(self, folder, kind):
        self.kind, self.options = FILE_SYSTEMS[kind]
        self.file = folder / "disk"
        self.place = folder / "mounted"
        self.place.mkdir()
        with open(self.file, "wb") as file:
            file.truncate(DISK_SIZE)
        if not shutil.which(f"mkfs.{self.kind}", path=os.environ["PATH"] + ":/usr/sbin:/sbin"):
            raise Skipped(f"there is no mkfs.{self.kind}")
        quiet(f"mkfs.{self.kind}", "-q", self.file)

    @contextlib.contextmanager
    def mounted(self, file=None):
        if not quiet("mount", "-o", self.options, file or self.file, self.place):
            raise Skipped("mounting is not allowed here") if file is None else Loss("no mount")
        try:
            yield self.place
        finally:
            while not quiet("umount", self.place):
                time.sleep(0.1)

    def copy(self, name):
        """As the plug is pulled."""
        copy = self.file.with_name(name)
        subprocess.run(["cp", "--sparse=always", self.file, copy], check=True)
        return copy


def quiet(*command):
    environment = {**os.environ, "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"}
    return subprocess.run(command, env=environment, capture_output=True).returncode == 0


class Cut:
    """A copy of the disk, the actions that were done a second before, and those that were done or
    under way by then."""

    def __init__(self, copy, safe, done):
        self.copy, self.safe, self.done = copy, safe, done


class PulledLife(Life):
    """A life during which the disk is copied."""

    def __init__(self, home, given, disk):
        super().__init__(home, given, [])
        self.disk = disk
        self.ends = []  # of the actions, in the time that the program has run
        self.stopped = 0.0

    def clock(self):
        return time.monotonic() - self.stopped

    def play(self, action):
        super().play(action)
        self.ends.append(self.clock())

    def play_and_cut(self, action, pause, name):
        self.send([action])
        time.sleep(pause)
        self.process.send_signal(signal.SIGSTOP)
        begin = time.monotonic()
        now = self.clock()
        cut = Cut(self.disk.copy(name), sum(end < now - MOST_LOST for end in self.ends), self.done)
        self.stopped += time.monotonic() - begin
        self.process.send_signal(signal.SIGCONT)
        self.wait(self.done + 1)
        self.ends.append(self.clock())
        return cut


def typing(typist, chance, cuts):
    """Anything but files. Returns the numbers of the actions that are cut."""
    while len(typist.played) < (cuts + 1) * 20:
        typist.edit()
        for chapter in chance.sample([Typist.chord, Typist.insert_note, Typist.undo, Typist.paste], 2):
            chapter(typist)
    return {i * 20 + chance.randrange(20) for i in range(1, cuts)} | {cuts * 20}


def saving(typist, _, cuts):
    """Saves again and again."""
    saves = set()
    typist.save_new()
    for _ in range(cuts):
        typist.edit()
        typist.emit("menu mnuSave")
        saves.add(len(typist.played) - 1)
    return saves


def play(home, given, disk, kind, tell):
    """Returns the actions and the cuts."""
    chance = random.Random(f"{kind} {tell.__name__}")
    typist = Typist(f"{kind} {tell.__name__}", home.work, {}, "")
    typist.start()
    cut_at = tell(typist, chance, given.cuts)
    life = PulledLife(home, given, disk)
    cuts = []
    try:
        for number, action in enumerate(typist.played):
            time.sleep(PACE)
            if number in cut_at:
                cuts.append(life.play_and_cut(action, chance.uniform(0, 2 * PACE), f"cut{number}"))
            else:
                life.play(action)
    finally:
        life.kill()
    return typist.played, cuts


def look(home, actions, cut):
    """Checks a copy that is mounted."""
    own = [home.reader.read(path) for path in home.own.glob("*.journal")]
    journal = latest([told for told in own if told])
    works = [action.disk.work for action in actions[max(cut.safe - 1, 0) : cut.done + 1]]
    if journal["work"] not in works:
        raise Loss(f"journal: found {summary([journal['work']])}, expected any of {summary(works)}")
    before, after = (actions[i].disk.tunes for i in (cut.done - 1, cut.done))
    for name, data in after.items():
        path = home.work / name
        found = path.read_bytes() if path.exists() else None
        if found not in (before.get(name), data) and journal["saved"] != data:
            raise Loss(f"{name}: found {summary([found])}, expected {summary([before.get(name), data])}")


def test(folder, given, reader, kind, tell):
    """Prints what was lost. Returns whether nothing was."""
    disk = Disk(folder, kind)
    with disk.mounted() as place:
        home = Home(place, reader)
        actions, cuts = play(home, given, disk, kind, tell)
    losses = 0
    for cut in cuts:
        with disk.mounted(cut.copy):
            try:
                look(home, actions, cut)
            except Loss as loss:
                losses += 1
                print(f"{kind}, {tell.__name__}, after {cut.done} actions: {loss}", flush=True)
        cut.copy.unlink()
    print(f"{kind}, {tell.__name__}: {len(cuts)} cuts, {losses} with losses", flush=True)
    return losses == 0


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("kinds", nargs="*", metavar="FILE_SYSTEM", help=", ".join(FILE_SYSTEMS))
    arguments.add_argument("--bin", default=str(ROOT / "build/dev/bin"))
    arguments.add_argument("--feed", default=str(ROOT / "build/dev/tests/qt/libkey_feed.so"))
    arguments.add_argument("--cuts", type=int, default=60)
    given = arguments.parse_args()
    reader = Reader(f"{given.bin}/read_journals")
    passed = True
    with contextlib.closing(reader):
        for kind in given.kinds or FILE_SYSTEMS:
            for tell in (typing, saving):
                with tempfile.TemporaryDirectory() as folder:
                    try:
                        passed &= test(pathlib.Path(folder), given, reader, kind, tell)
                    except Skipped as reason:
                        print(f"{kind}: skipped, {reason}")
    return 0 if passed else 1


if __name__ == "__main__":
    sys.exit(main())

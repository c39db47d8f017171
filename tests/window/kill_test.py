#!/usr/bin/python3
"""Kills the editor at random moments and checks that no work is lost.

    kill_test.py [--program QUILLON] [--feed KEY_FEED] [--seed SEED] [RUNS]

A run is three lives of the program itself, one after the other in one home, without a display; keys
and clicks reach it as from a display. What is played, and what must then be on the disk, is written
by the models in Python (see kill_story.py). In the first part of a life the disk is looked at after
every action, as if the program had been killed there: exactly the tunes and copies that must be
there, and no other. The second part is played at full speed until a kill in its midst: the disk then
holds what it must hold after the last action that was finished, or after the one under way.

The clock is stopped during a run, so that all its copies want the same name. RUNS is 40 unless
given, a few at a time. Exit status 1 if a run failed.
"""

import argparse
import concurrent.futures
import contextlib
import os
import pathlib
import random
import resource
import select
import subprocess
import sys
import tempfile
import time
import zlib

from kill_story import Typist

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIVES = 3
PATIENCE = 60  # seconds for one action on a loaded machine
EXTENSIONS = (".gui", ".bjo", ".bss")
LONGEST_PLAY = 150  # actions at full speed before the kill, which is sent as one is done ...
LONGEST_PAUSE = 0.01  # ... up to so many seconds later
FULL_DISK = 100  # bytes: no copy of a tune with notes is as short


class Loss(Exception):
    """What is wrong on the disk."""


class Home:
    """All that the lives of a run write, and the copies that are there before a life begins."""

    def __init__(self, folder, seed):
        self.folder = pathlib.Path(folder)
        self.work = self.folder / "work"
        for name in ("work", "data", "config", "temporary", "runtime"):
            (self.folder / name).mkdir(mode=0o700)
        self.environment = {
            **os.environ,
            "HOME": folder,
            "XDG_DATA_HOME": folder + "/data",
            "XDG_CONFIG_HOME": folder + "/config",
            "XDG_RUNTIME_DIR": folder + "/runtime",
            "TMPDIR": folder + "/temporary",
            "QT_QPA_PLATFORM": "offscreen",
            "KEY_FEED_TIME": str(1_000_000_000 + seed),
        }
        self.earlier = {}

    def tunes(self):
        return {path.name: path.read_bytes() for path in self.work.glob("*.gui")}

    def copies(self):
        """Every tune that nobody has saved, wherever the program has put it. A tune is known by its
        extension, as it is in the program's dialogs."""
        copies = {}
        for place, _, names in os.walk(self.folder):
            for name in names:
                path = pathlib.Path(place, name)
                if path.suffix in EXTENSIONS and path.parent != self.work:
                    copies[path] = path.read_bytes()
        return copies

    def own_copies(self):
        """Those of this life; the others must be as they were."""
        copies = self.copies()
        for path, data in self.earlier.items():
            if copies.pop(path, None) != data:
                raise Loss(f"{path.name}, a copy of an earlier life, is gone or changed")
        return sorted(copies.values())

    def look(self, action):
        """At rest: all that must be there, and nothing else."""
        compare("copies", self.own_copies(), action.disk.copies())
        compare("tunes", self.tunes(), action.disk.tunes)

    def look_after_kill(self, done, under_way):
        """A tune is written, in place, before its copy goes: one of them is whole at every moment."""
        copies, tunes = self.own_copies(), self.tunes()
        before, after = done.disk, under_way.disk
        expected = [before.copies(), *(sorted(before.left + [copy]) for copy in under_way.between)]
        if copies in expected and all(
            tunes.get(name) == before.tunes.get(name) or data.startswith(tunes.get(name, b""))
            for name, data in after.tunes.items()
        ):
            return
        compare(f"copies in `{under_way.line}`", copies, after.copies())
        compare(f"tunes in `{under_way.line}`", tunes, after.tunes)


def compare(what, found, expected):
    if found != expected:
        raise Loss(f"{what}: found {summary(found)}, expected {summary(expected)}")


def summary(files):
    """Their sizes, and a digest, since contents are long."""
    named = files.items() if isinstance(files, dict) else enumerate(files, 1)
    return [f"{name}: {len(data)} bytes {zlib.crc32(data):08x}" for name, data in named]


class Life:
    """The program, with the keys that are fed to it."""

    def __init__(self, home, program, feed, arguments):
        self.process = subprocess.Popen(
            [program, *arguments],
            cwd=home.work,
            env={**home.environment, "LD_PRELOAD": feed},
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            restore_signals=False,  # a file that may not grow is a failure to write, not a signal
        )
        self.done = 0

    def send(self, actions):
        lines = "".join("\t".join(action.tokens) + "\n" for action in actions)
        with contextlib.suppress(BrokenPipeError):  # it has ended, which its answers tell
            self.process.stdin.write(lines.encode())
            self.process.stdin.flush()

    def wait(self, count):
        """Until so many actions are done."""
        end = time.monotonic() + PATIENCE
        while self.done < count:
            ready, _, _ = select.select([self.process.stdout], [], [], max(0, end - time.monotonic()))
            block = os.read(self.process.stdout.fileno(), 1 << 16) if ready else b""
            if not block:
                status = self.process.poll()
                raise Loss(f"the one after it comes to no end, status {status}")
            self.done += block.count(b"\n")

    def play(self, action):
        if action.full:
            self._limit_files(FULL_DISK)
        self.send([action])
        self.wait(self.done + 1)
        if action.full:
            self._limit_files(resource.RLIM_INFINITY)

    def _limit_files(self, size):
        limits = (size, resource.RLIM_INFINITY)
        resource.prlimit(self.process.pid, resource.RLIMIT_FSIZE, limits)

    def kill(self):
        self.process.kill()
        self.done += self.process.stdout.read().count(b"\n")
        self.process.wait()
        self.process.stdout.close()
        with contextlib.suppress(BrokenPipeError):
            self.process.stdin.close()


def live(home, given, seed, named):
    chance = random.Random(f"kill {seed}")
    typist = Typist(seed, home.work, home.tunes(), named)
    looked_at = typist.tell()
    actions = typist.played
    life = Life(home, given.program, given.feed, [named] if named else [])
    try:
        for action in actions[:looked_at]:
            life.play(action)
            home.look(action)
        last = chance.randrange(looked_at, looked_at + LONGEST_PLAY)
        life.send(actions[looked_at:])
        life.wait(last)
        time.sleep(chance.uniform(0, LONGEST_PAUSE))
    except Loss as loss:
        story = ", ".join(action.line for action in actions[: life.done + 1][-8:])
        raise Loss(f"after {life.done} actions (... {story}): {loss}") from None
    finally:
        life.kill()
    home.look_after_kill(actions[life.done - 1], actions[: life.done + 1][-1])
    home.earlier = home.copies()


def named_tune(home, chance):
    """One of the saved tunes. After a start with an empty one the cursor is not where the model has
    it, which knows no start with a tune."""
    tunes = [name for name, data in home.tunes().items() if data.count(b"\n") > 9]
    return chance.choice(sorted(tunes)) if tunes else ""


def failure(given, seed):
    """Why a run failed, None if it did not."""
    chance = random.Random(seed)
    with tempfile.TemporaryDirectory() as folder:
        home = Home(folder, seed)
        for number in range(1, LIVES + 1):
            named = named_tune(home, chance) if number == 2 else ""
            try:
                live(home, given, f"{seed} {number}", named)
            except Loss as loss:
                return f"life {number}: {loss}"
    return None


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("runs", nargs="?", type=int, default=40)
    arguments.add_argument("--program", default=str(ROOT / "build/dev/bin/quillon"))
    arguments.add_argument("--feed", default=str(ROOT / "build/dev/tests/qt/libkey_feed.so"))
    arguments.add_argument("--seed", type=int, default=1)
    given = arguments.parse_args()
    seeds = range(given.seed, given.seed + given.runs)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as runs:
        for seed, reason in zip(seeds, runs.map(lambda seed: failure(given, seed), seeds)):
            if reason is not None:
                failed += 1
                print(f"seed {seed}, {reason}", flush=True)
    print(f"{given.runs - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

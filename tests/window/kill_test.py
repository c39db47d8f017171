#!/usr/bin/python3
"""Kills the editor at random moments and checks that no work is lost.

    kill_test.py [--bin FOLDER] [--feed KEY_FEED] [--seed SEED] [RUNS]

A run is three lives of the program itself, one after the other in one home, without a display; keys
and clicks reach it as from a display. What is played, and what must then be on the disk, is written
by the models in Python (see kill_story.py). In the first part of a life the disk is looked at after
every action, as if the program had been killed there: exactly the tunes and journals that must be
there, and no other. The second part is played at full speed until a kill in its midst: the disk then
holds what it must hold after the last action that was finished, or after the one under way.

After each life another start brings the work back, undoes up to a hundred steps, one by one, redoes
them, and is killed too. What a start finds under Rescued stays as it is.

RUNS is 40 unless given, a few at a time. Exit status 1 if a run failed.
"""

import argparse
import concurrent.futures
import contextlib
import json
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

from kill_story import Action, Typist, Work

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIVES = 3
PATIENCE = 60  # seconds for one action on a loaded machine
MOMENT = 10  # seconds at most for what a thread of the program does
LONGEST_PLAY = 150  # actions at full speed before the kill, which is sent as one is done ...
LONGEST_PAUSE = 0.01  # ... up to so many seconds later
FULL_DISK = 100  # bytes: any journal is longer
MOST_UNDONE = 100


class Loss(Exception):
    """What is wrong on the disk."""


class Reader:
    """Reads journals as the program would."""

    def __init__(self, program):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def close(self):
        self.process.stdin.close()
        self.process.wait()
        self.process.stdout.close()

    def read(self, path):
        """What a journal tells, and its Work as `work`. None if it has just gone."""
        self.process.stdin.write(f"{path}\n".encode())
        self.process.stdin.flush()
        told = json.loads(self.process.stdout.readline())
        if "tune" not in told:
            return None
        told["path"] = path
        told["saved"] = bytes.fromhex(told["saved"])
        told["work"] = Work(bytes.fromhex(told["tune"]), told["ended"], told["changed"])
        return told


class Home:
    """All that the lives of a run write."""

    def __init__(self, folder, reader):
        self.folder = pathlib.Path(folder)
        self.reader = reader
        self.work = self.folder / "work"
        self.own = self.folder / "data/quillon"
        self.rescued = self.own / "Rescued"
        for name in ("work", "data", "config", "temporary", "runtime"):
            (self.folder / name).mkdir(mode=0o700)
        self.environment = {
            **os.environ,
            "HOME": str(folder),
            "XDG_DATA_HOME": f"{folder}/data",
            "XDG_CONFIG_HOME": f"{folder}/config",
            "XDG_RUNTIME_DIR": f"{folder}/runtime",
            "TMPDIR": f"{folder}/temporary",
            "QT_QPA_PLATFORM": "offscreen",
        }
        self.earlier = []  # tunes that the next start has to find under Rescued

    def tunes(self):
        return {path.name: path.read_bytes() for path in self.work.glob("*.gui")}

    def journals(self):
        told = [self.reader.read(path) for path in sorted(self.own.glob("*.journal"))]
        return [journal for journal in told if journal]

    def look(self, action):
        """At rest: all that must be there, and nothing else. The thread of the program that writes
        what is left behind may need a moment."""
        compare("tunes", self.tunes(), action.disk.tunes)
        end = time.monotonic() + MOMENT
        while True:
            journals = self.journals()
            live = [j for j in journals if j["locked"] and not j["ended"]]
            compare("journal", [latest(live)["work"]], [action.disk.work])
            left = sorted(j["work"] for j in journals if not j["locked"])
            if left == sorted(action.disk.left):
                break
            if time.monotonic() > end:
                compare("left behind", left, sorted(action.disk.left))
            time.sleep(0.01)
        saved = action.disk.tunes.get(action.disk.saved, b"")
        compare("saved tune in the journal", [latest(live)["saved"]], [saved])

    def only_journal(self):
        """Of the run that lives, which has left nothing behind."""
        journals = self.journals()
        compare("left behind", [j["work"] for j in journals if not j["locked"]], [])
        return latest(journals)

    @staticmethod
    def is_as_saved(journal):
        path = pathlib.Path(os.fsdecode(bytes.fromhex(journal["saved_path"])))
        return not path.name or (path.exists() and path.read_bytes() == journal["saved"])

    def look_after_start(self):
        """What earlier lives have left is under Rescued, as tunes and as journals."""
        found = []
        for tune in sorted(self.rescued.glob("*.gui")):
            journal = self.reader.read(tune.with_suffix(".journal"))
            found.append(tune.read_bytes())
            compare(f"{tune.stem}.journal", [journal and journal["work"].tune], [found[-1]])
        compare("rescued tunes", sorted(found), sorted(self.earlier))

    def look_after_kill(self, done, under_way):
        """Returns the actions after which the disk can be as it is, and the journal."""
        journals = self.journals()
        killed = latest([j for j in journals if not j["ended"]])
        actions = [action for action in (done, under_way) if action.disk.work == killed["work"]]
        if not actions:
            compare(f"journal in `{under_way.line}`", [killed["work"]], [under_way.disk.work])
        self.look_at_tunes(killed, done.disk.tunes, under_way.disk.tunes)
        left = [j["work"] for j in journals if j["ended"]]
        self.look_at_left(left, done.disk.left, under_way.disk.left)
        self.earlier += [j["work"].tune for j in journals if j["ended"] and j["changed"]]
        return actions, killed

    def look_at_tunes(self, killed, before, after):
        """A tune is written in its place, and the journal has it before."""
        tunes = self.tunes()
        for name, data in after.items():
            found = tunes.get(name)
            half_written = found is None or data.startswith(found)
            if found not in (before.get(name), data) and not (
                half_written and killed["saved"] == data
            ):
                compare("tunes", tunes, after)

    @staticmethod
    def look_at_left(found, before, after):
        """The last one may be missing: its steps can still be undone."""
        if sorted(found) not in [sorted(left) for left in (before[:-1], before, after[:-1], after)]:
            compare("left behind", sorted(found), sorted(after))


def latest(journals):
    """While a long journal goes on in a new file there are two."""
    if not journals:
        raise Loss("there is no journal")
    return max(journals, key=lambda journal: journal["entries"])


def compare(what, found, expected):
    if found != expected:
        raise Loss(f"{what}: found {summary(found)}, expected {summary(expected)}")


def summary(files):
    """Their sizes, and a digest, since contents are long."""
    named = files.items() if isinstance(files, dict) else enumerate(files, 1)
    return [f"{name}: {digest(data)}" for name, data in named]


def digest(data):
    if isinstance(data, Work):
        how = data.ended or ("changed" if data.changed else "as in its file")
        return f"{digest(data.tune)} {how}"
    return f"{len(data)} bytes {zlib.crc32(data):08x}" if data is not None else "nothing"


class Life:
    """The program, with the keys that are fed to it."""

    def __init__(self, home, given, arguments):
        self.process = subprocess.Popen(
            self.command(given, arguments),
            cwd=home.work,
            env={**home.environment, "LD_PRELOAD": given.feed},
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            restore_signals=False,  # a file that may not grow is a failure to write, not a signal
        )
        self.done = 0

    def command(self, given, arguments):
        return [f"{given.bin}/quillon", *arguments]

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
    """Returns what to bring back from a life: its typist, what may have been its last action, and the
    journal."""
    chance = random.Random(f"kill {seed}")
    typist = Typist(seed, home.work, home.tunes(), named)
    looked_at = typist.tell()
    actions = typist.played
    life = Life(home, given, [named] if named else [])
    try:
        for action in actions[:looked_at]:
            life.play(action)
            home.look(action)
            if life.done == 1:
                home.look_after_start()
        last = chance.randrange(looked_at, looked_at + LONGEST_PLAY)
        life.send(actions[looked_at:])
        life.wait(last)
        time.sleep(chance.uniform(0, LONGEST_PAUSE))
    except Loss as loss:
        story = ", ".join(action.line for action in actions[: life.done + 1][-8:])
        raise Loss(f"after {life.done} actions (... {story}): {loss}") from None
    finally:
        life.kill()
    last, journal = home.look_after_kill(actions[life.done - 1], actions[: life.done + 1][-1])
    return typist, last, journal


def bring_back(home, given, typist, last, journal):
    """As the next start does, from the menu."""
    if not journal["changed"] and home.is_as_saved(journal):
        return
    life = Life(home, given, [])
    try:
        life.play(Action("start", ["?Splash", "Return", "?MainWin"]))
        home.earlier.append(journal["work"].tune)
        home.look_after_start()
        life.play(Action("open", open_tokens(home, journal)))
        home.earlier.remove(journal["work"].tune)
        home.look_after_start()
        undo_and_redo(home, life, typist, last)
    except Loss as loss:
        raise Loss(f"brought back after {last[0].line}: {loss}") from None
    finally:
        life.kill()
    home.earlier.append(journal["work"].tune)


def open_tokens(home, journal):
    """The rescued tunes are listed the latest first."""
    run = journal["path"].name.removeprefix("Run-").split(".")[0]
    names = [path.stem for path in home.rescued.glob("*.gui")]
    times = sorted((name.split("-Rescue-")[-1].split("-Discarded-")[-1] for name in names), reverse=True)
    return ["Alt+R", '"d', *["Down"] * times.index(run), "Return"]


def undo_and_redo(home, life, typist, last):
    """Goes back beyond the kill, as far as a person would, and forth again. `last` are the actions that
    may have been the last one."""
    count = min(MOST_UNDONE, *(len(action.past.moments) for action in last))
    for undone in range(1, count + 1):
        life.play(Action("undo", ["Ctrl+Z"]))
        found = home.only_journal()["work"]
        expected = [typist.undone(action, undone) for action in last]
        if found not in expected:
            compare(f"{undone} steps undone", [found], expected)
        last = [action for action, work in zip(last, expected) if work == found]
    life.play(Action("redo", ["Ctrl+Y"] * count))
    compare("all steps redone", [home.only_journal()["work"]], [last[0].disk.work])


def named_tune(home, chance):
    """One of the saved tunes. After a start with an empty one the cursor is not where the model has
    it, which knows no start with a tune."""
    tunes = [name for name, data in home.tunes().items() if data.count(b"\n") > 9]
    return chance.choice(sorted(tunes)) if tunes else ""


def failure(given, seed):
    """Why a run failed, None if it did not."""
    chance = random.Random(seed)
    reader = Reader(f"{given.bin}/read_journals")
    with tempfile.TemporaryDirectory() as folder, contextlib.closing(reader):
        home = Home(folder, reader)
        for number in range(1, LIVES + 1):
            named = named_tune(home, chance) if number == 2 else ""
            try:
                bring_back(home, given, *live(home, given, f"{seed} {number}", named))
            except Loss as loss:
                return f"life {number}: {loss}"
    return None


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("runs", nargs="?", type=int, default=40)
    arguments.add_argument("--bin", default=str(ROOT / "build/dev/bin"))
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

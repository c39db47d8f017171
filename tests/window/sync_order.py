#!/usr/bin/python3
"""Checks in which order the editor writes and syncs when it saves, as strace sees it.

    sync_order.py [--bin FOLDER] [--feed KEY_FEED]

Before a tune's file is emptied, the journal has what will be written, on the disk. The tune is on the
disk before the journal says that it has been saved. Apart from that the thread that handles keys waits
for no disk. Exit status 1 if not, 77 without strace.
"""

import argparse
import contextlib
import pathlib
import re
import shutil
import sys
import tempfile

from kill_story import Typist
from kill_test import Home, Life, Reader

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
SYNCS = ("fsync", "fdatasync")
CALLS = ",".join(("openat", "write", *SYNCS))
SAVES = 3


class TracedLife(Life):
    """Leaves the system calls in `log`."""

    def __init__(self, home, given, log):
        self.prefix = ["strace", "-D", "-f", "-y", "-qq", "-s", "0", "-e", "trace=" + CALLS, "-o", log]
        super().__init__(home, given, [])

    def command(self, given, arguments):
        return self.prefix + super().command(given, arguments)


def calls(log):
    """Thread, name, file and flags of each call that was successful, in the order in which they ended."""
    begun = {}
    for line in log.read_text().splitlines():
        thread, call = line.split(maxsplit=1)
        if call.endswith("<unfinished ...>"):
            begun[thread] = call.removesuffix("<unfinished ...>")
            continue
        resumed = re.match(r"<\.\.\. \w+ resumed>(.*)", call)
        if resumed:
            call = begun.pop(thread, "") + resumed.group(1)
        found = re.match(r"(\w+)\((.*)\) += (\d+)(?:<(.*)>)?$", call)
        if found:
            name, arguments, _, opened = found.groups()
            file = opened or re.search(r"<(.*?)>", arguments).group(1)
            yield int(thread), name, file, "O_TRUNC" in arguments


def steps(log, own):
    """What happens to the journal and to tunes, a word each, such as "journal written"; "waited" when
    the thread `own` syncs anything but settings, which follow dialogs."""
    for thread, name, file, empties in calls(log):
        kind = {".journal": "journal", ".gui": "tune"}.get(pathlib.Path(file).suffix)
        if kind and (name != "openat" or empties):
            yield kind + {"openat": " emptied", "write": " written"}.get(name, " synced")
        if thread == own and name in SYNCS and "/config/" not in file:
            yield "waited"


def faults(sequence):
    """What is wrong around each Save, or between them."""
    saves = [i for i, step in enumerate(sequence) if step == "tune emptied"]
    if len(saves) != SAVES:
        yield f"{len(saves)} tunes were emptied instead of {SAVES}"
    free = sequence.copy()
    for i in saves:
        held = max((k for k in range(i) if sequence[k] == "journal written"), default=0)
        if "journal synced" not in sequence[held:i]:
            yield "a tune is emptied before the journal is synced"
        until = next((k for k in range(i, len(sequence)) if sequence[k] == "journal written"), i)
        if "tune synced" not in sequence[i:until]:
            yield "the journal goes on before the tune is synced"
        free[held:until] = [""] * (until - held)
    if "waited" in free:
        yield "a key waits for the disk"


def play(home, given, log):
    """A tune that is saved under a name, again, and again unchanged. Returns the thread that did it."""
    typist = Typist(1, home.work, {}, "")
    typist.start()
    typist.edit()
    typist.save_new()
    typist.edit()
    typist.emit("menu mnuSave")
    typist.emit("menu mnuSave")
    typist.edit()
    life = TracedLife(home, given, log)
    try:
        for action in typist.played:
            life.play(action)
    finally:
        life.kill()
    return life.process.pid


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("--bin", default=str(ROOT / "build/dev/bin"))
    arguments.add_argument("--feed", default=str(ROOT / "build/dev/tests/qt/libkey_feed.so"))
    given = arguments.parse_args()
    if not shutil.which("strace"):
        print("skipped: there is no strace")
        return SKIPPED
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder, "log")
        with contextlib.closing(Reader(f"{given.bin}/read_journals")) as reader:
            own = play(Home(folder, reader), given, log)
        sequence = list(steps(log, own))
    wrong = list(faults(sequence))
    for fault in wrong:
        print(fault)
    if wrong:
        print("\n".join(sequence))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())

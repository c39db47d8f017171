#!/usr/bin/env python3
"""Compares the page and print logs of `quillon-export` with those of the page model.

    compare_pages.py --export PATH/quillon-export --from SEED --count N

Each seed is one random tune with random options, `valid` for even seeds and `odd` for odd ones,
drawn in both forms. The first difference of a failing run is shown in context, with the commands
that reproduce it; a differing tune is kept as `pages-SEED.EXT` in the current directory.
The exit status is 1 if anything differed.
"""

import argparse
import os
import random
import shlex
import shutil
import subprocess
import sys
import tempfile

import pages_model
from random_page_tunes import tune_text

CONTEXT = 4
FORMATS = ("page-log", "print-log")


def kind_of(seed):
    return "odd" if seed % 2 else "valid"


def random_options(pick):
    """Options of the page setup; often none at all."""
    choices = (
        ("--strings", ("4", "5", "6")),
        ("--body-font", ("Arial", "Some \"quoted\" Font", "Tab")),
        ("--body-size", ("8", "10", "12", "9", "11.5")),
        ("--title-font", ("Arial", "Serif")),
        ("--title-size", ("8", "14.5", "20", "48")),
        ("--left", ("0", "0.5", "1.25", "1.8", "2", "0.015625", "-0.25")),
        ("--right", ("0", "0.5", "1", "1.3", "2.75", "-0.25")),
        ("--top", ("0", "0.6", "1", "2.015625", "5", "8")),
        ("--stave-space", ("0", "0.5", "0.8", "0.75", "1.5", "-0.25", "9")),
        ("--center-title", ("yes", "no")),
    )
    rate = pick.choice((0, 0.2, 0.5))
    options = []
    for name, values in choices:
        if pick.random() < rate:
            options += [name, pick.choice(values)]
    return options


def first_difference(expected, actual):
    """The first differing lines of two logs, with the lines around them."""
    ours, theirs = expected.splitlines(), actual.splitlines()
    at = 0
    while at < min(len(ours), len(theirs)) and ours[at] == theirs[at]:
        at += 1
    shown = [f"  line {at + 1} of {len(ours)} expected, {len(theirs)} given"]
    shown += [f"    {line}" for line in ours[max(0, at - CONTEXT):at]]
    shown += [f"  - {line}" for line in ours[at:at + CONTEXT]]
    shown += [f"  + {line}" for line in theirs[at:at + CONTEXT]]
    return "\n".join(shown)


def difference(log, problem, given):
    """What is wrong with the program's answer to one tune, or None.

    A run that fails may leave on standard output nothing, or what it had drawn until then.
    """
    output = given.stdout.decode("latin-1")
    message = given.stderr.decode("latin-1").strip()
    status = 1 if problem else 0
    if given.returncode != status:
        return f"  status {given.returncode} ({message}), expected {status} ({problem or 'done'})"
    if problem and not message.endswith(problem):
        return f"  message {message!r}, expected {problem!r}"
    if output != log and (output or not problem):
        return first_difference(log, output)
    return None


def compare(export, seed, folder):
    """Runs one seed in both forms; gives the differences as (command, text), and the tune's path."""
    pick = random.Random(f"options {seed}")
    path = os.path.join(folder, f"pages-{seed}." + pick.choice(("gui", "bjo", "bss", "txt")))
    options = random_options(pick)
    data = tune_text(seed, kind_of(seed))
    with open(path, "wb") as file:
        file.write(data.encode("latin-1"))

    found = []
    for log_format in FORMATS:
        arguments = options + ["--format", log_format, path]
        parsed = pages_model.argument_parser().parse_args(arguments)
        try:
            log, problem = pages_model.draw_tune(data, pages_model.settings_for(parsed),
                                                 log_format)
        except pages_model.Unmodelled:
            continue
        given = subprocess.run([export, *arguments, "-o", "-"], capture_output=True, check=False)
        text = difference(log, problem, given)
        if text:
            shown = options + ["--format", log_format, os.path.basename(path)]
            found.append((shlex.join(shown), text))
    return found, path


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--export", required=True)
    parser.add_argument("--from", dest="first", type=int, default=1)
    parser.add_argument("--count", type=int, default=100)
    arguments = parser.parse_args()

    passed = failed = 0
    with tempfile.TemporaryDirectory() as folder:
        for seed in range(arguments.first, arguments.first + arguments.count):
            found, path = compare(arguments.export, seed, folder)
            for command, text in found:
                print(f"seed {seed} ({kind_of(seed)}): {command}\n{text}")
            if found:
                failed += 1
                shutil.move(path, os.path.basename(path))
            else:
                passed += 1
                os.remove(path)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

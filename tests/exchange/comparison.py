"""What the comparisons with other programs have in common."""

import argparse
import json
import os
import pathlib
import subprocess
import tempfile

BATCH = 100  # tunes


def parser_for(description):
    """Options of every comparison. A command may add its own."""
    parser = argparse.ArgumentParser(description=description.splitlines()[0])
    parser.add_argument("--export", required=True, type=os.path.abspath, help="path of quillon-export")
    parser.add_argument("--from", dest="first", type=int, default=1, help="first seed")
    parser.add_argument("--count", type=int, default=100, help="number of random tunes")
    return parser


def seeds_of(options):
    return range(options.first, options.first + options.count)


def run_in_batches(options, run_batch):
    """The sums of what `run_batch(options, seeds, folder)` returns: tunes compared, failures."""
    compared = failures = 0
    seeds = seeds_of(options)
    for start in range(0, len(seeds), BATCH):
        with tempfile.TemporaryDirectory() as folder:
            batch = run_batch(options, seeds[start : start + BATCH], pathlib.Path(folder))
        compared, failures = compared + batch[0], failures + batch[1]
    return compared, failures


def run_musescore(jobs, folder):
    """Carries out a list of conversions, as (file, file to write), in one run of MuseScore 3."""
    listed = [{"in": str(file), "out": str(made)} for file, made in jobs]
    (folder / "jobs.json").write_text(json.dumps(listed))
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "HOME": str(folder)}
    subprocess.run(["musescore3", "-j", folder / "jobs.json"], env=environment, check=True,
                   capture_output=True)

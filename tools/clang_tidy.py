#!/usr/bin/env python3
"""Runs clang-tidy on the core, with QUILLON_THOROUGH=1 on all of src.

As many files at a time as there are processors. Needs a finished build/dev for its compile commands
and for the headers of each file. A file that was clean is not checked again until it, one of its
headers, its compile command, .clang-tidy or clang-tidy itself has changed. What was clean is
remembered in the folder TIDY_CACHE, ~/.cache/quillon-tidy unless set.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
BUILD = ROOT / "build/dev"
TIDY = "clang-tidy-22"  # from this release on without a look into the system's headers
SLOW = ("app", "qt")  # rooms that read the toolkit's headers
CACHE = pathlib.Path(
    os.environ.get("TIDY_CACHE")
    or pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache", "quillon-tidy")
)


def output_of(*command):
    return subprocess.run(command, cwd=BUILD, check=True, capture_output=True, text=True).stdout


def sources():
    """Each source to check and its compile command."""
    skipped = () if os.environ.get("QUILLON_THOROUGH") else SLOW
    for entry in json.loads((BUILD / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        if source.parent.parent == ROOT / "src" and source.parent.name not in skipped:
            yield source, entry["command"]


def dependencies():
    """Of each object the files that it was made of, as the build has noted them."""
    made_of = {}
    for paragraph in output_of("ninja", "-t", "deps").split("\n\n"):
        made, *files = paragraph.splitlines() or [""]
        made_of[made.split(":")[0]] = [file.strip() for file in files]
    return made_of


@functools.cache
def digest(path):
    return hashlib.sha256((BUILD / path).read_bytes()).hexdigest()


def key(command, files, configuration):
    """Identifies all that the findings depend on, wherever the tree is."""
    parts = [configuration, command.replace(str(ROOT), ""), *sorted(map(digest, files))]
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()


def flags_of(command):
    """The compiler's flags without its precompiled header, which clang cannot read. So each source
    has to include what it needs."""
    return shlex.split(re.sub(r" -include \S+| -[oc] \S+", "", command))[1:]


def is_clean(source, command, stamp):
    run = subprocess.run(
        [TIDY, "--quiet", source, "--", *flags_of(command),
         "-Wno-unknown-warning-option",
         "-Wreserved-identifier",  # the compiler's own: as a check it costs a sixth of the time
         "-Wno-deprecated-declarations"],  # libstdc++'s own, in its algorithms
        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    print(run.stdout, end="", flush=True)
    if run.returncode == 0:
        stamp.touch()
    return run.returncode == 0


def main():
    CACHE.mkdir(parents=True, exist_ok=True)
    configuration = output_of(TIDY, "--version") + digest(ROOT / ".clang-tidy") + digest(__file__)
    made_of = dependencies()
    files = []  # source, command, and the stamp that is there when it was clean
    for source, command in sources():
        made = re.search(r" -o (\S+)", command)[1]
        files.append((source, command, CACHE / key(command, made_of[made], configuration)))
    unseen = [file for file in files if not file[2].exists()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        clean = list(pool.map(is_clean, *zip(*unseen)))
    print(f"{sum(clean)} passed, {len(clean) - sum(clean)} failed, "
          f"{len(files) - len(unseen)} were clean before")
    return 0 if all(clean) else 1


sys.exit(main())

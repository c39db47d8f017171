#!/usr/bin/python3
"""Breaks the protection of unsaved work on purpose, and counts how many runs of kill_test.py notice.

    kill_breaks.py [--runs RUNS] [NAME...]

Each break is built in a copy of the tree, which goes in the end; the tree itself is not touched. RUNS
is 100 unless given. Takes a quarter of an hour, so ./test does not run it. Exit status 1 if a break
was noticed by fewer than 95 of 100 runs.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
RESCUE = "src/shell/rescue.cpp"
PROGRAM = "src/qt/program.cpp"

# Name, what it breaks, and the replacements of text in files that do it.
BREAKS = {
    "nothing": ("the program as it is", []),
    "tail": (
        "a parked tail is not in the copy",
        [(RESCUE, "if (!form.Parked.Bytes.empty())", "if (form.Parked.RecordsBack < 0)")],
    ),
    "second-save": (
        "the second Save of a run writes nothing",
        [
            (
                "src/shell/main_win.cpp",
                "    WriteTuneFile();\n    form.Saved = SavedState::Saved;\n}\n\nvoid MainWin::mnuSaveAs",
                "    static int saves = 0;\n    if (++saves != 2)\n        WriteTuneFile();\n"
                "    form.Saved = SavedState::Saved;\n}\n\nvoid MainWin::mnuSaveAs",
            )
        ],
    ),
    "failures": (
        "a write that fails counts as done",
        [
            (
                "src/store/item_file.cpp",
                "    file.close();\n    if (!file)\n        Fail(Error::PathFileAccess, path);\n",
                "    file.close();\n",
            ),
            (
                "src/store/staged_file.cpp",
                "        if (written < 0 && errno != EINTR)\n            Fail(errno);\n",
                "        if (written < 0)\n            return;\n",
            ),
        ],
    ),
    "start": (
        "the start deletes all copies",
        [
            (
                PROGRAM,
                "    bool loaded = false;\n",
                "    for (const std::string& name : RescueCopiesIn(system.ProgramFolder()))\n"
                '        DeleteFile(system.ProgramFolder() + "/" + name);\n    bool loaded = false;\n',
            )
        ],
    ),
    "name": (
        "a new copy overwrites a file of its name",
        [(RESCUE, 'RandomLetters() + "."', 'RandomLetters().substr(8) + "."')],
    ),
    "named": (
        "a tune with a name gets no copy",
        [
            (
                RESCUE,
                "if (form.Saved == SavedState::Unsaved) {\n        Write",
                "if (form.Saved == SavedState::Unsaved) {\n        if (tune.FileName.empty())\n            Write",
            )
        ],
    ),
    "in-place": (
        "the copy is written in its place",
        [
            (RESCUE, "            aside->Write(bytes);\n", ""),
            (
                RESCUE,
                "            aside->Rename(path);\n",
                "            aside->Rename(path);\n            aside->Write(bytes);\n",
            ),
        ],
    ),
}


def copy_tree(folder):
    names = subprocess.check_output(["git", "ls-files", "-z"], cwd=ROOT, text=True).split("\0")
    for name in filter(None, names):
        target = folder / name
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(ROOT / name, target, follow_symlinks=False)


def apply(folder, replacements):
    for name, old, new in replacements:
        path = folder / name
        text = path.read_text()
        if text.count(old) != 1:
            sys.exit(f"{name} has changed: the text to break is there {text.count(old)} times:\n{old}")
        path.write_text(text.replace(old, new))


def build(folder):
    environment = {**os.environ, "CCACHE_NOHASHDIR": "1", "CCACHE_BASEDIR": str(folder)}
    for command in (["cmake", "--preset", "dev"], ["ninja", "-C", "build/dev", "quillon", "key_feed"]):
        done = subprocess.run(command, cwd=folder, env=environment, capture_output=True, text=True)
        if done.returncode != 0:
            sys.exit(done.stdout + done.stderr)


def noticed(folder, runs):
    """How many runs failed."""
    done = subprocess.run(
        [folder / "tests/window/kill_test.py", str(runs)], capture_output=True, text=True
    )
    found = re.search(r"^\d+ passed, (\d+) failed$", done.stdout, re.MULTILINE)
    if not found:
        sys.exit(done.stdout + done.stderr)
    return int(found.group(1))


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("names", nargs="*", metavar="NAME", help=", ".join(BREAKS))
    arguments.add_argument("--runs", type=int, default=100)
    given = arguments.parse_args()
    missed = False
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        copy_tree(folder)
        for break_name in given.names or BREAKS:
            title, replacements = BREAKS[break_name]
            before = {file: (folder / file).read_text() for file, _, _ in replacements}
            apply(folder, replacements)
            build(folder)
            count = noticed(folder, given.runs)
            print(f"{break_name}: {count} of {given.runs} runs notice: {title}", flush=True)
            missed |= bool(replacements) and count < 0.95 * given.runs
            for file, text in before.items():
                (folder / file).write_text(text)
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())

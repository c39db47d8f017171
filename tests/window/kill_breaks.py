#!/usr/bin/python3
"""Breaks the keeping of work on purpose, and counts how many runs of kill_test.py notice.

    kill_breaks.py [--runs RUNS] [NAME...]

Each break is built in a copy of the tree, which goes in the end; the tree itself is not touched. RUNS
is 100 unless given. Takes half an hour, so ./test does not run it. Exit status 1 if a break
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
JOURNAL = "src/history/journal.cpp"
HISTORY = "src/history/history.cpp"
RESCUED = "src/shell/rescued.cpp"
KEEPER = "src/shell/run_keeper.cpp"

# Name, what it breaks, and the replacements of text in files that do it.
BREAKS = {
    "nothing": ("the program as it is", []),
    "entry": (
        "one entry of twenty is not in the journal",
        [
            (
                JOURNAL,
                "    const std::string frame = Frame(entry, progress);\n",
                "    static int entries = 0;\n    if (++entries % 20 == 0)\n        return;\n"
                "    const std::string frame = Frame(entry, progress);\n",
            )
        ],
    ),
    "late": (
        "an entry is written together with the next one",
        [
            (
                JOURNAL,
                "    behind += frame;\n    try {\n        file->Append(behind);\n        behind.clear();\n",
                "    try {\n        file->Append(behind);\n        behind = frame;\n",
            )
        ],
    ),
    "tail": (
        "a parked tail is not in rescued work",
        [(RESCUED, "if (form.InputMode == InputMode::Insert)", "if (form.CurValue < 0)")],
    ),
    "left": (
        "a tune that is left is in no journal",
        [(KEEPER, "        journal.LeaveBehind(HowItEnds());\n}\n", "        parked.clear();\n}\n")],
    ),
    "undo": ("undo is not in the journal", [(HISTORY, "    Tell(EntryOf(back));\n", "")]),
    "steps": (
        "what was brought back cannot be undone",
        [(HISTORY, "place <= run.UndoCount(); ++place)", "place < 0 * run.UndoCount(); ++place)")],
    ),
    "hold": (
        "Save writes what is not in the journal",
        [(KEEPER, "        journal.Hold(", "        if (bytes.empty())\n            journal.Hold(")],
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
        [("src/store/growing_file.cpp", "            Fail(reason);\n", "            return void(reason);\n")],
    ),
    "start": (
        "the start removes all journals",
        [(RESCUED, "if (spoilt || contents.Run->Changed())", "if (contents.Run->UndoCount() < 0)")],
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
    for command in (["cmake", "--preset", "dev"], ["ninja", "-C", "build/dev", "quillon", "key_feed", "read_journals"]):
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

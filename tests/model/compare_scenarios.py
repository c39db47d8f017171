#!/usr/bin/env python3
"""Plays random scenarios and random tunes on the programs and on the model.

    compare_scenarios.py --program PLAY_SCENARIO --export QUILLON_EXPORT --from SEED --count N

Either program may be left out. Prints each difference in its context, with a
short script that shows it; the exit status is 1 if there is one."""

import argparse
import os
import subprocess
import sys
import tempfile

from editor_model import ScenarioPlayer, output_bytes
from measure_log_model import measure_log
from number_rules import RunTimeFault
from random_scripts import random_tunes_for, script_for
from random_tunes import tune_text
from store_model import MemoryFiles
from tune_loading import LoadFailed, load_tune
from tune_model import tune_output

LOOK = ["state", "table", "log", "shown"]
SCRIPT_NAME = "script.scn"
SECONDS = 60


def run(arguments, folder):
    """Exit status, standard output and standard error of a program."""
    environment = dict(os.environ, HOME=folder, XDG_CONFIG_HOME=folder, XDG_DATA_HOME=folder,
                       XDG_RUNTIME_DIR=folder, QT_QPA_PLATFORM="offscreen")
    try:
        done = subprocess.run(arguments, cwd=folder, env=environment, capture_output=True, timeout=SECONDS)
    except subprocess.TimeoutExpired:
        return "no end", b"", b""
    return done.returncode, done.stdout, done.stderr


class Comparison:
    """One script, with the tunes beside it, on both sides."""

    def __init__(self, program, tunes, lines):
        model_files = MemoryFiles(tunes)
        self.player = ScenarioPlayer(model_files)
        model_status = self.player.play(lines)
        self.model_lines = output_bytes(self.player.output).decode("latin-1").split("\n")
        with tempfile.TemporaryDirectory() as folder:
            for name, data in tunes.items():
                write_file(folder, name, data)
            write_file(folder, SCRIPT_NAME, "".join(line + "\n" for line in lines).encode("latin-1"))
            status, output, self.errors = run([program, SCRIPT_NAME], folder)
            files = read_files(folder)
        self.program_lines = output.decode("latin-1").split("\n")
        self.lines = lines
        self.statuses = (status, model_status)
        self.different_files = sorted(
            name for name in files.keys() | model_files.contents.keys()
            if files.get(name) != model_files.contents.get(name))
        self.file_sides = (files, model_files.contents)

    def differs(self):
        return self.first_line() is not None or self.statuses[0] != self.statuses[1] or self.different_files

    def first_line(self):
        """Index of the first output line that differs, None if none does."""
        for i, (program, model) in enumerate(zip(self.program_lines, self.model_lines)):
            if program != model:
                return i
        if len(self.program_lines) != len(self.model_lines):
            return min(len(self.program_lines), len(self.model_lines))
        return None

    def command_of(self, output_line):
        """Index of the script line that printed this output line."""
        marks = self.player.marks
        return max((i for i, mark in enumerate(marks) if mark <= output_line), default=0)

    def report(self):
        at = self.first_line()
        if at is not None:
            command = self.command_of(at)
            print(f"  output differs at line {at + 1}, printed by `{self.lines[command]}`:")
            for i in range(max(at - 3, 0), at):
                print(f"      {self.model_lines[i]}")
            for i in range(at, at + 4):
                program = self.program_lines[i] if i < len(self.program_lines) else "(end)"
                model = self.model_lines[i] if i < len(self.model_lines) else "(end)"
                if program == model:
                    print(f"      {model}")
                else:
                    print(f"    - program: {program}\n    + model:   {model}")
        if self.statuses[0] != self.statuses[1]:
            print(f"  exit status: program {self.statuses[0]}, model {self.statuses[1]}")
            if self.errors:
                print("  " + self.errors.decode("latin-1").strip()[-500:])
        for name in self.different_files:
            program, model = (side.get(name) for side in self.file_sides)
            print(f"  file {name}: program {summary(program)}, model {summary(model)}")


def summary(data):
    return "none" if data is None else f"{len(data)} bytes"


def write_file(folder, name, data):
    with open(os.path.join(folder, name), "wb") as file:
        file.write(data)


def read_files(folder):
    contents = {}
    for entry in os.scandir(folder):
        if entry.is_file() and entry.name != SCRIPT_NAME and not entry.name.startswith("."):
            with open(entry.path, "rb") as file:
                contents[entry.name] = file.read()
    return contents


def with_looks(lines):
    """The script with a full look after each line."""
    shown = ("state", "table", "log", "shown")
    return [line for command in lines if command not in shown for line in (command, *LOOK)]


def shortest_script(program, tunes, lines):
    """A short script that still differs: cut after the first difference that
    full looks show, then thinned out."""
    looked = Comparison(program, tunes, with_looks(lines))
    at = looked.first_line()
    if at is not None:
        cut = looked.lines[: looked.command_of(at) + 1]
        lines = [line for line in cut if line not in LOOK]
    else:
        lines = [line for line in lines if line not in LOOK]
    if not Comparison(program, tunes, lines + LOOK).differs():
        return with_looks(lines)
    chunk = max(len(lines) // 2, 1)
    while True:
        i = 0
        while i < len(lines):
            shorter = lines[:i] + lines[i + chunk :]
            if Comparison(program, tunes, shorter + LOOK).differs():
                lines = shorter
            else:
                i += chunk
        if chunk == 1:
            return lines + LOOK
        chunk //= 2


def check_script(program, seed, length, shrink):
    tunes = random_tunes_for(seed)
    lines = script_for(seed, length, tunes)
    comparison = Comparison(program, tunes, lines)
    if not comparison.differs():
        return True
    print(f"seed {seed}: scenario")
    if shrink:
        lines = shortest_script(program, tunes, lines)
        comparison = Comparison(program, tunes, lines)
    else:
        at = comparison.first_line()
        lines = lines if at is None else lines[: comparison.command_of(at) + 1]
    comparison.report()
    print("  script:")
    print("".join(f"    {line}\n" for line in lines))
    return False


def check_exports(export, seed):
    passed = True
    for kind in ("valid", "odd"):
        extension = ("gui", "bjo", "bss")[seed % 3]
        data = tune_text(seed, kind, extension)
        for form, make in (("measure-log", measure_log), ("tune", tune_output)):
            passed &= check_export(export, seed, kind, f"tune.{extension}", data, form, make)
    return passed


def check_export(export, seed, kind, name, data, form, make):
    failure = output = b""
    try:
        output = make(load_tune(name, MemoryFiles({name: data})))
    except LoadFailed:
        failure = f"quillon-export: {name}: ".encode()
    except RunTimeFault as fault:
        failure = f"quillon-export: {name}: {fault}".encode()
    with tempfile.TemporaryDirectory() as folder:
        write_file(folder, name, data)
        status, program_output, errors = run([export, "--format", form, name, "-o", "-"], folder)
    if failure:
        if status == 1 and errors.startswith(failure):
            return True
        print(f"seed {seed}: {form} of the {kind} {name}: model fails with `{failure.decode()}`")
        print(f"  program: status {status}, {errors.decode('latin-1').strip()}")
        return False
    if status == 0 and program_output == output:
        return True
    print(f"seed {seed}: {form} of the {kind} {name}: status {status} {errors.decode('latin-1').strip()}")
    program_lines, model_lines = program_output.split(b"\n"), output.split(b"\n")
    for i, (program, model) in enumerate(zip(program_lines, model_lines)):
        if program != model:
            for line in model_lines[max(i - 4, 0) : i]:
                print("      " + line.decode("latin-1").strip())
            print(f"    - program: {program.decode('latin-1').strip()}")
            print(f"    + model:   {model.decode('latin-1').strip()}  (line {i + 1})")
            break
    else:
        print(f"  program {len(program_lines)} lines, model {len(model_lines)} lines")
    return False


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", help="path of play-scenario")
    parser.add_argument("--export", help="path of quillon-export")
    parser.add_argument("--from", dest="first", type=int, default=1)
    parser.add_argument("--count", type=int, default=100)
    parser.add_argument("--length", type=int, default=150)
    parser.add_argument("--no-shrink", action="store_true", help="report whole scripts, unshortened")
    parser.add_argument("--stop-after", type=int, default=5, help="differences to report before stopping")
    options = parser.parse_args()
    passed = failed = 0
    for seed in range(options.first, options.first + options.count):
        checks = []
        if options.program:
            program = os.path.abspath(options.program)
            checks.append(check_script(program, seed, options.length, not options.no_shrink))
        if options.export:
            checks.append(check_exports(os.path.abspath(options.export), seed))
        passed += sum(checks)
        failed += len(checks) - sum(checks)
        sys.stdout.flush()
        if failed >= options.stop_after:
            break
    print(f"{passed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

"""Times each program on the music in each FOLDER, and checks first that all of them play the same.

    compare.py BUILD_FOLDER FOLDER...

Each FOLDER, named after its number of measures, has the output of write_music.py. Prints Markdown tables. A
time is that of a whole process, from start to exit; the first run of each is not counted, and
the programs take turns. CPU time includes all the process's threads and children.
"""

import collections
import os
import pathlib
import re
import shlex
import statistics
import subprocess
import sys
import time

ROUNDS = 10

# Debian's LilyPond 2.24.1 looks for its compiled Scheme in a folder that is not there, so it
# interprets the source. It is timed as it comes, and told where the compiled files are.
COMPILED = "env GUILE_LOAD_COMPILED_PATH=" + "".join(
    map(str, pathlib.Path("/usr/lib").glob("*/lilypond/*/ccache"))
)

# Program, package, what a user types, what comes out
PAGES = [
    ("Quillon", None, "quillon-export tune.gui -o quillon.pdf", "quillon.pdf"),
    ("LilyPond", "lilypond", "lilypond -s -o lilypond tune.ly", "lilypond.pdf"),
    (
        "LilyPond, compiled",
        "lilypond",
        f"{COMPILED} lilypond -s -o compiled tune.ly",
        "compiled.pdf",
    ),
    ("MuseScore", "musescore3", "mscore3 -o musescore.pdf tune.musicxml", "musescore.pdf"),
    (
        "abcm2ps, ps2pdf",
        "abcm2ps",
        "abcm2ps -q -c -O abcm2ps.ps tune.abc && ps2pdf abcm2ps.ps abcm2ps.pdf",
        "abcm2ps.pdf",
    ),
]
SOUND = [
    ("Quillon", None, "quillon-export --tempo 120 tune.gui -o quillon.mid", "quillon.mid"),
    ("LilyPond", "lilypond", "lilypond -s -o lilypond sound.ly", "lilypond.midi"),
    (
        "LilyPond, compiled",
        "lilypond",
        f"{COMPILED} lilypond -s -o compiled sound.ly",
        "compiled.midi",
    ),
    ("MuseScore", "musescore3", "mscore3 -o musescore.mid tune.musicxml", "musescore.mid"),
    ("abc2midi", "abcmidi", "abc2midi tune.abc -o abc2midi.mid", "abc2midi.mid"),
]

Run = collections.namedtuple("Run", "wall cpu")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def words(command):
    """A chain needs a shell; a single program is started without one."""
    return ["sh", "-c", command] if "&&" in command else shlex.split(command)


def run(arguments, folder):
    """Seconds."""
    quiet = subprocess.DEVNULL
    start = time.monotonic()
    process = subprocess.Popen(arguments, cwd=folder, stdout=quiet, stderr=quiet)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"compare.py: {shlex.join(arguments)} failed")
    return Run(wall, usage.ru_utime + usage.ru_stime)


def peak_memory(arguments, folder):
    """Of the largest process, in MB. Asked by way of a small program: a child of this one would be
    taken to be at least as large as this one."""
    run(["time", "-f", "%M", "-o", "memory.txt", *arguments], folder)
    return int((folder / "memory.txt").read_text()) / 1024


def notes(path):
    """How many notes start at each time, in sixteenths, with each pitch. Times are rounded:
    abc2midi starts the notes of a chord a little one after the other."""
    division = None
    found = collections.Counter()
    for line in output("midicsv", str(path)).splitlines():
        _, at, event, *data = (item.strip() for item in line.split(","))
        if event == "Header":
            division = int(data[2])
        elif event == "Note_on_c" and int(data[2]) > 0:
            found[round(4 * int(at) / division), int(data[1])] += 1
    return found


def check_same_music(folder):
    ours = notes(folder / SOUND[0][3])
    counts = []
    for program, _, _, result in SOUND:
        theirs = notes(folder / result)
        if theirs != ours:
            raise SystemExit(
                f"compare.py: {program} plays other notes. More: {sorted(theirs - ours)}. "
                f"Fewer: {sorted(ours - theirs)}."
            )
        counts.append(f"{program} {sum(theirs.values())}")
    print(f"Notes in the MIDI files, with the same pitches and starts: {'; '.join(counts)}\n")


def measure(programs, folder):
    """Megabytes and runs of each program."""
    commands = [words(command) for _, _, command, _ in programs]
    memory = [peak_memory(command, folder) for command in commands]  # and warms the caches
    runs = [[] for _ in commands]
    for _ in range(ROUNDS):
        for command, so_far in zip(commands, runs):
            so_far.append(run(command, folder))
    return memory, runs


def size(path):
    text = f"{path.stat().st_size / 1000:.0f} kB"
    if path.suffix != ".pdf":
        return text
    pages = re.search(r"^Pages: +(\d+)", output("pdfinfo", str(path)), re.MULTILINE)[1]
    return f"{text}, {pages} p."


def ratio(number):
    return f"{number:.1f}" if number < 10 else f"{number:.0f}"


def print_table(title, programs, folder, memory, runs):
    print(f"| {title} | median ms | min..max | CPU ms | CPU, ours = 1 | memory MB | result |")
    print("| --- | --- | --- | --- | --- | --- | --- |")
    ours = statistics.median(r.cpu for r in runs[0])
    for (program, _, _, result), megabytes, times in zip(programs, memory, runs):
        wall = [1000 * r.wall for r in times]
        cpu = statistics.median(r.cpu for r in times)
        print(
            f"| {program} | {statistics.median(wall):.0f} | {min(wall):.0f}..{max(wall):.0f} "
            f"| {1000 * cpu:.0f} | {ratio(cpu / ours)} | {megabytes:.0f} "
            f"| {size(folder / result)} |"
        )
    print()


def print_versions():
    packages = {package for _, package, _, _ in PAGES + SOUND if package} | {"ghostscript"}
    for package in sorted(packages):
        print(package, output("dpkg-query", "-W", "-f=${Version}", package))
    print(f"{os.cpu_count()} processors; medians of {ROUNDS} runs\n")


def main():
    build, *folders = map(pathlib.Path, sys.argv[1:])
    os.environ["PATH"] = f"{build.resolve() / 'bin'}:{os.environ['PATH']}"
    print_versions()
    for folder in folders:
        pages, sound = measure(PAGES, folder), measure(SOUND, folder)
        check_same_music(folder)
        print_table(f"PDF, {folder.name} measures", PAGES, folder, *pages)
        print_table(f"MIDI, {folder.name} measures", SOUND, folder, *sound)


main()

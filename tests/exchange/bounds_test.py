#!/usr/bin/python3
"""Hostile files of other programs' forms.

    tests/exchange/bounds_test.py QUILLON_EXPORT

Each is read, or refused in words, within 2 seconds and 200 MB, and leaves no file if it is refused.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import zipfile

SECONDS = 2
MEGABYTES = 200

HEADER = "X:1\nM:4/4\nL:1/8\nK:C\n"


def score(measures, before=""):
    return f"{before}<score-partwise><part id='P1'>{measures}</part></score-partwise>"


def measure(content):
    return f"<measure number='1'>{content}</measure>"


def note(duration="1", more=""):
    return f"<note><pitch><step>C</step><octave>4</octave></pitch><duration>{duration}</duration>{more}</note>"


def entity_bomb():
    entities = "".join(f"<!ENTITY l{i} '{f'&l{i - 1};' * 10}'>" for i in range(1, 10))
    words = "<direction><direction-type><words>&l9;</words></direction-type></direction>"
    return score(measure(words + note()), f"<!DOCTYPE x [<!ENTITY l0 'x'>{entities}]>")


def midi(events, division=96):
    track = events + b"\x00\xff\x2f\x00"
    return (b"MThd" + (6).to_bytes(4, "big") + bytes([0, 0, 0, 1]) + division.to_bytes(2, "big")
            + b"MTrk" + len(track).to_bytes(4, "big") + track)


def hostile():
    """The files by name."""
    big = 100 << 20
    yield "bomb.musicxml", entity_bomb()
    yield "deep.musicxml", "<a>" * 1_000_000
    yield "deep_score.musicxml", score("<measure>" * 300_000)
    yield "big.musicxml", score(measure(note() * 1000) * (big // 100_000))
    yield "many.musicxml", score(measure(note() * 4) * 20_000)
    yield "long.musicxml", score(measure(note("99999999999999999999")))
    yield "divisions.musicxml", score(measure("<attributes><divisions>0</divisions></attributes>" + note()))
    yield "fretted.musicxml", score(measure(note("1", "<notations><technical><string>99999999999</string>"
                                                     "<fret>-99999999999</fret></technical></notations>")))
    yield "tempo.musicxml", score(measure("<sound tempo='0'/><sound tempo='1e999'/>" + note()))
    ends = "<barline location='right'><repeat direction='backward' times='1000000'/></barline>"
    yield "repeats.musicxml", score(measure(note() + ends) * 3000)
    yield "big.abc", HEADER + "CDEF GABc|" * (big // 10)
    yield "line.abc", HEADER + "C" * big
    yield "tunes.abc", "X:1\nT:x\nK:C\nC|\n\n" * 1_000_000
    yield "tuplets.abc", HEADER + "(999999999:1:999999999 " + "C" * 3000 + "|"
    yield "lengths.abc", HEADER + "C999999999999/ D/99999999999 " * 500 + "|"
    yield "tempo.abc", "X:1\nQ:0\nQ:1/0=0\nQ:0/4=99999999999\nL:1/0\nM:0/0\nK:C\nC|\n"
    yield "endings.abc", HEADER + "|:C|[1-99999999 D:|[2-99999999 E:|" * 300
    yield "repeats.abc", HEADER + "|:C:|" * 10_000
    yield "parts.abc", "X:1\nP:((((A9999)9999)9999)9999)9999\nK:C\nP:A\nCDEF|\n"
    yield "brackets.abc", HEADER + "[" * 1_000_000
    yield "rests.abc", HEADER + "Z999999999|" * 1000
    yield "big.mid", midi((b"\x00\x90\x3c\x40" + b"\x10\x90\x3c\x00") * (big // 8))
    yield "tempo.mid", midi(b"\x00\xff\x51\x03\x00\x00\x00\x00\x90\x3c\x40\x60\x90\x3c\x00")
    yield "division.mid", midi(b"\x00\x90\x3c\x40\x60\x90\x3c\x00", 0)
    yield "late.mid", midi(b"\xff\xff\xff\x7f\x90\x3c\x40\xff\xff\xff\x7f\x90\x3c\x00" * 2000)
    staff = ("-" * 1000 + "3" * 1000 + "|") * 200
    yield "wide.txt", "\n".join([staff] * 6) + "\n"
    yield "big.txt", ("\n".join(["-1-2-3-4-|" * 10] * 6) + "\n\n") * (big // 700)


def packed(folder):
    path = folder / "zeros.mxl"
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("META-INF/container.xml",
                         "<container><rootfiles><rootfile full-path='a.xml'/></rootfiles></container>")
        with archive.open("a.xml", "w", force_zip64=True) as entry:
            for _ in range(300):
                entry.write(bytes(1 << 20))
    return path


def run(export, path, out):
    """(exit status, seconds, megabytes, words) of reading a file."""
    figures = out.with_suffix(".figures")
    command = ["/usr/bin/time", "-q", "-f", "%U %S %M", "-o", figures]
    command += [export, path, "--strings", "6", "-o", out]
    done = subprocess.run(command, capture_output=True, check=False)
    user, system, kilobytes = map(float, figures.read_text().split())
    return done.returncode, user + system, kilobytes / 1024, done.stderr.decode("latin-1")


def check(export, path, folder):
    """Whether it ends as it should."""
    out = folder / "out.gui"
    out.unlink(missing_ok=True)
    status, seconds, megabytes, words = run(export, path, out)
    problems = []
    if status not in (0, 1):
        problems.append(f"status {status}")
    if seconds > SECONDS:
        problems.append("too slow")
    if megabytes > MEGABYTES:
        problems.append("too large")
    if status == 1 and (out.exists() or not words.strip()):
        problems.append("a file is left, or nothing is said")
    if "run-time error" in words:
        problems.append("a fault")
    if status == 0 and not out.exists():
        problems.append("no file, and no error")
    print(f"{path.name}: status {status}, {seconds:.2f} s, {megabytes:.0f} MB {' '.join(problems)}")
    if "-v" in sys.argv:
        print("    " + words.strip()[-150:])
    return not problems


def main():
    export = os.path.abspath(sys.argv[1])
    passed = failed = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        paths = ((folder / name, text) for name, text in hostile())
        for path, text in paths:
            path.write_bytes(text if isinstance(text, bytes) else text.encode())
            if check(export, path, folder):
                passed += 1
            else:
                failed += 1
            path.unlink()
        if check(export, packed(folder), folder):
            passed += 1
        else:
            failed += 1
    print(f"{passed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


main()

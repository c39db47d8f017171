#!/usr/bin/env python3
"""ABC tunes as quillon-export and abc2midi play them.

    abc_elsewhere.py --export QUILLON_EXPORT [--from SEED] [--count N] [--tunes FOLDER]

Random tunes with what tune books hold, then the files of --tunes, on each instrument. Their notes must
agree in onset, pitch and length, to a sixteenth of a quarter; all may be moved by octaves together, and
tied notes may sound again. What our command says it has rounded, left out or moved is no difference. Before
abc2midi plays, grace notes and what it makes of ornaments are taken
out, and all voices but the first. The exit status is 1 if anything differed.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

import comparison
import played_notes
import wild_abc

ORNAMENTS = re.compile(r"\{[^}]*\}|!(?:trill|>|open)!|\+trill\+|[~HLMOPSTuvJR]|\.(?!\|)")
TEXT_OR_FIELD = re.compile(r'("[^"]*"|\[[A-Za-z]:[^]]*\])')
TOLD = ("rounded", "no hand can reach", "too short", "range is moved", "range are moved")
QUIET = ["%%MIDI gchordoff", "%%MIDI chordattack 0"]


def without_ornaments(line):
    parts = TEXT_OR_FIELD.split(line)
    return "".join(part if i % 2 else ORNAMENTS.sub("", part) for i, part in enumerate(parts))


def prepared(text):
    """The tune without what abc2midi plays in its own way."""
    lines, in_music, other_voice = [], False, False
    for line in re.split(r"\r\n|\n|\r", text):
        voice = re.match(r"V:\s*(\S+)", line)
        if voice:
            other_voice = voice[1] != "1"
        if voice or other_voice or line.startswith("R:"):
            continue
        field = re.match(r"[A-Za-z]:[^|:]|%", line)
        lines.append(line if field or not in_music else without_ornaments(line))
        if line.startswith("K:") and not in_music:
            in_music = True
            lines += QUIET
    return "\n".join(lines) + "\n"


def notes_of(path):
    return played_notes.notes_of_midi(path.read_bytes()) if path.exists() else []


def difference(wanted, found):
    if not wanted or not found:
        return None if wanted == found else "one of them is silent"
    shift = max(note[1] for note in found) - max(note[1] for note in wanted)
    if shift % 12:
        return f"moved by {shift} semitones"
    return played_notes.difference(wanted, found, shift, lambda at: True)


def compare(options, name, text, strings, folder):
    """"passed", "told" or "failed"; says what differs."""
    tune, quiet = folder / "tune.abc", folder / "quiet.abc"
    tune.write_text(text, encoding="latin-1", newline="")
    quiet.write_text(prepared(text), encoding="latin-1")
    ours, theirs = folder / "ours.mid", folder / "theirs.mid"
    for file in (ours, theirs):
        file.unlink(missing_ok=True)
    run = subprocess.run([options.export, tune, "--strings", str(strings), "--tempo", "120", "-o", ours],
                         capture_output=True, text=True, check=False)
    subprocess.run(["abc2midi", quiet, "-o", theirs], capture_output=True, check=False)
    wrong = difference(notes_of(theirs), notes_of(ours))
    if wrong and any(words in run.stderr for words in TOLD):
        return "told"
    if wrong:
        print(f"{name}, {strings} strings: {wrong}\n{run.stderr}{text}", flush=True)
    return "failed" if wrong else "passed"


def main():
    parser = comparison.parser_for(__doc__)
    parser.add_argument("--tunes", help="a folder of ABC files")
    options = parser.parse_args()
    tunes = [(f"seed {seed} ({' '.join(wild_abc.features_of(seed))})", wild_abc.random_tune(seed),
              [4 + seed % 3]) for seed in comparison.seeds_of(options)]
    if options.tunes:
        tunes += [(path.name, path.read_text(encoding="latin-1"), [4, 5, 6])
                  for path in sorted(pathlib.Path(options.tunes).glob("*.abc"))]
    with tempfile.TemporaryDirectory() as folder:
        results = [compare(options, name, text, strings, pathlib.Path(folder))
                   for name, text, instruments in tunes for strings in instruments]
    print(", ".join(f"{results.count(word)} {word}" for word in ("passed", "told", "failed")))
    return 1 if "failed" in results else 0


if __name__ == "__main__":
    sys.exit(main())

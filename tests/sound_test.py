#!/usr/bin/env python3
"""Sound read back by programs that are not ours: MIDI files by two readers, rendered sound by sox,
oggdec and mpg123. What is heard has its pitches, level, places and tail.

    sound_test.py QUILLON_EXPORT [TUNES]

TUNES random tunes go through both readers (200 by default)."""

import array
import math
import os
import re
import subprocess
import sys
import tempfile
import wave

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "model"))

from midi_reader import lines_of_file  # noqa: E402
from random_midi_tunes import random_tune  # noqa: E402

SOUNDFONT = "/usr/share/sounds/sf2/TimGM6mb.sf2"
TUNINGS = {"gui": [64, 59, 55, 50, 45, 40], "bjo": [62, 59, 55, 50, 67], "bss": [76, 69, 62, 55]}
CENTS = 10


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, errors="replace")


# MIDI files


def our_notes(path):
    """(track, tick, key) of each note that begins, in order of the file."""
    notes, track, tick = [], 0, 0
    with open(path, "rb") as file:
        data = file.read()
    for line in lines_of_file(data):
        words = line.split()
        if words[0] == "track":
            track, tick = int(words[1]), 0
        elif len(words) == 4 and words[1].isdigit():
            tick += int(words[0])
            if int(words[1]) >> 4 == 9 and int(words[3]) > 0:
                notes.append((track, tick, int(words[2])))
        elif words[0].isdigit():
            tick += int(words[0])
    return notes


def midicsv_notes(path):
    done = run("midicsv", path)
    if done.returncode or done.stderr.strip():
        return None
    rows = [line.split(", ") for line in done.stdout.splitlines()]
    return [(int(r[0]) - 1, int(r[1]), int(r[4])) for r in rows if r[2] == "Note_on_c" and int(r[5]) > 0]


def mftext_notes(path):
    done = run("mftext", path)
    if done.returncode or "error" in (done.stdout + done.stderr).lower():
        return None
    return sum(1 for line in done.stdout.splitlines() if re.search(r"Note on.*vol=[1-9]", line))


def check_readers(export, folder, count):
    passed = failed = 0
    for seed in range(1, count + 1):
        strings, data = random_tune(seed)
        tune = os.path.join(folder, "tune" + {6: ".gui", 5: ".bjo", 4: ".bss"}[strings])
        with open(tune, "wb") as file:
            file.write(data)
        midi = os.path.join(folder, "tune.mid")
        if run(export, tune, "-o", midi).returncode:
            continue  # no performance, no file
        ours, theirs = our_notes(midi), midicsv_notes(midi)
        if ours == theirs and mftext_notes(midi) == len(ours):
            passed += 1
        else:
            failed += 1
            print(f"failed: seed {seed}: {len(ours)} notes, midicsv "
                  f"{'none' if theirs is None else len(theirs)}, mftext {mftext_notes(midi)}")
    return passed, failed


# Pitches


def record(measure, code, unit=4, beats=4, slots=()):
    texts = list(slots) + [""] * (6 - len(slots))
    lines = [f"{measure},{code},0", f"0,{unit},{beats},0", '0,""," "," ",""']
    return "\r\n".join(lines + [f'"{text}"' for text in texts]) + "\r\n"


def chromatic_scale(string):
    """Frets 0 to 11 of a string as quarter notes."""
    text = record(0, 0, 0, 0)
    for fret in range(12):
        if fret % 4 == 0:
            text += record(fret // 4 + 1, 999)
        text += record(fret // 4 + 1, 7, slots=[""] * (string - 1) + [str(fret)])
    return text.encode("ascii")


def frequency(samples, rate, expected):
    """Fundamental near `expected`, by the peak of the autocorrelation."""
    def correlation(lag):
        size = len(samples) - lag
        return sum(samples[i] * samples[i + lag] for i in range(0, size, 2)) / size

    lag = rate / expected
    lags = range(max(2, int(lag * 0.93)), int(lag * 1.07) + 2)
    values = {n: correlation(n) for n in lags}
    best = max(list(values)[1:-1], key=values.get)
    a, b, c = values[best - 1], values[best], values[best + 1]
    # Over several periods the peak is told more exactly.
    periods = max(1, min(8, len(samples) // 3 // best))
    centre = periods * (best + 0.5 * (a - c) / (a - 2 * b + c))
    lags = range(int(centre) - 4, int(centre) + 6)
    values = {n: correlation(n) for n in lags}
    best = max(list(values)[1:-1], key=values.get)
    a, b, c = values[best - 1], values[best], values[best + 1]
    return rate * periods / (best + 0.5 * (a - c) / (a - 2 * b + c))


def check_pitches(export, folder):
    passed = failed = 0
    tempo = 60  # a second to the quarter note
    for extension, pitches in TUNINGS.items():
        string = min(3, len(pitches))
        tune = os.path.join(folder, f"scale.{extension}")
        with open(tune, "wb") as file:
            file.write(chromatic_scale(string))
        sound = os.path.join(folder, "scale.wav")
        done = run(export, tune, "--tempo", str(tempo), "-o", sound)
        if done.returncode:
            print(f"failed: {tune}: {done.stderr}")
            failed += 1
            continue
        with wave.open(sound) as file:
            rate = file.getframerate()
            frames = array.array("h", file.readframes(file.getnframes()))
        left = frames[::2]
        for fret in range(12):
            expected = 440 * 2 ** ((pitches[string - 1] + fret - 69) / 12)
            start = int((fret + 0.25) * rate)
            window = [float(s) for s in left[start:start + 6000]]
            cents = 1200 * math.log2(frequency(window, rate, expected) / expected)
            if abs(cents) <= CENTS:
                passed += 1
            else:
                failed += 1
                print(f"failed: {extension} fret {fret}: {cents:+.1f} cents")
    return passed, failed


def check_repeat(export, folder):
    """A measure that is repeated lasts twice as long."""
    lengths = []
    for bar in ("", "99"):
        tune = os.path.join(folder, "repeat.gui")
        data = chromatic_scale(1).decode("ascii")
        head = record(1, 999)
        data = data.replace(head, head.replace('0,"","', f'0,"{bar}","', 1), 1)
        with open(tune, "wb") as file:
            file.write(data.encode("ascii"))
        sound = os.path.join(folder, "repeat.wav")
        run(export, tune, "--tempo", "120", "-o", sound)
        with wave.open(sound) as file:
            lengths.append(file.getnframes() / file.getframerate())
    good = abs(lengths[1] - lengths[0] - 2) < 0.1  # a measure of four beats at 120
    if not good:
        print(f"failed: repeat: {lengths}")
    return (1, 0) if good else (0, 1)


# Level, places, tail


def samples_of(path):
    """The left and the right channel of a sound file, between -1 and 1, and the rate."""
    decoded = path + ".wav"
    decoder = {".wav": ["sox", path, decoded], ".ogg": ["oggdec", "-Q", "-o", decoded, path],
               ".mp3": ["mpg123", "-q", "-w", decoded, path]}[os.path.splitext(path)[1]]
    subprocess.run(decoder, check=True, capture_output=True)
    with wave.open(decoded) as file:
        assert file.getnchannels() == 2 and file.getsampwidth() == 2
        frames = array.array("h", file.readframes(file.getnframes()))
        return [s / 32768 for s in frames[::2]], [s / 32768 for s in frames[1::2]], file.getframerate()


def peak(samples):
    return max(map(abs, samples), default=0)


def decibels(ratio):
    return 20 * math.log10(max(ratio, 1e-9))


def energy(samples):
    return math.sqrt(sum(s * s for s in samples))


def check_rendered(export, folder):
    """The same two notes as WAV, Ogg and MP3: a low string for a second, then a high one."""
    tune = os.path.join(folder, "two.gui")
    with open(tune, "wb") as file:
        file.write((record(0, 0, 0, 0) + record(1, 999) + record(1, 7, slots=[""] * 5 + ["3"])
                    + record(1, 7, slots=["3"])).encode("ascii"))
    results = []
    for extension, slack in (("wav", 0.01), ("ogg", 1), ("mp3", 1)):
        sound = os.path.join(folder, f"two.{extension}")
        done = run(export, tune, "--tempo", "60", "-o", sound)
        if done.returncode:
            results.append((f"{extension}: {done.stderr}", False))
            continue
        left, right, rate = samples_of(sound)
        low, high = slice(0, rate), slice(rate, 2 * rate)
        loudest = peak(left + right)
        onset = next(i for i in range(len(left)) if abs(left[i]) > 0.05 * loudest) / rate
        results += [(f"{extension}: {what}", good) for what, good in (
            (f"peak {decibels(loudest):.2f} dB", abs(decibels(loudest) + 1) < slack),
            (f"length {len(left) / rate:.3f}", abs(len(left) / rate - 2.5) < 0.03),
            (f"onset {onset:.4f}", onset < 0.005),
            ("the low string is on the left", 1 < decibels(energy(left[low]) / energy(right[low])) < 6),
            ("the high string is on the right", 1 < decibels(energy(right[high]) / energy(left[high])) < 6),
            ("the room is heard", decibels(peak(left[int(2.3 * rate):int(2.4 * rate)])) > -70),
            ("the end is silent", decibels(peak(left[int(2.495 * rate):])) < -60))]
    for what, good in results:
        if not good:
            print(f"failed: {what}")
    return sum(good for _, good in results), sum(not good for _, good in results)


# Practice

TICKS = {1: 2, 3: 4, 4: 6, 6: 8, 7: 12, 8: 18, 9: 24, 11: 48, 99: 12}  # of codes, a quarter is 12

# Each: the measures as bar, bracket, sign, remark and notes; options; the measures heard, by hand.
QUARTERS = [(7, "3"), (7, "5"), (7, "8"), (7, "7")]
CODA = [("", "", "", "", QUARTERS), ("98", "", "87", "", QUARTERS[:2] + [(9, "8")]),
        ("99", "1", "", "", QUARTERS), ("", "2", "", "", QUARTERS), ("", "", "", "/To Coda", QUARTERS),
        ("", "", "88", "", QUARTERS), ("", "", "", "", QUARTERS), ("", "", "84", "", [(9, "5"), (9, "3")])]
TRIPLETS = [("", "", "", "", [(3, "3"), (3, "5"), (3, "7")] * 4), ("", "", "", "", [(6, "5")] * 3 + [(9, "3")])]
TIES = [("", "", "", "", [(7, "3^"), (7, "3"), (4, "5"), (4, "7"), (7, "0^")]),
        ("", "", "", "", [(7, "0"), (7, "5-7"), (9, "3")])]
PRACTICE = [
    ("repeat", [("", "", "", "", QUARTERS), ("99", "", "", "", QUARTERS), ("", "", "", "", QUARTERS)],
     ["--speed", "80"], [1, 2, 1, 2, 3]),
    ("endings", [("", "", "", "", QUARTERS), ("99", "1", "", "", QUARTERS), ("", "2", "", "", QUARTERS)],
     ["--measures", "2-3", "--loop", "2"], [2, 1, 3] * 2),
    ("D.S. al Coda", CODA, ["--measures", "5-8", "--speed", "150"], [5, 6, 2, 3, 2, 4, 5, 8]),
    ("triplets", TRIPLETS, ["--loop", "3", "--count-in", "--speed", "60"], [1, 2] * 3),
    ("ties", TIES, ["--loop", "2", "--measures", "1-2"], [1, 2] * 2)]


def tune_of(measures):
    text = record(0, 0, 0, 0)
    for number, (bar, bracket, sign, remark, notes) in enumerate(measures, 1):
        head = record(number, 999, slots=[sign, bracket, remark])
        text += head.replace('0,"","', f'0,"{bar}","', 1)
        text += "".join(record(number, code, slots=["", cell]) for code, cell in notes)
    return text.encode("ascii")


def expected_onsets(measures, order, tempo, options):
    """Seconds at which notes begin, and the end."""
    speed = int(options[options.index("--speed") + 1]) if "--speed" in options else 100
    tick = 60000000 // tempo * 100 // speed / 1e6 / tempo
    now, onsets, tied = 4 * tempo if "--count-in" in options else 0, [], False
    for number in order:
        for code, cell in measures[number - 1][4]:
            if not tied:
                onsets.append(now * tick)
            tied = cell.endswith("^")
            now += tempo * TICKS[code] // 12
    return onsets, now * tick


def lateness(samples, rate, told):
    """Milliseconds by which a note is heard later than told, None if none is heard."""
    at = round(told * rate)
    before = peak(samples[max(0, at - 300):max(0, at - 100)])
    after = peak(samples[at:at + 1000])
    if len(samples) < at + 1000 or after < 2 * before:
        return None
    begin = max(0, at - 100)
    first = next(i for i in range(begin, at + 1000) if abs(samples[i]) > before + 0.05 * after)
    return 1000 * (first - at) / rate


def check_practice(export, folder):
    """On a marimba, whose notes begin at once, each is heard within 2 ms of its place."""
    passed = failed = 0
    tempo = 113  # notes are cut to whole ticks
    for name, measures, options, order in PRACTICE:
        tune = os.path.join(folder, "practice.gui")
        with open(tune, "wb") as file:
            file.write(tune_of(measures))
        onsets, end = expected_onsets(measures, order, tempo, options)
        for extension in ("wav", "ogg", "mp3") if name == "ties" else ("wav",):
            sound = os.path.join(folder, f"practice.{extension}")
            done = run(export, tune, "--tempo", str(tempo), "--instrument", "12", *options, "-o", sound)
            left, _, rate = samples_of(sound) if done.returncode == 0 else ([0] * 44100 * 60, [], 44100)
            late = [lateness(left, rate, onset) for onset in onsets]
            length = len(left) / rate - 0.5
            bad = [] if abs(length - end) < 0.03 else [("length", length - end)]
            bad += [(round(told, 3), ms) for told, ms in zip(onsets, late) if ms is None or abs(ms) > 2]
            passed += len(onsets) - len(bad)
            failed += len(bad)
            if bad:
                print(f"failed: practice of {name}, {extension}: {done.stderr}{bad[:5]}")
    return passed, failed


def check_clicks(export, folder):
    """As midicsv reads them: a count-in, then a click on each beat of each turn."""
    tune, midi = os.path.join(folder, "click.gui"), os.path.join(folder, "click.mid")
    with open(tune, "wb") as file:
        file.write(tune_of([("", "", "", "", QUARTERS)]))
    run(export, tune, "--tempo", "120", "--count-in", "--click", "--loop", "2", "-o", midi)
    rows = [line.split(", ") for line in run("midicsv", midi).stdout.splitlines()]
    clicks = [(int(r[1]), r[4]) for r in rows if r[2] == "Note_on_c" and r[3] == "9" and r[5] != "0"]
    good = clicks == [(120 * beat, "77" if beat % 4 else "76") for beat in range(12)]
    if not good:
        print(f"failed: clicks {clicks}")
    return (1, 0) if good else (0, 1)


def main():
    export = os.path.abspath(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 200
    os.environ["QUILLON_SOUNDFONT"] = SOUNDFONT
    with tempfile.TemporaryDirectory() as folder:
        results = [check_readers(export, folder, count), check_pitches(export, folder),
                   check_repeat(export, folder), check_rendered(export, folder),
                   check_practice(export, folder), check_clicks(export, folder)]
    passed, failed = (sum(r[i] for r in results) for i in (0, 1))
    print(f"{passed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

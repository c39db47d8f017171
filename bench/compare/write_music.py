"""Writes a guitar tune for other programs, so that all of them have the same music to work on.

    write_music.py TUNE COPIES FOLDER

Makes in FOLDER: tune.gui (TUNE, its measures COPIES times), tune.abc, tune.musicxml, tune.ly (its
pages) and sound.ly (its sound). Notes, rests, ties, measures, repeats with their endings, double
bars, chord names and the title are carried over; fingering, remarks and line breaks are not. A
tune with anything else in it is refused, because all programs must get the same music.
"""

import csv
import dataclasses
import pathlib
import re
import sys
from xml.sax.saxutils import escape

OPEN_STRINGS = 64, 59, 55, 50, 45, 40  # MIDI note numbers, string 1 first
TEMPO = 120  # quarter notes a minute
QUARTER = 12  # ticks

# Note code: written value, dots. The rests of the file have codes of their own.
NOTES = {2: (16, 0), 4: (8, 0), 5: (8, 1), 7: (4, 0), 8: (4, 1), 9: (2, 0), 10: (2, 1), 11: (1, 0)}
RESTS = {92: (2, 0), 93: (1, 0), 95: (16, 0), 97: (8, 0), 99: (4, 0)}
HEAD = 999
RECORD_LINES = 9


@dataclasses.dataclass
class Tone:
    string: int  # 1 is the highest
    fret: int
    tied: bool  # to the next chord
    tie_ends: bool = False

    @property
    def pitch(self):
        return OPEN_STRINGS[self.string - 1] + self.fret


@dataclasses.dataclass
class Chord:
    value: int  # 4 is a quarter
    dots: int
    name: str
    tones: list  # none: a rest

    @property
    def ticks(self):
        return 4 * QUARTER // self.value * 3 // 2 if self.dots else 4 * QUARTER // self.value


@dataclasses.dataclass
class Measure:
    beats: int
    unit: int
    repeat_starts: bool
    repeat_ends: bool
    double_bar: bool
    ending: int  # 1 or 2, 0 is none
    chords: list

    @property
    def group(self):
        """Ticks under one beam."""
        return 3 * QUARTER // 2 if self.unit == 8 and self.beats % 3 == 0 else QUARTER


# The tune file


def records(path):
    lines = pathlib.Path(path).read_text(encoding="cp1252").splitlines()
    return [lines[i : i + RECORD_LINES] for i in range(0, len(lines), RECORD_LINES)]


def items(record):
    return [item for line in record for item in next(csv.reader([line]))]


def tone(string, cell):
    if not re.fullmatch(r"\d+\^?", cell):
        raise SystemExit(f"write_music.py: cannot carry over {cell!r}")
    return Tone(string, int(cell.rstrip("^")), cell.endswith("^"))


def read_tune(path):
    """The title and the measures."""
    header, *body = map(items, records(path))
    measures = []
    for record in body:
        code, unit, beats = int(record[1]), int(record[4]), int(record[5])
        bar, name, slots = record[8], record[11], record[12:]
        if code == HEAD:
            if slots[0] or bar == "95":
                raise SystemExit("write_music.py: cannot carry over signs")
            ending = int(slots[1].rstrip(".") or 0)
            measures.append(
                Measure(beats, unit, bar == "98", bar == "99", bar == "94", ending, [])
            )
        elif code in RESTS:
            measures[-1].chords.append(Chord(*RESTS[code], name, []))
        elif code in NOTES:
            tones = [tone(i, cell) for i, cell in enumerate(slots, 1) if cell]
            measures[-1].chords.append(Chord(*NOTES[code], name, tones))
        else:
            raise SystemExit(f"write_music.py: cannot carry over note code {code}")
    end_ties([chord for measure in measures for chord in measure.chords])
    return header[11], measures


def end_ties(chords):
    for chord, after in zip(chords, chords[1:]):
        for tied in (t for t in chord.tones if t.tied):
            match = [t for t in after.tones if (t.string, t.fret) == (tied.string, tied.fret)]
            if not match:
                raise SystemExit("write_music.py: cannot carry over slurs")
            match[0].tie_ends = True


def tune_file(path, copies):
    header, *body = records(path)
    count = int(items(body[-1])[0])
    lines = list(header)
    for copy in range(copies):
        for first, *rest in body:
            measure, after = first.split(",", 1)
            lines += [f"{int(measure) + copy * count},{after}", *rest]
    return "".join(line + "\r\n" for line in lines)


# LilyPond

LILY_STEPS = "c cis d dis e f fis g gis a ais b".split()


def lily_pitch(pitch):
    octave = pitch // 12 - 4
    return LILY_STEPS[pitch % 12] + ("'" * octave if octave > 0 else "," * -octave)


def lily_chord(chord):
    value = str(chord.value) + "." * chord.dots
    name = f'^"{chord.name}"' if chord.name else ""
    if not chord.tones:
        return f"r{value}{name}"
    tones = (lily_pitch(t.pitch) + f"\\{t.string}" + "~" * t.tied for t in chord.tones)
    return f"<{' '.join(tones)}>{value}{name}"


def lily_music(measures):
    """An ending is one measure; a repeat without a first ending has none."""
    lines = []
    time = None
    for m in measures:
        if m.repeat_starts:
            lines.append("\\repeat volta 2 {")
        if m.ending:
            lines.append("} \\alternative { {" if m.ending == 1 else "{")
        if time != (time := (m.beats, m.unit)):
            lines.append(f"\\time {m.beats}/{m.unit}")
        lines.append(" ".join(map(lily_chord, m.chords)) + " |")
        if m.double_bar:
            lines.append('\\bar "||"')
        if m.repeat_ends or m.ending:
            lines.append("}")
        if m.ending == 2:
            lines.append("}")
    return "\n".join(lines)


def lily_file(title, measures, score):
    return (
        f'\\version "2.24.0"\n\\header {{ title = "{title}" }}\n'
        f"music = {{\n{lily_music(measures)}\n}}\n\\score {{\n{score}\n}}\n"
    )


LILY_PAGES = (
    "\\new TabStaff \\with { stringTunings = #guitar-tuning } { \\tabFullNotation \\music }\n"
    "\\layout { }"
)
LILY_SOUND = f"\\new Staff {{ \\tempo 4 = {TEMPO} \\unfoldRepeats \\music }}\n\\midi {{ }}"

# ABC

ABC_STEPS = "C ^C D ^D E F ^F G ^G A ^A B".split()
ABC_UNIT = 16


def abc_pitch(pitch, sharpened):
    """Naturals are written out where the measure has had the sharp, in whichever octave."""
    accidental, letter = ABC_STEPS[pitch % 12][:-1], ABC_STEPS[pitch % 12][-1]
    if accidental:
        sharpened.add(letter)
    elif letter in sharpened:
        accidental = "="
    octave = pitch // 12 - 5
    mark = "'" * octave if octave > 0 else "," * -octave
    return accidental + letter + mark


def abc_measure(measure):
    sharpened = set()
    text = ""
    at = 0
    for chord in measure.chords:
        if at % measure.group == 0:
            text += " "
        at += chord.ticks
        if chord.name:
            text += f'"{chord.name}"'
        tones = "".join(abc_pitch(t.pitch, sharpened) + "-" * t.tied for t in chord.tones)
        text += (f"[{tones}]" if tones else "z") + str(chord.ticks * ABC_UNIT // (4 * QUARTER))
    return text


def abc_file(title, measures):
    first = measures[0]
    lines = [
        "X:1",
        f"T:{title}",
        f"M:{first.beats}/{first.unit}",
        f"L:1/{ABC_UNIT}",
        f"Q:1/4={TEMPO}",
        "%%MIDI gchordoff",  # chord names are to be read, not played
        "K:C clef=treble_8",
    ]
    for before, m, after in zip([None, *measures], measures, [*measures[1:], None]):
        text = "|:" if m.repeat_starts else ""
        if before and (before.beats, before.unit) != (m.beats, m.unit):
            text += f"[M:{m.beats}/{m.unit}]"
        text += f"[{m.ending}" if m.ending else ""
        text += abc_measure(m) + " "
        if m.repeat_ends:
            text += ":|"
        elif m.double_bar or m.ending:
            text += "||"
        elif not (after and after.repeat_starts):
            text += "|"
        lines.append(text)
    return "\n".join(lines) + "\n"


# MusicXML

XML_TYPES = {1: "whole", 2: "half", 4: "quarter", 8: "eighth", 16: "16th"}
XML_KINDS = {"": "major", "m": "minor", "7": "dominant", "m7": "minor-seventh"}


def xml_pitch(pitch, prefix=""):
    letter = ABC_STEPS[pitch % 12]
    alter = f"<{prefix}alter>1</{prefix}alter>" if letter[0] == "^" else ""
    return (
        f"<{prefix}step>{letter[-1]}</{prefix}step>{alter}"
        f"<{prefix}octave>{pitch // 12 - 1}</{prefix}octave>"
    )


def xml_note(chord, t, is_first):
    ties = [kind for kind, there in (("stop", t and t.tie_ends), ("start", t and t.tied)) if there]
    text = "<note>" + ("" if is_first else "<chord/>")
    text += f"<pitch>{xml_pitch(t.pitch)}</pitch>" if t else "<rest/>"
    text += f"<duration>{chord.ticks}</duration>"
    text += "".join(f'<tie type="{kind}"/>' for kind in ties)
    text += f"<voice>1</voice><type>{XML_TYPES[chord.value]}</type>" + "<dot/>" * chord.dots
    if t:
        text += "<notations>" + "".join(f'<tied type="{kind}"/>' for kind in ties)
        text += f"<technical><string>{t.string}</string><fret>{t.fret}</fret></technical>"
        text += "</notations>"
    return text + "</note>\n"


def xml_harmony(name):
    letter, sharp, kind = re.fullmatch(r"([A-G])(#?)(.*)", name).groups()
    alter = "<root-alter>1</root-alter>" if sharp else ""
    return (
        f"<harmony><root><root-step>{letter}</root-step>{alter}</root>"
        f"<kind>{XML_KINDS[kind]}</kind></harmony>\n"
    )


def xml_barline(location, style, ending="", repeat=""):
    style = f"<bar-style>{style}</bar-style>" if style else ""
    return f'<barline location="{location}">{style}{ending}{repeat}</barline>\n'


def xml_measure(number, m, attributes):
    text = f'<measure number="{number}">\n{attributes}'
    ending = f'<ending number="{m.ending}" type="%s"/>' if m.ending else ""
    if m.repeat_starts:
        text += xml_barline("left", "heavy-light", "", '<repeat direction="forward"/>')
    elif ending:
        text += xml_barline("left", "", ending % "start")
    for chord in m.chords:
        if chord.name:
            text += xml_harmony(chord.name)
        for t in chord.tones or [None]:
            text += xml_note(chord, t, t is None or t is chord.tones[0])
    if m.repeat_ends:
        text += xml_barline(
            "right", "light-heavy", ending and ending % "stop", '<repeat direction="backward"/>'
        )
    elif ending or m.double_bar:
        style = "light-light" if m.double_bar else ""
        text += xml_barline("right", style, ending and ending % "discontinue")
    return text + "</measure>\n"


def xml_attributes(m, is_first):
    time = f"<time><beats>{m.beats}</beats><beat-type>{m.unit}</beat-type></time>"
    if not is_first:
        return f"<attributes>{time}</attributes>\n"
    tuning = "".join(
        f'<staff-tuning line="{line}">{xml_pitch(pitch, "tuning-")}</staff-tuning>'
        for line, pitch in enumerate(reversed(OPEN_STRINGS), 1)
    )
    return (
        f"<attributes><divisions>{QUARTER}</divisions><key><fifths>0</fifths></key>{time}"
        "<clef><sign>TAB</sign><line>5</line></clef>"
        f"<staff-details><staff-lines>6</staff-lines>{tuning}</staff-details></attributes>\n"
        f'<sound tempo="{TEMPO}"/>\n'
    )


def xml_file(title, measures):
    text = (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        '<!DOCTYPE score-partwise PUBLIC "-//Recordare//DTD MusicXML 3.1 Partwise//EN" '
        '"http://www.musicxml.org/dtds/partwise.dtd">\n'
        '<score-partwise version="3.1">\n'
        f"<work><work-title>{escape(title)}</work-title></work>\n"
        '<part-list><score-part id="P1"><part-name>Guitar</part-name>'
        '<score-instrument id="I1"><instrument-name>Guitar</instrument-name></score-instrument>'
        '<midi-instrument id="I1"><midi-channel>1</midi-channel><midi-program>26</midi-program>'
        '</midi-instrument></score-part></part-list>\n<part id="P1">\n'
    )
    time = None
    for number, m in enumerate(measures, 1):
        changes = time != (time := (m.beats, m.unit))
        text += xml_measure(number, m, xml_attributes(m, number == 1) if changes else "")
    return text + "</part>\n</score-partwise>\n"


def main():
    tune, copies, folder = sys.argv[1], int(sys.argv[2]), pathlib.Path(sys.argv[3])
    title, measures = read_tune(tune)
    measures *= copies
    (folder / "tune.gui").write_bytes(tune_file(tune, copies).encode("cp1252"))
    (folder / "tune.abc").write_text(abc_file(title, measures))
    (folder / "tune.musicxml").write_text(xml_file(title, measures))
    (folder / "tune.ly").write_text(lily_file(title, measures, LILY_PAGES))
    (folder / "sound.ly").write_text(lily_file(title, measures, LILY_SOUND))


main()

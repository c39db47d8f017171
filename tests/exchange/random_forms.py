"""Random tunes for other programs: every value, sign and connection that more than one form knows.

The form of the tune, its repeats, endings and jumps, is that of tests/model/random_midi_tunes.py;
the notes are such as a player writes them. What is a reading of its own, such as a tie to a string
that is silent, has no place here.
"""

import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "model"))
import random_midi_tunes as tunes  # noqa: E402

SIGNATURES = [(4, 4), (4, 4), (3, 4), (2, 4), (6, 8), (9, 8), (5, 4), (3, 8)]
CHORDS = ["", "", "", "", "", "G", "Am7", "D7sus4", "Bb", "F#m", "N.C.", "C/G"]
REMARKS = ["", "", "", "", "Chorus", "slowly", 'with "quotes"', "<&>", "50 %"]
TITLES = ["A tune", "", "Caf\xe9", "<One> & two", "Tune: no. 3"]
REST_OF_TRIPLET = {1: 94, 3: 96, 6: 98}
TICKS = {**tunes.NOTE_TICKS, **tunes.REST_TICKS}
PLAIN = ["{}", "{}", "{}", "{}>", "{}<", "x"]


class TuneWriter:
    """Tunes of one instrument; `ghosts` and the like sound different on the way out."""

    def __init__(self, seed, ghosts=False):
        self.rng = random.Random(f"form {seed}")
        self.ghosts = ghosts
        self.strings = self.rng.choice([4, 5, 6])
        self.beats, self.unit = self.rng.choice(SIGNATURES)
        self.density = self.rng.choice([0.15, 0.3])
        self.records = []  # each a measure's number, a code and its cells

    def fret(self, string):
        roll = self.rng.random()
        if roll < 0.2:
            return 0
        if self.strings == 5 and string == 5:
            return self.rng.randint(6, 12)
        return self.rng.randint(1, 7) if roll < 0.9 else self.rng.randint(8, 15)

    def codes(self, ticks):
        """Values that fill so many ticks, a multiple of 3; a triplet is three of a kind."""
        while ticks > 0:
            code = self.rng.choice([2, 2, 4, 4, 4, 5, 7, 7, 7, 8, 9, 10, 11, 1, 3, 6])
            values = [code] * (3 if code in REST_OF_TRIPLET else 1)
            if self.rng.random() < 0.1:
                if code in REST_OF_TRIPLET:
                    values[self.rng.randrange(3)] = REST_OF_TRIPLET[code]
                else:
                    values = [self.rng.choice([92, 93, 95, 97, 99])]
            length = sum(TICKS[value] for value in values)
            if length <= ticks or self.rng.random() < 0.03:
                yield from values
                ticks -= length

    def measure(self):
        full = self.beats * (12 if self.unit == 4 else 6)
        if self.rng.random() < 0.1:
            full = 3 * self.rng.randint(1, full // 3)
        made = [[code, [""] * 6] for code in self.codes(full)]
        for code, cells in made:
            if code > 90:
                continue
            for s in range(self.strings):
                if self.rng.random() < self.density:
                    cells[s] = self.rng.choice(PLAIN).format(self.fret(s + 1))
            if not any(cells):
                s = self.rng.randrange(self.strings)
                cells[s] = str(self.fret(s + 1))
        return made

    def connect(self, made):
        """Ties, slurs, hammer-ons and slides, each to a note that is there."""
        for one, two in zip(made, made[1:]):
            for s in range(self.strings):
                if one[1][s].isdigit() and two[1][s].isdigit() and self.rng.random() < 0.3:
                    if self.rng.random() < 0.6:
                        two[1][s] = one[1][s]
                    elif one[1][s] == two[1][s]:
                        continue
                    one[1][s] += "^"
        tied = [""] * 6
        for code, cells in made:
            for s in range(self.strings):
                short = self.strings == 5 and s == 4
                free = cells[s].isdigit() and not tied[s].endswith("^") and not short
                if free and code not in (1, 2) and self.rng.random() < 0.06:
                    cells[s] += self.rng.choice("-=") + str(self.fret(s + 1))
                elif free and self.ghosts and self.rng.random() < 0.05:
                    cells[s] = f"({cells[s]})"
            tied = cells

    def text(self):
        form = tunes.random_form(self.rng)
        header = ["" for _ in range(6)]
        header[0], header[1] = self.rng.choice(["", "Trad."]), self.rng.choice(["", "arr. 2020"])
        header[3] = self.rng.choice(["", "", "0", "1", "2"])
        records = [tunes.record_text(0, 0, 0, 0, chord=self.rng.choice(TITLES), slots=header)]
        for number, measure in enumerate(form, 1):
            made = self.measure()
            self.connect(made)
            remark = measure.remark or self.rng.choice(REMARKS)
            slots = [measure.sign, measure.bracket, remark.replace('"', "'"), "", "",
                     self.rng.choice(["", "", "", "NL"])]
            records.append(tunes.record_text(number, tunes.HEAD, self.beats, self.unit,
                                             measure.bar, slots=slots))
            for code, cells in made:
                records.append(tunes.record_text(number, code, self.beats, self.unit,
                                                 chord=self.rng.choice(CHORDS), slots=cells))
        lines = [line for record in records for line in record]
        return ("\r\n".join(lines) + "\r\n").encode("latin-1")


def random_tune(seed, ghosts=False):
    """The extension and the bytes of its file."""
    writer = TuneWriter(seed, ghosts)
    return tunes.EXTENSIONS[writer.strings], writer.text()

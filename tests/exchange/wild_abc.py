#!/usr/bin/env python3
"""Random ABC tunes with what tune books hold besides notes in bars.

    wild_abc.py SEED [FEATURE...]      prints the tune of this seed

Each tune has a few features, drawn from FEATURES or named, so that a difference in what it sounds
like can be laid to one of them.
"""

import random
import sys
from fractions import Fraction

FEATURES = (
    "accidentals broken chords tuplets ties slurs graces decorations letters names texts rests "
    "measure-rests spacers inline-fields field-lines endings many-endings repeats bars parts "
    "part-order continuation comments words odd-signs lengths odd-meters keys key-signs no-unit "
    "directives carriage-returns voices half-bar-repeats bar-ties end-ties tuplet-oddities "
    "chord-oddities broken-oddities history old-breaks"
).split()

METERS = {"4/4": 8, "C": 8, "C|": 8, "2/4": 4, "3/4": 6, "6/8": 6, "9/8": 9, "12/8": 12}  # eighths
ODD_METERS = {"3/2": 12, "2/2": 8, "5/4": 10, "3/8": 3, "5/8": 5, "7/8": 7, "6/4": 12, "2+3/8": 5,
              "(3+2+2)/8": 7, "none": 8, "4/8": 4, " 3/4": 6}
KEYS = ["C", "G", "D", "A", "E", "F", "Bb", "Am", "Em", "Bm", "Dm", "Gm"]
ODD_KEYS = ["Ador", "Edor", "Dmix", "Amix", "F#m", "G minor", "Dlyd", "HP", "Hp", "none",
            "C treble", "D major", "G Major", "Dmixolydian", "A Dorian", "E phrygian", "B locrian",
            "Ebmaj", "Ab", "Db", "C#m", "G#m", "Cm", "Fm", "Bbm", "F#", "B", "Gb", "Ddorian",
            "AMin", "Gmaj", "Am clef=treble", "Cion", "Aaeo", "D clef=bass", "G % key"]
LETTERS = "CDEFGABcdefgab"
NAMES = ['"G"', '"Am7"', '"D/f+"', '"(E7)"', '"Gm/bb"', '"B b"', '"D7sus4"', '"F#m"', '"A|B"']
TEXTS = ['"^slow"', '"_soft"', '"<("', '">)"', '"@1,2 text"', '"^D.C. al Fine"', '"^a [b]"']
DECORATIONS = ["!trill!", "+trill+", "!f!", "!p!", "!mf!", "!segno!", "!coda!", "!1!", "!5!",
               "!crescendo(!", "!crescendo)!", "!>!", "!upbow!", "!D.C.!", "!fine!", "!open!"]
LETTERS_OF_DECORATION = [".", "~", "H", "L", "M", "O", "P", "S", "T", "u", "v", "J", "R"]
BARS = ["||", "|]", "[|", "|", "| |", "|\n|", ".|", "|||"]
GRACES = ["{a}", "{ag}", "{/a}", "{a2}", "{^fg}", "{gag}", "{[ce]}"]
ODD_SIGNS = ["`", "*", ";", "$"]


class Tune:
    def __init__(self, seed, features=()):
        self.rng = random.Random(f"wild {seed}")
        self.features = list(features) or self.rng.sample(FEATURES, self.rng.randint(1, 4))
        meters = {**METERS, **ODD_METERS} if self.has("odd-meters") else METERS
        self.meter = self.rng.choice(list(meters))
        self.eighths = meters[self.meter]
        self.unit = 8 if self.rng.random() < 0.6 else self.rng.choice([4, 16])
        if self.has("no-unit"):
            whole = {"C": 1, "C|": 1}.get(self.meter) or Fraction(self.eighths, 8)
            self.unit = 16 if whole < Fraction(3, 4) and self.meter != "none" else 8
        self.lines = []

    def has(self, feature):
        return feature in self.features

    def chance(self, feature, part):
        return self.has(feature) and self.rng.random() < part

    def pick(self, values):
        return self.rng.choice(values)

    # Notes

    def pitch(self):
        letter = self.pick(LETTERS)
        sign = ""
        if self.chance("accidentals", 0.25):
            sign = self.pick(["^", "_", "=", "^", "_", "=", "^^", "__"])
        octave = ""
        if letter in "GAB" and self.rng.random() < 0.1:
            octave = ","
        elif letter == "c" and self.rng.random() < 0.05:
            octave = "'"
        return sign + letter + octave

    def length(self, eighths):
        """What stands behind a note of so many eighths."""
        units = Fraction(eighths) * self.unit / 8
        if units == 1:
            return "1" if self.chance("lengths", 0.1) else ""
        if units.denominator == 1:
            return str(units)
        if units == Fraction(1, 2):
            return self.pick(["/", "/2", "1/2"] if self.has("lengths") else ["/"])
        if units == Fraction(1, 4):
            return self.pick(["//", "/4", "1/4"] if self.has("lengths") else ["/4"])
        if units.denominator == 2 and self.chance("lengths", 0.5):
            return f"{units.numerator}/"
        return f"{units.numerator}/{units.denominator}"

    def sound(self):
        if self.chance("rests", 0.15):
            return self.pick("zzx")
        if self.chance("chords", 0.2):
            return self.chord()
        return self.pitch()

    def chord(self):
        low = self.rng.randrange(len(LETTERS) - 6)
        notes = [LETTERS[low], LETTERS[low + self.rng.randint(2, 3)]]
        if self.rng.random() < 0.3:
            notes.append(LETTERS[low + self.rng.randint(4, 6)])
        if not self.has("chord-oddities"):
            return f"[{''.join(notes)}]"
        kind = self.rng.randrange(5)
        if kind == 0:
            return f"[{' '.join(notes)}]"
        if kind == 1:
            return f"[^{''.join(notes)}]"
        if kind == 2:
            return f'["G"{"".join(notes)}]'
        if kind == 3:
            return f"[!1!{''.join(notes)}]"
        return f"[{notes[-1]}{''.join(notes[:-1])}]"

    def marks(self):
        """What may stand before a note."""
        text = ""
        for feature, values in (("names", NAMES), ("texts", TEXTS), ("decorations", DECORATIONS),
                                ("letters", LETTERS_OF_DECORATION), ("graces", GRACES),
                                ("odd-signs", ODD_SIGNS), ("spacers", ["y", "y2 ", " y"])):
            if self.chance(feature, 0.15):
                text += self.pick(values)
        if self.chance("inline-fields", 0.06):
            text += self.pick(["[K:G]", "[K:Dm]", "[r:note]", "[I:text]", "[Q:1/4=100]", "[K:A mix]",
                               "[N:x]", "[K: F]"])
        return text

    def tuplet(self, eighths):
        count = self.pick([3, 3, 3, 2, 4, 6] + ([5, 7, 8, 9] if self.has("tuplet-oddities") else []))
        compound = self.meter in ("6/8", "9/8", "12/8")
        time = {2: 3, 3: 2, 4: 3, 6: 2, 8: 3}.get(count, 3 if compound else 2)
        if time > eighths:
            return None
        notes = [self.sound() + self.length(1) for _ in range(count)]
        sign = f"({count}"
        if self.has("tuplet-oddities"):
            kind = self.rng.randrange(8)
            if kind == 0:
                sign = f"({count}:{time}:{count}"
            elif kind == 1:
                sign = f"({count}::{count}" if count in (2, 3, 4) else sign
            elif kind == 2:
                sign += " "
            elif kind == 3:
                return "(" + sign + "".join(notes) + ")", time
            elif kind == 4:
                return sign + "(" + "".join(notes) + ")", time
            elif kind == 5 and count == 3:
                notes = [self.pitch() + self.length(2), self.pitch() + self.length(1)]
                return "(3:2:2" + "".join(notes), 2
            elif kind == 6:
                return sign + " ".join(notes), time
            elif kind == 7 and count == 3:
                return sign + notes[0] + self.pick("<>") + notes[1] + notes[2], time
        return sign + "".join(notes), time

    def broken(self):
        one, two = self.sound() + self.length(1), self.sound() + self.length(1)
        sign = self.pick([">", "<"])
        if self.has("broken-oddities"):
            sign = self.pick([">", "<", ">>", "<<", " > ", "> ", " <"])
            if self.rng.random() < 0.2:
                two = '"G"' + two
            if self.rng.random() < 0.1:
                two = self.sound() + self.length(2)
                return one + sign + two, 3
        return one + sign + two, 2

    def tie(self):
        letter = self.pick(LETTERS)
        sign = self.pick(["-", "-", " -", "- "])
        one = f"[{letter}{self.pick('ce') if letter.isupper() else letter}]" if self.chance("chords", 0.3) else letter
        if letter in "ce":
            one = letter
        return one + self.length(1) + sign + one + self.length(1), 2

    def group(self, eighths):
        """Notes of at most so many eighths, and how many they last."""
        if eighths >= 2 and (self.has("tuplets") or self.has("tuplet-oddities")) and self.rng.random() < 0.15:
            made = self.tuplet(eighths)
            if made:
                return made
        if eighths >= 3 and (self.has("broken") or self.has("broken-oddities")) and self.rng.random() < 0.25:
            return self.broken()
        if eighths >= 2 and self.chance("ties", 0.2):
            return self.tie()
        if eighths >= 2 and self.chance("slurs", 0.2):
            return f"({self.sound()}{self.length(1)}{self.pitch()}{self.length(1)})", 2
        if self.rng.random() < 0.15:
            return self.sound() + self.length(Fraction(1, 2)) + self.sound() + self.length(Fraction(1, 2)), 1
        length = self.pick([n for n in (1, 1, 1, 1, 2, 2, 3, 4, 6) if n <= eighths])
        return self.sound() + self.length(length), length

    def bar(self, eighths=None):
        if eighths is None and self.chance("measure-rests", 0.15):
            return self.pick(["Z", "Z2", "Z1", "X"])
        left = eighths or self.eighths
        text = ""
        while left > 0:
            group, length = self.group(left)
            text += self.marks() + group
            text += " " if self.rng.random() < 0.4 else ""
            left -= length
        return text

    def join(self):
        """Between two bars."""
        if self.chance("end-ties", 0.2):
            return self.pick(["-|", " -|", "-| ", "-||", "|-"])
        bar = self.pick(BARS) if self.chance("bars", 0.4) else "|"
        return bar

    def line_end(self):
        if self.chance("continuation", 0.5):
            return self.pick(["\\\n", " \\\n", "\\\n% remark\n", "\\ \n"])
        if self.chance("comments", 0.5):
            return self.pick([" % remark |\n", "\n% remark ABC\n", "%\n"])
        if self.chance("old-breaks", 0.4):
            return "!\n"
        if self.chance("words", 0.5):
            return "\nw: so- me words | _ *\n"
        if self.chance("field-lines", 0.3):
            return "\n" + self.pick(["K:G", "K:Dm", "K:A", "Q:1/4=90", "N:note", "T:Second", "L:1/8",
                                     "R:reel"] if self.unit == 8 else ["K:G", "K:F", "N:note"]) + "\n"
        return "\n"

    def bars(self, count):
        text = ""
        for i in range(count):
            if i:
                if self.chance("bar-ties", 0.4):
                    letter = self.pick(LETTERS)
                    text += self.pick(["", " "]) + letter + self.length(1)
                    text += self.pick(["-|", " -|", "|-", "- | ", "-|\n"]) + letter + self.length(1)
                else:
                    text += self.join()
                if self.rng.random() < 0.25:
                    text += self.line_end()
            text += self.bar()
        return text

    # Form

    def ending_pair(self):
        join = self.pick(["|[1", "|1", "| [1 ", "[1 ", "|\n[1 "])
        second = self.pick([":|[2", ":|2", ":| [2 ", ":|\n[2 "])
        last = self.pick(["||", "|]", "|"])
        return join + self.bar() + second + self.bar() + last

    def many_endings(self):
        kind = self.rng.randrange(4)
        if kind == 0:
            return "|[1,2" + self.bar() + ":|[3" + self.bar() + "||"
        if kind == 1:
            return "|[1-3 " + self.bar() + ":|[4 " + self.bar() + "|]"
        if kind == 2:
            return "|1 " + self.bar() + ":|2 " + self.bar() + ":|3 " + self.bar() + "||"
        return "|[1,3 " + self.bar() + ":|[2,4 " + self.bar() + ":|"

    def section(self, first):
        body = self.bars(self.rng.randint(2, 4))
        if self.chance("half-bar-repeats", 0.7):
            half = max(1, self.eighths // 2)
            start, end = self.bar(half), self.bar(self.eighths - half or 1)
            return ("" if first else "|:") + start + "|" + body + "|" + end + ":|"
        if self.chance("many-endings", 0.6):
            return "|:" + body + self.many_endings()
        if self.chance("endings", 0.6):
            return self.pick(["|:", "|:", "" if first else "|:"]) + body + self.ending_pair()
        if self.chance("repeats", 0.8):
            start = self.pick(["|:", "|:", "", "[|:", "|: "])
            return start + body + self.pick([":|", ":|", ":||", ":|]", "||", "|]", " :|", "::", ":|:", ":||:"])
        if self.rng.random() < 0.4:
            return "|:" + body + ":|"
        return body + self.pick(["|", "||", "|]"])

    def header(self):
        lines = ["X:1", "T:Random"]
        if self.has("history"):
            lines += ["C:Trad.", "S:a book, p. 3", "O:Ireland", "H:A long", "+:history", "Z:me", "A:x",
                      "B:book", "D:disc", "F:file", "G:group"]
        if self.has("directives"):
            lines += ["%%scale 0.8", "%%MIDI program 40", "%%staffsep 50", "%abc-2.1"]
        self.order = ""
        if self.has("part-order"):
            self.order = self.pick(["AB", "ABA", "AABB", "A2B2", "(AB)2", "BA", "ABC", "A.B", "(A2B)2A"])
            lines.append("P:" + self.order)
        lines.append(f"M:{self.meter}")
        if not self.has("no-unit"):
            lines.append(f"L:1/{self.unit}" if self.rng.random() < 0.8 else f"L: 1/{self.unit}")
        if self.rng.random() < 0.2:
            lines.append("Q:" + self.pick(["1/4=120", "120", '"Allegro" 1/4=120', "3/8=80", "1/2=60"]))
        key = self.pick(ODD_KEYS if self.has("keys") else KEYS)
        if self.has("key-signs"):
            key = self.pick(["D =c", "C ^f", "G _b", "D exp ^f^c", "Am ^g", "C exp _b", "D ^g =f"])
        lines.append(self.pick(["K:", "K: ", "K:"]) + key)
        return lines

    def text(self):
        lines = self.header()
        count = self.rng.randint(1, 3)
        if self.has("directives"):
            lines += ["%%MIDI transpose 2"] if self.rng.random() < 0.5 else ["%%text hello"]
        if self.rng.random() < 0.4:
            lines.append(self.bar(self.rng.randint(1, 2)) + "|\\")
        for i in range(count):
            if self.has("parts") or self.has("part-order"):
                lines.append("P:" + "ABC"[i])
            if self.has("voices"):
                lines += ["V:1"]
            lines.append(self.section(i == 0))
            if self.has("voices"):
                lines += ["V:2", self.bars(2) + "|", "V:1"]
        if self.has("words"):
            lines += ["W: last words", "W:"]
        text = "\n".join(lines) + "\n"
        return text.replace("\n", "\r\n") if self.has("carriage-returns") else text


def random_tune(seed, features=()):
    return Tune(seed, features).text()


def features_of(seed):
    return Tune(seed).features


if __name__ == "__main__":
    print(random_tune(int(sys.argv[1]), sys.argv[2:]), end="")

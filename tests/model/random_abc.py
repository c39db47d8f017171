#!/usr/bin/env python3
"""Random tunes in ABC, as wild as tune books get.

    random_abc.py SEED      prints the tune of this seed
"""

import random
import sys

METERS = {"4/4": 8, "C": 8, "2/4": 4, "3/4": 6, "6/8": 6, "9/8": 9, "12/8": 12, "C|": 8}  # eighths
KEYS = ["C", "G", "D", "A", "E", "F", "Bb", "Eb", "Am", "Em", "Bm", "Ador", "Edor", "Dmix", "Amix",
        "F#m", "G minor", "Dlyd", "HP", "none", "C treble"]
LETTERS = "CDEFGABcdefgab"


class Writer:
    def __init__(self, seed):
        self.rng = random.Random(seed)
        self.meter = self.rng.choice(list(METERS))
        self.unit = self.rng.choice([8, 8, 8, 16, 4])

    def chance(self, part):
        return self.rng.random() < part

    def pitch(self):
        letter = self.rng.choice(LETTERS)
        accidental = self.rng.choice(["^", "_", "="]) if self.chance(0.06) else ""
        return accidental + letter + ("," if letter in "GAB" and self.chance(0.1) else "")

    def sound(self):
        if self.chance(0.05):
            return "z"
        if self.chance(0.06):
            low = self.rng.randrange(len(LETTERS) - 5)
            return f"[{LETTERS[low]}{LETTERS[low + self.rng.randint(2, 5)]}]"
        return self.pitch()

    def length(self, eighths):
        """What stands behind a note of so many eighths."""
        units = eighths * self.unit / 8
        if units == 1:
            return ""
        if units == int(units):
            return str(int(units))
        if units == 0.5:
            return self.rng.choice(["/", "/2"])
        sixteenths = int(units * 4)
        return f"{sixteenths}/4" if sixteenths % 2 else f"{sixteenths // 2}/2"

    def group(self, eighths):
        """Notes of at most so many eighths, and how many they last."""
        kind = self.rng.random()
        if kind < 0.06 and eighths >= 2:
            one = self.length(1)
            return "(3" + "".join(self.pitch() + one for _ in range(3)), 2
        if kind < 0.12 and eighths >= 2:
            return (self.pitch() + self.length(1) + self.rng.choice("><")
                    + self.pitch() + self.length(1)), 2
        if kind < 0.18:
            half = self.length(0.5)
            return self.sound() + half + self.sound() + half, 1
        if kind < 0.22 and eighths >= 2:
            pitch = self.rng.choice(LETTERS)
            return pitch + self.length(1) + self.rng.choice(["-", " -"]) + pitch + self.length(1), 2
        length = self.rng.choice([n for n in (1, 1, 1, 2, 2, 3, 4, 6) if n <= eighths])
        return self.sound() + self.length(length), length

    def bar(self, eighths=None):
        left = eighths or METERS[self.meter]
        text = ""
        while left > 0:
            group, length = self.group(left)
            if self.chance(0.1):
                text += self.rng.choice(['"G"', '"D7"', '"C/e"', "{ag}", "!trill!", ".", "~", "y"])
            text += group + (" " if self.chance(0.3) else "")
            left -= length
        if self.chance(0.05):
            text = self.rng.choice(["[K:G]", "[K:Dm]"]) + text
        return text

    def bars(self, count):
        text = ""
        for i in range(count):
            tie = "-" if text and not text.endswith(" ") and self.chance(0.05) else ""
            text += (tie + "|" if i else "") + self.bar()
            if self.chance(0.2):
                text += "\n" if self.chance(0.5) else "\\\n"
        return text

    def section(self, first):
        start = "|:" if self.chance(0.5) else ""
        body = self.bars(self.rng.randint(2, 4))
        kind = self.rng.random()
        if kind < 0.3:
            return start + body + ":|"
        if kind < 0.5:
            join = self.rng.choice(["|[1", "|1", "| [1 "])
            second = self.rng.choice([":|[2", ":|2", ":| [2 "])
            return start + body + join + self.bar() + second + self.bar() + "||"
        if kind < 0.6:
            return "|:" + body + "|[1,2" + self.bar() + ":|[3" + self.bar() + "||"
        if first:
            return body + "||"
        return ("|:" if kind < 0.8 else "") + body + (":|" if kind < 0.8 else "||")

    def tune(self):
        count = self.rng.randint(1, 3)
        lines = ["X:1", "T:Random"]
        parts = self.chance(0.3)
        order = "".join(self.rng.choice("ABC"[:count]) for _ in range(4))
        if parts and self.chance(0.5):
            lines.append("P:" + order)
        lines += [f"M:{self.meter}", f"L:1/{self.unit}", f"K:{self.rng.choice(KEYS)}"]
        if self.chance(0.4) and not parts:
            lines.append(self.bar(self.rng.randint(1, 2)) + "|")
        for i in range(count):
            if parts:
                lines.append("P:" + "ABC"[i])
            lines.append(self.section(i == 0))
        return "\n".join(lines) + "\n"


def random_tune(seed):
    return Writer(seed).tune()


if __name__ == "__main__":
    print(random_tune(int(sys.argv[1])), end="")

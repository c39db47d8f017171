"""Notes of MIDI files, whoever wrote them, and their comparison."""

from fractions import Fraction

TOLERANCE = Fraction(1, 16)  # of a quarter
DRUMS = 9


class TrackReader:
    def __init__(self, data):
        self.data, self.at, self.status = data, 0, 0

    def number(self):
        value = 0
        while True:
            byte = self.data[self.at]
            self.at += 1
            value = value << 7 | byte & 0x7F
            if byte < 0x80:
                return value

    def events(self):
        """(tick, status, first byte, second byte) of all channel messages."""
        now = 0
        while self.at < len(self.data):
            now += self.number()
            if self.data[self.at] >= 0x80:
                self.status = self.data[self.at]
                self.at += 1
            if self.status >= 0xF0:
                self.at += self.status == 0xFF
                length = self.number()
                self.at += length
                continue
            size = 1 if 0xC0 <= self.status < 0xE0 else 2
            values = self.data[self.at : self.at + size]
            self.at += size
            yield now, self.status, values[0], values[-1]


def notes_of_midi(data):
    """(onset, pitch, length) of each note, in quarters, sorted."""
    division = int.from_bytes(data[12:14], "big")
    notes, at = [], 14
    while at + 8 <= len(data):
        end = at + 8 + int.from_bytes(data[at + 4 : at + 8], "big")
        if data[at : at + 4] == b"MTrk":
            notes += notes_of_track(data[at + 8 : end], division)
        at = end
    return sorted(notes)


def notes_of_track(data, division):
    notes, ringing = [], {}
    for now, status, pitch, velocity in TrackReader(data).events():
        kind, key = status >> 4, (status & 15, pitch)
        if kind not in (8, 9) or key[0] == DRUMS:
            continue
        if kind == 9 and velocity:
            ringing.setdefault(key, []).append(now)
        elif ringing.get(key):
            begin = ringing[key].pop(0)
            notes.append((Fraction(begin, division), pitch, Fraction(now - begin, division)))
    return notes


def near(one, two):
    return abs(one - two) <= TOLERANCE


def take(note, found, may_strike_again):
    """Takes what sounds of a note out of `found`; false if it does not sound.

    A note that `may_strike_again` at some moment may be several, one behind the other."""
    at, pitch, length = note
    end = at + length
    while not near(at, end):
        parts = [n for n in found if n[1] == pitch and near(n[0], at)]
        if not parts:
            return False
        part = max(parts, key=lambda n: n[2] if n[0] + n[2] <= end + TOLERANCE else -n[2])
        found.remove(part)
        at = part[0] + part[2]
        if not near(at, end) and not may_strike_again(at):
            return False
    return True


def difference(wanted, found, shift=0, may_strike_again=lambda at: False):
    """None, or words on the first wanted note that is missing, or the first one too many."""
    left = list(found)
    for note in wanted:
        note = (note[0], note[1] + shift, note[2])
        if not take(note, left, may_strike_again):
            return f"at {float(note[0]):.3f} pitch {note[1]} for {float(note[2]):.3f} is missing"
    if left:
        note = left[0]
        return f"at {float(note[0]):.3f} pitch {note[1]} for {float(note[2]):.3f} is too many"
    return None


def without_unisons(*performances):
    """The same without what sounds while one pitch is struck on two strings.

    One line of music has no way to tell them apart. The first performance says where they are."""
    ringing = {}
    spans = []
    for begin, pitch, length in performances[0]:
        before = ringing.get(pitch)
        if before and begin < before[1]:
            end = max(before[1], begin + length)
            spans.append((pitch, before[0], end))
            ringing[pitch] = (before[0], end)
        else:
            ringing[pitch] = (begin, begin + length)

    def is_clear(note):
        return not any(note[1] == pitch and note[0] < end - TOLERANCE and note[0] + note[2] > begin + TOLERANCE
                       for pitch, begin, end in spans)

    return [[note for note in notes if is_clear(note)] for notes in performances]

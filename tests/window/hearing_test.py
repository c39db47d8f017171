"""The band that follows the music in the real window, against the sound that is made meanwhile.

The sound goes into a file in real time. How long the file is tells how much has been heard.
"""

import array
import os
import pathlib
import statistics
import tempfile
import time
import unittest

from desktop import PATIENCE, wait_for
from editor import Editor

RATE = 44100  # frames a second
HEADER = 44  # bytes of the sound file before its frames of four
TEMPO = 300
MEASURE = 60 / TEMPO  # seconds: a quarter
QUARTER, HEAD = 7, 999
SIGN, FINE, DS_AL_FINE = "87", "83", "89"
LINES = 9  # of two measures each: more than a page holds
# In playing order: a D.S. from the second page back to the first, and to a Fine.
PLAYED = [*range(1, 2 * LINES + 1), 3, 4, 5, 6]


def record(measure, code, slots):
    return "\n".join([f"{measure},{code},0", "0,4,1,4", '0,""," "," ",""', *(f'"{s}"' for s in slots)])


def tune_of_two_pages():
    records = ["\n".join(["0,0,0", "0,0,0,0", '0,""," "," ","There and back"', *['""'] * 6])]
    for measure in range(1, 2 * LINES + 1):
        sign = {3: SIGN, 6: FINE, 2 * LINES: DS_AL_FINE}.get(measure, "")
        records.append(record(measure, HEAD, [sign, "", "", "", "", "NL" if measure % 2 else ""]))
        records.append(record(measure, QUARTER, ["", measure, "", "", "", ""])) 
    return "\n".join(records) + "\n"


class Sound:
    """The sound file while it grows."""

    def __init__(self, path):
        self.path = path

    def seconds(self):
        return max(0, os.stat(self.path).st_size - HEADER) / 4 / RATE if self.path.exists() else 0

    def first_note(self):
        """When the first frame that is not silent is heard."""
        samples = array.array("h", self.path.read_bytes()[HEADER:][: 4 * RATE * 10])
        return next(i for i, sample in enumerate(samples) if abs(sample) > 300) / 2 / RATE


class Hearing(unittest.TestCase):
    def setUp(self):
        self.config = pathlib.Path(tempfile.mkdtemp(dir=os.environ["HOME"]))
        (self.config / "Quillon.ini").write_text(f"[Guitar]\nTempo={TEMPO}\n")
        self.tune = self.config / "there_and_back.gui"
        self.tune.write_text(tune_of_two_pages())

    def editor(self):
        environment = {
            "XDG_CONFIG_HOME": str(self.config),
            "QUILLON_AUDIO_DRIVER": "file",
            "QUILLON_AUDIO_FILE": "played.wav",
        }
        return Editor(self.tune.name, files=[self.tune], environment=environment)

    def area(self, editor):
        """The part of the screen that pages are shown in: above the staff's buttons."""
        x, y, width, _ = editor.desktop.place(editor.window)
        return x, y + 30, width - 20, editor.card.y - y - 100

    def band(self, picture, colour):
        """The place of the band's corner, None without one."""
        pixel, at = bytes(reversed(colour)), -1
        while (at := picture.data.find(pixel, at + 1)) % 4 and at >= 0:
            pass
        return None if at < 0 else (at // 4 % picture.width, at // 4 // picture.width)

    def colour_of_band(self, editor, before):
        """The colour that most of the new pixels have."""

        def found():
            now = editor.desktop.picture(*self.area(editor))
            pixels = zip(*[iter(now.data)] * 4)
            new = [p for p, old in zip(pixels, zip(*[iter(before.data)] * 4)) if p != old]
            colours = statistics.multimode(new)
            return len(new) > 2000 and tuple(reversed(colours[0][:3]))

        return wait_for("the band", found)

    def test_the_band_keeps_up_with_the_sound_through_pages_and_a_jump_back(self):
        with self.editor() as editor:
            editor.start()
            before = editor.desktop.picture(*self.area(editor))
            editor.press("F5")
            colour = self.colour_of_band(editor, before)
            editor.press("F5")
            wait_for("the page", lambda: not self.band(editor.desktop.picture(*self.area(editor)), colour))
            (editor.work / "played.wav").unlink()
            editor.press("F5")
            seen = self.watch(editor, colour)
            errors = self.errors(seen, Sound(editor.work / "played.wav").first_note())
            print(
                f"        {len(errors)} measures: {min(errors):.0f} to {max(errors):.0f} ms late, "
                f"median {statistics.median(errors):.0f}"
            )
            self.assertEqual(len(errors), len(PLAYED))
            self.assertLess(abs(statistics.median(errors)), 50)  # a busy machine is late now and then
            editor.settle()
            after = editor.desktop.picture(*self.area(editor))
            self.assertEqual(after.differing(before), 0)

    def watch(self, editor, colour):
        """(seconds heard, place of the band) until the music has ended."""
        sound = Sound(editor.work / "played.wav")
        area, seen, end = self.area(editor), [], time.monotonic() + PATIENCE
        length, looks = (len(PLAYED) + 0.4) * MEASURE, iter((2, 11.5, 20, 1000))
        look = next(looks)
        while time.monotonic() < end and sound.seconds() < length:
            heard = sound.seconds()
            seen.append((heard, self.band(editor.desktop.picture(*area), colour)))
            if heard > look * MEASURE:
                editor.look(f"hearing-{look}")
                look = next(looks)
        return seen

    def errors(self, seen, first):
        """How late each measure's band was, in milliseconds: the middle between the last moment
        that it was not there yet and the first that it was."""
        changes, before, there = [], 0, None
        for heard, place in seen:
            if place and place[0] != there:
                changes.append((before + heard) / 2)
                there = place[0]
            before = heard
        return [1000 * (at - first - i * MEASURE) for i, at in enumerate(changes)]

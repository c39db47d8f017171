"""Each example is typed from its scenario, with real keys, and must come out as it is."""

import unittest

from editor import INSTRUMENTS, ROOT, Editor

HEADER_LINES = 9  # title and credits, which no scenario types
SCENARIOS = sorted((ROOT / "tests/scenarios/examples").glob("*.scn"))


class Typist:
    """Reads a scenario and does what it says, on keyboard and mouse."""

    def __init__(self, editor):
        self.editor = editor
        self.answers = []  # for the prompts and dialogs to come

    def play(self, lines):
        for line in lines:
            word, _, rest = line.partition(" ")
            if word and word != "#":
                getattr(self, "do_" + word)(rest)

    def do_strings(self, count):
        self.editor.menu(INSTRUMENTS[int(count)])
        self.editor.settle()

    def do_click(self, place):
        self.editor.click(*map(float, place.split()))

    def do_toolbar(self, button):
        self.editor.toolbar(int(button))

    def do_key(self, key):
        self.editor.press(key)

    def do_type(self, text):
        self.editor.type(text)

    def do_prompt(self, text):
        self.answers.append(text)

    do_dialog = do_prompt

    def do_menu(self, name):
        self.editor.menu(name)
        title = {"mnuRemarks": "Quillon", "mnuSaveAs": "Save As"}[name]
        self.editor.answer(title, self.answers.pop(0))


def tune_lines(path):
    return path.read_bytes().split(b"\r\n")


class Typing(unittest.TestCase):
    def type_example(self, scenario):
        lines = scenario.read_text().splitlines()
        name = next(line.split(maxsplit=1)[1] for line in lines if line.startswith("dialog "))
        with Editor() as editor:
            editor.start()
            Typist(editor).play(lines)
            editor.menu("mnuExit")
            self.assertEqual(editor.ended(), 0)
            typed = tune_lines(editor.work / name)
        expected = tune_lines(ROOT / "examples" / name)
        self.assertEqual(typed[HEADER_LINES:], expected[HEADER_LINES:])


def add_test(scenario):
    setattr(Typing, "test_" + scenario.stem, lambda self: self.type_example(scenario))


for path in SCENARIOS:
    add_test(path)

"""Loading a tune as the export command does: the steps of opening a file, with
measure 1 shown once, and no page layout."""

import os
import sys

from editor_model import Editor
from number_rules import RunTimeFault
from store_model import DiskFiles

STRINGS_BY_EXTENSION = {".gui": 6, ".bjo": 5, ".bss": 4}


class LoadFailed(Exception):
    """The tune could not be loaded; the message is the box's text."""


class ExportEditor(Editor):
    """The editor without pages and without a window that takes the focus."""

    def __init__(self, path, files=None):
        super().__init__(files or DiskFiles())
        self.focus = "StaffBox"
        self.NumStrings = STRINGS_BY_EXTENSION.get(os.path.splitext(path)[1], 6)
        self.FileName = path
        self.Saved = 1

    def cmdRefresh(self):
        pass


def load_tune(path, files=None):
    editor = ExportEditor(path, files)
    try:
        editor.load_tune()
    except RunTimeFault:
        if editor.boxes:
            raise LoadFailed(editor.boxes[-1][2]) from None
        raise
    if editor.boxes:
        raise LoadFailed(editor.boxes[-1][2])
    return editor


def run(make_output):
    """The main program of a model command: `make_output(editor)` gives the bytes."""
    path = sys.argv[1]
    try:
        output = make_output(load_tune(path))
    except LoadFailed as failure:
        sys.exit(f"quillon-export: {path}: {failure}")
    except RunTimeFault as fault:
        sys.exit(f"quillon-export: {path}: {fault}")
    sys.stdout.buffer.write(output)

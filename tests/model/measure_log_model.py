#!/usr/bin/env python3
"""The measure view's log of a whole tune.

    measure_log_model.py TUNE"""

import tune_loading
from editor_model import output_bytes


def measure_log(editor):
    """Every measure as stepping forward in review would show it."""
    lines = []
    for measure in range(1, editor.LastMeas + 1):
        editor.InputMode = 1
        editor.CurMeas = measure
        editor.find_measure()
        editor.redraw()
        lines.append(
            f"measure {measure} head={editor.MeasHead} end={editor.MeasEnd} beats={editor.CurBeats}"
            f" unit={editor.CurBeatUnit} capacity={editor.MeasCapacity} fill={editor.MeasFill}"
            f" endbar={editor.EndBarX}")
        for i in range(editor.MeasHead + 1, editor.MeasEnd + 1):
            note = editor.table[i]
            lines.append(
                f"note {i} code={note.NoteCode} spacing={note.Spacing} xpos={note.XPos} beam={note.BeamCode}")
        lines += editor.surface.lines
    return output_bytes(lines)


if __name__ == "__main__":
    tune_loading.run(measure_log)

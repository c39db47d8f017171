#!/usr/bin/env python3
"""The tune written back after loading.

    tune_model.py TUNE"""

import tune_loading
from store_model import tune_bytes


def tune_output(editor):
    return tune_bytes(editor.table, editor.LastNote)


if __name__ == "__main__":
    tune_loading.run(tune_output)

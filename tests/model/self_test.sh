#!/bin/sh
# The models' own tests.
set -eu
cd "$(dirname -- "$0")"
export PYTHONDONTWRITEBYTECODE=1
for tests in test_model.py midi_test_model.py pages_test_model.py; do
    /usr/bin/python3 -m unittest -q "${tests%.py}"
done

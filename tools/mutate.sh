#!/bin/sh
# Damages the core on purpose, one place at a time, and tells which damage the daily tests notice:
#   tools/mutate.sh [COUNT [SEED]]
# 100 mutations and seed 1 unless told otherwise. They are made in a copy of the tree.
exec /usr/bin/python3 "$(dirname -- "$0")/mutate.py" "$@"

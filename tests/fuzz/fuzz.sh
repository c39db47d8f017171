#!/bin/bash
# Runs the fuzzers side by side:
#
#   tests/fuzz/fuzz.sh FOLDER [SECONDS [NAME...]]
#
# Each gets SECONDS, 60 unless told otherwise; without a NAME all run. What a fuzzer learns is kept
# in FOLDER/NAME, where its next run begins. An input that shows a fault is kept in FOLDER/faults,
# and the exit status is 1.
set -eu
root=$(cd -- "$(dirname -- "$0")/../.." && pwd)
[ $# -gt 0 ] || { sed -n '2,8s/^# \?//p' "$0" && exit 2; }
mkdir -p "$1/faults"
folder=$(cd -- "$1" && pwd)
seconds=${2:-60}
export folder seconds
cd "$root"

# A small tune on each instrument and in each form. The first byte of an input is three times the
# form's place in the list of forms, and the number of strings less four.
exchange_seeds() {  # folder
    local strings place form
    printf '%s\n' X:1 T:Seed M:4/4 L:1/8 Q:1/4=120 K:D \
        '"D"D2 (3FAd c>d f2|:[Ac]4 {g}f2-f2|[1 !1!A8:|[2 A8|]' > "$1/seed"
    for strings in 4 5 6; do
        for place in 0-abc 1-musicxml 2-mxl 3-mid 5-txt; do
            form=${place#*-}
            { printf "\\x$(printf %x $((3 * ${place%-*} + strings - 4)))" &&
                build/fuzz/bin/quillon-export "$1/seed" --from abc --strings $strings \
                    --format "$form" -o - 2> /dev/null; } > "$1/seed$strings.$form"
        done
    done
    rm "$1/seed"
}
export -f exchange_seeds

run() {  # name
    local dictionary=
    mkdir -p "$folder/$1"
    case $1 in
    tune_fuzzer)
        cp -n examples/*.gui examples/*.bjo examples/*.bss "$folder/$1"
        ;;
    exchange_fuzzer)
        exchange_seeds "$folder/$1"
        for file in tests/exchange/tunes/*.abc; do
            { printf '\2' && cat "$file"; } > "$folder/$1/$(basename "$file")"
        done
        ;;
    scenario_fuzzer)
        cp -n tests/scenarios/*.scn "$folder/$1"
        dictionary=-dict=tests/fuzz/scenario.dict
        ;;
    esac
    "build/fuzz/bin/$1" -max_total_time="$seconds" -max_len=65536 -timeout=10 $dictionary \
        -artifact_prefix="$folder/faults/$1-" "$folder/$1"
}
export -f run

names=("${@:3}")
[ ${#names[@]} -gt 0 ] || mapfile -t names < <(basename -s .cpp tests/fuzz/*_fuzzer.cpp)
[ -f build/fuzz/build.ninja ] || cmake --preset fuzz
ninja -C build/fuzz "${names[@]}" quillon-export
tests/fuzz/full_tables.py "$folder"
if ! printf '%s\n' "${names[@]}" | xargs -P "${#names[@]}" -I {} bash -c 'run {}'; then
    echo "To see a fault again: build/fuzz/bin/NAME FILE. The files:"
    ls -d "$folder"/faults/*
    exit 1
fi

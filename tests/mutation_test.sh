#!/bin/bash
# Damaged tunes through every text form of the export command: it ends by itself with status 0 or 1,
# says why in one line, and leaves no file when it fails.
#
#   tests/mutation_test.sh QUILLON_EXPORT COUNT [FIRST_SEED]
set -u
here=$(cd -- "$(dirname -- "$0")" && pwd)
program=$1
count=$2
first=${3:-1}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PYTHONDONTWRITEBYTECODE=1
export ASAN_OPTIONS=exitcode=99 UBSAN_OPTIONS=exitcode=99  # else 1, as if told
/usr/bin/python3 "$here/model/mutate.py" "$scratch" "$count" "$first" || exit 1
passed=0
failed=0
output=$scratch/output
errors=$scratch/errors

count_result() {  # what went wrong, "" if nothing did
    if [ -z "$1" ]; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "$form of seed $seed: $1 (mutate.py FOLDER 1 $seed makes the file)"
        tail -n 5 "$errors"
    fi
}

one_reason() {
    [ "$(wc -l < "$errors")" = 1 ] && grep -q '^quillon-export: .' "$errors"
}

export_tune() {  # tune format
    rm -f "$output"
    timeout 5 "$program" "$1" --format "$2" -o "$output" 2> "$errors"
    local status=$?
    if [ $status = 0 ]; then
        count_result "$([ -f "$output" ] || echo "no file is made")"
    elif [ $status != 1 ]; then
        count_result "status $status"
    elif [ -e "$output" ]; then
        count_result "a file is left"
    else
        count_result "$(one_reason || echo "not one line of reason")"
    fi
}

tell() {  # tune option
    timeout 5 "$program" "$2" "$1" > "$output" 2> "$errors"
    local status=$?
    if [ $status -gt 1 ]; then
        count_result "status $status"
    elif [ $status = 1 ]; then
        count_result "$([ -s "$output" ] || [ -s "$errors" ] || echo "no reason")"
    else
        count_result ""
    fi
}

for seed in $(seq "$first" $((first + count - 1))); do
    tune=$(echo "$scratch/$seed".*)
    for form in tune measure-log page-log print-log mid; do
        export_tune "$tune" "$form"
    done
    for form in --check --order; do
        tell "$tune" "$form"
    done
done
echo "$passed passed, $failed failed"
[ $failed = 0 ]

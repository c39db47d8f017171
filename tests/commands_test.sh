#!/bin/bash
# Tests of ./run and .ci/run, as somebody calls them on a machine without a display.
#
#   tests/commands_test.sh
#
# Uses build/release, where ./run builds; the files that ./run makes are in build/headless.
set -u
root=$(cd -- "$(dirname -- "$0")/.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export HOME=$scratch XDG_CONFIG_HOME=$scratch/config XDG_DATA_HOME=$scratch/data
unset DISPLAY WAYLAND_DISPLAY
cd "$scratch"

passed=0
failed=0
check() {  # what, command
    if "${@:2}"; then
        passed=$((passed + 1))
    else
        echo "FAILED: $1"
        failed=$((failed + 1))
    fi
}

# Each line of the answer that begins with two blanks names a file.
makes_what_it_says() {  # number of files
    local files
    mapfile -t files < <(sed -n 's/^  \([^ ].*[^ ]\)   .*/\1/p; s/ *$//' answer)
    [ ${#files[@]} = "$1" ] || { cat answer && return 1; }
    local file
    for file in "${files[@]}"; do
        [ -s "$file" ] || { echo "$file is missing or empty" && return 1; }
        [ "$file" -nt before ] || { echo "$file is old" && return 1; }
    done
}

runs() { touch before && "$root/run" "$@" > answer 2> errors || { cat answer errors && return 1; }; }

refuses() { ! "$root/run" "$@" > answer 2> errors && grep -q "$1" errors; }

# The second of two calls, but for the programs that it runs: nothing is left to install or build.
starts_at_once() {
    local try start spent least=99999
    for try in 1 2 3; do
        start=$(date +%s%N)
        "$root/run" > answer 2>&1 || return 1
        spent=$((($(date +%s%N) - start) / 1000000))
        [ $spent -ge $least ] || least=$spent
    done
    echo "./run without anything to build: $least ms"
    [ $least -lt 1000 ]
}

same_tune() { cmp -s "$1" "$root/build/headless/$(basename "$1")"; }

check "./run without a display" runs
check "it makes what it says" makes_what_it_says 4
check "its PDF file is one" grep -aq '^%PDF' "$root"/build/headless/*.pdf
cp "$root/examples/drowsy_maggie.bss" "a tune.bss"
check "./run with a tune of the current folder" runs "a tune.bss"
check "it makes what it says of that" makes_what_it_says 4
check "the tune is written back" same_tune "a tune.bss"
check "./run with a tune that is not there" refuses none.gui
check "the second ./run begins within a second" starts_at_once
check ".ci/run can be run" test -x "$root/.ci/run"
check ".ci/run is the tests" grep -q '/test"' "$root/.ci/run"
rm -f "$root"/build/headless/"a tune".*
echo "$passed passed, $failed failed"
[ $failed = 0 ]

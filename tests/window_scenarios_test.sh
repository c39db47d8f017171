#!/bin/bash
# The real window plays what play-scenario plays: the stories of tests/scenarios, and random scripts,
# which play-scenario and the model play alike. Half of the scripts at a time.
#
#   tests/window_scenarios_test.sh PROGRAMS COUNT [SEED]     PROGRAMS is a folder, such as build/dev/bin
set -u
here=$(cd -- "$(dirname -- "$0")" && pwd)
player=$(realpath -- "$1")/window_scenario
count=$2
seed=${3:-1}
export PYTHONDONTWRITEBYTECODE=1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

random_scripts() {  # first seed, number of scripts
    cd "$scratch" && /usr/bin/python3 "$here/model/compare_scenarios.py" --program "$player" \
        --from "$1" --count "$2"
}

random_scripts "$seed" $((count / 2)) > "$scratch/first" &
random_scripts $((seed + count / 2)) $((count - count / 2)) > "$scratch/second"
second=$?
wait $!
first=$?
cat "$scratch/first" "$scratch/second"
cd "$here/scenarios" || exit
"$here/scenarios_test.sh" "$player" && [ $first = 0 ] && [ $second = 0 ]

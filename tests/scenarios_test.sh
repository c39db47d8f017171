#!/bin/bash
# The stories of tests/scenarios: each is played in a folder of its own, and what it prints, its exit
# status and the names of the files that it leaves are compared with the .out beside it.
#
#   tests/scenarios_test.sh PLAY_SCENARIO [NAME...]          compares, all or those named
#   tests/scenarios_test.sh PLAY_SCENARIO accept [NAME...]   rewrites the .out; read it before you keep it
#
# The model plays them as well: tests/scenarios_test.sh tests/model/editor_model.py
set -u
player=$(realpath -- "$1")
shift
cd "$(dirname -- "$0")/scenarios" || exit
accept=no
if [ "${1:-}" = accept ]; then
    accept=yes
    shift
fi
[ $# -gt 0 ] || set -- *.scn
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
passed=0
failed=0

play() {  # name; the script begins with the files of NAME.files next to it
    local folder=$scratch/$1 status
    mkdir "$folder"
    cp "$1.scn" "$folder"
    [ ! -d "$1.files" ] || cp "$1.files"/* "$folder"
    cd "$folder" || return
    "$player" "$1.scn"
    status=$?
    rm "$1.scn"
    echo "status $status, files:$(printf ' %s' *)"
}

shopt -s nullglob
export LC_ALL=C PYTHONDONTWRITEBYTECODE=1
for name; do
    name=${name%.scn}
    if [ $accept = yes ]; then
        (play "$name") > "$name.out"
    elif difference=$( (play "$name") | diff -u "$name.out" -); then
        passed=$((passed + 1))
    else
        printf '%s\n' "$difference" | head -n 60
        failed=$((failed + 1))
    fi
done
echo "$passed passed, $failed failed"
[ $failed = 0 ]

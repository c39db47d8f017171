#!/bin/bash
# The drawing logs of the examples and of the tunes in tests/golden, compared with those kept there.
# NAME.options holds further options for quillon-export.
#
#   tests/golden_test.sh QUILLON_EXPORT          compares
#   tests/golden_test.sh QUILLON_EXPORT accept   rewrites them; say why in the commit
set -u
cd "$(dirname -- "$0")/.."
export_program=$1
passed=0
failed=0
for tune in {examples,tests/golden}/*.{gui,bjo,bss}; do
    name=$(basename "${tune%.*}")
    options=()
    [ ! -f "tests/golden/$name.options" ] || read -ra options <"tests/golden/$name.options"
    for format in measure-log page-log print-log; do
        golden=tests/golden/$name.$format
        draw=("$export_program" "$tune" --format $format "${options[@]}")
        if [ "${2:-}" = accept ]; then
            "${draw[@]}" -o "$golden"
        elif "${draw[@]}" -o - | diff -u "$golden" - | head -n 20 |
            tee /dev/stderr | grep -q .; then
            failed=$((failed + 1))
        else
            passed=$((passed + 1))
        fi
    done
done
[ $failed = 0 ] || echo "If the change is meant: tests/golden_test.sh $export_program accept"
echo "$passed passed, $failed failed"
[ $failed = 0 ]

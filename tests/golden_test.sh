#!/bin/bash
# The drawing logs of the examples, compared with those under tests/golden.
#
#   tests/golden_test.sh QUILLON_EXPORT          compares
#   tests/golden_test.sh QUILLON_EXPORT accept   writes them anew; say why in the commit
set -u
cd "$(dirname -- "$0")/.."
export_program=$1
passed=0
failed=0
for tune in examples/*.gui examples/*.bjo examples/*.bss; do
    for format in measure-log page-log print-log; do
        golden=tests/golden/$(basename "${tune%.*}").$format
        if [ "${2:-}" = accept ]; then
            "$export_program" "$tune" --format $format -o "$golden"
        elif "$export_program" "$tune" --format $format -o - | diff -u "$golden" - | head -n 20 |
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

#!/bin/bash
# The examples as PDF, SVG and PNG, read back by programs that are not ours.
#
#   tests/pages_test.sh QUILLON_EXPORT
set -u
cd "$(dirname -- "$0")/.."
export_program=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
passed=0
failed=0
check() {  # what, command...
    local what=$1
    shift
    if "$@"; then
        passed=$((passed + 1))
    else
        echo "failed: $what"
        failed=$((failed + 1))
    fi
}
make() { "$export_program" "$tune" -o "$1"; }

fonts_are_embedded() { pdffonts "$1" | tail -n +3 | awk '$(NF-4) != "yes" { bad = 1 } END { exit bad }'; }
frets_stand_in_text() { [ "$(pdftotext -layout "$1" - | grep -o '[0-9]' | wc -l)" -ge 50 ]; }

for tune in examples/*.gui examples/*.bjo examples/*.bss; do
    stem=$scratch/$(basename "${tune%.*}")
    title=$(sed -n '3s/.*,"\([^"]*\)"\r$/\1/p' "$tune")
    SOURCE_DATE_EPOCH=86400 make "$stem.pdf"
    sleep 1.05  # another second, so that a date would differ
    SOURCE_DATE_EPOCH=86400 make "$stem-again.pdf"
    check "$tune: the same bytes with a fixed date" cmp -s "$stem.pdf" "$stem-again.pdf"
    check "$tune: qpdf" sh -c "qpdf --check '$stem.pdf' >/dev/null"
    check "$tune: fonts embedded" fonts_are_embedded "$stem.pdf"
    check "$tune: title '$title' in the text" sh -c "pdftotext '$stem.pdf' - | grep -qF \"$title\""
    check "$tune: frets in the text" frets_stand_in_text "$stem.pdf"
    make "$stem.svg"
    check "$tune: SVG is lean" test "$(stat -c %s "$stem.svg")" -lt 100000
    check "$tune: SVG renders" sh -c "rsvg-convert '$stem.svg' -o '$stem-svg.png' 2>/dev/null"
    check "$tune: SVG is not blank" test "$(convert "$stem-svg.png" -threshold 50% -format '%[fx:mean<0.999]' info:)" = 1
    make "$stem.png"
    check "$tune: PNG has the screen's size" test "$(identify -format %wx%h "$stem.png")" = 816x1056
done
echo "$passed passed, $failed failed"
[ $failed = 0 ]

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

record() {  # measure code x string-1 break
    printf '%s,%s,%s\r\n0,4,4,4\r\n0,""," "," ",""\r\n"%s"\r\n""\r\n""\r\n""\r\n""\r\n"%s"\r\n' "$@"
}
three_pages() {  # seven lines fit on a page, a measure each
    local m
    record 0 0 0 '' ''
    for m in $(seq 16); do
        record "$m" 999 0 '' NL
        record "$m" 11 48 '' 7
    done
}
same_pages() {  # a file of each page, as they also come to standard output
    cat "$@" | cmp -s - "$scratch/all"
}
refuses() {  # name that is taken, tunes...
    rm -rf refused
    "$export_program" "${@:2}" --format svg -o refused 2> errors
    [ $? = 1 ] && [ "$(wc -l < errors)" = 1 ] && grep -q ": refused/$1 was already made from" errors
}
keeps_the_tune() {  # arguments that would write a page or another tune over three.gui
    ! "$export_program" "$@" 2> errors && grep -q " is one of the tunes to export" errors &&
        cmp -s three.gui "$tune.whole"
}
with_a_title_of() {  # length
    printf '0,0,0\r\n0,4,4,4\r\n0,""," "," ","'
    head -c "$1" /dev/zero | tr '\0' '\351'
    printf '"\r\n' && tail -n +4 three.gui
}
takes_less_than_a_second() {  # arguments; the processor's time
    local TIMEFORMAT=%U seconds
    seconds=$({ time "$export_program" "$@" 2> errors; } 2>&1) && [[ $seconds = 0.* ]]
}
fails_at_once() {  # words, tune
    timeout 5 "$export_program" "$2" --format mid -o never 2> errors
    [ $? = 1 ] && grep -qF "quillon-export: $2: $1" errors && [ ! -e never ] &&
        [ "$(timeout 5 "$export_program" --check "$2" 2> errors | wc -c)" = 0 ] && grep -qF "$1" errors
}
pixels() { identify -format '%w %h' "$1"; }
is_smaller() {  # picture, picture
    local a=($(pixels "$1")) b=($(pixels "$2"))
    [ "${a[0]}" -lt "${b[0]}" ] && [ "${a[1]}" -lt "${b[1]}" ]
}
touches_its_edges() {  # picture: there is ink in the outermost rows and columns, but for a pixel
    local all ink
    all=($(pixels "$1"))
    ink=($(convert "$1" -bordercolor white -border 1 -trim -format '%w %h' info:))
    [ $((all[0] - ink[0])) -le 1 ] && [ $((all[1] - ink[1])) -le 1 ]
}
pdf_says() { pdfinfo "$2" | grep -qE "^$1$"; }
draws_a_page_more() { [ "$(grep -c '<svg ' "$1")" = 1 ] && ! cmp -s "$1" "$2"; }

tune=$scratch/three.gui
three_pages > "$tune"
cd "$scratch" || exit
tee other.gui three.bjo three-2.gui < three.gui > /dev/null
for form in svg png; do
    make "pages.$form"
    check "$form: a file a page" test "$(echo pages*.$form)" = "pages-2.$form pages-3.$form pages.$form"
    check "$form: to standard output" sh -c "'$export_program' three.gui --format $form -o - > all"
    check "$form: page after page" same_pages pages.$form pages-2.$form pages-3.$form
    mkdir "into-$form"
    "$export_program" three.gui --format $form -o "into-$form"
    for page in .$form -2.$form -3.$form; do
        check "$form: into a folder, under the tune's name" cmp -s "pages$page" "into-$form/three$page"
    done
    "$export_program" three.gui other.gui --format $form -o "new/$form"
    check "$form: into a folder that is made" test "$(ls "new/$form" | wc -l)" = 6
done
check "the same tune twice" refuses three.svg three.gui three.gui
check "two tunes of one name" refuses three.svg three.gui three.bjo
check "a tune that is named like a page" refuses three-2.svg three.gui three-2.gui
check "a page that is named like a tune" refuses three-2.svg three-2.gui three.gui
check "nothing of a tune that is refused" test ! -e refused/three.svg
"$export_program" three.gui -o three.gui  # a tune over itself, as Quillon writes it
cp three.gui "$tune.whole"
{ printf '0,0,0\r\n0,4,4,4\r\n0,""," "," ","\001\013 Air"\r\n' && tail -n +4 three.gui; } > control.gui
"$export_program" control.gui -o control.svg
check "SVG: control characters leave it well-formed" rsvg-convert -o control.png control.svg
mkdir -p elsewhere && cp other.gui elsewhere/three.gui
check "no page over its own tune" keeps_the_tune three.gui --format svg -o three.gui
check "no tune over one that comes later" keeps_the_tune elsewhere/three.gui three.gui --format tune -o .
echo -n > empty.gui
check "an empty tune is a finding" test "$("$export_program" --check empty.gui)" = "empty.gui: the file is empty"
with_a_title_of 1000000 > long.gui
with_a_title_of 67108864 > large.gui
for form in pdf svg png mid tune page-log print-log measure-log; do
    check "$form: a title of a megabyte" takes_less_than_a_second long.gui --format $form -o long
done
mkfifo pipe.gui
check "a pipe is no tune" fails_at_once "File Not Found" pipe.gui
check "a device is no tune" fails_at_once "File Not Found" /dev/zero
check "more than 64 MB are no tune" fails_at_once "File is incompatible" large.gui
check "page 2 is another page" draws_a_page_more pages-2.svg pages.svg
check "page 3 is another page" draws_a_page_more pages-3.svg pages-2.svg
make a.b.svg
check "the number comes before the last dot" test -s a.b-2.svg
make one.png
check "PNG: 300 pixels an inch" test "$(pixels one.png) $(identify -format '%[fx:round(100*resolution.x)] %U' one.png)" = "2550 3300 11811 PixelsPerCentimeter"
for form in png svg pdf; do
    "$export_program" three.gui --measures 2-4 -o part.$form
    "$export_program" three.gui --crop -o crop.$form
done
check "some measures are one picture" test "$(echo part*.png)" = part.png
for part in part crop; do
    check "PNG: $part without what is white around it" touches_its_edges $part.png
    pdftoppm -r 300 -singlefile -png $part.pdf $part-pdf
    check "PDF: $part is a part of a page" is_smaller $part-pdf.png one.png
    rsvg-convert -d 300 -p 300 $part.svg -o $part-svg.png
    check "SVG: $part is a part of a page" is_smaller $part-svg.png one.png
done
check "measures that are not there" sh -c "! '$export_program' three.gui --measures 40-41 -o x.pdf 2> errors && grep -q 'There is no measure 40' errors"
"$export_program" three.gui --paper a4 -o a4.pdf
check "PDF: A4" pdf_says "Page size: +595 x 842 pts \(A4\)" a4.pdf
LC_ALL=C "$export_program" three.gui -o letter.pdf
check "PDF: Letter where the locale says nothing" pdf_says "Page size: +612 x 792 pts \(letter\)" letter.pdf
{ head -n 3 three.gui && printf '"J\351r\364me, 1790"\r\n"for lute"\r\n' && tail -n +6 three.gui; } > credits.gui
"$export_program" credits.gui -o credits.pdf
check "PDF: the first credit is its author" pdf_says "Author: +Jérôme, 1790" credits.pdf
check "PDF: the second credit is its subject" pdf_says "Subject: +for lute" credits.pdf
check "PDF: sound with facts added" sh -c "qpdf --check credits.pdf > /dev/null"
five_lines() {  # which fill a page to its end
    local m
    record 0 0 0 '' ''
    for m in $(seq 5); do
        record "$m" 999 0 '' NL
        record "$m" 11 48 '' 7
    done
}
five_lines > full.gui
"$export_program" full.gui -o full.pdf
"$export_program" full.gui --no-empty-page -o less.pdf
check "PDF: an empty page at the end can be left out" test "$(($(pdfinfo full.pdf | sed -n 's/^Pages: *//p') - $(pdfinfo less.pdf | sed -n 's/^Pages: *//p')))" = 1
make pages.pdf
check "PDF: the pages in one file" test "$(pdfinfo pages.pdf | sed -n 's/^Pages: *//p') $(echo pages*.pdf)" = "4 pages.pdf"
cd - > /dev/null || exit

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
    check "$tune: SVG is lean" test "$(stat -c %s "$stem.svg")" -lt 130000
    check "$tune: SVG renders" sh -c "rsvg-convert '$stem.svg' -o '$stem-svg.png' 2>/dev/null"
    check "$tune: SVG is not blank" test "$(convert "$stem-svg.png" -threshold 50% -format '%[fx:mean<0.999]' info:)" = 1
    check "$tune: SVG has its texts as titles" sh -c "grep -qF \"<title>$title</title>\" '$stem.svg' && ! grep -q '<text' '$stem.svg'"
    check "$tune: SVG refers to its signs as all viewers know it" sh -c "grep -q '<use xlink:href' '$stem.svg'"
    "$export_program" "$tune" --text -o "$stem-text.svg"
    check "$tune: SVG keeps texts on request" grep -qE "<text[^>]*>$title</text>" "$stem-text.svg"
    check "$tune: PDF fonts are subsets" sh -c "pdffonts '$stem.pdf' | tail -n +3 | grep -qE '^[A-Z]{6}\+' && ! pdffonts '$stem.pdf' | grep -q ' yes no '"
    check "$tune: no signs among the text" sh -c "! pdffonts '$stem.pdf' | grep -q 'Tab'"
    "$export_program" "$tune" --dpi 96 -o "$stem.png"
    check "$tune: PNG has the screen's size" test "$(identify -format %wx%h "$stem.png")" = 816x1056
done
echo "$passed passed, $failed failed"
[ $failed = 0 ]

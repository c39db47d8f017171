#!/bin/sh
# Draws the PNG icons anew from the SVG ones; needs rsvg-convert (librsvg2-bin).
set -eu
cd "$(dirname -- "$0")/hicolor"

for svg in scalable/*/*.svg; do
    folder=${svg#scalable/}
    folder=${folder%/*}
    name=${svg##*/}
    for size in 48 128 256; do
        mkdir -p "${size}x$size/$folder"
        rsvg-convert -w $size -h $size "$svg" -o "${size}x$size/$folder/${name%.svg}.png"
    done
done

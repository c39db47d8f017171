#!/bin/bash
# Makes the pictures in docs/images from the real program, on a virtual display.
#
#   tools/screenshots.sh [BIN]    BIN is the folder of the programs, build/release/bin by default
set -eu
cd "$(dirname -- "$0")/.."
bin=$(realpath "${1:-build/release/bin}")
images=$(realpath docs)/images
mkdir -p "$images"
scratch=$(mktemp -d)
export HOME=$scratch XDG_CONFIG_HOME=$scratch XDG_DATA_HOME=$scratch XDG_RUNTIME_DIR=$scratch
export QUILLON_AUDIO_DRIVER=file QUILLON_AUDIO_FILE=$scratch/sound.wav
pids=""
trap 'kill $pids 2>/dev/null; rm -rf "$scratch"' EXIT

Xvfb -displayfd 3 -screen 0 1280x960x24 -nolisten tcp -noreset 3> "$scratch/display" 2>/dev/null &
pids="$pids $!"
until [ -s "$scratch/display" ]; do sleep .05; done
DISPLAY=:$(cat "$scratch/display")
export DISPLAY
openbox --sm-disable >/dev/null 2>&1 &
pids="$pids $!"
until xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 0x; do sleep .05; done

cp examples/greensleeves.gui "$scratch"
(cd "$scratch" && exec "$bin/quillon" greensleeves.gui) &
pids="$pids $!"
timeout 10 xdotool search --sync --onlyvisible --name 'Tablature Editor' >/dev/null
sleep 1

shot() {  # picture, part of the window's title
    local window
    window=$(timeout 10 xdotool search --sync --onlyvisible --name "$2" | tail -n 1)
    sleep .5
    import -window "$window" "$images/$1.png"
}

keys() { timeout 5 xdotool key --delay 60 "$@"; }

editor=$(xdotool search --onlyvisible --name 'Tablature Editor' | tail -n 1)
next_button="1110 575"  # in a window of this screen's size
for measure in 2 3 4; do
    xdotool mousemove --window "$editor" $next_button click 1
    sleep .2
done
xdotool mousemove 640 20
shot main_window 'Tablature Editor'
keys alt+m o
shot midi 'MIDI Playback Unit'
keys alt+F4
sleep .5
keys alt+m t
shot tunings 'Tuning for 6'
keys alt+F4
sleep .5
keys alt+f
keys Up Up Up Return
shot page_setup 'Page Setup'
"$bin/quillon-export" examples/scarborough_fair.gui -o "$scratch/page.pdf"
pdftoppm -r 70 -png -singlefile "$scratch/page.pdf" "$images/printed_page"
for picture in "$images"/*.png; do
    convert "$picture" -strip +dither -colors 128 "$picture"
done
ls -la "$images"

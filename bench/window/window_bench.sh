#!/bin/bash
# Makes a release build and measures the window on a virtual display:
#
#   bench/window/window_bench.sh [BUILD_FOLDER]
set -eu
here=$(cd -- "$(dirname -- "$0")" && pwd)
root=$(cd -- "$here/../.." && pwd)
build=${1:-$root/build/window-bench}
on_display=$root/tests/window/with_display.sh

[ -f "$build/build.ninja" ] || cmake -S "$here" -B "$build" -G Ninja > /dev/null
ninja -C "$build" --quiet
for tune in yankee_doodle.bjo auld_lang_syne.gui; do
    echo "== $tune: from the key to the painted staff"
    "$on_display" "$build/bin/latency" "$root/examples/$tune" 3000
    "$on_display" env QT_QPA_PLATFORM=offscreen "$build/bin/latency" "$root/examples/$tune" 3000
done 2> /dev/null
echo "== auld_lang_syne.gui: start-up"
"$on_display" /usr/bin/python3 "$here/startup.py" "$build" "$root/examples/auld_lang_syne.gui"

#!/bin/bash
# Times making pages and sound of a tune with this program and with others, on the same music, then
# the window and the core: every table of docs/performance.md.
#
#   bench/compare/compare.sh [BUILD_FOLDER]
#
# Installs the other programs (Debian), makes a release build, writes to a temporary folder.
set -eu
here=$(cd -- "$(dirname -- "$0")" && pwd)
root=$(cd -- "$here/../.." && pwd)
build=${1:-$root/build/dev}
packages="lilypond musescore3 abcm2ps abcmidi ghostscript midicsv poppler-utils time"

"$root/tools/install_packages.sh" build test
missing=""
for package in $packages; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null | grep -qx installed \
        || missing="$missing $package"
done
if [ -n "$missing" ]; then
    echo "Installing$missing"
    as_root=""
    [ "$(id -u)" = 0 ] || as_root=sudo
    $as_root apt-get update -qq
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends $missing > /dev/null
fi

[ -f "$build/build.ninja" ] \
    || (cd "$root" && cmake --preset dev -B "$build" > /dev/null)
ninja -C "$build" --quiet quillon-export quillon_bench

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
trap 'exit 1' INT TERM
mkdir -p "$scratch/home" "$scratch/19" "$scratch/152"
mkdir -m 700 "$scratch/runtime"
tune=$root/examples/greensleeves.gui  # 19 measures
/usr/bin/python3 "$here/write_music.py" "$tune" 1 "$scratch/19"
/usr/bin/python3 "$here/write_music.py" "$tune" 8 "$scratch/152"
env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=offscreen HOME="$scratch/home" \
    XDG_RUNTIME_DIR="$scratch/runtime" \
    /usr/bin/python3 "$here/compare.py" "$build" "$scratch/19" "$scratch/152"

"$root/bench/window/window_bench.sh" "$build/window"
echo "== the core"
TMPDIR=$scratch "$build/bin/quillon_bench" --benchmark_min_time=0.5 2> /dev/null

#!/bin/bash
# Runs a command on a display of its own, with a window manager, in a home of its own:
#
#   with_display.sh COMMAND...
#
# Everything is written into one scratch folder, and removed with it.
set -u

scratch=$(mktemp -d)
chmod 755 "$scratch"  # a print service's programs run as another user
trap 'kill $(jobs -p) 2>/dev/null; wait; rm -rf "$scratch"' EXIT
trap 'exit 1' INT TERM
export HOME=$scratch/home TMPDIR=$scratch/tmp
export XDG_CONFIG_HOME=$HOME/config XDG_DATA_HOME=$HOME/data XDG_CACHE_HOME=$HOME/cache
export XDG_RUNTIME_DIR=$scratch/runtime PYTHONDONTWRITEBYTECODE=1
unset WAYLAND_DISPLAY QT_QPA_PLATFORM QT_SCALE_FACTOR DBUS_SESSION_BUS_ADDRESS
mkdir -p "$HOME" "$TMPDIR" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"

await() {  # what, command
    local i
    for ((i = 0; i < 400; ++i)); do
        "${@:2}" > /dev/null 2>&1 && return
        sleep .05
    done
    echo "No $1 in 20 s" >&2
    exit 1
}

# A server that resets when its last client leaves would take the window manager with it, if that
# client is the one below that looks whether it is there yet.
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3> "$scratch/display" \
    2> /dev/null &
await display test -s "$scratch/display"
DISPLAY=:$(cat "$scratch/display")
export DISPLAY

# The window manager takes no keys and no clicks for itself: a click that it holds back to look at
# would be overtaken by the keys after it, which come faster here than from any hand.
cat > "$scratch/openbox.xml" << 'XML'
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <keyboard/>
  <mouse/>
</openbox_config>
XML
openbox --sm-disable --config-file "$scratch/openbox.xml" > /dev/null 2>&1 &
managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x; }
await "window manager" managed

"$@"

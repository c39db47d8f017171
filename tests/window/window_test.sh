#!/bin/bash
# Tests of the editor in a real window, on a display of their own:
#
#   tests/window/window_test.sh [--pictures DIR] [NAME...]      see window_test.py
set -u
here=$(cd -- "$(dirname -- "$0")" && pwd)
/usr/bin/python3 -c 'import Xlib' || {
    echo "The package python3-xlib is missing"
    echo "0 passed, 1 failed"
    exit 1
}
exec "$here/with_display.sh" /usr/bin/python3 "$here/window_test.py" "$@"

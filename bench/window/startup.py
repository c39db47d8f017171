"""Start-up until the window is painted, and memory: the editor with a tune beside an empty window.

    startup.py BUILD_FOLDER TUNE [ROUNDS]

Both programs are started in turn and timed until the display shows what it goes on
showing. Prints medians of ROUNDS (10) and the ratio. Uses the display named in the environment.
"""

import pathlib
import statistics
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/window"))
from desktop import Desktop, wait_for  # noqa: E402

STRIP = (700, 20, 8, 980)  # of the screen: through title bar, page, buttons and staff
CURSOR_PIXELS = 100


def memory(pid):
    """The most that the process has had in memory at once, in kB."""
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmHWM:"):
            return int(line.split()[1])
    return 0


def run(desktop, command, final=None):
    """Seconds until the strip looks as in `final`, and kB. Without `final`: how it looks at last."""
    wait_for("the end of the last window", lambda: not any(desktop.picture(*STRIP).data[0::4]))
    start = time.monotonic()
    process = subprocess.Popen(command, stderr=subprocess.DEVNULL)
    if final:
        wait_for("the window", lambda: desktop.picture(*STRIP).differing(final) < CURSOR_PIXELS)
        result = time.monotonic() - start, memory(process.pid)
    else:
        time.sleep(2)
        result = desktop.picture(*STRIP)
    process.kill()
    process.wait()
    return result


def main():
    build, tune = pathlib.Path(sys.argv[1]), sys.argv[2]
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 10
    programs = {
        "empty window": [build / "bin/empty_window"],
        "quillon": [build / "bin/quillon", tune],
    }
    desktop = Desktop()
    final = {name: run(desktop, command) for name, command in programs.items()}
    results = {name: [] for name in programs}
    for _ in range(rounds):
        for name, command in programs.items():
            results[name].append(run(desktop, command, final[name]))
    medians = {
        name: [statistics.median(column) for column in zip(*rows)]
        for name, rows in results.items()
    }
    print(f"{'':14}{'start ms':>10}{'memory MB':>12}   medians of {rounds}")
    for name, (seconds, kilobytes) in medians.items():
        print(f"{name:14}{seconds * 1000:10.0f}{kilobytes / 1024:12.1f}")
    ours, empty = medians["quillon"], medians["empty window"]
    print(f"{'ratio':14}{ours[0] / empty[0]:10.2f}{ours[1] / empty[1]:12.2f}")


main()

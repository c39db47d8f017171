"""The real window without a display, led by window_player."""

import os
import pathlib
import subprocess


def environment(home, **more):
    """A user's own world below `home`, whose folder "temporary" is made."""
    (home / "temporary").mkdir(exist_ok=True)
    own = {
        "HOME": home,
        "XDG_CONFIG_HOME": home / "config",
        "XDG_DATA_HOME": home / "data",
        "XDG_RUNTIME_DIR": home,
        "TMPDIR": home / "temporary",
        "QT_QPA_PLATFORM": "offscreen",
        "QUILLON_AUDIO_DRIVER": "file",
        "QUILLON_AUDIO_FILE": "/dev/null",
        **more,
    }
    return {**os.environ, **{name: str(value) for name, value in own.items()}}


class Player:
    """The real window, led by a hand that reads lines. `boxes` has what was shown so far."""

    def __init__(self, programs, tune, folder, environment):
        self.boxes, self.notes = [], []
        self.process = subprocess.Popen(
            ["timeout", "30", programs / "window_player", *([tune] if tune else [])],
            cwd=folder, env=environment, text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
        )
        self.open = self._answer()

    def do(self, *lines):
        """True while the window is there."""
        for line in lines:
            self.process.stdin.write(line + "\n")
            self.process.stdin.flush()
            self.open = self._answer()
        return self.open

    def _answer(self):
        for line in self.process.stdout:
            if line.startswith("done "):
                return line == "done 1\n"
            kind, _, text = line.rstrip("\n").partition(" ")
            (self.notes if kind == "note" else self.boxes).append(text)
        return False

    def pid(self):
        """Of the window, which runs below `timeout`."""
        leader = self.process.pid
        return int(pathlib.Path(f"/proc/{leader}/task/{leader}/children").read_text().split()[0])

    def close(self):
        """As end, if it has not ended yet."""
        if not self.process.stdin.closed:
            self.end()

    def end(self):
        """The exit status."""
        self.process.stdin.close()
        status = self.process.wait(20)
        self.process.stdout.close()
        errors = self.process.stderr.read()
        self.process.stderr.close()
        assert "This plugin does not support" in errors or not errors, errors
        return status

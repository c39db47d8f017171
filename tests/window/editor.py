"""The editor in its real window, driven as a person drives it."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile

from desktop import PATIENCE, Desktop, wait_for

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAM = str(ROOT / "build/dev/bin/quillon")
EXPORT = str(ROOT / "build/dev/bin/quillon-export")

# Menu commands that have no shortcut, by the letters of the menu bar. A command without a letter of
# its own is reached by the arrow keys.
MENU_KEYS = {
    "mnuNew": "Alt+f n",
    "mnuOpen": "Alt+f o",
    "mnuAppend": "Alt+f d",
    "mnuSave": "Alt+f s",
    "mnuSaveAs": "Alt+f a",
    "mnuPrint": "Alt+f p",
    "mnuExit": "Alt+f x",
    "mnuDelMeas": "Alt+e d",
    "mnuClipbrd": "Alt+e Down Down Down Enter",
    "mnuRemarks": "Alt+e m",
    "mnuGuitar": "Alt+i g",
    "mnuBanjo": "Alt+i b",
    "mnuMandolin": "Alt+i m",
}
INSTRUMENTS = {6: "mnuGuitar", 5: "mnuBanjo", 4: "mnuMandolin"}

CAPTION = "LYRANO Tablature Editor for Guitar"
WHITE = (255, 255, 255)
LEAST_WIDTH = 480  # pixels: StaffBox at scale 1


class Card:
    """The staff's place on the screen: a white card in the lower half of the window."""

    def __init__(self, desktop, window):
        x, y, width, height = desktop.place(window)
        seen = desktop.picture(x, y, width, height)
        bottom = height - 1
        while not (found := self._white_run(seen, bottom)):
            bottom -= 1
            if bottom < height // 2:
                raise AssertionError("there is no staff in the window")
        left, right = found
        top = bottom
        while seen.pixel(left + 1, top - 1) == WHITE:
            top -= 1
        self.x, self.y = x + left, y + top
        self.width, self.height = right - left, bottom + 1 - top
        self.scale = self.width / 360  # pixels to a point of StaffBox

    @staticmethod
    def _white_run(seen, y):
        """First and last + 1 pixel of a white run as long as StaffBox, None without one."""
        left = 0
        for x in range(seen.width):
            if seen.pixel(x, y) != WHITE:
                if x - left >= LEAST_WIDTH:
                    return left, x
                left = x + 1
        return None

    def place(self, x, y):
        """On the screen, of a place in points of StaffBox."""
        return round(self.x + x * self.scale), round(self.y + y * self.scale)

    def button(self, number):
        """The middle of a button of Toolbar1, which is above the card, beginning at its left edge."""
        return self.x + 15 + (number - 1) * 36, self.y - 34


class Editor:
    """A run of the program with settings, data and current directory of its own."""

    def __init__(self, *arguments, files=(), environment=()):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=os.environ["HOME"]))
        self.desktop = Desktop()
        for name in ("work", "config", "data"):
            (self.folder / name).mkdir()
        self.work = self.folder / "work"
        for file in files:
            shutil.copy(file, self.work)
        own = {
            "HOME": self.folder,
            "XDG_CONFIG_HOME": self.folder / "config",
            "XDG_DATA_HOME": self.folder / "data",
        }
        self.has_tune = bool(arguments)
        self.process = subprocess.Popen(
            [PROGRAM, *map(str, arguments)],
            cwd=self.work,
            env={**os.environ, **{name: str(path) for name, path in own.items()}, **dict(environment)},
            stderr=subprocess.PIPE,
        )

    def close(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        self.process.stderr.close()
        self.desktop.close()
        shutil.rmtree(self.folder)

    def __enter__(self):
        return self

    def __exit__(self, failure, *_):
        if failure:
            self.look("failed")
        self.close()

    # Windows

    def start(self, imports=False):
        """Waits for the main window, and for the tune of the command line or until Splash is gone.

        `imports`: the command line names another program's tune.
        """
        self.window = wait_for("the main window", self._main_window)
        if self.has_tune:
            caption = CAPTION if imports else "Lyrano - "
            wait_for("the tune", lambda: self.caption().startswith(caption))
        else:
            self.dialog("Quillon")
            self.press("Enter")
        self.back()
        self.card = Card(self.desktop, self.window)
        return self

    def _main_window(self):
        for window in self.desktop.windows(self.process.pid):
            if "Tablature Editor for" in self.desktop.title(window):
                return window
        return None

    def titles(self):
        """Of all the program's windows."""
        return [self.desktop.title(window) for window in self.desktop.windows(self.process.pid)]

    def caption(self):
        return self.desktop.title(self.window)

    def dialog(self, title):
        """Waits until a dialog of that title takes the keys."""

        def focused():
            self._alive()
            for window in self.desktop.windows(self.process.pid):
                if self.desktop.title(window) == title and self.desktop.focused(window):
                    return window
            return None

        return wait_for(f'a dialog "{title}"', focused)

    def back(self):
        """Waits until the main window takes the keys again."""

        def focused():
            self._alive()
            return self.desktop.focused(self.window)

        wait_for("the main window's focus", focused)
        self.settle()

    def _alive(self):
        if self.process.poll() is not None:
            errors = self.process.stderr.read().decode()
            raise AssertionError(f"the program has ended, status {self.process.returncode}: {errors}")

    def settle(self):
        """Waits until all that was typed and clicked is handled and shown."""
        self.desktop.settle(self.window)

    def ended(self):
        """The exit status of the program, which is about to end."""
        return self.process.wait(PATIENCE)

    # Keys and mouse

    def press(self, *keys):
        self.desktop.press(*keys)

    def type(self, text):
        self.desktop.type(text)

    def menu(self, name):
        """A command of the menu bar. An open menu holds keys and mouse, so it must be gone first."""
        self.settle()
        self.press(*MENU_KEYS[name].split())

    def answer(self, title, text):
        """Fills in a dialog that has one line to type."""
        self.dialog(title)
        self.type(text)
        self.press("Enter")
        self.back()

    def click(self, x, y):
        self.desktop.click(*self.card.place(x, y))

    def toolbar(self, button):
        self.desktop.click(*self.card.button(button))

    # What is to be seen

    def staff(self):
        """The picture of the measure."""
        self.settle()
        card = self.card
        return self.desktop.picture(card.x, card.y, card.width, card.height)

    def buttons(self):
        """The picture of Toolbar1."""
        self.settle()
        x, y = self.card.button(1)
        return self.desktop.picture(x - 18, y - 20, 11 * 36, 40)

    def look(self, name):
        """Leaves a picture of the screen in the folder of pictures, if there is one."""
        if os.environ["PICTURES"]:
            self.desktop.picture().save(f"{os.environ['PICTURES']}/{name}.png")

    def picture(self):
        self.settle()
        return self.desktop.picture(*self.desktop.place(self.window))

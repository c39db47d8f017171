"""The recording surface of `StaffBox`: a drawing as a list of log lines."""

from number_rules import decimal, quoted

PLAIN_PEN = 1
XOR_PEN = 10


class RecordingSurface:
    """Units are points. A text is size / 2 wide a character, in every font."""

    def __init__(self):
        self.lines = []
        self.CurrentX = 0
        self.CurrentY = 0
        self.FontName = "Arial"
        self.FontSize = 8.25
        self.DrawWidth = 1
        self.DrawMode = PLAIN_PEN
        self.solid = False

    def clear(self):
        self.lines = ["clear"]
        self.CurrentX = self.CurrentY = 0

    def line(self, x1, y1, x2, y2):
        self._add(f"line {decimal(x1)} {decimal(y1)} {decimal(x2)} {decimal(y2)} w={self.DrawWidth}")
        self.CurrentX, self.CurrentY = x2, y2

    def disc(self, x, y, radius):
        """A filled circle; solid fill stays set."""
        self.solid = True
        self._add(f"circle {decimal(x)} {decimal(y)} {decimal(radius)} w={self.DrawWidth} fill=solid")
        self.CurrentX, self.CurrentY = x, y

    def arc(self, x, y, radius, start, end, aspect):
        figures = " ".join(map(decimal, (x, y, radius, start, end, aspect)))
        self._add(f"arc {figures} w={self.DrawWidth}")
        self.CurrentX, self.CurrentY = x, y

    def text(self, text):
        """Prints at the cursor and leaves it after the text, on the same line."""
        if text.strip(" "):
            self._add(
                f"text {decimal(self.CurrentX)} {decimal(self.CurrentY)} size={decimal(self.FontSize)}"
                f' font={quoted(self.FontName)} bold=1 {quoted(text)}'
            )
        self.CurrentX += len(text) * self.FontSize / 2

    def text_at(self, x, y, text):
        self.CurrentX, self.CurrentY = x, y
        self.text(text)

    def _add(self, line):
        if self.DrawMode != XOR_PEN:
            self.lines.append(line)
            return
        line += " mode=xor"
        if line in self.lines:
            self.lines.remove(line)
        else:
            self.lines.append(line)

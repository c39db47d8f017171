"""The recording surface of the page model: a pen, a cursor and the drawing log.

Units are twips. A text is `length * size / 2` points wide and a text line `size * 1.2` points
high, in every font; 20 twips make a point.
"""


def number_text(value):
    """A number as the log writes it: at most two decimals, no trailing zeros, no -0."""
    text = f"{value:.2f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text


def quoted(text):
    def shown(character):
        if character in '"\\':
            return "\\" + character
        return character if 32 <= ord(character) <= 126 else f"\\x{ord(character):02x}"

    return '"' + "".join(map(shown, text)) + '"'


def text_width(text, size):
    return len(text) * size / 2 * 20


def line_height(size):
    return size * 1.2 * 20


class Surface:
    """One page. `log` has what was drawn."""

    Width = 12240
    Height = 15840

    def __init__(self, font_name, font_size):
        self.FontName = font_name
        self.FontSize = font_size
        self.DrawWidth = 1
        self.CurrentX = 0
        self.CurrentY = 0
        self.log = []

    def clear(self):
        self.log = ["clear"]
        self.CurrentX = self.CurrentY = 0

    def text_width(self, text):
        return text_width(text, self.FontSize)

    def line(self, x1, y1, x2, y2):
        self._record("line", x1, y1, x2, y2)
        self.CurrentX, self.CurrentY = x2, y2

    def dot(self, x, y, radius):
        """A circle; the page draws none but filled ones."""
        self._record("circle", x, y, radius)
        self.log[-1] += " fill=solid"

    def arc(self, x, y, radius, start, end, aspect):
        self._record("arc", x, y, radius, start, end, aspect)

    def put(self, text):
        """Prints without a line end: the cursor stays after the text."""
        if text.strip(" "):
            self.log.append(f"text {number_text(self.CurrentX)} {number_text(self.CurrentY)}"
                            f" size={number_text(self.FontSize)} font={quoted(self.FontName)}"
                            f" bold=0 {quoted(text)}")
        self.CurrentX += self.text_width(text)

    def print(self, text):
        """Prints with a line end."""
        self.put(text)
        self.CurrentX = 0
        self.CurrentY += line_height(self.FontSize)

    def _record(self, operation, *numbers):
        self.log.append(" ".join([operation, *map(number_text, numbers), f"w={self.DrawWidth}"]))

"""One X display as a person has it: keys, mouse, windows and what is to be seen.

Keys and mouse go through the server's test extension, so the programs on the display cannot tell
them from real ones. Nothing here sleeps for a fixed time: a condition is polled until it
holds, for `PATIENCE` seconds at most.
"""

import struct
import time
import zlib

from Xlib import X, XK, display
from Xlib.ext import xtest
from Xlib.protocol import event

PNG_SIGN = b"\x89PNG\r\n\x1a\n"
PATIENCE = 20  # seconds; a loaded machine is slow, a broken program never comes
KEYSYMS = {
    "Enter": "Return", "Backspace": "BackSpace", "Space": "space", "PageDown": "Next",
    "Shift": "Shift_L", "Ctrl": "Control_L", "Alt": "Alt_L",
}  # fmt: skip


def wait_for(what, condition):
    """The first true value of `condition()`."""
    end = time.monotonic() + PATIENCE
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come in {PATIENCE} s")
        time.sleep(0.005)


def unfilter(kind, row, above, channels):
    """A row of a PNG file as it was before its filter."""
    out = bytearray(row)
    for i, value in enumerate(row):
        left = out[i - channels] if i >= channels else 0
        corner = above[i - channels] if i >= channels else 0
        up = above[i]
        if kind == 1:
            value += left
        elif kind == 2:
            value += up
        elif kind == 3:
            value += (left + up) // 2
        elif kind == 4:
            guess = left + up - corner
            value += min((left, up, corner), key=lambda near: abs(guess - near))
        out[i] = value & 0xFF
    return out


class Picture:
    """A rectangle of pixels, four bytes each: blue, green, red and one unused."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    def row(self, y):
        return self.data[y * self.width * 4 : (y + 1) * self.width * 4]

    def pixel(self, x, y):
        blue, green, red = self.data[(y * self.width + x) * 4 :][:3]
        return red, green, blue

    def crop(self, x, y, width, height):
        rows = (self.row(y + i)[x * 4 : (x + width) * 4] for i in range(height))
        return Picture(width, height, b"".join(rows))

    def differing(self, other):
        """Number of pixels that are not the same."""
        assert (self.width, self.height) == (other.width, other.height)
        count = 0
        for y in range(self.height):
            here, there = self.row(y), other.row(y)
            if here != there:
                count += sum(
                    here[i : i + 3] != there[i : i + 3] for i in range(0, len(here), 4)
                )
        return count

    @staticmethod
    def from_png(png):
        """Of a PNG file's bytes: 8 bits a channel, with or without transparency, not interlaced."""
        assert png[:8] == PNG_SIGN
        packed, at = b"", 8
        while at < len(png):
            length, name = struct.unpack(">I4s", png[at : at + 8])
            content = png[at + 8 : at + 8 + length]
            if name == b"IHDR":
                width, height, bits, kind, _, _, interlaced = struct.unpack(">IIBBBBB", content)
            elif name == b"IDAT":
                packed += content
            at += length + 12
        channels = {2: 3, 6: 4}[kind]
        assert bits == 8 and not interlaced
        raw, step = zlib.decompress(packed), width * channels
        above, data = bytearray(step), bytearray()
        for y in range(height):
            start = y * (step + 1)
            above = unfilter(raw[start], raw[start + 1 : start + 1 + step], above, channels)
            pixels = bytearray(4 * width)
            for channel, place in ((2, 0), (1, 1), (0, 2)):
                pixels[place::4] = above[channel::channels]
            data += pixels
        return Picture(width, height, bytes(data))

    def save(self, path):
        """As a PNG file."""
        rows = []
        for y in range(self.height):
            row = self.row(y)
            pixels = bytearray(3 * self.width)
            pixels[0::3], pixels[1::3], pixels[2::3] = row[2::4], row[1::4], row[0::4]
            rows.append(b"\0" + pixels)

        def chunk(name, content):
            crc = zlib.crc32(name + content)
            return struct.pack(">I", len(content)) + name + content + struct.pack(">I", crc)

        head = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        with open(path, "wb") as file:
            file.write(PNG_SIGN + chunk(b"IHDR", head))
            file.write(chunk(b"IDAT", zlib.compress(b"".join(rows), 6)) + chunk(b"IEND", b""))


class Desktop:
    """The display that the environment names. A window manager runs on it."""

    def __init__(self):
        self.display = display.Display()
        self.root = self.display.screen().root
        self.root.change_attributes(event_mask=X.StructureNotifyMask)  # for the answers to pings
        self.pings = 0
        self.keys = {}  # keysym: keycode, with shift
        first, last = self.display.display.info.min_keycode, self.display.display.info.max_keycode
        for code, symbols in enumerate(
            self.display.get_keyboard_mapping(first, last - first + 1), first
        ):
            for shift in (0, 1):
                self.keys.setdefault(symbols[shift], (code, bool(shift)))

    def close(self):
        self.display.close()

    def atom(self, name):
        return self.display.intern_atom(name)

    # Keys and mouse

    def _hit(self, kind, detail=0, **more):
        xtest.fake_input(self.display, kind, detail, **more)

    def _stroke(self, keysym, modifiers=()):
        code, shift = self.keys[keysym]
        held = [self.keys[XK.string_to_keysym(KEYSYMS[name])][0] for name in modifiers]
        if shift and "Shift" not in modifiers:
            held.append(self.keys[XK.string_to_keysym("Shift_L")][0])
        for modifier in held:
            self._hit(X.KeyPress, modifier)
        self._hit(X.KeyPress, code)
        self._hit(X.KeyRelease, code)
        for modifier in reversed(held):
            self._hit(X.KeyRelease, modifier)

    def press(self, *keys):
        """Keys one after the other, each as in "Enter", "Shift+F8", "Alt+e"."""
        for key in keys:
            *modifiers, name = key.split("+")
            keysym = XK.string_to_keysym(KEYSYMS.get(name, name.lower() if modifiers else name))
            self._stroke(keysym or XK.string_to_keysym(name), modifiers)
        self.display.sync()

    def type(self, text):
        for character in text:
            self._stroke(ord(character))
        self.display.sync()

    def click(self, x, y):
        self.drag((x, y))

    def drag(self, *places):
        """Presses the left button at the first place and lets go at the last."""
        self._hit(X.MotionNotify, x=places[0][0], y=places[0][1])
        self._hit(X.ButtonPress, 1)
        for x, y in places[1:]:
            self._hit(X.MotionNotify, x=x, y=y)
        self._hit(X.ButtonRelease, 1)
        self.display.sync()

    def turn_wheel(self, x, y, notches):
        """Towards the person, over that place."""
        self._hit(X.MotionNotify, x=x, y=y)
        for _ in range(notches):
            self._hit(X.ButtonPress, 5)
            self._hit(X.ButtonRelease, 5)
        self.display.sync()

    # Windows

    def windows(self, pid):
        """The windows of a process that the window manager has in its care."""
        clients = self.root.get_full_property(self.atom("_NET_CLIENT_LIST"), X.AnyPropertyType)
        own = []
        for number in clients.value if clients else ():
            window = self.display.create_resource_object("window", number)
            if self._property(window, "_NET_WM_PID") == [pid]:
                own.append(window)
        return own

    def _property(self, window, name):
        try:
            value = window.get_full_property(self.atom(name), X.AnyPropertyType)
        except Exception:  # the window has gone in between
            return None
        return list(value.value) if value else None

    def title(self, window):
        return bytes(self._property(window, "_NET_WM_NAME") or b"").decode()

    def focused(self, window):
        focus = self.display.get_input_focus().focus
        return getattr(focus, "id", focus) == window.id

    def place(self, window):
        """x, y, width and height of a window without its frame."""
        size = window.get_geometry()
        corner = self.root.translate_coords(window, 0, 0)
        return corner.x, corner.y, size.width, size.height

    def ask_to_close(self, window):
        """What the close button of a window's frame does."""
        self._tell(self.root, window, "_NET_CLOSE_WINDOW", [X.CurrentTime, 2, 0, 0, 0])

    def _tell(self, receiver, window, kind, data, mask=None):
        message = event.ClientMessage(
            window=window, client_type=self.atom(kind), data=(32, data)
        )
        both = X.SubstructureRedirectMask | X.SubstructureNotifyMask
        receiver.send_event(message, event_mask=both if mask is None else mask)
        self.display.sync()

    def settle(self, window):
        """Waits until the program of `window` has taken in and shown everything sent so far.

        A program answers a ping when it reads it, which may be before it has handled the keys read
        along with it; when it answers the next one, it has. The third is for the painting.
        """
        for _ in range(3):
            self._ping(window)

    def _ping(self, window):
        self.pings += 1
        ping = self.atom("_NET_WM_PING")
        self._tell(window, window, "WM_PROTOCOLS", [ping, self.pings, window.id, 0, 0], mask=0)

        def answered():
            while self.display.pending_events():
                answer = self.display.next_event()
                if (
                    answer.type & 0x7F == X.ClientMessage
                    and answer.data[0] == 32
                    and list(answer.data[1][:2]) == [ping, self.pings]
                ):
                    return True
            return False

        wait_for("an answer to a ping", answered)

    # What is to be seen

    def picture(self, x=0, y=0, width=None, height=None):
        size = self.root.get_geometry()
        width, height = width or size.width, height or size.height
        image = self.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF)
        return Picture(width, height, image.data)

"""Number and text rules that all models share: checked 16-bit values, rounding
to even, `Val`, and run-time faults as exceptions with a number."""

import re
import struct

FAULT_TEXTS = {
    5: "invalid procedure call",
    6: "overflow",
    9: "subscript out of range",
    11: "division by zero",
    53: "file not found",
    62: "input past end of file",
    75: "path/file access error",
    340: "control array element does not exist",
    424: "object required",
}


class RunTimeFault(Exception):
    """A run-time error that nothing catches; it ends the program."""

    def __init__(self, number):
        super().__init__(number)
        self.number = number

    def __str__(self):
        return f"run-time error {self.number}: {FAULT_TEXTS[self.number]}"


def int16(value):
    """The value itself, checked against the signed 16-bit range."""
    if -32768 <= value <= 32767:
        return value
    raise RunTimeFault(6)


def rounded16(real):
    """A real as a 16-bit integer: nearest, ties to the even number."""
    return int16(round(real))


def single(real):
    """A real in single precision."""
    try:
        return struct.unpack("<f", struct.pack("<f", real))[0]
    except OverflowError:
        raise RunTimeFault(6) from None


BLANKS = re.compile(r"[ \t\r\n]+")
LEADING_NUMBER = re.compile(r"[+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eEdD][+-]?[0-9]+)?")


def val(text):
    """The leading number of a text as a real; blanks count nowhere, none is 0."""
    match = LEADING_NUMBER.match(BLANKS.sub("", text))
    if not match:
        return 0.0
    value = float(match.group().replace("d", "e").replace("D", "e"))
    if value in (float("inf"), float("-inf")):
        raise RunTimeFault(6)
    return value


class Int16:
    """An attribute that holds a checked 16-bit value."""

    def __set_name__(self, owner, name):
        self.slot = "_" + name

    def __get__(self, instance, owner=None):
        return instance.__dict__[self.slot]

    def __set__(self, instance, value):
        if not -32768 <= value <= 32767:
            raise RunTimeFault(6)
        instance.__dict__[self.slot] = value


def quoted(text):
    """A text as the logs and tables show it, one visible line of ASCII."""
    shown = ['"']
    for character in text:
        if character in '"\\':
            shown.append("\\" + character)
        elif " " <= character <= "~":
            shown.append(character)
        else:
            shown.append(f"\\x{ord(character):02x}")
    shown.append('"')
    return "".join(shown)


def decimal(value):
    """A coordinate with at most two decimals, no trailing zeros and no -0."""
    if isinstance(value, int):
        return str(value)
    text = f"{value:.2f}".rstrip("0").rstrip(".")
    return "0" if text == "-0" else text

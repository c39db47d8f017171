#!/usr/bin/env python3
"""Reads a Standard MIDI File strictly and prints it in the form of midi_model.py.

Strict means: a format-1 header of 6 bytes with the true track count, track
chunks whose length is exactly that of their events, delta times in their
shortest form, channel messages (running status accepted) with data bytes
below 128, no meta events but Set Tempo in the first track and End of Track
(delta 0) as the last event of each, and nothing after the last track.
"""

import sys

END_OF_TRACK = 0x2F
SET_TEMPO = 0x51


class BadFile(Exception):
    pass


class ByteReader:
    def __init__(self, data, at=0, end=None):
        self.data = data
        self.at = at
        self.end = len(data) if end is None else end

    def at_end(self):
        return self.at == self.end

    def take(self, count):
        if self.at + count > self.end:
            raise BadFile(f"{count} bytes wanted at {self.at}, but the chunk or file ends at {self.end}")
        self.at += count
        return self.data[self.at - count:self.at]

    def byte(self):
        return self.take(1)[0]

    def number(self, size):
        return int.from_bytes(self.take(size), "big")

    def variable_length(self):
        begin = self.at
        value = 0
        for _ in range(4):
            byte = self.byte()
            value = value << 7 | byte & 0x7F
            if byte < 0x80:
                if self.at - begin > 1 and self.data[begin] == 0x80:
                    raise BadFile(f"delta time at {begin} is not in its shortest form")
                return value
        raise BadFile(f"delta time at {begin} is longer than 4 bytes")

    def chunk(self, kind):
        """The reader of the next chunk's content."""
        found = self.take(4)
        if found != kind:
            raise BadFile(f"chunk {kind!r} wanted at {self.at - 4}, found {found!r}")
        length = self.number(4)
        content = ByteReader(self.data, self.at, self.at + length)
        self.take(length)
        return content


def data_byte(reader):
    value = reader.byte()
    if value > 127:
        raise BadFile(f"data byte {value} at {reader.at - 1}")
    return value


def channel_event(reader, status):
    if status < 0x80 or status >= 0xF0:
        raise BadFile(f"status {status} at {reader.at - 1}")
    data1 = data_byte(reader)
    data2 = 0 if 0xC0 <= status < 0xE0 else data_byte(reader)
    return f"{status} {data1} {data2}"


def track_lines(reader, is_first):
    """One line for each event before End of Track."""
    running_status = 0
    while True:
        delta = reader.variable_length()
        begin = reader.at
        status = reader.byte()
        if status == 0xFF:
            running_status = 0
            kind = reader.byte()
            content = reader.take(reader.variable_length())
            if kind == END_OF_TRACK:
                if content or delta or not reader.at_end():
                    raise BadFile(f"End of Track at {begin} has content, a delta time or events after it")
                return
            if kind != SET_TEMPO or len(content) != 3 or not is_first:
                raise BadFile(f"meta event {kind} at {begin}")
            yield f"{delta} tempo {int.from_bytes(content, 'big')}"
        else:
            if status < 0x80:
                reader.at = begin
                status = running_status
            running_status = status
            yield f"{delta} {channel_event(reader, status)}"


def lines_of_file(data):
    reader = ByteReader(data)
    header = reader.chunk(b"MThd")
    file_format, track_count, division = (header.number(2) for _ in range(3))
    if file_format != 1 or not header.at_end():
        raise BadFile(f"header of format {file_format}, length {header.at - 8}")
    if division >= 0x8000:
        raise BadFile(f"division {division} is no number of ticks")
    lines = [f"division {division}"]
    for number in range(track_count):
        lines.append(f"track {number}")
        lines.extend(track_lines(reader.chunk(b"MTrk"), number == 0))
    if not reader.at_end():
        raise BadFile(f"{reader.end - reader.at} bytes after the last track")
    return lines


def main():
    with open(sys.argv[1], "rb") as file:
        data = file.read()
    try:
        print("\n".join(lines_of_file(data)))
    except BadFile as failure:
        print(f"bad file: {failure}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())

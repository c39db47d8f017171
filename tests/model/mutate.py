#!/usr/bin/python3
"""Writes damaged copies of the example tunes, a seed each.

    mutate.py FOLDER COUNT [FIRST]

makes FOLDER/N.EXTENSION for each seed N from FIRST (1) on. A seed always gives the same file.
"""

import pathlib
import random
import sys

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"
LINES_OF_RECORD = 9

NUMBERS = [b"0", b"-1", b"1", b"2", b"999", b"1500", b"32767", b"32768", b"-32768", b"65536", b"1e9", b"1e400",
           b"0.5", b"-0", b"", b"99999999999999999999"]
TEXTS = [b'""', b'"', b'" "', b'"93"', b'"94"', b'"95"', b'"98"', b'"99"', b'"1"', b'"2"', b'"3."', b'"1e400"',
         b'"NL"', b'"/To Coda"', b'"/"', b'"-"', b'"^"', b'"3^"', b'"32767"', b'"40000"', b'"-5-"', b'"x"',
         b'"' + b"7" * 100 + b'"', b'"' + b"W" * 2000 + b'"'] + [b'"%d"' % sign for sign in range(81, 90)]
BYTES = [b'"', b",", b"\r", b"\n", b"\0", b"\x1a", b"\xff", b" ", b"-", b"9"]


def span(chance, data, longest):
    start = chance.randrange(len(data) + 1)
    return start, min(len(data), start + chance.randrange(1, longest))


def change_byte(chance, data):
    at, end = span(chance, data, 2)
    return data[:at] + bytes([chance.randrange(256)]) + data[end:]


def insert_bytes(chance, data):
    at = chance.randrange(len(data) + 1)
    return data[:at] + chance.choice(BYTES) * chance.choice([1, 1, 2, 50]) + data[at:]


def delete_bytes(chance, data):
    start, end = span(chance, data, chance.choice([2, 20, 500]))
    return data[:start] + data[end:]


def cut_off(chance, data):
    return data[:chance.randrange(len(data) + 1)]


def change_item(chance, data):
    lines = data.split(b"\r\n")
    at = chance.randrange(len(lines))
    items = lines[at].split(b",")
    items[chance.randrange(len(items))] = chance.choice(NUMBERS if at % LINES_OF_RECORD < 3 else TEXTS)
    lines[at] = b",".join(items)
    return b"\r\n".join(lines)


def change_head(chance, data):
    """A bar, sign, bracket, remark or line break of a measure: what leads a performance astray."""
    lines = data.split(b"\r\n")
    heads = [at for at in range(0, len(lines) - 5, LINES_OF_RECORD) if b",999," in lines[at]]
    if not heads:
        return data
    head = chance.choice(heads)
    if chance.random() < .4:
        items = lines[head + 2].split(b",")
        lines[head + 2] = b",".join([items[0], chance.choice([b'"98"', b'"99"', b'"94"'])] + items[2:])
    else:
        lines[head + chance.choice([3, 3, 4, 4, 5])] = chance.choice(TEXTS)
    return b"\r\n".join(lines)


def move_lines(chance, data):
    """Lines or whole records, deleted, doubled or put elsewhere."""
    size = chance.choice([1, LINES_OF_RECORD])
    lines = data.split(b"\r\n")
    blocks = [lines[at:at + size] for at in range(0, len(lines), size)]
    start = chance.randrange(len(blocks))
    end = start + chance.choice([1, 1, 2, 5, 40])
    taken, rest = blocks[start:end], blocks[:start] + blocks[end:]
    to = chance.randrange(len(rest) + 1)
    result = chance.choice([rest, blocks[:end] + taken + blocks[end:], rest[:to] + taken + rest[to:],
                            blocks[:end] + taken * 60 + blocks[end:]])
    return b"\r\n".join(line for block in result for line in block)


MUTATIONS = [change_byte, insert_bytes, delete_bytes, cut_off, change_item, change_item, change_head, change_head,
             change_head, move_lines, move_lines]


def mutate(seed):
    chance = random.Random(seed)
    example = chance.choice(sorted(path for path in EXAMPLES.iterdir() if path.suffix in (".gui", ".bjo", ".bss")))
    data = example.read_bytes()
    for _ in range(chance.choice([1, 1, 2, 3, 6])):
        data = chance.choice(MUTATIONS)(chance, data)
    return data, example.suffix


def main():
    folder, count = pathlib.Path(sys.argv[1]), int(sys.argv[2])
    first = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    for seed in range(first, first + count):
        data, suffix = mutate(seed)
        (folder / f"{seed}{suffix}").write_bytes(data)


if __name__ == "__main__":
    main()

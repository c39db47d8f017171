#!/usr/bin/python3
"""Checks the includes of src/ against the rooms.

A room may include itself and what its quillon_room(... USES ...) line names, never a room
above it. Inside a room, too, includes go one way: a header and its source count as one.
The core rooms include no header but the C++ standard library's and their own;
one file of theirs may call the system as well.
Prints `file:line: reason` for each violation; exit status 1 if there is one.
"""

import pathlib
import re
import sys

SRC = pathlib.Path(__file__).resolve().parent.parent / "src"

# From the ground up. Rooms of one line do not see each other.
LEVELS = [["platform", "xml", "zip"], ["store"], ["notation", "midi"], ["editor", "exchange"],
          ["history"], ["shell"], ["headless", "qt"], ["app"]]
LEVEL = {room: level for level, rooms in enumerate(LEVELS) for room in rooms}
CORE = {"platform", "store", "notation", "midi", "xml", "zip", "exchange", "editor", "history",
        "shell", "headless"}
CALLS_THE_SYSTEM = SRC / "store/growing_file.cpp", SRC / "store/staged_file.cpp"
LIBRARIES = {"xml": {"pugixml.hpp"}, "zip": {"minizip/unzip.h", "minizip/zip.h"}}
POSIX = {"fcntl.h", "sys/file.h", "sys/stat.h", "unistd.h"}

STANDARD = set(
    """
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono
    cinttypes climits clocale cmath codecvt compare complex concepts condition_variable coroutine
    csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque
    exception execution filesystem format forward_list fstream functional future initializer_list
    iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource
    mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf
    string string_view syncstream system_error thread tuple type_traits typeindex typeinfo
    unordered_map unordered_set utility valarray variant vector version
    """.split()
)

INCLUDE = re.compile(r'\s*#\s*include\s*([<"])([^>"]+)[>"]')
ROOM = re.compile(r"quillon_room\(\s*(\w+)([^)]*)\)")


def rooms_used(room):
    """What the rooms of a folder USE, all of its quillon_room lines together."""
    cmake = SRC / room / "CMakeLists.txt"
    if not cmake.exists():
        return set()
    used = set()
    for _, words in ROOM.findall(re.sub(r"#.*", "", cmake.read_text())):
        used.update(words.partition("USES")[2].split())
    return used & LEVEL.keys()


def breach(path, room, used, opening, header):
    if opening == "<":
        allowed = STANDARD | LIBRARIES.get(room, set())
        if path in CALLS_THE_SYSTEM:
            allowed |= POSIX
        if room in CORE and header not in allowed:
            return f"{room}/ may not have #include <{header}>"
        return None
    other = header.partition("/")[0] if "/" in header else room
    if other not in LEVEL:
        return f"{room}/ includes \"{header}\", which is in no room" if room in CORE else None
    if other == room:
        return None
    if LEVEL[other] >= LEVEL[room]:
        return f"{room}/ includes {other}/, which is not below it"
    if room != "app" and other not in used:
        return f"{room}/ includes {other}/, which it does not USE"
    return None


def circle(room):
    """Files of a room that include each other in a circle, by their stems; [] if there is none."""
    uses = {}
    for path in sorted((SRC / room).glob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        stems = uses.setdefault(path.stem, set())
        for _, header in filter(None, (found(line) for line in path.read_text().splitlines())):
            folder, _, name = header.rpartition("/")
            if folder in (room, "") and name.endswith(".h"):
                stems.add(name.removesuffix(".h"))
        stems.discard(path.stem)
    finished, way = set(), []

    def visit(stem):
        if stem in way:
            return way[way.index(stem) :] + [stem]
        if stem in finished:
            return []
        way.append(stem)
        for other in sorted(uses.get(stem, ())):
            if round_trip := visit(other):
                return round_trip
        finished.add(way.pop())
        return []

    for stem in uses:
        if round_trip := visit(stem):
            return round_trip
    return []


def found(line):
    """The opening and the header of an #include line, None on any other."""
    match = INCLUDE.match(line)
    return match.groups() if match else None


def main():
    breaches = 0
    for room in LEVEL:
        if round_trip := circle(room):
            print(f"src/{room}: a circle of includes: {' - '.join(round_trip)}")
            breaches += 1
    for room in LEVEL:
        used = rooms_used(room)
        above = sorted(name for name in used if LEVEL[name] >= LEVEL[room] and name != room)
        for name in above:
            print(f"src/{room}/CMakeLists.txt:1: {room} USES {name}, which is not below it")
            breaches += 1
        for path in sorted((SRC / room).glob("**/*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
                include = found(line)
                reason = include and breach(path, room, used, *include)
                if reason:
                    print(f"{path.relative_to(SRC.parent)}:{number}: {reason}")
                    breaches += 1
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())

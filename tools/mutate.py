#!/usr/bin/python3
"""Mutations of the core rooms: comparisons, constants, signs and dropped statements.

Each mutation is built and put through what `./test quick` runs of the core, cheapest first: unit
tests, golden drawings, scenarios, the models, and random scripts undone and done again. What fails, hangs or crashes has noticed it. A
mutation that does not compile is replaced by another one.

Prints a line for each mutation and a summary. Exit status 1 if more than one in twenty is missed.
"""

import concurrent.futures
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

TREE = pathlib.Path(__file__).resolve().parent.parent
ROOMS = ["store", "notation", "midi", "editor", "shell"]
USERS = ["headless", "history", "exchange"]  # rooms whose tests go through these
WORKERS = 2
SECONDS = 300  # until a test counts as hanging

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
SIGNS = {"+": "-", "-": "+", "+=": "-=", "-=": "+=", "&&": "||", "||": "&&"}
# A statement of one line that is neither a declaration nor a jump.
STATEMENT = re.compile(r" +(?:\+\+|--)?[A-Za-z_][\w.]*(?:\(|\.|->|\[|::| (?:=|\+=|-=) |;).*;$")


def masked(text):
    """The text with comments, strings and preprocessor lines blanked, place for place."""
    pattern = r'//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|^#[^\n]*|static_assert[^;]*;'
    return re.sub(pattern, lambda m: re.sub(r"[^\n]", " ", m[0]), text, flags=re.M)


def candidates(path):
    """(kind, start, end, replacement) of each place that can be damaged."""
    code = masked(path.read_text())
    found = []
    for match in re.finditer(r"(?<= )(<=?|>=?|==|!=)(?= )", code):
        found.append(("comparison", *match.span(), COMPARISONS[match[0]]))
    for match in re.finditer(r"(?<= )(\+=?|-=?|&&|\|\|)(?= )", code):
        found.append(("sign", *match.span(), SIGNS[match[0]]))
    for match in re.finditer(r"(?<![\w.\"'])(\d+)(?![\w.'])", code):
        found.append(("constant", *match.span(), str(int(match[0]) + 1)))
    start = 0
    for line in code.splitlines(keepends=True):
        text = line.rstrip("\n")
        word = text.split()[0] if text.split() else ""
        if STATEMENT.match(text) and word not in ("return", "throw", "using", "break", "const"):
            found.append(("statement", start + len(text) - len(text.lstrip()), start + len(text), ";"))
        start += len(line)
    return found


def chosen(seed):
    """All candidates, in a random order in which the four kinds take turns."""
    order = random.Random(seed)
    kinds = {}
    for room in ROOMS:
        for path in sorted((TREE / "src" / room).glob("*.cpp")):
            for kind, *place in candidates(path):
                kinds.setdefault(kind, []).append((path.relative_to(TREE), kind, *place))
    for places in kinds.values():
        order.shuffle(places)
    for turn in zip(*kinds.values()):
        yield from turn


class Copy:
    """A copy of the tree with a build of the core alone."""

    def __init__(self, folder):
        self.tree = pathlib.Path(folder)
        files = subprocess.run(
            ["git", "ls-files", "-z"], cwd=TREE, check=True, capture_output=True, text=True
        ).stdout.split("\0")
        for name in filter(None, files):
            (self.tree / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(TREE / name, self.tree / name)
        self.build = self.tree / "build"
        flags = ["-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DQUILLON_QT=OFF"]
        self.run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build, *flags], 600)
        if not self.compiles():
            sys.exit("mutate.sh: the tree does not build as it is")
        for name, command in self.checks("store"):
            if not self.run(command, SECONDS):
                sys.exit(f"mutate.sh: {name} fail as they are")

    def run(self, command, seconds):
        try:
            with tempfile.TemporaryDirectory() as folder:
                done = subprocess.run(
                    [str(word) for word in command], cwd=folder, timeout=seconds,
                    stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                )
            return done.returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def compiles(self):
        tests = [f"quillon_{room}_tests" for room in (*ROOMS, *USERS)]
        programs = ["play-scenario", "quillon-export", "undo_property"]
        return self.run(["ninja", "-C", self.build, *programs, *tests], 900)

    def checks(self, room):
        binaries, tests = self.build / "bin", self.tree / "tests"
        rooms = [room, *[other for other in (*ROOMS, *USERS) if other != room]]
        for name in rooms:
            yield f"unit tests ({name})", [binaries / f"quillon_{name}_tests", "--gtest_brief=1"]
        yield "goldens", [tests / "golden_test.sh", binaries / "quillon-export"]
        yield "scenarios", [tests / "scenarios_test.sh", binaries / "play-scenario"]
        model = tests / "model"
        export = ["--export", binaries / "quillon-export", "--from", 1]
        editor = ["--program", binaries / "play-scenario", "--count", 30]
        yield "model-editor", ["/usr/bin/python3", model / "compare_scenarios.py", *export, *editor]
        yield "model-pages", ["/usr/bin/python3", model / "compare_pages.py", *export, "--count", 30]
        yield "model-midi", ["/usr/bin/python3", model / "compare_midi.py", *export, "--count", 50]
        yield "undo", [binaries / "undo_property", 1, 60]

    def verdict(self, path, start, end, replacement):
        """Who notices the mutation; None if it does not compile, "" if nobody does."""
        file = self.tree / path
        text = file.read_text()
        file.write_text(text[:start] + replacement + text[end:])
        try:
            if not self.compiles():
                return None
            for name, command in self.checks(path.parts[1]):
                if not self.run(command, SECONDS):
                    return name
            return ""
        finally:
            file.write_text(text)


def describe(path, kind, start, end, replacement):
    text = (TREE / path).read_text()
    number = text.count("\n", 0, start) + 1
    line = text.splitlines()[number - 1].strip()
    change = "dropped" if kind == "statement" else f"{text[start:end]} -> {replacement}"
    return f"{path}:{number}: {kind} {change}: {line}"


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 100
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    places = iter(list(chosen(seed)))  # which two threads may share
    noticed, missed = {}, []

    def work(copy):
        while len(missed) + sum(noticed.values()) < count:
            place = next(places, None)
            if place is None:
                return
            path, _, start, end, replacement = place
            who = copy.verdict(path, start, end, replacement)
            if who is None or len(missed) + sum(noticed.values()) >= count:
                continue
            if who:
                noticed[who] = noticed.get(who, 0) + 1
            else:
                missed.append(place)
            print(f"{who or 'NOT NOTICED'}: {describe(*place)}", flush=True)

    with tempfile.TemporaryDirectory(prefix="quillon-mutate-") as folder:
        copies = [Copy(pathlib.Path(folder) / str(number)) for number in range(WORKERS)]
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            for done in [pool.submit(work, copy) for copy in copies]:
                done.result()
    total = len(missed) + sum(noticed.values())
    for who, times in sorted(noticed.items(), key=lambda item: -item[1]):
        print(f"{times:4} noticed by {who}")
    print(f"{total - len(missed)} of {total} noticed, seed {seed}")
    return 1 if len(missed) * 20 > total else 0


if __name__ == "__main__":
    sys.exit(main())

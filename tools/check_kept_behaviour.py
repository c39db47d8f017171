#!/usr/bin/python3
"""Checks that every test named in docs/kept_behaviour.md exists; status 1 if one does not."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENT = ROOT / "docs/kept_behaviour.md"


def main():
    source = "\n".join(path.read_text() for path in ROOT.glob("tests/*/*_test.cpp"))
    tests = {f"{suite}.{name}"
             for suite, name in re.findall(r"TEST(?:_F)?\((\w+),\s*(\w+)\)", source)}
    named = re.findall(r"`(\w+\.[A-Z]\w+)`", DOCUMENT.read_text(encoding="utf-8"))
    missing = sorted(set(named) - tests)
    for name in missing:
        print(f"docs/kept_behaviour.md: no test {name}")
    print(f"{len(set(named)) - len(missing)} passed, {len(missing)} failed")
    sys.exit(bool(missing))


if __name__ == "__main__":
    main()

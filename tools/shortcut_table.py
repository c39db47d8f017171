#!/usr/bin/python3
"""Keeps the manual's tables of commands in step with the menu table of the program.

    shortcut_table.py           writes the tables into docs/manual.md
    shortcut_table.py --check   status 1 when the manual is out of date

The menus are read from src/shell/menus.cpp: the arrays of entries, and kMenus for their order.
In the manual, each table is between `<!-- menu NAME -->` and `<!-- /menu -->`, and the table of all
keys is between `<!-- shortcuts -->` and `<!-- /shortcuts -->`. Every menu must be there.
"""

import difflib
import pathlib
import re
import sys
from dataclasses import dataclass

ROOT = pathlib.Path(__file__).resolve().parent.parent
MENUS = ROOT / "src/shell/menus.cpp"
MANUAL = ROOT / "docs/manual.md"

STRING = r'"((?:[^"\\]|\\.)*)"'
ARRAY = re.compile(r"MenuEntry (k\w+)\[\] = \{(.*?)\n\};", re.S)
ENTRY = re.compile(
    r"\{\s*" + STRING + r"\s*,\s*" + STRING + r"\s*,\s*" + STRING
    + r"\s*,\s*Run<[^>]*>\s*,\s*\w+\s*,\s*" + STRING + r"\s*\}", re.S)
MENU = re.compile(r"\{\s*" + STRING + r"\s*,\s*" + STRING + r"\s*,\s*(k\w+)\s*\}")


@dataclass
class Entry:
    name: str
    caption: str
    shortcut: str
    hint: str


@dataclass
class Menu:
    name: str
    caption: str
    entries: list


def plain(caption):
    return caption.replace("&", "")


def letter(caption):
    """The letter that chooses a caption; "" if there is none."""
    at = caption.find("&")
    return caption[at + 1].upper() if at >= 0 else ""


def read_menus():
    source = MENUS.read_text(encoding="ascii")
    unquote = lambda text: re.sub(r"\\(.)", r"\1", text)
    arrays = {}
    for array, body in ARRAY.findall(source):
        entries = [Entry(*map(unquote, found)) for found in ENTRY.findall(body)]
        handlers = body.count("Run<")
        if len(entries) != handlers:
            sys.exit(f"{MENUS}: {array} has {handlers} commands, of which {len(entries)} were understood")
        arrays[array] = entries
    table = source[source.index("kMenus[]"):]
    menus = [Menu(name, caption, arrays[array]) for name, caption, array in MENU.findall(table)]
    if len(menus) != len(arrays):
        sys.exit(f"{MENUS}: {len(arrays)} arrays of entries, but {len(menus)} menus")
    return menus


def by_letters(menu, entry):
    if not letter(entry.caption):
        return ""
    return f"`Alt+{letter(menu.caption)}` `{letter(entry.caption)}`"


def row(*cells):
    return "| " + " | ".join(cells) + " |"


def menu_table(menu):
    lines = [f"### {plain(menu.caption)} menu", "",
             row("Command", "Key", "By letters", "What it does"), row("---", "---", "---", "---")]
    for entry in menu.entries:
        key = f"`{entry.shortcut}`" if entry.shortcut else ""
        lines.append(row(plain(entry.caption), key, by_letters(menu, entry), entry.hint))
    return "\n".join(lines)


def key_order(shortcut):
    """F keys, then with Shift, then with Ctrl; F keys by number."""
    modifier = {"": 0, "Shift": 1, "Ctrl": 2}[shortcut.rpartition("+")[0]]
    key = shortcut.rpartition("+")[2]
    return modifier, int(key[1:]) if re.fullmatch(r"F\d+", key) else 0, key


def shortcut_table(menus):
    rows = [(entry.shortcut, plain(menu.caption), plain(entry.caption))
            for menu in menus for entry in menu.entries if entry.shortcut]
    rows.sort(key=lambda found: key_order(found[0]))
    lines = [row("Key", "Command"), row("---", "---")]
    lines += [row(f"`{key}`", f"{menu} > {command}") for key, menu, command in rows]
    return "\n".join(lines)


def fill(text, marker, end, content):
    """`text` with everything between two markers replaced."""
    opening, closing = f"<!-- {marker} -->", f"<!-- {end} -->"
    start = text.find(opening)
    stop = text.find(closing, start)
    if start < 0 or stop < 0:
        sys.exit(f"{MANUAL}: no place for {opening}")
    return text[:start + len(opening)] + "\n" + content + "\n" + text[stop:]


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    menus = read_menus()
    old = MANUAL.read_text(encoding="utf-8")
    new = old
    for menu in menus:
        new = fill(new, f"menu {menu.name}", "/menu", menu_table(menu))
    new = fill(new, "shortcuts", "/shortcuts", shortcut_table(menus))
    if not sys.argv[1:]:
        MANUAL.write_text(new, encoding="utf-8")
    elif new != old:
        sys.stdout.writelines(difflib.unified_diff(
            old.splitlines(True), new.splitlines(True), "docs/manual.md", "the program's menus"))
        sys.exit("docs/manual.md is out of date: run tools/shortcut_table.py")


if __name__ == "__main__":
    main()

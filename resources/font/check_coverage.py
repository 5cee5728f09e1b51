#!/usr/bin/python3
"""Fails when a text of the program holds a character that the fonts can't show.

Reads the string literals of src/**/*.cpp and *.h. Every character of them has to be in Ovryn Hei, and those of the
Latin text in Ovryn Sans too. Needs python3-fonttools. To add a character: append it to characters.txt and
run make_fonts.py.
"""

import pathlib
import re
import sys

from fontTools.ttLib import TTFont

HERE = pathlib.Path(__file__).resolve().parent
SOURCES = HERE.parent.parent / "src"

# Line comments before literals, so that a quote inside a comment opens no text.
TOKEN = re.compile(r"""//[^\n]*|/\*.*?\*/|'(?:\\.|[^'\\\n])'|"((?:\\.|[^"\\\n])*)\"""", re.DOTALL)
ESCAPE = re.compile(r"\\(?:u([0-9a-fA-F]{4})|U([0-9a-fA-F]{8})|.)", re.DOTALL)


def shown_characters(source):
    """Characters of the source's string literals; `\\u` escapes count as what they stand for."""
    for match in TOKEN.finditer(source):
        literal = match.group(1)
        if literal is None:
            continue
        for escape in ESCAPE.finditer(literal):
            code = escape.group(1) or escape.group(2)
            if code:
                yield chr(int(code, 16))
        yield from ESCAPE.sub("", literal)


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else SOURCES
    hei = set(TTFont(HERE / "kuhei.TTF").getBestCmap())
    sans = set(TTFont(HERE / "OvrynSans.ttf").getBestCmap())
    files = sorted([*folder.rglob("*.cpp"), *folder.rglob("*.h")])
    missing, seen = 0, set()
    for path in files:
        characters = {c for c in shown_characters(path.read_text(encoding="utf-8")) if c.isprintable()}
        seen |= characters
        lacking = {"Ovryn Hei": {c for c in characters if ord(c) not in hei},
                   "Ovryn Sans": {c for c in characters if ord(c) < 0x100 and ord(c) not in sans}}
        for family, absent in lacking.items():
            if absent:
                missing += len(absent)
                print(f"{path}: {family} lacks {''.join(sorted(absent))}", file=sys.stderr)
    print(f"{len(files)} files, {len(seen)} characters, {missing} missing")
    return 1 if missing or not files else 0


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/env python3
"""Writes the SVG of every image into the folder given, under the path that its PNG has in resources/images."""

import pathlib
import sys

import controls
import window


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: draw_images.py FOLDER")
    folder = pathlib.Path(sys.argv[1])
    for name, text in {**window.images(), **controls.images()}.items():
        target = folder / f"{name}.svg"
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()

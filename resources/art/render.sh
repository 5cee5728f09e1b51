#!/bin/sh
# Draws every image anew: SVG from the scripts beside this file, PNG by rsvg-convert, the Windows icon by ImageMagick.
# The same sources give the same bytes. Needs python3, librsvg2-bin and imagemagick.
# Usage: render.sh [FOLDER]   (FOLDER: where the images go; resources/images when left out)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
images=${1:-$here/../images}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

PYTHONDONTWRITEBYTECODE=1 python3 "$here/draw_images.py" "$work/svg"
(cd "$work/svg" && find . -name '*.svg' | LC_ALL=C sort) | while read -r drawing; do
    target="$images/${drawing%.svg}.png"
    mkdir -p "$(dirname "$target")"
    rsvg-convert -o "$target" "$work/svg/$drawing"
done

for size in 16 32 48 256; do
    rsvg-convert -w "$size" -h "$size" -o "$work/$size.png" "$work/svg/icon.svg"
done
convert "$work/16.png" "$work/32.png" "$work/48.png" "$work/256.png" "$images/icon.ico"

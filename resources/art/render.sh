#!/bin/sh
# Renders every drawing of this folder to its image beside the folder: art/font/URL.svg to font/URL.png.
# The words of the drawings are laid again first; the rows of the images are written plain. Needs rsvg-convert and python3.
set -eu
cd "$(dirname "$0")"
find . -name '*.svg' -exec python3 letters.py {} +
find . -name '*.svg' | sort | while IFS= read -r drawing; do
    image="../${drawing%.svg}.png"
    mkdir -p "$(dirname "$image")"
    rsvg-convert --output "$image" "$drawing"
    python3 plainrows.py "$image"
done

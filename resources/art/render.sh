#!/bin/sh
# Renders every drawing of this folder to its image beside the folder: art/font/URL.svg to font/URL.png.
# The words of the drawings are laid again first. The rows of the images are stored without filters: flat drawings are smaller so,
# and sooner decoded. Needs rsvg-convert, optipng and python3.
# Usage: resources/art/render.sh
set -eu
. "$(dirname "$0")/../../tools/usage.sh"
no_words "$@"
cd "$(dirname "$0")"
find . -name '*.svg' -exec python3 letters.py {} +
find . -name '*.svg' | sort | while IFS= read -r drawing; do
    image="../${drawing%.svg}.png"
    mkdir -p "$(dirname "$image")"
    rsvg-convert --output "$image" "$drawing"
    optipng -quiet -f0 -nx "$image"
done

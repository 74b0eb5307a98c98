#!/bin/bash
# Makes the README's pictures from the real programs: docs/front.png, panel and stand-in side by side while a track plays,
# and docs/menu.gif, the menu turning. Needs the default build, Xvfb, xdotool and ffmpeg (tools/setup.sh test).
# Usage: tools/readme-pictures.sh
set -euo pipefail
. "$(dirname "$0")/usage.sh"
no_words "$@"
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
export VIREO_ROOT=$work/unit
cp -r tools/demo-unit/root "$VIREO_ROOT"

{
    echo "device usb"
    echo "key long-select"
    echo "wait 50"
    echo "picture menu-1"
    for entry in 2 3 4 5; do
        echo "enc 1"
        for frame in 0 1 2 3 4; do
            echo "wait 150"
            echo "picture menu-$entry$frame"
        done
    done
    for frame in 0 1 2 3 4 5 6 7 8 9; do # until the last one all but rests
        echo "wait 150"
        echo "picture menu-6$frame"
    done
} >"$work/menu.txt"
QT_QPA_PLATFORM=offscreen build/default/bin/vireo-tour "$work/menu.txt" "$work/menu" >/dev/null
ffmpeg -v error -y -framerate 20/3 -pattern_type glob -i "$work/menu/menu-*.png" \
    -vf "split[a][b];[a]palettegen=max_colors=128[p];[b][p]paletteuse=dither=none" docs/menu.gif

size=1056x536
exec 5>"$work/display"
Xvfb -displayfd 5 -noreset -screen 0 ${size}x24 -nolisten tcp 2>/dev/null &
until [ -s "$work/display" ]; do sleep 0.1; done
DISPLAY=:$(cat "$work/display")
export DISPLAY
build/default/bin/vireo 5 -qwindowgeometry +0+0 2>/dev/null &
build/default/bin/vireo-supervisor --music tools/demo-unit/music 2>/dev/null &
until front=$(xdotool search --onlyvisible --name "^Vireo supervisor$"); do sleep 0.1; done
sleep 2
xdotool mousemove --window "$front" 530 190 click 1
sleep 1.4
ffmpeg -v error -y -f x11grab -draw_mouse 0 -video_size $size -i "$DISPLAY" -frames:v 1 docs/front.png
ls -l docs/front.png docs/menu.gif

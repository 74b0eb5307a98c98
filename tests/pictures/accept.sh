#!/bin/bash
# Takes the pictures of every screen anew and accepts those that differ: look at them before you commit.
# A picture with letters that versions of the face draw differently stands in a folder for each version, not beside
# the folders; accept it with every version, that is, on every release.
# Usage: tests/pictures/accept.sh
set -euo pipefail
. "$(dirname "$0")/../../tools/usage.sh"
no_words "$@"
cd "$(dirname "$0")/../.."

cmake --preset default
cmake --build --preset default --target tst_pictures
QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 build/default/tests/tst_pictures >/dev/null 2>&1 || true

made=build/default/pictures
accepted=tests/pictures/expected
face=$(cat $made/face.txt)
rm -f $made/contact-sheet.png

accept() { # picture: into the folder where its like are
    local name=${1##*/} folder=$accepted
    compgen -G "$accepted/unifont-*/$name" >/dev/null && folder=$accepted/$face
    [ -e "$folder/$name" ] && [ ! -e "$made/failed/${name%.png}.difference.png" ] && return
    mkdir -p "$folder"
    cp "$1" "$folder"
}

for picture in "$made"/*.png; do
    accept "$picture"
done
for picture in "$accepted"/*.png "$accepted/$face"/*.png; do
    [ -e "$made/${picture##*/}" ] || rm -f "$picture"
done
cp $made/texts.txt $accepted
git status --short $accepted

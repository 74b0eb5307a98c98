#!/bin/bash
# Takes the pictures of every screen anew and accepts them as they are: look at them before you commit.
set -euo pipefail
cd "$(dirname "$0")/../.."

cmake --preset default
cmake --build --preset default --target vireo-tour
VIREO_ROOT=$(mktemp -d)
export VIREO_ROOT
trap 'rm -rf "$VIREO_ROOT"' EXIT
cp -r tools/demo-unit/root/. "$VIREO_ROOT"
accepted=tests/pictures/expected
rm -rf "$accepted"
QT_QPA_PLATFORM=offscreen build/default/bin/vireo-tour tools/demo-unit/tour.txt "$accepted"
rm "$accepted/contact-sheet.png"
git status --short "$accepted"

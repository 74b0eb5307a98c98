#!/bin/bash
# Makes the disk that brings hands into the unit: hands.sh IMAGE-FOLDER DISK [TREE]. The files of a TREE are on it, too.
set -euo pipefail
all=$(mktemp -d)
trap 'rm -rf "$all"' EXIT
cp "$(dirname "$0")/agent" "$all/"
cp -r "$1/try.modules/lib" "$all/"
[ -z "${3:-}" ] || cp -r "$3/." "$all/"
rm -f "$2"
mke2fs -q -t ext4 -d "$all" "$2" 300M

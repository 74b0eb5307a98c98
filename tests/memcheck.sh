#!/bin/bash
# Plays the demo's scripts to the real panel under valgrind. The default preset must have been built.
# Usage: tests/memcheck.sh
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
no_words "$@"
cd "$(dirname "$0")/.."

logs=$PWD/build/memcheck
rm -rf "$logs"
mkdir -p "$logs"
export VIREO_UNDER="valgrind --quiet --suppressions=$PWD/tests/valgrind.supp --log-file=$logs/%p.log"
QT_QPA_PLATFORM=offscreen build/default/tests/tst_demo_scripts
if [ "$(find "$logs" -type f -size +0 | wc -l)" -ne 0 ]; then
    echo "memcheck: findings in $logs" >&2
    cat "$logs"/*.log >&2
    exit 1
fi
[ -n "$(ls "$logs")" ] || { echo "memcheck: nothing was checked" >&2; exit 1; }

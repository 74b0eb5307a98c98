#!/bin/bash
# Builds the panel for speed and prints its figures beside those of something bare or well known: ./bench.sh.
# ./bench.sh quick runs every row for a moment, to see that all of it works. docs/performance.md explains the rows.
set -euo pipefail
cd "$(dirname "$0")"

tools/setup.sh build bench
cmake --preset bench
cmake --build --preset bench --target vireo-bench
export QT_QPA_PLATFORM=offscreen
exec build/bench/bin/vireo-bench "$@"

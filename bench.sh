#!/bin/bash
# Builds the panel for speed and prints its figures beside those of something bare or well known.
# With `quick` every row runs for a moment, to see that all of it works. A GROUP is named in bench/main.cpp; without any, all are
# measured. docs/performance.md explains the rows.
# Usage: ./bench.sh [quick] [GROUP...]
set -euo pipefail
. "$(dirname "$0")/tools/usage.sh"
cd "$(dirname "$0")"

groups=$(grep -o '{"[a-z]*", add' bench/main.cpp | cut -d'"' -f2)
for word in "$@"; do
    grep -qxF -- "$word" <<<"quick"$'\n'"$groups" || bad_usage "no group '$word', only" $groups
done

tools/setup.sh build bench
cmake --preset bench
cmake --build --preset bench --target vireo-bench
export QT_QPA_PLATFORM=offscreen
exec build/bench/bin/vireo-bench "$@"

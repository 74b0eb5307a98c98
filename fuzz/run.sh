#!/bin/bash
# Builds the fuzz targets, replays the known inputs of each and then lets each look for more.
# SECONDS is the time of each target, 30 by default, 0 for the known inputs alone; without targets it is all of
# them. Ends with 1 at the first finding and says which file reproduces it. New inputs worth keeping gather in
# build/fuzz/corpus; fuzz/minimize.sh takes them over into fuzz/corpus.
# Usage: fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
cd "$(dirname "$0")/.."
. fuzz/targets.sh
seconds=${1:-30}
shift || true
[[ $seconds =~ ^[0-9]+$ ]] || bad_usage "no number of seconds '$seconds'"
choose_targets "$@"

build_targets
for target in "${targets[@]}"; do
    mkdir -p build/fuzz/{corpus,findings}/"$target"
    unpack_known "$target"
    echo "== $target: known inputs"
    # Whole, however long: some are to go beyond a bound.
    run_target "$target" -runs=0 -max_len=0 build/fuzz/{known,seeds}/"$target"
    [ "$seconds" -gt 0 ] || continue
    echo "== $target: $seconds s"
    # Looking for leaks behind each input takes most of the time; here it is done once, at the end.
    run_target "$target" -max_total_time="$seconds" -dict=fuzz/"$target".dict -detect_leaks=0 -reload=0 \
        build/fuzz/{corpus,known,seeds}/"$target"
done

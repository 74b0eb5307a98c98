#!/bin/bash
# Rewrites fuzz/corpus: of the known inputs and those gathered by fuzz/run.sh the fewest and smallest that reach
# as much of the program.
# Usage: fuzz/minimize.sh [TARGET...]
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
cd "$(dirname "$0")/.."
. fuzz/targets.sh
choose_targets "$@"

build_targets
for target in "${targets[@]}"; do
    echo "== $target"
    fewest=$TMPDIR/$target
    mkdir -p "$fewest" build/fuzz/{corpus,findings}/"$target"
    unpack_known "$target"
    run_target "$target" -merge=1 -detect_leaks=0 \
        "$fewest" build/fuzz/{known,corpus,seeds}/"$target"
    pack_known "$fewest" "$target"
done
du -h --apparent-size fuzz/corpus/*

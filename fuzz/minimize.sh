#!/bin/bash
# Rewrites fuzz/corpus: of the known inputs and those gathered by fuzz/run.sh the fewest and smallest that reach
# as much of the program.
#
#     fuzz/minimize.sh [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
. fuzz/targets.sh
[ $# -gt 0 ] && targets=("$@")

build_targets
for target in "${targets[@]}"; do
    echo "== $target"
    fewest=$TMPDIR/$target
    mkdir -p "$fewest" build/fuzz/{corpus,findings}/"$target" fuzz/corpus/"$target"
    run_target "$target" -merge=1 -detect_leaks=0 \
        "$fewest" {fuzz/corpus,build/fuzz/corpus,build/fuzz/seeds}/"$target"
    rm -r fuzz/corpus/"$target"
    cp -r "$fewest" fuzz/corpus/"$target"
done
du -sh --apparent-size fuzz/corpus

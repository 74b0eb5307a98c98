# What run.sh and minimize.sh share; they source this file in the root of the repository.
# The known inputs of a target are one archive, fuzz/corpus/TARGET.tar.gz.

targets=(receive id3 flac picture ogg config ticker)

# The longest input of each in bytes: room for everything that its readers look at.
declare -A longest=([receive]=4096 [id3]=8192 [flac]=8192 [picture]=4096 [ogg]=4096 [config]=4096 [ticker]=200)

# choose_targets TARGET...: `targets` are these, all when none is named.
choose_targets() {
    local target
    for target in "$@"; do
        [ -n "${longest[$target]:-}" ] || bad_usage "no target '$target', only" "${targets[@]}"
    done
    [ $# -eq 0 ] || targets=("$@")
}

# Builds the targets, writes their seeds and makes room in memory for the files that they write, which goes also
# when a target dies.
build_targets() {
    tools/setup.sh build fuzz
    cmake --preset fuzz
    cmake --build --preset fuzz

    local memory=/dev/shm
    [ -w "$memory" ] || memory=${TMPDIR:-/tmp}
    TMPDIR=$(mktemp -d "$memory/vireo-fuzz-XXXXXX")
    trap 'rm -rf "$TMPDIR"' EXIT
    export TMPDIR XDG_RUNTIME_DIR=$TMPDIR
    export ASAN_OPTIONS=quarantine_size_mb=16
    export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1
    build/fuzz/bin/fuzz-seeds build/fuzz/seeds
}

# unpack_known TARGET: the known inputs of the target and nothing else are then in build/fuzz/known/TARGET.
unpack_known() {
    rm -rf build/fuzz/known/"$1"
    mkdir -p build/fuzz/known/"$1"
    tar -xzf fuzz/corpus/"$1".tar.gz -C build/fuzz/known/"$1"
}

# pack_known FOLDER TARGET: makes the files of a folder the known inputs of the target. The same files always
# give the same archive.
pack_known() {
    tar --sort=name --mtime=@0 --owner=0 --group=0 --numeric-owner --mode=u=rw,go=r -C "$1" \
        -cf - --files-from=<(cd "$1" && find . -type f -printf '%P\n') | gzip -9n > fuzz/corpus/"$2".tar.gz
}

# run_target TARGET ARGUMENT...: shows how it goes on; ends the script at a finding.
run_target() {
    local target=$1 program=build/fuzz/bin/fuzz-$1 log=build/fuzz/$1.log
    local interesting='^#[0-9]+\s+(INITED|pulse|DONE)|^FINDING|ERROR|SUMMARY|^Done|^MERGE-OUTER:.*new files'
    shift
    if ! nice -n 10 "$program" -rss_limit_mb=1024 -timeout=60 -max_len="${longest[$target]}" -close_fd_mask=2 \
        -artifact_prefix=build/fuzz/findings/"$target"/ "$@" 2>&1 \
        | tee "$log" | { grep --line-buffered -E "$interesting" || true; }; then
        local input
        input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
        if [ -n "$input" ]; then
            echo "fuzz: $target fails; reproduce it with: $program $input" >&2
        else
            echo "fuzz: $target fails, without an input of its own: see $log" >&2
        fi
        exit 1
    fi
}

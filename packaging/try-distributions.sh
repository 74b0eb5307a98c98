#!/bin/bash
# Tries the committed tree in bare roots of Debian's releases, as a newcomer meets it, and prints a table of what passed.
# Usage: packaging/try-distributions.sh [RELEASE...]      bookworm and trixie when none is named
# Needs root, debootstrap, the network for apt, TCP port 5000, 10 GB in build/distributions for each release, and hours.
# The roots are laid anew; they, the logs and the table stay there. The status is 0 when all passed everywhere.
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
cd "$(dirname "$0")/.."

# On the desk everything is built; the board has nothing but the packages and what they pull in.
tries=(
    "./run|desk|./run"
    "./test|desk|./test"
    "./test qt5|desk|./test qt5"
    "packages made|desk|packaging/make-deb.sh"
    "packages installed, panel started|board|apt-get update && apt-get install -y --no-install-recommends ./*.deb && packaging/try-panel.sh vireo"
    "armhf|desk|packaging/cross.sh armhf"
    "arm64|desk|packaging/cross.sh arm64"
)
releases=("${@:-bookworm}")
[ $# -gt 0 ] || releases+=(trixie)
for release in "${releases[@]}"; do
    [[ $release =~ ^(bookworm|trixie)$ ]] || bad_usage "no release '$release'"
done
place=$PWD/build/distributions
declare -A verdicts=()

lay_roots() { # release
    rm -rf "${place:?}/$1"
    mkdir -p "$place/$1"
    debootstrap --variant=minbase "$1" "$place/$1/desk"
    cp /etc/resolv.conf "$place/$1/desk/etc"
    mkdir "$place/$1/desk/vireo"
    git archive HEAD | tar -x -C "$place/$1/desk/vireo"
    cp -a "$place/$1/desk" "$place/$1/board"
}

# What a command mounts and starts goes with it.
in_root() { # root command
    unshare --mount --pid --fork bash -euc '
        mount -t proc proc "$0/proc"
        mount -t sysfs sysfs "$0/sys"
        mount --rbind /dev "$0/dev"
        exec env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$0" bash -c "cd /vireo && $1"
    ' "$1" "$2" </dev/null
}

verdict() { # status seconds log
    local log=${3#"$PWD/"} tests
    tests=$(sed -n 's/^100% tests passed, 0 tests failed out of \(.*\)/, \1 tests/p' "$3" | tail -n 1)
    if [ "$1" -ne 0 ]; then
        echo "FAILED: $log"
    elif grep -qE '\[-W|^CMake .*Warning' "$3"; then
        echo "WARNS: $log"
    else
        printf 'passed%s, %d:%02d\n' "$tests" $(($2 / 60)) $(($2 % 60))
    fi
}

try() { # release name root command
    local log="$place/$1/${2//[^a-z0-9]/}.log" begin=$SECONDS status=0
    in_root "$place/$1/$3" "$4" >"$log" 2>&1 || status=$?
    verdicts["$1 $2"]=$(verdict "$status" $((SECONDS - begin)) "$log")
    echo "$1, $2: ${verdicts["$1 $2"]}"
}

try_release() { # release
    local name root command
    lay_roots "$1" >"$place/$1.log" 2>&1
    for row in "${tries[@]}"; do
        IFS='|' read -r name root command <<<"$row"
        [ "$root" = desk ] || cp "$place/$1"/desk/vireo/build/package/*.deb "$place/$1/$root/vireo" || true # reported by what needs them
        try "$1" "$name" "$root" "$command"
    done
}

table() {
    local row release
    echo "|$(printf ' | %s' "${releases[@]}") |"
    echo "|---$(printf '|---%.0s' "${releases[@]}")|"
    for row in "${tries[@]}"; do
        echo -n "| ${row%%|*}"
        for release in "${releases[@]}"; do
            echo -n " | ${verdicts["$release ${row%%|*}"]}"
        done
        echo " |"
    done
}

mkdir -p "$place"
for release in "${releases[@]}"; do
    try_release "$release"
done
table | tee "$place/table.md"
! grep -qE 'FAILED|WARNS' "$place/table.md"

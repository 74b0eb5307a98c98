#!/bin/bash
# Boots the unit and tries it, and prints a table.
# A ROW is a part of a row's name; without any, all rows are tried. TIMES is how often the plug is pulled; without, 50 times.
# ACCEL=kvm lets this machine's processor run the unit.
# PATIENCE=N waits N times as long on a slow machine. What differs is left in build/unit/ARCH/try.
# Usage: packaging/unit/try.sh [amd64|arm64|armhf] [quick] [TIMES] [ROW...]
set -euo pipefail
. "$(dirname "$0")/../../tools/usage.sh"
cd "$(dirname "$0")/../.."

arch=amd64
case "${1:-}" in amd64 | arm64 | armhf) arch=$1 && shift ;; esac
rows=$(sed -n 's/^    ("\([^"]*\)", .*/\1/p; s/^[A-Z]* = "\(.*\)"$/\1/p' packaging/unit/try/main.py)
for word in "$@"; do
    [[ $word =~ ^([0-9]+|quick)$ ]] || grep -qF -- "$word" <<<"$rows" || bad_usage "no row has '$word' in its name"
done
out=build/unit/$arch
preset=$([ "$arch" = amd64 ] && echo default || echo "$arch")
# Others in tests/journeys need what is not there: programs that make music, the display and the keyboards of a desk, or a processor that is
# faster than an emulated one.
tests=(tst_networkrestart tst_start tst_random_journey tst_demo_scripts tst_front_panel tst_faults tst_service)
programs=(vireo vireo-supervisor)

tools/setup.sh build test unit
[ -e "$out/disk" ] || packaging/unit/build.sh "$arch"
cmake --preset default >/dev/null
cmake --build --preset default --target vireo-supervisor
cmake --build --preset "$preset" --target "${programs[@]}" "${tests[@]}"

# The package of the unit, and the same as the next version.
make_packages() { # FOLDER
    cp "$out/vireo.deb" "$1/older.deb"
    rm -rf "$out/newer"
    dpkg-deb -R "$1/older.deb" "$out/newer"
    sed -i 's/^Version: .*/&.1/' "$out/newer/DEBIAN/control"
    dpkg-deb --root-owner-group -b "$out/newer" "$1/newer.deb" >/dev/null
    rm -r "$out/newer"
}

# The tests with what they find beside the sources, as they lie here.
copy_tests() { # FOLDER
    local build=$1/source/build/$preset name
    mkdir -p "$build"/{bin,tests} "$1/lib" "$1/source"
    cp -r --parents tools/demo-unit tests/mainwindow/modes.txt "$1/source/"
    for name in "${programs[@]/#/bin/}" "${tests[@]/#/tests/}"; do
        "$strip" -o "$build/$name" "build/$preset/$name"
    done
    cp -L "$libraries"/libQt6Test.so.6 "$1/lib/"
}

declare -A strips=([amd64]=strip [arm64]=aarch64-linux-gnu-strip [armhf]=arm-linux-gnueabihf-strip)
declare -A triplets=([amd64]=x86_64-linux-gnu [arm64]=aarch64-linux-gnu [armhf]=arm-linux-gnueabihf)
strip=${strips[$arch]}
libraries=$([ "$arch" = amd64 ] || echo "build/sysroot/$arch")/usr/lib/${triplets[$arch]}

tree=$out/try.tree
rm -rf "$tree"
mkdir -p "$tree" "$out/try"
make_packages "$tree"
copy_tests "$tree"
packaging/unit/try/hands.sh "$out" "$out/try/try.disk" "$tree"
rm -r "$tree"
exec python3 -B packaging/unit/try/main.py "$arch" "$PWD" "$@"

#!/bin/bash
# Installs the Debian packages that the named purposes need and that are not there yet: build, test, qt5, check,
# fuzz, package, cross, bench, unit. Does nothing, and asks for no rights, when all are there.
# Usage: tools/setup.sh PURPOSE...
set -euo pipefail
. "$(dirname "$0")/usage.sh"

declare -A packages=(
    [build]="g++ cmake ninja-build qt6-base-dev qt6-5compat-dev qt6-scxml-dev libjpeg-dev libpng-dev fonts-unifont"
    [test]="libgif-dev lame eyed3 ffmpeg flac vorbis-tools iproute2 net-tools librsvg2-bin python3 tshark xvfb openbox xdotool x11-utils"
    [qt5]="qtbase5-dev"
    [check]="clang-format clang-tidy valgrind shellcheck pyflakes3"
    [fuzz]="clang libclang-rt-dev libgif-dev"
    [package]="dpkg-dev fakeroot lintian"
    [cross]="g++-arm-linux-gnueabihf g++-aarch64-linux-gnu qemu-user-static dpkg-dev"
    [bench]="libbenchmark-dev libtag1-dev lcdproc pkgconf"
    [unit]="mmdebstrap e2fsprogs kmod cpio dpkg-dev fakeroot qemu-system-x86 qemu-system-arm qemu-system-gui dosfstools mtools python3"
)

missing=()
for purpose in "$@"; do
    [ -n "${packages[$purpose]:-}" ] || bad_usage "no purpose '$purpose'"
done
for purpose in "$@"; do
    for package in ${packages[$purpose]}; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q "ok installed" || missing+=("$package")
    done
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: please install as root: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"

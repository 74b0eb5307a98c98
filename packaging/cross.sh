#!/bin/bash
# Builds the panel for a board and tries it in an emulator.
# The program is build/ARCH/bin/vireo.
# Usage: packaging/cross.sh armhf|arm64
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
cd "$(dirname "$0")/.."

declare -A emulators=([armhf]=qemu-arm-static [arm64]=qemu-aarch64-static)
arch=${1:-}
emulator=${emulators[${arch:-none}]:-}
[ $# -eq 1 ] || bad_usage "takes one architecture"
[ -n "$emulator" ] || bad_usage "no architecture '$arch'"

# What depends on the width of a size, the sign of a character, alignment and byte order, the modes, and one journey. The
# emulator lacks the call with which the toolkit starts programs, so nothing here can restart a network.
tests=(tst_packet tst_paparser tst_receive tst_servicemanager
    tst_qtagparser tst_qmp3parser tst_qflacparser tst_qoggparser tst_coverpicture tst_damagedmedia
    tst_pictureflow tst_pictureflowturns tst_pictureflowanimator tst_pictureflowrenderer tst_pictureflowsurface
    tst_mainwindow tst_modes tst_modewiring tst_random_journey)

echo "Building for $arch and testing in an emulator: about a quarter of an hour on two cores."
tools/setup.sh build cross
packaging/sysroot.sh "$arch"
cmake --preset "$arch"
cmake --build --preset "$arch" --target vireo "${tests[@]}"
sysroot=$PWD/build/sysroot/$arch
emulate=("$emulator" -L "$sysroot" -E "QT_PLUGIN_PATH=$(echo "$sysroot"/usr/lib/*/qt6/plugins)")
packaging/try-panel.sh "${emulate[@]}" "build/$arch/bin/vireo"
ctest --preset "$arch" -R "^($(IFS='|' && echo "${tests[*]}"))\$"

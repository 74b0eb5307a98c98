#!/bin/bash
# Makes the kernel and the disk of a whole unit from Debian's packages and the panel's own, in build/unit/ARCH.
# A package of the panel that is there already is taken with PANEL_DEB=FILE.
# Usage: packaging/unit/build.sh [amd64|arm64|armhf]
set -euo pipefail
shopt -s inherit_errexit # a package is not made of what an earlier build left
. "$(dirname "$0")/../../tools/usage.sh"
cd "$(dirname "$0")/../.."
here=packaging/unit
arch=${1:-amd64}
release=bookworm
disk_size=600M

declare -A kernels=([amd64]=linux-image-amd64 [arm64]=linux-image-arm64 [armhf]=linux-image-armmp-lpae)
declare -A emulators=([arm64]=qemu-aarch64 [armhf]=qemu-arm)

fail() {
    echo "unit: $*" >&2
    exit 1
}

rows() { # the lines of a list without its comments
    sed '/^#/d;/^$/d' "$here/$1"
}

# Scripts of a foreign architecture's packages run in the emulator of single programs, when the system knows it.
check_emulator() {
    local name=${emulators[$arch]:-} known=/proc/sys/fs/binfmt_misc
    [ -z "$name" ] || [ "$(dpkg --print-architecture)" = "$arch" ] || [ -e "$known/$name" ] ||
        fail "this system starts no programs of $arch; as root: cat /usr/lib/binfmt.d/$name.conf >$known/register"
}

# A foreign package cannot look up what its program needs: that is the table of docs/unit.md.
foreign_package() {
    local needs="libqt6widgets6, libqt6network6, libqt6statemachine6, libqt6core5compat6, libjpeg62-turbo, libpng16-16"
    needs+=", fonts-unifont, net-tools, systemd"
    tools/setup.sh build cross package
    packaging/sysroot.sh "$arch"
    cmake --preset "$arch"
    cmake --build --preset "$arch" --target vireo
    (cd "build/$arch" && cpack -G DEB -D CPACK_COMPONENTS_ALL=panel -D CPACK_DEBIAN_PACKAGE_ARCHITECTURE="$arch" \
        -D CPACK_DEBIAN_PACKAGE_SHLIBDEPS=OFF -D CPACK_DEBIAN_PANEL_PACKAGE_DEPENDS="$needs")
}

panel_package() {
    local folder=build/package
    if [ -n "${PANEL_DEB:-}" ]; then
        echo "$PANEL_DEB"
        return
    fi
    if [ "$(dpkg --print-architecture)" = "$arch" ]; then
        packaging/make-deb.sh >&2
    else
        folder=build/$arch
        foreign_package >&2
    fi
    ls "$folder"/vireo_*_"$arch".deb
}

# The lists of updates of an architecture are not always whole on the server; the release itself is.
drop_missing_updates='APT_CONFIG=$MMDEBSTRAP_APT_CONFIG apt-get update -qq --error-on=any || {
    echo "unit: going on without the security updates, of which no list can be fetched" >&2
    sed -i /security/d "$1/etc/apt/sources.list"
}'

# The names in a package's dependencies; of alternatives the first.
dependencies() {
    dpkg-deb -f "$1" Depends | tr ',' '\n' | sed 's/|.*//;s/(.*//;s/ //g'
}

make_root() { # PACKAGE: the disk's files as $out/root.tar, the kernel's package as $out/linux-image.deb
    local include exclude=()
    include=$( (rows packages.list; dependencies "$1") | paste -sd,)
    while IFS= read -r pattern; do
        exclude+=("--dpkgopt=path-exclude=$pattern")
    done < <(rows excludes.list)
    mmdebstrap --quiet --architectures="$arch" --variant=essential --include="$include" --dpkgopt=force-unsafe-io "${exclude[@]}" \
        --skip=download/empty --skip=essential/unlink \
        --setup-hook="$drop_missing_updates" \
        --setup-hook="mkdir -p \"\$1/var/cache/apt/archives\"; cp -n $cache/*.deb \"\$1/var/cache/apt/archives/\" 2>/dev/null || true" \
        --customize-hook="cp -n \"\$1\"/var/cache/apt/archives/*.deb $cache/ || true" \
        --customize-hook="$here/customize.sh \"\$1\" $1 ${kernels[$arch]} $cache" \
        $release "$out/root.tar"
    mv "$cache/linux-image.deb" "$out/"
}

# The modules of one use, each after those that it depends on, as paths.
module_files() { # USE...
    local use name
    for use in "$@"; do
        rows modules.list | sed -n "s/^$use //p" | while IFS= read -r name; do
            modprobe -d "$kernel_root" -S "$version" --show-depends "$name" || exit 1
        done
    done | awk '/^insmod/ && !seen[$2]++ {print $2}'
}

unpack_kernel() {
    rm -rf "$kernel_root"
    dpkg-deb -x "$out/linux-image.deb" "$kernel_root"
    version=$(ls "$kernel_root/lib/modules")
    depmod -b "$kernel_root" "$version"
    cp "$kernel_root"/boot/vmlinuz-* "$out/kernel"
}

make_initrd() {
    local tree=$out/initrd.tree file files
    rm -rf "$tree"
    mkdir -p "$tree"/{bin,dev,proc,sys,unit,modules}
    dpkg-deb --fsys-tarfile "$cache"/busybox-static_*_"$arch".deb | tar -x -C "$tree" ./bin/busybox
    cp "$here/init" "$tree/init"
    files=$(module_files boot)
    for file in $files; do
        cp "$file" "$tree/modules/"
        basename "$file" >>"$tree/modules/order"
    done
    (cd "$tree" && find . | sort | cpio --quiet -o -H newc -R 0:0) | gzip -1 >"$out/initrd"
}

# Copies modules and their index into the tree of a disk.
install_modules() { # TREE USE...
    local target=$1/lib/modules/$version file files
    shift
    files=$(module_files "$@")
    for file in $files; do
        install -D -m 644 "$file" "$target/${file#"$kernel_root/lib/modules/$version/"}"
    done
    cp "$kernel_root/lib/modules/$version"/modules.{builtin,builtin.modinfo,order} "$target/"
    depmod -b "${target%/lib/modules/*}" "$version"
}

make_disk() {
    local tree=$out/tree
    rm -rf "$tree"
    mkdir -p "$tree"
    tar -x -f "$out/root.tar" -C "$tree" --exclude='./dev/*'
    install_modules "$tree/usr" boot unit
    rm -f "$out/disk"
    mke2fs -q -t ext4 -L unit -d "$tree" "$out/disk" $disk_size
    rm -rf "$out/try.modules"
    mkdir -p "$out/try.modules"
    install_modules "$out/try.modules" boot try "try-$arch"
}

report() {
    local tree=$out/tree
    echo "The unit for $arch, kernel $version:"
    du -h --apparent-size "$out/kernel" "$out/initrd"
    echo "$(du -sh "$tree" | cut -f1) on a disk of $disk_size, the largest folders:"
    (cd "$tree" && du -h -d 3 usr/lib usr/share usr/bin | sort -rh | sed -n 1,12p)
    echo "$(grep -c '^Package:' "$tree/var/lib/dpkg/status") packages: $(sed -n 's/^Package: //p' "$tree/var/lib/dpkg/status" | paste -sd' ')"
}

[ -n "${kernels[$arch]:-}" ] || bad_usage "no kind of unit '$arch'"
tools/setup.sh unit
check_emulator
cache=build/unit/cache/$arch
out=build/unit/$arch
kernel_root=$PWD/$out/linux # the programs for modules print whole paths
mkdir -p "$cache" "$out"
panel=$(panel_package)
echo "Making the unit's disk with $(basename "$panel")."
cp "$panel" "$out/vireo.deb"
make_root "$panel"
unpack_kernel
make_initrd
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(fakeroot)
export -f make_disk install_modules module_files rows
export arch out disk_size version kernel_root here
"${as_root[@]}" bash -euo pipefail -c make_disk
report
rm -rf "$out/root.tar" "$out/initrd.tree" "$out/tree" "$kernel_root"

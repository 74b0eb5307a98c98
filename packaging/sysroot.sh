#!/bin/bash
# Lays out what a board of the named Debian architecture has to build and run against, under build/sysroot/ARCH.
# The packages are only downloaded and unpacked: nothing is installed on this machine, and no rights are needed.
# Usage: packaging/sysroot.sh armhf|arm64
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
cd "$(dirname "$0")/.."
[ $# -eq 1 ] || bad_usage "takes one architecture"
arch=$1
[[ $arch =~ ^(armhf|arm64)$ ]] || bad_usage "no architecture '$arch'"

packages=(libc6-dev libstdc++6 qt6-base-dev qt6-5compat-dev qt6-scxml-dev qt6-qpa-plugins
    libjpeg-dev libpng-dev libgif-dev fonts-unifont)
sysroot=$PWD/build/sysroot/$arch
state=$PWD/build/sysroot/$arch.apt

if [ "$(cat "$sysroot/.packages" 2>/dev/null)" = "${packages[*]}" ]; then
    echo "The sysroot $sysroot is there; remove it to lay it out anew."
    exit
fi

# A package manager's state of its own: the host's sources and keys, another architecture, nothing installed.
mkdir -p "$state"/{lists/partial,cache/archives/partial}
: >"$state/status"
cat >"$state/apt.conf" <<END
#clear APT::Architectures;
APT::Architecture "$arch";
APT::Architectures { "$arch"; };
APT::Install-Recommends "false";
APT::Sandbox::User "";
Acquire::Languages "none";
Dir::State "$state";
Dir::State::status "$state/status";
Dir::Cache "$state/cache";
END
export APT_CONFIG=$state/apt.conf
apt-get update -q || echo "Going on with the package lists that could be fetched." >&2
apt-get install -q -y --download-only "${packages[@]}"

rm -rf "$sysroot"
mkdir -p "$sysroot"/usr/{bin,sbin,lib}
for folder in bin sbin lib; do
    ln -s usr/$folder "$sysroot/$folder"
done
for package in "$state"/cache/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar -x -C "$sysroot" --keep-directory-symlink --no-same-owner
done
# An absolute link would lead out of the sysroot.
find "$sysroot" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
    ln -snfr "$sysroot$(readlink "$link")" "$link"
done
rm -rf "$state/cache"
echo "${packages[*]}" >"$sysroot/.packages"
du -sh "$sysroot"

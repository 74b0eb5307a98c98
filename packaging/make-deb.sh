#!/bin/bash
# Builds the panel with the distribution's flags and makes its Debian package in build/package.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup.sh build package
eval "$(dpkg-buildflags --export=sh)"
export LDFLAGS="$LDFLAGS -Wl,-z,now"
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
umask 022
cmake --preset package
cmake --build --preset package --target vireo
rm -f build/package/vireo_*.deb
(cd build/package && cpack -G DEB)
lintian --fail-on error build/package/vireo_*.deb
ls -l build/package/vireo_*.deb

#!/bin/bash
# Builds the panel and its stand-in supervisor with the distribution's flags and makes their Debian packages, for the
# release that it runs on, in build/package.
# Usage: packaging/make-deb.sh
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
no_words "$@"
cd "$(dirname "$0")/.."

tools/setup.sh build package
eval "$(dpkg-buildflags --export=sh)"
export LDFLAGS="$LDFLAGS -Wl,-z,now"
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
umask 022
cmake --preset package
cmake --build --preset package --target vireo vireo-supervisor
rm -f build/package/*.deb
(cd build/package && cpack -G DEB)
lintian --fail-on error,warning build/package/*.deb
ls -l build/package/*.deb

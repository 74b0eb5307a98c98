#!/bin/bash
# Starts a panel without a display on an empty unit, asks it for its mode and ends it.
# Usage: packaging/try-panel.sh COMMAND..., for example packaging/try-panel.sh /usr/bin/vireo
set -euo pipefail
. "$(dirname "$0")/../tools/usage.sh"
[ $# -gt 0 ] || bad_usage "takes the command that starts the panel"
command -v "$1" >/dev/null || bad_usage "no program '$1'"

folder=$(mktemp -d)
VIREO_ROOT=$folder QT_QPA_PLATFORM=offscreen "$@" &
panel=$!
trap 'kill $panel 2>/dev/null; wait $panel || true; rm -r "$folder"' EXIT

request='\x0d\x00\x01\x00\x08'
no_mode_yet=0d000100ff
for ((i = 0; i < 600; ++i)); do
    if { exec 3<>/dev/tcp/127.0.0.1/5000; } 2>/dev/null; then
        printf "$request" >&3
        answer=$(timeout 30 head -c 5 <&3 | od -An -tx1 | tr -d ' ')
        break
    fi
    kill -0 $panel || exit 1
    sleep 0.1
done
if [ "${answer:-}" != $no_mode_yet ]; then
    echo "try-panel: asked for the mode, got '${answer:-}', not '$no_mode_yet'" >&2
    exit 1
fi
echo "The panel answered: $answer"

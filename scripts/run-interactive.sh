#!/usr/bin/env bash
# The reference host in a real window: the pre-scan dialog over the host,
# the synthetic tape in the virtual deck, or the raw DV file TAPE names.
# Needs a display.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
if [ -z "${DISPLAY:-}" ]; then
    echo "make run needs a display (DISPLAY is not set); 'make demo' runs the same flow headless." >&2
    exit 1
fi
"$(dirname "$0")/wine-prefix.sh"
mkdir -p "$QV_BUILD/run"
export QVPRESCAN_APPDATA="${QVPRESCAN_APPDATA:-Z:${QV_BUILD//\//\\}\\run}"
tape=()
[ -n "${TAPE:-}" ] && tape=(--tape "Z:$(realpath "$TAPE" | tr / '\\')")
exec "$WINE64" "$QV_BIN/qvrefhost.exe" --speed "${SPEED:-120}" "${tape[@]}" "$@"

#!/usr/bin/env bash
# The main job, headless: the reference host scans the synthetic tape through
# the module and leaves its screenshot and files in build/demo/.  Runs inside
# scripts/with-display.sh.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
demo="$QV_BUILD/demo"
rm -rf "$demo"
mkdir -p "$demo/appdata" "$demo/captures"
win() { echo "Z:${1//\//\\}"; }
export QVPRESCAN_APPDATA="$(win "$demo/appdata")"
# The capture folder of the demo's settings: the captured files land in build/demo/.
printf '[MainSec]\r\nPSCaptureFileName=%s\\Tape.avi\r\nSavePSFDir=%s\r\n' \
    "$(win "$demo/captures")" "$(win "$demo")" > "$demo/appdata/qvPreScan.ini"
start=$(date +%s.%N)
"$WINE64" "$QV_BIN/qvrefhost.exe" --headless --out "$(win "$demo")" "$@"
end=$(date +%s.%N)
if [ -f "$demo/prescan.bmp" ]; then
    /usr/bin/convert "$demo/prescan.bmp" "$demo/prescan.png" && rm -f "$demo/prescan.bmp"
fi
if [ -f "$demo/summer.psf" ]; then
    echo "the saved scene list, as qvpsf shows it:"
    "$QV_BIN/qvpsf" show "$demo/summer.psf" --tv 2 | head -12
    echo "  ..."
fi
echo "settings written by the module:"
sed 's/^/  /' "$demo/appdata/qvPreScan.ini" | tr -d '\r'
awk -v s="$start" -v e="$end" -v d="$demo" 'BEGIN { printf "demo finished in %.1f s; results in %s\n", e - s, d }'

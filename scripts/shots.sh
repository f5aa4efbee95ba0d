#!/usr/bin/env bash
# Screenshots of the pre-scan dialog for the documentation, into docs/.
# Runs inside scripts/with-display.sh.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
work="$QV_BUILD/shots"
rm -rf "$work"
mkdir -p "$work/appdata" "$work/captures" "$QV_ROOT/docs"
win() { echo "Z:${1//\//\\}"; }
export QVPRESCAN_APPDATA="$(win "$work/appdata")"
printf '[MainSec]\r\nPSCaptureFileName=%s\\Tape.avi\r\nSavePSFDir=%s\r\n' \
    "$(win "$work/captures")" "$(win "$work")" > "$work/appdata/qvPreScan.ini"
"$WINE64" "$QV_BIN/qvrefhost.exe" --headless --out "$(win "$work")" --shots "$(win "$work")"
for bmp in "$work"/*.bmp; do
    name=$(basename "$bmp" .bmp)
    [ "$name" = prescan ] && continue
    /usr/bin/convert "$bmp" "$QV_ROOT/docs/$name.png"
    echo "docs/$name.png"
done
# The dialog after scanning the demo's DV tape: thumbnails decoded from its frames.
dv="$work/dv"
mkdir -p "$dv/appdata" "$dv/captures"
export QVPRESCAN_APPDATA="$(win "$dv/appdata")"
printf '[MainSec]\r\nPSCaptureFileName=%s\\Tape.dv\r\nSavePSFDir=%s\r\n' \
    "$(win "$dv/captures")" "$(win "$dv")" > "$dv/appdata/qvPreScan.ini"
"$WINE64" "$QV_BIN/qvrefhost.exe" --headless --out "$(win "$dv")" --tape "$(win "$("$QV_ROOT/scripts/demo-tape.sh")")"
/usr/bin/convert "$dv/prescan.bmp" "$QV_ROOT/docs/dv-demo.png"
echo "docs/dv-demo.png"

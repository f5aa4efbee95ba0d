#!/usr/bin/env bash
# The main job, headless: the reference host scans a tape through the module,
# marks and captures three scenes, saves the list and prints it with qvpsf.
#   make demo             the synthetic tape (build/demo/), then a DV tape of a
#                         dozen recordings made by ffmpeg (build/demo/dv/)
#   make demo TAPE=F.dv   your own raw DV file alone (build/demo/)
# Runs inside scripts/with-display.sh.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
win() { echo "Z:${1//\//\\}"; }

# job FOLDER [qvrefhost options]: one headless run, its results in FOLDER.
job() {
    local out="$1"
    shift
    rm -rf "$out"
    mkdir -p "$out/appdata" "$out/captures"
    export QVPRESCAN_APPDATA="$(win "$out/appdata")"
    # The capture folder of the job's settings: the captured files land beside its results.
    printf '[MainSec]\r\nPSCaptureFileName=%s\\Tape.avi\r\nSavePSFDir=%s\r\n' \
        "$(win "$out/captures")" "$(win "$out")" > "$out/appdata/qvPreScan.ini"
    local start end tv
    start=$(date +%s.%N)
    "$WINE64" "$QV_BIN/qvrefhost.exe" --headless --out "$(win "$out")" "$@" | tr -d '\r' | tee "$out/host.log"
    end=$(date +%s.%N)
    if [ -f "$out/prescan.bmp" ]; then
        /usr/bin/convert "$out/prescan.bmp" "$out/prescan.png" && rm -f "$out/prescan.bmp"
    fi
    tv=$(sed -n 's/.*TV standard \([0-9]\).*/\1/p' "$out/host.log")
    for list in "$out"/*.psf; do
        echo "the saved scene list, as qvpsf shows it:"
        "$QV_BIN/qvpsf" show "$list" --tv "${tv:-2}" | head -16
        echo "  ..."
    done
    echo "captured files:"
    ls -l "$out/captures" | tail -n +2 | sed 's/^/  /'
    echo "settings written by the module:"
    sed 's/^/  /' "$out/appdata/qvPreScan.ini" | tr -d '\r'
    awk -v s="$start" -v e="$end" -v d="$out" 'BEGIN { printf "finished in %.1f s; results in %s\n\n", e - s, d }'
}

if [ -n "${TAPE:-}" ]; then
    [ -f "$TAPE" ] || { echo "TAPE=$TAPE: no such file" >&2; exit 1; }
    job "$QV_BUILD/demo" --tape "$(win "$(realpath "$TAPE")")" "$@"
else
    echo "== the synthetic tape"
    job "$QV_BUILD/demo" "$@"
    echo "== a DV tape made by ffmpeg: a dozen recordings on different days"
    job "$QV_BUILD/demo/dv" --tape "$(win "$("$(dirname "$0")/demo-tape.sh")")" "$@"
fi

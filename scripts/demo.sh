#!/usr/bin/env bash
# The main job, headless: the reference host drives the module and leaves
# what it made in build/demo/.  Runs inside scripts/with-display.sh.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
demo="$QV_BUILD/demo"
rm -rf "$demo"
mkdir -p "$demo/appdata"
export QVPRESCAN_APPDATA="Z:${demo//\//\\}\\appdata"
start=$(date +%s.%N)
"$WINE64" "$QV_BIN/qvrefhost.exe" --headless --out "Z:${demo//\//\\}"
end=$(date +%s.%N)
awk -v s="$start" -v e="$end" -v d="$demo" 'BEGIN { printf "demo finished in %.1f s; results in %s\n", e - s, d }'

#!/usr/bin/env bash
# Runs a command inside one Xvfb session with a warm wineserver around it.
# Usage: with-display.sh COMMAND [ARGS...]
set -uo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
if [ -z "${QV_INSIDE_DISPLAY:-}" ]; then
    export QV_INSIDE_DISPLAY=1
    if [ -n "${DISPLAY:-}" ] && [ -z "${QV_FORCE_XVFB:-}" ]; then
        exec "$0" "$@"
    fi
    exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi
source "$here/wine-env.sh"
"$here/wine-prefix.sh"
"$WINESERVER" -p
# Warm Wine's background services first, so they do not inherit the command's pipes.
"$WINE64" cmd /c exit </dev/null >/dev/null 2>&1
"$@"
rc=$?
"$WINESERVER" -k 2>/dev/null
exit $rc

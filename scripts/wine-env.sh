# Sourced by the scripts that run Windows programs: the project's private Wine prefix.
# QV_BUILD may point elsewhere; by default the prefix lives in build/.
QV_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
QV_BUILD="${QV_BUILD:-$QV_ROOT/build}"
export WINEPREFIX="${WINEPREFIX_OVERRIDE:-$QV_BUILD/wineprefix}"
export WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="mscoree,mshtml="
WINE64=/usr/lib/wine/wine64
WINESERVER=/usr/lib/wine/wineserver
# The shipped DLLs, for test executables that live elsewhere.
QV_BIN="${QV_BIN:-$QV_BUILD/bin}"
export WINEPATH="Z:${QV_BIN//\//\\}"

#!/usr/bin/env bash
# Creates the private Wine prefix once: boot, registry settings, fonts.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
stamp="$WINEPREFIX/.qv-ready"
link_fonts() {
    # Wine's own fonts are not found by Debian's build: link them where Windows looks.
    local fonts="$WINEPREFIX/drive_c/windows/Fonts"
    mkdir -p "$fonts"
    find "$fonts" -maxdepth 1 -xtype l -delete
    for f in /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.ttc /usr/share/wine/fonts/*.fon; do
        [ -e "$f" ] && ln -sf "$f" "$fonts/"
    done
    return 0
}
if [ -f "$stamp" ]; then link_fonts; exit 0; fi
mkdir -p "$WINEPREFIX"
echo "Setting up the Wine prefix in $WINEPREFIX (once)..."
"$WINE64" wineboot -i </dev/null >/dev/null 2>&1 || true
reg() { "$WINE64" reg add "$@" /f </dev/null >/dev/null 2>&1; }
# Without a window manager, an unmanaged X11 driver avoids a 2 s wait per destroyed window.
reg 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N
# A crash prints a backtrace and exits rather than waiting on a dialog.
reg 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0
"$WINESERVER" -w
link_fonts
touch "$stamp"

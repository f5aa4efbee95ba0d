#!/usr/bin/env bash
# The host developer's kit as a new user meets it: packed into a temporary
# folder, unpacked into an empty one, the sample built against the kit alone
# with mingw-w64 gcc and with clang, and run headless under Wine; the
# Microsoft-format import library linked by lld-link; the Windows qvpsf run.
# Runs inside scripts/with-display.sh (make test).
set -u
root="$(cd "$(dirname "$0")/../.." && pwd)"
source "$root/scripts/wine-env.sh"
unset WINEPATH  # only what the kit holds
fail=0
check() { if eval "$2"; then echo "ok: $1"; else echo "FAILED: $1"; fail=1; fi; }
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT

"$root/scripts/sdk.sh" "$tmp/out" >/dev/null || { echo "FAILED: packing the kit"; exit 1; }
zip=$(ls "$tmp"/out/qvPreScan-sdk-*.zip)
version=$(sed -n 's/^#define QV_VERSION_TEXT "\(.*\)"$/\1/p' "${QV_WIN_BUILD:-$root/build/win}/generated/qvVersion.h")
check "the kit is named after the build's version" '[ "$(basename "$zip")" = "qvPreScan-sdk-$version.zip" ]'
mkdir "$tmp/user" && (cd "$tmp/user" && unzip -q "$zip")
kit="$tmp/user/qvPreScan-sdk-$version"
cd "$kit" || exit 1
check "the kit holds what a host needs and nothing else" '[ "$(find . -type f | sort | tr "\n" " ")" = "./README.txt ./bin/qvCaptureRC.dll ./bin/qvPreScan.dll ./bin/qvpsf.exe ./docs/HOST-GUIDE.md ./include/qvPreScan.h ./lib/libqvPreScan.dll.a ./lib/qvPreScan.def ./lib/qvPreScan.lib ./res/ResourceIds.h ./res/qvCaptureRC.cpp ./res/qvCaptureRC.def ./res/qvCaptureRC.rc ./samples/minimal-host.c " ]'
# Both DLLs carry the build's version: as numbers, and as the texts of the file's properties.
for dll in bin/qvPreScan.dll bin/qvCaptureRC.dll; do
    numbers=$(python3 -c 'import struct, sys; d = open(sys.argv[1], "rb").read(); i = d.index(b"\xbd\x04\xef\xfe")
a, b, c, e = struct.unpack_from("<4I", d, i + 8); print("%d.%d.%d %d.%d.%d" % (a >> 16, a & 0xFFFF, b >> 16, c >> 16, c & 0xFFFF, e >> 16))' "$dll")
    check "$dll has file and product version $version" '[ "$numbers" = "$version $version" ]'
    for key in FileVersion ProductVersion OriginalFilename; do
        want=$version; [ $key = OriginalFilename ] && want=$(basename "$dll")
        check "$dll: $key $want" '[ "$(strings -el "$dll" | grep -A1 -x "$key" | sed -n 2p)" = "$want" ]'
    done
done
check "the module imports the resource library's one export" \
    'x86_64-w64-mingw32-objdump -p bin/qvPreScan.dll | grep -A3 "DLL Name: qvCaptureRC.dll" | grep -q qvCaptureGetNewRCInstanceHandle'

# Both import libraries name every export of the .def, as imports from qvPreScan.dll.
exports=$(sed -n 's/^ \+\(qv[A-Za-z]*\)$/\1/p' lib/qvPreScan.def | sort)
check "the .def lists the fourteen exports" '[ "$(wc -l <<<"$exports")" -eq 14 ]'
check "qvPreScan.dll exports the .def's functions and nothing else" \
    '[ "$(x86_64-w64-mingw32-objdump -p bin/qvPreScan.dll | sed -n "s/^\t\[ *[0-9]*\] \([^ ]*\)$/\1/p" | sort)" = "$exports" ]'
for lib in lib/qvPreScan.lib lib/libqvPreScan.dll.a; do
    check "$lib imports every export" '[ "$(llvm-nm "$lib" 2>/dev/null | sed -n "s/.* __imp_\(qv[A-Za-z]*\)$/\1/p" | sort)" = "$exports" ]'
done
# The Microsoft format: one short import member per export, from qvPreScan.dll, by its undecorated name.
members=$(llvm-readobj lib/qvPreScan.lib | grep -A3 "^File: qvPreScan.dll$" | grep -c "^Name type: name$")
check "qvPreScan.lib holds fourteen x86-64 short imports by name from qvPreScan.dll" \
    '[ "$members" -eq 14 ] && llvm-readobj lib/qvPreScan.lib | grep -q "^Arch: x86_64$"'
# A program with no headers and no C runtime, linked in Microsoft mode: its exit code comes from the module.
printf '__declspec(dllimport) int qvPreScanUnInit(void);\nint start(void) { return qvPreScanUnInit() + 41; }\n' > "$tmp/probe.c"
clang --target=x86_64-pc-windows-msvc -c "$tmp/probe.c" -o "$tmp/probe.obj" &&
    lld-link /nologo /entry:start /subsystem:console /nodefaultlib "$tmp/probe.obj" lib/qvPreScan.lib /out:bin/probe.exe
"$WINE64" bin/probe.exe >/dev/null 2>&1
check "lld-link links qvPreScan.lib and the call reaches the module" '[ $? -eq 42 ]'
rm -f bin/probe.exe

# The sample, built against the kit alone as the guide says, then run headless.
export QVPRESCAN_APPDATA="Z:${tmp//\//\\}\\appdata"
expected="request 11: the device is ready
request 1: scan method 2
the tape ended; scenes left after clearing the open one: 4
request 2: the scan stopped with 4 scenes
request 9: the dialog closed
the session ended"
build_gcc() { x86_64-w64-mingw32-gcc -std=c11 -Wall -Wextra -Werror -Iinclude samples/minimal-host.c -Llib -lqvPreScan -o "$1"; }
build_clang() {
    clang --target=x86_64-w64-windows-gnu -fuse-ld=lld -std=c11 -Wall -Wextra -Werror -Iinclude samples/minimal-host.c \
        lib/qvPreScan.lib -L"$(dirname "$(x86_64-w64-mingw32-gcc -print-libgcc-file-name)")" -o "$1"
}
for compiler in gcc clang; do
    exe="bin/minimal-host-$compiler.exe"
    build_$compiler "$exe"
    check "the sample builds with $compiler" '[ -f "$exe" ]'
    said=$(timeout 120 "$WINE64" "$exe" --auto 2>/dev/null)
    status=$?
    check "the $compiler sample runs headless and exits 0" '[ $status -eq 0 ]'
    check "the $compiler sample says what it did" '[ "$(tr -d "\r" <<<"$said")" = "$expected" ]'
done

# A host's own resource library, built from the kit's sources as the guide says, serves the same sample.
mkdir own && cp bin/qvPreScan.dll bin/minimal-host-gcc.exe own/
x86_64-w64-mingw32-windres -Ires res/qvCaptureRC.rc -O coff -o "$tmp/rc.o" &&
    x86_64-w64-mingw32-g++ -shared -static -s -o own/qvCaptureRC.dll res/qvCaptureRC.cpp "$tmp/rc.o" res/qvCaptureRC.def
said=$(timeout 120 "$WINE64" own/minimal-host-gcc.exe --auto 2>/dev/null)
check "a resource library built from res/ serves the module" '[ "$(tr -d "\r" <<<"$said")" = "$expected" ]'

# The Windows list reader writes the same lines: CSV rows end in CR LF, not CR CR LF.
psf="Z:${root//\//\\}\\tests\\fuzz\\corpus\\v3-two-scenes.psf"
"$WINE64" bin/qvpsf.exe csv "$psf" 2>/dev/null > "$tmp/list.csv"
crlf=$(grep -c $'[^\r]\r$' "$tmp/list.csv"); crcr=$(grep -c $'\r\r' "$tmp/list.csv")
check "qvpsf.exe csv ends each of its 3 rows in CR LF" '[ "$crlf" -eq 3 ] && [ "$(wc -l < "$tmp/list.csv")" -eq 3 ] && [ "$crcr" -eq 0 ]'
check "qvpsf.exe edl writes a drop-frame list for --tv 0" '"$WINE64" bin/qvpsf.exe edl "$psf" --tv 0 2>/dev/null | grep -q "^FCM: DROP FRAME"'
exit $fail

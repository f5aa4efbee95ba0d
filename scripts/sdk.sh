#!/usr/bin/env bash
# The host developer's kit: qvPreScan-sdk-VERSION/ and its .zip in OUT
# (default build/sdk), from the Windows build (make build-win) and the
# sources.  The version is the build's own (project() in CMakeLists.txt).
# Usage: sdk.sh [OUT]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
win="${QV_WIN_BUILD:-$root/build/win}"
bin="${QV_BIN:-$root/build/bin}"
out="${1:-$root/build/sdk}"

# The LLVM tools make the Microsoft-format import library; zip packs the kit.
pkgs=(llvm clang lld zip unzip)
missing=()
for p in "${pkgs[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

version=$(sed -n 's/^#define QV_VERSION_TEXT "\(.*\)"$/\1/p' "$win/generated/qvVersion.h")
[ -n "$version" ] || { echo "sdk: no version in $win/generated/qvVersion.h: run make build-win first" >&2; exit 1; }
name="qvPreScan-sdk-$version"
kit="$out/$name"
rm -rf "$kit" "$kit.zip"
mkdir -p "$kit"/{include,bin,lib,docs,samples,res}

cp "$root/include/qvPreScan.h" "$kit/include/"
for f in qvPreScan.dll qvCaptureRC.dll qvpsf.exe; do
    x86_64-w64-mingw32-strip --strip-unneeded -o "$kit/bin/$f" "$bin/$f"
done
cp "$root/src/qvPreScan.def" "$kit/lib/"
cp "$win/lib/libqvPreScan.dll.a" "$kit/lib/"
llvm-dlltool -m i386:x86-64 -d "$root/src/qvPreScan.def" -l "$kit/lib/qvPreScan.lib"
cp "$root/docs/HOST-GUIDE.md" "$kit/docs/"
cp "$root/samples/minimal-host.c" "$kit/samples/"
# The reference resource library's sources, for a host that ships its own
# (a translation): its version resource is the host's to write.
cp "$root/hostres/ResourceIds.h" "$root/hostres/qvCaptureRC.cpp" "$root/hostres/qvCaptureRC.def" "$kit/res/"
grep -v 'VersionInfo.rc' "$root/hostres/qvCaptureRC.rc" > "$kit/res/qvCaptureRC.rc"

sed 's/$/\r/' > "$kit/README.txt" <<EOF
qvPreScan $version - the kit for developers of capture applications

The DV tape pre-scan module: a Windows x86-64 DLL that a capture application
(the host) opens as its pre-scan dialog and feeds with the scenes it finds on
a tape.

include\\qvPreScan.h      the one header: records, request codes, the exports
bin\\qvPreScan.dll        the module
bin\\qvCaptureRC.dll      the resource library: texts, dialogs and menu the
                         module shows (ship it beside the module, or your own)
bin\\qvpsf.exe            shows a saved scene list (.psf), as CSV or as an EDL
                         (qvpsf --help)
lib\\libqvPreScan.dll.a   import library for mingw-w64 (gcc, clang)
lib\\qvPreScan.lib        import library for the Microsoft linker (and lld-link)
lib\\qvPreScan.def        the module's exports
docs\\HOST-GUIDE.md       how a host drives the module: start here
samples\\minimal-host.c   a complete host in plain C
res\\                     the resource library's sources, to build your own
                         (a translation): docs\\HOST-GUIDE.md, section 6

Build and run the sample from this folder with mingw-w64:

  x86_64-w64-mingw32-gcc -std=c11 -Wall -Iinclude samples/minimal-host.c -Llib -lqvPreScan -o bin/minimal-host.exe
  bin\\minimal-host.exe

docs\\HOST-GUIDE.md gives the clang command and explains every step.
EOF

(cd "$out" && zip -qr -X "$name.zip" "$name")
echo "$kit"
echo "$kit.zip"

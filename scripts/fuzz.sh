#!/usr/bin/env bash
# Fuzzes the scene list reader and the DV stream reader with libFuzzer
# (clang, ASan/UBSan) for a bounded time shared between them; new inputs
# that reach new code go into a work corpus, and any crash is saved beside
# the seed corpus so that `make test` replays it.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${FUZZ_SECONDS:-300}"
pkgs=(clang libclang-rt-14-dev libfuzzer-14-dev)
missing=()
for p in "${pkgs[@]}"; do dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing+=("$p"); done
if [ ${#missing[@]} -gt 0 ]; then
    SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
    $SUDO apt-get update -qq && DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
out="$root/build/fuzz"
mkdir -p "$out/work" "$out/dv-work"
flags=(-std=c++20 -O1 -g -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all
       -I"$root/include" -I"$root/src" -I"$root/hostres")
clang++ "${flags[@]}" \
    "$root/tests/fuzz/PsfReaderFuzz.cpp" "$root/src/sceneops/SceneListCodec.cpp" "$root/src/scenes/TimeCode.cpp" \
    "$root/src/platform/MemoryBlockPosix.cpp" "$root/src/platform/FilePosix.cpp" "$root/src/platform/File.cpp" -o "$out/psf_fuzz"
clang++ "${flags[@]}" "$root/tests/fuzz/DvReaderFuzz.cpp" "$root"/src/dv/*.cpp -o "$out/dv_fuzz"
cd "$out"
# The run time is shared: half for each reader.
half=$(( (seconds + 1) / 2 ))
status=0
echo "== scene list reader" >&2
./psf_fuzz -max_total_time="$half" -max_len=200000 -artifact_prefix="$root/tests/fuzz/corpus/crash-" \
    -print_final_stats=1 work "$root/tests/fuzz/corpus" 2>&1 | tail -25 || status=1
echo "== DV stream reader" >&2
./dv_fuzz -max_total_time="$half" -max_len=150000 -artifact_prefix="$root/tests/fuzz/dv-corpus/crash-" \
    -print_final_stats=1 dv-work "$root/tests/fuzz/dv-corpus" 2>&1 | tail -25 || status=1
exit $status

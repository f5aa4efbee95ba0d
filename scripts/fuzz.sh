#!/usr/bin/env bash
# Fuzzes the scene list reader with libFuzzer (clang, ASan/UBSan) for a
# bounded time; new inputs that reach new code go into a work corpus, and
# any crash is saved beside the seed corpus so that `make test` replays it.
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
mkdir -p "$out/work"
clang++ -std=c++20 -O1 -g -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all \
    -I"$root/include" -I"$root/src" -I"$root/hostres" \
    "$root/tests/fuzz/PsfReaderFuzz.cpp" "$root/src/sceneops/SceneListCodec.cpp" "$root/src/scenes/TimeCode.cpp" \
    "$root/src/platform/MemoryBlockPosix.cpp" "$root/src/platform/FilePosix.cpp" "$root/src/platform/File.cpp" -o "$out/psf_fuzz"
cd "$out"
./psf_fuzz -max_total_time="$seconds" -max_len=200000 -artifact_prefix="$root/tests/fuzz/corpus/crash-" \
    -print_final_stats=1 work "$root/tests/fuzz/corpus" 2>&1 | tail -25

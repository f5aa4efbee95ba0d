#!/usr/bin/env bash
# qvpsf on the seed files: what it shows, its CSV, and its refusals.
set -u
qvpsf="$1"
corpus="$(dirname "$0")/../fuzz/corpus"
fail=0
check() { if ! eval "$2"; then echo "FAILED: $1"; fail=1; else echo "ok: $1"; fi; }

out=$("$qvpsf" show "$corpus/v3-two-scenes.psf" --tv 2)
check "show exits 0 on a whole file" '[ $? -eq 0 ]'
check "show names the tape" 'grep -q "^tape: *Tape$" <<<"$out"'
check "show lists both scenes with their times" 'grep -qE "^ +2  00:00:30:00  00:00:40:00  00:00:10:00" <<<"$out"'
check "show tells marked scenes" 'grep -qE "^ +1 .* marked  first" <<<"$out"'
check "show keeps each scene on one line" '[ "$(grep -c "^ *[0-9]\+  " <<<"$out")" -eq 2 ]'

csv=$("$qvpsf" csv "$corpus/v3-two-scenes.psf")
check "csv starts with its header row" 'head -1 <<<"$csv" | grep -q "^scene,in,out,duration,recorded,marked,comment,captured file,scene file"'
check "csv quotes a field with a comma" 'grep -q "\"C:\\\\cap\\\\a, b.avi\"" <<<"$csv"'

v1=$("$qvpsf" show "$corpus/v1-frame-counts.psf" --tv 0)
check "version 1 frame counts become time codes" 'grep -q "00:01:00:00" <<<"$v1"'

"$qvpsf" show "$corpus/truncated-entry.psf" >/dev/null 2>&1
check "a truncated file exits non-zero" '[ $? -ne 0 ]'
"$qvpsf" show "$corpus/lying-pixel-count.psf" >/dev/null 2>&1
check "a lying pixel count exits non-zero" '[ $? -ne 0 ]'
tmp=$(mktemp -d); trap 'rm -rf "$tmp"' EXIT
# A whole file whose header size field says 1315 is someone else's file.
{ printf '\x23'; tail -c +2 "$corpus/v3-two-scenes.psf"; } >"$tmp/other.psf"
err=$("$qvpsf" show "$tmp/other.psf" 2>&1 >/dev/null)
check "a header size other than 1314 exits non-zero" '[ $? -ne 0 ]'
check "a header size other than 1314 is not a scene list file" 'grep -q "not a scene list file" <<<"$err"'
"$qvpsf" show "$corpus/no-such-file.psf" >/dev/null 2>&1
check "a missing file exits non-zero" '[ $? -ne 0 ]'
"$qvpsf" show "$corpus/v3-two-scenes.psf" --tv 9 >/dev/null 2>&1
check "an unknown standard is refused" '[ $? -eq 2 ]'
exit $fail

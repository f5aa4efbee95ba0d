#!/usr/bin/env bash
# qvpsf on the seed files: what it shows, its CSV, its EDL (read back by
# edl_check.py), its usage and its refusals.
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

help=$("$qvpsf" --help)
check "--help exits 0" '[ $? -eq 0 ]'
check "--help names every command and option" '(for w in show csv edl --tv --marked; do grep -q -- "$w" <<<"$help" || exit 1; done)'
check "--help states the reel rule" 'grep -q "first 8 characters" <<<"$help" && grep -q "reel AX" <<<"$help"'

# arguments, exit status, what stderr must say
refused() {
    local want="$1" says="$2"; shift 2
    err=$("$qvpsf" "$@" 2>&1 >/dev/null)
    local got=$?
    check "qvpsf $* exits $want" '[ $got -eq $want ]'
    check "qvpsf $* says \"$says\"" 'grep -q -- "$says" <<<"$err"'
}
v3="$corpus/v3-two-scenes.psf"
refused 2 "no command"
refused 2 "no scene list file" edl
refused 2 "unknown command 'cut'" cut "$v3"
refused 2 "--tv takes 0, 1 or 2" show "$v3" --tv 9
refused 2 "--tv takes 0, 1 or 2" edl "$v3" --tv
refused 2 "--tv takes 0, 1 or 2" edl "$v3" --tv 1x
refused 2 "unknown option '--marked' for csv" csv "$v3" --marked
refused 2 "unknown option '-x'" edl "$v3" -x
refused 1 "cannot be opened" edl "$corpus/no-such-file.psf"
refused 1 "not a scene list file" edl "$corpus"
refused 1 "ends early or is damaged" edl "$corpus/truncated-entry.psf"

python3 "$(dirname "$0")/edl_check.py" "$qvpsf" || fail=1
exit $fail

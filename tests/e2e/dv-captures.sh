#!/usr/bin/env bash
# The scenes the deck captured from the DV test tapes (e2e_tests), read by
# ffprobe: each file holds its recording's frames, from its first time code.
# Usage: dv-captures.sh DIR   (the folder of make-tapes.sh and the captures)
set -uo pipefail
dir="$1"
failed=0
while read -r folder file frames timecode; do
    path="$dir/$folder/Tape $file.dv"
    got=$(ffprobe -v error -select_streams v:0 -count_frames -show_entries stream=nb_read_frames \
          -show_entries format_tags=timecode -of csv=p=0 "$path" 2>&1 | tr '\n' ' ')
    if [ "$got" != "$frames $timecode " ]; then
        echo "FAIL $folder/Tape $file.dv: ffprobe read '$got', expected '$frames $timecode '"
        failed=1
    fi
done <<'TABLE'
captures-pal 001 50 00:10:00:00
captures-pal 002 37 00:30:00:00
captures-pal-quick 001 50 00:10:00:00
captures-pal-quick 002 37 00:30:00:00
captures-ntsc 001 44 00:09:59;20
captures-ntsc 002 29 02:00:00;00
TABLE
[ $failed -eq 0 ] && echo "every captured scene reads back with its frames and time code"
exit $failed

#!/usr/bin/env bash
# The demo's DV tape: a dozen recordings of a summer, each encoded by ffmpeg
# on its own (its own picture, the tape's running time code, the camcorder's
# date and time) and joined as a tape holds them.  Made once into
# build/dv-demo/ and kept; prints the tape's path.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
out="$QV_BUILD/dv-demo"
tape="$out/summer-2004.dv"
if [ ! -s "$tape" ] || [ "$tape" -ot "$0" ]; then
    mkdir -p "$out/parts"
    n=0
    # picture (ffmpeg's test sources)  seconds  time code at its start  recorded
    while read -r source seconds timecode recorded; do
        n=$((n + 1))
        ffmpeg -nostdin -v error -y -f lavfi -i "$source" -f lavfi -i sine=frequency=$((200 + 40 * n)):sample_rate=48000 \
            -t "$seconds" -target pal-dv -timecode "$timecode" -metadata creation_time="$recorded" \
            "$out/parts/$(printf %02d $n).dv" >&2
    done <<'RECORDINGS'
mandelbrot=size=720x576:rate=25 3 00:00:00:00 2004-07-03T09:12:40
smptebars=size=720x576:rate=25 2 00:00:03:00 2004-07-03T14:05:00
testsrc2=size=720x576:rate=25 2 00:00:05:00 2004-07-04T11:30:15
gradients=size=720x576:rate=25:speed=0.02 3 00:00:07:00 2004-07-05T19:48:02
colorspectrum=size=720x576:rate=25 2 00:00:10:00 2004-07-08T08:00:30
life=size=720x576:rate=25:mold=10:ratio=0.3:life_color=0x40c040 2 00:00:12:00 2004-07-08T16:22:00
sierpinski=size=720x576:rate=25 2 00:00:14:00 2004-07-11T10:10:10
cellauto=size=720x576:rate=25:rule=110 2 00:00:00:00 2004-07-14T12:00:00
pal75bars=size=720x576:rate=25 2 00:00:02:00 2004-07-16T17:45:55
rgbtestsrc=size=720x576:rate=25 2 00:00:04:00 2004-07-19T07:05:00
testsrc=size=720x576:rate=25 3 00:00:06:00 2004-07-24T21:30:00
gradients=size=720x576:rate=25:c0=0x203080:c1=0xe0a040:type=radial 2 00:00:09:00 2004-07-31T13:00:00
RECORDINGS
    cat "$out"/parts/*.dv > "$tape.part" && mv "$tape.part" "$tape"
    rm -rf "$out/parts"
fi
echo "$tape"

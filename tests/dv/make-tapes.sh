#!/usr/bin/env bash
# Makes the DV test tapes with ffmpeg into the folder given: each recording
# encoded on its own (its own picture, time code and recording date), then
# joined as a camcorder's tape holds them.
#   pal.dv   four 625/50 recordings; the third interlaced, moving, with
#            blocks coded field by field
#   ntsc.dv  three 525/60 recordings, drop-frame time codes over minute ends
# The recordings stay beside them (pal-1.dv ...) for the checks that read
# one recording alone.
set -euo pipefail
out="$1"
mkdir -p "$out"
cd "$out"
[ -s pal.dv ] && [ -s ntsc.dv ] && [ pal.dv -nt "$0" ] && exit 0

P=size=720x576:rate=25
N=size=720x480:rate=30000/1001
rec() {  # name system lavfi-source seconds timecode date [ffmpeg options]
    ffmpeg -v error -y -f lavfi -i "$3" -f lavfi -i sine=sample_rate=48000 -t "$4" "${@:7}" \
        -target "$2-dv" -timecode "$5" -metadata creation_time="$6" "$1.dv"
}
rec pal-1 pal "testsrc=$P" 2 00:10:00:00 2004-05-01T10:00:00
rec pal-2 pal "smptebars=$P" 1 00:10:02:00 2004-05-02T09:15:30
rec pal-3 pal "testsrc=size=720x576:rate=50,scroll=v=0.05,tinterlace=mode=interleave_top" 1.5 00:30:00:00 \
    2004-06-12T18:45:00 -flags +ildct
rec pal-4 pal "mandelbrot=$P" 1 00:00:10:00 2005-01-03T08:00:59
rec ntsc-1 ntsc "smptebars=$N" 1.5 "00:09:59;20" 2006-07-04T12:00:00
rec ntsc-2 ntsc "testsrc2=$N" 1 "01:00:59;25" 2006-07-05T23:59:59
rec ntsc-3 ntsc "color=c=0x3060c0:$N" 1 "02:00:00;00" 2006-07-09T07:30:00
cat pal-[1-4].dv > pal.dv
cat ntsc-[1-3].dv > ntsc.dv

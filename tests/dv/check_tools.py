#!/usr/bin/env python3
"""The DV reader against tools written elsewhere, on the tapes of
make-tapes.sh:  usage: check_tools.py QVTAPE TAPES_DIR

- recordings, their frame counts, first time codes and recording dates agree
  with the files `dvgrab -autosplit=2` cuts the tape into (named by date and
  time code);
- each recording's first time code agrees with ffprobe's (";" for drop-frame);
- each recording's DC picture is close to ffmpeg's own decode of the same
  frame scaled to the same size: PSNR of the luma (BT.601) at least 25 dB.
"""
import glob
import math
import os
import re
import subprocess
import sys
import tempfile

qvtape, tapes = sys.argv[1], sys.argv[2]
failures = []


def check(what, ok, detail=""):
    print(("ok: " if ok else "FAILED: ") + what + (f" ({detail})" if detail else ""))
    if not ok:
        failures.append(what)


def read_ppm(path):
    data = open(path, "rb").read()
    magic, w, h, peak, pixels = re.match(rb"(P6)\s+(\d+)\s+(\d+)\s+(\d+)\s(.*)", data, re.S).groups()
    return int(w), int(h), pixels


def luma(pixels):
    return [0.299 * pixels[i] + 0.587 * pixels[i + 1] + 0.114 * pixels[i + 2] for i in range(0, len(pixels), 3)]


def psnr(a, b):
    mse = sum((x - y) ** 2 for x, y in zip(a, b)) / len(a)
    return 99.0 if mse == 0 else 10 * math.log10(255 * 255 / mse)


line = re.compile(r"recording (\d+): frames (\d+)-(\d+), time code (\S+) to (\S+), recorded (\S+) (\S+)")
for tape, frame_bytes, height in (("pal", 144000, 72), ("ntsc", 120000, 60)):
    with tempfile.TemporaryDirectory() as tmp:
        out = subprocess.run([qvtape, f"{tapes}/{tape}.dv", "--pictures", tmp], capture_output=True, text=True)
        check(f"{tape}: qvtape reads the tape", out.returncode == 0, out.stderr.strip())
        ours = [m.groups() for m in map(line.match, out.stdout.splitlines()) if m]
        parts = sorted(glob.glob(f"{tapes}/{tape}-*.dv"))
        check(f"{tape}: one recording per part encoded", len(ours) == len(parts), f"{len(ours)} of {len(parts)}")

        subprocess.run(["dvgrab", "-autosplit=2", "-noavc", "-t", "-timecode", "-f", "raw", "-stdin"], cwd=tmp,
                       stdin=open(f"{tapes}/{tape}.dv", "rb"), capture_output=True)
        theirs = []
        for name in sorted(os.listdir(tmp)):
            m = re.match(r"dvgrab-(\d+)\.(\d+)\.(\d+)_(\d+)-(\d+)-(\d+)--(\S+)\.dv$", name)
            if m:
                y, mo, d, h, mi, s, tc = m.groups()
                frames = os.path.getsize(f"{tmp}/{name}") // frame_bytes
                theirs.append((f"{y}-{mo}-{d} {h}:{mi}:{s}", tc, frames))
        mine = [(f"{r[5]} {r[6]}", r[3].replace(";", ":"), int(r[2]) - int(r[1]) + 1) for r in ours]
        check(f"{tape}: recordings, dates, time codes and lengths as dvgrab cuts them", mine == theirs,
              f"ours {mine}, dvgrab {theirs}")

        for r, part in zip(ours, parts):
            probe = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format_tags=timecode", "-of", "csv=p=0",
                                    part], capture_output=True, text=True).stdout.strip()
            check(f"{tape} recording {r[0]}: first time code as ffprobe reads it", r[3] == probe, f"{r[3]} / {probe}")
            ref = f"{tmp}/ffmpeg-{r[0]}.ppm"
            subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", part, "-frames:v", "1", "-vf", f"scale=90:{height}",
                            "-f", "image2", ref], check=True)
            w, h, theirs_px = read_ppm(ref)
            w2, h2, ours_px = read_ppm(f"{tmp}/recording-{r[0]}.ppm")
            same = (w, h) == (w2, h2)
            db = psnr(luma(ours_px), luma(theirs_px)) if same else 0
            rgb = psnr(ours_px, theirs_px) if same else 0
            check(f"{tape} recording {r[0]}: DC picture {w2}x{h2} like ffmpeg's, luma PSNR >= 25 dB", same and db >= 25,
                  f"luma {db:.1f} dB, RGB {rgb:.1f} dB")
            # The colours: the mean red, green and blue of the two pictures.
            mean = [[sum(px[c::3]) / (len(px) / 3) for c in range(3)] for px in (ours_px, theirs_px)]
            off = max(abs(a - b) for a, b in zip(*mean))
            check(f"{tape} recording {r[0]}: mean colour like ffmpeg's within 4 levels", off <= 4, f"{off:.1f} off")

not_dv = subprocess.run([qvtape, __file__], capture_output=True, text=True)
check("qvtape refuses a file that is not DV", not_dv.returncode == 1 and "is not a DV stream" in not_dv.stderr)
sys.exit(1 if failures else 0)

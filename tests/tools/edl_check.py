#!/usr/bin/env python3
"""Writes scene lists, has `qvpsf edl` turn them into edit decision lists and
reads those back the way an editor does (CMX 3600: fixed columns, comment
lines under their event), event by event, for each TV standard, with and
without --marked.  Usage: edl_check.py QVPSF"""
import os
import re
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "fuzz"))
from make_seeds import entry, header  # noqa: E402

NO_TIME = 0x80000000


def packed(text):
    h, m, s, f = (int(x) for x in text.split(":"))
    return (h << 24) | (m << 16) | (s << 8) | f


# in, out, marked, comment, captured file, the --tv values that leave it out
SCENES = [
    ("00:00:10:00", "00:00:20:00", 1, b'first, "quoted"\nsecond line', b"C:\\cap\\one.avi", ()),
    ("00:00:59:20", "00:01:00:10", 0, b"", b"", ()),                 # over a dropped minute start
    ("00:09:59:00", "00:10:01:00", 1, b"tenth minute", b"D:\\two.avi", ()),
    (None, "00:11:00:00", 1, b"never found its start", b"", (0, 1, 2)),
    ("00:20:00:00", "00:20:00:00", 1, b"no length", b"", (0, 1, 2)),
    ("00:29:59:25", "00:30:00:05", 1, b"", b"E:\\29.avi", (2,)),      # frame 25 does not exist at 25 fps
    ("00:01:00:00", "00:01:01:00", 0, b"", b"", (0, 1)),              # dropped frame number
    ("00:40:00:00", "00:42:03:04", 1, b"long", b"F:\\long.avi", ()),  # record side crosses minutes
]

# tape name, the reel every event names, the title
REELS = [
    (b"", "AX", None),
    (b"abc", "ABC", "abc"),
    (b"Tape #1 of 12", "TAPE__1_", "Tape #1 of 12"),
    (b"12345678901", "12345678", "12345678901"),
    (b"caf\xe9 tape", "CAF__TAP", None),
]

TC = re.compile(r"^(\d\d):(\d\d):(\d\d)([:;])(\d\d)$")
failures = []


def check(what, got, want):
    if got != want:
        failures.append("%s: got %r, want %r" % (what, got, want))


def frames(text, fps, drop):
    """Frame number of an EDL time code; drop-frame codes skip numbers 0 and 1
    at every minute start but every tenth."""
    m = TC.match(text)
    if not m or (m.group(4) == ";") != drop:
        failures.append("%r is not a %s time code" % (text, "drop-frame" if drop else "non-drop"))
        return 0
    h, mi, s, f = int(m.group(1)), int(m.group(2)), int(m.group(3)), int(m.group(5))
    minutes = h * 60 + mi
    if mi > 59 or s > 59 or f >= fps or (drop and s == 0 and f < 2 and mi % 10):
        failures.append("%r does not exist at %d fps" % (text, fps))
    return (minutes * 60 + s) * fps + f - (2 * (minutes - minutes // 10) if drop else 0)


def parse(text):
    """TITLE, FCM and the events, each with its comment lines."""
    lines = text.split("\n")
    title = lines[0][len("TITLE: "):] if lines[0].startswith("TITLE: ") else None
    fcm = lines[1][len("FCM: "):] if lines[1].startswith("FCM: ") else None
    events = []
    for line in lines[2:]:
        if not line.strip():
            continue
        if line.startswith("* "):
            key, _, value = line[2:].partition(": ")
            events[-1]["notes"][key] = value
            continue
        # Columns: event 1-3, reel 6-13, channels 15-20, transition 21-24,
        # its length 26-28, source in/out and record in/out 30, 42, 54, 66.
        if len(line) != 76 or any(line[i] != " " for i in (3, 4, 13, 24, 28, 40, 52, 64)):
            failures.append("event line out of its columns: %r" % line)
            continue
        events.append({"number": line[0:3], "reel": line[5:13].rstrip(), "channels": line[14:20].strip(),
                       "transition": line[20:24].strip(), "length": line[25:28].strip(),
                       "times": [line[29:40], line[41:52], line[53:64], line[65:76]], "notes": {}})
    return title, fcm, events


def run(qvpsf, *args):
    p = subprocess.run([qvpsf, "edl"] + list(args), capture_output=True)
    return p.returncode, p.stdout.decode("latin-1"), p.stderr.decode("latin-1")


def write_list(path, name, scenes):
    with open(path, "wb") as f:
        f.write(header(len(scenes), 3, name=name))
        for tc_in, tc_out, marked, comment, capture, _ in scenes:
            f.write(entry(NO_TIME if tc_in is None else packed(tc_in), packed(tc_out), comment, marked,
                          capture=capture))


def check_events(tag, qvpsf, path, tv, marked_only, reel):
    fps, drop = (25, False) if tv == 2 else (30, True)  # 0 and 1 count as the module does
    code, out, err = run(qvpsf, path, "--tv", str(tv), *(["--marked"] if marked_only else []))
    check(tag + " exit status", code, 0)
    title, fcm, events = parse(out)
    check(tag + " FCM", fcm, "DROP FRAME" if drop else "NON-DROP FRAME")
    want = [s for s in SCENES if tv not in s[5] and (s[2] or not marked_only)]
    check(tag + " events", len(events), len(want))
    left_out = sum(1 for s in SCENES if tv in s[5] and (s[2] or not marked_only))
    check(tag + " scenes reported as left out", err.count("left out"), left_out)
    record = "01:00:00;00" if drop else "01:00:00:00"
    for i, (event, scene) in enumerate(zip(events, want)):
        at = "%s event %d" % (tag, i + 1)
        sep = ";" if drop else ":"
        check(at + " number", event["number"], "%03d" % (i + 1))
        check(at + " fields", (event["reel"], event["channels"], event["transition"], event["length"]),
              (reel, "V", "C", ""))
        src_in, src_out, rec_in, rec_out = event["times"]
        check(at + " source", (src_in, src_out), tuple(t[:8] + sep + t[9:] for t in scene[:2]))
        check(at + " record in", rec_in, record)
        check(at + " length", frames(rec_out, fps, drop) - frames(rec_in, fps, drop),
              frames(src_out, fps, drop) - frames(src_in, fps, drop))
        record = rec_out
        notes = {}
        if scene[3]:
            notes["COMMENT"] = scene[3].decode().replace("\n", " ")
        if scene[4]:
            notes["SOURCE FILE"] = scene[4].decode()
        check(at + " comment lines", event["notes"], notes)
    return title


def main():
    qvpsf = sys.argv[1]
    with tempfile.TemporaryDirectory() as tmp:
        path = os.path.join(tmp, "summer.psf")
        write_list(path, b"Summer tape\n#3", SCENES)
        for tv in (0, 1, 2):
            for marked_only in (False, True):
                tag = "--tv %d%s" % (tv, " --marked" if marked_only else "")
                check(tag + " title", check_events(tag, qvpsf, path, tv, marked_only, "SUMMER_T"),
                      "Summer tape #3")
        one = SCENES[:1]
        for name, reel, title in REELS:
            path = os.path.join(tmp, "reel.psf")
            write_list(path, name, one)
            code, out, _ = run(qvpsf, path)
            got_title, _, events = parse(out)
            check("reel of %r" % name, [e["reel"] for e in events], [reel])
            if title is not None:
                check("title of %r" % name, got_title, title)
    for f in failures:
        print("FAILED:", f)
    print("edl: %d failures" % len(failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

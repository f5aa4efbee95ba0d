#!/usr/bin/env python3
"""Writes the seed corpus of the scene list reader (small valid files of
every version and a few damaged ones) and expected.txt, how the reading of
each ends and how many scenes it delivers (a file the fuzzer finds gets
its line there by hand).  Run from anywhere:
    python3 tests/fuzz/make_seeds.py
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "corpus")


def header(count, version, name=b"Tape", description=b"Seed, with \"quotes\"\nand a line"):
    def field(text, size):
        return text[:size].ljust(size, b"\0")
    return (struct.pack("<Hh", 1314, count) + field(name, 260) + field(description, 520) + field(b"D:\\Video", 260)
            + field(b"E:\\Library", 260) + struct.pack("<i", version) + b"\0" * 6)


def record(tc_in, tc_out, thumb, comment=b"", marked=0, capture=b"C:\\cap\\a, b.avi"):
    info = struct.pack("<II8HI", tc_in, tc_out, 2003, 7, 5, 4, 15, 6, 9, 0, thumb)
    info += b"C:\\scan\\a.dv".ljust(260, b"\0") + struct.pack("<II3I", 10, 20, 0, 0, 0)
    rest = struct.pack("<iii", 0, 0, marked) + comment.ljust(520, b"\0") + capture.ljust(260, b"\0")
    return info + rest + b"\0" * 40


def bmp_header(w, h):
    return struct.pack("<IiiHHIIiiII", 40, w, h, 1, 24, 0, w * h * 3, 0, 0, 0, 0)


def entry(tc_in, tc_out, comment=b"", marked=0, **more):
    pixels = bytes(range(48))
    return record(tc_in, tc_out, len(pixels), comment, marked, **more) + bmp_header(4, 4) + pixels


def main():
    os.makedirs(OUT, exist_ok=True)
    files = {}
    # name: (how the reading ends, scenes delivered)
    expected = {
        "v3-two-scenes.psf": ("complete", 2),
        "v2-one-scene.psf": ("complete", 1),
        "v1-frame-counts.psf": ("complete", 1),
        "v0-shared-header.psf": ("complete", 1),
        "empty-list.psf": ("complete", 0),
        "truncated-entry.psf": ("truncated", 0),
        "lying-pixel-count.psf": ("truncated", 0),
        "negative-count.psf": ("complete", 0),     # read as an empty list
        "short-header.psf": ("no-header", 0),     # shorter than its header: no list at all
    }
    v3 = header(2, 3) + entry(0x00000A00, 0x00001400, b"first", marked=1) + entry(0x00001E00, 0x00002800, b"second")
    files["v3-two-scenes.psf"] = v3
    files["v2-one-scene.psf"] = header(1, 2) + entry(0x00000A00, 0x00001400)
    files["v1-frame-counts.psf"] = header(1, 1) + entry(1800, 1830)
    shared = bmp_header(4, 4)
    files["v0-shared-header.psf"] = header(1, 0) + shared + record(250, 300, 48) + bytes(range(48))
    files["empty-list.psf"] = header(0, 3)
    files["truncated-entry.psf"] = v3[:1314 + 700]
    files["lying-pixel-count.psf"] = header(1, 3) + record(1, 2, 0xFFFFFFF0) + bmp_header(4, 4)
    files["negative-count.psf"] = header(-5, 3)
    files["short-header.psf"] = v3[:100]
    for name, data in files.items():
        with open(os.path.join(OUT, name), "wb") as f:
            f.write(data)
    with open(os.path.join(HERE, "expected.txt"), "w") as f:
        for name in sorted(files):
            f.write("%s %s %d\n" % ((name,) + expected[name]))


if __name__ == "__main__":
    main()

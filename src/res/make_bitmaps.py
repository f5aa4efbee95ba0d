#!/usr/bin/env python3
"""Draws the module's bitmaps: the two check boxes of the scene list and the
three-frame strips of the six picture buttons (normal, disabled, pressed).

    python3 src/res/make_bitmaps.py            # writes src/res/bitmaps/*.bmp
    python3 src/res/make_bitmaps.py --preview sheet.png   # also an enlarged sheet

Standard library only.  Pictures are drawn at 4x and reduced, so edges are
smooth at button size.
"""
import os
import struct
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "bitmaps")
SS = 4  # supersampling factor

FACE = (236, 236, 236)
LIGHT = (255, 255, 255)
SHADOW = (160, 160, 160)
DARK = (105, 105, 105)
INK = (40, 44, 52)
BLUE = (38, 104, 200)
RED = (214, 40, 40)
GREEN = (30, 150, 60)
AMBER = (232, 160, 20)


# ---- a tiny RGB canvas --------------------------------------------------
class Canvas:
    def __init__(self, w, h, fill):
        self.w, self.h = w, h
        self.px = [[fill] * w for _ in range(h)]

    def put(self, x, y, c):
        if 0 <= x < self.w and 0 <= y < self.h:
            self.px[y][x] = c

    def rect(self, x0, y0, x1, y1, c):
        x0, y0, x1, y1 = (int(round(v)) for v in (x0, y0, x1, y1))
        for y in range(max(0, y0), min(self.h, y1)):
            for x in range(max(0, x0), min(self.w, x1)):
                self.px[y][x] = c

    def polygon(self, pts, c):
        ys = [p[1] for p in pts]
        for y in range(max(0, int(min(ys))), min(self.h, int(max(ys)) + 1)):
            yc = y + 0.5
            xs = []
            for (xa, ya), (xb, yb) in zip(pts, pts[1:] + pts[:1]):
                if (ya <= yc < yb) or (yb <= yc < ya):
                    xs.append(xa + (yc - ya) * (xb - xa) / (yb - ya))
            xs.sort()
            for a, b in zip(xs[::2], xs[1::2]):
                for x in range(max(0, int(a + 0.5)), min(self.w, int(b + 0.5))):
                    self.px[y][x] = c

    def circle(self, cx, cy, r, c):
        for y in range(int(cy - r), int(cy + r) + 1):
            for x in range(int(cx - r), int(cx + r) + 1):
                if (x + 0.5 - cx) ** 2 + (y + 0.5 - cy) ** 2 <= r * r:
                    self.put(x, y, c)

    def line(self, x0, y0, x1, y1, width, c):
        dx, dy = x1 - x0, y1 - y0
        length = max((dx * dx + dy * dy) ** 0.5, 1e-6)
        nx, ny = -dy / length * width / 2, dx / length * width / 2
        self.polygon([(x0 + nx, y0 + ny), (x1 + nx, y1 + ny), (x1 - nx, y1 - ny), (x0 - nx, y0 - ny)], c)


def icon_canvas(w, h):
    """A transparent supersampled canvas for an icon of w x h pixels."""
    return Canvas(w * SS, h * SS, None)


def reduce(icon, w, h):
    """Averages the supersampled icon down; returns (rgb, coverage) per pixel."""
    out = []
    for y in range(h):
        row = []
        for x in range(w):
            r = g = b = n = 0
            for sy in range(SS):
                for sx in range(SS):
                    c = icon.px[y * SS + sy][x * SS + sx]
                    if c is not None:
                        r, g, b, n = r + c[0], g + c[1], b + c[2], n + 1
            row.append(((r // n, g // n, b // n), n / (SS * SS)) if n else (None, 0.0))
        out.append(row)
    return out


# ---- the icons (drawn in icon pixel units times SS) ---------------------
def s(v):
    return v * SS


def icon_thumbnails(w, h):
    c = icon_canvas(w, h)
    for gx, gy in ((3, 2), (10, 2), (3, 8), (10, 8)):
        c.rect(s(gx), s(gy), s(gx + 6), s(gy + 5), BLUE)
        c.rect(s(gx + 1), s(gy + 1), s(gx + 5), s(gy + 4), (150, 200, 255))
    return c


def icon_compact(w, h):
    c = icon_canvas(w, h)
    for i in range(4):
        y = 2 + i * 3.3
        c.rect(s(3), s(y), s(5), s(y + 2), BLUE)
        c.rect(s(7), s(y + 0.5), s(17), s(y + 1.5), INK)
    return c


def icon_capture(w, h):
    c = icon_canvas(w, h)
    c.rect(s(2), s(3), s(13), s(12), INK)           # a cassette
    c.circle(s(5), s(7.5), s(1.6), FACE)
    c.circle(s(10), s(7.5), s(1.6), FACE)
    c.circle(s(15), s(10.5), s(3.6), (255, 255, 255))
    c.circle(s(15), s(10.5), s(3.0), RED)           # record
    return c


def icon_play(w, h):
    c = icon_canvas(w, h)
    cx = w / 2
    c.polygon([(s(cx - 4), s(1.5)), (s(cx + 5), s(7.5)), (s(cx - 4), s(13.5))], GREEN)
    return c


def icon_stop(w, h):
    c = icon_canvas(w, h)
    cx = w / 2
    c.rect(s(cx - 4.5), s(3), s(cx + 4.5), s(12), RED)
    return c


def icon_goto(w, h):
    c = icon_canvas(w, h)
    c.rect(s(2), s(2), s(4), s(13), INK)             # |<
    c.polygon([(s(4.5), s(7.5)), (s(10), s(3)), (s(10), s(12))], BLUE)
    c.polygon([(s(12), s(10)), (s(18), s(10)), (s(15), s(13.5))], INK)  # menu arrow
    return c


def icon_merge(w, h):
    c = icon_canvas(w, h)
    c.rect(s(1), s(2), s(6), s(6), BLUE)
    c.rect(s(1), s(9), s(6), s(13), BLUE)
    c.line(s(6), s(4), s(10), s(7.5), s(1.3), INK)
    c.line(s(6), s(11), s(10), s(7.5), s(1.3), INK)
    c.rect(s(11), s(4.5), s(19), s(10.5), AMBER)
    return c


def icon_split(w, h):
    c = icon_canvas(w, h)
    c.rect(s(1), s(4.5), s(8), s(10.5), AMBER)
    c.line(s(8), s(7.5), s(12), s(4), s(1.3), INK)
    c.line(s(8), s(7.5), s(12), s(11), s(1.3), INK)
    c.rect(s(13), s(2), s(19), s(6), BLUE)
    c.rect(s(13), s(9), s(19), s(13), BLUE)
    return c


# ---- button frames -------------------------------------------------------
def grey(c):
    y = int(0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2])
    y = 150 + (y * 80) // 255  # lighter and flatter
    return (y, y, y)


def blend(under, over, a):
    return tuple(int(u + (o - u) * a) for u, o in zip(under, over))


def button_frame(w, h, icon, frame):
    """One frame of a strip: 0 normal, 1 disabled, 2 pressed."""
    face = FACE if frame != 2 else (214, 214, 214)
    px = [[face] * w for _ in range(h)]
    top, bottom = (LIGHT, DARK) if frame != 2 else (DARK, LIGHT)
    for x in range(w):
        px[0][x] = top
        px[h - 1][x] = bottom
    for y in range(h):
        px[y][0] = top
        px[y][w - 1] = bottom
    if frame != 2:
        for x in range(1, w - 1):
            px[h - 2][x] = SHADOW
        for y in range(1, h - 1):
            px[y][w - 2] = SHADOW
    iw, ih = w - 4, h - 6
    small = reduce(icon(iw, ih), iw, ih)
    ox, oy = 2 + (1 if frame == 2 else 0), 3 + (1 if frame == 2 else 0)
    for y in range(ih):
        for x in range(iw):
            c, a = small[y][x]
            if c is None:
                continue
            if frame == 1:
                c = grey(c)
            tx, ty = ox + x, oy + y
            if 0 < tx < w - 1 and 0 < ty < h - 1:
                px[ty][tx] = blend(px[ty][tx], c, a)
    return px


def strip(w, h, icon):
    frames = [button_frame(w, h, icon, f) for f in range(3)]
    return [frames[0][y] + frames[1][y] + frames[2][y] for y in range(h)]


# ---- check boxes (16 colours) -------------------------------------------
VGA = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128), (0, 128, 128),
       (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0), (255, 255, 0), (0, 0, 255),
       (255, 0, 255), (0, 255, 255), (255, 255, 255)]


def check_box(ticked):
    W, H = 16, 15
    px = [[15] * W for _ in range(H)]  # white around
    x0, y0, x1, y1 = 1, 1, 14, 14
    for x in range(x0, x1):
        px[y0][x] = 0          # black top edge
        px[y1 - 1][x] = 7      # light bottom edge
    for y in range(y0, y1):
        px[y][x0] = 0          # black left edge
        px[y][x1 - 1] = 7      # light right edge
    for x in range(x0 + 1, x1 - 1):
        px[y0 + 1][x] = 8      # inner grey shadow
    for y in range(y0 + 1, y1 - 1):
        px[y][x0 + 1] = 8
    if ticked:
        tick = [(4, 7), (5, 8), (6, 9), (7, 8), (8, 7), (9, 6), (10, 5), (11, 4)]
        for x, y in tick:
            for d in range(3):
                px[y + d][x] = 0
    return px


# ---- BMP and PNG writers ---------------------------------------------------
def write_bmp24(path, rows):
    h, w = len(rows), len(rows[0])
    stride = (w * 3 + 3) & ~3
    data = bytearray()
    for row in reversed(rows):
        line = bytearray()
        for r, g, b in row:
            line += bytes((b, g, r))
        data += line + b"\0" * (stride - len(line))
    header = struct.pack("<IiiHHIIiiII", 40, w, h, 1, 24, 0, len(data), 2835, 2835, 0, 0)
    with open(path, "wb") as f:
        f.write(struct.pack("<2sIHHI", b"BM", 14 + 40 + len(data), 0, 0, 14 + 40))
        f.write(header + data)


def write_bmp4(path, rows):
    h, w = len(rows), len(rows[0])
    stride = ((w + 1) // 2 + 3) & ~3
    data = bytearray()
    for row in reversed(rows):
        line = bytearray()
        for i in range(0, w, 2):
            hi = row[i]
            lo = row[i + 1] if i + 1 < w else 0
            line.append((hi << 4) | lo)
        data += line + b"\0" * (stride - len(line))
    palette = b"".join(bytes((b, g, r, 0)) for r, g, b in VGA)
    header = struct.pack("<IiiHHIIiiII", 40, w, h, 1, 4, 0, len(data), 2835, 2835, 16, 0)
    offset = 14 + 40 + len(palette)
    with open(path, "wb") as f:
        f.write(struct.pack("<2sIHHI", b"BM", offset + len(data), 0, 0, offset))
        f.write(header + palette + data)


def write_png(path, rows):
    h, w = len(rows), len(rows[0])
    raw = b"".join(b"\0" + bytes(v for px in row for v in px) for row in rows)

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)))
        f.write(chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


STRIPS = [
    ("view_thumbnails.bmp", 24, icon_thumbnails),
    ("view_compact.bmp", 24, icon_compact),
    ("capture.bmp", 24, icon_capture),
    ("preview_play.bmp", 32, icon_play),
    ("preview_stop.bmp", 32, icon_stop),
    ("goto.bmp", 24, icon_goto),
    ("merge.bmp", 24, icon_merge),
    ("split.bmp", 24, icon_split),
]


def main(argv):
    os.makedirs(OUT, exist_ok=True)
    sheet = []
    for name, frame_w, icon in STRIPS:
        rows = strip(frame_w, 22, icon)
        write_bmp24(os.path.join(OUT, name), rows)
        sheet.append(rows)
    for name, ticked in (("mark_off.bmp", False), ("mark_on.bmp", True)):
        rows = check_box(ticked)
        write_bmp4(os.path.join(OUT, name), rows)
        sheet.append([[VGA[i] for i in row] for row in rows])
    if len(argv) > 2 and argv[1] == "--preview":
        zoom, width = 8, max(len(r[0]) for r in sheet)
        out = []
        for rows in sheet:
            for row in rows:
                line = [px for px in row for _ in range(zoom)]
                line += [(255, 0, 255)] * ((width - len(row)) * zoom)
                out.extend([line] * zoom)
            out.extend([[(255, 0, 255)] * width * zoom] * 4)
        write_png(argv[2], out)


if __name__ == "__main__":
    main(sys.argv)

#!/usr/bin/env python3
"""Draws the module's bitmaps: the scene list's two check boxes and the
three-frame strips of the picture buttons (normal, disabled, pressed).

    python3 src/res/make_bitmaps.py                       # src/res/bitmaps/*.bmp
    python3 src/res/make_bitmaps.py --preview sheet.png   # plus an enlarged sheet

Standard library only.  Icons are drawn on a supersampled canvas in icon
pixel units and reduced, so slopes and circles come out smooth while edges
that sit on whole pixels stay crisp.
"""
import os
import struct
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "bitmaps")
SS = 6  # supersampling factor
FRAME_H = 22
ICON_W, ICON_H = 18, 16  # the icon area, centred in the button face

# Button colours: the classic push button.
FACE = (240, 240, 240)
FACE_DOWN = (226, 226, 226)
HILITE = (255, 255, 255)
LIGHT = (227, 227, 227)
SHADOW = (160, 160, 160)
DKSHADOW = (105, 105, 105)

# Icon colours.  Every shape is a fill with a darker outline of its own hue.
INK = (46, 52, 62)
SLATE = (92, 104, 122)
BLUE = (58, 126, 214)
BLUE_DK = (26, 72, 150)
BLUE_LT = (178, 212, 250)
RED = (226, 44, 38)
RED_DK = (150, 22, 18)
GREEN = (52, 170, 70)
GREEN_DK = (22, 104, 40)
AMBER = (240, 168, 32)
AMBER_DK = (168, 104, 8)


# ---- a supersampled canvas in icon pixel units --------------------------
class Canvas:
    def __init__(self, w, h):
        self.w, self.h = w, h
        self.px = [[None] * (w * SS) for _ in range(h * SS)]

    def _span(self, y, a, b, c):
        row = self.px[y]
        for x in range(max(0, int(a + 0.5)), min(self.w * SS, int(b + 0.5))):
            row[x] = c

    def rect(self, x0, y0, x1, y1, c):
        """Fills [x0, x1) x [y0, y1)."""
        for y in range(max(0, round(y0 * SS)), min(self.h * SS, round(y1 * SS))):
            self._span(y, x0 * SS, x1 * SS, c)

    def polygon(self, pts, c):
        pts = [(x * SS, y * SS) for x, y in pts]
        ys = [p[1] for p in pts]
        for y in range(max(0, int(min(ys))), min(self.h * SS, int(max(ys)) + 1)):
            yc = y + 0.5
            xs = sorted(xa + (yc - ya) * (xb - xa) / (yb - ya)
                        for (xa, ya), (xb, yb) in zip(pts, pts[1:] + pts[:1])
                        if (ya <= yc < yb) or (yb <= yc < ya))
            for a, b in zip(xs[::2], xs[1::2]):
                self._span(y, a, b, c)

    def circle(self, cx, cy, r, c):
        cx, cy, r = cx * SS, cy * SS, r * SS
        for y in range(max(0, int(cy - r)), min(self.h * SS, int(cy + r) + 1)):
            d = r * r - (y + 0.5 - cy) ** 2
            if d > 0:
                self._span(y, cx - d ** 0.5, cx + d ** 0.5, c)

    def line(self, x0, y0, x1, y1, width, c):
        dx, dy = x1 - x0, y1 - y0
        n = max((dx * dx + dy * dy) ** 0.5, 1e-9)
        ox, oy = -dy / n * width / 2, dx / n * width / 2
        self.polygon([(x0 + ox, y0 + oy), (x1 + ox, y1 + oy), (x1 - ox, y1 - oy), (x0 - ox, y0 - oy)], c)

    def boxed(self, x0, y0, x1, y1, fill, edge):
        """A block with a one pixel outline."""
        self.rect(x0, y0, x1, y1, edge)
        self.rect(x0 + 1, y0 + 1, x1 - 1, y1 - 1, fill)

    def reduce(self):
        """Averages each pixel's samples: rows of (colour or None, coverage)."""
        out = []
        for y in range(self.h):
            row = []
            for x in range(self.w):
                r = g = b = n = 0
                for sy in range(y * SS, y * SS + SS):
                    for c in self.px[sy][x * SS:x * SS + SS]:
                        if c is not None:
                            r, g, b, n = r + c[0], g + c[1], b + c[2], n + 1
                row.append(((r / n, g / n, b / n), n / (SS * SS)) if n else (None, 0.0))
            out.append(row)
        return out


def inset(pts, d):
    """The convex polygon pts (clockwise on screen) moved inwards by d."""
    lines = []
    for (xa, ya), (xb, yb) in zip(pts, pts[1:] + pts[:1]):
        dx, dy = xb - xa, yb - ya
        n = (dx * dx + dy * dy) ** 0.5
        nx, ny = -dy / n * d, dx / n * d  # points inwards for clockwise order
        lines.append(((xa + nx, ya + ny), (dx, dy)))
    out = []
    for (p, u), (q, v) in zip(lines[-1:] + lines[:-1], lines):
        den = u[0] * v[1] - u[1] * v[0]
        t = ((q[0] - p[0]) * v[1] - (q[1] - p[1]) * v[0]) / den
        out.append((p[0] + t * u[0], p[1] + t * u[1]))
    return out


def outlined(c, pts, fill, edge, width=1.0):
    c.polygon(pts, edge)
    c.polygon(inset(pts, width), fill)


# ---- the icons (18 x 16 icon pixels) -------------------------------------
def head(c, tip_x, y, dx, colour, size=3):
    """A crisp arrowhead whose tip is the column tip_x, pointing along dx
    (+1 right, -1 left), centred on the row y."""
    for i in range(size + 1):
        x = tip_x - i * dx
        c.rect(x, y - i, x + 1, y + i + 1, colour)


def icon_thumbnails(c):
    """Four large tiles, each a small picture: the thumbnail view."""
    for x, y in ((1, 0), (10, 0), (1, 9), (10, 9)):
        c.boxed(x, y, x + 8, y + 7, BLUE_LT, BLUE_DK)
        c.rect(x + 3, y + 3, x + 5, y + 4, BLUE)  # a hill
        c.rect(x + 2, y + 4, x + 7, y + 5, BLUE)
        c.rect(x + 1, y + 5, x + 7, y + 6, BLUE)


def icon_compact(c):
    """Rows of text, each with a small bullet: the compact list."""
    for i, y in enumerate((1, 5, 9, 13)):
        c.rect(1, y, 4, y + 3, BLUE_DK)
        c.rect(6, y + 1, 17 - (4 if i % 2 else 0), y + 2, INK)


def icon_capture(c):
    """A tape cassette with the red record dot in front of it."""
    c.boxed(0, 1, 15, 11, SLATE, INK)
    for x in (4.5, 10.5):                         # the reels
        c.circle(x, 5.5, 2.5, HILITE)
        c.circle(x, 5.5, 1.2, INK)
    c.circle(12.5, 10.5, 5.5, None)               # a gap around the dot
    c.circle(12.5, 10.5, 4.5, RED_DK)
    c.circle(12.5, 10.5, 3.5, RED)


def icon_play(c):
    x = c.w / 2 - 5
    outlined(c, [(x, 1), (x + 11, 8), (x, 15)], GREEN, GREEN_DK)


def icon_stop(c):
    x = c.w // 2 - 5
    c.boxed(x, 3, x + 11, 14, RED, RED_DK)


def icon_goto(c):
    """An arrow running up to a bar (a place on the tape), and the menu hint."""
    c.rect(0, 5, 3, 11, BLUE_DK)                  # the arrow, outlined ...
    head(c, 8, 8, 1, BLUE_DK, 6)
    c.rect(1, 6, 4, 10, BLUE)                     # ... and filled
    head(c, 7, 8, 1, BLUE, 4)
    c.rect(10, 1, 12, 15, INK)                    # the bar
    for i in range(3):                            # the menu hint
        c.rect(13 + i, 11 + i, 18 - i, 12 + i, INK)


def icon_merge(c):
    """Two scenes pushed together into one."""
    c.boxed(0, 3, 6, 13, BLUE, BLUE_DK)
    c.boxed(12, 3, 18, 13, BLUE, BLUE_DK)
    head(c, 8, 8, 1, INK)
    head(c, 9, 8, -1, INK)


def icon_split(c):
    """One scene cut in two, the halves moving apart."""
    c.boxed(3, 3, 8, 13, AMBER, AMBER_DK)
    c.boxed(10, 3, 15, 13, AMBER, AMBER_DK)
    c.rect(8, 1, 10, 15, INK)                     # the cut
    head(c, 0, 8, -1, INK)
    head(c, 17, 8, 1, INK)


# ---- button frames -------------------------------------------------------
def greyed(rgb):
    """Disabled look: grey, lighter and with less contrast."""
    y = 0.3 * rgb[0] + 0.59 * rgb[1] + 0.11 * rgb[2]
    y = round(150 + y * 0.33)
    return (y, y, y)


def button_frame(w, icon, frame):
    """One frame of a strip: 0 normal, 1 disabled, 2 pressed."""
    h = FRAME_H
    pressed = frame == 2
    px = [[FACE_DOWN if pressed else FACE] * w for _ in range(h)]

    def edge(i, top_left, bottom_right):
        for x in range(i, w - i):
            px[i][x] = top_left
            px[h - 1 - i][x] = bottom_right
        for y in range(i, h - i):
            px[y][i] = top_left
            px[y][w - 1 - i] = bottom_right
        px[h - 1 - i][i] = px[i][w - 1 - i] = bottom_right

    if pressed:
        edge(0, DKSHADOW, HILITE)
        edge(1, SHADOW, LIGHT)
    else:
        edge(0, HILITE, DKSHADOW)
        edge(1, LIGHT, SHADOW)

    c = Canvas(ICON_W, ICON_H)
    icon(c)
    ox, oy = (w - ICON_W) // 2 + pressed, (h - ICON_H) // 2 + pressed
    for y, row in enumerate(c.reduce()):
        for x, (rgb, a) in enumerate(row):
            if rgb is None:
                continue
            if frame == 1:
                rgb = greyed(rgb)
            under = px[oy + y][ox + x]
            px[oy + y][ox + x] = tuple(round(u + (o - u) * a) for u, o in zip(under, rgb))
    return px


def strip(frame_w, icon):
    frames = [button_frame(frame_w, icon, f) for f in range(3)]
    return [frames[0][y] + frames[1][y] + frames[2][y] for y in range(FRAME_H)]


# ---- check boxes (16 colours) -------------------------------------------
VGA = [(0, 0, 0), (128, 0, 0), (0, 128, 0), (128, 128, 0), (0, 0, 128), (128, 0, 128),
       (0, 128, 128), (192, 192, 192), (128, 128, 128), (255, 0, 0), (0, 255, 0),
       (255, 255, 0), (0, 0, 255), (255, 0, 255), (0, 255, 255), (255, 255, 255)]
BLACK, LTGREY, DKGREY, WHITE = 0, 7, 8, 15


def check_box(ticked):
    """A sunken 13 x 13 box on white; its centre pixel is (8, 7)."""
    px = [[WHITE] * 16 for _ in range(15)]
    x0, y0, x1, y1 = 2, 1, 14, 13  # inclusive corners

    def edge(i, top_left, bottom_right):
        for x in range(x0 + i, x1 - i + 1):
            px[y0 + i][x] = top_left
            px[y1 - i][x] = bottom_right
        for y in range(y0 + i, y1 - i + 1):
            px[y][x0 + i] = top_left
            px[y][x1 - i] = bottom_right
        px[y1 - i][x0 + i] = px[y0 + i][x1 - i] = bottom_right

    edge(0, DKGREY, WHITE)
    edge(1, BLACK, LTGREY)
    if ticked:
        for i, top in enumerate((6, 7, 8, 7, 6, 5, 4)):  # three pixels tall
            for y in range(top, top + 3):
                px[y][5 + i] = BLACK
    return px


# ---- file writers --------------------------------------------------------
def bmp_headers(w, h, bits, image_size, colours):
    offset = 14 + 40 + 4 * colours
    info = struct.pack("<IiiHHIIiiII", 40, w, h, 1, bits, 0, image_size, 2835, 2835, colours, 0)
    return struct.pack("<2sIHHI", b"BM", offset + image_size, 0, 0, offset) + info


def write_bmp24(path, rows):
    h, w = len(rows), len(rows[0])
    pad = b"\0" * (-3 * w % 4)
    data = b"".join(bytes(v for r, g, b in row for v in (b, g, r)) + pad for row in reversed(rows))
    with open(path, "wb") as f:
        f.write(bmp_headers(w, h, 24, len(data), 0) + data)


def write_bmp4(path, rows):
    h, w = len(rows), len(rows[0])
    stride = ((w + 1) // 2 + 3) & ~3
    data = b""
    for row in reversed(rows):
        row = row + [0] * (w % 2)
        line = bytes(hi << 4 | lo for hi, lo in zip(row[::2], row[1::2]))
        data += line + b"\0" * (stride - len(line))
    palette = b"".join(bytes((b, g, r, 0)) for r, g, b in VGA)
    with open(path, "wb") as f:
        f.write(bmp_headers(w, h, 4, len(data), 16) + palette + data)


def write_png(path, rows):
    h, w = len(rows), len(rows[0])
    raw = b"".join(b"\0" + bytes(v for px in row for v in px) for row in rows)

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)))
        f.write(chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def contact_sheet(images, zoom=8, gap=2, back=(255, 0, 255)):
    """The images one under the other, each pixel zoom x zoom."""
    width = max(len(rows[0]) for rows in images) * zoom
    out = []
    for rows in images:
        for row in rows:
            line = [px for px in row for _ in range(zoom)]
            out.extend([line + [back] * (width - len(line))] * zoom)
        out.extend([[back] * width] * gap * zoom)
    return out


STRIPS = [  # file, frame width, icon
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
    images = []
    for name, frame_w, icon in STRIPS:
        rows = strip(frame_w, icon)
        write_bmp24(os.path.join(OUT, name), rows)
        images.append(rows)
    for name, ticked in (("mark_off.bmp", False), ("mark_on.bmp", True)):
        rows = check_box(ticked)
        write_bmp4(os.path.join(OUT, name), rows)
        images.append([[VGA[i] for i in row] for row in rows])
    if len(argv) == 3 and argv[1] == "--preview":
        write_png(argv[2], contact_sheet(images))
    elif len(argv) > 1:
        sys.exit("usage: make_bitmaps.py [--preview sheet.png]")


if __name__ == "__main__":
    main(sys.argv)

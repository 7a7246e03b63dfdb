#!/usr/bin/env python3
# Copyright Lodex contributors.
"""Draws the recorder panel's five 16x16 icons into Resources/ as RGBA PNGs.

Only the standard library is used: shapes are tested at 8x8 samples per pixel for anti-aliased
edges, and the PNG is written with zlib and struct. The output is byte-for-byte reproducible.

    python3 scripts/make_icons.py                    # writes Resources/*_icon.png
    python3 scripts/make_icons.py --preview DIR      # also writes 256x256 previews on a checkerboard
"""

import argparse
import math
import os
import struct
import zlib

SIZE = 16
SAMPLES = 8  # per axis, per pixel


def circle(cx, cy, r):
    return lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r


def ring(cx, cy, r_inner, r_outer):
    return lambda x, y: r_inner * r_inner <= (x - cx) ** 2 + (y - cy) ** 2 <= r_outer * r_outer


def rect(x0, y0, x1, y1):
    return lambda x, y: x0 <= x <= x1 and y0 <= y <= y1


def triangle(a, b, c):
    def side(p, q, x, y):
        return (q[0] - p[0]) * (y - p[1]) - (q[1] - p[1]) * (x - p[0])

    def inside(x, y):
        d1, d2, d3 = side(a, b, x, y), side(b, c, x, y), side(c, a, x, y)
        has_neg = d1 < 0 or d2 < 0 or d3 < 0
        has_pos = d1 > 0 or d2 > 0 or d3 > 0
        return not (has_neg and has_pos)

    return inside


def arc(cx, cy, r_inner, r_outer, start_deg, end_deg):
    """A ring between two angles, counter-clockwise from start to end, with y pointing up."""

    def inside(x, y):
        dx, dy = x - cx, cy - y
        d2 = dx * dx + dy * dy
        if not r_inner * r_inner <= d2 <= r_outer * r_outer:
            return False
        angle = math.degrees(math.atan2(dy, dx)) % 360.0
        return (angle - start_deg) % 360.0 <= (end_deg - start_deg) % 360.0

    return inside


def union(*shapes):
    return lambda x, y: any(shape(x, y) for shape in shapes)


def render(layers):
    """Composites (shape, rgb) layers, first at the back, into rows of RGBA bytes."""
    rows = []
    for py in range(SIZE):
        row = bytearray()
        for px in range(SIZE):
            r = g = b = a = 0.0
            for shape, colour in layers:
                hits = 0
                for sy in range(SAMPLES):
                    for sx in range(SAMPLES):
                        if shape(px + (sx + 0.5) / SAMPLES, py + (sy + 0.5) / SAMPLES):
                            hits += 1
                cover = hits / (SAMPLES * SAMPLES)
                if cover == 0.0:
                    continue
                # "Over" compositing with premultiplied sums.
                r = colour[0] * cover + r * (1.0 - cover)
                g = colour[1] * cover + g * (1.0 - cover)
                b = colour[2] * cover + b * (1.0 - cover)
                a = cover + a * (1.0 - cover)
            if a > 0.0:
                row += bytes((round(r / a), round(g / a), round(b / a), round(a * 255)))
            else:
                row += bytes(4)
        rows.append(bytes(row))
    return rows


def png_bytes(rows, width, height):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    raw = b"".join(b"\x00" + row for row in rows)
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9))
            + chunk(b"IEND", b""))


RED = (226, 38, 38)
BLUE = (52, 136, 230)
GREY = (176, 180, 188)
WHITE = (255, 255, 255)
AMBER = (240, 164, 36)


def reset_icon():
    cx, cy, r_in, r_out = 8.0, 8.6, 4.0, 6.1
    end = 20.0  # the arrow's tip end; the arc runs counter-clockwise from 95 degrees round to here
    mid = (r_in + r_out) / 2.0
    ex, ey = cx + mid * math.cos(math.radians(end)), cy - mid * math.sin(math.radians(end))
    # Travel is counter-clockwise with y up; on screen the tangent at the end is (-sin, -cos).
    tx, ty = -math.sin(math.radians(end)), -math.cos(math.radians(end))
    nx, ny = math.cos(math.radians(end)), -math.sin(math.radians(end))
    half = 3.7
    tip = (ex + tx * 4.2, ey + ty * 4.2)
    head = triangle((ex + nx * half, ey + ny * half), (ex - nx * half, ey - ny * half), tip)
    return [(union(arc(cx, cy, r_in, r_out, 110.0, end + 1.0), head), AMBER)]


ICONS = {
    "Record_icon": [(circle(8.0, 8.0, 6.2), RED)],
    "Download_icon": [
        (union(
            rect(6.9, 1.0, 9.1, 7.0),
            triangle((3.4, 6.2), (12.6, 6.2), (8.0, 11.2)),
            rect(1.2, 10.0, 3.0, 14.8),
            rect(1.2, 13.0, 14.8, 14.8),
            rect(13.0, 10.0, 14.8, 14.8),
        ), BLUE),
    ],
    "Stop_icon": [(rect(2.5, 2.5, 13.5, 13.5), GREY)],
    "Info_icon": [
        (circle(8.0, 8.0, 7.3), BLUE),
        (union(circle(8.0, 4.3, 1.25), rect(6.9, 7.0, 9.1, 12.4)), WHITE),
    ],
    "Reset_icon": reset_icon(),
}


def preview(rows, scale=16, tile=32):
    """An enlarged copy on a grey checkerboard, for looking at the icon."""
    out = []
    for py in range(SIZE * scale):
        row = bytearray()
        src = rows[py // scale]
        for px in range(SIZE * scale):
            checker = 200 if ((px // tile) + (py // tile)) % 2 == 0 else 120
            r, g, b, a = src[(px // scale) * 4:(px // scale) * 4 + 4]
            k = a / 255.0
            row += bytes(round(c * k + checker * (1.0 - k)) for c in (r, g, b)) + b"\xff"
        out.append(bytes(row))
    return out


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", default=os.path.join(root, "Resources"), help="folder for the icons")
    parser.add_argument("--preview", help="folder for enlarged previews")
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    for name, layers in ICONS.items():
        rows = render(layers)
        with open(os.path.join(args.out, name + ".png"), "wb") as out:
            out.write(png_bytes(rows, SIZE, SIZE))
        if args.preview:
            os.makedirs(args.preview, exist_ok=True)
            big = preview(rows)
            with open(os.path.join(args.preview, name + "_preview.png"), "wb") as out:
                out.write(png_bytes(big, SIZE * 16, SIZE * 16))
    print("wrote", ", ".join(name + ".png" for name in ICONS), "to", args.out)


if __name__ == "__main__":
    main()

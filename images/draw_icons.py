#!/usr/bin/env python3
"""Draws the application icons (16, 32 and 48 pixels) as PNG files.

The picture: a blue rounded tile holding three white progress bars of
different lengths, the green one still running: a batch list at a glance.
Shapes are described by signed distances and rendered with 8x8
supersampling, so the small sizes stay crisp. Needs only the standard library.

    python3 images/draw_icons.py
"""
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
SAMPLES = 8


def rounded_box(x, y, cx, cy, hw, hh, r):
    """Signed distance to a rounded rectangle centred at (cx, cy)."""
    qx = abs(x - cx) - (hw - r)
    qy = abs(y - cy) - (hh - r)
    outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
    inside = min(max(qx, qy), 0.0)
    return outside + inside - r


def blend(dst, src, alpha):
    return tuple(d * (1 - alpha) + s * alpha for d, s in zip(dst, src))


def shade(u, v):
    """Colour (r, g, b, a) of the point (u, v) in unit coordinates 0..1."""
    tile = rounded_box(u, v, 0.5, 0.5, 0.47, 0.47, 0.16)
    if tile > 0:
        return (0.0, 0.0, 0.0, 0.0)
    # tile: vertical gradient from a light to a deep blue, with a darker rim
    top, bottom = (0.33, 0.62, 0.90), (0.09, 0.30, 0.62)
    colour = blend(top, bottom, v)
    if tile > -0.035:
        colour = blend(colour, (0.05, 0.18, 0.42), 0.85)

    bars = (
        (0.27, 0.80, (1.0, 1.0, 1.0), 0.62),  # (centre y, fill, colour, trough)
        (0.50, 0.55, (0.45, 0.90, 0.45), 0.62),
        (0.73, 0.30, (1.0, 1.0, 1.0), 0.62),
    )
    left, right, half_height = 0.20, 0.80, 0.075
    for cy, fill, fill_colour, _ in bars:
        trough = rounded_box(u, v, 0.5, cy, (right - left) / 2, half_height, 0.04)
        if trough <= 0:
            colour = blend(colour, (0.05, 0.16, 0.36), 0.55)
            end = left + (right - left) * fill
            bar = rounded_box(u, v, (left + end) / 2, cy, (end - left) / 2, half_height, 0.04)
            if bar <= 0:
                colour = fill_colour
    return colour + (1.0,)


def render(size):
    rows = []
    for py in range(size):
        row = bytearray()
        for px in range(size):
            acc = [0.0, 0.0, 0.0, 0.0]
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    u = (px + (sx + 0.5) / SAMPLES) / size
                    v = (py + (sy + 0.5) / SAMPLES) / size
                    r, g, b, a = shade(u, v)
                    acc[0] += r * a
                    acc[1] += g * a
                    acc[2] += b * a
                    acc[3] += a
            n = SAMPLES * SAMPLES
            alpha = acc[3] / n
            if alpha > 0:
                rgb = [c / acc[3] for c in acc[:3]]
            else:
                rgb = [0.0, 0.0, 0.0]
            row += bytes(round(255 * min(max(c, 0.0), 1.0)) for c in rgb + [alpha])
        rows.append(bytes(row))
    return rows


def write_png(path, size, rows):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    raw = b"".join(b"\x00" + row for row in rows)
    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw, 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


if __name__ == "__main__":
    for size in (16, 32, 48):
        path = os.path.join(HERE, "app_icon%d.png" % size)
        write_png(path, size, render(size))
        print(path)

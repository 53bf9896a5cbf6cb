#!/usr/bin/env python3
"""Draws the pictures of both skins (PNG and animated GIF) from simple shapes,
and writes their style sheets from the templates beside this script.

The results are committed; run this again after changing a shape, a rule or a
colour:
    python3 skins/tools/make_skin_images.py
Only the standard library is used: shapes are signed-distance functions,
sampled with a half-pixel coverage ramp for smooth edges.
"""
import math
import os
import re
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
SKINS = os.path.dirname(HERE)

PALETTES = {
    "white": {
        "background": (0xff, 0xff, 0xff),
        "accent": (0x1f, 0x6f, 0xd1),
        "accentLight": (0x5b, 0x9b, 0xeb),
        "text": (0x2a, 0x33, 0x40),
        "muted": (0x8a, 0x94, 0xa3),
        "disabled": (0xc3, 0xc9, 0xd2),
        "onAccent": (0xff, 0xff, 0xff),
        "excel": (0x1e, 0x7b, 0x45),
    },
    "black": {
        "background": (0x11, 0x15, 0x1b),
        "accent": (0xf0, 0xa0, 0x30),
        "accentLight": (0xf6, 0xc1, 0x6e),
        "text": (0xd8, 0xde, 0xe6),
        "muted": (0x8b, 0x95, 0xa3),
        "disabled": (0x44, 0x4c, 0x57),
        "onAccent": (0x11, 0x15, 0x1b),
        "excel": (0x3c, 0xb3, 0x71),
    },
}


# Colours of the style sheets, by placeholder name in the *.in templates.
SHEET_COLORS = {
    "white": {
        "background": "#ffffff", "panel": "#f5f7fa", "header": "#eef2f7", "border": "#d5dbe3",
        "gridLine": "#e3e8ee", "text": "#1f2a37", "muted": "#6b7685", "disabled": "#b8c0cb",
        "accent": "#1f6fd1", "onAccent": "#ffffff", "selection": "#cfe3f7", "selectionText": "#102030",
        "hover": "#e8f1fc", "input": "#ffffff", "tabInactive": "#eef2f7", "alternate": "#f8fafc",
        "scrollHandle": "#c3cad4", "buttonBackground": "#f5f7fa", "tips": "#fff8dc",
        "highlight": "#fff2c6", "chrome": "#263445", "chromeText": "#dfe6ee",
    },
    "black": {
        "background": "#11151b", "panel": "#161b22", "header": "#1c222b", "border": "#2a323d",
        "gridLine": "#232a33", "text": "#d8dee6", "muted": "#8b95a3", "disabled": "#4a525d",
        "accent": "#f0a030", "onAccent": "#11151b", "selection": "#1f4e79", "selectionText": "#ffffff",
        "hover": "#1e2630", "input": "#0d1117", "tabInactive": "#161b22", "alternate": "#141920",
        "scrollHandle": "#3a434f", "buttonBackground": "#1c222b", "tips": "#2b3038",
        "highlight": "#4a3a12", "chrome": "#0b0e12", "chromeText": "#aeb7c2",
    },
}

SHEETS = {
    "subject.css.in": "subject/subject.css",
    "pagination.css.in": "subject/pagination.css",
    "terminal.css.in": "terminal.css",
    "skin.ini.in": "skin.ini",
}


def write_sheets(name, colors):
    for template, target in SHEETS.items():
        with open(os.path.join(HERE, template), encoding="utf-8") as f:
            text = f.read()
        missing = set(re.findall(r"@(\w+)@", text)) - set(colors)
        if missing:
            raise SystemExit("%s: no colour for %s in skin %s" % (template, ", ".join(sorted(missing)), name))
        text = re.sub(r"@(\w+)@", lambda m: colors[m.group(1)], text)
        path = os.path.join(SKINS, name, target)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as f:
            f.write(text)


# ---- shapes: each returns the signed distance from a point, negative inside

def circle(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def ring(cx, cy, r, width):
    return lambda x, y: abs(math.hypot(x - cx, y - cy) - r) - width / 2


def box(x0, y0, x1, y1, radius=0.0):
    cx, cy = (x0 + x1) / 2, (y0 + y1) / 2
    hx, hy = (x1 - x0) / 2 - radius, (y1 - y0) / 2 - radius

    def d(x, y):
        qx, qy = abs(x - cx) - hx, abs(y - cy) - hy
        outside = math.hypot(max(qx, 0), max(qy, 0))
        return outside + min(max(qx, qy), 0) - radius
    return d


def segment(ax, ay, bx, by, width):
    def d(x, y):
        px, py, vx, vy = x - ax, y - ay, bx - ax, by - ay
        t = max(0.0, min(1.0, (px * vx + py * vy) / (vx * vx + vy * vy)))
        return math.hypot(px - vx * t, py - vy * t) - width / 2
    return d


def polyline(points, width):
    parts = [segment(*points[i], *points[i + 1], width) for i in range(len(points) - 1)]
    return lambda x, y: min(p(x, y) for p in parts)


def polygon(points):
    def d(x, y):
        dist = float("inf")
        inside = False
        n = len(points)
        for i in range(n):
            ax, ay = points[i]
            bx, by = points[(i + 1) % n]
            px, py, vx, vy = x - ax, y - ay, bx - ax, by - ay
            t = max(0.0, min(1.0, (px * vx + py * vy) / (vx * vx + vy * vy)))
            dist = min(dist, math.hypot(px - vx * t, py - vy * t))
            if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
                inside = not inside
        return -dist if inside else dist
    return d


def subtract(a, b):
    return lambda x, y: max(a(x, y), -b(x, y))


# ---- raster

class Canvas:
    def __init__(self, width, height):
        self.width, self.height = width, height
        self.pixels = [[0.0, 0.0, 0.0, 0.0] for _ in range(width * height)]

    def fill(self, shape, color, opacity=1.0):
        for j in range(self.height):
            for i in range(self.width):
                coverage = max(0.0, min(1.0, 0.5 - shape(i + 0.5, j + 0.5))) * opacity
                if coverage <= 0:
                    continue
                p = self.pixels[j * self.width + i]
                # premultiplied "over"
                for k in range(3):
                    p[k] = color[k] / 255 * coverage + p[k] * (1 - coverage)
                p[3] = coverage + p[3] * (1 - coverage)
        return self

    def rgba(self):
        out = []
        for p in self.pixels:
            a = p[3]
            if a <= 0:
                out.append((0, 0, 0, 0))
            else:
                out.append(tuple(round(min(1.0, c / a) * 255) for c in p[:3]) + (round(a * 255),))
        return out


def write_png(path, canvas):
    raw = bytearray()
    rgba = canvas.rgba()
    for j in range(canvas.height):
        raw.append(0)
        for i in range(canvas.width):
            raw.extend(rgba[j * canvas.width + i])

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xffffffff)

    header = struct.pack(">IIBBBBB", canvas.width, canvas.height, 8, 6, 0, 0, 0)
    with open(path, "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes(raw), 9))
                + chunk(b"IEND", b""))


def lzw_encode(indices, min_code_size):
    clear, end = 1 << min_code_size, (1 << min_code_size) + 1
    table = {(i,): i for i in range(clear)}
    next_code, size = end + 1, min_code_size + 1
    bits, nbits, out = 0, 0, bytearray()

    def emit(code):
        nonlocal bits, nbits
        bits |= code << nbits
        nbits += size
        while nbits >= 8:
            out.append(bits & 0xff)
            bits >>= 8
            nbits -= 8

    emit(clear)
    current = ()
    for index in indices:
        candidate = current + (index,)
        if candidate in table:
            current = candidate
            continue
        emit(table[current])
        if next_code < 4096:
            table[candidate] = next_code
            next_code += 1
            if next_code > (1 << size) and size < 12:
                size += 1
        else:
            emit(clear)
            table = {(i,): i for i in range(clear)}
            next_code, size = end + 1, min_code_size + 1
        current = (index,)
    if current:
        emit(table[current])
    emit(end)
    if nbits:
        out.append(bits & 0xff)
    return bytes(out)


def write_gif(path, frames, matte, delay_cs):
    """frames: canvases of equal size; edges are blended onto the skin's
    background (matte), and nearly clear pixels become the transparent index."""
    width, height = frames[0].width, frames[0].height
    flattened = []
    for canvas in frames:
        pixels = []
        for r, g, b, a in canvas.rgba():
            if a < 24:
                pixels.append(None)
            else:
                t = a / 255
                pixels.append(tuple(round(c * t + m * (1 - t)) for c, m in zip((r, g, b), matte)))
        flattened.append(pixels)
    colors = sorted({p for frame in flattened for p in frame if p is not None})
    if len(colors) > 255:   # keep the palette in one table: quantise evenly
        step = math.ceil(len(colors) / 255)
        colors = colors[::step]
    palette = [(0, 0, 0)] + colors
    while len(palette) < 256:
        palette.append((0, 0, 0))

    def nearest(color):
        return 1 + min(range(len(colors)), key=lambda i: sum((a - b) ** 2 for a, b in zip(colors[i], color)))

    cache = {}
    out = bytearray(b"GIF89a")
    out += struct.pack("<HHBBB", width, height, 0xf7, 0, 0)
    for color in palette:
        out += bytes(color)
    out += b"\x21\xff\x0bNETSCAPE2.0\x03\x01\x00\x00\x00"   # loop for ever
    for pixels in flattened:
        indices = []
        for p in pixels:
            if p is None:
                indices.append(0)
            else:
                if p not in cache:
                    cache[p] = nearest(p)
                indices.append(cache[p])
        out += b"\x21\xf9\x04" + struct.pack("<BHBB", 0x09, delay_cs, 0, 0)  # restore to background, index 0 clear
        out += b"\x2c" + struct.pack("<HHHHB", 0, 0, width, height, 0)
        data = lzw_encode(indices, 8)
        out += b"\x08"
        for i in range(0, len(data), 255):
            block = data[i:i + 255]
            out += bytes([len(block)]) + block
        out += b"\x00"
    out += b"\x3b"
    with open(path, "wb") as f:
        f.write(out)


# ---- the pictures

def page_icon(p):
    c = Canvas(32, 32)
    c.fill(box(1, 1, 31, 31, 6), p["accent"])
    for x0, top in ((7, 18), (13.5, 12), (20, 15)):
        c.fill(box(x0, top, x0 + 4.5, 25, 1), p["onAccent"])
    c.fill(polyline([(6, 14), (12, 8.5), (18, 11), (26, 5.5)], 1.8), p["onAccent"], 0.85)
    c.fill(circle(26, 5.5, 1.8), p["onAccent"])
    return c


def spinner_frames(p, count=12):
    frames = []
    dots = 8
    for f in range(count):
        c = Canvas(32, 32)
        head = f * dots / count
        for k in range(dots):
            angle = 2 * math.pi * k / dots - math.pi / 2
            behind = (head - k) % dots
            opacity = max(0.18, 1 - behind / dots)
            c.fill(circle(16 + 11 * math.cos(angle), 16 + 11 * math.sin(angle), 2.6 + 0.6 * opacity),
                   p["accent"], opacity)
        frames.append(c)
    return frames


def download_icon(p):
    c = Canvas(16, 16)
    c.fill(segment(8, 2, 8, 9.5, 1.8), p["accent"])
    c.fill(polyline([(4.5, 6.5), (8, 10), (11.5, 6.5)], 1.8), p["accent"])
    c.fill(polyline([(2.5, 10.5), (2.5, 13.5), (13.5, 13.5), (13.5, 10.5)], 1.6), p["accent"])
    return c


def save_icon(p):
    c = Canvas(16, 16)
    c.fill(box(1.5, 1.5, 14.5, 14.5, 1.5), p["excel"])
    c.fill(box(3, 3, 13, 13, 0.5), p["background"])
    for y in (5.5, 8, 10.5):
        c.fill(segment(4, y, 12, y, 0.9), p["excel"], 0.7)
    c.fill(segment(7.5, 4, 7.5, 12, 0.9), p["excel"], 0.7)
    c.fill(polyline([(9.5, 9), (13, 12.5)], 1.6), p["excel"])
    c.fill(polyline([(13, 9), (9.5, 12.5)], 1.6), p["excel"])
    return c


def search_icon(p):
    c = Canvas(16, 16)
    c.fill(ring(6.5, 6.5, 4.2, 1.6), p["muted"])
    c.fill(segment(9.7, 9.7, 14, 14, 2.0), p["muted"])
    return c


def bullet(color):
    c = Canvas(6, 6)
    c.fill(circle(3, 3, 2.3), color)
    return c


def chevron(points, color, size=16, width=1.7):
    c = Canvas(size, size)
    c.fill(polyline(points, width), color)
    return c


def page_first(color):
    c = chevron([(10, 4), (6, 8), (10, 12)], color)
    c.fill(segment(4, 4, 4, 12, 1.7), color)
    return c


def page_last(color):
    c = chevron([(6, 4), (10, 8), (6, 12)], color)
    c.fill(segment(12, 4, 12, 12, 1.7), color)
    return c


def draw_skin(name, p):
    subject = os.path.join(SKINS, name, "subject")
    os.makedirs(subject, exist_ok=True)
    write_png(os.path.join(SKINS, name, "subject.png"), page_icon(p))
    write_gif(os.path.join(subject, "loading.gif"), spinner_frames(p), p["background"], 8)
    write_png(os.path.join(subject, "download_hover.png"), download_icon(p))
    write_png(os.path.join(subject, "save.png"), save_icon(p))
    write_png(os.path.join(subject, "search.png"), search_icon(p))
    write_png(os.path.join(subject, "tree_item_normal.png"), bullet(p["accent"]))
    write_png(os.path.join(subject, "tree_item_normal_2.png"), bullet(p["disabled"]))
    for state, color in (("", p["text"]), ("_hover", p["accent"]), ("_disabled", p["disabled"])):
        write_png(os.path.join(subject, "page_first%s.png" % state), page_first(color))
        write_png(os.path.join(subject, "page_prev%s.png" % state), chevron([(10, 4), (6, 8), (10, 12)], color))
        write_png(os.path.join(subject, "page_next%s.png" % state), chevron([(6, 4), (10, 8), (6, 12)], color))
        write_png(os.path.join(subject, "page_last%s.png" % state), page_last(color))
    write_png(os.path.join(subject, "branch_closed.png"), chevron([(6, 4), (10, 8), (6, 12)], p["muted"], width=1.4))
    write_png(os.path.join(subject, "branch_open.png"), chevron([(4, 6), (8, 10), (12, 6)], p["muted"], width=1.4))
    write_png(os.path.join(subject, "arrow_down.png"), chevron([(5, 7), (8, 10), (11, 7)], p["text"], width=1.4))
    write_png(os.path.join(subject, "arrow_up.png"), chevron([(5, 9), (8, 6), (11, 9)], p["text"], width=1.4))
    write_png(os.path.join(subject, "fold_up.png"), chevron([(4, 10), (8, 6), (12, 10)], p["text"], width=1.5))
    write_png(os.path.join(subject, "fold_down.png"), chevron([(4, 6), (8, 10), (12, 6)], p["text"], width=1.5))
    write_png(os.path.join(subject, "close.png"), close_icon(p["muted"]))
    write_png(os.path.join(subject, "close_hover.png"), close_icon(p["accent"]))


def close_icon(color):
    c = Canvas(12, 12)
    c.fill(segment(3, 3, 9, 9, 1.4), color)
    c.fill(segment(9, 3, 3, 9, 1.4), color)
    return c


if __name__ == "__main__":
    for skin, palette in PALETTES.items():
        draw_skin(skin, palette)
        write_sheets(skin, SHEET_COLORS[skin])
        print("drew", skin)

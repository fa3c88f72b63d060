#!/usr/bin/env python3
"""Makes the symbol files of etc/ from strokes.

    tools/make_symbols.py etc

The shapes are the project's own, drawn after the published tables of figures:
WMO No. 306 (code tables 4677 present weather, 0513, 0515 and 0509 clouds, 0200
pressure tendency, 2700 cloud amount) and No. 485 (plotting of station models).

    wx.smb    present weather, 00 to 99      cl.smb, cm.smb, ch.smb
    sky.smb   cloud amount, 0 to 9 and "/"   low, middle and high clouds, 1 to 9
    tend.smb  pressure tendency, 0 to 8      metar.smb  weather in letters

A symbol is a list of paths: (points, fill). Coordinates run from 0 to 1, the
lower left corner first; a path has at most 20 points.
"""
import math
import os
import sys

MOST_POINTS = 20


# --- Strokes -------------------------------------------------------------------

def line(*points):
    return [(list(points), False)]


def fill(*points):
    return [(list(points), True)]


def arc(x, y, rx, start, end, ry=None, steps=12):
    """Part of an ellipse about (x, y), degrees counterclockwise from the right."""
    ry = rx if ry is None else ry
    return [(x + rx * math.cos(math.radians(start + (end - start) * i / steps)),
             y + ry * math.sin(math.radians(start + (end - start) * i / steps)))
            for i in range(steps + 1)]


def ring(x, y, r):
    return line(*arc(x, y, r, 0, 360))


def dot(x, y, r=0.075):
    return fill(*arc(x, y, r, 0, 360, steps=10))


def comma(x, y, r=0.065):
    """A drizzle mark: a dot with a tail to the lower left."""
    tail = [(x + r, y), (x + 0.9 * r, y - 1.2 * r), (x, y - 2.4 * r), (x - r, y - 2.8 * r)]
    return dot(x, y, r) + line(*tail)


def star(x, y, r=0.13):
    return sum((line((x - r * math.cos(a), y - r * math.sin(a)),
                     (x + r * math.cos(a), y + r * math.sin(a)))
                for a in (math.radians(d) for d in (30, 90, 150))), [])


def triangle(x, y, r, up=True, solid=False):
    s = 1 if up else -1
    points = [(x, y + s * r), (x - 0.87 * r, y - s * 0.5 * r), (x + 0.87 * r, y - s * 0.5 * r),
              (x, y + s * r)]
    return fill(*points) if solid else line(*points)


def pellet(x, y, r=0.16):
    return triangle(x, y, r) + dot(x, y, 0.045)


def arrow(x1, y1, x2, y2, head=0.12, double=False):
    a = math.atan2(y2 - y1, x2 - x1)
    ends = [(x2 - head * math.cos(a + t), y2 - head * math.sin(a + t)) for t in (0.5, -0.5)]
    dx, dy = 0.035 * math.sin(a), -0.035 * math.cos(a)
    if double:
        back = 0.6 * head
        bx, by = x2 - back * math.cos(a), y2 - back * math.sin(a)
        shaft = line((x1 + dx, y1 + dy), (bx + dx, by + dy)) + \
            line((x1 - dx, y1 - dy), (bx - dx, by - dy))
    else:
        shaft = line((x1, y1), (x2, y2))
    return shaft + line(ends[0], (x2, y2), ends[1])


def letter_s(x=0.5, y=0.5, h=0.3, w=0.17):
    """An S of the height 2 h: dust and sand."""
    top = arc(x, y + h / 2, w, 30, 270, h / 2, 8)
    bottom = arc(x, y - h / 2, w, 90, -150, h / 2, 8)
    return line(*(top + bottom[1:]))


def infinity(x=0.5, y=0.5, r=0.17):
    return ring(x - r, y, r) + ring(x + r, y, r)


def tilde(x, y, w, h):
    """The wave of freezing precipitation: two arcs side by side."""
    return line(*(arc(x - w / 2, y, w / 2, 180, 0, h, 8) + arc(x + w / 2, y, w / 2, 180, 360, h, 8)[1:]))


def bracket_left(x, h=0.3, y=0.5):
    return line(*arc(x + 0.12, y, 0.12, 110, 250, h))


def bracket_right(x, h=0.3, y=0.5):
    return line(*arc(x - 0.12, y, 0.12, 70, -70, h))


def past(x=0.86, h=0.3, y=0.5):
    """The square bracket of what has ended within the hour."""
    return line((x - 0.12, y + h), (x, y + h), (x, y - h), (x - 0.12, y - h))


def bar(x, h=0.32, y=0.5):
    return line((x, y - h), (x, y + h))


def shift(paths, dx, dy, scale=1.0):
    return [([((px - 0.5) * scale + 0.5 + dx, (py - 0.5) * scale + 0.5 + dy) for px, py in points],
             solid) for points, solid in paths]


# --- Present weather ------------------------------------------------------------

def fog(broken=(), x=0.5, w=0.3):
    """Three lines; those of the numbers in `broken` (0 on top) are broken."""
    paths = []
    for i, y in enumerate((0.66, 0.5, 0.34)):
        if i in broken:
            paths += line((x - w, y), (x - 0.09, y)) + line((x + 0.09, y), (x + w, y))
        else:
            paths += line((x - w, y), (x + w, y))
    return paths


def thunder(y=0.5, h=0.33, heavy=False):
    """A bar with a flash from its top; heavy: with one bend more."""
    top, low = y + h, y - h
    if heavy:
        flash = [(0.28, top), (0.72, top), (0.5, y + 0.25 * h), (0.68, y + 0.25 * h),
                 (0.46, y - 0.35 * h), (0.6, y - 0.35 * h)]
        return line((0.28, low), (0.28, top)) + line(*flash) + arrow(0.6, y - 0.35 * h, 0.72, low, 0.13)
    return line((0.28, low), (0.28, top)) + line((0.28, top), (0.72, top), (0.46, y + 0.1 * h)) + \
        arrow(0.46, y + 0.1 * h, 0.72, low, 0.13)


def storm(increase=0, heavy=False):
    """Dust storm: an S with an arrow; increase -1 fewer, 1 more in the hour."""
    paths = letter_s(h=0.28) + arrow(0.14, 0.5, 0.86, 0.5, 0.13, heavy)
    if increase < 0:
        paths += bar(0.95)
    if increase > 0:
        paths += bar(0.05)
    return paths


def drift(low, heavy):
    """Blowing snow: an arrow along the ground, and one down or up."""
    across = arrow(0.12, 0.5, 0.88, 0.5, 0.14, heavy)
    return across + (arrow(0.5, 0.85, 0.5, 0.15, 0.14) if low else arrow(0.5, 0.15, 0.5, 0.85, 0.14))


def pattern(mark, number):
    """Marks of precipitation: one, two beside each other, two, three ..."""
    d = 0.17
    places = {
        0: [(0, 0)], 1: [(-d, 0), (d, 0)], 2: [(0, d), (0, -d)],
        3: [(0, d), (-d, -0.6 * d), (d, -0.6 * d)], 4: [(0, 1.8 * d), (0, 0), (0, -1.8 * d)],
        5: [(0, 1.5 * d), (-1.1 * d, 0), (1.1 * d, 0), (0, -1.5 * d)],
    }
    return sum((mark(0.5 + x, 0.5 + y) for x, y in places[number]), [])


def column(*marks):
    """Marks one above the other, the first on top."""
    d = 0.3
    top = 0.5 + d * (len(marks) - 1) / 2
    return sum((mark(0.5, top - d * i) for i, mark in enumerate(marks)), [])


def freezing(mark, two):
    marks = mark(0.29, 0.44) + mark(0.71, 0.56) if two else mark(0.29, 0.44)
    return tilde(0.5, 0.5, 0.42, 0.24) + marks


def shower(marks, bars=0):
    """A triangle that points down, with marks above it and bars within."""
    paths = line((0.27, 0.5), (0.73, 0.5), (0.5, 0.06), (0.27, 0.5))
    for i in range(bars):
        y = 0.4 - 0.11 * i
        half = 0.23 * (y - 0.06) / 0.44
        paths += line((0.5 - half, y), (0.5 + half, y))
    d = 0.27
    return paths + sum((mark(0.5, 0.66 + d * (len(marks) - 1 - i)) for i, mark in enumerate(marks)), [])


def small_star(x, y):
    return star(x, y, 0.11)


def small_up(x, y):
    return triangle(x, y - 0.02, 0.15)


def solid_up(x, y):
    return triangle(x, y - 0.02, 0.15, solid=True)


def grain(x, y):
    return line((x - 0.24, y - 0.1), (x + 0.24, y - 0.1)) + triangle(x, y, 0.2)


def whirl():
    """A funnel of dust: rings that narrow towards the ground."""
    rings = [(0.76, 0.24, 0.09), (0.56, 0.17, 0.07), (0.39, 0.11, 0.05), (0.26, 0.06, 0.04)]
    return sum((line(*arc(0.5, y, rx, 0, 360, ry)) for y, rx, ry in rings), []) + \
        line((0.5, 0.22), (0.56, 0.1))


def past_of(paths):
    return shift(paths, -0.09, 0, 0.8) + past()


def weather():
    w = {}
    w[0] = ring(0.5, 0.5, 0.26)
    w[1] = ring(0.5, 0.5, 0.22) + line((0.5, 0.28), (0.5, 0.08))
    w[2] = ring(0.5, 0.5, 0.22) + line((0.08, 0.5), (0.28, 0.5)) + line((0.72, 0.5), (0.92, 0.5))
    w[3] = ring(0.5, 0.5, 0.22) + line((0.5, 0.72), (0.5, 0.92))
    w[4] = line((0.22, 0.12), (0.22, 0.72)) + \
        line(*(arc(0.34, 0.72, 0.12, 180, 0, 0.16, 6) + arc(0.58, 0.72, 0.12, 180, 360, 0.16, 6)[1:] +
               arc(0.82, 0.72, 0.12, 180, 60, 0.16, 5)[1:]))
    w[5] = infinity()
    w[6] = letter_s()
    w[7] = letter_s() + line((0.5, 0.1), (0.5, 0.9))
    w[8] = whirl()
    w[9] = shift(letter_s() + arrow(0.25, 0.5, 0.75, 0.5, 0.1), 0, 0, 0.75) + bracket_left(0.06, 0.34) + \
        bracket_right(0.94, 0.34)
    two = (0.58, 0.42)
    w[10] = sum((line((0.18, y), (0.82, y)) for y in two), [])
    w[11] = sum((line((0.18, y), (0.4, y)) + line((0.6, y), (0.82, y)) for y in two), [])
    w[12] = line((0.18, two[0]), (0.4, two[0])) + line((0.6, two[0]), (0.82, two[0])) + \
        line((0.18, two[1]), (0.82, two[1]))
    w[13] = line((0.62, 0.9), (0.32, 0.56), (0.6, 0.56)) + arrow(0.6, 0.56, 0.34, 0.12, 0.14)
    w[14] = dot(0.5, 0.62) + line(*arc(0.5, 0.62, 0.26, 205, 335, 0.3))
    w[15] = dot(0.5, 0.5) + bracket_right(0.28) + bracket_left(0.72)
    w[16] = dot(0.5, 0.5) + bracket_left(0.22) + bracket_right(0.78)
    w[17] = thunder()
    w[18] = line((0.28, 0.84), (0.5, 0.14), (0.72, 0.84)) + line((0.36, 0.58), (0.64, 0.58))
    w[19] = line(*arc(0.24, 0.5, 0.18, 75, -75, 0.38)) + line(*arc(0.76, 0.5, 0.18, 105, 255, 0.38))
    ended = [comma(0.5, 0.57), dot(0.5, 0.5), star(0.5, 0.5, 0.2), column(dot, star),
             freezing(dot, False), shower([dot]), shower([small_star]), shower([small_up]), fog(), thunder()]
    for i, paths in enumerate(ended):
        w[20 + i] = past_of(paths)
    for i, change in enumerate((-1, 0, 1)):
        w[30 + i] = storm(change)
        w[33 + i] = storm(change, True)
    for i in range(4):
        w[36 + i] = drift(i < 2, i % 2 == 1)
    w[40] = shift(fog(), 0, 0, 0.8) + bracket_left(0.08) + bracket_right(0.92)
    w[41] = fog((0, 1, 2))
    for i, side in enumerate((0.92, None, 0.08)):
        for clear in (0, 1):
            w[42 + 2 * i + clear] = fog(() if clear else (0,)) + (bar(side) if side else [])
    rime = line((0.36, 0.62), (0.5, 0.22), (0.64, 0.62))
    w[48] = fog((0,)) + rime
    w[49] = fog() + rime
    for first, mark in ((50, comma), (60, dot), (70, star)):
        for i in range(6):
            w[first + i] = pattern(mark, i)
    w[56], w[57] = freezing(comma, False), freezing(comma, True)
    w[58], w[59] = column(comma, dot), column(comma, dot, comma)
    w[66], w[67] = freezing(dot, False), freezing(dot, True)
    w[68], w[69] = column(dot, small_star), column(small_star, dot, small_star)
    w[76] = arrow(0.5, 0.5, 0.12, 0.5, 0.14) + arrow(0.5, 0.5, 0.88, 0.5, 0.14)
    w[77] = grain(0.5, 0.5)
    w[78] = star(0.5, 0.5, 0.2) + line((0.1, 0.5), (0.9, 0.5))
    w[79] = pellet(0.5, 0.46, 0.28)
    showers = [([dot], 0), ([dot], 1), ([dot], 2), ([dot, small_star], 0), ([dot, small_star], 1),
               ([small_star], 0), ([small_star], 1), ([small_up], 0), ([small_up], 1), ([solid_up], 0),
               ([solid_up], 1)]
    for i, (marks, bars) in enumerate(showers):
        w[80 + i] = shift(shower(marks, bars), 0, 0, 0.94 if len(marks) > 1 else 1.0)
    gone = shift(thunder(), -0.2, 0, 0.85) + past(0.68)
    w[91] = gone + dot(0.86, 0.5)
    w[92] = gone + dot(0.86, 0.62) + dot(0.86, 0.38)
    w[93] = gone + star(0.86, 0.5, 0.11)
    w[94] = gone + star(0.86, 0.64, 0.11) + star(0.86, 0.36, 0.11)
    low = thunder(0.38, 0.3)
    strong = thunder(0.38, 0.3, True)
    w[95] = low + dot(0.5, 0.84)
    w[96] = low + small_up(0.5, 0.85)
    w[97] = strong + dot(0.5, 0.84)
    w[98] = low + shift(storm(), 0, 0.35, 0.38)
    w[99] = strong + small_up(0.5, 0.85)
    return {"%02d" % code: paths for code, paths in w.items()}


def metar(w):
    """The weather of a routine report; longer names come first."""
    names = {
        "+TSGR": "99", "TSGR": "96", "+TSGS": "99", "TSGS": "96", "+TSRA": "97", "-TSRA": "95",
        "TSRA": "95", "TSSN": "95", "TSPL": "96", "TSDU": "98", "VCTS": "17", "TS": "17",
        "+FZRA": "67", "-FZRA": "66", "FZRA": "67", "+FZDZ": "57", "-FZDZ": "56", "FZDZ": "57",
        "FZFG": "49", "+SHRA": "82", "-SHRA": "80", "SHRA": "81", "+SHSN": "86", "-SHSN": "85",
        "SHSN": "86", "SHGR": "90", "SHGS": "88", "SHPL": "88", "VCSH": "16", "BLSN": "38",
        "DRSN": "36", "BLDU": "31", "BLSA": "31", "DRDU": "31", "DRSA": "31", "MIFG": "12",
        "BCFG": "41", "PRFG": "44", "VCFG": "40", "+RASN": "69", "-RASN": "68", "RASN": "69",
        "+RA": "65", "-RA": "61", "RA": "63", "+DZ": "55", "-DZ": "51", "DZ": "53",
        "+SN": "75", "-SN": "71", "SN": "73", "SG": "77", "IC": "76", "PL": "79", "GR": "90",
        "GS": "88", "BR": "10", "FG": "45", "FU": "04", "HZ": "05", "DU": "06", "SA": "07",
        "PO": "08", "SQ": "18", "FC": "19", "SS": "34", "DS": "34", "VA": "04",
    }
    return {name: w[code] for name, code in names.items()}


# --- Clouds and tendency ---------------------------------------------------------

def sky():
    r = 0.32

    def sector(start, end, steps):
        return fill(*([(0.5, 0.5)] + arc(0.5, 0.5, r, start, end, steps=steps)))
    s = {"0": [], "1": line((0.5, 0.5 + r), (0.5, 0.5 - r)), "2": sector(0, 90, 6)}
    s["3"] = s["2"] + s["1"]
    s["4"] = sector(-90, 90, 12)
    s["5"] = s["4"] + line((0.5 - r, 0.5), (0.5, 0.5))
    s["6"] = sector(-180, 90, 16)
    s["7"] = fill(*arc(0.5, 0.5, r, -75, 75)) + fill(*arc(0.5, 0.5, r, 105, 255))
    s["8"] = fill(*arc(0.5, 0.5, r, 0, 360, steps=16))
    d = r * math.sqrt(0.5)
    s["9"] = line((0.5 - d, 0.5 - d), (0.5 + d, 0.5 + d)) + line((0.5 - d, 0.5 + d), (0.5 + d, 0.5 - d))
    s["/"] = line((0.32, 0.34), (0.32, 0.66), (0.5, 0.46), (0.68, 0.66), (0.68, 0.34))
    return {name: ring(0.5, 0.5, r) + paths for name, paths in s.items()}


def tendency():
    return {
        "0": line((0.15, 0.25), (0.55, 0.75), (0.85, 0.4)),
        "1": line((0.15, 0.2), (0.55, 0.72), (0.85, 0.72)),
        "2": line((0.2, 0.2), (0.8, 0.8)),
        "3": line((0.15, 0.65), (0.4, 0.3), (0.85, 0.8)),
        "4": line((0.15, 0.5), (0.85, 0.5)),
        "5": line((0.15, 0.75), (0.55, 0.25), (0.85, 0.6)),
        "6": line((0.15, 0.8), (0.55, 0.28), (0.85, 0.28)),
        "7": line((0.2, 0.8), (0.8, 0.2)),
        "8": line((0.15, 0.35), (0.4, 0.7), (0.85, 0.2)),
    }


def dome(x=0.5, y=0.35, r=0.27):
    return line(*arc(x, y, r, 0, 180))


def base(x=0.5, y=0.35, w=0.36):
    return line((x - w, y), (x + w, y))


def wave(y=0.5, w=0.2, h=0.14):
    """Stratocumulus: two arcs that hang from a line."""
    return line(*arc(0.5 - w, y, w, 180, 360, h)) + line(*arc(0.5 + w, y, w, 180, 360, h))


def low_clouds():
    return {
        "1": base() + dome(),
        "2": base() + line(*(arc(0.38, 0.45, 0.14, 180, 20, 0.2, 8) + arc(0.58, 0.6, 0.17, 170, 0, 0.2, 8))) +
        line((0.24, 0.35), (0.24, 0.45)) + line((0.75, 0.6), (0.75, 0.35)),
        "3": base(w=0.3) + line((0.28, 0.3), (0.36, 0.62)) + line((0.72, 0.3), (0.64, 0.62)) +
        line(*arc(0.5, 0.62, 0.14, 0, 180, 0.18)),
        "4": wave(0.42) + line(*arc(0.5, 0.46, 0.24, 0, 180, 0.26)),
        "5": wave(),
        "6": line((0.12, 0.5), (0.88, 0.5)),
        "7": line((0.12, 0.5), (0.3, 0.5)) + line((0.41, 0.5), (0.59, 0.5)) + line((0.7, 0.5), (0.88, 0.5)),
        "8": wave(0.68) + base(0.5, 0.2, 0.3) + dome(0.5, 0.2, 0.2),
        "9": base(w=0.3) + line((0.28, 0.35), (0.42, 0.56), (0.22, 0.74), (0.78, 0.74), (0.58, 0.56), (0.72, 0.35)),
    }


def turret(x, y=0.5, r=0.13):
    return line(*arc(x, y, r, 180, 360))


def middle_clouds():
    slant = line((0.2, 0.25), (0.5, 0.75), (0.85, 0.75))
    hook = line(*arc(0.3, 0.5, 0.2, 180, 360, 0.2))
    return {
        "1": slant,
        "2": slant + line((0.34, 0.25), (0.6, 0.68)),
        "3": hook + line(*arc(0.7, 0.5, 0.2, 180, 300, 0.2)),
        "4": hook + line(*arc(0.7, 0.5, 0.2, 180, 300, 0.2)) + line((0.5, 0.5), (0.5, 0.66)),
        "5": line(*arc(0.3, 0.56, 0.2, 180, 360)) + line(*arc(0.7, 0.56, 0.2, 180, 360)) +
        line((0.86, 0.3), (0.94, 0.4)) + line((0.1, 0.56), (0.1, 0.68)),
        "6": base(0.5, 0.62, 0.3) + line(*arc(0.34, 0.62, 0.16, 180, 360, 0.22)) +
        line(*arc(0.66, 0.62, 0.16, 180, 360, 0.22)),
        "7": wave(0.62) + wave(0.36),
        "8": line((0.15, 0.35), (0.85, 0.35)) + line((0.3, 0.35), (0.3, 0.7), (0.42, 0.58), (0.54, 0.7), (0.54, 0.35)),
        "9": turret(0.25, 0.62) + turret(0.5, 0.48) + turret(0.75, 0.62),
    }


def high_clouds():
    comma_hook = line(*(arc(0.32, 0.62, 0.14, 200, 0, 0.14, 8) + [(0.5, 0.45), (0.62, 0.38), (0.84, 0.38)]))
    rise = line((0.2, 0.25), (0.2, 0.6)) + line(*arc(0.36, 0.6, 0.16, 180, 0))
    double = line((0.15, 0.38), (0.85, 0.38)) + line((0.15, 0.62), (0.85, 0.62))
    return {
        "1": comma_hook,
        "2": comma_hook + line((0.62, 0.38), (0.84, 0.56)),
        "3": comma_hook + line((0.5, 0.24), (0.84, 0.24)),
        "4": rise + line((0.52, 0.6), (0.85, 0.3)),
        "5": rise + line((0.52, 0.6), (0.52, 0.35), (0.88, 0.35)),
        "6": rise + line((0.52, 0.6), (0.52, 0.35), (0.88, 0.35), (0.88, 0.6)),
        "7": double + line((0.15, 0.38), (0.15, 0.62)) + line((0.85, 0.38), (0.85, 0.62)),
        "8": double + line((0.15, 0.38), (0.15, 0.62)),
        "9": turret(0.3, 0.58, 0.16) + turret(0.62, 0.58, 0.16) + line((0.78, 0.58), (0.9, 0.72)),
    }


# --- Files -----------------------------------------------------------------------

def number(value):
    return ("%.3f" % min(max(value, 0.0), 1.0)).rstrip("0").rstrip(".")


def write(path, symbols):
    if len(symbols) > 100:
        sys.exit("%s: more than 100 symbols" % path)
    with open(path, "w", encoding="ascii") as f:
        for name, paths in symbols.items():
            f.write(name + "\n")
            for points, solid in paths:
                if not 2 <= len(points) <= MOST_POINTS:
                    sys.exit("%s: a path of %d points" % (name, len(points)))
                f.write(" ".join("%s,%s" % (number(x), number(y)) for x, y in points))
                f.write(" Fill\n" if solid else " Line\n")
            f.write("$\n")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    present = weather()
    assert len(present) == 100
    files = {"wx": present, "metar": metar(present), "sky": sky(), "tend": tendency(),
             "cl": low_clouds(), "cm": middle_clouds(), "ch": high_clouds()}
    for name, symbols in files.items():
        write(os.path.join(sys.argv[1], name + ".smb"), dict(sorted(symbols.items())
                                                             if name != "metar" else symbols.items()))


if __name__ == "__main__":
    main()

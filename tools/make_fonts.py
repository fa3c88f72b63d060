#!/usr/bin/env python3
"""Makes the stroke fonts of etc/ from Hershey fonts in James Hurt's format.

    tools/make_fonts.py /usr/share/hershey-fonts etc

A glyph of the source is a line: 5 columns number, 3 columns count of pairs,
then the pairs. A value is the character code less that of R; the first pair
is the left and right edge, a pair " R" lifts the pen, and y grows downward
from the capital top at -12 to the baseline at 9.

The target has its baseline at 35 and its capitals at 140, so the scale is 5.
Each glyph ends with a move to its right edge: the largest x is its width.
"""

import pathlib
import sys

FONTS = {
    "modern": "rowmans",
    "bold": "rowmand",
    "roman": "timesr",
    "romanb": "timesrb",
    "italic": "timesi",
    "script": "scripts",
    "greek": "greeks",
}
SCALE = 5
BASELINE = 35
SOURCE_BASELINE = 9
SIDE = 12  # free space left of a glyph, which the letter space makes up for
LETTER_SPACE = 25
PEN_UP = 128
LARGEST_X = 125  # 254 and 255 are marks
END_OF_GLYPH = 255
END_OF_DATA = 254
FIRST_CODE = 32


def strokes_of(line):
    """Left edge, right edge and the pairs of a glyph, None for a lifted pen."""
    count = int(line[5:8])
    text = line[8 : 8 + 2 * count]
    values = [ord(c) - ord("R") for c in text]
    pairs = []
    for i in range(2, len(values), 2):
        lifted = text[i : i + 2] == " R"
        pairs.append(None if lifted else (values[i], values[i + 1]))
    return values[0], values[1], pairs


def convert(line):
    """The bytes of a glyph, without its end mark."""
    left, right, pairs = strokes_of(line)
    if not pairs:
        return []
    width = SCALE * (right - left) - LETTER_SPACE
    squeeze = min(1.0, LARGEST_X / width)
    out = []
    down = False
    for pair in pairs:
        if pair is None:
            down = False
            continue
        x = round((SCALE * pair[0] - SCALE * left - SIDE) * squeeze)
        x = min(max(x, 0), LARGEST_X)
        y = max(BASELINE + SCALE * (SOURCE_BASELINE - pair[1]), 0)
        out += [x if down else PEN_UP + x, y]
        down = True
    return out + [PEN_UP + min(width, LARGEST_X), BASELINE]


def make_font(source):
    """Text of a font file: stroke data, a glyph to a line, and the index."""
    lines = [str(END_OF_GLYPH)]
    index = [-1] * 256
    place = 1
    for code, line in enumerate(source.splitlines(), FIRST_CODE):
        glyph = convert(line)
        if not glyph or code > 255:
            continue
        index[code] = place
        place += len(glyph) + 1
        lines.append(" ".join(map(str, glyph + [END_OF_GLYPH])))
    lines.append(str(END_OF_DATA))
    for i in range(0, 256, 16):
        lines.append(" ".join(map(str, index[i : i + 16])))
    return "\n".join(lines) + "\n"


def main():
    source, target = map(pathlib.Path, sys.argv[1:3])
    for name, original in FONTS.items():
        text = (source / f"{original}.jhf").read_text(encoding="ascii")
        (target / f"{name}.fnt").write_text(make_font(text), encoding="ascii")
    names = "".join(f"{name} {name}.fnt\n" for name in FONTS)
    (target / "zyr.fnl").write_text(names, encoding="ascii")


if __name__ == "__main__":
    main()

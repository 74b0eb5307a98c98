#!/usr/bin/env python3
"""Letters of the panel's images: one round-ended stroke face, drawn on whole pixels.

A drawing holds a word as a path with these attributes, and this script fills in its "d":

    data-word    the text, capital letters; n is an N that stays open on a slide seen from the side
    data-at      "X Y": left edge and top edge of the ink, or the middle and the top edge
    data-anchor  "middle" when X is the middle of the word, otherwise absent
    data-cap     height of the ink of a capital, pixels
    data-wide    width of the ink of a normal letter, pixels; even, so that the stem of a T stands on whole pixels
    data-gap     pixels between the ink of two letters
    data-pen     width of the stroke, pixels (2 when absent)

usage: letters.py DRAWING...           lays the words of the drawings again, in place
       letters.py --check DRAWING...   changes nothing, fails when a drawing is out of date
"""
import math
import re
import sys

# What a letter adds to the width of a normal one (None: as wide as its stroke), and its strokes: corners "x,y" in parts
# of the letter's box. A corner that ends in "r" is rounded, a stroke that ends in "z" is closed.
GLYPHS = {
    "A": (0, "0,1 .5,0 1,1 | .17,.66 .83,.66"),
    "B": (0, "0,.5 0,0 1,0r 1,.5r z | 0,.5 1,.5r 1,1r 0,1 z"),
    "C": (0, "1,.25 1,0r 0,0r 0,1r 1,1r 1,.75"),
    "D": (0, "0,0 1,0r 1,1r 0,1 z"),
    "E": (-1, "1,0 0,0 0,1 1,1 | 0,.5 .8,.5"),
    "F": (-1, "1,0 0,0 0,1 | 0,.5 .8,.5"),
    "G": (0, "1,.25 1,0r 0,0r 0,1r 1,1r 1,.5 .6,.5"),
    "H": (0, "0,0 0,1 | 1,0 1,1 | 0,.5 1,.5"),
    "I": (None, "0,0 0,1"),
    "J": (-1, "1,0 1,1r 0,1r 0,.75"),
    "K": (0, "0,0 0,1 | 1,0 0,.6 | .35,.4 1,1"),
    "L": (-1, "0,0 0,1 1,1"),
    "M": (2, "0,1 0,0 .5,.6 1,0 1,1"),
    "N": (0, "0,1 0,0 1,1 1,0"),
    "n": (2, "0,1 0,0 1,1 1,0"),
    "O": (0, "0,0r 1,0r 1,1r 0,1r z"),
    "P": (0, "0,1 0,0 1,0r 1,.5r 0,.5"),
    "Q": (0, "0,0r 1,0r 1,1r 0,1r z | .6,.65 1,1.05"),
    "R": (0, "0,1 0,0 1,0r 1,.5r 0,.5 | .5,.5 1,1"),
    "S": (0, "1,0 0,0r 0,.5r 1,.5r 1,1r 0,1"),
    "T": (0, "0,0 1,0 | .5,0 .5,1"),
    "U": (0, "0,0 0,1r 1,1r 1,0"),
    "V": (0, "0,0 .5,1 1,0"),
    "W": (4, "0,0 .25,1 .5,.25 .75,1 1,0"),
    "X": (0, "0,0 1,1 | 1,0 0,1"),
    "Y": (0, "0,0 .5,.5 1,0 | .5,.5 .5,1"),
    "Z": (0, "0,0 1,0 0,1 1,1"),
    ".": (None, "0,1 0,1"),
}
KERNING = {"AT": -1, "TA": -1, "LT": -1, "AV": -1, "VA": -1, "AY": -1, "YA": -1, "RT": -1}


def number(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


def towards(start, end, distance):
    length = math.dist(start, end)
    return tuple(a + (b - a) * distance / length for a, b in zip(start, end))


def half_or_whole_side(corners, rounded, here, there):
    """How much of the side between two corners the rounding of the first may take: two roundings share it."""
    side = math.dist(corners[here], corners[there])
    return side / 2 if rounded[there] else side


def stroke(text, x, y, width, height, radius):
    closed = text.endswith("z")
    words = text.rstrip("z").split()
    rounded = [word.endswith("r") for word in words]
    parts = [[float(part) for part in word.rstrip("r").split(",")] for word in words]
    # Level strokes stand on whole pixels, so that they stay sharp.
    corners = [(x + across * width, y + round(down * height)) for across, down in parts]
    count = len(corners)
    path = []
    for here, corner in enumerate(corners):
        verb = "L" if path else "M"
        if not rounded[here]:
            path.append(f"{verb}{number(corner[0])} {number(corner[1])}")
            continue
        before, after = (here - 1) % count, (here + 1) % count
        cut = min(radius, *(half_or_whole_side(corners, rounded, here, side) for side in (before, after)))
        start, end = towards(corner, corners[before], cut), towards(corner, corners[after], cut)
        turn = (corner[0] - start[0]) * (end[1] - corner[1]) - (corner[1] - start[1]) * (end[0] - corner[0])
        path.append(f"{verb}{number(start[0])} {number(start[1])}")
        path.append(f"A{number(cut)} {number(cut)} 0 0 {int(turn > 0)} {number(end[0])} {number(end[1])}")
    return "".join(path) + ("Z" if closed else "")


def letter_width(letter, wide, pen):
    extra = GLYPHS[letter][0]
    return pen if extra is None else wide + extra


def word_width(text, wide, gap, pen):
    """Width of the ink of a word."""
    return place(text, 0, wide, gap, pen)[1]


def place(text, left, wide, gap, pen):
    """The left edge of each letter's ink, and the right edge of the last."""
    edges, right, previous = [], left, ""
    for letter in text:
        if letter == " ":
            right += 2 * gap + wide // 2
            edges.append(right)
            previous = ""
            continue
        if edges and previous:
            right += gap + KERNING.get(previous + letter, 0)
        edges.append(right)
        right += letter_width(letter, wide, pen)
        previous = letter
    return edges, right


def word_path(attributes):
    text = attributes["word"]
    left, top = (float(part) for part in attributes["at"].split())
    cap, wide, gap = (float(attributes[name]) for name in ("cap", "wide", "gap"))
    pen = float(attributes.get("pen", 2))
    if attributes.get("anchor") == "middle":
        left = round(left - word_width(text, wide, gap, pen) / 2)
    radius = round((cap - pen) * 0.36)
    paths = []
    for letter, edge in zip(text, place(text, left, wide, gap, pen)[0]):
        if letter == " ":
            continue
        width = letter_width(letter, wide, pen) - pen
        for part in GLYPHS[letter][1].split("|"):
            paths.append(stroke(part.strip(), edge + pen / 2, top + pen / 2, width, cap - pen, radius))
    return "".join(paths)


def relay(drawing):
    def fill(match):
        attributes = dict(re.findall(r'data-(\w+)="([^"]*)"', match[0]))
        return re.sub(r'\bd="[^"]*"', f'd="{word_path(attributes)}"', match[0])

    return re.sub(r"<path\b[^>]*\bdata-word=[^>]*>", fill, drawing)


def main(arguments):
    check = arguments[:1] == ["--check"]
    stale = []
    for name in arguments[check:]:
        with open(name, encoding="utf-8") as file:
            old = file.read()
        new = relay(old)
        if new == old:
            continue
        stale.append(name)
        if not check:
            with open(name, "w", encoding="utf-8") as file:
                file.write(new)
    if check and stale:
        sys.exit("words are out of date in " + ", ".join(stale))


if __name__ == "__main__":
    main(sys.argv[1:])

#!/usr/bin/env python3
"""Writes the rows of PNG files as they are, without the filters that a row may be stored with.

The panel's drawings are flat: unfiltered rows compress better and are decoded in two thirds of the time.

usage: plainrows.py IMAGE...            writes the images again, in place; their pixels stay
       plainrows.py --check IMAGE...    changes nothing, fails when an image has a filtered row
"""
import struct
import sys
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {2: 3, 6: 4}  # of the colour types that the renderer writes: RGB and RGBA
BEST = 9


def chunks(data):
    at = len(SIGNATURE)
    while at < len(data):
        (length,) = struct.unpack_from(">I", data, at)
        yield data[at + 4:at + 8], data[at + 8:at + 8 + length]
        at += 12 + length


def chunk(kind, content):
    return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))


def nearest(left, above, corner):
    guess = left + above - corner
    return min((left, above, corner), key=lambda value: abs(guess - value))


PREDICTIONS = (
    lambda left, above, corner: 0,
    lambda left, above, corner: left,
    lambda left, above, corner: above,
    lambda left, above, corner: (left + above) // 2,
    nearest,
)


def rows(image):
    """The filter of each row and the row without it."""
    parts = list(chunks(image))
    width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", parts[0][1])
    if depth != 8 or interlace or colour not in CHANNELS:
        sys.exit("plainrows.py: not a plain image of 8 bits a channel")
    pixel = CHANNELS[colour]
    data = zlib.decompress(b"".join(content for kind, content in parts if kind == b"IDAT"))
    above = bytes(pixel + width * pixel)
    for start in range(0, len(data), 1 + width * pixel):
        row = bytearray(pixel)  # a clear pixel stands before the first
        for byte in data[start + 1:start + 1 + width * pixel]:
            at = len(row)
            row.append(byte + PREDICTIONS[data[start]](row[at - pixel], above[at], above[at - pixel]) & 0xFF)
        yield data[start], bytes(row[pixel:])
        above = row


def plain(image):
    content = zlib.compress(b"".join(b"\0" + row for _, row in rows(image)), BEST)
    kept = [(kind, old) for kind, old in chunks(image) if kind not in (b"IDAT", b"IEND")]
    return SIGNATURE + b"".join(chunk(*part) for part in [*kept, (b"IDAT", content), (b"IEND", b"")])


def main(arguments):
    check = arguments[:1] == ["--check"]
    filtered = []
    for name in arguments[check:]:
        with open(name, "rb") as file:
            image = file.read()
        if not any(kind for kind, _ in rows(image)):
            continue
        filtered.append(name)
        if not check:
            with open(name, "wb") as file:
                file.write(plain(image))
    if check and filtered:
        sys.exit("filtered rows: " + ", ".join(filtered))


main(sys.argv[1:])

"""Pictures as lists of rows of (red, green, blue): the camera's and the accepted ones."""

import functools
import struct
import zlib

WIDTH, HEIGHT = 320, 240
# The same picture is looked at again and again, and what looking takes of the processor is missing to the emulator.
remembered = functools.lru_cache(maxsize=16)


def read_camera(path):
    """A picture of the emulator's screen dump (P6)."""
    with open(path, "rb") as file:
        data = file.read()
    magic, width, height, _ = data.split(maxsplit=4)[:4]
    width, height = int(width), int(height)
    if magic != b"P6" or (width, height) != (WIDTH, HEIGHT):
        raise ValueError(f"{path}: a display of {width}x{height}")
    return rows_of(data[len(data) - width * height * 3:], 3)


@remembered
def rows_of(samples, channels):
    pixels = [tuple(samples[i:i + 3]) for i in range(0, len(samples), channels)]
    return [pixels[y * WIDTH:(y + 1) * WIDTH] for y in range(HEIGHT)]


def _undo_filter(kind, line, above, step):
    for i, value in enumerate(line):
        left = line[i - step] if i >= step else 0
        up = above[i]
        corner = above[i - step] if i >= step else 0
        if kind == 1:
            value += left
        elif kind == 2:
            value += up
        elif kind == 3:
            value += (left + up) // 2
        elif kind == 4:
            guess = left + up - corner
            distances = abs(guess - left), abs(guess - up), abs(guess - corner)
            value += (left, up, corner)[distances.index(min(distances))]
        line[i] = value & 255


@remembered
def read_png(path):
    """An accepted picture: 8 bits a channel, not interlaced."""
    with open(path, "rb") as file:
        data = file.read()
    at, packed, channels = 8, b"", 0
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack_from(">IIBB", body)
            channels = {2: 3, 6: 4}.get(colour, 0)
            if (width, height, depth) != (WIDTH, HEIGHT, 8) or not channels:
                raise ValueError(f"{path}: not a picture of the panel")
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    return _unfiltered(zlib.decompress(packed), channels)


def _unfiltered(data, channels):
    rows, above = [], bytearray(WIDTH * channels)
    for y in range(HEIGHT):
        start = y * (WIDTH * channels + 1)
        line = bytearray(data[start + 1:start + 1 + WIDTH * channels])
        _undo_filter(data[start], line, above, channels)
        above = line
        rows.append([tuple(line[i:i + 3]) for i in range(0, len(line), channels)])
    return rows


def write_png(path, rows):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
    lines = b"".join(b"\0" + bytes(value for pixel in row for value in pixel) for row in rows)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0))
                   + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def without(rows, boxes):
    """The picture with black boxes (left, top, width, height)."""
    rows = [list(row) for row in rows]
    for left, top, width, height in boxes:
        for y in range(top, min(top + height, HEIGHT)):
            rows[y][left:left + width] = [(0, 0, 0)] * len(rows[y][left:left + width])
    return rows


def part(rows, box):
    left, top, width, height = box
    return [row[left:left + width] for row in rows[top:top + height]]


def rows_of_565(data, stride):
    """A display's memory of 16 bits a pixel, as the display shows it."""
    rows = []
    for y in range(HEIGHT):
        pixels = struct.unpack_from(f"<{WIDTH}H", data, y * stride)
        rows.append([_as_eight_bits(p >> 11, p >> 5 & 63, p & 31) for p in pixels])
    return rows


def _as_eight_bits(red, green, blue):
    return red << 3 | red >> 2, green << 2 | green >> 4, blue << 3 | blue >> 2


def in_16_bits(rows):
    """The picture in the shades that 16 bits a pixel have."""
    return [[_as_eight_bits(r >> 3, g >> 2, b >> 3) for r, g, b in row] for row in rows]


def farthest(one, other):
    """By how much the channel that differs most differs, of 255."""
    return max(abs(a - b) for row, row2 in zip(one, other) for p, p2 in zip(row, row2) for a, b in zip(p, p2))


def farthest_cell(one, other, size=4):
    """By how much the mean brightness of the square that differs most differs, of 255."""
    def brightness(rows, left, top):
        pixels = [pixel for row in rows[top:top + size] for pixel in row[left:left + size]]
        return sum(map(sum, pixels)) / (3 * len(pixels))
    return max(abs(brightness(one, x, y) - brightness(other, x, y))
               for y in range(0, len(one), size) for x in range(0, len(one[0]), size))

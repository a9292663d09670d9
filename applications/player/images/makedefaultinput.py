"""Draws the picture of an image input that has none: makedefaultinput.py FILE.png.

A tileable checker of greys, so that scale and direction can be seen of what is made of it, and all of it
transparent: packages that bring a picture of their own show that one where theirs is transparent. Standard library
only.
"""
import struct
import sys
import zlib

SIDE = 128
CELL = 16
GREYS = (112, 144)
MARK = 176  # the first cell, to tell the corners apart


def grey(x, y):
    column, row = x // CELL, y // CELL
    if column == 0 and row == 0:
        return MARK
    edge = 6 if x % (4 * CELL) == 0 or y % (4 * CELL) == 0 else 0
    return GREYS[(column + row) % 2] - edge


def chunk(name, data):
    return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))


def main():
    rows = b"".join(b"\0" + bytes(v for x in range(SIDE) for v in [grey(x, y)] * 3 + [0]) for y in range(SIDE))
    header = struct.pack(">IIBBBBB", SIDE, SIDE, 8, 6, 0, 0, 0)
    with open(sys.argv[1], "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) +
                   chunk(b"IEND", b""))


main()

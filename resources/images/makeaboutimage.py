"""Renders the picture of the about box: makeaboutimage.py FILE.png [DIVISOR].

Three balls on a dark floor, each of a material that a few formulas make: bricks, worn metal, woven cloth.
Standard library only; takes about a minute for the full 1200 x 680. A DIVISOR of 4 gives a quick look.
"""
import math
import struct
import sys
import zlib

WIDTH, HEIGHT = 1200, 680
KEY = (-0.48, 0.62, 0.62)
RIM = (0.75, 0.25, -0.61)
ACCENT = (0.10, 0.36, 0.58)


def lattice(x, y, seed):
    n = (x * 374761393 + y * 668265263 + seed * 974634777) & 0xFFFFFFFF
    n = ((n ^ (n >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((n ^ (n >> 16)) & 0xFFFF) / 65535.0


def noise(x, y, seed=0):
    ix, iy = math.floor(x), math.floor(y)
    fx, fy = x - ix, y - iy
    fx, fy = fx * fx * (3 - 2 * fx), fy * fy * (3 - 2 * fy)
    top = lattice(ix, iy, seed) * (1 - fx) + lattice(ix + 1, iy, seed) * fx
    bottom = lattice(ix, iy + 1, seed) * (1 - fx) + lattice(ix + 1, iy + 1, seed) * fx
    return top * (1 - fy) + bottom * fy


def fractal(x, y, octaves, seed=0):
    total, weight = 0.0, 0.5
    for octave in range(octaves):
        total += weight * noise(x, y, seed + octave)
        x, y, weight = 2 * x, 2 * y, weight / 2
    return total


def smooth(low, high, x):
    t = min(1.0, max(0.0, (x - low) / (high - low)))
    return t * t * (3 - 2 * t)


def mix(a, b, t):
    return tuple(x * (1 - t) + y * t for x, y in zip(a, b))


# A material maps (u, v) to (height, colour, gloss).
def bricks(u, v):
    u, v = u * 7, v * 11
    row = math.floor(v)
    u += 0.5 * (row & 1)
    column = math.floor(u)
    edge = min(min(u - column, 1 - (u - column)) * 1.6, min(v - row, 1 - (v - row)))
    body = smooth(0.04, 0.13, edge + 0.04 * (fractal(u * 5, v * 5, 2) - 0.4))
    tint = lattice(column, row, 7)
    grain = fractal(u * 6, v * 6, 3, 3)
    clay = mix((0.40, 0.13, 0.07), (0.58, 0.25, 0.14), tint)
    colour = mix((0.30, 0.28, 0.26), tuple(c * (0.65 + 0.7 * grain) for c in clay), body)
    return body * (0.8 + 0.2 * tint) + 0.25 * grain, colour, 0.10 * body


def worn_metal(u, v):
    stain = fractal(u * 6, v * 6, 5, 11)
    rust = smooth(0.47, 0.60, stain)
    scratch = noise(u * 4, v * 160, 5)
    steel = mix((0.20, 0.21, 0.22), (0.31, 0.32, 0.33), scratch)
    red = mix((0.24, 0.07, 0.02), (0.55, 0.22, 0.06), fractal(u * 24, v * 24, 3, 17))
    height = rust * (0.35 + 0.8 * fractal(u * 28, v * 28, 3, 13)) + 0.06 * scratch
    return height, mix(steel, red, rust), 0.95 * (1 - rust)


def cloth(u, v):
    u, v = u * 26, v * 26
    column, row = math.floor(u), math.floor(v)
    fu, fv = u - column - 0.5, v - row - 0.5
    over = (column + row) & 1
    across, along = (fu, fv) if over else (fv, fu)
    height = math.sqrt(max(0.0, 1 - 3.6 * across * across)) * (1 - 1.4 * along * along)
    fibre = noise(u * 7 if over else u * 2, v * 2 if over else v * 7, 19)
    warp = mix((0.09, 0.27, 0.42), (0.16, 0.42, 0.60), fibre)
    weft = mix((0.30, 0.36, 0.40), (0.52, 0.57, 0.60), fibre)
    colour = tuple(c * (0.35 + 0.65 * height) for c in (warp if over else weft))
    return height + 0.12 * fibre, colour, 0.08


# Centre (x, y) and radius in units of the picture's height, material, height of its relief.
BALLS = [((-0.56, -0.02), 0.27, bricks, 0.020), ((0.0, 0.03), 0.32, worn_metal, 0.012),
         ((0.56, -0.02), 0.27, cloth, 0.012)]


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def unit(v):
    length = math.sqrt(dot(v, v))
    return tuple(c / length for c in v)


def shade(n, material, relief):
    def place(m):
        return math.atan2(m[0], m[2]) / math.pi, math.asin(max(-1, min(1, m[1]))) / math.pi

    u, v = place(n)
    height, colour, gloss = material(u, v)
    step = 0.002
    du = (material(u + step, v)[0] - height) / step
    dv = (material(u, v + step)[0] - height) / step
    tangent = unit((n[2], 0.0, -n[0])) if abs(n[1]) < 0.999 else (1.0, 0.0, 0.0)
    bitangent = (n[1] * tangent[2] - n[2] * tangent[1], n[2] * tangent[0] - n[0] * tangent[2],
                 n[0] * tangent[1] - n[1] * tangent[0])
    bent = unit(tuple(n[i] - relief * (du * tangent[i] - dv * bitangent[i]) for i in range(3)))
    key = max(0.0, dot(bent, KEY))
    half = unit((KEY[0], KEY[1], KEY[2] + 1))
    glint = gloss * max(0.0, dot(bent, half)) ** (12 + 60 * gloss)
    rim = max(0.0, dot(bent, RIM) + 0.25) * (1 - max(0.0, n[2])) ** 2 * 1.6
    sky = 0.16 + 0.14 * bent[1]
    mirror = gloss * 0.35 * smooth(0.0, 0.5, bent[1])
    return tuple(colour[i] * (1.35 * key + sky) + glint + mirror * 0.6 + rim * (ACCENT[i] + 0.05) * 1.5
                 for i in range(3))


def background(x, y):
    glow = math.exp(-(x * x * 1.1 + (y - 0.05) ** 2 * 3.0) * 1.5)
    light = 0.012 + 0.045 * glow
    floor = smooth(-0.20, -0.34, y)
    shadow = 1.0
    for (cx, cy), radius, _, _ in BALLS:
        dx, dy = (x - cx) / (radius * 1.25), (y - (cy - radius)) / (radius * 0.30)
        shadow *= 1 - 0.85 * math.exp(-(dx * dx + dy * dy) * 1.4)
    light *= (1 + 0.5 * floor) * shadow
    return light, light, light * 1.02


def sample(x, y):
    for (cx, cy), radius, material, relief in BALLS:
        nx, ny = (x - cx) / radius, (y - cy) / radius
        squared = nx * nx + ny * ny
        if squared < 1.02:
            edge = math.sqrt(squared)
            pixel = 1.5 / (HEIGHT * radius)
            cover = smooth(1 + pixel / 2, 1 - pixel / 2, edge) if edge > 1 - pixel else 1.0
            if cover <= 0:
                continue
            nz = math.sqrt(max(1e-4, 1 - squared))
            return mix(background(x, y), shade(unit((nx, ny, nz)), material, relief), cover)
    return background(x, y)


def encode(value):
    value = 1 - math.exp(-1.25 * max(0.0, value))
    srgb = 12.92 * value if value < 0.0031308 else 1.055 * value ** (1 / 2.4) - 0.055
    return min(255, max(0, round(255 * srgb)))


def main():
    divisor = int(sys.argv[2]) if len(sys.argv) > 2 else 1
    width, height = WIDTH // divisor, HEIGHT // divisor
    rows = bytearray()
    for j in range(height):
        rows.append(0)
        y = 0.5 - (j + 0.5) / height
        for i in range(width):
            x = ((i + 0.5) - width / 2) / height
            rows += bytes(encode(c) for c in sample(x, y))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    with open(sys.argv[1], "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                   chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    main()

"""Pictures that `vellor render` writes, read by other programs, and pictures that other programs write, read by it.

Usage: check_pictures.py VELLOR
Ends with 77, which ctest takes for a test that was skipped, where one of the programs is missing.
"""
import hashlib
import json
import os
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile

SKIPPED = 77
DEBIANS_PYTHON = "/usr/bin/python3"  # has the modules of Debian's packages; the one that runs this need not
os.environ["OPENCV_IO_ENABLE_OPENEXR"] = "1"
try:
    import cv2
    import numpy
except ImportError:
    cv2 = None
PROGRAMS = ("convert", "identify", "exiftool", "exrheader", "tiffinfo")
WIDTH, HEIGHT = 16, 8
PACKAGE = """<package formatversion="1"><graph identifier="g"><inputs>
<input identifier="$outputsize" default="4,3"/><input identifier="photo" type="image"/></inputs>
<nodes><node id="shown" type="imageinput" channels="colour" depth="u16"><param name="image" input="photo"/></node>
<node id="grey" type="greyconversion" depth="u16"><in name="input" from="shown"/></node></nodes>
<outputs><output identifier="rgba8" from="shown" format="rgba8"/><output identifier="rgba16" from="shown" format="rgba16"/><output identifier="rgb8" from="shown" format="rgb8"/>
<output identifier="grey8" from="grey" format="grey8"/><output identifier="grey16" from="grey" format="grey16"/></outputs></graph></package>"""

# Format and depth of a file, the output in it, and by how much of 65535 a sample may differ: 0 where nothing may be lost.
WRITTEN = [
    ("png", "8", "rgba8", 0), ("png", "16", "rgba16", 0), ("png", "8", "grey8", 0), ("png", "16", "grey16", 0),
    ("tif", "8", "rgba8", 0), ("tif", "16", "rgba16", 0), ("tif", "8", "grey8", 0), ("tif", "16", "grey16", 0),
    ("tif", "32f", "rgba16", 1), ("tif", "32f", "grey16", 1),
    ("tga", "8", "rgba8", 0), ("tga", "8", "grey8", 0), ("bmp", "8", "rgba8", 0), ("bmp", "8", "grey8", 0), ("psd", "16", "grey16", 0),
    # ImageMagick reads halves of EXR files alone.
    ("exr", "16f", "rgba16", 33), ("exr", "32f", "rgba16", 33), ("exr", "32f", "grey16", 33),
    ("webp", "8", "rgb8", 1500), ("jpg", "8", "rgb8", 1500), ("jpg", "8", "grey8", 1500),
]
# ImageMagick takes blue for the first channel of DDS files, whatever the masks say: these are looked at byte by byte.
DDS = [("8", "rgba8"), ("16", "rgba16"), ("8", "grey8"), ("16", "grey16")]

# A name with the extension, what `convert` does to the picture on its way there (nothing for a file made here), and the tolerance in 65535ths: with what
# the same program reads back from the file is compared. None: only that it is read (whole numbers of 32 bits become floats
# as they are, and signed numbers begin at 0).
GREY = ("-alpha", "off", "-colorspace", "Gray")
READ = [
    ("grey8.png", [*GREY, "-depth", "8"], 0), ("grey4.png", [*GREY, "-depth", "4"], 0), ("grey1.png", [*GREY, "-monochrome"], 0),
    ("grey16.png", [*GREY, "-depth", "16"], 0), ("rgb8.png", ["-alpha", "off", "-depth", "8", "-define", "png:color-type=2"], 0),
    ("rgba8.png", ["-depth", "8"], 0), ("rgb16.png", ["-alpha", "off", "-depth", "16"], 0), ("rgba16.png", ["-depth", "16"], 0),
    ("palette.png", ["-alpha", "off", "-colors", "200", "-type", "Palette"], 0),
    ("palette4.png", ["-alpha", "off", "-colors", "12", "-type", "Palette"], 0),
    ("interlaced.png", ["-depth", "8", "-interlace", "PNG"], 0),
    ("grey8.tif", [*GREY, "-depth", "8"], 0), ("white.tif", [*GREY, "-depth", "8", "-define", "quantum:polarity=min-is-white"], 0),
    ("fax.tif", [*GREY, "-monochrome", "-compress", "Group4"], 0), ("grey16.tif", [*GREY, "-depth", "16"], 0),
    ("rgba16.tif", ["-depth", "16"], 0), ("rgb16.tif", ["-alpha", "off", "-depth", "16", "-compress", "Zip"], 0),
    ("msb.tif", ["-depth", "16", "-endian", "MSB"], 0),
    ("float.tif", [*GREY, "-depth", "32", "-define", "quantum:format=floating-point"], 1),
    ("rgbfloat.tif", ["-alpha", "off", "-depth", "32", "-define", "quantum:format=floating-point"], 1),
    ("rgbafloat.tif", ["-depth", "32", "-define", "quantum:format=floating-point"], 1),
    ("whole32.tif", [*GREY, "-depth", "32"], None), ("signed16.tif", [*GREY, "-depth", "16", "-define", "quantum:format=signed"], None),
    ("signed32.tif", [*GREY, "-depth", "32", "-define", "quantum:format=signed"], None),
    ("half.exr", ["-alpha", "off"], 1), ("alpha.exr", [], 1), ("grey.exr", [*GREY], 1),
    ("light.hdr", ["-alpha", "off"], 600), ("float.pfm", ["-alpha", "off"], 1),
    ("rgb.tga", ["-alpha", "off", "-compress", "None"], 0), ("rgba.tga", ["-compress", "None"], 0), ("packed.tga", ["-compress", "RLE"], 0),
    ("grey.tga", [*GREY, "-compress", "RLE"], 0),
    ("BMP3:rgb.bmp", ["-alpha", "off", "-type", "TrueColor"], 0), ("rgb.bmp", ["-alpha", "off", "-type", "TrueColor"], 0), ("rgba.bmp", [], 0),
    ("palette.bmp", ["-alpha", "off", "-colors", "100", "-type", "Palette"], 0), ("run.bmp", None, 0),
    ("rgba.dds", ["-define", "dds:compression=none"], 0), ("rgb.dds", ["-alpha", "off", "-define", "dds:compression=none"], 0),
    ("dxt1.dds", ["-alpha", "off", "-define", "dds:compression=dxt1"], 300), ("dxt5.dds", ["-define", "dds:compression=dxt5"], 300),
    ("colour.jpg", ["-alpha", "off", "-quality", "95"], 2060), ("grey.jpg", [*GREY, "-quality", "95"], 2060),
    ("progressive.jpg", ["-alpha", "off", "-interlace", "JPEG"], 2060),
    ("lossless.webp", ["-define", "webp:lossless=true", "-define", "webp:exact=true"], 0), ("lossy.webp", ["-alpha", "off"], 800),
    ("flat.psd", ["-alpha", "off", "-depth", "8", "-compress", "RLE"], 0), ("deep.psd", ["-alpha", "off", "-depth", "16"], 0),
    ("lossless.jp2", ["-alpha", "off", "-quality", "0"], 0), ("grey.j2k", [*GREY, "-quality", "0"], 0),
    ("colour.gif", ["-alpha", "off"], 0), ("colour.ppm", ["-alpha", "off", "-depth", "8"], 0), ("deep.ppm", ["-alpha", "off", "-depth", "16"], 0),
    ("colour.pct", ["-alpha", "off"], 0), ("palette.pct", ["-alpha", "off", "-colors", "20", "-type", "Palette"], 257), ("colour.pcx", ["-alpha", "off"], 0), ("colour.sgi", ["-alpha", "off", "-depth", "8"], 0), ("colour.xpm", ["-alpha", "off", "-colors", "16"], 257),
]

# Files that OpenCV writes: a name, channels, the type of a sample and the tolerance in 65535ths, beside what is meant by a sample of the type.
WHOLE = {"uint8": lambda v: v * 257.0, "uint16": lambda v: v, "float32": lambda v: v * 65535.0,
         "int16": lambda v: v.clip(0) / 32767.0 * 65535.0,  # signed numbers begin at 0
         "int32": lambda v: (v > 0) * 65535.0}              # whole numbers become floats as they are
BY_OPENCV = [
    *[(f"{channels}{kind}.{extension}", channels, kind, tolerance) for extension, kind, tolerance in
      [("png", "uint8", 0), ("png", "uint16", 0), ("tif", "uint8", 0), ("tif", "uint16", 0), ("tif", "float32", 1), ("exr", "float32", 1)]
      for channels in (1, 3, 4)],
    ("signed.tif", 1, "int16", 1), ("whole.tif", 1, "int32", 0), ("light.hdr", 3, "float32", 600), ("colour.pfm", 3, "float32", 1),
    ("grey.bmp", 1, "uint8", 0), ("rgb.bmp", 3, "uint8", 0), ("rgba.bmp", 4, "uint8", 0), ("grey.pgm", 1, "uint8", 0), ("deep.pgm", 1, "uint16", 0),
    ("rgb.ppm", 3, "uint8", 0), ("deep.ppm", 3, "uint16", 0), ("rgb.ras", 3, "uint8", 0), ("lossless.webp", 3, "uint8", 0),
]

failures = []


def check(what, fits, got=""):
    if not fits:
        failures.append(what)
        print(f"{what}: {got!r}")


def tell(*words):
    return subprocess.run(words, capture_output=True, text=True).stdout


def samples(path, layout, deep=True):
    """What ImageMagick reads: rows from the top, one number of 16 bits (or 8) a sample, upright and as it stands in the file."""
    raw = subprocess.run(["convert", f"{path}[0]", "-auto-orient", "-set", "colorspace", "sRGB", "-depth", "16" if deep else "8", "-endian", "LSB", f"{layout}:-"], capture_output=True).stdout
    return list(memoryview(raw).cast("H" if deep else "B")) if len(raw) % 2 == 0 else []


def greatest_difference(a, b):
    return max(map(lambda x, y: abs(x - y), a, b)) if a and len(a) == len(b) else f"{len(a)} and {len(b)} samples"


def by_opencv(path, deep):
    """What OpenCV reads: rows from the top, red first, in 65535ths (or 255ths), floats clamped. Height x width x channels."""
    read = cv2.imread(str(path), cv2.IMREAD_UNCHANGED)
    if read is None:
        return numpy.zeros((0, 0, 0))
    read = read.reshape(*read.shape[:2], -1)
    read = read[..., [2, 1, 0, 3][:read.shape[2]]] if read.shape[2] > 1 else read
    scale = 1 if read.dtype != "float32" else 65535 if deep else 255
    return numpy.rint(read.clip(0, 1) * float(scale)) if scale > 1 else read.astype(float)


def check_by_opencv(name, path, got, tolerance, deep):
    """That OpenCV reads what ImageMagick read; it leaves the alpha of BMP files."""
    read = by_opencv(path, deep)
    told = numpy.array(got, float).reshape(HEIGHT, WIDTH, -1)[..., :max(1, read.shape[2])]
    if "rgba8 at 8 in tif" in name:  # here it hands out what libtiff makes of alpha that stands for itself: colours multiplied by it
        told[..., :3] = numpy.rint(told[..., :3] * told[..., 3:] / 255)
        tolerance = 257
    difference = abs(read - told).max() * (1 if deep else 257) if read.shape == told.shape else read.shape
    check(f"{name}, by OpenCV", read.shape == told.shape and difference <= tolerance, difference)


def run_length_bitmap():
    """An 8-bit BMP file in runs, of a palette and WIDTH x HEIGHT pixels: each row ends with 0 0, the picture with 0 1."""
    rows = b"".join(bytes([5, y, WIDTH - 5, 200 + y, 0, 0]) for y in range(HEIGHT)) + bytes([0, 1])
    palette = bytes(value for i in range(256) for value in (i, 255 - i, i // 2, 0))
    header = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 8, 1, len(rows), 2834, 2834, 256, 0)
    return b"BM" + struct.pack("<IHHI", 14 + 40 + 1024 + len(rows), 0, 0, 14 + 40 + 1024) + header + palette + rows


class Place:
    """A folder with the package and a picture of noise; the program in it."""

    def __init__(self, vellor, folder):
        self.vellor, self.folder = vellor, pathlib.Path(folder)
        (self.folder / "g.vlr").write_text(PACKAGE)
        (self.folder / "noise.raw").write_bytes(random.Random(1).randbytes(WIDTH * HEIGHT * 8))
        subprocess.run(["convert", "-size", f"{WIDTH}x{HEIGHT}", "-depth", "16", "-endian", "LSB", "rgba:noise.raw", "noise.png"],
                       cwd=self.folder, check=True)
        subprocess.run(["convert", "-size", f"{WIDTH}x{HEIGHT}", "gradient:#204060-#8090a0", "smooth.png"], cwd=self.folder, check=True)

    def render(self, *words):
        told = subprocess.run([self.vellor, "render", "g.vlr", "--json", *words], cwd=self.folder, capture_output=True, text=True)
        return json.loads(told.stdout)["outputs"] if told.returncode == 0 and not told.stderr else told.stderr


def check_written(place):
    for extension, depth, output, tolerance in WRITTEN:
        name = f"{output} at {depth} in {extension}"
        photo = "photo=noise.png" if tolerance < 100 else "photo=smooth.png"
        told = place.render("--image", photo, "--output", output, "--format", extension, "--depth", depth, "-o", f"{extension}{depth}")
        check(f"{name} is written", isinstance(told, list), told)
        if not isinstance(told, list):
            continue
        path, deep = place.folder / told[0]["file"], output.endswith("16")
        got = samples(path, output.rstrip("168").replace("grey", "gray"), deep)
        if tolerance == 0:
            raw = struct.pack(f"<{len(got)}{'H' if deep else 'B'}", *got)
            check(f"{name}, pixels", hashlib.md5(raw).hexdigest() == told[0]["hash"], got[:8])
        else:
            meant = samples(place.folder / place.render("--image", photo, "--output", output, "-o", "meant")[0]["file"],
                            output.rstrip("168").replace("grey", "gray"), deep)
            difference = greatest_difference(got, meant)
            check(f"{name}, pixels", not isinstance(difference, str) and difference * (1 if deep else 257) <= tolerance, difference)
        if extension not in ("tga", "psd"):
            check_by_opencv(name, path, got, tolerance, deep)
        check_kept(name, path, extension, depth, output)
    for depth, output in DDS:
        told = place.render("--image", "photo=noise.png", "--output", output, "--format", "dds", "--depth", depth, "-o", "dds")
        file = (place.folder / told[0]["file"]).read_bytes()
        words = struct.unpack("<32I", file[:128])
        code, bits, masks = {"rgba8": (0, 32, (0xFF, 0xFF00, 0xFF0000, 0xFF000000)), "rgba16": (36, 0, (0xFF, 0xFF00, 0xFF0000, 0)),
                             "grey8": (0, 8, (0xFF, 0, 0, 0)), "grey16": (0, 16, (0xFFFF, 0, 0, 0))}[output]
        check(f"{output} in dds, header", words[0] == 0x20534444 and words[3:5] == (HEIGHT, WIDTH) and
              words[21:23] == (code, bits) and words[23:27] == masks, words)
        check(f"{output} in dds, pixels", hashlib.md5(file[128:]).hexdigest() == told[0]["hash"], len(file))


def check_kept(name, path, extension, depth, output):
    """Depths, channels and what a file says of itself."""
    facts = json.loads(tell("exiftool", "-j", "-G1", "-n", str(path)) or "[{}]")[0]
    if extension in ("png", "tif", "jpg", "webp", "psd"):
        check(f"{name}, creator", facts.get("XMP-xmp:CreatorTool") == "Vellor Studio", facts)
        check(f"{name}, resolution", facts.get("XMP-tiff:XResolution") == 72 and facts.get("XMP-tiff:ResolutionUnit") == 2, facts)
        check(f"{name}, size", facts.get("XMP-tiff:ImageWidth") == WIDTH and facts.get("XMP-exif:ExifImageHeight") == HEIGHT, facts)
    if extension == "png":
        check(f"{name}, pHYs", facts.get("PNG-pHYs:PixelsPerUnitX") == 2834 and facts.get("PNG:BitDepth") == int(depth), facts)
    if extension == "tif":
        told = tell("tiffinfo", str(path))
        bits = depth.rstrip("f")
        check(f"{name}, tiffinfo", f"Bits/Sample: {bits}" in told and f"Samples/Pixel: {4 if 'rgba' in output else 1}" in told and
              ("Compression Scheme: LZW" in told) and ("IEEE floating point" in told) == (depth == "32f") and
              re.search(r"Resolution: 7(1\.98|2), 7(1\.98|2) pixels/inch", told), told)
    if extension == "exr":
        told = tell("exrheader", str(path))
        kind = "16-bit floating-point" if depth == "16f" else "32-bit floating-point"
        check(f"{name}, exrheader", told.count(kind) == (4 if "rgba" in output else 1) and "compression (type compression): piz" in told, told)


def check_read(place):
    for name, words, tolerance in READ:
        if words is None:
            (place.folder / name).write_bytes(run_length_bitmap())
        else:
            subprocess.run(["convert", "noise.png", *words, name], cwd=place.folder, capture_output=True)
        name = name.split(":")[-1]
        meant = samples(place.folder / name, "rgba")
        told = place.render("--image", f"photo={name}", "--output", "rgba16", "-o", "read")
        check(f"{name} is read", isinstance(told, list), told)
        if isinstance(told, list) and tolerance is not None:
            difference = greatest_difference(samples(place.folder / told[0]["file"], "rgba"), meant)
            check(f"{name}, pixels", not isinstance(difference, str) and difference <= tolerance, difference)


def check_read_from_opencv(place):
    random_numbers = numpy.random.default_rng(1)
    for name, channels, kind, tolerance in BY_OPENCV:
        shape = (HEIGHT, WIDTH, channels) if channels > 1 else (HEIGHT, WIDTH)
        if kind == "float32":
            pixels = random_numbers.random(shape, dtype=kind)
        else:
            limits = numpy.iinfo(kind)
            pixels = random_numbers.integers(limits.min, limits.max, shape, kind, endpoint=True)
        # Floats of three channels would become logarithms otherwise. Above 100, WebP loses nothing.
        options = {"tif": [cv2.IMWRITE_TIFF_COMPRESSION, 1], "webp": [cv2.IMWRITE_WEBP_QUALITY, 101]}.get(name.split(".")[1], [])
        check(f"{name} is written by OpenCV", cv2.imwrite(str(place.folder / name), pixels, options))
        meant = WHOLE[kind](pixels.reshape(HEIGHT, WIDTH, -1).astype(float))
        meant = meant[..., [2, 1, 0, 3][:channels]] if channels > 1 else meant.repeat(3, 2)
        if channels != 4:
            meant = numpy.concatenate([meant, numpy.full((HEIGHT, WIDTH, 1), 65535.0)], 2)
        told = place.render("--image", f"photo={name}", "--output", "rgba16", "-o", "opencv")
        check(f"{name} of OpenCV is read", isinstance(told, list), told)
        if isinstance(told, list):
            difference = abs(by_opencv(place.folder / told[0]["file"], True) - meant).max()
            check(f"{name} of OpenCV, pixels", difference <= tolerance, difference)
    cv2.imwrite(str(place.folder / "double.tif"), numpy.ones((HEIGHT, WIDTH)))
    check("doubles are refused", isinstance(place.render("--image", "photo=double.tif", "--output", "rgba16", "-o", "double"), str))


def main():
    if cv2 is None and os.path.exists(DEBIANS_PYTHON) and not os.path.samefile(sys.executable, DEBIANS_PYTHON):
        os.execv(DEBIANS_PYTHON, [DEBIANS_PYTHON, *sys.argv])
    missing = [program for program in PROGRAMS if not shutil.which(program)]
    if cv2 is None:
        missing.append("OpenCV for Python")
    if not missing and "EXR" not in subprocess.run(["convert", "-list", "format"], capture_output=True, text=True).stdout:
        missing.append("ImageMagick's EXR coder")
    if missing:
        print("Skipped, for these programs are missing:", *missing)
        return SKIPPED
    with tempfile.TemporaryDirectory() as name:
        place = Place(os.path.abspath(sys.argv[1]), name)
        check_written(place)
        check_read(place)
        check_read_from_opencv(place)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

"""Runs `vellor render` as scripts would: values, names, formats, frames, failures, and what is left on the disk.

Usage: check_render.py VELLOR
"""
import base64
import hashlib
import json
import os
import pathlib
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib

PACKAGE = """<package formatversion="1"><graph identifier="wall" label="Wall">
<inputs>
 <input identifier="$outputsize" default="3,3"/><input identifier="$randomseed" default="0"/>
 <input identifier="$time" type="float"/>
 <input identifier="grey" type="float" default="0.2" widget="slider" min="0" max="1" clamp="on"/>
 <input identifier="rows" type="int2" default="2,3"/>
 <input identifier="tint" type="float3" default="#000000" widget="color"/>
 <input identifier="bond" type="int" default="0" widget="combobox"><item value="0" text="Stack"/><item value="4" text="Half Bond"/></input>
 <input identifier="wet" type="bool" default="off"/>
 <input identifier="title" type="text" default="O"/>
 <input identifier="photo" type="image"/>
</inputs>
<nodes>
 <node id="colour" type="uniform" channels="colour"><param name="colour" expr="float4(input.tint, 1)"/></node>
 <node id="height" type="uniform" depth="u16"><param name="colour" expr="float4(float3(input.grey + $time), 1)"/></node>
 <node id="noise" type="whitenoise"/>
 <node id="shown" type="imageinput"><param name="image" input="photo"/></node>
</nodes>
<outputs>
 <output identifier="base" from="colour" usage="basecolor" label="Base Color"/>
 <output identifier="height" from="height" usage="height" label="height" format="grey16"/>
 <output identifier="noise" from="noise" label="Base Color"/>
 <output identifier="rows" value="input.rows" label="Rows"/>
 <output identifier="state" value="input.bond + input.wet"/>
</outputs>
<presets><preset label="Bright"><set input="grey" value="0.8"/><set input="tint" value="#ffffff"/></preset></presets>
</graph></package>"""

FILM = """<package formatversion="1"><graph identifier="film"><inputs><input identifier="photo" type="image"/></inputs>
<nodes><node id="shown" type="imageinput" channels="colour"><param name="image" input="photo"/></node></nodes>
<outputs><output identifier="shown" from="shown"/></outputs></graph></package>"""

SLOW = """<package formatversion="1"><graph identifier="slow"><inputs><input identifier="$outputsize" default="13,13"/></inputs>
<nodes>%s</nodes><outputs>%s</outputs></graph></package>""" % (
    "".join(f'<node id="n{i}" type="perlin" seed="{i}"/><node id="b{i}" type="gaussianblur"><in name="input" from="n{i}"/></node>' for i in range(12)),
    "".join(f'<output identifier="o{i}" from="b{i}"/>' for i in range(12)))

failures = []


def check(what, fits, got=""):
    if not fits:
        failures.append(what)
        print(f"{what}: {got!r}")


def png_grey_or_colour(data):
    """The header and the unfiltered first pixel of a PNG file: width, height, bits, channels, samples."""
    width, height, bits, kind = struct.unpack(">IIBB", data[16:26])
    body, at = b"", 8
    while at < len(data):
        size, = struct.unpack(">I", data[at:at + 4])
        if data[at + 4:at + 8] == b"IDAT":
            body += data[at + 8:at + 8 + size]
        at += 12 + size
    channels = {0: 1, 2: 3, 6: 4}[kind]
    raw = zlib.decompress(body)
    pixel = raw[1:1 + channels * bits // 8]
    return width, height, bits, channels, struct.unpack(f">{channels}{'B' if bits == 8 else 'H'}", pixel)


class Place:
    """A folder with the package, and the program in it."""

    def __init__(self, vellor, folder):
        self.vellor, self.folder = vellor, pathlib.Path(folder)
        (self.folder / "wall.vlr").write_text(PACKAGE)
        (self.folder / "slow.vlr").write_text(SLOW)
        (self.folder / "film.vlr").write_text(FILM)

    def run(self, *words, **more):
        return subprocess.run([self.vellor, "render", *words], cwd=self.folder, capture_output=True, text=True, **more)

    def report(self, *words):
        told = self.run("wall.vlr", "--json", *words)
        check(f"{words} works", told.returncode == 0 and told.stderr == "", told)
        return {entry["identifier"]: entry for entry in json.loads(told.stdout)["outputs"]} if told.stdout else {}

    def files(self, folder):
        return sorted(os.listdir(self.folder / folder)) if (self.folder / folder).exists() else []

    def png(self, name):
        return png_grey_or_colour((self.folder / name).read_bytes())


def check_pictures(place):
    told = place.report("-o", "out", "--set", "tint=#ff8000", "--set", "grey=0.5", "--size", "8x4")
    check("files", place.files("out") == ["wall_Base_Color.png", "wall_Base_Color[2].png", "wall_height.png"] or
          place.files("out") == ["wall_Base_Color[2].png", "wall_Base_Color.png", "wall_height.png"], place.files("out"))
    check("colour", place.png("out/wall_Base_Color.png")[:2] == (8, 4) and
          place.png("out/wall_Base_Color.png")[4][:3] == (255, 128, 0), place.png("out/wall_Base_Color.png"))
    check("16 bits", place.png("out/wall_height.png") == (8, 4, 16, 1, (32768,)), place.png("out/wall_height.png"))
    check("report", told["base"]["file"] == "out/wall_Base_Color.png" and told["base"]["size"] == [8, 4] and
          told["base"]["bytes"] == (place.folder / "out/wall_Base_Color.png").stat().st_size, told["base"])
    check("hash", told["height"]["hash"] == hashlib.md5(b"\x00\x80" * 32).hexdigest(), told["height"])
    check("numbers", told["rows"]["value"] == [2, 3] and "file" not in told["rows"], told["rows"])
    place.report("-o", "deep", "--output", "height", "--depth", "8")
    check("8 bits", place.png("deep/wall_height.png")[2:] == (8, 1, (51,)), place.files("deep"))
    place.report("-o", "named", "--pattern", "%O-%U %I %R", "--preset", "Bright", "--output", "base", "--format", "tga")
    check("pattern", len(place.files("named")) == 1 and place.files("named")[0].startswith("Base_Color_basecolor_") and
          place.files("named")[0].endswith("_Bright.tga"), place.files("named"))
    for extension in ("exr", "tif", "bmp", "jpg"):
        place.report("-o", extension, "--format", extension)
        check(extension, len(place.files(extension)) == 3, place.files(extension))


def check_values(place):
    def value(*words):
        told = place.report("--hash", *words)
        return told["state"]["value"], told["rows"]["value"], told["base"]["hash"], told["height"]["hash"], told["noise"]["hash"]

    plain = value()
    check("no file by --hash", place.files(".").count("wall_Base_Color.png") == 0, place.files("."))
    bright = value("--preset", "Bright")
    check("preset", bright[2] != plain[2] and bright[3] == value("--set", "grey=0.8")[3] != plain[3], bright)
    check("over a preset", value("--preset", "Bright", "--set", "grey=0.2")[3] == plain[3], bright)
    for words, wanted in [(["bond=Half Bond"], 4), (["bond=half bond"], 4), (["bond=4"], 4), (["wet=on"], 1), (["wet=1"], 1),
                          (["bond=4", "wet=true"], 5)]:
        options = [part for word in words for part in ("--set", word)]
        check(str(words), value(*options)[0] == wanted, value(*options))
    check("integers", value("--set", "rows=-7,9")[1] == [-7, 9])
    check("a colour in two ways", value("--set", "tint=1,0,0.2")[2] == value("--set", "tint=#ff0033")[2])
    check("seed", value("--seed", "7")[4] != plain[4] == value("--seed", "0")[4])
    check("threads", value("--size", "512", "--threads", "1") == value("--size", "512", "--threads", "2"))
    check("instruction sets", value("--size", "64", "--instruction-set", "ssse3") == value("--size", "64"))
    place.report("-o", "picture", "--output", "base", "--set", "tint=#336699")
    value("--set", "photo=picture/wall_Base_Color.png", "--set", "title=A word")
    lines = place.run("wall.vlr", "--hash").stdout.splitlines()
    check("hash lines", lines[0] == plain[2] + "  wall/base" and len(lines) == 5, lines)


def check_presets(place):
    def hashes(*words):
        return {name: entry["hash"] for name, entry in place.report("--hash", *words).items()}

    changed = ("--set", "grey=0.7", "--set", "rows=-4,9", "--set", "title=A & B", "--set", "tint=#336699", "--seed", "5")
    wanted = hashes(*changed, "--save-preset", "mine.vlrprs:Blue one")
    text = (place.folder / "mine.vlrprs").read_text()
    check("preset file", text.startswith('<?xml version="1.0" encoding="utf-8"?>\n<vlrpresets formatversion="1.1" count="1">\n'
          ' <vlrpreset pkgurl="pkg://wall" label="Blue one">\n  <presetinput uid="') and 'value="-4,9"' in text and
          'value="A &amp; B"' in text and text.count("<presetinput") == 5, text)
    check("a preset of a file", hashes("--preset", "mine.vlrprs:Blue one") == wanted == hashes("--preset", "mine.vlrprs"))
    check("values over it", hashes("--preset", "mine.vlrprs", "--set", "grey=0.2")["height"] == hashes()["height"])
    place.report("--hash", "--set", "wet=on", "--save-preset", "mine.vlrprs")
    place.report("--hash", "--set", "grey=0.1", "--save-preset", "mine.vlrprs:Blue one")
    text = (place.folder / "mine.vlrprs").read_text()
    check("beside and in place of others", 'count="2"' in text and text.index("Blue one") < text.index('label="mine"') and
          'value="0.1"' in text and "-4,9" not in text, text)
    (place.folder / "other.vlrprs").write_text(text.replace("pkg://wall", "pkg://other"))
    check("a preset of another graph", hashes("--preset", "other.vlrprs:Blue one") == hashes("--set", "grey=0.1"))
    (place.folder / "bad.vlrprs").write_text("<vlrpresets><")
    for words, code, line in [(["--preset", "mine.vlrprs:None"], 1, "there is no preset 'None' in mine.vlrprs; there are 'Blue one', 'mine'"),
                              (["--preset", "bad.vlrprs"], 2, "bad.vlrprs: line 1"), (["--preset", "none.vlrprs"], 2, "none.vlrprs: "),
                              (["--save-preset", "mine.vlrprs"], 1, "all values are defaults"),
                              (["--save-preset", "bad.vlrprs", "--set", "grey=1"], 2, "bad.vlrprs: line 1"),
                              (["--save-preset", "none/x.vlrprs", "--set", "grey=1"], 4, "none/x.vlrprs: ")]:
        told = place.run("wall.vlr", "--hash", *words)
        check(str(words), told.returncode == code and line in told.stderr and told.stderr.count("\n") == 1, told)
    check("an unreadable file stays", (place.folder / "bad.vlrprs").read_text() == "<vlrpresets><")


def check_metadata(place):
    def record(data):
        length = struct.unpack("<I", data[-8:-4])[0]
        check("trailer", len(data) % 4 == 0 and data[-4:] == b"TMLV" and length < len(data), data[-16:])
        return data[-8 - length:-8].decode()

    place.report("-o", "meta", "--set", "grey=0.7", "--metadata", "embedded")
    place.report("-o", "bare", "--set", "grey=0.7")
    for name in place.files("bare"):
        bare, told = (place.folder / "bare" / name).read_bytes(), (place.folder / "meta" / name).read_bytes()
        text = record(told)
        check("the picture comes first", told.startswith(bare), name)
        check("record", text.startswith('<vlrmeta formatversion="1.0" pkgurl="pkg://wall" outputidentifier="') and 'vlrarfilename="wall.vlrar"' in text and
              ' <vlrpreset>\n  <presetinput uid="' in text and 'value="0.7"' in text, text[-400:])
        archive = base64.b64decode(text.split('vlrarcontent="')[1].split('"')[0])
        (place.folder / "back.vlrar").write_bytes(archive)
        check("the archive within", place.run("back.vlrar", "--hash").stdout.replace("back", "wall") == place.run("wall.vlr", "--hash").stdout)
    place.report("-o", "beside", "--metadata", "file", "--output", "height")
    check("a record beside", place.files("beside") == ["wall_height.png", "wall_height.vlrmeta"], place.files("beside"))
    check("its picture's name", 'imgfilename="wall_height.png"' in (place.folder / "beside/wall_height.vlrmeta").read_text())


def check_frames(place):
    told = place.run("wall.vlr", "-o", "frames", "--frames", "9-11", "--fps", "20", "--output", "height", "--json")
    entries = json.loads(told.stdout)["outputs"]
    check("frames", place.files("frames") == ["wall_height_0009.png", "wall_height_0010.png", "wall_height_0011.png"], place.files("frames"))
    check("frame numbers", [entry["frame"] for entry in entries] == [9, 10, 11], entries)
    check("time", abs(place.png("frames/wall_height_0010.png")[4][0] - 0.7 * 65535) < 1, place.png("frames/wall_height_0010.png"))


METAL = """<package formatversion="1"><graph identifier="metal"><inputs><input identifier="$outputsize" default="2,1"/></inputs>
<nodes>
 <node id="rough" type="uniform"><param name="colour" value="0.2,0.2,0.2,1"/></node>
 <node id="metal" type="uniform"><param name="colour" value="0.8,0.8,0.8,1"/></node>
 <node id="flat" type="uniform" channels="colour"><param name="colour" value="0.4,0.2,1,1"/></node>
</nodes>
<outputs>
 <output identifier="m" from="metal" usage="metallic"/><output identifier="n" from="flat" usage="normal"/>
 <output identifier="r" from="rough" usage="roughness" format="grey16"/><output identifier="count" value="3" usage="height"/>
</outputs></graph></package>"""


def check_templates(place):
    (place.folder / "metal.vlr").write_text(METAL)
    told = place.run("metal.vlr", "-o", "gltf", "--template", "glTF", "--json")
    entries = json.loads(told.stdout)["outputs"]
    check("note", told.stderr == "vellor: note: pkg://metal has no output ambientocclusion, so r of occlusionRoughnessMetallic is 1 everywhere\n", told)
    check("packed files", place.files("gltf") == ["metal_normal.png", "metal_occlusionRoughnessMetallic.png"], place.files("gltf"))
    packed = place.png("gltf/metal_occlusionRoughnessMetallic.png")
    check("occlusion, roughness, metalness", packed == (4, 2, 8, 3, (255, 51, 204)), packed)
    check("green up", place.png("gltf/metal_normal.png")[4] == (102, 204, 255), place.png("gltf/metal_normal.png"))
    check("report of a packed file", entries[0]["name"] == "occlusionRoughnessMetallic" and entries[0]["outputs"] == ["r", "m"] and
          entries[0]["hash"] == hashlib.md5(bytes((255, 51, 204)) * 8).hexdigest() and entries[0]["size"] == [4, 2] and
          entries[0]["bytes"] == (place.folder / entries[0]["file"]).stat().st_size, entries)
    told = place.run("metal.vlr", "-o", "hdrp", "--template", "unity-hdrp")
    check("nobody misses a detail mask", told.stderr == "vellor: note: pkg://metal has no output ambientocclusion, so g of MaskMap is 1 everywhere\n", told)
    place.run("metal.vlr", "-o", "unreal", "--template", "unreal")
    check("green down", place.png("unreal/T_metal_Normal.png")[4] == (102, 51, 255), place.files("unreal"))
    place.run("metal.vlr", "-o", "unity", "--template", "unity-urp")
    smooth = place.png("unity/metal_MetallicSmoothness.png")
    check("smoothness", smooth[3:] == (4, (204, 204, 204, 204)), smooth)
    check("packed hash", place.run("metal.vlr", "--hash", "--template", "unity-urp", "--output", "n").stdout ==
          hashlib.md5(bytes((102, 204, 255)) * 8).hexdigest() + "  metal/NormalMap\n")

    own = place.folder / "Ornex/Vellor Player/templates"
    own.mkdir(parents=True)
    (own / "mine.json").write_text('{"files": [{"name": "Mix", "channels": {"rgb": "basecolor", "a": "height"}}]}')
    (place.folder / "broken.json").write_text("{\n  files")
    (place.folder / "soft.json").write_text('{"files": [{"name": "Soft", "channels": {"rgb": "normal", "a": "roughness"}}]}')
    home = dict(os.environ, XDG_DATA_HOME=str(place.folder))
    words = ["wall.vlr", "--template", "mine", "--set", "tint=#ff8000", "--frames", "9-10", "--fps", "20"]
    for words_of_metadata in ([], ["--metadata", "embedded"]):
        told = place.run(*words, "-o", "mine" + "".join(words_of_metadata), *words_of_metadata, env=home)
        check("frames by a template", told.stdout.count("\n") == 2 and told.stderr == "", told)
    mixed = place.png("mine/wall_Mix_0009.png")
    check("deepest of the sources", mixed[2:4] == (16, 4) and mixed[4][:3] == (65535, 32896, 0) and
          abs(mixed[4][3] - 0.65 * 65535) < 1, mixed)
    plain, told = [(place.folder / folder / "wall_Mix_0010.png").read_bytes() for folder in ("mine", "mine--metadataembedded")]
    check("metadata behind a packed file", told.startswith(plain) and told.endswith(b"TMLV") and b'outputidentifier="' in told)
    listed = subprocess.run([place.vellor, "templates"], env=home, capture_output=True, text=True)
    check("list", listed.returncode == 0 and listed.stdout.count("\n") == 9 and str(own / "mine.json") in listed.stdout, listed)
    for words, code, message in [
            (["--template", "soft.json", "--format", "jpg"], 1, "Soft: files of the format jpg hold no alpha"),
            (["--template", "none"], 1, "there is no template 'none'; there are blender, gltf"),
            (["--template", "broken.json"], 2, "broken.json: line 2, column "), (["--template", "gone.json"], 2, "gone.json: "),
            (["--template", "gltf", "--format", "tga"], 1, "--format: the template says that"),
            (["--template", "blender", "--depth", "32f"], 1, "can't hold the depth 32f"),
            (["--template", "gltf", "--output", "count"], 1, "none of the outputs that 'gltf' is made of")]:
        told = place.run("metal.vlr", *words)
        check(" ".join(words), told.returncode == code and message in told.stderr and told.stderr.count("\n") == 1, told)


def check_images(place):
    def grey(value):
        return b"".join(struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)) for kind, data in (
            (b"IHDR", struct.pack(">IIBBBBB", 2, 2, 8, 0, 0, 0, 0)), (b"IDAT", zlib.compress(bytes([0, value, value] * 2))), (b"IEND", b"")))

    def shown(*words):
        told = place.run("film.vlr", "-o", "film", *words)
        check(f"{words}", told.returncode == 0 and told.stderr == "", told)
        pixels = [place.png("film/" + name)[4][0] for name in sorted(place.files("film"))]
        for name in place.files("film"):
            (place.folder / "film" / name).unlink()
        return pixels

    for number, value in ((8, 50), (9, 100), (10, 150), (12, 200)):
        (place.folder / f"take2_{number:02}.png").write_bytes(b"\x89PNG\r\n\x1a\n" + grey(value))
    check("a still picture", shown("--image", "photo=take2_09.png") == [100] == shown("--set", "photo=take2_09.png"))
    check("a sequence", shown("--image", "photo=take2_08.png", "--frames", "0-4", "--fps", "24") == [50, 100, 150, 150, 150])
    check("its second part", shown("--image", "photo=take2_09.png", "--frames", "1-1") == [150])
    place.run("film.vlr", "--hash", "--image", "photo=take2_08.png", "--save-preset", "film.vlrprs")
    check("of a preset", shown("--preset", "film.vlrprs", "--frames", "0-1") == [50, 100])
    (place.folder / "take2_10.png").write_bytes(b"cut")
    told = place.run("film.vlr", "-o", "film", "--image", "photo=take2_08.png", "--frames", "0-4")
    check("a damaged file of a sequence", told.returncode == 2 and "take2_10.png: the file holds no picture" in told.stderr and
          len(place.files("film")) == 2, told)


def check_profile(place):
    def profile(*words):
        return subprocess.run([place.vellor, "profile", "slow.vlr", "--size", "256", *words], cwd=place.folder,
                              capture_output=True, text=True)

    told = json.loads(profile("--json", "--output", "o3", "--output", "o4").stdout)
    steps = {step["name"]: step for step in told["steps"] if step["name"]}
    check("the nodes that were needed", set(steps) == {"slow/n3", "slow/b3", "slow/n4", "slow/b4"}, list(steps))
    check("the dearest first", [step["seconds"] for step in told["steps"]] ==
          sorted((step["seconds"] for step in told["steps"]), reverse=True), told["steps"])
    blur = steps["slow/b3"]
    check("a step", blur["kind"] == "gaussianblur" and blur["size"] == [256, 256] and blur["output"] == "o3" and
          blur["seconds"] > 0 and blur["resultBytes"] >= 256 * 256 * 4, blur)
    check("memory", told["peakBytes"] >= 256 * 256 * 4, told["peakBytes"])
    spent = {entry["identifier"]: entry for entry in told["outputs"]}
    check("outputs", set(spent) == {"o3", "o4"} and
          sum(entry["stepSeconds"] for entry in spent.values()) <= sum(entry["seconds"] for entry in spent.values()), spent)
    text = profile("--output", "o3").stdout
    check("the table", "of the time goes to slow/" in text and "gaussianblur" in text and "slow/o3" in text, text)


def check_errors(place):
    (place.folder / "text.png").write_text("text")
    for words, code, message in [
            (["wall.vlr", "--set", "gray=1"], 1, "there is no input 'gray'; there are $outputsize"),
            (["wall.vlr", "--set", "grey"], 1, "expected ID=VALUE"),
            (["wall.vlr", "--set", "grey=1.5"], 1, "expected at most 1, not '1.5'"),
            (["wall.vlr", "--set", "grey=nan"], 1, "expected a number"),
            (["wall.vlr", "--set", "rows=1"], 1, "expected 2 whole numbers"),
            (["wall.vlr", "--set", "tint=red"], 1, "expected 3 numbers"),
            (["wall.vlr", "--set", "tint=#12345"], 1, "expected #rrggbb"),
            (["wall.vlr", "--set", "bond=1"], 1, "expected 0 (Stack), 4 (Half Bond), not '1'"),
            (["wall.vlr", "--set", "photo=gone.png"], 2, "gone.png: the file can't be read"),
            (["wall.vlr", "--set", "photo=text.png"], 2, "text.png: the file holds no picture"),
            (["wall.vlr", "--size", "100"], 1, "powers of two"), (["wall.vlr", "--size", "32768"], 1, "powers of two"),
            (["slow.vlr", "--seed", "1"], 1, "no input $randomseed"),
            (["wall.vlr", "--output", "x"], 1, "there are base, height, noise, rows, state"),
            (["wall.vlr", "--graph", "x"], 1, "there are pkg://wall"), (["wall.vlr", "--preset", "x"], 1, "there are 'Bright'"),
            (["wall.vlr", "--format", "doc"], 1, "one of bmp"), (["wall.vlr", "--format", "tga", "--depth", "16"], 1, "expected 8 for tga"),
            (["wall.vlr", "--frames", "9-1"], 1, "a range"), (["slow.vlr", "--frames", "0-1"], 1, "no input $time and no --image is a sequence"),
            (["wall.vlr", "--image", "photo"], 1, "--image photo: expected ID=VALUE"), (["wall.vlr", "--image", "grey=text.png"], 1, "takes no picture"),
            (["wall.vlr", "--image", "photo=text.png"], 2, "text.png: the file holds no picture"),
            (["wall.vlr", "--threads", "0"], 1, "from 1 to 256"), (["gone.vlr"], 2, "gone.vlr: the file can't be read"),
            (["wall.vlr", "-o", "wall.vlr/x"], 4, "the folder can't be made")]:
        told = place.run(*words)
        fits = told.returncode == code and message in told.stderr and told.stderr.count("\n") == 1 and told.stdout == ""
        check(" ".join(words), fits, told)


def check_no_room(place):
    """Files that grow beyond the limit stand for a full disk; the limit hits in the middle of a picture."""
    (place.folder / "full").mkdir()
    (place.folder / "full/wall_Base_Color[2].png").write_text("kept")

    def limit():
        resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))

    for extension in ("png", "tga", "exr", "tif"):
        told = place.run("wall.vlr", "-o", "full", "--size", "512", "--output", "noise", "--format", extension, "--pattern",
                         "%G_%O[2]", preexec_fn=limit)
        fits = told.returncode == 4 and f"full/wall_Base_Color_2_.{extension}: File too large" in told.stderr and told.stderr.count("\n") == 1
        check(f"no room for {extension}", fits, told)
        check("nothing left", place.files("full") == ["wall_Base_Color[2].png"], place.files("full"))

    os.chmod(place.folder, 0o755)
    (place.folder / "closed").mkdir()
    (place.folder / "closed").chmod(0o555)
    told = place.run("wall.vlr", "-o", "closed", preexec_fn=lambda: os.setuid(65534) if os.getuid() == 0 else None)
    check("a folder that is not writable", told.returncode == 4 and place.files("closed") == [], told)


def check_interruption(place):
    (place.folder / "stopped").mkdir()
    process = subprocess.Popen([place.vellor, "render", "slow.vlr", "-o", "stopped", "--format", "tga"], cwd=place.folder, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, text=True)
    time.sleep(1.0)
    process.send_signal(signal.SIGINT)
    _, errors = process.communicate()
    check("ends by the signal", process.returncode == -signal.SIGINT and errors == "vellor: interrupted\n", (process.returncode, errors))
    check("ends before all is done", len(place.files("stopped")) < 12, place.files("stopped"))
    check("no part of a file", all(name.startswith("slow_o") for name in place.files("stopped")), place.files("stopped"))


def main():
    with tempfile.TemporaryDirectory() as name:
        place = Place(os.path.abspath(sys.argv[1]), name)
        for part in (check_pictures, check_values, check_presets, check_metadata, check_frames, check_templates, check_profile, check_errors, check_no_room, check_interruption):
            part(place)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

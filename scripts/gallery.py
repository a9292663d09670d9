#!/usr/bin/env python3
"""Draws the pictures of docs/gallery.md and writes the page, from the samples as they are.

Usage: gallery.py [--build FOLDER] [SAMPLE ...]. Without samples, all; with some, the page keeps the others' pictures.
Needs ImageMagick's convert. Takes a few minutes.
"""
import argparse
import json
import pathlib
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PICTURES = ROOT / "docs" / "gallery"
MAPS = ["basecolor", "normal", "roughness", "height", "ambientocclusion", "metallic"]
BALL, LIT, MAP = 560, 560, 180  # pixels
INTRODUCTION = """# Gallery

The samples that come with the program, as `vellor` and the CPU engine make them at 1024 x 1024: on a ball and flat under the same lamps, then base colour,
normal, roughness, height, ambient occlusion and metallic, then the presets. `scripts/gallery.py` draws this page anew.
"""


def run(*words):
    return subprocess.run([str(word) for word in words], check=True, capture_output=True, text=True).stdout


def argument(identifier, value):
    numbers = value if isinstance(value, list) else [value]
    return f"{identifier.lstrip('$')}=" + ",".join(str(float(number)) for number in numbers)


class Sample:
    def __init__(self, build, name):
        self.name, self.build = name, build
        self.file = ROOT / "samples" / f"{name}.vlr"
        self.graph = json.loads(run(build / "bin/vellor", "info", self.file, "--json"))["graphs"][0]
        self.identifier = self.graph["url"].rsplit("/", 1)[-1]

    def sheet(self, folder, size, values=()):
        engine = next((self.build / "bin/plugins/engines").glob("*.so"))
        run(self.build / "tests/samplesheet", engine, self.file, folder, size, 1, *values)
        return lambda what: pathlib.Path(folder, f"{self.identifier}_{what}.png")

    def draw(self):
        with tempfile.TemporaryDirectory() as folder:
            picture = self.sheet(folder, 10)
            usages = {usage: output["identifier"] for output in self.graph["outputs"] if output["type"] == "image"
                      for usage in output["usages"]}
            maps = [picture(usages[usage]) for usage in MAPS if usage in usages]
            whole = pathlib.Path(folder, "whole.png")
            run("convert", "-background", "#202124",
                "(", "(", picture("ball"), "-resize", f"{BALL}x{BALL}", ")",
                "(", picture("lit"), "-resize", f"{LIT}x{LIT}", ")", "+append", ")",
                "(", *maps, "-resize", f"{MAP}x{MAP}", "-bordercolor", "#202124", "-border", "3x3", "+append", ")",
                "-gravity", "center", "-append", whole)
            run("convert", whole, "-quality", "86", PICTURES / f"{self.name}.jpg")
        with tempfile.TemporaryDirectory() as folder:
            balls = [self.preset_ball(preset, pathlib.Path(folder, f"{number}.png"))
                     for number, preset in enumerate(self.presets())]
            if balls:
                run("convert", *balls, "+append", "-quality", "84", PICTURES / f"{self.name}_presets.jpg")

    def presets(self):
        numeric = (int, float, bool, list)
        return [preset for preset in self.graph["presets"]
                if all(isinstance(value, numeric) for value in preset["values"].values())][:4]

    def preset_ball(self, preset, result):
        with tempfile.TemporaryDirectory() as folder:
            values = [argument(identifier, value) for identifier, value in preset["values"].items()]
            picture = self.sheet(folder, 9, values)
            run("convert", picture("ball"), "-resize", "280x280", result)
        return result

    def page(self):
        lines = [f"## {self.graph['label']}", "", self.graph["description"], "",
                 f"![{self.graph['label']}](gallery/{self.name}.jpg)", ""]
        presets = self.presets()
        if presets and (PICTURES / f"{self.name}_presets.jpg").exists():
            labels = ", ".join(f"*{preset['label']}*" for preset in presets)
            lines += [f"Presets, from the left: {labels}.", "",
                      f"![Presets of {self.graph['label']}](gallery/{self.name}_presets.jpg)", ""]
        lines += [f"`samples/{self.name}.vlr`, {len(self.graph['inputs'])} inputs.", ""]
        return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build")
    parser.add_argument("samples", nargs="*")
    options = parser.parse_args()
    PICTURES.mkdir(exist_ok=True)
    names = sorted(path.stem for path in (ROOT / "samples").glob("*.vlr"))
    samples = [Sample(options.build, name) for name in names]
    for sample in samples:
        if not options.samples or sample.name in options.samples:
            print(sample.name, flush=True)
            sample.draw()
    (ROOT / "docs" / "gallery.md").write_text("\n".join([INTRODUCTION, *(sample.page() for sample in samples)]))


if __name__ == "__main__":
    main()

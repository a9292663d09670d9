"""Runs `vellor info` on one package in each of its forms and compares what it tells with what the package says.

Usage: check_info.py VELLOR
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import zipfile

PACKAGE = """<package formatversion="1"><graph identifier="wall" label="Wall" description="Of the tests">
<groups><group identifier="Shape" order="2"/></groups>
<inputs>
 <input identifier="$outputsize" default="4,5"/>
 <input identifier="rows" type="int2" default="3,-4" widget="slider" min="1,2" max="12" clamp="on" group="Shape" label="Rows"/>
 <input identifier="bond" type="int" default="1" widget="combobox"><item value="0" text="Stack"/><item value="1" text="Half"/></input>
 <input identifier="wet" type="bool" default="on" label0="Dry" label1="Wet"/>
 <input identifier="tint" type="float3" default="#ff0033" widget="color"/>
 <input identifier="fine" type="float" default="0.1"/>
 <input identifier="photo" type="image"/>
</inputs>
<nodes><node id="n" type="uniform" channels="colour"><param name="colour" expr="float4(input.tint, input.fine)"/></node></nodes>
<outputs><output identifier="base" from="n" usage="rgb:basecolor,a:opacity" label="Base"/><output identifier="area" value="input.fine * 2"/></outputs>
<presets><preset label="Deep" description="Far"><set input="fine" value="0.7"/></preset></presets>
</graph></package>"""

INPUTS = {
    "$outputsize": {"type": "int2", "default": [4, 5], "widget": "outputsize"},
    "rows": {"type": "int2", "default": [3, -4], "minimum": [1, 2], "maximum": [12, 12], "clamp": True,
             "widget": "slider", "group": "Shape", "label": "Rows"},
    "bond": {"default": 1, "choices": [{"value": 0, "label": "Stack"}, {"value": 1, "label": "Half"}]},
    "wet": {"default": 1, "choices": [{"value": 0, "label": "Dry"}, {"value": 1, "label": "Wet"}]},
    "tint": {"type": "float3", "default": [1, 0, 0.2], "widget": "color"},
    "fine": {"type": "float", "default": 0.1},
    "photo": {"type": "image"},
}

failures = []


def check(what, fits, got):
    if not fits:
        failures.append(what)
        print(f"{what}: {got!r}")


def main():
    vellor = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)

        def run(*words):
            return subprocess.run([vellor, *words], cwd=folder, capture_output=True, text=True)

        (folder / "wall.vlr").write_text(PACKAGE)
        (folder / "wrong.vlr").write_text(PACKAGE.replace('type="uniform"', 'type="nothing"'))
        (folder / "broken.vlrar").write_bytes(b"no archive")
        (folder / "text.txt").write_text("text")
        run("cook", "wall.vlr")
        with zipfile.ZipFile(folder / "wall.vlrar") as archive:
            (folder / "wall.vlrasm").write_bytes(archive.read("package.vlrasm"))
            (folder / "bare.vlrasm").write_bytes(archive.read("package.vlrasm"))
            (folder / "wall.xml").write_bytes(archive.read("description.xml"))

        told = run("info", "--json", "wall.vlr")
        graph = json.loads(told.stdout)["graphs"][0]
        check("the graph", (graph["url"], graph["label"], graph["description"]) == ("pkg://wall", "Wall", "Of the tests"), graph)
        for entry in graph["inputs"]:
            wanted = INPUTS.get(entry["identifier"], {})
            check(entry["identifier"], wanted.items() <= entry.items(), entry)
        check("all inputs", set(INPUTS) <= {entry["identifier"] for entry in graph["inputs"]}, graph["inputs"])
        base, area = graph["outputs"]
        check("a picture", base["usages"] == ["basecolor", "opacity"] and base["format"].startswith("RGBA"), base)
        check("a number", area["type"] == "float" and "format" not in area, area)
        check("the preset", graph["presets"] == [{"label": "Deep", "description": "Far", "values": {"fine": 0.7}}], graph["presets"])

        text = run("info", "wall.vlr").stdout
        for part in ("Rows", "1,2 to 12", "0 = Stack", "basecolor,opacity", "Deep", "4,5 (16x32)"):
            check("the table", part in text, text)
        for form in ("wall.vlrar", "wall.vlrasm"):
            same = json.loads(run("info", "--json", form).stdout)["graphs"][0]
            check(form, same == graph, same)
        bare = run("info", "bare.vlrasm")
        check("without a description", bare.returncode == 0 and "uid:" in bare.stdout, bare)

        for words, code, message in [(["wrong.vlr"], 3, "wrong.vlr:12:27: unknown node type 'nothing'"),
                                     (["gone.vlrar"], 2, "gone.vlrar: the file can't be read"),
                                     (["text.txt"], 2, "text.txt: unknown kind of file"),
                                     (["broken.vlrar"], 3, "broken.vlrar: "), ([], 1, "no file given"),
                                     (["wall.vlr", "wall.vlr"], 1, "one file at a time"),
                                     (["wall.vlr", "--engine", "gone.so"], 2, "gone.so: the file can't be read"),
                                     (["wall.vlr", "--engine", "text.txt"], 2, "no engine")]:
            told = run("info", *words)
            fits = told.returncode == code and message in told.stderr and told.stderr.count("\n") == 1 and not told.stdout
            check(" ".join(words), fits, told)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

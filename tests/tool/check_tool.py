"""Runs `vellor cook` as a person would and compares exit codes, messages and what is left on the disk.

Usage: check_tool.py VELLOR
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import zipfile

GOOD = ('<package formatversion="1"><graph identifier="%s"><nodes><node id="n" type="uniform"/></nodes>'
        '<outputs><output identifier="o" from="n"/></outputs></graph></package>')
WRONG = '<package formatversion="1">\n <graph identifier="g"><nodes><node id="n" type="nothing"/></nodes></graph></package>'
USING = ('<package formatversion="1"><include as="l" url="lib://part.vlr"/><graph identifier="g">'
         '<nodes><graphinstance id="i" graph="l:part"/></nodes><outputs><output identifier="o" from="i"/></outputs>'
         '</graph></package>')

# Words, exit code, what standard error holds, files that are there afterwards and weren't before.
ROWS = [
    (["cook", "good.vlr"], 0, "", {"good.vlrar"}),
    (["cook", "good.vlr", "other.vlr", "-o", "both.vlrar"], 0, "", {"both.vlrar"}),
    (["cook", "--output=x.vlrar", "--", "good.vlr"], 0, "", {"x.vlrar"}),
    (["cook", "using.vlr", "--alias", "lib=library"], 0, "", {"using.vlrar"}),
    (["cook", "using.vlr"], 3, "using.vlr:1:49: unknown alias 'lib'", set()),
    (["cook", "using.vlr", "--alias", "lib=gone"], 2, "gone: no such folder", set()),
    (["cook", "using.vlr", "--alias", "library"], 1, "expected NAME=DIR", set()),
    (["cook"], 1, "no file to cook", set()),
    (["cook", "--wrong", "good.vlr"], 1, "unknown option '--wrong'", set()),
    (["cook", "good.vlr", "-o"], 1, "needs OUT.vlrar", set()),
    (["bake"], 1, "unknown command 'bake'", set()),
    ([], 1, "usage: vellor", set()),
    (["cook", "gone.vlr"], 2, "gone.vlr: the file can't be read", set()),
    (["cook", "library"], 2, "library: the file can't be read", set()),
    (["cook", "wrong.vlr"], 3, "wrong.vlr:2:50: unknown node type 'nothing'", set()),
    (["cook", "good.vlr", "good.vlr"], 3, "the graph 'good' is in two packages", set()),
    (["cook", "good.vlr", "-o", "no/such/folder.vlrar"], 4, "can't be written", set()),
    (["cook", "good.vlr", "-o", "library"], 4, "library", set()),
]


MANY = """<package formatversion="1"><include as="l" url="gone.vlr"/>
<graph identifier="g">
<inputs><input identifier="a" type="flot"/></inputs>
<nodes><node id="n1" type="nothing"/>
<node id="n2" type="invert"><in name="input" from="n3"/></node>
<node id="n3" type="invert"><in name="input" from="n2"/></node>
<node id="n4" type="uniform"><param name="colour" expr="float4(1,"/></node>
<node id="n5" type="uniform" size="0x0"/></nodes>
<outputs><output identifier="o" from="none"/></outputs></graph></package>"""


def check_all_errors(vellor):
    """One run tells of the wrong things on each of these lines, and each line of its words has its place."""
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "many.vlr").write_text(MANY)
        told = subprocess.run([vellor, "cook", "many.vlr"], cwd=folder, capture_output=True, text=True)
    places = [line.split(":")[:2] for line in told.stderr.splitlines()]
    fits = told.returncode == 3 and {line for _, line in places} >= {"1", "3", "4", "7", "8", "9"}
    if not fits or {"5", "6"}.isdisjoint(line for _, line in places) or {file for file, _ in places} != {"many.vlr"}:
        print(f"all errors: {told}")
        return 1
    return 0


def check_completion(vellor):
    """The completion that the program prints completes options and the words of their values."""
    script = subprocess.run([vellor, "--bash-completion"], capture_output=True, text=True).stdout
    failed = 0
    for words, wanted in [(["vellor", "pro"], "profile"), (["vellor", "render", "--pre"], "--preset"),
                          (["vellor", "render", "--depth", ""], "8 16 16f 32f"), (["vellor", "cook", "--s"], "")]:
        quoted = " ".join(f"'{word}'" for word in words)
        asked = f"{script}\nCOMP_WORDS=({quoted}); COMP_CWORD={len(words) - 1}; _vellor; echo ${{COMPREPLY[*]}}"
        told = subprocess.run(["bash", "-c", asked], capture_output=True, text=True)
        if told.stdout.strip() != wanted or told.stderr:
            failed += 1
            print(f"completion of {words}: {told.stdout!r} {told.stderr!r}")
    return failed


def main():
    vellor, failures = os.path.abspath(sys.argv[1]), 0
    for words, code, message, left in ROWS:
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "library").mkdir()
            (folder / "library/part.vlr").write_text(GOOD % "part")
            (folder / "good.vlr").write_text(GOOD % "good")
            (folder / "other.vlr").write_text(GOOD % "other")
            (folder / "using.vlr").write_text(USING)
            (folder / "wrong.vlr").write_text(WRONG)
            before = set(os.listdir(folder))
            result = subprocess.run([vellor, *words], cwd=folder, capture_output=True, text=True)
            made = set(os.listdir(folder)) - before
            fits = result.returncode == code and message in result.stderr and made == left
            fits = fits and (code != 0 or result.stderr == "")
            for package in made:
                names = zipfile.ZipFile(folder / package).namelist()
                fits = fits and names == ["package.vlrasm", "description.xml"]
            if not fits:
                failures += 1
                print(f"{words}: exit {result.returncode}, left {made}, said {result.stderr!r}")
    failures += check_all_errors(vellor) + check_completion(vellor)
    print(f"{len(ROWS)} command lines, {failures} that don't do as they should")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

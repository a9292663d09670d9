"""Checks docs/authoring.md against the program: every example cooks, and the node reference is up to date.

Usage: check_authoring.py VELLOR DOCUMENT [--update]. --update writes the node reference into the document.
"""
import pathlib
import re
import subprocess
import sys
import tempfile

MARKED = re.compile(r"(<!-- nodes -->\n).*?(<!-- /nodes -->)", re.DOTALL)
EXAMPLE = re.compile(r"^```xml\n(.*?)^```", re.DOTALL | re.MULTILINE)


def run(*words):
    return subprocess.run(words, capture_output=True, text=True)


def check_examples(vellor, text):
    examples = EXAMPLE.findall(text)
    failures = 0 if examples else 1
    for number, example in enumerate(examples, 1):
        with tempfile.TemporaryDirectory() as folder:
            source, package = pathlib.Path(folder, "example.vlr"), pathlib.Path(folder, "example.vlrar")
            source.write_text(example, encoding="utf-8")
            result = run(vellor, "cook", str(source), "-o", str(package))
            if result.returncode != 0 or not package.exists():
                failures += 1
                print(f"example {number}:\n{result.stderr}")
    print(f"{len(examples)} examples, {failures} that do not cook")
    return failures


def main():
    vellor, document = sys.argv[1], pathlib.Path(sys.argv[2])
    text = document.read_text(encoding="utf-8")
    nodes = run(vellor, "nodes", "--markdown").stdout
    if not nodes or not MARKED.search(text):
        print("no node reference")
        return 1
    current = MARKED.sub(lambda match: match.group(1) + nodes + match.group(2), text)
    if "--update" in sys.argv:
        document.write_text(current, encoding="utf-8")
        text = current
    failures = check_examples(vellor, text)
    if text != current:
        print("the node reference is stale: run tests/tool/check_authoring.py VELLOR DOCUMENT --update")
        failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

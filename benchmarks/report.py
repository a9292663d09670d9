"""Runs the benchmarks of a build folder and prints what they found as one table.

Usage: report.py --build FOLDER [--filter REGEX] [--runs N] [--markdown]
"""
import argparse
import json
import os
import pathlib
import re
import signal
import statistics
import subprocess
import sys
import tempfile
import time

STARTUP = "start to first picture"
FIRST_OUTPUT = re.compile(r"First output: (\d+) ms after the process began")
PATIENCE = 60  # seconds for one start
# The rival of these is a part of the figure: what is left over is the program's own. That share is of processor time,
# which other programs on the machine hardly change.
ENGINE_RIVALS = ("the engine alone", "engine handle and first generation alone")


def first_picture(player, package):
    """Starts the player with settings of its own; the milliseconds that it logs."""
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, HOME=home, XDG_CONFIG_HOME=home, XDG_DATA_HOME=home)
        process = subprocess.Popen([player, package], env=environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            deadline = time.monotonic() + PATIENCE
            while time.monotonic() < deadline and process.poll() is None:
                time.sleep(0.1)
                for log in pathlib.Path(home).rglob("log_player.txt"):
                    found = FIRST_OUTPUT.search(log.read_text(errors="replace"))
                    if found:
                        return int(found.group(1))
            sys.exit("The player showed no picture")
        finally:
            process.terminate()
            process.wait()


def under_display(command):
    return ["xvfb-run", "-a", "-s", "-screen 0 1920x1080x24", *command]


def startup_rows(build, runs):
    own = [sys.executable, __file__, "--build", build, "--runs", str(runs), "--only-startup"]
    output = subprocess.run(under_display(own), check=True, capture_output=True, text=True).stdout
    times = json.loads(output)
    return [{"name": STARTUP, "ms": statistics.median(times),
             "note": f"{min(times)} to {max(times)}"}]


def benchmark_rows(program, pattern):
    with tempfile.NamedTemporaryFile(suffix=".json") as result:
        command = [program, f"--benchmark_out={result.name}",
                   "--benchmark_out_format=json"]
        if pattern:
            command.append(f"--benchmark_filter={pattern}")
        subprocess.run(command, check=True, stdout=sys.stderr)
        text = pathlib.Path(result.name).read_text()
    return [row for run in json.loads(text)["benchmarks"] for row in rows_of(run)] if text else []


def rows_of(run):
    if run.get("error_occurred"):
        sys.exit(f"{run['name']}: {run['error_message']}")
    name = re.sub(r"/(iterations:\d+|manual_time)", "", run["name"])
    if "cycles" in run:
        yield {"name": name, "ms": run["ms"], "note": cycles_note(run)}
        return
    yield {"name": name, "ms": run["ms"], "beside": run["beside"], "rival": run["label"],
           "outside": 1 - run["beside_processor"] / run["processor_ms"], "aim": run.get("aim")}
    for key, value in run.items():
        if key.startswith("part "):
            yield {"name": f"  of it: {key[5:]}", "ms": value}


def cycles_note(run):
    note = f"{run['cycles']:.2f} cycles per pixel"
    if "aim" in run:
        library = f", a noise library {run['known']:g}" if "known" in run else ""
        note += f" (aim {-run['aim']:g}{library})"
    return note


def cells(row):
    cell = [row["name"], f"{row['ms']:.1f}"]
    if "beside" not in row:
        return [*cell, "", "", row.get("note", "")]
    if row["rival"] in ENGINE_RIVALS:
        verdict = f"{100 * row['outside']:.1f} % outside the engine"
    elif row["aim"] is None or row["aim"] < 0:
        verdict = f"{row['ms'] / row['beside']:.2f} of it"
    else:
        verdict = f"{row['beside'] / row['ms']:.2f} times as fast"
    if row["aim"] is not None:
        verdict += f" (aim {abs(row['aim']):g})"
    return [*cell, f"{row['beside']:.1f}", row["rival"], verdict]


def print_table(rows, markdown):
    head = ["figure", "ms", "ms", "beside it", ""]
    table = [head, *map(cells, rows)]
    widths = [max(len(line[i]) for line in table) for i in range(len(head))]
    for number, line in enumerate(table):
        padded = [text.rjust(width) if i in (1, 2) else text.ljust(width)
                  for i, (text, width) in enumerate(zip(line, widths))]
        print("| " + " | ".join(padded) + " |" if markdown else "  ".join(padded).rstrip())
        if number == 0:
            dashes = ["-" * (width - 1) + ":" if i in (1, 2) else "-" * width for i, width in enumerate(widths)]
            print("| " + " | ".join(dashes) + " |" if markdown else "  ".join("-" * width for width in widths))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    parser.add_argument("--filter", default="")
    parser.add_argument("--runs", type=int, default=11)
    parser.add_argument("--markdown", action="store_true")
    parser.add_argument("--only-startup", action="store_true", help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.only_startup:
        bin_folder = pathlib.Path(options.build) / "bin"
        player, package = str(bin_folder / "vellor-player"), str(bin_folder / "data/bricks.vlrar")
        first_picture(player, package)  # brings the files into memory
        print(json.dumps([first_picture(player, package) for _ in range(options.runs)]))
        return
    load = os.getloadavg()[0]
    rows = []
    if re.search(options.filter, STARTUP):
        rows += startup_rows(options.build, options.runs)
        print("{name}: {ms:.0f} ms, {note}".format(**rows[0]), file=sys.stderr, flush=True)
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        for program in ("vellor_benchmarks", "vellor_picturebenchmarks", "vellor_operationbenchmarks"):
            rows += benchmark_rows(f"{options.build}/benchmarks/{program}", options.filter)
    except (OSError, subprocess.CalledProcessError) as error:
        print(f"The table lacks a program that failed: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        print("Cut short: the table lacks the program that was running.", file=sys.stderr)
    print_table(rows, options.markdown)
    print(f"\n{os.cpu_count()} processors; load average before the run {load:.1f}, after it {os.getloadavg()[0]:.1f}.")


if __name__ == "__main__":
    main()

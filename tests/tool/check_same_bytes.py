"""Checks that every sample comes out as the same bytes for each number of threads and each instruction set.

Usage: check_same_bytes.py VELLOR SAMPLES [SIDE=128]
"""
import pathlib
import subprocess
import sys

WAYS = [["--threads", "1"], ["--threads", "2"],
        *(["--threads", threads, "--instruction-set", name] for name in ("ssse3", "avx2") for threads in ("1", "2"))]


def hashes(vellor, sample, side, way):
    result = subprocess.run([vellor, "render", str(sample), "--hash", "--size", f"{side}x{side}", *way],
                            capture_output=True, text=True)
    if result.returncode != 0 or not result.stdout.strip():
        sys.exit(f"{sample.name} {' '.join(way)}: {result.stderr or 'nothing came out'}")
    return result.stdout.splitlines()


def main():
    vellor, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    side = int(sys.argv[3]) if len(sys.argv) > 3 else 128
    samples, failures = sorted(folder.glob("*.vlr")), 0
    for sample in samples:
        reference = hashes(vellor, sample, side, WAYS[0])
        for way in WAYS[1:]:
            for first, other in zip(reference, hashes(vellor, sample, side, way)):
                if first != other:
                    failures += 1
                    print(f"{sample.name}: {first} with {' '.join(WAYS[0])}, {other} with {' '.join(way)}")
    print(f"{len(samples)} samples at {side} squared, {len(WAYS)} ways each, {failures} differences")
    return 1 if failures or not samples else 0


if __name__ == "__main__":
    sys.exit(main())

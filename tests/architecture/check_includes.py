"""Checks every #include of the project's libraries against cmake/arrows.txt.

Usage: check_includes.py SOURCE_ROOT. Exits 1 and names each line that crosses a border it may not cross.
Also keeps third-party headers that belong to one library out of every other, and out of public headers.
"""
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]')
# Header prefix -> the only libraries that may include it, and in sources alone.
PRIVATE_HEADERS = {
    "FreeImage.h": {"ornimage"},
    "OpenColorIO/": {"orncolormanagement"},
    "lcms2.h": {"orncolormanagement"},
    "tbb/": {"orncolormanagement"},
    "assimp/": {"orngui3d"},
    "hwy/": {"vellornodes", "vellorenginecpucore"},
    "archive.h": {"vellorprogram"},
    "pugixml.hpp": {"vellorcookercore"},
}
QT_FREE = "platform/"


def read_arrows(root):
    folders, allowed = {}, {}
    for line in (root / "cmake/arrows.txt").read_text().splitlines():
        fields = line.split()
        if not fields or fields[0].startswith("#"):
            continue
        folders[fields[0]] = fields[1]
        allowed[fields[0]] = set(fields[2:]) - {"-"}
    return folders, allowed


def owner_of(path, folders):
    """The library whose folder holds path (relative, POSIX), or None."""
    best = None
    for name, folder in folders.items():
        if path.startswith(folder + "/") and (best is None or len(folder) > len(folders[best])):
            best = name
    return best


def resolve(include, source, root):
    """The project file that an include names, relative to root, or None for a foreign header."""
    for base in (source.parent, root, root / "shared", root / "platform/include"):
        candidate = (base / include)
        if candidate.exists():
            return candidate.resolve().relative_to(root).as_posix()
    return None


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    folders, allowed = read_arrows(root)
    errors, seen = [], 0
    for folder in sorted(set(folders.values())):
        for source in sorted((root / folder).rglob("*")):
            relative = source.relative_to(root).as_posix()
            library = owner_of(relative, folders)
            is_test = "/tests/" in relative or "/fuzz/" in relative
            if source.suffix not in (".h", ".cpp", ".c") or library is None or folders[library] != folder:
                continue
            seen += 1
            for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                include = match.group(1)
                where = f"{relative}:{number}"
                target = resolve(include, source, root)
                if target is not None:
                    used = owner_of(target, folders)
                    if used and used != library and used not in allowed[library] and not is_test:
                        errors.append(f"{where}: {library} may not use {used} ({include})")
                    continue
                if relative.startswith(QT_FREE) and re.match(r"Q[A-Z]|Qt", include):
                    errors.append(f"{where}: the platform side knows no Qt ({include})")
                for prefix, owners in PRIVATE_HEADERS.items():
                    if not include.startswith(prefix):
                        continue
                    if library not in owners and not is_test:
                        errors.append(f"{where}: only {', '.join(sorted(owners))} may include {include}")
    print("\n".join(errors))
    print(f"{seen} files checked, {len(errors)} arrows that may not be")
    return 1 if errors or seen == 0 else 0


if __name__ == "__main__":
    sys.exit(main())

"""Makes the package that Octave's pkg installs.

    python3 octave/make_package.py VERSION MADE KISSFFT TARBALL

MADE is the folder with what make_described.py has made, KISSFFT the header of that library. The package
holds the sources of the binding, the host and the pack, so that it needs nothing but a compiler and Octave's
headers.
"""

import io
import sys
import tarfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
HERE = ROOT / "octave"
SOURCES = {".h", ".cpp", ".def", ".inc"}


def contents(version, made, kissfft):
    """The files of the package by their names, as text or bytes."""
    date = time.strftime("%Y-%m-%d")
    description = (HERE / "package" / "DESCRIPTION.in").read_text(encoding="utf-8")
    files = {
        "DESCRIPTION": description.replace("@VERSION@", version).replace("@DATE@", date),
        "COPYING": text_of(ROOT / "LICENSE") + "\n" + text_of(HERE / "package" / "notices.txt"),
        "NEWS": text_of(ROOT / "CHANGELOG.md"),
        "INDEX": text_of(made / "INDEX"),
        "inst/ecg.csv": text_of(ROOT / "examples" / "data" / "ecg.csv"),
        "src/kissfft/kissfft.hh": text_of(kissfft),
    }
    files |= {f"src/{name}": text_of(HERE / "package" / name) for name in ("Makefile", "FILES")}
    files |= {f"src/{name}": text_of(made / name) for name in ("functions.cc", "descriptions.inc")}
    files |= {f"src/{path.name}": text_of(path) for path in sources_in(HERE / "src")}
    for folder in ("include", "host", "pack"):
        files |= {f"src/{path.relative_to(ROOT)}": text_of(path) for path in sources_in(ROOT / folder)}
    return files | {f"inst/{path.name}": text_of(path) for path in (HERE / "inst").glob("*.m")}


def sources_in(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in SOURCES)


def text_of(path):
    return Path(path).read_text(encoding="utf-8")


def write(target, folder, files):
    with tarfile.open(target, "w:gz") as package:
        for name, text in sorted(files.items()):
            content = text.encode()
            entry = tarfile.TarInfo(f"{folder}/{name}")
            entry.size, entry.mtime, entry.mode = len(content), int(time.time()), 0o644
            package.addfile(entry, io.BytesIO(content))


def main(version, made, kissfft, target):
    write(target, f"undula-{version}", contents(version, Path(made), kissfft))


if __name__ == "__main__":
    main(*sys.argv[1:])

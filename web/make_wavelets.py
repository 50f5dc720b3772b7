#!/usr/bin/python3
"""Writes the table of the wavelets that have names as a module for the page, out of the one that Python has.

    web/make_wavelets.py OUTPUT
"""

import dataclasses
import importlib.util
import json
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[1] / "python" / "undula" / "_wavelets.py"


def table():
    """The records, without the package around them, which would have to be built."""
    specification = importlib.util.spec_from_file_location("_wavelets", SOURCE)
    module = importlib.util.module_from_spec(specification)
    sys.modules["_wavelets"] = module  # where dataclasses look for it
    specification.loader.exec_module(module)
    return [dataclasses.asdict(wavelet) for wavelet in module.wavelets()]


def main():
    lines = ",\n".join(f"  {json.dumps(record)}" for record in table())
    text = f"// Made by web/make_wavelets.py from python/undula/_wavelets.py.\n\nexport const wavelets = [\n{lines},\n];\n"
    Path(sys.argv[1]).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()

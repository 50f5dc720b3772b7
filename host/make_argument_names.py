"""Writes host/src/argument_names.inc, the names of the arguments for error texts, from the descriptions of the
functions.

    python3 host/make_argument_names.py
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
TABLE = ROOT / "host" / "src" / "argument_names.inc"

sys.path.insert(0, str(ROOT / "python"))
from make_described import read_toml  # noqa: E402


def table():
    functions = read_toml(ROOT / "functions" / "functions.toml")["functions"]
    lines = ["// Made by host/make_argument_names.py from functions/functions.toml; edit that file."]
    for function in functions:
        forms = ",\n       ".join(f'"{" ".join(form)}"' for form in function["forms"])
        lines.append(f'Names{{"{function["name"]}",\n      {{{forms}}}}},')
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    TABLE.write_text(table(), encoding="utf-8")

"""Runs the code of the guide, as a reader would copy it: the blocks of a page one after the other.

    PYTHONPATH=build/python python3 docs/run_pages.py

draws the pictures of the guide into docs/images. A block of text after a block of code is what that code
prints.
"""

import contextlib
import io
import os
import re
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

DOCS = Path(__file__).resolve().parent
PAGES = [*sorted(DOCS.glob("guide/*.md")), DOCS / "index.md", DOCS / "pywavelets.md"]
BLOCK = re.compile(r"^```(python|text)\n(.*?)^```", re.MULTILINE | re.DOTALL)


def run_page(page):
    """The names that its code leaves; a ValueError where it prints something else than the page says."""
    names, printed = {"__name__": page.stem}, ""
    for language, block in BLOCK.findall(page.read_text(encoding="utf-8")):
        if language == "python":
            output = io.StringIO()
            with contextlib.redirect_stdout(output):
                exec(compile(block, page.name, "exec"), names)
            printed = output.getvalue()
        elif block != printed:
            raise ValueError(f"{page.name} prints\n{printed}and says\n{block}")
    plt.close("all")
    return names


if __name__ == "__main__":
    os.chdir(DOCS / "images")
    for each in PAGES:
        run_page(each)

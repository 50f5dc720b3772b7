"""The pages of the guide: their code runs, and what stands beside PyWavelets agrees with it."""

import re
import runpy
from pathlib import Path

import numpy as np
import pytest

PAGES = runpy.run_path(str(Path(__file__).resolve().parents[2] / "docs" / "run_pages.py"))
BESIDE_PYWAVELETS = next(page for page in PAGES["PAGES"] if page.stem == "pywavelets")
ROW = re.compile(r"^\| `(.*)` \| `(.*)` \| (\S+) \|$", re.MULTILINE)


@pytest.mark.parametrize("page", PAGES["PAGES"], ids=lambda page: page.stem)
def test_the_code_of_a_page_prints_what_the_page_says(page, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    PAGES["run_page"](page)


@pytest.mark.parametrize("theirs, ours, tolerance", ROW.findall(BESIDE_PYWAVELETS.read_text(encoding="utf-8")))
def test_each_line_beside_pywavelets_agrees(theirs, ours, tolerance):
    names = PAGES["run_page"](BESIDE_PYWAVELETS)
    np.testing.assert_allclose(eval(ours, names), eval(theirs, names), rtol=0, atol=float(tolerance))


def test_no_line_beside_pywavelets_is_left_out():
    lines = [line for line in BESIDE_PYWAVELETS.read_text(encoding="utf-8").splitlines() if "| `" in line]
    assert len(lines) == len(ROW.findall("\n".join(lines))) > 40

"""Runs the lines of Python that the panel "A signal" shows, and compares; see signal_lines.mjs."""

import json
import os
import sys
from pathlib import Path

import matplotlib
import numpy as np

matplotlib.use("Agg")


def check(choice):
    given = {}
    exec(choice["lines"], given)
    data, restored = given["x"], np.array([x for x in choice["restored"] if x is not None])
    clean = data[: len(restored)]
    np.testing.assert_allclose(given["denoised"], restored, rtol=0, atol=1e-12 * np.abs(data).max())
    decibels = 10 * np.log10(clean.var() / np.mean((restored - clean) ** 2))
    np.testing.assert_allclose([choice["toData"], choice["toClean"]], decibels)
    packets = choice["packets"]
    for found, table, basis in (packets, "table", "basis"), (packets["cosines"], "cosines", "best"):
        np.testing.assert_array_equal(found["basis"], given[basis])
        coefficients = given["undula"].extract_basis(given[table], given[basis])
        np.testing.assert_allclose(found["coefficients"], coefficients, atol=1e-12 * np.abs(data).max())
    energies = np.sort(np.square(packets["coefficients"]))[::-1].cumsum()
    assert packets["rows"][2]["count"] == np.count_nonzero(energies < 0.99 * energies[-1]) + 1


os.chdir(Path(__file__).resolve().parents[2] / "examples/data")
count = 0
for line in sys.stdin:
    choice = json.loads(line)
    try:
        check(choice)
    except Exception:
        print(choice["name"], choice["lines"], sep="\n")
        raise
    count += 1
assert count
print(f"the lines of Python give the restored signals and best bases of {count} choices")

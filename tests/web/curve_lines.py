"""Runs the lines of Python that the page shows, and compares what they give with its curves; see curve_lines.mjs."""

import json
import sys

import numpy as np

NAMES = {
    "analysis": {"scaling": "scaling", "wavelet": "mother_wavelet", "packet": "packet"},
    "synthesis": {"scaling": "dual_scaling", "wavelet": "dual_wavelet", "packet": "dual_packet"},
}


def near(given, wanted, size=1e-12):
    wanted = np.asarray(wanted)
    assert np.shape(given) == wanted.shape
    assert np.abs(given - wanted).max() <= size * max(1, np.abs(wanted).max())


def check(choice):
    results, given = choice["results"], {}
    exec(choice["lines"], given)
    check_filters(results["filters"])
    for side, functions in results["functions"].items():
        curves = {**functions, "packet": results["packet"][side]}
        for kind, name in NAMES[side].items():
            near(given[name], curves[kind]["y"])
            near(given[name][[0, -1]], [0, 0])  # nothing is cut off
        if choice["drawn"] == "inverse":
            check_places(functions, results["filters"][side])
    ends = results["ends"]
    samples = np.rint(np.asarray(ends["x"]) * 128).astype(int)  # counted from their end
    near(given["end_scaling"][samples], ends["scaling"][0])
    near(given["end_wavelet"][samples], ends["wavelet"][0])


def check_places(functions, filters):
    """The scaling function has integral 1 and the centre of its filter, the wavelet integral 0."""
    x, y = (np.array(functions["scaling"][axis]) for axis in "xy")
    taps = np.array(filters["low"]["taps"])
    centre = taps @ (filters["low"]["first"] + np.arange(taps.size)) / taps.sum()
    near(x @ y / y.sum(), centre, 1e-7)
    near([y.sum() / 1024, np.sum(functions["wavelet"]["y"]) / 1024], [1, 0], 1e-3)


def check_filters(filters):
    """Analysis and synthesis are biorthogonal where their taps stand; those of `bl` are cut off."""
    for side in "low", "high":
        for other in "low", "high":
            lines = np.zeros((2, 256))
            for row, bank in zip(lines, (filters["analysis"][side], filters["synthesis"][other])):
                row[128 + bank["first"] :][: len(bank["taps"])] = bank["taps"]
            products = np.correlate(lines[0], lines[1], "full")[1::2]  # all even shifts
            near(products, (side == other) * (np.arange(products.size) == 127), 1e-3)


count = 0
for line in sys.stdin:
    choice = json.loads(line)
    try:
        check(choice)
    except Exception:
        print(choice["wavelet"]["name"], choice["boundary"], choice["drawn"], choice["lines"], sep="\n")
        raise
    count += 1
assert count
print(f"the lines of Python give the curves of {count} choices")

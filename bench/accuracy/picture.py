"""Draws the figures of accuracy_tables against the size of the data.

    python3 bench/accuracy/picture.py FIGURES.csv PICTURE.png
"""

import csv
import sys
from collections import defaultdict

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

PANELS = {
    "Transforms: dwt, dwts, dwti and inverses": ("dwt",),
    "Packet tables to the last level, and back": ("wpt",),
    "DCT-IV, cpt and icpt": ("DCT-IV", "cpt"),
}
COSINES = {"powers of two", "even, 2 times an odd number", "odd", "odd, prime", "even, 2 times a prime"}


def lines(path):
    """The largest figure of each panel, line and size."""
    found = defaultdict(lambda: defaultdict(lambda: defaultdict(float)))
    with open(path, newline="") as file:
        for row in csv.DictReader(file, delimiter=";", fieldnames=("row", "column", "name", "size", "figure")):
            kind, column = row["row"], row["column"]
            if kind in ("row", "limit") or "(" in kind or column in ("relative", "units / sqrt(log2 n)"):
                continue
            label = column
            if kind in COSINES:
                kind, label = "DCT-IV", "DCT-IV, " + kind
            elif column == "units":
                label = "cpt, lct and inverses"
                kind = "cpt"
            for panel, words in PANELS.items():
                if any(word in kind for word in words):
                    line = found[panel][label]
                    size = float(row["size"])
                    line[size] = max(line[size], float(row["figure"]))
    return found


def main():
    found = lines(sys.argv[1])
    figure, axes = plt.subplots(1, 3, figsize=(13, 4.2), sharey=True, layout="constrained")
    for axis, panel in zip(axes, PANELS):
        for label, line in found[panel].items():
            sizes = sorted(line)
            axis.plot(sizes, [line[size] for size in sizes], "o-", markersize=3, label=label)
        axis.set_title(panel, fontsize=10)
        axis.set_xlabel("log2 of the number of samples or pixels")
        axis.set_xticks(range(6, 21, 2))
        axis.grid(alpha=0.3)
        axis.legend(fontsize=7)
    axes[0].set_ylim(0, 12)
    axes[0].set_ylabel("largest error, in units of 2^-53")
    figure.savefig(sys.argv[2], dpi=110)


if __name__ == "__main__":
    main()

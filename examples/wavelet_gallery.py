"""Scaling functions, wavelets and packets
=======================================

Draws scaling functions, wavelets and wavelet packets. ::

    PYTHONPATH=build/python python3 examples/wavelet_gallery.py [folder]

Three sheets: the scaling functions and wavelets of members of every family, with their duals for the
biorthogonal pairs; the packets 0 to 15 of one filter, which are counted by frequency; and the three
wavelets of the plane. Every point is one value of `wavelet`, `dlwavelet` or `mother2d`.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
GRID = 32  # points to a unit at which a scaling function changes
WIDTH = 10  # units that each picture of a family shows, so that widths can be compared

ORTHONORMAL = {
    "daublet": [(2,), (4,), (8,), (20,)],
    "symmlet": [(8,), (20,)],
    "coiflet": [(6,), (18,)],
    "bl": [(1,), (3,)],
}
BIORTHOGONAL = {"Bspline": [(1, 3), (2, 4), (2, 8), (3, 9)]}
SCALING, WAVELET, LINE = "#00798c", "#d1495b", "#c8c8c8"


def draw_function(axis, filter, index, dual=False):
    axis.axhline(0, color=LINE, lw=0.8)
    undula.plot.function(filter, index, axis, dual=dual, color=WAVELET if index else SCALING)
    axis.margins(x=0.02, y=0.08)
    axis.tick_params(labelsize=7, length=2, color="#888888", labelcolor="#555555")
    axis.locator_params(nbins=4)
    axis.spines[["top", "right"]].set_visible(False)
    axis.spines[["left", "bottom"]].set_color(LINE)


def draw_pair(axes, name, filter, dual=False):
    for index, (axis, what) in enumerate(zip(axes, ("scaling function", "wavelet"))):
        draw_function(axis, filter, index, dual)
        axis.set_title(f"{name}, {'dual ' if dual else ''}{what}", loc="left", fontsize=9)
        middle = round(sum(axis.get_xlim()) / 2)
        axis.set_xlim(middle - WIDTH / 2, middle + WIDTH / 2)


def members(families):
    """The name and the filter of each member."""
    for family, orders in families.items():
        for each in orders:
            yield f"{family}({', '.join(map(str, each))})", getattr(undula, family)(*each)


def draw_families(path):
    figure, axes = plt.subplots(9, 4, figsize=(11, 14.5), layout="constrained")
    pairs = iter(axes.reshape(-1, 2))
    for name, filter in members(ORTHONORMAL):
        draw_pair(next(pairs), name, filter)
    for name, filter in members(BIORTHOGONAL):
        draw_pair(next(pairs), name, filter)
        draw_pair(next(pairs), name, filter, dual=True)
    figure.suptitle("Scaling functions and wavelets; the biorthogonal splines with their duals; each over 10 units")
    figure.get_layout_engine().set(h_pad=0.06, w_pad=0.06)
    save(figure, path)


def draw_packets(path, taps=8):
    filter = undula.symmlet(taps)
    figure, axes = plt.subplots(4, 4, figsize=(11, 8), layout="constrained", sharex=True, sharey=True)
    for index, axis in enumerate(axes.flat):
        draw_function(axis, filter, index)
        axis.set_title(f"packet {index}", loc="left", fontsize=9)
    axes[0, 0].set_xlim(-3.5, 4.5)
    figure.suptitle(f"Wavelet packets 0 to 15 of symmlet({taps}): index n has about n half waves to a unit")
    save(figure, path)


def draw_plane(path, name="symm8"):
    first, last = -1.5, 3.5
    x, y = np.mgrid[first : last : 1 / GRID, first : last : 1 / GRID]
    types = {"H": "wavelet along x, for horizontal edges", "V": "wavelet along y, for vertical edges",
             "D": "wavelet along both"}
    figure, axes = plt.subplots(1, 3, figsize=(11, 4.1), layout="constrained", sharey=True)
    values = {kind: undula.evaluate(undula.mother2d, x, y, name, kind) for kind in types}
    most = max(np.abs(each).max() for each in values.values())
    for axis, (kind, what) in zip(axes, types.items()):
        shown = axis.imshow(values[kind], cmap="RdBu_r", vmin=-most, vmax=most,
                            extent=(first, last, last, first), interpolation="bilinear")
        axis.set_title(f"{kind}: {what}", loc="left", fontsize=10)
        axis.set_xlabel("y")
    axes[0].set_ylabel("x, downwards as the rows of an image")
    figure.colorbar(shown, ax=axes, shrink=0.85)
    figure.suptitle(f"The three wavelets of the plane, mother2d(x, y, \"{name}\", ...)")
    save(figure, path)


def save(figure, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=110)
    plt.close(figure)
    print(f"figure: {path}")


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out"
    draw_families(folder / "wavelet_gallery.png")
    draw_packets(folder / "wavelet_packets.png")
    draw_plane(folder / "wavelets_of_the_plane.png")


if __name__ == "__main__":
    main()

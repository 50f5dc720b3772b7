"""Draws scaling functions, wavelets and wavelet packets.

    PYTHONPATH=build/python python3 examples/wavelet_gallery.py [folder]

Three sheets: the scaling functions and wavelets of members of every family, with their duals for the
biorthogonal pairs; the packets 0 to 15 of one filter, which are counted by frequency; and the three
wavelets of the plane. Every point is one value of `father`, `mother`, `wavelet` or `mother2d`;
`evaluate` calls them for whole arrays.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
SMALLEST = 1e-3  # of the largest value; the ends below it are left out of the picture
GRID = 32  # points to a unit at which a scaling function changes; at twice as many a wavelet does

ORTHONORMAL = ["haar", "daub4", "daub8", "daub20", "symm8", "symm20", "coif6", "coif18", "bl1", "bl3"]
BIORTHOGONAL = ["bs13", "bs24", "bs28", "bs39"]
SCALING, WAVELET, LINE = "#00798c", "#d1495b", "#c8c8c8"


def curve(function, *arguments, per_unit):
    """Points and values where the function is not practically 0."""
    x = np.arange(-20 * per_unit, 20 * per_unit) / per_unit
    y = undula.evaluate(function, x, *arguments)
    (inside,) = np.nonzero(np.abs(y) > SMALLEST * np.abs(y).max())
    margin = slice(inside[0] - per_unit // 4, inside[-1] + per_unit // 4)
    return x[margin], y[margin]


def draw_curve(axis, color, x, y):
    has_steps = np.unique(y.round(9)).size < 10
    axis.axhline(0, color=LINE, lw=0.8)
    axis.plot(x, y, color=color, lw=1.3, drawstyle="steps-post" if has_steps else "default")
    axis.margins(x=0.02, y=0.08)
    axis.tick_params(labelsize=7, length=2, color="#888888", labelcolor="#555555")
    axis.locator_params(nbins=4)
    axis.spines[["top", "right"]].set_visible(False)
    axis.spines[["left", "bottom"]].set_color(LINE)


def draw_pair(axes, name, scaling, wavelet, dual=""):
    draw_curve(axes[0], SCALING, *curve(scaling, name, per_unit=GRID))
    axes[0].set_title(f"{name}, {dual}scaling function", loc="left", fontsize=9)
    draw_curve(axes[1], WAVELET, *curve(wavelet, name, per_unit=2 * GRID))
    axes[1].set_title(f"{name}, {dual}wavelet", loc="left", fontsize=9)


def draw_families(path):
    figure, axes = plt.subplots(9, 4, figsize=(11, 14.5), layout="constrained")
    pairs = axes.reshape(-1, 2)
    for pair, name in zip(pairs, ORTHONORMAL):
        draw_pair(pair, name, undula.father, undula.mother)
    for row, name in zip(axes[len(ORTHONORMAL) // 2 :], BIORTHOGONAL):
        draw_pair(row[:2], name, undula.father, undula.mother)
        draw_pair(row[2:], name, undula.dlfather, undula.dlmother, "dual ")
    figure.suptitle("Scaling functions and wavelets; the biorthogonal splines with their duals")
    figure.get_layout_engine().set(h_pad=0.06, w_pad=0.06)
    save(figure, path)


def draw_packets(path, taps=8):
    filter = undula.symmlet(taps)
    figure, axes = plt.subplots(4, 4, figsize=(11, 8), layout="constrained", sharex=True, sharey=True)
    for index, axis in enumerate(axes.flat):
        color = SCALING if index == 0 else WAVELET
        draw_curve(axis, color, *curve(undula.wavelet, 0, 0, index, filter, per_unit=GRID << index.bit_length()))
        axis.set_title(f"packet {index}", loc="left", fontsize=9)
    axes[0, 0].set_xlim(-3.5, 4.5)
    figure.suptitle(f"Wavelet packets 0 to 15 of symm{taps}: index n has about n half waves to a unit")
    save(figure, path)


def draw_plane(path, name="symm8"):
    first, last = -1.5, 3.5
    x, y = np.mgrid[first : last : 1 / GRID, first : last : 1 / GRID]
    types = {"H": "wavelet along x", "V": "wavelet along y", "D": "wavelet along both"}
    figure, axes = plt.subplots(1, 3, figsize=(11, 4.1), layout="constrained", sharey=True)
    values = {kind: undula.evaluate(undula.mother2d, x, y, name, kind) for kind in types}
    most = max(np.abs(each).max() for each in values.values())
    for axis, (kind, what) in zip(axes, types.items()):
        shown = axis.imshow(values[kind].T, cmap="RdBu_r", vmin=-most, vmax=most, origin="lower",
                            extent=(first, last, first, last), interpolation="bilinear")
        axis.set_title(f"{kind}: {what}", loc="left", fontsize=10)
        axis.set_xlabel("x")
    axes[0].set_ylabel("y")
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

"""Pictures for the pages of functions of which a picture says more than words.

`PICTURES` has for each such function a caption and what draws the picture into a folder.
"""

from pathlib import Path

import matplotlib.pyplot as plt
import numpy as np

import undula
from undula import plot

DATA = Path(__file__).resolve().parents[1] / "examples" / "data"
ANALYSIS, SYNTHESIS = "#00798c", "#d1495b"


def draw_pictures(folder):
    """Draws them all, and returns for each function its picture as Markdown."""
    style = {"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False}
    with plt.rc_context(style):
        for name, (_, draw) in PICTURES.items():
            figure = plt.figure(figsize=(8, 3.2), layout="constrained")
            draw(figure)
            figure.savefig(folder / f"{name}.png", dpi=110)
            plt.close(figure)
    return {name: f"![{caption}]({name}.png)\n\n*{caption}.*" for name, (caption, _) in PICTURES.items()}


def _filters(*names):
    def draw(figure):
        for row, name in zip(np.atleast_2d(figure.subplots(len(names), 2)), names):
            for index, what in enumerate(("scaling function", "wavelet")):
                plot.function(name, index, row[index], color=SYNTHESIS if index else ANALYSIS)
                row[index].set_title(f"{name}, {what}", loc="left", fontsize=10)

    return draw


def _pair(figure):
    axes = figure.subplots(1, 2)
    for index, what in enumerate(("scaling function", "wavelet")):
        plot.function("Bspline24", index, axes[index], color=ANALYSIS, lw=1, label="analysis")
        plot.function("Bspline24", index, axes[index], dual=True, color=SYNTHESIS, lw=1.8, label="synthesis")
        axes[index].set_title(f"Bspline(2, 4), {what}", loc="left", fontsize=10)
    axes[0].legend()


def _read(name):
    return np.loadtxt(DATA / name)


def _photograph():
    return plt.imread(DATA / "camera.pgm").astype(float)


def _levels(transform, wavelet):
    def draw(figure):
        y = transform(_read("ecg.csv"), 5, wavelet)
        plot.levels(y, 5, figure.subplots(), span=(0, 1024 / 360), common=False).set_xlabel("seconds")

    return draw


def _subbands(figure):
    axes = figure.subplots(1, 2)
    axes[0].imshow(_photograph(), cmap="gray")
    axes[0].set(xticks=[], yticks=[])
    plot.mosaic(undula.dwt(_photograph(), 3, "symmlet8"), 3, axes[1])


def _packets():
    months = _read("nino3.csv")
    table = undula.wpt(months - months.mean(), 5, "coiflet18")
    return table, undula.best_basis(table, "shannon")


def _table(figure):
    plot.table(_packets()[0], None, figure.subplots())


def _best_basis(figure):
    table, basis = _packets()
    coefficients = undula.extract_basis(table, basis)
    axis = plot.tiling(coefficients, basis, figure.subplots(), span=(1950, 2016.67), highest=6)
    axis.set(xlabel="year", ylabel="cycles a year")
    figure.colorbar(axis.images[-1], ax=axis, label="dB")


def _blocks(figure):
    picture = _photograph()
    table = undula.wpt(picture - picture.mean(), 4, "symmlet8")
    axes = figure.subplots(1, 2)
    basis = undula.best_basis(table, "l1")
    axes[0].imshow(undula.basis_display2d(basis), cmap="gray")
    axes[0].set_title("basis_display2d(basis)", loc="left", fontsize=10)
    plot.partition(basis, -np.log10(np.abs(undula.extract_basis(table, basis)) + 1), axes[1])
    axes[1].set_title("undula.plot.partition(basis, ...)", loc="left", fontsize=10)
    for axis in axes:
        axis.set(xticks=[], yticks=[])


def _plane(function, types):
    def draw(figure):
        x, y = np.meshgrid(np.linspace(-1.5, 3.5, 161), np.linspace(-1.5, 3.5, 161), indexing="ij")
        for axis, kind in zip(figure.subplots(1, len(types), sharey=True, squeeze=False)[0], types):
            values = function(x, y, "symmlet8", *kind)
            most = np.abs(values).max()
            axis.imshow(values, cmap="RdBu_r", vmin=-most, vmax=most, extent=(-1.5, 3.5, 3.5, -1.5),
                        interpolation="bilinear")
            axis.set(xlabel="y", ylabel="x, downwards", title=kind)

    return draw


def _indices(figure):
    for index, axis in enumerate(figure.subplots(2, 4, sharex=True, sharey=True).flat):
        plot.function("symmlet8", index, axis, color=ANALYSIS, lw=1.2)
        axis.set_title(f"index {index}", loc="left", fontsize=10)
        axis.set_xlim(-3.5, 4.5)


def _interpolation(figure):
    samples = np.array([0, 1, 3, 2, 2, -1, 0, 1.0])
    x = np.arange(-0.5, 7.75, 1 / 32)
    axis = figure.subplots()
    axis.plot(x, undula.waveterp(x, samples, 0, 0, "coiflet18"), color=ANALYSIS, label="coiflet18")
    axis.plot(x, undula.waveterp(x, samples, 0, 0, "daublet8"), color=SYNTHESIS, label="daublet8")
    axis.plot(samples, "o", color="black", label="data")
    axis.legend(ncols=3)
    axis.set(ylim=(-2, 4.5), xlabel="x")


def _windows(figure):
    time = np.arange(2048) / 2048
    chirp = np.sin(2 * np.pi * (40 * time + 350 * time**2)) * np.sin(np.pi * time)
    table = undula.cpt(chirp, 5)
    basis = undula.best_basis(table, "shannon")
    coefficients = undula.extract_basis(table, basis)
    axis = plot.tiling(coefficients, basis, figure.subplots(), windows=True, span=(0, 1), highest=1024)
    axis.set(xlabel="seconds", ylabel="Hz")
    figure.colorbar(axis.images[-1], ax=axis, label="dB")


DIRECTIONS = ("H", "V", "D")
PICTURES = {
    "daublet": ("Two of the family", _filters("daublet4", "daublet8")),
    "symmlet": ("Two of the family", _filters("symmlet8", "symmlet20")),
    "coiflet": ("Two of the family", _filters("coiflet6", "coiflet18")),
    "Bspline": ("The functions of the analysis and of the synthesis filters", _pair),
    "bl": ("Two of the family", _filters("bl1", "bl3")),
    "dwt": ("An electrocardiogram, dwt(x, 5, \"symmlet8\")", _levels(undula.dwt, "symmlet8")),
    "dwts": ("An electrocardiogram, dwts(x, 5, \"Bspline24\")", _levels(undula.dwts, "Bspline24")),
    "dwti": ("An electrocardiogram, dwti(x, 5, \"symmlet8\")", _levels(undula.dwti, "symmlet8")),
    "get_detail2d": ("A photograph and its subbands: detail blocks by type and level", _subbands),
    "wpt": ("The packets of a climate record: level by level, low frequencies on the left", _table),
    "best_basis": ("A climate record in its best basis: each packet a band of frequencies", _best_basis),
    "basis_display2d": ("The best basis of a photograph", _blocks),
    "father": ("Scaling functions of two wavelets, and their wavelets", _filters("daublet4", "symmlet8")),
    "mother": ("Scaling functions of two wavelets, and their wavelets", _filters("daublet4", "symmlet8")),
    "father2d": ("father2d(x, y, \"symmlet8\")", _plane(undula.father2d, ((),))),
    "mother2d": ("mother2d(x, y, \"symmlet8\", type) of the three types", _plane(undula.mother2d, DIRECTIONS)),
    "wavelet": ("Packets of symmlet8: index n has about n half waves to a unit", _indices),
    "waveterp": ("Data at level 0 and its function: a coiflet comes close to the data", _interpolation),
    "cpt": ("A chirp in the windows of its best basis", _windows),
}

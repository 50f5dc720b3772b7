"""All pictures of undula.plot
===========================

Draws every picture that `undula.plot` has, of real data. ::

    PYTHONPATH=build/python python3 examples/pictures.py [folder]
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula
from undula import plot

HERE = Path(__file__).resolve().parent
LEVEL = 4


def draw_signal(path, ecg, months):
    figure, axes = plt.subplots(2, 2, figsize=(11, 7.5), layout="constrained")
    wavelet = undula.coiflet(18)
    table = undula.wpt(months, 5, wavelet)
    basis = undula.best_basis(table, undula.costs.shannon)
    coefficients = undula.extract_basis(table, basis)
    seconds = (0, len(ecg) / 360)
    plot.levels(undula.dwt(ecg, 5, undula.symmlet(8)), 5, axes[0, 0], span=seconds, common=False)
    axes[0, 0].set_title("levels: an electrocardiogram", loc="left")
    axes[0, 0].set_xlabel("seconds")
    plot.tiling(coefficients, basis, axes[0, 1], span=(1950, 1950 + len(months) / 12), highest=6)
    axes[0, 1].set_title("tiling: sea temperatures in their best basis", loc="left")
    axes[0, 1].set(xlabel="year", ylabel="cycles a year")
    figure.colorbar(axes[0, 1].images[-1], ax=axes[0, 1], label="dB")
    plot.table(table, basis, axes[1, 0])
    axes[1, 0].set_title("table: all packets, and the best basis", loc="left")
    plot.decay(coefficients, axes[1, 1], kind="error", label="best basis")
    plot.decay(undula.dwt(months, 5, wavelet), axes[1, 1], kind="error", label="wavelets")
    plot.decay(months, axes[1, 1], kind="error", label="samples")
    axes[1, 1].set_title("decay: the error of keeping the largest", loc="left")
    axes[1, 1].legend(frameon=False)
    save(figure, path)


def draw_image(path, picture):
    figure, axes = plt.subplots(1, 3, figsize=(11, 4), layout="constrained")
    plot.mosaic(undula.dwts(picture, 3, undula.Bspline(2, 4)), 3, axes[0])
    axes[0].set_title("mosaic: subbands", loc="left")
    packets = undula.wpt(picture - picture.mean(), LEVEL, undula.symmlet(8))
    basis = undula.best_basis(packets, undula.costs.l1)
    coefficients = undula.extract_basis(packets, basis)
    plot.partition(basis, -np.log10(np.abs(coefficients) + 1), axes[1])
    axes[1].set_title("partition: wavelet packets", loc="left")
    windows = undula.best_basis(undula.cpt(picture - picture.mean(), LEVEL), undula.costs.l1)
    plot.partition(windows, picture, axes[2])
    axes[2].set_title("partition: cosine packets", loc="left")
    save(figure, path)


def draw_wavelets(path):
    figure = plt.figure(figsize=(11, 5.5), layout="constrained")
    wavelets = {"symmlet(8)": undula.symmlet(8), "Bspline(2, 4)": undula.Bspline(2, 4)}
    for part, (name, wavelet) in zip(figure.subfigures(1, 2), wavelets.items()):
        plot.sheet(wavelet, part.subplots(2, 2))
        part.suptitle(f"sheet: {name}")
    save(figure, path)


def save(figure, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=110)
    plt.close(figure)
    print(f"figure: {path}")


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out"
    months = np.loadtxt(HERE / "data" / "nino3.csv")
    draw_signal(folder / "plot_signal.png", np.loadtxt(HERE / "data" / "ecg.csv"), months - months.mean())
    draw_image(folder / "plot_image.png", plt.imread(HERE / "data" / "camera.pgm").astype(float))
    draw_wavelets(folder / "plot_wavelets.png")


if __name__ == "__main__":
    main()

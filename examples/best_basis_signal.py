"""The best basis of a climate record
==================================

Finds the wavelet packets that suit a climate record, and compares them with plain wavelets. ::

    PYTHONPATH=build/python python3 examples/best_basis_signal.py [figure]

The record is the monthly sea surface temperature of the equatorial Pacific. It has a cycle of a year
and the irregular warm and cold spells of El Nino, a few years apart. The subbands of the plain wavelet
transform are octaves, too broad for the cycle; the best basis divides the frequencies finely around it
and coarsely where little happens. The share of the energy in the largest 5 % of the coefficients shows
how much better that is.

The cost of the search is the entropy of R. R. Coifman and M. V. Wickerhauser, Entropy-based algorithms
for best basis selection, IEEE Trans. Information Theory 38 (1992) 713-718. The mean is removed first,
and the energy is scaled to 1, as that entropy requires.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
FIRST_YEAR = 1950
MONTHS = 12
LEVELS = 5
KEPT = 0.05
DECIBELS = 40  # range of the colours

FILTERS = {
    "daublet(4)": undula.daublet(4),
    "daublet(8)": undula.daublet(8),
    "symmlet(8)": undula.symmlet(8),
    "symmlet(16)": undula.symmlet(16),
    "coiflet(18)": undula.coiflet(18),
}
SHOWN = "coiflet(18)"

INK, FAINT, ACCENT, SECOND = "#1b1b1b", "#b8bec7", "#d1495b", "#00798c"


def best_basis(signal, wavelet):
    return undula.best_basis(undula.wpt(signal, LEVELS, wavelet), undula.costs.shannon)


def bases_of(signal, wavelet):
    """The best basis, and that of the plain transform with the greatest share."""
    plain = max(
        (undula.wavebs(level, 1) for level in range(1, LEVELS + 1)),
        key=lambda basis: share(undula.wpt(signal, basis, wavelet)),
    )
    return {"best basis": best_basis(signal, wavelet), "plain wavelets": plain}


def share(coefficients):
    """The share of the energy in the largest coefficients."""
    energy = np.sort(coefficients**2)[::-1]
    return energy[: round(KEPT * len(energy))].sum() / energy.sum()


def rebuilt(signal, basis, wavelet):
    """The signal, rebuilt from the largest coefficients alone."""
    coefficients = undula.wpt(signal, basis, wavelet)
    smaller = np.argsort(np.abs(coefficients))[: -round(KEPT * len(signal))]
    coefficients[smaller] = 0
    return undula.iwpt(coefficients, basis, wavelet)


def print_table(signal):
    print(f"Energy in the largest {KEPT:.0%} of {len(signal)} coefficients\n")
    print(f"{'filter':<14}{'packets':>9}{'best basis':>12}{'plain dwt':>12}{'levels':>8}")
    for name, wavelet in FILTERS.items():
        best, plain = bases_of(signal, wavelet).values()
        shares = (share(undula.wpt(signal, basis, wavelet)) for basis in (best, plain))
        print(f"{name:<14}{len(best):>9}" + "".join(f"{each:12.1%}" for each in shares) + f"{len(plain) - 1:8}")
    print(f"{'the samples':<23}{share(signal):12.1%}")


def draw(path, temperature, signal):
    plt.rcParams.update({"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False})
    figure, axes = plt.subplot_mosaic(
        [["record", "record"], ["best basis", "best basis"], ["plain wavelets", "plain wavelets"], ["shares", "rebuilt"]],
        figsize=(11, 12.5), height_ratios=[0.75, 2, 1.15, 1.35], layout="constrained",
    )
    wavelet = FILTERS[SHOWN]
    bases = bases_of(signal, wavelet)
    axes["record"].plot(years(len(signal)), temperature, color=INK, lw=0.8)
    axes["record"].set_title("Sea surface temperature of the NINO3 region", loc="left")
    axes["record"].set(ylabel="°C")
    axes["record"].tick_params(labelbottom=False)
    for name, basis in bases.items():
        draw_tiling(axes[name], name, undula.wpt(signal, basis, wavelet), basis)
    axes["record"].sharex(axes["best basis"])
    axes["best basis"].tick_params(labelbottom=False)
    axes["best basis"].set_xlabel("")
    figure.colorbar(axes["best basis"].images[-1], ax=[axes["best basis"], axes["plain wavelets"]], label="energy, dB", pad=0.01)
    draw_shares(axes["shares"], signal, bases, wavelet)
    draw_rebuilt(axes["rebuilt"], temperature, signal, bases, wavelet)
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.1)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=130)
    plt.close(figure)


def years(samples):
    return FIRST_YEAR + np.arange(samples) / MONTHS


def draw_tiling(axis, name, coefficients, basis):
    span = years(len(coefficients) + 1)[[0, -1]]
    undula.plot.tiling(coefficients, basis, axis, span=span, highest=MONTHS / 2, decibels=DECIBELS)
    axis.set(xlabel="year", ylabel="cycles a year", yticks=range(7))
    title = f"{name.capitalize()}: {len(basis)} packets, {share(coefficients):.0%} "
    axis.set_title(title + f"of the energy in {KEPT:.0%} of the tiles", loc="left")


def draw_shares(axis, signal, bases, wavelet):
    for colour, (name, basis) in zip((ACCENT, SECOND), bases.items()):
        coefficients = undula.wpt(signal, basis, wavelet)
        undula.plot.decay(coefficients, axis, kind="energy", color=colour, lw=2, label=name)
    undula.plot.decay(signal, axis, kind="energy", color=FAINT, lw=1.5, label="the samples")
    axis.axvline(100 * KEPT, color=INK, lw=0.8, ls=":")
    axis.set(xlim=(0, 20), ylim=(0, 100), xlabel="coefficients kept, %")
    axis.set_title(f"Energy in the largest coefficients, {SHOWN}", loc="left")
    axis.legend(loc="lower right")


def draw_rebuilt(axis, temperature, signal, bases, wavelet):
    part = slice(MONTHS * 28, MONTHS * 40)
    scale = np.linalg.norm(temperature - temperature.mean())
    axis.plot(years(len(signal))[part], temperature[part], color=INK, lw=1, label="record")
    for colour, (name, basis) in zip((ACCENT, SECOND), bases.items()):
        values = temperature.mean() + scale * rebuilt(signal, basis, wavelet)
        axis.plot(years(len(signal))[part], values[part], color=colour, lw=1.5, label=name)
    axis.set_xlim(years(len(signal))[part][[0, -1]])
    axis.set_ylim(top=temperature[part].max() + 1.6)
    axis.set(xlabel="year", ylabel="°C")
    axis.set_title(f"Rebuilt from {KEPT:.0%} of the coefficients", loc="left")
    axis.legend(loc="upper left", ncols=3, columnspacing=1.2)


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "best_basis_signal.png"
    temperature = np.loadtxt(HERE / "data" / "nino3.csv")
    signal = temperature - temperature.mean()
    signal /= np.linalg.norm(signal)
    print_table(signal)
    draw(path, temperature, signal)
    print(f"\nfigure: {path}")


if __name__ == "__main__":
    main()

"""A photograph from few coefficients
==================================

Finds the wavelet packets that suit a photograph, and rebuilds it from few of their coefficients. ::

    PYTHONPATH=build/python python3 examples/compress_image.py [figure]

The cost that the best basis minimises is a sum of costs of the coefficients. Three are tried: the
absolute value; the entropy of R. R. Coifman and M. V. Wickerhauser, Entropy-based algorithms for best
basis selection, IEEE Trans. Information Theory 38 (1992) 713-718; and min(x^2, t^2), with a threshold t
for each number of coefficients. The last is the cost of a coefficient if leaving it out costs its square
and keeping it costs t^2: K. Ramchandran and M. Vetterli, Best wavelet packet bases in a rate-distortion
sense, IEEE Trans. Image Processing 2 (1993) 160-175.

The largest coefficients are kept, the others are set to zero, and the peak signal-to-noise ratio is
compared with that of the plain wavelet transform, whose basis is one of those searched. What it takes to
store the chosen basis is not counted.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
LEVELS = 5
FILTER = undula.symmlet(8)
FRACTIONS = (0.005, 0.01, 0.02, 0.05, 0.1, 0.2)
SHOWN = 0.02
WHITE = 255

INK, FAINT = "#1b1b1b", "#b8bec7"
COLOURS = {"absolute value": "#d1495b", "entropy": "#edae49", "min(x², t²)": "#00798c"}


class Compression:
    """A picture in all its packets; its mean does without a coefficient."""

    def __init__(self, picture):
        self.picture = picture
        self.mean = picture.mean()
        self.table = undula.wpt(picture - self.mean, LEVELS, FILTER)
        self.plain = undula.wavebs(LEVELS, 2)
        self.entropy_basis = undula.best_basis(self.table, undula.costs.shannon)
        self.absolute_basis = undula.best_basis(self.table, undula.costs.l1)

    def basis(self, cost, fraction):
        if cost == "plain wavelets":
            return self.plain
        if cost == "entropy":
            return self.entropy_basis
        if cost == "absolute value":
            return self.absolute_basis
        threshold = nth_largest(undula.extract_basis(self.table, self.plain), fraction)
        return undula.best_basis(self.table, undula.costs.clipped_energy(threshold))

    def rebuilt(self, basis, fraction):
        coefficients = undula.extract_basis(self.table, basis)
        coefficients[np.abs(coefficients) < nth_largest(coefficients, fraction)] = 0
        return self.mean + undula.iwpt(coefficients, basis, FILTER)

    def ratio(self, cost, fraction):
        """The peak signal-to-noise ratio in decibels."""
        error = self.rebuilt(self.basis(cost, fraction), fraction) - self.picture
        return 10 * np.log10(WHITE**2 / np.mean(error**2))


def nth_largest(coefficients, fraction):
    return np.sort(np.abs(coefficients), axis=None)[-round(fraction * coefficients.size)]


def ratios_of(compression):
    return {
        cost: [compression.ratio(cost, fraction) for fraction in FRACTIONS]
        for cost in ("plain wavelets", *COLOURS)
    }


def print_table(ratios):
    print("Peak signal-to-noise ratio in dB; of the best bases, what they gain\n")
    print(f"{'kept':<16}" + "".join(f"{fraction:8.1%}" for fraction in FRACTIONS))
    plain = ratios["plain wavelets"]
    print(f"{'plain wavelets':<16}" + "".join(f"{ratio:8.2f}" for ratio in plain))
    for cost in COLOURS:
        print(f"{cost:<16}" + "".join(f"{own - other:+8.2f}" for own, other in zip(ratios[cost], plain)))


def draw(path, compression, ratios):
    plt.rcParams.update({"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False})
    figure, axes = plt.subplot_mosaic(
        [["picture", "blocks", "coefficients"], ["original", "plain", "best"], ["ratios", "gains", "gains"]],
        figsize=(11, 11), height_ratios=[1, 1, 0.85], layout="constrained",
    )
    best = compression.basis("min(x², t²)", SHOWN)
    show(axes["picture"], compression.picture, "Photograph, 256 x 256 pixels")
    undula.plot.partition(best, ax=axes["blocks"])
    axes["blocks"].set_title(f"Best basis for {SHOWN:.0%}: {len(best)} packets", loc="left", fontsize=11)
    coefficients = undula.extract_basis(compression.table, best)
    show(axes["coefficients"], -np.log10(np.abs(coefficients) + 1), "Its coefficients, logarithmic")
    draw_details(axes, compression, best, ratios)
    draw_ratios(axes["ratios"], ratios)
    draw_gains(axes["gains"], ratios)
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.1)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=130)
    plt.close(figure)


def draw_details(axes, compression, best, ratios):
    part = np.s_[20:148, 70:198]
    place = FRACTIONS.index(SHOWN)
    show(axes["original"], compression.picture[part], "Part of the photograph", WHITE)
    for name, basis, cost in (("plain", compression.plain, "plain wavelets"), ("best", best, "min(x², t²)")):
        title = f"{'Plain wavelets' if name == 'plain' else 'Best basis'}, {SHOWN:.0%} kept: "
        picture = compression.rebuilt(basis, SHOWN)[part]
        show(axes[name], picture, title + f"{ratios[cost][place]:.1f} dB", WHITE)


def show(axis, picture, title, white=None):
    black = 0 if white else None
    axis.imshow(picture, cmap="gray", vmin=black, vmax=white, interpolation="nearest")
    axis.set_title(title, loc="left", fontsize=11)
    axis.set(xticks=[], yticks=[])
    for side in axis.spines.values():
        side.set_visible(False)


def draw_ratios(axis, ratios):
    axis.plot(percent(), ratios["plain wavelets"], color=INK, lw=1.5, marker="o", ms=4)
    axis.set_title("Plain wavelets", loc="left", fontsize=11)
    axis.set(ylabel="peak signal-to-noise ratio, dB")
    draw_fractions(axis)


def draw_gains(axis, ratios):
    for cost, colour in COLOURS.items():
        gains = np.subtract(ratios[cost], ratios["plain wavelets"])
        axis.plot(percent(), gains, color=colour, lw=2, marker="o", ms=4, label=cost)
    axis.axhline(0, color=FAINT, lw=1)
    axis.set_title("What the best basis gains, by cost", loc="left", fontsize=11)
    axis.set(ylabel="dB")
    axis.legend(loc="lower left")
    draw_fractions(axis)


def draw_fractions(axis):
    axis.set_xscale("log")
    axis.set_xticks(percent(), [f"{each:g}" for each in percent()])
    axis.minorticks_off()
    axis.set_xlabel("coefficients kept, %")


def percent():
    return [100 * fraction for fraction in FRACTIONS]


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "compress_image.png"
    compression = Compression(plt.imread(HERE / "data" / "camera.pgm").astype(float))
    ratios = ratios_of(compression)
    print_table(ratios)
    draw(path, compression, ratios)
    print(f"\nfigure: {path}")


if __name__ == "__main__":
    main()

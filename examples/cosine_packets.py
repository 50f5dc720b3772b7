"""Cosine packets of a sound
=========================

Finds the windows that suit a sound, and rebuilds the sound from a few of their coefficients. ::

    PYTHONPATH=build/python python3 examples/cosine_packets.py [figure]

The sound is synthetic, so that its parts are known: a chord of three notes, a whistle that rises
fast, and four short bursts of a high tone, in a little noise. A cosine packet table divides it into
windows of 8 to 512 ms; the search for the best basis chooses long ones where notes last and short
ones around the bursts. The picture shows the chosen windows with the energy at each time and frequency,
and how fast the sound is rebuilt from its largest coefficients, compared with windows of one length.

The cost of the search is the entropy of R. R. Coifman and M. V. Wickerhauser, Entropy-based algorithms
for best basis selection, IEEE Trans. Information Theory 38 (1992) 713-718.
"""

import math
import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
SAMPLES_PER_SECOND = 8000
SAMPLES = 4096
LEVELS = 6
KEPT = 200
SEED = 1992
DECIBELS = 60  # range of the colours

INK, FAINT, ACCENT = "#1b1b1b", "#b8bec7", "#d1495b"


def sound():
    time = seconds(np.arange(SAMPLES))
    chord = sum(np.sin(2 * math.pi * note * time) for note in (440, 554.4, 659.3))
    whistle = np.sin(2 * math.pi * (600 * (time - 0.26) + 8500 * (time - 0.26) ** 2))
    samples = 0.5 * chord * lasting(time, 0.01, 0.246) + 0.8 * whistle * lasting(time, 0.266, 0.384)
    for start in (0.404, 0.43, 0.456, 0.482):
        burst = np.exp(-0.5 * ((time - start) / 0.0008) ** 2)
        samples += 2 * burst * np.sin(2 * math.pi * 2800 * (time - start))
    return samples + 0.01 * np.random.default_rng(SEED).normal(size=SAMPLES)


def lasting(time, start, end):
    """1 from the start to the end, with soft flanks of 10 ms."""
    return 0.5 * (np.tanh((time - start) / 0.0025) - np.tanh((time - end) / 0.0025))


def largest(coefficients, count):
    kept = np.zeros_like(coefficients)
    which = np.argsort(np.abs(coefficients))[-count:]
    kept[which] = coefficients[which]
    return kept


def rebuilt(table, basis, count):
    return undula.icpt(largest(undula.extract_basis(table, basis), count), LEVELS, basis)


def relative_error(original, other):
    return np.linalg.norm(other - original) / np.linalg.norm(original)


def errors(table, basis, counts, samples):
    return [relative_error(samples, rebuilt(table, basis, count)) for count in counts]


def seconds(samples):
    return samples / SAMPLES_PER_SECOND


def name_of(level):
    return f"{1000 * seconds(SAMPLES >> level):.0f} ms windows"


def print_table(table, bases, samples):
    counts = (25, 50, 100, KEPT, 400)
    print("Relative error after keeping the largest coefficients\n")
    print(f"{'kept':<18}" + "".join(f"{count:>8}" for count in counts))
    for name, basis in bases.items():
        print(f"{name:<18}" + "".join(f"{error:8.4f}" for error in errors(table, basis, counts, samples)))


def draw(path, samples, table, bases):
    plt.rcParams.update({"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False})
    figure, axes = plt.subplot_mosaic(
        [["sound", "sound"], ["tiling", "tiling"], ["errors", "detail"]],
        figsize=(11, 10), height_ratios=[0.7, 2, 1.3], layout="constrained",
    )
    draw_sound(axes["sound"], samples)
    draw_tiling(axes["tiling"], undula.extract_basis(table, bases["best basis"]), bases["best basis"])
    axes["sound"].sharex(axes["tiling"])
    draw_errors(axes["errors"], table, bases)
    draw_detail(axes["detail"], samples, rebuilt(table, bases["best basis"], KEPT))
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.1)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=130)
    plt.close(figure)


def draw_sound(axis, samples):
    axis.plot(seconds(np.arange(SAMPLES)), samples, color=INK, lw=0.5)
    axis.set_title("A chord, a whistle and four bursts", loc="left")
    axis.set_ylabel("amplitude")
    axis.tick_params(labelbottom=False)


def draw_tiling(axis, coefficients, basis):
    undula.plot.tiling(coefficients, basis, axis, windows=True, span=(0, seconds(SAMPLES)),
                       highest=SAMPLES_PER_SECOND / 2000, decibels=DECIBELS)
    axis.set(xlabel="seconds", ylabel="kHz")
    axis.set_title(f"Energy in the {len(basis)} windows of the best basis", loc="left")
    axis.figure.colorbar(axis.images[-1], ax=axis, label="dB", pad=0.01)


def draw_errors(axis, table, bases):
    """The transform is orthonormal, so the errors follow from the coefficients alone."""
    for name, basis in bases.items():
        best = name == "best basis"
        line = {"color": ACCENT, "lw": 2.2, "label": name, "zorder": 2} if best else {"color": FAINT, "lw": 1}
        undula.plot.decay(undula.extract_basis(table, basis), axis, kind="error", **line)
    axis.plot([], [], color=FAINT, lw=1, label=f"windows of one length, {LEVELS + 1} lengths")
    axis.axvline(KEPT, color=INK, lw=0.8, ls=":")
    axis.set_yscale("linear")
    axis.set_xticks([10, 30, 100, 300, 1000], [10, 30, 100, 300, 1000])
    axis.minorticks_off()
    axis.set(xlim=(10, 1000), ylim=(0, None))
    axis.set_title("Rebuilt from the largest coefficients", loc="left")
    axis.legend(loc="upper right")


def draw_detail(axis, samples, other):
    part = slice(int(0.396 * SAMPLES_PER_SECOND), int(0.412 * SAMPLES_PER_SECOND))
    time = 1000 * seconds(np.arange(SAMPLES)[part])
    axis.plot(time, samples[part], color=INK, lw=1.1, label="sound")
    axis.plot(time, other[part], color=ACCENT, lw=1.1, label=f"from {KEPT} of {SAMPLES} coefficients")
    axis.set(xlim=(time[0], time[-1]), xlabel="milliseconds", ylabel="amplitude")
    axis.set_ylim(top=1.45 * np.max(np.abs(samples[part])))
    axis.set_title(f"The first burst; the error of all is {relative_error(samples, other):.1%}", loc="left")
    axis.legend(loc="upper right", ncols=2)


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "cosine_packets.png"
    samples = sound()
    table = undula.cpt(samples, LEVELS)
    bases = {name_of(level): undula.create_level(level, 1) for level in range(LEVELS + 1)}
    bases["best basis"] = undula.best_basis(table, undula.costs.shannon)
    print_table(table, bases, samples)
    exact = rebuilt(table, bases["best basis"], SAMPLES)
    print(f"\nall {SAMPLES} coefficients: error {relative_error(samples, exact):.1e}")
    draw(path, samples, table, bases)
    print(f"figure: {path}")


if __name__ == "__main__":
    main()

"""Noise taken out of an electrocardiogram
=======================================

Takes noise out of a real electrocardiogram, with several filters and numbers of levels. ::

    PYTHONPATH=build/python python3 examples/denoise_ecg.py [figure]

White noise of known strength is added to the recording, and `denoise` takes it out: the noisy signal is
transformed, its details are shrunk by soft thresholds, and the transform is inverted. Because the
recording is known, the signal-to-noise ratio can be measured before and after.

The thresholds are those of least estimated error, one for each level: D. L. Donoho, I. M. Johnstone,
Adapting to unknown smoothness via wavelet shrinkage, J. Amer. Statist. Assoc. 90 (1995) 1200-1224. The
strength of the noise is estimated from the finest details. The recording counts as the clean signal,
although it has some noise too; it decides which filter is best. Long filters are a little better, but ring
beside the beats, so the picture shows the shortest filter that is nearly as good.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
SAMPLES_PER_SECOND = 360
NOISE = 0.1  # mV
NEARLY = 0.2  # dB behind the best
TRIALS = 50
SEED = 1994

FILTERS = {
    "daublet": (undula.daublet, (2, 4, 8, 12, 20)),
    "symmlet": (undula.symmlet, (8, 12, 16, 20)),
    "coiflet": (undula.coiflet, (6, 12, 18, 24, 30)),
}
LEVELS = range(1, 7)

INK, FAINT, ACCENT = "#1b1b1b", "#b8bec7", "#d1495b"
COLOURS = {"daublet": "#00798c", "symmlet": "#d1495b", "coiflet": "#edae49"}


def signal_to_noise(clean, other):
    """In decibels; the mean of the clean signal does not count as signal."""
    return 10 * np.log10(np.sum((clean - clean.mean()) ** 2) / np.sum((other - clean) ** 2))


def evaluate(clean, trials):
    """Mean signal-to-noise ratio over the trials, for every filter (name, length) and level."""
    scores = {}
    for family, (wavelet_of, lengths) in FILTERS.items():
        for length in lengths:
            wavelet = wavelet_of(length)
            scores[family, length] = [
                np.mean([signal_to_noise(clean, undula.denoise(noisy, wavelet, level)) for noisy in trials])
                for level in LEVELS
            ]
    return scores


def ranking(scores):
    """Every (family, length, level), the one with the highest score first."""
    keys = [(*which, level) for which in scores for level in LEVELS]
    return sorted(keys, key=lambda key: score(scores, key), reverse=True)


def shortest(ranked, scores):
    """Of the keys whose scores are nearly the best the one with the shortest filter."""
    good = [key for key in ranked if score(scores, key) > score(scores, ranked[0]) - NEARLY]
    return min(good, key=lambda key: key[1])


def score(scores, key):
    family, length, level = key
    return scores[family, length][level - LEVELS[0]]


def print_table(before, scores, best, second):
    print(f"Signal-to-noise ratio in dB, mean of {TRIALS} trials; before: {before:.2f}\n")
    print("after, levels " + "".join(f"{level:>7} " for level in LEVELS))
    for (family, length), row in scores.items():
        cells = (
            f"{value:7.2f}{'*' if (family, length, level) == best else ' '}"
            for level, value in zip(LEVELS, row)
        )
        print(f"{family:<10}{length:>3} " + "".join(cells))
    gain = score(scores, best) - before
    lead = score(scores, best) - score(scores, second)
    print(f"\n* best: {describe(best)}, {gain:.2f} dB better than before")
    print(f"  next: {describe(second)}, {lead:.3f} dB behind")


def describe(key):
    family, length, level = key
    return f"{family}({length}) with {level} levels"


def draw(path, clean, noisy, denoised, before, scores, shown):
    plt.rcParams.update({"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False})
    figure, axes = plt.subplot_mosaic(
        [["noisy", "noisy"], ["denoised", "denoised"], ["beat", "scores"]],
        figsize=(11, 8.5), height_ratios=[1, 1, 1.35], width_ratios=[1.15, 1], layout="constrained",
    )
    draw_noisy(axes["noisy"], noisy, signal_to_noise(clean, noisy))
    draw_denoised(axes["denoised"], clean, denoised, shown)
    axes["denoised"].sharey(axes["noisy"])
    draw_beat(axes["beat"], clean, noisy, denoised)
    draw_scores(axes["scores"], before, scores)
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.1)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=130)
    plt.close(figure)


def draw_noisy(axis, noisy, ratio):
    axis.plot(seconds(noisy), noisy, color=FAINT, lw=0.9)
    axis.set_title(f"Electrocardiogram with noise: {ratio:.1f} dB", loc="left")
    axis.set(xlim=(0, seconds(noisy)[-1]), xlabel="seconds", ylabel="mV")


def draw_denoised(axis, clean, denoised, shown):
    ratio = signal_to_noise(clean, denoised)
    axis.plot(seconds(clean), clean, color=INK, lw=1, label="recording")
    axis.plot(seconds(clean), denoised, color=ACCENT, lw=1.3, label="noise taken out")
    axis.set_title(f"After soft thresholding, {describe(shown)}: {ratio:.1f} dB", loc="left")
    axis.set(xlim=(0, seconds(clean)[-1]), xlabel="seconds", ylabel="mV")
    axis.legend(loc="upper right", ncols=2)


def draw_beat(axis, clean, noisy, denoised):
    peak = np.argmax(clean)
    part = slice(max(peak - 90, 0), peak + 130)
    time = seconds(clean)[part]
    axis.plot(time, noisy[part], color=FAINT, lw=1, label="with noise")
    axis.plot(time, clean[part], color=INK, lw=1.1, label="recording")
    axis.plot(time, denoised[part], color=ACCENT, lw=1.6, label="noise taken out")
    axis.set_title("One beat", loc="left")
    axis.set(xlim=(time[0], time[-1]), xlabel="seconds", ylabel="mV")
    axis.legend(loc="upper right")


def draw_scores(axis, before, scores):
    for family, (_, lengths) in FILTERS.items():
        best_length = max(lengths, key=lambda length: max(scores[family, length]))
        for length in lengths:
            axis.plot(LEVELS, scores[family, length], color=COLOURS[family], lw=0.9, alpha=0.45)
        axis.plot(LEVELS, scores[family, best_length], color=COLOURS[family], lw=2, marker="o", ms=4,
                  label=f"{family}({best_length})")
    axis.plot([], [], color=FAINT, lw=0.9, label="other lengths")
    axis.axhline(before, color=FAINT, lw=1.2, ls="--", label="before")
    axis.set_title(f"All filters, mean of {TRIALS} trials", loc="left")
    axis.set(xlabel="levels", ylabel="dB", xticks=LEVELS)
    axis.legend(loc="lower right", bbox_to_anchor=(1, 0.08))


def seconds(samples):
    return np.arange(len(samples)) / SAMPLES_PER_SECOND


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "denoise_ecg.png"
    clean = np.loadtxt(HERE / "data" / "ecg.csv")
    trials = clean + np.random.default_rng(SEED).normal(0, NOISE, (TRIALS, len(clean)))
    before = np.mean([signal_to_noise(clean, noisy) for noisy in trials])
    scores = evaluate(clean, trials)
    ranked = ranking(scores)
    print_table(before, scores, *ranked[:2])

    family, length, level = shown = shortest(ranked, scores)
    denoised = undula.denoise(trials[0], FILTERS[family][0](length), level)
    draw(path, clean, trials[0], denoised, before, scores, shown)
    print(f"figure: {path}")


if __name__ == "__main__":
    main()

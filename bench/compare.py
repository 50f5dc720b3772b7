"""Times transforms beside PyWavelets and SciPy, in one process and taking turns.

    PYTHONPATH=build/python python3 bench/compare.py

PyWavelets does the same work: periodic ends, the same filter, results in new arrays. SciPy does the
transforms of `cpt`, without the folding. A ratio above 1 means that Undula is faster. Times are
medians in milliseconds; for wavelet packet tables, of one level.
"""

import statistics
import time

import numpy as np
import pywt
import scipy.fft
import undula

ROUNDS = 25
TAPS = 8


def transform_pairs(shape, levels, decompose, rebuild):
    data = np.random.default_rng(0).standard_normal(shape)
    w, name = undula.daublet(TAPS), f"db{TAPS // 2}"
    coefficients = undula.dwt(data, levels, w)
    parts = decompose(data, name, "periodization", levels)
    title = f"{' x '.join(map(str, data.shape))}, {TAPS} taps, {levels} levels"
    yield (
        f"dwt,  {title}",
        lambda: undula.dwt(data, levels, w),
        lambda: decompose(data, name, "periodization", levels),
    )
    yield (
        f"idwt, {title}",
        lambda: undula.idwt(coefficients, levels, w),
        lambda: rebuild(parts, name, "periodization"),
    )


def packet_pair(shape, levels):
    """All packets of all levels."""
    data = np.random.default_rng(0).standard_normal(shape)
    w, name = undula.daublet(TAPS), f"db{TAPS // 2}"
    packets = pywt.WaveletPacket if data.ndim == 1 else pywt.WaveletPacket2D

    def other_table():
        tree = packets(data, name, "periodization", levels)
        return [tree.get_level(level, "freq") for level in range(1, levels + 1)]

    size = " x ".join(map(str, data.shape))
    title = f"wpt,  {size}, {TAPS} taps, each of {levels} levels"
    return title, lambda: undula.wpt(data, levels, w), other_table


def cosine_pair(samples, levels):
    x = np.random.default_rng(0).standard_normal(samples)

    def cosines():
        return [scipy.fft.dct(x.reshape(2**j, -1), 4, norm="ortho") for j in range(levels + 1)]

    yield f"cpt,  {samples} samples, {levels} levels", lambda: undula.cpt(x, levels), cosines


def medians(*functions):
    """The median time of each function. They are called in turn, after one round that does not count."""
    times = [[] for _ in functions]
    for turn in range(ROUNDS + 1):
        for function, own in zip(functions, times):
            started = time.perf_counter()
            function()
            if turn:
                own.append(time.perf_counter() - started)
    return [1000 * statistics.median(own) for own in times]


def main():
    print(f"{'':48}{'undula':>9}{'peer':>9}{'ratio':>8}")
    for title, ours, theirs in [
        *transform_pairs(2**20, 5, pywt.wavedec, pywt.waverec),
        *transform_pairs((1024, 1024), 3, pywt.wavedec2, pywt.waverec2),
        *cosine_pair(2**18, 8),
    ]:
        print_row(title, *medians(ours, theirs))
    for shape, levels in ((2**20, 8), ((1024, 1024), 4)):
        title, ours, theirs = packet_pair(shape, levels)
        print_row(title, *(all_levels / levels for all_levels in medians(ours, theirs)))


def print_row(title, own, other):
    print(f"{title:48}{own:9.2f}{other:9.2f}{other / own:8.2f}")


if __name__ == "__main__":
    main()

"""Times transforms beside PyWavelets, in one process and turn by turn.

    PYTHONPATH=build/python python3 bench/compare.py

Both do the same work: periodic ends, the same filter, results in new arrays. A ratio above 1 says
that Undula is faster. Times are medians, in milliseconds.
"""

import statistics
import time

import numpy as np
import pywt
import undula

ROUNDS = 25
TAPS = 8


def signal_pair(samples, levels):
    x = np.random.default_rng(0).standard_normal(samples)
    w, name = undula.daublet(TAPS), f"db{TAPS // 2}"
    coefficients = undula.dwt(x, levels, w)
    parts = pywt.wavedec(x, name, "periodization", levels)
    title = f"{samples} samples, {TAPS} taps, {levels} levels"
    yield (
        f"dwt,  {title}",
        lambda: undula.dwt(x, levels, w),
        lambda: pywt.wavedec(x, name, "periodization", levels),
    )
    yield (
        f"idwt, {title}",
        lambda: undula.idwt(coefficients, levels, w),
        lambda: pywt.waverec(parts, name, "periodization"),
    )


def image_pair(side, levels):
    image = np.random.default_rng(0).standard_normal((side, side))
    w, name = undula.daublet(TAPS), f"db{TAPS // 2}"
    coefficients = undula.dwt(image, levels, w)
    parts = pywt.wavedec2(image, name, "periodization", levels)
    title = f"{side} x {side} image, {TAPS} taps, {levels} levels"
    yield (
        f"dwt,  {title}",
        lambda: undula.dwt(image, levels, w),
        lambda: pywt.wavedec2(image, name, "periodization", levels),
    )
    yield (
        f"idwt, {title}",
        lambda: undula.idwt(coefficients, levels, w),
        lambda: pywt.waverec2(parts, name, "periodization"),
    )


def medians(*functions):
    """The median time of each function, all called in turn, after one round that does not count."""
    times = [[] for _ in functions]
    for turn in range(ROUNDS + 1):
        for function, own in zip(functions, times):
            started = time.perf_counter()
            function()
            if turn:
                own.append(time.perf_counter() - started)
    return [1000 * statistics.median(own) for own in times]


def main():
    print(f"{'':48}{'undula':>9}{'pywt':>9}{'ratio':>8}")
    for title, ours, theirs in [*signal_pair(2**20, 5), *image_pair(1024, 3)]:
        own, other = medians(ours, theirs)
        print(f"{title:48}{own:9.2f}{other:9.2f}{other / own:8.2f}")


if __name__ == "__main__":
    main()

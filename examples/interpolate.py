"""The packets of a series, between its samples
============================================

Shows what single packets contribute to a signal, also between its samples. ::

    PYTHONPATH=build/python python3 examples/interpolate.py [figure]

The sea surface temperatures of the equatorial Pacific, month by month, are split into the eight
packets of level 3, which are bands of frequency. `waveterp` gives the part of the signal that one
packet stands for, at any time. The parts of all packets together come close to the temperatures at
the months and are a smooth curve between them. Close only, since samples are not quite the coefficients
that they are taken for; with a coiflet the two differ little.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
LEVEL = 3
FILTER = undula.coiflet(18)
FIRST_YEAR, MONTHS = 1950, 12
SHOWN = (1980, 2000)  # years
DETAIL = (1997.0, 1999.0)
PER_MONTH = 4  # as fine as the table of packet 0, whose cells are 8 / 32 of a month
SIGNAL, SUM, LINE = "#2e4057", "#d1495b", "#c8c8c8"
COLORS = ["#00798c", "#edae49", "#d1495b"]


def parts_at(months, coefficients):
    """The part of each packet at these times."""
    return np.array([
        undula.evaluate(undula.waveterp, months, coefficients, LEVEL, packet, FILTER)
        for packet in range(2**LEVEL)
    ])


def months_of(years, step=1.0):
    return np.arange((years[0] - FIRST_YEAR) * MONTHS, (years[1] - FIRST_YEAR) * MONTHS, step)


def year_of(months):
    return FIRST_YEAR + months / MONTHS


def print_table(temperatures, parts):
    print(f"{temperatures.size} months, {2**LEVEL} packets of level {LEVEL}, coiflet(18)\n")
    print("packet   half waves in a year   standard deviation of its part")
    for packet, part in enumerate(parts):
        low, high = (MONTHS * edge / 2**LEVEL for edge in (packet, packet + 1))
        print(f"{packet}        {low:4.1f} to {high:4.1f}           {part.std():6.3f} degrees")
    print(f"\nsum of all parts against the temperatures: {np.abs(parts.sum(0) - temperatures).max():.1e} degrees")


def draw(path, temperatures, coefficients):
    figure, axes = plt.subplots(4, 1, figsize=(11, 10), layout="constrained",
                                gridspec_kw={"height_ratios": [1.2, 1, 1, 1.6]})
    months = months_of(SHOWN).astype(int)
    fine = months_of(SHOWN, 1 / PER_MONTH)
    parts = parts_at(fine, coefficients)
    axes[0].plot(year_of(months), temperatures[months], color=SIGNAL, lw=0.9, marker=".", ms=3,
                 label="monthly means")
    axes[0].plot(year_of(fine), parts[0], color=COLORS[0], lw=1.8, label="part of packet 0")
    axes[0].set_title("Temperature of the NINO3 region, and the part of packet 0", loc="left", fontsize=11)
    axes[0].set_ylim(top=31)
    axes[0].legend(frameon=False, fontsize=9, loc="upper left", ncols=2)
    drawn = (1, COLORS[1], "a year"), (2, COLORS[2], "half a year")
    for axis, (packet, color, what) in zip(axes[1:], drawn):
        axis.axhline(0, color=LINE, lw=0.8)
        axis.plot(year_of(fine), parts[packet], color=color, lw=1.3)
        axis.set_title(f"The part of packet {packet}: waves of about {what}", loc="left", fontsize=11)
    draw_detail(axes[3], temperatures, coefficients)
    for axis in axes[:3]:
        axis.set_xlim(*SHOWN)
        axis.set_xticks(range(SHOWN[0], SHOWN[1] + 1, 2))
    for axis in axes:
        axis.set_ylabel("°C")
        axis.spines[["top", "right"]].set_visible(False)
    figure.get_layout_engine().set(h_pad=0.08)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=110)
    plt.close(figure)


def draw_detail(axis, temperatures, coefficients):
    """Two years: the sums of the first packets, and of all, against the samples."""
    fine = months_of(DETAIL, 1 / PER_MONTH)
    sums = parts_at(fine, coefficients).cumsum(0)
    for count, color in ((1, COLORS[0]), (2, COLORS[1])):
        axis.plot(year_of(fine), sums[count - 1], color=color, lw=1.3, label=f"sum of {count} of 8 packets")
    axis.plot(year_of(fine), sums[-1], color=SUM, lw=1.5, label="sum of all packets")
    months = months_of(DETAIL).astype(int)
    axis.plot(year_of(months), temperatures[months], "o", color=SIGNAL, ms=4, label="samples")
    axis.set_title("Between the samples", loc="left", fontsize=11)
    axis.legend(frameon=False, fontsize=9)
    axis.set_xlim(*DETAIL)
    axis.set_xticks([1997, 1997.5, 1998, 1998.5, 1999], ["1997", "July", "1998", "July", "1999"])


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "interpolate.png"
    temperatures = np.loadtxt(HERE / "data" / "nino3.csv")
    coefficients = undula.wpt(temperatures, undula.create_level(LEVEL, 1), FILTER)
    print_table(temperatures, parts_at(np.arange(temperatures.size), coefficients))
    draw(path, temperatures, coefficients)
    print(f"figure: {path}")


if __name__ == "__main__":
    main()

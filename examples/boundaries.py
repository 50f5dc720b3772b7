"""Three treatments of the ends
============================

What the three treatments of the ends of a series do to the ends of its trend. ::

    PYTHONPATH=build/python python3 examples/boundaries.py [figure]

The trend is what is left of a series when its details of four levels are set to zero. In the middle
all treatments nearly agree; near the ends they differ, as each has its own idea of what lies beyond:

- periodic (`dwt`): the other end of the series;
- symmetric (`dwts`): the mirror image; for symmetric filters only;
- interval (`dwti`): nothing; boundary filters serve the ends. They expect the coefficients of certain
  edge functions there, and samples are not quite those: even a constant gets small details.

`dwts` takes a series of any length. The other two halve even lengths only. For them the series is
extended to the next multiple of 2^4 by its mirror image at the right end, and the trend is cut back
to the length of the series. Four numbers are measured for each treatment:

- leak: how far the first 50 values of the trend move, at most, when the last 16 values of the
  series are raised by 1;
- constant, line: the largest error of the trend of a constant 1, and of a straight line that rises
  by 1 from one sample to the next;
- revision: the series is cut short at many places, and the trend of its last 16 values is compared with
  that of the whole series: root mean square, in standard deviations.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
LEVELS = 4
BLOCK = 2**LEVELS
SHORTEST_CUT = 128  # the interval transform needs 8 * 2^4 samples for 8 coefficients and 4 levels

INK, FAINT = "#1b1b1b", "#b8bec7"
COLOURS = {"periodic": "#d1495b", "symmetric": "#00798c", "interval": "#edae49"}


def without_details(coefficients):
    for details in undula.levels(coefficients, LEVELS).details:
        details[:] = 0
    return coefficients


def periodic_trend(series, filter=undula.symmlet(8)):
    padded = undula.pad(series, LEVELS)
    smooth = without_details(undula.dwt(padded.data, LEVELS, filter))
    return padded.trim(undula.idwt(smooth, LEVELS, filter))


def symmetric_trend(series, filter=undula.bl(3)):
    return undula.idwts(without_details(undula.dwts(series, LEVELS, filter)), LEVELS, filter)


def interval_trend(series, filter=undula.symmlet(8)):
    padded = undula.pad(series, LEVELS)
    smooth = without_details(undula.dwti(padded.data, LEVELS, filter))
    return padded.trim(undula.idwti(smooth, LEVELS, filter))


TREATMENTS = {
    "periodic": ("symmlet(8)", periodic_trend),
    "symmetric": ("bl(3)", symmetric_trend),
    "interval": ("symmlet(8)", interval_trend),
}


def leak(trend_of, length):
    """The trend is linear in the series, so it does not matter which series is raised."""
    raised = np.zeros(length)
    raised[-BLOCK:] = 1
    return np.abs(trend_of(raised)[:50]).max()


def revision(trend_of, series):
    whole = trend_of(series)
    cuts = range(SHORTEST_CUT, len(series) - 2 * BLOCK)
    changes = [trend_of(series[:cut])[-BLOCK:] - whole[cut - BLOCK : cut] for cut in cuts]
    return np.sqrt(np.mean(np.square(changes))) / series.std()


def print_table(name, series):
    length, padded = len(series), len(undula.pad(series, LEVELS).data)
    print(f"{name}: {length} values; dwt and dwti work on {padded}\n")
    print("treatment  filter            leak  constant    line  revision")
    ones, line = np.ones(length), np.arange(length, dtype=float)
    for treatment, (filter, trend_of) in TREATMENTS.items():
        worst = np.abs(trend_of(ones) - ones).max(), np.abs(trend_of(line) - line).max()
        print(f"{treatment:<11}{filter:<14}{leak(trend_of, length):8.3f}{worst[0]:10.3f}{worst[1]:8.2f}"
              f"{revision(trend_of, series):10.3f}")
    print()


def draw(path, sunspots):
    plt.rcParams.update({"axes.spines.top": False, "axes.spines.right": False, "legend.frameon": False})
    figure, axes = plt.subplot_mosaic(
        [["series", "series"], ["start", "end"]],
        figsize=(11, 8), height_ratios=[1.1, 1], layout="constrained",
    )
    trends = {name: trend_of(sunspots) for name, (_, trend_of) in TREATMENTS.items()}
    years = 1700 + np.arange(len(sunspots))
    draw_series(axes["series"], sunspots, trends, years)
    draw_part(axes["start"], sunspots, trends, years, slice(0, 60))
    axes["start"].set_title("The beginning: 1700 does not follow upon 2008", loc="left")
    draw_part(axes["end"], sunspots, trends, years, slice(-60, None))
    axes["end"].set_title("The end", loc="left")
    axes["end"].sharey(axes["start"])
    axes["start"].set_ylim(-5, 205)
    figure.get_layout_engine().set(w_pad=0.12, h_pad=0.1)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=130)
    plt.close(figure)


def draw_series(axis, sunspots, trends, years):
    padding = undula.pad(sunspots, LEVELS).data[len(sunspots) - 1 :]
    axis.plot(years, sunspots, color=FAINT, lw=1, label="yearly mean")
    axis.plot(years[-1] + np.arange(len(padding)), padding, color=FAINT, lw=1, ls=":",
              label="padding of dwt and dwti")
    for name, trend in trends.items():
        axis.plot(years, trend, color=COLOURS[name], lw=1.7, label=name)
    title = f"Sunspot number, {len(sunspots)} years, and its trend by three treatments of the ends"
    axis.set_title(title, loc="left")
    axis.set(xlim=(years[0], years[-1] + len(padding)), ylim=(-5, 245), ylabel="sunspot number")
    axis.legend(loc="upper left", ncols=5)


def draw_part(axis, sunspots, trends, years, part):
    axis.plot(years[part], sunspots[part], color=FAINT, lw=1)
    for name, trend in trends.items():
        axis.plot(years[part], trend[part], color=COLOURS[name], lw=2)
    axis.set(xlim=(years[part][0], years[part][-1]), xlabel="year", ylabel="sunspot number")


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "boundaries.png"
    sunspots = np.loadtxt(HERE / "data" / "sunspots.csv")
    print_table("Sunspots, a year each", sunspots)
    print_table("Sea surface temperature, a month each", np.loadtxt(HERE / "data" / "nino3.csv"))
    draw(path, sunspots)
    print(f"figure: {path}")


if __name__ == "__main__":
    main()

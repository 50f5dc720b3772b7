"""Pictures of transforms, packets and wavelets, drawn with Matplotlib.

Each function draws into an Axes, the current one unless it is given, and returns it. Titles and what
else belongs to the occasion are left to the caller. Matplotlib is imported by the first picture.

    coefficients of a signal     levels      by level
                                 tiling      of a packet basis, over time and frequency
                                 table       of all packets, and which are chosen
    coefficients of an image     mosaic      its subbands
                                 partition   the blocks of a packet basis
    any coefficients             decay       how fast they fall when sorted
    wavelets                     function    a scaling function, wavelet or packet
                                 sheet       taps, functions and responses of a wavelet
"""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING

import numpy as np
from numpy.typing import ArrayLike, NDArray

import undula
from undula._taps import filter_of, high_pass, low_passes

if TYPE_CHECKING:
    from matplotlib.axes import Axes

__all__ = ["levels", "tiling", "table", "mosaic", "partition", "decay", "function", "sheet"]

_INK, _FAINT, _FIRST, _SECOND, _BRIGHT = "#1b1b1b", "#b8bec7", "#00798c", "#d1495b", "#7df9ff"


def levels(
    coefficients: ArrayLike,
    level: int,
    ax: Axes | None = None,
    *,
    span: tuple[float, float] | None = None,
    common: bool = True,
) -> Axes:
    """Draws the coefficients of a signal by level, the finest on top.

    Each coefficient is a bar as wide as the time that it stands for. All details have one scale; other
    scales, such as that of the smooth part, are given by the labels.

    Parameters
    ----------
    coefficients : array
        The result of `dwt`, `dwts` or `dwti` of a signal.
    level : int
        How many levels the transform had.
    ax : Axes, optional
        Where to draw.
    span : pair of float, optional
        The times of the beginning and the end; without it samples are counted.
    common : bool
        Whether the details have one scale; otherwise each level has its own.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> ax = undula.plot.levels([8, 4, 0, 2, 0, -1, 0, 0], 2)
    >>> [label.get_text() for label in ax.get_yticklabels()]
    ['smooth, × 0.25', 'detail 2', 'detail 1']
    """
    ax = _axes(ax)
    _check("levels", np.ndim(coefficients) == 1, "coefficients of a signal have one dimension; see mosaic")
    smooth, details = undula.levels(np.asarray(coefficients), level)
    start, stop = _span(ax, span, len(coefficients))
    most = _largest(details)
    names = ["smooth", *(f"detail {j}" for j in range(level, 0, -1))]
    for place, part in enumerate([smooth, *details]):
        own = most if common and place > 0 else _largest([part])
        if (factor := f"{most / own:.2g}") != "1":
            names[place] += f", × {factor}"
        edges = np.linspace(start, stop, len(part) + 1)
        ax.axhline(place, color=_FAINT, lw=0.6, zorder=0)
        color = _FIRST if place == 0 else _SECOND
        ax.stairs(place + part * (0.47 / own), edges, baseline=place, fill=True, color=color)
    ax.set_yticks(range(level + 1), names)
    ax.set(xlim=(start, stop), ylim=(-0.6, level + 0.6))
    ax.tick_params(axis="y", length=0)
    return ax


def tiling(
    coefficients: ArrayLike,
    basis: ArrayLike,
    ax: Axes | None = None,
    *,
    windows: bool = False,
    span: tuple[float, float] | None = None,
    highest: float | None = None,
    decibels: float = 40,
    cmap: str = "magma",
) -> Axes:
    """Draws the coefficients of a signal's packet basis over time and frequency.

    Each packet is a band of frequencies, divided into a tile for each coefficient, or, with `windows`, a
    stretch of time, divided likewise. The colours are energies in decibels below the largest:
    `ax.figure.colorbar(ax.images[-1], ax=ax)` draws their scale.

    Parameters
    ----------
    coefficients : array
        The coefficients of the basis, as `wpt` with a basis or `extract_basis` returns them.
    basis : array
        The packets that tile the signal; `wavebs(level, 1)` is that of `dwt`.
    ax : Axes, optional
        Where to draw.
    windows : bool
        Whether the packets are windows in time, as of `cpt` and `lct`.
    span : pair of float, optional
        The times of the beginning and the end; without it samples are counted.
    highest : float, optional
        The highest frequency, which is half the sampling rate; without it frequencies are shares of it.
    decibels : float
        The range of the colours.
    cmap : str
        The colours.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> y = undula.dwt(np.sin(np.arange(64.0)), 3, undula.symmlet(8))
    >>> ax = undula.plot.tiling(y, undula.wavebs(3, 1))
    >>> [image.get_extent() for image in ax.images][-1]
    (0.0, 64.0, 0.5, 1.0)
    """
    ax = _axes(ax)
    _check("tiling", np.shape(basis)[-1:] == (2,), "the basis of a signal has two columns; see partition")
    packets = undula.evalbs(coefficients, basis, lambda packet: packet)
    start, stop = _span(ax, span, len(coefficients))
    if highest is None:
        highest = 1.0
        ax.set_ylabel("frequency / highest")
    loudest = _largest([coefficients])
    for level, position, packet in packets:
        low, high = position / 2**level, (position + 1) / 2**level
        tiles = _decibels(packet, loudest, decibels)
        if windows:
            times, frequencies, tiles = (low, high), (0, 1), tiles[:, None]
        else:
            times, frequencies, tiles = (0, 1), (low, high), tiles[None, :]
        left, right = (float(start + (stop - start) * time) for time in times)
        bottom, top = (float(highest * frequency) for frequency in frequencies)
        ax.imshow(
            tiles, cmap=cmap, vmin=-decibels, vmax=0, extent=(left, right, bottom, top), origin="lower",
            aspect="auto", interpolation="nearest",
        )
        (ax.axvline if windows else ax.axhline)(left if windows else bottom, color="white", lw=0.5, alpha=0.6)
    ax.set(xlim=(start, stop), ylim=(0, highest))
    return ax


def table(
    table: Sequence[ArrayLike],
    basis: ArrayLike | None = None,
    ax: Axes | None = None,
    *,
    decibels: float = 40,
    cmap: str = "magma",
) -> Axes:
    """Draws a signal's packet table, a row for each level, and frames the packets of a basis.

    Within a level the packets stand from low to high frequency (of a cosine table, from the first window
    to the last) and in each of them its coefficients. The colours are energies in decibels below the
    largest.

    Parameters
    ----------
    table : list of arrays
        A packet table of a signal.
    basis : array, optional
        The packets to frame.
    ax : Axes, optional
        Where to draw.
    decibels : float
        The range of the colours.
    cmap : str
        The colours.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> packets = undula.wpt(np.sin(np.arange(64.0)), 4, undula.symmlet(8))
    >>> basis = undula.best_basis(packets, undula.costs.shannon)
    >>> ax = undula.plot.table(packets, basis)
    >>> len(ax.patches) == len(basis)
    True
    """
    _check("table", len(table) > 0 and all(np.ndim(row) == 1 for row in table), "the table is not of a signal")
    ax = _axes(ax)
    count, loudest = len(table[0]), _largest(table)
    for level, row in enumerate(table):
        ax.imshow(
            _decibels(row, loudest, decibels)[None, :], cmap=cmap, vmin=-decibels, vmax=0,
            extent=(0, count, level + 0.5, level - 0.5), aspect="auto", interpolation="nearest",
        )
        starts = [_place(count, level, position)[0] for position in range(1 << level)]
        ax.vlines(starts, level - 0.5, level + 0.5, color="white", lw=0.5, alpha=0.6)
    if basis is not None:
        _check("table", np.shape(basis)[-1:] == (2,), "the basis of a signal has two columns")
        for level, position in np.unique(basis, axis=0).astype(int):
            start, length = _place(count, level, position)
            _frame(ax, start, level - 0.5, length, 1, color=_BRIGHT, lw=1.5)
    ax.set(xlim=(0, count), ylim=(len(table) - 0.5, -0.5), yticks=range(len(table)), ylabel="level")
    ax.set_xlabel("coefficient, packet by packet")
    return ax


def mosaic(
    coefficients: ArrayLike, level: int, ax: Axes | None = None, *, cmap: str = "bwr", labels: bool = True
) -> Axes:
    """Draws the subbands of a transformed image where they lie.

    The smooth part is grey. Details have the middle colour at 0 and one scale for each level, whose ends
    2 % of the coefficients exceed. Letters are those of `get_detail2d`, with the level.

    Parameters
    ----------
    coefficients : array
        The result of `dwt`, `dwts` or `dwti` of an image.
    level : int
        How many levels the transform had.
    ax : Axes, optional
        Where to draw.
    cmap : str
        The colours of the details.
    labels : bool
        Whether to name the subbands of the three finest levels.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> picture = np.hypot(*np.mgrid[-8:8, -8:8])
    >>> ax = undula.plot.mosaic(undula.dwt(picture, 2, undula.daublet(4)), 2)
    >>> [text.get_text() for text in ax.texts]
    ['H2', 'V2', 'D2', 'H1', 'V1', 'D1']
    """
    ax = _axes(ax)
    coefficients = np.asarray(coefficients, float)
    _check("mosaic", coefficients.ndim == 2, "coefficients of an image have two dimensions; see levels")
    shown = np.empty((*coefficients.shape, 4))
    parts = undula.levels(coefficients, level)
    colours = undula.levels(np.moveaxis(shown, -1, 0), level)
    low, high = np.min(parts.smooth), np.max(parts.smooth)
    _colour(colours.smooth, parts.smooth, "gray", low, high)
    for details, targets in zip(parts.details, colours.details):
        magnitudes = np.abs(np.concatenate([block.ravel() for block in details]))
        most = np.quantile(magnitudes, 0.98) or np.max(magnitudes)
        for block, target in zip(details, targets):
            _colour(target, block, cmap, -most, most)
    rows, cols = coefficients.shape
    ax.imshow(shown, extent=(0, cols, rows, 0), interpolation="nearest")
    for j in range(level, 0, -1):
        _draw_cross(ax, rows, cols, j, labels and j <= 3)
    ax.set(xlim=(0, cols), ylim=(rows, 0), xticks=[], yticks=[])
    return ax


def partition(
    basis: ArrayLike, image: ArrayLike | None = None, ax: Axes | None = None, *, color: str | None = None
) -> Axes:
    """Draws the blocks of an image's packet basis, of any depth, over a picture.

    Parameters
    ----------
    basis : array
        The packets: level, row position and column position. Without a picture they divide the unit
        square, with the low frequencies at the top left.
    image : array, optional
        The picture below, in grey: for wavelet packets that of their coefficients, for cosine packets the
        image itself.
    ax : Axes, optional
        Where to draw.
    color : str, optional
        That of the lines.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> ax = undula.plot.partition(undula.wavebs(3, 2))
    >>> len(ax.patches)
    10
    """
    ax = _axes(ax)
    _check("partition", np.shape(basis)[-1:] == (3,), "the basis of an image has three columns; see tiling")
    rows, cols = (1, 1) if image is None else np.shape(image)
    if image is not None:
        ax.imshow(image, cmap="gray", extent=(0, cols, rows, 0), interpolation="nearest")
    color = color or (_INK if image is None else _SECOND)
    for level, row, col in np.unique(basis, axis=0).astype(int):
        top, height = _place(rows, level, row) if rows > 1 else (row / 2**level, 1 / 2**level)
        left, width = _place(cols, level, col) if cols > 1 else (col / 2**level, 1 / 2**level)
        _frame(ax, left, top, width, height, color=color, lw=0.8)
    ax.set(xlim=(0, cols), ylim=(rows, 0), xticks=[], yticks=[], aspect="equal")
    return ax


def decay(coefficients: ArrayLike, ax: Axes | None = None, *, kind: str = "magnitude", **line) -> Axes:
    """Draws how fast coefficients fall when they are sorted by magnitude.

    Parameters
    ----------
    coefficients : array
        Any coefficients.
    ax : Axes, optional
        Where to draw. Several lines in one Axes can be compared.
    kind : str
        "magnitude": that of the n-th largest, down to 1e-5 of the largest. "energy": the share of the
        energy in the largest, over the share of coefficients, in per cent. "error": the norm of what is
        left when n are kept over that of all, which is the relative error if the transform is
        orthonormal. Magnitudes and errors have logarithmic axes.
    line
        What `Axes.plot` takes, such as a label.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> ax = undula.plot.decay([3, 0, -4, 0], kind="energy")
    >>> ax.lines[0].get_ydata()
    array([  0.,  64., 100., 100., 100.])
    """
    ax = _axes(ax)
    magnitudes = np.sort(np.abs(coefficients), axis=None)[::-1]
    energies = np.concatenate([[0.0], np.cumsum(magnitudes**2)])
    rests = np.cumsum(np.append(0.0, magnitudes[::-1] ** 2))[::-1]
    counts = np.arange(len(magnitudes) + 1)
    if kind == "magnitude":
        shown = magnitudes > 1e-5 * magnitudes[0]
        ax.loglog(counts[1:][shown], magnitudes[shown], **line)
        ax.set(xlabel="rank", ylabel="magnitude")
    elif kind == "energy":
        ax.plot(100 * counts / counts[-1], 100 * energies / energies[-1], **line)
        ax.set(xlabel="coefficients, %", ylabel="energy, %", ylim=(0, 103))
    elif kind == "error":
        ax.loglog(counts[1:-1], np.sqrt(rests / rests[0])[1:-1], **line)
        ax.set(xlabel="coefficients kept", ylabel="relative error")
    else:
        raise ValueError(f'decay: kind "{kind}" is not one of magnitude, energy, error')
    return ax


def function(
    wavelet: ArrayLike, index: int = 0, ax: Axes | None = None, *, dual: bool = False, **line
) -> Axes:
    """Draws a scaling function (index 0), wavelet (1) or wavelet packet where it is not practically 0.

    Parameters
    ----------
    wavelet : array or string
        The filter, or the name of the wavelet.
    index : int
        Number of the packet, counted by frequency.
    ax : Axes, optional
        Where to draw.
    dual : bool
        Whether to draw the function of the synthesis filters.
    line
        What `Axes.plot` takes.

    Returns
    -------
    Axes
        Where it was drawn.

    Examples
    --------
    >>> ax = undula.plot.function(undula.daublet(2), 1)
    >>> sorted(set(ax.lines[0].get_ydata().round(6)))
    [-1.0, 0.0, 1.0]
    """
    ax = _axes(ax)
    x, y = _curve(wavelet, index, dual)
    has_steps = np.unique(y.round(9)).size < 10
    ax.plot(x, y, **{"drawstyle": "steps-post" if has_steps else "default", "lw": 1.3, **line})
    return ax


def sheet(wavelet: ArrayLike, axes: NDArray | None = None) -> NDArray:
    """Draws the taps, the frequency responses, the scaling function and the wavelet of a filter.

    Of a biorthogonal pair those of the synthesis stand beside those of the analysis. The two functions
    have one scale of x.

    Parameters
    ----------
    wavelet : array or string
        The filter, or the name of the wavelet.
    axes : array of four Axes, optional
        Where to draw; without it in a new figure, which is `axes[0, 0].figure`.

    Returns
    -------
    array of Axes
        The four: taps, responses, scaling function, wavelet.

    Examples
    --------
    >>> axes = undula.plot.sheet(undula.Bspline(2, 4))
    >>> [ax.get_title(loc="left") for ax in axes.flat]
    ['taps', 'frequency response', 'scaling function', 'wavelet']
    """
    if axes is None:
        import matplotlib.pyplot as plt

        axes = plt.subplots(2, 2, layout="constrained")[1]
    axes = np.asarray(axes)
    taps, responses, scaling, mother = axes.flat
    is_pair = filter_of(wavelet).ndim == 2 and filter_of(wavelet).shape[1] == 2
    sides = [("analysis", False, _FIRST), ("synthesis", True, _SECOND)] if is_pair else [("", False, _FIRST)]
    filters = low_passes(wavelet)
    for place, (name, dual, color) in enumerate(sides):
        low, other = filters[place], filters[1 - place]
        # Those of a pair are centred, and a little apart.
        first = 0.3 * place - 0.15 - (len(low) - 1) / 2 if is_pair else 0
        _stem(taps, first + np.arange(len(low)), low, color, name)
        _draw_responses(responses, low, high_pass(other), color)
        function(wavelet, 0, scaling, dual=dual, color=color)
        function(wavelet, 1, mother, dual=dual, color=color)
    titles = "taps", "frequency response", "scaling function", "wavelet"
    for ax, title in zip(axes.flat, titles):
        ax.axhline(0, color=_FAINT, lw=0.8, zorder=0)
        ax.set_title(title, loc="left")
    limits = [limit for ax in (scaling, mother) for limit in ax.get_xlim()]
    for ax in (scaling, mother):
        ax.set_xlim(min(limits), max(limits))
    responses.set_ylim(top=1.35 * responses.get_ylim()[1])
    responses.legend(*(each[:2] for each in responses.get_legend_handles_labels()), frameon=False,
                     fontsize="small", ncols=2, borderpad=0, loc="upper center")
    if is_pair:
        taps.set_ylim(top=1.9 * taps.get_ylim()[1])
        taps.legend(frameon=False, fontsize="small", borderpad=0)
    return axes


def _axes(ax):
    import matplotlib.pyplot as plt

    return plt.gca() if ax is None else ax


def _check(name, holds, rule):
    if not holds:
        raise ValueError(f"{name}: {rule}")


def _span(ax, span, count):
    if span is not None:
        return span
    ax.set_xlabel("sample")
    return 0, count


def _largest(arrays):
    """The largest magnitude, or 1 if there is none to be divided by."""
    return max((float(np.max(np.abs(array))) for array in arrays), default=0.0) or 1.0


def _decibels(coefficients, loudest, decibels):
    smallest = 10 ** (-decibels / 20)
    return 20 * np.log10(np.maximum(np.abs(coefficients) / loudest, smallest))


def _place(count, level, position):
    """Where a packet begins among the coefficients of its level, and how long it is."""
    inside = undula.get_subband(np.arange(float(count)), level, position)
    return int(inside[0]), len(inside)


def _frame(ax, left, top, width, height, **style):
    from matplotlib.patches import Rectangle

    ax.add_patch(Rectangle((left, top), width, height, fill=False, **style))


def _colour(target, block, cmap, low, high):
    """Writes the colours of a block into an array with the channels first."""
    import matplotlib

    scaled = (block - low) / (high - low) if high > low else np.full(block.shape, 0.5)
    target[...] = np.moveaxis(matplotlib.colormaps[cmap](np.clip(scaled, 0, 1)), -1, 0)


def _draw_cross(ax, rows, cols, level, labels):
    """Draws the lines between the subbands of a level, and their names."""
    (half_row, row), (half_col, col) = ((-(-side >> level), -(-side >> (level - 1))) for side in (rows, cols))
    ax.plot([half_col, half_col], [0, row], color=_INK, lw=0.8)
    ax.plot([0, col], [half_row, half_row], color=_INK, lw=0.8)
    if not labels:
        return
    for letter, y, x in (("H", half_row, 0), ("V", 0, half_col), ("D", half_row, half_col)):
        ax.annotate(
            f"{letter}{level}", (x, y), xytext=(2, -2), textcoords="offset points", va="top", fontsize=8,
            color=_INK, bbox={"facecolor": "white", "edgecolor": "none", "alpha": 0.75, "pad": 1},
        )


def _curve(wavelet, index, dual, grid=32, smallest=1e-3):
    """Points and values of a packet function, from where on it is larger than a share of its maximum."""
    per_unit = grid << int(index).bit_length()
    reach = max(map(len, low_passes(wavelet)))
    x = np.arange(-reach * per_unit, reach * per_unit + 1) / per_unit
    y = undula.evaluate(undula.dlwavelet if dual else undula.wavelet, x, 0, 0, index, filter_of(wavelet))
    (inside,) = np.nonzero(np.abs(y) > smallest * np.max(np.abs(y)))
    shown = slice(max(inside[0] - per_unit // 4, 0), inside[-1] + per_unit // 4)
    return x[shown], y[shown]


def _stem(ax, x, y, color, label):
    ax.vlines(x, 0, y, color=color, lw=1.5)
    ax.plot(x, y, "o", color=color, ms=4, label=label)


def _draw_responses(ax, low, high, color):
    frequencies = np.linspace(0, 1, 257)
    for name, filter, style in (("low-pass", low, "-"), ("high-pass", high, "--")):
        response = np.exp(-1j * np.pi * np.outer(frequencies, np.arange(len(filter)))) @ filter
        ax.plot(frequencies, np.abs(response), style, color=color, lw=1.3, label=name)
    ax.set_xlabel("frequency / highest")

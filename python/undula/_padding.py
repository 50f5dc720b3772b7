"""Padding of data to lengths that can be halved, and back."""

from __future__ import annotations

from collections.abc import Callable, Sequence
from typing import NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from undula._levels import check_level
from undula._numbers import axes_of, real_numbers, whole

# Those of numpy.pad that give every sample a value.
_MODES = (
    "symmetric", "reflect", "edge", "constant", "wrap", "periodic", "linear_ramp", "maximum", "mean", "median",
    "minimum",
)  # fmt: skip


class Padded(NamedTuple):
    """Padded data, and where in it the data lies."""

    data: NDArray
    place: tuple[slice, ...]

    def trim(self, array: NDArray) -> NDArray:
        """The part of an array of the padded shape where the data was; a view."""
        return array[self.place]


def pad(
    data: ArrayLike,
    level: int,
    mode: str | Callable = "symmetric",
    margin: int | Sequence[int] = 0,
    axis: int | None = None,
) -> Padded:
    """Data padded so that 2^level divides its sides, with a record of where the data lies in it.

    Parameters
    ----------
    data : array
        A signal or an image.
    level : int
        How often the sides are to be halved.
    mode : str or function
        What stands beyond the ends, as in `numpy.pad`: "symmetric", the mirror image that repeats the
        end sample, "reflect", which does not repeat it, "edge", "constant", which are zeros, "wrap",
        "linear_ramp", "maximum", "mean", "median", "minimum". "periodic" is "wrap".
    margin : int or sequence of int
        How many samples to pad at least before and behind the data; for each axis or for all. Without it
        all padding is behind the data, and there is none where 2^level divides the length.
    axis : int, optional
        The only axis to pad; without it all are.

    Returns
    -------
    Padded
        The record (data, place) with the method `trim`.

    Raises
    ------
    ValueError
        A side of the data is too short for the level, there is no such mode, or a margin is negative.
    TypeError
        The data is not real numbers, or the level or a margin is not a whole number.

    Examples
    --------
    >>> padded = undula.pad([3, 1, 4, 1, 5], 2)
    >>> padded.data
    array([3, 1, 4, 1, 5, 5, 1, 4])
    >>> y = undula.dwt(padded.data, 2, undula.daublet(4))
    >>> padded.trim(undula.idwt(y, 2, undula.daublet(4))).round(12)
    array([3., 1., 4., 1., 5.])
    """
    array = real_numbers("pad", data)
    axes = range(array.ndim) if axis is None else axes_of("pad", [axis], array.ndim)
    level = check_level("pad", [array.shape[each] for each in axes], level)
    margins = _margins(margin, array.ndim)
    widths, place = [(0, 0)] * array.ndim, [slice(None)] * array.ndim
    for each in axes:
        length, before = array.shape[each], margins[each]
        widths[each] = (before, before + -(length + 2 * before) % (1 << level))
        place[each] = slice(before, before + length)
    if isinstance(mode, str) and mode not in _MODES:
        raise ValueError(f'pad: mode "{mode}" is none of {", ".join(_MODES)}')
    return Padded(np.pad(array, widths, "wrap" if mode == "periodic" else mode), tuple(place))


def _margins(margin, dimensions):
    """For each axis."""
    margins = [whole("pad", "margin", each) for each in (margin if np.iterable(margin) else [margin])]
    if len(margins) not in (1, dimensions) or min(margins) < 0:
        raise ValueError(f"pad: margin must be one number or one for each of {dimensions} axes, none below 0")
    return margins if len(margins) == dimensions else margins * dimensions

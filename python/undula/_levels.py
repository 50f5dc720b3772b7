"""Transformed data by levels, as views."""

from __future__ import annotations

from typing import NamedTuple

import numpy as np
from numpy.typing import NDArray


class Details(NamedTuple):
    """The details of one level of an image, named as by `get_detail2d`.

    H is high-pass along the columns, where horizontal structures show, V along the rows, D along both.
    """

    H: NDArray
    V: NDArray
    D: NDArray


class Levels(NamedTuple):
    """What `levels` returns: the smooth coefficients, and the details from the coarsest level to the finest.

    `details[-j]` are those of level j. Of an image each is a `Details`.
    """

    smooth: NDArray
    details: tuple


def levels(coefficients: NDArray, level: int, axis: int | None = None) -> Levels:
    """The smooth part and the details of transformed data, without copies.

    The parts are views: what is written into them is written into the coefficients. Their order is that
    of `pywt.wavedec`: the smooth part, then the details from the coarsest level to the finest, so that
    `details[-j]` are the details of level j. Any length is read as `dwts` lays it out, which for a
    multiple of 2^level is the layout of `dwt` and `dwti` too.

    Parameters
    ----------
    coefficients : array
        The result of `dwt`, `dwts` or `dwti`. One dimension is a signal, two are an image; of more, the
        last two are.
    level : int
        How many levels the transform had.
    axis : int, optional
        The axis along which there are signals, where an array of several dimensions holds those.

    Returns
    -------
    Levels
        The record (smooth, details). Of an image, each of the details is a record (H, V, D).

    Raises
    ------
    TypeError
        The coefficients are not an array, of which there could be views.
    ValueError
        A side of the data is too short for the level.

    Examples
    --------
    >>> smooth, details = undula.levels(np.arange(7.0), 2)
    >>> smooth, details[-2], details[-1]
    (array([0., 1.]), array([2., 3.]), array([4., 5., 6.]))
    >>> y = undula.dwt([4, 6, 10, 12, 8, 6, 5, 5], 1, undula.daublet(2))
    >>> undula.levels(y, 1).details[-1][:] = 0
    >>> undula.idwt(y, 1, undula.daublet(2)).round(12)
    array([ 5. ,  5. , 11. , 11. ,  7. ,  7. ,  5. ,  5. ])
    >>> undula.levels(np.arange(16.0).reshape(4, 4), 1).details[-1].H
    array([[ 8.,  9.],
           [12., 13.]])
    """
    if not isinstance(coefficients, np.ndarray):
        raise TypeError("levels: coefficients must be an array, since the result is views of it")
    if axis is None:
        check_level("levels", coefficients.shape[-2:], level)
        return parts_of(coefficients, level)
    signals = np.moveaxis(coefficients, axis, -1)
    check_level("levels", signals.shape[-1:], level)
    smooth, details = _of_signals(signals, level)
    return Levels(np.moveaxis(smooth, -1, axis), tuple(np.moveaxis(each, -1, axis) for each in details))


def parts_of(coefficients, level):
    """What `levels` returns of a signal or of images, of whatever can be sliced as arrays can."""
    return (_of_signals if coefficients.ndim == 1 else _of_images)(coefficients, level)


def check_level(function, sides, level):
    """Raises ValueError where a side cannot be halved that often."""
    shortest = min(sides)
    most = max(shortest, 1).bit_length() - 1
    if not 0 <= level <= most:
        raise ValueError(f"{function}: {shortest} samples allow levels 0 to {most}, not {level}")


def halvings(length, level):
    """How long the smooth part is after 0, 1, ..., `level` levels."""
    return [-(-length >> j) for j in range(level + 1)]


def _of_signals(signals, level):
    edges = halvings(signals.shape[-1], level)
    details = tuple(signals[..., edges[j] : edges[j - 1]] for j in range(level, 0, -1))
    return Levels(signals[..., : edges[-1]], details)


def _of_images(images, level):
    rows, cols = (halvings(side, level) for side in images.shape[-2:])

    def details(j):
        low, high = slice(rows[j]), slice(rows[j], rows[j - 1])
        left, right = slice(cols[j]), slice(cols[j], cols[j - 1])
        return Details(images[..., high, left], images[..., low, right], images[..., high, right])

    return Levels(images[..., : rows[-1], : cols[-1]], tuple(map(details, range(level, 0, -1))))

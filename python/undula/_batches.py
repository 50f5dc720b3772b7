"""A function of the pack for each of many signals or images, in one call."""

import numpy as np

from undula import _host
from undula._descriptions import FORWARD, INVERSE
from undula._evaluate import description_of
from undula._numbers import unboxed


def apply_along(row, names, arguments, axis, exception_for):
    """The results for each signal of an array along an axis, or for each image over a pair of axes.

    The loop runs in C++ as one turn of the pack, without the interpreter lock. Ctrl-C ends it between
    the calls as well as within them.

    Parameters
    ----------
    row : _host.Function
        A function of the table whose result is an array. It must have the same shape for every signal
        or image; for a signal it must be one column.
    names : tuple of str
        The names of the arguments, as for `row.call`.
    arguments : tuple
        The arguments. The first is an array, or what NumPy makes one of, with all signals or images; all
        others are the same in every call.
    axis : int or pair of int
        The axis of the signals, or those of the rows and columns of the images. Negative ones count from the
        end.
    exception_for : function
        Makes an exception of an error value and the signal or image that it is about.

    Returns
    -------
    array
        A fresh array of float64. The result of a signal or image stands where that has stood; the columns
        have no gaps in memory, and no other order is promised.

    Raises
    ------
    undula.Error
        The function refuses a signal or image, or another argument; a note says for which one.
    TypeError
        The array does not hold numbers, or the results differ in shape.
    numpy.AxisError, ValueError
        The array does not have that axis, or one is given twice.

    Notes
    -----
    Signals that are contiguous in memory, and images by columns, are read where they stand. Others are
    copied, and arrays of other types of numbers are converted, before anything is called.
    """
    axes = tuple(axis) if np.ndim(axis) else (axis,)
    last = tuple(range(-len(axes), 0))
    given = _array(row, names, arguments)
    data = np.moveaxis(given, axes, last)
    if data.dtype.kind == "c":
        _refuse_imaginary_parts(row, names, arguments, data, last, exception_for)
        data = data.real
    numbers = np.require(data, float, "A")
    outcome = row.call_along((0.0, *arguments[1:]), names, 0, numbers, len(axes))
    if isinstance(outcome, _host.ErrorValue):
        index = np.unravel_index(outcome.element, data.shape[: -len(axes)])
        raise _with_index(exception_for(outcome, data[index]), index, len(axes))
    return np.empty(given.shape) if outcome is None else np.moveaxis(outcome, last, axes)


def transform_nd(function, data, level, wavelet, offsets=None, flips=None, *, axes=None):
    """Wavelet transform of an array of any number of dimensions, or its inverse.

    Each level transforms the smooth part along one axis after the other, as `dwt` does with the rows and
    columns of an image.

    Parameters
    ----------
    function : function of this module
        `dwt`, `dwts` or `dwti`, or its inverse.
    data : array
        The samples, or the coefficients; real.
    level : int
        How many levels.
    wavelet, offsets, flips
        The other arguments of the function.
    axes : tuple of int
        The axes along which is transformed; all of them unless they are given.

    Returns
    -------
    array
        The coefficients, or the samples, in the shape of `data`. The smooth part of the last level stands
        in the first corner.

    Raises
    ------
    undula.Error
        The function refuses its arguments for the signals along an axis.

    Examples
    --------
    >>> volume = np.arange(64.0).reshape(4, 4, 4)
    >>> y = undula.transform_nd(undula.dwt, volume, 2, undula.daublet(2))
    >>> y[0, 0, 0].round(9), (volume.sum() / 8).round(9)
    (252.0, 252.0)
    >>> undula.transform_nd(undula.idwt, y, 2, undula.daublet(2)).round(9)[1, 2, 3]
    27.0
    """
    description = description_of(function, "transform_nd")
    if description.name not in FORWARD + INVERSE:
        raise TypeError(f"transform_nd: argument 1 is none of {', '.join(FORWARD + INVERSE)}")
    others = (wavelet,) if offsets is None and flips is None else (wavelet, offsets, flips)
    result = np.array(data)
    axes = range(result.ndim) if axes is None else axes
    for axis in axes:
        function(np.zeros(result.shape[axis]), level, *others)  # checks the level for all signals at once
    levels = range(int(level))
    for each in levels if description.name in FORWARD else reversed(levels):
        smooth = _smooth_part(result.shape, axes, each)
        for axis in axes:
            result[smooth] = function(result[smooth], 1, *others, axis=axis)
    return result


def _smooth_part(shape, axes, level):
    """Where the smooth part of a level stands."""
    axes = {axis % len(shape) for axis in axes}
    return tuple(slice(-(-side // 2**level) if axis in axes else side) for axis, side in enumerate(shape))


def _array(row, names, arguments):
    if isinstance(arguments[0], np.ma.MaskedArray):
        row.call(arguments, names)  # refuses it
    array = unboxed(np.asarray(arguments[0]))
    if array.dtype.kind not in "biufc":
        raise TypeError(f"{row.name}: argument 1 (data) does not hold numbers")
    return array


def _refuse_imaginary_parts(row, names, arguments, data, last, exception_for):
    """Lets the function say what is wrong with the first signal or image that is not real."""
    refused = np.argwhere(np.any(data.imag, axis=last))
    if len(refused):
        index = tuple(refused[0])
        outcome = row.call((data[index], *arguments[1:]), names)
        raise _with_index(exception_for(outcome, data[index]), index, len(last))


def _with_index(error, index, dimensions):
    if index:
        core = "signal" if dimensions == 1 else "image"
        error.add_note(f"for the {core} at {tuple(map(int, index))}")
    return error

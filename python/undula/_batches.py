"""A function of the pack for each of many signals or images, in one call."""

import numpy as np

from undula import _host
from undula._errors import error_for
from undula._evaluate import description_of


def apply_along(row, names, arguments, axis, place=0):
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
        The arguments. The one at `place` is an array, or what NumPy makes one of, with all signals or
        images; all others are the same in every call.
    axis : int or pair of int
        The axis of the signals, or those of the rows and columns of the images. Negative ones count from the
        end.
    place : int
        Which argument has the signals, from 0.

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
    data = np.moveaxis(_array(row, names, arguments, place), axes, last)
    if data.dtype.kind == "c":
        _refuse_imaginary_parts(row, names, arguments, place, data, last)
        data = data.real
    others = tuple(0.0 if i == place else argument for i, argument in enumerate(arguments))
    numbers = np.require(data, float, "A")
    outcome = row.call_along(others, names, place, numbers, len(axes))
    if isinstance(outcome, _host.ErrorValue):
        index = np.unravel_index(outcome.element, data.shape[: -len(axes)])
        raise _error(row, names, outcome, index, len(axes))
    return np.empty(np.shape(arguments[place])) if outcome is None else np.moveaxis(outcome, last, axes)


def transform_nd(function, data, level, /, *wavelet, axes=None):
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
    wavelet
        The other arguments of the function: filter, offsets and flips.
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
    if description.name not in _FORWARD + _INVERSE:
        raise TypeError(f"transform_nd: argument 1 is none of {', '.join(_FORWARD + _INVERSE)}")
    row, names = function._row, description.argument_names(2 + len(wavelet))
    result = np.array(_array(row, names, (data, level, *wavelet), 0))
    axes = range(result.ndim) if axes is None else axes
    for axis in axes:
        function(np.zeros(result.shape[axis]), level, *wavelet)  # checks the level for all signals at once
    levels = range(int(level))
    for each in levels if description.name in _FORWARD else reversed(levels):
        smooth = _smooth_part(result.shape, axes, each)
        for axis in axes:
            result[smooth] = apply_along(row, names, (result[smooth], 1, *wavelet), axis)
    return result


_FORWARD = ("dwt", "dwts", "dwti")
_INVERSE = ("idwt", "idwts", "idwti")


def _smooth_part(shape, axes, level):
    """Where the smooth part of a level stands."""
    axes = {axis % len(shape) for axis in axes}
    return tuple(slice(-(-side // 2**level) if axis in axes else side) for axis, side in enumerate(shape))


def _array(row, names, arguments, place):
    argument = arguments[place]
    if isinstance(argument, np.ma.MaskedArray):
        row.call(arguments, names)  # refuses it
    array = np.asarray(argument)
    if array.dtype.kind not in "biufc":
        name = f" ({names[place]})" if names else ""
        raise TypeError(f"{row.name}: argument {place + 1}{name} does not hold numbers")
    return array


def _refuse_imaginary_parts(row, names, arguments, place, data, last):
    """Lets the function say what is wrong with the first signal or image that is not real."""
    refused = np.argwhere(np.any(data.imag, axis=last))
    if len(refused):
        index = tuple(refused[0])
        outcome = row.call((*arguments[:place], data[index], *arguments[place + 1 :]), names)
        raise _error(row, names, outcome, index, len(last))


def _error(row, names, outcome, index, dimensions):
    error = error_for(row.name, outcome.message, outcome.argument, names)
    if index:
        core = "signal" if dimensions == 1 else "image"
        error.add_note(f"for the {core} at {tuple(map(int, index))}")
    return error

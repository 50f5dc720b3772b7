"""A function of the pack at each of many points, in one call."""

import sys

import numpy as np

from undula import _host
from undula._numbers import unboxed


def evaluate(function, /, *arguments, **named):
    """Values of a function of the pack at each element of arrays.

    The same as a call of the function itself with these arguments, which takes arrays too: see
    "Many points at once" in the help of the package.

    Parameters
    ----------
    function : function of this module
        One whose result is a real number, such as `father` or `waveterp`.
    arguments
        Its arguments, by position or by name. Wherever it takes a scalar, an array of numbers may stand.

    Returns
    -------
    array
        The results, in the shape of the arrays. Without any array, a float.

    Raises
    ------
    undula.Error
        The function refuses its arguments; a note says for which element.
    TypeError
        It is not a function of the pack with a real number as its result, or an array does not hold
        numbers.
    ValueError
        The shapes of the arrays do not fit together.

    Examples
    --------
    >>> undula.evaluate(undula.father, [-0.5, 0, 0.5, 1], "haar").round(12)
    array([0., 1., 1., 0.])
    >>> undula.evaluate(undula.mother2d, [0.25, 0.75], [0.1, 0.1], "haar", "H").round(12)
    array([ 1., -1.])
    """
    description = description_of(function, "evaluate")
    if description.result.kind != "scalar":
        raise TypeError(f"{function.__name__}: its result is not a real number")
    return function(*arguments, **named)


def description_of(function, caller):
    """The description of a function of the pack, the first argument of `caller`."""
    description = getattr(function, "_description", None)
    # A wrapper may have copied the attributes of the function that it wraps.
    if description is None or getattr(sys.modules["undula"], description.name) is not function:
        raise TypeError(f"{caller}: argument 1 is not a function of the pack")
    return description


def at_points(row, called, names, arguments, scalars, exception_for):
    """The results for each element of the arrays among the arguments; None where there is none.

    `row` is the function of the table that does what the one `called` so does, and whose result is a real
    number; `names` are those of its arguments, and `scalars` the places where it takes a scalar. An array
    there, or a sequence, has the function called for each element; several are broadcast against each
    other. All other arguments are the same in every call. Raises what `undula.evaluate` says;
    `exception_for` makes an exception of an error value.
    """
    places = [place for place in scalars if not isinstance(arguments[place], (float, int, complex))]
    arrays = [_array(arguments[place]) for place in places]
    if not any(array.ndim for array in arrays):
        return None
    for place, array in zip(places, arrays):
        if array.dtype.kind not in "biufc":
            raise TypeError(f"{called}: argument {place + 1} ({names[place]}) does not hold numbers")
    shape = _common_shape(called, arrays)
    numbers = [_contiguous(np.broadcast_to(array, shape)) for array in arrays]
    others = tuple(0.0 if place in places else argument for place, argument in enumerate(arguments))
    outcome = row.call_many(others, names, places, numbers)
    if isinstance(outcome, _host.ErrorValue):
        error = exception_for(outcome)
        error.add_note(f"for the elements at {_index(outcome.element, shape)}")
        raise error
    return outcome.reshape(shape)


def _array(argument):
    """The argument as an array; one of no dimension where it is not to be gone through."""
    if isinstance(argument, np.ma.MaskedArray):
        return np.array(None)  # refused as in any other call
    try:
        return unboxed(np.asarray(argument))
    except ValueError:  # rows of different lengths
        return np.array([None])


def _contiguous(array):
    return np.ascontiguousarray(array, complex if array.dtype.kind == "c" else float)


def _common_shape(called, arrays):
    shapes = [array.shape for array in arrays]
    try:
        return np.broadcast_shapes(*shapes)
    except ValueError:
        listed = ", ".join(map(str, shapes))
        raise ValueError(f"{called}: shapes that do not fit together: {listed}") from None


def _index(element, shape):
    return tuple(int(i) for i in np.unravel_index(element, shape))

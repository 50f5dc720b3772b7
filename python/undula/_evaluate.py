"""A function of the pack for each number of an array."""

import sys

import numpy as np

from undula import _host
from undula._remedies import failure


def evaluate(function, /, *arguments, **named):
    """Values of a function of the pack at each element of arrays.

    Wherever the function takes a scalar, an array of numbers may stand: the function is called for
    each element. Several such arrays must have the same shape and are gone through together; other
    arguments are the same in every call. An argument that is itself an array, such as a filter, is
    passed whole.

    The loop runs in C++, as one turn: other Python threads keep running, other calls of the pack
    wait. Ctrl-C ends it.

    Parameters
    ----------
    function : function of this module
        One whose result is a real number, such as `father` or `waveterp`.
    arguments
        Its arguments, by position or by name.

    Returns
    -------
    array
        The results, in the shape of the arrays. Without any array, what the function itself returns.

    Raises
    ------
    undula.Error
        The function refuses its arguments; a note says for which element.
    TypeError
        It is not a function of the pack with a real number as its result, or an array does not hold
        numbers.
    ValueError
        The arrays differ in shape.

    Examples
    --------
    >>> undula.evaluate(undula.father, [-0.5, 0, 0.5, 1], "haar").round(12)
    array([0., 1., 1., 0.])
    >>> undula.evaluate(undula.mother2d, [0.25, 0.75], [0.1, 0.1], "haar", "H").round(12)
    array([ 1., -1.])
    """
    description = getattr(function, "_description", None)
    # A wrapper may have copied the attributes of the function that it wraps.
    if description is None or getattr(sys.modules["undula"], description.name) is not function:
        raise TypeError("evaluate: argument 1 is not a function of the pack")
    if description.result.kind != "scalar":
        raise TypeError(f"{function.__name__}: its result is not a real number")
    given = function._bind(arguments, named) if named else arguments
    if len(given) not in map(len, description.forms):
        return function(*given)  # which says what is wrong
    row, arguments, names = function._prepare(given)
    description = vars(sys.modules["undula"])[row.name]._description
    places = [
        place
        for place, name in enumerate(names)
        if description.kind_of(name) == "scalar" and np.ndim(arguments[place]) > 0
    ]
    if not places:
        return function(*given)
    arrays = [_numbers(function, place, names[place], arguments[place]) for place in places]
    shape = _common_shape(function, arrays)
    fixed = tuple(0.0 if place in places else argument for place, argument in enumerate(arguments))
    outcome = row.call_many(fixed, names, places, arrays)
    if isinstance(outcome, _host.ErrorValue):
        error = failure(function._description, outcome, names, given)
        error.add_note(f"for the elements at {_index(outcome.element, shape)}")
        raise error
    return outcome.reshape(shape)


def _numbers(function, place, name, argument):
    array = np.asarray(argument)
    if array.dtype.kind not in "biufc":
        raise TypeError(f"{function.__name__}: argument {place + 1} ({name}) does not hold numbers")
    return np.ascontiguousarray(array, np.complex128)


def _common_shape(function, arrays):
    shapes = [array.shape for array in arrays]
    if len(set(shapes)) > 1:
        raise ValueError(f"{function.__name__}: arrays of different shapes: {', '.join(map(str, shapes))}")
    return shapes[0]


def _index(element, shape):
    return tuple(int(i) for i in np.unravel_index(element, shape))

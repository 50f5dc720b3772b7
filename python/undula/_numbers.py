"""Arguments of the helpers: numbers, and what counts them."""

import math
import numbers
import operator
import sys

import numpy as np


def unboxed(array):
    """An array of objects that are all numbers as one of float or complex; any other array as it is."""
    if array.dtype.kind != "O" or not all(isinstance(each, numbers.Complex) for each in array.flat):
        return array
    return array.astype(float if all(isinstance(each, numbers.Real) for each in array.flat) else complex)


def real_numbers(function, data):
    """The data as an array. What NumPy would drop without a word, such as a mask, is refused."""
    if isinstance(data, np.ma.MaskedArray):
        raise TypeError(f"{function}: masked arrays are not taken, since the mask would be lost; fill them")
    array = unboxed(np.asarray(data))
    if array.dtype.kind == "c" and not array.imag.any():
        array = array.real
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{function}: data must be real numbers, not {array.dtype}")
    return array


def doubles(function, data):
    """A copy of the data as an array of float64."""
    return real_numbers(function, data).astype(float)


def _scalar(value):
    """What is in an array of no dimensions; any other value as it is."""
    return value[()] if isinstance(value, np.ndarray) and value.ndim == 0 else value


def not_negative(function, name, value):
    """The value as a float that is not negative, infinite or NaN."""
    number = _scalar(value)
    if not isinstance(number, numbers.Real):
        raise TypeError(f"{function}: {name} must be a number, not {value!r}")
    if not 0 <= number <= sys.float_info.max:
        raise ValueError(f"{function}: {name} must be 0 or more and finite, not {number}")
    return float(number)


def whole(function, name, value):
    """The value as an int, also where it is 3.0, 3 + 0j or np.array(3), which the pack's functions take."""
    number = _scalar(value)
    if isinstance(number, (numbers.Complex, np.bool_)) and number.imag == 0:
        number = number.real
        if -math.inf < number < math.inf and number == math.floor(number):
            return int(number)
    raise TypeError(f"{function}: {name} must be a whole number, not {value!r}")


def _index(axis):
    if isinstance(axis, (bool, np.bool_)):  # meant as a switch, not as 1
        raise TypeError
    return operator.index(axis)


def axes_of(function, axes, dimensions):
    """One axis or several as a tuple of different numbers from 0 on."""
    try:
        given = [_index(axis) for axis in (axes if np.iterable(axes) else [axes])]
    except TypeError:
        raise TypeError(f"{function}: an axis is a whole number, not {axes!r}") from None
    for axis in given:
        if not -dimensions <= axis < dimensions:
            raise np.AxisError(f"{function}: axis {axis} of data with {dimensions} dimensions")
    found = tuple(axis % dimensions for axis in given)
    if len(set(found)) < len(found):
        raise ValueError(f"{function}: an axis is given twice in {tuple(given)}")
    return found

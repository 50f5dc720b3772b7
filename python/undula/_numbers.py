"""Arguments that must be numbers."""

import numbers

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
    array = np.asarray(data)
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{function}: data must be real numbers, not {array.dtype}")
    return array

"""Arguments of the helpers that must be real numbers."""

import numpy as np


def real_numbers(function, data):
    """The data as an array. What NumPy would drop without a word, such as a mask, is refused."""
    if isinstance(data, np.ma.MaskedArray):
        raise TypeError(f"{function}: masked arrays are not taken, since the mask would be lost; fill them")
    array = np.asarray(data)
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{function}: data must be real numbers, not {array.dtype}")
    return array

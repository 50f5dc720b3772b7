"""The coefficients of filters, as the helpers need them."""

import numpy as np

import undula
from undula._wavelets import function_of


def filter_of(wavelet):
    """The filter of a wavelet: a column for an orthonormal one, two columns for a pair."""
    if isinstance(wavelet, str):
        undula.dwt([0], 0, wavelet)  # refuses what is no name
        function, numbers = function_of(wavelet)
        return getattr(undula, function)(*numbers)
    return np.asarray(wavelet, float)


def low_passes(wavelet):
    """The low-pass filters of analysis and synthesis, without zeros behind them."""
    columns = np.atleast_2d(filter_of(wavelet).T)
    return tuple(np.trim_zeros(columns[side], "b") for side in (0, -1))


def high_pass(dual):
    """The high-pass filter that belongs to a low-pass filter, which is the dual one of a pair."""
    return dual[::-1] * (-1.0) ** np.arange(len(dual))


def spread(filter):
    """The filter with a zero behind each coefficient: what it is on the samples of the level above."""
    return np.kron(filter, [1.0, 0.0])

"""Local cosines against the transform of another library."""

import numpy as np
import pytest
import scipy.fft
import undula


def no_overlap(_):
    """With this bell every segment is transformed by itself."""
    return 1.0


def segments(x, length):
    """The transform of all segments of the last axis."""
    return scipy.fft.dct(x.reshape(*x.shape[:-1], -1, length), 4, norm="ortho").reshape(x.shape)


@pytest.mark.parametrize("rows, cols, levels", [(1, 2**16, 8), (1, 96 * 128, 6), (32, 96, 2), (96, 32, 4)])
def test_tables_agree_with_another_library(rows, cols, levels, rng):
    x = rng.uniform(-1, 1, (rows, cols))
    for j, level in enumerate(undula.lct(x.squeeze(), levels, no_overlap)):
        expected = segments(x, cols >> j)
        if rows > 1:
            expected = segments(expected.T, rows >> j).T
        assert np.abs(level - expected.squeeze()).max() < 1e-12

"""Local cosines against the transform of another library, and bells of the user's."""

import numpy as np
import pytest
import scipy.fft
import undula


def no_overlap(_):
    """With this bell every segment is transformed by itself."""
    return 1.0


def segments(x, length):
    """The transform of all segments of the last axis."""
    return scipy.fft.dct(x.reshape(-1, length), 4, norm="ortho").reshape(x.shape)


@pytest.mark.parametrize("length, levels", [(2**16, 8), (96 * 128, 6), (16, 3)])
def test_tables_of_signals_agree_with_another_library(length, levels, rng):
    x = rng.uniform(-1, 1, length)
    for j, level in enumerate(undula.lct(x, levels, no_overlap)):
        assert np.abs(level - segments(x, length >> j)).max() < 1e-12


@pytest.mark.parametrize("rows, cols, levels", [(64, 64, 3), (32, 96, 2), (96, 32, 4)])
def test_tables_of_images_agree_with_another_library(rows, cols, levels, rng):
    x = rng.uniform(-1, 1, (rows, cols))
    for j, level in enumerate(undula.lct(x, levels, no_overlap)):
        down = np.ascontiguousarray(segments(x, cols >> j).T)
        assert np.abs(level - segments(down, rows >> j).T).max() < 1e-12


@pytest.mark.parametrize("length", [*range(1, 71), 128, 250, 255, 511, 512, 1001, 16383])
def test_segments_of_every_length_agree_with_another_library(length, rng):
    """Only the inverse takes odd ones."""
    x = rng.uniform(-1, 1, 4 * length)
    signal = undula.ilct(x, 2, undula.create_level(2, 1), no_overlap)
    assert np.abs(signal - segments(x, length)).max() < 1e-14


def test_bells_and_their_failures(live_values):
    x, basis = np.arange(16.0), undula.create_level(1, 1)
    before = live_values()

    def raising(_):
        raise KeyError("no bell")

    for call in (lambda bell: undula.lct(x, 1, bell), lambda bell: undula.ilct(x, 1, basis, bell)):
        with pytest.raises(KeyError, match="no bell"):
            call(raising)
        with pytest.raises(FloatingPointError, match="floating point error"):
            call(lambda _: 1.5)
    assert live_values() == before

"""Local cosines against the transform of another library, from both roads, and their memory."""

import subprocess
import sys

import numpy as np
import pytest
import scipy.fft
import undula


def built_in(x):
    return np.sin(np.pi / 4 * (1 - np.cos(np.pi * x)))


def dct4(x, axis):
    return scipy.fft.dct(x, 4, norm="ortho", axis=axis)


def samples(half, bell):
    rising = bell(0.5 + (np.arange(half) + 0.5) / (2 * half))
    return rising, np.sqrt(1 - rising**2)


def fold(x, length, half, bell):
    """All segments of the first axis, by the neighbours' mirror images."""
    x = np.asarray(x)
    segments = x.reshape(-1, length, *x.shape[1:])
    rising, falling = (part.reshape(-1, *[1] * (x.ndim - 1)) for part in samples(half, bell))
    before, after = np.roll(segments, 1, 0)[:, ::-1], np.roll(segments, -1, 0)[:, ::-1]
    folded = segments.copy()
    folded[:, :half] = rising * segments[:, :half] + falling * before[:, :half]
    last = slice(length - half, None)
    folded[:, last] = rising[::-1] * segments[:, last] - falling[::-1] * after[:, last]
    return folded.reshape(x.shape)


def reference_table(x, levels, bell):
    half = len(x) >> levels + 1
    along = min(half, x.shape[-1] >> levels + 1)
    table = []
    for level in range(levels + 1):
        length = len(x) >> level
        y = fold(x, length, half, bell)
        y = dct4(y.reshape(-1, length, *x.shape[1:]), 1).reshape(x.shape)
        if x.ndim == 2:
            width = x.shape[1] >> level
            y = fold(y.T, width, along, bell).T
            y = dct4(y.reshape(len(x), -1, width), 2).reshape(x.shape)
        table.append(y)
    return table


@pytest.mark.parametrize("shape, levels", [(2**16, 8), (96 * 128, 6), (16, 3), ((64, 64), 3), ((32, 96), 2), ((96, 32), 4)])
@pytest.mark.parametrize("bell", [None, np.sqrt, lambda x: np.sqrt(0.5) + 0 * x])
def test_tables_agree_with_another_library(shape, levels, bell, rng):
    x = rng.uniform(-1, 1, shape)
    table = undula.cpt(x, levels) if bell is None else undula.lct(x, levels, bell)
    expected = reference_table(x, levels, bell or built_in)
    assert len(table) == levels + 1
    for level, reference in zip(table, expected):
        assert np.abs(level - reference).max() < 1e-12


@pytest.mark.parametrize("length", [1, 3, 35, 63, 1001, 16383])
def test_segments_of_odd_length_agree_with_another_library(length, rng):
    """Only the inverse takes them: folding what it makes of coefficients leads back to these."""
    coefficients = rng.uniform(-1, 1, 4 * length)
    signal = undula.icpt(coefficients, 2, undula.create_level(2, 1))
    folded = fold(signal, length, length // 2, built_in).reshape(4, length)
    assert np.abs(dct4(folded, 1).ravel() - coefficients).max() < 1e-12


def entropy(x):
    return -(x**2) * np.log(x**2) if x else 0.0


def test_the_best_basis_of_a_signal_restores_it(rng):
    time = np.arange(2048) / 2048
    signal = np.sin(2 * np.pi * 200 * time**2) + (np.arange(2048) == 700) + 0.01 * rng.normal(size=2048)
    for table, restore in (
        (undula.cpt(signal, 6), lambda y, basis: undula.icpt(y, 6, basis)),
        (undula.lct(signal, 6, np.sqrt), lambda y, basis: undula.ilct(y, 6, basis, np.sqrt)),
    ):
        basis = undula.best_basis(table, entropy)
        assert len(set(basis[:, 0])) > 1
        assert np.abs(restore(undula.extract_basis(table, basis), basis) - signal).max() < 1e-13


def test_bells_and_their_failures():
    x = np.arange(16.0)
    basis = undula.create_level(1, 1)

    def raising(_):
        raise KeyError("no bell")

    for call in (lambda bell: undula.lct(x, 1, bell), lambda bell: undula.ilct(x, 1, basis, bell)):
        with pytest.raises(KeyError, match="no bell"):
            call(raising)
        with pytest.raises(FloatingPointError, match="floating point error"):
            call(lambda _: 1.5)
        assert np.array_equal(call(lambda _: "text"), call(lambda _: 0.0))
        assert np.array_equal(call(lambda b: b + 1j), call(lambda b: b))


def test_nothing_is_left_behind(live_values, rng):
    signal, image = rng.normal(size=64), rng.normal(size=(16, 32))
    before = live_values()
    for data, dimensions in ((signal, 1), (image, 2)):
        basis = undula.create_level(2, dimensions)
        undula.icpt(undula.lct(data, 2, np.sqrt)[2], 2, basis)
        with pytest.raises(undula.Error):
            undula.cpt(data, 9)
        with pytest.raises(ZeroDivisionError):
            undula.ilct(data, 2, basis, lambda x: x / 0)
    del basis
    assert live_values() == before


MEMORY = """
import resource, sys
import numpy as np, undula
data = np.zeros((2048, 2048)) + 1
def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
undula.cpt(np.ones(64), 2)
before = peak()
table = undula.cpt(data, 5)
print(peak() - before, sum(level.nbytes for level in table))
"""


@pytest.mark.skipif(sys.platform != "linux", reason="ru_maxrss has other units elsewhere")
def test_memory_of_a_large_image():
    run = subprocess.run([sys.executable, "-c", MEMORY], capture_output=True, text=True, check=True)
    needed, table = map(int, run.stdout.split())
    assert table == 6 * 8 * 2048**2
    assert needed <= 1.1 * table + 256 * 2**20

"""Packet tables against another library, user functions, and what a large table needs."""

import subprocess
import sys

import numpy as np
import pytest
import pywt
import undula

LENGTHS = range(2, 19, 2)  # the filters whose digits agree with those of the other library to 1e-12


def details(position):
    """How many times a packet's frequencies were the upper half."""
    return bin(position ^ position >> 1).count("1")


# The other library has details of the opposite sign where half the length of the filter is even.
def sign(length, count):
    return -1 if length // 2 % 2 == 0 and count % 2 else 1


@pytest.mark.parametrize("length", LENGTHS)
def test_tables_of_signals_agree_with_another_library(length, rng):
    x = rng.uniform(-1, 1, 1536)
    table = undula.wpt(x, 6, undula.daublet(length))
    other = pywt.WaveletPacket(x, f"db{length // 2}", "periodization", 6)
    for level in range(1, 7):
        nodes = other.get_level(level, "freq")
        expected = [sign(length, details(k)) * node.data for k, node in enumerate(nodes)]
        assert np.abs(table[level] - np.concatenate(expected)).max() < 1e-12


@pytest.mark.parametrize("length", LENGTHS)
def test_tables_of_images_agree_with_another_library(length, rng):
    image = rng.uniform(-1, 1, (64, 96))
    table = undula.wpt(image, 3, undula.daublet(length))
    other = pywt.WaveletPacket2D(image, f"db{length // 2}", "periodization", 3)
    for level in range(1, 4):
        nodes = other.get_level(level, "freq")
        expected = [
            [sign(length, details(r) + details(c)) * node.data for c, node in enumerate(row)]
            for r, row in enumerate(nodes)
        ]
        assert np.abs(table[level] - np.block(expected)).max() < 1e-12


def entropy(x):
    return -(x**2) * np.log(x**2) if x else 0.0


@pytest.mark.parametrize(
    "split, merge, wavelet, shape",
    [
        (undula.wpt, undula.iwpt, undula.symmlet(8), 512),
        (undula.wpt, undula.iwpt, undula.coiflet(6), (64, 96)),
        (undula.wpts, undula.iwpts, undula.Bspline(2, 4), 500),
        (undula.wpts, undula.iwpts, undula.Bspline(3, 3), (61, 40)),
        (undula.wpti, undula.iwpti, undula.symmlet(4), 512),
        (undula.wpti, undula.iwpti, undula.daublet(6), (96, 96)),
    ],
)
def test_the_best_basis_restores_the_data(split, merge, wavelet, shape, rng):
    data = np.cumsum(rng.normal(size=shape), axis=0)
    table = split(data, 3, wavelet)
    basis = undula.best_basis(table, entropy)
    coefficients = split(data, basis, wavelet)
    assert np.array_equal(coefficients, undula.extract_basis(table, basis))
    assert np.abs(merge(coefficients, basis, wavelet) - data).max() < 1e-10 * np.abs(data).max()
    costs = undula.evalbs(coefficients, basis, lambda packet: sum(map(entropy, packet.ravel())))[:, -1]
    for level in table:
        other = sum(map(entropy, level.ravel()))
        assert costs.sum() <= other + 1e-12 * abs(other)


def test_functions_that_misbehave(live_values):
    table, x, basis = [np.ones(4), np.ones(4)], np.ones(4), [[1, 0], [1, 1]]
    before = live_values()
    calls = {
        "must return real scalar or real array": [
            lambda f: undula.evaltbl(table, f),
            lambda f: undula.evalbs(x, basis, f),
        ],
        "must return real array": [
            lambda f: undula.applytbl(table, f),
            lambda f: undula.applybs(x, basis, f),
        ],
    }

    def raising(_):
        raise KeyError("none")

    def interrupting(_):
        raise KeyboardInterrupt

    for message, functions in calls.items():
        for call in functions:
            with pytest.raises(KeyError, match="none"):
                call(raising)
            with pytest.raises(KeyboardInterrupt):
                call(interrupting)
            for strange in ("text", 1j, np.array([1j, 1])):
                with pytest.raises(undula.Error, match=message):
                    call(lambda _: strange)
    for call in calls["must return real array"]:
        with pytest.raises(undula.Error, match="array size mismatch"):
            call(lambda packet: packet[:, None].T if packet.size > 1 else packet)
        with pytest.raises(undula.Error, match="must return real array"):
            call(np.sum)
    for function in (raising, interrupting):
        with pytest.raises((KeyError, KeyboardInterrupt)):
            undula.best_basis(table, function)
    assert undula.best_basis(table, lambda _: "text").tolist() == basis
    assert live_values() == before


def test_tables_as_users_make_and_damage_them():
    level = np.arange(8.0)
    for table in ([level, level], (level, level), [level.tolist(), level], [level[::-1][::-1]] * 4):
        assert undula.applytbl(table, lambda packet: packet)[1].tolist() == level.tolist()
    for table in ([level, 5.0], [level, level[:7]], [level] * 5, [level] * 100, [[level, level]], [level, [level]], []):
        for call in (undula.best_basis, undula.evaltbl, undula.applytbl):
            with pytest.raises(undula.Error, match="invalid packet table"):
                call(table, np.abs)


MEMORY = """
import resource
import numpy as np, undula
data = np.random.default_rng(1).normal(size={shape})
w = undula.symmlet(8)
def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
undula.wpt(np.ones(64), 2, w)
before = peak()
table = undula.wpt(data, {levels}, w)
print(peak() - before, sum(level.nbytes for level in table))
"""


@pytest.mark.skipif(sys.platform != "linux", reason="ru_maxrss has other units elsewhere")
@pytest.mark.parametrize("shape, levels", [((2**20,), 8), ((1024, 1024), 4)])
def test_a_large_table_needs_little_more_than_itself(shape, levels):
    source = MEMORY.format(shape=shape, levels=levels)
    run = subprocess.run([sys.executable, "-c", source], capture_output=True, text=True, check=True)
    needed, table = map(int, run.stdout.split())
    assert table == (levels + 1) * 8 * 2**20
    assert needed <= 1.05 * table + 64 * 2**20

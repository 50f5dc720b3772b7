"""Packet tables against another library, and what large ones need."""

import pickle
import subprocess
import sys

import numpy as np
import pytest
import pywt
import undula


def details(position):
    """How many times a packet's frequencies were the upper half."""
    return bin(position ^ position >> 1).count("1")


# The other library has details of the opposite sign where half the length of the filter is even.
def sign(length, count):
    return -1 if length // 2 % 2 == 0 and count % 2 else 1


# The filters whose digits agree with those of the other library to 1e-12.
@pytest.mark.parametrize("length", range(2, 19, 2))
def test_tables_agree_with_another_library(length, rng):
    w, name = undula.daublet(length), f"db{length // 2}"
    x, image = rng.uniform(-1, 1, 1536), rng.uniform(-1, 1, (64, 96))
    table, other = undula.wpt(x, 6, w), pywt.WaveletPacket(x, name, "periodization", 6)
    for level in range(1, 7):
        nodes = other.get_level(level, "freq")
        expected = [sign(length, details(k)) * node.data for k, node in enumerate(nodes)]
        assert np.abs(table[level] - np.concatenate(expected)).max() < 1e-12
    table, other = undula.wpt(image, 3, w), pywt.WaveletPacket2D(image, name, "periodization", 3)
    for level in range(1, 4):
        expected = [
            [sign(length, details(r) + details(c)) * node.data for c, node in enumerate(row)]
            for r, row in enumerate(other.get_level(level, "freq"))
        ]
        assert np.abs(table[level] - np.block(expected)).max() < 1e-12


MEMORY = """
import resource
import numpy as np, undula
data = np.random.default_rng(1).normal(size={shape})
def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024
undula.{function}(np.ones(64), 2{wavelet})
before = peak()
table = undula.{function}(data, {levels}{wavelet})
print(peak() - before, sum(level.nbytes for level in table))
"""


@pytest.mark.parametrize(
    "function, shape, levels, spare",
    [("wpt", (2**20,), 8, 0.05), ("wpt", (1024, 1024), 4, 0.05), ("cpt", (2048, 2048), 5, 0.1)],
)
def test_a_large_table_needs_little_more_than_itself(function, shape, levels, spare):
    wavelet = ", undula.symmlet(8)" if function == "wpt" else ""
    source = MEMORY.format(function=function, shape=shape, levels=levels, wavelet=wavelet)
    run = subprocess.run([sys.executable, "-c", source], capture_output=True, text=True, check=True)
    needed, table = map(int, run.stdout.split())
    assert table == (levels + 1) * 8 * np.prod(shape)
    fixed = 256 * 2**20 if function == "cpt" else 64 * 2**20
    assert needed <= (1 + spare) * table + fixed


@pytest.mark.parametrize("name", ["evaltbl", "applytbl", "best_basis", "evalbs", "applybs"])
def test_functions_that_write_into_the_arguments_change_nothing(name, rng):
    x, w = rng.uniform(-1, 1, 64), undula.daublet(4)
    basis = undula.create_level(2, 1)
    arguments = [undula.wpt(x, 3, w)] if name in ("evaltbl", "applytbl", "best_basis") else [undula.wpt(x, basis, w), basis]

    def called_with(function):
        own = [[a.copy() for a in v] if isinstance(v, list) else v.copy() for v in arguments]
        return getattr(undula, name)(*own, lambda packet: function(packet, own))

    def value(packet):
        return np.array(packet) if name.startswith("apply") else float(np.sum(np.abs(packet)))

    def spoil(packet, own):
        result = value(packet)
        for array in own[0] if isinstance(own[0], list) else [own[0]]:
            array[:] = 1e9
        return result

    expected, found = called_with(lambda packet, own: value(packet)), called_with(spoil)
    for one, other in zip(expected, found, strict=True):
        np.testing.assert_array_equal(one, other)


# Each cost with its formula in NumPy, for numbers that are not 0.
COSTS = [
    (undula.costs.shannon, lambda x: -(x**2) * np.log(x**2)),
    (undula.costs.l1, np.abs),
    (undula.costs.log_energy, lambda x: np.log(x**2)),
    (undula.costs.count_above(0.7), lambda x: 1.0 * (np.abs(x) > 0.7)),
    (undula.costs.clipped_energy(0.7), lambda x: np.minimum(x**2, 0.49)),
]


@pytest.mark.parametrize("cost, formula", COSTS, ids=repr)
def test_costs_are_their_formulas_and_find_the_same_basis(cost, formula, rng):
    x = rng.normal(size=(64, 16))
    np.testing.assert_allclose(cost(x), formula(x), rtol=1e-12, atol=1e-14)
    assert type(cost(-0.5)) is float and cost(-0.5) == pytest.approx(formula(-0.5))
    assert np.isnan(cost(np.nan)) and cost(0) <= cost(1e-300) <= cost(1e-200) <= cost(0.1) < np.inf
    for data in (x.ravel(), x):
        table = undula.wpt(data, 4, undula.symmlet(8))
        expected = undula.best_basis(table, lambda c: float(formula(c)))
        np.testing.assert_array_equal(undula.best_basis(table, cost), expected)


def test_a_cost_takes_real_numbers_and_has_a_name():
    above = undula.costs.count_above(0.5)
    assert repr(above) == "undula.costs.count_above(0.5)"
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
        assert repr(pickle.loads(pickle.dumps(above, protocol))) == repr(above)
    table = undula.wpt(np.arange(16.0) ** 2, 3, "haar")
    assert np.array_equal(undula.best_basis(table, "l1"), undula.best_basis(table, abs))
    for wrong in (1j, "a", None, [[1], [1, 2]]):
        with pytest.raises(TypeError, match="shannon takes real numbers"):
            undula.costs.shannon(wrong)
    with pytest.raises(ValueError, match="no cost is called l7"):
        undula._host.cost("l7")

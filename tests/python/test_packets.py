"""Packet tables against another library, and what large ones need."""

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


@pytest.mark.skipif(sys.platform != "linux", reason="ru_maxrss has other units elsewhere")
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

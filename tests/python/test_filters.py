"""The built-in filters against another library and against their definition."""

import numpy as np
import pytest
import pywt
import undula
from scipy.special import zeta

# How far the published digits are at most from the other library's, and from orthonormality.
TABULATED = [
    ("daublet", "db", range(2, 9, 2), 3e-16, 8e-16),
    ("daublet", "db", [10, 12], 7e-16, 2e-15),
    ("daublet", "db", [14, 16, 18], 5e-14, 1.2e-13),
    ("daublet", "db", [20], 1.8e-13, 6e-13),
    ("symmlet", "sym", [8, 10, 12, 14], 1.5e-12, 6e-13),
    ("symmlet", "sym", [16], 1.2e-12, 3e-13),
    ("symmlet", "sym", [18], 1.2e-12, 2.6e-12),
    ("symmlet", "sym", [20], 2e-10, 4.4e-10),
    ("coiflet", "coif", [6], 7e-13, 1e-12),
    ("coiflet", "coif", [12], 5e-12, 3e-12),
    ("coiflet", "coif", [18], 1.8e-12, 6e-13),
    ("coiflet", "coif", [24], 2.5e-8, 2.2e-11),
    ("coiflet", "coif", [30], 1.2e-5, 4.5e-9),
]


@pytest.mark.parametrize("family, other, lengths, difference, defect", TABULATED)
def test_tabulated_filters(family, other, lengths, difference, defect):
    for length in lengths:
        taps = getattr(undula, family)(length)
        order = length // (6 if other == "coif" else 2)
        assert np.abs(taps - pywt.Wavelet(f"{other}{order}").rec_lo).max() <= difference
        products = np.correlate(taps, taps, "full")[length - 1 :: 2]
        assert np.abs(products - np.eye(1, length // 2)).max() <= defect


def test_the_shortest_filters():
    assert undula.daublet(2).tolist() == [1 / 2**0.5] * 2
    for length in (4, 6):
        assert np.array_equal(undula.symmlet(length), undula.daublet(length))


PAIRS = [(1, 1), (1, 3), (1, 5), (2, 2), (2, 4), (2, 6), (2, 8), (3, 1), (3, 3), (3, 5), (3, 7), (3, 9)]


@pytest.mark.parametrize("m, n", PAIRS)
def test_spline_pairs(m, n):
    """The shorter filter stands at the top; in the other library it is in the middle."""
    other = pywt.Wavelet(f"bior{m}.{n}")
    expected = [np.trim_zeros(filter) for filter in (other.dec_lo, other.rec_lo)]
    pair = undula.Bspline(m, n)
    assert pair.shape == (2 * n + m - 1, 2)
    for taps, exact in zip(pair.T, expected):
        assert np.abs(taps - np.pad(exact, (0, len(taps) - len(exact)))).max() < 3e-16


@pytest.mark.parametrize("degree", range(7))
def test_orthonormal_splines_are_the_infinite_filter_cut_off(degree):
    """The spline's transform is sin(w/2)^p / (w/2)^p, and S(w) is what its shifts have together."""
    order = degree + 1
    length = 40 - degree % 2

    def S(w):
        """The sum of (w + 2 pi k)^(-2 order) over all k, up to a factor."""
        turn = w / (2 * np.pi) % 1
        return zeta(2 * order, turn) + zeta(2 * order, 1 - turn)

    w = (np.arange(400) + 0.5) * np.pi / 400
    response = np.sqrt(2 * S(w) / S(2 * w)) / 2**order
    places = np.arange(length) - (length - 1) / 2
    taps = undula.bl(degree)
    assert np.abs(taps - np.mean(response[:, None] * np.cos(np.outer(w, places)), axis=0)).max() < 4e-15

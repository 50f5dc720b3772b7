"""The transforms through Python, on real numbers and against another library."""

import numpy as np
import pytest
import pywt
import undula

FAMILIES = {"daublet": undula.daublet, "symmlet": undula.symmlet, "coiflet": undula.coiflet}

# The largest error of five levels there and back, 1024 samples in [-1, 1]. It is a property of the
# published digits, which are not exactly orthonormal, and was worked out from them.
ROUND_TRIP = {
    ("daublet", 2): 2.6e-15,
    ("daublet", 4): 2.6e-15,
    ("daublet", 6): 2.6e-15,
    ("daublet", 8): 2.6e-15,
    ("daublet", 10): 7.9e-15,
    ("daublet", 12): 7.9e-15,
    ("daublet", 14): 3.7e-13,
    ("daublet", 16): 3.7e-13,
    ("daublet", 18): 3.7e-13,
    ("daublet", 20): 1.9e-12,
    ("symmlet", 4): 2.6e-15,
    ("symmlet", 6): 2.6e-15,
    ("symmlet", 8): 2.7e-12,
    ("symmlet", 10): 2.6e-12,
    ("symmlet", 12): 2.7e-12,
    ("symmlet", 14): 2.6e-12,
    ("symmlet", 16): 1.4e-12,
    ("symmlet", 18): 9.4e-12,
    ("symmlet", 20): 1.5e-9,
    ("coiflet", 6): 3.7e-12,
    ("coiflet", 12): 1.5e-11,
    ("coiflet", 18): 1.5e-11,
    ("coiflet", 24): 1.2e-10,
    ("coiflet", 30): 2.7e-8,
}


@pytest.mark.parametrize("family, length", ROUND_TRIP)
def test_round_trip(family, length, rng):
    """To the figure of the filter; half as much again for other signals than those of the figure,
    and twice the figure for images, which are transformed in two directions."""
    w = FAMILIES[family](length)
    figure = ROUND_TRIP[family, length]
    x = rng.uniform(-1, 1, 1024)
    assert np.abs(undula.idwt(undula.dwt(x, 5, w), 5, w) - x).max() <= 1.5 * figure
    image = rng.uniform(-1, 1, (96, 64))
    assert np.abs(undula.idwt(undula.dwt(image, 5, w), 5, w) - image).max() <= 2 * figure


def test_round_trip_of_a_biorthogonal_pair(rng):
    """The splines of 5 and 3 coefficients, exact in binary, centred on position 0."""
    pair = np.array([[-1, 2, 6, 2, -1], [2, 4, 2, 0, 0]]).T / 8
    pair[:, 1] *= 2
    x = rng.uniform(-1, 1, 96)
    for flips in ([[0, 0]], [[1, 1]]):
        coefficients = undula.dwt(x, 5, pair, [[-2, -1]], flips)
        assert np.abs(undula.idwt(coefficients, 5, pair, [[-2, -1]], flips) - x).max() < 1e-14


# PyWavelets' periodization mode starts both filters at 1 - L/2 and has (-1)^i h[L-1-i] for details.
# Here a family has starts of its own, and the details are negated where L/2 is even.
def reference_dwt(x, level, wavelet, low_start, high_start):
    start = 1 - wavelet.dec_len // 2
    details = []
    for _ in range(level):
        _, high = pywt.dwt(np.roll(x, start - high_start), wavelet, "periodization")
        x, _ = pywt.dwt(np.roll(x, start - low_start), wavelet, "periodization")
        details.insert(0, detail_sign(wavelet.dec_len) * high)
    return np.concatenate([x, *details])


def detail_sign(length):
    return 1 if length // 2 % 2 else -1


def wavelet_of(w):
    """The same coefficients as a wavelet of PyWavelets."""
    high = w[::-1] * (-1.0) ** np.arange(len(w))
    return pywt.Wavelet("own", filter_bank=[w[::-1], high[::-1], w, high])


def starts(family, length):
    if family == "coiflet":
        return -length // 3, 2 - 2 * length // 3
    return 1 - length // 2, 1 - length // 2


@pytest.mark.parametrize("family, length", ROUND_TRIP)
def test_dwt_agrees_with_another_library(family, length, rng):
    w = FAMILIES[family](length)
    x = rng.uniform(-1, 1, 1024)
    expected = reference_dwt(x, 5, wavelet_of(w), *starts(family, length))
    assert np.abs(undula.dwt(x, 5, w) - expected).max() < 1e-12


@pytest.mark.parametrize("length", range(2, 19, 2))
def test_dwt_agrees_with_the_filters_of_another_library(length, rng):
    """Only these: the digits of its least-asymmetric filters, and here those of daublet 20 and of
    the coiflets, end too early for 1e-12."""
    w = undula.daublet(length)
    name = f"db{length // 2}"
    x = rng.uniform(-1, 1, 1024)
    sign = detail_sign(length)
    smooth, *details = pywt.wavedec(x, name, "periodization", 5)
    expected = np.concatenate([smooth, *(sign * detail for detail in details)])
    assert np.abs(undula.dwt(x, 5, w) - expected).max() < 1e-12

    image = rng.uniform(-1, 1, (64, 96))
    smooth, (low_high, high_low, high_high) = pywt.dwt2(image, name, "periodization")
    expected = np.block([[smooth, sign * high_low], [sign * low_high, high_high]])
    assert np.abs(undula.dwt(image, 1, w) - expected).max() < 1e-12


@pytest.mark.parametrize("offset", [-40, -3, 0, 1, 70])
@pytest.mark.parametrize("flip", [0, 1])
def test_offsets_and_flips_shift_and_negate(offset, flip, rng):
    w = undula.symmlet(10)
    x = rng.uniform(-1, 1, 64)
    expected = reference_dwt(x, 3, wavelet_of(w), offset, 2 - offset - len(w))
    expected[8:] *= -1 if flip else 1
    assert np.abs(undula.dwt(x, 3, w, offset, flip) - expected).max() < 1e-12

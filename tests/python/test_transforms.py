"""The transforms through Python, against another library."""

import numpy as np
import pytest
import pywt
import undula

FAMILIES = {"daublet": range(2, 21, 2), "symmlet": range(4, 21, 2), "coiflet": range(6, 31, 6)}
FILTERS = [(family, length) for family, lengths in FAMILIES.items() for length in lengths]


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


@pytest.mark.parametrize("family, length", FILTERS)
def test_dwt_agrees_with_another_library(family, length, rng):
    w = getattr(undula, family)(length)
    high = w[::-1] * (-1.0) ** np.arange(length)
    same_coefficients = pywt.Wavelet("own", filter_bank=[w[::-1], high[::-1], w, high])
    coiflet = family == "coiflet"
    starts = (-length // 3, 2 - 2 * length // 3) if coiflet else (1 - length // 2, 1 - length // 2)
    x = rng.uniform(-1, 1, 1024)
    expected = reference_dwt(x, 5, same_coefficients, *starts)
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

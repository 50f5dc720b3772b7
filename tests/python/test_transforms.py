"""The transforms through Python, against another library."""

import numpy as np
import pytest
import pywt
import undula

@pytest.mark.parametrize("length", range(2, 19, 2))
def test_dwt_agrees_with_the_filters_of_another_library(length, rng):
    """Only these: the digits of its least-asymmetric filters, and here those of daublet 20 and of
    the coiflets, end too early for 1e-12. Its details have the opposite sign where half the length is
    even."""
    w = undula.daublet(length)
    name = f"db{length // 2}"
    x = rng.uniform(-1, 1, 1024)
    sign = 1 if length // 2 % 2 else -1
    smooth, *details = pywt.wavedec(x, name, "periodization", 5)
    expected = np.concatenate([smooth, *(sign * detail for detail in details)])
    assert np.abs(undula.dwt(x, 5, w) - expected).max() < 1e-12

    image = rng.uniform(-1, 1, (64, 96))
    smooth, (low_high, high_low, high_high) = pywt.dwt2(image, name, "periodization")
    expected = np.block([[smooth, sign * high_low], [sign * low_high, high_high]])
    assert np.abs(undula.dwt(image, 1, w) - expected).max() < 1e-12

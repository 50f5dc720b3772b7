"""Thresholds for noisy coefficients, and the estimates that they are made from.

`undula.denoise` puts these together:

>>> from undula import thresholding
>>> details = np.array([0.1, -0.2, 3.0, 0.1, -0.1, 0.2, -2.5, 0.1])
>>> sigma = thresholding.noise(details)
>>> thresholding.soft(details, thresholding.universal(details.size, sigma)).round(2)
array([ 0.  ,  0.  ,  2.55,  0.  ,  0.  ,  0.  , -2.05,  0.  ])
"""

from __future__ import annotations

import math

import numpy as np
from numpy.typing import ArrayLike, NDArray

from undula._numbers import doubles, not_negative, whole

# Half of all normally distributed numbers are within this many standard deviations.
_MEDIAN_OF_NORMAL = 0.6744897501960817


def soft(x: ArrayLike, threshold: ArrayLike) -> NDArray[np.float64]:
    """Every number closer to zero by the threshold, at most zero itself.

    Parameters
    ----------
    x, threshold : array or float
        Real numbers; thresholds from 0 on.

    Returns
    -------
    array
        The numbers in the shape of `x`.

    Examples
    --------
    >>> undula.thresholding.soft([-3, 0.5, 2], 1)
    array([-2.,  0.,  1.])
    """
    x, threshold = _numbers(x, threshold)
    return x - np.clip(x, -threshold, threshold)


def hard(x: ArrayLike, threshold: ArrayLike) -> NDArray[np.float64]:
    """Numbers below the threshold in magnitude set to zero, the others left.

    Parameters
    ----------
    x, threshold : array or float
        Real numbers; thresholds from 0 on.

    Returns
    -------
    array
        The numbers in the shape of `x`.

    Examples
    --------
    >>> undula.thresholding.hard([-3, 0.5, 2], 1)
    array([-3.,  0.,  2.])
    """
    x, threshold = _numbers(x, threshold)
    return np.where(np.abs(x) < threshold, 0.0, x)


def noise(details: ArrayLike) -> float:
    """The standard deviation of noise, from details in which it prevails, such as the finest.

    It is the median of the magnitudes over that of normal noise with the deviation 1. The few large
    coefficients of the signal hardly change it. Details that are none or not finite are a `ValueError`.

    Examples
    --------
    >>> round(undula.thresholding.noise([1, -2, 1.5, -1.2, 40]), 4)
    2.2239
    """
    return float(np.median(_magnitudes("noise", details)) / _MEDIAN_OF_NORMAL)


def universal(count: int, sigma: float = 1.0) -> float:
    """sigma sqrt(2 ln count), which noise alone hardly ever exceeds among `count` numbers.

    The results are smooth; their squared error is larger than with `sure`. A count below 1, and a sigma that
    is negative, infinite or NaN, are a `ValueError`.

    References
    ----------
    D. L. Donoho, I. M. Johnstone, Ideal spatial adaptation by wavelet shrinkage, Biometrika 81 (1994)
    425-455.

    Examples
    --------
    >>> round(undula.thresholding.universal(1000, sigma=2), 4)
    7.4338
    """
    count = whole("universal", "count", count)
    if count < 1:
        raise ValueError(f"universal: count must be 1 or more, not {count}")
    return not_negative("universal", "sigma", sigma) * math.sqrt(2 * math.log(count))


def sure(details: ArrayLike, sigma: float = 1.0) -> float:
    """The soft threshold of least estimated squared error, for details with noise of deviation sigma.

    The estimate is Stein's unbiased one: the error expected of soft thresholding at t is that of
    n sigma^2 - 2 sigma^2 #{abs(x) <= t} + sum min(abs(x), t)^2. It is least at 0 or at one of the magnitudes;
    among those that do not exceed the universal threshold the best is chosen. Details that are none or not
    finite, and a sigma that is negative, infinite or NaN, are a `ValueError`.

    References
    ----------
    D. L. Donoho, I. M. Johnstone, Adapting to unknown smoothness via wavelet shrinkage, J. Amer. Statist.
    Assoc. 90 (1995) 1200-1224.

    Examples
    --------
    >>> undula.thresholding.sure([0.1, -0.2, 3.0, 0.1, -0.1, 0.2, -2.5, 0.1], sigma=0.2)
    0.2
    """
    magnitudes = np.sort(_magnitudes("sure", details), axis=None)
    sigma = not_negative("sure", "sigma", sigma)
    count = magnitudes.size
    candidates = np.concatenate([[0.0], magnitudes[magnitudes <= universal(count, sigma)]])
    below = np.searchsorted(magnitudes, candidates, side="right")
    energies = np.concatenate([[0.0], np.cumsum(magnitudes**2)])
    risks = energies[below] + (count - below) * candidates**2 - 2 * sigma**2 * below
    return float(candidates[np.argmin(risks)])


def bayes(details: ArrayLike, sigma: float = 1.0) -> float:
    """sigma^2 over the deviation of the details without their noise, for soft thresholding of images.

    Where the details are no stronger than the noise, it is the largest magnitude, which leaves nothing.
    Details that are none or not finite, and a sigma that is negative, infinite or NaN, are a `ValueError`.

    References
    ----------
    S. G. Chang, B. Yu, M. Vetterli, Adaptive wavelet thresholding for image denoising and compression,
    IEEE Trans. Image Processing 9 (2000) 1532-1546.

    Examples
    --------
    >>> round(undula.thresholding.bayes([3, -4, 5, 0, 0, 1, -1, 2], sigma=1), 4)
    0.4082
    """
    magnitudes = _magnitudes("bayes", details)
    sigma = not_negative("bayes", "sigma", sigma)
    clean = np.mean(magnitudes**2) - sigma**2
    return float(sigma**2 / np.sqrt(clean) if clean > 0 else np.max(magnitudes))


def _magnitudes(function, details):
    magnitudes = np.abs(doubles(function, details))
    if magnitudes.size == 0:
        raise ValueError(f"{function}: there are no details")
    if not np.isfinite(magnitudes).all():
        raise ValueError(f"{function}: the details must be finite")
    return magnitudes


def _numbers(x, threshold):
    x, threshold = (doubles("thresholding", each) for each in (x, threshold))
    if not np.all(threshold >= 0):
        raise ValueError("thresholding: a threshold cannot be negative or NaN")
    return x, threshold

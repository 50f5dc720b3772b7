"""Denoising in one call."""

from __future__ import annotations

import math
from collections.abc import Callable, Sequence
from typing import NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

import undula
from undula import thresholding
from undula._taps import filter_of, high_pass, low_passes, spread
from undula._levels import check_level
from undula._numbers import axes_of, doubles, not_negative

_THRESHOLDS = {
    "sure": lambda details, sigma, count: thresholding.sure(details, sigma),
    "bayes": lambda details, sigma, count: thresholding.bayes(details, sigma),
    "universal": lambda details, sigma, count: thresholding.universal(count, sigma),
}
_SHRINKS = {"soft": thresholding.soft, "hard": thresholding.hard}


def denoise(
    data: ArrayLike,
    wavelet: ArrayLike,
    level: int | None = None,
    *,
    threshold: str | float = "sure",
    shrink: str = "soft",
    sigma: float | None = None,
    extension: str = "symmetric",
    axis: int | Sequence[int] | None = None,
    offsets: ArrayLike | None = None,
    flips: ArrayLike | None = None,
) -> NDArray[np.float64]:
    """A signal or an image without its white noise.

    The data is transformed, its details are brought closer to zero by a threshold, and the transform is
    inverted. Any length will do, and the ends are not taken for neighbours. With a symmetric filter, of
    `Bspline`, `bl` or `daublet(2)`, the transform is `dwts`. With another one it is `dwt` of data that is
    continued beyond its ends by its mirror image, as far as the filters reach, or at least by its own
    length.

    The noise is measured in the finest details. Biorthogonal filters do not let it pass with the same
    strength everywhere; thresholds are scaled accordingly.

    Parameters
    ----------
    data : array
        A signal (one dimension, or one column) or an image (two); real and finite.
    wavelet : array or string
        The filter, or the name of the wavelet.
    level : int, optional
        Number of levels. By default as many as leave 8 smooth coefficients along the shortest side, but
        one at least. Too few cost more than too many.
    threshold : str or float
        "sure", "bayes" or "universal", for which see `undula.thresholding`, or a number.
    shrink : str
        "soft" or "hard".
    sigma : float, optional
        The standard deviation of the noise, where it is known.
    extension : str
        How the data goes on beyond its ends, a mode of `undula.pad`. Unless it is "symmetric", the
        transform is `dwt` with every filter.
    axis : int or pair of int, optional
        The axis along which there are signals, where the data is an array of those and not an image, or the
        two axes of images.
    offsets, flips : array, optional
        How a filter of your own lies on the samples, as for `dwt`.

    Returns
    -------
    array
        The denoised data, in the shape of `data`.

    Raises
    ------
    undula.Error
        There is no such wavelet.
    TypeError
        An argument is of another type; the data is not real numbers.
    ValueError
        The data is not finite, of another dimension, or an image of one row; there are too few samples for
        the level; a pair of filters does not reconstruct; a threshold or sigma is negative or NaN; no
        threshold or shrinkage has that name.

    Examples
    --------
    >>> clean = np.sin(np.linspace(0, 9, 500))
    >>> noisy = clean + np.random.default_rng(1).normal(0, 0.2, 500)
    >>> denoised = undula.denoise(noisy, "symmlet8")
    >>> print(np.std(noisy - clean).round(3), np.std(denoised - clean).round(3))
    0.197 0.037
    """
    data = doubles("denoise", data)
    if not np.all(np.isfinite(data)):
        raise ValueError("denoise: data must be finite")
    filters = (wavelet,) if offsets is None and flips is None else (wavelet, offsets, flips)
    _check_filters(filters)
    is_mirrored = extension == "symmetric" and len(filters) == 1 and _takes_mirrored_ends(wavelet)
    transform = _Transform(level, filters, is_mirrored, extension)
    shrinking = _checked_shrinking(threshold, shrink, sigma)
    if axis is None:
        return _denoised(data, transform, shrinking)
    axes = axes_of("denoise", axis, data.ndim)
    if len(axes) not in (1, 2):
        raise ValueError(f"denoise: axis is that of the signals, or the two of the images, not {axes}")
    cores = np.moveaxis(data, axes, tuple(range(-len(axes), 0)))
    for index in np.ndindex(cores.shape[: -len(axes)]):
        cores[index] = _denoised(cores[index], transform, shrinking)
    return data


class _Transform(NamedTuple):
    """How each signal or image is transformed."""

    level: int | None
    filters: tuple
    is_mirrored: bool  # by `dwts`
    extension: str


class _Shrinking(NamedTuple):
    """How details are shrunk."""

    threshold: str | float
    shrink: Callable
    sigma: float | None

    def scaled(self, exponent):
        """The same for data that is multiplied by a power of two."""
        threshold = self.threshold if isinstance(self.threshold, str) else _scaled(self.threshold, exponent)
        return self._replace(
            threshold=threshold, sigma=None if self.sigma is None else _scaled(self.sigma, exponent)
        )


def _checked_shrinking(threshold, shrink, sigma):
    if not isinstance(threshold, str):
        threshold = not_negative("denoise", "threshold", threshold)
    elif threshold not in _THRESHOLDS:
        raise ValueError(f'denoise: threshold "{threshold}" is not one of {", ".join(_THRESHOLDS)}')
    if shrink not in _SHRINKS:
        raise ValueError(f'denoise: shrink "{shrink}" is not one of {", ".join(_SHRINKS)}')
    sigma = None if sigma is None else not_negative("denoise", "sigma", sigma)
    return _Shrinking(threshold, _SHRINKS[shrink], sigma)


def _denoised(data, transform, shrinking):
    """One signal or image."""
    if data.shape[1:] == (1,):
        return _denoised(data[:, 0], transform, shrinking)[:, None]
    if data.ndim not in (1, 2):
        raise ValueError(f"denoise: data of {data.ndim} dimensions; of several signals or images give the axis")
    if data.ndim == 2 and data.shape[0] == 1:
        raise ValueError("denoise: an image of one row; data.ravel() is a signal, and several have an axis")
    level, filters, is_mirrored, extension = transform
    level = check_level("denoise", data.shape, _default_level(data.shape) if level is None else level)
    if level == 0 or not data.any():
        return data
    # By a power of two, so that squares neither overflow nor vanish and no digit changes.
    exponent = int(np.frexp(np.max(np.abs(data)))[1])
    data, shrinking = np.ldexp(data, -exponent), shrinking.scaled(-exponent)
    if is_mirrored:
        coefficients = undula.dwts(data, level, *filters)
        _shrink_details(coefficients, level, filters[0], shrinking, data.size)
        denoised = undula.idwts(coefficients, level, *filters)
    else:
        padded = undula.pad(data, level, extension, _margins(data.shape, level, filters))
        coefficients = undula.dwt(padded.data, level, *filters)
        _shrink_details(coefficients, level, filters[0], shrinking, data.size)
        denoised = padded.trim(undula.idwt(coefficients, level, *filters))
    return np.ldexp(denoised, exponent)


def _check_filters(filters):
    """Of what does not reconstruct, a warning would do elsewhere; here the data would be lost."""
    ramp = np.arange(256.0)
    back = undula.idwt(undula.dwt(ramp, 1, *filters), 1, *filters)
    if np.ndim(filters[0]) == 2 and not np.allclose(back, ramp, rtol=0, atol=0.1):
        raise ValueError("denoise: the filter pair does not reconstruct; has it offsets and flips, as for dwt?")


def _scaled(value, exponent):
    """value 2^exponent, but less than 2^400, from where on nothing is left of the details of data below 1."""
    mantissa, own = math.frexp(value)
    return math.ldexp(mantissa, min(own + exponent, 400))


def _default_level(sides):
    shortest = min(sides)
    return max((shortest // 8).bit_length() - 1, 1 if shortest > 1 else 0)


def _takes_mirrored_ends(wavelet):
    try:
        undula.dwts([0, 0], 1, wavelet)
    except undula.Error:
        return False
    return True


def _margins(sides, level, filters):
    """How far the filters of all levels reach. More than half the data is of no use: with that much at both
    ends the padded data is a whole period of the mirrored, and goes on as such."""
    farthest = max((abs(int(each)) for each in np.ravel(filters[1])), default=0) if len(filters) > 1 else 0
    reach = (len(filter_of(filters[0])) + farthest - 1) << level
    return [min(reach, (side + 1) // 2) for side in sides]


def _shrink_details(coefficients, level, wavelet, shrinking, count):
    """Shrinks the details in place."""
    threshold, shrink, sigma = shrinking
    details = undula.levels(coefficients, level).details
    gains = _noise_gains(wavelet, level)
    if sigma is None:
        low, high = gains[0]
        finest = details[-1] / high if coefficients.ndim == 1 else details[-1].D / high**2
        sigma = thresholding.noise(finest)
    for blocks, (low, high) in zip(details, reversed(gains)):
        if coefficients.ndim == 1:
            pairs = [(blocks, high)]
        else:
            pairs = [(blocks.H, low * high), (blocks.V, low * high), (blocks.D, high**2)]
        for block, gain in pairs:
            block /= gain
            limit = _THRESHOLDS[threshold](block, sigma, count) if isinstance(threshold, str) else threshold
            block[...] = gain * shrink(block, limit)


def _noise_gains(wavelet, level):
    """For each level from 1 on, by how much the smooth part and the details amplify white noise."""
    low, dual = low_passes(wavelet)
    parts, gains = (low, high_pass(dual)), []
    for _ in range(level):
        gains.append(tuple(np.linalg.norm(part) for part in parts))
        parts = tuple(np.convolve(spread(part), low) for part in parts)
    return gains

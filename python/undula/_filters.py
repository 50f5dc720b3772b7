"""Filters as arguments: by name, and those of users, which may fit no inverse."""

import weakref

import numpy as np

from undula import _host
from undula._wavelets import function_of
from undula._warnings import warn

TOLERANCE = 1e-3


class Filters:
    """The filters that have been asked for by name, and those that have been looked at."""

    def __init__(self, rows):
        self.named = {}
        self.seen = {}  # arrays by id, as long as there are any
        self._contents = set()
        self._rows = rows

    def load(self, name):
        """The filter of that name, or the message why there is none."""
        found = function_of(name)
        if found is None:
            return "invalid filter wavelet string"
        function, numbers = found
        made = self._rows[function].call(numbers, ())
        if isinstance(made, _host.ErrorValue):
            return made.message
        self.seen[id(made)] = self.named[name] = made
        return made

    def look_at(self, filter, options):
        """Warns of a filter that is not the pack's and that `idwt` does not invert: once, as an error each time."""
        if not self._is_known(filter, options):
            error = self._error_of_inverse(filter, options)
            if error > TOLERANCE and not self._is_cut_off_spline(filter):
                warn(_text(np.asarray(filter, float), error))
            self._contents.update(_contents(filter, options))
        if isinstance(filter, np.ndarray) and not options:
            key = id(filter)
            self.seen[key] = weakref.ref(filter, lambda _: self.seen.pop(key, None))

    def _is_known(self, filter, options):
        return any(content in self._contents for content in _contents(filter, options))

    def _error_of_inverse(self, filter, options):
        data = np.sin(np.arange(256.0) ** 2)
        arguments = (1, filter, *options)
        there = self._rows["dwt"].call((data, *arguments), ())
        back = self._rows["idwt"].call((there, *arguments), ())
        return np.abs(back - data).max()

    def _is_cut_off_spline(self, filter):
        return any(np.array_equal(filter, self._rows["bl"].call((degree,), ())) for degree in range(7))


def _contents(filter, options):
    """What tells filters apart: of a list at first something quick, and of everything its numbers."""
    if type(filter) is list and not options and set(map(type, filter)) == {float}:
        yield tuple(filter)
    arrays = [np.real(np.asarray(part)).astype(float) for part in (filter, *options)]
    yield tuple((array.shape, array.tobytes()) for array in arrays)


def _text(filter, error):
    text = f"this filter is not orthonormal: there and back data change by {error:.1g}"
    if filter.ndim == 2 and filter.shape[1] == 2:
        return text.replace("is not orthonormal", "pair does not reconstruct")
    if abs(filter.sum() - 1) < TOLERANCE:
        return f"{text}; its sum is 1, so multiply it by sqrt(2)"
    return f"{text}; the sum of an orthonormal filter is sqrt(2), the sum of its squares 1"

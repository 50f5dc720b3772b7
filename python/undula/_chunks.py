"""Which stretches of a side a chunk of a transform needs, so that its numbers are those of the whole.

A chunk is transformed together with a halo of what lies beside it, several levels at once. At the ends of
the side that block ends as the side does; elsewhere its ends are false, and what they spoil is cut off. The
borders of chunks are multiples of 2^levels.
"""

from __future__ import annotations

from typing import NamedTuple

import numpy as np

import undula
from undula._descriptions import FORWARD

# A chunk carries as many levels as leave each halo below this part of it, but no more than so many: then
# the parts of the coarsest level are not too small to be stored, and their smooth part is work for few.
HALO_SHARE = 1 / 32
MOST_LEVELS = 8

_LONGEST_FILTER = 100
_FARTHEST_PROBE = 1 << 20


class Filters(NamedTuple):
    """What halos depend on: how the filters lie on the samples, and what stands at the ends.

    Coefficient k of a level belongs to the samples 2k + first to 2k + last.
    """

    first: int
    last: int
    inverse: bool
    wraps: bool  # the ends of the whole are neighbours
    edges: bool  # there are boundary filters


class Step(NamedTuple):
    """Some levels of a transform by chunks, or all that are left in one call, where `chunks` are the sides."""

    sides: tuple[int, ...]
    chunks: tuple[int, ...]
    levels: int
    halo: int
    least: int  # the shortest block

    def is_last(self):
        return self.chunks == self.sides


class Window(NamedTuple):
    """A chunk of a side: the stretches of the whole that make up its block, and what of it is kept."""

    stretches: tuple[tuple[int, int], ...]
    keep: tuple[int, int]


def filters_of(name, wavelet):
    """The filters of a transform by its name, of which the pack is asked: a NaN shows where they reach."""
    inverse = name not in FORWARD
    treatment = {"wraps": name[-1] == "t", "edges": name[-1] == "i"}
    offsets = wavelet[1] if len(wavelet) > 1 and wavelet[1] is not None else 0
    far = _LONGEST_FILTER + int(np.max(np.abs(offsets)))
    if far > _FARTHEST_PROBE:
        return Filters(-2 * far, 2 * far, inverse, **treatment)
    half = 4 * far
    probe = np.zeros((2, 2 * half))
    if inverse:
        probe[[0, 1], [half // 2, half + half // 2]] = np.nan  # coefficient half / 2 of either channel
        found = np.flatnonzero(np.isnan(undula.idwt(probe, 1, *wavelet, axis=1)).any(0)) - half
    else:
        samples = np.array([half, half + 1])
        probe[[0, 1], samples] = np.nan
        signal, place = np.nonzero(np.isnan(undula.dwt(probe, 1, *wavelet, axis=1)))
        found = samples[signal] - 2 * (place % half)
    return Filters(int(found.min()), int(found.max()), inverse, **treatment)


def halo(filters, levels):
    """How many samples beside a chunk its coefficients depend on, or its samples on the coefficients there,
    or are spoilt by false ends; a multiple of 2^levels."""
    span = filters.last - filters.first + 1
    edges = span // 2 if filters.edges else 0
    reach = max(-filters.first, filters.last - 1, 0)
    spoilt = 0
    for _ in range(levels):
        if filters.inverse:  # no less than the 3 edges - 1 samples that boundary filters meet
            spoilt = 2 * max(spoilt, edges) + reach
        else:
            spoilt = max(-(-(spoilt + reach) // 2), edges)
    return -(-spoilt >> levels) << levels if filters.inverse else spoilt << levels


def steps(sides, chunks, levels, filters):
    """How a transform of so many levels goes: by chunks as long as one does not hold the smooth part."""
    made = []
    while True:
        step = _step(sides, chunks, levels, filters)
        if step.is_last():
            return [*made, step]
        made.append(step)
        sides = tuple(-(-side >> step.levels) for side in sides)
        levels -= step.levels


def _step(sides, chunks, levels, filters):
    shortest = min((chunk for chunk, side in zip(chunks, sides) if chunk < side), default=0)
    carried = next((j for j in range(min(levels, MOST_LEVELS), 1, -1) if _carries(shortest, j, filters)), 1)
    least = _least(filters, carried)
    chunks = tuple(-(-max(chunk, least) >> carried) << carried for chunk in chunks)
    if levels == 0 or np.prod(sides, dtype=object) <= np.prod(chunks, dtype=object):
        return Step(sides, sides, levels, 0, 0)
    return Step(sides, tuple(map(min, chunks, sides)), carried, halo(filters, carried), least)


def _carries(chunk, levels, filters):
    return halo(filters, levels) <= HALO_SHARE * chunk and _least(filters, levels) <= chunk


def _least(filters, levels):
    """In a shorter block what one end does and what the other does might meet."""
    return halo(filters, levels) + (2 * (filters.last - filters.first + 1) << levels)


def windows(step, axis, wraps):
    """The chunks of a side of a step."""
    side, chunk = step.sides[axis], step.chunks[axis]
    if chunk == side:
        return [Window(((0, side),), (0, side))]
    return [_window(side, a, min(a + chunk, side), step, wraps) for a in range(0, side, chunk)]


def _window(side, start, stop, step, wraps):
    lacking = step.least - (stop - start) if stop == side else 0
    low = start - max(step.halo, -(-lacking >> step.levels) << step.levels)
    high = stop + step.halo
    if high - low >= side:
        return Window(((0, side),), (start, stop))
    if not wraps:
        low, high = max(low, 0), min(high, side)
    if low < 0:  # the two ends in one block, so that its ends meet as those of the whole do
        return Window(((0, high), (side + low, side)), (start, stop))
    if high > side:
        high -= side
        return Window(((0, high), (low, side)), (start - low + high, stop - low + high))
    return Window(((low, high),), (start - low, stop - low))


def part(stretch, level, is_high):
    """Where the coefficients of samples `start` to `stop` - 1 stand in a part of a level, which is not 0."""
    start, stop = stretch
    return start >> level, _halved(stop, level - 1) // 2 if is_high else _halved(stop, level)


def _halved(length, level):
    return -(-length >> level)

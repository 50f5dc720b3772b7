"""Wavelet transforms of signals and images in chunks, with Dask: lazy, and bit for bit those of the pack.

>>> import dask.array as da
>>> import undula.dask
>>> x = da.arange(4096, chunks=512) % 7
>>> y = undula.dask.dwt(x, 10, "symmlet8")
>>> y.smooth.shape, len(y.details), y.details[-1].chunksize
((4,), 10, (256,))
>>> bool((y.whole() == undula.dwt(x.compute(), 10, "symmlet8")).all())
True
>>> undula.dask.idwt(y, 10, "symmlet8").compute()[1:5].round(9)
array([1., 2., 3., 4.])

The functions take the arguments of their namesakes in `undula`. The data is a Dask array of one dimension or
of two, of one chunk or of many, even or not; their size decides how much memory a worker needs, eight times
as much and more. The borders of chunks are moved where they must be, and all chunks of a result but the last
have the same size. Each task transforms a chunk and what lies beside it over several levels; when the smooth
part is no longer than a chunk, one call does the rest.

What can be refused without the data raises `undula.Error` at once; what only the data shows, where it is
computed.
"""

from __future__ import annotations

from bisect import bisect_right
from functools import partial
from itertools import accumulate, chain, product
from operator import getitem
from typing import NamedTuple

import dask.array as da
import numpy as np
from dask.base import tokenize
from dask.highlevelgraph import HighLevelGraph
from numpy.typing import ArrayLike

import undula
from undula._chunks import filters_of, part, steps, windows
from undula._levels import Details, levels, parts_of
from undula._numbers import whole
from undula._remedies import refusal

__all__ = ["Coefficients", "dwt", "dwti", "dwts", "idwt", "idwti", "idwts"]


class Coefficients(NamedTuple):
    """A transformed signal or image: one chunked array for each subband, as `undula.levels` gives them.

    `details[-j]` are those of level j. Of an image each is a record (H, V, D).
    """

    smooth: da.Array
    details: tuple

    def parts(self) -> list[da.Array]:
        """All arrays in one list: the smooth part, then the details from the coarsest level to the finest."""
        return _flat(self)

    def whole(self) -> da.Array:
        """The coefficients as one array in the usual order."""
        whole = self.smooth
        for each in self.details:
            if whole.ndim == 1:
                whole = da.concatenate([whole, each])
            else:
                whole = da.block([[whole, each.V], [each.H, each.D]])
        return whole


def dwt(data: da.Array, level: int, wavelet: ArrayLike, offsets=None, flips=None) -> Coefficients:
    """As `undula.dwt`: the transform with periodic ends."""
    return _forward("dwt", data, level, _given(wavelet, offsets, flips))


def dwts(data: da.Array, level: int, wavelet: ArrayLike) -> Coefficients:
    """As `undula.dwts`: the transform with mirrored ends, of any length."""
    return _forward("dwts", data, level, (wavelet,))


def dwti(data: da.Array, level: int, wavelet: ArrayLike) -> Coefficients:
    """As `undula.dwti`: the transform with boundary filters at the ends."""
    return _forward("dwti", data, level, (wavelet,))


def idwt(
    data: Coefficients | da.Array, level: int, wavelet: ArrayLike, offsets=None, flips=None
) -> da.Array:
    """As `undula.idwt`: what `dwt` has transformed, from its record or from one array in the usual order."""
    return _inverse("idwt", data, level, _given(wavelet, offsets, flips))


def idwts(data: Coefficients | da.Array, level: int, wavelet: ArrayLike) -> da.Array:
    """As `undula.idwts`: what `dwts` has transformed, from its record or from one array in the usual order."""
    return _inverse("idwts", data, level, (wavelet,))


def idwti(data: Coefficients | da.Array, level: int, wavelet: ArrayLike) -> da.Array:
    """As `undula.idwti`: what `dwti` has transformed, from its record or from one array in the usual order."""
    return _inverse("idwti", data, level, (wavelet,))


def _given(wavelet, offsets, flips):
    return (wavelet,) if offsets is None and flips is None else (wavelet, offsets, flips)


def _forward(name, data, level, wavelet):
    data = _checked(name, data)
    level = _checked_level(name, data.shape, level, wavelet)
    filters = filters_of(name, wavelet)
    smooth, details = data, ()
    for step in steps(data.shape, data.chunksize, level, filters):
        smooth, finer = _analysis(name, smooth, step, filters.wraps, wavelet)
        details = (*finer, *details)
    return Coefficients(smooth, details)


def _inverse(name, data, level, wavelet):
    if isinstance(data, Coefficients):
        shape = _shape_of(data)
        level = _checked_level(name, shape, level, wavelet)
        _check_record(name, data, shape, level)
        chunks = tuple(side * 2 ** min(level, 1) for side in _flat(data)[-1].chunksize)
    else:
        data = _checked(name, data)
        shape, chunks = data.shape, data.chunksize
        level = _checked_level(name, shape, level, wavelet)
        data = Coefficients(*parts_of(data, level))
    filters = filters_of(name, wavelet)
    smooth, details = data
    for step in reversed(steps(shape, chunks, level, filters)):
        used, details = details[: step.levels], details[step.levels :]
        smooth = _synthesis(name, Coefficients(smooth, used), step, filters.wraps, wavelet)
    return smooth


# What can be refused before anything is computed


def _checked(name, data):
    data = da.asarray(data)
    if data.dtype.kind not in "biufc":
        raise TypeError(f"{name}: argument 1 (data) does not hold numbers")
    if data.ndim not in (1, 2):
        raise ValueError(
            f"{name}: argument 1 (data) has {data.ndim} dimensions; "
            f"for many signals or images there is map_blocks(undula.{name}, ..., axis=)"
        )
    if np.isnan(data.shape).any():
        raise ValueError(f"{name}: argument 1 (data) has chunks of unknown size; see compute_chunk_sizes()")
    return data[:, 0] if data.shape[1:] == (1,) else data


def _checked_level(name, shape, level, wavelet):
    """The level as an int. Raises what the function would say of the level and the wavelet."""
    function = getattr(undula, name)
    message = "invalid level"
    try:
        count = whole(name, "level", level)
    except TypeError:
        count = -1  # the function says what is wrong
    try:
        function(np.zeros((256,) * len(shape)), level if count < 0 else 0, *wavelet)
        if all(_admits(name, side, count, wavelet) for side in shape):
            return count
    except undula.Error as error:
        if error.argument != 2:
            raise
        message = error.message
    arguments = (np.broadcast_to(0.0, shape), level, *wavelet)  # the notes are about their shape
    raise refusal(function._description, message, 2, arguments)


def _admits(name, side, level, wavelet):
    if level == 0:
        return True
    if name[-1] == "s":
        return side >> level > 0
    if level >= 64 or side % (1 << level) or side == 0:
        return False
    try:  # the last level is the one for which there may be too few samples
        getattr(undula, name)(np.zeros(min(side >> (level - 1), 256)), 1, *wavelet)
    except undula.Error:
        return False
    return True


def _shape_of(record):
    """The shape of what was transformed."""
    if record.smooth.ndim == 1:
        return (sum(array.shape[0] for array in _flat(record)),)
    return tuple(
        record.smooth.shape[axis] + sum(each[axis].shape[axis] for each in record.details) for axis in (0, 1)
    )


def _check_record(name, record, shape, level):
    if len(record.details) != level:
        raise ValueError(f"{name}: data has {len(record.details)} levels, not {level}")
    wanted = parts_of(np.broadcast_to(0.0, shape), level)
    if [array.shape for array in _flat(record)] != [array.shape for array in _flat(wanted)]:
        raise ValueError(f"{name}: the subbands of the data do not fit together")


# One step of a transform as tasks


def _analysis(name, data, step, wraps, wavelet):
    """The smooth part, and the details, of some levels."""
    sides = [windows(step, axis, wraps) for axis in range(data.ndim)]
    base = f"undula-{name}-{tokenize(name, data.name, step, wavelet)}"
    analyse = partial(_analyse, name, step.levels, wavelet)
    tasks = {}
    for index in _indices(map(len, sides)):
        chosen = [side[i] for side, i in zip(sides, index)]
        block = _block(data, [window.stretches for window in chosen], tasks)
        tasks[(base, *index)] = (analyse, block, [window.keep for window in chosen])
    graph = HighLevelGraph.from_collections(base, tasks, dependencies=[data])
    made = [
        _output(graph, base, number, [_part_chunks(step, axis, level, high) for axis, high in enumerate(highs)])
        for number, (level, highs) in enumerate(_kinds(data.ndim, step.levels))
    ]
    return made[0], made[1:] if data.ndim == 1 else list(map(Details, *[iter(made[1:])] * 3))


def _synthesis(name, data, step, wraps, wavelet):
    """The smooth part from which some levels were made."""
    parts = _flat(data)
    sides = [windows(step, axis, wraps) for axis in range(data.smooth.ndim)]
    base = f"undula-{name}-{tokenize(name, [array.name for array in parts], step, wavelet)}"
    synthesise = partial(_synthesise, name, step.levels, wavelet)
    tasks = {}
    for index in _indices(map(len, sides)):
        chosen = [side[i] for side, i in zip(sides, index)]
        blocks = []
        for array, (level, highs) in zip(parts, _kinds(len(sides), step.levels)):
            stretches = [
                [part(stretch, level, high) for stretch in window.stretches]
                for window, high in zip(chosen, highs)
            ]
            blocks.append(_block(array, stretches, tasks))
        shape = [sum(stop - start for start, stop in window.stretches) for window in chosen]
        tasks[(base, *index)] = (synthesise, blocks, shape, [window.keep for window in chosen])
    graph = HighLevelGraph.from_collections(base, tasks, dependencies=parts)
    chunks = [_part_chunks(step, axis, 0, False) for axis in range(len(sides))]
    return da.Array(graph, base, chunks, dtype=float)


def _analyse(name, level, wavelet, block, keep):
    transformed = getattr(undula, name)(_assembled(block), level, *wavelet)
    return [
        view[tuple(slice(*part(stretch, depth, high)) for stretch, high in zip(keep, highs))].copy("C")
        for view, (depth, highs) in zip(_flat(levels(transformed, level)), _kinds(len(keep), level))
    ]


def _synthesise(name, level, wavelet, blocks, shape, keep):
    coefficients = np.empty(shape, order="F")
    for view, block in zip(_flat(levels(coefficients, level)), blocks):
        if view.size:
            view[...] = _assembled(block)
    samples = getattr(undula, name)(coefficients, level, *wavelet)
    return samples[tuple(slice(*stretch) for stretch in keep)].copy("C")


# Parts and chunks


def _flat(record):
    """All arrays of a record of levels."""
    smooth, details = record
    return [smooth, *details] if smooth.ndim == 1 else [smooth, *chain.from_iterable(details)]


def _kinds(dimensions, level):
    """The level of each array of a flat record, and along which axes it is high-pass."""
    kinds = [(True,)] if dimensions == 1 else [(True, False), (False, True), (True, True)]
    return [(level, (False,) * dimensions), *product(range(level, 0, -1), kinds)]


def _indices(counts):
    return product(*map(range, counts))


def _part_chunks(step, axis, level, high):
    """The chunks of a part; of few samples at the end it may have none."""
    side, chunk = step.sides[axis], step.chunks[axis]
    stretches = (part((a, min(a + chunk, side)), level, high) for a in range(0, side, chunk))
    return tuple(stop - start for start, stop in stretches if stop > start)


def _output(graph, base, number, chunks):
    """The array of one of the results of the tasks `base`."""
    name = f"undula-{'details' if number else 'smooth'}-{tokenize(base, number)}"
    tasks = {(name, *i): (getitem, (base, *i), number) for i in _indices(map(len, chunks))}
    graph = HighLevelGraph(graph.layers | {name: tasks}, graph.dependencies | {name: {base}})
    return da.Array(graph, name, chunks, dtype=float)


def _block(array, stretches, tasks):
    """Nested lists of the keys of what lies in the stretches along each axis, with tasks that cut it out."""
    runs = [list(_runs(chunks, each)) for chunks, each in zip(array.chunks, stretches)]
    if array.ndim == 1:
        return [_cut_key(array, [run], tasks) for run in runs[0]]
    return [[_cut_key(array, [down, along], tasks) for along in runs[1]] for down in runs[0]]


def _runs(chunks, stretches):
    """The chunks that make up the stretches: index, start and stop in the chunk."""
    ends = list(accumulate(chunks))
    for start, stop in stretches:
        index = bisect_right(ends, start)
        while start < stop:
            begin = ends[index] - chunks[index]
            yield index, start - begin, min(stop, ends[index]) - begin
            start = ends[index]
            index += 1


def _cut_key(array, runs, tasks):
    key = (array.name, *(index for index, _, _ in runs))
    if all((start, stop) == (0, array.chunks[axis][i]) for axis, (i, start, stop) in enumerate(runs)):
        return key
    cut = (f"undula-cut-{array.name}", *chain.from_iterable(runs))
    tasks[cut] = (_cut, key, [run[1:] for run in runs])
    return cut


def _cut(array, stretches):
    """A copy: a view would keep the whole chunk in memory."""
    return array[tuple(slice(*stretch) for stretch in stretches)].copy()


def _assembled(block):
    first = block[0]
    if isinstance(first, list):
        return first[0] if len(block) == len(first) == 1 else np.block(block)
    return first if len(block) == 1 else np.concatenate(block)

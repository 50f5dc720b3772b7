"""Signals and images in chunks: bit for bit the single call, also when workers die."""

import doctest
import functools
import os
import signal
import time

import numpy as np
import pytest
import undula

dask = pytest.importorskip("dask")
distributed = pytest.importorskip("distributed")
zarr = pytest.importorskip("zarr")

import dask.array as da  # noqa: E402
import undula.dask  # noqa: E402

NAMES = {"dwt": "periodic", "dwts": "symmetric", "dwti": "interval"}
OWN = [(np.linspace(0.1, 0.9, 5), 7, 1), (np.linspace(0.1, 0.9, 6).reshape(3, 2), [[-40, 31]], [[0, 1]])]


@pytest.fixture(autouse=True)
def in_this_thread():
    with dask.config.set(scheduler="sync"):
        yield


@pytest.fixture(scope="module")
def client():
    here = {"dashboard_address": "127.0.0.1:0", "worker_dashboard_address": "127.0.0.1:0", "host": "127.0.0.1"}
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, memory_limit="1GiB", **here) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def case(name, dimensions, rng):
    """Random data, level, wavelet and chunks, some of them shorter than the filter or of all the data."""
    wavelets = [(w.name,) for w in undula.wavelets() if NAMES[name] in w.boundaries]
    wavelets += OWN if name == "dwt" else []
    level = int(rng.integers(1, 7 if dimensions == 1 else 4))
    longest = (4000 if dimensions == 1 else 400) >> level
    odd = 1 if name == "dwts" else 0
    sides = [(int(rng.integers(16, longest)) << level) + odd * int(rng.integers(64)) for _ in range(dimensions)]
    chunks = tuple(even_chunks(n, rng) if rng.random() < 0.6 else uneven_chunks(n, rng) for n in sides)
    return rng.standard_normal(sides), level, wavelets[rng.integers(len(wavelets))], chunks


def even_chunks(n, rng):
    chunk = int(rng.integers(n // 20 + 1, n + 1))
    return (*[chunk] * (n // chunk), *[n % chunk] * (n % chunk > 0))


def uneven_chunks(n, rng):
    return tuple(map(int, np.diff(np.unique([0, n, *rng.integers(0, n, 9)]))))


def identical(a, b):
    return np.array_equal(np.array(a).view(np.int64), np.array(b).view(np.int64))


@pytest.mark.filterwarnings("ignore::undula.UndulaWarning")
@pytest.mark.parametrize("dimensions", [1, 2])
@pytest.mark.parametrize("name", NAMES)
def test_chunks_make_the_numbers_of_the_single_call(name, dimensions, rng):
    by_chunks = 0
    for _ in range(20):
        x, level, wavelet, chunks = case(name, dimensions, rng)
        y, back = getattr(undula, name)(x, level, *wavelet), getattr(undula, "i" + name)
        z, lazily = back(y, level, *wavelet), getattr(undula.dask, "i" + name)
        record = getattr(undula.dask, name)(da.from_array(x, chunks=chunks), level, *wavelet)
        parts, smooth = record.parts(), undula.levels(y, level).smooth
        assert identical(record.whole().compute(), y)
        assert identical(parts[0].compute(), smooth)
        assert [part.compute().shape for part in parts] == [part.shape for part in parts]
        assert identical(lazily(record, level, *wavelet).compute(), z)
        assert identical(lazily(da.from_array(y, chunks=chunks), level, *wavelet).compute(), z)
        by_chunks += parts[-1].npartitions > 1
    assert by_chunks >= 10


@pytest.mark.parametrize("name", ["dwt", "idwt"])
def test_no_task_has_much_more_than_a_chunk(name, monkeypatch):
    function, sizes = getattr(undula, name), []

    @functools.wraps(function)
    def measured(data, *others, **named):
        sizes.append(np.size(data))
        return function(data, *others, **named)

    x = da.ones(1 << 18, chunks=1 << 12)
    lazily = getattr(undula.dask, name)(x, np.array(18 + 0j), "symmlet8")
    monkeypatch.setattr(undula, name, measured)
    dask.compute(lazily.parts() if name == "dwt" else lazily)
    assert max(sizes) <= 1.1 * (1 << 12) and sum(sizes) <= 1.2 * (1 << 18)


@pytest.mark.parametrize(
    "name, shape, level, wavelet",
    [
        ("dwt", (12,), 3, "haar"),
        ("dwt", (1 << 33,), 34, "haar"),
        ("idwt", (1, 8), 1, "haar"),
        ("dwt", (8,), 2.5, "haar"),
        ("dwt", (8,), -1, "haar"),
        ("dwt", (8,), np.inf, "haar"),
        ("dwt", (8,), 1, "daublet5"),
        ("dwts", (7,), 3, "haar"),
        ("idwts", (8, 3), 2, "haar"),
        ("dwts", (8,), 9, "daublet4"),
        ("dwti", (16,), 3, "daublet4"),
        ("idwti", (32, 16), 2, "daublet6"),
        ("dwti", (2,), 5, "coiflet6"),
    ],
)
def test_what_needs_no_data_is_refused_at_once(name, shape, level, wavelet):
    with pytest.raises(undula.Error) as lazy:
        getattr(undula.dask, name)(da.zeros(shape), level, wavelet)
    error = lazy.value
    assert error.function == name
    if np.prod(shape) < 1000 and not (name, level) == ("dwts", 9):
        with pytest.raises(undula.Error) as single:
            getattr(undula, name)(np.zeros(shape), level, wavelet)
        assert (str(error), error.__notes__) == (str(single.value), single.value.__notes__)


def test_what_is_not_a_signal_or_an_image_is_refused(rng):
    y = undula.dask.dwt(da.ones(80, chunks=16), 2, "haar")
    unknown = da.ones(8)[da.ones(8) > 0]
    for data, kind, text in [
        (da.ones((2, 2, 2)), ValueError, "map_blocks"),
        (da.array(["a"]), TypeError, "does not hold numbers"),
        (unknown, ValueError, "unknown size"),
        (y, ValueError, "has 2 levels, not 1"),
        (y._replace(smooth=y.smooth[4:]), ValueError, "do not fit"),
    ]:
        with pytest.raises(kind, match=text):
            undula.dask.idwt(data, 1 if data is y else 2, "haar")
    column = rng.standard_normal((64, 1))
    whole = undula.dask.dwt(da.from_array(column), 2, "haar").whole().compute()
    assert identical(whole, undula.dwt(column, 2, "haar"))


def test_from_store_to_store_although_a_worker_is_killed(client, tmp_path, rng):
    x = rng.standard_normal(1 << 24)
    zarr.save_array(str(tmp_path / "x"), x, chunks=1 << 20, compressor=None)
    y = undula.dask.dwt(da.from_zarr(str(tmp_path / "x")), 12, "symmlet8")
    targets = [
        zarr.open(str(tmp_path / f"y{i}"), mode="w", shape=part.shape, chunks=part.chunksize)
        for i, part in enumerate(y.parts())
    ]
    with client.as_current():
        written = da.store(y.parts(), targets, lock=False, compute=False)
        future = client.compute(written)
    finest = tmp_path / f"y{len(targets) - 1}"
    waiting = time.monotonic()
    while len(list(finest.iterdir())) < 4 and time.monotonic() - waiting < 60:  # of 17
        time.sleep(0.01)
    workers = client.run(os.getpid)
    victim = next(iter(workers.values()))
    assert not future.done()
    os.kill(victim, signal.SIGKILL)
    future.result(timeout=120)
    assert victim not in client.run(os.getpid).values()
    whole = np.concatenate([target[:] for target in targets])
    assert identical(whole, undula.dwt(x, 12, "symmlet8"))


def test_errors_of_workers_arrive_as_themselves(client):
    x = da.arange(1 << 12, chunks=1 << 8)
    imaginary = da.where(x == 3000, 1j, x)
    with client.as_current(), pytest.raises(undula.Error) as caught:
        dask.compute(undula.dask.dwt(imaginary, 2, "haar").parts(), scheduler=client)
    error = caught.value
    assert (error.function, error.message, error.argument) == ("dwt", "must be real array", 1)
    assert error.__notes__
    rows = da.arange(1 << 12, chunks=1 << 8).reshape((64, 64))
    many = rows.map_blocks(undula.dwt, 3, "haar", axis=1, dtype=float).compute(scheduler=client)
    assert identical(many, undula.dwt(rows.compute(), 3, "haar", axis=1))


def test_an_interrupt_ends_the_run(client, alarm):
    def slowly(block):
        time.sleep(0.2)
        return block

    x = da.ones(1 << 16, chunks=1 << 8).map_blocks(slowly, dtype=float)  # 25 seconds
    started = time.monotonic()
    alarm(1)
    with pytest.raises(KeyboardInterrupt):
        dask.compute(undula.dask.dwt(x, 4, "haar").parts(), scheduler=client)
    while any(client.processing().values()) and time.monotonic() - started < 15:
        time.sleep(0.1)
    assert time.monotonic() - started < 15


def test_the_example_of_the_module_runs():
    failed, attempted = doctest.testmod(undula.dask)
    assert attempted and not failed

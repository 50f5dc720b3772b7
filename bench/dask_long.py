"""How fast a long signal goes from a Zarr store to a Zarr store through `undula.dask`, and in how much memory.

    PYTHONPATH=build/python python3 bench/dask_long.py --samples 2^30 --folder /var/tmp/undula
    PYTHONPATH=build/python python3 bench/dask_long.py --halos

It prints the time of reading and writing the same chunks without a transform, that of the transform and,
with --inverse, of the way back, and the peak memory of each worker process. --single adds the single call
from store to store, of a signal that fits in memory. The folder needs twice the room of the signal, three
times with --inverse.
"""

import argparse
import resource
import shutil
import time
from functools import partial
from pathlib import Path

import dask.array as da
import numpy as np
import zarr
from distributed import Client, LocalCluster

import undula
import undula.dask
from undula._chunks import filters_of, steps


def main():
    options = read_options()
    if options.halos:
        print_halos()
        return
    samples, chunk = options.samples, options.chunk
    folder = Path(options.folder)
    folder.mkdir(parents=True, exist_ok=True)
    make_signal(folder / "x", samples, chunk)
    transform = partial(undula.dask.dwt, level=options.level, wavelet=options.wavelet)
    measure("read and write", samples, options, lambda: run(folder, lambda x: [x]))
    measure("transform", samples, options, lambda: run(folder, lambda x: transform(x).parts()))
    if options.inverse:
        measure("inverse", samples, options, lambda: run_inverse(folder, options))
    if options.single:
        report("single call", samples, single(folder, options))
    shutil.rmtree(folder)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--samples", type=number, default=1 << 24)
    parser.add_argument("--chunk", type=number, default=1 << 22)
    parser.add_argument("--level", type=int, default=16)
    parser.add_argument("--wavelet", default="symmlet8")
    parser.add_argument("--processes", type=int, default=2)
    parser.add_argument("--folder", default="/var/tmp/undula_dask")
    parser.add_argument("--halos", action="store_true", help="print what halos cost, and do nothing else")
    parser.add_argument("--inverse", action="store_true")
    parser.add_argument("--single", action="store_true")
    return parser.parse_args()


def print_halos():
    """For chunk sizes of signals and images: the levels that a chunk carries, and what it reads in excess."""
    for name, wavelet in (("dwt", "haar"), ("dwt", "symmlet8"), ("dwt", "daublet20"), ("dwts", "bl3")):
        for exponents in ((12, 16, 20, 22), (8, 10, 11, 12)):
            cells = []
            for chunk in (1 << exponent for exponent in exponents):
                dimensions = 1 if exponents[0] == 12 else 2
                sides = (1 << 40,) * dimensions
                step = steps(sides, (chunk,) * dimensions, 16, filters_of(name, (wavelet,)))[0]
                excess = (1 + 2 * step.halo / step.chunks[0]) ** dimensions - 1
                cells.append(f"{chunk}{'^2' * (dimensions - 1)}: {step.levels} levels {100 * excess:.2g} %")
            print(f"{wavelet:10} {'   '.join(cells)}")


def number(text):
    """Such as 2^30."""
    base, _, exponent = text.partition("^")
    return int(base) ** int(exponent or 1)


def measure(name, samples, options, work):
    """Processes of their own for each measurement, so that the peak of their memory is its own."""
    local = LocalCluster(
        n_workers=options.processes,
        threads_per_worker=1,
        memory_limit="1GiB",
        host="127.0.0.1",
        dashboard_address="127.0.0.1:0",
        worker_dashboard_address="127.0.0.1:0",
    )
    with local, Client(local) as client:
        report(name, samples, work(), client)


def make_signal(path, samples, chunk):
    """A random walk, a chunk after the other."""
    store = zarr.open(str(path), mode="w", shape=samples, chunks=chunk, dtype=float, compressor=None)
    rng = np.random.default_rng(1)
    level = 0.0
    for start in range(0, samples, chunk):
        walk = level + np.cumsum(rng.standard_normal(min(chunk, samples - start)))
        store[start : start + chunk] = walk
        level = walk[-1]


def run(folder, function):
    started = time.perf_counter()
    x = da.from_zarr(str(folder / "x"))
    store(folder / "y", function(x))
    return time.perf_counter() - started


def run_inverse(folder, options):
    started = time.perf_counter()
    smooth, *details = (da.from_zarr(str(path)) for path in sorted((folder / "y").iterdir()))
    y = undula.dask.Coefficients(smooth, tuple(details))
    store(folder / "z", [undula.dask.idwt(y, options.level, options.wavelet)])
    return time.perf_counter() - started


def store(folder, arrays):
    shutil.rmtree(folder, ignore_errors=True)
    targets = [
        zarr.open(str(folder / f"{i:02}"), mode="w", shape=array.shape, chunks=array.chunksize, compressor=None)
        for i, array in enumerate(arrays)
    ]
    da.store(arrays, targets, lock=False)


def single(folder, options):
    started = time.perf_counter()
    y = undula.dwt(zarr.open(str(folder / "x"))[:], options.level, options.wavelet)
    target = zarr.open(str(folder / "s"), mode="w", shape=y.shape, chunks=options.chunk, compressor=None)
    target[:] = y
    return time.perf_counter() - started


def report(name, samples, seconds, client=None):
    peaks = ""
    if client:
        kib = client.run(lambda: resource.getrusage(resource.RUSAGE_SELF).ru_maxrss).values()
        peaks = ", peaks " + " ".join(f"{peak / 1024:.0f}" for peak in kib) + " MiB"
    print(f"{name:16} {seconds:7.1f} s {8 * samples / seconds / 1e6:7.0f} MB/s{peaks}", flush=True)


if __name__ == "__main__":
    main()

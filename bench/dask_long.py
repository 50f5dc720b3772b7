"""How fast a long signal goes from a Zarr store to a Zarr store through `undula.dask`, and in how much memory.

    PYTHONPATH=build/python python3 bench/dask_long.py --samples 2**30 --folder /var/tmp/undula

It prints the time of reading and writing the same chunks without a transform, that of the transform there and back,
the peak memory of each worker process, and, where `--single` says that the signal fits in memory, the time of the
single call from store to store. The folder needs twice the room of the signal, and three times for the inverse.
"""

import argparse
import resource
import shutil
import time
from pathlib import Path

import dask
import dask.array as da
import numpy as np
import zarr
from distributed import Client, LocalCluster

import undula
import undula.dask


def main():
    options = read_options()
    samples, chunk = eval(options.samples), eval(options.chunk)  # such as 2**30
    folder = Path(options.folder)
    folder.mkdir(parents=True, exist_ok=True)
    make_signal(folder / "x", samples, chunk)
    transformed = lambda x: undula.dask.dwt(x, options.level, options.wavelet).parts()  # noqa: E731
    with cluster(options.processes) as client:
        runs = {"read and write": lambda x: [x], "transform": transformed}
        for name, function in runs.items():
            client.restart()
            report(name, samples, run(folder, function), client)
        if options.inverse:
            client.restart()
            report("inverse", samples, run_inverse(folder, options), client)
    if options.single:
        report("single call", samples, single(folder, options))
    shutil.rmtree(folder)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--samples", default="2**24")
    parser.add_argument("--chunk", default="2**22")
    parser.add_argument("--level", type=int, default=16)
    parser.add_argument("--wavelet", default="symmlet8")
    parser.add_argument("--processes", type=int, default=2)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--inverse", action="store_true")
    parser.add_argument("--single", action="store_true")
    return parser.parse_args()


def cluster(processes):
    dask.config.set({"distributed.worker.memory.terminate": False})
    local = LocalCluster(
        n_workers=processes, threads_per_worker=1, host="127.0.0.1", dashboard_address=None, memory_limit="1GiB"
    )
    return Client(local)


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
        zarr.open(str(folder / f"{i:02}"), mode="w", shape=a.shape, chunks=a.chunksize, dtype=float, compressor=None)
        for i, a in enumerate(arrays)
    ]
    da.store(arrays, targets, lock=False)


def single(folder, options):
    started = time.perf_counter()
    y = undula.dwt(zarr.open(str(folder / "x"))[:], options.level, options.wavelet)
    target = zarr.open(str(folder / "s"), mode="w", shape=y.shape, chunks=eval(options.chunk), compressor=None)
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

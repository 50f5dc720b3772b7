"""A signal longer than memory
===========================

Where its energy lies, level by level, with Dask. ::

    PYTHONPATH=build/python python3 examples/long_signal.py [--samples 1000000000] [--scheduler ADDRESS]

The signal is never in memory as a whole, nor on a disk: each chunk is made when it is wanted. It is noise,
some of it slow, and a hum. The coefficients are those that a single call would return, and only their
energies are kept. By default there are 2^22 samples.
"""

import argparse

import dask.array as da
import numpy as np
from distributed import Client, LocalCluster, progress

import undula.dask

CHUNK = 1 << 20
WAVELET = "symmlet8"
HUM = 3.0e-2  # cycles a sample


def main():
    options = read_options()
    with client_of(options.scheduler) as client:
        level = min(16, (options.samples & -options.samples).bit_length() - 1)
        x = da.arange(options.samples, chunks=CHUNK).map_blocks(samples, dtype=float)
        y = undula.dask.dwt(x, level, WAVELET)
        energies = client.compute([(part**2).sum() for part in (x, *y.parts())])
        progress(energies, notebook=False)
        total, *energies = client.gather(energies)
    print()
    names = ["smooth", *(f"level {j}" for j in range(level, 0, -1))]
    for name, energy in zip(names, energies):
        print(f"{name:9} {100 * energy / total:7.3f} % {'#' * round(50 * energy / total)}")
    print(f"the energies of the subbands make up that of the signal to {abs(sum(energies) / total - 1):.0e}")


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--samples", type=int, default=1 << 22)
    parser.add_argument("--scheduler", help="such as tcp://HOST:8786; else two processes work here")
    return parser.parse_args()


def client_of(scheduler):
    if scheduler:
        return Client(scheduler)
    here = {"dashboard_address": "127.0.0.1:0", "worker_dashboard_address": "127.0.0.1:0"}
    return Client(LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1", **here))


def samples(positions):
    """Noise that is the same however often a chunk is made, and the hum."""
    rng = np.random.default_rng(int(positions[0]))
    noise = rng.standard_normal(len(positions))
    slow = np.repeat(rng.standard_normal(-(-len(positions) // 64)), 64)[: len(positions)]
    return noise + slow + np.sin(2 * np.pi * HUM * positions)


if __name__ == "__main__":
    main()

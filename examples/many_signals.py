"""A month of records
==================

Removes noise from far more records than fit in memory, with Dask. ::

    PYTHONPATH=build/python python3 examples/many_signals.py [--days 30] [--scheduler ADDRESS]

The example makes the records itself, in a Zarr store: each row is a minute like one of an
electrocardiogram, and the heart beats faster by day. The rows are denoised a block at a time, and for every
minute the energy of each subband is kept. In three minutes an electrode was loose, which their finest
subband shows, in the picture that is drawn, out/many_signals.png. The month has 43,200 records, 7 GB; by
default it is two hours.
"""

import argparse
import shutil
from pathlib import Path

import dask.array as da
import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
import zarr
from distributed import Client, LocalCluster

import undula

HERE = Path(__file__).resolve().parent
SAMPLES_PER_SECOND = 360
LENGTH = 60 * SAMPLES_PER_SECOND
LEVEL = 5
WAVELET = "symmlet8"
ROWS = 60  # of a block: an hour
LOOSE = (17, 58, 91)


def main():
    options = read_options()
    minutes = round(options.days * 24 * 60)
    store, cleaned = HERE.parent / "out" / "records.zarr", HERE.parent / "out" / "denoised.zarr"
    with client_of(options.scheduler) as client:
        each = da.arange(minutes, chunks=ROWS)
        made = each.map_blocks(records, dtype=float, new_axis=1, chunks=(each.chunks[0], LENGTH))
        made.to_zarr(str(store), overwrite=True)
        noisy = da.from_zarr(str(store))
        denoised = noisy.map_blocks(undula.denoise, WAVELET, LEVEL, axis=1, dtype=float)
        energies = noisy.map_blocks(subband_energies, dtype=float, chunks=(noisy.chunks[0], LEVEL + 1))
        first = noisy[::ROWS]
        shares = first.map_blocks(level_shares, dtype=float, chunks=(first.chunks[0], LEVEL + 1))
        denoised.to_zarr(str(cleaned), overwrite=True)
        energies, shares = client.gather(client.compute([energies, shares]))
    report(energies, shares)
    draw(zarr.open(str(store)), zarr.open(str(cleaned)), energies, HERE.parent / "out" / "many_signals.png")
    for folder in (store, cleaned):
        shutil.rmtree(folder)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--days", type=float, default=2 / 24)
    parser.add_argument("--scheduler", help="such as tcp://HOST:8786; else two processes work here")
    return parser.parse_args()


def client_of(scheduler):
    if scheduler:
        return Client(scheduler)
    here = {"dashboard_address": "127.0.0.1:0", "worker_dashboard_address": "127.0.0.1:0"}
    return Client(LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1", **here))


def records(minutes):
    """A record for each minute: beats of three waves, the noise of muscles, and loose electrodes."""
    return np.stack([record(int(minute)) for minute in minutes])


def record(minute):
    rng = np.random.default_rng(minute)
    rate = 1.1 + 0.25 * np.sin(2 * np.pi * minute / 1440) + 0.02 * rng.standard_normal()
    phase = (np.arange(LENGTH) / SAMPLES_PER_SECOND * rate) % 1
    waves = [(0.15, 0.25, 0.03), (1.0, 0.4, 0.01), (0.3, 0.65, 0.05)]  # height, place, width
    beat = sum(height * np.exp(-((phase - place) ** 2) / (2 * width**2)) for height, place, width in waves)
    noise = 0.5 if minute in LOOSE else 0.05
    return beat + noise * rng.standard_normal(LENGTH)


def subband_energies(rows):
    """For each record the energies of its subbands, from the smooth part to the finest details."""
    smooth, details = undula.levels(undula.dwt(rows, LEVEL, WAVELET, axis=1), LEVEL, axis=1)
    return np.stack([np.sum(band**2, axis=1) for band in (smooth, *details)], axis=1)


def level_shares(rows):
    """The part that each level has in the best packet basis of each record."""
    tables = (undula.wpt(row, LEVEL, WAVELET) for row in rows)
    levels = [undula.best_basis(table, "shannon")[:, 0].astype(int) for table in tables]
    return np.reshape([np.bincount(each, 0.5**each, LEVEL + 1) for each in levels], (-1, LEVEL + 1))


def report(energies, shares):
    print("energy of the subbands, mean of all records:")
    names = ["smooth", *(f"level {j}" for j in range(LEVEL, 0, -1))]
    for name, energy in zip(names, energies.mean(0)):
        print(f"  {name:8} {energy:10.1f}")
    print("part of each level in the best bases of the first records of each block:", shares.mean(0).round(3))
    print("records with a loose electrode:", np.flatnonzero(energies[:, -1] > 10 * np.median(energies[:, -1])))


def draw(noisy, cleaned, energies, path):
    path.parent.mkdir(exist_ok=True)
    figure, (left, right) = plt.subplots(1, 2, figsize=(11, 4), layout="constrained")
    seconds = np.arange(4 * SAMPLES_PER_SECOND) / SAMPLES_PER_SECOND
    left.plot(seconds, noisy[5, : len(seconds)], color="#b8bec7", linewidth=0.8)
    left.plot(seconds, cleaned[5, : len(seconds)], color="#d1495b", linewidth=1.2)
    left.set(title="four seconds of one record, before and after", xlabel="seconds", ylabel="mV")
    right.semilogy(energies[:, -1], ".", color="#00798c", markersize=3)
    right.set(title="energy of the finest details", xlabel="minute")
    figure.savefig(path, dpi=110)
    print("wrote", path)


if __name__ == "__main__":
    main()

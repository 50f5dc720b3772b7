"""Times the transforms beside PyWavelets, GSL and SciPy, in one process and taking turns.

    PYTHONPATH=build/python taskset -c 0 python3 bench/compare.py build/lib/libundula_bench.so [picture.png]

Ratios are medians over many turns: how many times as long the peer takes. "warm": the arithmetic from
C++, into results that are there already, beside the peer's whole call. "Python": whole calls on both
sides, with results in new memory. "of ...": the time as a multiple of what the machine needs for
copying the data, or for the products and sums alone, measured in the same turns. A mark shows where a
ratio falls short of the one aimed at, after it, by more than a tenth. Run it on a machine that does
nothing else.
"""

import ctypes
import ctypes.util
import mmap
import statistics
import sys
import time

import numpy as np
import pywt
import scipy.fft
import undula

SECONDS = 1.0  # for each row
SLACK = 1.1  # what noise may take
LARGE_PAGE = 1 << 21

library = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "build/lib/libundula_bench.so")
library.bench_kernel_name.restype = ctypes.c_char_p
Long = ctypes.c_long


def pointer(array):
    return array.ctypes.data_as(ctypes.c_void_p)


def room(*shape):
    """An array by columns in large pages, such as the pack asks for when it allocates a result."""
    count = int(np.prod(shape))
    pages = mmap.mmap(-1, (count * 8 // LARGE_PAGE + 2) * LARGE_PAGE, mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS)
    pages.madvise(mmap.MADV_HUGEPAGE)
    array = np.frombuffer(pages)[:count].reshape(shape, order="F")
    array[...] = 0.0
    return array


def noise(*shape):
    array = room(*shape)
    array[...] = np.random.default_rng(1).standard_normal(shape)
    return array


class Warm:
    """A call into the library that can be repeated within one timing."""

    def __init__(self, function, *arguments):
        self.call = lambda times: function(*arguments, times)
        if self.call(1):
            raise ValueError("the transform refuses")
        started = time.perf_counter()
        self.call(1)
        self.times = max(1, int(1e-3 / max(time.perf_counter() - started, 1e-7)))

    def seconds(self):
        started = time.perf_counter()
        self.call(self.times)
        return (time.perf_counter() - started) / self.times


class Whole:
    def __init__(self, function):
        self.function = function

    def seconds(self):
        started = time.perf_counter()
        self.function()
        return time.perf_counter() - started


def race(ours, *others):
    """The median of each one's time divided by ours, and our median time."""
    for one in (ours, *others):
        one.seconds()
    turns, end = [], time.perf_counter() + SECONDS
    while time.perf_counter() < end or len(turns) < 5:
        own = ours.seconds()
        turns.append((own, *(other.seconds() / own for other in others)))
    own, *ratios = (statistics.median(column) for column in zip(*turns))
    return ratios, own


def warm_transform(data, levels, name, inverse=0, boundary=b"p"):
    rows, cols = data.shape if data.ndim == 2 else (len(data), 1)
    out = room(*data.shape)
    return Warm(library.bench_transform, name.encode(), ctypes.c_char(boundary), inverse, pointer(data),
                pointer(out), Long(rows), Long(cols), levels)


def warm_table(data, levels, boundary=b"p", name="d8"):
    rows, cols = data.shape if data.ndim == 2 else (len(data), 1)
    table = room((levels + 1) * data.size)
    return Warm(library.bench_packets, name.encode(), ctypes.c_char(boundary), pointer(data), pointer(table),
                Long(rows), Long(cols), levels)


def copy(count):
    source, target = room(count), room(count)
    return Warm(library.bench_copy, pointer(source), pointer(target), Long(count))


def multiply_add(count):
    """This number of products and sums."""
    return Warm(library.bench_multiply_add, Long(count))


class Gsl:
    """GSL's transform, which runs all levels, in place. None of it where the library is missing."""

    def __init__(self):
        found = ctypes.util.find_library("gsl")
        self.library = ctypes.CDLL(found) if found else None
        if found:
            for name in ("gsl_wavelet_alloc", "gsl_wavelet_workspace_alloc"):
                getattr(self.library, name).restype = ctypes.c_void_p

    def transform(self, data, taps, inverse=False):
        if self.library is None:
            return None
        family = ctypes.c_void_p.in_dll(self.library, "gsl_wavelet_daubechies")
        wavelet = ctypes.c_void_p(self.library.gsl_wavelet_alloc(family, ctypes.c_size_t(taps)))
        work = ctypes.c_void_p(self.library.gsl_wavelet_workspace_alloc(ctypes.c_size_t(data.shape[0])))
        own = room(*data.shape)
        own[...] = data
        direction = "inverse" if inverse else "forward"
        size = [ctypes.c_size_t(side) for side in (data.shape[0], *data.shape)]
        if data.ndim == 1:
            call = getattr(self.library, f"gsl_wavelet_transform_{direction}")
            arguments = (wavelet, pointer(own), ctypes.c_size_t(1), size[0], work)
        else:
            call = getattr(self.library, f"gsl_wavelet2d_nstransform_{direction}")
            arguments = (wavelet, pointer(own), size[0], size[1], size[2], work)
        return Whole(lambda: (call(*arguments), own)[0])


gsl = Gsl()


def peer(data, levels, taps, inverse):
    name = f"db{taps // 2}"
    decompose, rebuild = (pywt.wavedec, pywt.waverec) if data.ndim == 1 else (pywt.wavedec2, pywt.waverec2)
    if not inverse:
        return Whole(lambda: decompose(data, name, "periodization", levels))
    parts = decompose(data, name, "periodization", levels)
    return Whole(lambda: rebuild(parts, name, "periodization"))


def show(title, value, aim=None, at_most=False, unit="x"):
    if value is None:
        return
    short = aim is not None and (value > aim * SLACK if at_most else value * SLACK < aim)
    wanted = "" if aim is None else f"{'<=' if at_most else '>='} {aim:g}"
    print(f"{title:58}{value:8.2f}{unit} {wanted:>9}{'  SHORT' if short else ''}", flush=True)


def transform_rows():
    # title, shape, levels, taps, inverse, aims: PyWavelets, GSL, (roofline, multiple)
    wanted = [
        (2**10, 5, 8, 0, 15, 4, None),
        (2**16, 5, 8, 0, 5.5, 5.7, ("multiply-and-add", 2.3)),
        (2**16, 5, 20, 0, 8.5, 5.2, ("multiply-and-add", 2.0)),
        (2**20, 5, 8, 0, 4.3, 5.8, None),
        (2**20, 5, 20, 0, 7.3, 5.6, None),
        (2**23, 5, 8, 0, 5.4, 7, ("memcpy", 2.4)),
        (2**16, 5, 8, 1, 3.6, 6.5, None),
        (2**20, 5, 8, 1, 4.4, 7, None),
        (2**22, 5, 8, 1, 5.3, 7, None),
        ((512, 512), 4, 8, 0, 9.5, 6.5, ("multiply-and-add", 2.5)),
        ((512, 512), 4, 8, 1, 9, 7.5, None),
        ((2048, 2048), 4, 8, 0, 12, 8.5, ("memcpy", 3.8)),
        ((2048, 2048), 4, 8, 1, 11, 8.5, ("memcpy", 3.8)),
        ((4096, 4096), 4, 8, 0, 12, 8.5, ("memcpy", 3.8)),
        ((4096, 4096), 4, 8, 1, 11, 8.5, ("memcpy", 3.8)),
    ]
    for shape, levels, taps, inverse, aim, aim_gsl, roof in wanted:
        data = noise(*(shape if isinstance(shape, tuple) else (shape,)))
        title = f"{'idwt' if inverse else 'dwt'} {'x'.join(map(str, data.shape))}, {taps} taps"
        ours = warm_transform(data, levels, f"d{taps}", inverse)
        (ratio,), _ = race(ours, peer(data, levels, taps, inverse))
        show(f"{title}, {levels} levels, warm, PyWavelets", ratio, aim)
        all_levels = min(data.shape).bit_length() - 1
        other = gsl.transform(data, taps, inverse)
        if other:
            (ratio,), _ = race(warm_transform(data, all_levels, f"d{taps}", inverse), other)
            show(f"{title}, all levels, warm, GSL", ratio, aim_gsl)
        if roof:
            dimensions = data.ndim
            outputs = sum(dimensions * data.size / 2 ** (dimensions * level) for level in range(levels))
            base = copy(data.size) if roof[0] == "memcpy" else multiply_add(int(outputs * taps))
            (ratio,), _ = race(ours, base)
            show(f"{title}, {levels} levels, of {roof[0]}", 1 / ratio, roof[1], at_most=True)


def table_rows():
    for shape, levels, aim, roof in (((2**16,), 8, 12, 2.5), ((2**20,), 8, 6, 1.5), ((1024, 1024), 4, 8, None)):
        data = noise(*shape)
        packets = pywt.WaveletPacket if data.ndim == 1 else pywt.WaveletPacket2D
        ours = warm_table(data, levels)
        title = f"packet table {'x'.join(map(str, shape))}, {levels} levels"
        other = Whole(lambda: packets(data, "db4", "periodization", levels).get_level(levels, "freq"))
        (ratio,), _ = race(ours, other)
        show(f"{title}, warm, PyWavelets", ratio, aim)
        if roof:
            (ratio,), _ = race(ours, copy((levels + 1) * data.size))
            show(f"{title}, of memcpy of the table", 1 / ratio, roof, at_most=True)


def step_rows():
    for n in (8, 16, 64):
        data = noise(n)
        (ratio,), _ = race(warm_transform(data, 1, "d8"), Whole(lambda: pywt.dwt(data, "db4", "periodization")))
        show(f"one step, {n} samples, 8 taps, warm, PyWavelets", ratio, 30)
    data = noise(16)
    w = undula.daublet(8)
    _, own = race(Whole(lambda: undula.dwt(data, 1, w)))
    show("one step, 16 samples, a whole call from Python", own * 1e9, unit=" ns")


def boundary_rows():
    """The other treatments beside the periodic one, with filters of one length."""
    for boundary, name, same in ((b"s", "bs22", "bs22"), (b"i", "s8", "s8")):
        for inverse in (0, 1):
            for n in (2**12, 2**20):
                data = noise(n)
                periodic = warm_transform(data, 5, same, inverse)
                (ratio,), _ = race(periodic, warm_transform(data, 5, name, inverse, boundary))
                title = f"{'symmetric' if boundary == b's' else 'interval'} {'idwt' if inverse else 'dwt'} {n}"
                show(f"{title}, of periodic", ratio, 1.25, at_most=True)
        data = noise(2**16)
        (ratio,), _ = race(warm_table(data, 8, b"p", same), warm_table(data, 8, boundary, name))
        show(f"packets of 256, {boundary.decode()}, of periodic", ratio, 1.25, at_most=True)


def python_rows():
    w = undula.daublet(8)
    for shape, levels, inverse, aim in (
        ((2**10,), 5, 0, 6), ((2**16,), 5, 0, 4.5), ((2**20,), 5, 0, 3.5), ((2**22,), 5, 0, 3),
        ((2**16,), 5, 1, 3), ((2**20,), 5, 1, 3.5), ((512, 512), 4, 0, 8), ((2048, 2048), 4, 0, 6),
    ):
        data = noise(*shape)
        function = undula.idwt if inverse else undula.dwt
        (ratio,), _ = race(Whole(lambda: function(data, levels, w)), peer(data, levels, 8, inverse))
        show(f"{'idwt' if inverse else 'dwt'} {'x'.join(map(str, shape))}, Python, PyWavelets", ratio, aim)
    for shape, levels in (((2**20,), 8), ((1024, 1024), 4)):
        data = noise(*shape)
        packets = pywt.WaveletPacket if len(shape) == 1 else pywt.WaveletPacket2D
        other = Whole(lambda: packets(data, "db4", "periodization", levels).get_level(levels, "freq"))
        (ratio,), _ = race(Whole(lambda: undula.wpt(data, levels, w)), other)
        show(f"packet table {'x'.join(map(str, shape))}, Python, PyWavelets", ratio, 5)
    data = noise(2**18)
    cosines = Whole(lambda: [scipy.fft.dct(data.reshape(2**j, -1), 4, norm="ortho") for j in range(9)])
    (ratio,), _ = race(Whole(lambda: undula.cpt(data, 8)), cosines)
    engine = undula._host.fourier_engine
    aim = {"kissfft": 2.1, "fftw": 1.2}[engine]
    show(f"cpt 262144, 8 levels, {engine}, Python, of SciPy's DCT-IV", 1 / ratio, aim, at_most=True)


def many_rows():
    """Many signals and many points in one call."""
    count = 1000
    signals = np.random.default_rng(1).standard_normal((count, 2**10))
    for name, w, other in (
        ("d4", undula.daublet(4), "db2"), ("d8", undula.daublet(8), "db4"), ("s16", undula.symmlet(16), "sym8"),
    ):
        ours = Whole(lambda: undula.dwt(signals, 5, w, axis=-1))
        peers = Whole(lambda: pywt.wavedec(signals, other, "periodization", 5, axis=-1))
        (ratio, kernel), _ = race(ours, peers, warm_transform(signals[0], 5, name))
        show(f"dwt of {count} x 1024 along an axis, {name}, PyWavelets", ratio, 3)
        show(f"dwt of {count} x 1024 along an axis, {name}, of the arithmetic", 1 / (count * kernel), 1.3, True)
    x = np.linspace(-1, 2, 100_000)
    for title, points in (
        ("father d4", lambda: undula.father(x, "d4")),
        ("mother s16", lambda: undula.mother(x, "s16")),
        ("wavelet c12, packet 1", lambda: undula.wavelet(x, 0, 0, 1, undula.coiflet(12))),
        ("waveterp d4, level 0", lambda: undula.waveterp(x, signals[0], 0, 0, undula.daublet(4))),
    ):
        _, own = race(Whole(points))
        show(f"{title}, a point", own / len(x) * 1e6, 0.3, at_most=True, unit=" us")


def draw(path):
    """Nanoseconds a sample against the size, dwt of 5 levels with 8 taps."""
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    sizes = [2**e for e in range(8, 23)]
    times = {"Undula, warm": [], "Undula, from Python": [], "PyWavelets": [], "GSL, all levels": []}
    w = undula.daublet(8)
    for n in sizes:
        data = noise(n)
        racers = [warm_transform(data, 5, "d8"), Whole(lambda: undula.dwt(data, 5, w)), peer(data, 5, 8, 0)]
        racers += [gsl.transform(data, 8)] if gsl.library else []
        ratios, own = race(*racers)
        for series, ratio in zip(times.values(), (1, *ratios)):
            series.append(own * ratio / n * 1e9)
    figure, axes = plt.subplots(figsize=(8, 5))
    for label, series in times.items():
        if series:
            axes.loglog(sizes, series, marker="o", base=2, label=label)
    axes.set(xlabel="samples", ylabel="nanoseconds a sample", title="dwt, 8 taps, 5 levels, one core")
    axes.grid(True, which="both", alpha=0.3)
    axes.legend()
    figure.savefig(path, dpi=110, bbox_inches="tight")


if __name__ == "__main__":
    print(f"Kernels: {library.bench_kernel_name().decode()}")
    for rows in (transform_rows, table_rows, step_rows, boundary_rows, python_rows, many_rows):
        rows()
    if len(sys.argv) > 2:
        draw(sys.argv[2])

"""`python3 -m undula`: what is installed, what it can do, and whether it does it."""

import os
import sys
import time
from pathlib import Path

import numpy as np

import undula
from undula import _host
from undula._descriptions import read_descriptions

PRECISION = 1e-6  # of the least exact filters, but for the orthonormal splines
CUT_OFF = 5e-2


def groups():
    """The functions of each group, with what they are for."""
    lines = []
    for description in read_descriptions().values():
        if not lines or lines[-1][0] != description.group:
            lines.append((description.group, []))
        lines[-1][1].append(f"  {description.name:<16}{description.summary}")
    return "\n\n".join("\n".join([group, *functions]) for group, functions in lines)


def checks():
    """Names of identities, and how far each is from holding, beside how far it may be."""
    rng = np.random.default_rng(1)
    signal, image = rng.uniform(-1, 1, 2**14), rng.uniform(-1, 1, (256, 256))
    transforms = {"periodic": ("", 3), "symmetric": ("s", 3), "interval": ("i", 1)}
    for wavelet in undula.wavelets():
        allowed = CUT_OFF if wavelet.function == "bl" else PRECISION
        for boundary in wavelet.boundaries:
            ending, level = transforms[boundary]
            name = f"{boundary} transform, {wavelet.name}"
            for data in (signal, image):
                yield name, _there_and_back(data, ending, level, wavelet), allowed
        taps = getattr(undula, wavelet.function)(*wavelet.arguments)
        difference = undula.father(0.3, wavelet.name) - undula.father(0.3, taps)
        yield f"value by name and by filter, {wavelet.name}", abs(difference), 0.0
    for ending, name in (("", "daublet4"), ("s", "Bspline24"), ("i", "symmlet8")):
        yield f"wavelet packets, {name}", _packets_there_and_back(signal, ending, name), PRECISION
    yield "cosine packets", _cosines_there_and_back(signal), PRECISION


def _there_and_back(data, ending, level, wavelet):
    there = getattr(undula, f"dwt{ending}")(data, level, wavelet.name)
    return np.abs(getattr(undula, f"idwt{ending}")(there, level, wavelet.name) - data).max()


def _packets_there_and_back(data, ending, name):
    table = getattr(undula, f"wpt{ending}")(data, 4, name)
    basis = undula.best_basis(table, abs)
    coefficients = undula.extract_basis(table, basis)
    return np.abs(getattr(undula, f"iwpt{ending}")(coefficients, basis, name) - data).max()


def _cosines_there_and_back(data):
    table = undula.cpt(data, 4)
    basis = undula.best_basis(table, abs)
    return np.abs(undula.icpt(undula.extract_basis(table, basis), 4, basis) - data).max()


def main():
    print(f"undula {undula.__version__}")
    print(f"loaded from {Path(undula.__file__).parent}")
    print(f"Python {sys.version.split()[0]}, NumPy {np.__version__}")
    print(f"Fourier transforms by {_host.fourier_engine}")
    print(f"\n{groups()}\n")
    started, failed, count = time.perf_counter(), 0, 0
    for name, difference, allowed in checks():
        count += 1
        if not difference <= allowed:
            failed += 1
            print(f"FAILED: {name}: off by {difference:.2g}, at most {allowed:.2g} is allowed")
    print(f"self-test: {count - failed} of {count} identities hold ({time.perf_counter() - started:.1f} s)")
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) > 1:
        sys.exit(f"{__doc__}\n\nIt takes no arguments. The help of a function: help(undula.dwt)")
    try:
        sys.exit(main())
    except BrokenPipeError:  # whoever reads has seen enough; what is left would fail at the end
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        sys.exit(1)

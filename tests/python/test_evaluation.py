"""Functions at points, one by one and over arrays."""

import functools
import threading
import time

import numpy as np
import pytest
import pywt
import undula


# Half the length of the filter. That of db1 and db2 is too rough for what follows.
@pytest.mark.parametrize("order", range(3, 11))
def test_scaling_functions_agree_with_another_library(order):
    """The tabulated function is the true one, shifted by the first moment in grid points."""
    phi, _, x = pywt.Wavelet(f"db{order}").wavefun(level=12)
    x += 1 - order  # where the first tap stands
    moment = np.sum(x * phi) / np.sum(phi)
    points = np.arange(1 - order, order, 1 / 32)
    actual = undula.evaluate(undula.father, points, f"daub{2 * order}")
    assert np.abs(actual - np.interp(points + moment / 32, x, phi)).max() < 2e-3


def test_every_scalar_may_be_an_array():
    w = undula.daublet(6)
    x, n = np.meshgrid(np.linspace(-2, 3, 11), np.arange(6))
    expected = [[undula.wavelet(float(a), 0, 0, int(b), w) for a, b in zip(*row)] for row in zip(x, n)]
    for one, other in ((x, n), (x.T.copy().T, n.astype("u1")), (x.tolist(), n.tolist())):
        assert np.array_equal(undula.evaluate(undula.wavelet, one, 0, 0, other, w), expected)
    shifts = undula.evaluate(undula.dlwavelet, 0.3, 0, range(-3, 4), 1, w)
    assert np.array_equal(shifts, [undula.dlwavelet(0.3, 0, k, 1, w) for k in range(-3, 4)])
    grid = undula.wavelet(x[:1], 0, 0, n[:, :1], w)
    assert np.array_equal(grid, expected)
    one = undula.wavelet(0.3, 0, 0, np.array(1), w)
    assert isinstance(one, float) and one == undula.wavelet(0.3, 0, 0, 1, w)


def test_arguments_that_are_arrays_are_passed_whole(rng):
    c = rng.uniform(-1, 1, 16)
    x = rng.uniform(-20, 20, (3, 4))
    w = undula.Bspline(2, 2)
    for function, *more in ((undula.waveterp, [[-1, 0]]), (undula.swaveterp,)):
        values = undula.evaluate(function, x, c, 2, 3, w, *more)
        assert values.shape == (3, 4)
        assert np.array_equal(values.ravel(), [function(t, c, 2, 3, w, *more) for t in x.ravel()])
    image = undula.evaluate(undula.mother2d, *np.mgrid[0:1:0.25, 0:1:0.5], "haar", "D")
    assert np.array_equal(image.round(12), np.outer([1, 1, -1, -1], [1, -1]))


def test_nothing_is_called_for_an_empty_array():
    assert undula.evaluate(undula.father, np.empty((0, 3)), "no wavelet").shape == (0, 3)


def test_without_an_array_it_is_the_function_itself():
    assert undula.evaluate(undula.father, 0.5, "daub4") == undula.father(0.5, "daub4")
    with pytest.raises(undula.Error, match="Wrong number of Arguments"):
        undula.evaluate(undula.father, [0.5], 0, "daub4")


def test_an_error_tells_the_element(live_values):
    before = live_values()
    shifts = np.zeros((3, 2))
    shifts[1, 1] = 0.5
    with pytest.raises(undula.Error) as caught:
        undula.evaluate(undula.father, 0, 0, shifts, "haar")
    assert str(caught.value) == "father: must be integer (argument 3: shift)"
    assert caught.value.__notes__[-1] == "for the elements at (1, 1)"
    with pytest.raises(undula.Error, match=r"must be real \(argument 1: x\)"):
        undula.evaluate(undula.father, [0, 1j], "haar")
    with pytest.raises(MemoryError):
        undula.evaluate(undula.wavelet, 0, 0, 0, [0, 4294967295], undula.daublet(2))
    with pytest.raises(FloatingPointError):
        undula.evaluate(undula.father, 0, [0, -2000], 0, "haar")
    del caught
    assert live_values() == before


@pytest.mark.parametrize(
    "kind, message, arguments",
    [
        (TypeError, "not a function of the pack", (len, [1])),
        (TypeError, "not a function of the pack", ("father", [1], "haar")),
        (TypeError, "not a function of the pack", (functools.wraps(undula.father)(lambda: 0), [1], "haar")),
        (TypeError, r"father: argument 1 \(x\) does not hold numbers", (undula.father, ["a"], "haar")),
        (TypeError, r"father: argument 1 \(x\) does not hold numbers", (undula.father, [None], "haar")),
        (TypeError, r"father: argument 1 \(x\) does not hold numbers", (undula.father, [[1], [1, 2]], "haar")),
        (TypeError, r"father: argument 1 \(x\) cannot be a masked", (undula.father, np.ma.ones(2), "haar")),
        (ValueError, r"do not fit together: \(2,\), \(3,\)", (undula.father, [1, 2], [1, 2, 3], 0, "haar")),
        (TypeError, "daublet: its result is not a real number", (undula.daublet, 4)),
        (TypeError, "dwt: its result is not a real number", (undula.dwt, [1, 2], 1, [1, 1])),
    ],
)
def test_what_cannot_be_evaluated(kind, message, arguments):
    with pytest.raises(kind, match=message):
        undula.evaluate(*arguments)


def test_one_turn_of_the_pack():
    """Threads of Python run meanwhile; another thread's calls do not change the wavelet."""
    x = np.linspace(-2, 2, 20001)
    expected = undula.evaluate(undula.mother, x, "daub6")
    stop = threading.Event()
    steps = []

    def select_others():
        while not stop.is_set():
            undula.father(0, "symm8")
            steps.append(None)

    thread = threading.Thread(target=select_others)
    thread.start()
    try:
        for _ in range(3):
            assert np.array_equal(undula.evaluate(undula.mother, x, "daub6"), expected)
    finally:
        stop.set()
        thread.join()
    assert steps


def test_an_interrupt_stops_it(alarm):
    x = np.zeros(5_000_000)
    started = time.perf_counter()
    alarm(0.1)
    with pytest.raises(KeyboardInterrupt):
        undula.evaluate(undula.father, x, "daub4")
    assert time.perf_counter() - started < 2

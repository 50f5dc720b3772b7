"""Many signals or images in one call, and transforms of arrays of any number of dimensions."""

import doctest
import time

import numpy as np
import pytest
import undula
from undula import _host
from undula._batches import apply_along

ROWS = {row.name: row for row in _host.load()}

WAVELETS = {"dwt": undula.daublet(8), "dwts": undula.Bspline(2, 2), "dwti": undula.daublet(4)}
ORDERS = {
    "C": np.ascontiguousarray,
    "Fortran": np.asfortranarray,
    "reversed": lambda a: a[::-1, ::-1, ::-1].copy()[::-1, ::-1, ::-1],
    "every other": lambda a: np.repeat(a, 2, -1)[..., ::2],
    "middle axis contiguous": lambda a: a.swapaxes(1, 2).copy().swapaxes(1, 2),
    "float32": lambda a: a.astype(np.float32),
    "complex": lambda a: a.astype(complex),
    "unaligned": lambda a: np.frombuffer(b"x" + a.tobytes(), offset=1).reshape(a.shape),
    "list": np.ndarray.tolist,
}


def along(name, data, axis, level=1):
    function, wavelet = getattr(undula, name), WAVELETS[name.removeprefix("i")]
    return function(data, level, wavelet, axis=axis)


def one_by_one(name, data, axis, level):
    """The same by a loop in Python."""
    function, wavelet = getattr(undula, name), WAVELETS[name.removeprefix("i")]
    last = (-2, -1) if isinstance(axis, tuple) else -1
    data = np.moveaxis(np.asarray(data).real.astype(float), axis, last)
    result = np.empty(data.shape)
    for index in np.ndindex(data.shape[: -np.size(axis)]):
        result[index] = function(data[index], level, wavelet)
    return np.moveaxis(result, last, axis)


@pytest.mark.parametrize("order", ORDERS)
@pytest.mark.parametrize("axis", [0, 1, -1, (1, 2), (2, 0)])
def test_each_signal_and_image_has_the_result_of_a_call(order, axis, rng):
    given = ORDERS[order](rng.integers(-99, 99, (8, 12, 16)).astype(float))
    before = np.array(given)
    for name in ("dwt", "idwt"):
        result = along(name, given, axis, 2)
        assert result.dtype == float and not np.shares_memory(result, given)
        assert np.array_equal(result, one_by_one(name, given, axis, 2))
    assert np.array_equal(given, before)


@pytest.mark.parametrize("name", ["dwt", "idwt", "dwts", "idwts", "dwti", "idwti"])
def test_every_transform_goes_along_an_axis(name, rng):
    for shape in [(40, 16), (3, 5, 16), (16,), (0, 16), (2, 0, 16)]:
        data = rng.uniform(-1, 1, shape)
        result = along(name, data, -1)
        assert result.shape == shape and np.array_equal(result, one_by_one(name, data, -1, 1))


def test_an_error_tells_the_signal(live_values):
    before = live_values()
    x = np.zeros((3, 4, 8), complex)
    x[2, 1, 0] = 1j
    for name, data, axis, argument, note in [
        ("dwt", x, -1, 1, "for the signal at (2, 1)"),
        ("dwt", x, (1, 2), 1, "for the image at (2,)"),
        ("dwts", np.zeros((5, 1)), 1, 2, "for the signal at (0,)"),
    ]:
        with pytest.raises(undula.Error) as caught:
            along(name, data, axis)
        assert (caught.value.argument, caught.value.__notes__[-1]) == (argument, note)
    huge = np.full((4, 8), 1.0)
    huge[2] = np.finfo(float).max
    with pytest.raises(FloatingPointError) as caught:
        undula.dwt(huge, 1, [1, 1], axis=1)
    assert caught.value.__notes__[-1] == "for the signal at (2,)"
    del caught
    assert live_values() == before


@pytest.mark.parametrize(
    "kind, message, name, data, axis",
    [
        (TypeError, "masked array", "dwt", np.ma.ones((2, 2)), 0),
        (TypeError, "does not hold numbers", "dwt", [["a"]], 0),
        (np.AxisError, "dwt: axis 2 of data with 2 dimensions", "dwt", np.ones((2, 2)), 2),
        (np.AxisError, "axis 0 of data with 0 dimensions", "dwt", 1.0, 0),
        (ValueError, "an axis is given twice", "dwt", np.ones((2, 2)), (1, -1)),
        (ValueError, "that of the signals, or the two", "dwt", np.ones((2, 2, 2)), (0, 1, 2)),
        (TypeError, "an axis is a whole number, not 'x'", "dwt", np.ones((2, 2)), "x"),
        (TypeError, "an axis is a whole number, not True", "dwt", np.ones((2, 2)), True),
        (TypeError, "an axis is a whole number, not \\(0, True", "dwt", np.ones((2, 2)), (0, np.True_)),
    ],
)
def test_what_has_no_signals_along_the_axis(kind, message, name, data, axis):
    with pytest.raises(kind, match=message):
        along(name, data, axis)


def test_results_must_be_arrays_of_one_shape():
    with pytest.raises(TypeError, match="not arrays of one shape"):
        apply_along(ROWS["wpt"], (), (np.ones((3, 8)), 1, [1, 1]), 1, None)


def test_an_interrupt_ends_it(alarm):
    """`get_smooth` does not poll."""
    x = np.broadcast_to(np.ones(64), (2_000_000, 64))
    for row, arguments in ((ROWS["dwt"], (x, 3, WAVELETS["dwt"])), (ROWS["get_smooth"], (x, 3))):
        started = time.perf_counter()
        alarm(0.1)
        with pytest.raises(KeyboardInterrupt):
            apply_along(row, (), arguments, 1, None)
        assert time.perf_counter() - started < 1


@pytest.mark.parametrize("name", WAVELETS)
def test_a_transform_of_two_dimensions_is_that_of_an_image(name, rng):
    forward, inverse, wavelet = getattr(undula, name), getattr(undula, "i" + name), WAVELETS[name]
    x = rng.uniform(-1, 1, (16, 24) if name != "dwts" else (13, 23))
    y = undula.transform_nd(forward, x, 2, wavelet)
    assert np.array_equal(y, forward(x, 2, wavelet))
    assert np.array_equal(undula.transform_nd(inverse, y, 2, wavelet), inverse(y, 2, wavelet))
    volume = rng.uniform(-1, 1, (16, 2, 16, 8))
    axes = (0, -2, 3) if name == "dwti" else None
    there = undula.transform_nd(forward, volume, 1, wavelet, axes=axes and iter(axes))
    whole = np.arange(256).reshape(16, 16)
    assert np.array_equal(undula.transform_nd(forward, whole, 1, wavelet), forward(whole, 1, wavelet))
    for wrong in (np.ma.array(whole), 5.0, "abc"):
        with pytest.raises((TypeError, ValueError), match="transform_nd"):
            undula.transform_nd(forward, wrong, 1, wavelet)
    assert np.abs(undula.transform_nd(inverse, there, 1, wavelet, axes=axes) - volume).max() < 1e-13
    with pytest.raises(undula.Error, match="invalid level"):
        undula.transform_nd(forward, volume, 9, wavelet)
    with pytest.raises(TypeError, match="argument 1 is not one of dwt"):
        undula.transform_nd(undula.wpt, volume, 1, wavelet)


def test_its_example_runs():
    test = doctest.DocTestFinder().find(undula.transform_nd, globs={"undula": undula, "np": np})[0]
    assert test.examples and doctest.DocTestRunner().run(test).failed == 0

"""Python values on their way in and out. `dwt` with level 0 answers a copy of any real array."""

import array
import copy
import re

import numpy as np
import pytest
import undula

HAAR = undula.daublet(2)


def through(value):
    return undula.dwt(value, 0, HAAR)


ORDERS = {
    "C": np.ascontiguousarray,
    "Fortran": np.asfortranarray,
    "transposed": lambda a: a.T.copy().T,
    "reversed": lambda a: a[::-1, ::-1].copy()[::-1, ::-1],
    "block of a Fortran array": lambda a: np.asfortranarray(np.pad(a, 2))[2:-2, 2:-2],
    "block of a C array": lambda a: np.pad(a, 2)[2:-2, 2:-2],
    "every other element": lambda a: np.repeat(np.repeat(a, 2, 0), 2, 1)[::2, ::2],
    "read-only": lambda a: np.frombuffer(a.tobytes()).reshape(a.shape),
    "other endian": lambda a: a.astype(a.dtype.newbyteorder()),
    "unaligned": lambda a: np.frombuffer(b"x" + a.tobytes(), offset=1).reshape(a.shape),
    "single column": lambda a: a[:, :1],
    "single row": lambda a: a[:1],
    "repeated row": lambda a: np.broadcast_to(a[0], a.shape),
}


@pytest.mark.parametrize("order", ORDERS)
def test_an_image_of_any_memory_order_arrives_as_it_reads(order):
    given = ORDERS[order](np.arange(1.0, 13.0).reshape(4, 3))
    before = given.copy()
    result = through(given)
    assert result.dtype == np.float64
    assert np.array_equal(result, given[:, 0] if given.shape[1] == 1 else given)
    assert np.array_equal(given, before)


@pytest.mark.parametrize("dtype", ["?", "b", "B", "h", "i", "q", "Q", "e", "f", "d", "g"])
def test_any_real_dtype_arrives_as_doubles(dtype):
    column = np.array([0, 1, 3, 7]).astype(dtype)
    assert np.array_equal(through(column), column.astype(float))
    assert np.array_equal(through(column.reshape(2, 2)), column.reshape(2, 2).astype(float))


@pytest.mark.parametrize(
    "given, expected",
    [
        ([1, 2.5, True], [1, 2.5, 1]),
        ((np.float32(3), np.int8(-2), np.array(4)), [3, -2, 4]),
        (range(3), [0, 1, 2]),
        (array.array("h", [5, 6]), [5, 6]),
        ([], []),
        ([[1], [2]], [1, 2]),
        ([range(2), (5, 6)], [[0, 1], [5, 6]]),
        ([[], []], np.empty((2, 0))),
        (np.empty((0, 3)), np.empty((0, 3))),
        (np.array([[1, 2], [3, 4]], dtype=object), [[1, 2], [3, 4]]),
        ([1 + 0j, 2], [1, 2]),
        (memoryview(np.array([[1.0, 2.0], [3.0, 4.0]])), [[1, 2], [3, 4]]),
        (memoryview(b"ab"), [97, 98]),
        (np.array([[1, 2], [3, 4]]).view(np.matrix), [[1, 2], [3, 4]]),
        (np.array([[1, 2], [3, 4]], object).view(np.matrix), [[1, 2], [3, 4]]),
    ],
)
def test_sequences_are_columns_and_matrices(given, expected):
    result = through(given)
    assert result.shape == np.shape(expected)
    assert np.array_equal(result, expected)


class Liar(np.ndarray):
    """Says of itself what is not true, also to who copies or lists it."""

    shape = size = property(lambda self: (1,))
    real = imag = property(lambda self: np.ones(1))

    def ravel(self, *_):
        return np.ones(1, object)

    def item(self, *_):
        return 7.0


@pytest.mark.parametrize("dtype", [float, complex, object, np.float32])
def test_sizes_and_numbers_are_those_of_the_array_itself(dtype):
    given = np.arange(64).astype(dtype)
    assert np.array_equal(through(given.view(Liar)), np.arange(64))
    assert np.array_equal(through(given.reshape(8, 8).view(Liar)), np.arange(64).reshape(8, 8))
    assert np.array_equal(undula.daublet(given[4:5].reshape(()).view(Liar)), undula.daublet(4))


def test_numbers_that_are_not_finite_pass_through():
    given = np.array([np.nan, np.inf, -np.inf, -0.0])
    assert through(given).tobytes() == given.tobytes()


@pytest.mark.parametrize(
    "given, reason",
    [
        ({}, "type dict"),
        (None, "type NoneType"),
        (b"ab", "type bytes"),
        ([1, "a"], "holds a str"),
        ([1, [2]], "holds a list"),
        ([[1, 2], [3]], "rows of different lengths"),
        ([[[1]]], "holds a list"),
        ([np.ones(2), "a"], "holds a str"),
        (np.ones((1, 1, 1)), "3 dimensions"),
        (np.array(["a"]), "array of <U1"),
        (np.datetime64(1, "D"), "array of datetime64"),
        (np.array([None]), "holds a NoneType"),
        (np.array(np.datetime64(4, "ns")), "array of datetime64"),
        (np.zeros(2, dtype=[("a", float)]), "array of"),
        (np.ma.ones(2), "masked array"),
        ([1, np.ma.masked], "masked array"),
    ],
)
def test_anything_else_is_a_type_error_that_names_the_argument(given, reason):
    with pytest.raises(TypeError, match=reason) as caught:
        through(given)
    assert str(caught.value).startswith("dwt: argument 1 (data) ")
    with pytest.raises(TypeError, match=r"^dwt: argument 3 \(wavelet\) "):
        undula.dwt([1, 2], 1, given)


@pytest.mark.parametrize(
    "given, reason",
    [
        (10**400, "int that is too large"),
        ("\0", "character of code 0"),
        ("\u20ac", "beyond Latin-1"),
        (np.broadcast_to(1.0, (2**20, 2**20)), "4 GiB"),
        (np.empty((0, 2**31)), "2\\^31"),
        (np.broadcast_to(np.array(1, object), (2**20, 2**16)), "4 GiB"),
    ],
)
def test_values_that_no_host_can_have(given, reason):
    with pytest.raises(ValueError, match=reason) as caught:
        through(given)
    assert str(caught.value).startswith("dwt: argument 1 (data) ")


@pytest.mark.parametrize("leaf", [1, np.ones(2)])
def test_a_list_that_is_in_many_places_is_read_once(leaf):
    shared = [leaf]
    for _ in range(60):
        shared = [shared, shared]
    with pytest.raises((TypeError, undula.Error), match="list in place of a number|must be real array"):
        through(shared)


def test_what_holds_itself_ends_in_an_error():
    endless = [np.ones(2)]
    endless.append(endless)
    with pytest.raises(RecursionError):
        through(endless)
    hidden = np.empty((), dtype=object)
    hidden[()] = hidden
    with pytest.raises(RecursionError):
        through(hidden)


class Squares(list):
    def __call__(self, x):
        return x * x


@pytest.mark.parametrize("square", [np.square, np.poly1d([1, 0, 0]), Squares([1, 2]), lambda x: np.float32(x * x)])
def test_whatever_can_be_called_is_a_function_where_one_is_wanted(square):
    assert undula.best_basis([np.ones(2)], square).tolist() == [[0, 0]]
    with pytest.raises(undula.Error, match="must be function"):
        undula.best_basis([np.ones(2)], np.ones(2))


def test_a_type_is_a_function():
    value = undula.evaltbl([np.array([1.0, 2.0])], np.float64)[0, 2]
    assert value.tolist() == [1, 2]


def test_what_the_reading_of_an_argument_raises_is_raised():
    class Interrupting:
        def __getattr__(self, name):
            raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        through(Interrupting())


SIGNAL = np.array([3.0, -1, 4, 1, -5, 9, 2, 6])
TABLE = undula.wpt(SIGNAL, 1, HAAR)
# A call with an argument of each kind, and a value of that which every type of numbers can hold.
KINDS = {
    "signal": (lambda given: undula.dwt(given, 2, HAAR), SIGNAL),
    "image": (lambda given: undula.dwt(given, 2, HAAR), SIGNAL * SIGNAL[:4, None]),
    "filter": (lambda given: undula.dwt(SIGNAL, 2, given), np.array([0.0, 1, 2, 3])),
    "pair of filters": (lambda given: undula.dwt(SIGNAL, 2, given), np.array([[1.0, 2], [3, 4]])),
    "offset": (lambda given: undula.dwt(SIGNAL, 2, HAAR, given), np.array(3.0)),
    "number": (undula.daublet, np.array(4.0)),
    "points": (lambda given: undula.father(given, HAAR), np.array([-1.0, 0, 1])),
    "signals": (lambda given: undula.dwt(given, 1, HAAR, axis=0), SIGNAL * SIGNAL[:4, None]),
    "basis": (lambda given: undula.extract_basis(TABLE, given), np.array([[1.0, 0], [1, 1]])),
}
TYPES = {
    **{dtype: lambda a, dtype=dtype: a.astype(dtype) for dtype in ("b", "q", "e", "f", "g", "F", "D", ">f8")},
    "objects": lambda a: a.astype(object),
    "list": lambda a: a.tolist(),
    "subclass": lambda a: a.view(Liar),
    "read-only": lambda a: np.broadcast_to(a, a.shape),
    "reversed": lambda a: np.flip(np.flip(a).copy()),
}
REFUSED = {
    "not real": (lambda a: a + 1j, undula.Error, "must be real"),
    "masked": (np.ma.array, TypeError, "cannot be a masked array"),
    "texts": (lambda a: a.astype(str), TypeError, "array of <U|not hold numbers"),
    "dates": (lambda a: a.astype("M8[D]"), TypeError, "array of datetime64|not hold numbers"),
}


@pytest.mark.filterwarnings("ignore:this filter")
@pytest.mark.parametrize("kind", KINDS)
def test_every_argument_comes_in_every_type_of_numbers(kind):
    call, plain = KINDS[kind]
    for type_name, make in TYPES.items():
        given = make(plain.copy())
        before = copy.deepcopy(given)
        assert np.array_equal(call(given), call(plain)), type_name
        assert np.array_equal(given, before), type_name
    for make, error, reason in REFUSED.values():
        with pytest.raises(error, match=reason) as caught:
            call(make(plain))
        assert re.search(r"\w+: (argument \d \(|.* \(argument \d: )\w+\)", str(caught.value))


def test_a_result_shows_the_memory_of_the_host_and_keeps_it(live_values):
    before = live_values()
    column = undula.dwt(np.arange(1024.0), 3, HAAR)
    matrix = undula.dwt(np.ones((64, 32)), 3, HAAR)
    for result in (column, matrix):
        assert not result.flags.owndata and result.base is not None
        assert result.flags.f_contiguous and result.flags.writeable
    assert live_values() == before + 2
    part = column[512:]
    expected = part.copy()
    del column, matrix, result
    assert live_values() == before + 1
    assert np.array_equal(part, expected)
    del part
    assert live_values() == before

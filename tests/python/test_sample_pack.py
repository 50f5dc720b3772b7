"""What no transform shows: user functions, and results of every kind. A small pack has functions
for it: `identity` answers its argument, `evaluate` calls a function, `poll` polls."""

import os
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest
import undula

BUILT = Path(undula.__file__).parents[2] / "lib" / "libsample_pack.so"
PACK = Path(os.environ.get("UNDULA_SAMPLE_PACK", BUILT))
if "UNDULA_SAMPLE_PACK" not in os.environ and not PACK.exists():
    pytest.skip("the sample pack is built with the C++ tests", allow_module_level=True)

ROWS = {row.name: row for row in undula._host.load(str(PACK))}


def identity(value):
    return ROWS["identity"].call((value,), ("value",))


def evaluate(function, argument):
    return ROWS["evaluate"].call((function, argument), ("function", "argument"))


def same(one, other):
    """Equal in type, shape, dtype and content, down to what is nested."""
    if type(one) is not type(other):
        return False
    if isinstance(one, np.ndarray) and one.dtype != object:
        return one.dtype == other.dtype and one.shape == other.shape and np.array_equal(one, other)
    if isinstance(one, (list, np.ndarray)):
        return len(one) == len(other) and all(map(same, one, other))
    return one == other


def object_array(rows):
    result = np.empty((len(rows), len(rows[0])), dtype=object)
    for place in np.ndindex(result.shape):
        result[place] = rows[place[0]][place[1]]
    return result


TABLE = [np.arange(4.0), np.array([[1.0, 2.0], [3.0, 4.0]]), 5.0, np.array([1.0, 2j])]


@pytest.mark.parametrize(
    "given, expected",
    [
        (2, 2.0),
        (2 + 3j, 2 + 3j),
        ("caf\xe9", "caf\xe9"),
        ([1, 2j], np.array([1, 2j])),
        (np.zeros(2, complex), np.zeros(2)),
        (np.array([[1, 2], [3, 4j]], np.complex64), np.array([[1, 2], [3, 4j]])),
        ([[1, 2], [3, 1e-300j]], np.array([[1, 2], [3, 1e-300j]])),
        (TABLE, TABLE),
        (tuple(TABLE), TABLE),
        ([[np.arange(3.0)], [1.0]], [[np.arange(3.0)], np.array([1.0])]),
        (object_array([[1, [2, 3]], [TABLE, 4j]]), object_array([[1.0, np.array([2.0, 3.0])], [TABLE, 4j]])),
    ],
)
def test_values_come_back_as_they_went(given, expected):
    assert same(identity(given), expected)


def test_a_pack_that_answers_its_argument_does_not_hand_out_the_memory_of_the_caller():
    given = np.frombuffer(bytes(24))
    for result in (identity(given), *identity([given])):
        assert np.array_equal(result, given) and not np.shares_memory(result, given)


def test_a_value_that_python_has_no_object_for():
    with pytest.raises(TypeError, match="no object"):
        ROWS["nothing"].call((1,), ())


@pytest.mark.parametrize("argument", [2.0, 2 + 1j, "text", np.array([1.0, 2.0]), np.array([[1, 2j]]), TABLE])
def test_a_user_function_gets_and_answers_values_of_every_kind(argument):
    seen = []
    result = evaluate(lambda value: seen.append(value) or value, argument)
    assert same(seen[0], argument) and same(result, argument)


def test_arrays_in_a_user_function_are_its_own():
    given = np.arange(3.0)
    kept = []

    def function(x):
        x += 1
        kept.append(x)
        return x

    result = evaluate(function, given)
    kept[0][:] = 7
    assert np.array_equal(given, [0, 1, 2])
    assert np.array_equal(result, [1, 2, 3])
    assert np.array_equal(kept[0], [7, 7, 7])


class Refusal(Exception):
    pass


def throw(exception):
    raise exception


def test_an_exception_of_a_user_function_is_raised_by_the_call(live_values):
    """Though this pack goes on after the failure and answers 0."""
    before = live_values()
    raised = Refusal("no")
    with pytest.raises(Refusal) as caught:
        evaluate(lambda _: throw(raised), 1)
    assert caught.value is raised
    assert "throw" in [entry.name for entry in caught.traceback]
    assert live_values() == before


def test_what_a_user_function_answers_is_named_when_it_is_refused():
    with pytest.raises(TypeError) as caught:
        evaluate(lambda _: {}, 1)
    assert str(caught.value) == "evaluate: argument 1 (function), its result cannot be of type dict"
    with pytest.raises(TypeError, match="its result cannot be a masked array"):
        evaluate(lambda _: np.ma.ones(2), 1)


def test_a_user_function_may_call_the_library():
    w = undula.daublet(4)
    x = np.arange(16.0)
    result = evaluate(lambda y: undula.idwt(undula.dwt(y, 2, w), 2, w), x)
    assert np.abs(result - x).max() < 1e-13
    with pytest.raises(undula.Error, match="^dwt: invalid level"):
        evaluate(lambda y: undula.dwt(y, 3, w), x[:4])
    with pytest.raises(Refusal):
        evaluate(lambda y: evaluate(lambda _: throw(Refusal), y), 1)


def test_user_functions_of_several_threads_take_turns(live_values):
    """Each call holds its turn while its function, which needs the interpreter, calls again."""
    before = live_values()

    def work(own):
        return [evaluate(lambda x: evaluate(lambda y: y + own, x), i) - own for i in range(100)]

    with ThreadPoolExecutor(8) as pool:
        assert list(pool.map(work, range(8))) == [list(range(100))] * 8
    assert live_values() == before


def test_the_handler_of_a_signal_ends_a_call_that_polls(alarm):
    alarm(0.05, lambda *_: throw(Refusal))
    started = time.perf_counter()
    with pytest.raises(Refusal):
        ROWS["poll"].call((1e15,), ())
    assert time.perf_counter() - started < 5


def test_polls_are_cheap():
    """Less than a microsecond each: most do not take the interpreter lock."""
    started = time.process_time()
    assert ROWS["poll"].call((1e6,), ()) == 1e6
    assert time.process_time() - started < 1

"""Failed calls, as Python sees them."""

import pickle

import numpy as np
import pytest
import undula

HAAR = undula.daublet(2)


def test_an_error_tells_function_message_and_argument():
    with pytest.raises(undula.Error) as caught:
        undula.dwt([1j, 2], 1, HAAR)
    error = caught.value
    assert isinstance(error, ValueError)
    assert (error.function, error.message, error.argument) == ("dwt", "must be real array", 1)
    assert str(error) == "dwt: must be real array (argument 1: data)"
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), str(again)) == (type(error), str(error))


@pytest.mark.parametrize(
    "kind, message, function, arguments",
    [
        (MemoryError, "out of memory", undula.create_level, (21, 1)),
        (FloatingPointError, "overflow", undula.dwt, ([1.7e308, 1.7e308], 1, [1, 1])),
        (FloatingPointError, "floating point error", undula.dwt, ([np.inf, -np.inf], 1, [1, 1])),
    ],
)
def test_failures_that_python_has_a_class_for_are_of_that_class(kind, message, function, arguments):
    with pytest.raises(kind) as caught:
        function(*arguments)
    assert isinstance(caught.value, undula.Error)
    assert (caught.value.message, caught.value.argument) == (message, 0)
    assert np.array_equal(undula.dwt([1, 2], 1, [1, 1]), [3, -1])


def test_a_wrong_number_of_arguments():
    """Where forms differ in length the pack says so itself, and Python only what they are."""
    for function, count in ((undula.daublet, 2), (undula.get_smooth, 1)):
        with pytest.raises(TypeError, match=r"takes [12] arguments?, got [12]: \w+\("):
            function(*[1] * count)
    for count in (0, 2, 6, 40):
        with pytest.raises(undula.Error, match="^dwt: Wrong number of Arguments$") as caught:
            undula.dwt(*[1] * count)
        assert isinstance(caught.value, TypeError) and caught.value.argument == 0
        assert caught.value.__notes__[0].startswith(f"dwt takes 3 to 5 arguments, got {count}: dwt(")


def test_a_function_where_none_is_expected():
    """It is refused before an earlier argument of another wrong kind."""
    with pytest.raises(undula.Error, match="illegal context") as caught:
        undula.dwt("text", 1, lambda x: x)
    assert caught.value.argument == 3


@pytest.mark.parametrize(
    "name, reason",
    [("d\u20ac4", "characters beyond Latin-1"), ("haar\0", "a character of code 0")],
)
def test_a_text_that_the_pack_cannot_have_is_no_error_of_the_pack(name, reason):
    """It is found before the pack looks at any argument, here at one that it would refuse."""
    with pytest.raises(ValueError, match=rf"^father: argument 2 \(wavelet\) has {reason}$") as caught:
        undula.father(1j, name)
    assert not isinstance(caught.value, undula.Error)

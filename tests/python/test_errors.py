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


def test_an_error_about_the_whole_call_has_argument_0():
    with pytest.raises(undula.Error) as caught:
        undula.get_detail([1, 2], 0)
    assert caught.value.argument == 0
    assert str(caught.value) == "get_detail: invalid packet index"


def test_out_of_memory_is_a_memory_error():
    with pytest.raises(MemoryError) as caught:
        undula.create_level(21, 1)
    assert isinstance(caught.value, undula.Error)
    assert (caught.value.message, caught.value.argument) == ("out of memory", 0)


@pytest.mark.parametrize(
    "message, data",
    [
        ("overflow", [1.7e308, 1.7e308]),
        ("floating point error", [np.inf, -np.inf]),
    ],
)
def test_faults_of_the_arithmetic_are_floating_point_errors(message, data):
    with pytest.raises(FloatingPointError) as caught:
        undula.dwt(data, 1, [1, 1])
    assert isinstance(caught.value, undula.Error)
    assert (caught.value.message, caught.value.argument) == (message, 0)
    assert np.array_equal(undula.dwt([1, 2], 1, [1, 1]), [3, -1])


def test_a_wrong_number_of_arguments():
    with pytest.raises(TypeError, match=r"^daublet\(\) takes 1 positional argument but 2 were given$"):
        undula.daublet(2, 3)
    with pytest.raises(TypeError, match=r"^get_smooth\(\) takes 2 positional arguments but 1 was given$"):
        undula.get_smooth([1, 2])
    with pytest.raises(TypeError, match="keyword argument 'length'"):
        undula.daublet(length=2)
    for count in (0, 2, 6, 40):
        with pytest.raises(undula.Error, match="^dwt: Wrong number of Arguments$") as caught:
            undula.dwt(*[1] * count)
        assert caught.value.argument == 0


def test_a_function_where_none_is_expected():
    """It is refused before an earlier argument of another wrong kind."""
    with pytest.raises(undula.Error, match="illegal context") as caught:
        undula.dwt("text", 1, lambda x: x)
    assert caught.value.argument == 3


def test_other_values_where_a_function_is_expected():
    for value in (1.0, [1.0], "text"):
        with pytest.raises(undula.Error, match="must be function") as caught:
            undula.evaltbl([1.0], value)
        assert caught.value.argument == 2


@pytest.mark.parametrize(
    "name, reason",
    [("d\u20ac4", "characters beyond Latin-1"), ("haar\0", "a character of code 0")],
)
def test_a_text_that_the_pack_cannot_have_is_no_error_of_the_pack(name, reason):
    """It is found before the pack looks at any argument, here at one that it would refuse."""
    with pytest.raises(ValueError, match=rf"^father: argument 2 \(wavelet\) has {reason}$") as caught:
        undula.father(1j, name)
    assert not isinstance(caught.value, undula.Error)


def test_evaluate_refuses_functions_without_a_real_result_before_it_calls_them():
    for arguments in ((undula.daublet, 4), (undula.daublet, [2, 3]), (undula.dwt, [1, 2], 1, HAAR)):
        with pytest.raises(TypeError, match=r"^(daublet|dwt): its result is not a real number$"):
            undula.evaluate(*arguments)

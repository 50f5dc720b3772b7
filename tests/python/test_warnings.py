"""What is computed, but is probably not what was meant."""

import warnings

import numpy as np
import pytest
import undula

X = np.sin(np.arange(64.0) ** 2)
IMAGE = np.outer(X[:32], X[:32])
MIXED = np.array([[1, 0, 1], [1, 1, 0], [1, 1, 1], [2, 0, 0], [2, 0, 1], [2, 1, 0], [2, 1, 1]])
PAIR = undula.Bspline(2, 2)
SHIFTED = [[0, 0.5, 1, 0.5, 0], [0.25, 0.5, 0.25, 0, 0]]

CALLS = {
    "sum 1": (lambda: undula.dwt(X, 1, [0.5, 0.25, 0.25]), "its sum is 1, so multiply it by sqrt\\(2\\)"),
    "no orthonormal": (lambda: undula.wpt(X, 1, [0.7, 0.7, 0.1]), "sum of an orthonormal filter is sqrt"),
    "no pair": (lambda: undula.dwt(X, 1, np.transpose(SHIFTED)), "pair does not reconstruct"),
    "offsets": (lambda: undula.idwt(X, 1, PAIR, [[0, 2]]), "pair does not reconstruct"),
    "waveterp": (lambda: undula.waveterp(1, X, 1, 0, [0.6, 0.6, 0.2]), "not orthonormal"),
    "points": (lambda: undula.father([0, 1], [0.6, 0.6, 0.3]), "not orthonormal"),
    "cost NaN": (lambda: undula.best_basis([X, X], lambda c: c * np.nan), "cost of some coefficient is NaN"),
    "mixed sizes": (lambda: undula.icpt(IMAGE, 3, MIXED), "blocks of the basis are of several sizes"),
    "mixed, own bell": (lambda: undula.ilct(IMAGE, 3, MIXED, np.sqrt), "blocks of the basis are of several"),
}


@pytest.mark.parametrize("call, text", CALLS.values(), ids=CALLS)
def test_a_warning_names_what_is_wrong_at_the_line_of_the_call(call, text):
    with pytest.warns(undula.UndulaWarning, match=text) as caught:
        call()
    assert [warning.filename for warning in caught] == [__file__]


def test_of_a_filter_it_is_said_once():
    taps = np.array([0.4, 0.4, 0.4])
    with pytest.warns(undula.UndulaWarning):
        undula.dwt(X, 1, taps)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        undula.dwt(X, 2, taps)
        undula.idwt(X, 1, taps.tolist())


def test_what_is_right_is_not_warned_of():
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        for wavelet in undula.wavelets():
            undula.dwt(X, 1, getattr(undula, wavelet.function)(*wavelet.arguments).copy())
        undula.dwt(X, 1, undula.daublet(4) * (1 + 1e-5))
        undula.idwt(X, 1, -undula.daublet(6)[::-1], 2, 1)
        undula.icpt(IMAGE, 2, undula.create_level(2, 2))
        undula.icpt(X, 3, [[1, 0], [2, 2], [2, 3]])
        undula.best_basis([X, X], np.abs)

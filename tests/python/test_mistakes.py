"""What newcomers do wrong, and what they are told. The table is also meant to be read."""

import numpy as np
import pytest
import undula
from undula import _descriptions

GIVEN = {
    "np": np,
    "undula": undula,
    "x": np.arange(64.0),
    "image": np.ones((8, 8)),
    "w": undula.symmlet(8),
    "table": undula.wpt(np.arange(64.0), 3, "haar"),
    "level1": undula.create_level(1, 1),
}

MISTAKES = [
    # Order and number
    ("dwt(x, w, 3)", "given was an array of shape (8,); the order is dwt(data, level, wavelet)"),
    ("dwt(x, 3)", "takes 3 to 5 arguments, got 2: dwt(data, level, wavelet, offsets=None, flips=None, *"),
    ("daublet()", "takes 1 argument, got 0"),
    ("father(0.5, 'haar', 2)", "got 3: father(x, wavelet) or father(x, level, shift, wavelet)"),
    ("father('haar', 0.5)", "x is one number; given was 'haar'; the order is father(x, wavelet)"),
    ("best_basis(np.abs, table)", "a function was given for table; the order is best_basis(table, cost)"),
    # Names of arguments
    ("dwt(x, 3, filter=w)", "no argument 'filter'; did you mean 'wavelet'? It takes data, level, wavelet,"),
    ("dwt(x, levls=3, wavelet=w)", "has no argument 'levls'; did you mean 'level'?"),
    ("dwt(x, 3, w, mode='symmetric')", "dwt is periodic, dwts mirrors at the ends, dwti has boundary filters"),
    ("dwt(x, w, level=3)", "got 'level' by position and by name: dwt(data, level, wavelet"),
    ("dwt(x, 3, w, flips=1)", "takes 'flips' only together with 'offsets'"),
    ("wpt(x, wavelet=w)", "misses level_or_basis"),
    # Levels
    ("dwt(np.ones(1000), 5, w)", "1000 rows allow at most level 3; dwts takes any length"),
    ("dwt(np.ones((8, 12)), 3, w)", "8 rows and 12 columns allow at most level 2"),
    ("dwt(np.ones(7), 1, w)", "7 rows allow level 0 only"),
    ("dwts(np.ones(7), 3, 'haar')", "7 rows allow at most level 2"),
    ("dwti(np.ones(48), 3, w)", "48 rows allow at most level 2"),
    ("cpt(x, 6)", "64 rows allow at most level 5"),
    ("dwt(x[None], 3, w)", "a 1 x 64 array is an image of one row; data.ravel() is a signal"),
    ("dwt(x, -1, w)", "levels count from 0"),
    ("dwt(x, np.log2(6), w)", "level was 2.58"),
    ("get_detail(x, 0)", "a level counts from 1, the finest"),
    ("get_subband(x, 2, 4)", "level 2 has 0 to 3"),
    # Wavelets
    ("dwt(x, 3, undula.symmlet)", "symmlet is a function; did you mean what it returns, such as symmlet(4)?"),
    ("dwt(x, 3, 8)", "did you mean daublet(8), or its name 'daublet8'?"),
    ("dwt(x, 3, 3)", "a wavelet is a filter or a name, such as 'daublet4'"),
    ("dwt(x, 3, 'db4', [0, 0])", "the filter is right, but not offsets or flips"),
    ("dwt(x, 3, 'symmlet')", "the names of that kind are symmlet4, symmlet6,"),
    ("dwt(x, 3, 'Haar')", "did you mean 'haar'?"),
    ("dwt(x, 3, 'db11')", "the names of that kind are db1, db2, db3,"),
    ("father(0, 'bior4.4')", "the names of that kind are bior1.1, bior1.3,"),
    ("daublet(5)", "Number of coefficients: 2, 4, 6, ..., 20."),
    ("Bspline(2, 3)", "the pairs are (1, 1), (1, 3),"),
    ("dwt(x, 3, w[None])", "a filter is a column; this one is a row of 8: wavelet.ravel()"),
    ("dwt(x, 3, x.repeat(2))", "at most 100 coefficients; this one has 128"),
    ("dwt(x, 3, w, 0.5)", "the filter is right, but not offsets or flips: each is a number"),
    ("dwti(x, 1, 'db4')", "interval wavelets are daublet4, daublet6, symmlet4,"),
    ("dwts(x, 1, 'db4')", "symmetric wavelets are daublet2, Bspline11,"),
    # Data, tables and bases
    ("dwt(x * 1j, 3, w)", "transform data.real and data.imag one by one"),
    ("get_smooth(x[None], 3)", "a 1 x 64 array is a row; data.ravel() is a column"),
    ("dwt([np.ones(2), np.ones(2)], 1, w)", "of rows of an image make one: np.array(data)"),
    ("get_smooth(image, 1)", "for an image there is get_smooth2d"),
    ("get_detail2d(image, 1, 'h')", 'type is "H", "V" or "D".'),
    ("put_smooth(x, 3, [1, 2])", "as large as what get_smooth returns; given was an array of shape (2,)"),
    ("best_basis(np.array(table), abs)", "a list of arrays, one for each level, such as wpt returns"),
    ("best_basis(table[0], abs)", "a list of arrays of one shape, one for each level, such as wpt returns"),
    ("best_basis(table, 'entropy')", "the costs with a name are shannon, l1 and log_energy"),
    ("best_basis(table, abs(x))", "pass the function itself as cost"),
    ("best_basis(table, lambda c: 'low')", "argument 2 (cost) must return one number, not str"),
    ("best_basis(table, np.atleast_1d)", "argument 2 (cost) must return one number, not numpy.ndarray"),
    ("iwpt(table, level1, w)", "extract_basis(table, basis), is data"),
    ("iwpt(x, 3, w)", "did you mean create_level(3, 1)"),
    ("iwpt(image, level1, w)", "a packet of an image is (level, row, column), as in create_level(level, 2)"),
    ("iwpt(x, [[1, 0]], w)", "the packets must tile the data"),
]


@pytest.mark.parametrize("call, words", MISTAKES)
def test_a_mistake_is_met_with_what_to_do(call, words):
    with pytest.raises((undula.Error, TypeError)) as caught:
        eval(f"undula.{call}", GIVEN)
    told = "; ".join([str(caught.value), *getattr(caught.value, "__notes__", [])])
    assert words in told


ODD = [0, -1, 2.5, 9, 1j, np.nan, np.inf, True, np.int64(9), np.array(9), np.array([]), np.ones((0, 3))]
ODD += [np.ones(8), np.ones((1, 8)), np.ones((8, 3)), np.array([1, 2], object), range(3), [1, 2], [[1, 2]]]
ODD += [[np.ones(8)] * 2, [np.ones(2), np.ones(3)], "haar", "daub5", "", "x", abs, undula.dwt, [[0, 0]]]


@pytest.mark.parametrize("name", _descriptions.read_descriptions())
@pytest.mark.filterwarnings("ignore::undula.UndulaWarning")
def test_whatever_is_given_the_error_stays_that_of_the_pack(name):
    """Notes are made from arguments of all kinds, and must not fail where the call does."""
    choice = np.random.default_rng(len(name))
    for form in _descriptions.read_descriptions()[name].forms:
        for _ in range(1000):
            arguments = [ODD[k] for k in choice.integers(len(ODD), size=len(form))]
            try:
                getattr(undula, name)(*arguments)
            except (ValueError, TypeError) as error:
                told = (f"{name}: argument", f"{name}: shapes")
                assert isinstance(error, undula.Error) or str(error).startswith(told)

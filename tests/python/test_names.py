"""Arguments by name, wavelets by name, and what is said about them."""

import inspect

import numpy as np
import pytest
import pywt
import undula
from undula import _binding, _descriptions

DESCRIPTIONS = _descriptions.read_descriptions()
WAVELETS = undula.wavelets()
X = np.sin(np.arange(64.0) ** 2)


def filter_of(wavelet):
    return getattr(undula, wavelet.function)(*wavelet.arguments)


@pytest.mark.parametrize("name", DESCRIPTIONS)
def test_arguments_by_name_go_where_those_by_position_go(name):
    bind = _binding.binder(DESCRIPTIONS[name])
    for form in DESCRIPTIONS[name].forms:
        values = tuple(object() for _ in form)
        for count in range(len(form)):
            named = list(zip(form, values))[count:]
            for given in (named, named[::-1], named):
                assert bind(values[:count], dict(given)) == values


def test_signatures_show_names_and_defaults():
    shown = {name: str(inspect.signature(getattr(undula, name))) for name in DESCRIPTIONS}
    assert shown["dwt"] == "(data, level, wavelet, offsets=None, flips=None, *, axis=None)"
    assert shown["mother2d"] == "(x, y, wavelet, type, *, level=0, shift_x=0, shift_y=0)"
    assert all("..." not in text for text in shown.values())


def test_defaults_and_second_names():
    expected = undula.father(0.3, 0, 1, "daub4")
    assert undula.father(0.3, "daub4", shift=1) == expected == undula.father(0.3, shift=1, wavelet="daub4")
    assert undula.father(0.3, "daub4", level=0) == undula.father(0.3, "daub4")
    w, basis = undula.daublet(4), undula.create_level(2, 1)
    table = undula.wpt(X, wavelet=w, level=2)
    assert np.array_equal(table[2], undula.wpt(X, basis=basis, wavelet=w))
    assert np.array_equal(undula.dwt(X, 2, w, None, None), undula.dwt(X, 2, w, flips=None))
    assert np.array_equal(undula.dwt(X, 2, w, -1), undula.dwt(X, 2, w, -1, flips=None))
    for wrong in ({"level": 2, "basis": basis}, {"level": 2, "offsets": None, "flips": 0}):
        with pytest.raises(TypeError):
            undula.wpt(X, wavelet=w, **wrong)


@pytest.mark.parametrize("wavelet", WAVELETS, ids=lambda wavelet: wavelet.name)
def test_every_name_of_a_wavelet_is_taken_everywhere(wavelet):
    """Values of functions are those of the packets of the filter, bit for bit."""
    taps = filter_of(wavelet)
    points = np.linspace(-5, 6, 45)
    for name in wavelet.names():
        assert np.array_equal(undula.dwt(X, 2, name), undula.dwt(X, 2, taps))
        for function in (undula.father, undula.dlmother):
            for level, shift in ((0, 0), (1, -2)):
                by_name = undula.evaluate(function, points, name, shift=shift, level=level)
                assert np.array_equal(by_name, undula.evaluate(function, points, level, shift, taps))
                assert by_name[9] == function(points[9], level, shift, taps)
    assert np.array_equal(undula.denoise(X, wavelet.name), undula.denoise(X, taps))
    for function, types in ((undula.father2d, [()]), (undula.dlmother2d, "HVD")):
        for kind in types:
            by_name = function(0.3, 0.6, wavelet.name, *kind)
            assert by_name == function(0.3, 0.6, taps, *kind)
            assert by_name == function(0.3, 0.6, 0, 0, 0, taps, *kind)


@pytest.mark.parametrize("wavelet", WAVELETS, ids=lambda wavelet: wavelet.name)
def test_what_is_said_about_wavelets(wavelet):
    taps = filter_of(wavelet)
    pair = [np.trim_zeros(column, "b") for column in (taps.T if taps.ndim == 2 else [taps, taps])]
    assert wavelet.taps == tuple(map(len, pair))
    assert wavelet.symmetric == all(np.allclose(side, side[::-1], 0, 1e-12) for side in pair) or (
        wavelet.name == "bl0"  # among zeros
    )
    cut_off = 3e-3 if wavelet.function == "bl" else 1e-9
    for moments, low in zip(wavelet.moments, pair[::-1]):
        place = np.linspace(-1, 1, len(low))
        sums = [abs(np.sum((-1.0) ** np.arange(len(low)) * place**k * low)) for k in range(moments + 1)]
        assert max(sums[:-1]) < cut_off and (sums[-1] > 1e-6)
    for boundary, transform in (("periodic", "dwt"), ("symmetric", "dwts"), ("interval", "dwti")):
        try:
            getattr(undula, transform)(X, 1, wavelet.name)
        except undula.Error:
            assert boundary not in wavelet.boundaries
        else:
            assert boundary in wavelet.boundaries
    assert wavelet.name in repr(WAVELETS)
    if not wavelet.pywavelets:
        return
    other = pywt.Wavelet(wavelet.pywavelets)
    assert other.vanishing_moments_psi == wavelet.moments[0]
    expected = (other.dec_lo, other.rec_lo) if wavelet.function == "Bspline" else (other.rec_lo, other.rec_lo)
    for own, theirs in zip(pair, expected):
        assert np.abs(own - np.trim_zeros(theirs)).max() < 2e-5  # test_filters.py says how many digits


def test_where_names_collide_the_pack_wins():
    """The number is that of coefficients in the pack's names, of the order in the other library's."""
    lengths = {"coif6": 6, "coif1": 6, "coif5": 30, "coif30": 30, "daub4": 4, "db4": 8, "symm8": 8, "sym8": 16}
    for name, length in lengths.items():
        impulse = undula.idwt(np.eye(1, 64, 40)[0], 1, name)
        assert np.count_nonzero(impulse) == length

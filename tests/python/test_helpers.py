"""Thresholds, denoising, padding and views, against formulas, another library and the pack's own copies."""

import re
import textwrap
from pathlib import Path

import numpy as np
import pytest
import pywt
import undula
from undula import _denoise, thresholding

W = undula.daublet(8)  # "db4" elsewhere


def test_shrinking_is_that_of_another_library(rng):
    x = np.append(rng.normal(size=(50, 3)), [[0.5, -0.5, np.nan]], axis=0)
    for t in (0, 0.5, 2.0):
        for ours, mode in ((thresholding.soft, "soft"), (thresholding.hard, "hard")):
            np.testing.assert_allclose(ours(x, t), pywt.threshold(x, t, mode), rtol=0, atol=1e-15)


def stein_risk(x, t, sigma):
    return sum(sigma**2 - 2 * sigma**2 * (abs(each) <= t) + min(abs(each), t) ** 2 for each in x)


@pytest.mark.parametrize("sigma", [0.1, 1.0, 3.0])
def test_sure_is_the_best_of_all_candidates(sigma, rng):
    for x in (rng.normal(size=40), rng.normal(size=40) * (rng.uniform(size=40) < 0.2), [0.0, 1.0, 1.0], [5.0]):
        candidates = [0.0, *np.abs(x)]
        most = thresholding.universal(len(x), sigma)
        expected = min((stein_risk(x, t, sigma), t) for t in candidates if t <= most)
        found = thresholding.sure(x, sigma)
        assert found in candidates and found <= most
        assert stein_risk(x, found, sigma) == pytest.approx(expected[0], abs=1e-10)


def test_thresholds_of_noise_alone(rng):
    x = rng.normal(0, 3, 100_000)
    assert thresholding.noise(x) == pytest.approx(3, rel=0.02)
    assert thresholding.bayes(x, 3.1) == np.abs(x).max()
    assert thresholding.bayes(10 * x, 3) == pytest.approx(9 / np.sqrt(891), rel=0.02)


def other_denoise(data, level):
    """The same by another library, with the mirrored data written out."""
    margins = [min(7 << level, (side + 1) // 2) for side in data.shape]
    behind = [m + -(side + 2 * m) % (1 << level) for side, m in zip(data.shape, margins)]
    padded = np.pad(data, list(zip(margins, behind)), "symmetric")
    smooth, *details = pywt.wavedecn(padded, "db4", "periodization", level)
    sigma = np.median(np.abs(details[-1]["d" * data.ndim])) / 0.6744897501960817
    t = sigma * np.sqrt(2 * np.log(data.size))
    shrunk = [{key: pywt.threshold(block, t) for key, block in each.items()} for each in details]
    restored = pywt.waverecn([smooth, *shrunk], "db4", "periodization")
    return restored[tuple(slice(m, m + side) for m, side in zip(margins, data.shape))]


@pytest.mark.filterwarnings("ignore:Level value")
@pytest.mark.parametrize("shape, level", [((300,), 4), ((64,), 2), ((5,), 1), ((50, 37), 2)])
def test_denoise_is_that_of_another_library(shape, level, rng):
    data = np.cumsum(rng.normal(size=shape), axis=0)
    np.testing.assert_allclose(
        undula.denoise(data, W, level, threshold="universal"), other_denoise(data, level), rtol=0, atol=1e-11
    )


SPLINES = [undula.Bspline(m, n) for m, n in [(2, 4), (3, 3), (1, 5)]]


@pytest.mark.parametrize("wavelet", [W, undula.bl(1), *SPLINES])
def test_gains_of_noise_are_the_norms_of_rows(wavelet):
    side = 512
    transform = np.array([undula.dwt(unit, 3, wavelet) for unit in np.eye(side)]).T
    for level, gains in enumerate(_denoise._noise_gains(wavelet, 3), 1):
        details = undula.levels(transform, 3, axis=0).details[-level]
        assert gains[1] == pytest.approx(np.linalg.norm(details[len(details) // 2]), rel=1e-6)
    assert gains[0] == pytest.approx(np.linalg.norm(transform[side // 16]), rel=1e-6)


@pytest.mark.parametrize("wavelet", [W, undula.Bspline(2, 4), undula.daublet(2)])
@pytest.mark.parametrize("shape", [(0,), (1,), (2,), (37,), (5, 3), (9, 1), (64, 50)])
def test_a_threshold_of_zero_changes_nothing(wavelet, shape, rng):
    data = rng.normal(size=shape)
    before = data.copy()
    for extension in ("symmetric", "periodic", "constant"):
        if data.size:
            result = undula.denoise(data, wavelet, threshold=0, extension=extension)
            np.testing.assert_allclose(result, data, rtol=0, atol=1e-11)
    assert undula.denoise(data, wavelet).shape == shape
    np.testing.assert_array_equal(data, before)


# The lifting scheme's pair of Daubechies and Sweldens with four vanishing moments each, without its scaling.
NINE_SEVEN = np.array(
    [
        [0.0378284555, -0.0238494650, -0.1106244044, 0.3774028556, 0.8526986790, 0.3774028556, -0.1106244044,
         -0.0238494650, 0.0378284555],
        [-0.0645388826, -0.0406894176, 0.4180922732, 0.7884856164, 0.4180922732, -0.0406894176, -0.0645388826,
         0, 0],
    ]
).T  # fmt: skip


def test_denoise_goes_by_the_offsets_and_the_scale_of_the_data(rng):
    data = np.sin(np.arange(96.0) / 5) + rng.normal(0, 0.1, 96)
    kept = undula.denoise(data, NINE_SEVEN, 2, threshold=0, offsets=[[-4, -3]])
    np.testing.assert_allclose(kept, data, rtol=0, atol=1e-8)
    for exponent in (-900, 900):
        scaled = undula.denoise(np.ldexp(data, exponent), W)
        np.testing.assert_array_equal(np.ldexp(scaled, -exponent), undula.denoise(data, W))
    smooth = undula.denoise(np.ldexp(data, -900), W, threshold=1e300, sigma=1e300)
    np.testing.assert_array_equal(np.ldexp(smooth, 900), undula.denoise(data, W, threshold=1e9))


def test_denoise_and_thresholds_go_along_axes_and_take_whole_numbers(rng):
    stack = rng.integers(-99, 99, (9, 3, 8)).astype("b")
    denoised = undula.denoise(stack, W, np.uint64(1), axis=(0, 2))
    np.testing.assert_array_equal(denoised[:, 1], undula.denoise(stack[:, 1].astype(float), W, 1.0))
    samples = np.array([20000] * 2 + [300] * 50 + [250] * 50, "h")
    assert thresholding.sure(samples, 100.0) == thresholding.sure(samples.astype(float), 100.0)
    assert thresholding.noise(np.array([-128] * 3, "b")) == pytest.approx(128 / 0.6744897501960817)


def test_noise_goes_at_the_ends_too(rng):
    line = np.linspace(0, 20, 201)
    trials = line + rng.normal(size=(200, 201))
    errors = undula.denoise(trials, undula.symmlet(8), axis=1) - line
    ends = np.sqrt(np.mean(errors[:, [0, 1, 2, -3, -2, -1]] ** 2))
    assert ends < 0.6
    assert np.sqrt(np.mean(errors**2)) < 0.35


@pytest.mark.parametrize("shape", [(8,), (37,), (3,), (24, 37), (7, 4)])
def test_views_are_what_the_pack_copies(shape, rng):
    y = rng.normal(size=shape)
    for level in range(min(shape).bit_length()):
        smooth, details = undula.levels(y, level)
        assert len(details) == level
        image = len(shape) == 2
        copy = undula.get_smooth2d if image else undula.get_smooth
        np.testing.assert_array_equal(smooth, np.reshape(copy(y, level), smooth.shape))
        for j in range(1, level + 1):
            parts = details[-j]._asdict() if image else {None: details[-j]}
            for letter, view in parts.items():
                expected = undula.get_detail2d(y, j, letter) if image else undula.get_detail(y, j)
                np.testing.assert_array_equal(view, np.reshape(expected, view.shape))
                assert view.base is not None and np.shares_memory(view, y)


def test_views_along_an_axis_and_of_many_images(rng):
    y = rng.normal(size=(5, 6, 9))
    smooth, details = undula.levels(y, 2, axis=1)
    assert smooth.shape == (5, 2, 9) and [each.shape for each in details] == [(5, 1, 9), (5, 3, 9)]
    np.testing.assert_array_equal(np.concatenate([smooth, *details], axis=1), y)
    np.testing.assert_array_equal(undula.levels(y, 1).details[0].V[3], undula.levels(y[3], 1).details[0].V)


@pytest.mark.parametrize(
    "shape, level, margin", [((13,), 3, 0), ((16,), 3, 5), ((9, 20), 2, (0, 3)), ((0,), 0, 0)]
)
def test_padding_divides_and_is_trimmed(shape, level, margin, rng):
    data = rng.normal(size=shape)
    for mode in ("symmetric", "periodic", "edge", "constant"):
        padded = undula.pad(data, np.array(level, complex), mode, margin)
        margins = np.broadcast_to(margin, len(shape))
        assert all(
            side % 2**level == 0 and side - old - 2 * m < 2**level
            for side, old, m in zip(padded.data.shape, shape, margins)
        )
        assert [place.start for place in padded.place] == list(margins)
        np.testing.assert_array_equal(padded.trim(padded.data), data)
    assert undula.pad(np.zeros((6, 7)), 2, axis=0).data.shape == (8, 7)


@pytest.mark.parametrize(
    "kind, message, call",
    [
        (ValueError, "threshold cannot be negative", lambda: thresholding.soft([1], -1)),
        (TypeError, "must be real numbers, not complex128", lambda: thresholding.hard([1j], 1)),
        (TypeError, "the mask would be lost", lambda: undula.pad(np.ma.masked_array([1, 2], [0, 1]), 1)),
        (TypeError, "must be real numbers, not <U1", lambda: undula.denoise(["a"], W)),
        (ValueError, "data must be finite", lambda: undula.denoise([1, np.nan], W)),
        (ValueError, "3 dimensions; of several signals or images give", lambda: undula.denoise([[[1]]], W)),
        (ValueError, "5 samples allow levels 0 to 2, not 3", lambda: undula.denoise(np.ones(5), W, 3)),
        (ValueError, '"mini" is not one of sure, bayes', lambda: undula.denoise([1, 2], W, threshold="mini")),
        (ValueError, '"firm" is not one of soft, hard', lambda: undula.denoise([1, 2], W, shrink="firm")),
        (ValueError, "levels: 3 samples allow levels 0 to 1", lambda: undula.levels(np.ones((3, 8)), 2)),
        (TypeError, "must be an array", lambda: undula.levels([1, 2], 1)),
        (ValueError, "pad: 3 samples allow levels 0 to 1", lambda: undula.pad([1, 2, 3], 2)),
        (ValueError, "data.ravel\\(\\) is a signal", lambda: undula.denoise(np.ones((1, 9)), W)),
        (ValueError, "sigma must be 0 or more and finite", lambda: undula.denoise([0, 0], W, sigma=np.nan)),
        (ValueError, "threshold must be 0 or more", lambda: undula.denoise([1, 2], W, 0, threshold=np.nan)),
        (TypeError, "threshold must be a number, not None", lambda: undula.denoise([1, 2], W, threshold=None)),
        (undula.Error, "filter unimplemented", lambda: undula.denoise([1, 2], [])),
        (ValueError, "does not reconstruct; has it offsets", lambda: undula.denoise(np.ones(9), NINE_SEVEN)),
        (ValueError, "details must be finite", lambda: thresholding.sure([1, np.nan])),
        (ValueError, "bayes: there are no details", lambda: thresholding.bayes([])),
        (ValueError, "universal: count must be 1 or more, not 0", lambda: thresholding.universal(0)),
        (ValueError, "universal: sigma must be 0 or more", lambda: thresholding.universal(1, np.nan)),
        (TypeError, "must be real numbers, not complex128", lambda: thresholding.noise([1, 2j])),
        (ValueError, "threshold must be 0 or more", lambda: undula.costs.count_above(np.nan)),
        (TypeError, "level must be a whole number, not 1.5", lambda: undula.pad([1, 2, 3], 1.5)),
        (TypeError, "level must be a whole number, not nan", lambda: undula.pad([1, 2, 3], np.nan)),
        (TypeError, "level must be a whole number, not array", lambda: undula.pad([1], np.array(-np.inf))),
        (TypeError, "margin must be a whole number, not 1.9", lambda: undula.pad([1, 2, 3], 1, margin=1.9)),
        (ValueError, 'mode "zero" is none of symmetric', lambda: undula.pad([1, 2, 3], 1, "zero")),
        (np.AxisError, "axis 2 of data with 1 dimensions", lambda: undula.levels(np.ones(4), 1, axis=2)),
    ],
)
def test_what_is_refused(kind, message, call):
    with pytest.raises(kind, match=message):
        call()


def test_the_lines_of_the_readme_print_what_they_say(tmp_path, monkeypatch, capsys):
    root = Path(__file__).resolve().parents[2]
    lines, rest = (root / "README.md").read_text(encoding="utf-8").split("## Ten lines\n")[1].split("\nprints ")
    (tmp_path / "examples").symlink_to(root / "examples")
    monkeypatch.chdir(tmp_path)
    exec(textwrap.dedent(lines), {})
    said = re.findall("`(.*? dB)`", rest.split("after")[0])
    assert capsys.readouterr().out.split("\n") == [*said, ""]
    assert (tmp_path / "levels.png").stat().st_size > 1000

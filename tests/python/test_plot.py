"""Pictures: where tiles, frames and bars stand, and what their colours tell."""

import subprocess
import sys

import numpy as np
import pytest
import undula
from undula import plot

W = undula.symmlet(8)
SPLINE = undula.Bspline(2, 2)


def area(extents):
    return sum((right - left) * abs(top - bottom) for left, right, bottom, top in extents)


@pytest.mark.parametrize("windows", [False, True])
@pytest.mark.parametrize("length", [64, 45])
def test_tiles_fill_the_plane(length, windows, ax, rng):
    table = undula.wpts(rng.normal(size=length), 4, SPLINE)
    basis = undula.best_basis(table, undula.costs.l1)
    coefficients = undula.extract_basis(table, basis)
    assert plot.tiling(coefficients, basis, ax, windows=windows, span=(10, 14), highest=5) is ax
    extents = [image.get_extent() for image in ax.images]
    assert len(extents) == len(np.unique(basis, axis=0)) and area(extents) == pytest.approx(4 * 5)
    assert (ax.get_xlim(), ax.get_ylim()) == ((10, 14), (0, 5))
    assert sum(image.get_array().size for image in ax.images) == length
    assert max(image.get_array().max() for image in ax.images) == 0


@pytest.mark.parametrize("frequency", [0.07, 0.31, 0.48, 0.66, 0.94])
def test_a_tone_is_loudest_in_its_band(frequency, ax):
    tone = np.cos(np.pi * frequency * np.arange(1024))
    basis = [[2, 0], [3, 2], [3, 3], [1, 1]]
    plot.tiling(undula.wpt(tone, basis, undula.daublet(20)), basis, ax)
    loudest = max(ax.images, key=lambda image: np.mean(image.get_array()))
    *_, bottom, top = loudest.get_extent()
    assert bottom < frequency < top


def test_a_click_is_loudest_in_its_window(ax):
    click = np.sin(0.4 * np.pi * np.arange(512)) * np.exp(-(((np.arange(512) - 300) / 5) ** 2))
    basis = undula.create_level(3, 1)
    plot.tiling(undula.extract_basis(undula.cpt(click, 3), basis), basis, ax, windows=True)
    loudest = max(ax.images, key=lambda image: image.get_array().max())
    left, right, bottom, top = loudest.get_extent()
    assert left < 300 < right
    place = np.argmax(loudest.get_array()) / len(loudest.get_array())
    assert abs(place - 0.4) < 0.05 and (bottom, top) == (0, 1)


@pytest.mark.parametrize("length", [64, 45])
def test_frames_in_a_table_stand_where_the_coefficients_are(length, ax, rng):
    table = undula.wpts(rng.normal(size=length), 4, SPLINE)
    basis = undula.best_basis(table, "shannon")
    plot.table(table, basis, ax)
    places = sorted((frame.get_x(), frame.get_width(), frame.get_y() + 0.5) for frame in ax.patches)
    assert len(places) == len(basis)
    coefficients = np.concatenate([table[int(j)][int(x) : int(x + width)] for x, width, j in places])
    np.testing.assert_array_equal(coefficients, undula.extract_basis(table, basis))


@pytest.mark.parametrize("shape", [None, (64, 64), (37, 22)])
def test_blocks_fill_the_image(shape, ax, rng):
    basis = [*undula.wavebs(3, 2)[1:], *([4, row, col] for row in (0, 1) for col in (0, 1))]
    image = None if shape is None else rng.normal(size=shape)
    plot.partition(basis, image, ax)
    rows, cols = shape or (1, 1)
    frames = [frame.get_bbox() for frame in ax.patches]
    assert len(frames) == len(basis)
    assert sum(frame.width * frame.height for frame in frames) == pytest.approx(rows * cols)
    assert (ax.get_xlim(), ax.get_ylim()) == ((0, cols), (rows, 0))  # the first row is on top
    if image is not None:
        assert ax.images[0].get_extent() == (0, cols, rows, 0)
        for frame, packet in zip(frames, np.unique(basis, axis=0)):
            block = image[int(frame.y0) : int(frame.y1), int(frame.x0) : int(frame.x1)]
            expected = undula.get_subband2d(image, *packet)
            np.testing.assert_array_equal(block, np.reshape(expected, block.shape))


def test_colours_of_subbands_show_signs(ax):
    y = np.zeros((37, 22))
    details = undula.levels(y, 2).details[-1]
    details.H[0, 0], details.V[1, 1] = 5, -5
    y[0, 0] = 1
    plot.mosaic(y, 2, ax)
    shown = ax.images[0].get_array()
    red, green, blue = (shown[..., channel] for channel in range(3))
    assert shown.shape == (37, 22, 4) and np.min(shown[-5:, -5:]) > 0.99  # zeros are white
    assert red[19, 0] > blue[19, 0] and red[1, 12] < blue[1, 12]
    assert red[0, 0] == green[0, 0] == 1 and red[0, 1] == green[0, 1] == 0
    assert ax.images[0].get_extent() == (0, 22, 37, 0) and ax.get_ylim() == (37, 0)
    assert {text.get_text() for text in ax.texts} == {"H1", "V1", "D1", "H2", "V2", "D2"}


@pytest.mark.parametrize("common", [True, False])
def test_bars_have_the_heights_and_widths_of_coefficients(common, ax, rng):
    y = rng.normal(size=37) * np.geomspace(100, 1, 37)
    plot.levels(y, 3, ax, span=(0, 37), common=common)
    smooth, details = undula.levels(y, 3)
    for place, (part, bars) in enumerate(zip([smooth, *details], ax.patches)):
        values, edges, _ = bars.get_data()
        most = np.max(np.abs(np.concatenate(details))) if common and place else np.max(np.abs(part))
        np.testing.assert_allclose(values - place, 0.47 * part / most, rtol=1e-12, atol=1e-12)
        np.testing.assert_allclose(np.diff(edges), 37 / len(part))


def test_decay_of_coefficients(ax, rng):
    x = rng.normal(size=(20, 5))
    first, second, third = ax.figure.subplots(1, 3)
    ranks, magnitudes = plot.decay(x, first).lines[0].get_data()
    np.testing.assert_array_equal(magnitudes, sorted(np.abs(x).ravel(), reverse=True))
    assert ranks[0] == 1 and ranks[-1] == 100
    shares, energies = plot.decay(x, second, kind="energy").lines[0].get_data()
    counts, errors = plot.decay(x, third, kind="error").lines[0].get_data()
    np.testing.assert_allclose(errors**2, 1 - energies[1:-1] / 100, rtol=0, atol=1e-14)
    np.testing.assert_allclose(energies[counts] / 100, np.cumsum(magnitudes**2)[counts - 1] / np.sum(x**2))
    assert energies[0] == 0 and energies[-1] == pytest.approx(100) and shares[-1] == 100


@pytest.mark.parametrize("filter", [undula.daublet(2), W, undula.Bspline(3, 3), undula.bl(0)])
def test_a_sheet_holds_the_functions_and_responses(filter, ax):
    taps, responses, scaling, wavelet = plot.sheet(filter).flat
    for ax, index in ((scaling, 0), (wavelet, 1)):
        for line, function in zip(ax.lines[:-1], (undula.wavelet, undula.dlwavelet)):
            x, y = line.get_data()
            np.testing.assert_array_equal(y, undula.evaluate(function, x, 0, 0, index, filter))
            assert np.trapz(y, x) == pytest.approx(1 - index, abs=0.02)
    assert scaling.get_xlim() == wavelet.get_xlim()
    low, high = (line.get_ydata() for line in responses.lines[:2])
    ends = [low[0], low[-1], high[0], high[-1]]
    np.testing.assert_allclose(ends, [2**0.5, 0, 0, 2**0.5], atol=1e-9)
    if filter.ndim == 1:
        np.testing.assert_allclose(low**2 + high**2, 2, atol=1e-9)  # of an orthonormal filter


@pytest.mark.parametrize(
    "message, draw",
    [
        ("tiling: the basis of a signal has two", lambda: plot.tiling([[1, 2]] * 2, undula.wavebs(1, 2))),
        ("table: the basis of a signal has two", lambda: plot.table([[1, 2], [3, 4]], undula.wavebs(1, 2))),
        ("partition: the basis of an image has three", lambda: plot.partition(undula.wavebs(1, 1))),
        ("levels: coefficients of a signal have one", lambda: plot.levels([[1, 2], [3, 4]], 1)),
        ("mosaic: coefficients of an image have two", lambda: plot.mosaic([1, 2], 1)),
        ('kind "speed" is not one of', lambda: plot.decay([1, 2], kind="speed")),
    ],
)
def test_what_cannot_be_drawn(message, draw, ax):
    with pytest.raises(ValueError, match=message):
        draw()


def test_the_drawing_library_is_imported_by_the_first_picture(monkeypatch):
    monkeypatch.setenv("MPLBACKEND", "Agg")
    state = "print('matplotlib' in sys.modules)"
    source = f"import sys, undula; {state}; undula.plot.decay([1]); {state}"
    run = subprocess.run([sys.executable, "-c", source], capture_output=True, text=True)
    assert run.stdout.split() == ["False", "True"], run.stderr

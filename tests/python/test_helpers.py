"""Padding and views, against the pack's own copies."""

import numpy as np
import pytest
import undula


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


@pytest.mark.parametrize("shape, level, margin", [((13,), 3, 0), ((16,), 3, 5), ((9, 20), 2, (0, 3)), ((0,), 0, 0)])
def test_padding_divides_and_is_trimmed(shape, level, margin, rng):
    data = rng.normal(size=shape)
    for mode in ("symmetric", "periodic", "edge", "constant"):
        padded = undula.pad(data, level, mode, margin)
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
        (ValueError, "levels: 3 samples allow levels 0 to 1", lambda: undula.levels(np.ones((3, 8)), 2)),
        (TypeError, "must be an array", lambda: undula.levels([1, 2], 1)),
        (ValueError, "pad: 3 samples allow levels 0 to 1", lambda: undula.pad([1, 2, 3], 2)),
    ],
)
def test_what_is_refused(kind, message, call):
    with pytest.raises(kind, match=message):
        call()

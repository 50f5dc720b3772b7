"""The subbands of a photograph
============================

Takes a photograph apart into its subbands and puts it together again. ::

    PYTHONPATH=build/python python3 examples/subbands.py [figure]

Three levels of the symmetric-extension transform leave a smooth picture of an eighth of the size and
nine blocks of details: for each level, horizontal structures (H), vertical ones (V) and diagonal
ones (D). The details are set to zero, all of them or one letter at a time, and restored again; what each
contributes is measured by the energy it holds and by the error of the picture without it, as the
peak signal-to-noise ratio in decibels. The pair of splines is not orthogonal, so the energies of the
subbands do not add up exactly to that of the picture.
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

import undula

HERE = Path(__file__).resolve().parent
LEVELS = 3
FILTER = undula.Bspline(2, 4)
LETTERS = {"H": "horizontal", "V": "vertical", "D": "diagonal"}
WHITE = 255


def without(coefficients, letters, levels=range(1, LEVELS + 1)):
    """The coefficients with the details of these letters and levels set to zero."""
    kept = coefficients.copy()
    details = undula.levels(kept, LEVELS).details
    for level in levels:
        for letter in letters:
            getattr(details[-level], letter)[:] = 0
    return kept


def with_details_of(coefficients, source):
    """The coefficients with all details taken from another transform."""
    for level in range(1, LEVELS + 1):
        for letter in LETTERS:
            detail = undula.get_detail2d(source, level, letter)
            coefficients = undula.put_detail2d(coefficients, level, detail, letter)
    return coefficients


def picture_of(coefficients):
    return undula.idwts(coefficients, LEVELS, FILTER)


def peak_ratio(picture, other):
    return 10 * np.log10(WHITE**2 / np.mean((picture - other) ** 2))


def print_table(picture, coefficients, restored):
    energy = np.sum(coefficients**2)
    print(f"{picture.shape[0]} x {picture.shape[1]} pixels, {LEVELS} levels, Bspline(2, 4)\n")
    print("subband   size        energy    dB without it")
    smooth = undula.get_smooth2d(coefficients, LEVELS)
    print(f"smooth    {size_of(smooth):<10}{100 * np.sum(smooth**2) / energy:7.3f} %")
    for level in range(LEVELS, 0, -1):
        for letter in LETTERS:
            detail = undula.get_detail2d(coefficients, level, letter)
            ratio = peak_ratio(picture, picture_of(without(coefficients, letter, [level])))
            share = 100 * np.sum(detail**2) / energy
            print(f"{letter} {level}       {size_of(detail):<10}{share:7.3f} %{ratio:13.2f}")
    smooth_only = picture_of(without(coefficients, LETTERS))
    print(f"\nall details put to zero: {peak_ratio(picture, smooth_only):.2f} dB")
    print(f"details restored: largest error {np.abs(restored - picture).max():.1e} of {WHITE}")


def size_of(block):
    return f"{block.shape[0]} x {block.shape[1]}"


def draw(path, picture, coefficients, restored):
    figure, axes = plt.subplot_mosaic(
        [["picture", "mosaic", "mosaic"], ["zeroed", "mosaic", "mosaic"], ["H", "V", "D"]],
        figsize=(10.5, 11), layout="constrained",
    )
    show(axes["picture"], picture, "Photograph")
    zeroed = picture_of(without(coefficients, LETTERS))
    show(axes["zeroed"], zeroed, f"All details zero: {peak_ratio(picture, zeroed):.1f} dB")
    undula.plot.mosaic(coefficients, LEVELS, axes["mosaic"])
    axes["mosaic"].set_title("Its subbands, details from blue (below 0) to red", loc="left", fontsize=11)
    for letter, name in LETTERS.items():
        others = "".join(other for other in LETTERS if other != letter)
        show(axes[letter], picture_of(without(coefficients, others)), f"Only {name} details ({letter})")
    error = np.abs(restored - picture).max()
    figure.suptitle("Three levels of dwts with Bspline(2, 4). "
                    f"With all details back, no pixel is off by more than {error:.0e} grey levels.")
    figure.get_layout_engine().set(w_pad=0.08, h_pad=0.08)
    path.parent.mkdir(parents=True, exist_ok=True)
    figure.savefig(path, dpi=120)
    plt.close(figure)


def show(axis, picture, title):
    axis.imshow(picture, cmap="gray", vmin=0, vmax=WHITE)
    axis.set_title(title, loc="left", fontsize=11)
    axis.set_axis_off()


def main():
    path = Path(sys.argv[1]) if len(sys.argv) > 1 else HERE.parent / "out" / "subbands.png"
    picture = plt.imread(HERE / "data" / "camera.pgm").astype(float)
    coefficients = undula.dwts(picture, LEVELS, FILTER)
    restored = picture_of(with_details_of(without(coefficients, LETTERS), coefficients))
    print_table(picture, coefficients, restored)
    draw(path, picture, coefficients, restored)
    print(f"figure: {path}")


if __name__ == "__main__":
    main()

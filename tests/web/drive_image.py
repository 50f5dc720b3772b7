"""Drives the panel "An image" in headless Chromium as a reader would, and takes pictures to be looked at.

    python3 drive_image.py FOLDER_OF_THE_PAGE PICTURES
"""

import contextlib
import io
import os
import re
import sys
import tempfile
from pathlib import Path

import numpy as np
from driven import Page, cancel_when_busy, complaints_of, drop, errors, open_browser, photograph, press, serve, show
from PIL import Image

VIEWS = {
    "camera": "#image",
    "partition": "#image?searched=yes&cost=log_energy&levels=5&wavelet=Bspline24&boundary=symmetric&share=2",
}
SEARCHES = [
    "#image?searched=yes",
    "#image?searched=yes&cost=count_above&threshold=30&wavelet=symmlet8&boundary=interval&share=20",
    VIEWS["partition"],
]


def kept(page):
    page.wait("what is kept", lambda: "signal-to-noise" in page.texts("#panel-image .kept")[0])
    return page.texts("#panel-image .kept")[0]


def info(page):
    return page.texts("#panel-image .info")[0]


def decibels(page):
    return [float(number) for number in re.findall(r"([\d.]+) dB", kept(page))]


def search(page):
    for fragment in SEARCHES:
        page.open(fragment)
        page.wait("both bases", lambda: len(decibels(page)) == 2)
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(page.texts("#panel-image .code code")[0], {})
        np.testing.assert_allclose(decibels(page), [float(line) for line in printed.getvalue().split()], atol=0.0051)


def slide(page):
    page.open("#image")
    seen = [decibels(page)[0]]
    for position in (5, 20, 60):
        page.slide("Coefficients kept", position)
        page.wait("other decibels", lambda: decibels(page)[0] != seen[-1])
        seen.append(decibels(page)[0])
    assert seen[1:] == sorted(seen[1:])


def images(folder):
    """Files by their names, with what is said about them."""
    noise = np.random.default_rng(1).integers(0, 256, (2, 90, 130, 3), np.uint8)
    colour, grey = Image.fromarray(noise[0]), Image.fromarray(noise[1, :, :, 0])
    files = {
        "colour.png": (colour, "130 × 90 pixels.*turned to grey"),
        "grey.jpg": (grey, r"130 × 90 pixels"),
        "large.png": (grey.resize((3000, 1500)), "2048 × 1024 pixels.*reduced from 3000 × 1500"),
    }
    for name, (image, sentence) in files.items():
        image.save(folder / name)
        yield name, (folder / name).read_bytes(), sentence


def drop_files(page, folder):
    page.open("#image")
    for name, content, sentence in images(folder):
        drop(page, name, content)
        page.wait(name, lambda: re.search(f"^{name}: {sentence}", info(page)) and kept(page))
        assert not errors(page)
    page.wait("its coefficients", lambda: "of 2097152 coefficients" in kept(page))
    before = info(page), kept(page)
    faults = {
        "empty.png": (b"", "is empty"),
        "text.png": (b"hello", "is not an image"),
        "cut.png": ((folder / "colour.png").read_bytes()[:40], "or it is broken"),
        "cut.pgm": (b"P5 30 30 255\n" + bytes(10), "ends before its last pixel"),
        "row.pgm": (b"P5 30 1 255\n" + bytes(30), "at least 2 × 2 pixels"),
    }
    for name, (content, sentence) in faults.items():
        drop(page, name, content)
        page.wait(name, lambda: name in errors(page) and sentence in errors(page))
        assert (info(page), kept(page)) == before


def cancel(page):
    """While the large image is there."""
    press(page, "Search the best basis")
    cancel_when_busy(page)
    page.wait("the search to end", lambda: "The search was cancelled." in page.texts("#panel-image .kept"))
    press(page, "Sample")
    page.wait("the sample", lambda: "camera.pgm" in info(page))
    press(page, "Search the best basis")
    page.wait("both bases", lambda: len(decibels(page)) == 2)
    assert not errors(page)


def main():
    folder, pictures = (Path(argument).resolve() for argument in sys.argv[1:3])
    os.chdir(folder / "data")  # where the lines of Python find the sample
    browser = open_browser()
    try:
        page = Page(browser, serve(folder), "image")
        show(page, VIEWS, pictures)
        search(page)
        photograph(browser, pictures / "searched.png")
        slide(page)
        with tempfile.TemporaryDirectory() as images_folder:
            drop_files(page, Path(images_folder))
        cancel(page)
        complaints = list(complaints_of(browser, "An image"))
    finally:
        browser.quit()
    print(*complaints, sep="\n", end="\n" if complaints else "")
    print(f"An image: driven, {len(SEARCHES)} best bases as Python's; pictures in {pictures}")
    sys.exit(bool(complaints))


if __name__ == "__main__":
    main()

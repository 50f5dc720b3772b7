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


def is_computing(page):
    return bool(page.texts("#panel-image [aria-busy=true]"))


def info(page):
    return page.texts("#panel-image .info")[0]


def decibels(page):
    return [float(number) for number in re.findall(r"([\d.]+) dB", kept(page))]


def check_lines(page):
    """What Python's lines print is what the page shows."""
    printed = io.StringIO()
    with contextlib.redirect_stdout(printed):
        exec(page.texts("#panel-image .code code")[0], {})
    np.testing.assert_allclose(decibels(page), [float(line) for line in printed.getvalue().split()], atol=0.0051)


def search(page):
    for fragment in SEARCHES:
        page.open(fragment)
        page.wait("both bases", lambda: len(decibels(page)) == 2)
        check_lines(page)


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
    noise = np.random.default_rng(1).integers(0, 256, (90, 130, 4), np.uint8)
    grey = Image.fromarray(noise[:, :, 0])
    files = {
        "clear colours.png": (Image.fromarray(noise), "130 × 90 pixels.*turned to grey.*on white"),
        "deep.png": (Image.fromarray(noise[:, :, 0] * np.uint16(257)), "130 × 90 pixels.*16 bits"),
        "grey.jpg": (grey, "130 × 90 pixels"),
        "large.png": (grey.resize((3000, 1500)), "2048 × 1024 pixels.*reduced from 3000 × 1500"),
    }
    for name, (image, sentence) in files.items():
        image.save(folder / name)
        yield name, (folder / name).read_bytes(), sentence


def drop_files(page, folder):
    page.open("#image")
    downloads = {"behavior": "allow", "downloadPath": str(folder)}
    page.browser.execute_cdp_cmd("Browser.setDownloadBehavior", downloads)
    for name, content, sentence in images(folder):
        drop(page, name, content)
        page.wait(name, lambda: re.search(f"^{name}: {sentence}", info(page)) and not is_computing(page))
        assert not errors(page)
        press(page, "Image as PGM")
        saved = folder / f"grey-{Path(name).stem.replace(' ', '-')}.pgm"
        page.wait("the file", saved.exists)
        with contextlib.chdir(folder):
            check_lines(page)
    assert "of 2097152 coefficients" in kept(page)
    before = info(page), kept(page)
    faults = {
        "empty.png": (b"", "is empty"),
        "text.png": (b"hello", "is not an image"),
        "cut.png": ((folder / "deep.png").read_bytes()[:40], "or it is broken"),
        "cut.pgm": (b"P5 30 30 255\n" + bytes(10), "ends before its last pixel"),
        "row.pgm": (b"P5 30 1 255\n" + bytes(30), "30 × 1 pixels, and an image needs at least 2 × 2"),
        "narrow.pgm": (b"P5 3000 2 255\n" + bytes(6000), "3000 × 2 pixels, which is too narrow"),
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
    assert page.browser.switch_to.active_element.text == "Search the best basis"
    press(page, "Search the best basis")
    page.wait("the comparison", lambda: "Comparing" in page.texts("#status-text")[0])
    cancel_when_busy(page)
    page.wait("its end", lambda: "comparison of the bases was cancelled" in errors(page))
    assert len(decibels(page)) == 2 and not is_computing(page)


def interrupt(page):
    """A search in the large image, which goes on after a faulty file, and ends when another is there."""
    press(page, "Search the best basis")
    page.wait("the search", lambda: "Searching" in page.texts("#status-text")[0])
    drop(page, "empty.png", b"")
    page.wait("empty.png", lambda: "empty.png is empty" in errors(page))
    page.wait("the search", lambda: "Searching" in page.texts("#status-text")[0])
    press(page, "Sample")
    page.wait("the sample", lambda: "camera.pgm" in info(page) and not is_computing(page))
    assert len(decibels(page)) == 2 and not errors(page)


def main():
    folder, pictures = (Path(argument).resolve() for argument in sys.argv[1:3])
    os.chdir(Path(__file__).resolve().parents[2])  # where the lines of Python find the sample
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
        interrupt(page)
        complaints = list(complaints_of(browser, "An image"))
    finally:
        browser.quit()
    print(*complaints, sep="\n", end="\n" if complaints else "")
    print(f"An image: driven, {len(SEARCHES)} best bases as Python's; pictures in {pictures}")
    sys.exit(bool(complaints))


if __name__ == "__main__":
    main()

"""Drives the panel "A signal" in headless Chromium as a reader would, and takes pictures to be looked at.

    python3 drive_signal.py FOLDER_OF_THE_PAGE PICTURES
"""

import statistics
import sys
from pathlib import Path

from driven import Page, cancel_when_busy, complaints_of, drop, errors, open_browser, photograph, press, serve, show

VIEWS = {"ecg": "#signal", "sunspots": "#signal?source=sunspots&noise=10&wavelet=Bspline24&boundary=symmetric"}
LONG = "#signal?source=long&level=8&depth=8"  # 2^16 samples
MOST_MS = 50

# The time from each step of the slider until the frame after the new picture.
SLIDE = """
const [slider, done] = arguments;
const facts = document.querySelector('#panel-signal dl');
const frame = () => new Promise(requestAnimationFrame);
const changed = () => new Promise((resolve) => {
  const observer = new MutationObserver(() => { observer.disconnect(); resolve(); });
  observer.observe(facts, { childList: true });
});
(async () => {
  const times = [];
  for (let position = 100; position < 700; position += 20) {
    await frame();
    slider.value = position;
    const told = changed();
    const start = performance.now();
    slider.dispatchEvent(new Event('input', { bubbles: true }));
    await told;
    await frame();
    await new Promise((resolve) => setTimeout(resolve));
    times.push(performance.now() - start);
    await new Promise((resolve) => setTimeout(resolve, 60));
  }
  done(times);
})();
"""


def kept(page):
    page.wait("the facts", lambda: "Coefficients kept" in page.facts())
    return page.facts()["Coefficients kept"]


def drop_files(page):
    page.open("#signal")
    drop(page, "two.csv", "\n".join(["t;v", *(f"{i};{i % 7},5" for i in range(300))]).encode())
    page.wait("the file", lambda: " of 320" in kept(page))
    assert page.control("Column").text.split() == ["t", "v"] and page.control("Column").get_attribute("value") == "1"
    before = kept(page)
    faults = {
        "empty.csv": ("", "is empty"),
        "text.csv": ("hello\nworld", "holds “world”"),
        "nan.csv": ("1\n" * 20 + "NaN\n", "line 21 holds NaN"),
        "cut.wav": ("RIFF____WAVEfmt ", "is broken"),
        "long.csv": ("1\n" * (2**22 + 2), "at most"),
    }
    for name, (content, sentence) in faults.items():
        drop(page, name, content.encode())
        page.wait(name, lambda: name in errors(page) and sentence in errors(page))
        assert kept(page) == before
    drop(page, "huge.csv", b"1e308\n-1e308\n" * 500)
    page.wait("the fault", lambda: "wpt: floating point error" in errors(page))
    assert " of 1024" in kept(page) and not page.browser.find_element("css selector", "#panel-signal table").text
    page.open("#signal?source=file&file=two.csv")
    assert "two.csv" in errors(page) and " of 1024" in kept(page)


def draw(page, pictures):
    page.open("#signal?source=drawn&shape=tent")
    before = kept(page)
    page.choose("Shape", "step")
    page.wait("another shape", lambda: kept(page) != before)
    photograph(page.browser, pictures / "drawn.png")


def slide(page):
    page.open(LONG)
    page.wait("the best basis", lambda: "Best basis of cosine packets" in page.texts("figcaption .title"))
    return page.browser.execute_async_script(SLIDE, page.control("Threshold"))


def search_and_cancel(page):
    page.open("#signal")
    drop(page, "sound.csv", "\n".join(str(i * i % 1009) for i in range(2**18)).encode())
    page.wait("the file", lambda: " of 262144" in kept(page))
    press(page, "Search the best basis")
    cancel_when_busy(page)
    page.wait("the button again", lambda: "was not searched" in "".join(page.texts("#panel-signal .hint")))
    assert page.browser.switch_to.active_element.text == "Search the best basis"
    press(page, "Search the best basis")
    page.wait("the best basis", lambda: "best cosines" in page.texts("#panel-signal tbody th"))
    assert not errors(page)


def main():
    folder, pictures = (Path(argument).resolve() for argument in sys.argv[1:3])
    browser = open_browser()
    try:
        page = Page(browser, serve(folder), "signal")
        show(page, VIEWS, pictures)
        drop_files(page)
        draw(page, pictures)
        times = slide(page)
        search_and_cancel(page)
        complaints = list(complaints_of(browser, "A signal"))
    finally:
        browser.quit()
    middle = statistics.median(times)
    print(*complaints, sep="\n", end="\n" if complaints else "")
    print(f"A signal: a step of the slider on 2^16 samples takes {middle:.0f} ms, {max(times):.0f} ms at most")
    sys.exit(bool(complaints) or middle > MOST_MS)


if __name__ == "__main__":
    main()

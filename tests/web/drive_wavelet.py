"""Drives the panel "A wavelet" in headless Chromium as a reader would, and takes pictures to be looked at.

    python3 drive_wavelet.py FOLDER_OF_THE_PAGE PICTURES
"""

import sys
from pathlib import Path

from driven import Page, complaints_of, open_browser, photograph, serve, show
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import Select

VIEWS = {
    "daublet8": "",
    "symmlet8": "#wavelet?wavelet=symmlet8&boundary=interval&decibels=yes",
    "Bspline24": "#wavelet?wavelet=Bspline24&boundary=symmetric&drawn=points&side=right&packet=9",
}

# When the first curve is drawn: a line of its legend tells.
WATCH = """
const watch = () => {
  if (document.querySelector('.legend .entry')) window.firstPicture = performance.now();
  else requestAnimationFrame(watch);
};
watch();
"""

# A long job, and a click on Cancel as soon as it is there.
CANCEL = """
const slider = document.querySelector('#panel-wavelet input[type=range]');
slider.value = 63;
slider.dispatchEvent(new Event('input', { bubbles: true }));
const done = arguments[0];
const look = () => {
  if (document.getElementById('status').hidden) return setTimeout(look, 10);
  document.getElementById('cancel').click();
  return setTimeout(() => done(document.querySelector('#panel-wavelet [role=alert]').textContent), 50);
};
look();
"""


def ignore_nonsense(page):
    page.open("#wavelet?packet=Infinity&level=&wavelet=nothing")
    assert page.facts()["Names"].startswith("daublet8") and "Packet 5" in page.texts("figcaption .title")


def choose(page):
    page.open("#wavelet?wavelet=symmlet8&boundary=interval")
    page.choose("Family", "coiflet")
    page.wait("the facts of a coiflet", lambda: page.facts()["In PyWavelets"].startswith("coif"))
    assert "no interval transform" in page.texts(".choice .hint")[0]
    assert Select(page.control("Ends of the data")).first_selected_option.text == "periodic"
    page.choose("Order", "coiflet18")
    page.wait("its facts", lambda: page.facts()["Vanishing moments of the scaling function"] == "5")
    page.wait("its address", lambda: page.browser.current_url.endswith("#wavelet?wavelet=coiflet18"))
    page.control("Packet").send_keys(Keys.ARROW_RIGHT)
    page.wait("packet 6", lambda: "Packet 6" in page.texts("figcaption .title"))
    page.wait("its address", lambda: "packet=6" in page.browser.current_url)
    page.browser.refresh()
    page.wait("packet 6 again", lambda: "Packet 6" in page.texts("figcaption .title"))


def go_and_return(page):
    page.open("#wavelet?wavelet=daublet4")
    page.browser.find_element(By.ID, "tab-wavelet").send_keys(Keys.ARROW_RIGHT)
    page.wait("another panel", lambda: "#signal?wavelet=daublet4" in page.browser.current_url)
    page.browser.back()
    page.wait("the panel", lambda: page.plot("Wavelet").is_displayed())
    assert page.facts()["Taps"] == "4"


def zoom(page, pictures):
    page.open("")
    plot = page.plot("Wavelet")
    plot.send_keys("0")  # it has the focus now, which is seen
    whole = plot.screenshot_as_png
    plot.send_keys("+", Keys.SHIFT, Keys.ARROW_RIGHT)
    page.wait("a part of it", lambda: plot.screenshot_as_png != whole)
    photograph(page.browser, pictures / "zoom.png")
    plot.send_keys("0")
    page.wait("the whole", lambda: plot.screenshot_as_png == whole)
    plot.send_keys(Keys.ARROW_RIGHT)
    page.wait("a value", lambda: any(page.texts(".legend .number")))


def cancel(page):
    page.open("#wavelet?wavelet=bl6")
    assert page.browser.execute_async_script(CANCEL).startswith("Cancelled")
    page.choose("Order", "bl1")
    page.wait("a new worker's work", lambda: "bl1" in page.facts()["Names"])


def main():
    folder, pictures = (Path(argument).resolve() for argument in sys.argv[1:3])
    browser = open_browser()
    try:
        browser.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": WATCH})
        page = Page(browser, serve(folder), "wavelet")
        show(page, VIEWS, pictures)
        ignore_nonsense(page)
        choose(page)
        go_and_return(page)
        zoom(page, pictures)
        cancel(page)
        complaints = list(complaints_of(browser, "A wavelet"))
        page.open("")
        first = browser.execute_script("return window.firstPicture")
        browser.get((folder / "index.html").as_uri())
        assert "python3 -m http.server" in browser.find_element(By.ID, "notice").text
    finally:
        browser.quit()
    print(*complaints, sep="\n", end="\n" if complaints else "")
    print(f"A wavelet: first picture after {first:.0f} ms; pictures in {pictures}")
    sys.exit(bool(complaints) or first > 1000)


if __name__ == "__main__":
    main()

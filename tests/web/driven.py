"""A panel of the page, driven in headless Chromium as a reader would."""

import base64
import sys
from pathlib import Path

from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select, WebDriverWait

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
from browser import complaints_of, open_browser, photograph, resize, serve  # noqa: E402, F401

DROP = """
const [panel, name, content] = arguments;
const files = new DataTransfer();
files.items.add(new File([Uint8Array.from(atob(content), (each) => each.charCodeAt(0))], name));
const event = new DragEvent('drop', { dataTransfer: files, bubbles: true, cancelable: true });
document.getElementById(`panel-${panel}`).dispatchEvent(event);
"""

CANCEL = """
const [done] = arguments;
const look = () => {
  if (document.getElementById('status').hidden) return setTimeout(look, 5);
  document.getElementById('cancel').click();
  return done();
};
look();
"""


class Page:
    def __init__(self, browser, address, panel):
        self.browser, self.address, self.panel = browser, address, panel

    def open(self, fragment):
        self.browser.get("about:blank")
        self.browser.get(self.address + fragment)
        self.wait("Python's lines", lambda: self.texts(".code code")[:1] not in ([], [""]))

    def wait(self, what, condition):
        WebDriverWait(self.browser, 10, 0.05).until(lambda _: condition(), what)

    def texts(self, selector):
        script = "return [...document.querySelectorAll(arguments[0])].map((each) => each.textContent)"
        return self.browser.execute_script(script, selector)

    def control(self, label):
        path = f"//div[@id='panel-{self.panel}']//label[.='{label}']/following-sibling::*[1]"
        return self.browser.find_element(By.XPATH, path)

    def choose(self, label, value):
        Select(self.control(label)).select_by_value(value)

    def plot(self, title):
        path = f"//figure[.//span[@class='title'][.='{title}']]/div[@role='img']"
        return self.browser.find_element(By.XPATH, path)

    def facts(self):
        return dict(zip(self.texts("dt"), self.texts("dd")))

    def slide(self, label, position):
        script = "arguments[0].value = arguments[1]; arguments[0].dispatchEvent(new Event('input', { bubbles: true }))"
        self.browser.execute_script(script, self.control(label), position)


def errors(page):
    return "".join(page.texts(f"#panel-{page.panel} .error:not([hidden])"))


def drop(page, name, content):
    page.browser.execute_script(DROP, page.panel, name, base64.b64encode(content).decode())


def press(page, text):
    page.browser.find_element(By.XPATH, f"//div[@id='panel-{page.panel}']//button[.='{text}']").click()


def cancel_when_busy(page):
    page.browser.execute_async_script(CANCEL)


def show(page, views, pictures):
    """Takes pictures of views, which are fragments of the address, narrow and wide, light and dark."""
    for width in (400, 1280):
        for theme in ("light", "dark"):
            wish = [{"name": "prefers-color-scheme", "value": theme}]
            page.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": wish})
            resize(page.browser, width)
            for name, fragment in views.items():
                page.open(fragment)
                assert page.browser.execute_script("return document.documentElement.scrollWidth") <= width, name
                assert page.browser.execute_script("return document.documentElement.dataset.theme") == theme
                photograph(page.browser, pictures / f"{name}-{width}-{theme}.png")

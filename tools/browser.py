"""Headless Chromium for what opens pages as a reader would."""

import functools
import http.server
import threading

from selenium import webdriver

WIDTHS = {400: 850, 1280: 900}  # and the heights


def serve(folder):
    class Quiet(http.server.SimpleHTTPRequestHandler):
        def log_message(self, *_):
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Quiet, directory=folder))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_port}/"


def open_browser():
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    service = webdriver.chrome.service.Service("/usr/bin/chromedriver")
    return webdriver.Chrome(service=service, options=options)


def resize(browser, width):
    size = {"width": width, "height": WIDTHS[width], "deviceScaleFactor": 1, "mobile": False}
    browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)


def photograph(browser, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    browser.save_screenshot(str(path))


def complaints_of(browser, name):
    for message in browser.get_log("browser"):
        yield f"{name}: console: {message['message']}"

"""Debian's chromium without a window, and pictures of what it shows."""

import base64

from selenium import webdriver
from selenium.webdriver.chrome.service import Service


def start_browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in ("headless=new", "no-sandbox", "hide-scrollbars", "window-size=1280,1000"):
        options.add_argument(f"--{argument}")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def take_picture(browser, file_name, height=None, scale=1):
    """Writes a picture of the page from its top on, of the whole page where no height is given."""
    width, whole = browser.execute_script(
        "return [innerWidth, document.documentElement.scrollHeight]")
    picture = browser.execute_cdp_cmd("Page.captureScreenshot", {
        "captureBeyondViewport": True,
        "clip": {"x": 0, "y": 0, "width": width, "height": height or whole, "scale": scale}})
    with open(file_name, "wb") as file:
        file.write(base64.b64decode(picture["data"]))

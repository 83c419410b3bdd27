"""A browser without a window, for what is made for browsers."""

import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

OPTIONS = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
           "--disable-background-networking", "--disable-component-update", "--disable-sync",
           "--force-device-scale-factor=1", "--window-size=1400,760")


def start():
    options = webdriver.ChromeOptions()
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    for option in OPTIONS + (f"--user-data-dir={tempfile.mkdtemp()}",):
        options.add_argument(option)
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

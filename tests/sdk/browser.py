"""A browser without a window, for what is made for browsers."""

import contextlib
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

OPTIONS = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
           "--disable-background-networking", "--disable-component-update", "--disable-sync",
           "--force-device-scale-factor=1", "--window-size=1400,760")


@contextlib.contextmanager
def started():
    """A driver of the browser, which ends with its context and leaves nothing behind."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        options = webdriver.ChromeOptions()
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        for option in (*OPTIONS, f"--user-data-dir={profile}"):
            options.add_argument(option)
        driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        try:
            yield driver
        finally:
            driver.quit()

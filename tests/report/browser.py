"""Headless Chromium, for pages from file://."""

import contextlib
import json
import pathlib
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.support.ui import WebDriverWait

_ARGUMENTS = [
    "--headless=new",
    "--no-sandbox",  # as root, Chromium has none
    "--disable-gpu",
    "--disable-dev-shm-usage",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--disable-extensions",
    "--force-device-scale-factor=1",
    "--hide-scrollbars",
]


class Browser:
    def __init__(self, driver):
        self.driver = driver

    def open(self, page: pathlib.Path) -> None:
        self.driver.get_log("performance")
        self.driver.get_log("browser")
        self.driver.get(page.resolve().as_uri())

    def run(self, script: str, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, condition: str, seconds: float = 30) -> None:
        """Until a JavaScript expression holds."""
        WebDriverWait(self.driver, seconds, poll_frequency=0.02).until(
            lambda driver: driver.execute_script(f"return {condition}"), f"never came: {condition}"
        )

    def shape(self, width: int, height: int, dark: bool = False) -> None:
        self.driver.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600},
        )
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [scheme]})

    def picture(self, path: pathlib.Path) -> None:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(self.driver.get_screenshot_as_png())

    def complaints(self) -> list:
        """The messages of the console since the page was opened."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def requests(self) -> list:
        """Addresses that were requested since then, except the page itself."""
        events = [json.loads(e["message"])["message"] for e in self.driver.get_log("performance")]
        asked = [
            event["params"]["request"]["url"]
            for event in events
            if event["method"] == "Network.requestWillBeSent"
        ]
        return [address for address in asked if address != self.driver.current_url]


@contextlib.contextmanager
def chromium():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for argument in _ARGUMENTS:
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    with tempfile.TemporaryDirectory() as profile:
        options.add_argument(f"--user-data-dir={profile}")
        driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        try:
            yield Browser(driver)
        finally:
            driver.quit()

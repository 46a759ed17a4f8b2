"""The page of `kivdb html` in a browser, and what `kivdb report --json` says of the same source."""

import json
import os
import pathlib
import subprocess

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

BUILD = pathlib.Path(os.environ.get("KIV_BUILD", "build/release"))
KIVDB = BUILD / "src" / "kivdb"
SAMPLES = pathlib.Path(__file__).parents[2] / "samples"
KEYS = ("id", "color", "line", "function", "path", "process", "query")
MEASURES = ("leaked", "peak", "live", "allocated", "temporary")


def report(source, *options):
    """The only run of `kivdb report --json`, with every list."""
    command = [KIVDB, "report", "--json", "--by", ",".join(KEYS), "--of", ",".join(MEASURES), *options, source]
    return json.loads(subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout)["runs"][0]


def figures(run, by, of):
    return next(each for each in run["lists"] if each["by"] == by and each["of"] == of)


def total(run, of):
    return figures(run, "id", of)["total"]


def number(text):
    """The figure in "1,234 bytes", "+90" or "-16"."""
    return int(text.split(" ")[0].replace(",", ""))


def start_browser():
    options = Options()
    options.add_argument("--headless=new")
    options.add_argument("--hide-scrollbars")
    if os.geteuid() == 0:  # the browser does not start for root otherwise
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    browser.set_script_timeout(20)
    return browser


class Page:
    """One page, read through its texts and tables, and used by mouse and keyboard."""

    def __init__(self, browser, path, width=1280, height=900, dark=False):
        self.browser = browser
        for kind in ("browser", "performance"):
            browser.get_log(kind)  # takes what other pages left there
        media = [{"name": "prefers-color-scheme", "value": "dark" if dark else "light"},
                 {"name": "prefers-reduced-motion", "value": "reduce"}]
        browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": media})
        size = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", size)
        browser.get(path.as_uri())

    def run(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def find(self, css):
        return self.browser.find_element(By.CSS_SELECTOR, css)

    def all(self, css):
        return self.browser.find_elements(By.CSS_SELECTOR, css)

    def text(self, css):
        return self.run("return document.querySelector(arguments[0]).textContent", css)

    def titles(self, css):
        return self.run("return Array.from(document.querySelectorAll(arguments[0]), (each) => each.title)", css)

    def exact(self, css):
        """The full figures in the titles of what a selector finds."""
        return [number(title) for title in self.titles(css)]

    def choose(self, group, value):
        """One of the radio buttons of a group."""
        self.run("document.querySelector(arguments[0]).click()", f'input[name="{group}"][value="{value}"]')

    def select(self, css, text):
        for option in self.find(css).find_elements(By.TAG_NAME, "option"):
            if option.text == text:
                option.click()
                return
        raise AssertionError(f"{css} has no option {text!r}")

    def type(self, css, text):
        field = self.find(css)
        field.clear()
        field.send_keys(text or " " + Keys.BACKSPACE)

    def press(self, css, *pressed):
        self.run("document.querySelector(arguments[0]).focus()", css)
        for each in pressed:
            self.browser.switch_to.active_element.send_keys(each)

    def shift(self, css, key, times):
        self.run("document.querySelector(arguments[0]).focus()", css)
        actions = ActionChains(self.browser).key_down(Keys.SHIFT)
        for _ in range(times):
            actions.send_keys(key)
        actions.key_up(Keys.SHIFT).perform()

    def table(self, css):
        """Rows of a table's body: per cell its text, and its title where that says more."""
        return self.run(
            """return Array.from(document.querySelectorAll(arguments[0] + ' tbody tr'), (row) =>
                 Array.from(row.cells, (cell) => cell.title || cell.textContent))""", css)

    def behind(self, css):
        """The table behind a picture, opened."""
        self.run("document.querySelector(arguments[0]).open = true", css)
        self.browser.execute_async_script("setTimeout(arguments[0], 30)")
        return self.table(css)

    def foot(self, kind):
        """A line below the list: "total", "others" or "matching"."""
        return self.run(
            """return Array.from(document.querySelectorAll('#table-rows tfoot .' + arguments[0] + ' td'), (cell) =>
                 cell.title || cell.textContent)""", kind)

    def show_all_rows(self):
        while self.all("#table-more"):
            self.run("document.querySelector('#table-more').click()")

    def list_names(self):
        return self.run(
            "return Array.from(document.querySelectorAll('#table-rows tbody .name-cell > button .name'), (name) => name.textContent)")

    def flame_bytes(self):
        """What the flame graph shows, for each run."""
        return self.exact("#flame-sum strong")

    def selected_frame(self):
        return self.text("#flame-details h3")

    def frame_bytes(self):
        """Bytes of the selected frame with all that it called, and its own."""
        return [number(row[1]) for row in self.table("#flame-details")]

    def console(self):
        return self.browser.get_log("browser")

    def requests(self):
        messages = [json.loads(entry["message"])["message"] for entry in self.browser.get_log("performance")]
        return [each["params"]["request"]["url"] for each in messages if each["method"] == "Network.requestWillBeSent"]

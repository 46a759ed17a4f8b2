"""screenshot.py PAGE PICTURE: what a reader sees of the page before scrolling, as a PNG file."""

import pathlib
import sys

from page import Page, start_browser

browser = start_browser()
try:
    Page(browser, pathlib.Path(sys.argv[1]).resolve(), height=1010)
    browser.save_screenshot(sys.argv[2])
finally:
    browser.quit()

#!/usr/bin/env python3
"""Takes the picture of the page PAGE for the README: its upper part, as the file PICTURE."""

import os
import sys

from browser import start_browser, take_picture

HEIGHT = 955
SCALE = 0.8


def main():
    browser = start_browser()
    browser.get(f"file://{os.path.abspath(sys.argv[1])}")
    take_picture(browser, sys.argv[2], HEIGHT, SCALE)
    browser.quit()


if __name__ == "__main__":
    main()

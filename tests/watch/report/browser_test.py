#!/usr/bin/env python3
"""Looks at the pages that script/test_report has made, in a real browser. DIR holds them, with the
exports of the same runs; pictures of them are left there."""

import datetime
import json
import os
import statistics
import sys
import time
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

from browser import start_browser, take_picture

DIRECTORY = os.path.abspath(sys.argv[1])
WIDTHS = {"desktop": 1280, "phone": 390}


def runs_of(name):
    """The runs as export jsonl has them."""
    with open(f"{DIRECTORY}/{name}.jsonl", encoding="utf-8") as file:
        return [run for run in map(json.loads, file) if not run["orphan"]]


def figures_of(runs, direction):
    return sorted(run[direction]["bps"] / 1e6 for run in runs if run[direction]["state"] == "full")


def one_in_twenty(figures):
    place = 0.05 * (len(figures) - 1)
    low = int(place)
    return figures[low] + (place - low) * (figures[low + 1] - figures[low])


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = start_browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.quit()

    def open(self, name, width="desktop", scheme="light", has_scripts=True):
        command = self.browser.execute_cdp_cmd
        command("Emulation.setDeviceMetricsOverride",
                {"width": WIDTHS[width], "height": 1000, "deviceScaleFactor": 1,
                 "mobile": width == "phone"})
        command("Emulation.setEmulatedMedia",
                {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
        for log in ("browser", "performance"):
            self.browser.get_log(log)
        self.browser.get(f"file://{DIRECTORY}/{name}.html")
        if has_scripts:
            WebDriverWait(self.browser, 10).until(
                lambda browser: browser.find_elements(By.CSS_SELECTOR, ".replaced"))

    def run_script(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def texts(self, selector):
        return [each.get_attribute("textContent")
                for each in self.browser.find_elements(By.CSS_SELECTOR, selector)]

    def take_picture(self, name):
        take_picture(self.browser, f"{DIRECTORY}/{name}.png")

    def test_asks_for_nothing_and_says_nothing_to_the_console(self):
        self.open("year")
        messages = [json.loads(entry["message"])["message"]
                    for entry in self.browser.get_log("performance")]
        requests = [message["params"]["request"]["url"] for message in messages
                    if message["method"] == "Network.requestWillBeSent"]
        self.assertEqual(requests, [f"file://{DIRECTORY}/year.html"])
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_is_painted_within_300_ms(self):
        def paint():
            self.open("year")
            return self.run_script("return performance.getEntriesByType('paint').map("
                                   "(each) => each.startTime)")
        self.assertLess(min(max(paint()) for _ in range(3)), 300)

    def test_fits_each_width_and_has_no_violation_of_accessibility(self):
        with open(f"{DIRECTORY}/package/axe.min.js", encoding="utf-8") as file:
            axe = file.read()
        for name in ("day", "year"):
            for width in WIDTHS:
                for scheme in ("light", "dark"):
                    with self.subTest(page=name, width=width, scheme=scheme):
                        self.open(name, width, scheme)
                        self.take_picture(f"{name}-{width}-{scheme}")
                        self.assertLessEqual(self.run_script(
                            "return document.documentElement.scrollWidth"), WIDTHS[width])
                        self.run_script(axe)
                        found = self.browser.execute_async_script(
                            "axe.run().then(arguments[arguments.length - 1])")
                        self.assertEqual([(rule["id"], rule["nodes"][0]["html"][:200])
                                          for rule in found["violations"]], [])

    def test_is_dark_by_night(self):
        def colours():
            return self.run_script("const style = getComputedStyle(document.body);"
                                   "return [style.backgroundColor, style.color]")
        self.open("day")
        light = colours()
        self.open("day", scheme="dark")
        self.assertEqual([light, colours()], [["rgb(251, 250, 247)", "rgb(27, 34, 48)"],
                                              ["rgb(17, 20, 26)", "rgb(233, 235, 239)"]])

    def test_has_the_figures_of_the_export(self):
        runs = runs_of("year")
        read = figures_of(runs, "read")
        write = figures_of(runs, "write")
        self.open("year")
        tiles = self.texts(".tile")
        self.assertIn(f"{statistics.median(read):.1f} Mbit/s"
                      f"usual · 1 in 20 below {one_in_twenty(read):.1f}", tiles[0])
        self.assertIn(f"{statistics.median(write):.1f} Mbit/s"
                      f"usual · 1 in 20 below {one_in_twenty(write):.1f}", tiles[1])
        self.assertEqual(self.texts(".slowest tbody b"), [f"{rate:.1f}" for rate in read[:10]])
        self.assertEqual(self.texts(".tested tbody b"), [f"{len(runs):,}"])
        in_full = sum(rate >= 0.9 * 250 for rate in read)
        self.assertIn(f"{in_full:,} ({100 * in_full / len(read):.0f} %)", self.texts(".facts td"))

    def test_shows_the_same_without_scripts(self):
        text = "return document.querySelector('main').cloneNode(true)"
        shown = (f"const page = (() => {{ {text} }})();"
                 "page.querySelectorAll('.explorer').forEach((each) => each.remove());"
                 "return page.textContent")
        self.open("year")
        with_scripts = self.run_script(shown)
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        try:
            self.open("year", has_scripts=False)
            evaluated = self.browser.execute_cdp_cmd("Runtime.evaluate", {
                "expression": f"(() => {{ {shown} }})()", "returnByValue": True})
            boxes = self.browser.execute_cdp_cmd("Runtime.evaluate", {
                "expression": "document.querySelector('.courses').clientHeight + ' '"
                              "+ document.querySelector('.explorer').clientHeight"})
        finally:
            self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": False})
        self.assertEqual(evaluated["result"]["value"], with_scripts)
        pictures, explorer = boxes["result"]["value"].split()
        self.assertGreater(int(pictures), 300)
        self.assertEqual(explorer, "0")

    def point_at(self, share):
        """Moves the pointer to that share of the width of the first graph, and returns the readout."""
        graph = self.browser.find_element(By.CSS_SELECTOR, ".graph")
        left = 60 + share * (graph.size["width"] - 80) - graph.size["width"] / 2
        ActionChains(self.browser).move_to_element_with_offset(graph, int(left), 0).perform()
        return self.texts(".readout")[0]

    def test_tells_the_run_at_the_pointer(self):
        told = {}
        for run in runs_of("day"):
            if run["local"]:
                local = datetime.datetime.fromisoformat(run["local"])
                moment = f"{local:%a} {local.day} {local:%b}, {local:%H:%M}"
                figures = [f"{title} " + (f"{run[key]['bps'] / 1e6:.1f} Mbit/s"
                                          if run[key]["state"] == "full" else "n/a")
                           for title, key in (("download", "read"), ("upload", "write"))]
                ping = run["ping"]
                figures.append("latency " + (f"{ping['avg_ms']:.1f} ms"
                                             if ping["state"] == "replied" else "n/a"))
                told[moment] = " · ".join([moment, *figures] + [run["reason"]] * bool(run["reason"]))
        self.open("day")
        for share in (0.02, 0.25, 0.5, 0.75, 0.98):
            readout = self.point_at(share)
            self.assertEqual(readout, told[readout.split(" · ")[0]])

    def test_zooms_within_100_ms_a_step(self):
        self.open("often")
        self.take_picture("often")
        steps = self.run_script("""
            const place = document.querySelector(".explorer");
            return Array.from({length: 16}, (none, step) => {
              const begin = performance.now();
              place.dispatchEvent(new KeyboardEvent("keydown", {key: step < 12 ? "+" : "ArrowLeft"}));
              place.querySelector("canvas").getContext("2d").getImageData(0, 0, 1, 1);
              return performance.now() - begin;
            })""")
        self.assertLess(max(steps), 100, steps)
        self.assertRegex(self.texts(".range")[0], "every test$")

    def test_follows_a_drag_in_all_rows_and_shows_all_again(self):
        self.open("year")
        graph = self.browser.find_element(By.CSS_SELECTOR, ".graph")
        whole = self.texts(".range")[0]
        ActionChains(self.browser).move_to_element(graph).click_and_hold().move_by_offset(
            40, 0).release().perform()
        time.sleep(0.3)
        self.assertRegex(self.texts(".range")[0], "every test$")
        self.take_picture("year-zoomed")
        ActionChains(self.browser).double_click(graph).perform()
        time.sleep(0.3)
        self.assertEqual(self.texts(".range")[0], whole)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)

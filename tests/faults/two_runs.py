"""Starts run a and run b at the same moment, again and again, and counts the lines of each history.

usage: two_runs.py PAIRS [locked]

In any case each run adds a line to the results and at most one to the pings, both whole, and no
line that was there before goes. Without a lock the two share the files of the latest reports, so
that one may add what the other has measured: this is counted. With a lock, for which the second run
waits, each adds its own line to each history.
"""

import collections
import os
import re
import sys

import runs

LOCKED_TESTER = ("/usr/bin/flock", "/tmp/fake/lock",
                 "/usr/bin/env", f"LD_PRELOAD={os.environ['FAKE_CLOCK']}", *runs.TESTER)

# The lines that are written at once, whatever the other run does.
WHOLE_LINES = {
    "ping_history": r"\d{8}T\d{6}(,\d+\.\d{3}){4}",
    "connection_test_results_history":
        r"Date = (\d{8}T\d{6})?, Latency = (\d+|n/a) ms, "
        r"Write Transfer Rate = (\d+|n/a) bps, Read Transfer Rate = (\d+|n/a) bps ",
}
HISTORIES = [history for history in runs.HISTORIES if history != "iperf2_history"]


def lines_alone(seconds):
    """The lines that both runs add to each history when they are not at once, at that time."""
    lines = {history: collections.Counter() for history in HISTORIES}
    for added in (runs.FAKE / "added").read_text().splitlines():
        _, history, line = added.split(" ", 2)
        if history in lines and not added.startswith("c"):
            lines[history][line.replace("20261116T05", runs.stamp(seconds)[:11])] += 1
    return lines


def lines_now():
    return {history: collections.Counter(runs.read_history(history).decode().split("\n")[:-1])
            for history in HISTORIES}


def run_both(seconds, locked):
    command, environment = (LOCKED_TESTER, {"LD_PRELOAD": ""}) if locked else (runs.TESTER, {})
    started = [runs.start(seconds, command, runs.FAKE / run, **environment) for run in "ab"]
    runs.expect_same("exit statuses", [0, 0], [runs.finish(run)[0] for run in started])


def check_added(history, added, alone, locked):
    if locked:
        runs.expect_same(f"lines added to {history}", alone, added)
    if history == "connection_test_results_history":
        runs.expect_same("number of result lines", 2, added.total())
    if history == "ping_history" and added.total() > 2:
        runs.fail(f"two runs have added {added}")
    for line in added if history in WHOLE_LINES else []:
        if not re.fullmatch(WHOLE_LINES[history], line):
            runs.fail(f"{history} holds the line {line!r}")


def main(pairs, locked):
    totals = {history: collections.Counter() for history in HISTORIES}
    before = lines_now()
    for pair in range(pairs):
        seconds = runs.FIRST_START + pair * runs.HOUR
        run_both(seconds, locked)
        now = lines_now()
        for history, alone in lines_alone(seconds).items():
            runs.expect_same(f"lines that {history} has lost", collections.Counter(),
                             before[history] - now[history])
            added = now[history] - before[history]
            check_added(history, added, alone, locked)
            totals[history] += collections.Counter(
                own=(added & alone).total(), lost=(alone - added).total(),
                foreign=(added - alone).total())
        before = now
    for history, total in totals.items():
        print(f"{history}: of {2 * pairs} lines {total['own']} as when alone, "
              f"{total['lost']} missing, {total['foreign']} others")


main(int(sys.argv[1]), "locked" in sys.argv[2:])

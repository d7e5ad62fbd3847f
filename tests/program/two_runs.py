"""Starts run a and run b at the same moment, again and again.

usage: two_runs.py PAIRS

In any case each run adds a line to the results and at most one to the pings, both whole, and no line
that was there before goes. (The two share the files of the latest reports, so that one may add what the
other has measured.)
"""

import collections
import re
import sys

import runs

# The lines that are written at once, whatever the other run does.
PING = r"\d{8}T\d{6}(,\d+\.\d{3}){4}"
RESULT = (r"Date = (\d{8}T\d{6})?, Latency = (\d+|n/a) ms, "
          r"Write Transfer Rate = (\d+|n/a) bps, Read Transfer Rate = (\d+|n/a) bps ")


def lines_now():
    return {history: collections.Counter(runs.read_history(history).decode().split("\n")[:-1])
            for history in runs.HISTORIES}


def expect_whole(form, added):
    for line in added:
        if not re.fullmatch(form, line):
            runs.fail(f"a run has added {line!r}")


def main(pairs):
    now = lines_now()
    for pair in range(pairs):
        before = now
        seconds = runs.FIRST_START + pair * runs.HOUR
        started = [runs.start(seconds, fake=runs.FAKE / run) for run in "ab"]
        runs.expect_same("exit statuses", [0, 0], [runs.finish(run)[0] for run in started])
        now = lines_now()
        for history in runs.HISTORIES:
            runs.expect_same(f"lines that {history} has lost", collections.Counter(),
                             before[history] - now[history])
        pings = now["ping_history"] - before["ping_history"]
        results = (now["connection_test_results_history"]
                   - before["connection_test_results_history"])
        expect_whole(PING, pings)
        expect_whole(RESULT, results)
        runs.expect_same("number of result lines", 2, results.total())
        if pings.total() > 2:
            runs.fail(f"two runs have added {pings}")


main(int(sys.argv[1]))

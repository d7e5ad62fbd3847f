"""Runs the program on a recorded report that breaks off, at every N-th byte, and compares what the
runs leave with a table.

usage: report_cuts.py TOOL REPORT TABLE N

A row of the table says what a run leaves when that many bytes of the report are there, and any more up
to the next row's: the exit status and the errors, the tool's history and the values of the result. The
last letters before the cut stand in front. With UPDATE=1 and N = 1, writes the table anew.
"""

import os
import pathlib
import re
import sys

import runs

HISTORIES = {"ping": "ping_history", "iperf3": "iperf3_history_forward",
             "iperf3-R": "iperf3_history_reverse", "iperf": "iperf2_history"}
IPERF2_TESTER = ("iperf2_driver", runs.ADDRESS, "exec", "read", "report", "result")


def left_by_run(tool, report):
    """All in which the run differs from those on other cuts of the report."""
    history = runs.live_file(HISTORIES[tool])
    result = runs.LOGS / "connection_test_results.txt"
    history.unlink(missing_ok=True)
    result.unlink(missing_ok=True)
    (runs.FAKE / f"{tool}.out").write_bytes(report)
    command = IPERF2_TESTER if tool == "iperf" else runs.TESTER
    status, _, errors = runs.finish(runs.start(runs.FIRST_START, command))
    text = history.read_bytes().decode() if history.exists() else ""
    values = re.findall(r"= ([^, ]*)", result.read_text()) if result.exists() else []
    kept = "(the report)" if report and text == report.decode() else repr(text)
    return f"{status} {errors!r} {kept} {values}"


def read_table(file):
    return [(int(line[:5]), line[20:]) for line in file.read_text().splitlines()]


def write_table(file, report, runs_left):
    with file.open("w") as table:
        before = None
        for cut, left in runs_left:
            if left != before:
                table.write(f"{cut:5} {report[max(0, cut - 6):cut].decode()!r:14}{left}\n")
            before = left


def main(tool, report, file, every):
    report = report.read_bytes()
    runs_left = []
    for cut in range(0, len(report) + 1, every):
        runs_left.append((cut, left_by_run(tool, report[:cut])))
    if every == 1 and os.environ.get("UPDATE") == "1":
        write_table(file, report, runs_left)
    rows = read_table(file)
    for cut, left in runs_left:
        row = [left for first_cut, left in rows if first_cut <= cut][-1]
        runs.expect_same(f"what {cut} bytes of the report leave", row, left)
    ends = sum(left.startswith("134 ") for _, left in runs_left)
    print(f"{len(runs_left)} cut reports, {ends} ended the run abnormally")


main(sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]), int(sys.argv[4]))

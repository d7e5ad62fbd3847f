"""Runs the program on reports that break off: each recorded report, cut at every N-th byte or line.

usage: report_cuts.py ping|iperf3|iperf3-R|iperf byte|line N FILE...

After each run the exit status and the errors, and in the end all histories, have to be what
report_oracle.py says.
"""

import sys

import report_oracle
import runs

ORACLES = {"ping": report_oracle.ping, "iperf3": report_oracle.iperf3,
           "iperf3-R": report_oracle.iperf3_reverse, "iperf": report_oracle.iperf}
COMMANDS = {"iperf": ("iperf2_driver", "10.0.0.5", "exec", "read", "report", "result")}

# The iperf2 run appends a file that nothing writes.
ERRORS = {"iperf": "cat: /tmp/home/Library/Logs/Qelmora/iperf2_latest_forward_csv.log: "
                   "No such file or directory\n"}

# What a direction of iperf3 leaves whose report is empty.
EMPTY_LINE = ",,0,,0,0,,0,0,0,0\n"


def cuts(text, unit, every):
    """The text's starts, each that number of bytes or lines longer than the one before it."""
    pieces = text if unit == "byte" else text.splitlines(keepends=True)
    return ["".join(pieces[:count]) for count in range(0, len(pieces) + 1, every)]


def run_on(tool, report, started_at):
    """Runs the program on one report. Returns what it has to leave."""
    (runs.FAKE / f"{tool}.out").write_text(report)
    status, _, errors = runs.finish(runs.start(started_at, COMMANDS.get(tool, runs.TESTER)))
    measured_at = int((runs.FAKE / "clock").read_text())
    outcome = ORACLES[tool](report, runs.stamp(started_at), runs.stamp(measured_at))
    runs.expect_same(f"exit status and errors with {report!r}",
                     (134 if outcome.error else 0, ERRORS.get(tool, "") + outcome.error),
                     (status, errors))
    return outcome


def add_expected(expected, tool, outcome):
    for history, text in outcome.histories.items():
        expected[history] += text
    if tool == "iperf3-R":
        expected["iperf3_history_forward"] += EMPTY_LINE
    if not outcome.error:
        expected["connection_test_results_history"] += outcome.result_line()
        if tool == "iperf3":
            expected["iperf3_history_reverse"] += EMPTY_LINE


def main(tool, unit, every, files):
    expected = dict.fromkeys(runs.HISTORIES, "")
    count = abnormal_ends = 0
    for file in files:
        with open(file, newline="", encoding="utf-8") as recording:
            text = recording.read()
        for report in cuts(text, unit, int(every)):
            outcome = run_on(tool, report, runs.FIRST_START + count * runs.HOUR)
            add_expected(expected, tool, outcome)
            count += 1
            abnormal_ends += outcome.error != ""
    for history, text in expected.items():
        runs.expect_same(history, text, runs.read_history(history).decode())
    print(f"{count} cut reports, {abnormal_ends} ended the run abnormally")


main(sys.argv[1], sys.argv[2], sys.argv[3], sys.argv[4:])

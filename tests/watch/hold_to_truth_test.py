#!/usr/bin/env python3
"""Tries hold_to_truth.py: an export made from the truth itself is equal to it, and with one thing wrong
it is not. What is printed is compared whole.

usage: hold_to_truth_test.py
"""

import copy
import datetime
import json
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).parent
ARGUMENTS = ("--mix", "hard", "--seed", "7", "--runs", "300")


def truth_of_made_logs(directory):
    subprocess.run([sys.executable, HERE / "make_logs.py", directory, *ARGUMENTS], check=True)
    return [json.loads(line) for line in (directory / "truth.jsonl").read_text().splitlines()]


def record_of(truth):
    """The line of the export that says of a run what is true of it."""
    says = truth["says"]
    source, seconds = says["time"] or (None, None)
    at = seconds and datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)
    states = says["states"]
    return {
        "time": at and at.strftime("%Y-%m-%dT%H:%M:%SZ"), "local": at and at.isoformat(),
        "time_source": source, "fold_unresolved": says["fold_unresolved"], "class": says["class"],
        "finished": says["finished"], "orphan": says["orphan"], "unsure": None,
        "ping": {"state": states[0], "avg_ms": says["latency_ms"],
                 "loss_percent": says["loss_percent"]},
        "write": {"state": states[1], "bps": says["write_bps"]},
        "read": {"state": states[2], "bps": says["read_bps"]},
        "from": {**truth["files"], "journal": []}}


class Case:
    """A truth and an export of the same runs, which a test breaks in one place."""

    def __init__(self, runs):
        self.runs = copy.deepcopy(runs)
        self.records = [record_of(run) for run in self.runs]

    def place(self, wanted):
        return next(place for place, run in enumerate(self.runs) if wanted(run))

    def judged(self, directory):
        """What hold_to_truth.py prints, and its status."""
        for name, rows in (("truth", self.runs), ("export", self.records)):
            (directory / name).write_text("".join(json.dumps(row) + "\n" for row in rows))
        done = subprocess.run([sys.executable, HERE / "hold_to_truth.py", directory / "truth",
                               directory / "export"], stdout=subprocess.PIPE, text=True)
        return done.stdout.splitlines(), done.returncode


def is_usual(run):
    return run["says"]["states"] == ["replied", "full", "full"] and len(run["files"]["ping"]) == 1


def is_orphan(run):
    return run["says"]["orphan"] and not run["disguised"]


def is_refused(run):
    return run["says"]["states"] == ["replied", "no_test", "no_test"]


# What is broken: which run, where in its line of the export, to what, and what is to be said of that.
BROKEN = [
    (is_usual, ("time",), "2001-09-09T01:46:40Z", "time is 1000000000.0, not {time}"),
    (is_usual, ("time",), None, "time is None, not {time}"),
    (is_usual, ("local",), "2001-09-09T03:46:40+02:00", "local is 1000000000.0, not {time}"),
    (is_usual, ("time_source",), "forward", "time_source is forward, not ping"),
    (is_usual, ("fold_unresolved",), True, "fold_unresolved is True, not False"),
    (is_usual, ("finished",), False, "finished is False, not True"),
    (is_usual, ("orphan",), True, "orphan is True, not False"),
    (is_usual, ("class",), "failed", "class is failed, not ['ok']"),
    (is_usual, ("ping", "state"), "unread", "ping.state is unread, not replied"),
    (is_usual, ("write", "state"), "cut", "write.state is cut, not full"),
    (is_usual, ("read", "state"), "off", "read.state is off, not full"),
    (is_usual, ("ping", "avg_ms"), 1000.0, "ping.avg_ms is 1000.0, not {latency_ms}"),
    (is_usual, ("ping", "avg_ms"), None, "ping.avg_ms is None, not {latency_ms}"),
    (is_usual, ("ping", "loss_percent"), 0.1, "ping.loss_percent is 0.1, not 0.0"),
    (is_usual, ("write", "bps"), 17, "write.bps is 17, not {write_bps}"),
    (is_usual, ("read", "bps"), None, "read.bps is None, not {read_bps}"),
    (is_refused, ("write", "bps"), 0, "write.bps is 0, not None"),
    (is_refused, ("read", "bps"), 0, "read.bps is 0, not None"),
    (is_usual, ("from", "ping"), [], "from.ping is [], not {ping}"),
    (is_usual, ("from", "verbose"), [], "from.verbose is [], not {verbose}"),
    (is_usual, ("from", "forward"), [], "from.forward is [], not {forward}"),
    (is_usual, ("from", "reverse"), [], "from.reverse is [], not {reverse}"),
    (is_usual, ("from", "result"), [], "from.result is [], not {result}"),
    (is_orphan, ("orphan",), False, "orphan is False, not True"),
]


def expected_message(run, text):
    says = run["says"]
    lines = {kind: sorted((file, line) for file, first, last in spans
                          for line in range(first, last + 1))
             for kind, spans in run["files"].items()}
    values = {**says, **lines, "time": (says["time"] or [None, None])[1]}
    return f"run {run['run']} ({run['note']}, {run['local']}): {text.format(**values)}"


def set_at(record, path, value):
    for name in path[:-1]:
        record = record[name]
    record[path[-1]] = value


def expect(what, expected, found):
    if expected != found:
        sys.exit(f"FAILED: {what}: expected\n{expected}\nbut found\n{found}")


def expect_judged(what, case, directory, counts, messages=()):
    equal, unsure, wrong = counts
    last = f"{len(case.runs)} runs: {equal} equal, {unsure} unsure, {wrong} wrong"
    expect(what, ([*messages, last], int(wrong > 0)), case.judged(directory))


def try_broken_fields(runs, directory):
    for wanted, path, value, text in BROKEN:
        case = Case(runs)
        place = case.place(wanted)
        set_at(case.records[place], path, value)
        message = expected_message(case.runs[place], text)
        expect_judged(path, case, directory, (len(runs) - 1, 0, 1), [message])
        case.records[place]["unsure"] = "could be another's"
        expect_judged(("unsure", *path), case, directory, (len(runs) - 1, 1, 0))


def try_lines_of_the_export(runs, directory):
    for wanted in (is_usual, is_orphan):
        case = Case(runs)
        place = case.place(wanted)
        del case.records[place]
        message = expected_message(case.runs[place], "is missing")
        expect_judged("missing", case, directory, (len(runs) - 1, 0, 1), [message])

    case = Case(runs)
    extra = copy.deepcopy(case.records[0])
    extra["from"] = {**extra["from"], "result": [["connection_test_results_history.log", 99, 99]]}
    case.records.append(extra)
    message = (f"export line {len(case.records)}: is nobody's run: " + json.dumps(extra["from"]))
    expect_judged("nobody's", case, directory, (len(runs), 0, 1), [message])


def try_what_may_differ(runs, directory):
    case = Case(runs)
    place = case.place(is_usual)
    case.runs[place]["disguised"] = "ping"
    case.records[place]["ping"] = {"state": "no_reply", "avg_ms": None, "loss_percent": 100.0}
    expect_judged("disguised", case, directory, (len(runs) - 1, 1, 0))
    case.records[place]["finished"] = False
    message = [expected_message(case.runs[place], text) for text in (
        "finished is False, not True", "ping.state is no_reply, not replied",
        "ping.avg_ms is None, not {latency_ms}", "ping.loss_percent is 100.0, not 0.0")]
    expect_judged("more than disguised", case, directory, (len(runs) - 1, 0, 1), message)
    case.runs[place]["disguised"] = "forward"
    expect_judged("all of it disguised", case, directory, (len(runs) - 1, 1, 0))
    del case.records[place]
    expect_judged("gone by its disguise", case, directory, (len(runs) - 1, 1, 0))

    case = Case(runs)
    place = case.place(is_usual)
    case.records[place]["write"]["bps"] += 1
    case.records[place]["ping"]["avg_ms"] += 0.009
    expect_judged("rounded otherwise", case, directory, (len(runs), 0, 0))


def main():
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        entries = truth_of_made_logs(directory / "made")
        runs = [entry for entry in entries if any(entry.get("files", {}).values())]
        expect_judged("the truth itself", Case(runs), directory, (len(runs), 0, 0))
        try_broken_fields(runs, directory)
        try_lines_of_the_export(runs, directory)
        try_what_may_differ(runs, directory)


main()

#!/usr/bin/env python3
"""Holds the runs that connWatch finds to the truth of made log directories, and to what must not change
them.

usage: export_test.py CONNWATCH CASE
"""

import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile

import hold_to_truth
import make_logs

ZONE = "Europe/Berlin"


def make(directory, *options):
    subprocess.run([sys.executable, make_logs.__file__, directory, *options], check=True)
    return pathlib.Path(directory)


def export(logs):
    return subprocess.run([sys.argv[1], "export", "jsonl", "--from", logs], check=True,
                          capture_output=True, env={**os.environ, "TZ": ZONE}).stdout


def records(logs):
    return [json.loads(line) for line in export(logs).splitlines()]


def hold(made):
    """Ends with a message when a run is told wrongly. Returns the counts of what the runs are."""
    comparison = hold_to_truth.Comparison(hold_to_truth.read_lines(made / "truth.jsonl"),
                                          records(made / "log"))
    comparison.hold()
    comparison.print()
    if comparison.counts["wrong"]:
        sys.exit(f"FAILED: {made.name}")
    return comparison.counts


def of_all_kinds_are_true(place):
    """Of all kinds close together, a third may be hard to tell."""
    for seed in range(1, 13):
        for interval in (300, 3600):
            made = make(f"{place}/{seed}-{interval}", "--mix", "hard", "--runs", "200",
                        "--seed", str(seed + 100), "--interval", str(interval))
            counts = hold(made)
            if counts["unsure"] * 2 > counts["equal"]:
                sys.exit(f"FAILED: too many runs of seed {seed} are unsure")


def of_the_hard_example_are_true(_):
    """It was made once, by other means than the others."""
    counts = hold(pathlib.Path(__file__).parent / "data/hard")
    if counts["unsure"] > 12:
        sys.exit("FAILED: more runs are unsure than need be")


def of_a_home_line_are_true(place):
    for interval in (300, 3600):
        made = make(f"{place}/{interval}", "--mix", "plain", "--runs", "2000",
                    "--interval", str(interval))
        if hold(made)["unsure"]:
            sys.exit("FAILED: nothing is unsure in a home line")


def are_the_same_twice(place):
    logs = make(f"{place}/made", "--mix", "hard", "--runs", "300") / "log"
    if export(logs) != export(logs):
        sys.exit("FAILED: the second export is another one")


def do_not_depend_on_the_names_in_the_archive(place):
    """Names tell the time of runs that nothing else tells, and nothing else, as long as lines do."""
    logs = make(f"{place}/made", "--mix", "plain", "--runs", "400") / "log"
    before = records(logs)
    numbers = random.Random(1)
    for file in sorted((logs / "archive").iterdir()):
        name = file.name.rsplit("_", 1)[0]
        file.rename(file.with_name(f"{name}_{numbers.randrange(10**12)}.log"))
    after = records(logs)
    for record in (*before, *after):
        if record["time_source"] == "archive_stamp":
            record.update(time=None, local=None, time_source=None, fold_unresolved=False)
        record["from"] = {kind: [span[1:] for span in spans]
                          for kind, spans in record["from"].items()}
    key = json.dumps
    if sorted(before, key=key) != sorted(after, key=key):
        sys.exit("FAILED: the names change what is told")


def do_not_change_when_a_run_is_added(place):
    """The runs before stay what they were, wherever their lines have moved, but for the last two: what
    comes next can settle those."""
    previous = []
    for runs in range(100, 131):
        logs = make(f"{place}/{runs}", "--mix", "plain", "--runs", str(runs), "--seed", "5",
                    "--start", "2026-10-22") / "log"
        now = records(logs)
        for record in now:
            del record["from"]
        settled = max(0, len(previous) - 2)
        if now[:settled] != previous[:settled]:
            sys.exit(f"FAILED: run {runs} changes earlier ones")
        previous = now


CASES = {
    "OfAllKindsAreTrue": of_all_kinds_are_true,
    "OfTheHardExampleAreTrue": of_the_hard_example_are_true,
    "OfAHomeLineAreTrue": of_a_home_line_are_true,
    "AreTheSameTwice": are_the_same_twice,
    "DoNotDependOnTheNamesInTheArchive": do_not_depend_on_the_names_in_the_archive,
    "DoNotChangeWhenARunIsAdded": do_not_change_when_a_run_is_added,
}

if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as temporary:
        CASES[sys.argv[2]](temporary)

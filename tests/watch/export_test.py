#!/usr/bin/env python3
"""Holds the runs that connWatch finds to the truth of made log directories, and to what must not change
them.

usage: export_test.py CONNWATCH CASE
"""

import collections
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time

import hold_to_truth
import make_journal
import make_logs

ZONE = "Europe/Berlin"


def make(directory, *options):
    subprocess.run([sys.executable, make_logs.__file__, directory, *options], check=True)
    return pathlib.Path(directory)


def export(logs):
    return subprocess.run([sys.argv[1], "export", "jsonl", "--from", logs], check=True,
                          capture_output=True).stdout


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


def are_beyond_doubt_with_a_journal(place):
    """All is told as without it, but for the times, which it knows. Of the outputs of pings, some stay
    orphans: their figures are in the journal."""
    made = [make(f"{place}/{seed}", "--mix", "hard", "--runs", "200", "--seed", str(seed))
            for seed in range(41, 45)]
    counts = collections.Counter()
    for example in (*made, copy_of_hard_example(place)):
        make_journal.write_journal(example)
        truths = hold_to_truth.read_lines(example / "truth.jsonl")
        told = [record for record in records(example / "log") if not record["orphan"]]
        for truth in truths:
            if truth.get("files"):
                truth["says"] |= {"time": ["journal", truth["clock_start"]], "orphan": False,
                                  "fold_unresolved": False}
                truth["files"]["verbose"] = []
        for record in told:
            record["from"]["verbose"] = []
        told = [record for record in told if any(record["from"][kind] for kind in hold_to_truth.KINDS)]
        comparison = hold_to_truth.Comparison(truths, told)
        comparison.hold()
        comparison.print()
        counts += comparison.counts
    if counts["wrong"]:
        sys.exit("FAILED: the journal makes runs wrong")
    if counts["unsure"] * 30 > counts["equal"]:
        sys.exit("FAILED: the journal leaves doubts")


def copy_of_hard_example(place):
    return pathlib.Path(shutil.copytree(pathlib.Path(__file__).parent / "data/hard", f"{place}/hard"))


CASES = {
    "OfAllKindsAreTrue": of_all_kinds_are_true,
    "OfTheHardExampleAreTrue": of_the_hard_example_are_true,
    "OfAHomeLineAreTrue": of_a_home_line_are_true,
    "AreBeyondDoubtWithAJournal": are_beyond_doubt_with_a_journal,
    "AreTheSameTwice": are_the_same_twice,
    "DoNotDependOnTheNamesInTheArchive": do_not_depend_on_the_names_in_the_archive,
    "DoNotChangeWhenARunIsAdded": do_not_change_when_a_run_is_added,
}

if __name__ == "__main__":
    os.environ["TZ"] = ZONE
    time.tzset()
    with tempfile.TemporaryDirectory() as temporary:
        CASES[sys.argv[2]](temporary)

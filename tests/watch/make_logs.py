#!/usr/bin/env python3
"""Makes a log directory as the tester leaves it after many runs, and says what is true of each run.

DIR/log is the log directory. DIR/truth.jsonl has a line for each slot, in their true order: "run" null
when nothing ran, else what happened, which lines of which files it left, and in "says" what an honest
reader can tell from the files alone. Where these look exactly as if something else had happened, a run
is "disguised" in its "ping" or its "forward" test. No move to the archive replaces an earlier one. The
same arguments make the same bytes.
"""

import argparse
import collections
import json
import os
import random

import cases
from local_time import LocalTime
from log_directory import LogDirectory
from tester_run import Clock, Run, mark_disguised

PROCESS = 41234


def arguments(given=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("directory", metavar="DIR", help="is made, and must not be there")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--runs", type=int, required=True, help="slots, in each of which a run is due")
    parser.add_argument("--interval", type=int, default=3600, help="seconds from slot to slot")
    parser.add_argument("--mix", choices=cases.MIXES, default="plain")
    parser.add_argument("--zone", default="Europe/Berlin")
    parser.add_argument("--start", help="seconds since the epoch, or an ISO time; by default, hard has "
                        "the end of summer time in the period, and plain begins with the year 2026")
    return parser.parse_args(given)


def first_slot(options, local_time, random_numbers):
    if options.start:
        return local_time.seconds(options.start)
    twice = local_time.end_of_summer_time(2026)
    if options.mix == "plain" or twice is None:
        return local_time.seconds("2026-01-01")
    before = int(options.runs * random_numbers.uniform(0.2, 0.8))
    return twice - before * options.interval


class Workstation:
    """Runs the tester in each slot, if the machine is on and the run before has ended."""

    def __init__(self, logs, local_time, mix, random_numbers):
        self.logs = logs
        self.local_time = local_time
        self.mix = mix
        self.random = random_numbers
        self.clock = Clock(0)
        self.busy_until = 0

    def slot(self, number, slot, interval):
        """Returns the run of a slot, or why there is none."""
        start = slot + self.random.randint(interval // 150 + 1, max(2, interval // 4))
        if start <= self.busy_until:
            return "the run before has not ended"
        self.clock.true = start
        twice = self.local_time.comes_twice(self.clock.now)
        case = self.mix.next(self.clock, twice)
        if case is None:
            return cases.OFF
        while not self.logs.is_free(self.local_time.stamp(self.clock.now)):
            self.clock.true += 1
        now = self.clock.now
        case = cases.at_this_hour(case, self.local_time.hour(start), self.local_time.comes_twice(now))
        run = Run(number, slot, case, self.clock, self.random)
        run.carry_out(self.logs, self.local_time)
        self.logs.replace("connTester.lock", f"{PROCESS} {self.local_time.iso(now)[:19]}\n".replace(
            "T", " "), run.clock_start)
        self.busy_until = self.clock.true
        return run


def make_runs(options, logs):
    """Yields what becomes of each slot: its run, or the slot and why there is none."""
    random_numbers = random.Random(options.seed)
    local_time = LocalTime(options.zone)
    mix = cases.MIXES[options.mix](random_numbers, options.interval)
    workstation = Workstation(logs, local_time, mix, random_numbers)
    first = first_slot(options, local_time, random_numbers)
    count = 0
    for slot in range(first, first + options.runs * options.interval, options.interval):
        outcome = workstation.slot(count, slot, options.interval)
        count += isinstance(outcome, Run)
        yield outcome if isinstance(outcome, Run) else (slot, outcome)


def truth_of(entry):
    if isinstance(entry, Run):
        return entry.truth()
    slot, why = entry
    return {"class": "missing", "slot": slot, "run": None, "why": why}


def write_truth(options, entries, archives):
    classes = collections.Counter()
    with open(os.path.join(options.directory, "truth.jsonl"), "w", encoding="ascii") as file:
        for entry in entries:
            truth = truth_of(entry)
            classes[truth["class"]] += 1
            file.write(json.dumps(truth) + "\n")
    meta = {"preset": options.mix, "seed": options.seed, "zone": options.zone,
            "interval_seconds": options.interval, "entries": len(entries), "classes": classes,
            "archives": archives}
    with open(os.path.join(options.directory, "meta.json"), "w", encoding="ascii") as file:
        file.write(json.dumps(meta, indent=1) + "\n")


def main():
    options = arguments()
    logs = LogDirectory(os.path.join(options.directory, "log"))
    entries = list(make_runs(options, logs))
    logs.close()
    mark_disguised([entry for entry in entries if isinstance(entry, Run)])
    write_truth(options, entries, len(logs.archived))


if __name__ == "__main__":
    main()

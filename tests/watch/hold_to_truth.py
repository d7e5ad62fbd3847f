#!/usr/bin/env python3
"""Compares what `connWatch export jsonl` says of a log directory with what is true of it.

usage: hold_to_truth.py TRUTH EXPORT

TRUTH is as make_logs.py writes it. A run is found in the export by the lines of the files that it has
left. It is "unsure" when the export says so of it, "equal" when all its fields are, and else "wrong". A
run that the truth calls disguised may differ in what its ping would tell, or in all; it is "unsure"
then, too. A line is printed for each difference of a wrong run and for each line of the export that is
nobody's run. The status is 1 when there is any.
"""

import collections
import datetime
import json
import statistics
import sys

from tool_outputs import is_iputils, time_text

KINDS = ("result", "forward", "reverse", "ping", "verbose")
FOLD = 3600  # seconds by which the readings of a local time that comes twice are apart


def read_lines(path):
    with open(path, encoding="utf-8") as file:
        return [json.loads(line) for line in file]


def places(spans):
    """The lines of files, each by itself."""
    return {(file, line) for file, first, last in spans for line in range(first, last + 1)}


def seconds(text):
    if text is None:
        return None
    return datetime.datetime.fromisoformat(text.replace("Z", "+00:00")).timestamp()


def part(record, name, field):
    """A value of a ping or of a direction; where that is null as a whole, it was off."""
    values = record[name] or {"state": "off"}
    return values.get(field)


# How values are compared: each takes the truth's, the export's, and the truth as a whole.


def same(true, found, _):
    return true == found


def within(limit):
    def compare(true, found, _):
        if true is None or found is None:
            return true is found
        return abs(true - found) <= limit
    return compare


def same_time(true, found, truth):
    """A local time that comes twice may have been read as either."""
    if true is None or found is None:
        return true is found
    distances = (0, FOLD) if truth["says"]["fold_unresolved"] else (0,)
    return any(abs(abs(true - found) - distance) <= 1 for distance in distances)


def same_latency(true, found, truth):
    """The average is the summary's or, where that was not read, the mean of the times as shown."""
    if true is None or found is None:
        return true is found
    return any(abs(each - found) <= 0.01 for each in (true, *shown_mean(truth)))


def shown_mean(truth):
    ping = truth["ping_happened"]
    if truth["says"]["states"][0] != "unread" or not is_iputils(ping["flavour"]):
        return []
    times = [float(time_text(ping["flavour"], each)) for each in ping["rtts"] if each is not None]
    return [statistics.fmean(times)]


def one_of(true, found, _):
    return found in true


def state(number):
    return lambda truth: truth["says"]["states"][number]


def says(field):
    return lambda truth: truth["says"][field]


def true_time(place):
    return lambda truth: (truth["says"]["time"] or (None, None))[place]


def left(kind):
    return lambda truth: places(truth["files"][kind])


def exported(field):
    return lambda record: record[field]


def exported_part(name, field):
    return lambda record: part(record, name, field)


def taken_from(kind):
    return lambda record: places(record["from"][kind])


# What is compared: the name, how the truth and the export tell it, and when the two are the same.
FIELDS = [
    ("time", true_time(1), lambda record: seconds(record["time"]), same_time),
    ("local", true_time(1), lambda record: seconds(record["local"]), same_time),
    ("time_source", true_time(0), exported("time_source"), same),
    ("fold_unresolved", says("fold_unresolved"), exported("fold_unresolved"), same),
    ("finished", says("finished"), exported("finished"), same),
    ("orphan", says("orphan"), exported("orphan"), same),
    ("class", says("classes"), exported("class"), one_of),
    ("ping.state", state(0), exported_part("ping", "state"), same),
    ("write.state", state(1), exported_part("write", "state"), same),
    ("read.state", state(2), exported_part("read", "state"), same),
    ("ping.avg_ms", says("latency_ms"), exported_part("ping", "avg_ms"), same_latency),
    ("ping.loss_percent", says("loss_percent"), exported_part("ping", "loss_percent"), within(0.05)),
    ("write.bps", says("write_bps"), exported_part("write", "bps"), within(1)),
    ("read.bps", says("read_bps"), exported_part("read", "bps"), within(1)),
    *((f"from.{kind}", left(kind), taken_from(kind), same) for kind in KINDS),
]

# What the export may tell otherwise of a run that is disguised.
MAY_DIFFER = {
    "ping": {"orphan", "class", "ping.state", "ping.avg_ms", "ping.loss_percent", "from.verbose"},
    "forward": {"run", *(field[0] for field in FIELDS)},
}


def differences(truth, record):
    """The fields that the export tells otherwise, each with a text that says how."""
    found = {}
    for name, of_truth, of_record, compare in FIELDS:
        true, told = of_truth(truth), of_record(record)
        if not compare(true, told, truth):
            found[name] = f"{name} is {shown(told)}, not {shown(true)}"
    return found


def shown(value):
    return sorted(value) if isinstance(value, set) else value


class Comparison:
    def __init__(self, truths, records):
        self.runs = [truth for truth in truths if truth.get("files") and any(truth["files"].values())]
        self.records = records
        self.by_place = collections.defaultdict(list)
        for record in records:
            for kind in KINDS:
                for place in places(record["from"][kind]):
                    self.by_place[kind, place].append(record)
        self.counts = collections.Counter()
        self.messages = []

    def hold(self):
        """Judges all runs and then all lines of the export that are left over."""
        found, excused = set(), set()
        for truth in self.runs:
            record = self._find(truth)
            if record is not None:
                found.add(id(record))
            verdict = self._judge(truth, record)
            self.counts[verdict] += 1
            if verdict == "unsure":
                excused |= self._places_of(truth["files"])
        for number, record in enumerate(self.records, 1):
            if id(record) not in found:
                self._judge_left_over(number, record, excused)

    def _find(self, truth):
        """The line of the export that holds the first line of the run's that is in any. An output in
        the verbose log names a run only where there is nothing else."""
        orphan = truth["says"]["orphan"]
        for kind in ["verbose"] if orphan else KINDS[:-1]:
            for place in sorted(places(truth["files"][kind])):
                records = self.by_place[kind, place]
                if records:
                    return next((each for each in records if each["orphan"] == orphan), records[0])
        return None

    def _judge(self, truth, record):
        if record is not None and record["unsure"]:
            return "unsure"
        missing = {"orphan": "is missing"} if truth["says"]["orphan"] else {"run": "is missing"}
        wrong = missing if record is None else differences(truth, record)
        if not wrong:
            return "equal"
        if wrong.keys() <= MAY_DIFFER.get(truth.get("disguised"), set()):
            return "unsure"
        name = f"run {truth['run']} ({truth['note']}, {truth['local']})"
        self.messages += [f"{name}: {each}" for each in wrong.values()]
        return "wrong"

    def _judge_left_over(self, number, record, excused):
        """A line of the export that is no run's own may hold only lines of runs that are unsure."""
        held = self._places_of(record["from"])
        if not held or not held <= excused:
            self.counts["wrong"] += 1
            self.messages.append(f"export line {number}: is nobody's run: {json.dumps(record['from'])}")

    @staticmethod
    def _places_of(files):
        return set().union(*(places(files[kind]) for kind in KINDS))

    def print(self):
        for message in self.messages:
            print(message)
        counts = self.counts
        print(f"{len(self.runs)} runs: {counts['equal']} equal, {counts['unsure']} unsure, "
              f"{counts['wrong']} wrong")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.split("\n\n")[1])
    comparison = Comparison(read_lines(sys.argv[1]), read_lines(sys.argv[2]))
    comparison.hold()
    comparison.print()
    sys.exit(1 if comparison.counts["wrong"] else 0)


if __name__ == "__main__":
    main()

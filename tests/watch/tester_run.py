"""One run of the tester: what the tools meet, what it leaves in the log directory, and what an honest
reader can tell from that."""

import dataclasses

from tool_outputs import ERRORS, FLAVOURS, Test, ping_lines, summary_numbers

# The unit of the rates, by `outputFormat`.
UNITS = {1: ("bps", 1), 2: ("Mebibps", 1 << 20), 3: ("Megabps", 1_000_000)}
RESULT_WIDTH = 126

HOSTS = {
    "IPv4": ("192.168.1.20", "192.0.2.10"),
    "IPv6": ("2001:db8::20", "2001:db8::10"),
    "long IPv6": ("2001:db8:1234:5678:9abc:def0:1234:5678", "2001:db8::10"),
}
PUBLIC_RESOLVER = "8.8.8.8"

# Seconds in which a test without a connection ends.
SECONDS_WITHOUT_TEST = {"no_route": 3, "timed_out": 70, "killed": 5}
LINGER = 10  # seconds that a ping waits for its last reply


@dataclasses.dataclass
class Case:
    """What a run meets. `ping` and the directions are outcomes; "off": the settings say so."""

    note: str = "plain"
    ping: str = "ok"
    flavour: str = "inetutils"
    count: int = 10
    summaries: int = 1
    resolver: bool = False
    deviation: str = None
    forward: str = "ok"
    reverse: str = "ok"
    duration: int = 10
    unit: int = 1
    release: str = "3.12"
    hosts: str = "IPv4"
    killed_in: str = None
    step: int = 0  # seconds by which the workstation's clock is set on while the ping runs
    sleep: int = 0  # seconds that the machine sleeps while the ping runs
    line: tuple = (41e6, 246e6, 12.6)  # bits per second there and back, milliseconds


@dataclasses.dataclass
class Clock:
    """The true time, and by how much the workstation's clock is ahead of it."""

    true: int
    ahead: int = 0

    @property
    def now(self):
        return self.true + self.ahead


class Run:
    """Carries a case out. Afterwards `truth()` says what happened and what can be told of it."""

    def __init__(self, number, slot, case, clock, random):
        self.number = number
        self.slot = slot
        self.case = case
        self.clock = clock
        self.random = random
        self.true_start = clock.true
        self.clock_start = clock.now
        self.times = None  # of the pings; None for each that is lost
        self.tests = {"forward": None, "reverse": None}
        self.marks = {}  # the clock when each tool ended, and the moment of the kill
        self.lines = {"ping": [], "verbose": [], "forward": [], "reverse": [], "result": []}
        self.first_move = None
        self.disguised = None  # whose lines look like another case's: "ping" or "forward"

    # What happens

    def carry_out(self, logs, local_time):
        """Runs the tests, up to where the case has the run killed."""
        self.logs = logs
        self.local_time = local_time
        self.stamp = local_time.stamp(self.clock.now)
        self.date = ""
        self.latency = None
        self.output = []
        for step in (self._ping, self._forward, self._reverse, self._result):
            if not step():
                return

    def _append(self, kind, line):
        history, number, moved = self.logs.append(kind, line, self.clock.now, self.stamp)
        self.lines[kind].append((history, number, number))
        if moved:
            self.first_move = self.first_move or self.clock_start
            self.stamp = self.local_time.stamp(self.clock.now)
            while not self.logs.is_free(self.stamp, after=kind):
                self.clock.true += 1
                self.stamp = self.local_time.stamp(self.clock.now)

    def _ping(self):
        case = self.case
        if case.ping == "off":
            return True
        if case.ping not in ("missing", "unknown_host"):
            self._draw_times()
        killed = case.killed_in == "ping"
        self.clock.true += self._ping_seconds() // (2 if killed else 1)
        self.clock.true += case.sleep
        self.clock.ahead += case.step
        self.marks["ping"] = self.clock.now
        blocks = self._blocks()
        self.output = [line for block in blocks for line in block]
        if killed:
            self.output = self.output[:len(self.output) // 2]
        text = "".join(line + "\n" for line in self.output)
        self.logs.replace("ping_latest.log", text, self.clock.now)
        if killed:
            return False
        span = self.logs.append_verbose(self.output, self.clock.now)
        if span:
            self.lines["verbose"].append(("ping_history_verbose.log", *span))
        for block in blocks:
            self._record_summary(block)
        return True

    def _draw_times(self):
        case, random = self.case, self.random
        latency = case.line[2]
        self.times = [round(latency + random.gammavariate(1.6, 0.45), 3) for _ in range(case.count)]
        if random.random() < 0.15:
            place = random.randrange(case.count)
            self.times[place] = round(self.times[place] + random.uniform(0.5, 12), 3)
        lost = {"ok": 0, "silent": case.count, "lossy": min(case.count - 1, random.choice((1, 3, 6)))}
        for place in random.sample(range(case.count), lost[case.ping]):
            self.times[place] = None

    def _ping_seconds(self):
        if self.times is None:
            return 0
        return len(self.times) - 1 + (LINGER if self.times[-1] is None else 0)

    def _blocks(self):
        """The outputs that the ping prints, one after the other; each is a bit later than the one
        before."""
        if self.times is None:
            return []
        case = self.case
        target = PUBLIC_RESOLVER if case.resolver else HOSTS[case.hosts][1]
        blocks = []
        for number in range(case.summaries if case.ping != "silent" else 1):
            if number:
                self.times = [each and round(each + 0.111, 3) for each in self.times]
            blocks.append(ping_lines(case.flavour, target, self.times, case.deviation))
        return blocks

    def _record_summary(self, block):
        """Takes a summary as the tester does: one that is not four numbers counts as zeros."""
        if not block[-1].startswith("round-trip"):
            return
        numbers = block[-1].split(" = ")[1][:-len(" ms")].split("/")
        if len(numbers) < 4:
            numbers = ["0.000"] * 4
        self.date = self.local_time.stamp(self.clock.now)
        self.latency = int(float(numbers[1]))
        self._append("ping", ",".join([self.local_time.stamp(self.clock_start), *numbers]))

    def _forward(self):
        return self._test("forward", self.case.forward, self.case.line[0])

    def _reverse(self):
        return self._test("reverse", self.case.reverse, self.case.line[1])

    def _test(self, kind, outcome, rate):
        if outcome == "off":
            return True
        case, killed = self.case, self.case.killed_in == kind
        test = Test("killed" if killed else outcome, case.duration, case.release, kind == "reverse",
                    HOSTS[case.hosts])
        self.tests[kind] = test
        if test.connected:
            self._draw_test(test, rate)
            self.clock.true += round(test.measured)
        else:
            self.clock.true += SECONDS_WITHOUT_TEST.get(test.outcome, 0)
        self.marks[kind] = self.clock.now
        report = "iperf3_latest-R.log" if test.reverse else "iperf3_latest.log"
        self.logs.replace(report, test.report, self.clock.now)
        if killed:
            return False
        self.clock.true += case.duration + 1
        line = test.csv_line()
        self.logs.replace(f"iperf3_latest_{kind}_csv.log", line + "\n", self.clock.now)
        self._append(kind, line)
        return True

    def _draw_test(self, test, rate):
        random, duration = self.random, self.case.duration
        test.epoch = self.clock.now
        test.port = random.randint(32768, 60999)
        seconds = {"ok": duration + random.uniform(0, 0.04),
                   "interrupted": duration * random.uniform(0.1, 0.84),
                   "stalled": duration + random.uniform(90, 240),
                   "server_killed": duration * 0.3}[test.outcome]
        test.measured = round(seconds, 6)
        moving = duration * 0.6 if test.outcome == "stalled" else seconds
        test.moved = int(rate * random.gauss(1, 0.012) * moving / 8)

    def _result(self):
        case = self.case
        if case.ping == case.forward == case.reverse == "off":
            return False
        unit, size = UNITS[case.unit]
        rates = [self._shown_rate(self.tests[kind], size) for kind in ("forward", "reverse")]
        latency = "n/a" if self.latency is None else self.latency
        line = (f"Date = {self.date}, Latency = {latency} ms, Write Transfer Rate = {rates[0]} {unit}, "
                f"Read Transfer Rate = {rates[1]} {unit} ")[:RESULT_WIDTH]
        self.logs.replace("connection_test_results.txt", line + "\n", self.clock.now)
        self._append("result", line)
        return True

    @staticmethod
    def _shown_rate(test, size):
        return int(test.kept_rate) // size if test and test.connected else "n/a"

    # What can be told

    def truth(self):
        says = self._says()
        kind = says["class"]
        if self.case.killed_in:
            kind = "unfinished" if any(self.lines.values()) else "vanished"
        return {"run": self.number, "slot": self.slot, "note": self.case.note,
                "killed_in": self.case.killed_in, "true_start": self.true_start,
                "clock_start": self.clock_start, "local": self.local_time.iso(self.clock_start),
                "ping_happened": self._ping_happened(),
                "forward_happened": self._test_happened("forward"),
                "reverse_happened": self._test_happened("reverse"),
                "disguised": self.disguised,
                "files": {kind: [[getattr(file, "name", file), first, last]
                                 for file, first, last in lines] for kind, lines in self.lines.items()},
                "says": says, "class": kind}

    def _ping_happened(self):
        case = self.case
        if case.ping == "off":
            return None
        target = PUBLIC_RESOLVER if case.resolver else HOSTS[case.hosts][1]
        times = self.times
        return {"outcome": case.ping, "flavour": case.flavour, "target": target,
                "sent": times and len(times),
                "received": times and sum(each is not None for each in times), "rtts": times}

    def _test_happened(self, kind):
        test = self.tests[kind]
        return test and {"outcome": test.outcome, "epoch": test.epoch, "measured": test.measured,
                         "duration": test.duration, "bytes": test.moved, "release": test.release}

    def _says(self):
        left = any(self.lines.values())
        ping = self._ping_state() if left else "off"
        states = [ping, self._rate_state("forward"), self._rate_state("reverse")]
        classes = self._classes(states) if left else ["missing"]
        source = self._time_source()
        replies = [each for each in self.times or [] if each is not None]
        loss = None
        if self.lines["verbose"]:
            loss = 100 * (len(self.times) - len(replies)) / len(self.times)
        epoch = any(self.has_epoch(kind) for kind in self.tests)
        return {"orphan": self.is_orphan, "classes": classes, "time": source,
                "fold_unresolved": bool(source) and not epoch and
                self.local_time.comes_twice(source[1]),
                "finished": bool(self.lines["result"]), "states": states, "class": classes[0],
                "latency_ms": float(summary_numbers(replies)[1]) if replies and left else None,
                "loss_percent": loss,
                "write_bps": self._kept_rate("forward"), "read_bps": self._kept_rate("reverse")}

    @property
    def is_orphan(self):
        """Nothing but an output in the verbose log."""
        return bool(self.lines["verbose"]) and not any(
            lines for kind, lines in self.lines.items() if kind != "verbose")

    def _ping_state(self):
        case = self.case
        if case.ping == "off":
            return "off"
        if self.times is None:
            return "no_output"
        if case.ping == "silent":
            return "no_reply"
        if not self.lines["ping"]:
            return "unread"
        return "replied" if FLAVOURS[case.flavour].adapted else "false_zero"

    def _rate_state(self, kind):
        test = self.tests[kind]
        if not self.lines[kind]:
            return "off"
        if test.outcome in ERRORS:
            return "no_test"
        return {"ok": "full", "server_killed": "nothing_moved"}.get(test.outcome, "cut")

    def has_epoch(self, kind):
        """Whether the run left a line of that direction that tells when the test began."""
        return bool(self.lines[kind]) and self.tests[kind].connected

    def _kept_rate(self, kind):
        test = self.tests[kind]
        return int(f"{test.kept_rate:.0f}") if self.has_epoch(kind) else None

    def _time_source(self):
        if self.lines["ping"]:
            return ["ping", self.clock_start]
        for kind in ("forward", "reverse"):
            if self.has_epoch(kind):
                return [kind, self.tests[kind].epoch]
        return ["archive_stamp", self.first_move] if self.first_move is not None else None

    def _classes(self, states):
        """The class, and then what else is allowed."""
        ping, *rates = states
        measured = ping in ("replied", "false_zero", "unread") or "full" in rates or "cut" in rates
        if not measured:
            return ["failed", "partial"] if "nothing_moved" in rates else ["failed"]
        good = ping in ("replied", "off") and all(rate in ("full", "off") for rate in rates)
        if not good or not self.lines["result"]:
            return ["partial"]
        return ["ok", "partial"] if ping == "off" else ["ok"]


def mark_disguised(runs):
    """Finds the runs that look like something else, so that nobody can tell what happened."""
    for gap in gaps(runs, lambda run: run.lines["ping"]):
        mark_outputs(gap)
    for gap in gaps(runs, lambda run: run.has_epoch("forward")):
        mark_failed_forward_lines(gap)


def gaps(runs, ends_gap):
    """The rows of runs that are between two for which that holds."""
    gap = []
    for run in runs:
        if ends_gap(run):
            yield gap
            gap = []
        else:
            gap.append(run)
    yield gap


def mark_outputs(gap):
    """Between two pings that left a line, an output without a line can only be given to a run without
    one, and is where there are as many: wrongly, if a run that is ended left one and another none."""
    outputs = [run for run in gap if run.lines["verbose"]]
    others = [run for run in gap if run.lines["result"] or run.lines["forward"]]
    if len(outputs) == len(others) and outputs != others:
        for run in outputs + others:
            run.disguised = "ping"


def mark_failed_forward_lines(gap):
    """A run that is ended before its forward line and one that leaves nothing but that line look like
    one run, if the line tells no time."""
    before = [run for run in gap if run.lines["ping"] and not run.lines["forward"] and
              not run.lines["result"]]
    failed = [run for run in gap if run.lines["forward"]]
    if before and any(not run.lines["ping"] and not run.lines["result"] for run in failed):
        for run in before + failed:
            run.disguised = "forward"

"""The cases that the runs of a directory meet: those of a home line, or all kinds close together."""

import dataclasses

from tester_run import Case

# What the evening does to a line, by the hour: the rates' shares of the usual, milliseconds more.
EVENING = {18: (0.993, 0.956, 2), 19: (0.955, 0.82, 4), 20: (0.91, 0.66, 8), 21: (0.907, 0.62, 9),
           22: (0.94, 0.76, 6), 23: (0.975, 0.9, 3)}
USUAL_LINE = (41e6, 246e6, 12.6)

SLOW = (163_000, 730_000, 364.0)
RELEASES = ("3.0.11", "3.1.3", "3.7", "3.9", "3.17.1", "3.21")
PINGS = ("inetutils", "iputils", "iputils_adapter", "busybox", "busybox_adapter", "macos")

# Each kind: what is different from a run in which all is well. A machine sleeps for so many slots.
KINDS = {
    "no ping program": {"ping": "missing"},
    "no iperf3": {"forward": "missing", "reverse": "missing"},
    "no ping, no iperf3": {"ping": "missing", "forward": "missing", "reverse": "missing"},
    "no reply": {"ping": "silent"},
    "no reply, no route": {"ping": "silent", "forward": "no_route", "reverse": "no_route"},
    "black hole": {"ping": "silent", "forward": "timed_out", "reverse": "timed_out"},
    "name not known": {"ping": "unknown_host", "forward": "unknown_host",
                       "reverse": "unknown_host"},
    "busy": {"forward": "busy", "reverse": "busy"},
    "busy once": {"forward": "busy"},
    "busy in reverse": {"reverse": "busy"},
    "refused": {"forward": "refused", "reverse": "refused"},
    "interrupted forward": {"forward": "interrupted"},
    "interrupted reverse": {"reverse": "interrupted"},
    "interrupted both": {"forward": "interrupted", "reverse": "interrupted"},
    "stalled forward": {"forward": "stalled"},
    "stalled reverse": {"reverse": "stalled"},
    "server killed forward": {"forward": "server_killed"},
    "server killed reverse": {"reverse": "server_killed"},
    "iperf3 killed": {"forward": "killed"},
    "killed in ping": {"killed_in": "ping"},
    "killed in forward": {"killed_in": "forward"},
    "killed in forward, silent ping": {"killed_in": "forward", "ping": "silent"},
    "killed in reverse": {"killed_in": "reverse"},
    "killed in reverse, silent ping": {"killed_in": "reverse", "ping": "silent"},
    "killed in reverse, refused": {"killed_in": "reverse", "forward": "refused"},
    "nan": {"flavour": "macos", "deviation": "nan"},
    "one ping": {"count": 1},
    "three pings, five seconds": {"count": 3, "duration": 5},
    "thirty seconds": {"duration": 30},
    "two summaries": {"summaries": 2},
    "three summaries": {"summaries": 3},
    "public resolver": {"resolver": True},
    "ping alone": {"forward": "off", "reverse": "off"},
    "ping alone, no reply": {"ping": "silent", "forward": "off", "reverse": "off"},
    "iperf alone": {"ping": "off"},
    "iperf alone, refused": {"ping": "off", "forward": "refused", "reverse": "refused"},
    "nothing on": {"ping": "off", "forward": "off", "reverse": "off"},
    "IPv6": {"hosts": "IPv6", "flavour": "iputils_adapter"},
    "long IPv6": {"hosts": "long IPv6", "flavour": "iputils_adapter"},
    "unit 2": {"unit": 2},
    "unit 3": {"unit": 3},
    "unit 1, slow": {"line": SLOW},
    "unit 2, slow": {"unit": 2, "line": SLOW},
    "unit 3, slow": {"unit": 3, "line": SLOW},
    "below 8.4 Mbit/s, parts of a bit": {"line": (3.77e6, 4.6e6, 14.2)},
    "very fast": {"line": (86e9, 61e9, 0.6)},
    "clock stepped back in the run": {"step": -1500},
    "clock stepped on in the run": {"step": 1500},
    "slept in the run": {"sleep": 6},
    **{f"ping of {each}": {"flavour": each} for each in PINGS},
    **{f"lossy ping of {each}": {"flavour": each, "ping": "lossy"} for each in PINGS},
    **{f"silent ping of {each}": {"flavour": each, "ping": "silent"} for each in PINGS},
    **{f"iperf3 {each}": {"release": each} for each in RELEASES},
    **{f"iperf3 {each} interrupted": {"release": each, "forward": "interrupted"}
       for each in RELEASES},
}
# Of these, two in a row are hard to tell apart: they leave no line of the ping, or none of the results.
BARE = [kind for kind, changes in KINDS.items()
        if "killed_in" in changes or changes.get("flavour") == "iputils" or
        changes.get("ping") in ("missing", "unknown_host", "silent", "off") or
        changes.get("forward") == "off"]
# These leave no second since the epoch, so that the hour that comes twice stays open.
TIMELESS = ("refused", "no iperf3", "ping alone")

# What happens between two runs: the machine is off for so many slots, or its clock is wrong for so many
# runs, by a year and a bit.
OFF = "switched off"
WRONG_CLOCK = "clock wrong between runs"
WRONG_BY = -34_560_000


class PlainMix:
    """A home line: slow in the evening and for some bad days, rarely busy, cut off for some hours, or
    switched off."""

    def __init__(self, random, _):
        self.random = random
        self.outage = 0
        self.slots_off = 0
        self.bad_slots = 0
        self.bad_line = USUAL_LINE

    def next(self, *_):
        """Returns a case, or None for a slot in which the machine is off."""
        random = self.random
        if self.slots_off == 0 and random.random() < 0.004:
            self.slots_off = random.randint(3, 11)
        if self.slots_off:
            self.slots_off -= 1
            return None
        if self.outage == 0 and random.random() < 0.003:
            self.outage = random.randint(1, 3)
        if self.outage:
            self.outage -= 1
            return Case("outage", ping="silent", forward="no_route", reverse="no_route")
        if random.random() < 0.007:
            return Case("server busy", forward="busy")
        if random.random() < 0.002:
            return Case("killed", killed_in="forward")
        return Case(line=self._line())

    def _line(self):
        if self.bad_slots == 0 and self.random.random() < 0.002:
            write, read, latency = USUAL_LINE
            share = self.random.uniform(0.3, 0.7)
            self.bad_slots = self.random.randint(40, 120)
            self.bad_line = (write * (1 + share) / 2, read * share, latency / share)
        if self.bad_slots:
            self.bad_slots -= 1
            return self.bad_line
        return USUAL_LINE


def switch_on(changes):
    """Has a test that the run is killed in be on, and iperf3's two tests be on or off together."""
    killed = changes.get("killed_in")
    if changes.get(killed) == "off":
        del changes[killed]
    off = [kind for kind in ("forward", "reverse") if changes.get(kind) == "off"]
    if len(off) == 1:
        del changes[off[0]]


class HardMix:
    """All kinds, shuffled, each as often as the seed decides, and then all over again."""

    def __init__(self, random, interval):
        self.random = random
        self.interval = interval
        self.usual = Case(flavour=random.choice(("inetutils", "iputils_adapter", "macos",
                                                 "busybox_adapter", "inetutils")))
        self.share = random.uniform(0.1, 0.4)
        self.copies = {kind: random.choice((1, 1, 1, 2, 3)) for kind in (*KINDS, OFF, WRONG_CLOCK)}
        self.deck = []
        self.last = None
        self.wrong_runs = 0

    def next(self, clock, hour_comes_twice):
        """Returns a case, or None for a slot in which the machine is off. Sets a clock wrong."""
        random = self.random
        if self.wrong_runs:
            self.wrong_runs -= 1
            if self.wrong_runs == 0:
                clock.ahead -= WRONG_BY
        if hour_comes_twice and random.random() < 0.5:
            return self._case(random.choice(TIMELESS))
        if random.random() < self.share and self.wrong_runs == 0:
            return self.usual
        kind = self._draw(clock)
        if kind == OFF:
            return None
        if kind == WRONG_CLOCK:
            self.wrong_runs = random.randint(2, 3)
            clock.ahead += WRONG_BY
        return self._case(kind)

    def _draw(self, clock):
        """Takes a kind from the deck; now and then the one before, once more, or one like it."""
        if self.last and self.random.random() < 0.1 and self._fits(self.last, clock):
            return self.last
        if self.last in BARE and self.random.random() < 0.3:
            self.last = self.random.choice(BARE)
            return self.last
        kind = self._from_deck(clock)
        self.last = kind if kind in KINDS else None
        return kind

    def _from_deck(self, clock):
        """Takes the first kind that fits."""
        for place, kind in enumerate(self.deck):
            if self._fits(kind, clock):
                return self.deck.pop(place)
        again = [kind for kind, copies in self.copies.items() for _ in range(copies)]
        self.random.shuffle(again)
        self.deck += again
        return self._from_deck(clock)

    def _fits(self, kind, clock):
        """A clock is stepped back and on in turn, and is wrong in one way at a time."""
        if kind == WRONG_CLOCK:
            return self.wrong_runs == 0 and clock.ahead == 0
        step = KINDS.get(kind, {}).get("step", 0)
        return step == 0 or (self.wrong_runs == 0 and (clock.ahead < 0) == (step > 0))

    def _case(self, kind):
        """The kind alone, or with another one on top."""
        changes = dict(KINDS.get(kind, {}))
        note = kind
        if self.random.random() < 0.2:
            other = self.random.choice([each for each in KINDS if "step" not in KINDS[each]])
            changes = {**KINDS[other], **changes}
            note = f"{kind}; {other}"
        if "sleep" in changes:
            changes["sleep"] *= self.interval
        switch_on(changes)
        return dataclasses.replace(self.usual, note=note, **changes)


def at_this_hour(case, hour, hour_comes_twice):
    """The case on the line as it is at that hour. While the hour comes twice, the clock is not set,
    which nobody could tell from the hour that is repeated."""
    if case.line == USUAL_LINE and hour in EVENING:
        write, read, more = EVENING[hour]
        line = (case.line[0] * write, case.line[1] * read, case.line[2] + more)
        case = dataclasses.replace(case, line=line)
    if hour_comes_twice and (case.step or case.sleep):
        case = dataclasses.replace(case, note="plain", step=0, sleep=0)
    return case


MIXES = {"plain": PlainMix, "hard": HardMix}

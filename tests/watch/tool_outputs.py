"""What the tools print: the pings of several systems, and iperf3's report as `iperf3 -J` lays it out."""

import dataclasses
import math
import struct
import time

ROUND_TRIP = "round-trip min/avg/max/stddev"


@dataclasses.dataclass(frozen=True)
class Flavour:
    """How a system's ping writes. `adapted`: its summary has the form that the tester reads."""

    head: str = "PING {0} ({0}): 56 data bytes"
    sequence: str = "icmp_seq"
    first: int = 0
    names_lost: bool = False
    blank: bool = False
    counts: str = "{sent} packets transmitted, {received} packets received, {whole}% packet loss"
    summary: str = ROUND_TRIP
    adapted: bool = True


IPUTILS = Flavour(
    head="PING {0} ({0}) 56(84) bytes of data.", first=1, blank=True,
    counts="{sent} packets transmitted, {received} received, {loss:g}% packet loss, time {ms}ms",
    summary="rtt min/avg/max/mdev", adapted=False)
BUSYBOX = Flavour(sequence="seq", blank=True, summary="round-trip min/avg/max", adapted=False)

FLAVOURS = {
    "inetutils": Flavour(),
    "iputils": IPUTILS,
    "iputils_adapter": dataclasses.replace(IPUTILS, summary=ROUND_TRIP, adapted=True),
    "busybox": BUSYBOX,
    "busybox_adapter": dataclasses.replace(BUSYBOX, summary=ROUND_TRIP, adapted=True),
    "macos": Flavour(
        names_lost=True, blank=True,
        counts="{sent} packets transmitted, {received} packets received, {loss:.1f}% packet loss"),
}


def is_iputils(flavour):
    return flavour.startswith("iputils")


def time_text(flavour, milliseconds):
    """A reply's time: iputils shows three digits of it, from 1 ms on."""
    if not is_iputils(flavour) or milliseconds < 1:
        return f"{milliseconds:.3f}"
    decimals = 2 if milliseconds < 9.995 else 1 if milliseconds < 99.95 else 0
    return f"{milliseconds:.{decimals}f}"


def summary_numbers(times):
    """Minimum, average, maximum and deviation, as they are printed."""
    mean = math.fsum(times) / len(times)
    deviation = math.sqrt(math.fsum((each - mean) ** 2 for each in times) / len(times))
    numbers = [min(times), mean, max(times), deviation]
    return [f"{number:.3f}" for number in numbers]


def ping_lines(name, target, times, deviation=None):
    """The lines of a ping's output. `times` has None for each ping that is lost; `deviation`, when
    given, stands in place of the true one."""
    flavour = FLAVOURS[name]
    head = flavour.head
    if ":" in target and is_iputils(name):
        head = "PING {0}({0}) 56 data bytes"
    lines = [head.format(target)]
    for number, each in enumerate(times):
        if each is not None:
            lines.append(f"64 bytes from {target}: {flavour.sequence}={number + flavour.first} ttl=57 "
                         f"time={time_text(name, each)} ms")
        elif flavour.names_lost and number + 1 < len(times):
            lines.append(f"Request timeout for icmp_seq {number}")
    return lines + ping_statistics(name, target, times, deviation)


def ping_statistics(name, target, times, deviation):
    flavour = FLAVOURS[name]
    replies = [each for each in times if each is not None]
    loss = 100 * (len(times) - len(replies)) / len(times)
    lines = [""] if flavour.blank else []
    lines.append(f"--- {target} ping statistics ---")
    lines.append(flavour.counts.format(sent=len(times), received=len(replies), loss=loss,
                                       whole=int(loss), ms=(len(times) - 1) * 1001))
    if replies:
        numbers = summary_numbers(replies)
        if deviation is not None:
            numbers[3] = deviation
        shown = numbers[:flavour.summary.count("/") + 1]
        lines.append(f"{flavour.summary} = {'/'.join(shown)} ms")
    elif is_iputils(name):
        lines.append("")
    return lines


def single_precision(number):
    return struct.unpack("f", struct.pack("f", number))[0]


# What a test that did not come about says in its report. None: iperf3 wrote no report at all.
ERRORS = {
    "refused": "unable to connect to server: Connection refused",
    "busy": "the server is busy running a test. try again later",
    "no_route": "unable to connect to server: No route to host",
    "unknown_host": "unable to connect to server: Name or service not known",
    "timed_out": "interrupt - the client has terminated",
    "missing": None,
    "killed": None,
}

# The same for tests that came about.
BROKEN_OFF = {
    "interrupted": "interrupt - the client has terminated",
    "stalled": "unable to send control message: Broken pipe",
    "server_killed": "control socket has closed unexpectedly",
}


@dataclasses.dataclass
class Test:
    """One direction's test: what became of it, and what iperf3 knows of it then."""

    outcome: str
    duration: int
    release: str
    reverse: bool
    hosts: tuple = ()
    port: int = 0
    epoch: int = None
    measured: float = None
    moved: int = None

    @property
    def connected(self):
        return self.outcome not in ERRORS

    @property
    def counted(self):
        """The bytes that the report's sums tell: a killed server leaves none."""
        return 0 if self.outcome == "server_killed" else self.moved

    @property
    def bits_per_second(self):
        return self.counted * 8 / self.measured

    @property
    def kept_rate(self):
        """The rate as the tester keeps it, which reads it in single precision."""
        return single_precision(self.bits_per_second)

    def csv_line(self):
        if not self.connected:
            return ",,0,,0,0,,0,0,0,0"
        sums = f"{self.counted},{self.kept_rate:.0f}"
        sums = f"0,0,{sums}" if self.reverse else f"{sums},0,0"
        return (f"{self.epoch},{self.hosts[0][:32]},{self.port},{self.hosts[1][:32]},5201,0,"
                f"{self.duration},{sums}")

    def report(self):
        """The text of the report, which is empty where iperf3 was missing or killed."""
        if not self.connected and ERRORS[self.outcome] is None:
            return ""
        system = {"version": f"iperf {self.release}",
                  "system_info": "Linux workstation 6.1.0 #1 SMP x86_64"}
        if not self.connected:
            start, intervals, end = {"connected": [], **system}, [], {}
        else:
            start, intervals, end = self._start(system), self._intervals(), self._end()
        report = {"start": start, "intervals": intervals, "end": end}
        error = {**ERRORS, **BROKEN_OFF}.get(self.outcome)
        if error:
            report["error"] = error
        return json_text(report) + "\n"

    def _start(self, system):
        return {
            "connected": [{"socket": 5, "local_host": self.hosts[0], "local_port": self.port,
                           "remote_host": self.hosts[1], "remote_port": 5201}],
            **system,
            "timestamp": {"time": time.strftime("%a, %d %b %Y %T GMT", time.gmtime(self.epoch)),
                          "timesecs": self.epoch},
            "connecting_to": {"host": self.hosts[1], "port": 5201},
            "cookie": f"workstation.{self.epoch}",
            "test_start": {"protocol": "TCP", "num_streams": 1, "blksize": 131072, "omit": 0,
                           "duration": self.duration, "bytes": 0, "blocks": 0,
                           "reverse": int(self.reverse)}}

    def _intervals(self):
        seconds = min(math.ceil(self.measured), self.duration)
        return [self._interval(start, self.moved // seconds) for start in range(seconds)]

    def _interval(self, start, moved):
        span = {"start": start, "end": start + 1, "seconds": 1, "bytes": moved,
                "bits_per_second": moved * 8}
        rest = {"omitted": False, "sender": not self.reverse}
        return {"streams": [{"socket": 5, **span, **rest}], "sum": {**span, **rest}}

    def _end(self):
        if self.outcome == "server_killed":
            return {}
        sums = {"start": 0, "end": self.measured, "seconds": self.measured, "bytes": self.moved,
                "bits_per_second": self.bits_per_second, "sender": not self.reverse}
        stream = {"sender": {"socket": 5, **sums}, "receiver": {"socket": 5, **sums}}
        return {"streams": [stream], "sum_sent": sums, "sum_received": sums}


def json_text(value, depth=0):
    """A value as cJSON prints it: one member a line, a tab before its value."""
    if isinstance(value, dict):
        indent = "\n" + "\t" * (depth + 1)
        members = [f'{indent}"{name}":\t{json_text(each, depth + 1)}' for name, each in value.items()]
        return "{" + ",".join(members) + "\n" + "\t" * depth + "}"
    if isinstance(value, list):
        return "[" + ", ".join(json_text(each, depth + 1) for each in value) + "]"
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, float):
        return f"{value:.15g}" if float(f"{value:.15g}") == value else f"{value:.17g}"
    return f'"{value}"' if isinstance(value, str) else str(value)

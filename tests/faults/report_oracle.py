"""What the program has to make of a report that breaks off anywhere.

It follows docs/files.md, reads in another way than the program, and is no more general than cut
reports need: all but the end is as the tool wrote it.
"""

import re
import struct
from dataclasses import dataclass, field


@dataclass
class Outcome:
    """What a run leaves: new text of its histories and a result, or the error that ends it."""

    error: str = ""
    histories: dict = field(default_factory=dict)
    measured_at: str = ""
    latency: str = "n/a"
    write_rate: str = "n/a"
    read_rate: str = "n/a"

    def result_line(self):
        return (f"Date = {self.measured_at}, Latency = {self.latency} ms, "
                f"Write Transfer Rate = {self.write_rate} bps, "
                f"Read Transfer Rate = {self.read_rate} bps \n")


def abnormal_end(exception, what):
    return (f"terminate called after throwing an instance of '{exception}'\n"
            f"  what():  {what}\n")


NO_PORT = Outcome(abnormal_end("std::invalid_argument", "stoi"))
NO_BYTE_COUNT = Outcome(abnormal_end("std::invalid_argument", "stoll"))


def ping(report, started_at, measured_at):
    """Each summary makes a line of the history; the last one gives the latency."""
    numbers = [0.0] * 4
    outcome = Outcome(histories={"ping_history": ""})
    for line in re.findall(r"^round-trip.*=.*", report, re.MULTILINE):
        text, _, summary = line.partition("=")
        if summary == "":
            what = (f"basic_string::substr: __pos (which is {len(text) + 2})"
                    f" > this->size() (which is {len(text) + 1})")
            return Outcome(abnormal_end("std::out_of_range", what))
        fields = summary[1:].partition(" ms")[0].split("/")
        if len(fields) == 4 and fields[3]:
            numbers = [float(re.match(r"[\d.]+", field).group()) for field in fields]
        outcome.histories["ping_history"] += ",".join(
            [started_at] + [f"{number:.3f}" for number in numbers]) + "\n"
        outcome.latency = str(int(numbers[1]))
        outcome.measured_at = measured_at
    return outcome


def iperf(report, _started_at, measured_at):
    """The report needs nine columns, five of them numbers; the history takes it in any case."""
    outcome = Outcome(histories={"iperf2_history": report})
    columns = re.match(r"[^,]+,[^,]+,\d+,[^,]+,\d+,\d+,[^,]+,\d+,(\d+)", report)
    if columns:
        outcome.write_rate = columns.group(1)
        outcome.measured_at = measured_at
    return outcome


def value(report, member):
    """The value of a member, without quotes; empty when the report breaks off in front of it."""
    found = re.search(rf'"{member}":\t"?([^",\n]*)', report)
    return found.group(1) if found else ""


def lacks_value(report, member):
    """Whether the report breaks off between the member's colon and its value."""
    return re.search(rf'"{member}":\t?$', report) is not None


def totals(report, block):
    """Bytes and rate of a block, 0 without them; nothing when the report breaks off behind "bytes".

    The rate has passed through single precision.
    """
    members = report.partition(f'"{block}')[2].partition("}")[0]
    if re.search(r'bytes"?:?\t?$', members):
        return None
    rate = re.match(r"\d+(\.\d*)?(e\+\d+)?", value(members, "bits_per_second"))
    single = struct.unpack("f", struct.pack("f", float(rate.group())))[0] if rate else 0.0
    return value(members, "bytes") or "0", single


def iperf3(report, _started_at, _measured_at, asked_for="forward"):
    """The direction that was asked for names the history, that of the report the rate."""
    if lacks_value(report, "local_port") or lacks_value(report, "remote_port"):
        return NO_PORT
    is_reverse = value(report, "reverse")
    sent = totals(report, "sum_sent") if is_reverse == "0" else ("0", 0.0)
    received = totals(report, "sum_received") if is_reverse == "1" else ("0", 0.0)
    if sent is None or received is None:
        return NO_BYTE_COUNT
    line = ",".join([
        value(report, "timesecs"),
        value(report, "local_host"), value(report, "local_port") or "0",
        value(report, "remote_host"), value(report, "remote_port") or "0",
        "0", value(report, "duration"),
        sent[0], f"{sent[1]:.0f}", received[0], f"{received[1]:.0f}"]) + "\n"
    outcome = Outcome(histories={f"iperf3_history_{asked_for}": line})
    if is_reverse == "0":
        outcome.write_rate = str(int(sent[1]))
    elif is_reverse == "1":
        outcome.read_rate = str(int(received[1]))
    return outcome


def iperf3_reverse(report, started_at, measured_at):
    return iperf3(report, started_at, measured_at, "reverse")

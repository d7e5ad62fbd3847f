#!/usr/bin/env python3
"""Writes the journal of a made log directory, as if each of its runs had been a guarded one.

usage: make_journal.py MADE

MADE holds truth.jsonl and log/, as make_logs.py leaves them. The runs are of the zone of TZ.
"""

import datetime
import functools
import json
import pathlib
import re
import sys

# A reply as a ping prints it, but for duplicates.
REPLY = re.compile(r" time=([0-9.]+) ms(?!.*DUP)")

# How a test that did not go through ends, in iperf3's words; nothing where it has no words.
ERRORS = {
    "refused": "unable to connect to server: Connection refused",
    "no_route": "unable to connect to server: No route to host",
    "busy": "the server is busy running a test. try again later",
    "interrupted": "interrupt - the client has terminated",
    "server_killed": "control socket has closed unexpectedly",
}


def local(moment):
    return datetime.datetime.fromtimestamp(moment).astimezone()


@functools.cache
def lines_of(file):
    return file.read_text(errors="replace").splitlines()


def line_of(log, places):
    """The last line that a run has left in a history, or nothing."""
    if not places:
        return None
    name, _, last = places[-1]
    return lines_of(log / name)[last - 1]


def block_of(log, places):
    """All lines of a ping's output."""
    lines = []
    for name, first, last in places:
        lines += lines_of(log / name)[first - 1:last]
    return lines


def ping_part(truth, log):
    happened = truth["ping_happened"]
    block = block_of(log, truth["files"]["verbose"])
    if not block:
        said = {"missing": "no other ping in PATH", "unknown_host": "nobody.invalid: Name or service not known"}
        return {"said": said[happened["outcome"]]} if happened and happened["outcome"] in said else None
    part = {"target": block[0].split()[1], "sent": happened["sent"], "received": happened["received"],
            "times_ms": [float(reply[1]) for each in block if (reply := REPLY.search(each))]}
    summaries = [each for each in block if each.startswith(("round-trip", "rtt ")) and "= " in each]
    if summaries:
        part["summary"] = summaries[-1]
    line = line_of(log, truth["files"]["ping"])
    if line:
        part["start"] = line.split(",")[0]
    return part


def test_part(happened, line):
    if happened is None:
        return None
    part = {"release": happened.get("release", "3.12")}
    if happened["outcome"] in ERRORS:
        part["error"] = ERRORS[happened["outcome"]]
    columns = line.split(",") if line else []
    if len(columns) == 11 and columns[0] and columns[1]:
        part |= {"start": int(columns[0]), "client_port": int(columns[2]),
                 "server_port": int(columns[4]), "bytes": max(int(columns[7]), int(columns[9])),
                 "empty_seconds": 3.0 if happened["outcome"] == "stalled" else 0.0}
    return part


def journal_line(truth, log):
    start = truth["clock_start"]
    killed = truth["killed_in"]
    test = {"forward": "write test", "reverse": "read test", "ping": "ping"}
    settings = {"numPings": 10, "iperfTestTime": 10, "outputFormat": 1, "pingTestServer": False,
                "doPingTests": truth["ping_happened"] is not None, "doIperf2Tests": False,
                "doIperf3Tests": truth["forward_happened"] is not None or bool(killed)}
    parts = {"format": 1, "start": local(start).isoformat(), "end": local(start + 51).isoformat(),
             "ended": f"ended by ^C in {test[killed]}" if killed else "finished",
             "address": "192.0.2.10", "settings": settings, "ping": ping_part(truth, log),
             "write": test_part(truth["forward_happened"], line_of(log, truth["files"]["forward"])),
             "read": test_part(truth["reverse_happened"], line_of(log, truth["files"]["reverse"])),
             "result": line_of(log, truth["files"]["result"])}
    return {key: value for key, value in parts.items() if value is not None}


def write_journal(made):
    log = made / "log"
    for line in (made / "truth.jsonl").read_text().splitlines():
        truth = json.loads(line)
        if truth.get("files") is None or truth.get("clock_start") is None:
            continue
        part = journal_line(truth, log)
        with (log / f"runs-{part['start'][:4]}.jsonl").open("a") as journal:
            journal.write(json.dumps(part, separators=(",", ":")) + "\n")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__.split("\n\n")[1])
    write_journal(pathlib.Path(sys.argv[1]))

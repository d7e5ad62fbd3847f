"""Runs of the program on fake tools, for the tests that need hundreds of them.

A test script has set up the machine before (see library.sh).
"""

import calendar
import os
import pathlib
import subprocess
import sys
import time

FAKE = pathlib.Path("/tmp/fake")
LOGS = pathlib.Path("/tmp/home/Library/Logs/Qelmora")

# The histories, by the start of their archived files' names.
HISTORIES = ["ping_history", "iperf2_history", "iperf3_history_forward", "iperf3_history_reverse",
             "connection_test_results_history"]

ADDRESS = "192.168.1.10"
TESTER = ("connTester", ADDRESS)

FIRST_START = calendar.timegm((2026, 11, 16, 5, 40, 0))
HOUR = 3600


def stamp(seconds):
    return time.strftime("%Y%m%dT%H%M%S", time.gmtime(seconds))


def start(seconds, command=TESTER, fake=FAKE, **environment):
    """Starts a run at a time of its own clock, with the fake tools of a directory."""
    (fake / "clock").write_text(f"{seconds}\n")
    return subprocess.Popen(
        command,
        env={**os.environ, "PATH": "/tmp/bin", "LD_PRELOAD": os.environ["FAKE_CLOCK"],
             "FAKE_DIR": str(fake), **environment},
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
        text=True, errors="replace")


def finish(process):
    """Returns exit status, console and errors. Waits for the tools too, which hold the pipes."""
    console, errors = process.communicate(timeout=60)
    signal = -process.returncode
    return 128 + signal if signal > 0 else process.returncode, console, errors


def live_file(history):
    return LOGS / f"{history}{'_csv' if history.startswith('iperf3') else ''}.log"


def archives(history):
    """The archived files of a history, oldest first."""
    return sorted((LOGS / "archive").glob(f"{history}_2*.log"))


def read_history(history):
    """All that a history holds, archived or not, oldest first."""
    files = [*archives(history), live_file(history)]
    return b"".join(file.read_bytes() for file in files if file.exists())


def fail(message):
    sys.exit(f"FAILED: {message}")


def expect_same(what, expected, found):
    if expected != found:
        fail(f"{what}: expected\n{expected!r}\nbut found\n{found!r}")

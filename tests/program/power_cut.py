"""Kills the program at the start of every N-th of its system calls, and runs it again.

usage: power_cut.py N

The files of the runs before are in /tmp/fake/before, or there are none. The tools that a killed run
has started go on and end by themselves. Then each history has to hold what it held before, and
maybe the killed run's line, whole. Once that line was there, it has to be there after a kill at any
later call. The next run has to measure as ever and add its own line.
"""

import os
import shutil
import sys

import runs

BEFORE = runs.FAKE / "before"
NEXT = runs.FAKE / "next"

# All that only grows: the histories, and the raw output of the pings.
GROWING = [*runs.HISTORIES, "ping_history_verbose"]


def reset():
    shutil.rmtree("/tmp/home", ignore_errors=True)
    shutil.copytree(BEFORE, "/tmp/home")


def run_killed_at(call):
    """A run on the files of before. Returns whether it got as far as that call, and was killed."""
    reset()
    command = (os.environ["KILL_AT"], str(call), *runs.TESTER)
    status, _, errors = runs.finish(runs.start(runs.FIRST_START, command))
    runs.expect_same(f"errors of a run killed at call {call}", "", errors)
    return status == 137


def run_next():
    """A run an hour later, whose tools measure something else."""
    return runs.finish(runs.start(runs.FIRST_START + runs.HOUR, fake=NEXT))


def texts():
    return {name: runs.read_history(name) for name in GROWING}


def latest_result():
    return (runs.LOGS / "connection_test_results.txt").read_bytes()


def expect_full_archives():
    for history in runs.HISTORIES:
        for archive in runs.archives(history):
            if archive.read_bytes().count(b"\n") < 10:
                runs.fail(f"{archive} holds less than ten lines")


def check_left(call, held, written, seen):
    """What a killed run has left: what was held before, or that and its line. Returns it."""
    left = texts()
    for name in GROWING:
        if left[name] == written[name] != held[name]:
            seen.add(name)
        runs.expect_same(f"{name} after a kill at call {call}",
                         written[name] if name in seen else held[name], left[name])
    return left


def check_next(call, left, added, result):
    status, _, errors = run_next()
    what = f"after a kill at call {call}, the next run's"
    runs.expect_same(f"{what} exit status and errors", (0, ""), (status, errors))
    runs.expect_same(f"{what} result", result, latest_result())
    for name, text in texts().items():
        runs.expect_same(f"{what} {name}", left[name] + added[name], text)
    expect_full_archives()


def main(every):
    reset()
    held = texts()
    runs.finish(runs.start(runs.FIRST_START))
    written = texts()
    run_next()
    added = {name: text.removeprefix(written[name]) for name, text in texts().items()}
    result = latest_result()

    call = 1
    seen = set()
    while run_killed_at(call):
        left = check_left(call, held, written, seen)
        check_next(call, left, added, result)
        call += every
    print(f"{(call - 1) // every} runs killed, at calls 1 to {call - every}")


main(int(sys.argv[1]))

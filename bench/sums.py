#!/usr/bin/python3
"""Adds up the latencies and rates in the histories of a log directory, and nothing more: what a script
does that takes every number at its word.

Usage: bench/sums.py LOG_DIRECTORY
"""
import csv
import pathlib
import sys

LOGS = pathlib.Path(sys.argv[1])
# The history, and the column that holds its figure.
HISTORIES = (("ping_history", 2), ("iperf3_history_forward", 8), ("iperf3_history_reverse", 10))

for name, column in HISTORIES:
    total = 0
    for path in [*LOGS.glob(f"archive/{name}_2*.log"), *LOGS.glob(f"{name}*.log")]:
        if "verbose" not in path.name:
            with path.open(newline="") as lines:
                total += sum(float(row[column]) for row in csv.reader(lines))
    print(name, total)

#!/usr/bin/python3
"""Makes the files for readers_bench: reports and histories from small to far too large.

The reports repeat the interval of a recorded one. The histories repeat one line.

Usage: make_inputs.py DIRECTORY
"""
import pathlib
import sys

DATA = pathlib.Path(__file__).parent.parent / "tests/data"
REPORT = (DATA / "iperf3/3.12/forward.json").read_text()
REPORT_SIZES = (3_000, 30_000, 300_000, 3_000_000, 30_000_000, 100_000_000)

HISTORY_LENGTHS = (10, 100, 1_000, 10_000, 100_000, 1_000_000)
IPERF3_LINE = "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n"
HISTORY_LINES = {
    "ping_history.log": "20261116T054400,14.123,15.456,17.789,1.234\n",
    "iperf2_history.log": (DATA / "iperf2/2.1.9/forward.csv").read_text(),
    "iperf3_history_forward_csv.log": IPERF3_LINE,
    "iperf3_history_reverse_csv.log": IPERF3_LINE,
}


def report_of(size):
    """Returns a report of at least `size` characters."""
    before, opening, rest = REPORT.partition('"intervals":\t[')
    interval, closing, after = rest.partition('],\n\t"end":')
    frame = before + opening + closing + after
    count = -(-(size - len(frame)) // len(interval + ", "))
    return before + opening + ", ".join([interval] * count) + closing + after


def main():
    directory = pathlib.Path(sys.argv[1])
    (directory / "reports").mkdir(parents=True)
    for size in REPORT_SIZES:
        (directory / "reports" / f"{size}.json").write_text(report_of(size))
    for length in HISTORY_LENGTHS:
        histories = directory / "histories" / str(length)
        histories.mkdir(parents=True)
        for name, line in HISTORY_LINES.items():
            (histories / name).write_text(line * length)


main()

#!/usr/bin/env python3
"""Runs every command of connWatch on log directories that were made and then damaged.

Whatever the files hold, a command ends with one of its statuses, says something, and writes no line
that is broken: no control character, and in a pipe as many columns in each line as in the first.
The same seeds make the same directories.
"""

import argparse
import csv
import io
import json
import os
import random
import shutil
import subprocess
import sys

import make_logs

COMMANDS = (["summary"], ["list"], ["list", "--since", "7d"], ["show"], ["show", "2"], ["show", "02:30"],
            ["check"], ["check", "--read", "200", "--latency", "50", "--bad", "2/6"],
            ["check", "--below", "50%", "--max-age", "1d"], ["export", "csv"], ["export", "jsonl"])
STARTS = ("1971-01-01", "2026-03-28T12:00", "2026-10-24T12:00", "2026-11-20", "2099-12-31")


def files_of(directory):
    return sorted(os.path.join(folder, name) for folder, _, names in os.walk(directory) for name in names)


def lines_of(path):
    with open(path, "rb") as file:
        return file.read().splitlines(keepends=True)


def put(path, lines):
    with open(path, "wb") as file:
        file.write(b"".join(lines))


def remove_one(path, _):
    os.remove(path)


def cut_one(path, random_numbers):
    os.truncate(path, random_numbers.randint(0, os.path.getsize(path)))


def lose_lines(path, random_numbers):
    put(path, [line for line in lines_of(path) if random_numbers.random() < 0.7])


def double_lines(path, random_numbers):
    put(path, [line for line in lines_of(path) for _ in range(random_numbers.choice((1, 1, 2)))])


def change_bytes(path, random_numbers):
    data = bytearray(b"".join(lines_of(path)))
    for _ in range(min(len(data), 20)):
        data[random_numbers.randrange(len(data))] = random_numbers.choice(b"\x00\x1b\xff,9-\n.ZT")
    put(path, [bytes(data)])


def move_times(path, random_numbers):
    """Other years in all stamps of a file, far away, too."""
    year = random_numbers.choice((b"1900", b"1970", b"2027", b"9999"))
    put(path, [line.replace(b"2026", year) for line in lines_of(path)])


DAMAGES = (remove_one, cut_one, lose_lines, double_lines, change_bytes, move_times)


def make(directory, seed):
    random_numbers = random.Random(seed)
    shutil.rmtree(directory, ignore_errors=True)
    options = make_logs.arguments(
        [directory, "--seed", str(seed), "--runs", str(random_numbers.choice((1, 3, 30, 90))), "--mix",
         random_numbers.choice(("hard", "plain")), "--start", random_numbers.choice(STARTS),
         "--interval", str(random_numbers.choice((300, 3600, 86400, 5_000_000)))])
    logs = make_logs.LogDirectory(os.path.join(directory, "log"))
    for _ in make_logs.make_runs(options, logs):
        pass
    logs.close()
    for _ in range(random_numbers.choice((0, 1, 3, 10))):
        paths = files_of(logs.path)
        random_numbers.choice(DAMAGES)(random_numbers.choice(paths), random_numbers)
    return logs.path


def hold(condition, what):
    if not condition:
        raise AssertionError(what)


def hold_columns(command, text):
    if command[0] == "list" and text:
        hold(all(len(line.split()) == 6 for line in text.splitlines()), "a line without six columns")
    if command == ["export", "csv"] and text:
        hold(len({len(row) for row in csv.reader(io.StringIO(text, newline=""))}) == 1,
             "lines of several lengths")
    if command == ["export", "jsonl"]:
        for line in text.splitlines():
            json.loads(line)


def hold_command(program, log, command):
    done = subprocess.run([program, *command, "--from", log], capture_output=True, timeout=60, check=False)
    statuses = (0, 1, 2, 3) if command[0] == "check" else (0, 3)
    hold(done.returncode in statuses, f"the status is {done.returncode}: {done.stderr.decode()}")
    hold(done.stdout or done.stderr, "nothing is said")
    text = done.stdout.decode("utf-8")
    hold(all(c == "\n" or c.isprintable() for c in text), "a control character")
    hold("nan" not in text.split() and "inf" not in text.split(), "a number that is none")
    hold_columns(command, text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("directory")
    parser.add_argument("--seeds", type=int, default=25)
    parser.add_argument("--first", type=int, default=1)
    options = parser.parse_args()
    for seed in range(options.first, options.first + options.seeds):
        log = make(options.directory, seed)
        for command in COMMANDS:
            try:
                hold_command(options.program, log, command)
            except (AssertionError, ValueError) as error:
                sys.exit(f"seed {seed}, {' '.join(command)}: {error}")


if __name__ == "__main__":
    main()

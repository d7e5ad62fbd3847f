#!/usr/bin/python3
"""The job of a default run in Python: the same files with the same content, and the result line.

script/bench measures the program against it. Only the tools run as processes.

Usage: same_job.py ADDRESS
"""
import json
import os
import struct
import subprocess
import sys
import time

INSTALLED = "/usr/local/bin/Qelmora/"
LOGS = os.environ["HOME"] + "/Library/Logs/Qelmora/"


def now():
    return time.strftime("%Y%m%dT%H%M%S")


def read_configuration():
    settings = {"numPings": 10, "iperfTestTime": 10}
    try:
        with open(INSTALLED + "connTester.conf") as file:
            for line in file:
                key, equals, value = line.partition("=")
                if equals and key in settings:
                    settings[key] = int(value)
    except FileNotFoundError:
        pass
    return settings


def append(name, text):
    with open(LOGS + name, "a") as file:
        file.write(text)


def archive_full(name, archived, stamp):
    """Moves a history of ten lines to the archive and returns the next stamp."""
    with open(LOGS + name) as file:
        lines = sum(1 for _ in file)
    if lines < 10:
        return stamp
    os.rename(LOGS + name, f"{LOGS}archive/{archived}_{stamp}.log")
    return now()


def ping_test(address, pings, stamp):
    """Returns the date and the latency of the last summary, and the next stamp."""
    start, date_time, latency = now(), "", "n/a"
    command = ["ping", "-c", str(pings), address]
    output = subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout
    sys.stdout.write(output)
    with open(LOGS + "ping_latest.log", "w") as file:
        file.write(output)
    append("ping_history_verbose.log", output)
    for line in output.splitlines():
        if line.startswith("round-trip") and "=" in line:
            numbers = line.partition("= ")[2].partition(" ms")[0].split("/")
            numbers = [float(number) for number in numbers]
            date_time, latency = now(), int(numbers[1])
            append("ping_history.log", "%s,%.3f,%.3f,%.3f,%.3f\n" % (start, *numbers))
            stamp = archive_full("ping_history.log", "ping_history", stamp)
    return date_time, latency, stamp


def single(number):
    return struct.unpack("f", struct.pack("f", number))[0]


def iperf3_test(address, seconds, direction, option, stamp):
    """Returns the rate and the next stamp."""
    latest = f"{LOGS}iperf3_latest{''.join(option)}.log"
    command = [INSTALLED + "iperf3", "-c", address, "-t", str(seconds), "-J", *option]
    with open(latest, "w") as file:
        subprocess.run(command, stdout=file)
    time.sleep(max(seconds * 1000 + 1000, 3) / 1000)
    with open(latest) as file:
        report = json.load(file)
    connection = report["start"]["connected"][0]
    test = report["start"]["test_start"]
    sums = report["end"]["sum_received" if test["reverse"] else "sum_sent"]
    rate = single(sums["bits_per_second"])
    measured = "%d,%.0f" % (sums["bytes"], rate)
    csv = "%s,%s,%d,%s,%d,0,%s,%s\n" % (
        report["start"]["timestamp"]["timesecs"],
        connection["local_host"],
        connection["local_port"],
        connection["remote_host"],
        connection["remote_port"],
        test["duration"],
        "0,0," + measured if test["reverse"] else measured + ",0,0",
    )
    with open(f"{LOGS}iperf3_latest_{direction}_csv.log", "w") as file:
        file.write(csv)
    history = f"iperf3_history_{direction}_csv.log"
    append(history, csv)
    return int(rate), archive_full(history, f"iperf3_history_{direction}", stamp)


def main():
    address = sys.argv[1] if len(sys.argv) > 1 else ""
    stamp = now()
    settings = read_configuration()
    seconds = settings["iperfTestTime"]
    os.makedirs(LOGS + "archive", exist_ok=True)
    date_time, latency, stamp = ping_test(address, settings["numPings"], stamp)
    write_rate, stamp = iperf3_test(address, seconds, "forward", [], stamp)
    read_rate, stamp = iperf3_test(address, seconds, "reverse", ["-R"], stamp)
    result = (
        f"Date = {date_time}, Latency = {latency} ms, Write Transfer Rate = {write_rate} bps, "
        f"Read Transfer Rate = {read_rate} bps \n"
    )
    sys.stdout.write(result)
    with open(LOGS + "connection_test_results.txt", "w") as file:
        file.write(result)
    history = "connection_test_results_history"
    append(history + ".log", result)
    archive_full(history + ".log", history, stamp)


main()

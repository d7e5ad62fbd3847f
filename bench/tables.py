#!/usr/bin/python3
"""Measures and prints the tables of a section of docs/performance.md.

What is compared is measured side by side: whole runs take turns, round by round. Times are medians.

Usage: behind bench/with_fake_tools: bench/tables.py BUILD_DIRECTORY run|report|histories|units|watch
"""
import datetime
import json
import os
import pathlib
import statistics
import subprocess
import sys

BENCH = pathlib.Path(__file__).parent
BUILD = pathlib.Path(sys.argv[1])
INPUTS = pathlib.Path("/tmp/inputs")

PEAK = "Peak memory of a process that reads one, in MB"

ROUNDS = 20
RUNS_A_ROUND = 20

PROGRAM = "connTester"
RUNS = {
    PROGRAM: f"{BUILD}/connTester 10.0.0.5",
    "only the command lines and the two waits": f"{BUILD}/bench/calls_only 10.0.0.5 3",
    "only the command lines": f"{BUILD}/bench/calls_only 10.0.0.5",
}

REPORT_READERS = (PROGRAM, "nlohmann-json", "nlohmann-json, intervals dropped", "simdjson")
JQ = "jq"
JQ_FILTER = (
    "[.start.connected[0].local_host, .start.connected[0].local_port, "
    ".start.connected[0].remote_host, .start.connected[0].remote_port, "
    ".start.timestamp.timesecs, .start.test_start.duration, .start.test_start.reverse, "
    ".end.sum_sent.bytes, .end.sum_sent.bits_per_second]"
)
HISTORY_READERS = (
    "countLines",
    "iperf2 history",
    "iperf3 history, forward",
    "iperf3 history, reverse",
)


def print_table(head, rows, caption=""):
    """Prints a table, behind the line that says what of when there is more than one."""
    print(f"\n{caption}:\n" if caption else "")
    print("| " + " | ".join(head) + " |")
    print("|---" + "|---:" * (len(head) - 1) + "|")
    for row in rows:
        print("| " + " | ".join(row) + " |", flush=True)


def quiet(command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


# ---- Whole runs ----


def hyperfine(commands, runs):
    """Returns the result of hyperfine for each command, in order."""
    quiet(
        ["hyperfine", "--shell=none", "--style=none", "--warmup=1", f"--runs={runs}"]
        + [f"--prepare={BENCH}/fresh_home", "--export-json=/tmp/hyperfine.json"]
        + commands
    )
    return json.loads(pathlib.Path("/tmp/hyperfine.json").read_text())["results"]


def time_runs():
    """Returns the wall-clock and the processor seconds of each run, medians over all rounds."""
    wall = {name: [] for name in RUNS}
    processor = {name: [] for name in RUNS}
    for _ in range(ROUNDS):
        for name, result in zip(RUNS, hyperfine(list(RUNS.values()), RUNS_A_ROUND)):
            wall[name] += result["times"]
            processor[name].append(result["user"] + result["system"])
    return {
        name: (statistics.median(wall[name]), statistics.median(processor[name])) for name in RUNS
    }


def print_run_times():
    times = time_runs()
    own_wall, own_processor = times[PROGRAM]
    rows = []
    for name, (wall, processor) in times.items():
        wall_ratio, processor_ratio = own_wall / wall, own_processor / processor
        row = [f"{wall * 1e3:.1f}", f"{wall_ratio:.2f}"]
        row += [f"{processor * 1e3:.1f}", f"{processor_ratio:.2f}"]
        rows.append([name] + row)
    head = ["Run", "wall clock (ms)", "connTester takes", "processor (ms)", "connTester takes"]
    print_table(head, rows)


def count_calls(command):
    """Returns the processes of a run, the calls of all of them, and those of the first alone."""
    traces = pathlib.Path("/tmp/traces")
    quiet(["rm", "-rf", str(traces)])
    traces.mkdir()
    quiet([f"{BENCH}/fresh_home"])
    strace = ["strace", "-qq", "-e", "signal=none", "-ff", "-o", f"{traces}/trace"]
    quiet(strace + command.split())
    calls = {}
    for trace in traces.iterdir():
        lines = trace.read_text(errors="replace").splitlines()
        calls[int(trace.suffix[1:])] = [line for line in lines if "exited with" not in line]
    own = calls[min(calls)]
    opened = sum(line.startswith("open") for trace in calls.values() for line in trace)
    own_opened = sum(line.startswith("open") for line in own)
    return len(calls), sum(map(len, calls.values())), len(own), opened, own_opened


def print_counts():
    rows = [[name] + [str(count) for count in count_calls(run)] for name, run in RUNS.items()]
    head = ["Run", "processes", "calls of all", "of the first", "files opened by all"]
    head.append("by the first")
    print_table(head, rows)


# ---- Readers ----


def google_benchmark(program, *arguments):
    """Returns the processor nanoseconds of each benchmark by its name."""
    out = "/tmp/benchmark.json"
    options = [f"--benchmark_out={out}", "--benchmark_out_format=json"]
    options += ["--benchmark_repetitions=5", "--benchmark_enable_random_interleaving=true"]
    options += ["--benchmark_min_time=0.2"]
    command = [f"{BUILD}/bench/{program}", *options, *arguments]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    results = json.loads(pathlib.Path(out).read_text())["benchmarks"]
    medians = [r for r in results if r.get("aggregate_name") == "median"]
    medians.sort(key=lambda result: result["family_index"])
    return {result["run_name"]: result["cpu_time"] for result in medians}


def size_text(size):
    for unit, name in ((1_000_000, "MB"), (1_000, "KB")):
        if size >= unit:
            return f"{size / unit:.{0 if size >= 10 * unit else 1}f} {name}"
    return f"{size} B"


def peak_megabytes(command):
    """Returns the peak memory of a process, as GNU time tells it."""
    timed = ["/usr/bin/time", "--format=%M", "--output=/tmp/peak", *command]
    quiet(timed)
    return int(pathlib.Path("/tmp/peak").read_text()) * 1024 / 1e6


def whole_process(reader, path):
    """Returns the command by which a reader reads one file."""
    return [JQ, JQ_FILTER, path] if reader == JQ else [f"{BUILD}/bench/read_once", reader, path]


def print_report_times(times, reports):
    rows = []
    for report in reports:
        size = report.stat().st_size
        of_reader = [times[f"report/{report.stem}/{reader}"] for reader in REPORT_READERS]
        row = [f"{time / size:.2f}" for time in of_reader]
        row += [f"{time / of_reader[0]:.2f}" for time in of_reader[1:]]
        rows.append([size_text(size)] + row)
    head = ["Report"] + [f"{reader} (ns/byte)" for reader in REPORT_READERS]
    head += [f"{reader} takes" for reader in REPORT_READERS[1:]]
    print_table(head, rows)


def print_jq_times(reports):
    rows = []
    for report in reports:
        readers = [PROGRAM, "simdjson", JQ]
        commands = [whole_process(reader, str(report)) for reader in readers]
        commands = [" ".join(f"'{word}'" for word in command) for command in commands]
        runs = 100 if report.stat().st_size < 10_000_000 else 5
        times = [result["median"] for result in hyperfine(commands, runs)]
        row = [f"{time * 1e3:.2f}" for time in times] + [f"{times[-1] / times[0]:.1f}"]
        rows.append([size_text(report.stat().st_size)] + row)
    head = ["Report", "connTester's reader (ms)", "simdjson (ms)", "jq (ms)", "jq takes"]
    print_table(head, rows, "As a process of its own, its start included")


def print_report_memory(reports):
    readers = [*REPORT_READERS, JQ]
    rows = []
    for report in reports:
        peaks = [peak_megabytes(whole_process(reader, str(report))) for reader in readers]
        rows.append([size_text(report.stat().st_size)] + [f"{peak:.1f}" for peak in peaks])
    print_table(["Report", *readers], rows, PEAK)


def inputs(kind):
    """Makes the files of that kind, and returns them from small to large."""
    quiet([f"{BENCH}/make_inputs.py", str(INPUTS)])
    return sorted((INPUTS / kind).iterdir(), key=lambda path: int(path.stem))


def print_runs():
    print_run_times()
    print_counts()


def print_reports():
    reports = inputs("reports")
    print_report_times(google_benchmark("readers_bench", str(INPUTS)), reports)
    print_jq_times(reports)
    print_report_memory(reports)


def print_histories():
    directories = inputs("histories")
    times = google_benchmark("readers_bench", str(INPUTS))
    time_rows, memory_rows = [], []
    for directory in directories:
        length = int(directory.name)
        of_reader = [times[f"history/{length}/{reader}"] for reader in HISTORY_READERS]
        commands = [whole_process(reader, f"{directory}/") for reader in HISTORY_READERS]
        peaks = [peak_megabytes(command) for command in commands]
        time_rows.append([f"{length:,}"] + [f"{time / length:.0f}" for time in of_reader])
        memory_rows.append([f"{length:,}"] + [f"{peak:.1f}" for peak in peaks])
    head = ["Lines", *HISTORY_READERS]
    print_table(head, time_rows, "Nanoseconds for each line")
    print_table(head, memory_rows, PEAK)


def print_units():
    times = google_benchmark("units_bench")
    rows = [[name, f"{time / 1e3:.2f}"] for name, time in times.items()]
    print_table(["Unit", "processor (µs)"], rows)


# ---- connWatch ----

# How many runs, at which interval in seconds.
YEARS = {
    "a month, every hour": (720, 3600),
    "a year, every hour": (8760, 3600),
    "a year, every five minutes": (105120, 300),
}
WATCH = f"{BUILD}/watch/connWatch"


def made_logs(runs, interval):
    """Returns the log directory of so many runs, made when it is not there, on the disk."""
    made = BUILD / "bench" / f"logs-{runs}-{interval}"
    if not made.exists():
        begun = made.with_suffix(".begun")
        quiet(["rm", "-rf", str(begun)])
        maker = BENCH.parent / "tests/watch/make_logs.py"
        # The zone is that in which they are read here.
        options = [f"--runs={runs}", f"--interval={interval}", "--zone=UTC"]
        quiet([str(maker), str(begun), *options])
        begun.rename(made)
    return made / "log"


def day_before_the_end(logs):
    """Returns a day before the last slot, in the zone that with_fake_tools sets."""
    slots = (logs.parent / "truth.jsonl").read_text().splitlines()
    last = datetime.datetime.fromtimestamp(json.loads(slots[-1])["slot"])
    return (last - datetime.timedelta(days=1)).isoformat()


def readers_of(logs):
    """Returns the command lines that read a log directory, by what they do."""
    return {
        "summary": f"{WATCH} summary --from {logs}",
        "export jsonl": f"{WATCH} export jsonl --from {logs}",
        "list of the last day": f"{WATCH} list --from {logs} --since {day_before_the_end(logs)}",
        "jq, the sums alone": f"{BENCH}/sums_with_jq {logs}",
        "Python, the sums alone": f"{BENCH}/sums.py {logs}",
    }


def print_watch():
    seconds, peaks = [], []
    for name, (runs, interval) in YEARS.items():
        logs = made_logs(runs, interval)
        commands = readers_of(logs)
        archived = sum(1 for _ in (logs / "archive").iterdir())
        times = hyperfine(list(commands.values()), 5)
        row = [f"{result['median'] * 1e3:.1f}" for result in times]
        seconds.append([name, f"{runs:,}", f"{archived:,}"] + row)
        own = [command.split() for command in commands.values() if command.startswith(WATCH)]
        peaks.append([name] + [f"{peak_megabytes(command):.0f}" for command in own])
    print_table(["Runs", "slots", "archived files", *commands], seconds, "Milliseconds")
    print_table(["Runs", *list(commands)[:3]], peaks, "Peak memory in MB")
    start = hyperfine([f"{WATCH} --version"], 100)[0]["median"]
    print(f"\nStarting takes {start * 1e3:.1f} ms.")


SECTIONS = {
    "run": print_runs,
    "report": print_reports,
    "histories": print_histories,
    "units": print_units,
    "watch": print_watch,
}
os.chdir("/tmp")
SECTIONS[sys.argv[2]]()

"""Has the real program make the runs of make_logs.py, on fake tools that print the same and take as
long, and compares the two log directories byte by byte.

A test script has set up the machine before (see ../support/program.sh), and TZ is the zone.

usage: replay.py OPTION... (those of make_logs.py)
"""

import os
import pathlib
import subprocess
import sys

import make_logs
from log_directory import LogDirectory
from tester_run import HOSTS, Run

FAKE = pathlib.Path("/tmp/fake")
REAL = pathlib.Path("/tmp/home/Library/Logs/Qelmora")
MADE = pathlib.Path("/tmp/made")
SETTINGS = pathlib.Path("/usr/local/bin/Qelmora/connTester.conf")
TOOLS = {"ping": "ping", "forward": "iperf3", "reverse": "iperf3-R"}

# The start command's, which does not run here.
LOCK = "connTester.lock"


def configure(case):
    settings = {"numPings": case.count, "iperfTestTime": case.duration, "outputFormat": case.unit,
                "pingTestServer": str(case.resolver).lower(),
                "doPingTests": str(case.ping != "off").lower(),
                "doIperf3Tests": str(case.forward != "off").lower()}
    SETTINGS.write_text("".join(f"{name}={value}\n" for name, value in settings.items()))


def prepare_tools(run):
    """Has the tools print what they have printed there, and set the clock to when they ended."""
    outputs = {kind: test.report() for kind, test in run.tests.items() if test}
    outputs["ping"] = "".join(line + "\n" for line in run.output)
    for kind, name in TOOLS.items():
        (FAKE / f"{name}.out").write_text(outputs.get(kind, ""))
        end = f'echo {run.marks.get(kind)} >"$FAKE_DIR/clock"\n'
        if run.case.killed_in == kind:
            end += 'read -r tester <"$FAKE_DIR/tester"\nkill -KILL "$tester"\n'
        (FAKE / f"{name}.end").write_text(end)


def note_process():
    (FAKE / "tester").write_text(f"{os.getpid()}\n")


def replay(run):
    configure(run.case)
    prepare_tools(run)
    (FAKE / "clock").write_text(f"{run.clock_start}\n")
    environment = {**os.environ, "PATH": "/tmp/bin", "LD_PRELOAD": os.environ["FAKE_CLOCK"]}
    process = subprocess.Popen(("connTester", HOSTS[run.case.hosts][1]), env=environment, cwd=REAL,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, preexec_fn=note_process)
    process.communicate(timeout=60)


def contents(directory):
    return {str(path.relative_to(directory)): path.read_text() for path in directory.rglob("*")
            if path.is_file() and path.name != LOCK}


def fail(message):
    sys.exit(f"FAILED: {message}")


def compare_directories():
    real, made = contents(REAL), contents(MADE)
    if real.keys() != made.keys():
        fail(f"only one has these: {sorted(real.keys() ^ made.keys())}")
    for name, text in real.items():
        if text != made[name]:
            fail(f"{name}: the program leaves\n{text}\nbut made is\n{made[name]}")


def compare_lines(run):
    """The lines that the truth names are those that the run has left."""
    files = run.truth()["files"]
    expected = {kind: [test.csv_line()] for kind, test in run.tests.items() if files[kind]}
    if files["verbose"]:
        expected["verbose"] = run.output
    for kind, lines in expected.items():
        (name, first, last), = files[kind]
        found = (MADE / name).read_text().split("\n")[first - 1:last]
        if lines != found:
            fail(f"run {run.number}, {kind}: the truth names\n{found}\nbut left are\n{lines}")


def main():
    os.makedirs(REAL)
    options = make_logs.arguments([*sys.argv[1:], str(MADE)])
    logs = LogDirectory(MADE)
    runs = []
    for entry in make_logs.make_runs(options, logs):
        if isinstance(entry, Run):
            replay(entry)
            runs.append(entry)
    logs.close()
    compare_directories()
    for run in runs:
        compare_lines(run)
    print(f"{len(runs)} runs are the same")


main()

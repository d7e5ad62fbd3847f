# shellcheck shell=bash
# Functions for the tests of the whole program. A test script sources this file, defines one function
# for each test and ends with `run_test "$@"`; its argument is the name of the test.
#
# A test runs behind support/private_machine, so that all paths are fixed:
#   /tmp/home  HOME
#   /tmp/work  the working directory
#   /tmp/bin   PATH of the program: itself, the few tools that it needs, the fake ping
#   /tmp/fake  what the fakes know and note (see fake_tool and fake_clock.cpp), and in "console" and
#              "errors" what the last run printed
#
# CTest sets CONN_TESTER, FAKE_CLOCK, IPERF2_DRIVER and PING_ADAPTER to the paths of what was built.
set -euo pipefail

tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
installation=/usr/local/bin/Qelmora
logs=/tmp/home/Library/Logs/Qelmora

# The command line of the program, and the exit status of its last run.
tester=(env PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" connTester)
status=

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}

# Fails when a tool is not installed.
need() {
  command -v "$1" >/dev/null || fail "this test needs $1, which script/bootstrap installs"
}

# Writes the configuration file, one line for each argument.
configure() {
  printf '%s\n' "$@" >"$installation/connTester.conf"
}

set_clock() {
  date --utc --date "$1" +%s >/tmp/fake/clock
}

# The directories that a first run creates, for a test that has files there before.
make_log_directories() {
  mkdir -p "$logs/archive"
}

# Runs the program and notes what it prints and its exit status.
run() {
  status=0
  "${tester[@]}" "$@" >/tmp/fake/console 2>/tmp/fake/errors || status=$?
}

# Prints a file, or only the name of the tool whose output it is, unchanged and whole.
print_file() {
  local output
  for output in /tmp/fake/*.out; do
    if [[ -s $output ]] && cmp -s "$1" "$output"; then
      echo "(all that $(basename "$output" .out) printed)"
      return
    fi
  done
  cat "$1"
}

# Prints all directories and files that the runs have made.
print_tree() {
  find /tmp/home /tmp/work -mindepth 1 | sort | while IFS= read -r path; do
    if [[ -d $path ]]; then
      echo "== $path/"
    else
      echo "== $path"
      print_file "$path"
    fi
  done
}

# Prints the events of all runs, the end of the last one, and all files.
print_traces() {
  echo "== events"
  cat /tmp/fake/events
  echo "== errors"
  cat /tmp/fake/errors
  echo "== exit status $status"
  print_tree
}

# Each of these compares whole texts and fails with the difference.

expect_same() {
  diff -u "$1" "$2" || fail "$1 (-) is not what the run gave (+)"
}

expect_console() {
  expect_same "$tests/expected/$1.console" /tmp/fake/console
}

expect_traces() {
  print_traces >/tmp/fake/traces
  expect_same "$tests/expected/$1.traces" /tmp/fake/traces
}

# Compares standard input with a file.
expect_file() {
  diff -u - "$1" || fail "$1 (+) does not hold what is expected (-)"
}

expect_status() {
  [[ $status == "$1" ]] || fail "the exit status is $status, not $1"
}

install_fakes() {
  cp "$tests/fake_tool" /tmp/bin/ping
  cp "$tests/fake_tool" "$installation/iperf3"
  cp "$tests/data/ping.log" /tmp/fake/ping.out
  cp "$tests/../data/iperf3/3.12/forward.json" /tmp/fake/iperf3.out
  cp "$tests/../data/iperf3/3.12/reverse.json" /tmp/fake/iperf3-R.out
  cp "$tests/../data/iperf2/2.2.1/forward.csv" /tmp/fake/iperf.out
}

set_up() {
  mkdir /tmp/home /tmp/work /tmp/bin /tmp/fake
  ln -s "$CONN_TESTER" /tmp/bin/connTester
  local tool
  for tool in cat mkdir mv tee; do
    ln -s "$(command -v "$tool")" "/tmp/bin/$tool"
  done
  install_fakes
  set_clock '2026-11-16 05:40:00'
  touch /tmp/fake/{console,errors,events}
  export HOME=/tmp/home TZ=UTC LC_ALL=C FAKE_DIR=/tmp/fake
  # The sanitizers' run-time library wants to be the first; the fake clock is.
  export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}verify_asan_link_order=0"
  ulimit -c 0
  cd /tmp/work
}

run_test() {
  set_up
  "$1"
}

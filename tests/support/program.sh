# shellcheck shell=bash
# Functions for the tests that run a program. A test script sources this file, defines one function for
# each test and ends with `run_test "$@"`; its argument is the name of the test.
#
# A test runs behind private_machine, so that all paths are fixed:
#   /tmp/home  HOME
#   /tmp/work  the working directory
#   /tmp/bin   PATH of the program: itself, the few tools that it needs, the fake ping
#   /tmp/fake  what the fakes know and note (see fake_tool and fake_clock.cpp), and in "console" and
#              "errors" what the last run printed
#
# CTest sets CONN_TESTER, FAKE_CLOCK, IPERF2_DRIVER and PING_ADAPTER to the paths of what was built.
set -euo pipefail

support=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
installation=/usr/local/bin/Qelmora
logs=/tmp/home/Library/Logs/Qelmora

# The exit status of the last run.
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

# Runs a command, in a shell of its own, and notes what it prints and its exit status.
run() {
  status=0
  ("$@") >/tmp/fake/console 2>/tmp/fake/errors || status=$?
}

# Becomes a program of /tmp/bin on the fake tools and with the fake clock. The shell stays out of it,
# since it would have a word of its own about an abnormal end.
on_fake_tools() {
  exec env --default-signal=PIPE PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" "$@"
}

tester() {
  on_fake_tools connTester "$@"
}

# Prints a file, each line behind the name $1. Of a report that a tool has printed it tells only
# whose it is; of numbered lines in a row, the first and the last; of a very long line, the length.
print_named() {
  local tool=${1%.log}
  tool=${tool/_latest/}
  tool=${tool/iperf2/iperf}
  if [[ ! -s $2 ]]; then
    echo "$1: (empty)"
  elif cmp -s "$2" "/tmp/fake/$tool.out"; then
    echo "$1: (what $tool has printed)"
  elif cmp -s "$2" "/tmp/fake/earlier/$tool.out"; then
    echo "$1: (what $tool printed an hour before)"
  else
    awk -v name="$1" '
      function end_row() {
        if (last > first) { print name ": ... line " last }
        last = 0
      }
      /^line [0-9]+$/ && last && $2 == last + 1 { last = $2; next }
      { end_row() }
      /^line [0-9]+$/ { first = last = $2 }
      { gsub(/\r/, "\\r") }
      { print name ": " (length($0) > 1000 ? "(a line of " length($0) " characters)" : $0) }
      END { end_row() }' "$2"
    [[ -z $(tail -c 1 "$2") ]] || echo "$1: (no newline at the end)"
  fi
}

# Prints all files, by their names in the log directory or by their paths. Links are followed.
print_files() {
  find -L /tmp/home /tmp/work -mindepth 1 | sort | while IFS= read -r path; do
    if [[ -d $path ]]; then
      echo "${path#"$logs"/}/"
    elif [[ -e $path ]]; then
      print_named "${path#"$logs"/}" "$path"
    else
      echo "${path#"$logs"/} -> $(readlink "$path")"
    fi
  done
}

# Prints all of the last run: what it printed, how it ended, what its tools were called with, and all
# files.
print_run() {
  print_named console /tmp/fake/console
  print_named errors /tmp/fake/errors
  echo "exit status: $status"
  print_named events /tmp/fake/events
  chmod -R u+rwX /tmp/home /tmp/work
  print_files
}

# Each of these compares whole texts and fails with the difference.

expect_same() {
  diff -u "$1" "$2" || fail "$1 (-) is not what the run gave (+)"
}

# Compares a file with the one in the tree that says what to expect. With UPDATE=1 in the environment,
# writes that anew.
expect_recorded() {
  [[ ${UPDATE-} != 1 ]] || cp "$2" "$1"
  expect_same "$1" "$2"
}

# Compares standard input with a file.
expect_file() {
  diff -u - "$1" || fail "$1 (+) does not hold what is expected (-)"
}

expect_status() {
  [[ $status == "$1" ]] || fail "the exit status is $status, not $1"
}

install_fakes() {
  local data=$support/../data
  cp "$support/fake_tool" /tmp/bin/ping
  cp "$support/fake_tool" "$installation/iperf3"
  # A short output, so that expectations are short.
  sed -n '1p; /^round-trip/p' "$data/ping/macos_reply.log" >/tmp/fake/ping.out
  cp "$data/iperf3/3.12/forward.json" /tmp/fake/iperf3.out
  cp "$data/iperf3/3.12/reverse.json" /tmp/fake/iperf3-R.out
  cp "$data/iperf2/2.2.1/forward.csv" /tmp/fake/iperf.out
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

#!/usr/bin/env bash
# The program killed at each of its system calls, and run again.
source "$(dirname "$0")/library.sh"

# Tools that measure something else, for the run after a killed one.
prepare_next_tools() {
  mkdir /tmp/fake/next
  cp /tmp/fake/earlier/*.out /tmp/fake/next
  touch /tmp/fake/next/events
}

LosesNothingInAFirstRun() {
  run_before
  prepare_next_tools
  mkdir /tmp/fake/before

  /usr/bin/python3 -B "$fault_tests/power_cut.py" "$(short_or_long 29 1)"
}

LosesNothingInARunThatMovesAllHistories() {
  prepare_files 9
  prepare_next_tools

  /usr/bin/python3 -B "$fault_tests/power_cut.py" "$(short_or_long 29 1)"
}

run_test "$@"

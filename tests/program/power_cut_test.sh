#!/usr/bin/env bash
# The program killed at each of its system calls, and run again.
source "$(dirname "$0")/library.sh"

# Kills runs on the files that are there, at every call or at some. The tools of the run after a killed
# one measure what those of the run before have measured.
kill_and_run_again() {
  cp -a "$HOME" /tmp/fake/before
  mv /tmp/fake/earlier /tmp/fake/next
  touch /tmp/fake/next/events

  /usr/bin/python3 -B "$program_tests/power_cut.py" "$(short_or_long 29 1)"
}

PowerCut.LosesNothingInAFirstRun() {
  rm -r "$HOME/Library"

  kill_and_run_again
}

PowerCut.LosesNothingInARunThatMovesAllHistories() {
  fill_histories 9

  kill_and_run_again
}

set_up
run_an_hour_before tester 192.168.1.10
"$1"

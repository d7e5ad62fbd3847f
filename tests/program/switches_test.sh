#!/usr/bin/env bash
# Each test of the network alone, and none.
source "$(dirname "$0")/library.sh"

LeavePingAlone() {
  configure doIperf3Tests=false

  run 10.0.0.5

  expect_console ping_alone
  expect_traces ping_alone
}

LeaveIperf3Alone() {
  configure doPingTests=false

  run 10.0.0.5

  expect_console iperf3_alone
  expect_traces iperf3_alone
}

LeaveNothingButTheDirectories() {
  configure doPingTests=false doIperf3Tests=false

  run 10.0.0.5

  expect_console all_off
  expect_traces all_off
}

LeaveTheStatusAloneWhereTheDirectoriesCannotBeMade() {
  configure doPingTests=false doIperf3Tests=false
  touch /tmp/home/Library

  run 10.0.0.5

  expect_status 0
  expect_file /tmp/fake/errors \
    <<<"mkdir: cannot create directory '/tmp/home/Library': Not a directory"
  expect_console all_off
}

run_test "$@"

#!/usr/bin/env bash
# Standard output that is a pipe, full or closed, and a run that ends abnormally.
source "$(dirname "$0")/library.sh"

# Runs a command, which may end abnormally, into a pipe. What the shell says of that goes nowhere.
into_pipe() {
  {
    "$@" 2>&3 | cat
    return "${PIPESTATUS[0]}"
  } 3>&2 2>/dev/null
}

into_full_device() {
  "$@" >/dev/full
}

without_output() {
  "$@" >&-
}

without_any_stream() {
  "$@" <&- >&- 2>&-
}

# As in "connTester | head -n 1".
into_pipe_without_reader() {
  exec 3> >(:)
  wait $!
  "$@" >&3
}

StandardOutput.KeepsTheTrueOrderOfLinesInAPipe() {
  run into_pipe tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

StandardOutput.MayBeClosed() {
  run without_output tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

StandardOutput.MayBeClosedTogetherWithInputAndErrorsAndToolsFindThemOpen() {
  # shellcheck disable=SC2016 # the fake tool's own number
  echo '/usr/bin/readlink "/proc/$$/fd/0" "/proc/$$/fd/2" >/tmp/work/streams' >/tmp/fake/iperf3.end

  run without_any_stream tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

StandardOutput.MayBeFull() {
  run into_full_device tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

StandardOutput.EndsTheRunWhenItHasNoReader() {
  run into_pipe_without_reader tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

StandardOutput.HoldsAllThatWasPrintedBeforeAnAbnormalEndInAPipe() {
  # A text in place of the first port.
  sed -i '0,/"local_port":\t[0-9]*/s//"local_port":\t"none"/' /tmp/fake/iperf3.out

  run into_pipe tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

set_up
run_an_hour_before tester 192.168.1.10
"$1" "$1"

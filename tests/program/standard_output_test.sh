#!/usr/bin/env bash
# Standard output that is no terminal, full or closed, and a run that ends abnormally.
source "$(dirname "$0")/library.sh"

run_into_pipe() {
  status=0
  "${tester[@]}" "$@" 2>/tmp/fake/errors | cat >/tmp/fake/console || status=${PIPESTATUS[0]}
}

# Puts a text in place of the first port of the iperf3 report.
spoil_the_forward_report() {
  sed -i '0,/"local_port":\t[0-9]*/s//"local_port":\t"none"/' /tmp/fake/iperf3.out
}

KeepsTheTrueOrderOfLinesInAPipe() {
  run_into_pipe 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

MayBeClosed() {
  status=0
  "${tester[@]}" 10.0.0.5 2>/tmp/fake/errors >&- || status=$?

  expect_traces default_run
}

MayBeClosedTogetherWithInputAndErrorsAndToolsFindThemOpen() {
  # shellcheck disable=SC2016 # the fake tool's own number
  echo '/usr/bin/readlink "/proc/$$/fd/0" "/proc/$$/fd/2" >/tmp/fake/streams' >/tmp/fake/iperf3.end

  status=0
  "${tester[@]}" 10.0.0.5 <&- >&- 2>&- || status=$?

  expect_traces default_run
  expect_file /tmp/fake/streams <<<$'/dev/null\n/dev/null'
}

MayBeFull() {
  status=0
  "${tester[@]}" 10.0.0.5 2>/tmp/fake/errors >/dev/full || status=$?

  expect_traces full_output
}

HoldsAllThatWasPrintedBeforeAnAbnormalEndInAFile() {
  spoil_the_forward_report

  run 10.0.0.5

  expect_console malformed_report
  expect_traces malformed_report
}

HoldsAllThatWasPrintedBeforeAnAbnormalEndInAPipe() {
  spoil_the_forward_report

  run_into_pipe 10.0.0.5

  expect_console malformed_report
  expect_traces malformed_report
}

run_test "$@"

#!/usr/bin/env bash
# Reports that break off: at every byte of two releases', at every line of all releases'. The short
# form takes some of the cuts, among them some that end the run.
source "$(dirname "$0")/library.sh"

recordings=$tests/../data

# Runs on all cuts of recorded reports: tool, byte or line, how many of them to the next cut, files.
run_on_cuts() {
  /usr/bin/python3 -B "$fault_tests/report_cuts.py" "$@"
}

# The waits after an iperf run take 3 ms then.
test_iperf3_only() {
  configure doPingTests=false iperfTestTime=-1
  : >/tmp/fake/iperf3.out
  : >/tmp/fake/iperf3-R.out
}

PingReportsAtEveryByte() {
  configure doIperf3Tests=false

  run_on_cuts ping byte "$(short_or_long 12 1)" "$recordings"/ping/{macos,inetutils_2.4}_reply.log
}

PingReportsOfAllSystemsAtEveryLine() {
  configure doIperf3Tests=false

  run_on_cuts ping line "$(short_or_long 3 1)" "$recordings"/ping/*.log
}

ForwardReportsAtEveryByte() {
  test_iperf3_only

  run_on_cuts iperf3 byte "$(short_or_long 98 1)" \
    "$recordings"/iperf3/{3.0.11,3.12}/forward.json
}

ReverseReportsAtEveryByte() {
  test_iperf3_only

  run_on_cuts iperf3-R byte "$(short_or_long 98 1)" \
    "$recordings"/iperf3/{3.0.11,3.12}/reverse.json
}

ForwardReportsOfAllReleasesAtEveryLine() {
  test_iperf3_only

  run_on_cuts iperf3 line "$(short_or_long 17 1)" "$recordings"/iperf3/*/forward.json
}

ReverseReportsOfAllReleasesAtEveryLine() {
  test_iperf3_only

  run_on_cuts iperf3-R line "$(short_or_long 17 1)" "$recordings"/iperf3/*/reverse.json
}

Iperf2ReportsAtEveryByte() {
  configure iperfTestTime=-1
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  cp "$tests/fake_tool" /tmp/bin/iperf

  run_on_cuts iperf byte "$(short_or_long 7 1)" "$recordings"/iperf2/*/*.csv
}

run_test "$@"

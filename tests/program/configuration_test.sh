#!/usr/bin/env bash
# The configuration file.
source "$(dirname "$0")/library.sh"

SetsTheNumberOfPings() {
  configure 'numPings = 3' doIperf3Tests=false

  run 10.0.0.5

  expect_file /tmp/fake/events <<<'ping [-c] [3] [10.0.0.5]'
}

SetsTheTimeOfTheIperf3TestsAndOfTheWaits() {
  configure '# iperfTestTime=2' doPingTests=false

  run 10.0.0.5

  expect_file /tmp/fake/events <<END
iperf3 [-c] [10.0.0.5] [-t] [2] [-J]
sleep 3 s 0 ns
iperf3 [-c] [10.0.0.5] [-t] [2] [-J] [-R]
sleep 3 s 0 ns
END
}

SendsPingToAPublicResolver() {
  configure pingTestServer=true doIperf3Tests=false

  run 10.0.0.5

  expect_file /tmp/fake/events <<<'ping [-c] [10] [8.8.8.8]'
}

TracesPing() {
  configure debugPrintPing=true doIperf3Tests=false

  run 10.0.0.5

  expect_console debug_print_ping
}

TracesIperf3WithTheFlagNamedAfterTheFile() {
  configure debugConfFile=true doPingTests=false

  run 10.0.0.5

  expect_console debug_conf_file
}

TracesTheHistories() {
  configure debugPrintHistory=true doPingTests=false

  run 10.0.0.5

  expect_console debug_print_history
}

HasTwoFlagsThatTraceNothingInARun() {
  configure debugPrintIperf=true debugPrintLast=true

  run 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

TracesEverything() {
  configure debugConfFile=true debugPrintPing=true debugPrintIperf=true debugPrintLast=true \
    debugPrintHistory=true

  run 10.0.0.5

  expect_console all_debug_flags
  expect_traces default_run
}

SwitchesOneWayOnly() {
  configure debugConfFile=false debugPrintPing=false debugPrintHistory=false pingTestServer=false \
    doPingTests=true doIperf3Tests=true doIperf2Tests=true

  run 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

HasNoEffectWithValuesThatAreNotQuiteTrueOrFalse() {
  configure debugConfFile=TRUE debugPrintPing=1 'debugPrintHistory= true' 'doPingTests = false' \
    doIperf3Tests=no 'no key = 3' numPings

  run 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

MayHaveWindowsLineEnds() {
  configure $'debugConfFile=true\r' $'doPingTests=false\r' $'iperfTestTime=2\r' $'outputFormat=2\r'

  run 10.0.0.5

  expect_console windows_line_ends
}

MayBeADirectory() {
  mkdir "$installation/connTester.conf"

  run 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

EndsTheRunBeforeAnyDirectoryWithAMalformedNumber() {
  configure doPingTests=false numPings=ten

  run 10.0.0.5

  expect_console malformed_number
  expect_traces malformed_number
}

EndsTheRunBeforeAnyDirectoryWithANumberOutOfRange() {
  configure iperfTestTime=2147483648

  run 10.0.0.5

  expect_console malformed_number
  expect_traces number_out_of_range
}

run_test "$@"

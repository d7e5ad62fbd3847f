#!/usr/bin/env bash
# Each test configures something; then the program runs.
source "$(dirname "$0")/library.sh"

Configuration.SetsTheNumberOfPings() {
  configure 'numPings = 3'
}

Configuration.SetsTheTimeOfTheIperf3TestsAndOfTheWaits() {
  configure '# iperfTestTime=2'
}

Configuration.SendsPingToAPublicResolver() {
  configure pingTestServer=true
}

Configuration.TracesPing() {
  configure debugPrintPing=true
}

Configuration.TracesIperf3WithTheFlagNamedAfterTheFile() {
  configure debugConfFile=true
}

Configuration.TracesTheHistories() {
  configure debugPrintHistory=true
}

Configuration.HasTwoFlagsThatTraceNothingInARun() {
  configure debugPrintIperf=true debugPrintLast=true
}

Configuration.SwitchesOneWayOnly() {
  configure debugConfFile=false debugPrintPing=false debugPrintHistory=false pingTestServer=false \
    doPingTests=true doIperf3Tests=true doIperf2Tests=true
}

Configuration.LeavesPingAlone() {
  configure doIperf3Tests=false
}

Configuration.LeavesIperf3Alone() {
  configure doPingTests=false
}

Configuration.LeavesNothingButTheDirectories() {
  configure doPingTests=false doIperf3Tests=false
}

Configuration.MayHaveWindowsLineEnds() {
  configure $'doPingTests=false\r' $'iperfTestTime=2\r'
}

OutputFormat.TwoGivesMebibitsPerSecond() {
  configure outputFormat=2
}

OutputFormat.ThreeGivesMegabitsPerSecond() {
  configure outputFormat=3
}

OutputFormat.OutOfRangeCountsAsOneAndSaysSo() {
  configure outputFormat=4
}

set_up
"$1"
run tester 192.168.1.10
expect_changes "$1" Program.StartsItsHistories

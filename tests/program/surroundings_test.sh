#!/usr/bin/env bash
# Each test breaks something that surrounds a run: a place that it reads or writes, HOME or the
# configuration file; then the program runs, an hour after another run.
source "$(dirname "$0")/library.sh"

LogDirectory.IsMissing() {
  rm -rf "$HOME/Library"
}

# All that is known comes from the run before.
LatestReports.AreUnwritable() {
  chmod a-w "$logs/ping_latest.log" "$logs/iperf3_latest.log" "$logs/iperf3_latest-R.log"
}

LatestCsvFiles.AreUnwritable() {
  chmod a-w "$logs"/iperf3_latest_*_csv.log
}

Home.IsTheTextNullWhenUnset() {
  unset HOME
}

Home.IsRefusedWith184Characters() {
  HOME=/tmp/home/$(printf '%0174d' 0)
}

Home.IsSplitByTheShellAtABlank() {
  HOME='/tmp/home/of me'
}

Configuration.MayBeADirectory() {
  mkdir "$installation/connTester.conf"
}

Configuration.MayBeUnreadable() {
  configure doPingTests=false
  chmod a-r "$installation/connTester.conf"
}

Configuration.MayHaveTenMegabytesOnOneLine() {
  configure "$(ten_megabytes)"
}

Configuration.MayHaveTenMegabytesOfLines() {
  seq --format 'doPingTests=true %.0f' 450000 >"$installation/connTester.conf"
}

set_up
run_an_hour_before tester 192.168.1.10
"$1"
run tester 192.168.1.10
expect_changes "$1" Program.ExtendsItsHistories

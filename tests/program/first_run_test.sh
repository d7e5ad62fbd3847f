#!/usr/bin/env bash
# Each test breaks something for a first run, which finds no files; then the program runs.
source "$(dirname "$0")/library.sh"

Mkdir.IsMissingInAFirstRun() {
  take_away mkdir
}

LogDirectory.IsUnwritableInAFirstRun() {
  mkdir -p "$logs"
  chmod a-w "$logs"
}

Configuration.EndsTheRunBeforeAnyDirectoryWithANumberOfTenMegabytes() {
  configure "numPings=1$(ten_megabytes)"
}

set_up
"$1"
run tester 192.168.1.10
expect_changes "$1" Program.StartsItsHistories

#!/usr/bin/env bash
# The places that a run reads and writes: the log directory, the histories, the archive and the
# working directory.
source "$(dirname "$0")/library.sh"

LogDirectoryIsMissing() {
  rm -rf "$HOME/Library"

  run_now

  compare_with_healthy
}

LogDirectoryIsUnwritable() {
  start_from 9
  chmod a-w "$logs"

  run_now

  expect_changes
}

LogDirectoryIsUnwritableInAFirstRun() {
  rm -rf "$logs"
  mkdir "$logs"
  chmod a-w "$logs"

  run_now

  compare_with_healthy
}

# All that is known comes from the run before.
LatestReportsAreUnwritable() {
  chmod a-w "$logs/ping_latest.log" "$logs/iperf3_latest.log" "$logs/iperf3_latest-R.log"

  run_now

  compare_with_healthy
}

LatestCsvFilesAreUnwritable() {
  chmod a-w "$logs"/iperf3_latest_*_csv.log

  run_now

  compare_with_healthy
}

HistoriesAreUnreadable() {
  start_from 12
  chmod a-r "$logs"/*history*

  run_now

  expect_changes
}

HistoriesAreUnwritable() {
  start_from 12
  chmod a-w "$logs"/*history*

  run_now

  expect_changes
}

HistoriesHaveEightLines() {
  prepare_files 8

  run_now

  expect_changes
}

HistoriesHaveNineLines() {
  prepare_files 9

  run_now

  expect_changes
}

HistoriesHaveTenLines() {
  prepare_files 10

  run_now

  expect_changes
}

HistoriesHaveElevenLines() {
  prepare_files 11

  run_now

  expect_changes
}

HistoriesHaveAHundredThousandLines() {
  prepare_files 100000

  run_now

  expect_changes
}

# The new line follows on the last one, and the two count as one.
HistoriesHaveNineLinesAndNoLastNewline() {
  prepare_files 9
  local history
  for history in "${histories[@]}"; do
    truncate --size -1 "$(live_file "$history" "$logs")"
  done

  run_now

  compare_with_healthy
}

ArchiveIsMissing() {
  start_from 9
  rmdir "$logs/archive"

  run_now

  expect_changes
}

ArchiveIsALinkToNowhere() { # --untraced
  start_from 9
  link_archive

  run_now

  expect_changes
}

ArchiveComesBack() { # --untraced
  start_from 9
  link_archive
  run_now
  mkdir /tmp/disk/archive

  run_an_hour_later

  compare_with_healthy
}

ArchiveIsUnwritable() {
  start_from 9
  chmod a-w "$logs/archive"

  run_now

  expect_changes
}

# Only the move of the results needs no file named nul there.
WorkingDirectoryIsUnwritable() {
  start_from 9
  chmod a-w /tmp/work

  run_now

  expect_changes
}

run_fault "$@"

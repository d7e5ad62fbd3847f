#!/usr/bin/env bash
# The places that a run reads and writes: the log directory, the histories, the archive and the
# working directory.
source "$(dirname "$0")/library.sh"

# Fills the small file system.
fill_disk() {
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true
}

run_an_hour_later() {
  set_clock '2026-11-16 06:40:00'
  run "${arguments[@]}"
}

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

LogDirectoryIsOnAFullFileSystemInAFirstRun() {
  move_home /tmp/disk/home
  mkdir -p "$logs/archive"
  fill_disk

  run_now

  rm /tmp/disk/filler
  compare_with_healthy
}

# A file system gives room by pages of 4096 characters; each history has room for 30 more.
fill_disk_below_histories() {
  move_home /tmp/disk/home
  start_from 1
  local history
  for history in "${histories[@]}"; do
    printf '%-4065s\n' 'a line' >"$(live_file "$history" "$logs")"
  done
  fill_disk
}

LogDirectoryIsOnAFullFileSystem() {
  fill_disk_below_histories

  run_now

  rm /tmp/disk/filler
  compare_with_healthy
}

LogDirectoryHasRoomAgain() {
  fill_disk_below_histories
  run_now
  rm /tmp/disk/filler

  run_an_hour_later

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

# The archive is a link to another file system.
link_archive() {
  rmdir "$logs/archive"
  ln -s /tmp/disk/archive "$logs/archive"
}

ArchiveIsALinkToNowhere() {
  start_from 9
  link_archive

  run_now

  expect_changes
}

ArchiveComesBack() {
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

ArchiveIsOnAFullFileSystem() {
  start_from 9
  link_archive
  mkdir /tmp/disk/archive
  fill_disk

  run_now

  rm /tmp/disk/filler
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

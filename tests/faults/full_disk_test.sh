#!/usr/bin/env bash
# A file system without room, below the log directory or below the archive.
source "$(dirname "$0")/library.sh"

# Fills the small file system.
fill_disk() {
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true
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

ArchiveIsOnAFullFileSystem() {
  start_from 9
  link_archive
  mkdir /tmp/disk/archive
  fill_disk

  run_now

  rm /tmp/disk/filler
  expect_changes
}

run_fault "$@"

#!/usr/bin/env bash
# A file system without room, below the log directory or below the archive.
source "$(dirname "$0")/library.sh"

# Puts a directory of the program's on the small file system.
put_on_disk() {
  mkdir -p "$1"
  cp -a "$1/." /tmp/disk
  rm -r "$1"
  ln -s /tmp/disk "$1"
}

fill_disk() {
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true
}

# A file system gives room by pages of 4096 characters; each history has room for 30 more.
fill_disk_below_histories() {
  run_an_hour_before tester 192.168.1.10
  put_on_disk "$logs"
  live_histories | while read -r history; do
    printf '%-4065s\n' 'a line' >"$history"
  done
  fill_disk
}

LogDirectory.IsOnAFullFileSystemInAFirstRun() {
  put_on_disk "$logs"
  fill_disk

  run tester 192.168.1.10

  rm /tmp/disk/filler
  expect_changes "$1" Program.StartsItsHistories
}

LogDirectory.IsOnAFullFileSystem() {
  fill_disk_below_histories

  run tester 192.168.1.10

  rm /tmp/disk/filler
  expect_changes "$1" Program.ExtendsItsHistories
}

LogDirectory.HasRoomAgain() {
  fill_disk_below_histories
  run_before 05:10:00 tester 192.168.1.10
  rm /tmp/disk/filler

  run tester 192.168.1.10

  expect_changes "$1" Program.ExtendsItsHistories
}

Archive.IsOnAFullFileSystem() {
  run_an_hour_before tester 192.168.1.10
  fill_histories 9
  put_on_disk "$logs/archive"
  fill_disk

  run tester 192.168.1.10

  rm /tmp/disk/filler
  expect_changes "$1" Program.MovesFullHistories
}

set_up
"$1" "$1"

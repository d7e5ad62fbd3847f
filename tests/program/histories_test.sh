#!/usr/bin/env bash
# The four histories and their archive.
source "$(dirname "$0")/library.sh"

histories=(ping_history iperf3_history_forward_csv iperf3_history_reverse_csv
  connection_test_results_history)

run_at() {
  set_clock "2026-11-16 $1"
  : >/tmp/fake/events
  run 10.0.0.5
}

# Gives each history the given number of lines before the run.
prepare_histories() {
  make_log_directories
  local history
  for history in "${histories[@]}"; do
    seq --format "$history line %g" "$1" >"$logs/$history.log"
  done
}

run_ten_times() {
  local hour
  for hour in 05 06 07 08 09 10 11 12 13 14; do
    run_at "$hour:40:00"
  done
}

MoveInTheTenthRunUnderStampsThatFollowOneAnother() {
  run_ten_times

  expect_console tenth_run
  expect_traces tenth_run
}

StartAgainInTheEleventhRun() {
  run_ten_times

  run_at 15:40:00

  local first_run=$tests/expected/default_run.traces
  local history
  for history in "${histories[@]}"; do
    sed -n "\,/$history.log\$,{n;s/T05/T15/;p}" "$first_run" | expect_file "$logs/$history.log"
  done
}

MoveWholeWithMoreLinesThanTen() {
  prepare_histories 25

  run_at 05:40:00

  expect_console twenty_sixth_line
  expect_traces twenty_sixth_line
}

StayUntilTheArchiveComesBack() {
  prepare_histories 9
  rmdir "$logs/archive"
  touch "$logs/archive"

  run_at 05:40:00

  expect_traces archive_away

  rm "$logs/archive"

  run_at 06:40:00

  expect_traces archive_back
}

run_test "$@"

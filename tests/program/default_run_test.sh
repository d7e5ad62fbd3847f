#!/usr/bin/env bash
# The run with the default settings.
source "$(dirname "$0")/library.sh"

PrintsItsConsoleAndWritesItsFiles() {
  run 10.0.0.5

  expect_console default_run
  expect_traces default_run
}

ReplacesTheLatestFilesAndExtendsTheHistoriesInTheNextRun() {
  run 10.0.0.5
  set_clock '2026-11-16 06:40:00'

  run 10.0.0.5

  expect_traces second_run
}

run_test "$@"

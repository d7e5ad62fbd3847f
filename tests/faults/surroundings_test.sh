#!/usr/bin/env bash
# What surrounds a run: HOME, the configuration file and the standard output.
source "$(dirname "$0")/library.sh"

conf=$installation/connTester.conf

HomeIsUnset() {
  unset HOME

  run_now

  HOME=/tmp/home
  compare_with_healthy
}

HomeIsTooLong() {
  HOME=/tmp/home/$(printf '%0174d' 0) run_now

  expect_changes
}

HomeHasABlank() {
  HOME='/tmp/home/of me' run_now

  expect_changes
}

ConfigurationIsADirectory() {
  mkdir "$conf"

  run_now

  expect_changes
}

ConfigurationIsUnreadable() {
  configure doPingTests=false
  chmod a-r "$conf"

  run_now

  expect_changes
}

ConfigurationHasTenMegabytesOnOneLine() {
  configure "$(printf '%010000000d' 0)"

  run_now

  expect_changes
}

ConfigurationHasTenMegabytesOfLines() {
  seq --format 'doPingTests=true %.0f' 450000 >"$conf"

  run_now

  expect_changes
}

ConfigurationHasANumberOfTenMegabytes() {
  configure "numPings=$(printf '1%010000000d' 0)"

  run_now

  expect_changes
}

run_with_output() {
  set_clock '2026-11-16 05:40:00'
  : >/tmp/fake/console
  status=0
  "${tester[@]}" "${arguments[@]}" 2>/tmp/fake/errors || status=$?
}

StandardOutputIsClosed() {
  run_with_output >&-

  expect_changes
}

StandardOutputIsFull() {
  run_with_output >/dev/full

  expect_changes
}

# As in "connTester | head -n 1".
StandardOutputHasNoReader() {
  exec 3> >(:)
  wait $!
  tester=(env --default-signal=PIPE "${tester[@]}")

  run_with_output >&3

  expect_changes
}

run_fault "$@"

#!/usr/bin/env bash
# The manual pages.
source "$(dirname "$0")/library.sh"

HasNoFaults() {
  need mandoc
  mandoc -T lint -W warning,stop "$packaging"/../man/* >/tmp/fake/faults 2>&1 || true

  expect_file /tmp/fake/faults </dev/null
}

run_test "$@"

#!/usr/bin/env bash
# The ping adapter where /proc does not tell its own file, so that it could take itself for the system's
# ping.
source "$(dirname "$0")/../support/program.sh"

RunsNoPingWithoutProc() {
  run "$PING_ADAPTER" -c 1 10.0.0.5

  expect_status 126
  expect_file /tmp/fake/console </dev/null
  # The sanitizers miss /proc, too, and say so first.
  tail -n 1 /tmp/fake/errors >/tmp/fake/error
  expect_file /tmp/fake/error <<<'ping adapter: cannot tell which file it is itself from '\
'/proc/self/exe: No such file or directory'
  expect_file /tmp/fake/events </dev/null
}

run_test "$@"

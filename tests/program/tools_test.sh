#!/usr/bin/env bash
# Tools that are missing or fail.
source "$(dirname "$0")/library.sh"

MayAllBeMissing() {
  rm /tmp/bin/ping "$installation/iperf3"

  run 10.0.0.5

  expect_console tools_missing
  expect_traces tools_missing
}

MayAllFail() {
  cp "$tests/../data/ping/inetutils_2.4_no_reply.log" /tmp/fake/ping.out
  cp "$tests/../data/iperf3/3.12/refused.json" /tmp/fake/iperf3.out
  cp "$tests/../data/iperf3/3.12/server_busy.json" /tmp/fake/iperf3-R.out
  tee /tmp/fake/{ping,iperf3,iperf3-R}.end <<<'exit 1' >/dev/null

  run 10.0.0.5

  expect_console tools_failing
  expect_traces tools_failing
}

MayAllBeKilledBeforeTheyPrint() {
  truncate --size 0 /tmp/fake/{ping,iperf3,iperf3-R}.out
  # shellcheck disable=SC2016 # the fake tool's own number
  tee /tmp/fake/{ping,iperf3,iperf3-R}.end <<<'kill -KILL $$' >/dev/null

  run 10.0.0.5

  expect_console tools_killed
  expect_traces tools_killed
}

run_test "$@"

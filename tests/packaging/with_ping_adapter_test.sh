#!/usr/bin/env bash
# The script that chooses between the system's ping and the adapter.
source "$(dirname "$0")/library.sh"

# Runs a command that tells which ping it would run.
# shellcheck disable=SC2016 # its PATH, its argument
tester=("$packaging/with-ping-adapter" /tmp/adapter sh -c 'echo "$PATH"; exit "$1"' sh)

expect_path() {
  expect_status 3
  expect_file /tmp/fake/console <<<"$1"
  expect_file /tmp/fake/errors </dev/null
}

LeavesThePathAloneAfterASummaryThatIsUnderstood() {
  local summary
  for summary in \
    'round-trip min/avg/max/stddev = 0.032/0.032/0.032/0.000 ms' \
    'round-trip min/avg/max/std-dev = 14.123/15.456/17.789/1.234 ms'; do
    echo "$summary" >/tmp/fake/ping.out

    run 3

    expect_path "$PATH"
  done
}

PutsTheAdapterFirstAfterAnyOtherSummary() {
  local summary
  for summary in '' \
    'rtt min/avg/max/mdev = 0.032/0.032/0.032/0.000 ms' \
    'round-trip min/avg/max = 0.049/0.049/0.049 ms' \
    ' round-trip min/avg/max/stddev = 0.032/0.032/0.032/0.000 ms' \
    'round-trip min/avg/max/stddev 0.032/0.032/0.032/0.000 ms'; do
    echo "$summary" >/tmp/fake/ping.out

    run 3

    expect_path "/tmp/adapter:$PATH"
  done
}

PutsTheAdapterFirstWhenThePingFails() {
  echo 'echo "ping: not permitted" >&2; exit 2' >/tmp/fake/ping.end
  : >/tmp/fake/ping.out

  run 3

  expect_path "/tmp/adapter:$PATH"
}

PutsTheAdapterFirstWithoutAPing() {
  rm /tmp/bin/ping
  provide grep sh
  tester=(env PATH=/tmp/bin "${tester[@]}")

  run 3

  expect_path /tmp/adapter:/tmp/bin
}

TriesThePingOnceOnLoopback() {
  run 3

  expect_file /tmp/fake/events <<<'ping [-c] [1] [127.0.0.1]'
}

PassesArgumentsThroughAsTheyAre() {
  tester=("$packaging/with-ping-adapter" /tmp/adapter printf '[%s]')

  run 'a  b' '' '*'

  expect_status 0
  expect_file /tmp/fake/console < <(printf '[a  b][][*]')
}

NeedsACommand() {
  tester=("$packaging/with-ping-adapter")

  run /tmp/adapter

  expect_status 2
  expect_file /tmp/fake/errors \
    <<<'usage: with-ping-adapter ADAPTER_DIRECTORY COMMAND [ARGUMENT...]'
  expect_file /tmp/fake/events </dev/null
}

run_test "$@"

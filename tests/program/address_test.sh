#!/usr/bin/env bash
# The server's address on the command line.
source "$(dirname "$0")/library.sh"

# Compares console and events with those of a default run that tests the given address.
expect_tested() {
  local address=$1 count=$2
  sed "1s/argc is 2/argc is $count/; 1,2s/10\.0\.0\.5/$address/" \
    "$tests/expected/default_run.console" | expect_file /tmp/fake/console
  expect_file /tmp/fake/events <<END
ping [-c] [10]${address:+ [$address]}
iperf3 [-c]${address:+ [$address]} [-t] [10] [-J]
sleep 11 s 0 ns
iperf3 [-c]${address:+ [$address]} [-t] [10] [-J] [-R]
sleep 11 s 0 ns
END
  expect_status 0
}

IsTheOnlyArgument() {
  run 192.168.1.10

  expect_tested 192.168.1.10 2
}

IsTheSecondOfTwoArguments() {
  run 'anything of any length' 192.168.1.10

  expect_tested 192.168.1.10 3
}

IsEmptyWithoutArguments() {
  run

  expect_tested '' 1
}

IsEmptyWithThreeArguments() {
  run 192.168.1.10 192.168.1.11 192.168.1.12

  expect_tested '' 4
}

MayHaveFifteenCharacters() {
  run 192.168.100.100

  expect_tested 192.168.100.100 2
}

MayLookLikeAnOption() {
  run -h

  expect_tested -h 2
}

IsRefusedWithSixteenCharacters() {
  run 192.168.100.1000

  expect_file /tmp/fake/console </dev/null
  expect_traces address_too_long
}

run_test "$@"

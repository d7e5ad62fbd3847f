#!/usr/bin/env bash
# The units of the result line.
source "$(dirname "$0")/library.sh"

# Puts another rate into one sum of an iperf3 report.
set_rate() {
  sed -i "/\"$2\"/,/}/s/\"bits_per_second\":.*/\"bits_per_second\":\t$3,/" "/tmp/fake/$1.out"
}

# Runs the tester with 943,718,400 bits per second written and 1,000,000,000 read.
run_with_round_rates() {
  set_rate iperf3 sum_sent 943718400
  set_rate iperf3-R sum_received 1000000000
  run 10.0.0.5
}

# Compares the last line of the console with the given line, and the files with it and a blank.
expect_result() {
  tail -n 1 /tmp/fake/console | diff -u <(echo "$1") - || fail "the console has another result"
  expect_file "$logs/connection_test_results.txt" <<<"$1 "
  expect_file "$logs/connection_test_results_history.log" <<<"$1 "
}

OneGivesBitsPerSecond() {
  configure outputFormat=1

  run_with_round_rates

  expect_result "Date = 20261116T054010, Latency = 15 ms, Write Transfer Rate = 943718400 bps,\
 Read Transfer Rate = 1000000000 bps"
}

TwoGivesMebibitsPerSecond() {
  configure outputFormat=2

  run_with_round_rates

  expect_result "Date = 20261116T054010, Latency = 15 ms, Write Transfer Rate = 900 Mebibps,\
 Read Transfer Rate = 953 Mebibps"
}

ThreeGivesMegabitsPerSecond() {
  configure outputFormat=3

  run_with_round_rates

  expect_result "Date = 20261116T054010, Latency = 15 ms, Write Transfer Rate = 943 Megabps,\
 Read Transfer Rate = 1000 Megabps"
}

OutOfRangeCountsAsOneAndSaysSo() {
  configure outputFormat=4

  run 10.0.0.5

  sed '1a outputFormat out of range (1-3). Set to 1.' "$tests/expected/default_run.console" |
    expect_file /tmp/fake/console
  expect_traces default_run
}

run_test "$@"

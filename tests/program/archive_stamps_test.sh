#!/usr/bin/env bash
# Two moves of a history to the archive under one stamp. Each run measures its own number.
source "$(dirname "$0")/library.sh"

# Runs once at the given time, as the run of that number.
run_at() {
  echo "round-trip min/avg/max/stddev = $2/$2/$2/$2 ms" >/tmp/fake/ping.out
  set_clock "$1"
  run tester 192.168.1.10
}

# Prints the histories, archived or not, each with the numbers of the runs that it holds.
print_numbers() {
  cd "$logs"
  local file
  for file in archive/* ping_history.log connection_test_results_history.log; do
    if [[ -e $file ]]; then
      echo "$file:" "$(sed -E 's/.*Latency = //; s/^[^ ]*,//; s/^([0-9]+).*/\1/' "$file" |
        paste --serial --delimiters ' ')"
    fi
  done
}

# The twentieth run has the start of the tenth, since 02:30 comes twice that night.
ArchiveStamps.ReplaceTheEarlierArchiveAfterTenRunsInAnHourThatComesTwice() {
  export TZ=CET-1CEST,M3.5.0,M10.5.0/3
  configure doIperf3Tests=false
  local number
  for number in {1..20}; do
    run_at "2026-10-24 23:30 UTC + $((6 * number)) min" "$number"
  done

  expect_file <(print_numbers) <<END
archive/connection_test_results_history_20261025T023010.log: 11 12 13 14 15 16 17 18 19 20
archive/ping_history_20261025T023000.log: 11 12 13 14 15 16 17 18 19 20
END
}

ArchiveStamps.KeepAllRunsOfEveryHourInAnHourThatComesTwice() {
  export TZ=CET-1CEST,M3.5.0,M10.5.0/3
  configure doIperf3Tests=false
  local number
  for number in {1..24}; do
    run_at "2026-10-24 15:00 UTC + $number hours + $((number * 7 % 15)) min" "$number"
  done

  expect_file <(print_numbers) <<END
archive/connection_test_results_history_20261025T021010.log: 1 2 3 4 5 6 7 8 9 10
archive/connection_test_results_history_20261025T120510.log: 11 12 13 14 15 16 17 18 19 20
archive/ping_history_20261025T021000.log: 1 2 3 4 5 6 7 8 9 10
archive/ping_history_20261025T120500.log: 11 12 13 14 15 16 17 18 19 20
ping_history.log: 21 22 23 24
connection_test_results_history.log: 21 22 23 24
END
}

# As when ping is missing: such a run is over in some milliseconds.
ArchiveStamps.ReplaceTheEarlierArchiveAfterTwentyRunsInOneSecond() {
  configure doIperf3Tests=false numPings=0
  local number
  for number in {1..20}; do
    run_at '2026-11-16 05:40:00' "$number"
  done

  expect_file <(print_numbers) <<END
archive/connection_test_results_history_20261116T054000.log: 11 12 13 14 15 16 17 18 19 20
archive/ping_history_20261116T054000.log: 11 12 13 14 15 16 17 18 19 20
END
}

set_up
"$1"

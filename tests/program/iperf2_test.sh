#!/usr/bin/env bash
# iperf2, which only a program of the test's own can switch on.
source "$(dirname "$0")/library.sh"

# Makes the driver the program, and the fake tool the iperf2 client that it finds.
use_iperf2_driver() {
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  cp "$tests/fake_tool" /tmp/bin/iperf
  tester=(env PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" iperf2_driver)
}

# What the history report prints of the report line that the fake client gives.
history_block() {
  cat <<END

= IPERF2 history $1 ====================================
date 20261120134858
client ip 127.0.0.1
server ip 127.0.0.1
client tcp port 51142
server tcp port 5605
transfer ID 1
test time 0.0-1.0
length 2342125632 
Bps 18450505604
END
}

LeavesItsReportButNoRateInARun() {
  use_iperf2_driver
  configure debugConfFile=true debugPrintLast=true debugPrintHistory=true doPingTests=false \
    doIperf3Tests=false

  run 10.0.0.5

  expect_console iperf2_alone
  expect_traces iperf2_alone
}

RunsBetweenPingAndIperf3() {
  use_iperf2_driver

  run 10.0.0.5

  expect_file /tmp/fake/events <<END
ping [-c] [10] [10.0.0.5]
iperf [-c] [10.0.0.5] [-y] [C] [-t] [10]
sleep 11 s 0 ns
iperf3 [-c] [10.0.0.5] [-t] [10] [-J]
sleep 11 s 0 ns
iperf3 [-c] [10.0.0.5] [-t] [10] [-J] [-R]
sleep 11 s 0 ns
END
}

GivesItsRateToTheResultLineWhenItsReportIsRead() {
  use_iperf2_driver
  configure debugPrintLast=true

  run 10.0.0.5 exec read result

  expect_console iperf2_read
  expect_traces iperf2_read
}

TurnsItsHistoryOverAtTenReports() {
  use_iperf2_driver
  local hour
  for hour in 05 06 07 08 09 10 11 12 13 14; do
    set_clock "2026-11-16 $hour:40:00"
    : >/tmp/fake/events
    run 10.0.0.5 exec read report
  done

  expect_console iperf2_tenth_report
  expect_traces iperf2_tenth_report
}

TurnsItsHistoryOverAtTwentyFiveReports() {
  use_iperf2_driver
  configure debugPrintHistory=true
  make_log_directories
  local number
  for number in {1..25}; do
    cat /tmp/fake/iperf.out
    echo "no report $number"
  done >"$logs/iperf2_history.log"
  cp "$logs/iperf2_history.log" /tmp/fake/history

  run 10.0.0.5 report

  local archived=$logs/archive/iperf2_history_20261116T054000.log
  {
    echo 'current time 20261116T054000 name  argc is 0. Server IP address: 10.0.0.5'
    for number in {0..24}; do
      history_block "$number"
    done
    printf '(mv  "%s" "%s") 2>nul\n\n' "$logs/iperf2_history.log" "$archived"
  } | expect_file /tmp/fake/console
  expect_same /tmp/fake/history "$archived"
  [[ ! -e $logs/iperf2_history.log ]] || fail "the full history is still there"
}

run_test "$@"

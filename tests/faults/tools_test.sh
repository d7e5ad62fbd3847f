#!/usr/bin/env bash
# Each tool that a run calls, broken in each way.
source "$(dirname "$0")/library.sh"

print_nothing() {
  local name
  for name in "$@"; do
    : >"/tmp/fake/$name.out"
  done
}

# Makes a fake tool print a recorded failure and fail.
fail_with() {
  cp "$tests/../data/$2" "/tmp/fake/$1.out"
  echo 'exit 1' >"/tmp/fake/$1.end"
}

# Has a fake tool killed when it has printed half of its report.
kill_in_mid_output() {
  local name
  for name in "$@"; do
    truncate --size $(($(wc -c <"/tmp/fake/$name.out") / 2)) "/tmp/fake/$name.out"
    # shellcheck disable=SC2016 # the fake tool's own number
    echo 'kill -KILL $$' >"/tmp/fake/$name.end"
  done
}

print_with_crlf() {
  local name
  for name in "$@"; do
    sed -i 's/$/\r/' "/tmp/fake/$name.out"
  done
}

ten_megabytes() {
  printf '%0*d' 10000000 0
}

print_ten_megabytes() {
  local name
  for name in "$@"; do
    ten_megabytes >"/tmp/fake/$name.out"
  done
}

# Takes away a tool. The fake tools, which need cat too, keep theirs.
take_away() {
  sed -i 's,^cat ,/usr/bin/cat ,' /tmp/bin/ping "$installation/iperf3"
  rm "/tmp/bin/$1"
}

# Puts a script, which comes from standard input, in a tool's place.
replace() {
  take_away "$1"
  cat >"/tmp/bin/$1"
  chmod +x "/tmp/bin/$1"
}

replace_by_failure() {
  replace "$1" <<END
#!/bin/sh
echo '$1: it does not work' >&2
exit 1
END
}

PingIsMissing() {
  take_away ping

  run_now

  expect_changes
}

PingFails() {
  fail_with ping ping/inetutils_2.4_no_reply.log

  run_now

  expect_changes
}

PingIsKilledInMidOutput() {
  kill_in_mid_output ping

  run_now

  expect_changes
}

PingPrintsNothing() {
  print_nothing ping

  run_now

  expect_changes
}

PingPrintsTenMegabytesOnOneLine() {
  print_ten_megabytes ping

  run_now

  expect_changes
}

PingPrintsASummaryOfTenMegabytes() {
  printf 'round-trip min/avg/max/stddev = %s/1/2/3 ms\n' "$(ten_megabytes)" >/tmp/fake/ping.out

  run_now

  expect_changes
}

PingPrintsCrlf() {
  print_with_crlf ping

  run_now

  expect_changes
}

# The program then reads what ping printed an hour before.
TeeIsMissing() {
  take_away tee

  run_now

  compare_with_healthy
}

TeeFails() {
  replace_by_failure tee

  run_now

  compare_with_healthy
}

TeeIsKilledInMidOutput() {
  replace tee <<'END'
#!/bin/sh
/usr/bin/head -c 60 | /usr/bin/tee "$1"
kill -KILL $$
END

  run_now

  expect_changes
}

CatIsMissing() {
  take_away cat

  run_now

  expect_changes
}

CatFails() {
  replace_by_failure cat

  run_now

  expect_changes
}

CatIsKilledInMidOutput() {
  replace cat <<'END'
#!/bin/sh
/usr/bin/head -c 30 "$1"
kill -KILL $$
END

  run_now

  expect_changes
}

MkdirIsMissing() {
  take_away mkdir

  run_now

  expect_changes
}

MkdirIsMissingInAFirstRun() {
  take_away mkdir
  rm -rf "$HOME/Library"

  run_now

  compare_with_healthy
}

MkdirFails() {
  replace_by_failure mkdir

  run_now

  expect_changes
}

MvIsMissing() {
  start_from 9
  take_away mv

  run_now

  expect_changes
}

MvFails() {
  start_from 9
  replace_by_failure mv

  run_now

  expect_changes
}

MvIsKilledBeforeItMoves() {
  start_from 9
  replace mv <<'END'
#!/bin/sh
kill -KILL $$
END

  run_now

  expect_changes
}

MvIsKilledInMidCopy() {
  start_from 9
  replace mv <<'END'
#!/bin/sh
/usr/bin/head -c 50 "$1" >"$2"
kill -KILL $$
END

  run_now

  compare_with_healthy
}

Iperf3IsMissing() {
  rm "$installation/iperf3"

  run_now

  expect_changes
}

Iperf3Fails() {
  fail_with iperf3 iperf3/3.12/refused.json
  fail_with iperf3-R iperf3/3.12/server_busy.json

  run_now

  expect_changes
}

Iperf3IsKilledInMidOutput() {
  kill_in_mid_output iperf3 iperf3-R

  run_now

  expect_changes
}

Iperf3PrintsNothing() {
  print_nothing iperf3 iperf3-R

  run_now

  expect_changes
}

Iperf3PrintsTenMegabytesOnOneLine() { # --untraced
  print_ten_megabytes iperf3 iperf3-R

  run_now

  expect_changes
}

Iperf3PrintsAnAddressOfTenMegabytes() { # --untraced
  {
    sed '/"local_host"/,$d' /tmp/fake/iperf3.out
    printf '"local_host":\t"%s",\n' "$(ten_megabytes)"
    sed '1,/"local_host"/d' /tmp/fake/iperf3.out
  } >/tmp/fake/report
  mv /tmp/fake/report /tmp/fake/iperf3.out

  run_now

  expect_changes
}

Iperf3PrintsItsReportOnOneLineOfTenMegabytes() {
  { tr -d '\n' </tmp/fake/iperf3.out && ten_megabytes; } >/tmp/fake/report
  mv /tmp/fake/report /tmp/fake/iperf3.out

  run_now

  expect_changes
}

Iperf3PrintsCrlf() {
  print_with_crlf iperf3 iperf3-R

  run_now

  expect_changes
}

# Runs iperf2 and reads its report, which only a program of the test's own does.
use_iperf2_driver() {
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  cp "$tests/fake_tool" /tmp/bin/iperf
  tester=(env PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" iperf2_driver)
  arguments=(10.0.0.5 exec read report result)
  histories=(iperf2_history connection_test_results_history)
  start_from 1
}

IperfIsMissing() {
  use_iperf2_driver
  rm /tmp/bin/iperf

  run_now

  expect_changes
}

IperfFails() {
  use_iperf2_driver
  fail_with iperf iperf2/2.2.1/refused.csv

  run_now

  expect_changes
}

IperfIsKilledInMidOutput() {
  use_iperf2_driver
  kill_in_mid_output iperf

  run_now

  expect_changes
}

IperfPrintsNothing() {
  use_iperf2_driver
  print_nothing iperf

  run_now

  expect_changes
}

IperfPrintsTenMegabytesOnOneLine() { # --untraced
  use_iperf2_driver
  print_ten_megabytes iperf

  run_now

  expect_changes
}

IperfPrintsCrlf() {
  use_iperf2_driver
  print_with_crlf iperf

  run_now

  expect_changes
}

run_fault "$@"

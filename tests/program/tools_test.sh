#!/usr/bin/env bash
# Each test breaks one of the tools that a run calls; then the program runs, an hour after another run.
source "$(dirname "$0")/library.sh"

Ping.IsMissing() {
  take_away ping
}

Ping.Fails() {
  fail_with ping ping/inetutils_2.4_no_reply.log
}

Ping.IsKilledInMidOutput() {
  kill_in_mid_output ping
}

Ping.PrintsNothing() {
  : >/tmp/fake/ping.out
}

Ping.PrintsTenMegabytesOnOneLine() {
  ten_megabytes >/tmp/fake/ping.out
}

Ping.PrintsASummaryOfTenMegabytes() {
  printf 'round-trip min/avg/max/stddev = %s/1/2/3 ms\n' "$(ten_megabytes)" >/tmp/fake/ping.out
}

Ping.PrintsCrlf() {
  sed -i 's/$/\r/' /tmp/fake/ping.out
}

# The program then reads what ping printed an hour before.
Tee.IsMissing() {
  take_away tee
}

Tee.Fails() {
  replace_by_failure tee
}

Tee.IsKilledInMidOutput() {
  replace tee <<'END'
#!/bin/sh
/usr/bin/head -c 60 | /usr/bin/tee "$1"
kill -KILL $$
END
}

Cat.IsMissing() {
  take_away cat
}

Cat.Fails() {
  replace_by_failure cat
}

Cat.IsKilledInMidOutput() {
  replace cat <<'END'
#!/bin/sh
/usr/bin/head -c 30 "$1"
kill -KILL $$
END
}

Mkdir.IsMissing() {
  take_away mkdir
}

Mkdir.Fails() {
  replace_by_failure mkdir
}

Iperf3.IsMissing() {
  rm "$installation/iperf3"
}

Iperf3.Fails() {
  fail_with iperf3 iperf3/3.12/refused.json
  fail_with iperf3-R iperf3/3.12/server_busy.json
}

Iperf3.IsKilledInMidOutput() {
  kill_in_mid_output iperf3 iperf3-R
}

Iperf3.PrintsNothing() {
  : >/tmp/fake/iperf3.out
  : >/tmp/fake/iperf3-R.out
}

Iperf3.PrintsTenMegabytesOnOneLine() { # --untraced
  ten_megabytes | tee /tmp/fake/iperf3.out >/tmp/fake/iperf3-R.out
}

Iperf3.PrintsAnAddressOfTenMegabytes() { # --untraced
  {
    sed '/"local_host"/,$d' /tmp/fake/iperf3.out
    printf '"local_host":\t"%s",\n' "$(ten_megabytes)"
    sed '1,/"local_host"/d' /tmp/fake/iperf3.out
  } >/tmp/fake/report
  mv /tmp/fake/report /tmp/fake/iperf3.out
}

Iperf3.PrintsItsReportOnOneLineOfTenMegabytes() {
  { tr -d '\n' </tmp/fake/iperf3.out && ten_megabytes; } >/tmp/fake/report
  mv /tmp/fake/report /tmp/fake/iperf3.out
}

Iperf3.PrintsCrlf() {
  sed -i 's/$/\r/' /tmp/fake/iperf3.out /tmp/fake/iperf3-R.out
}

set_up
run_an_hour_before tester 192.168.1.10
"$1"
run tester 192.168.1.10
expect_changes "$1" Program.ExtendsItsHistories

#!/usr/bin/env bash
# Each test breaks or changes something for a tester that runs iperf2, reads its report and ends with
# the result; then that tester runs, an hour after another such run.
source "$(dirname "$0")/library.sh"

Iperf2.IsMissing() {
  take_away iperf
}

Iperf2.Fails() {
  fail_with iperf iperf2/2.2.1/refused.csv
}

Iperf2.IsKilledInMidOutput() {
  kill_in_mid_output iperf
}

Iperf2.PrintsNothing() {
  : >/tmp/fake/iperf.out
}

Iperf2.PrintsTenMegabytesOnOneLine() { # --untraced
  ten_megabytes >/tmp/fake/iperf.out
}

Iperf2.PrintsCrlf() {
  sed -i 's/$/\r/' /tmp/fake/iperf.out
}

Iperf2.IsTracedWithTheFlagForTheLatestReport() {
  configure debugPrintLast=true
}

# Lines that are no reports do not count.
Iperf2.MovesItsHistoryAtTenReports() {
  local report
  for report in {2..9}; do
    echo "line $report"
    cat /tmp/fake/earlier/iperf.out
  done >>"$logs/iperf2_history.log"
}

set_up
install_iperf2
run_an_hour_before iperf2_tester 192.168.1.10 exec read report result
"$1"
run iperf2_tester 192.168.1.10 exec read report result
expect_changes "$1" Program.MeasuresWithIperf2

#!/usr/bin/env bash
# Reports that break off: at every byte, or in the short form at some of them. What comes of each cut
# stands in expected/TEST.table.
source "$(dirname "$0")/library.sh"

# Runs on all cuts of a tool's recorded report: test, tool, report, how many bytes to the next cut.
run_on_cuts() {
  /usr/bin/python3 -B "$program_tests/report_cuts.py" "$2" "$program_tests/../data/$3" \
    "$program_tests/expected/$1.table" "$(short_or_long "$4" 1)"
}

# The waits after an iperf run take 3 ms then.
test_iperf3_only() {
  configure doPingTests=false iperfTestTime=-1
  : >/tmp/fake/iperf3.out
  : >/tmp/fake/iperf3-R.out
}

ReportCuts.OfPing() {
  configure doIperf3Tests=false

  run_on_cuts "$1" ping ping/macos_reply.log 12
}

ReportCuts.OfIperf3Forward() {
  test_iperf3_only

  run_on_cuts "$1" iperf3 iperf3/3.0.11/forward.json 98
}

ReportCuts.OfIperf3Reverse() {
  test_iperf3_only

  run_on_cuts "$1" iperf3-R iperf3/3.12/reverse.json 98
}

ReportCuts.OfIperf2() {
  configure iperfTestTime=-1
  install_iperf2
  # Else a run would miss it, and say so.
  make_log_directories
  touch "$logs/iperf2_latest_forward_csv.log"

  run_on_cuts "$1" iperf iperf2/2.2.1/forward.csv 7
}

set_up
"$1" "$1"

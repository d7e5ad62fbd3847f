#!/usr/bin/env bash
# Two runs at once in the same log directory. The tools of run a measure 11, those of b 22, of c 33.
source "$(dirname "$0")/library.sh"

kept=(ping_history ping_history_verbose iperf3_history_forward iperf3_history_reverse
  connection_test_results_history)

# Makes the tools of the run $1, whose measurements begin with the digit $2.
make_tools() {
  local run=/tmp/fake/$1
  mkdir "$run"
  echo "round-trip min/avg/max/stddev = $2$2.111/$2$2.222/$2$2.333/$2.444 ms" >"$run/ping.out"
  local report
  for report in iperf3 iperf3-R; do
    sed -E "s/(timesecs|local_port|bits_per_second)(\":\t)./\1\2$2/" "/tmp/fake/$report.out" \
      >"$run/$report.out"
  done
}

# Runs the tester with the tools of the run $1; the rest is set in its environment.
run_with_tools_of() {
  run env FAKE_DIR="/tmp/fake/$1" "${@:2}" PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" \
    connTester 192.168.1.10
}

# The live file of a history.
live_file() {
  case $1 in
    iperf3_*) echo "$logs/$1_csv.log" ;;
    *) echo "$logs/$1.log" ;;
  esac
}

# Empties the log directory but for nine lines in each history.
reset_files() {
  rm -rf "$logs" /tmp/work/* /tmp/fake/a/calls
  make_log_directories
  local history run
  for history in "${kept[@]}"; do
    [[ $history == *_verbose ]] || seq --format 'line %.0f' 9 >"$(live_file "$history")"
  done
  for run in a b c; do
    cp /tmp/fake/clock "/tmp/fake/$run"
  done
}

# Three runs with tools of their own, and what each adds to each file when it is alone, in "added".
prepare_runs() {
  make_tools a 1
  make_tools b 2
  make_tools c 3
  local run history
  for run in a b c; do
    reset_files
    run_with_tools_of "$run"
    for history in "${kept[@]}"; do
      find "$logs" \( -path "$(live_file "$history")" -o -name "${history}_2*" \) -exec cat {} + |
        sed "/^line [1-9]$/d; s/^/$run $history /"
    done
  done >/tmp/fake/added
  reset_files
}

# Prints whose lines a history holds: "9" stands for the nine earlier ones, "?" for one that no run adds
# when it is alone, and brackets for the archive.
whose_lines() {
  local file
  for file in "$logs/archive/$1"_2*.log "$(live_file "$1")"; do
    [[ -e $file ]] || continue
    awk -v name="$1" -v archived="$([[ $file == */archive/* ]] && echo yes)" '
      NR == FNR { if ($2 == name) { run = $1; sub(/^[^ ]+ [^ ]+ /, ""); whose[$0] = run }; next }
      /^line [1-9]$/ { row = row (/9/ ? "9" : ""); next }
      { row = row ($0 in whose ? whose[$0] : "?") }
      END { printf "%s", archived ? "[" row "]" : row }' /tmp/fake/added "$file"
  done
}

# Prints whose lines each history holds, behind a name.
print_row() {
  printf '%-18s' "$1"
  local history
  for history in "${kept[@]}"; do
    printf ' %-9s' "$(whose_lines "$history")"
  done
  echo
}

# Puts a meeting point in front of each tool.
make_meeting_points() {
  mkdir /tmp/tools
  mv /tmp/bin/{ping,cat,mkdir,mv,tee} "$installation/iperf3" /tmp/tools
  local tool
  for tool in /tmp/bin/{ping,cat,mkdir,mv,tee} "$installation/iperf3"; do
    cp "$program_tests/meeting_point" "$tool"
  done
}

run_b_at_each_tool_of_a() {
  local meeting
  for meeting in 'mkdir 1' 'tee 1' 'cat 1' 'mv 1' 'iperf3 1' 'cat 2' 'mv 2' 'iperf3 2' \
    'cat 3' 'mv 3' 'mv 4'; do
    reset_files
    run_with_tools_of a "MEETING=$meeting" OTHERS=b
    print_row "$meeting"
  done
}

# Lets run b pass when a tool of run a has printed half of its report.
run_b_in_mid_report() {
  local report=/tmp/fake/a/$1
  mv "$report.out" "$report.whole"
  local half=$(($(wc -c <"$report.whole") / 2))
  head -c "$half" "$report.whole" >"$report.out"
  cat >"$report.end" <<END
until [ -s "$logs/$2" ]; do :; done
"$program_tests/let_pass" b
/usr/bin/tail -c +$((half + 1)) "$report.whole"
END
  reset_files
  run_with_tools_of a
  print_row "$1, half"
  rm "$report.end"
  mv "$report.whole" "$report.out"
}

TwoRuns.LoseWhatTheLatestFilesShareWhenOneIsInTheOther() {
  make_meeting_points

  {
    echo 'a meets b at       ping      verbose   forward   reverse   results'
    run_b_at_each_tool_of_a
    run_b_in_mid_report ping ping_latest.log
    run_b_in_mid_report iperf3 iperf3_latest.log
    run_b_in_mid_report iperf3-R iperf3_latest-R.log
  } | sed 's/ *$//' >/tmp/fake/table

  expect_recorded "$program_tests/expected/$1.table" /tmp/fake/table
}

# Run a has counted ten lines. Run b adds its line and moves the file, run c starts a new one, and
# run a moves that, under the stamp that it shares with run b.
TwoRuns.ReplaceAnArchiveWhenAThirdIsThere() {
  make_meeting_points

  run_with_tools_of a 'MEETING=mv 1' 'OTHERS=b c'

  expect_file <(whose_lines ping_history) < <(printf '[c]')
}

# Under proot the tools are so slow that a run may read half a report of the other, and end by it.
TwoRuns.AddOneLineEachToTheResultsAndLoseNoEarlierLine() { # --untraced
  /usr/bin/python3 -B "$program_tests/two_runs.py" "$(short_or_long 20 200)"
}

set_up
export LET_PASS=$program_tests/let_pass FAKE_CLOCK
prepare_runs
"$1" "$1"

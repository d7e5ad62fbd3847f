#!/usr/bin/env bash
# Two runs at once in the same log directory. The tools of run a measure 11, those of b 22, of c 33.
source "$(dirname "$0")/library.sh"

kept=(ping_history ping_history_verbose iperf3_history_forward iperf3_history_reverse
  connection_test_results_history)

export LET_PASS=$fault_tests/let_pass FAKE_CLOCK

# Makes the tools of the run $1, whose measurements begin with the digit $2.
make_tools() {
  local run=/tmp/fake/$1
  mkdir "$run"
  touch "$run/events"
  echo "round-trip min/avg/max/stddev = $2$2.111/$2$2.222/$2$2.333/$2.444 ms" >"$run/ping.out"
  local report
  for report in iperf3 iperf3-R; do
    sed -E "s/(timesecs|local_port|bits_per_second)(\":\t)./\1\2$2/" "/tmp/fake/$report.out" \
      >"$run/$report.out"
  done
}

# Starts the tester with the tools of the run $1; the rest is put before the command.
run_with_tools_of() {
  FAKE_DIR=/tmp/fake/$1 "${@:2}" "${tester[@]}" 10.0.0.5
}

set_clocks() {
  local run
  for run in a b c; do
    date --utc --date "$1" +%s >"/tmp/fake/$run/clock"
  done
}

# Empties the log directory but for nine lines in each history.
reset_files() {
  rm -rf "$logs" /tmp/work/* /tmp/fake/a/calls
  make_log_directories
  local history
  for history in "${histories[@]}"; do
    seq --format 'line %.0f' 9 >"$(live_file "$history" "$logs")"
  done
  set_clocks '2026-11-16 05:40:00'
}

# Three runs with tools of their own, and what each adds to each file when it is alone, in "added".
prepare_runs() {
  make_tools a 1
  make_tools b 2
  make_tools c 3
  local run file
  for run in a b c; do
    reset_files
    run_with_tools_of "$run" >/dev/null
    for file in "${kept[@]}"; do
      history_lines "$file" "$logs" | sed "/^line [1-9]$/d; s/^/$run $file /"
    done
  done >/tmp/fake/added
}

# Prints whose lines a file holds: "9" stands for the nine earlier ones, "?" for one that no run
# adds when it is alone, and brackets for the archive.
whose_lines() {
  local file
  for file in "$logs/archive/$1"_2*.log "$(live_file "$1" "$logs")"; do
    [[ -e $file ]] || continue
    awk -v name="$1" -v archived="$([[ $file == */archive/* ]] && echo yes)" '
      NR == FNR { if ($2 == name) { run = $1; sub(/^[^ ]+ [^ ]+ /, ""); whose[$0] = run }; next }
      /^line [1-9]$/ { row = row (/9/ ? "9" : ""); next }
      { row = row ($0 in whose ? whose[$0] : "?") }
      END { printf "%s", archived ? "[" row "]" : row }' /tmp/fake/added "$file"
  done
}

print_head() {
  printf '%-18s' 'a meets b at'
  printf ' %-9s' ping verbose forward reverse results
  echo
}

print_row() {
  printf '%-18s' "$1"
  local file
  for file in "${kept[@]}"; do
    printf ' %-9s' "$(whose_lines "$file")"
  done
  echo
}

# Puts a meeting point in front of each tool.
make_meeting_points() {
  mkdir /tmp/tools
  mv /tmp/bin/{ping,cat,mkdir,mv,tee} "$installation/iperf3" /tmp/tools
  sed -i 's,^cat ,/usr/bin/cat ,' /tmp/tools/{ping,iperf3}
  local tool
  for tool in ping cat mkdir mv tee; do
    cp "$fault_tests/meeting_point" "/tmp/bin/$tool"
  done
  cp "$fault_tests/meeting_point" "$installation/iperf3"
}

run_b_at_each_tool_of_a() {
  local meeting
  for meeting in 'mkdir 1' 'tee 1' 'cat 1' 'mv 1' 'iperf3 1' 'cat 2' 'mv 2' 'iperf3 2' \
    'cat 3' 'mv 3' 'mv 4'; do
    reset_files
    run_with_tools_of a env "MEETING=$meeting" OTHERS=b >/dev/null 2>&1
    print_row "$meeting"
  done
}

# Lets run b pass when a tool of run a has printed half of its report.
run_b_in_mid_report() {
  local report=/tmp/fake/a/$1
  mv "$report.out" "$report.whole"
  local half=$(($(wc -c <"$report.whole") / 2))
  head -c "$half" "$report.whole" >"$report.out"
  tail -c "+$((half + 1))" "$report.whole" >"$report.rest"
  cat >"$report.end" <<END
until [ -s "$logs/$2" ]; do :; done
"$LET_PASS" b
/usr/bin/cat "$report.rest"
END
  reset_files
  run_with_tools_of a >/dev/null
  print_row "$1, half"
  rm "$report.end"
  mv "$report.whole" "$report.out"
}

OneInTheOtherLosesWhatTheLatestFilesShare() {
  prepare_runs
  make_meeting_points

  {
    print_head
    run_b_at_each_tool_of_a
    run_b_in_mid_report ping ping_latest.log
    run_b_in_mid_report iperf3 iperf3_latest.log
    run_b_in_mid_report iperf3-R iperf3_latest-R.log
  } | sed 's/ *$//' >/tmp/fake/table

  expect_same "$fault_tests/expected/two_runs.table" /tmp/fake/table
}

# Run a has counted ten lines. Run b adds its line and moves the file, run c starts a new one, and
# run a moves that, under the stamp that it shares with run b.
ThreeAtOnceReplaceAnArchive() {
  prepare_runs
  make_meeting_points
  reset_files

  run_with_tools_of a env 'MEETING=mv 1' 'OTHERS=b c' >/dev/null

  [[ $(whose_lines ping_history) == '[c]' ]] || fail "ping_history: $(whose_lines ping_history)"
}

# Under proot the tools are so slow that a run may read half a report of the other, and end by it.
AddOneLineEachToTheResultsAndLoseNoEarlierLine() { # --untraced
  prepare_runs
  reset_files

  /usr/bin/python3 -B "$fault_tests/two_runs.py" "$(short_or_long 20 200)"
}

LoseNothingBehindALock() {
  prepare_runs
  reset_files

  /usr/bin/python3 -B "$fault_tests/two_runs.py" "$(short_or_long 20 200)" locked
}

run_test "$@"

# shellcheck shell=bash
# Functions for the tests of faults, on top of those for the tests of the whole program.
#
# A test breaks something, lets the program run, and compares all that the run shows and leaves
# with what a run shows and leaves when nothing is broken. Before both, another run has been there,
# with other measurements. The differences stand in expected/TEST.changes: "-" is how it should have
# been, "+" how it became, and each line stands behind the name of its file.
#
# CTest sets KILL_AT beside what it sets for the others. FAULTS=long tries more cuts, kills and pairs of
# runs than usual.
source "$(dirname "${BASH_SOURCE[0]}")/../program/library.sh"

fault_tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
histories=(ping_history iperf3_history_forward iperf3_history_reverse
  connection_test_results_history)

# The arguments of a run.
arguments=(10.0.0.5)

# Moves to another home directory.
move_home() {
  rm -rf "$HOME"
  HOME=$1
  logs=$1/Library/Logs/Qelmora
}

# The live file of a history in the log directory $2.
live_file() {
  case $1 in
    iperf3_*) echo "$2/$1_csv.log" ;;
    *) echo "$2/$1.log" ;;
  esac
}

# All lines of a history in the log directory $2, archived or not.
history_lines() {
  find "$2" \( -path "$(live_file "$1" "$2")" -o -path "$2/archive/$1_2*.log" \) -exec cat {} +
}

# Prints a file, each line behind the name $1. Of a report that a tool has printed it tells only
# whose it is; of numbered lines in a row, the first and the last; of a very long line, the length.
print_named() {
  local tool=${1%.log}
  tool=${tool/_latest/}
  tool=${tool/iperf2/iperf}
  if [[ ! -s $2 ]]; then
    echo "$1: (empty)"
  elif cmp -s "$2" "/tmp/fake/$tool.out"; then
    echo "$1: (what $tool has printed)"
  elif cmp -s "$2" "/tmp/fake/earlier/$tool.out"; then
    echo "$1: (what $tool printed an hour before)"
  else
    awk -v name="$1" '
      function end_row() {
        if (last > first) { print name ": ... line " last }
        last = 0
      }
      /^line [0-9]+$/ && last && $2 == last + 1 { last = $2; next }
      { end_row() }
      /^line [0-9]+$/ { first = last = $2 }
      { gsub(/\r/, "\\r") }
      { print name ": " (length($0) > 500 ? "(a line of " length($0) " characters)" : $0) }
      END { end_row() }' "$2"
    [[ -z $(tail -c 1 "$2") ]] || echo "$1: (no newline at the end)"
  fi
}

# Prints all that the last run has shown, and all files.
print_state() {
  chmod -R u+rwX "$HOME" /tmp/work
  print_named console /tmp/fake/console
  print_named errors /tmp/fake/errors
  echo "exit status: $status"
  find "$HOME" /tmp/work /tmp/disk -mindepth 1 | sort -u | while IFS= read -r path; do
    if [[ -L $path ]]; then
      echo "${path#"$logs"/} -> $(readlink "$path")"
    elif [[ -d $path ]]; then
      echo "${path#"$logs"/}/"
    else
      print_named "${path#"$logs"/}" "$path"
    fi
  done
}

run_now() {
  set_clock '2026-11-16 05:40:00'
  run "${arguments[@]}"
}

run_an_hour_later() {
  set_clock '2026-11-16 06:40:00'
  run "${arguments[@]}"
}

# A run an hour before, whose tools measure something else.
run_before() {
  rm -rf "$HOME" /tmp/work/* /tmp/fake/{earlier,now}
  mkdir -p "$HOME" /tmp/fake/{earlier,now}
  cp /tmp/fake/*.out /tmp/fake/now
  sed -i 's/14.123.15.456/24.123\/25.456/; s/17951806/17951770/; s/"bits_per_second":\t/&2/
    s/20261120134858/20261120124858/; s/18450505604/28450505604/' /tmp/fake/*.out
  set_clock '2026-11-16 04:40:00'
  run "${arguments[@]}"
  mv /tmp/fake/*.out /tmp/fake/earlier
  mv /tmp/fake/now/*.out /tmp/fake
}

# Leaves the files of a run before, with so many lines in each history.
prepare_files() {
  run_before
  local history
  for history in "${histories[@]}"; do
    {
      seq --format 'line %.0f' 2 "$1"
      cat "$(live_file "$history" "$logs")"
    } >/tmp/fake/lines
    cp /tmp/fake/lines "$(live_file "$history" "$logs")"
  done
  rm -rf /tmp/fake/before
  cp -a "$HOME" /tmp/fake/before
}

# The same; and notes what a run makes of them when nothing is broken.
start_from() {
  prepare_files "$1"
  run_now
  print_state >/tmp/fake/healthy
  rm -rf "$HOME" /tmp/work/*
  cp -a /tmp/fake/before "$HOME"
}

# Makes the archive a link to a directory that is not there yet.
link_archive() {
  rmdir "$logs/archive"
  ln -s /tmp/disk/archive "$logs/archive"
}

# Compares what the last run has shown and left with the healthy run.
compare_with_healthy() {
  print_state >/tmp/fake/state
  { diff -U 0 /tmp/fake/healthy /tmp/fake/state || true; } |
    sed '1,2d; /^@@/d' >/tmp/fake/changes
  expect_same "$fault_tests/expected/$row.changes" /tmp/fake/changes
}

# The same; and no history may have lost or doubled a line.
expect_changes() {
  compare_with_healthy
  expect_earlier_lines
}

# Fails unless each history holds all lines that it held before, each once, and at most one more.
expect_earlier_lines() {
  local history
  for history in "${histories[@]}"; do
    history_lines "$history" "/tmp/fake/before${logs#"$HOME"}" | sort >/tmp/fake/lines_before
    history_lines "$history" "$logs" | sort >/tmp/fake/lines_now
    comm -23 /tmp/fake/lines_before /tmp/fake/lines_now >/tmp/fake/lost
    comm -13 /tmp/fake/lines_before /tmp/fake/lines_now >/tmp/fake/added
    expect_file /tmp/fake/lost </dev/null
    (($(wc -l </tmp/fake/added) <= 1)) || fail "more than one line has been added to $history"
    ! grep -Fxq -f /tmp/fake/added /tmp/fake/lines_before || fail "a line of $history is doubled"
  done
}

# Chooses the second number when FAULTS says so.
short_or_long() {
  if [[ ${FAULTS-} == long ]]; then echo "$2"; else echo "$1"; fi
}

# Runs the test of a fault.
run_fault() {
  row=$1
  set_up
  mkdir -p /tmp/disk
  # A short output, so that the differences are short.
  sed -i '1p; /^round-trip/p; d' /tmp/fake/ping.out
  start_from 1
  "$row"
}

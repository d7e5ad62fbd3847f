# shellcheck shell=bash
# Functions for the tests of the program, on top of those for all tests that run one.
#
# A run is compared whole (see print_run). A few runs stand whole in expected/TEST.run. Of any other, what
# is different from one of them stands in expected/TEST.changes: "-" is how it is there, "+" how it is in
# the test.
#
# CTest sets KILL_AT beside what it sets for all. FAULTS=long tries more cuts, kills and pairs of runs
# than usual.
source "$(dirname "${BASH_SOURCE[0]}")/../support/program.sh"

program_tests=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Has a command run before the test, at the time $1.
run_before() {
  set_clock "2026-11-16 $1"
  run "${@:2}"
  : >/tmp/fake/events
  set_clock '2026-11-16 05:40:00'
}

# Has a command run an hour before the test, with tools that measure something else.
run_an_hour_before() {
  mkdir /tmp/fake/{earlier,now}
  cp /tmp/fake/*.out /tmp/fake/now
  sed -i 's/14.123.15.456/24.123\/25.456/; s/17951806/17951770/; s/"bits_per_second":\t/&2/
    s/20261120134858/20261120124858/; s/18450505604/28450505604/' /tmp/fake/*.out
  run_before 04:40:00 "$@"
  mv /tmp/fake/*.out /tmp/fake/earlier
  mv /tmp/fake/now/*.out /tmp/fake
}

# Installs a tester that runs iperf2, which the program itself cannot be told, and the fake iperf.
install_iperf2() {
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  cp "$support/fake_tool" /tmp/bin/iperf
}

iperf2_tester() {
  on_fake_tools iperf2_driver "$@"
}

# Prints the paths of all histories that are not archived.
live_histories() {
  find -H "$logs" -maxdepth 1 -name '*_history*' ! -name '*_verbose.log'
}

# Gives each history so many lines, of which the last one stays as it is.
fill_histories() {
  local history last
  for history in $(live_histories); do
    last=$(tail -n 1 "$history")
    { seq --format 'line %.0f' 2 "$1" && echo "$last"; } >"$history"
  done
}

# Takes a command away from the program.
take_away() {
  rm "/tmp/bin/$1"
}

# Puts a script, which comes from standard input, in a command's place.
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

# Makes a fake tool print a recorded failure and fail.
fail_with() {
  cp "$program_tests/../data/$2" "/tmp/fake/$1.out"
  echo 'exit 1' >"/tmp/fake/$1.end"
}

# Has fake tools killed when they have printed half of their reports.
kill_in_mid_output() {
  local name
  for name in "$@"; do
    truncate --size $(($(wc -c <"/tmp/fake/$name.out") / 2)) "/tmp/fake/$name.out"
    # shellcheck disable=SC2016 # the fake tool's own number
    echo 'kill -KILL $$' >"/tmp/fake/$name.end"
  done
}

ten_megabytes() {
  printf '%0*d' 10000000 0
}

# Chooses the second number when FAULTS says so.
short_or_long() {
  if [[ ${FAULTS-} == long ]]; then echo "$2"; else echo "$1"; fi
}

# Compares the last run with the whole one that stands under that name.
expect_run() {
  print_run >/tmp/fake/run
  expect_recorded "$program_tests/expected/$1.run" /tmp/fake/run
}

# Compares the last run with what stands under the name $1: the changes from the whole run $2.
expect_changes() {
  print_run >/tmp/fake/run
  {
    printf -- '--- %s\n+++ %s\n' "$2" "$1"
    { diff -U 0 "$program_tests/expected/$2.run" /tmp/fake/run || (($? == 1)); } |
      sed '1,2d; /^@@/d'
  } >/tmp/fake/changes
  expect_recorded "$program_tests/expected/$1.changes" /tmp/fake/changes
}

#!/usr/bin/env bash
# connWatch run on a broken network: what it says, its status, and what is left in the log directory.
source "$(dirname "$0")/library.sh"

# What a test starts can be told by its environment.
mark=GUARDED_BY=$1-$$

print_guarded_run() {
  print_masked says /tmp/fake/console | sed "$same_error"
  print_masked complains /tmp/fake/errors
  echo "status: $status"
  (cd "$logs" && find . -type f -printf '%P\n' | sort)
  mask "$logs/connection_test_results.txt"
}

left_processes() {
  grep -lszxF "$mark" /proc/[0-9]*/environ | xargs -r dirname | xargs -r -I '{}' cat '{}/comm'
}

# Makes a guarded run, and compares it with the recorded one.
expect_guarded_run() {
  run env "$mark" "$prefix/bin/connWatch" run "$1"

  [[ -z $(left_processes) ]] || fail "left are: $(left_processes)"
  print_guarded_run >/tmp/fake/run
  expect_recorded "$networks/expected/$row.run" /tmp/fake/run
}

IsOkOnASoundNetwork() {
  start_server

  expect_guarded_run $server
}

SaysThatTheServerRefuses() {
  expect_guarded_run $server
}

SaysThatTheServerIsBusy() {
  start_server
  iperf3 --client $server --time 100 >/tmp/fake/other &
  until grep --quiet '^Accepted' "$server_log"; do sleep 0.01; done

  expect_guarded_run $server
}

SaysThatTheServerIsFrozen() {
  start_server
  kill -STOP "$server_process"

  expect_guarded_run $server
}

SaysThatTheServerWasKilledInTheWriteTest() {
  start_server
  during_test 1 kill -KILL "$server_process"

  expect_guarded_run $server
}

cut_cable_for_two_seconds() {
  ip link set cable down
  sleep 2
  ip link set cable up
}

# The tester shows a rate then, which holds these seconds.
SaysThatTheCableWasCutForSeconds() {
  shorten_tests 4
  start_server
  during_test 2 cut_cable_for_two_seconds

  expect_guarded_run $server
}

# And here one over all the time up to the limit.
SaysThatTheCableWasCutForGood() {
  start_server
  during_test 2 ip link set cable down

  expect_guarded_run $server
}

SaysThatNobodyHasThatName() {
  expect_guarded_run nobody.invalid
}

# A file that cannot be run is no tool.
hide_tool() {
  local file
  for file in {/usr/local,/usr,}/{bin,sbin}/"$1"; do
    if [[ -e $file ]]; then
      mount --bind /dev/null "$file"
    fi
  done
}

SaysThatThereIsNoPing() {
  start_server
  hide_tool ping

  expect_guarded_run $server
}

SaysThatThereIsNoIperf3() {
  hide_tool iperf3

  expect_guarded_run $server
}

# Types ^C in the test $1 of a run on a terminal, and compares the end of the screen.
expect_end_by_key() {
  env "$mark" LC_ALL=C.UTF-8 TERM=xterm "$networks/../watch/terminal.py" 80 "$prefix/bin/connWatch" run $server \
    >/tmp/fake/screen <<SCRIPT
wait $1
type ^C
end
SCRIPT

  [[ -z $(left_processes) ]] || fail "left are: $(left_processes)"
  expect_file <(tail -n 2 /tmp/fake/screen | sed -E 's/after [0-9]+ s/after # s/') <<END
ended by ^C in $2, after # s
signal: SIGINT
END
}

EndsWithItsToolsByTheKeyInEachTest() {
  start_server

  expect_end_by_key ping ping
  expect_end_by_key write 'write test'
  expect_end_by_key read 'read test'
}

run_network_test "$@"

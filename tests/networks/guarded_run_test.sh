#!/usr/bin/env bash
# connWatch run on a broken network: what it says, its status, and what is left in the log directory.
source "$(dirname "$0")/library.sh"

# What a test starts can be told by its environment.
mark=GUARDED_BY=$1-$$

# Prints what other programs are told of the runs that are there: what each one was, and why.
print_what_is_read() {
  { "$prefix/bin/connWatch" export jsonl 2>&1 || true; } | /usr/bin/python3 -c '
import json, sys
for line in sys.stdin:
    if not line.startswith("{"):
        print(line, end="")
        continue
    run = json.loads(line)
    states = [f"{name} {run[name]['\''state'\'']}" for name in ("ping", "write", "read")]
    print(f"{run['\''class'\'']}: {run['\''reason'\'']}; {'\'', '\''.join(states)}")'
}

# What is not the same in the journals of two such runs: moments, and how many figures there are.
same_journal='
  s/"(start|end)":"[^"]*[+-][0-9:]{5}"/"\1":"MOMENT"/g
  s/"(times_ms|rtt_ms)":\[[^]]*\]/"\1":[...]/g
  s/"retransmits":[0-9]+/"retransmits":N/g'

# Prints all that a run has come to: what it says, its status, what it leaves in the log directory, and
# what the next command reads there.
print_guarded_run() {
  print_masked says /tmp/fake/console | sed "$same_error"
  print_masked complains /tmp/fake/errors
  echo "status: $status"
  (cd "$logs" && find . -type f -printf '%P\n' | sed 's/^runs-[0-9]*/runs-YYYY/' | sort)
  if [[ -e $logs/connection_test_results.txt ]]; then
    mask "$logs/connection_test_results.txt"
  fi
  cat "$logs"/runs-*.jsonl 2>/dev/null | sed -E "$same_journal" | print_masked journal /dev/stdin | sed "$same_error"
  print_what_is_read | print_masked 'is read as' /dev/stdin | sed "$same_error"
}

left_processes() {
  grep -lszxF "$mark" /proc/[0-9]*/environ | xargs -r dirname | xargs -r -I '{}' cat '{}/comm'
}

expect_nothing_left() {
  [[ -z $(left_processes) ]] || fail "left are: $(left_processes)"
}

# Makes a guarded run, and compares it with the recorded one.
expect_guarded_run() {
  run env "$mark" "$prefix/bin/connWatch" run "$1"

  expect_nothing_left
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

SaysThatTheServerWasFrozenInTheWriteTest() {
  shorten_tests 4
  start_server
  during_test 1 kill -STOP "$server_process"

  expect_guarded_run $server
}

SaysThatTheServerWasFrozenInTheReadTest() {
  shorten_tests 4
  start_server
  during_test 2 kill -STOP "$server_process"

  expect_guarded_run $server
}

SaysThatTheServerWasKilledInTheWriteTest() {
  shorten_tests 4
  start_server
  during_test 1 kill -KILL "$server_process"

  expect_guarded_run $server
}

SaysThatTheServerWasKilledInTheReadTest() {
  shorten_tests 4
  start_server
  during_test 2 kill -KILL "$server_process"

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
  shorten_tests 4
  start_server
  during_test 2 ip link set cable down

  expect_guarded_run $server
}

SaysThatTheCableWasCutForGoodInTheWriteTest() {
  shorten_tests 4
  start_server
  during_test 1 ip link set cable down

  expect_guarded_run $server
}

SaysThatTheCableWasCutBeforeTheRun() {
  start_server
  ip link set cable down

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

# Ends a run on a terminal, by the action $3 of terminal.py, in the test $1, which $2 shows to be on its way.
# Prints the last words and all that the run has come to.
end_run() {
  rm -rf "$logs"
  env "$mark" LC_ALL=C.UTF-8 TERM=xterm "$networks/../watch/terminal.py" 80 "$prefix/bin/connWatch" run $server \
    >/tmp/fake/screen <<SCRIPT
wait $1
$2
$3
end
SCRIPT
  expect_nothing_left
  status=$(sed -n 's/^signal: //p' /tmp/fake/screen)
  sed -n 's/after 0 s/after 1 s/; /^ended/p' /tmp/fake/screen >/tmp/fake/console
  : >/tmp/fake/errors
  echo "In $1:"
  print_guarded_run
}

expect_end_in_each_test() {
  start_server

  {
    end_run ping 'wait █' "$1"
    end_run write 'do sleep 0.5' "$1"
    end_run read 'do sleep 0.5' "$1"
  } >/tmp/fake/run

  expect_recorded "$networks/expected/$row.run" /tmp/fake/run
}

EndsWithItsToolsByTheKeyInEachTest() {
  expect_end_in_each_test 'type ^C'
}

EndsWithItsToolsByATerminationInEachTest() {
  expect_end_in_each_test 'signal TERM'
}

EndsWithItsToolsAndItsTerminalInEachTest() {
  expect_end_in_each_test close
}

run_network_test "$@"

#!/usr/bin/env bash
# The script that runs a command in a session of its own and passes signals on.
#
# shellcheck disable=SC2016 # what stands in single quotes is for others to expand
source "$(dirname "$0")/library.sh"

in_session() {
  exec "$packaging/in-session" "$@"
}

# A command that lasts, with a tool and a reader of it, and goes on when they have ended.
lasting="echo \$\$ >/tmp/fake/session
sh -c '$wait_at_gate' | cat
echo next"

interrupted='connTester: interrupted: the run goes on with the next step; ^C again ends it'

# Starts a session whose command comes to the gate.
start_session() {
  start_up_to_gate in_session "$@"
}

# Prints the states of the processes in a session, as /proc has them, without those that are dead.
states_in_session() {
  cat /proc/[0-9]*/stat 2>/dev/null | sed -n "s/.*) \([^Z]\) [0-9]* [0-9]* $1 .*/\1/p"
}

# Whether nothing lives in the session whose leader is in the given file.
is_over() {
  [[ -z $(states_in_session "$(cat "$1")") ]]
}

expect_nothing_left() {
  is_over /tmp/fake/session || fail 'the session has not ended'
}

# What was started has to end by the signal $1 and to leave nothing.
expect_end_by() {
  expect_end "$((128 + $(kill -l "$1")))"
  expect_nothing_left
}

PassesArgumentsOutputAndExitStatusThroughAndNoInput() {
  run in_session sh -c 'cat; printf "[%s]" "$@"; echo complaint >&2; exit 3' sh 'a  b' '' '*' <<<text

  expect_status 3
  expect_file /tmp/fake/console < <(printf '[a  b][][*]')
  expect_file /tmp/fake/errors <<<complaint
}

NeedsACommand() {
  run in_session

  expect_status 2
  expect_file /tmp/fake/errors <<<'usage: in-session COMMAND [ARGUMENT...]'
}

MakesItsCommandTheLeaderOfASession() {
  need perl
  provide cut env perl sh

  local path
  # Without setsid in the second one.
  for path in "$PATH" /tmp/bin; do
    PATH=$path run in_session sh -c 'test "$(cut -d " " -f 6 "/proc/$$/stat")" = $$'

    expect_silent_success
  done
}

DiesByTheSignalThatItsCommandDiesBy() {
  need perl

  local signal
  for signal in ABRT KILL PIPE TERM; do
    run perl -e 'exit 100 + (127 & system @ARGV)' \
      "$packaging/in-session" sh -c "sleep 0.1; kill -$signal \$\$"

    expect_status "$((100 + $(kill -l "$signal")))"
    expect_file /tmp/fake/errors </dev/null
  done
}

DiesByASignalAlsoWhereItMaySetNoLimits() { # --untraced
  need strace

  run strace -f -o /dev/null -e trace=prlimit64 -e inject=prlimit64:error=EPERM \
    "$packaging/in-session" sh -c 'kill -TERM $$'

  expect_status 143
  expect_file /tmp/fake/errors </dev/null
}

EndsWhatACommandThatIsKilledLeaves() {
  make_gate

  run in_session sh -c 'echo $$ >/tmp/fake/session; sh -c "read -r _ </tmp/fake/gate" & kill -KILL $$' 8>&-

  expect_status 137
  expect_nothing_left
}

IsEndedByASignal() {
  local signal
  for signal in TERM HUP ALRM QUIT; do
    start_session sh -c "$lasting"

    kill "-$signal" "$started"

    expect_end_by "$signal"
    expect_file /tmp/fake/console </dev/null
    expect_file /tmp/fake/errors </dev/null
  done
}

KillsWhatDoesNotEndByATermination() {
  start_session sh -c "trap '' TERM; $lasting"

  kill -TERM "$started"

  expect_end 143
  wait_until is_over /tmp/fake/session
}

# Whether a process has died, reaped or not.
is_dead() {
  [[ ! -e /proc/$1 ]] || grep --quiet '^State:.Z' "/proc/$1/status"
}

IsEndedBeforeItsCommandLeadsTheSession() {
  replace setsid <<<"echo \$\$ >/tmp/fake/alone; $wait_at_gate"
  start_session true

  kill -TERM "$started"

  expect_end 143
  wait_until is_dead "$(cat /tmp/fake/alone)"
}

DoesNotWaitForAZombie() {
  need perl
  local unreaped='fork or sleep 600; setpgrp; system $ARGV[0]'
  start_session sh -c 'perl -e "$@"; echo next' sh "$unreaped" "$wait_at_gate"
  SECONDS=0

  kill -TERM "$started"

  expect_end 143
  ((SECONDS < 4)) || fail "it took $SECONDS seconds"
}

interrupt_unread() {
  in_session sh -c 'kill -INT "$PPID"; sleep 0.05; echo next' 2>&6
}

GoesOnAfterAnInterruptWhoseMessageNobodyReads() {
  exec 6> >(true)
  wait "$!"

  local _
  for _ in {1..20}; do
    run interrupt_unread

    expect_status 0
    expect_file /tmp/fake/console <<<next
  done
}

# Whether all of the session is in one of the given states.
is_in_state() {
  local states
  states=$(states_in_session "$(cat /tmp/fake/session)")
  [[ -n $states && -z ${states//[$1$'\n']/} ]]
}

StopsAndContinuesTheSession() { # --untraced
  start_session sh -c "$lasting"

  kill -TSTP "$started"
  wait_until is_in_state T
  kill -CONT "$started"
  wait_until is_in_state RSD
  open_gate

  expect_end 0
  expect_file /tmp/fake/console <<<next
}

# Starts a session on a terminal of its own, whose keys are what is written to file 7, and waits until
# it shows the given text: a key may throw away what it has not shown yet.
start_on_terminal() {
  need script
  mkfifo /tmp/fake/keys
  exec 7<>/tmp/fake/keys
  printf '%s\n' 'echo $$ >/tmp/fake/terminal' "exec $packaging/in-session $2" >/tmp/work/command
  start_up_to_gate script --quiet --return --command 'exec sh /tmp/work/command' /dev/null <&7
  wait_until shows "$1"
}

shows() {
  grep --quiet --fixed-strings "$1" /tmp/fake/console
}

press() {
  printf '%b' "$1" >&7
}

# Compares what the terminal has shown.
expect_terminal() {
  expect_file <(tr -d '\r' </tmp/fake/console)
}

start_lasting_on_terminal() {
  echo "echo lasting; $lasting" >/tmp/work/lasting
  start_on_terminal lasting 'sh /tmp/work/lasting'
}

GoesOnAfterTheInterruptKey() {
  need perl
  # It has a summary to print when it is interrupted, as ping has.
  cat >/tmp/work/pinging <<'END'
$SIG{INT} = sub { print "summary\n"; exit }; $| = 1; print "reply\n";
open my $begun, ">", "/tmp/fake/begun"; print $begun "\n"; close $begun;
open my $gate, "<", "/tmp/fake/gate"; <$gate>
END
  start_on_terminal reply "sh -c 'perl /tmp/work/pinging | tee /tmp/fake/copy; echo next'"

  press '\003'

  expect_end 0
  expect_terminal <<<"reply"$'\n'"^C$interrupted"$'\nsummary\nnext'
  expect_file /tmp/fake/copy <<<$'reply\nsummary'
}

IsEndedByASecondInterruptKey() {
  start_lasting_on_terminal

  press '\003'
  wait_until shows again
  press '\003'

  expect_end_by INT
  expect_terminal < <(printf 'lasting\n^C%s\n^C' "$interrupted")
}

IsEndedByTheQuitKey() {
  start_lasting_on_terminal

  press '\034'

  expect_end_by QUIT
}

GoesOnAfterTheStopKeyWhereNobodyCouldContinueIt() {
  start_lasting_on_terminal

  press '\032'
  wait_until shows '^Z'
  open_gate

  expect_end 0
  expect_terminal <<<$'lasting\n^Znext'
}

IsEndedByAClosedTerminal() {
  start_lasting_on_terminal

  kill -KILL "$started"

  wait_until is_over /tmp/fake/session
  wait_until is_over /tmp/fake/terminal
}

run_test "$@"

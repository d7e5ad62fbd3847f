#!/usr/bin/env bash
# connWatch run, installed, on the real tester and fake tools, which wait where a test wants to look.
#
# shellcheck disable=SC2016,SC2317 # what stands in single quotes is for others to expand; for_each_case calls
source "$(dirname "$0")/../packaging/library.sh"

install_watch() {
  need /usr/bin/python3
  set_up
  export LC_ALL=C.UTF-8 TERM=xterm
  install_tester
  configure numPings=2 iperfTestTime=0
  replace ping <<'END_OF_FAKE'
echo 'PING 192.0.2.10 (192.0.2.10) 56(84) bytes of data.
64 bytes from 192.0.2.10: icmp_seq=1 ttl=64 time=6.2 ms'
! [ -e /tmp/fake/in_ping ] || . /tmp/fake/in_ping
echo '64 bytes from 192.0.2.10: icmp_seq=2 ttl=64 time=12.4 ms

--- 192.0.2.10 ping statistics ---
2 packets transmitted, 2 received, 0% packet loss, time 1001ms
rtt min/avg/max/mdev = 6.200/9.300/12.400/3.100 ms'
END_OF_FAKE
  replace iperf3 <<'END_OF_FAKE'
case $* in
  *-R*) test=read report=iperf3-R.out ;;
  *) test=write report=iperf3.out ;;
esac
! [ -e "/tmp/fake/in_$test" ] || . "/tmp/fake/in_$test"
sed "s/\"timesecs\":.*/\"timesecs\": $(date +%s)/" "/tmp/fake/$report"
END_OF_FAKE
  cp /tmp/bin/iperf3 "$installation/iperf3"
  make_gate
  # For the scripts of terminal.py.
  replace wait_until_begun <<<'until read -r _ </tmp/fake/begun; do :; done'
}

# Each of the tests named has its tool wait at the gate.
wait_in() {
  local test
  rm -f /tmp/fake/in_*
  for test in "$@"; do
    echo "$wait_at_gate" >"/tmp/fake/in_$test"
  done
}

# What a test starts can be told by its environment.
mark=GUARDED_BY=$1-$$

guarded_run() {
  exec env "$mark" "$prefix/bin/connWatch" run "$@"
}

# Prints the ids of the processes that are left of guarded runs.
left_processes() {
  grep -lszxF "$mark" /proc/[0-9]*/environ | cut -d / -f 3
}

nothing_is_left() {
  [[ -z $(left_processes) ]]
}

expect_nothing_left() {
  nothing_is_left || fail "left are: $(left_processes | xargs -I '{}' cat '/proc/{}/comm' | paste -sd ' ')"
}

# Seconds are another one in each run.
hide_seconds='s/\b[0-9]+ s\b/# s/; s/late, # s at most/# s left/'

# Runs a command on a terminal of $1 columns by the script on standard input, and notes the screens that
# it prints, without seconds and what they make of a bar.
on_terminal() {
  env "$mark" "$support/../watch/terminal.py" "$@" >/tmp/fake/terminal
  sed -E "$hide_seconds; s/[━─]+/━/; s/[=-]{3,}/-/" /tmp/fake/terminal >/tmp/fake/screens
}

# Runs connWatch run so, and compares the screens with input 9.
expect_screens() {
  on_terminal "$1" "$prefix/bin/connWatch" run "${@:2}"
  expect_file /tmp/fake/screens <&9
  expect_nothing_left
}

ShowsEachTestAsItGoes() {
  wait_in ping write read

  expect_screens 80 192.0.2.10 9<<'SCREENS' <<'SCRIPT'
  ping    █                                         # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2   ▅█
  write   ━  # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2   ▅█
  write   911.8 Mbit/s
  read    ━  # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2   ▅█
  write   911.8 Mbit/s
  read    1255.2 Mbit/s
ok in # s
status: 0
SCREENS
wait █
shot
do wait_until_begun; echo >/tmp/fake/gate
do wait_until_begun
wait write
shot
do echo >/tmp/fake/gate; wait_until_begun
wait read
shot
do echo >/tmp/fake/gate
end
SCRIPT
}

KeepsToTheWidthOfTheTerminal() {
  wait_in write

  expect_screens 80 192.0.2.10 9<<'SCREENS' <<'SCRIPT'
  ping    6.2 / 9.3 / 12.4 ms   2 of 2   ▅█
  write   ━  # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2
  write   ━  # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2
  write   911.8 Mbit/s
  read    1255.2 Mbit/s
ok in # s
status: 0
SCREENS
do wait_until_begun
wait write
shot
resize 40
shot
do echo >/tmp/fake/gate
end
SCRIPT
}

# Without a terminal, with what it prints and its status as of other programs.
run_guarded() {
  run guarded_run "$@"
  sed -i -E "$hide_seconds" /tmp/fake/console
}

four_lines='ping 9.3 ms, 2 of 2 back
write 911.8 Mbit/s
read 1255.2 Mbit/s
ok in # s'

IsFourPlainLinesWithoutATerminal() {
  run_guarded 192.0.2.10

  expect_status 0
  expect_file /tmp/fake/console <<<"$four_lines"
  expect_file /tmp/fake/errors </dev/null
}

KeepsWhatTheTesterHasPrinted() {
  run_guarded --trace 192.0.2.10

  expect_status 0
  expect_file /tmp/fake/console <<<"$four_lines"
  expect_same "$logs/run-latest.log" /tmp/fake/errors
  expect_file <(sed -n '1s/ [0-9T]* name .*//p; $s/.*, Read/Read/p' "$logs/run-latest.log") <<'END'
current time
Read Transfer Rate = 1255164544 bps
END
  expect_file <(stat -c %a "$logs/run-latest.log") <<<600
}

# The last lines alone: nothing is rewritten, and nothing has a colour.
IsPlainOnADumbTerminal() {
  export TERM=dumb TERMINAL_BYTES=/tmp/fake/bytes

  expect_screens 80 192.0.2.10 9<<SCREENS <<<end
$four_lines
status: 0
SCREENS
  expect_file <(tr -d '\r' </tmp/fake/bytes | sed -E "$hide_seconds") <<<"$four_lines"
}

HasNoColoursWhereNoneAreWanted() {
  local colour=$'\x1b\\[[0-9;]*m'
  export TERMINAL_BYTES=/tmp/fake/bytes
  wait_in write
  local script='do wait_until_begun
wait write
type ^C
end'

  on_terminal 80 "$prefix/bin/connWatch" run 192.0.2.10 <<<"$script"
  grep -q "$colour" /tmp/fake/bytes || fail 'there are no colours'
  NO_COLOR=1 on_terminal 80 "$prefix/bin/connWatch" run 192.0.2.10 <<<"$script"
  ! grep "$colour" /tmp/fake/bytes || fail 'there are colours'
}

# Where figures go to a file, the terminal still shows how the run goes.
ShowsTheGoingTestOnStandardErrorAlone() {
  wait_in write

  on_terminal 80 sh -c 'exec "$0" run 192.0.2.10 >/tmp/fake/console' "$prefix/bin/connWatch" <<'SCRIPT'
do wait_until_begun
wait write
shot
do echo >/tmp/fake/gate
end
SCRIPT

  expect_file /tmp/fake/screens <<'END'
  write   ━  # s left   ^C stops
--

status: 0
END
  expect_file <(sed -E "$hide_seconds" /tmp/fake/console) <<<"$four_lines"
}

# Ends a run on a terminal, in the test $1, by the action $2. At the end stand $3 and the signal $4.
expect_ended() {
  wait_in "$1"

  expect_screens 80 192.0.2.10 9<<SCREENS <<SCRIPT
${3:+$3
}signal: SIG$4
SCREENS
do wait_until_begun
wait $1
$2
end
SCRIPT
}

ping_row='  ping    6.2 / 9.3 / 12.4 ms   2 of 2   ▅█'

EndsByTheKeyInEachTest() {
  expect_ended ping 'type ^C' 'ended by ^C in ping, after # s' INT
  expect_ended write 'type ^C' "$ping_row
ended by ^C in write test, after # s" INT
  expect_ended read 'type ^C' "$ping_row
  write   911.8 Mbit/s
ended by ^C in read test, after # s" INT
  # The start command has not seen the key: it would go on with the next test.
  ! grep '^connTester:' "$logs/run-latest.log" || fail 'the key has reached the run'
}

EndsByASignal() {
  expect_ended write 'signal TERM' "$ping_row
ended by a termination signal in write test, after # s" TERM
  expect_ended ping 'signal QUIT' 'ended by ^\ in ping, after # s' QUIT
}

EndsWithItsTerminal() {
  expect_ended write close '' HUP
}

# It can't end the run itself then: the system does.
LeavesNothingWhenItIsKilled() {
  wait_in write
  start guarded_run 192.0.2.10
  wait_until_begun

  kill -KILL "$started"

  expect_end 137
  wait_until nothing_is_left
}

list_runs() {
  exec "$prefix/bin/connWatch" list
}

expect_list() {
  run list_runs
  expect_status 0
  expect_file /tmp/fake/errors </dev/null
}

# Makes tools for the runs that are killed, which measure something else than those of the next ones.
make_tools_of_killed() {
  mkdir /tmp/fake/killed /tmp/fake/next
  cp /tmp/bin/ping /tmp/fake/iperf3*.out /tmp/fake/next
  cp /tmp/fake/next/* /tmp/fake/killed
  sed -i '/^rtt\|icmp_seq/y/24/42/' /tmp/fake/killed/ping
  sed -i 's/911776/921776/; s/125516/126516/' /tmp/fake/killed/*.out
}

use_tools_of() {
  cp "/tmp/fake/$1/ping" /tmp/bin
  cp "/tmp/fake/$1"/*.out /tmp/fake
}

# Two runs of one second can't be told apart.
wait_for_next_second() {
  local second
  second=$(date +%s)
  while (($(date +%s) == second)); do sleep 0.05; done
}

# Kills a run at its system call $1, on the files of the runs before. Returns whether it came that far.
kill_run_at() {
  rm -rf "$logs"
  cp -a /tmp/fake/before "$logs"
  use_tools_of killed
  run env "$mark" "$KILL_AT" "$1" "$prefix/bin/connWatch" run 192.0.2.10
  wait_until nothing_is_left
  use_tools_of next
  [[ $status == 137 ]]
}

# What was there is there, and what the killed run has left; the next run measures as ever.
expect_all_is_readable() {
  local pings
  expect_list
  expect_file <(head -n 10 /tmp/fake/console) </tmp/fake/list
  # As soon as its ping has ended, the killed run is there, as one that has ended.
  pings=$(grep -c '^PING ' "$logs/ping_history_verbose.log")
  expect_file <(wc -l </tmp/fake/console) <<<"$((1 + pings))"
  run "$prefix/bin/connWatch" show
  expect_status 0
  expect_file /tmp/fake/errors </dev/null

  ((pings == 9)) || wait_for_next_second
  run_guarded 192.0.2.10
  expect_status 0
  expect_file /tmp/fake/console <<<"$four_lines"
  expect_list
  expect_file <(tail -n 1 /tmp/fake/console | awk '{ print $2, $3, $4, $5, $6 }') <<<'ok 9.3 0 911.8 1255.2'
}

# With FAULTS=long at each of them. All histories move in the runs.
LeavesAllReadableWhereverItIsKilled() { # --untraced
  local call=1 step=17
  [[ ${FAULTS-} != long ]] || step=1
  export PYTHONDONTWRITEBYTECODE=1
  configure numPings=2 iperfTestTime=-1
  mkdir -p "${logs%/*}"
  /usr/bin/python3 "$support/../watch/make_logs.py" /tmp/line --seed 4 --runs 9 --zone UTC --start "$(($(date +%s) - 36000))"
  mv /tmp/line/log "$logs"
  expect_list
  mv /tmp/fake/console /tmp/fake/list
  mv "$logs" /tmp/fake/before
  make_tools_of_killed

  while kill_run_at "$call"; do
    echo "Killed at call $call:"
    expect_all_is_readable
    ((call += step))
  done
}

# As one started by nohup.
GoesOnWithoutItsTerminalWhereTheHangUpIsIgnored() {
  wait_in write
  start env "$mark" sh -c 'trap "" HUP; exec "$0" run 192.0.2.10' "$prefix/bin/connWatch"
  wait_until_begun
  kill -HUP "$started"
  open_gate

  expect_end 0
  expect_file <(sed -E "$hide_seconds" /tmp/fake/console) <<<"$four_lines"
  expect_nothing_left
}

# It ignores the end of a pipe itself, and holds signals back.
LeavesTheSignalsOfTheRunAlone() {
  echo 'grep "^Sig[BI]" /proc/self/status >/tmp/fake/signals' >/tmp/fake/in_write
  run start_command 192.0.2.10
  mv /tmp/fake/signals /tmp/fake/signals_of_start_command

  run_guarded 192.0.2.10

  expect_same /tmp/fake/signals_of_start_command /tmp/fake/signals
}

GoesOnWhenNobodyReadsIt() {
  run sh -c '{ "$0" run 192.0.2.10; echo "$?" >/tmp/fake/status; } | true' "$prefix/bin/connWatch"

  expect_file /tmp/fake/status <<<0
  expect_file <(sed 's/.*, Read/Read/' "$logs/connection_test_results.txt") <<<\
'Read Transfer Rate = 1255164544 bps '
}

SaysWhatTheStartCommandSaysWhenItRefuses() {
  run_guarded '10.0.0.1;reboot'

  expect_status 3
  expect_file /tmp/fake/console </dev/null
  expect_same /tmp/fake/errors <(start_command '10.0.0.1;reboot' 2>&1)
  run_guarded --trace '10.0.0.1;reboot'
  expect_same /tmp/fake/errors <(start_command '10.0.0.1;reboot' 2>&1)
  ! [[ -e $logs/run-latest.log ]] || fail 'a run that was refused has a log'
}

LeavesOutARunBesideAnother() {
  wait_in write
  start guarded_run 192.0.2.10
  wait_until_begun
  wait_until grep -q '^round-trip' "$logs/run-latest.log"
  cp "$logs/run-latest.log" /tmp/fake/log

  status=0
  "$prefix/bin/connWatch" run 192.0.2.10 >/tmp/fake/second 2>&1 || status=$?

  expect_status 75
  expect_file <(sed -E 's/process .*/process/' /tmp/fake/second) <<<\
'connTester: another run of yours is in progress, as process'
  expect_same /tmp/fake/log "$logs/run-latest.log"
  open_gate
  expect_end 0
}

SaysWhatTheTesterSaysWhenItBreaksOff() {
  configure numPings=many

  run_guarded 192.0.2.10

  expect_status 3
  expect_file /tmp/fake/console <<<'no run, after # s: ended by signal 6'
  expect_file <(tail -n 1 /tmp/fake/errors) <<END
  what():  $installation/connTester.conf, line 1: numPings is "many", which does not start with a \
number; write a whole number, for example numPings=10
END
}

# Its tools go on: they are let go here.
IsPartialWhenItsStartCommandIsKilled() {
  wait_in read
  start guarded_run 192.0.2.10
  wait_until_begun

  kill -KILL "$(cut -d ' ' -f 1 "$logs/connTester.lock")"

  expect_end 1
  expect_file <(sed -E "$hide_seconds" /tmp/fake/console) <<'END'
ping 9.3 ms, 2 of 2 back
write 911.8 Mbit/s
partial in # s: ended by signal 9 in read test
END
  open_gate
  wait_until nothing_is_left
}

IsPartialWhenATestIsMissing() {
  echo 'exit 1' >/tmp/fake/in_write

  run_guarded 192.0.2.10

  expect_status 1
  expect_file /tmp/fake/console <<'END'
ping 9.3 ms, 2 of 2 back
write: no test
read 1255.2 Mbit/s
partial in # s
END
}

HasFailedWhenNothingWasMeasured() {
  echo 'exit 1' | tee /tmp/fake/in_write >/tmp/fake/in_read
  echo 'echo "ping: connect: Network is unreachable" >&2; exit 2' | replace ping

  run_guarded 192.0.2.10

  expect_status 2
  expect_file /tmp/fake/console <<'END'
ping: no ping, connect: Network is unreachable
write: no test
read: no test
failed in # s
END
}

IsOkWithoutTheTestsThatAreSwitchedOff() {
  configure numPings=2 iperfTestTime=0 doIperf3Tests=false
  run_guarded 192.0.2.10
  expect_status 0
  expect_file /tmp/fake/console <<'END'
ping 9.3 ms, 2 of 2 back
write: switched off
read: switched off
ok in # s
END

  configure iperfTestTime=0 doPingTests=false
  run_guarded 192.0.2.10
  expect_status 0
  expect_file /tmp/fake/console <<'END'
ping: switched off
write 911.8 Mbit/s
read 1255.2 Mbit/s
ok in # s
END
}

SaysThatItCannotKeepWhatTheTesterPrints() {
  mkdir -p "$logs/run-latest.log"

  run_guarded 192.0.2.10

  expect_status 0
  expect_file /tmp/fake/console <<<"$four_lines"
  expect_file /tmp/fake/errors <<<"connWatch: cannot write $logs/run-latest.log: Is a directory"
}

HasAStatusOfItsOwnForAWrongCommandLine() {
  run_guarded 192.0.2.10 192.0.2.11

  expect_status 3
  expect_file /tmp/fake/errors <<'END'
connWatch: The following argument was not expected: 192.0.2.11
  See:  connWatch run --help
END
}

EndsByAnAlarm() {
  expect_ended write 'signal ALRM' "$ping_row
ended by an alarm in write test, after # s" ALRM
}

NeedsTheStartCommandBesideIt() {
  rm "$prefix/bin/connTester"

  run_guarded 192.0.2.10

  expect_status 3
  expect_file /tmp/fake/errors <<<"connWatch: cannot run $prefix/bin/connTester: No such file or directory"
}

# It has an interpreter that is not there.
NeedsAStartCommandThatStarts() {
  echo '#!/nowhere' >"$prefix/bin/connTester"

  run_guarded 192.0.2.10

  expect_status 3
  expect_file /tmp/fake/errors <<<"connWatch: cannot run $prefix/bin/connTester: No such file or directory"
}

WorksWithManyOpenFiles() {
  run_guarded_with_open_files() {
    exec /usr/bin/python3 -c '
import os, resource, sys
resource.setrlimit(resource.RLIMIT_NOFILE, (2048, 2048))
for _ in range(1100):
    os.set_inheritable(os.open("/dev/null", os.O_RDONLY), True)
os.execvp(sys.argv[1], sys.argv[1:])' "$prefix/bin/connWatch" run 192.0.2.10
  }
  run run_guarded_with_open_files

  expect_status 0
  expect_file <(sed -E "$hide_seconds" /tmp/fake/console) <<<"$four_lines"
}

NeedsAHome() {
  unset HOME

  run_guarded 192.0.2.10

  expect_status 3
  expect_file /tmp/fake/errors <<<'connWatch: HOME is not set: a run needs a log directory'
}

NeedsALogDirectoryThatCanBeWritten() { # --unprivileged
  mkdir -p "$logs"
  touch "$logs/connTester.lock"
  chmod 400 "$logs/connTester.lock"

  run_guarded 192.0.2.10

  expect_status 3
  expect_file /tmp/fake/errors <<<"connTester: cannot write $logs/connTester.lock: Permission denied"
}

# The disk is full before the run, then from its first test on.
SaysThatTheDiskIsFull() { # --small-disk
  local fill='cat /dev/zero >/tmp/disk/filler 2>/dev/null'
  mkdir -p "${logs%/*}"
  ln -s /tmp/disk "$logs"
  eval "$fill" || true

  run_guarded 192.0.2.10
  expect_status 3
  expect_file /tmp/fake/errors <<<"connTester: cannot write $logs/connTester.lock: No space left on device"

  rm /tmp/disk/*
  echo "$fill" >/tmp/fake/in_ping
  run_guarded 192.0.2.10
  expect_status 3
  expect_file /tmp/fake/console <<<'no run, after # s'
  grep -q 'No space left on device' /tmp/fake/errors || fail "no reason: $(cat /tmp/fake/errors)"
}

# As long as it reads what runs were before, here the settings, it has nothing to end but itself.
EndsAtOnceBeforeTheRun() {
  rm "$installation/connTester.conf"
  mkfifo "$installation/connTester.conf"

  expect_screens 80 192.0.2.10 9<<'SCREENS' <<'SCRIPT'

signal: SIGINT
SCREENS
do sleep 0.3
signal INT
end
SCRIPT
}

# What is not kept anywhere comes faster than it can be read.
EndsByTheKeyInAFlood() {
  mkdir -p "$logs/run-latest.log"
  echo 'echo >/tmp/fake/begun; exec yes garbage >&2' >/tmp/fake/in_write

  expect_screens 100 192.0.2.10 9<<SCREENS <<'SCRIPT'
$ping_row
connWatch: cannot write $logs/run-latest.log: Is a directory
ended by ^C in write test, after # s
signal: SIGINT
SCREENS
do wait_until_begun
wait write
type ^C
end
SCRIPT
}

# The terminal is that of others then.
RewritesNothingInTheBackground() {
  wait_in write

  on_terminal 80 sh -c 'set -m; "$0" run 192.0.2.10 & wait $!' "$prefix/bin/connWatch" <<'SCRIPT'
do wait_until_begun
wait ping
shot
do echo >/tmp/fake/gate
end
SCRIPT

  expect_file /tmp/fake/screens <<END
$ping_row
--
$ping_row
  write   911.8 Mbit/s
  read    1255.2 Mbit/s
ok in # s
status: 0
END
}

FitsANarrowTerminalWithoutUtf8() {
  export LC_ALL=C
  wait_in write

  expect_screens 40 192.0.2.10 9<<'SCREENS' <<'SCRIPT'
  ping    6.2 / 9.3 / 12.4 ms   2 of 2
  write   -  # s left   ^C stops
--
  ping    6.2 / 9.3 / 12.4 ms   2 of 2
  write   911.8 Mbit/s
  read    1255.2 Mbit/s
ok in # s
status: 0
SCREENS
do wait_until_begun
wait write
shot
do echo >/tmp/fake/gate
end
SCRIPT
}

run_watch_test() {
  install_watch
  "$1"
}

run_watch_test "$@"

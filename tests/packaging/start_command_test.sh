#!/usr/bin/env bash
# The command connTester, with a fake in the place of the program.
source "$(dirname "$0")/library.sh"

# Compares the message of a run that has been refused, and checks that nothing else has happened.
expect_refused() {
  expect_status 2
  expect_file /tmp/fake/errors <<<"connTester: $1"
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/events </dev/null
  [[ -z $(names_in /tmp/home) ]] || fail "files were made: $(find /tmp/home)"
}

PassesAddressOutputAndExitStatusThrough() {
  install_fake_program 'echo result; echo complaint >&2; exit 3'

  run 192.168.1.10

  expect_status 3
  expect_file /tmp/fake/console <<<result
  expect_file /tmp/fake/errors <<<complaint
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
}

PassesNoAddressThrough() {
  install_fake_program 'exit 0'

  run

  expect_status 0
  expect_file /tmp/fake/events <<<connTester
}

RunsInTheLogDirectory() {
  install_fake_program pwd

  run 192.168.1.10

  expect_file /tmp/fake/console <<<"$logs"
}

LeavesTheFileNamedNulInTheLogDirectory() {
  install_tester
  make_log_directories
  printf 'a line\n%.0s' {1..9} >"$logs/ping_history.log"
  configure doIperf3Tests=false

  run 192.168.1.10

  expect_status 0
  expect_file "$logs/nul" </dev/null
  [[ ! -e $logs/ping_history.log ]] || fail "the full history has not been moved"
}

TakesEveryAddress() {
  install_fake_program 'exit 0'
  local addresses=(10.0.0.5 255.255.255.255 localhost my-host.example my_host Host1 ::1 fe80::1%eth0
    2001:db8::1 1-)

  local address
  for address in "${addresses[@]}"; do
    run "$address"

    expect_status 0
    expect_file /tmp/fake/errors </dev/null
  done
  expect_file /tmp/fake/events < <(printf 'connTester [%s]\n' "${addresses[@]}")
}

RefusesWhatNoAddressCanBe() {
  install_fake_program 'exit 0'
  # shellcheck disable=SC2016 # none is to be expanded
  local texts=('' ' ' -h -- -c '10.0.0.5 ' ' 10.0.0.5' $'10.0.0.5\n' $'10.0.0.5\nid' $'10.0.0.5\t'
    '10.0.0.5;id' '10.0.0.5&id' '10.0.0.5|id' '`id`' '$(id)' '$HOME' 'a>b' 'a<b' 'a*' 'a?' 'a[b]'
    'a{b}' 'a(b)' 'a\b' "a'b" 'a"b' 'a#b' 'a!b' 'a~b' '~' 'a^b' 'a=b' 'a,b' 'a/b' 'a@b' 'a+b'
    $'a\x7f' $'a\e[m' 'é.example' $'\xff')

  local text locale
  for locale in C C.UTF-8; do
    for text in "${texts[@]}"; do
      LC_ALL=$locale run "$text"

      expect_refused 'this is no IP address or host name: those hold only letters, digits and '\
'. : - _ %, and begin with no "-" (usage: connTester [ADDRESS])'
    done
  done
}

LeavesTheLengthOfTheAddressToTheProgram() {
  install_tester

  run 192.168.100.1000

  expect_status 2
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/errors <<<'connTester: the server address has 16 characters, the limit is'\
' 15: give an IPv4 address or a shorter name (usage: connTester [ADDRESS])'
}

RefusesASecondArgument() {
  install_fake_program 'exit 0'

  run --help 192.168.1.10

  expect_refused 'one address is enough, these are 2 arguments (usage: connTester [ADDRESS])'
}

PrintsItsHelp() {
  install_fake_program 'exit 0'

  run --help

  expect_status 0
  expect_file /tmp/fake/events </dev/null
  expect_file /tmp/fake/errors </dev/null
  expect_file /tmp/fake/console <<'END'
usage: connTester [ADDRESS]

Tests the connection to the server at ADDRESS, once: latency with ping, write and read rate with
iperf3, which has to run there ("iperf3 -s"). Takes about a minute and ends with one result line.

  ADDRESS    IP address or host name, at most 15 characters; without it nothing is measured,
             unless the settings have a public server pinged
  --help     print this text
  --version  print the version

Results    ~/Library/Logs/Qelmora/connection_test_results.txt and more beside it
Settings   /usr/local/bin/Qelmora/connTester.conf
Status     0 the run has ended, whatever it measured; 2 nothing was measured;
           75 nothing was measured, because another run of yours is in progress
Manual     man connTester, man connTester.conf
END
}

PrintsItsVersion() {
  install_fake_program 'exit 0'

  run --version

  expect_status 0
  expect_file /tmp/fake/events </dev/null
  expect_file /tmp/fake/console <<<"connTester $PROJECT_VERSION"
}

# Runs with the given text as HOME, or with what env makes of it.
run_at_home() {
  tester=(env "$1" "$prefix/bin/connTester")
  run 192.168.1.10
}

RefusesAHomeThatAShellWouldNotTakeAsItIs() {
  install_fake_program 'exit 0'
  # shellcheck disable=SC2016 # none is to be expanded
  local texts=('x$(id>/tmp/pwn)' '`id`' 'a;id' 'a&id' 'a|id' '$USER' 'a b' $'a\tb' $'a\nb' $'a\n'
    'a"b' "a'b" 'a\b' 'a*' 'a?' '[a]' '{a}' '(a)' 'a<b' 'a>b' 'a#b' 'a!b' '~a' 'a^b' $'a\x7f' $'a\e[m')
  local homes=(--unset=HOME HOME= HOME=. HOME=home 'HOME=~' "${texts[@]/#/HOME=/tmp/}")

  local home locale
  for locale in C C.UTF-8; do
    for home in "${homes[@]}"; do
      LC_ALL=$locale run_at_home "$home"

      expect_refused 'HOME has to hold the whole path of your home directory, of letters, digits and'\
' / . , : + - = _ @ % alone'
    done
  done
}

WritesBelowEveryPlainHome() {
  install_tester
  configure doIperf3Tests=false

  local home
  for home in /tmp/home/{jörg,ТЕСТ,à,a.b,c_d,e-f,-,g+h,i@j,k:l,m%n,o=p,q/r/,s//t,u/..}; do
    mkdir -p "$home"
    run_at_home "HOME=$home"

    expect_status 0
    expect_file /tmp/fake/errors </dev/null
    expect_same /tmp/fake/ping.out "$home/Library/Logs/Qelmora/ping_latest.log"
  done
}

RefusesAHomeThatIsNoDirectory() {
  install_fake_program 'exit 0'

  run_at_home HOME=/tmp/home/me

  expect_refused 'HOME is no directory: /tmp/home/me'
}

RefusesALogDirectoryThatCannotBeMade() {
  install_fake_program 'exit 0'
  touch /tmp/home/Library

  run 192.168.1.10

  expect_status 2
  expect_file /tmp/fake/errors <<<'connTester: cannot make /tmp/home/Library: File exists'
  expect_file /tmp/fake/events </dev/null
}

RefusesALockThatCannotBeWritten() {
  install_fake_program 'exit 0'
  mkdir -p "$logs/connTester.lock"

  run 192.168.1.10

  expect_status 2
  expect_file /tmp/fake/errors <<<"connTester: cannot write $logs/connTester.lock: Is a directory"
  expect_file /tmp/fake/events </dev/null
}

SaysThatTheDiskIsFull() { # --small-disk
  install_fake_program 'exit 0'
  local home=/tmp/disk
  mkdir -p "$home/Library/Logs/Qelmora"
  touch "$home/Library/Logs/Qelmora/connTester.lock"
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true

  run_at_home "HOME=$home"

  expect_status 2
  expect_file /tmp/fake/errors <<<'connTester: cannot write'\
' /tmp/disk/Library/Logs/Qelmora/connTester.lock: No space left on device'
  expect_file /tmp/fake/events </dev/null
}

# Compares the modes of all that is below the home directory.
expect_modes() {
  expect_file <(find /tmp/home -mindepth 1 -printf '%m %P\n' | LC_ALL=C sort --key=2)
}

MakesTheLogDirectoryForItsUserAlone() {
  install_fake_program 'exit 0'
  umask 000

  run 192.168.1.10

  expect_status 0
  expect_modes <<'END'
700 Library
700 Library/Logs
700 Library/Logs/Qelmora
600 Library/Logs/Qelmora/connTester.lock
END
}

ClosesALogDirectoryThatWasOpen() {
  install_tester
  umask 000
  make_log_directories
  touch "$logs/connTester.lock"
  configure doIperf3Tests=false doPingTests=false

  run 192.168.1.10

  expect_status 0
  expect_modes <<'END'
777 Library
777 Library/Logs
700 Library/Logs/Qelmora
777 Library/Logs/Qelmora/archive
600 Library/Logs/Qelmora/connTester.lock
END
}

LetsItsFilesBeReadByTheirUserAlone() {
  install_fake_program 'umask'
  umask 022

  run 192.168.1.10

  expect_file /tmp/fake/console <<<0077
}

RefusesTheHomeOfAnotherUser() { # --other-users
  install_fake_program 'exit 0'
  chown 4711 /tmp/home

  run 192.168.1.10

  expect_refused 'HOME belongs to another user: set it to your own, as "sudo -H" does'
}

LeavesTheHomeToRoot() { # --other-users
  install_fake_program 'exit 0'
  make_log_directories
  chown 4711 /tmp/home/Library
  chmod 755 /tmp/home
  tester=(setpriv --reuid 4711 --clear-groups "$prefix/bin/connTester")

  run 192.168.1.10

  expect_status 2
  expect_file /tmp/fake/errors <<<'connTester: not yours, or a link to what is not:'\
' /tmp/home/Library/Logs (remove it, or make it yours)'
}

# Compares the refusal of a path below the home directory, and checks that nothing has been added.
expect_not_own() {
  find /tmp/home | sort >/tmp/fake/files

  run 192.168.1.10

  expect_status 2
  expect_file /tmp/fake/errors <<<"connTester: not yours, or a link to what is not: $1"\
' (remove it, or make it yours)'
  expect_file /tmp/fake/events </dev/null
  expect_file <(find /tmp/home | sort) </tmp/fake/files
}

RefusesWhatBelongsToAnotherUser() { # --other-users
  install_fake_program 'exit 0'
  make_log_directories
  touch "$logs"/{connTester.lock,nul,ping_latest.log,connection_test_results.txt}

  local path
  for path in /tmp/home/Library{,/Logs{,/Qelmora}} \
    "$logs"/{connTester.lock,archive,nul,ping_latest.log,connection_test_results.txt}; do
    chown 4711 "$path"
    expect_not_own "$path"
    chown 0 "$path"
  done
}

RefusesALinkToWhatBelongsToAnotherUser() { # --other-users
  install_fake_program 'exit 0'
  mkdir /tmp/other
  chown 4711 /tmp/other
  ln -s /tmp/other /tmp/home/Library

  expect_not_own /tmp/home/Library
}

RefusesTheLinkOfAnotherUser() { # --other-users
  install_fake_program 'exit 0'
  mkdir /tmp/own
  ln -s /tmp/own /tmp/home/Library
  chown --no-dereference 4711 /tmp/home/Library

  expect_not_own /tmp/home/Library
}

RefusesALinkOfAnotherUserThatLeadsNowhere() { # --other-users
  install_fake_program 'exit 0'
  make_log_directories

  local file
  for file in connTester.lock nul ping_latest.log connection_test_results.txt; do
    ln -s /tmp/nowhere "$logs/$file"
    chown --no-dereference 4711 "$logs/$file"
    expect_not_own "$logs/$file"
    rm "$logs/$file"
  done
  [[ ! -e /tmp/nowhere ]] || fail 'the link was followed'
}

FollowsALinkOfItsUserThatLeadsNowhere() {
  install_fake_program 'exit 0'
  make_log_directories
  ln -s /tmp/own "$logs/connTester.lock"

  run 192.168.1.10

  expect_status 0
  [[ -s /tmp/own ]] || fail 'the link was not followed'
}

FollowsALinkOfItsUser() {
  install_fake_program pwd
  mkdir /tmp/own
  ln -s /tmp/own /tmp/home/Library

  run 192.168.1.10

  expect_status 0
  expect_file <(find /tmp/own -mindepth 1 -printf '%P\n' | sort) <<'END'
Logs
Logs/Qelmora
Logs/Qelmora/connTester.lock
END
}

# Refuses a run with the given kind of file in place of each file that a run writes.
expect_no_other_kind() {
  install_fake_program 'exit 0'
  make_log_directories

  local file
  for file in archive connTester.lock nul ping_latest.log ping_history.log ping_history_verbose.log \
    iperf3_latest-R.log connection_test_results.txt connection_test_results_history.log; do
    rm -rf "${logs:?}/$file"
    "$@" "$logs/$file"

    run 192.168.1.10

    expect_status 2
    expect_file /tmp/fake/errors \
      <<<"connTester: neither a file nor a directory: $logs/$file (remove it)"
    rm "$logs/$file"
  done
  expect_file /tmp/fake/events </dev/null
}

RefusesAFifoInPlaceOfAFile() {
  expect_no_other_kind mkfifo
}

RefusesADeviceInPlaceOfAFile() {
  expect_no_other_kind ln -s /dev/null
}

LeavesADirectoryInPlaceOfAFileAlone() {
  install_fake_program 'exit 3'
  mkdir -p "$logs"/{nul,ping_history.log}

  run 192.168.1.10

  expect_status 3
}

# Starts a run at a known time that lasts until the gate opens, and waits until its program has begun.
# What it does in place of the program may be given.
start_long_run() {
  make_gate
  install_fake_program "${1:-echo >/tmp/fake/begun; read -r _ </tmp/fake/gate}"
  stop_clock '2026-11-20 17:42:10'
  "${tester[@]}" 10.0.0.5 8>&- &
  long_run=$!
  wait_until_begun
}

# Runs again and compares the message of the refusal.
expect_busy() {
  run 10.0.0.6

  expect_status 75
  expect_file /tmp/fake/errors <<<"connTester: $1"
}

expect_one_run_at_a_time() {
  start_long_run

  expect_busy "another run of yours is in progress, as process $long_run since 2026-11-20 17:42:10"

  open_gate
  wait "$long_run"
  rm /tmp/fake/connTester.end
  run 10.0.0.7
  expect_status 0
  expect_file /tmp/fake/events <<<$'connTester [10.0.0.5]\nconnTester [10.0.0.7]'
}

LetsInOneRunAtATime() {
  expect_one_run_at_a_time
}

LetsInOneRunAtATimeWithPerlInPlaceOfFlock() {
  need perl
  provide cat chmod date dirname env grep mkdir perl readlink sh sleep tr
  tester=(env PATH=/tmp/bin "$prefix/bin/connTester")

  expect_one_run_at_a_time
}

LetsInOneRunAtATimeWithoutProc() { # --without-proc
  expect_one_run_at_a_time
}

TellsEachOfManyWhichRunIsInProgress() {
  start_long_run
  open_gate
  wait "$long_run"
  local runs=({1..30})

  local number
  for number in "${runs[@]}"; do
    "${tester[@]}" 10.0.0.6 2>"/tmp/fake/errors.$number" 8>&- &
  done
  wait_until_begun
  for number in "${runs[@]:1}"; do
    status=0
    wait -n || status=$?
    expect_status 75
  done

  local winner
  read -r winner _ <"$logs/connTester.lock"
  local message="another run of yours is in progress, as process $winner since 2026-11-20 17:42:10"
  expect_file <(cat /tmp/fake/errors.*) < <(printf "connTester: $message\n%.0s" "${runs[@]:1}")
  open_gate
  wait
}

refuse_to_lock() {
  need strace
  tester=(strace -f -o /dev/null -e trace=flock -e inject=flock:error=ENOLCK "${tester[@]}")

  run 10.0.0.5

  expect_status 2
  expect_file /tmp/fake/errors \
    <<<"connTester: cannot lock $logs/connTester.lock with flock or perl: No locks available"
  expect_file /tmp/fake/events </dev/null
}

SaysWhyItCannotLock() { # --untraced
  install_fake_program 'exit 0'

  refuse_to_lock
}

SaysWhyPerlCannotLock() { # --untraced
  need perl
  install_fake_program 'exit 0'
  provide cat chmod date dirname env grep mkdir perl readlink sh sleep tr
  tester=(env PATH=/tmp/bin "$prefix/bin/connTester")

  refuse_to_lock
}

RefusesARunWithoutAnythingThatLocks() {
  install_fake_program 'exit 0'
  provide cat chmod dirname env mkdir readlink sh tr
  tester=(env PATH=/tmp/bin "$prefix/bin/connTester")
  local complaint
  complaint=$(PATH=/tmp/bin sh -c 'perl || true' 2>&1)

  run 10.0.0.5

  expect_status 2
  expect_file /tmp/fake/errors \
    <<<"connTester: cannot lock $logs/connTester.lock with flock or perl: ${complaint##*: }"
}

# Starts a run whose program has a tool, and kills the start command.
start_and_kill() {
  # shellcheck disable=SC2016 # their process ids
  start_long_run 'echo $$ >/tmp/fake/program
    sh -c "echo \$\$ >/tmp/fake/tool; echo >/tmp/fake/begun; read -r _ </tmp/fake/gate"; exit'
  kill -KILL "$long_run"
  wait "$long_run" || true
}

NamesWhatAKilledRunHasLeft() {
  start_and_kill
  local left
  left=$(sed 's/^/connTester /' /tmp/fake/program && sed 's/^/sh /' /tmp/fake/tool)
  left=$(LC_ALL=C sort --key=2 <<<"$left" | paste --serial --delimiters=, | sed 's/,/, /')

  expect_busy 'a run of yours, begun 2026-11-20 17:42:10, was killed, and of its processes these are'\
" left, which end by their time limit: $left"

  open_gate
  rm /tmp/fake/connTester.end
  run 10.0.0.7
  expect_status 0
}

NamesTheToolThatIsLeftAlone() {
  start_and_kill
  kill -KILL "$(cat /tmp/fake/program)"

  expect_busy 'a run of yours, begun 2026-11-20 17:42:10, was killed, and of its processes these are'\
" left, which end by their time limit: sh $(cat /tmp/fake/tool)"
  open_gate
}

# Holds the lock as the test's own process, which has it open under another number than a run.
hold_lock() {
  install_fake_program 'exit 0'
  make_log_directories
  exec 7>>"$logs/connTester.lock"
  flock 7
}

unseen='another run of yours is in progress, or tools are left of one, as processes that cannot be'
unseen+=' seen from here'

NamesNoProcessThatIsDead() {
  hold_lock
  true &
  wait "$!"
  echo "$! 2026-11-20 17:42:10" >"$logs/connTester.lock"

  expect_busy "$unseen"
}

NamesNoProcessThatIsDeadWithoutProc() { # --without-proc
  NamesNoProcessThatIsDead
}

# Has a process in the lock's file that has something else open where a run has its lock.
expect_unseen_beside() {
  hold_lock
  make_gate
  "$1" 7>&- 8>&- &
  echo "$! 2026-11-20 17:42:10" >"$logs/connTester.lock"
  wait_until_begun

  expect_busy "$unseen"

  open_gate
  wait
}

open_lock() {
  exec 9>>"$logs/connTester.lock"
  echo >/tmp/fake/begun
  read -r _ </tmp/fake/gate
}

NamesNoProcessThatHasOnlyOpenedTheLock() {
  expect_unseen_beside open_lock
}

hold_another_lock() {
  exec 9>>/tmp/fake/another.lock
  flock 9
  echo >/tmp/fake/begun
  read -r _ </tmp/fake/gate
}

NamesNoProcessThatHoldsAnotherLock() {
  expect_unseen_beside hold_another_lock
}

# Starts a run that finds the lock taken, and waits until it is about to try again.
start_run_that_waits() {
  make_gate
  rm -f /tmp/bin/sleep
  printf '%s\n' '#!/bin/sh' 'echo >/tmp/fake/begun' 'read -r _ </tmp/fake/gate' >/tmp/bin/sleep
  chmod +x /tmp/bin/sleep
  "${tester[@]}" 10.0.0.5 2>/tmp/fake/errors 7>&- 8>&- 9>&- &
  wait_until_begun
}

wait_for_run() {
  open_gate
  status=0
  wait "$!" || status=$?
}

TriesAgainWhenTheLockIsLetGo() {
  hold_lock
  start_run_that_waits

  exec 7>&-

  wait_for_run
  expect_status 0
  expect_file /tmp/fake/events <<<'connTester [10.0.0.5]'
}

LooksAgainWhoHasTakenTheLock() {
  hold_lock
  exec 9>&7
  start_run_that_waits

  echo "$$ 2026-11-20 17:42:10" >"$logs/connTester.lock"

  wait_for_run
  expect_status 75
  expect_file /tmp/fake/errors \
    <<<"connTester: another run of yours is in progress, as process $$ since 2026-11-20 17:42:10"
}

EndsItsProgramAndToolsAtATermination() {
  start_long_run 'sh -c "echo >/tmp/fake/begun; read -r _ </tmp/fake/gate"; exit'

  kill -TERM "$long_run"

  status=0
  wait "$long_run" || status=$?
  expect_status 143
  rm /tmp/fake/connTester.end
  run 10.0.0.6
  expect_status 0
}

KeepsThePingsThatCameBackBeforeAnInterrupt() { # --own-network
  install_tester
  rm /tmp/bin/ping
  need ping
  configure numPings=600 doIperf3Tests=false
  set -m
  "${tester[@]}" 127.0.0.1 >/tmp/fake/console 2>/tmp/fake/errors &
  set +m
  wait_until grep --quiet --no-messages seq=1 "$logs/ping_latest.log"

  kill -INT $!

  status=0
  wait $! || status=$?
  expect_status 0
  expect_file /tmp/fake/errors <<<'connTester: interrupted: the run goes on with the next step;'\
' ^C again ends it'
  grep --quiet '^round-trip' "$logs/ping_latest.log" ||
    fail "no summary: $(cat "$logs/ping_latest.log")"
  expect_same "$logs/ping_latest.log" "$logs/ping_history_verbose.log"
  local result whole_result='Date = [0-9]{8}T[0-9]{6}, Latency = [0-9]+ ms, '
  whole_result+='Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps '
  result=$(cat "$logs/connection_test_results.txt")
  [[ $result =~ ^$whole_result$ ]] || fail "no latency: $result"
}

PutsThePingAdapterFirst() {
  install_fake_program 'command -v ping'

  run 10.0.0.5

  expect_file /tmp/fake/console <<<"$programs/ping-adapter/ping"
}

FindsItsProgramThroughALink() {
  install_fake_program 'exit 3'
  mkdir /tmp/home/bin
  ln -s "$prefix/bin/connTester" /tmp/home/bin/tester
  ln -s tester /tmp/home/bin/test
  tester=(/tmp/home/bin/test)

  run 10.0.0.5

  expect_status 3
}

run_test "$@"

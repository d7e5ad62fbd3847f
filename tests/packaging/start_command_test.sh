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
  expect_file <(program_events) <<<'connTester [192.168.1.10]'
}

PassesNoAddressThrough() {
  install_fake_program 'exit 0'

  run

  expect_status 0
  expect_file <(program_events) <<<connTester
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
  "$programs/fixed-paths" make
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
  expect_file <(program_events) < <(printf 'connTester [%s]\n' "${addresses[@]}")
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

RefusesAHomeThatIsNoWholePath() {
  install_fake_program 'exit 0'

  local home
  for home in --unset=HOME HOME= HOME=. HOME=home; do
    tester=(env "$home" "$prefix/bin/connTester")
    run 192.168.1.10

    expect_refused 'HOME has to hold the whole path of your home directory'
  done
}

RefusesALogDirectoryThatCannotBeMade() {
  install_fake_program 'exit 0'
  touch /tmp/home/Library

  run 192.168.1.10

  expect_status 2
  expect_file <(tail -n 1 /tmp/fake/errors) <<<"connTester: cannot write in $logs"
  expect_file /tmp/fake/events </dev/null
}

RefusesALogDirectoryThatCannotBeWritten() {
  install_fake_program 'exit 0'
  mkdir -p "$logs/connTester.lock"

  run 192.168.1.10

  expect_status 2
  expect_file <(tail -n 1 /tmp/fake/errors) <<<"connTester: cannot write in $logs"
  expect_file /tmp/fake/events </dev/null
}

# Starts a run that lasts until something is written to /tmp/fake/gate, and waits until its program
# has begun.
start_long_run() {
  mkfifo /tmp/fake/begun /tmp/fake/gate
  install_fake_program 'echo >/tmp/fake/begun; read -r _ </tmp/fake/gate'
  "${tester[@]}" 10.0.0.5 &
  longRun=$!
  read -r _ </tmp/fake/begun
}

expect_one_run_at_a_time() {
  start_long_run

  run 10.0.0.6

  expect_status 75
  expect_file /tmp/fake/errors \
    <<<"connTester: another run of yours is in progress, as process $longRun"
  echo >/tmp/fake/gate
  wait "$longRun"
  rm /tmp/fake/connTester.end

  run 10.0.0.7

  expect_status 0
  expect_file <(program_events) <<<$'connTester [10.0.0.5]\nconnTester [10.0.0.7]'
}

LetsInOneRunAtATime() {
  expect_one_run_at_a_time
}

LetsInOneRunAtATimeWithPerlInPlaceOfFlock() {
  need perl
  provide cat dirname env grep mkdir perl readlink sh
  tester=(env PATH=/tmp/bin "$prefix/bin/connTester")

  expect_one_run_at_a_time
}

RefusesARunThatItCannotLock() {
  install_fake_program 'exit 0'
  printf '#!/bin/sh\nexit 71\n' >/tmp/bin/flock
  chmod +x /tmp/bin/flock

  run 10.0.0.5

  expect_status 2
  expect_file /tmp/fake/errors <<<"connTester: cannot lock $logs/connTester.lock with flock or perl"
  expect_file /tmp/fake/events </dev/null
}

RunsAgainAfterARunWasKilled() {
  start_long_run
  kill -KILL "$longRun"
  wait "$longRun" || true
  rm /tmp/fake/connTester.end

  run 10.0.0.6

  expect_status 0
}

WaitsForTheToolsOfARunThatWasKilled() {
  mkfifo /tmp/fake/begun /tmp/fake/gate
  install_fake_program 'sh -c "echo >/tmp/fake/begun; read -r _ </tmp/fake/gate"; exit'
  "${tester[@]}" 10.0.0.5 &
  read -r _ </tmp/fake/begun
  kill -KILL $!
  wait $! || true

  run 10.0.0.6

  expect_status 75
  echo >/tmp/fake/gate
}

EndsWithTheSignalThatIsSentToIt() {
  start_long_run

  kill -TERM "$longRun"

  local status=0
  wait "$longRun" || status=$?
  [[ $status == 143 ]] || fail "the exit status is $status, not 143"
}

PutsTheAdapterFirstWhereThePingNeedsIt() {
  install_fake_program 'command -v ping'
  sed -i 's/^round-trip/rtt/' /tmp/fake/ping.out

  run 10.0.0.5

  expect_file /tmp/fake/console <<<"$programs/ping-adapter/ping"
}

LeavesAPingAloneThatIsUnderstood() {
  install_fake_program 'command -v ping'

  run 10.0.0.5

  expect_file /tmp/fake/console <<</tmp/bin/ping
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

#!/usr/bin/env bash
# The start command, with a fake in the place of the program.
source "$(dirname "$0")/library.sh"

# Notes all files and starts as $1.
note_traces() {
  { find /tmp/home | sort && cat /tmp/fake/events; } >"/tmp/fake/$1"
}

# Runs the command behind the first two arguments. It has to end with status $1 and the message $2, and
# to start and make nothing.
expect_refusal() {
  note_traces before

  run "${@:3}"

  expect_status "$1"
  expect_file /tmp/fake/errors <<<"connTester: $2"
  expect_file /tmp/fake/console </dev/null
  note_traces after
  expect_same /tmp/fake/before /tmp/fake/after
}

StartsItsProgramInTheLogDirectory() {
  install_fake_program 'pwd; umask; command -v ping; echo complaint >&2; exit 3'
  mkdir /tmp/home/bin
  ln -s "$prefix/bin/connTester" /tmp/home/bin/link
  ln -s link /tmp/home/bin/connTester
  umask 022

  run /tmp/home/bin/connTester 192.168.1.10

  expect_status 3
  expect_file /tmp/fake/console <<END
$logs
0077
$programs/ping-adapter/ping
END
  expect_file /tmp/fake/errors <<<complaint
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
}

TakesEveryAddressAndNone() {
  install_fake_program 'exit 0'
  # The program says that the last one is too long.
  local addresses=(10.0.0.5 255.255.255.255 localhost my-host.example my_host Host1 ::1 fe80::1%eth0
    2001:db8::1 1- 192.168.100.1000)

  local address
  for address in "${addresses[@]}"; do
    run start_command "$address"
    expect_silent_success
  done
  run start_command
  expect_silent_success

  expect_file /tmp/fake/events < <(printf 'connTester [%s]\n' "${addresses[@]}" && echo connTester)
}

# Runs the command $2 with each text behind it, in two locales. All have to be refused with the message
# $1.
expect_texts_refused() {
  local text locale
  for text in "${@:3}"; do
    for locale in C C.UTF-8; do
      LC_ALL=$locale expect_refusal 2 "$1" "$2" "$text"
    done
  done
}

RefusesWhatNoAddressCanBe() {
  install_fake_program 'exit 0'
  # shellcheck disable=SC2016 # none is to be expanded
  local texts=('' ' ' -h -- -c '10.0.0.5 ' ' 10.0.0.5' $'10.0.0.5\n' $'10.0.0.5\nid' $'10.0.0.5\t'
    '10.0.0.5;id' '10.0.0.5&id' '10.0.0.5|id' '`id`' '$(id)' '$HOME' 'a>b' 'a<b' 'a*' 'a?' 'a[b]'
    'a{b}' 'a(b)' 'a\b' "a'b" 'a"b' 'a#b' 'a!b' 'a~b' '~' 'a^b' 'a=b' 'a,b' 'a/b' 'a@b' 'a+b'
    $'a\x7f' $'a\e[m' 'é.example' $'\xff')

  expect_texts_refused 'this is no IP address or host name: those hold only letters, digits and '\
'. : - _ %, and begin with no "-" (usage: connTester [ADDRESS])' start_command "${texts[@]}"
}

RefusesASecondArgument() {
  install_fake_program 'exit 0'

  expect_refusal 2 'one address is enough, these are 2 arguments (usage: connTester [ADDRESS])' \
    start_command --help 192.168.1.10
}

PrintsItsHelpAndItsVersion() {
  install_fake_program 'exit 0'

  run start_command --help

  expect_status 0
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
  run start_command --version
  expect_status 0
  expect_file /tmp/fake/console <<<"connTester $PROJECT_VERSION"
  expect_file /tmp/fake/events </dev/null
}

# Has env make something of HOME before.
start_at_home() {
  exec env "$1" "$prefix/bin/connTester"
}

RefusesAHomeThatAShellWouldNotTakeAsItIs() {
  install_fake_program 'exit 0'
  # shellcheck disable=SC2016 # none is to be expanded
  local texts=('x$(id>/tmp/pwn)' '`id`' 'a;id' 'a&id' 'a|id' '$USER' 'a b' $'a\tb' $'a\nb' $'a\n'
    'a"b' "a'b" 'a\b' 'a*' 'a?' '[a]' '{a}' '(a)' 'a<b' 'a>b' 'a#b' 'a!b' '~a' 'a^b' $'a\x7f' $'a\e[m')
  texts=(--unset=HOME HOME= HOME=. HOME=home 'HOME=~' "${texts[@]/#/HOME=/tmp/}")

  expect_texts_refused 'HOME has to hold the whole path of your home directory, of letters, digits and'\
' / . , : + - = _ @ % alone' start_at_home "${texts[@]}"
}

WritesBelowEveryPlainHome() {
  install_tester
  configure doIperf3Tests=false

  local home
  for home in /tmp/home/{jörg,ТЕСТ,à,a.b,c_d,e-f,-,g+h,i@j,k:l,m%n,o=p,q/r/,s//t,u/..}; do
    mkdir -p "$home"
    HOME=$home run start_command 192.168.1.10

    expect_status 0
    expect_file /tmp/fake/errors </dev/null
    expect_same /tmp/fake/ping.out "$home/Library/Logs/Qelmora/ping_latest.log"
  done
}

# Prepares what the shell commands $1 say, and has to be refused with the message $2.
expect_refusal_after() {
  HOME=/tmp/home
  rm -rf "$HOME" /tmp/own
  mkdir "$HOME"
  eval "$1"

  expect_refusal 2 "$2" start_command
}

RefusesAPlaceWhereItCannotWrite() {
  install_fake_program 'exit 0'

  for_each_case expect_refusal_after <<END
HOME=/tmp/home/me              | HOME is no directory: /tmp/home/me
touch /tmp/home/Library        | cannot make /tmp/home/Library: File exists
mkdir -p $logs/connTester.lock | cannot write $logs/connTester.lock: Is a directory
END
}

SaysThatTheDiskIsFull() { # --small-disk
  install_fake_program 'exit 0'
  HOME=/tmp/disk
  mkdir -p "$HOME/Library/Logs/Qelmora"
  touch "$HOME/Library/Logs/Qelmora/connTester.lock"
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true

  expect_refusal 2 'cannot write /tmp/disk/Library/Logs/Qelmora/connTester.lock: No space left on device' \
    start_command
}

not_yours() {
  echo "not yours, or a link to what is not: $1 (remove it, or make it yours)"
}

# Prepares what the shell commands $1 say, and has to be refused for the owner of $2.
expect_not_own() {
  expect_refusal_after "$1" "$(not_yours "$2")"
}

RefusesWhatBelongsToAnotherUser() { # --other-users
  install_fake_program 'exit 0'

  expect_refusal_after 'chown 4711 /tmp/home' \
    'HOME belongs to another user: set it to your own, as "sudo -H" does'
  local path make
  for path in /tmp/home/Library{,/Logs{,/Qelmora{,/archive}}}; do
    expect_not_own "make_log_directories; chown 4711 $path" "$path"
  done
  for path in "$logs"/{connTester.lock,nul,ping_latest.log,connection_test_results.txt}; do
    for make in touch 'ln -s /tmp/nowhere'; do
      expect_not_own "make_log_directories; $make $path; chown -h 4711 $path" "$path"
    done
  done
  [[ ! -e /tmp/nowhere ]] || fail 'a link was followed'
  for_each_case expect_not_own <<'END'
mkdir /tmp/own; ln -s /tmp/own /tmp/home/Library; chown 4711 /tmp/own             | /tmp/home/Library
mkdir /tmp/own; ln -s /tmp/own /tmp/home/Library; chown -h 4711 /tmp/home/Library | /tmp/home/Library
END
}

LeavesTheHomeToRoot() { # --other-users
  install_fake_program 'exit 0'
  make_log_directories
  chown 4711 /tmp/home/Library
  chmod 755 /tmp/home

  expect_refusal 2 "$(not_yours /tmp/home/Library/Logs)" \
    setpriv --reuid 4711 --clear-groups "$prefix/bin/connTester"
}

RefusesWhatIsNeitherAFileNorADirectory() {
  install_fake_program 'exit 0'

  local file make
  for file in archive connTester.lock nul ping_latest.log ping_history.log ping_history_verbose.log \
    iperf3_latest-R.log connection_test_results.txt connection_test_results_history.log; do
    for make in mkfifo 'ln -s /dev/null'; do
      expect_refusal_after "mkdir -p $logs; $make $logs/$file" \
        "neither a file nor a directory: $logs/$file (remove it)"
    done
  done
}

LeavesADirectoryInPlaceOfAFileAlone() {
  install_fake_program 'exit 3'
  mkdir -p "$logs"/{nul,ping_history.log}

  run start_command 192.168.1.10

  expect_status 3
}

FollowsLinksOfItsUserAlsoToNothing() {
  install_fake_program 'exit 0'
  mkdir /tmp/own
  ln -s /tmp/own /tmp/home/Library

  run start_command 192.168.1.10

  expect_silent_success
  expect_file <(find /tmp/own -mindepth 1 -printf '%P\n' | sort) <<'END'
Logs
Logs/Qelmora
Logs/Qelmora/connTester.lock
END
  ln -sf /tmp/nothing "$logs/connTester.lock"
  run start_command 192.168.1.10
  expect_silent_success
  [[ -s /tmp/nothing ]] || fail 'the link was not followed'
}

# Compares the modes of all that is below the home directory.
expect_modes() {
  expect_file <(find /tmp/home -mindepth 1 -printf '%m %P\n' | sort --key=2)
}

KeepsTheLogDirectoryForItsUserAlone() {
  install_fake_program 'exit 0'
  umask 000

  run start_command 192.168.1.10

  expect_modes <<'END'
700 Library
700 Library/Logs
700 Library/Logs/Qelmora
600 Library/Logs/Qelmora/connTester.lock
END
  find /tmp/home -mindepth 1 -exec chmod 777 {} +
  run start_command 192.168.1.10
  expect_modes <<'END'
777 Library
777 Library/Logs
700 Library/Logs/Qelmora
600 Library/Logs/Qelmora/connTester.lock
END
}

began='2026-11-20 17:42:10'

# Starts a run by the command $1 at that time, and waits until its program has begun.
start_long_run() {
  replace date <<<"exec $(command -v date) --date '$began' \"\$@\""
  start_up_to_gate "$1" 10.0.0.5
}

# This and the next take the start command where none is given.
expect_busy() {
  expect_refusal 75 "$1" "${2-start_command}" 10.0.0.6
}

# A run after the others is let in, and this fake program does nothing.
expect_free() {
  rm /tmp/fake/connTester.end
  run "${1-start_command}" 10.0.0.7
  expect_silent_success
}

expect_one_run_at_a_time() {
  install_fake_program "$wait_at_gate"
  start_long_run "$1"

  expect_busy "another run of yours is in progress, as process $started since $began" "$1"

  open_gate
  expect_end 0
  expect_free "$1"
  expect_file /tmp/fake/events <<<$'connTester [10.0.0.5]\nconnTester [10.0.0.7]'
}

LetsInOneRunAtATime() {
  expect_one_run_at_a_time start_command
}

LetsInOneRunAtATimeWithoutProc() { # --without-proc
  expect_one_run_at_a_time start_command
}

provide_all_but_flock() {
  need perl
  provide cat chmod dirname grep mkdir perl readlink sh sleep tr
}

start_without_flock() {
  PATH=/tmp/bin start_command "$@"
}

LetsInOneRunAtATimeWithPerlInPlaceOfFlock() {
  provide_all_but_flock

  expect_one_run_at_a_time start_without_flock
}

TellsEachOfManyWhichRunIsInProgress() {
  install_fake_program "$wait_at_gate"
  start_long_run start_command
  open_gate
  expect_end 0
  local runs=({1..30})

  local number
  for number in "${runs[@]}"; do
    start_command 10.0.0.6 2>"/tmp/fake/errors.$number" 8>&- &
  done
  wait_until_begun
  for number in "${runs[@]:1}"; do
    status=0
    wait -n || status=$?
    expect_status 75
  done

  local winner
  read -r winner _ <"$logs/connTester.lock"
  local message="another run of yours is in progress, as process $winner since $began"
  expect_file <(cat /tmp/fake/errors.*) < <(printf "connTester: $message\n%.0s" "${runs[@]:1}")
  open_gate
  wait
}

expect_no_lock() {
  expect_refusal 2 "cannot lock $logs/connTester.lock with flock or perl: $1" "${@:2}"
}

SaysWhyItCannotLock() { # --untraced
  need strace
  install_fake_program 'exit 0'
  provide_all_but_flock
  make_log_directories
  touch "$logs/connTester.lock"
  local fail_to_lock=(strace -f -o /dev/null -e trace=flock -e inject=flock:error=ENOLCK)
  local without_flock=(env PATH=/tmp/bin "$prefix/bin/connTester") reason

  expect_no_lock 'No locks available' "${fail_to_lock[@]}" "$prefix/bin/connTester"
  expect_no_lock 'No locks available' "${fail_to_lock[@]}" "${without_flock[@]}"
  rm /tmp/bin/perl
  reason=$(PATH=/tmp/bin sh -c 'perl || true' 2>&1)
  expect_no_lock "${reason##*: }" "${without_flock[@]}"
}

NamesWhatAKilledRunHasLeft() {
  install_fake_program "echo \$\$ >/tmp/fake/program
    sh -c 'echo \$\$ >/tmp/fake/tool; $wait_at_gate'; exit"
  start_long_run start_command
  local killed="a run of yours, begun $began, was killed, and of its processes these are left, which end"
  killed+=' by their time limit:'
  local program tool
  program="connTester $(cat /tmp/fake/program)"
  tool="sh $(cat /tmp/fake/tool)"

  kill -KILL "$started"
  expect_busy "$killed $(printf '%s\n' "$program" "$tool" | sort --key=2 | sed 'N; s/\n/, /')"
  kill -KILL "${program#* }"
  expect_busy "$killed $tool"

  open_gate
  expect_free
}

# Holds the lock as the test's own process, which has it open under another number than a run.
hold_lock() {
  install_fake_program 'exit 0'
  make_log_directories
  exec 7>>"$logs/connTester.lock"
  flock 7
}

# Has process $1 in the lock's file, which does not hold the lock as a run does.
expect_unseen() {
  echo "$1 $began" >"$logs/connTester.lock"
  expect_busy 'another run of yours is in progress, or tools are left of one, as processes that cannot'\
' be seen from here'
}

NamesNoProcessThatIsDead() {
  hold_lock
  true &
  wait "$!"

  expect_unseen "$!"
}

NamesNoProcessThatIsDeadWithoutProc() { # --without-proc
  NamesNoProcessThatIsDead
}

NamesNoProcessThatDoesNotHoldTheLock() {
  hold_lock

  # Each has something else open where a run has its lock.
  local other
  for other in "exec 9>>$logs/connTester.lock" 'exec 9>>/tmp/fake/another.lock; flock 9'; do
    start_up_to_gate sh -c "$other; $wait_at_gate"
    expect_unseen "$started"
    open_gate
    expect_end 0
  done
}

# Starts a run that finds the lock taken, and waits until it is about to try again.
start_run_that_waits() {
  replace sleep <<<"$wait_at_gate"
  start_up_to_gate start_command 10.0.0.5
}

TriesAgainWhenTheLockIsLetGo() {
  hold_lock
  start_run_that_waits

  exec 7>&-

  open_gate
  expect_end 0
  expect_file /tmp/fake/events <<<'connTester [10.0.0.5]'
}

LooksAgainWhoHasTakenTheLock() {
  hold_lock
  exec 9>&7
  start_run_that_waits

  echo "$$ $began" >"$logs/connTester.lock"

  open_gate
  expect_end 75
  expect_file /tmp/fake/errors \
    <<<"connTester: another run of yours is in progress, as process $$ since $began"
}

EndsItsProgramAndToolsAtATermination() {
  install_fake_program "sh -c '$wait_at_gate'; exit"
  start_long_run start_command

  kill -TERM "$started"

  expect_end 143
  expect_free
}

KeepsThePingsThatCameBackBeforeAnInterrupt() { # --own-network
  install_tester
  rm /tmp/bin/ping
  need ping
  configure numPings=600 doIperf3Tests=false
  start start_command 127.0.0.1
  wait_until grep --quiet --no-messages seq=1 "$logs/ping_latest.log"

  kill -INT "$started"

  expect_end 0
  expect_file /tmp/fake/errors <<<'connTester: interrupted: the run goes on with the next step;'\
' ^C again ends it'
  expect_file <(cut -d ' ' -f 1 "$logs/ping_latest.log" | uniq | tail -n 1) <<<round-trip
  expect_file <(sed -E 's/[0-9]{8}T[0-9]{6}/TIME/; s/[0-9]+ ms/# ms/' "$logs/connection_test_results.txt") \
    <<<'Date = TIME, Latency = # ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps '
}

run_test "$@"

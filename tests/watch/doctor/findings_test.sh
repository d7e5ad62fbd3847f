#!/usr/bin/env bash
# connWatch doctor on machines that are broken in one way, each.
source "$(dirname "$0")/library.sh"

SaysThatASoundMachineIsWell() {
  look_at 'all is well'
}

TakesTheAddressThatIsGiven() {
  look_at 'the address is given' "$server"
}

FindsTrapsInTheSettings() {
  configure '' 'doPingTests = false' '# numPings=3'
  look_at 'two lines that do something else'

  configure 'numPings=x' 'iperfTestTime=700' 'doPingTests=false'
  look_at 'a number that is none, a long test, no ping test'

  configure 'doPingTests=false' 'doIperf3Tests=false'
  look_at 'no test at all'

  chmod 000 "$installation/connTester.conf"
  look_at 'settings that cannot be read'

  rm -f "$installation/connTester.conf"
  look_at 'no settings'

  mkdir "$installation/connTester.conf"
  look_at 'a directory in place of the settings'
}

FindsAnInstallationThatIsNotWhole() {
  chmod o+w "$installation" "$installation/connTester.conf"
  mv "$programs/in-session" "$programs/iperf3-adapter/iperf3" /tmp
  look_at 'an open folder, programs that are missing'
  chmod o-w "$installation" "$installation/connTester.conf"
  mv /tmp/in-session "$programs"
  mv /tmp/iperf3 "$programs/iperf3-adapter"

  sed -i 's/^    echo .connTester .*/    echo connTester 0.9/' "$prefix/bin/connTester"
  look_at 'another version'

  sed -i '2i echo broken >&2; exit 1' "$prefix/bin/connTester"
  look_at 'a start command that fails'

  rm "$prefix/bin/connTester"
  look_at 'no start command'

  rm -r "$installation"
  look_at 'no folder of the fixed paths'
}

FindsAPingThatIsOfNoUse() {
  replace ping <<<'echo "ping: socket: Operation not permitted" >&2; exit 2'
  look_at 'a ping without rights'

  replace ping <<<'echo of no release'
  rm "$programs/ping-adapter/ping"
  look_at 'a ping that gives no summary, without the adapter'

  replace ping <<'END'
if [ "$1" = -V ]; then echo 'ping (GNU inetutils 2.4)'; else cat /tmp/fake/ping.log; fi
END
  cp "$data/ping/busybox_1.35_reply.log" /tmp/fake/ping.log
  look_at 'a ping whose summary has three numbers, without the adapter'

  cp "$data/ping/inetutils_2.4_reply.log" /tmp/fake/ping.log
  look_at 'a ping with the right summary, without the adapter'

  rm /tmp/bin/ping
  look_at 'no ping'
}

FindsAPingThatHangs() {
  replace ping <<'END'
case $* in
  -V) echo "ping: invalid option -- 'V'" "BusyBox v1.35.0 (Debian) multi-call binary." ;;
  *127.0.0.1) trap '' INT; while :; do sleep 1; done ;;
  *) cat /tmp/fake/ping.log ;;
esac
END
  look_at 'a ping that hangs'
}

FindsAnIperf3ThatIsOfNoUse() {
  replace iperf3 <<<'echo "no library" >&2; exit 127'
  look_at 'an iperf3 that fails'

  replace iperf3 <<<'echo "iperf version 2.1.8"'
  look_at 'another iperf'

  replace iperf3 <<<'echo "iperf 3.12 (cJSON 1.7.15)"'
  ln -sf /tmp/bin/iperf3 "$installation/iperf3"
  look_at 'no adapter'

  ln -sf /nowhere/iperf3 "$installation/iperf3"
  look_at 'a link to nowhere'

  rm "$installation/iperf3"
  look_at 'no iperf3'

  rm "$prefix/bin/connTester"
  look_at 'no iperf3, and no start command'
}

FindsAServerThatDoesNotAnswer() {
  look_at 'a server without iperf3' 127.0.0.3
  look_at 'a network that is not there' 192.0.2.10

  replace ping <<<'case $* in *127.0.0.1) cat /tmp/fake/ping.log;; *) exit 1;; esac'
  look_at 'a server that drops pings'

  replace ping <<<'case $* in *127.0.0.1) cat /tmp/fake/ping.log;; *) echo "ping: no" >&2; exit 2;; esac'
  look_at 'a ping that fails'

  configure doPingTests=false
  look_at 'no ping test'
  configure doIperf3Tests=false
  look_at 'no test at all'
}

FindsAServerThatIsSilent() {
  python3 -c '
import socket, time
server = socket.create_server(("127.0.0.4", 5201), backlog=0)
for client in [socket.socket() for _ in range(3)]:
    client.setblocking(False)
    client.connect_ex(("127.0.0.4", 5201))
    clients = globals().setdefault("clients", []) + [client]
    globals()["clients"] = clients
open("/tmp/fake/full", "w")
time.sleep(60)' &
  wait_until test -e /tmp/fake/full
  look_at 'a server that takes no connection' 127.0.0.4
}

FindsAnAddressThatIsNone() {
  look_at 'a name that nobody knows' fe80::1%nolink
  look_at 'an address with a blank' 'a b'
  look_at 'an address that is too long' sixteen.letters.
  timers '[]'
  look_at 'no address'
}

TakesTheAddressOfTheLastRun() {
  timers '[]'
  echo 1605505183,192.168.1.20,54012,127.0.0.2,5201,0,10,1180000000,943718400,0,0 \
    >"$logs/iperf3_history_forward_csv.log"
  look_at 'a run before, and no timer'
}

TriesATestOnRequest() {
  look_at 'a test that goes through' --try

  replace iperf3 <<'END'
if [ "$1" = --version ]; then echo 'iperf 3.12'; exit; fi
echo 'iperf3: error - the server is busy running a test. try again later' >&2
exit 1
END
  look_at 'a server that is busy' --try

  sed -i 's/the server is busy.*again later/unable to connect/' /tmp/bin/iperf3
  look_at 'a test that fails' --try
}

FindsAHomeThatNoRunCanUse() {
  HOME=/tmp/nowhere look_at 'a home that is missing'
  HOME=relative look_at 'no whole path'
  mkdir '/tmp/a home'
  HOME='/tmp/a home' look_at 'a blank'
  long=/tmp/$(printf 'h%.0s' {1..179})
  mkdir "$long"
  HOME=$long look_at 'a long path'
  touch /tmp/file
  HOME=/tmp/file look_at 'a file in place of the home'
  unset HOME
  look_at 'no HOME'
}

FindsALogDirectoryThatNoRunCanUse() {
  chmod 500 "$logs"
  look_at 'a directory that cannot be written'
  chmod 300 "$logs"
  look_at 'a directory that cannot be listed'
  chmod 755 "$logs"
  chmod 500 "$logs/archive"
  look_at 'an open directory, an archive that cannot be written'
  chmod 700 "$logs" "$logs/archive"

  rmdir "$logs/archive"
  ln -s /nowhere "$logs/archive"
  look_at 'an archive that is a link to nowhere'
  rm "$logs/archive"
  touch "$logs/archive"
  look_at 'a file in place of the archive'
  rm "$logs/archive"
  mkfifo "$logs/ping_latest.log"
  look_at 'a FIFO in place of a file'

  rm -r "$logs"
  look_at 'the first run'
  touch "$logs"
  look_at 'a file in place of the directory'
}

FindsAFullDisk() { # --small-disk
  rm -r "$logs"
  ln -s /tmp/disk "$logs"
  chmod 700 /tmp/disk
  look_at 'a full disk'
}

FindsHistoriesThatDoNotMove() {
  seq 9 >"$logs/connection_test_results_history.log"
  seq 14 >"$logs/ping_history.log"
  touch "$logs/iperf3_history_forward_csv.log"
  chmod 000 "$logs/iperf3_history_forward_csv.log"
  echo "mv: cannot move it" >"$logs/nul"
  look_at 'full histories, one that cannot be read, a move that failed'
}

FindsAPlaceForNulThatIsNone() {
  mkfifo "$logs/nul"
  look_at 'a FIFO nul'
  rm "$logs/nul"
  touch "$logs/nul"
  chmod 400 "$logs/nul"
  look_at 'a file nul that cannot be written'
  rm -f "$logs/nul"
  mkdir "$logs/nul"
  look_at 'a directory nul'

  rm "$prefix/bin/connTester"
  mkdir /tmp/closed
  chmod 500 /tmp/closed
  cd /tmp/closed || fail "no way into it"
  look_at 'no start command, a working directory that cannot be written'
}

FindsARunInProgress() {
  exec 7>>"$logs/connTester.lock"
  echo '1234 2026-11-21 10:00:00' >"$logs/connTester.lock"
  look_at 'a lock of a run that has ended'
  flock 7
  look_at 'a run in progress'
  chmod 000 "$logs/connTester.lock"
  look_at 'a lock that cannot be read'
}

FindsNoHourlyRun() {
  timers '[]'
  look_at 'no timer' "$server"

  replace crontab <<'END'
echo '# 17 * * * * connTester'
echo '17 * * * * PATH=/usr/bin timeout -k 10 600 connTester 127.0.0.2 >/dev/null'
echo '@daily connTester 127.0.0.2'
echo '5 6 * * * connWatch run 127.0.0.2'
echo '7 8 * * * connWatch check'
END
  look_at 'lines of cron' "$server"

  timers '[{"next":null,"last":0,"unit":"connTester@127.0.0.2.timer"},{"unit":"other.timer"},7]'
  replace crontab <<<'exit 1'
  look_at 'a timer that is not due'

  timers '[]'
  look_at 'no timer, and a crontab that fails' "$server"
}

SaysWhatItCannotKnow() {
  rm /tmp/bin/systemctl /tmp/bin/timedatectl /tmp/bin/crontab
  look_at 'no systemctl, no timedatectl, no crontab' "$server"

  replace systemctl <<<'echo "Failed to connect to bus" >&2; exit 1'
  replace timedatectl <<<'echo maybe'
  replace crontab <<<'echo you may not >&2; exit 1'
  look_at 'tools that refuse' "$server"

  replace systemctl <<<'echo no list'
  replace timedatectl <<<'echo no'
  look_at 'no list of timers, a clock that is not set' "$server"
}

FindsARunLongerThanAnHourlyOneMayBe() {
  configure iperfTestTime=600
  look_at 'a run of more than ten minutes'
}

run_doctor_test "$@"

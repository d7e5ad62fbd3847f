#!/usr/bin/env bash
# The real iperf2, with a server on loopback. (The real ping and iperf3 are those of the networks' tests.)
source "$(dirname "$0")/library.sh"

listens() {
  grep --quiet --no-messages ":$(printf '%04X' "$1") 0*:0000 0A " /proc/net/tcp /proc/net/tcp6
}

# Starts a server, which ends with the test, and waits until it listens on the given port.
start_server() {
  "${@:2}" >/tmp/fake/server 2>&1 &
  # shellcheck disable=SC2064 # this server
  trap "kill $!" EXIT
  local tries=100
  until listens "$1"; do
    ((--tries > 0)) || fail "${*:2} does not listen: $(cat /tmp/fake/server)"
    sleep 0.05
  done
}

# What the console shows of the report, and of the result that has the given stamp.
report_and_result() {
  local date client clientPort server serverPort transfer time length rate
  IFS=, read -r date client clientPort server serverPort transfer time length rate _ \
    <"$logs/iperf2_latest.log"
  [[ $rate =~ ^[1-9][0-9]*$ ]] || fail "no whole report: $(cat "$logs/iperf2_latest.log")"
  cat <<END

= IPERF2 latest ====================================
date $date
client ip $client
server ip $server
client tcp port $clientPort
server tcp port $serverPort
transfer ID $transfer
test time $time
length $length
Bps $rate 
Date = $1, Latency = 0 ms, Write Transfer Rate = $rate bps, Read Transfer Rate = 0 bps
END
}

RealIperf2.GivesItsRateToTheResult() {
  need iperf
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  ln -s "$(command -v iperf)" /tmp/bin/iperf
  configure iperfTestTime=1 debugPrintLast=true
  start_server 5001 iperf --server

  run iperf2_tester 127.0.0.1 exec read result

  expect_status 0
  local stamp
  stamp=$(sed 's/^Date = \([0-9T]*\),.*/\1/' "$logs/connection_test_results.txt")
  tail -n +2 /tmp/fake/console >/tmp/fake/shown
  expect_file /tmp/fake/shown < <(report_and_result "$stamp")
  expect_same "$logs/iperf2_latest.log" "$logs/iperf2_history.log"
}

set_up
"$1"

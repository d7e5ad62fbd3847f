#!/usr/bin/env bash
# The real ping, iperf3 and iperf2, with servers on loopback.
source "$(dirname "$0")/library.sh"

# Runs the given program, with the real tools that the machine has.
use_real_tools() {
  rm /tmp/bin/ping "$installation/iperf3"
  tester=(env PATH="$(dirname "$PING_ADAPTER"):/tmp/bin:$PATH" "$1")
}

listens() {
  grep --quiet --no-messages ":$(printf '%04X' "$1") 0*:0000 0A " /proc/net/tcp /proc/net/tcp6
}

# Starts a server, which ends with the test, and waits until it listens on the given port.
start_server() {
  local port=$1
  shift
  "$@" >/tmp/fake/server 2>&1 &
  local server=$!
  # shellcheck disable=SC2064 # this server
  trap "kill $server" EXIT
  local tries=100
  until listens "$port"; do
    ((--tries > 0)) || fail "$* does not listen: $(cat /tmp/fake/server)"
    sleep 0.05
  done
}

# Prints the value of a member of an iperf3 report, of its first one behind the given text.
member() {
  sed -n "/\"$3\"/,\$s/.*\"$2\":\t\"\{0,1\}\([^\",]*\).*/\1/p" "$1" | head -n 1
}

single_precision() {
  perl -e 'printf "%.0f\n", unpack "f", pack "f", shift' "$1"
}

# Prints the columns of a CSV line that say who was connected.
connection() {
  printf '%s,%s,%s,%s,%s,0,1' "$(member "$1" timesecs timestamp)" \
    "$(member "$1" local_host connected)" "$(member "$1" local_port connected)" \
    "$(member "$1" remote_host connected)" "$(member "$1" remote_port connected)"
}

# Prints the bytes and the rate of a sum of an iperf3 report.
sum() {
  printf '%s,%s' "$(member "$1" bytes "$2")" \
    "$(single_precision "$(member "$1" bits_per_second "$2")")"
}

MeasureLatencyAndBothRates() {
  need ping
  need iperf3
  use_real_tools connTester
  ln -s "$(command -v iperf3)" "$installation/iperf3"
  configure numPings=2 iperfTestTime=1
  start_server 5201 iperf3 --server

  run 127.0.0.1

  expect_status 0
  expect_file /tmp/fake/errors </dev/null
  local result whole_result='Date = [0-9]{8}T[0-9]{6}, Latency = [0-9]+ ms, '
  whole_result+='Write Transfer Rate = [1-9][0-9]* bps, Read Transfer Rate = [1-9][0-9]* bps'
  result=$(tail -n 1 /tmp/fake/console)
  [[ $result =~ ^$whole_result$ ]] || fail "no whole result: $result"
  expect_file "$logs/connection_test_results.txt" <<<"$result "
  expect_file "$logs/connection_test_results_history.log" <<<"$result "

  local times='s|^round-trip min/avg/max/stddev = (.*)/(.*)/(.*)/(.*) ms$|\1,\2,\3,\4|p'
  expect_file <(cut --delimiter , --fields 2- "$logs/ping_history.log") < \
    <(sed --quiet --regexp-extended "$times" "$logs/ping_latest.log")
  expect_same "$logs/ping_latest.log" "$logs/ping_history_verbose.log"

  local forward=$logs/iperf3_latest.log reverse=$logs/iperf3_latest-R.log
  expect_file "$logs/iperf3_latest_forward_csv.log" \
    <<<"$(connection "$forward"),$(sum "$forward" sum_sent),0,0"
  expect_file "$logs/iperf3_latest_reverse_csv.log" \
    <<<"$(connection "$reverse"),0,0,$(sum "$reverse" sum_received)"
  expect_same "$logs/iperf3_latest_forward_csv.log" "$logs/iperf3_history_forward_csv.log"
  expect_same "$logs/iperf3_latest_reverse_csv.log" "$logs/iperf3_history_reverse_csv.log"
}

MeasureTheWriteRateWithIperf2() {
  need iperf
  ln -s "$IPERF2_DRIVER" /tmp/bin/iperf2_driver
  ln -s "$(command -v iperf)" /tmp/bin/iperf
  use_real_tools iperf2_driver
  configure iperfTestTime=1 debugPrintLast=true
  start_server 5001 iperf --server

  run 127.0.0.1 exec read result

  expect_status 0
  local date client clientPort server serverPort transfer time length rate
  IFS=, read -r date client clientPort server serverPort transfer time length rate _ \
    <"$logs/iperf2_latest.log"
  [[ $rate =~ ^[1-9][0-9]*$ ]] || fail "no whole report: $(cat "$logs/iperf2_latest.log")"
  local stamp
  stamp=$(sed 's/^Date = \([0-9T]*\),.*/\1/' "$logs/connection_test_results.txt")
  tail -n +2 /tmp/fake/console | diff -u - <(
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
Date = $stamp, Latency = 0 ms, Write Transfer Rate = $rate bps, Read Transfer Rate = 0 bps
END
  ) || fail "the console (-) does not hold the report (+)"
  expect_same "$logs/iperf2_latest.log" "$logs/iperf2_history.log"
}

run_test "$@"

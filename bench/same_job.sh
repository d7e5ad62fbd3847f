#!/bin/sh
# The job of a default run as a POSIX shell script, with as few processes as it can: the same files
# with the same content, and the result line. script/bench measures the program against it.
#
# Usage: same_job.sh ADDRESS
set -u

address=${1-}
logs=$HOME/Library/Logs/Qelmora
installed=/usr/local/bin/Qelmora
pings=10
test_time=10

read_configuration() {
  [ -r "$installed/connTester.conf" ] || return 0
  while IFS= read -r line || [ -n "$line" ]; do
    case $line in
      *numPings*=*) pings=${line#*=} ;;
      *iperfTestTime*=*) test_time=${line#*=} ;;
    esac
  done <"$installed/connTester.conf"
}

# Moves the history "$1.log" to the archive as "$2" when it has ten lines.
archive_full() {
  lines=0
  while IFS= read -r line || [ -n "$line" ]; do
    lines=$((lines + 1))
  done <"$logs/$1.log"
  [ "$lines" -ge 10 ] || return 0
  mv "$logs/$1.log" "$logs/archive/$2_$stamp.log"
  stamp=$(date +%Y%m%dT%H%M%S)
}

read_ping_summary() {
  while IFS= read -r line || [ -n "$line" ]; do
    case $line in
      round-trip*=*)
        numbers=${line#*= }
        numbers=${numbers%% ms*}
        min=${numbers%%/*} numbers=${numbers#*/}
        average=${numbers%%/*} numbers=${numbers#*/}
        max=${numbers%%/*} deviation=${numbers#*/}
        latency=${average%.*}
        date_time=$(date +%Y%m%dT%H%M%S)
        printf '%s,%.3f,%.3f,%.3f,%.3f\n' \
          "$ping_start" "$min" "$average" "$max" "$deviation" >>"$logs/ping_history.log"
        archive_full ping_history ping_history
        ;;
    esac
  done <"$logs/ping_latest.log"
}

ping_test() {
  ping_start=$(date +%Y%m%dT%H%M%S)
  ping -c "$pings" "$address" | tee "$logs/ping_latest.log"
  cat "$logs/ping_latest.log" >>"$logs/ping_history_verbose.log"
  read_ping_summary
}

# Prints the CSV line of a report.
# shellcheck disable=SC2016  # the dollar signs are for awk
report_to_csv='
  function single(rate,  unit, quotient, rest) {
    for (unit = 1; rate / unit >= 16777216; unit *= 2) { }
    quotient = int(rate / unit)
    rest = rate / unit - quotient
    if (rest > 0.5 || rest == 0.5 && quotient % 2) { quotient++ }
    return quotient * unit
  }
  BEGIN { FS = "[:,\t\"]+" }
  $2 == "local_host" { client = $3 }
  $2 == "local_port" { client_port = $3 }
  $2 == "remote_host" { server = $3 }
  $2 == "remote_port" { server_port = $3 }
  $2 == "timesecs" { date = $3 }
  $2 == "duration" { duration = $3 }
  $2 == "reverse" { reverse = $3 }
  $2 == "sum_sent" { wanted = reverse == 0 }
  $2 == "sum_received" { wanted = reverse == 1 }
  wanted && $2 == "bytes" { bytes = $3 }
  wanted && $2 == "bits_per_second" { rate = single($3); wanted = 0 }
  END {
    printf "%s,%s,%s,%s,%s,0,%s,", date, client, client_port, server, server_port, duration
    printf reverse ? "0,0,%s,%.0f\n" : "%s,%.0f,0,0\n", bytes, rate
  }'

# Tests one direction, $1, with the option $2; sets `sent_rate` and `received_rate`.
iperf3_test() {
  # shellcheck disable=SC2086  # no option is no argument
  "$installed/iperf3" -c "$address" -t "$test_time" -J $2 >"$logs/iperf3_latest$2.log"
  wait_ms=$((test_time * 1000 + 1000))
  [ "$wait_ms" -ge 3 ] || wait_ms=3
  sleep "$(printf %d.%03d $((wait_ms / 1000)) $((wait_ms % 1000)))"
  awk "$report_to_csv" "$logs/iperf3_latest$2.log" >"$logs/iperf3_latest_$1_csv.log"
  IFS=, read -r _ _ _ _ _ _ _ _ sent_rate _ received_rate <"$logs/iperf3_latest_$1_csv.log"
  cat "$logs/iperf3_latest_$1_csv.log" >>"$logs/iperf3_history_$1_csv.log"
  archive_full "iperf3_history_$1_csv" "iperf3_history_$1"
}

stamp=$(date +%Y%m%dT%H%M%S)
date_time='' latency=n/a
read_configuration
mkdir -p "$logs/archive"
ping_test
iperf3_test forward ''
write_rate=$sent_rate
iperf3_test reverse -R
read_rate=$received_rate
result="Date = $date_time, Latency = $latency ms, Write Transfer Rate = $write_rate bps, "
result="${result}Read Transfer Rate = $read_rate bps "
echo "$result" | tee "$logs/connection_test_results.txt"
cat "$logs/connection_test_results.txt" >>"$logs/connection_test_results_history.log"
archive_full connection_test_results_history connection_test_results_history

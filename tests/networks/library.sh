# shellcheck shell=bash
# Functions for the tests of networks: the installed start command and the real tools, between the two
# machines of two_machines.sh.
#
# A test breaks something, before a run or at some moment of it, and compares what the run shows, how
# long it takes and what its files hold with expected/TEST.run. There a stamp is TIME, a number other
# than 0 is #, and so is any latency. The tests are short: two pings, two seconds for each direction, two
# seconds of grace. With FAULTS=long the settings are the defaults, and each test prints how many seconds
# its run took.
source "$(dirname "${BASH_SOURCE[0]}")/../packaging/library.sh"
source "$(dirname "${BASH_SOURCE[0]}")/two_machines.sh"

# By the limits of the adapters: 10 s of pings, 30 s of grace and 10 s of patience; for each direction 10 s
# of iperf3, 60 s and 10 s, and the tester's wait of 11 s.
longest_run=$((50 + 2 * 91))

networks=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# Does something when the server's iperf3 test of that number, 1 or 2, has lasted for half a second.
during_test() {
  (
    until (($(grep --count '^Accepted connection' "$server_log") >= $1)); do sleep 0.01; done
    sleep 0.5
    "${@:2}"
  ) &
}

# Runs the tester and notes how many seconds it took.
measure() {
  local start=${EPOCHREALTIME/./}
  run start_command "$1"
  seconds=$(((${EPOCHREALTIME/./} - start) / 1000000))
}

mask() {
  sed -E 's/10\.9\.0\.1|fd00::1/CLIENT/g; s/10\.9\.0\.2|fd00::2/SERVER/g
    s/[0-9]{8}T[0-9]{6}/TIME/g; s/\b[0-9]*[1-9][0-9]*(\.[0-9]+)?|\b0\.[0-9]+/#/g
    s/Latency = 0 ms/Latency = # ms/' "$@"
}

# Prints the lines of a file, masked, each behind a name.
print_masked() {
  if [[ -e $2 ]]; then
    mask "$2" | sed "s/^/$1: /"
  fi
}

# Prints how much of its test was measured, by the bytes and the rate of a line in columns $2 and $3.
print_part() {
  awk -F , -v bytes="$2" -v rate="$3" -v test="$test_seconds" '
    $rate == 0 { print "nothing"; exit }
    { part = 8 * $bytes / $rate / test }
    { print (part < 0.9 ? "a part of the test" : part > 1.1 ? "more than the test lasts" : "the whole test") }
  ' "$1"
}

# Without the advice that newer releases give. That a server was killed is seen in three ways, and any
# may come first.
same_error='
  s/ - server may have stopped running or use a different port, firewall issue, etc\.//
  s/unable to write to stream socket: Connection reset by peer/control socket has closed unexpectedly/
  s/unable to write to stream socket: Broken pipe/control socket has closed unexpectedly/'

print_error() {
  sed -n 's/^\t*"error":[\t ]*"\(.*\)".*/\1/p' "$1" | mask | sed "$same_error"
}

print_run() {
  echo "status: $status"
  print_masked errors /tmp/fake/errors
  tail -n 2 "$logs/ping_latest.log" | print_masked ping /dev/stdin
  print_masked 'ping history' "$logs/ping_history.log"
  print_masked forward "$logs/iperf3_history_forward_csv.log"
  echo "forward measured: $(print_part "$logs/iperf3_history_forward_csv.log" 8 9)"
  echo "forward report's error: $(print_error "$logs/iperf3_latest.log")"
  print_masked reverse "$logs/iperf3_history_reverse_csv.log"
  echo "reverse measured: $(print_part "$logs/iperf3_history_reverse_csv.log" 10 11)"
  echo "reverse report's error: $(print_error "$logs/iperf3_latest-R.log")"
  print_masked result "$logs/connection_test_results.txt"
}

# Compares the run, which took at most $1 seconds; one with the default settings, as many as that can take.
# It may also be as that of the test $2.
expect_run() {
  local most=$1
  if [[ ${FAULTS-} == long ]]; then
    most=$longest_run
    echo "| \`${row^}\` | $seconds |"
  fi
  print_run >/tmp/fake/run
  if [[ $# == 2 ]] && cmp --quiet "$networks/expected/$2.run" /tmp/fake/run; then
    row=$2
  fi
  expect_recorded "$networks/expected/$row.run" /tmp/fake/run
  ((seconds <= most)) || fail "the run took $seconds s, more than $most"
}

# Makes each direction's test last $1 seconds, and the grace $2, if they are not to be the defaults.
shorten_tests() {
  [[ ${FAULTS-} != long ]] || return 0
  test_seconds=$1
  configure numPings=2 "iperfTestTime=$1"
  export CONNTESTER_GRACE_SECONDS=${2-2}
}

# Runs the test of a network.
run_network_test() {
  set_up
  rm -r "$installation" /tmp/bin/ping
  install_tester
  test_seconds=10
  shorten_tests 2
  lay_cable
  row=$(basename "$0" _test.sh).$1
  "$1"
}

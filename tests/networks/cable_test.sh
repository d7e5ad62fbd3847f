#!/usr/bin/env bash
# The cable to the server, and what lies on the way.
source "$(dirname "$0")/library.sh"

cut_cable() {
  ip link set cable down
}

cut_cable_for_a_second() {
  cut_cable
  sleep 1
  ip link set cable up
}

IsSound() {
  start_server

  measure $server

  expect_run 20
}

IsCutForGoodInTheForwardTest() {
  start_server
  during_test 1 cut_cable

  measure $server

  expect_run 30
}

IsCutForGoodInTheReverseTest() {
  start_server
  during_test 2 cut_cable

  measure $server

  expect_run 30
}

IsCutForASecondInTheForwardTest() {
  start_server
  during_test 1 cut_cable_for_a_second

  measure $server

  expect_run 30
}

IsCutBeforeTheRun() {
  start_server
  cut_cable

  measure $server

  expect_run 30
}

# As with a firewall that drops pings. Ping waits for ten seconds, then ends by itself.
SwallowsPings() {
  shorten_tests 2 12
  start_server
  in_server sh -c 'echo 1 >/proc/sys/net/ipv4/icmp_echo_ignore_all'

  measure $server

  expect_run 30
}

# As with a firewall that drops everything: an address that the cable takes and nobody has.
SwallowsEverything() {
  shorten_tests 2 12
  local hardware_address
  hardware_address=$(in_server ip -o link show cable | sed 's/.*ether \([^ ]*\).*/\1/')
  ip neigh add 10.9.0.3 lladdr "$hardware_address" dev cable

  measure 10.9.0.3

  expect_run 60
}

CarriesIpv6() {
  start_server

  measure fd00::2

  expect_run 20
}

run_network_test "$@"

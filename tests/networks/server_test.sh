#!/usr/bin/env bash
# What the server does, or does not.
source "$(dirname "$0")/library.sh"

signal_server() {
  kill "-$1" "$server_process"
}

IsFrozenBeforeTheRun() {
  start_server
  signal_server STOP

  measure $server

  expect_run 30
}

IsFrozenInTheForwardTest() {
  start_server
  during_test 1 signal_server STOP

  measure $server

  expect_run 30
}

IsFrozenInTheReverseTest() {
  start_server
  during_test 2 signal_server STOP

  measure $server

  expect_run 30
}

IsKilledInTheForwardTest() {
  start_server
  during_test 1 signal_server KILL

  measure $server

  expect_run 30
}

IsKilledInTheReverseTest() {
  start_server
  during_test 2 signal_server KILL

  measure $server

  expect_run 30
}

# The end of the connection may overtake the server's last word, and it seems to have been killed.
IsTerminatedInTheForwardTest() {
  start_server
  during_test 1 signal_server TERM

  measure $server

  expect_run 30 server.IsKilledInTheForwardTest
}

IsTerminatedInTheReverseTest() {
  start_server
  during_test 2 signal_server TERM

  measure $server

  expect_run 30 server.IsKilledInTheReverseTest
}

# A listener that takes the connection and says nothing.
SaysNothing() {
  in_server python3 -c '
import socket, time
listener = socket.create_server(("10.9.0.2", 5201))
print("listening", flush=True)
connections = []
while True:
    connections.append(listener.accept())' >"$server_log" &
  until grep --quiet listening "$server_log"; do sleep 0.01; done

  measure $server

  expect_run 30
}

RefusesItsPort() {
  measure $server

  expect_run 30
}

# Another user's test lasts longer than the run.
IsBusy() {
  start_server
  iperf3 --client $server --time 100 >/tmp/fake/other &
  until grep --quiet '^Accepted' "$server_log"; do sleep 0.01; done

  measure $server

  expect_run 30
}

# The run of another begins in the forward test: one gets that, the other the reverse test.
IsSharedByTwoUsers() {
  shorten_tests 4
  start_server
  mkdir /tmp/home/other
  during_test 1 env HOME=/tmp/home/other "$prefix/bin/connTester" $server >/tmp/fake/other 2>&1

  measure $server

  expect_run 30
}

HasAnUnknownName() {
  measure nobody.invalid

  expect_run 30
}

run_network_test "$@"

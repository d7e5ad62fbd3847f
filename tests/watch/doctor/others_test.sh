#!/usr/bin/env bash
# connWatch doctor on machines on which something is another user's, and with the real tools.
source "$(dirname "$0")/library.sh"

FindsAnotherUsersFolder() {
  chown 1 "$installation"
  look_at "another user's folder of the fixed paths"
}

FindsAnotherUsersHome() {
  chown 1 /tmp/home
  look_at "another user's home"
}

FindsFilesOfOthers() {
  touch "$logs/ping_latest.log" "$logs/notes.txt"
  chown 1 "$logs/ping_latest.log" "$logs/notes.txt"
  look_at 'files of others'
  chown 1 "$logs"
  look_at "another user's directory"
}

# Whether the real server listens at 127.0.0.5, without a connection to it.
listens() {
  grep -q ' 0500007F:1451 0*:0000 0A ' /proc/net/tcp
}

# The server outlives that its port is tried.
MeetsTheRealTools() {
  need ping
  need iperf3
  rm /tmp/bin/ping /tmp/bin/iperf3
  provide ping iperf3
  iperf3 --server --bind 127.0.0.5 >/tmp/fake/server 2>&1 &
  wait_until listens
  changing='s/iputils [0-9]+/iputils 20221126/; s/3\.[0-9.]+ at/3.12 at/; s/ping [0-9.]+ ms/ping 0.01 ms/'

  look_at 'a test' --try 127.0.0.5
  look_at 'a connection' 127.0.0.5
  wait_until listens
  look_at 'a test again' --try 127.0.0.5
}

run_doctor_test "$@"

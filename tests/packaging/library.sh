# shellcheck shell=bash
# shellcheck disable=SC2034 # the scripts use what is not used here
#
# Functions for the tests of what is installed, on top of those for all tests that run a program.
#
#   /tmp/usr  the prefix of the installation that a test makes
#
# CTest sets BUILD_DIRECTORY and PROJECT_VERSION.
source "$(dirname "${BASH_SOURCE[0]}")/../support/program.sh"

packaging=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../packaging" && pwd)
prefix=/tmp/usr
programs=$prefix/libexec/connTester

# The fake ping is the system's one here.
machine_path=$PATH
export PATH=/tmp/bin:$PATH

start_command() {
  exec "$prefix/bin/connTester" "$@"
}

# Installs, with the options of cmake that are given.
install_tester() {
  cmake --install "$BUILD_DIRECTORY" --prefix "$prefix" "$@" >/tmp/fake/installation 2>&1 ||
    fail "the installation ended with status $?: $(cat /tmp/fake/installation)"
}

# Installs all that stands under the prefix, as a package does, on a machine without the program's fixed
# folder.
install_without_fixed_paths() {
  install_tester --component program
  rm -rf "$installation"
}

# Compares the names of the fixed folder and of what it holds, of links with what they lead to. "record"
# is the list of what was made there.
expect_folder() {
  expect_file <(find "${DESTDIR-}$installation" -printf '%f>%l\n' 2>/dev/null |
    sed 's/>$//; s/.made-by-connTester/record/' | sort | paste -sd ' ') <<<"$1"
}

# Notes all that is in a folder, for `expect_as_it_was`.
remember() {
  rm -rf /tmp/before
  cp -a "$1" /tmp/before
}

expect_as_it_was() {
  diff -r --no-dereference /tmp/before "$1" || fail "$1 has changed"
}

# Puts a fake in the place of the program: it notes its arguments and runs, at its end, the shell
# commands given.
install_fake_program() {
  install_tester
  cp "$support/fake_tool" "$programs/connTester"
  touch /tmp/fake/connTester.out
  echo "$1" >/tmp/fake/connTester.end
}

# Puts tools of the machine beside the fakes, for a run with nothing else in PATH.
provide() {
  local tool
  for tool in "$@"; do
    ln -sf "$(PATH=$machine_path command -v "$tool")" "/tmp/bin/$tool"
  done
}

# Puts a shell script, which comes from standard input, in a tool's place.
replace() {
  rm -f "/tmp/bin/$1"
  { echo '#!/bin/sh' && cat; } >"/tmp/bin/$1"
  chmod +x "/tmp/bin/$1"
}

# Calls a command for each line of standard input, a case: its columns, with bars between them, are the
# arguments.
for_each_case() {
  local lines line columns
  mapfile -t lines < <(sed 's/ *| */|/g')
  for line in "${lines[@]}"; do
    echo "The case of: $line"
    IFS='|' read -ra columns <<<"$line"
    "$@" "${columns[@]}"
  done
}

expect_silent_success() {
  expect_file /tmp/fake/errors </dev/null
  expect_file /tmp/fake/console </dev/null
  expect_status 0
}

# Starts a command in the background as the process `started`. It has its signals there, and none of
# the files that a test keeps open.
start() {
  set -m
  "$@" >/tmp/fake/console 2>/tmp/fake/errors 7>&- 8>&- 9>&- &
  started=$!
  set +m
}

# What the shell of a command does that lasts: it says by one FIFO that it has begun, and reads from
# another until `open_gate`, or until the test ends.
wait_at_gate='echo >/tmp/fake/begun; read -r _ </tmp/fake/gate'

make_gate() {
  rm -f /tmp/fake/begun /tmp/fake/gate
  mkfifo /tmp/fake/begun /tmp/fake/gate
  exec 8<>/tmp/fake/gate
}

# Starts a command that comes to the gate.
start_up_to_gate() {
  make_gate
  start "$@"
  wait_until_begun
}

# The one who said so before may not have closed the FIFO yet: then there is nothing to read.
wait_until_begun() {
  until read -r _ </tmp/fake/begun; do :; done
}

open_gate() {
  echo >&8
}

# Waits for the end of the process `started`, which has to end with status $1.
expect_end() {
  status=0
  wait "$started" || status=$?
  expect_status "$1"
}

# Waits, five seconds at most, until a command succeeds.
wait_until() {
  local tries=100
  until "$@"; do
    ((--tries > 0)) || fail "never came: $*"
    sleep 0.05
  done
}

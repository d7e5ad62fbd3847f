# shellcheck shell=bash
# Functions for the tests of what is installed. A test script sources this file as it would source
# that of the tests of the whole program, whose functions and machine it has, too.
#
#   /tmp/usr  the prefix of the installation that a test makes
#
# CTest sets BUILD_DIRECTORY and PROJECT_VERSION.
source "$(dirname "${BASH_SOURCE[0]}")/../support/program.sh"

# shellcheck disable=SC2034 # used by the scripts
packaging=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../packaging" && pwd)
prefix=/tmp/usr
programs=$prefix/libexec/connTester

# The fake ping is the system's one here.
machine_path=$PATH
export PATH=/tmp/bin:$PATH

# shellcheck disable=SC2034 # used by `run`
tester=("$prefix/bin/connTester")

# Runs what is tested, which a test may change, and notes what it prints and its exit status.
run() {
  status=0
  "${tester[@]}" "$@" >/tmp/fake/console 2>/tmp/fake/errors || status=$?
}

install_tester() {
  cmake --install "$BUILD_DIRECTORY" --prefix "$prefix" >/tmp/fake/installation 2>&1 ||
    fail "the installation ended with status $?: $(cat /tmp/fake/installation)"
}

# Installs all that stands under the prefix, as a package does, on a machine without the program's fixed
# folder.
install_without_fixed_paths() {
  cmake --install "$BUILD_DIRECTORY" --prefix "$prefix" --component program >/tmp/fake/installation
  rm -rf "$installation"
}

expect_no_folder() {
  [[ ! -e $installation ]] || fail "the fixed folder is there, with $(names_in "$installation")"
}

# Notes all that is in the fixed folder, for `expect_folder_as_it_was`.
remember_folder() {
  rm -rf /tmp/before
  cp -a "$installation" /tmp/before
}

expect_folder_as_it_was() {
  diff -r --no-dereference /tmp/before "$installation" || fail 'the fixed folder has changed'
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

# Has `date` tell the given time. What may stand there is a link to the machine's own.
stop_clock() {
  rm -f /tmp/bin/date
  printf '#!/bin/sh\nexec %s --date "%s" "$@"\n' "$(PATH=$machine_path command -v date)" "$1" \
    >/tmp/bin/date
  chmod +x /tmp/bin/date
}

# Prints the names in a folder, as `ls -A` does, whose system call not every proot knows.
names_in() {
  find "$1" -mindepth 1 -maxdepth 1 -printf '%f\n' | LC_ALL=C sort
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
  expect_status 0
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/errors </dev/null
}

# Makes two FIFOs: what a test starts in the background says in "begun" that it has begun, and reads
# "gate" to last until `open_gate`, or until the test ends. It must not inherit file 8.
make_gate() {
  rm -f /tmp/fake/begun /tmp/fake/gate
  mkfifo /tmp/fake/begun /tmp/fake/gate
  exec 8<>/tmp/fake/gate
}

wait_until_begun() {
  read -r _ </tmp/fake/begun
}

open_gate() {
  echo >&8
}

# Waits for the end of the process `started`, which has to end with status $1.
expect_end() {
  status=0
  # shellcheck disable=SC2154 # set by the caller
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

# Prints the states of the processes in a session, as /proc has them, without those that are dead.
states_in_session() {
  cat /proc/[0-9]*/stat 2>/dev/null | sed 's/.*) //' |
    awk -v session="$1" '$4 == session && $1 != "Z" { print $1 }'
}

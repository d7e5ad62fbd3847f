#!/usr/bin/env bash
# The script that makes and removes the two files in the program's fixed folder.
source "$(dirname "$0")/library.sh"

adapter=$programs/iperf3-adapter/iperf3

fixed_paths() {
  exec "$programs/fixed-paths" "$@"
}

# The program in an installation that has not made them, on a machine without the folder.
prepare() {
  install_without_fixed_paths
  cd /usr/local/bin
}

# The steps of the tables are these and the shell's, which stands where the folder is. The script's are
# to succeed; what it says is kept.

call() {
  run "$@"
  expect_status 0
  expect_file /tmp/fake/console </dev/null
  cat /tmp/fake/errors >>/tmp/fake/said
}

make() {
  call fixed_paths make
}

unlink() {
  call fixed_paths unlink
}

remove() {
  call fixed_paths remove
}

another() {
  call /tmp/other/libexec/connTester/fixed-paths "$1"
}

# Does what an earlier version did: its link led to the system's iperf3, its record named no installation,
# and this record's last line has lost its end.
make_as_before() {
  mkdir Qelmora
  ln -s /usr/bin/iperf3 Qelmora/iperf3
  cp "$packaging/connTester.conf" Qelmora
  printf 'folder\niperf3 /usr/bin/iperf3\nconfiguration' >Qelmora/.made-by-connTester
}

# Takes the steps $1 and compares the folder with $2, and with $3 what the script has said.
expect_folder_after() {
  rm -rf Qelmora /tmp/other
  cp -a "$prefix" /tmp/other
  : >/tmp/fake/said

  eval "$1"

  expect_folder "${2-}"
  expect_file /tmp/fake/said < <(printf %s "${3:+connTester: $3$'\n'}")
}

MakesALinkAndAConfigurationForEverybody() {
  prepare
  umask 077

  make

  expect_silent_success
  expect_folder "Qelmora connTester.conf iperf3>$adapter record"
  expect_same "$packaging/connTester.conf" Qelmora/connTester.conf
  expect_file <(find Qelmora ! -type l -printf '%m %f\n' | sort) <<'END'
644 .made-by-connTester
644 connTester.conf
755 Qelmora
END
  remember "$installation"
  make
  expect_as_it_was "$installation"
}

RemovesWhatItHasMadeAndNothingElse() {
  prepare

  for_each_case expect_folder_after <<END
make; remove                                 |
make; unlink                                 | Qelmora connTester.conf record
make; unlink; make                           | Qelmora connTester.conf iperf3>$adapter record
make; rm Qelmora/connTester.conf; make       | Qelmora iperf3>$adapter record
make; touch Qelmora/mine; remove             | Qelmora mine
make; ln -sf /opt/iperf3 Qelmora/iperf3; remove             | Qelmora iperf3>/opt/iperf3
make; unlink; ln -s $adapter Qelmora/iperf3; remove         | Qelmora iperf3>$adapter
make; echo numPings=3 >>Qelmora/connTester.conf; remove     | Qelmora connTester.conf \
                                             | $installation/connTester.conf stays: it holds settings of yours
mkdir Qelmora; make; remove                                 | Qelmora
mkdir Qelmora; ln -s $adapter Qelmora/iperf3; make; remove  | Qelmora iperf3>$adapter
mkdir Qelmora; cp $packaging/connTester.conf Qelmora; make; remove | Qelmora connTester.conf
END
}

LeavesWhatIsThere() {
  prepare
  mkdir Qelmora

  local write
  for write in tee 'ln -sf /tmp/away'; do
    rm -f Qelmora/*
    $write Qelmora/iperf3 <<<mine
    $write Qelmora/connTester.conf <<<mine
    remember "$installation"

    make
    unlink
    remove

    expect_as_it_was "$installation"
  done
  expect_file /tmp/fake/said </dev/null
}

LeavesToAnotherInstallationWhatIsItsOwn() {
  prepare
  local theirs=/tmp/other/libexec/connTester
  local their_link="iperf3>$theirs/iperf3-adapter/iperf3"
  local said="$installation/iperf3 is another installation's. When that is removed, run, as root:"

  for_each_case expect_folder_after <<END
another make; rm -r /tmp/other; make         | Qelmora connTester.conf iperf3>$adapter record
another make; make; remove                   | Qelmora connTester.conf $their_link record \
                                             | $said $programs/fixed-paths make
another make; make; remove; another remove   || $said $programs/fixed-paths make
make; another make; remove                   | Qelmora connTester.conf record \
                                             | $said $theirs/fixed-paths make
make; another make; remove; another make     | Qelmora connTester.conf $their_link record \
                                             | $said $theirs/fixed-paths make
make; another make; remove; another remove   || $said $theirs/fixed-paths make
END
}

TakesOverFromAnEarlierVersion() {
  prepare

  for_each_case expect_folder_after <<END
make_as_before; make; remove |
make_as_before; ln -sf /opt/iperf3 Qelmora/iperf3; make | Qelmora connTester.conf iperf3>/opt/iperf3 record
make_as_before; make         | Qelmora connTester.conf iperf3>$adapter record
END
  expect_file Qelmora/.made-by-connTester <<END
folder $programs
configuration $programs
iperf3 $adapter
END
}

SaysThatIperf3IsMissing() {
  prepare
  provide cp dirname grep ln mkdir mv readlink sh

  expect_folder_after "call env PATH=/tmp/bin $programs/fixed-paths make" \
    "Qelmora connTester.conf iperf3>$adapter record" \
    'iperf3 is not installed. Install it, or switch the tests with it off.'
}

LinksTheSystemsIperf3WhereThereIsNoAdapter() {
  prepare
  rm "$adapter"

  expect_folder_after make "Qelmora connTester.conf iperf3>$(command -v iperf3) record"
  expect_folder_after 'make; remove'
}

LinksNoIperf3OfTheWorkingDirectory() {
  prepare
  rm "$adapter"
  provide cp dirname grep mkdir mv readlink sh
  cp "$support/fake_tool" iperf3

  run env PATH=.:/tmp/bin "$programs/fixed-paths" make

  expect_status 1
  expect_file /tmp/fake/errors \
    <<<"connTester: iperf3 is not installed. Install it, then run, as root: $programs/fixed-paths make"
  expect_folder 'Qelmora connTester.conf record'
}

SaysThatTheFolderCannotBeWritten() { # --unprivileged
  prepare
  make
  chmod a-w "$installation"
  remember "$installation"

  local command
  for command in make unlink remove; do
    run fixed_paths "$command"

    expect_status 1
    expect_file /tmp/fake/errors <<<"connTester: cannot write in $installation"
  done
  expect_as_it_was "$installation"
}

RefusesOtherArguments() {
  prepare

  local arguments
  for arguments in '' other 'make make'; do
    # shellcheck disable=SC2086 # several arguments
    run fixed_paths $arguments

    expect_status 2
    expect_file /tmp/fake/errors <<<'usage: fixed-paths make | unlink | remove'
    expect_folder ''
  done
}

run_test "$@"

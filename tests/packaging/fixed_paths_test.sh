#!/usr/bin/env bash
# The script that makes and removes the two files in the program's fixed folder.
source "$(dirname "$0")/library.sh"

adapter=$programs/iperf3-adapter/iperf3

# The script in an installation that has not made them, on a machine without them.
prepare() {
  cmake --install "$BUILD_DIRECTORY" --prefix "$prefix" --component program >/tmp/fake/installation
  rm -r "$installation"
  # shellcheck disable=SC2034 # used by `run`
  tester=("$programs/fixed-paths")
}

# Compares all that stands in the fixed folder, links with what they hold, with standard input.
expect_folder() {
  expect_file <(find "$installation" -mindepth 1 ! -name .made-by-connTester \
    -printf '%f %y %l\n' | sort)
}

expect_silent_success() {
  expect_status 0
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/errors </dev/null
}

expect_no_folder() {
  [[ ! -e $installation ]] || fail "the folder is there: $(names_in "$installation")"
}

MakesALinkAndAConfiguration() {
  prepare

  run make

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
  expect_same "$packaging/connTester.conf" "$installation/connTester.conf"
}

MakesThemReadableForEverybody() {
  prepare
  umask 077

  run make

  expect_file <(find "$installation" -maxdepth 1 -type f -printf '%m %f\n' | sort) <<'END'
644 .made-by-connTester
644 connTester.conf
END
  expect_file <(find "$installation" -maxdepth 0 -printf "%m\n") <<<755
}

MakesNothingTwice() {
  prepare
  run make
  cp -a "$installation" /tmp/before

  run make

  expect_silent_success
  diff -r --no-dereference /tmp/before "$installation" || fail 'the second time changed something'
}

LeavesWhatIsThere() {
  prepare
  mkdir "$installation"
  echo mine | tee "$installation/iperf3" >"$installation/connTester.conf"

  local command
  for command in make unlink remove; do
    run "$command"

    expect_silent_success
    expect_folder <<<$'connTester.conf f \niperf3 f '
    expect_file "$installation/iperf3" <<<mine
    expect_file "$installation/connTester.conf" <<<mine
  done
}

LeavesLinksThatLeadNowhere() {
  prepare
  mkdir "$installation"
  ln -s /tmp/away "$installation/iperf3"
  ln -s /tmp/away "$installation/connTester.conf"

  local command
  for command in make unlink remove; do
    run "$command"

    expect_silent_success
    expect_folder <<<$'connTester.conf l /tmp/away\niperf3 l /tmp/away'
  done
}

RemovesWhatItHasMade() {
  prepare
  run make

  run remove

  expect_silent_success
  expect_no_folder
}

RemovesNothingThatItHasNotMade() {
  prepare
  mkdir "$installation"
  ln -s "$adapter" "$installation/iperf3"
  cp "$packaging/connTester.conf" "$installation/connTester.conf"
  run make

  run remove

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
}

LeavesAFolderThatWasThere() {
  prepare
  mkdir "$installation"
  run make

  run remove

  expect_silent_success
  expect_file <(names_in "$installation") </dev/null
}

LeavesAFolderThatHoldsMore() {
  prepare
  run make
  touch "$installation/mine"

  run remove

  expect_silent_success
  expect_file <(names_in "$installation") <<<mine
}

LeavesAnEditedConfiguration() {
  prepare
  run make
  echo numPings=3 >>"$installation/connTester.conf"

  run remove

  expect_status 0
  expect_file /tmp/fake/errors \
    <<<"connTester: $installation/connTester.conf stays: it holds settings of yours"
  expect_file <(names_in "$installation") <<<connTester.conf
}

LeavesALinkThatWasChanged() {
  prepare
  run make
  ln -sf /opt/iperf3 "$installation/iperf3"

  run remove

  expect_silent_success
  expect_folder <<<'iperf3 l /opt/iperf3'
}

LeavesALinkThatWasMadeAnewByHand() {
  prepare
  run make
  run unlink
  ln -s "$adapter" "$installation/iperf3"

  run remove

  expect_silent_success
  expect_folder <<<"iperf3 l $adapter"
}

DoesNotBringBackADeletedConfiguration() {
  prepare
  run make
  rm "$installation/connTester.conf"

  run make

  expect_silent_success
  expect_folder <<<"iperf3 l $adapter"
}

BringsBackTheLinkThatItRemoved() {
  prepare
  run make
  run unlink
  expect_silent_success
  expect_folder <<<'connTester.conf f '

  run make

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
}

SaysThatIperf3IsMissing() {
  prepare
  provide cp dirname grep ln mkdir mv readlink sh
  tester=(env PATH=/tmp/bin "$programs/fixed-paths")

  run make

  expect_status 0
  expect_file /tmp/fake/errors \
    <<<'connTester: iperf3 is not installed. Install it, or switch the tests with it off.'
  expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
}

LinksTheSystemsIperf3WhereThereIsNoAdapter() {
  prepare
  rm "$adapter"

  run make

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $(command -v iperf3)
END
  run remove
  expect_silent_success
  expect_no_folder
}

LinksNoIperf3OfTheWorkingDirectory() {
  prepare
  rm "$adapter"
  provide cp dirname grep mkdir mv readlink sh
  cp "$tests/fake_tool" /tmp/work/iperf3
  cd /tmp/work
  tester=(env PATH=.:/tmp/bin "$programs/fixed-paths")

  run make

  expect_status 1
  expect_file /tmp/fake/errors \
    <<<"connTester: iperf3 is not installed. Install it, then run, as root: $programs/fixed-paths make"
  expect_folder <<<'connTester.conf f '
}

# What an earlier version has left: a link to the system's iperf3, and a record that names no
# installation and whose last line has lost its end.
leave_earlier_version() {
  mkdir "$installation"
  ln -s /usr/bin/iperf3 "$installation/iperf3"
  cp "$packaging/connTester.conf" "$installation/connTester.conf"
  printf 'folder\niperf3 /usr/bin/iperf3\nconfiguration' >"$installation/.made-by-connTester"
}

TakesOverFromAnEarlierVersion() {
  prepare
  leave_earlier_version

  run make

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
  expect_file "$installation/.made-by-connTester" <<END
folder $programs
configuration $programs
iperf3 $adapter
END
  run remove
  expect_silent_success
  expect_no_folder
}

LeavesALinkToTheSystemsIperf3ThatTheUserMade() {
  prepare
  leave_earlier_version
  ln -sf /opt/iperf3 "$installation/iperf3"

  run make

  expect_silent_success
  expect_file <(readlink "$installation/iperf3") <<</opt/iperf3
}

# The installation beside the first one.
prepare_another() {
  other=/tmp/other/libexec/connTester
  cmake --install "$BUILD_DIRECTORY" --prefix /tmp/other --component program >/tmp/fake/installation
  rm -rf "$installation"
}

expect_another_said() {
  expect_status 0
  expect_file /tmp/fake/errors <<<"connTester: $installation/iperf3 is another installation's. When\
 that is removed, run, as root: $1/fixed-paths make"
}

RemovesNothingOfAnotherInstallation() {
  prepare
  prepare_another
  "$other/fixed-paths" make
  cp -a "$installation" /tmp/before
  run make
  expect_another_said "$programs"

  run remove

  expect_silent_success
  diff -r --no-dereference /tmp/before "$installation" || fail 'the first has lost something'
  "$other/fixed-paths" remove
  expect_no_folder
}

LeavesTheSettingsToTheOtherInstallation() {
  prepare
  prepare_another
  run make
  "$other/fixed-paths" make 2>/tmp/fake/errors
  expect_another_said "$other"

  run remove

  expect_silent_success
  expect_folder <<<'connTester.conf f '
  "$other/fixed-paths" make
  expect_folder <<END
connTester.conf f 
iperf3 l $other/iperf3-adapter/iperf3
END
  "$other/fixed-paths" remove
  expect_no_folder
}

ReplacesTheLinkOfAnInstallationThatIsGone() {
  prepare
  prepare_another
  "$other/fixed-paths" make
  rm -r /tmp/other

  run make

  expect_silent_success
  expect_file <(readlink "$installation/iperf3") <<<"$adapter"
}

SaysThatTheFolderCannotBeWritten() { # --unprivileged
  prepare
  run make
  chmod a-w "$installation"
  cp -a "$installation" /tmp/before

  local command
  for command in make unlink remove; do
    run "$command"

    expect_status 1
    expect_file /tmp/fake/errors <<<"connTester: cannot write in $installation"
  done
  diff -r --no-dereference /tmp/before "$installation" || fail 'something has changed'
}

PutsDestdirBeforeThePaths() {
  prepare
  export DESTDIR=/tmp/stage

  run make

  expect_silent_success
  expect_no_folder
  installation=$DESTDIR$installation expect_folder <<END
connTester.conf f 
iperf3 l $adapter
END
  run remove
  expect_silent_success
  expect_file <(find /tmp/stage ! -type d) </dev/null
}

RefusesOtherArguments() {
  prepare

  local arguments
  for arguments in '' other 'make make'; do
    # shellcheck disable=SC2086 # several arguments
    run $arguments

    expect_status 2
    expect_file /tmp/fake/errors <<<'usage: fixed-paths make | unlink | remove'
    expect_no_folder
  done
}

run_test "$@"

#!/usr/bin/env bash
# The script that makes and removes the two files in the program's fixed folder.
source "$(dirname "$0")/library.sh"

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
iperf3 l $(command -v iperf3)
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
  diff -r /tmp/before "$installation" || fail 'the second time changed something'
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
  ln -s "$(command -v iperf3)" "$installation/iperf3"
  cp "$packaging/connTester.conf" "$installation/connTester.conf"
  run make

  run remove

  expect_silent_success
  expect_folder <<END
connTester.conf f 
iperf3 l $(command -v iperf3)
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
  ln -s "$(command -v iperf3)" "$installation/iperf3"

  run remove

  expect_silent_success
  expect_folder <<<"iperf3 l $(command -v iperf3)"
}

DoesNotBringBackADeletedConfiguration() {
  prepare
  run make
  rm "$installation/connTester.conf"

  run make

  expect_silent_success
  expect_folder <<<"iperf3 l $(command -v iperf3)"
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
iperf3 l $(command -v iperf3)
END
}

SaysThatIperf3IsMissing() {
  prepare
  provide cp dirname grep mkdir readlink sh
  tester=(env PATH=/tmp/bin "$programs/fixed-paths")

  run make

  expect_status 1
  expect_file /tmp/fake/errors <<<"connTester: iperf3 is not installed. Install it, then run, as\
 root: $programs/fixed-paths make"
  expect_folder <<<'connTester.conf f '
}

PutsDestdirBeforeThePaths() {
  prepare
  export DESTDIR=/tmp/stage

  run make

  expect_silent_success
  expect_no_folder
  installation=$DESTDIR$installation expect_folder <<END
connTester.conf f 
iperf3 l $(command -v iperf3)
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

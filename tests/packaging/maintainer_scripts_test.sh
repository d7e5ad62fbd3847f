#!/usr/bin/env bash
# The package's maintainer scripts, with the test's prefix in the place of /usr.
source "$(dirname "$0")/library.sh"

# Unpacks the package as dpkg does, on a machine without the fixed paths.
unpack() {
  cmake --install "$BUILD_DIRECTORY" --prefix "$prefix" --component program >/tmp/fake/installation
  rm -rf "$installation"
}

# Runs a maintainer script with its arguments, as dpkg does. It has to succeed.
maintain() {
  sed "s|/usr/libexec|$prefix/libexec|" "$packaging/debian/$1" >/tmp/work/script
  tester=(sh /tmp/work/script)
  run "${@:2}"
  expect_status 0
  expect_file /tmp/fake/console </dev/null
}

expect_silence() {
  expect_file /tmp/fake/errors </dev/null
}

# What dpkg does when it removes the package.
remove_package() {
  maintain prerm remove
  rm -r "$prefix"
  maintain postrm remove
}

PurgeLeavesNothing() {
  unpack
  maintain postinst configure
  remove_package
  expect_silence

  maintain postrm purge

  expect_silence
  [[ ! -e $installation ]] || fail "left: $(names_in "$installation")"
}

PurgeLeavesAFolderThatHoldsMore() {
  unpack
  maintain postinst configure
  touch "$installation/mine"
  remove_package

  maintain postrm purge

  expect_silence
  expect_file <(names_in "$installation") <<<mine
}

RemovalLeavesTheSettings() {
  unpack
  maintain postinst configure
  cp "$installation/connTester.conf" /tmp/before

  remove_package

  expect_silence
  expect_file <(names_in "$installation") <<<$'.made-by-connTester\nconnTester.conf'
  expect_same /tmp/before "$installation/connTester.conf"
}

UpgradeLeavesAllAsItIs() {
  unpack
  maintain postinst configure
  cp -a "$installation" /tmp/before

  maintain prerm upgrade 1.0.0-2

  expect_silence
  diff -r --no-dereference /tmp/before "$installation" || fail 'the upgrade has changed something'
  maintain postrm upgrade 1.0.0-2
  maintain postinst configure 1.0.0-1
  expect_silence
  diff -r --no-dereference /tmp/before "$installation" || fail 'the upgrade has changed something'
}

PurgeLeavesWhatIsTheUsers() {
  configure numPings=3
  ln -sf /opt/iperf3 "$installation/iperf3"
  cp -a "$installation" /tmp/before
  unpack
  cp -a /tmp/before "$installation"
  maintain postinst configure
  remove_package

  maintain postrm purge

  expect_silence
  diff -r --no-dereference /tmp/before "$installation" || fail 'something of the user has changed'
}

# Installs with CMake beside the package.
install_another() {
  cmake --install "$BUILD_DIRECTORY" --prefix /tmp/other >/tmp/fake/installation 2>&1
}

PurgeLeavesWhatCMakeHasInstalled() {
  unpack
  install_another
  cp -a "$installation" /tmp/before
  maintain postinst configure
  remove_package

  maintain postrm purge

  expect_silence
  diff -r --no-dereference /tmp/before "$installation" || fail 'the other one has lost something'
}

PurgeLeavesTheSettingsThatCMakesInstallationShares() {
  unpack
  maintain postinst configure
  install_another
  echo numPings=3 >"$installation/connTester.conf"
  remove_package

  maintain postrm purge

  expect_silence
  expect_file "$installation/connTester.conf" <<<numPings=3
  rm "$installation/connTester.conf"
  /tmp/other/libexec/connTester/uninstall
  [[ ! -e $installation ]] || fail "left: $(names_in "$installation")"
}

PurgeReadsARecordWhoseLastLineHasNoEnd() {
  unpack
  maintain postinst configure
  remove_package
  printf %s "$(<"$installation/.made-by-connTester")" >"$installation/.made-by-connTester"

  maintain postrm purge

  expect_silence
  [[ ! -e $installation ]] || fail "left: $(names_in "$installation")"
}

SaysWhatStaysWhereItCannotBeWritten() { # --unprivileged
  unpack
  maintain postinst configure
  chmod a-w "$installation"
  cp -a "$installation" /tmp/before
  maintain prerm remove
  expect_file /tmp/fake/errors <<<"connTester: cannot write in $installation"

  maintain postrm purge

  expect_file /tmp/fake/errors <<<"connTester: $installation stays: it cannot be written"
  diff -r --no-dereference /tmp/before "$installation" || fail 'something has changed'
}

run_test "$@"

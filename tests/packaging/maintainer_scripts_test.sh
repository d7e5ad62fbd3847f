#!/usr/bin/env bash
# The package's maintainer scripts, with the test's prefix in the place of /usr.
source "$(dirname "$0")/library.sh"

record=$installation/.made-by-connTester
settings=$installation/connTester.conf

# Runs a maintainer script with its arguments, as dpkg does.
run_script() {
  sed "s|/usr/libexec|$prefix/libexec|" "$packaging/debian/$1" >/tmp/work/script
  run sh /tmp/work/script "${@:2}"
}

maintain() {
  run_script "$@"
  expect_silent_success
}

# The steps of the tables are these and the shell's.

install_package() {
  install_without_fixed_paths
  maintain postinst configure
}

remove_package() {
  maintain prerm remove
  rm -r "$prefix"
  maintain postrm remove
}

purge_package() {
  remove_package
  maintain postrm purge
}

# With CMake, beside the package.
install_another() {
  prefix=/tmp/other install_tester
}

# Takes the steps $1 and compares what is left of the fixed folder with $2.
expect_left_after() {
  eval "$1"

  expect_folder "${2-}"
  rm -rf /tmp/other
}

LeaveTheSettingsUntilThePurge() {
  for_each_case expect_left_after <<END
install_package; remove_package                        | Qelmora connTester.conf record
install_package; purge_package                         |
install_package; remove_package; truncate -s -1 $record; maintain postrm purge |
install_package; touch $installation/mine; purge_package | Qelmora mine
install_without_fixed_paths; mkdir $installation; maintain postinst configure; purge_package | Qelmora
END
}

LeaveTheSettingsThatCMakesInstallationShares() {
  for_each_case expect_left_after <<END
install_package; install_another; echo numPings=3 >$settings; purge_package; grep -x numPings=3 $settings \
                                                       | Qelmora connTester.conf record
install_package; install_another; purge_package; /tmp/other/libexec/connTester/uninstall |
END
}

make_own() {
  mkdir "$installation"
  ln -s /opt/iperf3 "$installation/iperf3"
  echo numPings=3 >"$settings"
}

LeaveWhatIsNotThePackages() {
  local make
  for make in make_own install_another; do
    install_without_fixed_paths
    "$make"
    remember "$installation"

    # It says that the link is another one's.
    run_script postinst configure
    expect_status 0
    purge_package

    expect_as_it_was "$installation"
  done
}

LeaveAllToAnUpgrade() {
  install_package
  remember "$installation"

  maintain prerm upgrade 1.0.0-2
  expect_as_it_was "$installation"
  maintain postrm upgrade 1.0.0-2
  maintain postinst configure 1.0.0-1

  expect_as_it_was "$installation"
}

SayWhatStaysWhereItCannotBeWritten() { # --unprivileged
  install_package
  chmod a-w "$installation"
  remember "$installation"

  local script
  for script in 'postinst configure' 'prerm remove'; do
    # shellcheck disable=SC2086 # two words
    run_script $script
    expect_status 0
    expect_file /tmp/fake/errors <<<"connTester: cannot write in $installation"
  done
  run_script postrm purge
  expect_status 0
  expect_file /tmp/fake/errors <<<"connTester: $installation stays: it cannot be written"

  expect_as_it_was "$installation"
}

run_test "$@"

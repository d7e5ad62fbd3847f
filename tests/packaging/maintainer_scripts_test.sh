#!/usr/bin/env bash
# The package's maintainer scripts, with the test's prefix in the place of /usr.
source "$(dirname "$0")/library.sh"

record=$installation/.made-by-connTester
settings=$installation/connTester.conf

# Runs a maintainer script with its arguments, as dpkg does.
run_script() {
  sed "s|/usr/libexec|$prefix/libexec|" "$packaging/debian/$1" >/tmp/work/script
  tester=(sh /tmp/work/script)
  run "${@:2}"
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
  cmake --install "$BUILD_DIRECTORY" --prefix /tmp/other >/tmp/fake/installation 2>&1
}

# Takes the steps $1 and compares the names that are left in the fixed folder; without any, it has to be gone.
expect_left_after() {
  eval "$1"

  expect_file <(find "$installation" -printf '%f\n' 2>/dev/null | LC_ALL=C sort | paste -sd ' ') <<<"${2-}"
  rm -rf /tmp/other
}

LeaveTheSettingsUntilThePurge() {
  for_each_case expect_left_after <<END
install_package; remove_package                        | .made-by-connTester Qelmora connTester.conf
install_package; purge_package                         |
install_package; remove_package; truncate -s -1 $record; maintain postrm purge |
install_package; touch $installation/mine; purge_package | Qelmora mine
install_without_fixed_paths; mkdir $installation; maintain postinst configure; purge_package | Qelmora
END
}

LeaveTheSettingsThatCMakesInstallationShares() {
  for_each_case expect_left_after <<END
install_package; install_another; echo numPings=3 >$settings; purge_package; grep -x numPings=3 $settings \
                                                       | .made-by-connTester Qelmora connTester.conf
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
    remember_folder

    # It says that the link is another one's.
    run_script postinst configure
    expect_status 0
    purge_package

    expect_folder_as_it_was
  done
}

LeaveAllToAnUpgrade() {
  install_package
  remember_folder

  maintain prerm upgrade 1.0.0-2
  expect_folder_as_it_was
  maintain postrm upgrade 1.0.0-2
  maintain postinst configure 1.0.0-1

  expect_folder_as_it_was
}

SayWhatStaysWhereItCannotBeWritten() { # --unprivileged
  install_package
  chmod a-w "$installation"
  remember_folder

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

  expect_folder_as_it_was
}

run_test "$@"

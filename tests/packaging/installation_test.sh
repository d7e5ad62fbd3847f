#!/usr/bin/env bash
# `cmake --install` and the command that undoes it.
source "$(dirname "$0")/library.sh"

# What is under the prefix then.
files='bin/connTester
bin/connWatch
lib/systemd/user/connTester@.service
lib/systemd/user/connTester@.timer
libexec/connTester/connTester
libexec/connTester/fixed-paths
libexec/connTester/in-session
libexec/connTester/iperf3-adapter/iperf3
libexec/connTester/manifest
libexec/connTester/ping-adapter/ping
libexec/connTester/uninstall
share/bash-completion/completions/connWatch
share/connTester/connTester.conf
share/connTester/connTester.crontab
share/connTester/connTester.plist
share/connTester/locked-down.conf
share/doc/conntester/CHANGELOG.md
share/doc/conntester/CONTRIBUTING.md
share/doc/conntester/README.md
share/doc/conntester/docs/architecture.md
share/doc/conntester/docs/files.md
share/doc/conntester/docs/macos.md
share/doc/conntester/docs/performance.md
share/doc/conntester/docs/reliability.md
share/doc/conntester/docs/report.png
share/man/man1/connTester.1
share/man/man1/connWatch.1
share/man/man5/connTester.conf.5'
# What the fixed folder is then.
folder="Qelmora connTester.conf iperf3>$programs/iperf3-adapter/iperf3 record"

list_files() {
  (cd "$1" && find . ! -type d -printf '%P\n' | sort)
}

# The machine as it is before; some folders of the prefix are there.
prepare() {
  rm -r "$installation"
  mkdir -p "$prefix/bin" "$prefix/share/man"
}

# Compares all that there is with what `prepare` has left.
expect_nothing_left() {
  expect_file <(cd "$prefix" && find . -mindepth 1 | sort) <<'END'
./bin
./share
./share/man
END
  DESTDIR='' expect_folder ''
}

uninstall() {
  run "${DESTDIR-}$programs/uninstall"
}

PutsItsFilesUnderThePrefixAndTakesThemAway() {
  prepare
  local mask
  for mask in 000 077; do
    umask "$mask"

    install_tester
    install_tester

    expect_file <(list_files "$prefix") <<<"$files"
    expect_folder "$folder"
    expect_file <(find "$prefix" "$installation" ! -type l -printf '%y %m\n' | sort -u) \
      <<<$'d 755\nf 644\nf 755'
    uninstall
    expect_silent_success
    expect_nothing_left
    umask 022
  done
}

ClosesFoldersOfItsOwnThatWereOpen() {
  prepare
  umask 000
  mkdir -p "$programs"/{ping,iperf3}-adapter "$prefix/share/connTester"

  install_tester

  expect_file <(find "$programs" "$prefix/share/connTester" -type d -printf '%m\n' | sort -u) <<<755
}

PutsAllOfThemBehindDestdir() {
  prepare
  export DESTDIR=/tmp/stage

  install_tester

  expect_file <(list_files "/tmp/stage$prefix") <<<"$files"
  expect_folder "$folder"
  expect_nothing_left
  uninstall
  expect_silent_success
  expect_file <(find /tmp/stage -mindepth 1 ! -path /tmp/stage/tmp ! -path /tmp/stage/usr | sort) <<'END'
/tmp/stage/tmp/usr
/tmp/stage/usr/local
/tmp/stage/usr/local/bin
END
}

LeavesTheUsersFiles() {
  mkdir -p "$prefix/bin" "$prefix/share/doc/conntester"
  touch "$prefix/bin/mine" "$prefix/share/doc/conntester/mine"
  configure numPings=3
  ln -sf /opt/iperf3 "$installation/iperf3"
  remember "$installation"

  install_tester
  touch "$programs/mine"
  uninstall

  expect_silent_success
  expect_file <(list_files "$prefix") <<<$'bin/mine\nlibexec/connTester/mine\nshare/doc/conntester/mine'
  expect_as_it_was "$installation"
}

SaysThatTheFixedPathsCannotBeMade() { # --unprivileged
  chmod a-w "$installation"

  install_tester

  expect_file <(tr -s '\n ' ' ' </tmp/fake/installation |
    grep -o 'connTester: cannot write in [^ ]*\|run, as root: [^ ]* make') <<END
connTester: cannot write in $installation
run, as root: $programs/fixed-paths make
END
}

RefusesAPrefixThatListsCannotHold() {
  prepare
  local name
  for name in a:b 'a;b' $'a\nb'; do
    run cmake --install "$BUILD_DIRECTORY" --prefix "$prefix/$name"

    expect_status 1
    grep -F "connTester can't be installed below a name with" /tmp/fake/errors || fail 'it does not say why'
    expect_nothing_left
  done
}

# Spoils the installation by the shell commands $1. `uninstall` has to say $2 and to leave everything.
expect_refusal_after() {
  rm -rf "$prefix"
  cp -a /tmp/sound "$prefix"
  eval "$1"
  remember "$prefix"

  uninstall

  expect_status 1
  expect_file /tmp/fake/errors <<<"connTester: nothing is removed: $2"
  expect_as_it_was "$prefix"
  [[ -L $installation/iperf3 && -e /tmp/victim/file ]] || fail 'something elsewhere is gone'
}

RefusesToUndoWhatTheInstallationCannotHaveMade() {
  prepare
  install_tester
  cp -a "$prefix" /tmp/sound
  mkdir /tmp/victim
  touch /tmp/victim/file

  local entry
  for entry in ../victim/file share/../../victim/file /tmp/victim/file .. ./bin '' bin//file; do
    expect_refusal_after "echo $entry >>$programs/manifest" "$programs/manifest names \"$entry\""
  done
  for_each_case expect_refusal_after <<END
ln -s /tmp/victim $prefix/share/link; echo share/link/file >>$programs/manifest \
                             | $programs/manifest names "share/link/file", which is in /tmp/victim
chmod g+w $programs/manifest | others may write $programs/manifest
chmod o+w $programs/manifest | others may write $programs/manifest
chmod g+w $programs          | others may write $programs
chmod o+w $programs          | others may write $programs
rm $programs/manifest        | $programs/manifest is no file
ln -sf . $programs/manifest  | $programs/manifest is no file
END
}

run_test "$@"

#!/usr/bin/env bash
# `cmake --install` and the command that undoes it.
source "$(dirname "$0")/library.sh"

# What is under the prefix then.
files='bin/connTester
lib/systemd/user/connTester@.service
lib/systemd/user/connTester@.timer
libexec/connTester/connTester
libexec/connTester/fixed-paths
libexec/connTester/in-session
libexec/connTester/iperf3-adapter/iperf3
libexec/connTester/manifest
libexec/connTester/ping-adapter/ping
libexec/connTester/uninstall
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
share/man/man1/connTester.1
share/man/man5/connTester.conf.5'

list_files() {
  (cd "$1" && find . ! -type d -printf '%P\n' | LC_ALL=C sort)
}

# The machine as it is before; some folders of the prefix are there.
prepare() {
  rm -r "$installation"
  mkdir -p "$prefix/bin" "$prefix/share/man"
}

# Compares the folders and files under the prefix with those of `prepare`.
expect_nothing_left() {
  expect_file <(cd "$prefix" && find . -mindepth 1 | LC_ALL=C sort) <<'END'
./bin
./share
./share/man
END
  [[ ! -e $installation ]] || fail "left: $(names_in "$installation")"
}

PutsItsFilesUnderThePrefix() {
  prepare

  install_tester

  expect_file <(list_files "$prefix") <<<"$files"
  expect_file <(names_in "$installation") <<<$'.made-by-connTester\nconnTester.conf\niperf3'
}

PutsAllOfThemBehindDestdir() {
  prepare
  export DESTDIR=/tmp/stage

  install_tester

  expect_file <(list_files /tmp/stage) < <(
    printf '%s\n' "$files" | sed 's|^|tmp/usr/|'
    printf 'usr/local/bin/Qelmora/%s\n' .made-by-connTester connTester.conf iperf3)
  expect_nothing_left
}

InstallsAProgramThatRuns() {
  install_tester
  configure doPingTests=false doIperf3Tests=false

  run 10.0.0.5

  expect_status 0
  expect_file /tmp/fake/errors </dev/null
  grep -q '^current time .* argc is 2\. Server IP address: 10\.0\.0\.5$' /tmp/fake/console ||
    fail "the program's start is missing: $(cat /tmp/fake/console)"
}

LeavesAConfigurationAndALinkThatExist() {
  configure numPings=3
  ln -sf /opt/iperf3 "$installation/iperf3"

  install_tester

  expect_file "$installation/connTester.conf" <<<numPings=3
  expect_file <(readlink "$installation/iperf3") <<</opt/iperf3
}

SaysThatIperf3IsMissing() {
  prepare
  provide cmake cp dirname grep ln mkdir mv readlink sh

  PATH=/tmp/bin install_tester

  expect_file <(grep '^connTester:' /tmp/fake/installation) \
    <<<'connTester: iperf3 is not installed. Install it, or switch the tests with it off.'
  expect_file <(list_files "$prefix") <<<"$files"
}

SaysThatTheFixedPathsCannotBeMade() { # --unprivileged
  chmod a-w "$installation"

  install_tester

  grep -q '^connTester: cannot write in /usr/local/bin/Qelmora$' /tmp/fake/installation ||
    fail "it does not say what fails: $(cat /tmp/fake/installation)"
  expect_file <(tr -s '\n ' ' ' </tmp/fake/installation | grep -o "run, as root: [^ ]* make") \
    <<<"run, as root: $programs/fixed-paths make"
}

# Compares all kinds and modes of what the installation has made.
expect_modes() {
  expect_file <(find "$prefix" "$installation" ! -type l -printf '%y %m\n' | sort -u) <<'END'
d 755
f 644
f 755
END
}

SetsModesWhateverTheUmask() {
  local mask
  for mask in 000 077; do
    rm -rf "$prefix" "$installation"
    umask "$mask"

    install_tester

    expect_modes
  done
}

ClosesFoldersOfItsOwnThatWereOpen() {
  prepare
  umask 000
  mkdir -p "$programs"/{ping,iperf3}-adapter "$prefix/share/connTester"

  install_tester

  expect_file <(find "$programs" "$prefix/share/connTester" -type d -printf '%m\n' | sort -u) <<<755
}

RefusesAPrefixThatListsCannotHold() {
  prepare
  local name
  for name in a:b 'a;b' $'a\nb'; do
    if cmake --install "$BUILD_DIRECTORY" --prefix "/tmp/usr/$name" >/tmp/fake/installation 2>&1; then
      fail "it takes $name"
    fi
    grep -qF "connTester can't be installed below a name with" /tmp/fake/installation ||
      fail "it does not say why: $(cat /tmp/fake/installation)"
    expect_nothing_left
  done
}

IsUndoneByUninstall() {
  prepare
  install_tester
  # shellcheck disable=SC2034 # used by `run`
  tester=("$programs/uninstall")

  run

  expect_status 0
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/errors </dev/null
  expect_nothing_left
}

IsUndoneWholeWhenItWasMadeTwice() {
  prepare
  install_tester
  install_tester
  # shellcheck disable=SC2034 # used by `run`
  tester=("$programs/uninstall")

  run

  expect_status 0
  expect_nothing_left
}

IsUndoneBehindDestdir() {
  prepare
  export DESTDIR=/tmp/stage
  install_tester
  # shellcheck disable=SC2034 # used by `run`
  tester=("/tmp/stage$programs/uninstall")

  run

  expect_status 0
  expect_file <(find /tmp/stage -mindepth 1 ! -path /tmp/stage/tmp ! -path /tmp/stage/usr | sort) <<'END'
/tmp/stage/tmp/usr
/tmp/stage/usr/local
/tmp/stage/usr/local/bin
END
}

LeavesTheUsersFilesWhenItIsUndone() {
  mkdir -p "$prefix/bin" "$prefix/share/doc/conntester"
  touch "$prefix/bin/mine" "$prefix/share/doc/conntester/mine"
  configure numPings=3
  cp -a "$installation" /tmp/before
  install_tester
  # shellcheck disable=SC2034 # used by `run`
  tester=("$programs/uninstall")

  run

  expect_status 0
  expect_file <(list_files "$prefix") <<<$'bin/mine\nshare/doc/conntester/mine'
  diff -r /tmp/before "$installation" || fail 'the folder of the program has changed'
}

# Runs uninstall, which has to say $1 and to leave everything.
expect_refusal() {
  cp -a "$prefix" /tmp/before
  tester=("$programs/uninstall")

  run

  expect_status 1
  expect_file /tmp/fake/errors <<<"connTester: nothing is removed: $1"
  diff -r --no-dereference /tmp/before "$prefix" || fail 'something is gone'
  rm -r /tmp/before
  [[ -L $installation/iperf3 ]] || fail 'the fixed path is gone'
}

RefusesToFollowAManifestToOtherPlaces() {
  prepare
  install_tester
  mkdir /tmp/victim
  touch /tmp/victim/file
  ln -s /tmp/victim "$prefix/share/link"
  local entry
  for entry in ../victim/file share/../../victim/file /tmp/victim/file .. ./bin '' bin//file; do
    cp "$programs/manifest" /tmp/work/manifest
    echo "$entry" >>"$programs/manifest"

    expect_refusal "$programs/manifest names \"$entry\""

    cp /tmp/work/manifest "$programs/manifest"
  done
  echo share/link/file >>"$programs/manifest"
  expect_refusal "$programs/manifest names \"share/link/file\", which is in /tmp/victim"
  [[ -e /tmp/victim/file ]] || fail 'a file elsewhere is gone'
}

RefusesAManifestThatIsNoFile() {
  prepare
  install_tester
  rm "$programs/manifest"
  expect_refusal "$programs/manifest is no file"

  mkdir "$programs/manifest"
  expect_refusal "$programs/manifest is no file"
}

RefusesAManifestThatOthersMayWrite() {
  prepare
  install_tester
  local mode
  for mode in g+w o+w; do
    chmod "$mode" "$programs/manifest"
    expect_refusal "others may write $programs/manifest"
    chmod go-w "$programs/manifest"

    chmod "$mode" "$programs"
    expect_refusal "others may write $programs"
    chmod go-w "$programs"
  done
}

run_test "$@"

#!/usr/bin/env bash
# The sample configuration, read by the real program on fake tools.
source "$(dirname "$0")/library.sh"

# Runs the program, as if it were always the same moment, and keeps all that the run left as $1.
run_as() {
  rm -rf "$HOME" /tmp/fake/events
  mkdir "$HOME"
  : >/tmp/fake/events
  set_clock '2026-11-16 05:40:00'
  tester=(env PATH=/tmp/bin LD_PRELOAD="$FAKE_CLOCK" connTester)
  run 10.0.0.5
  print_run >"/tmp/$1"
}

ChangesNothing() {
  run_as without
  cp "$packaging/connTester.conf" "$installation"

  run_as with

  expect_same /tmp/without /tmp/with
}

HoldsEveryKeyOnce() {
  # Each key, and what a run of the program shows when its value is the other one.
  local changes=(debugConfFile=true numPings=3 iperfTestTime=3 pingTestServer=true
    debugPrintPing=true debugPrintHistory=true doPingTests=false doIperf3Tests=false outputFormat=2)
  # The program reads these, too, and a run never shows it.
  local silent=(debugPrintIperf=false debugPrintLast=true doIperf2Tests=true)
  run_as without

  local change
  for change in "${changes[@]}" "${silent[@]}"; do
    sed "s/^${change%=*}=.*/$change/" "$packaging/connTester.conf" >"$installation/connTester.conf"
    expect_file <(grep -c . "$installation/connTester.conf") <<<12
    grep -qx "$change" "$installation/connTester.conf" || fail "the sample has no ${change%=*}"
    run_as changed

    if [[ " ${silent[*]} " == *" $change "* ]]; then
      expect_same /tmp/without /tmp/changed
    elif cmp -s /tmp/without /tmp/changed; then
      fail "$change shows nowhere"
    fi
  done
}

run_test "$@"

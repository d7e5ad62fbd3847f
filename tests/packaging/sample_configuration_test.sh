#!/usr/bin/env bash
# The sample configuration, read by the real program on fake tools.
source "$(dirname "$0")/library.sh"

# Runs the program, as if it were always the same moment, and keeps all that the run left as $1.
run_as() {
  rm -rf "$HOME" /tmp/fake/events
  mkdir "$HOME"
  : >/tmp/fake/events
  set_clock '2026-11-16 05:40:00'
  run tester 10.0.0.5
  print_run >"/tmp/$1"
}

ChangesNothing() {
  run_as without
  cp "$packaging/connTester.conf" "$installation"

  run_as with

  expect_same /tmp/without /tmp/with
}

HoldsEveryKeyOnce() {
  run_as without

  # Each key, and what a run of the program shows when its value is the other one.
  local change changes=(debugConfFile=true numPings=3 iperfTestTime=3 pingTestServer=true
    debugPrintPing=true debugPrintHistory=true doPingTests=false doIperf3Tests=false outputFormat=2)
  for change in "${changes[@]}"; do
    sed "s/^${change%=*}=.*/$change/" "$packaging/connTester.conf" >"$installation/connTester.conf"
    run_as changed
    ! cmp -s /tmp/without /tmp/changed || fail "$change shows nowhere"
  done
  # The program reads these, too, and a run never shows it.
  expect_file <(grep -v -f <(printf '^%s=\n' "${changes[@]%=*}") "$packaging/connTester.conf") <<'END'
debugPrintIperf=true
debugPrintLast=false
doIperf2Tests=false
END
  expect_file <(cut -d = -f 1 "$packaging/connTester.conf" | sort | uniq -d) </dev/null
}

run_test "$@"

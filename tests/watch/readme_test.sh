#!/usr/bin/env bash
# The README's pictures, held to what connWatch prints of a made home line. UPDATE=1 puts them there
# anew.
source "$(dirname "$0")/../packaging/library.sh"

here=$(cd "$(dirname "$0")" && pwd)
readme=$here/../../README.md

# Prints what stands behind the line $1 in the README, up to the end of its block.
shown_behind() {
  awk -v line="$1" 'here && /^```$/ { exit } here { print } $0 == line { here = 1 }' "$readme"
}

# Puts standard input behind the line $1 in the README, in place of what stands there.
put_behind() {
  awk -v line="$1" -v new="$(cat)" '
    here && /^```$/ { here = 0 } !here { print } $0 == line { here = 1; print new }' \
    "$readme" >/tmp/README.md
  cat /tmp/README.md >"$readme"
}

# Compares the file $2 with what stands behind the line $1.
expect_picture() {
  [[ -z ${UPDATE-} ]] || put_behind "$1" <"$2"
  expect_file "$2" < <(shown_behind "$1")
}

make_four_weeks() {
  python3 "$here/make_logs.py" /tmp/line --seed 4 --runs 672 --start 2026-10-24
}

Readme.ShowsTheSummaryOfAMadeLine() {
  make_four_weeks
  "$CONN_WATCH" summary --from /tmp/line/log >/tmp/summary

  expect_picture '$ connWatch summary' /tmp/summary
}

# Each tool prints what it has printed in the made run behind the four weeks, and moves the clock on by
# the seconds that it takes; the second iperf3 test waits for that.
install_tools_of_a_made_run() {
  python3 "$here/make_logs.py" /tmp/next --seed 5 --runs 1 --start 2026-11-21T10:00
  replace pass_seconds <<'END_OF_FAKE'
read -r now </tmp/fake/clock
echo "$((now + $1))" >/tmp/fake/clock.new
mv /tmp/fake/clock.new /tmp/fake/clock
END_OF_FAKE
  replace ping <<'END_OF_FAKE'
/tmp/bin/pass_seconds 9
cat /tmp/next/log/ping_latest.log
END_OF_FAKE
  replace iperf3 <<END_OF_FAKE
case \$* in
  *-R*) $wait_at_gate; report=iperf3_latest-R.log ;;
  *) /tmp/bin/pass_seconds 10; report=iperf3_latest.log ;;
esac
cat "/tmp/next/log/\$report"
END_OF_FAKE
  cp /tmp/bin/iperf3 "$installation/iperf3"
}

# The tester's clock and that of connWatch is the file; the start command and the tools keep theirs.
install_tester_with_fake_clock() {
  install_tester
  mv "$programs/connTester" /tmp/fake/tester
  printf '%s\n' '#!/bin/sh' "LD_PRELOAD=$FAKE_CLOCK exec /tmp/fake/tester \"\$@\"" >"$programs/connTester"
  chmod +x "$programs/connTester"
  set_clock "@$(sed -n 's/.*"clock_start": \([0-9]*\),.*/\1/p' /tmp/next/truth.jsonl)"
}

# The picture is that of a moment in the last test.
Readme.ShowsARunAsItGoes() {
  make_four_weeks
  install_tools_of_a_made_run
  install_tester_with_fake_clock
  make_gate
  mkdir -p "${logs%/*}"
  mv /tmp/line/log "$logs"

  "$here/terminal.py" 80 \
    env LD_PRELOAD="$FAKE_CLOCK" "$prefix/bin/connWatch" run 192.0.2.10 >/tmp/screens <<'SCRIPT'
do read -r _ </tmp/fake/begun
wait read
do /tmp/bin/pass_seconds 7
wait 14 s left
shot
do /tmp/bin/pass_seconds 3; echo >/tmp/fake/gate
end
SCRIPT

  sed '/^--$/,$d' /tmp/screens >/tmp/picture
  expect_picture '$ connWatch run 192.0.2.10' /tmp/picture
  expect_file <(grep -o 'ok in [0-9]* s' "$readme") < <(grep '^ok' /tmp/screens)
}

set_up
export PYTHONDONTWRITEBYTECODE=1 TZ=Europe/Berlin LC_ALL=C.UTF-8 TERM=xterm
"$1"

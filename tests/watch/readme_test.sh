#!/usr/bin/env bash
# The README's picture of four weeks, held to what connWatch prints of a made home line. UPDATE=1 puts
# the picture there anew.
source "$(dirname "$0")/../support/program.sh"

here=$(cd "$(dirname "$0")" && pwd)
readme=$here/../../README.md
export PYTHONDONTWRITEBYTECODE=1 TZ=Europe/Berlin

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

Readme.ShowsTheSummaryOfAMadeLine() {
  local command='$ connWatch summary'
  python3 "$here/make_logs.py" /tmp/line --seed 4 --runs 672 --start 2026-10-24
  LC_ALL=C.UTF-8 "$CONN_WATCH" summary --from /tmp/line/log >/tmp/summary
  [[ -z ${UPDATE-} ]] || put_behind "$command" </tmp/summary
  expect_file /tmp/summary < <(shown_behind "$command")
}

run_test "$@"

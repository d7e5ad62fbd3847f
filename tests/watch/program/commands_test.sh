#!/usr/bin/env bash
# What each command of connWatch says of a small log directory, in a pipe and on terminals.
source "$(dirname "$0")/library.sh"

List.IsForProgramsInAPipe() {
  have_runs

  run conn_watch list

  expect_said "$1"
}

List.FillsATerminalOf80Columns() {
  have_runs

  run conn_watch_on 80 list

  expect_said "$1"
}

List.FitsATerminalOf40Columns() {
  have_runs

  run conn_watch_on 40 list

  expect_said "$1"
}

List.HasNoColourOnADumbTerminal() {
  have_runs
  export TERM=dumb

  run conn_watch_on 200 list --since 02:00

  expect_said "$1"
}

List.HasNoColourWhereNoneIsWanted() {
  have_runs
  export NO_COLOR=1

  run conn_watch_on 80 list --since 5h

  expect_said "$1"
}

List.HasDigitsForBarsWithoutUtf8() {
  have_runs
  export LC_ALL=C

  run conn_watch_on 80 list --until '24 Oct 23:00'

  expect_said "$1"
}

Summary.IsWhatIsSaidWithoutACommand() {
  have_runs

  run conn_watch

  expect_said "$1"
}

Summary.FillsATerminalOf80Columns() {
  have_runs

  run conn_watch_on 80 summary

  expect_said "$1"
}

Summary.FitsATerminalOf40Columns() {
  have_runs

  run conn_watch_on 40 summary

  expect_said "$1"
}

Summary.TellsOneDirectoryAfterTheOther() {
  have_runs
  mkdir /tmp/empty

  run conn_watch summary --from "$logs" --from /tmp/empty --from /tmp/none

  expect_said "$1"
}

Show.TellsTheRunThatIsNamed() {
  have_runs

  expect_each_said "$1" <<'END'
show
show 15
show 05:09
show 04:09
show 19:10
show 2026-10-25
show 2026-10-25T02:13
show "24 Oct 23:02"
show 16
show 0
show "24 Oct 03:00"
END
}

Show.FitsATerminalOf40Columns() {
  have_runs

  run conn_watch_on 40 show 2

  expect_said "$1"
}

Show.FillsATerminalOf200Columns() {
  have_runs

  run conn_watch_on 200 show 2

  expect_said "$1"
}

Check.JudgesByWhatIsAskedFor() {
  have_runs

  expect_each_said "$1" <<'END'
check
check --read 200 --write 30 --latency 50
check --read 300
check --read 200 --bad 3/6
check --below 50%
check --max-age 10m
check --max-age 1d
check --since 1m
END
}

Export.GivesEveryRunToPrograms() {
  have_runs

  expect_each_said "$1" <<'END'
export csv
export jsonl --since 05:00
END
}

Export.ReplacesAFile() {
  have_runs
  printf 'old' >/tmp/work/runs.csv

  run conn_watch export csv --output /tmp/work/runs.csv

  expect_status 0
  expect_file /tmp/fake/console </dev/null
  expect_file <(ls /tmp/work) <<<'runs.csv'
  run conn_watch export csv
  expect_same /tmp/fake/console /tmp/work/runs.csv
}

Export.WritesADatabase() {
  have_runs

  run conn_watch export sqlite --output /tmp/work/runs.db

  expect_status 0
  python3 - >/tmp/fake/rows <<'END'
import sqlite3
database = sqlite3.connect("/tmp/work/runs.db")
print(*database.execute("SELECT class, count(*) FROM runs GROUP BY class"), sep="\n")
print(*database.execute("SELECT * FROM runs WHERE time = '2026-10-24T16:14:44Z'"))
END
  expect_recorded "$here/expected/$1" /tmp/fake/rows
}

# The page without the version, the style and the explorer, which not every build has; an element on
# each line.
elements() {
  sed -e '/<style>/,/<\/style>/d' -e '/^<script>/,/^<\/body>/{/^<\/body>/!d}' \
    -e 's/ script-src [^;]*;//' -e 's/<div class="explorer"[^<]*<script[^<]*<\/script><\/div>//' \
    -e 's/sha256-[^'"'"']*/sha256-…/' -e 's/by connWatch [0-9.]*/by connWatch/' \
    -e 's/></>\n</g' "$1"
}

Report.IsOnePage() {
  have_runs

  run conn_watch report --contract 250/40 --from "$logs" --output /tmp/work/page.html

  expect_status 0
  expect_file /tmp/fake/console <<<'/tmp/work/page.html'
  expect_file /tmp/fake/errors </dev/null
  elements /tmp/work/page.html >/tmp/fake/page
  expect_recorded "$here/expected/$1" /tmp/fake/page
}

Report.HasTheNameOfThisMachineAndAFileOfItsOwn() {
  have_runs
  cd /tmp/work

  run conn_watch report

  expect_status 0
  expect_file <(ls) <<<'connection-report.html'
  expect_file /tmp/fake/console <<<'/tmp/work/connection-report.html'
  grep -qF "<h1>$(hostname) <span" connection-report.html || fail "the page has another title"
}

Report.PutsSeveralDirectoriesSideBySide() {
  have_runs
  mkdir /tmp/empty

  run conn_watch report --from "$logs" --from /tmp/empty --from "$logs" --output /tmp/work/page.html

  expect_said "$1"
  [[ $(grep -o '<article>' /tmp/work/page.html | wc -l) == 2 ]] || fail "there are not two workstations"
}

Report.IsShownByTheBrowser() {
  have_runs
  mkdir /tmp/browser
  # shellcheck disable=SC2016 # the script expands it
  printf '#!/bin/sh\necho "$*" >/tmp/browser/asked\n' >/tmp/browser/xdg-open
  chmod +x /tmp/browser/xdg-open
  export PATH=/tmp/browser:$PATH
  cd /tmp/work

  run conn_watch report --open --output 'my page.html'

  expect_status 0
  expect_file /tmp/browser/asked <<<'/tmp/work/my page.html'
}

Report.SaysThatThereIsNoBrowser() {
  have_runs
  mkdir /tmp/browser
  printf '#!/bin/sh\nexit 3\n' | tee /tmp/browser/xdg-open >/tmp/browser/open
  chmod +x /tmp/browser/*
  export PATH=/tmp/browser:$PATH

  run conn_watch report --open --output /tmp/work/page.html

  expect_said "$1"
}

Help.FitsATerminalOf80ColumnsAndEndsWell() {
  expect_each_said "$1" <<'END'
--help
summary --help
list --help
show --help
check --help
report --help
export --help
END
  [[ -z $(awk 'length($0) > 80' /tmp/fake/all) ]] || fail "a line is too long"
}

run_watch_test "$@"

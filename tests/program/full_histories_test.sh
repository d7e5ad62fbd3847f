#!/usr/bin/env bash
# Each test breaks something for a run that would move all its histories, which hold nine lines each;
# then the program runs.
source "$(dirname "$0")/library.sh"

Mv.IsMissing() {
  take_away mv
}

Mv.Fails() {
  replace_by_failure mv
}

Mv.IsKilledBeforeItMoves() {
  replace mv <<'END'
#!/bin/sh
kill -KILL $$
END
}

Mv.IsKilledInMidCopy() {
  replace mv <<'END'
#!/bin/sh
/usr/bin/head -c 50 "$1" >"$2"
kill -KILL $$
END
}

Archive.IsMissing() {
  rmdir "$logs/archive"
}

Archive.IsALinkToNowhere() { # --untraced
  rmdir "$logs/archive"
  ln -s /tmp/away "$logs/archive"
}

Archive.IsUnwritable() {
  chmod a-w "$logs/archive"
}

Archive.ComesBack() {
  rmdir "$logs/archive"
  touch "$logs/archive"
  run_before 05:10:00 tester 192.168.1.10
  rm "$logs/archive"
}

Histories.HaveEightLines() {
  fill_histories 8
}

Histories.HaveAHundredThousandLines() {
  fill_histories 100000
}

# The new line follows on the last one, and the two count as one.
Histories.LackTheLastNewline() {
  live_histories | xargs truncate --size -1
}

Histories.AreUnreadable() {
  live_histories | xargs chmod a-r
}

Histories.AreUnwritable() {
  fill_histories 12
  chmod a-w "$logs"/*_history*
}

LogDirectory.IsUnwritable() {
  chmod a-w "$logs"
}

# Only the move of the results needs no file named nul there.
WorkingDirectory.IsUnwritable() {
  chmod a-w /tmp/work
}

Home.MayHave183Characters() {
  HOME=/tmp/$(printf '%0178d' 0)
  ln -s /tmp/home "$HOME"
}

set_up
run_an_hour_before tester 192.168.1.10
fill_histories 9
"$1"
run tester 192.168.1.10
expect_changes "$1" Program.MovesFullHistories

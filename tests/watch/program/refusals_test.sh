#!/usr/bin/env bash
# What connWatch says where there is nothing to read, where it is asked for what it can't do, and where
# it can't write.
source "$(dirname "$0")/library.sh"

into_full_device() {
  "$@" >/dev/full
}

without_output() {
  "$@" >&-
}

# What the shell says of a command that a signal has ended goes nowhere.
into_head() {
  {
    "$@" 2>&3 | head -n 1
  } 3>&2 2>/dev/null
}

CommandLine.IsRefusedWithWhatToDo() {
  have_runs

  expect_each_said "$1" <<'END'
lsit
list --form /tmp
list extra
list --since
list --since tomorrow
list --until 2026-02-30
list --from /tmp/a --from /tmp/b
show yesterday-ish
export
export xml
export sqlite
report --contract fast
report --contract 250/
report --contract 0/40
report extra
check --read fast
check --read nan
check --read -1
check --latency 1e10
check --bad 3
check --bad 4/3
check --bad 0/3
check --below 0
check --below 101%
check --max-age soon
check extra
END
}

LogDirectory.IsMissing() {
  expect_each_said "$1" <<'END'

list
show
summary --since 7d
check
report
export csv
END
}

LogDirectory.HoldsNoRuns() {
  mkdir -p "$logs"

  expect_each_said "$1" <<'END'
list
list --since 7d
show
summary
check
export jsonl
END
}

LogDirectory.HoldsNoRunsInThePeriod() {
  have_runs

  expect_each_said "$1" <<'END'
list --since 1m
show --until "1 Oct"
summary --since 2026-10-24 --until 2026-10-24T01:00
check --since 1m
export csv --since 1m
END
}

LogDirectory.CannotBeNamedWithoutHome() {
  unset HOME

  expect_each_said "$1" <<'END'
list
check
END
}

LogDirectory.HoldsFilesThatCannotBeRead() { # --unprivileged
  have_runs
  chmod 0 "$logs"/archive/iperf3* "$logs"/ping_history.log

  run conn_watch list

  expect_said "$1"
}

Export.KeepsTheOldFileOnAFullFileSystem() { # --small-disk
  have_runs
  printf 'old' >/tmp/disk/runs
  cat /dev/zero >/tmp/disk/filler 2>/dev/null || true

  expect_each_said "$1" <<'END'
export csv --output /tmp/disk/runs
export jsonl --output /tmp/disk/runs
export sqlite --output /tmp/disk/runs
END
  expect_file <(ls -A /tmp/disk) <<<$'filler\nruns'
  expect_file <(cat /tmp/disk/runs) < <(printf 'old')
}

Export.NeedsAFolderThatItMayWriteTo() { # --unprivileged
  have_runs
  mkdir /tmp/work/locked
  printf 'old' >/tmp/work/locked/runs
  chmod a-w /tmp/work/locked

  expect_each_said "$1" <<'END'
export csv --output /tmp/work/locked/runs
export sqlite --output /tmp/work/locked/runs
export csv --output /tmp/work
export csv --output /dev/null
END
  expect_file <(cat /tmp/work/locked/runs) < <(printf 'old')
}

StandardOutput.IsFull() {
  have_runs
  local command
  for command in list show summary check 'export csv' 'export jsonl' --help --version; do
    # shellcheck disable=SC2086 # the format is a word of its own
    run into_full_device conn_watch $command
    [[ $status == "$([[ $command == check ]] && echo 3 || echo 2)" ]] ||
      fail "$command: the exit status is $status"
    expect_file /tmp/fake/errors <<<'connWatch: standard output: No space left on device'
  done
}

StandardOutput.IsClosed() {
  have_runs
  local command
  for command in list show summary 'export csv' --help; do
    # shellcheck disable=SC2086 # the format is a word of its own
    run without_output conn_watch $command
    [[ $status == 2 ]] || fail "$command: the exit status is $status"
    expect_file /tmp/fake/errors <<<'connWatch: standard output: Bad file descriptor'
  done
}

StandardOutput.MayHaveAReaderThatLeaves() {
  have_runs
  run into_head conn_watch list

  expect_file /tmp/fake/errors </dev/null
  expect_file <(cut -c1-4 /tmp/fake/console) <<<'time'
}

run_watch_test "$@"

#!/usr/bin/env bash
# The systemd units, the crontab line and the launchd agent, with a fake in the place of the program.
source "$(dirname "$0")/library.sh"

units=$prefix/lib/systemd/user

# What makes the runs, and how it ends when the program has left nothing: that is no run to connWatch.
if [[ $CONN_WATCH ]]; then
  command='connWatch run'
  statuses='1 2 75'
  nothing_left=3
else
  command=connTester
  statuses=75
  nothing_left=0
fi

# Installs, with a program that does $1, to where systemd, cron and launchd look for commands.
install_in_path() {
  install_fake_program "$1"
  ln -s "$prefix/bin/${command%% *}" /usr/local/bin/
}

# Runs a command as they do, with the PATH $1. They know nothing else of the user than this.
run_in_path() {
  run env --ignore-environment HOME="$HOME" FAKE_DIR="$FAKE_DIR" PATH="$1" "${@:2}"
}

expect_one_run() {
  expect_status "$nothing_left"
  expect_file /tmp/fake/errors </dev/null
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
}

expect_valid() {
  XDG_RUNTIME_DIR=/tmp/work run systemd-analyze verify --user --man=no "$units/$1"
  expect_silent_success
}

UnitsAreValid() {
  need systemd-analyze
  install_in_path 'exit 0'

  expect_valid connTester@.service
  expect_valid connTester@.timer
}

# Another systemd may rate it a little otherwise than the unit says.
LockedDownServiceIsValidAndExposedLittle() {
  need systemd-analyze
  install_in_path 'exit 0'
  install -D -m 644 -t "$units/connTester@.service.d" "$prefix/share/connTester/locked-down.conf"

  expect_valid connTester@.service
  XDG_RUNTIME_DIR=/tmp/work systemd-analyze security --user --offline=true --threshold=20 \
    --no-pager "$units/connTester@.service" >/tmp/fake/security ||
    fail "it is exposed: $(cat /tmp/fake/security)"
}

# Prints the value of a key of the service.
service_value() {
  sed -n "s/^$1=//p" "$units/connTester@.service"
}

ServiceRunsTheTesterAgainstItsInstance() {
  install_in_path 'exit 0'

  run_in_path /usr/local/bin:/usr/bin:/bin sh -c "$(service_value ExecStart | sed s/%i/192.168.1.10/)"

  expect_one_run
}

# Runs what the service runs at its end, after a run with exit status $1 beside one that began $2 minutes
# ago. It has to end with status $3.
expect_service_end() {
  touch -d "$2 minutes ago" "$logs/connTester.lock"

  run_in_path /usr/local/bin:/usr/bin:/bin EXIT_STATUS="$1" sh -c "$(service_value ExecStopPost)"

  expect_status "$3"
  expect_file /tmp/fake/errors </dev/null
}

ServiceFailsWhenRunsAreLeftOutForAnHour() {
  install_in_path 'exit 0'
  make_log_directories

  expect_file <(service_value SuccessExitStatus) <<<"$statuses"
  for_each_case expect_service_end <<'END'
75 | 59 | 0
75 | 62 | 1
0  | 62 | 0
END
}

# One that has measured nothing is a result; one that was refused is none.
ServiceFailsWhenThereIsNoRun() {
  install_in_path 'exit 0'

  run_in_path /usr/local/bin:/usr/bin:/bin sh -c "$(service_value ExecStart | sed 's/%i/"a;b"/')"

  [[ " $statuses 0 " != *" $status "* ]] || fail "status $status does not fail the service"
}

# Prints the command of the crontab line, as the documented command sets it up.
cron_command() {
  sed s/ADDRESS/192.168.1.10/ "$prefix/share/connTester/connTester.crontab" | cut -d ' ' -f 6-
}

CrontabLineRunsTheTesterSilentlyEveryHour() {
  install_in_path 'exit 0'

  run_in_path /usr/bin:/bin sh -c "$(cron_command)"

  expect_one_run
  expect_file /tmp/fake/console </dev/null
  expect_file <(cut -d ' ' -f -5 "$prefix/share/connTester/connTester.crontab") <<<'17 * * * *'
}

# The documented commands that replace and remove it look for its name.
CrontabLineIsFoundByItsName() {
  install_tester

  expect_file <(grep -c connTester "$prefix/share/connTester/connTester.crontab") <<<1
}

CrontabLineEndsARunThatTakesTooLong() {
  install_in_path 'sleep 60'

  run_in_path /usr/bin:/bin sh -c "$(cron_command | sed 's/ 600 / 1 /')"

  expect_status 124
}

# Prints the value of a key of the launchd agent as its documented command sets it up, one line for
# each of several.
agent_value() {
  sed s/ADDRESS/192.168.1.10/ "$prefix/share/connTester/connTester.plist" | python3 -c '
import plistlib, sys
value = plistlib.loads(sys.stdin.buffer.read())[sys.argv[1]]
print(*(value if isinstance(value, list) else [value]), sep="\n")' "$1"
}

# Runs the command of the agent, with $1 in place of its seconds.
run_agent() {
  need perl
  need python3
  local arguments
  mapfile -t arguments < <(agent_value ProgramArguments | sed "s/^600\$/$1/")
  run_in_path /usr/local/bin:/usr/bin:/bin "${arguments[@]}"
}

LaunchdAgentRunsTheTesterEveryHour() {
  install_in_path 'exit 0'

  run_agent 600

  expect_status "$nothing_left"
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
  expect_file <(agent_value StartCalendarInterval) <<<"{'Minute': 17}"
  expect_file <(agent_value Label) <<<connTester
}

LaunchdAgentEndsARunThatTakesTooLong() {
  install_in_path 'exec sleep 60'

  run_agent 1

  expect_status 142
}

run_test "$@"

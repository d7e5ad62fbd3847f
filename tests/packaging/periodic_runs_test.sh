#!/usr/bin/env bash
# The systemd units, the crontab line and the launchd agent, with a fake in the place of the program.
source "$(dirname "$0")/library.sh"

units=$prefix/lib/systemd/user

# Installs to where systemd, cron and launchd look for commands, which know nothing else of the user
# than this.
install_in_path() {
  install_fake_program "$1"
  ln -s "$prefix/bin/connTester" /usr/local/bin/connTester
  tester=(env --ignore-environment HOME="$HOME" FAKE_DIR="$FAKE_DIR")
}

verify_unit() {
  need systemd-analyze
  XDG_RUNTIME_DIR=/tmp/work systemd-analyze verify --user --man=no "$units/$1" \
    >/tmp/fake/verified 2>&1 || fail "$(cat /tmp/fake/verified)"
  expect_file /tmp/fake/verified </dev/null
}

UnitsAreValid() {
  install_in_path 'exit 0'

  verify_unit connTester@.service
  verify_unit connTester@.timer
}

LockedDownServiceIsValid() {
  install_in_path 'exit 0'

  mkdir "$units/connTester@.service.d"
  cp "$prefix/share/connTester/locked-down.conf" "$units/connTester@.service.d"

  verify_unit connTester@.service
}

ServiceRunsTheTesterAgainstItsInstance() {
  install_in_path 'exit 0'
  local command
  command=$(sed -n 's/^ExecStart=//p' "$units/connTester@.service")

  run PATH=/usr/local/bin:/usr/bin:/bin sh -c "${command//%i/192.168.1.10}"

  expect_status 0
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
}

# Another systemd may rate it a little otherwise than the unit says.
LockedDownServiceIsExposedLittle() {
  need systemd-analyze
  install_in_path 'exit 0'
  mkdir "$units/connTester@.service.d"
  cp "$prefix/share/connTester/locked-down.conf" "$units/connTester@.service.d"

  XDG_RUNTIME_DIR=/tmp/work systemd-analyze security --user --offline=true --threshold=20 \
    --no-pager "$units/connTester@.service" >/tmp/fake/security ||
    fail "it is exposed: $(cat /tmp/fake/security)"
}

# Runs what the service runs at its end, after a run with exit status $1.
end_service() {
  local command
  command=$(sed -n 's/^ExecStopPost=//p' "$units/connTester@.service")
  run PATH=/usr/local/bin:/usr/bin:/bin EXIT_STATUS="$1" sh -c "${command:?}"
  expect_file /tmp/fake/errors </dev/null
}

ServiceSucceedsWithARunThatWasLeftOut() {
  install_in_path 'exit 0'
  expect_file <(sed -n 's/^SuccessExitStatus=//p' "$units/connTester@.service") <<<75
  make_log_directories
  touch -d '59 minutes ago' "$logs/connTester.lock"

  end_service 75

  expect_status 0
}

ServiceFailsWhenRunsAreLeftOutForAnHour() {
  install_in_path 'exit 0'
  make_log_directories
  touch -d '62 minutes ago' "$logs/connTester.lock"

  end_service 75
  expect_status 1

  end_service 0
  expect_status 0
}

# Prints the command of the crontab line, as the documented command sets it up.
cron_command() {
  sed s/ADDRESS/192.168.1.10/ "$prefix/share/connTester/connTester.crontab" | cut -d ' ' -f 6-
}

CrontabHoldsOneLineForEveryHour() {
  expect_file <(grep -c . "$packaging/cron/connTester.crontab") <<<1
  expect_file <(cut -d ' ' -f -5 "$packaging/cron/connTester.crontab") <<<'17 * * * *'
}

CrontabLineRunsTheTesterSilently() {
  install_in_path 'echo result'

  run PATH=/usr/bin:/bin sh -c "$(cron_command)"

  expect_status 0
  expect_file /tmp/fake/console </dev/null
  expect_file /tmp/fake/errors </dev/null
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
}

CrontabLineEndsARunThatTakesTooLong() {
  install_in_path 'sleep 60'
  local command
  command=$(cron_command)

  run PATH=/usr/bin:/bin sh -c "${command/ 600 / 1 }"

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

LaunchdAgentRunsTheTesterEveryHour() {
  need perl
  need python3
  install_in_path 'exit 3'
  local arguments
  mapfile -t arguments < <(agent_value ProgramArguments)

  run PATH=/usr/local/bin:/usr/bin:/bin "${arguments[@]}"

  expect_status 3
  expect_file /tmp/fake/events <<<'connTester [192.168.1.10]'
  expect_file <(agent_value StartCalendarInterval) <<<"{'Minute': 17}"
  expect_file <(agent_value Label) <<<connTester
}

LaunchdAgentEndsARunThatTakesTooLong() {
  need perl
  need python3
  install_in_path 'exec sleep 60'
  local arguments
  mapfile -t arguments < <(agent_value ProgramArguments | sed 's/^600$/1/')

  run PATH=/usr/local/bin:/usr/bin:/bin "${arguments[@]}"

  expect_status 142
}

run_test "$@"

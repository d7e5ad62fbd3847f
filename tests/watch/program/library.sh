# shellcheck shell=bash
# Functions for the tests of connWatch as a whole, on the small log directory in logs/.
source "$(dirname "${BASH_SOURCE[0]}")/../../support/program.sh"

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export PYTHONDONTWRITEBYTECODE=1

conn_watch() {
  exec env --default-signal=PIPE LD_PRELOAD="$FAKE_CLOCK" "$CONN_WATCH" "$@"
}

# The same on a terminal of $1 columns.
conn_watch_on() {
  LD_PRELOAD='' exec "$here/on_terminal" "$1" \
    env LD_PRELOAD="$FAKE_CLOCK" "$CONN_WATCH" "${@:2}"
}

have_runs() {
  mkdir -p "$logs"
  cp -R "$here/logs/." "$logs"
  set_clock '2026-10-25 09:30:00'
}

# Prints what the last run printed, what it said on standard error, and how it ended.
print_said() {
  cat /tmp/fake/console
  sed 's/^/errors: /' /tmp/fake/errors
  echo "exit status: $status"
}

# Compares all that the last run said with the file in the tree that is named after the test.
expect_said() {
  print_said >/tmp/fake/said
  expect_recorded "$here/expected/$1" /tmp/fake/said
}

# Runs connWatch once for each line of standard input, whose words are its arguments, and compares all
# that was said with the file that is named after the test.
expect_each_said() {
  local name=$1 line words
  while IFS= read -r line; do
    eval "words=($line)"
    run conn_watch "${words[@]}" </dev/null
    echo "\$ connWatch${line:+ $line}"
    print_said
  done >/tmp/fake/all
  expect_recorded "$here/expected/$name" /tmp/fake/all
}

# As run_test, with the zone, the locale and the terminal from above.
run_watch_test() {
  set_up
  export TZ=Europe/Berlin LC_ALL=C.UTF-8 TERM=xterm
  "$1" "$1"
}

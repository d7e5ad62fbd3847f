# shellcheck shell=bash
# Functions for the tests of connWatch doctor, which look at machines that are broken in one way, and at a
# sound one. What is said there stands in sound.txt; what is said otherwise on the broken machines of a test
# stands in TEST.findings, which UPDATE=1 writes anew.
#
# shellcheck disable=SC2154 # `logs` is of the libraries that this one builds on
source "$(dirname "${BASH_SOURCE[0]}")/../../packaging/library.sh"

expected=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
data=$expected/../../data
server=127.0.0.2

# A machine on which all is well: an installation, tools, an hourly run, a server.
set_up_sound_machine() {
  rm -rf "$installation"
  install_tester
  provide cat dirname readlink sed sleep
  cp "$data/ping/iputils_20221126_reply.log" /tmp/fake/ping.log
  replace ping <<'END'
if [ "$1" = -V ]; then echo 'ping from iputils 20221126'; else cat /tmp/fake/ping.log; fi
END
  replace iperf3 <<'END'
if [ "$1" = --version ]; then echo 'iperf 3.12 (cJSON 1.7.15)'; fi
END
  next=$(($(date +%s) + 38 * 60)) last=$(($(date +%s) - 22 * 60))
  timers '[{"next":'$next'000000,"left":'$next'000000,"last":'$last'000000,"passed":'$last'000000,'\
'"unit":"connTester@127.0.0.2.timer","activates":"connTester@127.0.0.2.service"}]'
  replace timedatectl <<<'echo yes'
  replace crontab <<<'echo no crontab for me >&2; exit 1'
  install -d -m 700 "$logs" "$logs/archive"
  serve
  doctor_path=/tmp/bin:$prefix/bin
  rm /tmp/bin/connTester
}

# Has systemctl list these timers.
timers() {
  echo "$1" >/tmp/fake/timers
  replace systemctl <<<'cat /tmp/fake/timers'
}

# Takes connections at the server's port.
serve() {
  python3 -c '
import socket
server = socket.create_server(("127.0.0.2", 5201))
while True:
    server.accept()[0].close()' &
  wait_until connects 2>/dev/null
}

connects() {
  (: <>"/dev/tcp/$server/5201")
}

doctor() {
  exec env PATH="$doctor_path" "$prefix/bin/connWatch" doctor "$@"
}

# Looks at the machine, which is broken in the way $1, and notes the status and what is said otherwise
# than of the sound one. What `changing` tells sed to replace is another on each machine.
look_at() {
  run doctor "${@:2}"
  expect_file /tmp/fake/errors </dev/null
  sed -i -E "s/[0-9]+ [MG]B free/8 GB free/; ${changing-}" /tmp/fake/console
  {
    printf '%s: status %s\n' "$1" "$status"
    { diff -U 0 "$expected/sound.txt" /tmp/fake/console || (($? == 1)); } | sed '1,2d; /^@@/d'
    echo
  } >>/tmp/fake/findings
}

run_doctor_test() {
  set_up
  set_up_sound_machine
  "$1"
  expect_recorded "$expected/$1.findings" /tmp/fake/findings
}

#!/usr/bin/env bash
# The directory that HOME names.
source "$(dirname "$0")/library.sh"

# A path below /tmp/home of the given length.
path_of_length() {
  printf '/tmp/home/%0*d' "$(($1 - ${#HOME} - 1))" 0
}

# The tenth run has the longest command line.
MayHave183Characters() {
  HOME=$(path_of_length 183)
  for _ in {1..10}; do
    : >/tmp/fake/events
    run 10.0.0.5
  done

  expect_console home_of_183
  expect_traces home_of_183
}

IsRefusedWith184Characters() {
  HOME=$(path_of_length 184) run 10.0.0.5

  expect_console home_of_184
  expect_traces home_of_184
}

IsTheTextNullWhenUnset() {
  unset HOME

  run 10.0.0.5

  expect_console home_unset
  expect_traces home_unset
}

IsSplitByTheShellAtABlank() {
  HOME='/tmp/home/of me' run 10.0.0.5

  expect_console home_with_blank
  expect_traces home_with_blank
}

run_test "$@"

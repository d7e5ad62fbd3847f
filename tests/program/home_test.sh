#!/usr/bin/env bash
# The directory that HOME names.
source "$(dirname "$0")/library.sh"

# A path below /tmp/home of the given length.
path_of_length() {
  printf '/tmp/home/%0*d' "$(($1 - ${#HOME} - 1))" 0
}

MayHaveSeventyCharacters() {
  HOME=$(path_of_length 70) run 10.0.0.5

  expect_console home_of_70
  expect_traces home_of_70
}

IsRefusedWithSeventyOneCharacters() {
  HOME=$(path_of_length 71) run 10.0.0.5

  expect_console home_of_71
  expect_traces home_of_71
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

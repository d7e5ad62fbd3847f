#!/usr/bin/env bash
# The manual pages.
source "$(dirname "$0")/library.sh"

HasNoFaults() {
  need mandoc

  run mandoc -T lint -W warning,stop "$packaging"/../man/*

  expect_silent_success
}

settings_page=$packaging/../man/connTester.conf.5

# Compares with the sample, which the tests of the sample configuration hold to the program.
ListsEachSettingWithItsDefault() {
  expect_file <(sort "$packaging/connTester.conf") < <(
    awk '$1 == ".It" && $2 == "Cm" { key = $3 } $1 == "Default:" { sub(/\.$/, "", $2); print key "=" $2 }' \
      "$settings_page" | sort)
}

NamesTheSettingsInTheOrderOfTheProgram() {
  expect_file <(sed 's/=.*//' "$packaging/connTester.conf") < <(
    sed -n '/^Of several keys/,/^Lines/s/^\.Cm //p' "$settings_page" | tr -s ' ,.' '\n')
}

run_test "$@"

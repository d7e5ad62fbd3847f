#!/usr/bin/env bash
# The Homebrew formula, as far as it can be checked without Homebrew.
source "$(dirname "$0")/library.sh"

HasNoFaultsOfSyntax() {
  need ruby

  run ruby -wc "$packaging/homebrew/conntester.rb"

  expect_file /tmp/fake/errors </dev/null
  expect_file /tmp/fake/console <<<'Syntax OK'
}

run_test "$@"

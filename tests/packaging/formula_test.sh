#!/usr/bin/env bash
# The Homebrew formula, as far as it can be checked without Homebrew.
source "$(dirname "$0")/library.sh"

HasNoFaultsOfSyntax() {
  need ruby
  ruby -wc "$packaging/homebrew/conntester.rb" >/tmp/fake/checked 2>&1 || true

  expect_file /tmp/fake/checked <<<'Syntax OK'
}

run_test "$@"

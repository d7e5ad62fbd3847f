#!/usr/bin/env bash
# What the documents say, as far as it can be compared with what there is. Their commands are run by
# script/test_package.
source "$(dirname "$0")/library.sh"

project=$(cd "$packaging/.." && pwd)
documented_commands=$project/tests/packaging/documented_commands

# Prints the patterns by which script/test_package finds the commands that it tries or leaves out.
patterns() {
  sed -nE "s/^ *(try[a-z_]*|leave_out) '([^']*)'.*/\2/p" "$project/script/test_package" | sort -u
}

HoldNoCommandThatIsNotTried() {
  expect_file <("$documented_commands" | grep -v -f <(patterns)) </dev/null
}

HoldEachCommandThatIsTried() {
  local pattern
  while IFS= read -r pattern; do
    "$documented_commands" "$pattern" >/tmp/fake/console
  done < <(patterns)
}

LeadToNothingThatIsNotInstalled() {
  install_tester
  cd "$prefix/share/doc/conntester"

  local document link
  grep -oP '\]\(\K[^):#]+(?=[)#])' ./*.md docs/*.md | while IFS=: read -r document link; do
    [[ -e $(dirname "$document")/$link ]] || fail "$document leads to $link, which is not there"
  done
}

# Prints the README's example of what a run prints.
example() {
  awk '/^#+ What a run prints$/ { here = 1 } here && /^```$/ { exit } block { print }
    here && /^```text$/ { block = 1 }' "$project/README.md"
}

# Hides what is another one in each run.
without_values() {
  sed -E 's,/home/me|/tmp/home,~,g; s,/tmp/usr/,/usr/,; s/[0-9]+/0/g'
}

# Puts, in place of what a run prints of its tools, the README's words for it.
without_tools() {
  awk '
    /^PING /, /^round-trip/ { if (/^PING /) { print "(what ping prints)" } next }
    /^date / { print "(twelve lines: what was read from that report)" }
    /^date /, /^Bps rcvd/ { lines++; next }
    { print }
    END { if (lines != 24) { print lines " lines of reports" } }' "$@"
}

ShowWhatARunPrints() {
  install_tester
  # The run has no wait to speak of then, and shows it nowhere.
  configure iperfTestTime=-1

  run start_command 192.0.2.10

  expect_status 0
  expect_file <(without_tools /tmp/fake/console | without_values) < <(example | without_values)
}

HoldTheFiguresThatTheirCommandsPrint() {
  cat >document.md <<'END'
Before.
<!-- figures: echo '| 1 |' -->
Old figures.
<!-- end of figures -->
<!-- figures: false -->
Left alone.
<!-- end of figures -->
END

  "$project/script/figures" document.md echo 2>/dev/null

  sed -i 's/, .* processors.*/, DAY AND MACHINE/' document.md
  expect_file document.md <<'END'
Before.
<!-- figures: echo '| 1 |' -->
`echo '| 1 |'`, DAY AND MACHINE

| 1 |
<!-- end of figures -->
<!-- figures: false -->
Left alone.
<!-- end of figures -->
END
}

run_test "$@"

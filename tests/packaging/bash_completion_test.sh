#!/usr/bin/env bash
# The completion of connWatch's command line in bash.
source "$(dirname "$0")/library.sh"

# shellcheck source=../../packaging/bash-completion/connWatch
source "$packaging/bash-completion/connWatch"

# Completes the last of the words behind "connWatch", cut as bash cuts them, and prints what bash offers
# then, in its order.
complete_words() {
  COMP_WORDS=(connWatch "$@")
  COMP_CWORD=$#
  COMPREPLY=(stale)
  _connWatch
  ((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}" | sort
}

# Compares what is offered for the words $1, in quotes where need be, with the words $2.
expect_offer() {
  local words
  eval "words=($1)"
  expect_file <(complete_words "${words[@]}" | paste -sd ' ') <<<"${2-}"
}

CompletesTheWordsOfEachCommand() {
  for_each_case expect_offer <<'END'
""                    | check doctor export list report run show summary
s                     | show summary
show ""
run ""
run --                | --help --trace
run --trace ""
check ""
export ""             | csv jsonl sqlite
export s              | sqlite
report --             | --contract --from --help --open --output --since --until
report --open --o     | --open --output
export csv ""
nothing ""            | check doctor export list report run show summary
doctor ""
doctor --             | --help --try
doctor --try --h      | --help
--                    | --from --help --since --until --version
list --               | --from --help --since --until
show -2 --            | --from --help --since --until
summary --s           | --since
check --              | --bad --below --from --help --latency --max-age --read --since --until --write
export --             | --from --help --output --since --until
export sqlite --o     | --output
--help l              | list
--from list ""        | check doctor export list report run show summary
--from list check --r | --read
--from = logs list -- | --from --help --since --until
END
}

CompletesTheValuesOfOptions() {
  mkdir logs runs
  touch runs.csv
  for_each_case expect_offer <<'END'
--from ""            | logs runs
--from = ""          | logs runs
--from =             | logs runs
list --from r        | runs
export --output ru   | runs runs.csv
--since ""           | today yesterday
list --until y       | yesterday
check --read ""
check --max-age --   |
check --below = ""
END
}

LeavesFilesToBashCompletionWhereThatIsThere() {
  # shellcheck disable=SC2317 # the completion calls it
  _filedir() {
    COMPREPLY=("_filedir $*: $cur")
  }

  for_each_case expect_offer <<'END'
list --from r          | _filedir -d: r
export --output = runs | _filedir : runs
END
}

IsWhatBashAsksForConnWatch() {
  expect_file <(complete -p connWatch) <<<'complete -F _connWatch connWatch'
}

# Prints the long options that the manual lists for all commands and for command $1, by default that which
# is the default.
options_of_manual() {
  awk -v own="${1:-summary}" '
    /^\.S[hs] / { section = substr($0, 5) }
    /^\.It Fl / && (section == "Options" || section ~ "^Options of " && section ~ "[ ]" own "(,| |$)") {
      for (i = 3; i <= NF; i++) {
        if ($(i - 1) == "Fl" && $i ~ /^-/) { print "-" $i }
      }
    }' "$prefix/share/man/man1/connWatch.1"
}

# Compares the options of command $1, none for that of the program alone, in all three places.
expect_options() {
  local command=$1
  "$prefix/bin/connWatch" ${command:+"$command"} --help | grep -oE -- '--[a-z][a-z-]*' | sort -u >options.help
  # shellcheck disable=SC2086 # no word for none
  complete_words $command -- >options.completion
  options_of_manual "$command" | grep -vx -e "${command:+--version}" | sort >options.manual
  diff options.help options.completion || fail "connWatch $command: help (<) is not completion (>)"
  diff options.help options.manual || fail "connWatch $command: help (<) is not manual (>)"
}

KnowsTheOptionsThatHelpAndManualKnow() {
  install_tester

  local command
  for command in '' $(complete_words ''); do
    expect_options "$command"
  done
}

KnowsTheCommandsThatHelpAndManualKnow() {
  install_tester

  complete_words '' >commands.completion
  sed -nE '/^The commands are:/,/^\.El/s/^\.It Cm ([a-z]+).*/\1/p' "$prefix/share/man/man1/connWatch.1" |
    sort >commands.manual
  "$prefix/bin/connWatch" --help | sed -n '/^Commands:/,/^$/p' | awk '/^ / { print $1 }' | sort >commands.help
  diff commands.help commands.completion || fail "help (<) is not completion (>)"
  diff commands.help commands.manual || fail "help (<) is not manual (>)"
}

run_test "$@"

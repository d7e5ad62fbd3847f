#!/usr/bin/env bash
# The program as it is meant to run: the whole runs from which the other tests tell differences, and
# runs with another address.
source "$(dirname "$0")/library.sh"

Program.StartsItsHistories() {
  run tester 192.168.1.10

  expect_run "$1"
}

Program.ExtendsItsHistories() {
  run_an_hour_before tester 192.168.1.10

  run tester 192.168.1.10

  expect_run "$1"
}

Program.MovesFullHistories() {
  run_an_hour_before tester 192.168.1.10
  fill_histories 9

  run tester 192.168.1.10

  expect_run "$1"
}

Program.MeasuresWithIperf2() {
  install_iperf2
  run_an_hour_before iperf2_tester 192.168.1.10 exec read report result

  run iperf2_tester 192.168.1.10 exec read report result

  expect_run "$1"
}

# No run of the program itself can be told to.
Iperf2.RunsBetweenPingAndIperf3AndLeavesNoRate() {
  install_iperf2

  run iperf2_tester 192.168.1.10

  expect_changes "$1" Program.StartsItsHistories
}

Address.IsTheSecondOfTwoArguments() {
  run tester 'anything of any length' 192.168.100.100

  expect_changes "$1" Program.StartsItsHistories
}

Address.IsEmptyWithoutArguments() {
  run tester

  expect_changes "$1" Program.StartsItsHistories
}

Address.IsEmptyWithThreeArguments() {
  run tester 192.168.1.10 192.168.1.11 192.168.1.12

  expect_changes "$1" Program.StartsItsHistories
}

Address.MayLookLikeAnOption() {
  run tester -h

  expect_changes "$1" Program.StartsItsHistories
}

Address.IsRefusedWithSixteenCharacters() {
  run tester 192.168.100.1000

  expect_changes "$1" Program.StartsItsHistories
}

set_up
"$1" "$1"

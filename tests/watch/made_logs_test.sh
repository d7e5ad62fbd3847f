#!/usr/bin/env bash
# The made log directories, held to the program whose runs they stand in for, and the comparison of an
# export with their truth.
source "$(dirname "$0")/../support/program.sh"

here=$(cd "$(dirname "$0")" && pwd)

export PYTHONDONTWRITEBYTECODE=1

# Fails where any byte of the log directory is another, those of the archives and latest reports too.
replay() {
  TZ=Europe/Berlin python3 "$here/replay.py" --zone Europe/Berlin "$@"
}

MadeLogs.OfAllKindsAreWhatTheProgramLeaves() {
  replay --mix hard --seed 1 --runs 300
}

MadeLogs.OfAHomeLineAreWhatTheProgramLeaves() {
  replay --mix plain --seed 1 --runs 60
}

HoldToTruth.NoticesEachFieldThatIsWrong() {
  python3 "$here/hold_to_truth_test.py"
}

run_test "$@"

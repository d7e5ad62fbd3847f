// Puts the lines of all histories together to runs. The rules, in their order:
//
//  1. A run writes a ping line (or several of one start), a forward line, a reverse line and a
//     result, in this order, and each history has them in the order of the runs. Of all ways to
//     deal the lines out to runs that is taken in which the least is missing: a run that was ended
//     before it came to its result costs less than a lost line.
//  2. A result and the tests of its run: the rates that it shows are the tests', in its unit, and
//     "n/a" stands for a test without a rate. A result that shows no rate may have no tests: iperf3
//     was switched off. Only a line that repeats the one before it may tell another rate.
//  3. A result has a date when it has a ping line, and shows that line's latency.
//  4. Times that disagree, since the clock was set or the machine slept, are as rare as a run that
//     was ended: the ping began shortly before the date, which is the start of the forward test,
//     which the reverse test follows.
//  5. Where another way would have missed as little, the run says so: it is unsure.
//  6. The output of a ping belongs to the ping line with its numbers. Outputs that the tester has
//     not read belong to the runs without a ping line between two neighbours, when there are as
//     many.
//  7. The time of a run: its ping's, its forward test's, its reverse test's, the stamp of the
//     archive that it filled; else only its place between others is known.
#pragma once

#include "evidence/evidence.h"
#include "runs/run.h"

#include <optional>
#include <vector>

namespace watch {

/// Returns the runs in the order of their times. A run without one stands behind that before it.
/// With `now`, the last runs, if they have begun shortly before and have no result, are `ongoing`,
/// unless the lock tells that they have ended.
std::vector<Run> joinRuns(const Evidence& evidence, std::optional<EpochSeconds> now = {});

}  // namespace watch

// Puts the lines of all histories together to runs. The rules, in their order:
//
//  1. A forward and a reverse line are of one test when the second began soon after the first.
//  2. A result line and a test belong together when the rates that the result shows are the test's,
//     in its unit, and "n/a" stands for a test without a rate; and its date is the forward test's
//     start. A result that shows no rate at all may have no test: iperf3 was switched off.
//  3. A result line with a date has a ping line: the one that began shortly before with its
//  latency.
//     Ping lines of one start are of one run.
//  4. What is left is of runs that were ended before they came to their result.
//  5. The output of a ping belongs to the ping line with its numbers. Outputs that the tester has
//  not
//     read belong to the runs without a ping line between two neighbours, when there are as many.
//  6. The time of a run: its ping's, its forward test's, its reverse test's, the stamp of the
//  archive
//     that it filled; else only its place between others is known.
#pragma once

#include "evidence/evidence.h"
#include "runs/run.h"

#include <vector>

namespace watch {

/// Returns the runs in the order of their times. A run without one stands behind that before it.
std::vector<Run> joinRuns(const Evidence& evidence);

}  // namespace watch

#include "figures/worst_runs.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

using Worst = std::vector<const watch::Run*>;

TEST(WorstRuns, AreTheSlowestFirstAndTheEarlierOfEqualOnes) {
  std::vector<watch::Run> runs = {okRun(0), okRun(1), okRun(2), okRun(3), cutRun(4)};
  runs[1].read.bps = 5e6;
  runs[2].read.bps = 9e6;
  runs[3].read.bps = 5e6;

  EXPECT_EQ(worstRuns(runs, kRead, 3), (Worst{&runs[1], &runs[3], &runs[2]}));
}

TEST(WorstRuns, AreThoseOfTheGreatestLatency) {
  std::vector<watch::Run> runs = {okRun(0), okRun(1), failedRun(2)};
  runs[1].ping.avg = 400;

  EXPECT_EQ(worstRuns(runs, kLatency, 10), (Worst{&runs[1], &runs[0]}));
}

TEST(WorstRuns, AreNoneWhereNothingWasMeasured) {
  const watch::Run run = failedRun(0);

  EXPECT_TRUE(worstRuns({&run, 1}, kRead, 3).empty());
}

}  // namespace
}  // namespace watch

#include "figures/contract.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

/// Runs at noon of one day after the other, two on each.
std::vector<watch::Run> runsOf(std::initializer_list<double> megabits) {
  std::vector<watch::Run> runs;
  for (const double rate : megabits) {
    runs.push_back(okRun(kNow + static_cast<EpochSeconds>(runs.size() / 2) * kDay));
    runs.back().read.bps = rate * kMegabit;
  }
  return runs;
}

Reached reachedBy(const std::vector<watch::Run>& runs) {
  return reached(stretches(timeline(runs, Reference{&kRead, 100, true}), dayKey));
}

TEST(Contract, IsReachedFromNinetyPercentOn) {
  const Reached reach = reachedBy(runsOf({90, 89, 50, 49, 10, 100}));

  EXPECT_EQ(reach.runs, 6U);
  EXPECT_EQ(reach.inFull, 2U);
  EXPECT_EQ(reach.belowHalf, 2U);
  EXPECT_EQ(reach.days, 3U);
  EXPECT_EQ(reach.daysWithout, 1U);
}

TEST(Contract, IsMissedOnDaysInARow) {
  const Reached reach = reachedBy(runsOf({95, 95, 10, 20, 30, 40, 95, 10}));

  EXPECT_EQ(reach.daysWithout, 2U);
  ASSERT_TRUE(reach.longest);
  EXPECT_EQ(reach.longest->last - reach.longest->first, 1);
}

TEST(Contract, CountsOnlyWhatWasMeasured) {
  std::vector<watch::Run> runs = runsOf({95, 95});
  runs.push_back(cutRun(kNow + 2 * kDay));
  runs.push_back(failedRun(kNow + 2 * kDay));

  const Reached reach = reachedBy(runs);

  EXPECT_EQ(reach.runs, 2U);
  EXPECT_EQ(reach.days, 1U);
  EXPECT_EQ(reach.daysWithout, 0U);
  EXPECT_FALSE(reach.longest);
}

}  // namespace
}  // namespace watch

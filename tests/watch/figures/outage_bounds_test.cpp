#include "figures/outage_bounds.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(OutageBounds, AreTheGoodRunsAroundIt) {
  const std::vector<watch::Run> runs = {okRun(0),      okRun(100),     failedRun(200),
                                        failedRun({}), failedRun(400), endedRun(500),
                                        okRun(600)};

  const OutageBounds bounds = boundsOf(runs, outages(runs).front());

  EXPECT_EQ(bounds.lastGood, 100);
  EXPECT_EQ(bounds.nextGood, 500);
  EXPECT_EQ(bounds.runs, 3U);
  EXPECT_EQ(bounds.atLeast(), 200);
  EXPECT_EQ(bounds.atMost(), 400);
  EXPECT_EQ(bounds.reason, "no reply, no test");
}

TEST(OutageBounds, AreOpenWhereNoGoodRunIs) {
  const std::vector<watch::Run> runs = {failedRun(200), failedRun(300)};

  const OutageBounds bounds = boundsOf(runs, outages(runs).front());

  EXPECT_EQ(bounds.lastGood, std::nullopt);
  EXPECT_EQ(bounds.nextGood, std::nullopt);
  EXPECT_EQ(bounds.atLeast(), 100);
  EXPECT_EQ(bounds.atMost(), std::nullopt);
}

}  // namespace
}  // namespace watch

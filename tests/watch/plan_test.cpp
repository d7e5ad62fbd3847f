#include "plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace watch {

namespace {

using testing::FieldsAre;

Configuration settings(int pings, int testSeconds) {
  Configuration settings;
  settings.numPings = pings;
  settings.iperfTestTime = testSeconds;
  return settings;
}

TEST(Plan, HasTheWaitBehindEachDirection) {
  const Plan plan = planOf(Configuration{});

  EXPECT_THAT(plan.ping, FieldsAre(10, 50));
  EXPECT_THAT(plan.write, FieldsAre(21, 91));
  EXPECT_THAT(plan.read, FieldsAre(21, 91));
  EXPECT_THAT(plan.total(), FieldsAre(52, 232));
}

TEST(Plan, LeavesOutWhatIsSwitchedOff) {
  Configuration settings;
  settings.doPingTests = false;
  EXPECT_THAT(planOf(settings).total(), FieldsAre(42, 182));

  settings.doIperf3Tests = false;
  EXPECT_THAT(planOf(settings).total(), FieldsAre(0, 0));
}

// iperf3 takes 0 for a test without an end, and no tool takes less.
TEST(Plan, GivesAMinuteToWhatHasNoEnd) {
  EXPECT_THAT(planOf(settings(1, 0)).write, FieldsAre(1, 71));
  EXPECT_THAT(planOf(settings(0, 1)).ping, FieldsAre(0, 70));
  EXPECT_THAT(planOf(settings(1, -5)).write, FieldsAre(0, 70));
}

TEST(Plan, EndsWithinDays) {
  EXPECT_THAT(planOf(settings(2147483647, 2147483647)).total(),
              FieldsAre(432002, 86400 + 40 + 2 * (172801 + 70)));
}

}  // namespace

}  // namespace watch

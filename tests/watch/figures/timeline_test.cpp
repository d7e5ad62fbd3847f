#include "figures/timeline.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

constexpr Reference kUsualRead{&kRead, 244, false};

TEST(Timeline, HasRunsAndThoseThatAreMissingInOrderOfTime) {
  const Zone berlin("Europe/Berlin");
  const std::vector<watch::Run> runs = {okRun(kNow), cutRun(kNow + kHour), okRun(kNow + 2 * kHour),
                                        failedRun({}), okRun(kNow + 5 * kHour)};

  const std::vector<Placed> line = timeline(runs, kUsualRead);

  ASSERT_EQ(line.size(), 6U);
  const Mark marks[] = {Mark::good,         Mark::partly, Mark::good,
                        Mark::noConnection, Mark::noTest, Mark::good};
  for (std::size_t i = 0; i < line.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(line[i].at, kNow + static_cast<EpochSeconds>(i) * kHour);
    EXPECT_EQ(line[i].day, 20'778);
    EXPECT_EQ(line[i].hour, 10 + i);
    EXPECT_EQ(line[i].mark, marks[i]);
    EXPECT_EQ(line[i].run == nullptr, marks[i] == Mark::noTest);
  }
}

TEST(Timeline, LeavesOutWhatIsNoRunAndHasNoTime) {
  watch::Run ongoing = okRun(kNow);
  ongoing.ongoing = true;
  const std::vector<watch::Run> runs = {orphan(), ongoing};

  EXPECT_TRUE(timeline(runs, kUsualRead).empty());
  const watch::Run timeless = failedRun({});
  EXPECT_TRUE(timeline({&timeless, 1}, std::nullopt).empty());
}

TEST(Timeline, HasOneForAllThatAWrongClockLeavesOut) {
  const std::vector<watch::Run> runs = {okRun(0), okRun(60), okRun(120), okRun(180), okRun(kNow)};

  const std::vector<Placed> line = timeline(runs, kUsualRead);

  ASSERT_EQ(line.size(), 6U);
  EXPECT_EQ(line[4].mark, Mark::noTest);
  EXPECT_EQ(line[4].at, 240);
}

}  // namespace
}  // namespace watch

#include "figures/stretch.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

constexpr Reference kContract{&kRead, 250, true};

class Stretches : public testing::Test {
 protected:
  /// Two days of hourly runs from kNow on: the second run was cut, the third is missing, the fifth
  /// had no connection.
  static std::vector<watch::Run> twoDays() {
    std::vector<watch::Run> runs;
    for (int hour = 0; hour < 48; ++hour) {
      if (hour != 2) {
        const EpochSeconds time = kNow + hour * kHour;
        runs.push_back(hour == 1 ? cutRun(time) : hour == 4 ? failedRun(time) : okRun(time));
      }
    }
    return runs;
  }

  Zone berlin{"Europe/Berlin"};
  std::vector<watch::Run> runs = twoDays();
  std::vector<Placed> line = timeline(runs, kContract);
};

TEST_F(Stretches, AreDaysOfTheWallClock) {
  const std::vector<Stretch> days = stretches(line, dayKey);

  ASSERT_EQ(days.size(), 3U);
  EXPECT_EQ(days[0].key, 20'778);
  EXPECT_EQ(days[0].runs(), 13U);
  EXPECT_EQ(days[0].of(Mark::good), 11U);
  EXPECT_EQ(days[0].of(Mark::partly), 1U);
  EXPECT_EQ(days[0].of(Mark::noConnection), 1U);
  EXPECT_EQ(days[0].of(Mark::noTest), 1U);
  EXPECT_EQ(days[0].read->count, 11U);
  EXPECT_EQ(days[0].write->count, 12U);
  EXPECT_EQ(days[0].latency->middle, 13);
  EXPECT_EQ(days[1].runs(), 24U);
  EXPECT_EQ(days[2].runs(), 10U);
}

TEST_F(Stretches, AreMonthsHoursAndHoursOfTheWeek) {
  const std::vector<Stretch> months = stretches(line, monthKey);
  const std::vector<Stretch> hours = stretches(line, hourKey);
  const std::vector<Stretch> week = stretches(line, hourOfWeekKey);

  ASSERT_EQ(months.size(), 1U);
  EXPECT_EQ(months[0].key, 2026 * 12 + 10);
  ASSERT_EQ(hours.size(), 24U);
  EXPECT_EQ(hours[10].runs(), 2U);
  ASSERT_EQ(week.size(), 48U);
  EXPECT_EQ(week[0].key, 0);
  EXPECT_EQ(week.back().key, 6 * 24 + 23);
}

TEST_F(Stretches, HaveTheMarkOfWhatWasWorst) {
  const std::vector<Stretch> hours =
      stretches(line, [](const Placed& placed) { return placed.at / kHour; });

  EXPECT_EQ(markOf(hours[0], kContract), Mark::good);
  EXPECT_EQ(markOf(hours[1], kContract), Mark::partly);
  EXPECT_EQ(markOf(hours[2], kContract), Mark::noTest);
  EXPECT_EQ(markOf(hours[4], kContract), Mark::noConnection);
  EXPECT_EQ(markOf(stretches(line, dayKey).front(), kContract), Mark::noConnection);
}

TEST(Stretch, HasTheMarkOfItsMiddleFigure) {
  Stretch stretch;
  stretch.marks = {1, 0, 0, 1, 0, 1, 1, 0, 1};
  EXPECT_EQ(markOf(stretch, kContract), Mark::noServer);

  stretch.read = Spread{3, 10, 20, 100, 200, 240};
  EXPECT_EQ(markOf(stretch, kContract), Mark::slower);
}

}  // namespace
}  // namespace watch

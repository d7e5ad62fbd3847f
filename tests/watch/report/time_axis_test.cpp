#include "report/time_axis.h"

#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

/// 2026-11-21.
constexpr std::int64_t kDayOfNow = 20'778;

std::string labels(std::int64_t first, std::int64_t days) {
  const Zone berlin("Europe/Berlin");
  std::string text;
  for (const Tick& tick : TimeAxis{first, days}.ticks()) {
    text += (text.empty() ? "" : " | ") + tick.label;
  }
  return text;
}

TEST(TimeAxis, IsDividedAsThereIsRoom) {
  EXPECT_EQ(labels(kDayOfNow, 1), "00:00 | 06:00 | 12:00 | 18:00");
  EXPECT_EQ(labels(kDayOfNow, 3), "21 Nov | 22 Nov | 23 Nov");
  EXPECT_EQ(labels(kDayOfNow, 28), "23 Nov | 30 Nov | 7 Dec | 14 Dec");
  EXPECT_EQ(labels(kDayOfNow - 100, 101), "Sep | Oct | Nov");
  EXPECT_EQ(labels(kDayOfNow - 700, 701), "2025 | Apr | Jul | Oct | 2026 | Apr | Jul | Oct");
  EXPECT_EQ(labels(kDayOfNow - 2000, 2001), "2022 | 2023 | 2024 | 2025 | 2026");
}

TEST(TimeAxis, IsThatOfTheWallClock) {
  const Zone berlin("Europe/Berlin");
  const TimeAxis axis{kDayOfNow, 2};

  EXPECT_EQ(axis.x(static_cast<double>(kDayOfNow) + 1), kWidth / 2);
  EXPECT_EQ(axis.xOf(noonOf(kDayOfNow)), kWidth / 4);
}

}  // namespace
}  // namespace watch

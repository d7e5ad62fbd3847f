#include "figures/days_in_a_row.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

/// Days with these keys; the hundreds say whether they are such: 1 yes, 2 it can't be told.
std::optional<DaysInARow> longest(std::initializer_list<std::int64_t> keys) {
  std::vector<Stretch> days;
  for (const std::int64_t key : keys) {
    days.emplace_back().key = key;
  }
  return longestRow(days, [](const Stretch& day) {
    return day.key >= 200 ? std::nullopt : std::optional(day.key >= 100);
  });
}

TEST(DaysInARow, AreTheFirstOfThoseThatAreLongest) {
  const auto row = longest({1, 102, 103, 4, 105, 106, 7, 108});

  ASSERT_TRUE(row);
  EXPECT_EQ(row->first, 102);
  EXPECT_EQ(row->last, 103);
  EXPECT_EQ(row->count, 2U);
}

TEST(DaysInARow, AreNotEndedByDaysThatTellNothing) {
  const auto row = longest({101, 202, 103, 4});

  ASSERT_TRUE(row);
  EXPECT_EQ(row->first, 101);
  EXPECT_EQ(row->last, 103);
  EXPECT_EQ(row->count, 2U);
}

TEST(DaysInARow, AreNoneWhereNoDayIsSuch) {
  EXPECT_FALSE(longest({1, 2, 203}));
  EXPECT_FALSE(longest({}));
}

}  // namespace
}  // namespace watch

#include "figures/statistics.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Quantile, OfNoValuesIsNothing) {
  EXPECT_EQ(quantile({}, 0.5), std::nullopt);
  EXPECT_EQ(median({}), std::nullopt);
}

TEST(Quantile, OfOneValueIsThatValue) {
  for (const double share : {0.0, 0.05, 0.5, 1.0}) {
    EXPECT_EQ(quantile({7}, share), 7);
  }
}

TEST(Quantile, LiesBetweenTheTwoNearestValues) {
  EXPECT_EQ(quantile({40, 10, 30, 20, 0}, 0.05), 2);
  EXPECT_EQ(quantile({40, 10, 30, 20, 0}, 0.95), 38);
  EXPECT_EQ(quantile({40, 10, 30, 20, 0}, 0), 0);
  EXPECT_EQ(quantile({40, 10, 30, 20, 0}, 1), 40);
}

TEST(Median, IsTheMiddleValueOrThatBetweenTheTwoMiddleOnes) {
  EXPECT_EQ(median({3, 1, 2}), 2);
  EXPECT_EQ(median({4, 1, 2, 3}), 2.5);
  EXPECT_EQ(median({5, 5, 5, 5}), 5);
}

TEST(Spread, HoldsHalfAndNineInTenOfTheValues) {
  std::vector<double> values;
  for (int i = 100; i >= 0; --i) {
    values.push_back(i);
  }

  const auto found = spread(values);

  ASSERT_TRUE(found);
  EXPECT_EQ(found->count, 101U);
  EXPECT_EQ(found->low, 5);
  EXPECT_EQ(found->lowerQuarter, 25);
  EXPECT_EQ(found->middle, 50);
  EXPECT_EQ(found->upperQuarter, 75);
  EXPECT_EQ(found->high, 95);
}

TEST(Spread, IsThatOfTheQuantiles) {
  const std::vector<double> values = {3, 1, 4, 1, 5, 9, 2, 6};

  const auto found = spread(values);

  ASSERT_TRUE(found);
  EXPECT_EQ(found->low, quantile(values, 0.05));
  EXPECT_EQ(found->middle, median(values));
  EXPECT_EQ(found->high, quantile(values, 0.95));
}

TEST(Spread, OfNoValuesIsNothing) {
  EXPECT_FALSE(spread({}));
}

}  // namespace
}  // namespace watch

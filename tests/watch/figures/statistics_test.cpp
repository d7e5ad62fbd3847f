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

}  // namespace
}  // namespace watch

#include "figures/mark.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Mark, IsByTheShareOfWhatARateShouldBe) {
  const Reference contract{&kRead, 100, true};
  const struct {
    double rate;
    Mark mark;
  } cases[] = {{250, Mark::good},     {90, Mark::good},  {89.9, Mark::fair},   {75, Mark::fair},
               {74.9, Mark::slow},    {50, Mark::slow},  {49.9, Mark::slower}, {25, Mark::slower},
               {24.9, Mark::slowest}, {0, Mark::slowest}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rate);
    EXPECT_EQ(markOf(c.rate, contract), c.mark);
  }
}

TEST(Mark, IsWorseForTwiceTheLatency) {
  const Reference usual{&kLatency, 10, false};

  EXPECT_EQ(markOf(5, usual), Mark::good);
  EXPECT_EQ(markOf(11, usual), Mark::good);
  EXPECT_EQ(markOf(20, usual), Mark::slow);
  EXPECT_EQ(markOf(41, usual), Mark::slowest);
  EXPECT_EQ(usual.figure(0.5), 20);
}

TEST(Mark, SaysWhyARunHasNoFigure) {
  const Reference contract{&kRead, 244, true};

  EXPECT_EQ(markOf(okRun(kNow), Outcome::measured, contract), Mark::good);
  EXPECT_EQ(markOf(cutRun(kNow), Outcome::partly, contract), Mark::partly);
  EXPECT_EQ(markOf(failedRun(kNow), Outcome::noConnection, contract), Mark::noConnection);
  EXPECT_EQ(markOf(failedRun(kNow), Outcome::noServer, contract), Mark::noServer);
  EXPECT_EQ(markOf(failedRun(kNow), Outcome::nothing, std::nullopt), Mark::partly);
}

}  // namespace
}  // namespace watch

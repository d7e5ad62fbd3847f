#include "figures/usual.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

/// 2026-10-25T00:00:00Z, an hour before clocks went back from 03:00 to 02:00 in Berlin.
constexpr EpochSeconds kBeforeTheHourComesTwice = 1'792'886'400;

using Values = std::vector<std::optional<double>>;

watch::Run reading(EpochSeconds time, double megabits) {
  watch::Run run = okRun(time);
  run.read.bps = megabits * 1e6;
  return run;
}

TEST(Usual, OfNothingIsNothing) {
  const Usual none = usual({}, kRead);

  EXPECT_EQ(none.middle, std::nullopt);
  EXPECT_EQ(none.oneInTwenty, std::nullopt);
  EXPECT_EQ(none.count, 0U);
}

TEST(Usual, IsTheMiddleAndWhatOneInTwentyIsWorseThan) {
  std::vector<watch::Run> runs;
  for (int i = 0; i <= 20; ++i) {
    runs.push_back(reading(kNow, 10 * i));
    runs.back().ping.avg = i;
  }

  const Usual rate = usual(runs, kRead);
  const Usual latency = usual(runs, kLatency);

  EXPECT_EQ(rate.middle, 100);
  EXPECT_EQ(rate.oneInTwenty, 10);
  EXPECT_EQ(rate.count, 21U);
  EXPECT_EQ(latency.middle, 10);
  EXPECT_EQ(latency.oneInTwenty, 19);
}

TEST(Usual, TellsNoOneInTwentyOfFewer) {
  std::vector<watch::Run> runs(19, okRun(kNow));
  EXPECT_EQ(usual(runs, kRead).oneInTwenty, std::nullopt);

  runs.push_back(okRun(kNow));
  EXPECT_EQ(usual(runs, kLatency).oneInTwenty, 13);
}

TEST(Usual, LeavesOutWhatIsNoFigureOfTheLine) {
  std::vector<watch::Run> runs = {cutRun(1), failedRun(2), endedRun(3), orphan()};
  for (const RateState state : {RateState::unknown, RateState::nothingMoved, RateState::stale}) {
    runs.push_back(okRun(4));
    runs.back().read.state = state;
  }
  for (const PingState state : {PingState::unknown, PingState::falseZero, PingState::unread,
                                PingState::noOutput, PingState::stale}) {
    runs.push_back(okRun(5));
    runs.back().ping.state = state;
    runs.back().ping.avg = 0;
    runs.back().read.bps = kNotMeasured;
  }

  EXPECT_EQ(usual(runs, kRead).count, 0U);
  EXPECT_EQ(usual(runs, kLatency).middle, 13);
  EXPECT_EQ(usual(runs, kLatency).count, 5U);
}

TEST(Usual, CountsALossOnlyWhereBothNumbersAreThere) {
  std::vector<watch::Run> runs = {okRun(1), okRun(2), okRun(3), okRun(4)};
  runs[0].ping.received = 7;
  runs[1].ping.sent = {};
  runs[2].ping.sent = 0;
  runs[3].ping.received = 11;

  EXPECT_EQ(usual(runs, kLoss).middle, 30);
  EXPECT_EQ(usual(runs, kLoss).count, 1U);
}

TEST(UsualByHour, IsTheMiddleOfEachHourOfTheLocalDay) {
  const Zone berlin("Europe/Berlin");
  const std::vector<watch::Run> runs = {reading(kNow, 100), reading(kNow - kDay + 1, 300),
                                        reading(kNow - kHour, 50)};

  const auto hours = byHour(runs, kRead);

  std::array<std::optional<double>, 24> expected{};
  expected[10] = 200;
  expected[9] = 50;
  EXPECT_EQ(hours, expected);
}

TEST(UsualByHour, PutsBothHoursThatComeTwiceIntoOne) {
  const Zone berlin("Europe/Berlin");
  const std::vector<watch::Run> runs = {reading(kBeforeTheHourComesTwice, 100),
                                        reading(kBeforeTheHourComesTwice + kHour, 300)};

  EXPECT_EQ(byHour(runs, kRead)[2], 200);
}

TEST(UsualByHour, LeavesOutRunsWithoutATime) {
  watch::Run run = okRun(kNow);
  run.time = {};

  EXPECT_EQ(byHour({&run, 1}, kRead), (std::array<std::optional<double>, 24>{}));
}

TEST(UsualByDay, HasEachLocalDayFromTheFirstToTheLast) {
  const Zone berlin("Europe/Berlin");
  // The day of 25 hours, from its first second to its last.
  const EpochSeconds begin = kBeforeTheHourComesTwice - 2 * kHour;
  const std::vector<watch::Run> runs = {reading(begin - 1, 1), reading(begin, 100),
                                        reading(begin + 25 * kHour - 1, 300),
                                        reading(begin + 25 * kHour + kDay, 7)};

  const auto days = daysOf(runs);

  ASSERT_TRUE(days);
  EXPECT_EQ(days->first, begin - 1);
  EXPECT_EQ(days->last, begin + 25 * kHour + kDay);
  EXPECT_EQ(days->count, 4U);
  EXPECT_EQ(byDay(runs, kRead, *days, 1), (Values{1, 200, std::nullopt, 7}));
}

TEST(UsualByDay, TellsTheWorstOfSeveralDays) {
  const std::vector<watch::Run> runs = {reading(0, 100), reading(kDay, 50), reading(2 * kDay, 70),
                                        reading(4 * kDay, 80)};
  std::vector<watch::Run> latencies = runs;
  latencies[1].ping.avg = 99;

  const Days days = *daysOf(runs);

  EXPECT_EQ(byDay(runs, kRead, days, 2), (Values{50, 70, 80}));
  EXPECT_EQ(byDay(latencies, kLatency, days, 2), (Values{99, 13, 13}));
}

TEST(UsualByDay, TakesNoMoreRoomForTenThousandYearsThanItsBars) {
  const std::vector<watch::Run> runs = {reading(-60'000'000'000, 1), reading(250'000'000'000, 2)};
  const Days days = *daysOf(runs);

  const Values bars = byDay(runs, kRead, days, days.count / 2 + 1);

  EXPECT_EQ(bars, (Values{1, 2}));
}

TEST(UsualByDay, HasNoDaysWithoutATime) {
  const watch::Run run = failedRun({});

  EXPECT_EQ(daysOf({&run, 1}).has_value(), false);
}

/// Runs of the days before, at the hour of kNow and at the hour before.
std::vector<watch::Run> daysBefore(int count, double atThatHour, double before) {
  std::vector<watch::Run> runs;
  for (int i = count; i > 0; --i) {
    runs.push_back(reading(kNow - i * kDay - kHour, before));
    runs.push_back(reading(kNow - i * kDay, atThatHour));
  }
  return runs;
}

TEST(UsualThen, IsThatOfTheHourInTheTwentyEightDaysBefore) {
  const Zone berlin("Europe/Berlin");

  const UsualThen then = usualThen(daysBefore(40, 100, 300), kRead, kNow);

  EXPECT_EQ(then.middle, 100);
  // Of the first day, by summer time, it was the hour after.
  EXPECT_EQ(then.count, 27U);
  EXPECT_TRUE(then.isOfThatHour);
}

TEST(UsualThen, IsThatOfAnyHourWhereItsOwnHasFewerThanThreeRuns) {
  const Zone berlin("Europe/Berlin");

  const UsualThen then = usualThen(daysBefore(2, 100, 300), kRead, kNow);

  EXPECT_EQ(then.middle, 200);
  EXPECT_EQ(then.count, 4U);
  EXPECT_FALSE(then.isOfThatHour);
}

TEST(UsualThen, IsNotKnownOfTwoRuns) {
  const UsualThen then = usualThen(daysBefore(1, 100, 300), kRead, kNow);

  EXPECT_EQ(then.middle, std::nullopt);
  EXPECT_EQ(then.count, 2U);
}

TEST(UsualThen, LeavesOutTheRunItselfAndThoseBehindIt) {
  const std::vector<watch::Run> runs = {reading(kNow, 1), reading(kNow + 1, 1),
                                        reading(kNow + 2, 1)};

  EXPECT_EQ(usualThen(runs, kRead, kNow).count, 0U);
}

}  // namespace
}  // namespace watch

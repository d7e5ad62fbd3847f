#include "figures/period.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

using Places = std::vector<std::optional<EpochSeconds>>;

std::vector<watch::Run> runsAt(std::initializer_list<std::optional<EpochSeconds>> times) {
  std::vector<watch::Run> runs;
  for (const auto& time : times) {
    runs.push_back(time ? okRun(*time) : failedRun({}));
  }
  return runs;
}

std::vector<std::optional<EpochSeconds>> timesOf(const std::vector<watch::Run>& runs) {
  std::vector<std::optional<EpochSeconds>> times;
  for (const watch::Run& run : runs) {
    times.push_back(run.time);
  }
  return times;
}

TEST(PlacesInTime, AreTheTimesWhereTheyAreKnown) {
  EXPECT_EQ(placesInTime(runsAt({1, 5, 3})), (Places{1, 5, 3}));
  EXPECT_EQ(placesInTime({}), Places{});
}

TEST(PlacesInTime, AreByTheRhythmBehindTheRunBefore) {
  EXPECT_EQ(placesInTime(runsAt({0, 10, 20, {}, {}, 50})), (Places{0, 10, 20, 30, 40, 50}));
}

TEST(PlacesInTime, AreBeforeTheNextRun) {
  EXPECT_EQ(placesInTime(runsAt({0, 10, 20, {}, {}, 25})), (Places{0, 10, 20, 23, 24, 25}));
}

TEST(PlacesInTime, CountBackFromTheFirstTime) {
  EXPECT_EQ(placesInTime(runsAt({{}, {}, 20, 30, 40})), (Places{0, 10, 20, 30, 40}));
}

TEST(PlacesInTime, AreBesideTheNeighbourWithoutARhythm) {
  EXPECT_EQ(placesInTime(runsAt({7, {}})), (Places{7, 7}));
}

TEST(PlacesInTime, AreNothingWithoutAnyTime) {
  EXPECT_EQ(placesInTime(runsAt({{}, {}})), (Places{{}, {}}));
}

TEST(Period, HoldsItsBeginAndNotItsEnd) {
  EXPECT_EQ(timesOf(runsIn(runsAt({9, 10, 19, 20}), {10, 20})), (Places{10, 19}));
}

TEST(Period, HoldsAllWithoutBounds) {
  EXPECT_EQ(timesOf(runsIn(runsAt({{}, 5}), {})), (Places{{}, 5}));
}

TEST(Period, HoldsARunWithoutATimeWhereTheRhythmHasIt) {
  const std::vector<watch::Run> runs = runsAt({0, 10, 20, {}, 40});

  EXPECT_EQ(timesOf(runsIn(runs, {25, 35})), Places{{}});
  EXPECT_EQ(timesOf(runsIn(runs, {31, {}})), Places{40});
}

TEST(Period, HoldsNoRunWhereNoneHasATime) {
  EXPECT_EQ(timesOf(runsIn(runsAt({{}, {}}), {0, {}})), Places{});
}

TEST(Period, HoldsWhatStandsBehindARunOfAWrongClock) {
  EXPECT_EQ(timesOf(runsIn(runsAt({10, 9999, 11, 1, 12}), {10, 20})), (Places{10, 11, 12}));
}

TEST(LastTime, IsThatOfTheLastRunThatHasOne) {
  EXPECT_EQ(lastTime(runsAt({1, 5, {}})), 5);
  EXPECT_EQ(lastTime(runsAt({{}})), std::nullopt);
}

TEST(Rhythm, IsTheMedianOfTheTimesBetweenRuns) {
  EXPECT_EQ(rhythmOf(std::span<const watch::Run>(runsAt({0, 10, {}, 20, 1000}))).seconds, 10);
  EXPECT_EQ(rhythmOf(std::span<const watch::Run>(runsAt({0, 10}))).seconds, 0);
}

TEST(Gaps, AreWhereTheRhythmHasRunsThatAreNotThere) {
  const std::vector<Gap> found = gaps(runsAt({0, 10, 20, 30, 60, 70}));

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].before, 4U);
  EXPECT_EQ(found[0].missing, 2U);
  EXPECT_EQ(found[0].begin, 40);
}

TEST(Gaps, AreSmallerByRunsWithoutATime) {
  const std::vector<Gap> found = gaps(runsAt({0, 10, 20, 30, {}, 60, 70}));

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].before, 5U);
  EXPECT_EQ(found[0].missing, 1U);
  EXPECT_EQ(found[0].begin, 50);
}

TEST(Gaps, AreNotThereWithoutARhythmOrBetweenRunsInARow) {
  EXPECT_TRUE(gaps(runsAt({0, 100000})).empty());
  EXPECT_TRUE(gaps(runsAt({0, 10, 20, {}, {}, {}, 30})).empty());
  EXPECT_TRUE(gaps({}).empty());
}

TEST(Outages, LastFromTheFirstRunWithoutConnectionToTheNextWithOne) {
  const std::vector<watch::Run> runs = {okRun(0), failedRun(10), failedRun({}), failedRun(30),
                                        okRun(40)};

  const std::vector<Outage> found = outages(runs);

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].first, 1U);
  EXPECT_EQ(found[0].last, 3U);
  EXPECT_EQ(found[0].begin, 10);
  EXPECT_EQ(found[0].end, 40);
}

TEST(Outages, LastToTheirLastRunWhenNothingHasComeThroughSince) {
  const std::vector<watch::Run> runs = {okRun(0), failedRun(10), failedRun(20)};

  const std::vector<Outage> found = outages(runs);

  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].end, 20);
}

TEST(Outages, EndNeitherWithAnOrphanWithoutReplyNorWithARunThatWasEnded) {
  watch::Run silent = orphan();
  silent.runClass = Class::failed;
  silent.ping.received = 0;
  watch::Run ended = failedRun(20);
  ended.finished = false;
  ended.ping.state = PingState::unknown;
  ended.ping.received = {};
  ended.write.state = RateState::off;
  const std::vector<watch::Run> runs = {failedRun(0), failedRun(10), silent, ended, failedRun(30)};

  EXPECT_EQ(outages(runs).size(), 1U);
}

TEST(Outages, EndWithAPingThatCameBack) {
  const std::vector<watch::Run> runs = {failedRun(0), failedRun(10), orphan(), failedRun(30)};

  EXPECT_EQ(outages(runs).size(), 2U);
}

TEST(Outages, AreNoneWhereSomethingCameThrough) {
  const std::vector<watch::Run> runs = {okRun(0), cutRun(10), endedRun(20), unsureRun(30),
                                        orphan()};

  EXPECT_TRUE(outages(runs).empty());
}

}  // namespace
}  // namespace watch

#include "runs/join.h"

#include "watch/support/log_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace watch {
namespace {

using testing::ElementsAre;

constexpr EpochSeconds kFirst = kFirstRun;
constexpr EpochSeconds kSecond = kFirstRun + kHour;
constexpr EpochSeconds kThird = kFirstRun + 2 * kHour;
constexpr EpochSeconds kFourth = kFirstRun + 3 * kHour;
constexpr double kNone = -1;
constexpr char kWholeRun[] = "ping 1, output 1, forward 1, reverse 1, result 1";

TEST(JoinedRuns, HoldOneLineOfEachHistory) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6).run(kSecond, 12.9, 41e6, 241e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "ping 2, output 2, forward 2, reverse 2, result 2"));
}

TEST(JoinedRuns, AreNoneInAnEmptyDirectory) {
  EXPECT_THAT(joined(Evidence()), ElementsAre());
}

TEST(JoinedRuns, MayHaveHadNoTests) {
  LogLines log;
  log.ping(kFirst, 12.5).result(kFirst, 12.5, kNone, kNone).run(kSecond, 12.9, 41e6, 241e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("ping 1, output 1, result 1",
                          "ping 2, output 2, forward 1, reverse 1, result 2"));
}

TEST(JoinedRuns, GoByTheRatesWithoutADate) {
  LogLines log;
  log.forward(kFirst, 40e6);  // ended in the reverse test
  log.forward(kSecond, 41e6).reverse(kSecond, 241e6).resultWithoutPing(41e6, 241e6);

  EXPECT_THAT(joined(log.evidence), ElementsAre("forward 1", "forward 2, reverse 1, result 1"));
}

TEST(JoinedRuns, ShowRatesInWholeUnits) {
  LogLines log;
  log.unit(1 << 20)
      .run(kFirst, 12.5, 40.7e6, 240e6)
      .unit(1'000'000)
      .run(kSecond, 12.9, 41.9e6, 241e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "ping 2, output 2, forward 2, reverse 2, result 2"));
}

TEST(JoinedRuns, MayBeEndedInEachTool) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.ping(kSecond, 13.5);
  log.ping(kThird, 14.5).forward(kThird, 42e6);
  log.run(kFourth, 15.5, 43e6, 243e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "ping 2, output 2", "ping 3, output 3, forward 2",
                          "ping 4, output 4, forward 3, reverse 2, result 2"));
}

TEST(JoinedRuns, AreTwoWhenTheTimesOfEndedOnesDisagree) {
  LogLines log;
  log.forward(kFirst, 40e6);
  log.ping(kSecond, 13.5);
  log.run(kThird, 14.5, 42e6, 242e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("forward 1 [no output of a ping: switched off, or there was no ping]",
                          "ping 1, output 1", "ping 2, output 2, forward 2, reverse 1, result 1"));
}

TEST(JoinedRuns, SayWhenAnotherWayWouldDoAsWell) {
  LogLines log;
  log.failedForward();  // ended in the reverse test
  log.failedForward().failedReverse().resultWithoutPing(kNone, kNone);

  EXPECT_THAT(
      joined(log.evidence),
      ElementsAre("forward 1 [its iperf3 lines could be those of a run beside it; its result "
                  "could be that of a run beside it]",
                  "forward 2, reverse 1, result 1 [its iperf3 lines could be those of a run "
                  "beside it; its result could be that of a run beside it]"));
}

TEST(JoinedRuns, GoOnBehindLostLines) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.ping(kSecond, 13.5).reverse(kSecond, 241e6).result(kSecond, 13.5, 41e6, 241e6);
  log.output(14.5).forward(kThird, 42e6).reverse(kThird, 242e6).result(kThird, 14.5, 42e6, 242e6);
  log.run(kFourth, 15.5, 43e6, 243e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun,
                          "ping 2, output 2, reverse 2, result 2 [a line of its history is lost]",
                          "output 3, forward 2, reverse 3, result 3",
                          "ping 3, output 4, forward 3, reverse 4, result 4"));
}

TEST(JoinedRuns, WithoutTheirResultsWereAllEnded) {
  LogLines log;
  log.ping(kFirst, 12.5).forward(kFirst, 40e6).reverse(kFirst, 240e6);
  log.ping(kSecond, 13.5).forward(kSecond, 41e6).reverse(kSecond, 241e6);

  EXPECT_THAT(joined(log.evidence), ElementsAre("ping 1, output 1, forward 1, reverse 1",
                                                "ping 2, output 2, forward 2, reverse 2"));
}

TEST(JoinedRuns, SurviveAClockThatWasSetInThePing) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.ping(kSecond, 13.5);
  log.forward(kFirst + 60, 41e6).reverse(kFirst + 60, 241e6).result(kFirst + 60, 13.5, 41e6, 241e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "ping 2, output 2, forward 2, reverse 2, result 2"));
}

TEST(JoinedRuns, MayRepeatTheLineOfTheRunBefore) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.ping(kSecond, 13.5).forward(kFirst, 40e6).reverse(kFirst, 240e6);
  log.result(kSecond, 13.5, 41e6, 241e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "ping 2, output 2, forward 2, reverse 2, result 2"));
  const std::vector<watch::Run> runs = joinRuns(log.evidence);
  EXPECT_STREQ(name(runs[1].write.state), "stale");
  EXPECT_STREQ(name(runs[1].read.state), "stale");
}

TEST(JoinedRuns, HoldAllPingLinesOfOneStart) {
  LogLines log;
  log.pingLine(kFirst, 12.5).ping(kFirst, 13.5).forward(kFirst, 40e6).reverse(kFirst, 240e6);
  log.result(kFirst, 13.5, 40e6, 240e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("ping 1, ping 2, output 1, forward 1, reverse 1, result 1"));
}

TEST(JoinedRuns, TakeAnOutputThatTheTesterHasNotRead) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.silentOutput().forward(kSecond, 41e6).reverse(kSecond, 241e6).resultWithoutPing(41e6, 241e6);
  log.run(kThird, 14.5, 42e6, 242e6);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre(kWholeRun, "output 2, forward 2, reverse 2, result 2",
                          "ping 2, output 3, forward 3, reverse 3, result 3"));
}

TEST(JoinedRuns, LeaveOpenWhoseOutputItIs) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6).silentOutput();
  log.forward(kSecond, 41e6).reverse(kSecond, 241e6).resultWithoutPing(41e6, 241e6);
  log.forward(kThird, 42e6).reverse(kThird, 242e6).resultWithoutPing(42e6, 242e6);
  log.run(kFourth, 15.5, 43e6, 243e6);

  EXPECT_THAT(
      joined(log.evidence),
      ElementsAre(kWholeRun, "output 2 [1 outputs of pings for 2 runs: it is of one of these]",
                  "forward 2, reverse 2, result 2 [1 outputs of pings for 2 runs: it is of one of "
                  "these]",
                  "forward 3, reverse 3, result 3 [1 outputs of pings for 2 runs: it is of one of "
                  "these]",
                  "ping 2, output 3, forward 4, reverse 4, result 4"));
}

TEST(JoinedRuns, LeaveAnOutputToARunThatLeftNothingElse) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6).silentOutput().run(kThird, 14.5, 42e6, 242e6);

  EXPECT_THAT(
      joined(log.evidence),
      ElementsAre(kWholeRun, "output 2", "ping 2, output 3, forward 2, reverse 2, result 2"));
}

/// Runs whose pings the tester never reads; the one at `ended` was ended in its forward test.
LogLines unreadPings(int runs, int ended) {
  LogLines log;
  for (int i = 0; i < runs; ++i) {
    const EpochSeconds at = kFirstRun + i * kHour;
    log.silentOutput();
    if (i != ended) {
      log.forward(at, 40e6 + i).reverse(at, 240e6 + i).resultWithoutPing(40e6 + i, 240e6 + i);
    }
  }
  return log;
}

TEST(JoinedRuns, AreToldApartByTheRhythmWhenNoPingIsRead) {
  constexpr int kRuns = 20;
  constexpr int kEnded = 7;
  std::vector<std::string> expected;
  for (int i = 0; i < kRuns; ++i) {
    const int line = i < kEnded ? i + 1 : i;
    expected.push_back(i == kEnded ? "output 8"
                                   : "output " + std::to_string(i + 1) + ", forward " +
                                         std::to_string(line) + ", reverse " +
                                         std::to_string(line) + ", result " + std::to_string(line));
  }

  EXPECT_EQ(joined(unreadPings(kRuns, kEnded).evidence), expected);
}

TEST(JoinedRuns, HavePingsSwitchedOffWhenThereIsNoTraceOfOne) {
  LogLines log;
  log.forward(kFirst, 40e6).reverse(kFirst, 240e6).resultWithoutPing(40e6, 240e6);

  const std::vector<watch::Run> runs = joinRuns(log.evidence);

  ASSERT_EQ(runs.size(), 1U);
  EXPECT_STREQ(name(runs[0].ping.state), "off");
  EXPECT_STREQ(name(runs[0].runClass), "ok");
  EXPECT_EQ(runs[0].unsure, "");
}

TEST(JoinedRuns, HaveTheTimeThatIsKnownBest) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.forward(kSecond, 41e6).reverse(kSecond, 241e6).resultWithoutPing(41e6, 241e6);
  log.failedForward().reverse(kThird, 242e6).resultWithoutPing(kNone, 242e6);
  log.failedForward().failedReverse().resultWithoutPing(kNone, kNone);
  log.evidence.results.filled.push_back({3, localTime(kFourth)});
  log.failedForward().failedReverse().resultWithoutPing(kNone, kNone);

  std::vector<std::string> times;
  for (const watch::Run& run : joinRuns(log.evidence)) {
    times.push_back(run.time ? std::string(name(run.timeSource)) + " " +
                                   std::to_string(*run.time - kFirstRun)
                             : "none");
  }

  EXPECT_THAT(times,
              ElementsAre("ping 0", "forward 3609", "reverse 7230", "archive_stamp 10800", "none"));
}

TEST(JoinedRuns, MayStillGoOn) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6).ping(kSecond, 13.5);
  const auto ongoing = [&](EpochSeconds now) {
    std::vector<bool> all;
    for (const watch::Run& run : joinRuns(log.evidence, now)) {
      all.push_back(run.ongoing);
    }
    return all;
  };

  EXPECT_THAT(ongoing(kSecond - 1), ElementsAre(false, false));
  EXPECT_THAT(ongoing(kSecond), ElementsAre(false, true));
  EXPECT_THAT(ongoing(kSecond + 599), ElementsAre(false, true));
  EXPECT_THAT(ongoing(kSecond + 600), ElementsAre(false, false));
}

// That of a run whose ping had no summary is its forward test's.
TEST(JoinedRuns, DoNotGoOnWhenTheirLockIsFree) {
  LogLines log;
  log.ping(kFirst, 12.5);
  const auto isOngoing = [&](EpochSeconds lock) {
    log.evidence.endedRun = lock;
    return joinRuns(log.evidence, kFirst + 120).front().ongoing;
  };

  EXPECT_FALSE(isOngoing(kFirst));
  EXPECT_FALSE(isOngoing(kFirst - 60));
  // These are the locks of other runs: the bare program takes none.
  EXPECT_TRUE(isOngoing(kFirst - 61));
  EXPECT_TRUE(isOngoing(kFirst + 1));
}

TEST(JoinedRuns, DoNotGoOnWhenALaterOneIsAtItsEnd) {
  LogLines log;
  log.ping(kFirst, 12.5).run(kFirst + 60, 13.5, 41e6, 241e6);

  for (const watch::Run& run : joinRuns(log.evidence, kFirst + 120)) {
    EXPECT_FALSE(run.ongoing);
  }
}

}  // namespace
}  // namespace watch

#include "runs/journal.h"

#include "runs/join.h"
#include "watch/support/log_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace watch {
namespace {

using testing::ElementsAre;

constexpr EpochSeconds kFirst = kFirstRun;
constexpr EpochSeconds kSecond = kFirst + kHour;
constexpr EpochSeconds kThird = kSecond + kHour;
constexpr double kNone = -1;
constexpr char kNothingShown[] =
    "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps ";

/// A run in which nothing came through, as its histories tell it.
void addFailedRun(LogLines& log) {
  log.failedForward().failedReverse().resultWithoutPing(kNone, kNone);
}

/// The first run, whose ping came back, with its line in the journal.
JournalLine& addRunThatOnlyPinged(LogLines& log) {
  log.ping(kFirst, 12.5);
  addFailedRun(log);
  log.evidence.results.all[0].date = localTime(kFirst + 9);
  JournalLine& line = log.journal(kFirst);
  line.ping.emplace();
  line.ping->start = localTime(kFirst);
  return line;
}

JournalTest testOf(const Iperf3Line& line) {
  JournalTest test;
  test.report.release = "3.12";
  test.report.start = line.start;
  test.report.clientPort = line.clientPort;
  test.report.serverPort = line.serverPort;
  test.report.bytes = line.bytes;
  return test;
}

TEST(JournalOfRuns, IsFoundByTheTests) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6).run(kSecond, 12.5, 40e6, 240e6);
  log.journal(kSecond).read = testOf(log.evidence.reverse.all[1]);
  log.journal(kFirst).write = testOf(log.evidence.forward.all[0]);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("ping 1, output 1, forward 1, reverse 1, result 1, journal 2",
                          "ping 2, output 2, forward 2, reverse 2, result 2, journal 1"));
}

TEST(JournalOfRuns, IsFoundByThePingAndByTheDate) {
  LogLines log;
  addRunThatOnlyPinged(log);
  JournalLine& next = log.journal(kSecond);
  next.result = kNothingShown;

  EXPECT_THAT(
      joined(log.evidence),
      ElementsAre("ping 1, output 1, forward 1, reverse 1, result 1, journal 1", "journal 2"));
}

/// Without it, either test could be of either run.
TEST(JournalOfRuns, SettlesADoubt) {
  LogLines log;
  log.forward(kFirst, 40e6).reverse(kFirst, 240e6);
  log.forward(kSecond, 40e6).reverse(kSecond, 240e6).resultWithoutPing(40e6, 240e6);
  log.evidence.forward.all[0].start.reset();
  log.evidence.reverse.all[1].start = kFirst + 35;
  ASSERT_THAT(joined(log.evidence), testing::Contains(testing::HasSubstr("[its iperf3 lines")));

  JournalLine& line = log.journal(kSecond);
  line.write = testOf(log.evidence.forward.all[1]);
  line.read = testOf(log.evidence.reverse.all[1]);
  line.result =
      "Date = , Latency = n/a ms, Write Transfer Rate = 40000000 bps, Read Transfer Rate = "
      "240000000 bps ";

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("forward 1, reverse 1", "forward 2, reverse 2, result 1, journal 1"));
}

TEST(JournalOfRuns, TellsTheTimeOfARunThatLeftNone) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  addFailedRun(log);
  log.run(kThird, 12.5, 40e6, 240e6);
  log.journal(kSecond).result = kNothingShown;

  const std::vector<watch::Run> runs = joinRuns(log.evidence);

  ASSERT_EQ(runs.size(), 3U);
  EXPECT_EQ(runs[1].time, kSecond);
  EXPECT_STREQ(name(runs[1].timeSource), "journal");
  EXPECT_EQ(runs[1].unsure, "");
}

TEST(JournalOfRuns, MakesARunThatLeftNothingElse) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  log.output(13.5).evidence.outputs.back().summaryIsRead = false;
  log.run(kThird, 12.5, 40e6, 240e6);
  JournalLine& line = log.journal(kSecond);
  line.ended = "ended by ^C in ping";
  line.ping.emplace();
  line.ping->output = log.evidence.outputs[1];

  const std::vector<watch::Run> runs = joinRuns(log.evidence);

  EXPECT_THAT(joined(log.evidence),
              ElementsAre("ping 1, output 1, forward 1, reverse 1, result 1", "output 2, journal 1",
                          "ping 2, output 3, forward 2, reverse 2, result 2"));
  EXPECT_EQ(runs[1].time, kSecond);
  EXPECT_FALSE(runs[1].finished);
  EXPECT_EQ(reason(runs[1]), "ended by ^C in ping");
}

/// A run that left nothing else can't have been the longer one of a second.
TEST(JournalOfRuns, IsFirstWhenItIsAloneInASecond) {
  LogLines log;
  addRunThatOnlyPinged(log);
  log.journal(kFirst).ended = "ended by ^C in ping";

  EXPECT_THAT(
      joined(log.evidence),
      ElementsAre("journal 2", "ping 1, output 1, forward 1, reverse 1, result 1, journal 1"));
}

TEST(JournalOfRuns, TellsThatARunHasEnded) {
  LogLines log;
  log.ping(kFirst, 12.5);
  EXPECT_TRUE(joinRuns(log.evidence, kFirst + 1).front().ongoing);

  JournalLine& line = log.journal(kFirst);
  line.ended = "ended by ^C in write test";
  line.ping.emplace();
  line.ping->start = localTime(kFirst);

  EXPECT_FALSE(joinRuns(log.evidence, kFirst + 1).front().ongoing);
}

TEST(JournalOfRuns, MayBeOfEitherOfTwoRuns) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  addFailedRun(log);
  addFailedRun(log);
  log.run(kThird, 12.5, 40e6, 240e6);
  log.journal(kSecond).result = kNothingShown;

  const std::vector<watch::Run> runs = joinRuns(log.evidence);

  EXPECT_EQ(runs[1].journal.isThere() + runs[2].journal.isThere(), 1);
  const watch::Run& taken = runs[runs[1].journal.isThere() ? 1 : 2];
  EXPECT_EQ(taken.unsure, "its line in the journal could be that of a run beside it");
  EXPECT_TRUE(taken.pingUnsure && taken.ratesUnsure);
}

TEST(JournalOfRuns, TellsACutThatTheLinesHide) {
  LogLines log;
  log.run(kFirst, 12.5, 40e6, 240e6);
  JournalLine& line = log.journal(kFirst);
  line.write = testOf(log.evidence.forward.all[0]);
  line.write->report.emptySeconds = 2.001;
  line.read = testOf(log.evidence.reverse.all[0]);
  line.read->report.retransmits = 7;

  const watch::Run run = joinRuns(log.evidence).front();

  EXPECT_EQ(run.runClass, Class::partial);
  EXPECT_EQ(run.write.state, RateState::cut);
  EXPECT_EQ(reason(run), "write cut, 2 s without a byte");
  EXPECT_EQ(run.read.state, RateState::full);
  EXPECT_EQ(run.read.retransmits, 7U);
}

TEST(JournalOfRuns, TellsWhyThereWasNoTest) {
  LogLines log;
  JournalLine& line = addRunThatOnlyPinged(log);
  line.write.emplace();
  line.write->report.error = "the server is busy running a test. try again later";
  line.read.emplace();
  line.read->report.error = "interrupt - the client has terminated";
  line.read->said = "iperf3 had not ended after 91 seconds and was interrupted";

  EXPECT_EQ(reason(joinRuns(log.evidence).front()),
            "no write test: busy, no read test: ended by its limit");
}

TEST(JournalOfRuns, TellsWhetherThePingWasOffOrCouldNotRun) {
  LogLines log;
  log.ping(kFirst, 12.5);
  for (int i = 0; i < 2; ++i) {
    log.forward(kSecond + i * kHour, 40e6).reverse(kSecond + i * kHour, 240e6);
    log.resultWithoutPing(40e6, 240e6);
  }
  JournalLine& off = log.journal(kSecond);
  off.write = testOf(log.evidence.forward.all[0]);
  off.settings->doPingTests = false;
  JournalLine& missing = log.journal(kThird);
  missing.write = testOf(log.evidence.forward.all[1]);
  missing.ping.emplace();
  missing.ping->said = "no other ping in PATH";

  const std::vector<watch::Run> runs = joinRuns(log.evidence);

  EXPECT_EQ(runs[1].ping.state, PingState::off);
  EXPECT_EQ(runs[1].runClass, Class::ok);
  EXPECT_EQ(reason(runs[2]), "no ping: no other ping in PATH");
  EXPECT_EQ(runs[1].unsure + runs[2].unsure, "");
}

}  // namespace
}  // namespace watch

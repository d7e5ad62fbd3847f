#include "runs/states.h"

#include <gtest/gtest.h>

#include <cmath>

namespace watch {
namespace {

/// A test of ten seconds at 40 Mbit/s that was measured for `seconds`.
Iperf3Line test(double seconds) {
  constexpr double kBps = 40e6;
  constexpr double kBitsPerByte = 8;
  Iperf3Line line;
  line.start = 1'794'805'209;
  line.server = "192.0.2.10";
  line.duration = 10;
  line.bytes = static_cast<std::uint64_t>(kBps * seconds / kBitsPerByte);
  line.bps = kBps;
  return line;
}

std::string stateOf(const RateFacts& facts) {
  const char* const state = name(judge(facts).state);
  return state == nullptr ? "unknown" : state;
}

std::string stateOf(const PingFacts& facts) {
  const char* const state = name(judge(facts).state);
  return state == nullptr ? "unknown" : state;
}

TEST(RateState, IsFullWhenItTookItsTime) {
  const struct {
    double seconds;
    const char* state;
  } cases[] = {{8.9, "cut"}, {9.0, "full"}, {10.04, "full"}, {12.0, "full"}, {12.1, "cut"}};
  for (const auto& [seconds, state] : cases) {
    SCOPED_TRACE(seconds);
    const Iperf3Line line = test(seconds);

    EXPECT_EQ(stateOf(RateFacts{.line = &line}), state);
  }
}

TEST(RateState, IsCutWhenTheReportSaysSo) {
  const Iperf3Line line = test(10);
  Iperf3Report report;
  EXPECT_EQ(stateOf(RateFacts{.line = &line, .report = &report}), "full");

  report.emptySeconds = 3;
  const Rate paused = judge(RateFacts{.line = &line, .report = &report});
  report.error = "interrupt - the client has terminated";
  const Rate stopped = judge(RateFacts{.line = &line, .report = &report});

  EXPECT_EQ(paused.state, RateState::cut);
  EXPECT_EQ(paused.reason, "3 s without a byte");
  EXPECT_EQ(stopped.state, RateState::cut);
  EXPECT_EQ(stopped.reason, "interrupt - the client has terminated");
}

TEST(RateState, KeepsTheRateOfACutTest) {
  const Iperf3Line line = test(3);

  const Rate rate = judge(RateFacts{.line = &line});

  EXPECT_EQ(rate.bps, 40e6);
  EXPECT_EQ(rate.bytes, 15'000'000U);
  EXPECT_EQ(rate.seconds, 3);
  EXPECT_EQ(rate.duration, 10U);
  EXPECT_EQ(rate.reason, "3.0 of 10 s");
  EXPECT_FALSE(rate.isMeasured());
}

TEST(RateState, IsNothingMovedWhenOnlyAConnectionStood) {
  Iperf3Line line = test(0);
  line.bps = 0;

  EXPECT_EQ(stateOf(RateFacts{.line = &line}), "nothing_moved");
}

TEST(RateState, IsNoTestWithoutAConnection) {
  const Iperf3Line line;

  const Rate rate = judge(RateFacts{.line = &line});

  EXPECT_EQ(rate.state, RateState::noTest);
  EXPECT_TRUE(std::isnan(rate.bps));
  EXPECT_FALSE(rate.bytes);
}

TEST(RateState, IsStaleForALineOfTheRunBefore) {
  const Iperf3Line line = test(10);

  const Rate rate = judge(RateFacts{.line = &line, .isRepeated = true});

  EXPECT_EQ(rate.state, RateState::stale);
  EXPECT_TRUE(std::isnan(rate.bps));
}

TEST(RateState, IsUnknownOrOffWithoutALine) {
  EXPECT_EQ(stateOf(RateFacts{.isLost = true}), "unknown");
  EXPECT_EQ(stateOf(RateFacts{}), "off");
}

class PingStates : public testing::Test {
 protected:
  PingStates() {
    line_.min = 12.1;
    line_.avg = 13.5;
    line_.max = 15.2;
    line_.stddev = 0.8;
    zeros_.min = zeros_.avg = zeros_.max = zeros_.stddev = 0;
    read_.sent = read_.received = 4;
    read_.summary = PingSummary{12.1, 13.5, 15.2, 0.8};
    read_.summaryIsRead = read_.summaryIsWhole = true;
    read_.replies = {12.1, 13.2, 13.5, 15.2};
    unread_ = read_;
    unread_.summary.reset();
    unread_.summaryIsRead = unread_.summaryIsWhole = false;
    silent_.sent = 4;
    silent_.received = 0;
  }

  PingLine line_;
  PingLine zeros_;
  PingOutput read_;
  PingOutput unread_;
  PingOutput silent_;
};

TEST_F(PingStates, FollowFromTheLineAndTheOutput) {
  EXPECT_EQ(stateOf(PingFacts{.line = &line_, .output = &read_}), "replied");
  EXPECT_EQ(stateOf(PingFacts{.line = &line_}), "replied");
  EXPECT_EQ(stateOf(PingFacts{.line = &zeros_, .output = &unread_}), "false_zero");
  EXPECT_EQ(stateOf(PingFacts{.line = &zeros_}), "unknown");
  EXPECT_EQ(stateOf(PingFacts{.output = &unread_}), "unread");
  EXPECT_EQ(stateOf(PingFacts{.output = &silent_}), "no_reply");
  EXPECT_EQ(stateOf(PingFacts{.line = &line_, .output = &read_, .isRepeated = true}), "stale");
  EXPECT_EQ(stateOf(PingFacts{.isOpen = true}), "unknown");
  EXPECT_EQ(stateOf(PingFacts{.isOff = true}), "off");
  EXPECT_EQ(stateOf(PingFacts{}), "no_output");
}

TEST_F(PingStates, ComputeWhatTheTesterHasNotRead) {
  const Ping ping = judge(PingFacts{.line = &zeros_, .output = &unread_});

  EXPECT_EQ(ping.min, 12.1);
  EXPECT_EQ(ping.avg, 13.5);
  EXPECT_EQ(ping.max, 15.2);
  EXPECT_TRUE(std::isnan(ping.stddev));
  EXPECT_EQ(ping.sent, 4U);
  EXPECT_EQ(ping.loss(), 0);
}

TEST_F(PingStates, TellNothingOfTheRunBefore) {
  const Ping ping = judge(PingFacts{.line = &line_, .output = &read_, .isRepeated = true});

  EXPECT_TRUE(std::isnan(ping.avg));
  EXPECT_FALSE(ping.sent);
}

class RunClass : public testing::Test {
 protected:
  RunClass() {
    run_.finished = true;
    run_.ping.state = PingState::replied;
    run_.ping.avg = 13.5;
    run_.write = run_.read = rate(RateState::full, 40e6);
  }

  static Rate rate(RateState state, double bps = kNotMeasured) {
    Rate rate;
    rate.state = state;
    rate.bps = bps;
    return rate;
  }
  static Ping ping(PingState state) {
    Ping ping;
    ping.state = state;
    return ping;
  }

  std::string classOfRun() const { return name(classOf(run_)); }

  watch::Run run_;
};

TEST_F(RunClass, IsOkWhenAllThatIsOnIsMeasured) {
  EXPECT_EQ(classOfRun(), "ok");

  run_.ping = ping(PingState::off);
  EXPECT_EQ(classOfRun(), "ok");

  run_.write = rate(RateState::off);
  EXPECT_EQ(classOfRun(), "ok");
}

TEST_F(RunClass, IsPartialWhenSomethingIsMissing) {
  run_.finished = false;
  EXPECT_EQ(classOfRun(), "partial");

  run_.finished = true;
  run_.read.state = RateState::cut;
  EXPECT_EQ(classOfRun(), "partial");

  run_.read = rate(RateState::noTest);
  run_.write = rate(RateState::noTest);
  EXPECT_EQ(classOfRun(), "partial");
}

TEST_F(RunClass, IsFailedWhenNothingIsMeasured) {
  run_.ping = ping(PingState::noReply);
  run_.write = rate(RateState::nothingMoved, 0);
  run_.read = rate(RateState::noTest);

  EXPECT_EQ(classOfRun(), "failed");
}

}  // namespace
}  // namespace watch

#include "guard/screen.h"

#include "watch/support/zone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fmt/format.h>
#include <span>
#include <string>
#include <vector>

namespace watch {

namespace {

constexpr EpochSeconds kStart = 1795219200;

Style terminal(std::size_t width) {
  return {.isTerminal = true, .hasBars = true, .width = width, .canRewrite = true};
}

Ping goodPing() {
  return {.state = PingState::replied,
          .min = 12.4,
          .avg = 12.9,
          .max = 14.0,
          .stddev = 0.4,
          .sent = 10,
          .received = 9};
}

Ping pingIn(PingState state) {
  Ping ping;
  ping.state = state;
  return ping;
}

Rate rate(RateState state, const std::string& reason) {
  Rate rate;
  rate.state = state;
  rate.bps = 41.07e6;
  rate.bytes = 51'300'000;
  rate.reason = reason;
  return rate;
}

RowContext context(std::span<const double> replies) {
  return {{12.75, 9, true}, kStart, "", replies};
}

GoingTest going(Step step, double seconds, std::span<const double> replies = {}) {
  return {.step = step, .seconds = seconds, .planned = {21, 91}, .replies = replies};
}

/// The usual is that of an hour of the day.
class Row : public testing::Test {
 private:
  Zone zone_{"UTC"};
};

TEST(GoingLine, HasABarAndTheSecondsLeft) {
  EXPECT_EQ(goingLine(going(Step::write, 10.5), terminal(80)),
            "  write   ━━━━━━━━━━━━━━━━━━━━────────────────────  11 s left   ^C stops");
  EXPECT_EQ(goingLine(going(Step::read, 0), terminal(80)),
            "  read    ────────────────────────────────────────  21 s left   ^C stops");
}

TEST(GoingLine, HasEachReplyOfAPing) {
  const std::vector<double> replies = {10, 5, 20};

  EXPECT_EQ(goingLine(going(Step::ping, 3.2, replies), terminal(80)),
            "  ping    ▅▃█                                       18 s left   ^C stops");
}

TEST(GoingLine, SaysWhenALateTestEndsAtMost) {
  EXPECT_EQ(goingLine(going(Step::read, 22.1), terminal(80)),
            "  read    ━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━  late, 69 s at most   ^C stops");
  EXPECT_EQ(goingLine(going(Step::read, 92), terminal(80)),
            "  read    ━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━━  late   ^C stops");
}

TEST(GoingLine, FitsANarrowTerminal) {
  EXPECT_EQ(goingLine(going(Step::write, 10.5), terminal(41)),
            "  write   ━━━━────  11 s left   ^C stops");
  EXPECT_EQ(goingLine(going(Step::write, 10.5), terminal(40)),
            "  write   ━━━━━━━━━─────────  11 s left");
  EXPECT_EQ(goingLine(going(Step::write, 10.5), terminal(12)), "11 s left");
  EXPECT_EQ(goingLine(going(Step::write, 10.5), terminal(9)), "");
  for (std::size_t width = 1; width < 100; ++width) {
    const std::string line = goingLine(going(Step::read, 30), terminal(width));
    EXPECT_TRUE(line.empty() || columns(line) < width) << width;
  }
}

TEST(GoingLine, HasTheLastRepliesWhereNotAllFit) {
  const std::vector<double> replies(30, 7.5);

  EXPECT_EQ(goingLine(going(Step::ping, 3.2, replies), terminal(40)),
            "  ping    ██████████████████  18 s left");
}

TEST(GoingLine, DoesWithoutBlocksAndColours) {
  Style style = terminal(80);
  style.hasBars = false;
  EXPECT_EQ(goingLine(going(Step::write, 10.5), style),
            "  write   ====================--------------------  11 s left   ^C stops");

  style.hasColour = true;
  EXPECT_THAT(goingLine(going(Step::write, 10.5), style), testing::StartsWith("\x1b[1m  write"));
}

TEST_F(Row, OfAPingHasItsFiguresRepliesAndTheUsual) {
  const std::vector<double> replies = {12.4, 14.0, 7.0};

  EXPECT_EQ(pingRow(goodPing(), context(replies), terminal(80)),
            "  ping    12.4 / 12.9 / 14.0 ms   9 of 10   ▇█▅   usual at 00:00: 12.8\n");
}

TEST_F(Row, LeavesOutWhatDoesNotFit) {
  const std::vector<double> replies = {12.4, 14.0, 7.0};

  EXPECT_EQ(pingRow(goodPing(), context(replies), terminal(48)),
            "  ping    12.4 / 12.9 / 14.0 ms   9 of 10   ▇█▅\n");
  EXPECT_EQ(pingRow(goodPing(), context(replies), terminal(43)),
            "  ping    12.4 / 12.9 / 14.0 ms   9 of 10\n");
  EXPECT_EQ(pingRow(goodPing(), context(replies), terminal(10)),
            "  ping    12.4 / 12.9 / 14.0 ms\n");
}

TEST_F(Row, OfARateHasTheUsualOfThatHourOrOfAnyHour) {
  RowContext other = context({});
  EXPECT_EQ(rateRow(Step::write, rate(RateState::full, ""), other, terminal(80)),
            "  write   41.1 Mbit/s             usual at 00:00: 12.8\n");

  other.usual.isOfThatHour = false;
  EXPECT_EQ(rateRow(Step::read, rate(RateState::full, ""), other, terminal(80)),
            "  read    41.1 Mbit/s             usual: 12.8\n");

  other.usual.middle.reset();
  EXPECT_EQ(rateRow(Step::read, rate(RateState::full, ""), other, terminal(80)),
            "  read    41.1 Mbit/s\n");
}

struct RateCase {
  RateState state;
  const char* reason;
  const char* complaint;
  const char* plain;
};

// The rate of such a test, if it has one, is none of the line.
TEST_F(Row, OfARateThatIsNoFigureHasNoFigure) {
  const RateCase cases[] = {
      {RateState::cut, "the server has terminated", "", "cut, the server has terminated"},
      {RateState::cut, "interrupt - the client has terminated",
       "iperf3 had not ended after 70 seconds and was interrupted",
       "cut, iperf3 had not ended after 70 seconds and was interrupted"},
      {RateState::nothingMoved, "", "", "no rate"},
      {RateState::noTest, "the server is busy", "", "no test, the server is busy"},
      {RateState::stale, "", "", "not measured, that of the run before once more"},
      {RateState::unknown, "", "", "cannot be told"},
      {RateState::off, "", "", "switched off"}};
  for (const RateCase& c : cases) {
    SCOPED_TRACE(c.plain);
    RowContext why = context({});
    why.complaint = c.complaint;
    const Rate shown = rate(c.state, c.reason);

    EXPECT_EQ(rateRow(Step::write, shown, why, Style{}), fmt::format("write: {}\n", c.plain));
    EXPECT_EQ(rateRow(Step::write, shown, why, terminal(80)),
              fmt::format("  write   {}\n", c.plain));
  }
}

TEST_F(Row, IsPlainWhereNothingIsRewritten) {
  EXPECT_EQ(pingRow(goodPing(), context({}), Style{}), "ping 12.9 ms, 9 of 10 back\n");
  EXPECT_EQ(rateRow(Step::write, rate(RateState::full, ""), context({}), Style{}),
            "write 41.1 Mbit/s\n");
}

struct PingCase {
  PingState state;
  const char* plain;
};

TEST_F(Row, OfAPingWithoutASummarySaysSo) {
  const PingCase cases[] = {
      {PingState::noReply, "ping: no reply"},
      {PingState::noOutput, "ping: no ping"},
      {PingState::stale, "ping: not measured, that of the run before once more"},
      {PingState::unknown, "ping: cannot be told"},
      {PingState::off, "ping: switched off"}};
  for (const PingCase& c : cases) {
    SCOPED_TRACE(c.plain);
    EXPECT_EQ(pingRow(pingIn(c.state), context({}), Style{}), fmt::format("{}\n", c.plain));
  }

  RowContext why = context({});
  why.complaint = "connect: Network is unreachable";
  EXPECT_EQ(pingRow(pingIn(PingState::noOutput), why, terminal(80)),
            "  ping    no ping, connect: Network is unreachable\n");
}

TEST_F(Row, OfAPingThatWasMisreadHasItsFiguresAndSaysSo) {
  Ping ping = goodPing();
  ping.state = PingState::unread;
  EXPECT_EQ(pingRow(ping, context({}), Style{}),
            "ping 12.9 ms, 9 of 10 back, not read by the tester\n");

  ping.state = PingState::falseZero;
  EXPECT_EQ(pingRow(ping, context({}), terminal(60)),
            "  ping    12.4 / 12.9 / 14.0 ms   recorded as 0   9 of 10\n");
}

}  // namespace

}  // namespace watch

#include "guard/progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace watch {

namespace {

using testing::DoubleEq;
using testing::ElementsAre;

constexpr char kBanner[] =
    "current time 20261121T204536 name connTester argc is 2. Server IP address: 192.0.2.10";
constexpr char kPing[] = "ping cmd: ping -c 2 192.0.2.10  | tee  /logs/ping_latest.log";
constexpr char kHeader[] = "PING 192.0.2.10 (192.0.2.10) 56(84) bytes of data.";
constexpr char kFirstReply[] = "64 bytes from 192.0.2.10: icmp_seq=1 ttl=64 time=12.5 ms";
constexpr char kSecondReply[] = "64 bytes from 192.0.2.10: icmp_seq=2 ttl=64 time=13.25 ms";
constexpr char kStatistics[] = "2 packets transmitted, 2 received, 0% packet loss, time 1032ms";
constexpr char kSummary[] = "round-trip min/avg/max/stddev = 12.500/12.875/13.250/0.375 ms";
constexpr char kWriteIsRead[] = " read latest file is /logs/iperf3_latest.log";
constexpr char kReadIsRead[] = " read latest file is /logs/iperf3_latest-R.log";
constexpr char kCount[] = "history file line count 1";
constexpr char kResult[] =
    "Date = 20261121T204537, Latency = 12 ms, Write Transfer Rate = 1 bps, "
    "Read Transfer Rate = 2 bps";

TEST(Progress, GoesFromStepToStep) {
  Progress progress;
  const auto stepAfter = [&](const char* line) {
    progress.take(line);
    return progress.step();
  };

  EXPECT_EQ(stepAfter(kBanner), Step::start);
  EXPECT_EQ(stepAfter(kPing), Step::ping);
  EXPECT_EQ(stepAfter(kHeader), Step::ping);
  EXPECT_EQ(stepAfter(kStatistics), Step::ping);
  progress.takeNewReport();
  EXPECT_EQ(progress.step(), Step::write);
  EXPECT_EQ(stepAfter(kWriteIsRead), Step::write);
  EXPECT_EQ(stepAfter(kCount), Step::read);
  EXPECT_EQ(stepAfter(kReadIsRead), Step::read);
  EXPECT_EQ(stepAfter(kCount), Step::read);
  EXPECT_EQ(stepAfter(kResult), Step::end);
}

// A count comes for the pings, too, when the settings ask for it.
TEST(Progress, IsInTheReadTestAfterTheCountOfTheWriteTestAlone) {
  Progress progress;
  progress.take(kPing);
  progress.take(kCount);

  EXPECT_EQ(progress.step(), Step::ping);

  progress.take(kReadIsRead);
  progress.take(kCount);

  EXPECT_EQ(progress.step(), Step::ping);
}

TEST(Progress, NeverGoesBack) {
  Progress progress;
  progress.take(kResult);

  progress.take(kPing);
  progress.takeNewReport();

  EXPECT_EQ(progress.step(), Step::end);
}

TEST(Progress, HasStartedWithTheBannerOfTheTester) {
  Progress progress;
  progress.take("connTester: another run of yours is in progress, as process 1 since 2026-11-21");
  EXPECT_FALSE(progress.hasStarted());

  progress.take(kBanner);
  EXPECT_TRUE(progress.hasStarted());
}

TEST(Progress, HasEachReplyAsItComes) {
  Progress progress;
  progress.take(kPing);
  EXPECT_EQ(progress.pingOutput(), nullptr);
  progress.take(kHeader);
  progress.take(kFirstReply);
  EXPECT_THAT(progress.replies(), ElementsAre(12.5));

  progress.take(kSecondReply);
  progress.take("64 bytes from 192.0.2.10: icmp_seq=2 ttl=64 time=14 ms (DUP!)");
  progress.take(kStatistics);
  progress.take(kSummary);

  EXPECT_THAT(progress.replies(), ElementsAre(12.5, DoubleEq(13.25)));
  ASSERT_NE(progress.pingOutput(), nullptr);
  EXPECT_EQ(progress.pingOutput()->sent, 2U);
  EXPECT_TRUE(progress.pingOutput()->summaryIsWhole);
}

TEST(Progress, NotesTheFirstComplaintOfEachTool) {
  Progress progress;
  progress.take(kPing);
  progress.take("ping: nobody.invalid: Temporary failure in name resolution");
  progress.take("ping adapter: a second one");
  progress.take("iperf3 adapter: iperf3 had not ended after 70 seconds and was interrupted");
  progress.take(kWriteIsRead);
  progress.take(kCount);
  progress.take("iperf3 adapter: no other iperf3 \x1b[2J");

  EXPECT_EQ(progress.complaint(Step::ping), "nobody.invalid: Temporary failure in name resolution");
  EXPECT_EQ(progress.complaint(Step::write),
            "iperf3 had not ended after 70 seconds and was interrupted");
  EXPECT_EQ(progress.complaint(Step::read), "no other iperf3 ?[2J");
  EXPECT_EQ(progress.complaint(Step::start), "");
}

}  // namespace

}  // namespace watch

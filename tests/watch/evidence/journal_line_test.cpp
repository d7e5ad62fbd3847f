#include "evidence/journal_line.h"

#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace watch {
namespace {

/// 2026-11-21T05:01:12+01:00
constexpr EpochSeconds kStart = 1'795'233'672;

JournalLine wholeLine() {
  JournalLine line;
  line.start = kStart;
  line.end = kStart + 51;
  line.ended = "finished";
  line.address = "192.0.2.10";
  line.settings = Configuration{};
  line.ping.emplace();
  line.ping->start = LocalTime{kStart + 3600};
  line.ping->output.target = "192.0.2.10";
  line.ping->output.sent = 2;
  line.ping->output.received = 2;
  line.ping->output.replies = {12.1, 13.5};
  line.ping->summary = "round-trip min/avg/max/stddev = 12.1/12.8/13.5/0.7 ms";
  line.write.emplace();
  line.write->report = {.release = "3.12",
                        .start = kStart + 9,
                        .clientPort = 50000,
                        .serverPort = 5201,
                        .bytes = 51'300'000,
                        .seconds = 10.0004,
                        .sentBps = 41'034'752,
                        .receivedBps = 40'000'000,
                        .retransmits = 12,
                        .roundTrips = LoadedRoundTrips{18.2, 31, 55.1},
                        .error = ""};
  line.read.emplace();
  line.read->report.error = "interrupt - the client has terminated";
  line.read->said = "iperf3 had not ended after 91 seconds and was interrupted";
  line.result = "Date = 20261121T050121, Latency = 12 ms";
  return line;
}

constexpr char kWholeText[] =
    R"({"format":1,"start":"2026-11-21T05:01:12+01:00","end":"2026-11-21T05:02:03+01:00",)"
    R"("ended":"finished","address":"192.0.2.10",)"
    R"("settings":{"numPings":10,"iperfTestTime":10,"outputFormat":1,"pingTestServer":false,)"
    R"("doPingTests":true,"doIperf2Tests":false,"doIperf3Tests":true},)"
    R"("ping":{"start":"20261121T050112","target":"192.0.2.10","sent":2,"received":2,)"
    R"("times_ms":[12.1,13.5],)"
    R"("summary":"round-trip min/avg/max/stddev = 12.1/12.8/13.5/0.7 ms"},)"
    R"("write":{"release":"3.12","start":1795233681,"client_port":50000,"server_port":5201,)"
    R"("bytes":51300000,"seconds":10.0,"sent_bps":41034752.0,"received_bps":40000000.0,)"
    R"("retransmits":12,"rtt_ms":[18.2,31.0,55.1],"empty_seconds":0.0},)"
    R"("read":{"error":"interrupt - the client has terminated",)"
    R"("said":"iperf3 had not ended after 91 seconds and was interrupted"},)"
    R"("result":"Date = 20261121T050121, Latency = 12 ms"})";

TEST(JournalLine, HoldsAllThatIsKnown) {
  const Zone zone("Europe/Berlin");

  EXPECT_EQ(journalText(wholeLine()), std::string(kWholeText) + "\n");
  EXPECT_EQ(journalText(JournalLine()), "{\"format\":1}\n");
}

TEST(JournalLine, IsReadAsItWasWritten) {
  const Zone zone("Europe/Berlin");

  const auto line = parseJournalLine(kWholeText);

  ASSERT_TRUE(line);
  EXPECT_EQ(journalText(*line), std::string(kWholeText) + "\n");
  EXPECT_TRUE(line->isGuarded());
  EXPECT_TRUE(line->ping->output.summaryIsWhole);
  EXPECT_EQ(line->ping->output.summary->avg, 12.8);
}

TEST(JournalLine, TellsTheSameMomentInEachZone) {
  const Zone zone("America/New_York");

  EXPECT_EQ(parseJournalLine(kWholeText)->start, kStart);
}

TEST(JournalLine, IsNoneWhenItWasCutAnywhere) {
  const std::string whole = kWholeText;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    ASSERT_FALSE(parseJournalLine(whole.substr(0, length))) << length;
  }
}

TEST(JournalLine, OfAnotherFormatIsNone) {
  EXPECT_TRUE(parseJournalLine(R"({"format":1,"later":[1]})"));
  for (const char* const text : {"{}", R"({"format":2})", R"({"format":"1"})", "[1]", "1", ""}) {
    EXPECT_FALSE(parseJournalLine(text)) << text;
  }
}

TEST(JournalLine, LeavesOutWhatIsNoNumber) {
  JournalLine line;
  line.write.emplace();
  line.write->report.bytes = 1;
  line.write->report.emptySeconds = std::numeric_limits<double>::infinity();

  EXPECT_EQ(journalText(line), "{\"format\":1,\"write\":{\"bytes\":1}}\n");
}

TEST(JournalLine, IsOfTheRunThatItsKeysTell) {
  const JournalLine whole = wholeLine();
  JournalLine kept = whole;
  kept.start.reset();
  EXPECT_TRUE(isSameRun(whole, kept));

  kept.ping->start->seconds += 1;
  EXPECT_FALSE(isSameRun(whole, kept));

  kept.ping.reset();
  EXPECT_TRUE(isSameRun(whole, kept));

  kept.write.reset();
  EXPECT_FALSE(isSameRun(whole, kept));
}

}  // namespace
}  // namespace watch

#include "journal/journal.h"

#include "journal/latest_reports.h"
#include "support/files.h"
#include "watch/support/log_folder.h"
#include "watch/support/log_lines.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <vector>

namespace watch {
namespace {

/// 2026-11-21T05:01:12+01:00
constexpr EpochSeconds kTime = 1'795'233'672;

JournalLine lineFor(const std::string& address) {
  JournalLine line;
  line.address = address;
  return line;
}

std::string journalOf(const LogFolder& logs) {
  return readFile(logs.path() / "runs-2026.jsonl");
}

TEST(Journal, IsOfTheYearOfTheClock) {
  const Zone zone("Europe/Berlin");
  const LogFolder logs;
  // 2026-12-31T23:30:00Z
  appendToJournal(logs.directory(), lineFor("a"), 1'798'759'800);
  appendToJournal(logs.directory(), lineFor("b"), 1'798'759'800);

  EXPECT_EQ(readFile(logs.path() / "runs-2027.jsonl"),
            "{\"format\":1,\"address\":\"a\"}\n{\"format\":1,\"address\":\"b\"}\n");
}

TEST(Journal, BeginsANewLineBehindATornOne) {
  const LogFolder logs;
  logs.write("runs-2026.jsonl", "{\"form");

  appendToJournal(logs.directory(), lineFor("a"), kTime);

  EXPECT_EQ(journalOf(logs), "{\"form\n{\"format\":1,\"address\":\"a\"}\n");
}

TEST(Journal, GetsWholeLinesFromTwoWritersAtOnce) {
  constexpr int kLines = 500;
  const LogFolder logs;
  const auto writeAll = [&](const std::string& address) {
    for (int i = 0; i < kLines; ++i) {
      appendToJournal(logs.directory(), lineFor(address), kTime);
    }
  };
  std::thread other(writeAll, std::string(3000, 'b'));
  writeAll("a");
  other.join();

  Troubles troubles;
  std::vector<std::string> lines;
  logs.directory().readLines(
      "runs-2026.jsonl", troubles,
      [&](std::string_view line, std::uint32_t) { lines.emplace_back(line); });
  std::ranges::sort(lines);
  const std::string a = "{\"format\":1,\"address\":\"a\"}";
  const std::string b = "{\"format\":1,\"address\":\"" + std::string(3000, 'b') + "\"}";
  EXPECT_EQ(std::ranges::count(lines, a), kLines);
  EXPECT_EQ(std::ranges::count(lines, b), kLines);
  EXPECT_EQ(std::ssize(lines), 2 * kLines);
}

/// Ends the room for files at `bytes`, as a disk that is full does.
class RoomForFiles {
 public:
  explicit RoomForFiles(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit room = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &room);
    std::signal(SIGXFSZ, SIG_IGN);
  }
  ~RoomForFiles() { setrlimit(RLIMIT_FSIZE, &before_); }
  RoomForFiles(const RoomForFiles&) = delete;
  RoomForFiles& operator=(const RoomForFiles&) = delete;

 private:
  rlimit before_{};
};

TEST(Journal, SaysThatTheDiskIsFullAndGoesOnLater) {
  const LogFolder logs;
  appendToJournal(logs.directory(), lineFor("a"), kTime);
  const std::string path = (logs.path() / "runs-2026.jsonl").string();
  {
    const RoomForFiles room(40);
    try {
      appendToJournal(logs.directory(), lineFor("b"), kTime);
      ADD_FAILURE() << "a line that does not fit was written";
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.what(), "cannot write " + path + ": No space left on device");
    }
  }
  appendToJournal(logs.directory(), lineFor("c"), kTime);

  EXPECT_EQ(
      journalOf(logs),
      "{\"format\":1,\"address\":\"a\"}\n{\"format\":1,\"\n{\"format\":1,\"address\":\"c\"}\n");
}

TEST(Journal, IsNoOtherFileBehindALink) {
  const LogFolder logs;
  logs.write("mine", "");
  std::filesystem::create_symlink("mine", logs.path() / "runs-2026.jsonl");

  EXPECT_THROW(appendToJournal(logs.directory(), lineFor("a"), kTime), std::system_error);
  EXPECT_EQ(readFile(logs.path() / "mine"), "");
}

/// A run whose reports are there, as the bare tester has left them.
class LatestReports : public testing::Test {
 protected:
  LatestReports() {
    log_.run(kFirstRun, 12.5, 40e6, 240e6);
    run_.time = kFirstRun;
    run_.timeSource = TimeSource::ping;
    run_.finished = true;
    run_.forward = log_.evidence.forward.all[0].from;
    run_.reverse = log_.evidence.reverse.all[0].from;
    log_.evidence.forwardReport = reportOf(log_.evidence.forward.all[0]);
    log_.evidence.reverseReport = reportOf(log_.evidence.reverse.all[0]);
    write(kPingLatest, kFirstRun + 9,
          "PING 192.0.2.10 (192.0.2.10): 56 data bytes\n"
          "64 bytes from 192.0.2.10: icmp_seq=0 ttl=57 time=12.5 ms\n"
          "1 packets transmitted, 1 packets received, 0% packet loss\n"
          "round-trip min/avg/max/stddev = 12.5/12.5/12.5/0 ms\n");
    write(kForwardFiles.report, kFirstRun + 20, "{}");
    write(kReverseFiles.report, kFirstRun + 41, "{}");
    write(kResultLatest, kFirstRun + 51, "Date = 20261116T050009\n");
  }

  static Iperf3Report reportOf(const Iperf3Line& line) {
    Iperf3Report report;
    report.release = "3.12";
    report.start = line.start;
    report.clientPort = line.clientPort;
    return report;
  }

  void write(const std::string& name, EpochSeconds at, const std::string& text) const {
    using std::chrono::file_clock;
    using std::chrono::seconds;
    using std::chrono::sys_seconds;
    logs_.write(name, text);
    std::filesystem::last_write_time(logs_.path() / name,
                                     file_clock::from_sys(sys_seconds(seconds(at))));
  }

  std::string kept() {
    const bool isKept = keepLatestReports(logs_.directory(), log_.evidence, {run_});
    return isKept ? journalOf(logs_) : "";
  }

  static constexpr char kPing[] =
      R"("ping":{"start":"20261116T050000","target":"192.0.2.10","sent":1,"received":1,)"
      R"("times_ms":[12.5],"summary":"round-trip min/avg/max/stddev = 12.5/12.5/12.5/0 ms"},)";
  static constexpr char kWrite[] =
      R"("write":{"release":"3.12","start":1794805209,"client_port":36313,"server_port":0})";
  static constexpr char kRead[] =
      R"("read":{"release":"3.12","start":1794805230,"client_port":36334,"server_port":0})";
  static constexpr char kResult[] = R"(,"result":"Date = 20261116T050009"})";

  Zone zone_{"UTC"};
  LogFolder logs_;
  LogLines log_;
  watch::Run run_;
};

TEST_F(LatestReports, AreKeptOnceForTheLastRun) {
  const std::string all =
      std::string("{\"format\":1,") + kPing + kWrite + "," + kRead + kResult + "\n";
  EXPECT_EQ(kept(), all);

  run_.journal = {0, 1, 1};
  EXPECT_FALSE(keepLatestReports(logs_.directory(), log_.evidence, {run_}));
  EXPECT_EQ(journalOf(logs_), all);
}

TEST_F(LatestReports, AreNotKeptOfARunThatGoesOn) {
  run_.ongoing = true;

  EXPECT_EQ(kept(), "");
}

TEST_F(LatestReports, AreNotKeptWithoutATimeOfTheRun) {
  run_.time.reset();

  EXPECT_EQ(kept(), "");
}

TEST_F(LatestReports, OfANextRunThatHasBegunAreLeftOut) {
  write(kPingLatest, kFirstRun + 3600, "PING 192.0.2.10 (192.0.2.10): 56 data bytes\n");
  log_.evidence.reverseReport->start = kFirstRun + 3700;

  EXPECT_EQ(kept(), std::string("{\"format\":1,") + kWrite + kResult + "\n");
}

TEST_F(LatestReports, OfAnEarlierRunAreLeftOut) {
  write(kPingLatest, kFirstRun - 1, "PING 192.0.2.10 (192.0.2.10): 56 data bytes\n");

  EXPECT_EQ(kept(), std::string("{\"format\":1,") + kWrite + "," + kRead + kResult + "\n");
}

TEST_F(LatestReports, WithoutATestAreKeptByTheirTime) {
  log_.evidence.forwardReport->start.reset();
  log_.evidence.forwardReport->clientPort = 0;
  log_.evidence.forwardReport->error = "refused";
  log_.evidence.reverseReport = log_.evidence.forwardReport;
  write(kReverseFiles.report, kFirstRun + 3600, "{}");

  EXPECT_EQ(kept(), std::string("{\"format\":1,") + kPing +
                        R"("write":{"release":"3.12","error":"refused"})" + kResult + "\n");
}

/// Only the name of the archive that it filled tells of its time.
TEST_F(LatestReports, AreNotKeptWithoutAKeyOfTheRun) {
  log_.evidence.forwardReport->start.reset();
  log_.evidence.reverseReport->start.reset();
  run_.timeSource = TimeSource::archiveStamp;

  EXPECT_EQ(kept(), "");
}

TEST_F(LatestReports, AreNotKeptTwiceWhereTheJournalLedToNoRun) {
  JournalLine& line = log_.evidence.journal.emplace_back();
  line.ping.emplace();
  line.ping->start = localTime(kFirstRun);

  EXPECT_EQ(kept(), "");
}

TEST_F(LatestReports, OfARunThatWasEndedAreKeptByTheirTests) {
  run_.finished = false;
  run_.reverse = {};

  EXPECT_EQ(kept(), std::string("{\"format\":1,") + kWrite + "}\n");
}

TEST_F(LatestReports, AreLeftWhereNothingCanBeWritten) {
  std::filesystem::create_directory(logs_.path() / "runs-2026.jsonl");

  EXPECT_FALSE(keepLatestReports(logs_.directory(), log_.evidence, {run_}));
}

}  // namespace
}  // namespace watch

#include "run_driver.h"

#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"
#include "time_services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::ExitedWithCode;
using testing::IsEmpty;
using testing::KilledBySignal;

// What the recorded reports come to.
constexpr char kPingReport[] = "ping/inetutils_2.4_reply.log";
constexpr char kForwardReport[] = "iperf3/3.12/forward.json";
constexpr char kReverseReport[] = "iperf3/3.12/reverse.json";
constexpr char kPingLine[] = "20261116T054000,0.050,0.056,0.060,0.000\n";
constexpr char kForwardLine[] =
    "1795180642,127.0.0.1,39234,127.0.0.1,5314,0,1,116523008,911776704,0,0\n";
constexpr char kReverseLine[] =
    "1795180643,127.0.0.1,39260,127.0.0.1,5314,0,1,0,0,157286400,1255164544\n";
constexpr char kForwardSummary[] =
    "\n= IPERF3 history  ====================================\n"
    "date 1795180642\nclient ip 127.0.0.1\nserver ip 127.0.0.1\nclient tcp port 39234\n"
    "server tcp port 5314\ntransfer ID 0\ntest time 1\nreverse 0\n"
    "length sent 116523008 \nBps sent 911776704\nlength rcvd 0 \nBps rcvd 0\n";
constexpr char kReverseSummary[] =
    "\n= IPERF3 history  ====================================\n"
    "date 1795180643\nclient ip 127.0.0.1\nserver ip 127.0.0.1\nclient tcp port 39260\n"
    "server tcp port 5314\ntransfer ID 0\ntest time 1\nreverse 1\n"
    "length sent 0 \nBps sent 0\nlength rcvd 157286400 \nBps rcvd 1255164544\n";
constexpr char kEmptySummary[] =
    "\n= IPERF3 history  ====================================\n"
    "date \nclient ip \nserver ip \nclient tcp port 0\nserver tcp port 0\ntransfer ID 0\n"
    "test time \nreverse \nlength sent 0 \nBps sent 0\nlength rcvd 0 \nBps rcvd 0\n";
constexpr char kResultConsole[] =
    "Date = 20261116T054009, Latency = 0 ms, Write Transfer Rate = 911776704 bps, "
    "Read Transfer Rate = 1255164544 bps\n";
constexpr char kResultLine[] =
    "Date = 20261116T054009, Latency = 0 ms, Write Transfer Rate = 911776704 bps, "
    "Read Transfer Rate = 1255164544 bps \n";

constexpr char kBanner[] =
    "current time 20261116T054000 name connTester argc is 2. Server IP address: 10.0.0.5\n";

/// Runs the tester with `arguments`, the program's name first, and returns its exit status.
int run(std::vector<std::string> arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  return runConnectionTest(static_cast<int>(arguments.size()), argv.data());
}

std::vector<long> sleepsMs() {
  std::vector<long> lengths;
  for (const std::timespec& sleep : fakeHost.sleeps) {
    lengths.push_back(sleep.tv_sec * 1000 + sleep.tv_nsec / 1'000'000);
  }
  return lengths;
}

/// The names in `directory`, in order.
std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string mkdirCommand() {
  return "mkdir -p " + std::string(LOG_PATH_ARCHIVE) + "\n";
}

std::string pingCommand(const std::string& address, int count = 10) {
  return "ping -c " + std::to_string(count) + " " + address + "  | tee  " + LOG_PATH +
         "ping_latest.log\n";
}

std::string verboseAppend() {
  return "cat " + std::string(LOG_PATH) + "ping_latest.log >> " + LOG_PATH +
         "/ping_history_verbose.log\n";
}

std::string iperf2Command(const std::string& address, int testTime = 10) {
  return "/usr/bin/iperf -c " + address + " -y C -t " + std::to_string(testTime) + " > " +
         LOG_PATH + "iperf2_latest.log\n";
}

std::string forwardCommand(const std::string& address, int testTime = 10) {
  return "/usr/local/bin/Qelmora/iperf3 -c " + address + " -t " + std::to_string(testTime) +
         " -J   > " + LOG_PATH + "iperf3_latest.log\n";
}

std::string reverseCommand(const std::string& address, int testTime = 10) {
  return "/usr/local/bin/Qelmora/iperf3 -c " + address + " -t " + std::to_string(testTime) +
         " -J  -R > " + LOG_PATH + "iperf3_latest-R.log\n";
}

/// The append of a direction, say "iperf3_*_forward_csv.log".
std::string csvAppend(const std::string& tool, const std::string& direction) {
  return "cat " + std::string(LOG_PATH) + tool + "_latest_" + direction + "_csv.log >> " +
         LOG_PATH + tool + "_history_" + direction + "_csv.log\n";
}

std::string moveCommand(const std::string& history, const std::string& archived) {
  return "(mv  \"" + std::string(LOG_PATH) + history + "\" \"" + LOG_PATH_ARCHIVE + archived +
         "\") 2>nul\n";
}

std::string resultsMoveCommand(const std::string& stamp) {
  return "mv  " + std::string(LOG_PATH) + "connection_test_results_history.log " +
         LOG_PATH_ARCHIVE + "connection_test_results_history_" + stamp + ".log\n";
}

// What the console shows of each step, the tools' own output and the moves apart.

std::string pingPrint() {
  return "ping cmd: " + pingCommand("10.0.0.5") + "\n";
}

std::string forwardPrint(const std::string& report, int historyLines) {
  return " read latest file is " + std::string(LOG_PATH) + "iperf3_latest.log\n" + report +
         "iperf history file path is " + LOG_PATH + "iperf3_history_forward_csv.log\n" +
         "history file line count " + std::to_string(historyLines) + "\n";
}

std::string reversePrint(const std::string& report) {
  return " read latest file is " + std::string(LOG_PATH) + "iperf3_latest-R.log\n" + report;
}

/// A run whose tools are played: ping and iperf3 leave a recorded report in the log directory and
/// take their time, iperf2 leaves nothing. All other commands go to the real shell.
class Run : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    fakeHost.onCommand = [this](const std::string& command) { play(command); };
  }

  /// Gives the next run a HOME with nine lines in each of its histories.
  static void leaveNineLines(const std::string& home) {
    setenv("HOME", home.c_str(), 1);
    formatInto(LOG_PATH, "%s/Library/Logs/Qelmora/", home.c_str());
    std::filesystem::create_directories(LOG_PATH);
    writeFile(logFile("ping_history.log"), repeated("ping\n", 9));
    writeFile(logFile("iperf3_history_forward_csv.log"), repeated("forward\n", 9));
    writeFile(logFile("iperf3_history_reverse_csv.log"), repeated("reverse\n", 9));
    writeFile(logFile("connection_test_results_history.log"), repeated("result\n", 9));
  }

  /// The time of day of each command.
  std::vector<std::string> times_;

 private:
  void play(const std::string& command) {
    char time[9];
    getTimeString(time);
    times_.emplace_back(time);
    fakeHost.runsCommands = false;
    if (command.starts_with("ping ")) {
      leaveReport(kPingReport, "ping_latest.log", 9);
    } else if (command.find(" -J  -R ") != std::string::npos) {
      leaveReport(kReverseReport, "iperf3_latest-R.log", 10);
    } else if (command.find(" -J ") != std::string::npos) {
      leaveReport(kForwardReport, "iperf3_latest.log", 10);
    } else if (!command.starts_with("/usr/bin/iperf ")) {
      fakeHost.runsCommands = true;
      fakeHost.now += command.find("mv ") != std::string::npos ? 1 : 0;
    }
  }

  static void leaveReport(const std::string& report, const std::string& name, int seconds) {
    std::filesystem::copy_file(testData(report), logFile(name),
                               std::filesystem::copy_options::overwrite_existing);
    fakeHost.now += seconds;
  }
};

/// A run with the compiled defaults, in a HOME without any file.
class DefaultRun : public Run {
 protected:
  void SetUp() override {
    Run::SetUp();
    console_ = console([this] { status_ = run({"connTester", "10.0.0.5"}); });
  }

  int status_ = -1;
  std::string console_;
};

TEST_F(DefaultRun, PingsThenMeasuresBothDirectionsByIperf3) {
  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend(),
                          forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward"),
                          reverseCommand("10.0.0.5"), csvAppend("iperf3", "reverse")));
  EXPECT_THAT(times_, ElementsAre("05:40:00", "05:40:00", "05:40:09", "05:40:09", "05:40:30",
                                  "05:40:30", "05:40:51"));
  EXPECT_THAT(sleepsMs(), ElementsAre(11'000, 11'000));
  EXPECT_EQ(status_, 0);
}

TEST_F(DefaultRun, EndsInTheResultLineOnTheConsole) {
  EXPECT_EQ(console_, kBanner + pingPrint() + forwardPrint(kForwardSummary, 1) +
                          reversePrint(kReverseSummary) + kResultConsole);
}

TEST_F(DefaultRun, LeavesReportsLinesAndHistories) {
  const std::string ping = readFile(testData(kPingReport));

  EXPECT_THAT(
      namesIn(LOG_PATH),
      ElementsAre("archive", "connection_test_results.txt", "connection_test_results_history.log",
                  "iperf3_history_forward_csv.log", "iperf3_history_reverse_csv.log",
                  "iperf3_latest-R.log", "iperf3_latest.log", "iperf3_latest_forward_csv.log",
                  "iperf3_latest_reverse_csv.log", "ping_history.log", "ping_history_verbose.log",
                  "ping_latest.log"));
  EXPECT_EQ(readFile(logFile("ping_latest.log")), ping);
  EXPECT_EQ(readFile(logFile("ping_history_verbose.log")), ping);
  EXPECT_EQ(readFile(logFile("ping_history.log")), kPingLine);
  EXPECT_EQ(readFile(logFile("iperf3_latest_forward_csv.log")), kForwardLine);
  EXPECT_EQ(readFile(logFile("iperf3_history_forward_csv.log")), kForwardLine);
  EXPECT_EQ(readFile(logFile("iperf3_latest_reverse_csv.log")), kReverseLine);
  EXPECT_EQ(readFile(logFile("iperf3_history_reverse_csv.log")), kReverseLine);
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")), kResultLine);
  EXPECT_EQ(readFile(logFile("connection_test_results_history.log")), kResultLine);
  EXPECT_THAT(namesIn(LOG_PATH_ARCHIVE), IsEmpty());
  EXPECT_FALSE(fileExists("nul"));
}

TEST_F(DefaultRun, KeepsItsPathsUnderHome) {
  const std::string home = std::filesystem::current_path().string();

  EXPECT_EQ(LOG_PATH, home + "/Library/Logs/Qelmora/");
  EXPECT_EQ(LOG_PATH_ARCHIVE, home + "/Library/Logs/Qelmora/archive/");
}

TEST_F(DefaultRun, StartsFromTheFilesAloneTheNextTime) {
  console([] { run({"connTester", "10.0.0.5"}); });

  const std::string ping = readFile(testData(kPingReport));
  EXPECT_EQ(readFile(logFile("ping_history_verbose.log")), ping + ping);
  EXPECT_EQ(readFile(logFile("iperf3_latest_forward_csv.log")), kForwardLine);
  EXPECT_EQ(readFile(logFile("iperf3_history_forward_csv.log")), repeated(kForwardLine, 2));
  EXPECT_EQ(readFile(logFile("iperf3_history_reverse_csv.log")), repeated(kReverseLine, 2));
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")),
            "Date = 20261116T054100, Latency = 0 ms, Write Transfer Rate = 911776704 bps, "
            "Read Transfer Rate = 1255164544 bps \n");
}

/// The tenth run after the last move of every history.
class TenthRun : public Run {
 protected:
  void SetUp() override {
    Run::SetUp();
    leaveNineLines(std::filesystem::current_path().string());
    console_ = console([] { run({"connTester", "10.0.0.5"}); });
    movePing_ = moveCommand("ping_history.log", "ping_history_20261116T054000.log");
    moveForward_ =
        moveCommand("iperf3_history_forward_csv.log", "iperf3_history_forward_20261116T054009.log");
    moveReverse_ =
        moveCommand("iperf3_history_reverse_csv.log", "iperf3_history_reverse_20261116T054031.log");
    moveResults_ = resultsMoveCommand("20261116T054053");
  }

  std::string console_;
  std::string movePing_;
  std::string moveForward_;
  std::string moveReverse_;
  std::string moveResults_;
};

TEST_F(TenthRun, MovesEachHistoryUnderTheMomentOfTheMoveBefore) {
  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend(), movePing_,
                          forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward"), moveForward_,
                          reverseCommand("10.0.0.5"), csvAppend("iperf3", "reverse"), moveReverse_,
                          moveResults_));
  EXPECT_THAT(times_,
              ElementsAre("05:40:00", "05:40:00", "05:40:09", "05:40:09", "05:40:10", "05:40:31",
                          "05:40:31", "05:40:32", "05:40:53", "05:40:53", "05:40:54"));
  EXPECT_STREQ(currentTimeStamp, "20261116T054054");
  EXPECT_THAT(sleepsMs(), ElementsAre(11'000, 11'000));
}

TEST_F(TenthRun, PrintsEachMoveWhereItIsMade) {
  EXPECT_EQ(console_, kBanner + pingPrint() + movePing_ + "\n" + forwardPrint(kForwardSummary, 10) +
                          moveForward_ + "\n" + reversePrint(kReverseSummary) + moveReverse_ +
                          "\n" + kResultConsole + moveResults_ + "\n");
}

TEST_F(TenthRun, LeavesTenLinesOfEachKindInTheArchive) {
  EXPECT_THAT(
      namesIn(LOG_PATH),
      ElementsAre("archive", "connection_test_results.txt", "iperf3_latest-R.log",
                  "iperf3_latest.log", "iperf3_latest_forward_csv.log",
                  "iperf3_latest_reverse_csv.log", "ping_history_verbose.log", "ping_latest.log"));
  EXPECT_THAT(namesIn(LOG_PATH_ARCHIVE),
              ElementsAre("connection_test_results_history_20261116T054053.log",
                          "iperf3_history_forward_20261116T054009.log",
                          "iperf3_history_reverse_20261116T054031.log",
                          "ping_history_20261116T054000.log"));
  EXPECT_EQ(readFile(archiveFile("ping_history_20261116T054000.log")),
            repeated("ping\n", 9) + kPingLine);
  EXPECT_EQ(readFile(archiveFile("iperf3_history_forward_20261116T054009.log")),
            repeated("forward\n", 9) + kForwardLine);
  EXPECT_EQ(readFile(archiveFile("iperf3_history_reverse_20261116T054031.log")),
            repeated("reverse\n", 9) + kReverseLine);
  EXPECT_EQ(readFile(archiveFile("connection_test_results_history_20261116T054053.log")),
            repeated("result\n", 9) + kResultLine);
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")), kResultLine);
  EXPECT_EQ(readFile("nul"), "");
}

/// The longest texts that a run takes: HOME of 183 characters, an address of 15, numbers of 11.
class LongestRun : public Run {
 protected:
  void SetUp() override {
    Run::SetUp();
    home_ = std::filesystem::current_path().string() + "/";
    home_.resize(183, 'h');
    leaveNineLines(home_);
    writeFile(logFile("iperf2_history.log"), repeated("1,2,3,4,5,6,7,8,9\n", 10));
    ConfigurationParameters.doIperf2Tests = true;
  }

  void runWith(int number) {
    const std::string text = std::to_string(number);
    configure("numPings=" + text + "\niperfTestTime=" + text + "\n");
    console([] { run({"connTester", kAddress}); });
  }

  static constexpr char kAddress[] = "255.255.255.255";
  std::string home_;
};

TEST_F(LongestRun, CutsNoCommandAndNoPath) {
  runWith(INT_MIN);

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand(kAddress, INT_MIN), verboseAppend(),
                          moveCommand("ping_history.log", "ping_history_20261116T054000.log"),
                          iperf2Command(kAddress, INT_MIN), csvAppend("iperf2", "forward"),
                          moveCommand("iperf2_history.log", "iperf2_history_20261116T054009.log"),
                          forwardCommand(kAddress, INT_MIN), csvAppend("iperf3", "forward"),
                          moveCommand("iperf3_history_forward_csv.log",
                                      "iperf3_history_forward_20261116T054011.log"),
                          reverseCommand(kAddress, INT_MIN), csvAppend("iperf3", "reverse"),
                          moveCommand("iperf3_history_reverse_csv.log",
                                      "iperf3_history_reverse_20261116T054023.log"),
                          resultsMoveCommand("20261116T054035")));
  EXPECT_THAT(sleepsMs(), ElementsAre(1000, 1000, 1000));
  EXPECT_EQ(LOG_PATH, home_ + "/Library/Logs/Qelmora/");
  EXPECT_EQ(LOG_PATH_ARCHIVE, home_ + "/Library/Logs/Qelmora/archive/");
  // A character more in HOME makes this one two characters longer than `cmd` holds.
  EXPECT_EQ(cmd, resultsMoveCommand("20261116T054035"));
  EXPECT_EQ(fakeHost.commands.back().size(), sizeof(cmd) - 2);
}

TEST_F(LongestRun, ReachesAllItsFiles) {
  runWith(INT_MIN);

  EXPECT_THAT(
      namesIn(LOG_PATH),
      ElementsAre("archive", "connection_test_results.txt", "iperf2_history_forward_csv.log",
                  "iperf3_latest-R.log", "iperf3_latest.log", "iperf3_latest_forward_csv.log",
                  "iperf3_latest_reverse_csv.log", "ping_history_verbose.log", "ping_latest.log"));
  EXPECT_EQ(readFile(archiveFile("ping_history_20261116T054000.log")),
            repeated("ping\n", 9) + kPingLine);
  EXPECT_EQ(readFile(archiveFile("iperf2_history_20261116T054009.log")),
            repeated("1,2,3,4,5,6,7,8,9\n", 10));
  EXPECT_EQ(readFile(archiveFile("iperf3_history_forward_20261116T054011.log")),
            repeated("forward\n", 9) + kForwardLine);
  EXPECT_EQ(readFile(archiveFile("iperf3_history_reverse_20261116T054023.log")),
            repeated("reverse\n", 9) + kReverseLine);
  EXPECT_EQ(readFile(archiveFile("connection_test_results_history_20261116T054035.log")),
            repeated("result\n", 9) + kResultLine);
}

TEST_F(LongestRun, TakesTheLargestNumbers) {
  runWith(INT_MAX);

  EXPECT_EQ(fakeHost.commands.at(1), pingCommand(kAddress, INT_MAX));
  EXPECT_EQ(fakeHost.commands.at(4), iperf2Command(kAddress, INT_MAX));
  EXPECT_EQ(fakeHost.commands.at(7), forwardCommand(kAddress, INT_MAX));
  EXPECT_EQ(fakeHost.commands.at(10), reverseCommand(kAddress, INT_MAX));
  EXPECT_THAT(sleepsMs(), ElementsAre(3, 3, 3));
}

TEST_F(Run, WithAllTestsOffCreatesTheDirectoriesAndEndsSilently) {
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  int status = -1;

  const std::string text = console([&] { status = run({"connTester", "10.0.0.5"}); });

  EXPECT_EQ(status, 0);
  EXPECT_EQ(text, kBanner);
  EXPECT_THAT(fakeHost.commands, ElementsAre(mkdirCommand()));
  EXPECT_THAT(sleepsMs(), IsEmpty());
  EXPECT_THAT(namesIn(LOG_PATH), ElementsAre("archive"));
}

TEST_F(Run, WithPingAloneMeasuresTheLatencyOnly) {
  configure("doIperf3Tests=false\n");

  console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend()));
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")),
            "Date = 20261116T054009, Latency = 0 ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
}

TEST_F(Run, WithIperf3AloneLeavesTheDateEmpty) {
  configure("doPingTests=false\n");

  console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_THAT(
      fakeHost.commands,
      ElementsAre(mkdirCommand(), forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward"),
                  reverseCommand("10.0.0.5"), csvAppend("iperf3", "reverse")));
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")),
            "Date = , Latency = n/a ms, Write Transfer Rate = 911776704 bps, "
            "Read Transfer Rate = 1255164544 bps \n");
}

TEST_F(Run, WithIperf2AloneLeavesNoRate) {
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  ConfigurationParameters.doIperf2Tests = true;

  const std::string text = console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_THAT(fakeHost.commands, ElementsAre(mkdirCommand(), iperf2Command("10.0.0.5"),
                                             csvAppend("iperf2", "forward")));
  EXPECT_THAT(sleepsMs(), ElementsAre(11'000));
  EXPECT_EQ(text, std::string(kBanner) +
                      "Date = , Latency = 0 ms, Write Transfer Rate = 0 bps, "
                      "Read Transfer Rate = 0 bps\n");
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")),
            "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
}

TEST_F(Run, PutsIperf2BetweenPingAndIperf3) {
  ConfigurationParameters.doIperf2Tests = true;

  console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend(),
                          iperf2Command("10.0.0.5"), csvAppend("iperf2", "forward"),
                          forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward"),
                          reverseCommand("10.0.0.5"), csvAppend("iperf3", "reverse")));
}

TEST_F(Run, AsksForTheIperf3SwitchAgainBeforeTheReverseDirection) {
  fakeHost.onCommand = [](const std::string& command) {
    if (command == forwardCommand("10.0.0.5")) {
      ConfigurationParameters.doIperf3Tests = false;
    }
  };

  console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend(),
                          forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward")));
}

TEST_F(Run, AsksForTheSwitchesAgainBeforeTheResultLine) {
  configure("doPingTests=false\n");
  fakeHost.onCommand = [](const std::string& command) {
    if (command == reverseCommand("10.0.0.5")) {
      ConfigurationParameters.doIperf3Tests = false;
    }
  };

  const std::string text = console([] { run({"connTester", "10.0.0.5"}); });

  EXPECT_EQ(text, kBanner + forwardPrint(kEmptySummary, 0) + reversePrint(kEmptySummary));
}

TEST_F(Run, EndsWithStatusZeroWhenEveryToolFails) {
  fakeHost.onCommand = nullptr;
  fakeHost.shellStatus = 127 << 8;
  int status = -1;

  const std::string text = console([&] { status = run({"connTester", "10.0.0.5"}); });

  EXPECT_EQ(status, 0);
  EXPECT_EQ(text, kBanner + pingPrint() + forwardPrint(kEmptySummary, 0) +
                      reversePrint(kEmptySummary) +
                      "Date = , Latency = 0 ms, Write Transfer Rate = 0 bps, "
                      "Read Transfer Rate = 0 bps\n");
  EXPECT_THAT(fakeHost.commands,
              ElementsAre(mkdirCommand(), pingCommand("10.0.0.5"), verboseAppend(),
                          forwardCommand("10.0.0.5"), csvAppend("iperf3", "forward"),
                          reverseCommand("10.0.0.5"), csvAppend("iperf3", "reverse")));
}

TEST_F(Run, WithoutAnAddressTestsAnEmptyOne) {
  console([] { run({"connTester"}); });

  EXPECT_THAT(fakeHost.commands, ElementsAre(mkdirCommand(), pingCommand(""), verboseAppend(),
                                             forwardCommand(""), csvAppend("iperf3", "forward"),
                                             reverseCommand(""), csvAppend("iperf3", "reverse")));
}

class Address : public RunFixture {};

TEST_F(Address, IsTheLastOfOneOrTwoArguments) {
  const struct {
    std::vector<std::string> arguments;
    const char* address;
    const char* banner;
  } cases[] = {
      {{"connTester"},
       "",
       "current time 20261116T054000 name connTester argc is 1. Server IP address: \n"},
      {{"./x/connTester", "10.0.0.5"},
       "10.0.0.5",
       "current time 20261116T054000 name ./x/connTester argc is 2. Server IP address: 10.0.0.5\n"},
      {{"t", "anything", "10.0.0.5"},
       "10.0.0.5",
       "current time 20261116T054000 name t argc is 3. Server IP address: 10.0.0.5\n"},
      {{"t", "anything that is too long", "255.255.255.255"},
       "255.255.255.255",
       "current time 20261116T054000 name t argc is 3. Server IP address: 255.255.255.255\n"},
      {{"t", "1.1.1.1", "2.2.2.2", "3.3.3.3"},
       "",
       "current time 20261116T054000 name t argc is 4. Server IP address: \n"},
      {{"t", "1.1.1.1", "2", "3", "an address that is too long"},
       "",
       "current time 20261116T054000 name t argc is 5. Server IP address: \n"},
      {{"t", "-h"}, "-h", "current time 20261116T054000 name t argc is 2. Server IP address: -h\n"},
      {{"t", "%s;"},
       "%s;",
       "current time 20261116T054000 name t argc is 2. Server IP address: %s;\n"},
      {{"t", ""}, "", "current time 20261116T054000 name t argc is 2. Server IP address: \n"}};
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.banner);
    copyInto(ipaddr, "");

    EXPECT_EQ(console([&] { EXPECT_EQ(run(c.arguments), 0); }), c.banner);

    EXPECT_STREQ(ipaddr, c.address);
    EXPECT_EQ(arg_count, static_cast<int>(c.arguments.size()));
  }
}

TEST_F(Address, IsCopiedByItsOwnLengthWithoutATerminator) {
  configure("doPingTests=false\ndoIperf3Tests=false\n");
  copyInto(ipaddr, "192.168.1.10");

  console([] { run({"connTester", "10.0."}); });

  EXPECT_EQ(std::string(ipaddr, sizeof(ipaddr)), std::string("10.0.68.1.10\0\0\0\0", 16));
}

/// Runs the tester in a process of a death test: its output goes behind what it prints on standard
/// error, the shell is the real one, and nothing catches what it throws.
void runAlone(const std::vector<std::string>& arguments) noexcept {
  printOnStandardError();
  fakeHost.runsCommands = true;
  run(arguments);
}

class RefusedRun : public RunFixture {};

TEST_F(RefusedRun, CreatesAndPrintsNothingForAnAddressOfSixteenCharacters) {
  EXPECT_EXIT(runAlone({"connTester", "255.255.255.2555"}), ExitedWithCode(2),
              Eq("connTester: the server address has 16 characters, the limit is 15: give an IPv4 "
                 "address or a shorter name (usage: connTester [ADDRESS])\n"));
  EXPECT_EXIT(runAlone({"connTester", "x", std::string(1000, 'x')}), ExitedWithCode(2),
              Eq("connTester: the server address has 1000 characters, the limit is 15: give an "
                 "IPv4 address or a shorter name (usage: connTester [ADDRESS])\n"));

  EXPECT_FALSE(fileExists("Library"));
}

TEST_F(RefusedRun, CreatesNothingForAHomeOf184Characters) {
  configure("outputFormat=4\n");
  std::string home = std::filesystem::current_path().string() + "/";
  home.resize(184, 'h');
  setenv("HOME", home.c_str(), 1);

  EXPECT_EXIT(runAlone({"connTester", "10.0.0.5"}), ExitedWithCode(2),
              Eq(std::string(kBanner) +
                 "outputFormat out of range (1-3). Set to 1.\n"
                 "connTester: HOME has 184 characters, the limit is 183: set HOME to a "
                 "shorter path\n"));

  EXPECT_FALSE(fileExists(home));
}

TEST_F(RefusedRun, EndsUncaughtForAMalformedNumberBeforeAnyDirectory) {
  configure("doPingTests=false\nnumPings=ten\n");

  EXPECT_EXIT(runAlone({"connTester", "10.0.0.5"}), KilledBySignal(SIGABRT),
              Eq(std::string(kBanner) +
                 "terminate called after throwing an instance of 'std::invalid_argument'\n"
                 "  what():  /usr/local/bin/Qelmora/connTester.conf, line 2: numPings is \"ten\", "
                 "which does not start with a number; write a whole number, for example "
                 "numPings=10\n"));

  EXPECT_FALSE(fileExists("Library"));
}

TEST_F(RefusedRun, EndsUncaughtForANumberOutOfRangeBeforeAnyDirectory) {
  configure("iperfTestTime=2147483648\n");

  EXPECT_EXIT(runAlone({"connTester", "10.0.0.5"}), KilledBySignal(SIGABRT),
              Eq(std::string(kBanner) +
                 "terminate called after throwing an instance of 'std::out_of_range'\n"
                 "  what():  /usr/local/bin/Qelmora/connTester.conf, line 1: iperfTestTime is "
                 "\"2147483648\", which is out of range; write a whole number, for example "
                 "iperfTestTime=10\n"));

  EXPECT_FALSE(fileExists("Library"));
}

class Init : public RunFixture {};

TEST_F(Init, StampsPrintsConfiguresAndCreatesTheDirectories) {
  configure("numPings=3\noutputFormat=9\n");
  setenv("HOME", "/home/u", 1);
  formatInto(currentTimeStamp, "%s", "");
  fakeHost.shellStatus = 5;
  fakeHost.onCommand = [](const std::string&) { std::printf("created\n"); };
  int status = -1;

  const std::string text = console([&] { status = init(); });

  EXPECT_EQ(status, 5);
  EXPECT_EQ(text,
            "current time 20261116T054000 name  argc is 0. Server IP address: \n"
            "outputFormat out of range (1-3). Set to 1.\n"
            "created\n");
  EXPECT_EQ(ConfigurationParameters.numPings, 3);
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
  EXPECT_STREQ(LOG_PATH, "/home/u/Library/Logs/Qelmora/");
  EXPECT_STREQ(LOG_PATH_ARCHIVE, "/home/u/Library/Logs/Qelmora/archive/");
  EXPECT_THAT(fakeHost.commands, ElementsAre("mkdir -p /home/u/Library/Logs/Qelmora/archive/\n"));
  EXPECT_STREQ(cmd, "mkdir -p /home/u/Library/Logs/Qelmora/archive/\n");
}

TEST_F(Init, LeavesTheArgumentsAsTheyAre) {
  myName = "connTester";
  arg_count = 7;
  formatInto(ipaddr, "%s", "10.0.0.5");

  const std::string text = console([] { init(); });

  EXPECT_EQ(
      text,
      "current time 20261116T054000 name connTester argc is 7. Server IP address: 10.0.0.5\n");
  EXPECT_STREQ(myName, "connTester");
  EXPECT_EQ(arg_count, 7);
  EXPECT_STREQ(ipaddr, "10.0.0.5");
}

TEST_F(Init, CreatesLogDirectoryAndArchiveInOne) {
  fakeHost.runsCommands = true;

  console([] { EXPECT_EQ(init(), 0); });

  EXPECT_THAT(namesIn(LOG_PATH), ElementsAre("archive"));
}

TEST_F(Init, TakesHomeAsItStands) {
  const struct {
    const char* home;
    const char* command;
  } cases[] = {{"", "mkdir -p /Library/Logs/Qelmora/archive/\n"},
               {"/", "mkdir -p //Library/Logs/Qelmora/archive/\n"},
               {"/a %s b", "mkdir -p /a %s b/Library/Logs/Qelmora/archive/\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    setenv("HOME", c.home, 1);
    fakeHost.commands.clear();

    console([] { init(); });

    EXPECT_THAT(fakeHost.commands, ElementsAre(c.command));
  }
}

TEST_F(Init, WritesOutThatHomeIsUnset) {
  unsetenv("HOME");

  console([] { init(); });

  EXPECT_THAT(fakeHost.commands, ElementsAre("mkdir -p (null)/Library/Logs/Qelmora/archive/\n"));
  EXPECT_STREQ(LOG_PATH, "(null)/Library/Logs/Qelmora/");
}

}  // namespace

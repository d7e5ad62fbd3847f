#include "iperf2/iperf2_run.h"

#include "run_state.h"
#include "support/iperf_run.h"
#include "support/iperf_texts.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;

class Iperf2Run : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }

  static std::string clientCommand(const std::string& address, int testTime) {
    return "/usr/bin/iperf -c " + address + " -y C -t " + std::to_string(testTime) + " > " +
           logFile("iperf2_latest.log\n");
  }

  static std::string appendCommand() {
    return "cat " + logFile("iperf2_latest_forward_csv.log") + " >> " +
           logFile("iperf2_history_forward_csv.log\n");
  }
};

TEST_F(Iperf2Run, RunsTheClientAndAppendsAfterTheWait) {
  expectClientWaitAndAppend(exec_iperf2, clientCommand, appendCommand());
}

TEST_F(Iperf2Run, ReplacesTheWindowsNameOfTheClientAndStampsItsStart) {
  exec_iperf2();

  EXPECT_EQ(iperf2_prog, "/usr/bin/iperf");
  EXPECT_STREQ(iperfStartTimeStamp, kStartStamp);
}

TEST_F(Iperf2Run, PrintsItsStartAndItsCommandWhenTraced) {
  ConfigurationParameters.debugConfFile = true;
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(console(exec_iperf2), "iperf2 start time 20261116T054000\ncommand=" +
                                      clientCommand("10.0.0.5", 10) + "\n(shell)\n(shell)\n");
}

TEST_F(Iperf2Run, PrintsItsHistoryCommandWithTheHistoryAndNothingElseUntraced) {
  flipPrintsBut(&Configuration::debugConfFile);

  EXPECT_EQ(console(exec_iperf2), "history file command: " + appendCommand() + "\n");
}

TEST_F(Iperf2Run, LeavesItsReportUnreadAndAnEmptyHistory) {
  fakeHost.onCommand = [](const std::string& command) {
    fakeHost.runsCommands = command.starts_with("cat ");
    if (!fakeHost.runsCommands) {
      writeFile(logFile("iperf2_latest.log"), kIperf2Report);
    }
  };

  exec_iperf2();

  EXPECT_EQ(readFile(logFile("iperf2_history_forward_csv.log")), "");
  EXPECT_FALSE(fileExists(logFile("iperf2_latest_forward_csv.log")));
  EXPECT_FALSE(fileExists(logFile("iperf2_history.log")));
  EXPECT_EQ(resultsText(), kNoResults);
}

class Iperf2Latest : public RunFixture {
 protected:
  /// Reads `report` as the latest report and returns what that printed.
  static std::string read(const std::string& report) {
    writeFile(logFile("iperf2_latest.log"), report);
    return console(read_latest_iperf2_log_file);
  }
};

TEST_F(Iperf2Latest, IsReadAfterItsAppendAndStampedThen) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};
  fakeHost.onCommand = [](const std::string&) {
    writeFile(logFile("iperf2_latest.log"), kIperf2Report);
    fakeHost.now += 75;
  };

  EXPECT_EQ(console(read_latest_iperf2_log_file), "");

  EXPECT_EQ(resultsText(), "date 20261116T054115, latency 77, write 943718400, read 79");
  const std::string command =
      "cat " + logFile("iperf2_latest.log") + " >> " + logFile("iperf2_history.log\n");
  EXPECT_THAT(fakeHost.commands, ElementsAre(command));
  EXPECT_EQ(cmd, command);
}

TEST_F(Iperf2Latest, IsFoundUnderTheLongestPath) {
  useLongestLogDirectory();

  read(kIperf2Report);

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
}

TEST_F(Iperf2Latest, IsPrintedWhenAskedFor) {
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(read(kIperf2Report),
            std::string("\n= IPERF2 latest ====================================\n") +
                kIperf2Connection + "length 1180000000\nBps 943718400 \n");
}

TEST_F(Iperf2Latest, IsPrintedByNoOtherSwitch) {
  flipPrintsBut(&Configuration::debugPrintLast);

  EXPECT_EQ(read(kIperf2Report), "");
}

TEST_F(Iperf2Latest, ThatIsNoReportLeavesTheEarlierResults) {
  ConfigurationParameters.debugPrintLast = true;
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};
  for (const char* const report :
       {"", "\n", "connect failed: Connection refused\n",
        "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000\n"}) {
    SCOPED_TRACE(report);

    EXPECT_EQ(read(report), "");

    EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
  }
}

TEST_F(Iperf2Latest, MeasuresNothingWithoutAFile) {
  EXPECT_EQ(console(read_latest_iperf2_log_file), "");
  EXPECT_EQ(resultsText(), kNoResults);

  std::filesystem::create_directory(logFile("iperf2_latest.log"));
  EXPECT_EQ(console(read_latest_iperf2_log_file), "");
  EXPECT_EQ(resultsText(), kNoResults);
}

/// `literal` with its null characters.
template <std::size_t N>
std::string text(const char (&literal)[N]) {
  return {literal, N - 1};
}

TEST_F(Iperf2Latest, IsScannedFromItsFirstCharacterToTheFirstNullCharacter) {
  const struct {
    std::string report;
    const char* rate;
  } cases[] = {{text("\n\n\nd,c,1,s,2,3,t,4,5\n"), "5"},
               {text("d,c,1,s,2,3,t,4,\n5"), "5"},  // blanks may stand before a number
               {text("d,c,1,s,2,3,t,4,5\nd,c,1,s,2,3,t,4,6\n"), "5"},
               {text("d,c,1,s,2,3,t,4,5\0,6\n"), "5"},
               {text("d,c,1,s,2,3,t,4\0,5\n"), "(0)"},
               {text("\0d,c,1,s,2,3,t,4,5\n"), "(0)"},
               {text("d,c,1,s,2,3,t,4,\xff") + "5\n", "(0)"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.report);
    outputResults = {"20261116T054000"};

    read(c.report);

    EXPECT_EQ(resultsText(),
              std::string("date 20261116T054000, latency (0), write ") + c.rate + ", read (0)");
  }
}

}  // namespace

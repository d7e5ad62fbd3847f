#include "iperf2/iperf2_run.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <string>

namespace {

using testing::ElementsAre;
using testing::FieldsAre;

class Iperf2Run : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }

  static std::string clientCommand(const std::string& options) {
    return "/usr/bin/iperf -c " + options + " > " + logFile("iperf2_latest.log\n");
  }

  static std::string appendCommand() {
    return "cat " + logFile("iperf2_latest_forward_csv.log") + " >> " +
           logFile("iperf2_history_forward_csv.log\n");
  }
};

TEST_F(Iperf2Run, RunsTheClientWaitsAndAppends) {
  fakeHost.onCommand = [](const std::string& command) {
    EXPECT_EQ(fakeHost.sleeps.size(), command.starts_with("cat ") ? 1U : 0U);
  };

  EXPECT_EQ(console(exec_iperf2), "");

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(clientCommand("10.0.0.5 -y C -t 10"), appendCommand()));
  EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(11, 0)));
  EXPECT_EQ(cmd, appendCommand());
}

TEST_F(Iperf2Run, TakesTheTestTimeAsItIs) {
  const struct {
    std::int32_t testTime;
    const char* options;
    std::time_t seconds;
    long nanoseconds;
  } cases[] = {
      {0, "10.0.0.5 -y C -t 0", 1, 0},
      {-1, "10.0.0.5 -y C -t -1", 0, 3'000'000},
      {std::numeric_limits<std::int32_t>::max(), "10.0.0.5 -y C -t 2147483647", 0, 3'000'000}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.options);
    fakeHost.commands.clear();
    fakeHost.sleeps.clear();
    ConfigurationParameters.iperfTestTime = c.testTime;

    exec_iperf2();

    EXPECT_THAT(fakeHost.commands, ElementsAre(clientCommand(c.options), appendCommand()));
    EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(c.seconds, c.nanoseconds)));
  }
}

TEST_F(Iperf2Run, LeavesTwoBlanksForAMissingAddress) {
  formatInto(ipaddr, "%s", "");

  exec_iperf2();

  EXPECT_EQ(fakeHost.commands.front(), clientCommand(" -y C -t 10"));
}

TEST_F(Iperf2Run, ReplacesTheWindowsNameOfTheClient) {
  EXPECT_EQ(iperf2_prog, "iperf2-win-2.1.7.exe");

  exec_iperf2();

  EXPECT_EQ(iperf2_prog, "/usr/bin/iperf");
  EXPECT_EQ(iperf2path, "iperf2\\");
  EXPECT_EQ(latestfile_perf2, "iperf2_latest.log");
}

TEST_F(Iperf2Run, StampsItsStart) {
  exec_iperf2();

  EXPECT_STREQ(iperfStartTimeStamp, "20261116T054000");
  EXPECT_EQ(fakeHost.now, kStartTime + 11);
}

TEST_F(Iperf2Run, PrintsItsStartAndItsCommandWhenTraced) {
  ConfigurationParameters.debugConfFile = true;
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(console(exec_iperf2),
            "iperf2 start time 20261116T054000\ncommand=" + clientCommand("10.0.0.5 -y C -t 10") +
                "\n(shell)\n(shell)\n");
}

TEST_F(Iperf2Run, PrintsItsHistoryCommandWithTheHistory) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(console(exec_iperf2),
            "(shell)\nhistory file command: " + appendCommand() + "\n(shell)\n");
}

TEST_F(Iperf2Run, IsNotTracedByAnyOtherSwitch) {
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugPrintIperf = true;
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(console(exec_iperf2), "");
}

TEST_F(Iperf2Run, LeavesItsReportUnreadAndAnEmptyHistory) {
  fakeHost.onCommand = [](const std::string& command) {
    fakeHost.runsCommands = command.starts_with("cat ");
    if (!fakeHost.runsCommands) {
      writeFile(logFile("iperf2_latest.log"), readFile(testData("iperf2/2.2.1/forward.csv")));
    }
  };
  writeFile(logFile("iperf2_history.log"), "earlier\n");

  exec_iperf2();

  EXPECT_EQ(readFile(logFile("iperf2_history_forward_csv.log")), "");
  EXPECT_EQ(readFile(logFile("iperf2_history.log")), "earlier\n");
  EXPECT_EQ(readFile(logFile("iperf2_latest.log")), readFile(testData("iperf2/2.2.1/forward.csv")));
  EXPECT_FALSE(fileExists(logFile("iperf2_latest_forward_csv.log")));
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf2Run, LeavesAnEarlierForwardHistoryAsItIs) {
  fakeHost.onCommand = [](const std::string& command) {
    fakeHost.runsCommands = command.starts_with("cat ");
  };
  writeFile(logFile("iperf2_history_forward_csv.log"), "earlier\n");

  exec_iperf2();

  EXPECT_EQ(readFile(logFile("iperf2_history_forward_csv.log")), "earlier\n");
}

TEST_F(Iperf2Run, GoesOnWhateverTheShellReturns) {
  fakeHost.shellStatus = 127 * 256;
  fakeHost.sleepStatus = -1;

  exec_iperf2();

  EXPECT_THAT(fakeHost.commands,
              ElementsAre(clientCommand("10.0.0.5 -y C -t 10"), appendCommand()));
  EXPECT_EQ(fakeHost.sleeps.size(), 1U);
}

constexpr char kReport[] =
    "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,943718400\n";

class Iperf2Latest : public RunFixture {
 protected:
  /// Reads `report` as the latest report and returns what that printed.
  static std::string read(const std::string& report) {
    writeFile(logFile("iperf2_latest.log"), report);
    return console(read_latest_iperf2_log_file);
  }
};

TEST_F(Iperf2Latest, SetsTheWriteRateAndTheMomentOfTheParse) {
  fakeHost.onCommand = [](const std::string&) { fakeHost.now += 75; };

  EXPECT_EQ(read(kReport), "");

  EXPECT_EQ(resultsText(), "date 20261116T054115, latency (0), write 943718400, read (0)");
}

TEST_F(Iperf2Latest, IsFoundUnderTheLongestPath) {
  useLongestLogDirectory();

  read(kReport);

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
}

TEST_F(Iperf2Latest, LeavesTheLatencyAndTheReadRateAlone) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  read(kReport);

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 77, write 943718400, read 79");
}

TEST_F(Iperf2Latest, SetsTheRateOfEachRecordingThatIsAReport) {
  for (const Recording& recording : recordings("iperf2")) {
    SCOPED_TRACE(recording.file);
    outputResults = {};
    const std::string rate = recording.expected.substr(recording.expected.rfind(' ') + 1);

    EXPECT_EQ(read(readFile(testData("iperf2/" + recording.file))), "");

    EXPECT_EQ(resultsText(),
              recording.expected == "rejected"
                  ? kNoResults
                  : "date 20261116T054000, latency (0), write " + rate + ", read (0)");
  }
}

TEST_F(Iperf2Latest, IsPrintedWhenAskedFor) {
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(read(kReport),
            "\n= IPERF2 latest ====================================\n"
            "date 20201116054000\n"
            "client ip 192.168.1.20\n"
            "server ip 192.168.1.10\n"
            "client tcp port 54012\n"
            "server tcp port 5001\n"
            "transfer ID 3\n"
            "test time 0.0-10.0\n"
            "length 1180000000\n"
            "Bps 943718400 \n");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
}

TEST_F(Iperf2Latest, IsPrintedByNoOtherSwitch) {
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugConfFile = true;
  ConfigurationParameters.debugPrintIperf = true;
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(read(kReport), "");
}

TEST_F(Iperf2Latest, IsAppendedToTheHistoryByOneCommand) {
  read(kReport);

  const std::string command =
      "cat " + logFile("iperf2_latest.log") + " >> " + logFile("iperf2_history.log\n");
  EXPECT_THAT(fakeHost.commands, ElementsAre(command));
  EXPECT_EQ(cmd, command);
}

TEST_F(Iperf2Latest, IsAppendedBeforeItIsRead) {
  fakeHost.onCommand = [](const std::string&) { writeFile(logFile("iperf2_latest.log"), kReport); };

  read_latest_iperf2_log_file();

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
}

TEST_F(Iperf2Latest, CountsWithItsFirstLineAndIsKeptWhole) {
  fakeHost.runsCommands = true;
  const std::string report = std::string(kReport) + "d,c,1,s,2,3,t,4,5\n";
  writeFile(logFile("iperf2_history.log"), "earlier\n");

  read(report);

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
  EXPECT_EQ(readFile(logFile("iperf2_history.log")), "earlier\n" + report);
}

TEST_F(Iperf2Latest, ThatIsNoReportLeavesTheEarlierResultsButIsKept) {
  ConfigurationParameters.debugPrintLast = true;
  fakeHost.runsCommands = true;
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};
  std::string history;
  for (const char* const report :
       {"", "\n", "connect failed: Connection refused\n",
        "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000\n",
        "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,fast\n"}) {
    SCOPED_TRACE(report);
    history += report;

    EXPECT_EQ(read(report), "");

    EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
    EXPECT_EQ(readFile(logFile("iperf2_history.log")), history);
  }
}

TEST_F(Iperf2Latest, ThatIsMissingLeavesTheEarlierResults) {
  ConfigurationParameters.debugPrintLast = true;
  fakeHost.runsCommands = true;
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  EXPECT_EQ(console(read_latest_iperf2_log_file), "");

  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
  EXPECT_EQ(readFile(logFile("iperf2_history.log")), "");
}

TEST_F(Iperf2Latest, UnderWhoseNameADirectoryStandsMeasuresNothing) {
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
    bool accepted;
  } cases[] = {{text("\n") + kReport, true},
               {text("\n\n\n") + kReport, true},
               {text("d,c,1,s,2,3,t,4,\n5"), true},  // blanks may stand before a number
               {text("d,c,1,s,2,3,t,4,5"), true},
               {text("d,c,1,s,2,3,t,4,5\0,6\n"), true},
               {text("d,c,1,s,2,3,t,4\0,5\n"), false},
               {text("\0d,c,1,s,2,3,t,4,5\n"), false},
               {text("d,c,1,s,2,3,t,4,\xff") + "5\n", false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.report);
    outputResults = {};

    read(c.report);

    EXPECT_EQ(outputResults.writeRateValid, c.accepted);
  }
}

TEST_F(Iperf2Latest, TakesAnyRateThatTheScanTakes) {
  const struct {
    const char* report;
    const char* rate;
  } cases[] = {{"d,c,1,s,2,3,t,4,0", "0"},
               {"d,c,1,s,2,3,t,4,18446744073709551615", "18446744073709551615"},
               {"d,c,1,s,2,3,t,4,-1", "18446744073709551615"},
               {"d,c,1,s,2,3,t,4,5.9", "5"},
               {"d,c,1,s,2,3,t,4,1e9", "1"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.report);

    read(c.report);

    EXPECT_EQ(resultsText(),
              std::string("date 20261116T054000, latency (0), write ") + c.rate + ", read (0)");
  }
}

}  // namespace

#include "iperf2/iperf2_history.h"

#include "run_state.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kReport[] =
    "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,943718400\n";

class Iperf2History : public RunFixture {
 protected:
  static std::string historyPath() { return logFile("iperf2_history.log"); }

  static std::string moveCommand(const std::string& stamp) {
    return "(mv  \"" + historyPath() + "\" \"" + archiveFile("iperf2_history_" + stamp + ".log") +
           "\") 2>nul\n";
  }

  /// Reports `history` and returns what that printed.
  static std::string report(const std::string& history) {
    writeFile(historyPath(), history);
    return console(write_iperf2_history_log_files);
  }

  /// What the report prints for `count` reports like kReport.
  static std::string blocks(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += "\n= IPERF2 history " + std::to_string(i) +
              " ====================================\n"
              "date 20201116054000\n"
              "client ip 192.168.1.20\n"
              "server ip 192.168.1.10\n"
              "client tcp port 54012\n"
              "server tcp port 5001\n"
              "transfer ID 3\n"
              "test time 0.0-10.0\n"
              "length 1180000000 \n"
              "Bps 943718400\n";
    }
    return text;
  }
};

TEST_F(Iperf2History, ThatIsMissingIsReportedByNothing) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(console(write_iperf2_history_log_files), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
}

TEST_F(Iperf2History, UnderWhoseNameADirectoryStandsIsReportedByNothing) {
  ConfigurationParameters.debugPrintHistory = true;
  std::filesystem::create_directory(historyPath());

  EXPECT_EQ(console(write_iperf2_history_log_files), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf2History, IsPrintedWithNumbersFromZeroWhenAskedFor) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(report(repeated(kReport, 3)), blocks(3));
}

TEST_F(Iperf2History, IsPrintedByNoOtherSwitch) {
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugConfFile = true;
  ConfigurationParameters.debugPrintIperf = true;
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(report(repeated(kReport, 3)), "");
}

TEST_F(Iperf2History, StaysAtNineReportsAmongAnyOtherLines) {
  ConfigurationParameters.debugPrintHistory = true;
  const std::string history = repeated(std::string("\nno report\n") + kReport, 9) + "\n";

  EXPECT_EQ(report(history), blocks(9));

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_EQ(readFile(historyPath()), history);
}

TEST_F(Iperf2History, CountsOnlyLinesThatAreReports) {
  ConfigurationParameters.debugPrintHistory = true;
  const std::string others[] = {
      "\n",
      "\r\n",
      "connect failed: Connection refused\n",
      "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000\n",
      "20201116054000,192.168.1.20,port,192.168.1.10,5001,3,0.0-10.0,1180000000,943718400\n",
      "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,fast\n",
      std::string(33, 'x') + ",192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,9\n"};
  for (const std::string& other : others) {
    SCOPED_TRACE(other);

    EXPECT_EQ(report(kReport + repeated(other, 10) + kReport + other), blocks(2));

    EXPECT_THAT(fakeHost.commands, IsEmpty());
  }
}

TEST_F(Iperf2History, MovesAtTenReportsAfterTheyArePrinted) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.runsCommands = true;
  const std::string history = repeated(kReport, 6) + "no report\n" + repeated(kReport, 4);

  EXPECT_EQ(report(history), blocks(10) + moveCommand(kStartStamp) + "\n");

  EXPECT_FALSE(fileExists(historyPath()));
  EXPECT_EQ(readFile(archiveFile("iperf2_history_20261116T054000.log")), history);
  EXPECT_EQ(readFile("nul"), "");
}

TEST_F(Iperf2History, MovesWholeHoweverLongItIs) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.runsCommands = true;
  const std::string history = repeated(kReport, 25);

  EXPECT_EQ(report(history), blocks(25) + moveCommand(kStartStamp) + "\n");

  EXPECT_EQ(readFile(archiveFile("iperf2_history_20261116T054000.log")), history);
}

TEST_F(Iperf2History, PrintsNothingButItsMoveByDefault) {
  EXPECT_EQ(report(repeated(kReport, 10)), moveCommand(kStartStamp) + "\n");

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand(kStartStamp)));
}

TEST_F(Iperf2History, CountsALastLineWithoutItsNewline) {
  std::string history = repeated(kReport, 10);
  history.pop_back();

  EXPECT_EQ(report(history), moveCommand(kStartStamp) + "\n");
}

TEST_F(Iperf2History, TakesLinesThatEndInACarriageReturn) {
  ConfigurationParameters.debugPrintHistory = true;
  std::string line = kReport;
  line.insert(line.size() - 1, "\r");

  EXPECT_EQ(report(repeated(line, 10)), blocks(10) + moveCommand(kStartStamp) + "\n");
}

TEST_F(Iperf2History, PrintsTextsOf32CharactersWhole) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(
      report("dddddddddddddddddddddddddddddddd,cccccccccccccccccccccccccccccccc,-1,"
             "ssssssssssssssssssssssssssssssss,-2,-3,tttttttttttttttttttttttttttttttt,0,-1\n"),
      "\n= IPERF2 history 0 ====================================\n"
      "date dddddddddddddddddddddddddddddddd\n"
      "client ip cccccccccccccccccccccccccccccccc\n"
      "server ip ssssssssssssssssssssssssssssssss\n"
      "client tcp port -1\n"
      "server tcp port -2\n"
      "transfer ID -3\n"
      "test time tttttttttttttttttttttttttttttttt\n"
      "length 0 \n"
      "Bps 18446744073709551615\n");
}

TEST_F(Iperf2History, MovesUnderTheStampFromBeforeAndThenTakesTheCurrentOne) {
  fakeHost.now += 300;
  std::string stampDuringTheMove;
  fakeHost.onCommand = [&stampDuringTheMove](const std::string&) {
    stampDuringTheMove = currentTimeStamp;
    fakeHost.now += 300;
  };

  report(repeated(kReport, 10));

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand("20261116T054000")));
  EXPECT_EQ(stampDuringTheMove, "20261116T054500");
  EXPECT_STREQ(currentTimeStamp, "20261116T054500");
}

TEST_F(Iperf2History, PrintsItsMoveAfterIt) {
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(report(repeated(kReport, 10)), "(shell)\n" + moveCommand(kStartStamp) + "\n");
}

TEST_F(Iperf2History, StaysWhenItsMoveFailsAndMovesLater) {
  fakeHost.runsCommands = true;
  std::filesystem::remove(LOG_PATH_ARCHIVE);

  EXPECT_EQ(report(repeated(kReport, 10)), moveCommand(kStartStamp) + "\n");

  EXPECT_EQ(readFile(historyPath()), repeated(kReport, 10));
  EXPECT_THAT(readFile("nul"), testing::HasSubstr(historyPath()));

  std::filesystem::create_directory(LOG_PATH_ARCHIVE);
  formatInto(currentTimeStamp, "20261117T000000");
  EXPECT_EQ(report(repeated(kReport, 11)), moveCommand("20261117T000000") + "\n");

  EXPECT_FALSE(fileExists(historyPath()));
  EXPECT_EQ(readFile(archiveFile("iperf2_history_20261117T000000.log")), repeated(kReport, 11));
}

TEST_F(Iperf2History, MeasuresNothing) {
  report(repeated(kReport, 10));

  EXPECT_EQ(resultsText(), kNoResults);
}

}  // namespace

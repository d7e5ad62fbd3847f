#include "iperf2/iperf2_history.h"

#include "run_state.h"
#include "support/iperf_texts.h"
#include "support/run_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Iperf2History : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    ConfigurationParameters.debugPrintHistory = true;
  }

  static std::string historyPath() { return logFile("iperf2_history.log"); }

  /// Reports `history` and returns what that printed.
  static std::string report(const std::string& history) {
    writeFile(historyPath(), history);
    return console(write_iperf2_history_log_files);
  }

  /// What the report prints for `count` reports like kIperf2Report.
  static std::string blocks(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += "\n= IPERF2 history " + std::to_string(i) +
              " ====================================\n" + kIperf2Connection +
              "length 1180000000 \nBps 943718400\n";
    }
    return text;
  }
};

TEST_F(Iperf2History, IsReportedByNothingWithoutAFile) {
  EXPECT_EQ(console(write_iperf2_history_log_files), "");

  std::filesystem::create_directory(historyPath());
  EXPECT_EQ(console(write_iperf2_history_log_files), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf2History, IsPrintedByNoOtherSwitch) {
  ConfigurationParameters.debugPrintHistory = false;
  flipPrintsBut(&Configuration::debugPrintHistory);

  EXPECT_EQ(report(repeated(kIperf2Report, 3)), "");
}

TEST_F(Iperf2History, CountsOnlyLinesThatAreReports) {
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

    EXPECT_EQ(report(kIperf2Report + repeated(other, 10) + kIperf2Report + other), blocks(2));
  }
  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf2History, MovesAtTenReportsAfterTheyArePrinted) {
  const std::string move = "(mv  \"" + historyPath() + "\" \"" +
                           archiveFile("iperf2_history_20261116T054000.log") + "\") 2>nul\n";

  EXPECT_EQ(report(repeated(std::string("\nno report\n") + kIperf2Report, 9) + "\n"), blocks(9));
  EXPECT_THAT(fakeHost.commands, IsEmpty());

  EXPECT_EQ(report(repeated(kIperf2Report, 6) + "no report\n" + repeated(kIperf2Report, 4)),
            blocks(10) + move + "\n");
  EXPECT_THAT(fakeHost.commands, ElementsAre(move));
}

TEST_F(Iperf2History, CountsALastLineWithoutItsNewline) {
  std::string history = repeated(kIperf2Report, 2);
  history.pop_back();

  EXPECT_EQ(report(history), blocks(2));
  EXPECT_EQ(report(history + "\r\n"), blocks(2));
}

TEST_F(Iperf2History, PrintsTextsOf32CharactersWhole) {
  EXPECT_EQ(report(std::string(kLongColumns) + "0,-1\n"),
            std::string("\n= IPERF2 history 0 ====================================\n") +
                kLongConnection + "length 0 \nBps 18446744073709551615\n");
}

}  // namespace

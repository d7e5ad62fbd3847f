#include "iperf3/iperf3_history.h"

#include "run_state.h"
#include "support/iperf_texts.h"
#include "support/run_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The history of one direction; the parameter says whether it is the reverse one.
class Iperf3History : public RunFixture, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    ConfigurationParameters.debugPrintHistory = true;
  }

  static std::string direction() { return GetParam() ? "reverse" : "forward"; }
  static std::string path() { return logFile("iperf3_history_" + direction() + "_csv.log"); }

  static std::string report() {
    return console([] { write_iperf3_history_log_files(GetParam()); });
  }

  /// Reports `history` and returns what that printed.
  static std::string report(const std::string& history) {
    writeFile(path(), history);
    return report();
  }

  /// What is printed around the blocks of the lines: for the forward direction only.
  static std::string framed(const std::string& blocks, int lines) {
    return GetParam() ? blocks
                      : "iperf history file path is " + path() + "\n" + blocks +
                            "history file line count " + std::to_string(lines) + "\n";
  }

  /// What is printed of a line: for the reverse direction, the numbers that the scan never fills.
  static std::string block(int line, const std::string& connection, const std::string& numbers) {
    return "\n= IPERF3 history " + std::to_string(line) +
           " ====================================\n" + connection +
           (GetParam() ? "length 0 \nBps 0\n" : numbers);
  }

  /// The same of the lines `first` to `last` that are kForwardLine.
  static std::string blocks(int first, int last) {
    std::string text;
    for (int line = first; line <= last; ++line) {
      text += block(line, kIperf3Connection, "length 1180000000 \nBps 943718400\n");
    }
    return text;
  }
};

INSTANTIATE_TEST_SUITE_P(Of, Iperf3History, testing::Bool(),
                         [](const auto& reverse) { return reverse.param ? "Reverse" : "Forward"; });

TEST_P(Iperf3History, CountsAsEmptyWithoutAFile) {
  EXPECT_EQ(report(), framed("", 0));

  std::filesystem::create_directory(path());
  EXPECT_EQ(report(), framed("", 0));

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_P(Iperf3History, ShowsItsLinesByNoOtherSwitch) {
  ConfigurationParameters.debugPrintHistory = false;
  flipPrintsBut(&Configuration::debugPrintHistory);

  EXPECT_EQ(report(repeated(kForwardLine, 3)), framed("", 3));
}

TEST_P(Iperf3History, MovesAtTenLinesAfterTheyAreShown) {
  const std::string move = "(mv  \"" + path() + "\" \"" +
                           archiveFile("iperf3_history_" + direction() + "_20261116T054000.log") +
                           "\") 2>nul\n";
  std::string unended = repeated(kForwardLine, 10);
  unended.pop_back();

  EXPECT_EQ(report(repeated(kForwardLine, 9)), framed(blocks(0, 8), 9));
  EXPECT_THAT(fakeHost.commands, IsEmpty());

  EXPECT_EQ(report(unended), framed(blocks(0, 9), 10) + move + "\n");
  EXPECT_EQ(report("\n" + repeated(kForwardLine, 9)), framed(blocks(1, 9), 10) + move + "\n");
  EXPECT_THAT(fakeHost.commands, ElementsAre(move, move));
}

TEST_P(Iperf3History, CountsEveryLineAndShowsThoseThatAreReports) {
  const std::string longText(33, 'x');
  const std::string others[] = {
      "\n",
      "\r\n",
      "no report\n",
      ",,0,,0,0,,0,0,0,0\n",  // what a run without a measurement leaves
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000\n",
      "1605505183,192.168.1.20,port,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n",
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,fast,0,0\n",
      longText + ",192.168.1.20,54012,192.168.1.10,5201,0,10,8,9\n",
      "1605505183," + longText + ",54012,192.168.1.10,5201,0,10,8,9\n",
      "1605505183,192.168.1.20,54012," + longText + ",5201,0,10,8,9\n",
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0," + longText + ",8,9\n"};
  for (const std::string& other : others) {
    SCOPED_TRACE(other);

    EXPECT_EQ(report(other + kForwardLine + repeated(other, 2) + kForwardLine),
              framed(blocks(1, 1) + blocks(4, 4), 5));
  }
}

TEST_P(Iperf3History, ScansItsNineColumns) {
  const struct {
    const char* numbers;
    const char* shown;
  } cases[] = {{"1180000000, \t943718400,0,0\r", "length 1180000000 \nBps 943718400\n"},
               {"1180000000,943718400.5 x", "length 1180000000 \nBps 943718400\n"},
               {" 1,9.5e2", "length 1 \nBps 950\n"},
               {"-1,-2.5", "length 18446744073709551615 \nBps -2\n"},
               {"1,nan", "length 1 \nBps nan\n"},
               {"1,-inf", "length 1 \nBps -inf\n"},
               {"1,1e999", "length 1 \nBps inf\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.numbers);

    EXPECT_EQ(report(std::string("1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,") +
                     c.numbers + "\n"),
              framed(block(0, kIperf3Connection, c.shown), 1));
  }
}

TEST_P(Iperf3History, ShowsTextsOf32CharactersWhole) {
  EXPECT_EQ(report(std::string(kLongColumns) + "4,5\n"),
            framed(block(0, kLongConnection, "length 4 \nBps 5\n"), 1));
}

}  // namespace

#include "iperf3/iperf3_history.h"

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

constexpr char kForwardLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n";
constexpr char kReverseLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,0,0,1170000000,943718400\n";

class Iperf3History : public RunFixture {
 protected:
  static std::string forwardPath() { return logFile("iperf3_history_forward_csv.log"); }
  static std::string reversePath() { return logFile("iperf3_history_reverse_csv.log"); }

  static std::string moveCommand(const std::string& direction, const std::string& stamp) {
    return "(mv  \"" + logFile("iperf3_history_" + direction + "_csv.log") + "\" \"" +
           archiveFile("iperf3_history_" + direction + "_" + stamp + ".log") + "\") 2>nul\n";
  }

  /// Reports `history` as that of one direction and returns what that printed.
  static std::string reportForward(const std::string& history) {
    writeFile(forwardPath(), history);
    return console([] { write_iperf3_history_log_files(false); });
  }

  static std::string reportReverse(const std::string& history) {
    writeFile(reversePath(), history);
    return console([] { write_iperf3_history_log_files(true); });
  }

  /// What the forward report prints around its blocks.
  static std::string framed(const std::string& blocks, int count) {
    return "iperf history file path is " + forwardPath() + "\n" + blocks +
           "history file line count " + std::to_string(count) + "\n";
  }

  static std::string block(int number, const std::string& numbers) {
    return "\n= IPERF3 history " + std::to_string(number) +
           " ====================================\n"
           "date 1605505183\n"
           "client ip 192.168.1.20\n"
           "server ip 192.168.1.10\n"
           "client tcp port 54012\n"
           "server tcp port 5201\n"
           "transfer ID 0\n"
           "test time 10\n" +
           numbers;
  }

  static std::string forwardBlocks(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += block(i, "length 1180000000 \nBps 943718400\n");
    }
    return text;
  }

  static std::string reverseBlocks(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
      text += block(i, "length 0 \nBps 0\n");
    }
    return text;
  }
};

TEST_F(Iperf3History, ThatIsMissingStillShowsTheForwardPathAndCount) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(console([] { write_iperf3_history_log_files(false); }), framed("", 0));

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf3History, ThatIsMissingShowsNothingForReverse) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(console([] { write_iperf3_history_log_files(true); }), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf3History, UnderWhoseNameADirectoryStandsCountsAsEmpty) {
  std::filesystem::create_directory(forwardPath());
  std::filesystem::create_directory(reversePath());

  EXPECT_EQ(console([] { write_iperf3_history_log_files(false); }), framed("", 0));
  EXPECT_EQ(console([] { write_iperf3_history_log_files(true); }), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(Iperf3History, ShowsTheSentNumbersOfForwardLines) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(reportForward(repeated(kForwardLine, 3)), framed(forwardBlocks(3), 3));
}

TEST_F(Iperf3History, ShowsZerosForReverseLines) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(reportReverse(repeated(kReverseLine, 3)), reverseBlocks(3));
  EXPECT_EQ(reportReverse(repeated(kForwardLine, 3)), reverseBlocks(3));
}

TEST_F(Iperf3History, ShowsNoLineByDefault) {
  EXPECT_EQ(reportForward(repeated(kForwardLine, 3)), framed("", 3));
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 3)), "");
}

TEST_F(Iperf3History, ShowsNoLineByAnyOtherSwitch) {
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugConfFile = true;
  ConfigurationParameters.debugPrintIperf = true;
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(reportForward(repeated(kForwardLine, 3)), framed("", 3));
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 3)), "");
}

TEST_F(Iperf3History, StaysAtNineLines) {
  EXPECT_EQ(reportForward(repeated(kForwardLine, 9)), framed("", 9));
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 9)), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_EQ(readFile(forwardPath()), repeated(kForwardLine, 9));
  EXPECT_EQ(readFile(reversePath()), repeated(kReverseLine, 9));
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
}

TEST_F(Iperf3History, MovesForwardAtTenLinesAfterTheyAreShown) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.runsCommands = true;
  const std::string history = repeated(kForwardLine, 10);

  EXPECT_EQ(reportForward(history),
            framed(forwardBlocks(10), 10) + moveCommand("forward", kStartStamp) + "\n");

  EXPECT_FALSE(fileExists(forwardPath()));
  EXPECT_EQ(readFile(archiveFile("iperf3_history_forward_20261116T054000.log")), history);
  EXPECT_EQ(readFile("nul"), "");
}

TEST_F(Iperf3History, MovesReverseAtTenLinesAfterTheyAreShown) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.runsCommands = true;
  const std::string history = repeated(kReverseLine, 10);

  EXPECT_EQ(reportReverse(history), reverseBlocks(10) + moveCommand("reverse", kStartStamp) + "\n");

  EXPECT_FALSE(fileExists(reversePath()));
  EXPECT_EQ(readFile(archiveFile("iperf3_history_reverse_20261116T054000.log")), history);
  EXPECT_EQ(readFile("nul"), "");
}

TEST_F(Iperf3History, ShowsNothingButTheMoveForReverseByDefault) {
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 10)), moveCommand("reverse", kStartStamp) + "\n");

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand("reverse", kStartStamp)));
}

TEST_F(Iperf3History, MovesWholeHoweverLongItIs) {
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.runsCommands = true;

  EXPECT_EQ(reportForward(repeated(kForwardLine, 25)),
            framed(forwardBlocks(25), 25) + moveCommand("forward", kStartStamp) + "\n");

  EXPECT_EQ(readFile(archiveFile("iperf3_history_forward_20261116T054000.log")),
            repeated(kForwardLine, 25));
}

TEST_F(Iperf3History, IsFoundAndMovedUnderTheLongestPath) {
  useLongestLogDirectory();
  fakeHost.runsCommands = true;

  EXPECT_EQ(reportForward(repeated(kForwardLine, 10)),
            framed("", 10) + moveCommand("forward", kStartStamp) + "\n");

  EXPECT_EQ(readFile(archiveFile("iperf3_history_forward_20261116T054000.log")),
            repeated(kForwardLine, 10));
}

TEST_F(Iperf3History, CountsEveryLineAndShowsThoseThatAreReports) {
  ConfigurationParameters.debugPrintHistory = true;
  const std::string others[] = {
      "\n", "\r\n", "no report\n",
      ",,0,,0,0,,0,0,0,0\n",  // what a run without a measurement leaves
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000\n",
      "1605505183,192.168.1.20,port,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n",
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,fast,0,0\n",
      // A text of 33 characters.
      "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx,192.168.1.20,54012,192.168.1.10,5201,0,10,8,9\n",
      "1605505183,xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx,54012,192.168.1.10,5201,0,10,8,9\n",
      "1605505183,192.168.1.20,54012,xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx,5201,0,10,8,9\n",
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx,8,9\n"};
  for (const std::string& other : others) {
    SCOPED_TRACE(other);

    EXPECT_EQ(reportForward(other + kForwardLine + repeated(other, 2) + kForwardLine),
              framed(block(1, "length 1180000000 \nBps 943718400\n") +
                         block(4, "length 1180000000 \nBps 943718400\n"),
                     5));
    EXPECT_EQ(reportReverse(other + kReverseLine + repeated(other, 2) + kReverseLine),
              block(1, "length 0 \nBps 0\n") + block(4, "length 0 \nBps 0\n"));
  }
}

TEST_F(Iperf3History, MovesWithNineReportsAndAnEmptyLine) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(reportForward("\n" + repeated(kForwardLine, 9)),
            framed(forwardBlocks(10).substr(forwardBlocks(1).size()), 10) +
                moveCommand("forward", kStartStamp) + "\n");
}

TEST_F(Iperf3History, CountsALastLineWithoutItsNewline) {
  ConfigurationParameters.debugPrintHistory = true;
  std::string history = repeated(kForwardLine, 10);
  history.pop_back();

  EXPECT_EQ(reportForward(history),
            framed(forwardBlocks(10), 10) + moveCommand("forward", kStartStamp) + "\n");
}

TEST_F(Iperf3History, ScansNineColumnsAlikeInBothDirections) {
  ConfigurationParameters.debugPrintHistory = true;
  const struct {
    const char* numbers;
    const char* shown;
  } cases[] = {{"1180000000,943718400", "length 1180000000 \nBps 943718400\n"},
               {"1180000000, \t943718400,0,0\r", "length 1180000000 \nBps 943718400\n"},
               {"1180000000,943718400.5 x", "length 1180000000 \nBps 943718400\n"},
               {" 1,9.5e2", "length 1 \nBps 950\n"},
               {"-1,-2.5", "length 18446744073709551615 \nBps -2\n"},
               {"1,nan", "length 1 \nBps nan\n"},
               {"1,-inf", "length 1 \nBps -inf\n"},
               {"1,1e999", "length 1 \nBps inf\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.numbers);
    const std::string line =
        std::string("1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,") + c.numbers + "\n";

    EXPECT_EQ(reportForward(line), framed(block(0, c.shown), 1));
    EXPECT_EQ(reportReverse(line), reverseBlocks(1));
  }
}

TEST_F(Iperf3History, ShowsTextsOf32CharactersWhole) {
  ConfigurationParameters.debugPrintHistory = true;
  const std::string line =
      "dddddddddddddddddddddddddddddddd,cccccccccccccccccccccccccccccccc,-1,"
      "ssssssssssssssssssssssssssssssss,-2,-3,tttttttttttttttttttttttttttttttt,4,5\n";
  const std::string block =
      "\n= IPERF3 history 0 ====================================\n"
      "date dddddddddddddddddddddddddddddddd\n"
      "client ip cccccccccccccccccccccccccccccccc\n"
      "server ip ssssssssssssssssssssssssssssssss\n"
      "client tcp port -1\n"
      "server tcp port -2\n"
      "transfer ID -3\n"
      "test time tttttttttttttttttttttttttttttttt\n";

  EXPECT_EQ(reportForward(line), framed(block + "length 4 \nBps 5\n", 1));
  EXPECT_EQ(reportReverse(line), block + "length 0 \nBps 0\n");
}

TEST_F(Iperf3History, OfBothDirectionsMovesUnderStampsThatFollowEachOther) {
  fakeHost.now += 300;
  std::string stampDuringTheMove;
  fakeHost.onCommand = [&stampDuringTheMove](const std::string&) {
    stampDuringTheMove = currentTimeStamp;
    fakeHost.now += 300;
  };

  reportForward(repeated(kForwardLine, 10));
  EXPECT_EQ(stampDuringTheMove, "20261116T054500");
  reportReverse(repeated(kReverseLine, 10));

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand("forward", "20261116T054000"),
                                             moveCommand("reverse", "20261116T054500")));
  EXPECT_STREQ(currentTimeStamp, "20261116T055000");
}

TEST_F(Iperf3History, PrintsItsMoveAfterIt) {
  fakeHost.onCommand = [](const std::string&) { std::puts("(shell)"); };

  EXPECT_EQ(reportForward(repeated(kForwardLine, 10)),
            framed("", 10) + "(shell)\n" + moveCommand("forward", kStartStamp) + "\n");
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 10)),
            "(shell)\n" + moveCommand("reverse", kStartStamp) + "\n");
}

TEST_F(Iperf3History, StaysWhenItsMoveFailsAndMovesLater) {
  fakeHost.runsCommands = true;
  std::filesystem::remove(LOG_PATH_ARCHIVE);

  EXPECT_EQ(reportReverse(repeated(kReverseLine, 10)), moveCommand("reverse", kStartStamp) + "\n");

  EXPECT_EQ(readFile(reversePath()), repeated(kReverseLine, 10));
  EXPECT_THAT(readFile("nul"), testing::HasSubstr(reversePath()));

  std::filesystem::create_directory(LOG_PATH_ARCHIVE);
  formatInto(currentTimeStamp, "20261117T000000");
  EXPECT_EQ(reportReverse(repeated(kReverseLine, 11)),
            moveCommand("reverse", "20261117T000000") + "\n");

  EXPECT_FALSE(fileExists(reversePath()));
  EXPECT_EQ(readFile(archiveFile("iperf3_history_reverse_20261117T000000.log")),
            repeated(kReverseLine, 11));
}

TEST_F(Iperf3History, MeasuresNothing) {
  reportForward(repeated(kForwardLine, 10));
  reportReverse(repeated(kReverseLine, 10));

  EXPECT_EQ(resultsText(), kNoResults);
}

}  // namespace

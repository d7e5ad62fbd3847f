#include "results/result_history.h"

#include "results/result_line.h"
#include "run_state.h"
#include "support/run_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kHistory[] = "connection_test_results_history.log";
constexpr char kArchived[] = "connection_test_results_history_20261116T054000.log";
constexpr char kEmptyLine[] =
    "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps \n";

class ResultHistory : public RunFixture {
 protected:
  static std::string check() {
    return console([] { write_results_log_history_file(); });
  }
  static std::string moveCommand() {
    return "mv  " + logFile(kHistory) + " " + archiveFile(kArchived) + "\n";
  }
};

TEST_F(ResultHistory, StaysBelowTenLines) {
  for (const int lines : {0, 1, 9}) {
    SCOPED_TRACE(lines);
    writeFile(logFile(kHistory), repeated("line\n", lines));
    fakeHost.now = kStartTime + 7;

    EXPECT_EQ(check(), "");

    EXPECT_THAT(fakeHost.commands, IsEmpty());
    EXPECT_STREQ(currentTimeStamp, kStartStamp);
  }
}

TEST_F(ResultHistory, MovesAtTenLinesUnderTheStampFromBefore) {
  writeFile(logFile(kHistory), repeated("line\n", 10));
  fakeHost.now = kStartTime + 7;

  EXPECT_EQ(check(), moveCommand() + "\n");

  EXPECT_THAT(fakeHost.commands, ElementsAre(moveCommand()));
  EXPECT_STREQ(cmd, moveCommand().c_str());
  EXPECT_STREQ(currentTimeStamp, "20261116T054007");
}

TEST_F(ResultHistory, CountsALastLineWithoutANewline) {
  writeFile(logFile(kHistory), repeated("line\n", 9) + "line");

  EXPECT_EQ(check(), moveCommand() + "\n");
}

TEST_F(ResultHistory, MovesWholeWithMoreThanTenLines) {
  fakeHost.runsCommands = true;
  writeFile(logFile(kHistory), repeated("line\n", 25));

  check();

  EXPECT_FALSE(fileExists(logFile(kHistory)));
  EXPECT_EQ(readFile(archiveFile(kArchived)), repeated("line\n", 25));
}

TEST_F(ResultHistory, DoesNothingWhenItIsMissing) {
  fakeHost.now = kStartTime + 7;

  EXPECT_EQ(check(), "");

  EXPECT_THAT(fakeHost.commands, IsEmpty());
  EXPECT_STREQ(currentTimeStamp, kStartStamp);
  EXPECT_FALSE(fileExists(logFile(kHistory)));
}

TEST_F(ResultHistory, HoldsTenLinesInTheArchiveAfterTenRuns) {
  fakeHost.runsCommands = true;
  for (int run = 1; run <= 9; ++run) {
    console([] { logFormattedResults(); });
    EXPECT_EQ(readFile(logFile(kHistory)), repeated(kEmptyLine, run));
  }

  console([] { logFormattedResults(); });

  EXPECT_FALSE(fileExists(logFile(kHistory)));
  EXPECT_EQ(readFile(archiveFile(kArchived)), repeated(kEmptyLine, 10));
  EXPECT_EQ(readFile(logFile("connection_test_results.txt")), kEmptyLine);

  console([] { logFormattedResults(); });

  EXPECT_EQ(readFile(logFile(kHistory)), kEmptyLine);
}

TEST_F(ResultHistory, StaysAfterAMoveThatFailsAndMovesInTheNextRun) {
  fakeHost.runsCommands = true;
  std::filesystem::remove(LOG_PATH_ARCHIVE);
  writeFile(logFile(kHistory), repeated(kEmptyLine, 9));

  console([] { logFormattedResults(); });

  EXPECT_EQ(readFile(logFile(kHistory)), repeated(kEmptyLine, 10));
  EXPECT_FALSE(fileExists("nul"));

  std::filesystem::create_directory(LOG_PATH_ARCHIVE);
  console([] { logFormattedResults(); });

  EXPECT_FALSE(fileExists(logFile(kHistory)));
  EXPECT_EQ(readFile(archiveFile(kArchived)), repeated(kEmptyLine, 11));
}

}  // namespace

#include "history_files.h"

#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;

constexpr char kLaterStamp[] = "20261116T054007";

void useLogDirectory(const char* path) {
  formatInto(LOG_PATH, "%s", path);
  formatInto(LOG_PATH_ARCHIVE, "%sarchive/", path);
}

class HistoryAppend : public RunFixture {};

TEST_F(HistoryAppend, NamesVersionAndDirectionInBothFiles) {
  const struct {
    int version;
    bool reverse;
    const char* command;
  } cases[] = {
      {3, false, "cat /l/iperf3_latest_forward_csv.log >> /l/iperf3_history_forward_csv.log\n"},
      {3, true, "cat /l/iperf3_latest_reverse_csv.log >> /l/iperf3_history_reverse_csv.log\n"},
      {2, false, "cat /l/iperf2_latest_forward_csv.log >> /l/iperf2_history_forward_csv.log\n"},
      {-4, true, "cat /l/iperf-4_latest_reverse_csv.log >> /l/iperf-4_history_reverse_csv.log\n"}};
  useLogDirectory("/l/");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    fakeHost.commands.clear();

    const std::string text = console([&] { read_latest_iperf_log_file(c.version, c.reverse); });

    EXPECT_THAT(fakeHost.commands, ElementsAre(c.command));
    EXPECT_STREQ(cmd, c.command);
    EXPECT_EQ(text, "");
  }
}

TEST_F(HistoryAppend, PrintsItsCommandBeforeItRunsWithHistoryPrinting) {
  useLogDirectory("/l/");
  ConfigurationParameters.debugPrintHistory = true;
  fakeHost.onCommand = [](const std::string&) { std::printf("ran\n"); };

  const std::string text = console([] { read_latest_iperf_log_file(3, false); });

  EXPECT_EQ(text,
            "history file command: cat /l/iperf3_latest_forward_csv.log >> "
            "/l/iperf3_history_forward_csv.log\n\nran\n");
}

TEST_F(HistoryAppend, IsPrintedByNoOtherSwitch) {
  flipPrintsBut(&Configuration::debugPrintHistory);

  EXPECT_EQ(console([] { read_latest_iperf_log_file(3, true); }), "");
}

TEST_F(HistoryAppend, GivesTheStatusOfTheShellBack) {
  fakeHost.shellStatus = 256;

  EXPECT_EQ(read_latest_iperf_log_file(3, false), 256);
}

class LineCount : public RunFixture {};

TEST_F(LineCount, IncludesALastLineWithoutANewline) {
  const struct {
    const char* text;
    unsigned lines;
  } cases[] = {
      {"", 0},     {"\n", 1},         {"a", 1},      {"a\n", 1},
      {"a\nb", 2}, {"a\r\nb\r\n", 2}, {"\n\n\n", 3}, {"1\n2\n3\n4\n5\n6\n7\n8\n9\n10", 10}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    writeFile("history.log", c.text);

    EXPECT_EQ(countLines("history.log"), c.lines);
  }
}

TEST_F(LineCount, IsZeroWithoutAReadableFile) {
  std::filesystem::create_directory("directory.log");

  EXPECT_EQ(countLines("missing.log"), 0U);
  EXPECT_EQ(countLines("directory.log"), 0U);
}

class TextFile : public RunFixture {};

TEST_F(TextFile, IsReplacedOrAppendedTo) {
  EXPECT_TRUE(writeText("file.log", "a", "one\n"));
  EXPECT_EQ(readFile("file.log"), "one\n");

  EXPECT_TRUE(writeText("file.log", "a", "two %s\n"));
  EXPECT_EQ(readFile("file.log"), "one\ntwo %s\n");

  EXPECT_TRUE(writeText("file.log", "w", "3\n"));
  EXPECT_EQ(readFile("file.log"), "3\n");

  EXPECT_TRUE(writeText("file.log", "w", ""));
  EXPECT_EQ(readFile("file.log"), "");
}

TEST_F(TextFile, IsSkippedSilentlyWhenItCannotBeOpened) {
  EXPECT_EQ(console([] { EXPECT_FALSE(writeText("missing/file.log", "a", "text\n")); }), "");

  EXPECT_FALSE(fileExists("missing"));
}

class ArchiveMove : public RunFixture {
 protected:
  /// Returns what the move printed.
  static std::string move(TEST_TYPE type, const std::string& path, unsigned version, bool reverse) {
    return console([&] { writeDatedLogFile(type, path.c_str(), version, reverse); });
  }
};

TEST_F(ArchiveMove, NamesKindDirectionAndTheStampFromBefore) {
  const struct {
    TEST_TYPE type;
    unsigned version;
    bool reverse;
    const char* command;
  } cases[] = {
      {TEST_TYPE_PING, 0, false,
       "(mv  \"/l/x.log\" \"/l/archive/ping_history_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_PING, 3, true,
       "(mv  \"/l/x.log\" \"/l/archive/ping_history_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_IPERF, 2, false,
       "(mv  \"/l/x.log\" \"/l/archive/iperf2_history_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_IPERF, 2, true,
       "(mv  \"/l/x.log\" \"/l/archive/iperf2_history_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_IPERF, 3, false,
       "(mv  \"/l/x.log\" \"/l/archive/iperf3_history_forward_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_IPERF, 3, true,
       "(mv  \"/l/x.log\" \"/l/archive/iperf3_history_reverse_20261116T054000.log\") 2>nul\n"},
      {TEST_TYPE_RESULTS, 0, false,
       "mv  /l/x.log /l/archive/connection_test_results_history_20261116T054000.log\n"},
      {TEST_TYPE_RESULTS, 3, true,
       "mv  /l/x.log /l/archive/connection_test_results_history_20261116T054000.log\n"}};
  useLogDirectory("/l/");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    fakeHost.commands.clear();
    formatInto(currentTimeStamp, "%s", kStartStamp);
    fakeHost.now = kStartTime + 7;

    const std::string text = move(c.type, "/l/x.log", c.version, c.reverse);

    EXPECT_THAT(fakeHost.commands, ElementsAre(c.command));
    EXPECT_EQ(text, std::string(c.command) + "\n");
    EXPECT_STREQ(currentTimeStamp, kLaterStamp);
  }
}

TEST_F(ArchiveMove, RunsTheCommandBeforeAgainForAnUnknownKind) {
  const struct {
    TEST_TYPE type;
    unsigned version;
  } cases[] = {{TEST_TYPE_IPERF, 4},
               {TEST_TYPE_IPERF, 1},
               {TEST_TYPE_IPERF, 0},
               {static_cast<TEST_TYPE>(3), 2},
               {static_cast<TEST_TYPE>(3), 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.type << ", version " << c.version);
    fakeHost.commands.clear();
    formatInto(cmd, "cat a >> b\n");
    formatInto(currentTimeStamp, "%s", kStartStamp);
    fakeHost.now = kStartTime + 7;

    const std::string text = move(c.type, "/x.log", c.version, false);

    EXPECT_THAT(fakeHost.commands, ElementsAre("cat a >> b\n"));
    EXPECT_EQ(text, "cat a >> b\n\n");
    EXPECT_STREQ(currentTimeStamp, kLaterStamp);
  }
}

TEST_F(ArchiveMove, RefreshesTheStampThenRunsThenPrints) {
  fakeHost.runsCommands = true;
  fakeHost.now = kStartTime + 7;
  std::string stampInCommand;
  fakeHost.onCommand = [&](const std::string&) {
    stampInCommand = currentTimeStamp;
    fakeHost.now += 60;
  };
  formatInto(cmd, "echo moved\n");

  const std::string text = move(TEST_TYPE_IPERF, "/x.log", 4, false);

  EXPECT_EQ(stampInCommand, kLaterStamp);
  EXPECT_STREQ(currentTimeStamp, kLaterStamp);
  EXPECT_EQ(text, "moved\necho moved\n\n");
}

TEST_F(ArchiveMove, LeavesTheHistoryInPlaceAndItsErrorInNulWhenItFails) {
  fakeHost.runsCommands = true;
  std::filesystem::remove(LOG_PATH_ARCHIVE);
  writeFile(logFile("ping_history.log"), "one\n");

  move(TEST_TYPE_PING, logFile("ping_history.log"), 0, false);

  EXPECT_EQ(readFile(logFile("ping_history.log")), "one\n");
  EXPECT_NE(readFile("nul"), "");
}

TEST_F(ArchiveMove, KeepsABlankOfThePathTogetherForAllButTheResults) {
  fakeHost.runsCommands = true;
  std::filesystem::create_directories("a log/archive");
  useLogDirectory("a log/");
  writeFile("a log/ping_history.log", "ping\n");
  writeFile("a log/connection_test_results_history.log", "result\n");

  move(TEST_TYPE_PING, "a log/ping_history.log", 0, false);
  move(TEST_TYPE_RESULTS, "a log/connection_test_results_history.log", 0, false);

  EXPECT_EQ(readFile("a log/archive/ping_history_20261116T054000.log"), "ping\n");
  EXPECT_EQ(readFile("a log/connection_test_results_history.log"), "result\n");
  EXPECT_FALSE(fileExists("a log/archive/connection_test_results_history_20261116T054000.log"));
}

}  // namespace

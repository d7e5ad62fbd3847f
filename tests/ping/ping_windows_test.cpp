#include "ping/ping_windows.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using testing::IsEmpty;

constexpr char kTrialOutput[] = "/tmp/ping_latest.log";

struct Case {
  const char* text;
  const char* latency;
  const char* numbers;  // minimum, average, maximum
};

// What both parsers make of a line.
constexpr Case kLines[] = {
    {"    Minimum = 12ms, Maximum = 20ms, Average = 15ms", "15", "12,15,20"},
    {"    Minimum = 12ms, Maximum = 20ms, Average = 15ms\r", "15", "12,15,20"},
    {"Minimum = 0ms, Maximum = 1ms, Average = 0ms", "0", "0,0,1"},
    {"Minimum = 12.5ms, Maximum = 20.9ms, Average = 15.9ms", "15", "12,15,20"},
    {"Minimum = 12, Maximum = 20, Average = 15", "15", "12,15,20"},
    {"Minimum = -1ms, Maximum = +2ms, Average = -3ms", "4294967293", "-1,-3,2"},
    {"Minimum =  1ms, Maximum =   2ms, Average = \t3ms", "3", "1,3,2"},
    {"Minimum = 1ms, Maximum = 2147483647ms, Average = -2147483648ms", "2147483648",
     "1,-2147483648,2147483647"},
    // The word stands anywhere, and the labels do not matter.
    {"a = 7ms, b = 9ms, c = 8ms, d = 1ms Minimum", "8", "7,8,9"},
    {"ms = 7ms, Minimums = 9ms, = 8ms", "8", "7,8,9"},
    // The character after the "=" is passed over, whatever it is.
    {"Minimum=_1ms, Maximum =22ms, Average =\t3ms", "3", "1,3,2"},
    // A pass without a "=" leaves its value at 0.
    {"Minimum", "0", "0,0,0"},
    {"Minimum = 4ms", "0", "4,0,0"},
    {"Minimum = 4ms, Maximum = 6ms", "0", "4,0,6"}};

constexpr const char* kOtherLines[] = {
    "",
    "\r",
    "Minimu",
    "minimum = 12ms, Maximum = 20ms, Average = 15ms",
    "MINIMUM = 12ms, Maximum = 20ms, Average = 15ms",
    "Minimal = 12ms, Maximum = 20ms, Average = 15ms",
    "Reply from 192.168.1.10: bytes=32 time=12ms TTL=64",
    "round-trip min/avg/max/stddev = 14.123/15.456/17.789/1.234 ms"};

constexpr const char* kLinesWithoutNumber[] = {"Minimum =",
                                               "Minimum = ",
                                               "Minimum = ms",
                                               "Minimum = x12ms",
                                               "Minimum =9",
                                               "Minimum = 1ms, Maximum = xms, Average = 3ms",
                                               "Minimum = 1ms, Maximum = 2ms, Average ="};

constexpr const char* kLinesPast32Bits[] = {
    "Minimum = 2147483648ms, Maximum = 2ms, Average = 3ms",
    "Minimum = 1ms, Maximum = -2147483649ms, Average = 3ms",
    "Minimum = 1ms, Maximum = 2ms, Average = 99999999999999999999ms"};

/// "1,3,2" as a history line shows it: "1.000,3.000,2.000".
std::string withDecimals(const std::string& numbers) {
  std::string text;
  for (const char character : numbers) {
    text += character == ',' ? ".000," : std::string(1, character);
  }
  return text + ".000";
}

class WindowsPing : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(pingStartTimeStamp, "20261116T053950");
  }

  static std::string outputPath() { return logFile("\\ping_latest.log"); }

  /// Reads `output` as the latest ping output and returns what that printed.
  static std::string read(const std::string& output) {
    writeFile(outputPath(), output);
    return console(read_latest_ping_log_file_win);
  }

  static std::string history() { return readFile(logFile("ping_history.log")); }
};

TEST_F(WindowsPing, IsReadFromARealOutput) {
  EXPECT_EQ(read(readFile(testData("ping/windows_reply.log"))), "");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 15, write (0), read (0)");
  EXPECT_EQ(history(), "20261116T053950,12.000,15.000,20.000,0.000\n");
}

TEST_F(WindowsPing, IsFoundUnderTheLongestPath) {
  useLongestLogDirectory();

  read("Minimum = 12ms, Maximum = 20ms, Average = 15ms\n");

  EXPECT_EQ(history(), "20261116T053950,12.000,15.000,20.000,0.000\n");
}

TEST_F(WindowsPing, RunsNoCommand) {
  read(readFile(testData("ping/windows_reply.log")));

  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(WindowsPing, WithoutAReplyMeasuresNothing) {
  EXPECT_EQ(read(readFile(testData("ping/windows_no_reply.log"))), "");

  EXPECT_EQ(resultsText(), kNoResults);
  EXPECT_FALSE(fileExists(logFile("ping_history.log")));
}

TEST_F(WindowsPing, TracesEachPassWhenAskedTo) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("    Minimum = 12ms, Maximum = 20ms, Average = 15ms\n"),
            "line 564 line=    Minimum = 12ms, Maximum = 20ms, Average = 15ms\n"
            "ms found at: 16\n"
            "line:12ms, Maximum = 20ms, Average = 15ms\n"
            "line:12ms, Maximum = 20ms, Average = 15ms\n"
            "time:12\n"
            "ms found at: 2\n"
            "line:20ms, Average = 15ms\n"
            "line:20ms, Average = 15ms\n"
            "time:20\n"
            "ms found at: 2\n"
            "line:15ms\n"
            "line:15ms\n"
            "time:15\n"
            "ping min = 12.000000 avg = 15.000000 max = 20.000000\n"
            "ping start time 20261116T053950 min 12.000000 avg 15.000000 max 20.000000 stddev "
            "0.000000\n");
}

TEST_F(WindowsPing, TracesEveryLineUnderTheSameNumber) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("\nMin\r\nReply: time=12ms\nPing %s"),
            "line 564 line=\n"
            "line 564 line=Min\r\n"
            "line 564 line=Reply: time=12ms\n"
            "line 564 line=Ping %s\n");
}

TEST_F(WindowsPing, TracesAPassWithoutAnEqualsSignByThePositionOnly) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("Minimum = 4\n"),
            "line 564 line=Minimum = 4\n"
            "ms found at: 18446744073709551615\n"
            "line:4\n"
            "line:4\n"
            "time:4\n"
            "ms found at: 18446744073709551615\n"
            "ms found at: 18446744073709551615\n"
            "ping min = 4.000000 avg = 0.000000 max = 0.000000\n"
            "ping start time 20261116T053950 min 4.000000 avg 0.000000 max 0.000000 stddev "
            "0.000000\n");
}

TEST_F(WindowsPing, SummaryHasItsTimesBehindTheFirstThreeEqualsSigns) {
  for (const Case& c : kLines) {
    SCOPED_TRACE(c.text);
    std::filesystem::remove(logFile("ping_history.log"));

    read(c.text);

    EXPECT_EQ(resultsText(),
              std::string("date 20261116T054000, latency ") + c.latency + ", write (0), read (0)");
    EXPECT_EQ(history(), "20261116T053950," + withDecimals(c.numbers) + ",0.000\n");
  }
}

TEST_F(WindowsPing, OtherLinesAreIgnored) {
  for (const char* const text : kOtherLines) {
    SCOPED_TRACE(text);

    EXPECT_EQ(read(text), "");

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(WindowsPing, SummaryWithoutANumberEndsTheRun) {
  for (const char* const text : kLinesWithoutNumber) {
    SCOPED_TRACE(text);
    writeFile(outputPath(), text);

    EXPECT_THROW(read_latest_ping_log_file_win(), std::invalid_argument);

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(WindowsPing, SummaryPast32BitsEndsTheRun) {
  for (const char* const text : kLinesPast32Bits) {
    SCOPED_TRACE(text);
    writeFile(outputPath(), text);

    EXPECT_THROW(read_latest_ping_log_file_win(), std::out_of_range);

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(WindowsPing, SummariesCountEachAndKeepWhatTheNextDoesNotSet) {
  read("Minimum = 1ms, Maximum = 2ms, Average = 3ms\n\nMinimum = 4ms\n");

  EXPECT_EQ(history(),
            "20261116T053950,1.000,3.000,2.000,0.000\n20261116T053950,4.000,3.000,2.000,0.000\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 3, write (0), read (0)");
}

TEST_F(WindowsPing, SummaryOfAnotherParseIsForgotten) {
  read("Minimum = 1ms, Maximum = 2ms, Average = 3ms\n");
  std::filesystem::remove(logFile("ping_history.log"));

  read("Minimum = 4ms\n");

  EXPECT_EQ(history(), "20261116T053950,4.000,0.000,0.000,0.000\n");
}

TEST_F(WindowsPing, LatencyOfTheLaterSummaryCounts) {
  read("Minimum = 1ms, Maximum = 2ms, Average = 3ms\nMinimum = 4ms, Maximum = 6ms, Average = 5ms");

  EXPECT_EQ(history(),
            "20261116T053950,1.000,3.000,2.000,0.000\n20261116T053950,4.000,5.000,6.000,0.000\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 5, write (0), read (0)");
}

TEST_F(WindowsPing, IsReadUnderABackslashOnly) {
  writeFile(logFile("ping_latest.log"), readFile(testData("ping/windows_reply.log")));
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(read_latest_ping_log_file_win), "");

  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(WindowsPing, UnderWhoseNameADirectoryStandsMeasuresNothing) {
  std::filesystem::create_directory(outputPath());
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(read_latest_ping_log_file_win), "");

  EXPECT_EQ(resultsText(), kNoResults);
}

class WindowsPingTrial : public RunFixture {
 protected:
  void TearDown() override {
    std::filesystem::remove_all(kTrialOutput);
    RunFixture::TearDown();
  }

  /// Reads `output` as the fixed file and returns what that printed.
  static std::string read(const std::string& output) {
    writeFile(kTrialOutput, output);
    std::string printed = console(read_latest_ping_log_file_wintest);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
    EXPECT_THAT(fakeHost.commands, IsEmpty());
    return printed;
  }
};

TEST_F(WindowsPingTrial, ReadsARealOutputAndWritesNoHistory) {
  EXPECT_EQ(read(readFile(testData("ping/windows_reply.log"))), "");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 15, write (0), read (0)");
}

TEST_F(WindowsPingTrial, WithoutAReplyMeasuresNothing) {
  EXPECT_EQ(read(readFile(testData("ping/windows_no_reply.log"))), "");

  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(WindowsPingTrial, TracesNothingButTheSummary) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read(readFile(testData("ping/windows_reply.log")) + "Minimum\nMin\n"),
            "ping min = 12.000000 avg = 15.000000 max = 20.000000\n"
            "ping min = 12.000000 avg = 15.000000 max = 20.000000\n");
}

TEST_F(WindowsPingTrial, TakesTheTimesBehindTheFirstThreeEqualsSigns) {
  ConfigurationParameters.debugPrintPing = true;
  for (const Case& c : kLines) {
    SCOPED_TRACE(c.text);
    double min = 0.0;
    double avg = 0.0;
    double max = 0.0;
    ASSERT_EQ(std::sscanf(c.numbers, "%lf,%lf,%lf", &min, &avg, &max), 3);
    char trace[kLineCapacity];
    formatInto(trace, "ping min = %f avg = %f max = %f\n", min, avg, max);

    EXPECT_EQ(read(c.text), trace);

    EXPECT_EQ(resultsText(),
              std::string("date 20261116T054000, latency ") + c.latency + ", write (0), read (0)");
  }
}

TEST_F(WindowsPingTrial, IgnoresOtherLines) {
  ConfigurationParameters.debugPrintPing = true;
  for (const char* const text : kOtherLines) {
    SCOPED_TRACE(text);

    EXPECT_EQ(read(text), "");

    EXPECT_EQ(resultsText(), kNoResults);
  }
}

TEST_F(WindowsPingTrial, EndsTheRunWithoutANumber) {
  for (const char* const text : kLinesWithoutNumber) {
    SCOPED_TRACE(text);
    writeFile(kTrialOutput, text);

    EXPECT_THROW(read_latest_ping_log_file_wintest(), std::invalid_argument);

    EXPECT_EQ(resultsText(), kNoResults);
  }
}

TEST_F(WindowsPingTrial, EndsTheRunPast32Bits) {
  for (const char* const text : kLinesPast32Bits) {
    SCOPED_TRACE(text);
    writeFile(kTrialOutput, text);

    EXPECT_THROW(read_latest_ping_log_file_wintest(), std::out_of_range);

    EXPECT_EQ(resultsText(), kNoResults);
  }
}

TEST_F(WindowsPingTrial, LatencyOfTheLaterSummaryCounts) {
  read("Minimum = 1ms, Maximum = 2ms, Average = 3ms\nMinimum = 4ms, Maximum = 6ms, Average = 5ms");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 5, write (0), read (0)");
}

TEST_F(WindowsPingTrial, ReadsTheSameFileWhateverTheLogDirectory) {
  writeFile(logFile("\\ping_latest.log"), "Minimum = 1ms, Maximum = 2ms, Average = 3ms\n");
  writeFile(logFile("ping_latest.log"), "Minimum = 1ms, Maximum = 2ms, Average = 3ms\n");

  read("Minimum = 4ms, Maximum = 6ms, Average = 5ms");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 5, write (0), read (0)");
}

TEST_F(WindowsPingTrial, MeasuresNothingWithoutAFile) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(read_latest_ping_log_file_wintest), "");

  EXPECT_EQ(resultsText(), kNoResults);
}

}  // namespace

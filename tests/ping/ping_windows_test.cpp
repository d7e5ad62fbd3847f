#include "ping/ping_windows.h"

#include "run_state.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace {

using testing::IsEmpty;

constexpr char kTrialOutput[] = "/tmp/ping_latest.log";

struct Parser {
  const char* name;
  void (*read)();
  bool isTrial;
};
constexpr Parser kParser = {"Parser", read_latest_ping_log_file_win, false};
constexpr Parser kTrial = {"Trial", read_latest_ping_log_file_wintest, true};

class WindowsPing : public RunFixture, public testing::WithParamInterface<Parser> {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(pingStartTimeStamp, "20261116T053950");
  }

  void TearDown() override {
    std::filesystem::remove_all(kTrialOutput);
    RunFixture::TearDown();
  }

  static std::string outputOf(const Parser& parser) {
    return parser.isTrial ? kTrialOutput : logFile("\\ping_latest.log");
  }

  /// Has `parser` read `output` and returns what that printed.
  static std::string read(const std::string& output, const Parser& parser = GetParam()) {
    writeFile(outputOf(parser), output);
    return console(parser.read);
  }

  /// The lines of the history; "" without one, as the trial leaves it.
  static std::string history() {
    const std::string path = logFile("ping_history.log");
    return fileExists(path) ? readFile(path) : "";
  }

  static void expectNothingMeasured() {
    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_EQ(history(), "");
  }

  /// Expects that reading `output` ends by `exception`, and measures nothing.
  static void expectEnd(const std::string& exception, const std::string& output) {
    SCOPED_TRACE(output);
    writeFile(outputOf(GetParam()), output);

    EXPECT_EQ(endingOf(GetParam().read), exception);

    expectNothingMeasured();
  }
};

INSTANTIATE_TEST_SUITE_P(By, WindowsPing, testing::Values(kParser, kTrial),
                         [](const auto& parser) { return parser.param.name; });

TEST_P(WindowsPing, HasItsTimesBehindTheFirstThreeEqualsSigns) {
  const struct {
    const char* text;
    const char* latency;
    const char* numbers;  // minimum, average, maximum
  } cases[] = {
      {"    Minimum = 12ms, Maximum = 20ms, Average = 15ms", "15", "12.000,15.000,20.000"},
      {"    Minimum = 12ms, Maximum = 20ms, Average = 15ms\r", "15", "12.000,15.000,20.000"},
      {"Minimum = 0ms, Maximum = 1ms, Average = 0ms", "0", "0.000,0.000,1.000"},
      {"Minimum = 12.5ms, Maximum = 20.9ms, Average = 15.9ms", "15", "12.000,15.000,20.000"},
      {"Minimum = 12, Maximum = 20, Average = 15", "15", "12.000,15.000,20.000"},
      {"Minimum = -1ms, Maximum = +2ms, Average = -3ms", "4294967293", "-1.000,-3.000,2.000"},
      {"Minimum =  1ms, Maximum =   2ms, Average = \t3ms", "3", "1.000,3.000,2.000"},
      {"Minimum = 1ms, Maximum = 2147483647ms, Average = -2147483648ms", "2147483648",
       "1.000,-2147483648.000,2147483647.000"},
      // The word stands anywhere, and the labels do not matter.
      {"a = 7ms, b = 9ms, c = 8ms, d = 1ms Minimum", "8", "7.000,8.000,9.000"},
      {"ms = 7ms, Minimums = 9ms, = 8ms", "8", "7.000,8.000,9.000"},
      // The character after the "=" is passed over, whatever it is.
      {"Minimum=_1ms, Maximum =22ms, Average =\t3ms", "3", "1.000,3.000,2.000"},
      // A pass without a "=" leaves its value at 0.
      {"Minimum", "0", "0.000,0.000,0.000"},
      {"Minimum = 4ms", "0", "4.000,0.000,0.000"},
      {"Minimum = 4ms, Maximum = 6ms", "0", "4.000,0.000,6.000"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::filesystem::remove(logFile("ping_history.log"));

    EXPECT_EQ(read(c.text), "");

    EXPECT_EQ(resultsText(),
              std::string("date 20261116T054000, latency ") + c.latency + ", write (0), read (0)");
    EXPECT_EQ(history(),
              GetParam().isTrial ? "" : "20261116T053950," + std::string(c.numbers) + ",0.000\n");
  }
  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_P(WindowsPing, IsMeasuredInNoOtherOutput) {
  for (const std::string& output :
       {std::string(), std::string("\r\n"), std::string("Minimu\n"),
        std::string("minimum = 12ms, Maximum = 20ms, Average = 15ms\n"),
        std::string("MINIMUM = 12ms, Maximum = 20ms, Average = 15ms\n"),
        std::string("Minimal = 12ms, Maximum = 20ms, Average = 15ms\n"),
        std::string("round-trip min/avg/max/stddev = 14.123/15.456/17.789/1.234 ms\n"),
        readFile(testData("ping/windows_no_reply.log"))}) {
    SCOPED_TRACE(output);

    EXPECT_EQ(read(output), "");

    expectNothingMeasured();
  }
}

TEST_P(WindowsPing, EndsTheRunWithoutANumber) {
  for (const char* const text :
       {"Minimum =", "Minimum = ", "Minimum = ms", "Minimum = x12ms", "Minimum =9",
        "Minimum = 1ms, Maximum = xms, Average = 3ms", "Minimum = 1ms, Maximum = 2ms, Average ="}) {
    expectEnd("invalid_argument", text);
  }
}

TEST_P(WindowsPing, EndsTheRunPast32Bits) {
  for (const char* const text :
       {"Minimum = 2147483648ms, Maximum = 2ms, Average = 3ms",
        "Minimum = 1ms, Maximum = -2147483649ms, Average = 3ms",
        "Minimum = 1ms, Maximum = 2ms, Average = 99999999999999999999ms"}) {
    expectEnd("out_of_range", text);
  }
}

TEST_P(WindowsPing, IsReadFromARealOutputInItsOwnFileOnly) {
  const std::string output = readFile(testData("ping/windows_reply.log"));
  writeFile(logFile("ping_latest.log"), output);
  writeFile(outputOf(GetParam().isTrial ? kParser : kTrial), output);

  EXPECT_EQ(console(GetParam().read), "");
  expectNothingMeasured();

  EXPECT_EQ(read(output), "");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 15, write (0), read (0)");
}

TEST_P(WindowsPing, CountsEachSummaryAndKeepsWhatTheNextDoesNotSet) {
  const bool isTrial = GetParam().isTrial;

  read(
      "Minimum = 1ms, Maximum = 2ms, Average = 3ms\n\nMinimum = 4ms, Maximum = 6ms, Average = 5ms");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 5, write (0), read (0)");

  read("Minimum = 1ms, Maximum = 2ms, Average = 3ms\nMinimum = 4ms\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 3, write (0), read (0)");

  read("Minimum = 4ms\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 0, write (0), read (0)");
  EXPECT_EQ(history(), isTrial ? ""
                               : "20261116T053950,1.000,3.000,2.000,0.000\n"
                                 "20261116T053950,4.000,5.000,6.000,0.000\n"
                                 "20261116T053950,1.000,3.000,2.000,0.000\n"
                                 "20261116T053950,4.000,3.000,2.000,0.000\n"
                                 "20261116T053950,4.000,0.000,0.000,0.000\n");
}

TEST_F(WindowsPing, IsFoundUnderTheLongestPath) {
  useLongestLogDirectory();

  read("Minimum = 12ms, Maximum = 20ms, Average = 15ms\n", kParser);

  EXPECT_EQ(history(), "20261116T053950,12.000,15.000,20.000,0.000\n");
}

TEST_F(WindowsPing, TracesEachLineAndEachPassWhenAskedTo) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("\nReply: time=12ms %s\r\n"
                 "    Minimum = 12ms, Maximum = 20ms, Average = 15ms\n",
                 kParser),
            "line 564 line=\n"
            "line 564 line=Reply: time=12ms %s\r\n"
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

TEST_F(WindowsPing, TracesAPassWithoutAnEqualsSignByThePositionOnly) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("Minimum = 4\n", kParser),
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

TEST_F(WindowsPing, TracesItsSummariesOnlyInTheTrial) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read(readFile(testData("ping/windows_reply.log")) + "Minimum\nMin\n", kTrial),
            "ping min = 12.000000 avg = 15.000000 max = 20.000000\n"
            "ping min = 12.000000 avg = 15.000000 max = 20.000000\n");
}

}  // namespace

#include "results/result_line.h"

#include "run_state.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned long long kLargestRate = ULLONG_MAX;

void measureLatency(std::uint32_t ms) {
  formatInto(outputResults.dateTime, "20260102T030405");
  outputResults.latencyValid = true;
  outputResults.latencyMs = ms;
}

void measureWriteRate(unsigned long long bps) {
  outputResults.writeRateValid = true;
  outputResults.writeRateBps = bps;
}

void measureReadRate(unsigned long long bps) {
  outputResults.readRateValid = true;
  outputResults.readRateBps = bps;
}

class ResultLine : public RunFixture {
 protected:
  static std::string report() {
    return console([] { logFormattedResults(); });
  }
  static std::string latest() { return readFile(logFile("connection_test_results.txt")); }
  static std::string history() { return readFile(logFile("connection_test_results_history.log")); }
};

TEST_F(ResultLine, ShowsTheRatesInTheConfiguredUnit) {
  const struct {
    int format;
    const char* line;
  } cases[] = {{1,
                "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 943718400 bps, "
                "Read Transfer Rate = 1000000000 bps"},
               {2,
                "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 900 Mebibps, "
                "Read Transfer Rate = 953 Mebibps"},
               {3,
                "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 943 Megabps, "
                "Read Transfer Rate = 1000 Megabps"}};
  std::string allLines;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    measureLatency(15);
    measureWriteRate(943'718'400);
    measureReadRate(1'000'000'000);
    ConfigurationParameters.outputFormat = c.format;

    EXPECT_EQ(report(), std::string(c.line) + "\n");

    allLines += std::string(c.line) + " \n";
    EXPECT_EQ(latest(), std::string(c.line) + " \n");
    EXPECT_EQ(history(), allLines);
  }
}

TEST_F(ResultLine, DropsTheFractionOfARate) {
  const struct {
    int format;
    unsigned long long writeRate;
    unsigned long long readRate;
    const char* line;
  } cases[] = {{2, 1'048'575, 1'048'576,
                "Date = , Latency = 0 ms, Write Transfer Rate = 0 Mebibps, "
                "Read Transfer Rate = 1 Mebibps\n"},
               {3, 999'999, 1'000'000,
                "Date = , Latency = 0 ms, Write Transfer Rate = 0 Megabps, "
                "Read Transfer Rate = 1 Megabps\n"},
               {2, kLargestRate, 0,
                "Date = , Latency = 0 ms, Write Transfer Rate = 17592186044415 Mebibps, "
                "Read Transfer Rate = 0 Mebibps\n"},
               {3, 0, kLargestRate,
                "Date = , Latency = 0 ms, Write Transfer Rate = 0 Megabps, "
                "Read Transfer Rate = 18446744073709 Megabps\n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    measureWriteRate(c.writeRate);
    measureReadRate(c.readRate);
    ConfigurationParameters.outputFormat = c.format;

    EXPECT_EQ(report(), c.line);
  }
}

TEST_F(ResultLine, ShowsAMissingLatencyAsZeroAndWritesItAsNotAvailable) {
  measureWriteRate(943'718'400);
  measureReadRate(1'000'000'000);

  EXPECT_EQ(report(),
            "Date = , Latency = 0 ms, Write Transfer Rate = 943718400 bps, "
            "Read Transfer Rate = 1000000000 bps\n");

  EXPECT_EQ(latest(),
            "Date = , Latency = n/a ms, Write Transfer Rate = 943718400 bps, "
            "Read Transfer Rate = 1000000000 bps \n");
}

TEST_F(ResultLine, ShowsAMissingReadRateAsZeroAndWritesItAsNotAvailable) {
  measureLatency(15);
  measureWriteRate(943'718'400);
  ConfigurationParameters.outputFormat = 2;

  EXPECT_EQ(report(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 900 Mebibps, "
            "Read Transfer Rate = 0 Mebibps\n");

  EXPECT_EQ(latest(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 900 Mebibps, "
            "Read Transfer Rate = n/a Mebibps \n");
}

TEST_F(ResultLine, ShowsAMissingWriteRateAsZeroAndWritesItAsNotAvailable) {
  measureLatency(15);
  measureReadRate(943'718'400);
  ConfigurationParameters.outputFormat = 3;

  EXPECT_EQ(report(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 0 Megabps, "
            "Read Transfer Rate = 943 Megabps\n");

  EXPECT_EQ(latest(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = n/a Megabps, "
            "Read Transfer Rate = 943 Megabps \n");
}

TEST_F(ResultLine, ShowsNumbersThatAreNotValidOnTheConsoleOnly) {
  outputResults.latencyMs = 7;
  outputResults.writeRateBps = 8;
  outputResults.readRateBps = 9;

  EXPECT_EQ(report(),
            "Date = , Latency = 7 ms, Write Transfer Rate = 8 bps, Read Transfer Rate = 9 bps\n");

  EXPECT_EQ(latest(),
            "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
}

TEST_F(ResultLine, WritesAMeasuredZeroAsANumber) {
  measureLatency(0);
  measureWriteRate(0);
  measureReadRate(0);

  report();

  EXPECT_EQ(latest(),
            "Date = 20260102T030405, Latency = 0 ms, Write Transfer Rate = 0 bps, "
            "Read Transfer Rate = 0 bps \n");
}

TEST_F(ResultLine, ShowsTheLargestLatencyUnsigned) {
  measureLatency(UINT32_MAX);

  EXPECT_EQ(report(),
            "Date = 20260102T030405, Latency = 4294967295 ms, Write Transfer Rate = 0 bps, "
            "Read Transfer Rate = 0 bps\n");

  EXPECT_EQ(latest(),
            "Date = 20260102T030405, Latency = 4294967295 ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
}

TEST_F(ResultLine, IsNotAvailableAtAllTheSecondTime) {
  measureLatency(15);
  measureWriteRate(1);
  measureReadRate(2);

  const std::string first = report();
  const std::string second = report();

  EXPECT_EQ(first,
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 1 bps, "
            "Read Transfer Rate = 2 bps\n");
  EXPECT_EQ(second,
            "Date = , Latency = 0 ms, Write Transfer Rate = 0 bps, Read Transfer Rate = 0 bps\n");
  EXPECT_EQ(latest(),
            "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
  EXPECT_EQ(history(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 1 bps, "
            "Read Transfer Rate = 2 bps \n"
            "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = n/a bps \n");
}

TEST_F(ResultLine, ClearsAllOfTheRecordButTheRestOfItsDate) {
  measureLatency(15);
  measureWriteRate(1);
  measureReadRate(2);

  report();

  EXPECT_FALSE(outputResults.latencyValid);
  EXPECT_EQ(outputResults.latencyMs, 0U);
  EXPECT_FALSE(outputResults.writeRateValid);
  EXPECT_EQ(outputResults.writeRateBps, 0U);
  EXPECT_FALSE(outputResults.readRateValid);
  EXPECT_EQ(outputResults.readRateBps, 0U);
  EXPECT_EQ(std::string(outputResults.dateTime, 16), std::string("\0"
                                                                 "0260102T030405\0",
                                                                 16));
}

TEST_F(ResultLine, IsNeitherPrintedNorWrittenForAnUnknownFormat) {
  for (const int format : {0, 4, -1}) {
    SCOPED_TRACE(format);
    writeFile(logFile("connection_test_results.txt"), "before\n");
    writeFile(logFile("connection_test_results_history.log"), "before\n");
    measureLatency(15);
    ConfigurationParameters.outputFormat = format;

    EXPECT_EQ(report(), "");

    EXPECT_EQ(latest(), "");
    EXPECT_EQ(history(), "before\n");
    EXPECT_FALSE(outputResults.latencyValid);
  }
}

TEST_F(ResultLine, StillReachesItsHistoryWhenItsFileCannotBeOpened) {
  std::filesystem::create_directory(logFile("connection_test_results.txt"));
  measureWriteRate(5);

  EXPECT_EQ(report(),
            "Date = , Latency = 0 ms, Write Transfer Rate = 5 bps, Read Transfer Rate = 0 bps\n");

  EXPECT_EQ(history(),
            "Date = , Latency = n/a ms, Write Transfer Rate = 5 bps, "
            "Read Transfer Rate = n/a bps \n");
  EXPECT_FALSE(outputResults.writeRateValid);
}

TEST_F(ResultLine, StillReachesItsFileWhenItsHistoryCannotBeOpened) {
  std::filesystem::create_directory(logFile("connection_test_results_history.log"));
  measureReadRate(5);

  EXPECT_EQ(report(),
            "Date = , Latency = 0 ms, Write Transfer Rate = 0 bps, Read Transfer Rate = 5 bps\n");

  EXPECT_EQ(latest(),
            "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, "
            "Read Transfer Rate = 5 bps \n");
  EXPECT_FALSE(outputResults.readRateValid);
  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(ResultLine, IsStillPrintedWithoutALogDirectory) {
  std::filesystem::remove_all(LOG_PATH);
  measureLatency(15);

  EXPECT_EQ(report(),
            "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 0 bps, "
            "Read Transfer Rate = 0 bps\n");

  EXPECT_FALSE(fileExists(LOG_PATH));
  EXPECT_FALSE(outputResults.latencyValid);
  EXPECT_THAT(fakeHost.commands, IsEmpty());
}

TEST_F(ResultLine, FillsItsBufferUncut) {
  measureLatency(15);
  measureWriteRate(12'345'678'901'234);
  measureReadRate(12'345'678'901'234'567);

  report();

  const std::string line =
      "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 12345678901234 bps, "
      "Read Transfer Rate = 12345678901234567 bps \n";
  EXPECT_EQ(line.size(), 127U);
  EXPECT_EQ(latest(), line);
  EXPECT_EQ(history(), line);
}

TEST_F(ResultLine, IsCutInTheFilesWhenItsBufferIsTooShortButKeepsItsNewline) {
  measureLatency(UINT32_MAX);
  measureWriteRate(kLargestRate);
  measureReadRate(kLargestRate);

  EXPECT_EQ(report(),
            "Date = 20260102T030405, Latency = 4294967295 ms, "
            "Write Transfer Rate = 18446744073709551615 bps, "
            "Read Transfer Rate = 18446744073709551615 bps\n");

  const std::string line =
      "Date = 20260102T030405, Latency = 4294967295 ms, "
      "Write Transfer Rate = 18446744073709551615 bps, Read Transfer Rate = 18446744\n";
  EXPECT_EQ(line.size(), 127U);
  EXPECT_EQ(latest(), line);
  EXPECT_EQ(history(), line);
}

TEST_F(ResultLine, IsThereAndTheRecordClearedBeforeTheHistoryMoves) {
  writeFile(logFile("connection_test_results_history.log"), repeated("before\n", 9));
  measureWriteRate(5);
  std::string historyAtMove;
  fakeHost.onCommand = [&](const std::string&) {
    historyAtMove = history();
    EXPECT_FALSE(outputResults.writeRateValid);
  };

  const std::string text = report();

  const std::string move = "mv  " + logFile("connection_test_results_history.log") + " " +
                           archiveFile("connection_test_results_history_20261116T054000.log\n");
  EXPECT_THAT(fakeHost.commands, ElementsAre(move));
  EXPECT_EQ(text,
            "Date = , Latency = 0 ms, Write Transfer Rate = 5 bps, Read Transfer Rate = 0 bps\n" +
                move + "\n");
  EXPECT_EQ(historyAtMove, repeated("before\n", 9) +
                               "Date = , Latency = n/a ms, Write Transfer Rate = 5 bps, "
                               "Read Transfer Rate = n/a bps \n");
}

}  // namespace

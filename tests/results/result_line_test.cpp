#include "results/result_line.h"

#include "run_state.h"
#include "support/run_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;

constexpr char kNothing[] =
    "Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps \n";
constexpr char kAll[] =
    "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 1 bps, "
    "Read Transfer Rate = 2 bps";

class ResultLine : public RunFixture {
 protected:
  /// Reports `results` and returns what that printed.
  static std::string report(const Results& results) {
    outputResults = results;
    return console(logFormattedResults);
  }

  static std::string latest() { return readFile(logFile("connection_test_results.txt")); }
  static std::string history() { return readFile(logFile("connection_test_results_history.log")); }
};

const Results kMeasured = {"20260102T030405", true, 15, true, 1, true, 2};

TEST_F(ResultLine, ShowsWholeRatesInTheConfiguredUnit) {
  const struct {
    int format;
    unsigned long long writeRate;
    unsigned long long readRate;
    const char* rates;
  } cases[] = {
      {1, 943'718'400, ULLONG_MAX,
       "Write Transfer Rate = 943718400 bps, "
       "Read Transfer Rate = 18446744073709551615 bps"},
      {2, 943'718'400, 1'000'000'000,
       "Write Transfer Rate = 900 Mebibps, Read Transfer Rate = 953 Mebibps"},
      {2, 1'048'575, 1'048'576, "Write Transfer Rate = 0 Mebibps, Read Transfer Rate = 1 Mebibps"},
      {2, ULLONG_MAX, 0,
       "Write Transfer Rate = 17592186044415 Mebibps, Read Transfer Rate = 0 Mebibps"},
      {3, 943'718'400, 1'000'000'000,
       "Write Transfer Rate = 943 Megabps, Read Transfer Rate = 1000 Megabps"},
      {3, 999'999, 1'000'000, "Write Transfer Rate = 0 Megabps, Read Transfer Rate = 1 Megabps"},
      {3, 0, ULLONG_MAX,
       "Write Transfer Rate = 0 Megabps, Read Transfer Rate = 18446744073709 Megabps"}};
  std::string allLines;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rates);
    const std::string line = std::string("Date = d, Latency = 0 ms, ") + c.rates;
    ConfigurationParameters.outputFormat = c.format;

    EXPECT_EQ(report({"d", true, 0, true, c.writeRate, true, c.readRate}), line + "\n");

    allLines += line + " \n";
    EXPECT_EQ(latest(), line + " \n");
    EXPECT_EQ(history(), allLines);
  }
}

TEST_F(ResultLine, WritesWhatIsNotValidAsNotAvailableAndPrintsItsNumber) {
  const struct {
    Results results;
    int format;
    const char* printed;
    const char* written;
  } cases[] = {
      {{"", false, 7, true, 8, true, 9},
       1,
       "Date = , Latency = 7 ms, Write Transfer Rate = 8 bps, Read Transfer Rate = 9 bps\n",
       "Date = , Latency = n/a ms, Write Transfer Rate = 8 bps, Read Transfer Rate = 9 bps \n"},
      {{"d", true, 15, false, 1 << 20, true, 2 << 20},
       2,
       "Date = d, Latency = 15 ms, Write Transfer Rate = 1 Mebibps, "
       "Read Transfer Rate = 2 Mebibps\n",
       "Date = d, Latency = 15 ms, Write Transfer Rate = n/a Mebibps, "
       "Read Transfer Rate = 2 Mebibps \n"},
      {{"d", true, UINT32_MAX, true, 1'000'000, false, 0},
       3,
       "Date = d, Latency = 4294967295 ms, Write Transfer Rate = 1 Megabps, "
       "Read Transfer Rate = 0 Megabps\n",
       "Date = d, Latency = 4294967295 ms, Write Transfer Rate = 1 Megabps, "
       "Read Transfer Rate = n/a Megabps \n"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.written);
    ConfigurationParameters.outputFormat = c.format;

    EXPECT_EQ(report(c.results), c.printed);

    EXPECT_EQ(latest(), c.written);
  }
}

TEST_F(ResultLine, IsNotAvailableAtAllTheSecondTime) {
  EXPECT_EQ(report(kMeasured), std::string(kAll) + "\n");
  EXPECT_EQ(console(logFormattedResults),
            "Date = , Latency = 0 ms, Write Transfer Rate = 0 bps, Read Transfer Rate = 0 bps\n");

  EXPECT_EQ(latest(), kNothing);
  EXPECT_EQ(history(), kAll + (" \n" + std::string(kNothing)));
  // All of the record is cleared but the rest of its date.
  EXPECT_EQ(std::string(outputResults.dateTime, 16), std::string("\0"
                                                                 "0260102T030405\0",
                                                                 16));
}

TEST_F(ResultLine, IsNeitherPrintedNorWrittenForAnUnknownFormat) {
  for (const int format : {0, 4, -1}) {
    SCOPED_TRACE(format);
    writeFile(logFile("connection_test_results.txt"), "before\n");
    writeFile(logFile("connection_test_results_history.log"), "before\n");
    ConfigurationParameters.outputFormat = format;

    EXPECT_EQ(report(kMeasured), "");

    EXPECT_EQ(latest(), "");
    EXPECT_EQ(history(), "before\n");
    EXPECT_FALSE(outputResults.latencyValid);
  }
}

TEST_F(ResultLine, IsPrintedAndReachesWhatCanBeOpened) {
  std::filesystem::create_directory(logFile("connection_test_results.txt"));
  EXPECT_EQ(report(kMeasured), std::string(kAll) + "\n");
  EXPECT_EQ(history(), std::string(kAll) + " \n");

  std::filesystem::remove_all(LOG_PATH);
  std::filesystem::create_directories(logFile("connection_test_results_history.log"));
  EXPECT_EQ(report(kMeasured), std::string(kAll) + "\n");
  EXPECT_EQ(latest(), std::string(kAll) + " \n");

  std::filesystem::remove_all(LOG_PATH);
  EXPECT_EQ(report(kMeasured), std::string(kAll) + "\n");
  EXPECT_FALSE(outputResults.latencyValid);
}

TEST_F(ResultLine, IsCutInTheFilesTo127CharactersBeforeItsNewline) {
  const std::string line =
      "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 12345678901234 bps, "
      "Read Transfer Rate = 12345678901234567";
  Results results = kMeasured;
  results.writeRateBps = 12'345'678'901'234;

  results.readRateBps = 12'345'678'901'234'567;
  report(results);
  EXPECT_EQ(latest(), line + " bps \n");
  EXPECT_EQ(latest().size(), 127U);

  results.readRateBps = 1'234'567'890'123'456'789;
  EXPECT_EQ(report(results), line + "89 bps\n");
  EXPECT_EQ(latest(), line + "89 bp\n");
  EXPECT_EQ(history(), line + " bps \n" + line + "89 bp\n");
}

TEST_F(ResultLine, IsThereAndTheRecordClearedBeforeTheHistoryMoves) {
  writeFile(logFile("connection_test_results_history.log"), repeated("before\n", 9));
  std::string historyAtMove;
  fakeHost.onCommand = [&](const std::string&) {
    historyAtMove = history();
    EXPECT_FALSE(outputResults.writeRateValid);
  };
  const std::string move = "mv  " + logFile("connection_test_results_history.log") + " " +
                           archiveFile("connection_test_results_history_20261116T054000.log\n");

  EXPECT_EQ(report(kMeasured), std::string(kAll) + "\n" + move + "\n");

  EXPECT_THAT(fakeHost.commands, ElementsAre(move));
  EXPECT_EQ(historyAtMove, repeated("before\n", 9) + kAll + " \n");
}

}  // namespace

#include "ping/ping_run.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

using testing::ElementsAre;

constexpr char kPingStart[] = "20261116T053950";

class PingRun : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }

  /// Pings and returns the one command line that the shell was given.
  static std::string pingCommand() {
    console(exec_ping);
    EXPECT_EQ(fakeHost.commands.size(), 1U);
    return fakeHost.commands.back();
  }
};

TEST_F(PingRun, PingsTheServerTenTimesThroughTee) {
  const std::string command = pingCommand();

  EXPECT_EQ(command, "ping -c 10 10.0.0.5  | tee  " + logFile("ping_latest.log\n"));
  EXPECT_EQ(cmd, command);
}

TEST_F(PingRun, TakesTheCountAsItIs) {
  const struct {
    std::int32_t count;
    const char* text;
  } cases[] = {{0, "0"}, {-1, "-1"}, {std::numeric_limits<std::int32_t>::max(), "2147483647"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    fakeHost.commands.clear();
    ConfigurationParameters.numPings = c.count;

    EXPECT_EQ(pingCommand(), std::string("ping -c ") + c.text + " 10.0.0.5  | tee  " +
                                 logFile("ping_latest.log\n"));
  }
}

TEST_F(PingRun, PingsAPublicResolverWhenAskedTo) {
  ConfigurationParameters.pingTestServer = true;

  EXPECT_EQ(pingCommand(), "ping -c 10 8.8.8.8  | tee  " + logFile("ping_latest.log\n"));
}

TEST_F(PingRun, LeavesThreeBlanksForAMissingAddress) {
  formatInto(ipaddr, "%s", "");

  EXPECT_EQ(pingCommand(), "ping -c 10   | tee  " + logFile("ping_latest.log\n"));
}

TEST_F(PingRun, TakesTheAddressAsItStands) {
  formatInto(ipaddr, "-h $(x) 'y' %%s");

  EXPECT_EQ(pingCommand(), "ping -c 10 -h $(x) 'y' %s  | tee  " + logFile("ping_latest.log\n"));
}

TEST_F(PingRun, PrintsItsCommandAndAnEmptyLineBeforeThePing) {
  fakeHost.onCommand = [](const std::string&) { std::puts("(ping)"); };

  EXPECT_EQ(console(exec_ping),
            "ping cmd: ping -c 10 10.0.0.5  | tee  " + logFile("ping_latest.log\n\n") + "(ping)\n");
}

TEST_F(PingRun, PrintsItsStartFirstWhenTraced) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(exec_ping),
            "ping start time 20261116T054000\n"
            "ping cmd: ping -c 10 10.0.0.5  | tee  " +
                logFile("ping_latest.log\n\n"));
}

TEST_F(PingRun, StampsItsStart) {
  fakeHost.onCommand = [](const std::string&) { fakeHost.now += 9; };

  pingCommand();

  EXPECT_STREQ(pingStartTimeStamp, "20261116T054000");
}

TEST_F(PingRun, ReturnsTheStatusOfTheShell) {
  fakeHost.shellStatus = 512;

  console([] { EXPECT_EQ(exec_ping(), 512); });
}

TEST_F(PingRun, MeasuresNothingItself) {
  pingCommand();

  EXPECT_EQ(resultsText(), kNoResults);
}

class PingSummary : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(pingStartTimeStamp, "%s", kPingStart);
  }

  /// Reads `output` as the latest ping output and returns what that printed.
  static std::string read(const std::string& output) {
    writeFile(logFile("ping_latest.log"), output);
    return console(read_latest_ping_log_file_unix);
  }

  static std::string history() { return readFile(logFile("ping_history.log")); }

  /// The latency and the history line that `output` leaves in a run of its own, or "none".
  static std::string measured(const std::string& output) {
    outputResults = {};
    std::filesystem::remove(logFile("ping_history.log"));
    read(output);
    if (!fileExists(logFile("ping_history.log"))) {
      EXPECT_EQ(resultsText(), kNoResults);
      return "none";
    }
    EXPECT_TRUE(outputResults.latencyValid);
    return std::to_string(outputResults.latencyMs) + " " + history();
  }

  /// What measured() returns for a latency and the numbers of its history line.
  static std::string line(const std::string& latency, const std::string& numbers) {
    return latency + " " + kPingStart + "," + numbers + "\n";
  }
};

TEST_F(PingSummary, IsFoundInEachRecordedOutput) {
  for (const Recording& recording : recordings("ping")) {
    SCOPED_TRACE(recording.file);
    const std::string output = readFile(testData("ping/" + recording.file));
    const std::string expected = recording.expected == "none" ? "none" : recording.expected + "\n";

    EXPECT_EQ(measured(output), expected);
    EXPECT_EQ(measured(withCarriageReturns(output)), expected);
  }
}

TEST_F(PingSummary, SetsTheLatencyAndTheMomentOfTheParse) {
  fakeHost.onCommand = [](const std::string&) { fakeHost.now += 75; };

  EXPECT_EQ(read(readFile(testData("ping/macos_reply.log"))), "");

  EXPECT_EQ(resultsText(), "date 20261116T054115, latency 15, write (0), read (0)");
}

TEST_F(PingSummary, GoesToTheHistoryUnderThePingStart) {
  read(readFile(testData("ping/macos_reply.log")));

  EXPECT_EQ(history(), "20261116T053950,14.123,15.456,17.789,1.234\n");
}

TEST_F(PingSummary, IsTracedWhenAskedFor) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read(readFile(testData("ping/macos_reply.log"))),
            "= found at: 30, ms found at: 58\n"
            "ping min = 14.123000 avg = 15.456000 max = 17.789000 stddev = 1.234000\n"
            "ping start time 20261116T053950 min 14.123000 avg 15.456000 max 17.789000 stddev "
            "1.234000\n");
}

TEST_F(PingSummary, BeginsWithRoundTripOnly) {
  const struct {
    const char* text;
    const char* latency;  // of the average 2, or none
  } cases[] = {{"round-trip = 1/2/3/4 ms\n", "2"},
               {"round-tripping = 1/2/3/4 ms\n", "2"},
               {"rtt min/avg/max/mdev = 1/2/3/4 ms\n", nullptr},
               {"Round-trip = 1/2/3/4 ms\n", nullptr},
               {" round-trip = 1/2/3/4 ms\n", nullptr},
               {"round-tri = 1/2/3/4 ms\n", nullptr},
               {"round trip = 1/2/3/4 ms\n", nullptr}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const bool found = c.latency != nullptr;

    EXPECT_EQ(measured(c.text), found ? line(c.latency, "1.000,2.000,3.000,4.000") : "none");
  }
}

TEST_F(PingSummary, WithoutAnEqualsSignIsSkippedWithoutATrace) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("round-trip\nround-trip 1/2/3/4 ms\n"), "");

  EXPECT_EQ(resultsText(), kNoResults);
  EXPECT_FALSE(fileExists(logFile("ping_history.log")));
}

constexpr char kOneToFour[] =
    "ping min = 1.000000 avg = 2.000000 max = 3.000000 stddev = 4.000000\n"
    "ping start time 20261116T053950 min 1.000000 avg 2.000000 max 3.000000 stddev 4.000000\n";
constexpr char kZeros[] =
    "ping min = 0.000000 avg = 0.000000 max = 0.000000 stddev = 0.000000\n"
    "ping start time 20261116T053950 min 0.000000 avg 0.000000 max 0.000000 stddev 0.000000\n";

TEST_F(PingSummary, IsCutBetweenTheFirstEqualsSignAndTheFirstMs) {
  ConfigurationParameters.debugPrintPing = true;
  const struct {
    const char* text;
    const char* positions;
    const char* numbers;
  } cases[] = {{"round-trip = 1/2/3/4 ms", "11, ms found at: 20", kOneToFour},
               // The character after the "=" is passed over, whatever it is.
               {"round-trip =91/2/3/4 ms", "11, ms found at: 20", kOneToFour},
               {"round-trip = 1/2/3/4 = 5/6/7/8 ms", "11, ms found at: 30", kOneToFour},
               {"round-trip = 1/2/3/4 ms, 5 ms", "11, ms found at: 20", kOneToFour},
               {"round-trip = 1/2 ms/3/4 ms", "11, ms found at: 16", kZeros},
               {"round-trip =  ms", "11, ms found at: 13", kZeros},
               // Without a " ms" behind that, the rest of the line is taken.
               {"round-trip = 1/2/3/4", "11, ms found at: 18446744073709551615", kOneToFour},
               {"round-trip = 1/2/3/4ms", "11, ms found at: 18446744073709551615", kOneToFour},
               {"round-trip ms = 1/2/3/4 ms", "14, ms found at: 10", kOneToFour},
               {"round-trip = ms", "11, ms found at: 12", kZeros}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::filesystem::remove(logFile("ping_history.log"));

    EXPECT_EQ(read(c.text), std::string("= found at: ") + c.positions + "\n" + c.numbers);
  }
}

TEST_F(PingSummary, ThatEndsInAnEqualsSignEndsTheRun) {
  ConfigurationParameters.debugPrintPing = true;
  writeFile(logFile("ping_latest.log"), "round-trip=\n");

  EXPECT_EQ(console([] { EXPECT_THROW(read_latest_ping_log_file_unix(), std::out_of_range); }),
            "= found at: 10, ms found at: 18446744073709551615\n");

  EXPECT_EQ(resultsText(), kNoResults);
  EXPECT_FALSE(fileExists(logFile("ping_history.log")));
}

TEST_F(PingSummary, ThatEndsOneCharacterLaterCountsAsZero) {
  EXPECT_EQ(measured("round-trip= \n"), line("0", "0.000,0.000,0.000,0.000"));
  EXPECT_EQ(measured("round-trip=\r\n"), line("0", "0.000,0.000,0.000,0.000"));
}

TEST_F(PingSummary, ThatIsNotFourNumbersCountsAsZero) {
  const char* const cases[] = {"round-trip = 1/2/3 ms",
                               "round-trip = /2/3/4 ms",
                               "round-trip = 1//3/4 ms",
                               "round-trip = 1/2/3/ ms",
                               "round-trip = 1,2,3,4",
                               "round-trip = 100% loss",
                               "round-trip =1/2/3/4 ms",  // the "1" is passed over
                               "round-trip = 12345678901234567/2/3/4 ms",
                               "round-trip = 1/12345678901234567/3/4 ms",
                               "round-trip = 1/2/12345678901234567/4 ms"};
  for (const auto* text : cases) {
    SCOPED_TRACE(text);

    EXPECT_EQ(measured(text), line("0", "0.000,0.000,0.000,0.000"));
  }
}

TEST_F(PingSummary, ThatIsNotFourNumbersKeepsTheOneBefore) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("round-trip = 1/2/3/4 ms\nround-trip = 5/6/7 ms\n"),
            std::string("= found at: 11, ms found at: 20\n") + kOneToFour +
                "= found at: 11, ms found at: 18\n" + kOneToFour);

  EXPECT_EQ(history(),
            "20261116T053950,1.000,2.000,3.000,4.000\n20261116T053950,1.000,2.000,3.000,4.000\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 2, write (0), read (0)");
}

TEST_F(PingSummary, OfAnotherParseIsForgotten) {
  read("round-trip = 1/2/3/4 ms\n");

  EXPECT_EQ(measured("round-trip = 5/6/7 ms\n"), line("0", "0.000,0.000,0.000,0.000"));
}

TEST_F(PingSummary, TakesSixteenCharactersOfAField) {
  const struct {
    const char* text;
    const char* latency;
    const char* numbers;
  } cases[] = {
      {"round-trip = 0000000000001.25/0000000000002.25/0000000000003.25/0000000000004.25 ms", "2",
       "1.250,2.250,3.250,4.250"},
      // The last field is cut there.
      {"round-trip = 1/2/3/00000000000000012 ms", "2", "1.000,2.000,3.000,1.000"},
      {"round-trip = 1/2/3/4/5 ms", "2", "1.000,2.000,3.000,4.000"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(measured(c.text), line(c.latency, c.numbers));
  }
}

TEST_F(PingSummary, TakesTheNumberThatStartsAField) {
  const struct {
    const char* text;
    const char* latency;
    const char* numbers;
  } cases[] = {
      {"round-trip =  1/ 15.9/\t3/ 4 ms", "15", "1.000,15.900,3.000,4.000"},
      {"round-trip = 1x/0.4ms/3,5/4-4 ms", "0", "1.000,0.400,3.000,4.000"},
      {"round-trip = -1/-1.5/-0.0004/+4 ms", "4294967295", "-1.000,-1.500,-0.000,4.000"},
      {"round-trip = nan/nan/inf/-inf ms", "0", "nan,nan,inf,-inf"},
      {"round-trip = 1/inf/3/4 ms", "0", "1.000,inf,3.000,4.000"},
      {"round-trip = 1e3/4294967297.5/0x10/4 ms", "1", "1000.000,4294967297.500,16.000,4.000"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(measured(c.text), line(c.latency, c.numbers));
  }
}

TEST_F(PingSummary, WithAFieldThatIsNotANumberEndsTheRun) {
  const char* const cases[] = {"round-trip = x/1/2/3 ms",    "round-trip = 1/x/2/3 ms",
                               "round-trip = 1/2/x/3 ms",    "round-trip = 1/2/3/x ms",
                               "round-trip = 1/2/3/-",       "round-trip = 1/2/3/  ms",
                               "round-trip = x/1e999/2/3 ms"};
  for (const auto* text : cases) {
    SCOPED_TRACE(text);
    writeFile(logFile("ping_latest.log"), text);

    EXPECT_THROW(read_latest_ping_log_file_unix(), std::invalid_argument);

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(PingSummary, WithANumberThatFitsNoDoubleEndsTheRun) {
  const char* const cases[] = {"round-trip = 1e999/1/2/3 ms", "round-trip = 1/-1e999/2/3 ms",
                               "round-trip = 1/2/1e999/3 ms", "round-trip = 1/2/3/1e999 ms",
                               "round-trip = 1e999/x/2/3 ms"};
  for (const auto* text : cases) {
    SCOPED_TRACE(text);
    writeFile(logFile("ping_latest.log"), text);

    EXPECT_THROW(read_latest_ping_log_file_unix(), std::out_of_range);

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(PingSummary, CountsEachTimeItIsFound) {
  EXPECT_EQ(read("round-trip = 1/2/3/4 ms\n\nrtt = 9/9/9/9 ms\nround-trip = 5/6/7/8 ms"), "");

  EXPECT_EQ(history(),
            "20261116T053950,1.000,2.000,3.000,4.000\n20261116T053950,5.000,6.000,7.000,8.000\n");
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 6, write (0), read (0)");
}

TEST_F(PingSummary, ThatIsMissingLeavesTheEarlierResults) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  read(readFile(testData("ping/macos_no_reply.log")));

  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
  EXPECT_FALSE(fileExists(logFile("ping_history.log")));
}

TEST_F(PingSummary, LeavesTheRatesAlone) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  read("round-trip = 1/2/3/4 ms\n");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 2, write 78, read 79");
}

class PingOutput : public RunFixture {};

TEST_F(PingOutput, IsAppendedToTheVerboseHistoryByOneCommand) {
  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");

  EXPECT_THAT(fakeHost.commands, ElementsAre("cat " + logFile("ping_latest.log") + " >> " +
                                             logFile("/ping_history_verbose.log\n")));
}

TEST_F(PingOutput, IsAppendedBeforeItIsRead) {
  fakeHost.onCommand = [](const std::string&) {
    writeFile(logFile("ping_latest.log"), "round-trip = 1/2/3/4 ms\n");
  };

  read_latest_ping_log_file_unix();

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 2, write (0), read (0)");
}

TEST_F(PingOutput, IsKeptWholeRunAfterRun) {
  fakeHost.runsCommands = true;
  const std::string first = readFile(testData("ping/macos_reply.log"));
  const std::string second = readFile(testData("ping/windows_no_reply.log")) + "no newline";

  for (const std::string& output : {first, second, first}) {
    writeFile(logFile("ping_latest.log"), output);
    read_latest_ping_log_file_unix();
  }

  EXPECT_EQ(readFile(logFile("ping_history_verbose.log")), first + second + first);
  EXPECT_EQ(readFile(logFile("ping_latest.log")), first);
}

TEST_F(PingOutput, IsAppendedEvenIfItsSummaryEndsTheRun) {
  fakeHost.runsCommands = true;
  writeFile(logFile("ping_latest.log"), "round-trip=\n");

  EXPECT_THROW(read_latest_ping_log_file_unix(), std::out_of_range);

  EXPECT_EQ(readFile(logFile("ping_history_verbose.log")), "round-trip=\n");
}

TEST_F(PingOutput, ThatIsMissingLeavesAnEmptyVerboseHistory) {
  fakeHost.runsCommands = true;
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");

  EXPECT_EQ(readFile(logFile("ping_history_verbose.log")), "");
  EXPECT_EQ(resultsText(), kNoResults);
  EXPECT_FALSE(fileExists(logFile("ping_history.log")));
}

TEST_F(PingOutput, ThatIsEmptyMeasuresNothing) {
  for (const char* output : {"", "\n", "\n\r\n\n"}) {
    writeFile(logFile("ping_latest.log"), output);

    EXPECT_EQ(console(read_latest_ping_log_file_unix), "");

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }
}

TEST_F(PingOutput, UnderWhoseNameADirectoryStandsMeasuresNothing) {
  std::filesystem::create_directory(logFile("ping_latest.log"));

  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");

  EXPECT_EQ(resultsText(), kNoResults);
}

}  // namespace

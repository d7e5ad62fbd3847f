#include "ping/ping_run.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using testing::ElementsAre;

class PingRun : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }
};

TEST_F(PingRun, PingsTheServerOrAPublicResolverThroughTee) {
  const struct {
    int count;
    const char* address;
    bool resolver;
    const char* command;
  } cases[] = {{10, "10.0.0.5", false, "ping -c 10 10.0.0.5  | tee  "},
               {10, "10.0.0.5", true, "ping -c 10 8.8.8.8  | tee  "},
               {0, "10.0.0.5", false, "ping -c 0 10.0.0.5  | tee  "},
               {-1, "10.0.0.5", false, "ping -c -1 10.0.0.5  | tee  "},
               {INT_MAX, "10.0.0.5", false, "ping -c 2147483647 10.0.0.5  | tee  "},
               {10, "", false, "ping -c 10   | tee  "},
               {10, "-h $(x) 'y' %s", false, "ping -c 10 -h $(x) 'y' %s  | tee  "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    fakeHost.commands.clear();
    ConfigurationParameters.numPings = c.count;
    ConfigurationParameters.pingTestServer = c.resolver;
    formatInto(ipaddr, "%s", c.address);

    console(exec_ping);

    EXPECT_THAT(fakeHost.commands, ElementsAre(c.command + logFile("ping_latest.log\n")));
    EXPECT_EQ(cmd, fakeHost.commands.back());
  }
}

TEST_F(PingRun, PrintsItsCommandAndAnEmptyLineBeforeThePing) {
  flipPrintsBut(&Configuration::debugPrintPing);
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

TEST_F(PingRun, StampsItsStartAndReturnsTheStatusOfTheShell) {
  fakeHost.onCommand = [](const std::string&) { fakeHost.now += 9; };
  fakeHost.shellStatus = 512;

  console([] { EXPECT_EQ(exec_ping(), 512); });

  EXPECT_STREQ(pingStartTimeStamp, "20261116T054000");
  EXPECT_EQ(resultsText(), kNoResults);
}

constexpr char kOneToFour[] = "2 20261116T053950,1.000,2.000,3.000,4.000\n";
constexpr char kZeros[] = "0 20261116T053950,0.000,0.000,0.000,0.000\n";

class PingSummary : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(pingStartTimeStamp, "20261116T053950");
  }

  /// Reads `output` as the latest ping output and returns what that printed.
  static std::string read(const std::string& output) {
    writeFile(logFile("ping_latest.log"), output);
    return console(read_latest_ping_log_file_unix);
  }

  static std::string history() { return readFile(logFile("ping_history.log")); }

  static void expectNothingMeasured() {
    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_FALSE(fileExists(logFile("ping_history.log")));
  }

  /// The latency and the history line that `output` leaves in a run of its own, or "none".
  static std::string measured(const std::string& output) {
    outputResults = {};
    std::filesystem::remove(logFile("ping_history.log"));
    EXPECT_EQ(read(output), "");
    if (!outputResults.latencyValid) {
      expectNothingMeasured();
      return "none";
    }
    return std::to_string(outputResults.latencyMs) + " " + history();
  }

  /// Expects that reading `output` ends by `exception`, and measures nothing.
  static void expectEnd(const std::string& exception, const std::string& output) {
    SCOPED_TRACE(output);
    writeFile(logFile("ping_latest.log"), output);

    EXPECT_EQ(endingOf(read_latest_ping_log_file_unix), exception);

    expectNothingMeasured();
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
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};
  fakeHost.onCommand = [](const std::string&) { fakeHost.now += 75; };

  read("round-trip = 1/2/3/4 ms\n");

  EXPECT_EQ(resultsText(), "date 20261116T054115, latency 2, write 78, read 79");
}

TEST_F(PingSummary, ThatIsMissingLeavesTheEarlierResults) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  read(readFile(testData("ping/macos_no_reply.log")));

  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
}

TEST_F(PingSummary, BeginsWithRoundTripOnly) {
  const struct {
    const char* text;
    const char* measured;
  } cases[] = {{"round-trip = 1/2/3/4 ms\n", kOneToFour},
               {"round-tripping = 1/2/3/4 ms\n", kOneToFour},
               {"rtt min/avg/max/mdev = 1/2/3/4 ms\n", "none"},
               {"Round-trip = 1/2/3/4 ms\n", "none"},
               {" round-trip = 1/2/3/4 ms\n", "none"},
               {"round-tri = 1/2/3/4 ms\n", "none"},
               {"round trip = 1/2/3/4 ms\n", "none"},
               {"\n\r\n\n", "none"},
               {"", "none"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(measured(c.text), c.measured);
  }
}

TEST_F(PingSummary, WithoutAnEqualsSignIsSkippedWithoutATrace) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(read("round-trip\nround-trip 1/2/3/4 ms\n"), "");

  expectNothingMeasured();
}

TEST_F(PingSummary, IsCutBetweenTheFirstEqualsSignAndTheFirstMs) {
  ConfigurationParameters.debugPrintPing = true;
  const std::string oneToFour =
      "ping min = 1.000000 avg = 2.000000 max = 3.000000 stddev = 4.000000\n"
      "ping start time 20261116T053950 min 1.000000 avg 2.000000 max 3.000000 stddev 4.000000\n";
  const std::string zeros =
      "ping min = 0.000000 avg = 0.000000 max = 0.000000 stddev = 0.000000\n"
      "ping start time 20261116T053950 min 0.000000 avg 0.000000 max 0.000000 stddev 0.000000\n";
  const struct {
    const char* text;
    const char* positions;
    const std::string& numbers;
  } cases[] = {{"round-trip = 1/2/3/4 ms", "11, ms found at: 20", oneToFour},
               // The character after the "=" is passed over, whatever it is.
               {"round-trip =91/2/3/4 ms", "11, ms found at: 20", oneToFour},
               {"round-trip = 1/2/3/4 = 5/6/7/8 ms", "11, ms found at: 30", oneToFour},
               {"round-trip = 1/2/3/4 ms, 5 ms", "11, ms found at: 20", oneToFour},
               {"round-trip = 1/2 ms/3/4 ms", "11, ms found at: 16", zeros},
               {"round-trip =  ms", "11, ms found at: 13", zeros},
               // Without a " ms" behind that, the rest of the line is taken.
               {"round-trip = 1/2/3/4", "11, ms found at: 18446744073709551615", oneToFour},
               {"round-trip = 1/2/3/4ms", "11, ms found at: 18446744073709551615", oneToFour},
               {"round-trip ms = 1/2/3/4 ms", "14, ms found at: 10", oneToFour},
               {"round-trip = ms", "11, ms found at: 12", zeros}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    std::filesystem::remove(logFile("ping_history.log"));

    EXPECT_EQ(read(c.text), std::string("= found at: ") + c.positions + "\n" + c.numbers);
  }
}

TEST_F(PingSummary, ThatEndsInItsEqualsSignEndsTheRun) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console([] { expectEnd("out_of_range", "round-trip=\n"); }),
            "= found at: 10, ms found at: 18446744073709551615\n");
}

TEST_F(PingSummary, ThatIsNotFourNumbersCountsAsZero) {
  for (const char* const text :
       {"round-trip= \n", "round-trip=\r\n", "round-trip = 1/2/3 ms", "round-trip = /2/3/4 ms",
        "round-trip = 1//3/4 ms", "round-trip = 1/2/3/ ms", "round-trip = 1,2,3,4",
        "round-trip = 100% loss",
        "round-trip =1/2/3/4 ms",  // the "1" is passed over
        "round-trip = 12345678901234567/2/3/4 ms", "round-trip = 1/12345678901234567/3/4 ms",
        "round-trip = 1/2/12345678901234567/4 ms"}) {
    SCOPED_TRACE(text);

    EXPECT_EQ(measured(text), kZeros);
  }
}

TEST_F(PingSummary, CountsEachTimeAndKeepsTheNumbersBeforeForThoseThatItLacks) {
  EXPECT_EQ(measured("round-trip = 1/2/3/4 ms\n\nrtt = 9/9/9/9 ms\nround-trip = 5/6/7/8 ms"),
            "6 20261116T053950,1.000,2.000,3.000,4.000\n20261116T053950,5.000,6.000,7.000,8.000\n");
  EXPECT_EQ(measured("round-trip = 1/2/3/4 ms\nround-trip = 5/6/7 ms\n"),
            "2 20261116T053950,1.000,2.000,3.000,4.000\n20261116T053950,1.000,2.000,3.000,4.000\n");
}

TEST_F(PingSummary, TakesTheNumberThatStartsEachFieldOfSixteenCharacters) {
  const struct {
    const char* text;
    const char* latency;
    const char* numbers;
  } cases[] = {
      {"round-trip = 0000000000001.25/0000000000002.25/0000000000003.25/0000000000004.25 ms", "2",
       "1.250,2.250,3.250,4.250"},
      // The last field is cut there.
      {"round-trip = 1/2/3/00000000000000012 ms", "2", "1.000,2.000,3.000,1.000"},
      {"round-trip = 1/2/3/4/5 ms", "2", "1.000,2.000,3.000,4.000"},
      {"round-trip =  1/ 15.9/\t3/ 4 ms", "15", "1.000,15.900,3.000,4.000"},
      {"round-trip = 1x/0.4ms/3,5/4-4 ms", "0", "1.000,0.400,3.000,4.000"},
      {"round-trip = -1/-1.5/-0.0004/+4 ms", "4294967295", "-1.000,-1.500,-0.000,4.000"},
      {"round-trip = nan/nan/inf/-inf ms", "0", "nan,nan,inf,-inf"},
      {"round-trip = 1/inf/3/4 ms", "0", "1.000,inf,3.000,4.000"},
      {"round-trip = 1e3/4294967297.5/0x10/4 ms", "1", "1000.000,4294967297.500,16.000,4.000"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_EQ(measured(c.text), std::string(c.latency) + " 20261116T053950," + c.numbers + "\n");
  }
}

TEST_F(PingSummary, WithAFieldThatIsNotANumberEndsTheRun) {
  for (const char* const text :
       {"round-trip = x/1/2/3 ms", "round-trip = 1/x/2/3 ms", "round-trip = 1/2/x/3 ms",
        "round-trip = 1/2/3/x ms", "round-trip = 1/2/3/-", "round-trip = 1/2/3/  ms",
        "round-trip = x/1e999/2/3 ms"}) {
    expectEnd("invalid_argument", text);
  }
}

TEST_F(PingSummary, WithANumberThatFitsNoDoubleEndsTheRun) {
  for (const char* const text : {"round-trip = 1e999/1/2/3 ms", "round-trip = 1/-1e999/2/3 ms",
                                 "round-trip = 1/2/1e999/3 ms", "round-trip = 1/2/3/1e999 ms",
                                 "round-trip = 1e999/x/2/3 ms"}) {
    expectEnd("out_of_range", text);
  }
}

TEST_F(PingSummary, IsReadAfterItsOutputIsAppendedToTheVerboseHistory) {
  fakeHost.onCommand = [](const std::string&) {
    writeFile(logFile("ping_latest.log"), "round-trip = 1/2/3/4 ms\n");
  };

  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");

  EXPECT_THAT(fakeHost.commands, ElementsAre("cat " + logFile("ping_latest.log") + " >> " +
                                             logFile("/ping_history_verbose.log\n")));
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency 2, write (0), read (0)");
}

TEST_F(PingSummary, IsNotFoundWithoutAFile) {
  ConfigurationParameters.debugPrintPing = true;

  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");
  expectNothingMeasured();

  std::filesystem::create_directory(logFile("ping_latest.log"));
  EXPECT_EQ(console(read_latest_ping_log_file_unix), "");
  expectNothingMeasured();
}

}  // namespace

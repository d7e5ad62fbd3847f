#include "iperf3/iperf3_run.h"

#include "run_state.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

using testing::ElementsAre;
using testing::FieldsAre;

constexpr char kClient[] = "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t 10 -J ";

/// A report as iperf3 lays it out: a member a line, a tab behind each colon.
std::string report(const std::string& reverse, const std::string& rate) {
  return "{\n"
         "\t\"local_host\":\t\"192.168.1.20\",\n"
         "\t\"local_port\":\t54012,\n"
         "\t\"remote_host\":\t\"192.168.1.10\",\n"
         "\t\"remote_port\":\t5201\n"
         "\t\"timesecs\":\t1605505183\n"
         "\t\"duration\":\t10,\n"
         "\t\"reverse\":\t" +
         reverse +
         ",\n"
         "\t\"sum_sent\":\t{\n"
         "\t\t\"bytes\":\t1180000000,\n"
         "\t\t\"bits_per_second\":\t" +
         rate +
         ",\n"
         "\t},\n"
         "\t\"sum_received\":\t{\n"
         "\t\t\"bytes\":\t1170000000,\n"
         "\t\t\"bits_per_second\":\t" +
         rate +
         ",\n"
         "\t}\n"
         "}\n";
}

constexpr char kForwardLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n";
constexpr char kReverseLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,0,0,1170000000,943718400\n";

constexpr char kForwardFields[] =
    "date 1605505183\n"
    "client ip 192.168.1.20\n"
    "server ip 192.168.1.10\n"
    "client tcp port 54012\n"
    "server tcp port 5201\n"
    "transfer ID 0\n"
    "test time 10\n"
    "reverse 0\n"
    "length sent 1180000000 \n"
    "Bps sent 943718400\n"
    "length rcvd 0 \n"
    "Bps rcvd 0\n";

class Iperf3Run : public RunFixture {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }

  /// Runs one direction and returns what that printed.
  static std::string run(bool reverse) {
    return console([reverse] { exec_iperf3(reverse); });
  }

  /// The same with a client that writes `text`, and the real `cat`.
  static std::string run(bool reverse, const std::string& text) {
    fakeHost.onCommand = [reverse, text](const std::string& command) {
      fakeHost.runsCommands = command.starts_with("cat ");
      if (!fakeHost.runsCommands) {
        writeFile(logFile(reverse ? "iperf3_latest-R.log" : "iperf3_latest.log"), text);
      }
    };
    return run(reverse);
  }

  static std::string forwardCommand() {
    return kClient + ("  > " + logFile("iperf3_latest.log\n"));
  }

  static std::string reverseCommand() {
    return kClient + (" -R > " + logFile("iperf3_latest-R.log\n"));
  }

  static std::string appendCommand(const std::string& direction) {
    return "cat " + logFile("iperf3_latest_" + direction + "_csv.log") + " >> " +
           logFile("iperf3_history_" + direction + "_csv.log\n");
  }

  static std::string latestCsv(const std::string& direction) {
    return readFile(logFile("iperf3_latest_" + direction + "_csv.log"));
  }

  static std::string historyCsv(const std::string& direction) {
    return readFile(logFile("iperf3_history_" + direction + "_csv.log"));
  }
};

TEST_F(Iperf3Run, RunsTheClientForwardWaitsAndAppends) {
  fakeHost.onCommand = [](const std::string& command) {
    EXPECT_EQ(fakeHost.sleeps.size(), command.starts_with("cat ") ? 1U : 0U);
  };

  run(false);

  EXPECT_THAT(fakeHost.commands, ElementsAre(forwardCommand(), appendCommand("forward")));
  EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(11, 0)));
  EXPECT_EQ(cmd, appendCommand("forward"));
  EXPECT_EQ(filepath, logFile("iperf3_latest_forward_csv.log"));
}

TEST_F(Iperf3Run, RunsTheClientReverseWaitsAndAppends) {
  fakeHost.onCommand = [](const std::string& command) {
    EXPECT_EQ(fakeHost.sleeps.size(), command.starts_with("cat ") ? 1U : 0U);
  };

  run(true);

  EXPECT_THAT(fakeHost.commands, ElementsAre(reverseCommand(), appendCommand("reverse")));
  EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(11, 0)));
  EXPECT_EQ(cmd, appendCommand("reverse"));
  EXPECT_EQ(filepath, logFile("iperf3_latest_reverse_csv.log"));
}

TEST_F(Iperf3Run, TakesTheTestTimeAsItIs) {
  const struct {
    std::int32_t testTime;
    const char* command;
    std::time_t seconds;
    long nanoseconds;
  } cases[] = {{0, "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t 0 -J   > ", 1, 0},
               {-1, "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t -1 -J   > ", 0, 3'000'000},
               {std::numeric_limits<std::int32_t>::max(),
                "/usr/local/bin/Qelmora/iperf3 -c 10.0.0.5 -t 2147483647 -J   > ", 0, 3'000'000}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.command);
    fakeHost.commands.clear();
    fakeHost.sleeps.clear();
    ConfigurationParameters.iperfTestTime = c.testTime;

    run(false);

    EXPECT_EQ(fakeHost.commands.front(), c.command + logFile("iperf3_latest.log\n"));
    EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(c.seconds, c.nanoseconds)));
  }
}

TEST_F(Iperf3Run, LeavesTwoBlanksForAMissingAddress) {
  formatInto(ipaddr, "%s", "");

  run(false);

  EXPECT_EQ(fakeHost.commands.front(),
            "/usr/local/bin/Qelmora/iperf3 -c  -t 10 -J   > " + logFile("iperf3_latest.log\n"));
}

TEST_F(Iperf3Run, ReplacesTheWindowsNameOfTheClient) {
  EXPECT_EQ(iperf3_prog, "iperf3.exe");

  run(false);

  EXPECT_EQ(iperf3_prog, "/usr/local/bin/Qelmora/iperf3");
}

TEST_F(Iperf3Run, StampsItsStart) {
  run(false);
  EXPECT_STREQ(iperfStartTimeStamp, "20261116T054000");

  run(true);
  EXPECT_STREQ(iperfStartTimeStamp, "20261116T054011");
}

TEST_F(Iperf3Run, KeepsTheForwardReportAsALine) {
  EXPECT_EQ(run(false, report("0", "943718412.345")),
            " read latest file is " + logFile("iperf3_latest.log") +
                "\n\n= IPERF3 history  ====================================\n" + kForwardFields);

  EXPECT_EQ(latestCsv("forward"), kForwardLine);
  EXPECT_EQ(historyCsv("forward"), kForwardLine);
  EXPECT_EQ(readFile(logFile("iperf3_latest.log")), report("0", "943718412.345"));
  EXPECT_EQ(resultsText(), "date , latency (0), write 943718400, read (0)");
}

TEST_F(Iperf3Run, KeepsTheReverseReportAsALine) {
  EXPECT_EQ(run(true, report("1", "943718412.345")),
            " read latest file is " + logFile("iperf3_latest-R.log") +
                "\n\n= IPERF3 history  ====================================\n"
                "date 1605505183\n"
                "client ip 192.168.1.20\n"
                "server ip 192.168.1.10\n"
                "client tcp port 54012\n"
                "server tcp port 5201\n"
                "transfer ID 0\n"
                "test time 10\n"
                "reverse 1\n"
                "length sent 0 \n"
                "Bps sent 0\n"
                "length rcvd 1170000000 \n"
                "Bps rcvd 943718400\n");

  EXPECT_EQ(latestCsv("reverse"), kReverseLine);
  EXPECT_EQ(historyCsv("reverse"), kReverseLine);
  EXPECT_EQ(readFile(logFile("iperf3_latest-R.log")), report("1", "943718412.345"));
  EXPECT_EQ(resultsText(), "date , latency (0), write (0), read 943718400");
}

TEST_F(Iperf3Run, UsesPathsOfWhichFilepathHoldsTheStart) {
  useLongestLogDirectory();

  EXPECT_EQ(run(false, report("0", "943718412.345")),
            " read latest file is " + logFile("iperf3_latest.log") +
                "\n\n= IPERF3 history  ====================================\n" + kForwardFields);

  EXPECT_EQ(latestCsv("forward"), kForwardLine);
  EXPECT_EQ(historyCsv("forward"), kForwardLine);
  EXPECT_EQ(filepath, logFile("iperf3_latest_forward_csv.log").substr(0, 127));
}

TEST_F(Iperf3Run, TouchesTheFilesOfItsDirectionOnly) {
  run(true, report("1", "1"));

  EXPECT_FALSE(fileExists(logFile("iperf3_latest.log")));
  EXPECT_FALSE(fileExists(logFile("iperf3_latest_forward_csv.log")));
  EXPECT_FALSE(fileExists(logFile("iperf3_history_forward_csv.log")));
}

TEST_F(Iperf3Run, TakesTheRateByTheReportsOwnDirection) {
  run(true, report("0", "943718412.345"));

  EXPECT_EQ(latestCsv("reverse"), kForwardLine);
  EXPECT_EQ(resultsText(), "date , latency (0), write 943718400, read (0)");
}

TEST_F(Iperf3Run, PrintsItsStepsWhenTraced) {
  ConfigurationParameters.debugConfFile = true;

  EXPECT_EQ(run(false, report("0", "943718412.345")),
            "iperf3 start time 20261116T054000 direction client to server\n"
            "command=" +
                forwardCommand() + "\n read latest file is " + logFile("iperf3_latest.log") +
                "\n\n= IPERF3 history  ====================================\n" + kForwardFields +
                "\n= IPERF3 summary  ====================================\n" + kForwardFields);
}

TEST_F(Iperf3Run, PrintsTheReverseDirectionWhenTraced) {
  ConfigurationParameters.debugConfFile = true;
  const std::string fields =
      "date \n"
      "client ip \n"
      "server ip \n"
      "client tcp port 0\n"
      "server tcp port 0\n"
      "transfer ID 0\n"
      "test time \n"
      "reverse \n"
      "length sent 0 \n"
      "Bps sent 0\n"
      "length rcvd 0 \n"
      "Bps rcvd 0\n";

  EXPECT_EQ(run(true, ""),
            "iperf3 start time 20261116T054000 direction server to client\n"
            "command=" +
                reverseCommand() + "\n read latest file is " + logFile("iperf3_latest-R.log") +
                "\n\n= IPERF3 history  ====================================\n" + fields +
                "\n= IPERF3 summary  ====================================\n" + fields);
}

TEST_F(Iperf3Run, PrintsItsHistoryCommandWithTheHistory) {
  ConfigurationParameters.debugPrintHistory = true;

  EXPECT_EQ(run(false, report("0", "943718412.345")),
            " read latest file is " + logFile("iperf3_latest.log") +
                "\n\n= IPERF3 history  ====================================\n" + kForwardFields +
                "history file command: " + appendCommand("forward") + "\n");
}

TEST_F(Iperf3Run, IsNotTracedByAnyOtherSwitch) {
  const std::string untraced = run(false, report("0", "1"));
  ConfigurationParameters.debugPrintPing = true;
  ConfigurationParameters.debugPrintIperf = !ConfigurationParameters.debugPrintIperf;
  ConfigurationParameters.debugPrintLast = true;

  EXPECT_EQ(run(false, report("0", "1")), untraced);
}

TEST_F(Iperf3Run, ReplacesTheLatestLineAndExtendsTheHistory) {
  const std::string second =
      "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,7,0,0\n";

  run(false, report("0", "943718412.345"));
  run(false, report("0", "7"));

  EXPECT_EQ(latestCsv("forward"), second);
  EXPECT_EQ(historyCsv("forward"), kForwardLine + second);
}

TEST_F(Iperf3Run, WritesRatesWithoutDecimals) {
  const struct {
    const char* rate;
    const char* text;
  } cases[] = {{"1234567891.5", "1234567936"},
               {"0.75", "1"},
               {"-2.5", "-2"},
               {"nan", "nan"},
               {"1e39", "inf"},
               {"-inf", "-inf"},
               {"x", "0"},
               {"3e38", "300000000549775575777803994281145270272"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rate);
    const std::string start = "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,";

    run(false, report("0", c.rate));
    run(true, report("1", c.rate));

    EXPECT_EQ(latestCsv("forward"), start + "1180000000," + c.text + ",0,0\n");
    EXPECT_EQ(latestCsv("reverse"), start + "0,0,1170000000," + c.text + "\n");
  }
}

constexpr char kEmptyLine[] = ",,0,,0,0,,0,0,0,0\n";

TEST_F(Iperf3Run, WritesAnEmptyLineForAReportWithoutMeasurement) {
  const std::string reports[] = {"", readFile(testData("iperf3/3.21/refused.json")),
                                 "sh: 1: iperf3: not found\n"};
  for (const std::string& text : reports) {
    SCOPED_TRACE(text);
    std::filesystem::remove(logFile("iperf3_history_forward_csv.log"));

    run(false, text);

    EXPECT_EQ(latestCsv("forward"), kEmptyLine);
    EXPECT_EQ(historyCsv("forward"), kEmptyLine);
    EXPECT_EQ(resultsText(), kNoResults);
  }
}

TEST_F(Iperf3Run, WritesAnEmptyLineForAMissingReport) {
  run(false);
  run(true);

  EXPECT_EQ(latestCsv("forward"), kEmptyLine);
  EXPECT_EQ(latestCsv("reverse"), kEmptyLine);
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Run, ForgetsTheRunBefore) {
  run(false, report("0", "943718412.345"));
  outputResults = {};

  run(false, "");

  EXPECT_EQ(latestCsv("forward"), kEmptyLine);
  EXPECT_EQ(historyCsv("forward"), std::string(kForwardLine) + kEmptyLine);
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Run, LeavesTheEarlierResultsWithoutAMeasurement) {
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  run(false, "");

  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
}

TEST_F(Iperf3Run, WritesTextsOf32CharactersWhole) {
  const std::string address(40, 'a');

  run(false, "\"local_host\":\t\"" + address + "\"\n\"timesecs\":\t" + std::string(40, '7') + "\n");

  EXPECT_EQ(latestCsv("forward"),
            std::string(32, '7') + "," + std::string(32, 'a') + ",0,,0,0,,0,0,0,0\n");
}

TEST_F(Iperf3Run, AppendsAlsoWhenItsLineCannotBeWritten) {
  std::filesystem::create_directory(logFile("iperf3_latest_forward_csv.log"));

  const std::string printed = run(false, report("0", "943718412.345"));

  EXPECT_EQ(printed, " read latest file is " + logFile("iperf3_latest.log") +
                         "\n\n= IPERF3 history  ====================================\n" +
                         kForwardFields);
  EXPECT_THAT(fakeHost.commands, ElementsAre(forwardCommand(), appendCommand("forward")));
  EXPECT_EQ(historyCsv("forward"), "");
  EXPECT_EQ(resultsText(), "date , latency (0), write 943718400, read (0)");
}

TEST_F(Iperf3Run, GoesOnWhateverTheShellReturns) {
  fakeHost.shellStatus = 127 * 256;
  fakeHost.sleepStatus = -1;

  run(true);

  EXPECT_THAT(fakeHost.commands, ElementsAre(reverseCommand(), appendCommand("reverse")));
  EXPECT_EQ(fakeHost.sleeps.size(), 1U);
}

TEST_F(Iperf3Run, EndsWithoutALineOnAPortThatIsNotANumber) {
  fakeHost.onCommand = [](const std::string&) {
    writeFile(logFile("iperf3_latest.log"), "\"local_port\":\tx\n");
  };

  EXPECT_EQ(console([] { EXPECT_THROW(exec_iperf3(false), std::invalid_argument); }),
            " read latest file is " + logFile("iperf3_latest.log\n"));

  EXPECT_THAT(fakeHost.commands, ElementsAre(forwardCommand()));
  EXPECT_FALSE(fileExists(logFile("iperf3_latest_forward_csv.log")));
}

}  // namespace

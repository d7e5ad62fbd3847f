#include "iperf3/iperf3_run.h"

#include "run_state.h"
#include "support/iperf_run.h"
#include "support/iperf_texts.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using testing::ElementsAre;

constexpr char kHeading[] = "\n\n= IPERF3 history  ====================================\n";
constexpr char kEmptyLine[] = ",,0,,0,0,,0,0,0,0\n";
constexpr char kEmptyFields[] =
    "date \nclient ip \nserver ip \nclient tcp port 0\nserver tcp port 0\ntransfer ID 0\n"
    "test time \nreverse \nlength sent 0 \nBps sent 0\nlength rcvd 0 \nBps rcvd 0\n";

/// A direction, and what its run by the report of report() leaves.
struct Direction {
  const char* name;
  bool reverse;
  const char* option;
  const char* trace;
  const char* line;
  const char* numbers;
  const char* results;
};
constexpr Direction kForward = {"forward",
                                false,
                                "",
                                "client to server",
                                kForwardLine,
                                "reverse 0\nlength sent 1180000000 \nBps sent 943718400\n"
                                "length rcvd 0 \nBps rcvd 0\n",
                                "date , latency (0), write 943718400, read (0)"};
constexpr Direction kReverse = {"reverse",
                                true,
                                "-R",
                                "server to client",
                                kReverseLine,
                                "reverse 1\nlength sent 0 \nBps sent 0\n"
                                "length rcvd 1170000000 \nBps rcvd 935718400\n",
                                "date , latency (0), write (0), read 935718400"};

/// A report as iperf3 lays it out: a member a line, a tab behind each colon.
std::string report(bool reverse, const std::string& rateSent = "943718412.345",
                   const std::string& rateRcvd = "935718412.345") {
  return "\t\"local_host\":\t\"192.168.1.20\",\n"
         "\t\"local_port\":\t54012,\n"
         "\t\"remote_host\":\t\"192.168.1.10\",\n"
         "\t\"remote_port\":\t5201\n"
         "\t\"timesecs\":\t1605505183\n"
         "\t\"duration\":\t10,\n"
         "\t\"reverse\":\t" +
         std::string(reverse ? "1" : "0") +
         ",\n"
         "\t\"sum_sent\":\t{\n"
         "\t\t\"bytes\":\t1180000000,\n"
         "\t\t\"bits_per_second\":\t" +
         rateSent +
         ",\n"
         "\t},\n"
         "\t\"sum_received\":\t{\n"
         "\t\t\"bytes\":\t1170000000,\n"
         "\t\t\"bits_per_second\":\t" +
         rateRcvd +
         ",\n"
         "\t}\n";
}

class Iperf3Run : public RunFixture, public testing::WithParamInterface<Direction> {
 protected:
  void SetUp() override {
    RunFixture::SetUp();
    formatInto(ipaddr, "10.0.0.5");
  }

  static std::string latestReport() {
    return logFile(std::string("iperf3_latest") + GetParam().option + ".log");
  }
  static std::string latestPath() {
    return logFile(std::string("iperf3_latest_") + GetParam().name + "_csv.log");
  }
  static std::string historyPath() {
    return logFile(std::string("iperf3_history_") + GetParam().name + "_csv.log");
  }

  static std::string clientCommand(const std::string& address = "10.0.0.5", int testTime = 10) {
    return "/usr/local/bin/Qelmora/iperf3 -c " + address + " -t " + std::to_string(testTime) +
           " -J  " + GetParam().option + " > " + latestReport() + "\n";
  }
  static std::string appendCommand() {
    return "cat " + latestPath() + " >> " + historyPath() + "\n";
  }

  /// What an untraced run prints.
  static std::string prints(const std::string& fields) {
    return " read latest file is " + latestReport() + kHeading + fields;
  }
  static std::string fields() { return std::string(kIperf3Connection) + GetParam().numbers; }

  /// Runs the direction and returns what that printed.
  static std::string run() {
    return console([] { exec_iperf3(GetParam().reverse); });
  }

  /// The same with a client that writes `text`, and the real `cat`.
  static std::string run(const std::string& text) {
    fakeHost.onCommand = [text](const std::string& command) {
      fakeHost.runsCommands = command.starts_with("cat ");
      if (!fakeHost.runsCommands) {
        writeFile(latestReport(), text);
      }
    };
    return run();
  }
};

INSTANTIATE_TEST_SUITE_P(Of, Iperf3Run, testing::Values(kForward, kReverse),
                         [](const auto& direction) { return direction.param.name; });

TEST_P(Iperf3Run, RunsTheClientAndAppendsAfterTheWait) {
  expectClientWaitAndAppend([] { run(); }, clientCommand, appendCommand());
}

TEST_P(Iperf3Run, ReplacesTheWindowsNameOfTheClientAndStampsItsStart) {
  run();

  EXPECT_EQ(iperf3_prog, "/usr/local/bin/Qelmora/iperf3");
  EXPECT_STREQ(iperfStartTimeStamp, kStartStamp);
}

TEST_P(Iperf3Run, KeepsItsReportAsALine) {
  EXPECT_EQ(run(report(GetParam().reverse)), prints(fields()));

  EXPECT_EQ(readFile(latestPath()), GetParam().line);
  EXPECT_EQ(readFile(historyPath()), GetParam().line);
  EXPECT_EQ(filepath, latestPath());
  EXPECT_EQ(readFile(latestReport()), report(GetParam().reverse));
  EXPECT_EQ(resultsText(), GetParam().results);
}

TEST_P(Iperf3Run, UsesPathsOfWhichFilepathHoldsTheStart) {
  useLongestLogDirectory();

  EXPECT_EQ(run(report(GetParam().reverse)), prints(fields()));

  EXPECT_EQ(readFile(latestPath()), GetParam().line);
  EXPECT_EQ(readFile(historyPath()), GetParam().line);
  EXPECT_EQ(filepath, latestPath().substr(0, 127));
}

TEST_P(Iperf3Run, TakesTheRateByTheReportsOwnDirection) {
  const Direction& other = GetParam().reverse ? kForward : kReverse;

  run(report(other.reverse));

  EXPECT_EQ(readFile(latestPath()), other.line);
  EXPECT_EQ(resultsText(), other.results);
}

TEST_P(Iperf3Run, PrintsItsStepsWhenTraced) {
  ConfigurationParameters.debugConfFile = true;

  EXPECT_EQ(run(report(GetParam().reverse)),
            std::string("iperf3 start time 20261116T054000 direction ") + GetParam().trace +
                "\ncommand=" + clientCommand() + "\n" + prints(fields()) +
                "\n= IPERF3 summary  ====================================\n" + fields());
}

TEST_P(Iperf3Run, PrintsItsHistoryCommandWithTheHistoryAndNothingElseUntraced) {
  flipPrintsBut(&Configuration::debugConfFile);

  EXPECT_EQ(run(report(GetParam().reverse)),
            prints(fields()) + "history file command: " + appendCommand() + "\n");
}

TEST_P(Iperf3Run, WritesRatesWithoutDecimals) {
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

    run(report(GetParam().reverse, c.rate, c.rate));

    EXPECT_EQ(readFile(latestPath()),
              start + (GetParam().reverse ? std::string("0,0,1170000000,") + c.text + "\n"
                                          : std::string("1180000000,") + c.text + ",0,0\n"));
  }
}

TEST_P(Iperf3Run, WritesAnEmptyLineAndKeepsTheEarlierResultsWithoutAMeasurement) {
  run(report(GetParam().reverse));
  outputResults = {"20201231T235959", true, 77, true, 78, true, 79};

  EXPECT_EQ(run(""), prints(kEmptyFields));

  EXPECT_EQ(readFile(latestPath()), kEmptyLine);
  EXPECT_EQ(readFile(historyPath()), std::string(GetParam().line) + kEmptyLine);
  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 79");
}

TEST_P(Iperf3Run, WritesTextsOf32CharactersWhole) {
  const std::string address(40, 'a');

  run("\"local_host\":\t\"" + address + "\"\n\"timesecs\":\t" + std::string(40, '7') + "\n");

  EXPECT_EQ(readFile(latestPath()),
            std::string(32, '7') + "," + std::string(32, 'a') + ",0,,0,0,,0,0,0,0\n");
}

TEST_P(Iperf3Run, AppendsAlsoWhenItsLineCannotBeWritten) {
  std::filesystem::create_directory(latestPath());

  EXPECT_EQ(run(report(GetParam().reverse)), prints(fields()));

  EXPECT_THAT(fakeHost.commands, ElementsAre(clientCommand(), appendCommand()));
  EXPECT_EQ(resultsText(), GetParam().results);
}

TEST_P(Iperf3Run, EndsWithoutALineOnAPortThatIsNotANumber) {
  fakeHost.onCommand = [](const std::string&) {
    writeFile(latestReport(), "\"local_port\":\tx\n");
  };

  EXPECT_EQ(console([] { EXPECT_THROW(exec_iperf3(GetParam().reverse), std::invalid_argument); }),
            " read latest file is " + latestReport() + "\n");

  EXPECT_THAT(fakeHost.commands, ElementsAre(clientCommand()));
  EXPECT_FALSE(fileExists(latestPath()));
  EXPECT_EQ(filepath, latestReport());
}

}  // namespace

#include "iperf3/iperf3_json.h"

#include "run_state.h"
#include "support/iperf3_record.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

using Extractor = void (*)(const char* path, iperf3_status& status);

constexpr char kReportPath[] = "report.json";

/// A line of a report as iperf3 lays it out.
std::string member(const std::string& name, const std::string& value) {
  return "\t\t\t\"" + name + "\":\t" + value + "\n";
}

std::string sums(const std::string& name, const std::string& bytes, const std::string& rate) {
  return "\t\t\"" + name + "\":\t{\n" + member("seconds", "10.0004,") +
         member("bytes", bytes + ",") + member("bits_per_second", rate + ",") +
         member("sender", "true") + "\t\t},\n";
}

/// The members of a report before its sums.
std::string start(const std::string& reverse) {
  return "{\n\t\"start\":\t{\n" + member("local_host", "\"192.168.1.20\",") +
         member("local_port", "54012,") + member("remote_host", "\"192.168.1.10\",") +
         member("remote_port", "5201") + member("timesecs", "1605505183") +
         member("duration", "10,") + member("reverse", reverse + ",") + "\t},\n\t\"end\":\t{\n";
}

constexpr char kStartText[] = "1605505183 192.168.1.20 54012 192.168.1.10 5201 10";

const std::string kForward = start("0") + sums("sum_sent", "1180000000", "943718412.345") +
                             sums("sum_received", "1170000000", "935718412.345") + "\t}\n}\n";
const std::string kReverse = start("1") + sums("sum_sent", "1180000000", "943718412.345") +
                             sums("sum_received", "1170000000", "935718412.345") + "\t}\n}\n";

constexpr char kForwardText[] =
    "1605505183 192.168.1.20 54012 192.168.1.10 5201 10 0 0 1180000000 943718400 0 0";
constexpr char kReverseText[] =
    "1605505183 192.168.1.20 54012 192.168.1.10 5201 10 1 0 0 0 1170000000 935718400";

class Iperf3Json : public RunFixture {
 protected:
  /// Reads `report` into `status` and returns the printed text.
  static std::string print(const std::string& report, iperf3_status& status) {
    writeFile(kReportPath, report);
    return console([&status] { iperf3JsonToCsvUnix(kReportPath, status); });
  }

  /// The record that `report` gives.
  static std::string record(const std::string& report, iperf3_status status = {}) {
    print(report, status);
    return recordText(status);
  }

  /// Expects that `report` ends the run: that reading it throws, prints nothing and measures
  /// nothing.
  template <typename Exception>
  static void expectEnd(const std::string& report) {
    writeFile(kReportPath, report);
    bool ended = false;
    const std::string printed = console([&ended] {
      iperf3_status status;
      try {
        iperf3JsonToCsvUnix(kReportPath, status);
      } catch (const Exception&) {
        ended = true;
      }
    });
    EXPECT_TRUE(ended);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(resultsText(), kNoResults);
  }

  /// The row of a recorded report: its record, the two rates and how the reading ended.
  static std::string row(Extractor extract, const std::string& file) {
    writeFile(kReportPath, readFile(testData("iperf3/" + file)));
    outputResults = {};
    iperf3_status status;
    std::string outcome = "returns";
    console([&] {
      try {
        extract(kReportPath, status);
      } catch (const std::invalid_argument&) {
        outcome = "invalid_argument";
      }
    });
    const Results& results = outputResults;
    return recordText(status) + " " +
           (results.writeRateValid ? std::to_string(results.writeRateBps) : "-") + " " +
           (results.readRateValid ? std::to_string(results.readRateBps) : "-") + " " + outcome;
  }
};

TEST_F(Iperf3Json, GivesTheRecordOfEachRecording) {
  for (const Recording& recording : recordings("iperf3")) {
    SCOPED_TRACE(recording.file);

    EXPECT_EQ(row(iperf3JsonToCsvUnix, recording.file), recording.expected);
    EXPECT_STREQ(outputResults.dateTime, "");

    EXPECT_EQ(row(iperf3JsonToCsv, recording.file), recording.expected);
    EXPECT_STREQ(outputResults.dateTime,
                 recording.expected.ends_with("returns") ? kStartStamp : "");
  }
}

TEST_F(Iperf3Json, ForwardReportSetsTheSentNumbersAndTheWriteRate) {
  iperf3_status status;
  status.lengthRcvd = 5;
  status.bpsRcvd = 6.5;
  outputResults = {"20201231T235959", true, 77, false, 78, true, 79};

  print(kForward, status);

  EXPECT_EQ(recordText(status), std::string(kStartText) + " 0 0 1180000000 943718400 5 6.5");
  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 943718400, read 79");
}

TEST_F(Iperf3Json, ReverseReportSetsTheReceivedNumbersAndTheReadRate) {
  iperf3_status status;
  status.lengthSent = 5;
  status.bpsSent = 6.5;
  outputResults = {"20201231T235959", true, 77, true, 78, false, 79};

  print(kReverse, status);

  EXPECT_EQ(recordText(status), std::string(kStartText) + " 1 0 5 6.5 1170000000 935718400");
  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 935718400");
}

TEST_F(Iperf3Json, IsPrintedWhateverTheSwitchesSay) {
  iperf3_status status;
  status.transferId = 3;

  EXPECT_EQ(print(kForward, status),
            "\n= IPERF3 history  ====================================\n"
            "date 1605505183\n"
            "client ip 192.168.1.20\n"
            "server ip 192.168.1.10\n"
            "client tcp port 54012\n"
            "server tcp port 5201\n"
            "transfer ID 3\n"
            "test time 10\n"
            "reverse 0\n"
            "length sent 1180000000 \n"
            "Bps sent 943718400\n"
            "length rcvd 0 \n"
            "Bps rcvd 0\n");
}

iperf3_status callersRecord(const char* reverse) {
  iperf3_status status;
  formatInto(status.date, "d");
  formatInto(status.clientIp, "c");
  formatInto(status.serverIp, "s");
  status.clientPort = 1;
  status.serverPort = 2;
  formatInto(status.testTime, "t");
  formatInto(status.reverse, "%s", reverse);
  status.transferId = 3;
  status.lengthSent = 4;
  status.bpsSent = 5.75;
  status.lengthRcvd = 6;
  status.bpsRcvd = 7.75;
  return status;
}

TEST_F(Iperf3Json, ThatIsMissingLeavesTheCallersRecordAndPrintsIt) {
  iperf3_status status = callersRecord("?");

  EXPECT_EQ(console([&status] { iperf3JsonToCsvUnix(kReportPath, status); }),
            "\n= IPERF3 history  ====================================\n"
            "date d\n"
            "client ip c\n"
            "server ip s\n"
            "client tcp port 1\n"
            "server tcp port 2\n"
            "transfer ID 3\n"
            "test time t\n"
            "reverse ?\n"
            "length sent 4 \n"
            "Bps sent 6\n"
            "length rcvd 6 \n"
            "Bps rcvd 8\n");

  EXPECT_EQ(recordText(status), "d c 1 s 2 t ? 3 4 5.75 6 7.75");
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Json, UnderWhoseNameADirectoryStandsLeavesTheCallersRecord) {
  std::filesystem::create_directory(kReportPath);
  iperf3_status status = callersRecord("?");

  console([&status] { iperf3JsonToCsvUnix(kReportPath, status); });

  EXPECT_EQ(recordText(status), "d c 1 s 2 t ? 3 4 5.75 6 7.75");
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Json, WithoutADirectionTakesTheCallers) {
  const std::string report = sums("sum_sent", "11", "12") + sums("sum_received", "13", "14");

  EXPECT_EQ(record(report, callersRecord("0")), "d c 1 s 2 t 0 3 11 12 6 7.75");
  EXPECT_EQ(resultsText(), "date , latency (0), write 12, read (0)");

  outputResults = {};
  EXPECT_EQ(record(report, callersRecord("1")), "d c 1 s 2 t 1 3 4 5.75 13 14");
  EXPECT_EQ(resultsText(), "date , latency (0), write (0), read 14");

  outputResults = {};
  EXPECT_EQ(record(report, callersRecord("")), "d c 1 s 2 t - 3 4 5.75 6 7.75");
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Json, ThatIsMissingCountsWithTheCallersRate) {
  iperf3_status forward = callersRecord("0");
  iperf3_status reverse = callersRecord("1");

  console([&] {
    iperf3JsonToCsvUnix(kReportPath, forward);
    iperf3JsonToCsvUnix(kReportPath, reverse);
  });

  EXPECT_EQ(resultsText(), "date , latency (0), write 5, read 7");
}

TEST_F(Iperf3Json, HasItsDirectionInTheFirstCharacter) {
  const struct {
    const char* reverse;
    const char* fields;
    const char* results;
  } cases[] = {{"0", " 0 0 8 9 0 0", "date , latency (0), write 9, read (0)"},
               {"01", " 01 0 8 9 0 0", "date , latency (0), write 9, read (0)"},
               {"1", " 1 0 0 0 6 7", "date , latency (0), write (0), read 7"},
               {"10", " 10 0 0 0 6 7", "date , latency (0), write (0), read 7"},
               {"2", " 2 0 0 0 0 0", kNoResults},
               {"true", " true 0 0 0 0 0", kNoResults},
               {"-1", " -1 0 0 0 0 0", kNoResults},
               {"", " - 0 0 0 0 0", kNoResults}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reverse);
    outputResults = {};

    EXPECT_EQ(
        record(start(c.reverse) + sums("sum_sent", "8", "9") + sums("sum_received", "6", "7")),
        kStartText + std::string(c.fields));
    EXPECT_EQ(resultsText(), c.results);
  }
}

TEST_F(Iperf3Json, NeedsItsDirectionBeforeItsSums) {
  EXPECT_EQ(record(sums("sum_sent", "8", "9") + start("0")),
            kStartText + std::string(" 0 0 0 0 0 0"));
  EXPECT_EQ(resultsText(), "date , latency (0), write 0, read (0)");
}

TEST_F(Iperf3Json, GivesTheSameWithBlanksInsteadOfTabsBehindTheColons) {
  std::string report = kForward;
  for (std::size_t tab = report.find(":\t"); tab != std::string::npos; tab = report.find(":\t")) {
    report[tab + 1] = ' ';
  }

  EXPECT_EQ(record(report), kForwardText);
}

TEST_F(Iperf3Json, LosesTheFirstCharacterWithoutOneBehindTheColons) {
  std::string report = start("90") + sums("sum_sent", "1180000000", "943718412.345");
  for (std::size_t tab = report.find(":\t"); tab != std::string::npos; tab = report.find(":\t")) {
    report.erase(tab + 1, 1);
  }

  EXPECT_EQ(record(report),
            "605505183 92.168.1.20 4012 92.168.1.10 201 0 0 0 180000000 43718412 0 0");
}

TEST_F(Iperf3Json, KeepsTheCarriageReturnOfAValueThatEndsItsLine) {
  EXPECT_EQ(record(withCarriageReturns(kForward)),
            "1605505183\r 192.168.1.20 54012 192.168.1.10 5201 10 0 0 1180000000 943718400 0 0");
  EXPECT_EQ(record(withCarriageReturns(kReverse)),
            "1605505183\r 192.168.1.20 54012 192.168.1.10 5201 10 1 0 0 0 1170000000 935718400");
}

TEST_F(Iperf3Json, TakesTheAddressesUpToTheNextQuote) {
  const struct {
    const char* value;
    const char* address;
  } cases[] = {{"\"fe80::1\",", "fe80::1"},
               {"\"fe80::1%eth0\",", "fe80::1%eth0"},
               {"\"::ffff:192.168.1.20\",", "::ffff:192.168.1.20"},
               {"\"\",", "-"},
               {R"("host" "other")", "host"},
               {"\"open end", "open end"},
               {"", "-"},
               {"\"", "-"},
               // 32 characters are kept.
               {"\"fe80:1111:2222:3333:4444:5555:6666\",", "fe80:1111:2222:3333:4444:5555:66"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);

    EXPECT_EQ(record(member("local_host", c.value)),
              std::string("- ") + c.address + " 0 - 0 - - 0 0 0 0 0");
    EXPECT_EQ(record(member("remote_host", c.value)),
              std::string("- - 0 ") + c.address + " 0 - - 0 0 0 0 0");
  }
}

TEST_F(Iperf3Json, TakesTheOtherTextsUpToTheNextComma) {
  const struct {
    const char* value;
    const char* text;
  } cases[] = {{"1605505183", "1605505183"},
               {"1605505183,", "1605505183"},
               {"1605505183, \"x\": 1", "1605505183"},
               {"1605505183 }", "1605505183 }"},
               {"\"text\",", "\"text\""},
               {",", "-"},
               {"", "-"},
               {"12345678901234567890123456789012,", "12345678901234567890123456789012"},
               {"123456789012345678901234567890123,", "12345678901234567890123456789012"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const std::string text = c.text;

    EXPECT_EQ(record(member("timesecs", c.value)), text + " - 0 - 0 - - 0 0 0 0 0");
    EXPECT_EQ(record(member("duration", c.value)), "- - 0 - 0 " + text + " - 0 0 0 0 0");
    EXPECT_EQ(record(member("reverse", c.value)), "- - 0 - 0 - " + text + " 0 0 0 0 0");
  }
}

TEST_F(Iperf3Json, TakesPortsAsNumbers) {
  const struct {
    const char* value;
    const char* port;
  } cases[] = {{"5201,", "5201"},
               {"5201", "5201"},
               {" +5201x,", "5201"},
               {"-1,", "-1"},
               {"5201 }]", "5201"},
               {"5.9,", "5"},
               {"0x10,", "0"},
               {"010,", "10"},
               {"2147483647,", "2147483647"},
               {"-2147483648,", "-2147483648"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const std::string port = c.port;

    EXPECT_EQ(record(member("local_port", c.value)), "- - " + port + " - 0 - - 0 0 0 0 0");
    EXPECT_EQ(record(member("remote_port", c.value)), "- - 0 - " + port + " - - 0 0 0 0 0");
  }
}

TEST_F(Iperf3Json, WithAPortThatIsNotANumberEndsTheRun) {
  for (const char* const name : {"local_port", "remote_port"}) {
    for (const char* const value : {"", ",", "x,", "\"5201\",", "-,", ",5201"}) {
      SCOPED_TRACE(std::string(name) + value);

      expectEnd<std::invalid_argument>(kForward + member(name, value));
    }
  }
}

TEST_F(Iperf3Json, WithAPortPast32BitsEndsTheRun) {
  for (const char* const name : {"local_port", "remote_port"}) {
    for (const char* const value : {"2147483648,", "-2147483649,", "99999999999999999999,"}) {
      SCOPED_TRACE(std::string(name) + value);

      expectEnd<std::out_of_range>(kForward + member(name, value));
    }
  }
}

TEST_F(Iperf3Json, TakesTheLastOfRepeatedMembers) {
  EXPECT_EQ(
      record(kForward + member("local_host", "\"a\",") + member("local_port", "1,") +
             member("remote_host", "\"b\",") + member("remote_port", "2,") +
             member("timesecs", "3,") + member("duration", "4,") + sums("sum_sent", "5", "6") +
             member("reverse", "1,") + sums("sum_received", "7", "8")),
      "3 a 1 b 2 4 1 0 5 6 7 8");
  EXPECT_EQ(resultsText(), "date , latency (0), write (0), read 8");
}

TEST_F(Iperf3Json, FindsAMemberAnywhereInItsLineAndCutsAtTheFirstColon) {
  const struct {
    const char* line;
    const char* text;
  } cases[] = {{"duration:\t7,", "7"},
               {"\"the duration of it\":\t7,", "7"},
               {"\"durations\":\t7,", "7"},
               {"{\"duration\":\t7}", "7}"},
               {"\"a\":\t\"duration\",", "\"duration\""},
               {"\"a:b duration\":\t7,", " duration\":\t7"},
               {"\"duration\"\t7,", "-"},  // no colon
               {"\"Duration\":\t7,", "-"},
               {"\"dura\tion\":\t7,", "-"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_EQ(record(c.line), std::string("- - 0 - 0 ") + c.text + " - 0 0 0 0 0");
  }
}

TEST_F(Iperf3Json, LooksForTheLaterMembersInWhatACutLeaves) {
  const struct {
    const char* line;
    const char* record;
  } cases[] = {
      {"\"local_port\":\t1, \"remote_port\":\t2,", "- - 1 - 2 - - 0 0 0 0 0"},
      {"\"duration\":\t3, \"reverse\":\t0,", "- - 0 - 0 3 0 0 0 0 0 0"},
      {"\"timesecs\":\t4, \"duration\":\t3, \"reverse\":\t5", "4 - 0 - 0 3 5 0 0 0 0 0"},
      {"\"local_host\":\t\"a\", \"remote_host\":\t\"b\",", "- a 0 b 0 - - 0 0 0 0 0"},
      // The earlier member is looked for first, wherever it stands, and takes the first value.
      {"\"reverse\":\t5, \"duration\":\t3,", "- - 0 - 0 5 - 0 0 0 0 0"},
      {"\"local_port\":\t1, \"local_host\":\t\"a\",", "- ,  0 - 0 - - 0 0 0 0 0"},
      {"\"remote_port\":\t2, \"local_port\":\t1,", "- - 2 - 0 - - 0 0 0 0 0"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_EQ(record(c.line), c.record);
  }
}

TEST_F(Iperf3Json, LooksForItsSumsInWhatACutLeaves) {
  const std::string block = member("bytes", "8,") + member("bits_per_second", "9,") + "}\n";

  EXPECT_EQ(record("\"reverse\":\t0, \"sum_sent\":\t{\n" + block), "- - 0 - 0 - 0 0 8 9 0 0");
  EXPECT_EQ(record("\"reverse\":\t1, \"sum_received\":\t{\n" + block), "- - 0 - 0 - 1 0 0 0 8 9");
  EXPECT_EQ(record("\"sum_sent\", \"reverse\":\t0, {\n" + block), "- - 0 - 0 - 0 0 0 0 0 0");
}

TEST_F(Iperf3Json, TakesTheLastOfRepeatedSums) {
  EXPECT_EQ(record(start("0") + sums("sum_sent", "1", "2") + sums("sum_sent", "3", "4")),
            kStartText + std::string(" 0 0 3 4 0 0"));
  EXPECT_EQ(record(start("1") + sums("sum_received", "1", "2") + sums("sum_received", "3", "4")),
            kStartText + std::string(" 1 0 0 0 3 4"));
}

TEST_F(Iperf3Json, FindsItsSumsByAPartOfTheirName) {
  EXPECT_EQ(record(start("0") + sums("the_sum_sent_2", "1", "2") + sums("sum", "3", "4")),
            kStartText + std::string(" 0 0 1 2 0 0"));
  EXPECT_EQ(record(start("1") + sums("the_sum_received_2", "1", "2") + sums("sum", "3", "4")),
            kStartText + std::string(" 1 0 0 0 1 2"));
}

TEST_F(Iperf3Json, TakesNoMemberFromTheLinesOfItsSums) {
  const std::string members = member("local_host", "\"a\",") + member("local_port", "1,") +
                              member("remote_host", "\"b\",") + member("remote_port", "2,") +
                              member("timesecs", "3,") + member("duration", "4,") +
                              member("reverse", "1,");

  EXPECT_EQ(record(start("0") + "\"sum_sent\":\t{\n" + members + member("bytes", "8,") +
                   "} \"duration\":\t5\n" + sums("sum_received", "6", "7")),
            kStartText + std::string(" 0 0 8 0 0 0"));
}

TEST_F(Iperf3Json, ScansTheOtherSumsAsOrdinaryLines) {
  EXPECT_EQ(record(start("0") + "\"sum_received\":\t{\n" + member("duration", "4,") +
                   sums("sum_sent", "8", "9") + "}\n"),
            "1605505183 192.168.1.20 54012 192.168.1.10 5201 4 0 0 8 9 0 0");
  EXPECT_EQ(record(start("1") + "\"sum_sent\":\t{\n" + member("duration", "4,") +
                   sums("sum_received", "8", "9") + "}\n"),
            "1605505183 192.168.1.20 54012 192.168.1.10 5201 4 1 0 0 0 8 9");
}

TEST_F(Iperf3Json, ReadsItsSumsUpToTheFirstClosingBrace) {
  const struct {
    std::string block;
    const char* numbers;
  } cases[] = {
      {member("bytes", "8,") + member("bits_per_second", "9,") + "}\n", "8 9"},
      {member("bits_per_second", "9,") + member("bytes", "8,") + "}\n", "8 9"},
      {"\"bytes\":\t8, \"bits_per_second\":\t9 }\n" + member("bytes", "1,") + "}\n", "8 9"},
      {member("bytes", "8 }") + member("bits_per_second", "9,") + "}\n", "8 0"},
      {"}\n" + member("bytes", "8,") + member("bits_per_second", "9,"), "0 0"},
      // A block that never closes ends with the file.
      {member("bytes", "8,") + member("bits_per_second", "9"), "8 9"},
      {member("bytes", "8"), "8 0"},
      {"\n\n" + member("bits_per_second", "9") + "\n", "0 9"},
      {"", "0 0"},
      // The first of repeated members counts, and a part of a name will do.
      {member("max_bytes", "8,") + member("bytes", "1,") + member("max_bits_per_second", "9,") +
           member("bits_per_second", "2,") + "}\n",
       "8 9"},
      {member("bytes", "8,") + member("bytes", "1,") + member("bits_per_second", "9,") +
           member("bits_per_second", "2,") + "}\n",
       "8 9"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.block);

    EXPECT_EQ(record(start("0") + "\"sum_sent\":\t{\n" + c.block),
              kStartText + std::string(" 0 0 ") + c.numbers + " 0 0");
    EXPECT_EQ(record(start("1") + "\"sum_received\":\t{\n" + c.block),
              kStartText + std::string(" 1 0 0 0 ") + c.numbers);
  }
}

TEST_F(Iperf3Json, KeepsTheCallersNumbersWithoutThoseOfItsSums) {
  const std::string sent = "\"sum_sent\":\t{\n";
  const std::string received = "\"sum_received\":\t{\n";

  EXPECT_EQ(record(sent + "}\n", callersRecord("0")), "d c 1 s 2 t 0 3 4 5.75 6 7.75");
  EXPECT_EQ(record(sent + member("bytes", "8,") + "}\n", callersRecord("0")),
            "d c 1 s 2 t 0 3 8 5.75 6 7.75");
  EXPECT_EQ(record(received + member("bits_per_second", "9,") + "}\n", callersRecord("1")),
            "d c 1 s 2 t 1 3 4 5.75 6 9");
}

TEST_F(Iperf3Json, TakesByteCountsAsSignedNumbersOf64Bits) {
  const struct {
    const char* bytes;
    const char* length;
  } cases[] = {{"0", "0"},
               {" \t+8x", "8"},
               {"1.5e9", "1"},
               {"9223372036854775807", "9223372036854775807"},
               {"-1", "18446744073709551615"},
               {"-9223372036854775808", "9223372036854775808"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bytes);

    EXPECT_EQ(record(start("0") + sums("sum_sent", c.bytes, "9")),
              kStartText + std::string(" 0 0 ") + c.length + " 9 0 0");
    EXPECT_EQ(record(start("1") + sums("sum_received", c.bytes, "9")),
              kStartText + std::string(" 1 0 0 0 ") + c.length + " 9");
  }
}

TEST_F(Iperf3Json, WithAByteCountThatIsNotANumberEndsTheRun) {
  for (const char* const block : {"\"bytes\":\t,\n}", "\"bytes\":\tx,\n}", "\"bytes\":\t\"8\",\n}",
                                  "\"bytes\":\t", "\"bytes", "\"bytes\":\t-\n"}) {
    SCOPED_TRACE(block);

    expectEnd<std::invalid_argument>(start("0") + "\"sum_sent\":\t{\n" + block);
  }
}

TEST_F(Iperf3Json, WithAByteCountPast64BitsEndsTheRun) {
  for (const char* const bytes : {"9223372036854775808", "-9223372036854775809"}) {
    SCOPED_TRACE(bytes);

    expectEnd<std::out_of_range>(start("1") + sums("sum_received", bytes, "9"));
  }
}

TEST_F(Iperf3Json, RoundsARateToSinglePrecisionAndRecordsItWithoutItsFraction) {
  const struct {
    const char* rate;
    const char* record;
    const char* bps;
  } cases[] = {{"943718412.345", "943718400", "943718400"},
               {"1234567891.5", "1234567936", "1234567936"},
               {"1.02642e+09", "1026419968", "1026419968"},
               {"0", "0", "0"},
               {"0.75", "0.75", "0"},
               {"1", "1", "1"},
               {"15.9375", "15.9375", "15"},
               {" 9 x", "9", "9"},
               {"x", "0", "0"},
               {"", "0", "0"},
               {"null", "0", "0"},
               {"-0.5", "-0.5", "0"},
               {"-943718400", "-943718400", "0"},
               {"nan", "nan", "0"},
               {"-inf", "-inf", "0"},
               {"inf", "inf", "18446744073709551615"},
               {"1e39", "inf", "18446744073709551615"},
               {"-1e39", "-inf", "0"},
               {"3e38", "3.0000000054977558e+38", "18446744073709551615"},
               // The rates at the edge of 64 bits.
               {"18446744073709551615", "1.8446744073709552e+19", "18446744073709551615"},
               {"18446742974197923840", "1.8446742974197924e+19", "18446742974197923840"},
               {"9223372036854775808", "9.2233720368547758e+18", "9223372036854775808"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rate);
    outputResults = {};

    EXPECT_EQ(record(start("0") + sums("sum_sent", "8", c.rate)),
              kStartText + std::string(" 0 0 8 ") + c.record + " 0 0");
    EXPECT_EQ(record(start("1") + sums("sum_received", "8", c.rate)),
              kStartText + std::string(" 1 0 0 0 8 ") + c.record);

    EXPECT_EQ(resultsText(), std::string("date , latency (0), write ") + c.bps + ", read " + c.bps);
  }
}

TEST_F(Iperf3Json, TakesARateUpToTheNextTab) {
  const struct {
    const char* block;
    const char* rate;
  } cases[] = {{"\"bits_per_second\":\t9\t8\n}", "9"}, {"\"bits_per_second\":\t9\n\t}", "9"},
               {"\"bits_per_second\":\t9\n8}", "98"},  // the lines are joined
               {"\"bits_per_second\":\t9", "9"},       {"\"bits_per_second\":\t", "0"},
               {"\"bits_per_second\":\t\t9,\n}", "0"}, {"\"bits_per_second", "0"},
               {"\"bits_per_second_2\":\t9,\n}", "0"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.block);

    EXPECT_EQ(record(start("0") + "\"sum_sent\":\t{\n" + c.block),
              kStartText + std::string(" 0 0 0 ") + c.rate + " 0 0");
  }
}

TEST_F(Iperf3Json, TakesTheDecimalsFromTheStandardOutputStreamWithARate) {
  record(start("0") + "\"sum_sent\":\t{\n" + member("bytes", "8,") + "}\n");
  record(start("0") + sums("sum_received", "8", "9"));
  EXPECT_EQ(std::cout.precision(), 6);

  record(start("0") + sums("sum_sent", "8", "x"));
  EXPECT_EQ(std::cout.precision(), 0);
}

TEST_F(Iperf3Json, EndsWithItsFileWhateverItsLastLine) {
  std::string report = start("0") + sums("sum_sent", "8", "9") + "\n\n" + member("duration", "4");
  report.pop_back();

  EXPECT_EQ(record(report), "1605505183 192.168.1.20 54012 192.168.1.10 5201 4 0 0 8 9 0 0");
  EXPECT_EQ(record(""), "- - 0 - 0 - - 0 0 0 0 0");
  EXPECT_EQ(record("\n"), "- - 0 - 0 - - 0 0 0 0 0");
}

long openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

TEST_F(Iperf3Json, ClosesItsFileOnEveryPath) {
  const long before = openFiles();

  record(kForward);
  iperf3_status status;
  writeFile(kReportPath, member("local_port", "x"));
  EXPECT_THROW(iperf3JsonToCsvUnix(kReportPath, status), std::invalid_argument);

  EXPECT_EQ(openFiles(), before);
}

TEST_F(Iperf3Json, TakesAPathOfAnyLengthAsItStands) {
  const std::string folder = std::string(100, 'f') + "/" + std::string(100, 'g');
  std::filesystem::create_directories(folder);
  const std::string path = folder + "/100%%d.json";
  writeFile(path, kReverse);
  iperf3_status status;

  console([&] { iperf3JsonToCsvUnix(path.c_str(), status); });

  EXPECT_EQ(recordText(status), kReverseText);
}

class Iperf3JsonOnWindows : public RunFixture {
 protected:
  /// Extracts `report` into `status` and returns the printed text.
  static std::string print(const std::string& report, iperf3_status& status) {
    writeFile(kReportPath, report);
    return console([&status] { iperf3JsonToCsv(kReportPath, status); });
  }
};

TEST_F(Iperf3JsonOnWindows, StampsTheResults) {
  iperf3_status status;
  fakeHost.now += 60;

  EXPECT_EQ(print(kForward, status), "");
  EXPECT_EQ(recordText(status), kForwardText);
  EXPECT_EQ(resultsText(), "date 20261116T054100, latency (0), write 943718400, read (0)");

  status = {};
  fakeHost.now += 60;
  EXPECT_EQ(print(kReverse, status), "");
  EXPECT_EQ(recordText(status), kReverseText);
  EXPECT_EQ(resultsText(), "date 20261116T054200, latency (0), write 943718400, read 935718400");
}

TEST_F(Iperf3JsonOnWindows, StampsTheResultsAlsoWithoutADirection) {
  iperf3_status status;

  print(start("2"), status);
  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write (0), read (0)");

  fakeHost.now += 60;
  console([&status] { iperf3JsonToCsv("missing.json", status); });
  EXPECT_EQ(resultsText(), "date 20261116T054100, latency (0), write (0), read (0)");
}

TEST_F(Iperf3JsonOnWindows, IsPrintedOnlyWithBothSwitches) {
  iperf3_status status;
  ConfigurationParameters.debugPrintLast = true;
  ConfigurationParameters.debugPrintPing = true;
  EXPECT_EQ(print(kForward, status), "");

  ConfigurationParameters.debugConfFile = true;
  EXPECT_EQ(print(kForward, status), "");

  ConfigurationParameters.debugConfFile = false;
  ConfigurationParameters.debugPrintHistory = true;
  EXPECT_EQ(print(kForward, status), "");

  ConfigurationParameters.debugConfFile = true;
  EXPECT_EQ(print(kForward, status),
            "\n= IPERF3 history  ====================================\n"
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
            "Bps rcvd 0\n");
}

TEST_F(Iperf3JsonOnWindows, EndsTheRunUnstampedWithoutANumber) {
  writeFile(kReportPath, kForward + member("local_port", "x"));
  iperf3_status status;

  EXPECT_THROW(iperf3JsonToCsv(kReportPath, status), std::invalid_argument);

  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3JsonOnWindows, TakesThePathAsAFormat) {
  writeFile("100%d.json", kForward);
  iperf3_status status;

  console([&status] { iperf3JsonToCsv("100%%d.json", status); });

  EXPECT_EQ(recordText(status), kForwardText);
}

TEST_F(Iperf3JsonOnWindows, TakesTheFirst127CharactersOfThePath) {
  const std::string path = std::string(127, 'p');
  writeFile(path, kForward);
  for (const std::string& given : {path, path + "p"}) {
    SCOPED_TRACE(given);
    iperf3_status status;

    console([&] { iperf3JsonToCsv(given.c_str(), status); });

    EXPECT_EQ(recordText(status), kForwardText);
  }
}

}  // namespace

#include "iperf3/iperf3_json.h"

#include "run_state.h"
#include "support/iperf3_record.h"
#include "support/iperf_texts.h"
#include "support/recordings.h"
#include "support/results_text.h"
#include "support/run_fixture.h"
#include "text_buffer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <initializer_list>
#include <iostream>
#include <iterator>
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

const std::string kStartText = "1605505183 192.168.1.20 54012 192.168.1.10 5201 10 ";

const std::string kBothSums = sums("sum_sent", "1180000000", "943718412.345") +
                              sums("sum_received", "1170000000", "935718412.345") + "\t}\n}\n";
const std::string kForward = start("0") + kBothSums;
const std::string kReverse = start("1") + kBothSums;

constexpr char kForwardPrint[] =
    "reverse 0\nlength sent 1180000000 \nBps sent 943718400\nlength rcvd 0 \nBps rcvd 0\n";
constexpr char kHeading[] = "\n= IPERF3 history  ====================================\n";

/// A record that holds "d c 1 s 2 t <reverse> 3 4 5.75 6 7.75".
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

long openFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

class Iperf3Json : public RunFixture {
 protected:
  /// Reads `report` into `status` and returns the printed text.
  static std::string print(const std::string& report, iperf3_status& status) {
    writeFile(kReportPath, report);
    return console([&status] { iperf3JsonToCsvUnix(kReportPath, status); });
  }

  /// The record that `report` gives.
  static std::string record(const std::string& report, iperf3_status status = {}) {
    outputResults = {};
    print(report, status);
    return recordText(status);
  }

  struct Case {
    std::string report;
    std::string record;
  };

  static void expectRecords(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.report);

      EXPECT_EQ(record(c.report), c.record);
    }
  }

  /// Expects that sums which consist of `block` give `numbers` in either direction.
  static void expectSums(const std::string& block, const std::string& numbers) {
    SCOPED_TRACE(block);

    EXPECT_EQ(record(start("0") + "\"sum_sent\":\t{\n" + block),
              kStartText + "0 0 " + numbers + " 0 0");
    EXPECT_EQ(record(start("1") + "\"sum_received\":\t{\n" + block),
              kStartText + "1 0 0 0 " + numbers);
  }

  /// Has `extract` read the report into `status`; returns how that ended.
  static std::string endingBy(Extractor extract, iperf3_status& status, std::string& printed) {
    std::string ending;
    printed = console([&] { ending = endingOf([&] { extract(kReportPath, status); }); });
    return ending;
  }

  /// Expects that reading `report` ends by `exception`, in either variant; prints and measures
  /// nothing, and closes its file.
  static void expectEnd(const std::string& exception, const std::string& report) {
    SCOPED_TRACE(report);
    writeFile(kReportPath, report);
    const long filesBefore = openFiles();
    iperf3_status status;
    std::string printed;

    for (const Extractor extract : {iperf3JsonToCsvUnix, iperf3JsonToCsv}) {
      EXPECT_EQ(endingBy(extract, status, printed), exception);
      EXPECT_EQ(printed, "");
    }

    EXPECT_EQ(resultsText(), kNoResults);
    EXPECT_EQ(openFiles(), filesBefore);
  }

  /// The row of a recorded report: its record, the two rates and how the reading ended.
  static std::string row(Extractor extract, const std::string& file) {
    writeFile(kReportPath, readFile(testData("iperf3/" + file)));
    outputResults = {};
    iperf3_status status;
    std::string printed;
    const std::string ending = endingBy(extract, status, printed);
    const Results& results = outputResults;
    return recordText(status) + " " +
           (results.writeRateValid ? std::to_string(results.writeRateBps) : "-") + " " +
           (results.readRateValid ? std::to_string(results.readRateBps) : "-") + " " + ending;
  }
};

TEST_F(Iperf3Json, GivesTheRecordOfEachRecording) {
  for (const Recording& recording : recordings("iperf3")) {
    SCOPED_TRACE(recording.file);

    EXPECT_EQ(row(iperf3JsonToCsvUnix, recording.file), recording.expected);
  }
}

TEST_F(Iperf3Json, SetsTheNumbersAndTheRateOfItsDirectionOnly) {
  iperf3_status forward = callersRecord("");
  iperf3_status reverse = callersRecord("");

  outputResults = {"20201231T235959", true, 77, false, 78, true, 79};
  print(kForward, forward);
  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 943718400, read 79");

  outputResults = {"20201231T235959", true, 77, true, 78, false, 79};
  print(kReverse, reverse);
  EXPECT_EQ(resultsText(), "date 20201231T235959, latency 77, write 78, read 935718400");

  EXPECT_EQ(recordText(forward), kStartText + "0 3 1180000000 943718400 6 7.75");
  EXPECT_EQ(recordText(reverse), kStartText + "1 3 4 5.75 1170000000 935718400");
}

TEST_F(Iperf3Json, IsPrintedWhateverTheSwitchesSay) {
  iperf3_status status;

  EXPECT_EQ(print(kForward, status), std::string(kHeading) + kIperf3Connection + kForwardPrint);
}

TEST_F(Iperf3Json, ThatIsMissingLeavesTheCallersRecordAndCountsWithItsRate) {
  iperf3_status unknown = callersRecord("?");
  iperf3_status forward = callersRecord("0");
  iperf3_status reverse = callersRecord("1");

  console([&unknown] { iperf3JsonToCsvUnix(kReportPath, unknown); });
  EXPECT_EQ(resultsText(), kNoResults);

  std::filesystem::create_directory(kReportPath);
  console([&] {
    iperf3JsonToCsvUnix(kReportPath, forward);
    iperf3JsonToCsvUnix(kReportPath, reverse);
  });
  EXPECT_EQ(resultsText(), "date , latency (0), write 5, read 7");

  EXPECT_EQ(recordText(unknown), "d c 1 s 2 t ? 3 4 5.75 6 7.75");
  EXPECT_EQ(recordText(forward), "d c 1 s 2 t 0 3 4 5.75 6 7.75");
  EXPECT_EQ(recordText(reverse), "d c 1 s 2 t 1 3 4 5.75 6 7.75");
}

TEST_F(Iperf3Json, WithoutADirectionTakesTheCallers) {
  const std::string report = sums("sum_sent", "11", "12") + sums("sum_received", "13", "14");

  EXPECT_EQ(record(report, callersRecord("0")), "d c 1 s 2 t 0 3 11 12 6 7.75");
  EXPECT_EQ(resultsText(), "date , latency (0), write 12, read (0)");

  EXPECT_EQ(record(report, callersRecord("1")), "d c 1 s 2 t 1 3 4 5.75 13 14");
  EXPECT_EQ(resultsText(), "date , latency (0), write (0), read 14");

  EXPECT_EQ(record(report, callersRecord("")), "d c 1 s 2 t - 3 4 5.75 6 7.75");
  EXPECT_EQ(resultsText(), kNoResults);
}

TEST_F(Iperf3Json, HasItsDirectionInTheFirstCharacter) {
  const struct {
    const char* reverse;
    const char* fields;
    const char* results;
  } cases[] = {{"0", "0 0 8 9 0 0", "date , latency (0), write 9, read (0)"},
               {"01", "01 0 8 9 0 0", "date , latency (0), write 9, read (0)"},
               {"1", "1 0 0 0 6 7", "date , latency (0), write (0), read 7"},
               {"10", "10 0 0 0 6 7", "date , latency (0), write (0), read 7"},
               {"2", "2 0 0 0 0 0", kNoResults},
               {"true", "true 0 0 0 0 0", kNoResults},
               {"-1", "-1 0 0 0 0 0", kNoResults},
               {"", "- 0 0 0 0 0", kNoResults}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reverse);

    EXPECT_EQ(
        record(start(c.reverse) + sums("sum_sent", "8", "9") + sums("sum_received", "6", "7")),
        kStartText + c.fields);
    EXPECT_EQ(resultsText(), c.results);
  }
}

TEST_F(Iperf3Json, NeedsItsDirectionBeforeItsSums) {
  EXPECT_EQ(record(sums("sum_sent", "8", "9") + start("0")), kStartText + "0 0 0 0 0 0");
  EXPECT_EQ(resultsText(), "date , latency (0), write 0, read (0)");
}

TEST_F(Iperf3Json, DropsOneCharacterBehindTheColons) {
  std::string blanks = kForward;
  std::string nothing = start("90") + sums("sum_sent", "1180000000", "943718412.345");
  for (std::size_t tab = 0; (tab = blanks.find(":\t", tab)) != std::string::npos;) {
    blanks[tab + 1] = ' ';
  }
  for (std::size_t tab = 0; (tab = nothing.find(":\t", tab)) != std::string::npos;) {
    nothing.erase(tab + 1, 1);
  }

  expectRecords(
      {{blanks, kStartText + "0 0 1180000000 943718400 0 0"},
       {nothing, "605505183 92.168.1.20 4012 92.168.1.10 201 0 0 0 180000000 43718412 0 0"}});
}

TEST_F(Iperf3Json, KeepsTheCarriageReturnOfAValueThatEndsItsLine) {
  const std::string connection = "1605505183\r 192.168.1.20 54012 192.168.1.10 5201 10 ";

  expectRecords({{withCarriageReturns(kForward), connection + "0 0 1180000000 943718400 0 0"},
                 {withCarriageReturns(kReverse), connection + "1 0 0 0 1170000000 935718400"}});
}

TEST_F(Iperf3Json, TakesTheAddressesUpToTheNextQuote) {
  const struct {
    const char* value;
    const char* address;
  } cases[] = {{"\"fe80::1%eth0\",", "fe80::1%eth0"},
               {"\"::ffff:192.168.1.20\",", "::ffff:192.168.1.20"},
               {"\"\",", "-"},
               {R"("host" "other")", "host"},
               {"\"open end", "open end"},
               {"", "-"},
               {"\"", "-"},
               // 32 characters are kept.
               {"\"fe80:1111:2222:3333:4444:5555:6666\",", "fe80:1111:2222:3333:4444:5555:66"}};
  for (const auto& c : cases) {
    const std::string address = c.address;

    expectRecords({{member("local_host", c.value), "- " + address + " 0 - 0 - - 0 0 0 0 0"},
                   {member("remote_host", c.value), "- - 0 " + address + " 0 - - 0 0 0 0 0"}});
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
    const std::string text = c.text;

    expectRecords({{member("timesecs", c.value), text + " - 0 - 0 - - 0 0 0 0 0"},
                   {member("duration", c.value), "- - 0 - 0 " + text + " - 0 0 0 0 0"},
                   {member("reverse", c.value), "- - 0 - 0 - " + text + " 0 0 0 0 0"}});
  }
}

TEST_F(Iperf3Json, TakesPortsAsNumbers) {
  const struct {
    const char* value;
    const char* port;
  } cases[] = {{"5201,", "5201"},
               {"5201", "5201"},
               {" +5201x,", "5201"},
               {"5.9,", "5"},
               {"0x10,", "0"},
               {"010,", "10"},
               {"2147483647,", "2147483647"},
               {"-2147483648,", "-2147483648"}};
  for (const auto& c : cases) {
    const std::string port = c.port;

    expectRecords({{member("local_port", c.value), "- - " + port + " - 0 - - 0 0 0 0 0"},
                   {member("remote_port", c.value), "- - 0 - " + port + " - - 0 0 0 0 0"}});
  }
}

TEST_F(Iperf3Json, EndsTheRunByAPortThatIsNoNumberOf32Bits) {
  for (const char* const name : {"local_port", "remote_port"}) {
    for (const char* const value : {"", ",", "x,", "\"5201\",", "-,", ",5201"}) {
      expectEnd("invalid_argument", kForward + member(name, value));
    }
    for (const char* const value : {"2147483648,", "-2147483649,", "99999999999999999999,"}) {
      expectEnd("out_of_range", kForward + member(name, value));
    }
  }
}

TEST_F(Iperf3Json, TakesTheLastOfRepeatedMembersAndSums) {
  expectRecords(
      {{kForward + member("local_host", "\"a\",") + member("local_port", "1,") +
            member("remote_host", "\"b\",") + member("remote_port", "2,") +
            member("timesecs", "3,") + member("duration", "4,") + sums("sum_sent", "5", "6") +
            member("reverse", "1,") + sums("sum_received", "7", "8"),
        "3 a 1 b 2 4 1 0 5 6 7 8"},
       {start("0") + sums("sum_sent", "1", "2") + sums("sum_sent", "3", "4"),
        kStartText + "0 0 3 4 0 0"},
       {start("1") + sums("sum_received", "1", "2") + sums("sum_received", "3", "4"),
        kStartText + "1 0 0 0 3 4"}});
}

TEST_F(Iperf3Json, FindsAMemberAnywhereInItsLineAndCutsAtTheFirstColon) {
  expectRecords({{"duration:\t7,", "- - 0 - 0 7 - 0 0 0 0 0"},
                 {"\"the duration of it\":\t7,", "- - 0 - 0 7 - 0 0 0 0 0"},
                 {"\"durations\":\t7,", "- - 0 - 0 7 - 0 0 0 0 0"},
                 {"{\"duration\":\t7}", "- - 0 - 0 7} - 0 0 0 0 0"},
                 {"\"a\":\t\"duration\",", "- - 0 - 0 \"duration\" - 0 0 0 0 0"},
                 {"\"a:b duration\":\t7,", "- - 0 - 0  duration\":\t7 - 0 0 0 0 0"},
                 {"\"duration\"\t7,", "- - 0 - 0 - - 0 0 0 0 0"},  // no colon
                 {"\"Duration\":\t7,", "- - 0 - 0 - - 0 0 0 0 0"},
                 {"\"dura\tion\":\t7,", "- - 0 - 0 - - 0 0 0 0 0"}});
}

TEST_F(Iperf3Json, LooksForTheLaterMembersInWhatACutLeaves) {
  expectRecords(
      {{"\"local_port\":\t1, \"remote_port\":\t2,", "- - 1 - 2 - - 0 0 0 0 0"},
       {"\"duration\":\t3, \"reverse\":\t0,", "- - 0 - 0 3 0 0 0 0 0 0"},
       {"\"timesecs\":\t4, \"duration\":\t3, \"reverse\":\t5", "4 - 0 - 0 3 5 0 0 0 0 0"},
       {"\"local_host\":\t\"a\", \"remote_host\":\t\"b\",", "- a 0 b 0 - - 0 0 0 0 0"},
       // The earlier member is looked for first, wherever it stands, and takes the first value.
       {"\"reverse\":\t5, \"duration\":\t3,", "- - 0 - 0 5 - 0 0 0 0 0"},
       {"\"local_port\":\t1, \"local_host\":\t\"a\",", "- ,  0 - 0 - - 0 0 0 0 0"},
       {"\"remote_port\":\t2, \"local_port\":\t1,", "- - 2 - 0 - - 0 0 0 0 0"}});
}

TEST_F(Iperf3Json, LooksForItsSumsInWhatACutLeavesByAPartOfTheirName) {
  const std::string block = member("bytes", "8,") + member("bits_per_second", "9,") + "}\n";

  expectRecords({{"\"reverse\":\t0, \"sum_sent\":\t{\n" + block, "- - 0 - 0 - 0 0 8 9 0 0"},
                 {"\"reverse\":\t1, \"sum_received\":\t{\n" + block, "- - 0 - 0 - 1 0 0 0 8 9"},
                 {"\"sum_sent\", \"reverse\":\t0, {\n" + block, "- - 0 - 0 - 0 0 0 0 0 0"},
                 {start("0") + "the_sum_sent_2\n" + block + sums("sum", "3", "4"),
                  kStartText + "0 0 8 9 0 0"},
                 {start("1") + "the_sum_received_2\n" + block + sums("sum", "3", "4"),
                  kStartText + "1 0 0 0 8 9"}});
}

TEST_F(Iperf3Json, TakesNoMemberFromTheLinesOfItsSumsButFromThoseOfTheOthers) {
  const std::string members = member("local_host", "\"a\",") + member("local_port", "1,") +
                              member("remote_host", "\"b\",") + member("remote_port", "2,") +
                              member("timesecs", "3,") + member("duration", "4,");

  expectRecords(
      {{start("0") + "\"sum_sent\":\t{\n" + members + member("reverse", "1,") +
            member("bytes", "8,") + "} \"duration\":\t5\n" + sums("sum_received", "6", "7"),
        kStartText + "0 0 8 0 0 0"},
       {start("0") + "\"sum_received\":\t{\n" + members + sums("sum_sent", "8", "9"),
        "3 a 1 b 2 4 0 0 8 9 0 0"},
       {start("1") + "\"sum_sent\":\t{\n" + members + sums("sum_received", "8", "9"),
        "3 a 1 b 2 4 1 0 0 0 8 9"}});
}

TEST_F(Iperf3Json, ReadsItsSumsUpToTheFirstClosingBrace) {
  const std::string both = member("bytes", "8,") + member("bits_per_second", "9,");

  expectSums(both + "}\n", "8 9");
  expectSums(member("bits_per_second", "9,") + member("bytes", "8,") + "}\n", "8 9");
  expectSums("\"bytes\":\t8, \"bits_per_second\":\t9 }\n" + member("bytes", "1,") + "}\n", "8 9");
  expectSums(member("bytes", "8 }") + member("bits_per_second", "9,") + "}\n", "8 0");
  expectSums("}\n" + both, "0 0");
  // A block that never closes ends with the file.
  expectSums(member("bytes", "8,") + member("bits_per_second", "9"), "8 9");
  expectSums(member("bytes", "8"), "8 0");
  expectSums("\n\n" + member("bits_per_second", "9") + "\n", "0 9");
  expectSums("", "0 0");
  // The first of repeated members counts, and a part of a name will do.
  expectSums(both + member("bytes", "1,") + member("bits_per_second", "2,") + "}\n", "8 9");
  expectSums(member("max_bytes", "8,") + member("bytes", "1,") +
                 member("max_bits_per_second", "9,") + member("bits_per_second", "2,") + "}\n",
             "8 9");
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
  expectSums(member("bytes", "0,"), "0 0");
  expectSums(member("bytes", " \t+8x,"), "8 0");
  expectSums(member("bytes", "1.5e9,"), "1 0");
  expectSums(member("bytes", "9223372036854775807,"), "9223372036854775807 0");
  expectSums(member("bytes", "-1,"), "18446744073709551615 0");
  expectSums(member("bytes", "-9223372036854775808,"), "9223372036854775808 0");
}

TEST_F(Iperf3Json, EndsTheRunByAByteCountThatIsNoNumberOf64Bits) {
  for (const char* const block : {"\"bytes\":\t,\n}", "\"bytes\":\tx,\n}", "\"bytes\":\t\"8\",\n}",
                                  "\"bytes\":\t", "\"bytes", "\"bytes\":\t-\n"}) {
    expectEnd("invalid_argument", start("0") + "\"sum_sent\":\t{\n" + block);
  }
  for (const char* const bytes : {"9223372036854775808", "-9223372036854775809"}) {
    expectEnd("out_of_range", start("1") + sums("sum_received", bytes, "9"));
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

    EXPECT_EQ(record(start("0") + sums("sum_sent", "8", c.rate)),
              kStartText + "0 0 8 " + c.record + " 0 0");
    EXPECT_EQ(resultsText(), std::string("date , latency (0), write ") + c.bps + ", read (0)");

    EXPECT_EQ(record(start("1") + sums("sum_received", "8", c.rate)),
              kStartText + "1 0 0 0 8 " + c.record);
    EXPECT_EQ(resultsText(), std::string("date , latency (0), write (0), read ") + c.bps);
  }
}

TEST_F(Iperf3Json, TakesARateUpToTheNextTab) {
  expectSums("\"bits_per_second\":\t9\t8\n}", "0 9");
  expectSums("\"bits_per_second\":\t9\n\t}", "0 9");
  expectSums("\"bits_per_second\":\t9\n8}", "0 98");  // the lines are joined
  expectSums("\"bits_per_second\":\t9", "0 9");
  expectSums("\"bits_per_second\":\t", "0 0");
  expectSums("\"bits_per_second\":\t\t9,\n}", "0 0");
  expectSums("\"bits_per_second", "0 0");
  expectSums("\"bits_per_second_2\":\t9,\n}", "0 0");
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

  expectRecords({{report, "1605505183 192.168.1.20 54012 192.168.1.10 5201 4 0 0 8 9 0 0"},
                 {"", "- - 0 - 0 - - 0 0 0 0 0"},
                 {"\n", "- - 0 - 0 - - 0 0 0 0 0"}});
}

TEST_F(Iperf3Json, TakesAPathOfAnyLengthAsItStands) {
  const std::string folder = std::string(100, 'f') + "/" + std::string(100, 'g');
  std::filesystem::create_directories(folder);
  const std::string path = folder + "/100%%d.json";
  writeFile(path, kReverse);
  iperf3_status status;

  console([&] { iperf3JsonToCsvUnix(path.c_str(), status); });

  EXPECT_EQ(recordText(status), kStartText + "1 0 0 0 1170000000 935718400");
}

class Iperf3JsonOnWindows : public Iperf3Json {
 protected:
  /// Reads the report at `path` and returns the printed text.
  static std::string readAt(const std::string& path) {
    iperf3_status status;
    return console([&] { iperf3JsonToCsv(path.c_str(), status); });
  }
};

TEST_F(Iperf3JsonOnWindows, GivesTheRecordOfEachRecordingAndStampsIt) {
  for (const Recording& recording : recordings("iperf3")) {
    SCOPED_TRACE(recording.file);
    fakeHost.now = kStartTime + 60;

    EXPECT_EQ(row(iperf3JsonToCsv, recording.file), recording.expected);

    EXPECT_STREQ(outputResults.dateTime,
                 recording.expected.ends_with("returns") ? "20261116T054100" : "");
  }
}

TEST_F(Iperf3JsonOnWindows, StampsTheResultsAlsoWithoutAFile) {
  readAt("missing.json");

  EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write (0), read (0)");
}

TEST_F(Iperf3JsonOnWindows, IsPrintedOnlyWithBothSwitches) {
  writeFile(kReportPath, kForward);
  ConfigurationParameters.debugPrintLast = true;
  ConfigurationParameters.debugPrintPing = true;
  EXPECT_EQ(readAt(kReportPath), "");

  ConfigurationParameters.debugConfFile = true;
  EXPECT_EQ(readAt(kReportPath), "");

  ConfigurationParameters.debugConfFile = false;
  ConfigurationParameters.debugPrintHistory = true;
  EXPECT_EQ(readAt(kReportPath), "");

  ConfigurationParameters.debugConfFile = true;
  EXPECT_EQ(readAt(kReportPath), std::string(kHeading) + kIperf3Connection + kForwardPrint);
}

TEST_F(Iperf3JsonOnWindows, TakesThePathAsAFormatOf127Characters) {
  const std::string path = std::string(127, 'p');
  writeFile("100%d.json", kForward);
  writeFile(path, kForward);
  for (const std::string& given : {std::string("100%%d.json"), path, path + "p"}) {
    SCOPED_TRACE(given);
    outputResults = {};

    readAt(given);

    EXPECT_EQ(resultsText(), "date 20261116T054000, latency (0), write 943718400, read (0)");
  }
}

}  // namespace

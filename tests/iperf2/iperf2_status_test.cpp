#include "iperf2/iperf2_status.h"

#include "support/recordings.h"
#include "support/run_fixture.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr char kReport[] =
    "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,943718400";
constexpr char kRecord[] =
    "20201116054000 192.168.1.20 54012 192.168.1.10 5001 3 0.0-10.0 1180000000 943718400";

/// The record in the order of the columns, or "rejected".
std::string scanned(const std::string& text) {
  iperf2_status status;
  if (!scanIperf2Report(text.c_str(), status)) {
    return "rejected";
  }
  return std::string(status.date) + " " + status.clientIp + " " +
         std::to_string(status.clientPort) + " " + status.serverIp + " " +
         std::to_string(status.serverPort) + " " + std::to_string(status.transferId) + " " +
         status.testTime + " " + std::to_string(status.length) + " " + std::to_string(status.bps);
}

/// kReport with the column of that number (from 1) replaced.
std::string withColumn(int column, const std::string& value) {
  std::string text = kReport;
  std::size_t start = 0;
  for (int i = 1; i < column; ++i) {
    start = text.find(',', start) + 1;
  }
  const std::size_t end = text.find(',', start);
  return text.replace(start, end == std::string::npos ? end : end - start, value);
}

TEST(Iperf2Report, IsScannedInEachRecording) {
  for (const Recording& recording : recordings("iperf2")) {
    SCOPED_TRACE(recording.file);
    const std::string report = readFile(testData("iperf2/" + recording.file));

    EXPECT_EQ(scanned(report), recording.expected);
    EXPECT_EQ(scanned(withCarriageReturns(report)), recording.expected);
  }
}

TEST(Iperf2Report, EndsAtItsNinthColumn) {
  for (const char* const rest :
       {"", "\n", "\r\n", ",7,8\n", " x", ".5", "e9", "\nsecond line", "\xff"}) {
    SCOPED_TRACE(rest);

    EXPECT_EQ(scanned(kReport + std::string(rest)), kRecord);
  }
}

TEST(Iperf2Report, IsRejectedWithoutItsNineColumns) {
  std::string report = kReport;
  for (std::size_t comma = report.rfind(','); comma != std::string::npos;
       comma = report.rfind(',')) {
    report.erase(comma);
    SCOPED_TRACE(report);

    EXPECT_EQ(scanned(report), "rejected");
    EXPECT_EQ(scanned(report + ","), "rejected");
  }
  EXPECT_EQ(scanned(""), "rejected");
  EXPECT_EQ(scanned("\n"), "rejected");
}

TEST(Iperf2Report, IsRejectedWithoutANumberInItsPlace) {
  for (const int column : {3, 5, 6, 8, 9}) {
    for (const char* const value : {"", "x", "-", " ", "1.5", "1 ", "1x"}) {
      const std::string report = withColumn(column, value);
      SCOPED_TRACE(report);
      const bool endsTheReport = column == 9 && value[0] == '1';

      EXPECT_EQ(scanned(report) == "rejected", !endsTheReport);
    }
  }
}

TEST(Iperf2Report, TakesAnyNumberThatFits) {
  EXPECT_EQ(scanned("d,c, -1,s,\t+2,\n-3,t, 4, 5"), "d c -1 s 2 -3 t 4 5");
  EXPECT_EQ(scanned("d,c,2147483647,s,-2147483648,2147483647,t,18446744073709551615,"
                    "18446744073709551615"),
            "d c 2147483647 s -2147483648 2147483647 t 18446744073709551615 "
            "18446744073709551615");
  // A negative number counts back from the largest.
  EXPECT_EQ(scanned("d,c,1,s,2,3,t,-1,-2"),
            "d c 1 s 2 3 t 18446744073709551615 18446744073709551614");
}

TEST(Iperf2Report, TakesTextsOf32CharactersWithoutHarmToTheirNeighbours) {
  const std::string date(32, 'd');
  const std::string client(32, 'c');
  const std::string server(32, 's');
  const std::string time(32, 't');

  EXPECT_EQ(sizeof(iperf2_status::date), 33U);
  EXPECT_EQ(sizeof(iperf2_status::clientIp), 33U);
  EXPECT_EQ(sizeof(iperf2_status::serverIp), 33U);
  EXPECT_EQ(sizeof(iperf2_status::testTime), 33U);
  EXPECT_EQ(scanned(date + "," + client + ",54012," + server + ",5001,3," + time + ",8,9"),
            date + " " + client + " 54012 " + server + " 5001 3 " + time + " 8 9");
}

TEST(Iperf2Report, IsRejectedWithAnEmptyOrALongerText) {
  for (const int column : {1, 2, 4, 7}) {
    SCOPED_TRACE(column);

    EXPECT_EQ(scanned(withColumn(column, "")), "rejected");
    EXPECT_EQ(scanned(withColumn(column, std::string(33, 'x'))), "rejected");
  }
}

TEST(Iperf2Report, StartsAtTheFirstCharacterWhateverStandsThere) {
  EXPECT_EQ(scanned(std::string("\n") + kReport), std::string("\n") + kRecord);
  // A line of text before the report becomes a part of its first column, if it is short enough.
  EXPECT_EQ(scanned("warning: window\nd,c,1,s,2,3,t,4,5"), "warning: window\nd c 1 s 2 3 t 4 5");
  EXPECT_EQ(scanned(std::string("warning: small window\n") + kReport), "rejected");
}

}  // namespace

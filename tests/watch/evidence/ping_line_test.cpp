#include "evidence/ping_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace watch {
namespace {

constexpr char kLine[] = "20261116T054400,14.123,15.456,17.789,1.234";
/// 2026-11-16T05:44:00.
constexpr LocalTime kStart = {1'794'807'840};

TEST(PingLine, HoldsAStartAndFourNumbers) {
  const auto line = parsePingLine(kLine);

  ASSERT_TRUE(line);
  EXPECT_EQ(line->start, kStart);
  EXPECT_EQ(line->min, 14.123);
  EXPECT_EQ(line->avg, 15.456);
  EXPECT_EQ(line->max, 17.789);
  EXPECT_EQ(line->stddev, 1.234);
  EXPECT_FALSE(line->from.isThere());
}

TEST(PingLine, MayHoldWhatIsNoNumber) {
  for (const char* const text : {"nan", "-nan"}) {
    SCOPED_TRACE(text);

    const auto line = parsePingLine(std::string("20261116T054400,0.035,0.035,0.035,") + text);

    ASSERT_TRUE(line);
    EXPECT_EQ(line->avg, 0.035);
    EXPECT_TRUE(std::isnan(line->stddev));
  }
}

TEST(PingLine, IsReadAsAWholeOrNotAtAll) {
  const std::string texts[] = {"",
                               ",,,,",
                               "n/a",
                               "20261116T054400",
                               "20261116T054400,14.123,15.456,17.789",
                               "20261116T054400,14.123,15.456,17.789,",
                               "20261116T054400,14.123,15.456,17.789,123",
                               "20261116T054400,14.123,15.456,17.789,.123",
                               "20261116T054400,14.123,15.456,17.789,1.234,",
                               "20261116T054400,14.123,15.456,17.789,1.234 ",
                               " 20261116T054400,14.123,15.456,17.789,1.234",
                               "20261116T054400,,15.456,17.789,1.234",
                               "20261116T054400,14.123,+15.456,17.789,1.234",
                               "20261116T054400,14.123,0x15.123,17.789,1.234",
                               "20261116T054400,14.123,1e9.999,17.789,1.234",
                               "20261116T054400,14.123,1.e-9,17.789,1.234",
                               "20261116T0544,14.123,15.456,17.789,1.234",
                               "20261316T054400,14.123,15.456,17.789,1.234",
                               std::string(kLine) + '\0',
                               std::string(kLine) + kLine,
                               std::string(1'000'000, '1'),
                               std::string(1'000'000, ',')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 100));

    EXPECT_FALSE(parsePingLine(text));
  }
}

TEST(PingLine, IsNoneWhenItWasCutAnywhere) {
  const std::string whole = kLine;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(whole.substr(0, length));

    EXPECT_FALSE(parsePingLine(whole.substr(0, length)));
  }
}

TEST(PingLine, IsFoundBehindACutOne) {
  const std::string whole = kLine;
  for (std::size_t length = 1; length <= whole.size(); ++length) {
    SCOPED_TRACE(whole.substr(0, length));

    EXPECT_EQ(lastPingLine(whole.substr(0, length) + whole), length);
  }
}

TEST(PingLine, IsNotFoundWhereNoneCanBegin) {
  for (const char* const text : {"", ",,,,", "T054400,1.000,1.000,1.000,0.000", "1,2,3", "1"}) {
    SCOPED_TRACE(text);

    EXPECT_EQ(lastPingLine(text), std::string_view::npos);
  }
}

}  // namespace
}  // namespace watch

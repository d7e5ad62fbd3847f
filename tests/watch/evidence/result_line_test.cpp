#include "evidence/result_line.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

constexpr char kLine[] =
    "Date = 20260102T030405, Latency = 15 ms, Write Transfer Rate = 900 Mebibps, "
    "Read Transfer Rate = 953 Mebibps ";

/// What a line says: date, latency, rates, unit; "-" for nothing, "none" for no line.
std::string told(const std::optional<ResultLine>& line) {
  if (!line) {
    return "none";
  }
  const auto word = [](const auto& number) {
    return (number ? std::to_string(*number) : "-") + " ";
  };
  return (line->date ? std::to_string(line->date->seconds) : "-") + " " + word(line->latencyMs) +
         word(line->write) + word(line->read) + std::to_string(line->unitBps);
}

TEST(ResultLine, HoldsADateALatencyAndTwoRatesInOneUnit) {
  const struct {
    const char* text;
    const char* told;
  } cases[] = {
      {kLine, "1767323045 15 900 953 1048576"},
      {"Date = 20260102T030405, Latency = 0 ms, Write Transfer Rate = 1 Megabps, "
       "Read Transfer Rate = 0 Megabps ",
       "1767323045 0 1 0 1000000"},
      {"Date = 20260102T030405, Latency = 4294967295 ms, Write Transfer Rate = "
       "18446744073709551615 bps, Read Transfer Rate = 2 bps ",
       "1767323045 4294967295 18446744073709551615 2 1"},
      {"Date = , Latency = n/a ms, Write Transfer Rate = n/a bps, Read Transfer Rate = n/a bps ",
       "- - - - 1"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    const auto line = parseResultLine(c.text);

    EXPECT_EQ(told(line), c.told);
    EXPECT_FALSE(line->from.isThere());
  }
}

TEST(ResultLine, IsReadAsAWholeOrNotAtAll) {
  const std::string texts[] = {
      "Date = 2026, Latency = 15 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency =  ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = -1 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = 1.5 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = 4294967296 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = 15 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 Megabps ",
      "Date = , Latency = 15 ms, Write Transfer Rate = 9 kbps, Read Transfer Rate = 9 kbps ",
      "Date = , Latency = 15 ms, Write Transfer Rate = 9 , Read Transfer Rate = 9  ",
      "Date = , Latency = 15 ms, Write Transfer Rate =  bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = 15 ms, Write Transfer Rate = -9 bps, Read Transfer Rate = 9 bps ",
      "Date = , Latency = 15 ms, Read Transfer Rate = 9 bps, Write Transfer Rate = 9 bps ",
      "date = , Latency = 15 ms, Write Transfer Rate = 9 bps, Read Transfer Rate = 9 bps ",
      std::string(kLine) + " ",
      std::string(kLine) + '\0',
      std::string(kLine) + kLine,
      std::string(1'000'000, ' '),
      "Date = " + std::string(1'000'000, ',')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 100));

    EXPECT_EQ(told(parseResultLine(text)), "none");
  }
}

TEST(ResultLine, IsNoneWhenItWasCutAnywhere) {
  const std::string whole = kLine;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(whole.substr(0, length));

    EXPECT_EQ(told(parseResultLine(whole.substr(0, length))), "none");
  }
}

TEST(ResultLine, IsFoundBehindACutOne) {
  const std::string whole = kLine;
  for (std::size_t length = 1; length <= whole.size(); ++length) {
    SCOPED_TRACE(whole.substr(0, length));

    EXPECT_EQ(lastResultLine(whole.substr(0, length) + whole), length);
  }
}

TEST(ResultLine, IsNotFoundWhereNoneCanBegin) {
  for (const char* const text : {"", kLine, "Date =", "Latency = 15 ms"}) {
    SCOPED_TRACE(text);

    EXPECT_EQ(lastResultLine(text), std::string_view::npos);
  }
}

}  // namespace
}  // namespace watch

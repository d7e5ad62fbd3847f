#include "views/words.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

TEST(Words, GiveRatesTheDigitsThatTellSomething) {
  constexpr struct {
    double value;
    const char* text;
  } kRates[] = {{0, "0.0"},        {0.0004, "0.000"},  {0.1634, "0.163"}, {1, "1.00"},
                {9.654, "9.65"},   {10, "10.0"},       {243.94, "243.9"}, {9999.94, "9999.9"},
                {10'000, "10000"}, {85'924.7, "85925"}};
  for (const auto& [value, text] : kRates) {
    EXPECT_EQ(megabits(value), text);
  }
  EXPECT_EQ(megabits(std::nullopt), "-");
}

TEST(Words, GiveTheOtherFigures) {
  EXPECT_EQ(milliseconds(12.66), "12.7");
  EXPECT_EQ(milliseconds(0.04), "0.0");
  EXPECT_EQ(milliseconds(std::nullopt), "-");
  EXPECT_EQ(percent(10), "10");
  EXPECT_EQ(percent(100.0 / 3), "33.3");
  EXPECT_EQ(percent(std::nullopt), "-");
  EXPECT_EQ(megabytes(51'300'000), "51.3 MB");
  EXPECT_EQ(megabytes(4344), "0.004 MB");
  EXPECT_EQ(counted(1, "run", "runs"), "1 run");
  EXPECT_EQ(counted(0, "run", "runs"), "0 runs");
}

TEST(Words, GiveSpansToTheNearest) {
  constexpr struct {
    EpochSeconds seconds;
    const char* text;
  } kSpans[] = {{0, "0 s"},
                {99, "99 s"},
                {100, "2 min"},
                {3600, "60 min"},
                {5999, "100 min"},
                {6000, "2 h"},
                {7080, "2 h"},
                {kDay, "24 h"},
                {48 * kHour, "2 days"},
                {60 * kHour, "3 days"},
                {400 * kDay, "400 days"}};
  for (const auto& [seconds, text] : kSpans) {
    EXPECT_EQ(span(seconds), text);
  }
}

TEST(Words, GiveAges) {
  EXPECT_EQ(ago(kNow - 3 * kHour, kNow), "3 h ago");
  EXPECT_EQ(ago(kNow, kNow), "0 s ago");
  EXPECT_EQ(ago(kNow + 600, kNow), "in 10 min");
}

TEST(Words, GiveTimesOfTheWorkstation) {
  const Zone berlin("Europe/Berlin");

  EXPECT_EQ(clockTime(kNow), "10:00");
  EXPECT_EQ(weekdayAndDate(kNow), "Sat 21 Nov 2026");
  EXPECT_EQ(weekdayAndDay(kNow, kNow), "Sat 21 November");
  EXPECT_EQ(weekdayAndDay(kNow - 365 * kDay, kNow), "Fri 21 November 2025");
  EXPECT_EQ(dayAndMonth(kNow, kNow), "21 November");
  EXPECT_EQ(dayAndMonth(kNow, kNow - 365 * kDay), "21 November 2026");
}

TEST(Words, GiveDatesWithoutRepeatingWhatIsTheSame) {
  const Zone berlin("Europe/Berlin");

  EXPECT_EQ(dates(kNow, kNow + kHour), "21 November 2026");
  EXPECT_EQ(dates(kNow - kDay, kNow), "20 to 21 November 2026");
  EXPECT_EQ(dates(kNow - 28 * kDay, kNow), "24 October to 21 November 2026");
  EXPECT_EQ(dates(kNow - 365 * kDay, kNow), "21 November 2025 to 21 November 2026");
}

TEST(FoldedText, EndsBeforeTheWidth) {
  EXPECT_EQ(folded("no reply, no test", 17, 0), "no reply, no test");
  EXPECT_EQ(folded("no reply, no test", 16, 0), "no reply, no\ntest");
  EXPECT_EQ(folded("no reply, no test", 16, 5), "no reply,\n     no test");
}

TEST(FoldedText, KeepsALongWordWhole) {
  EXPECT_EQ(folded("a connection_test b", 8, 2), "a\n  connection_test\n  b");
  EXPECT_EQ(folded("", 8, 2), "");
}

}  // namespace
}  // namespace watch

#include "report/words.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

TEST(ReportWords, GroupFigures) {
  EXPECT_EQ(grouped(0), "0");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(8485), "8,485");
  EXPECT_EQ(grouped(1234567), "1,234,567");
  EXPECT_EQ(groupedCount(1, "test", "tests"), "1 test");
  EXPECT_EQ(groupedCount(8485, "test", "tests"), "8,485 tests");
  EXPECT_EQ(countOrNone(0), "–");
  EXPECT_EQ(countOrNone(8485), "8,485");
}

TEST(ReportWords, TellFiguresAndTheirAbsence) {
  EXPECT_EQ(figure(kRead, 243.93), "243.9");
  EXPECT_EQ(figure(kRead, 85'925.4), "85,925");
  EXPECT_EQ(figure(kLatency, 1234.56), "1,234.6");
  EXPECT_EQ(figure(kRead, std::nullopt), "n/a");
  EXPECT_EQ(figureWithUnit(kWrite, 9.651), "9.65 Mbit/s");
  EXPECT_EQ(figureWithUnit(kLatency, std::nullopt), "n/a");
  EXPECT_EQ(plain(250), "250");
  EXPECT_EQ(plain(0.5), "0.5");
  EXPECT_EQ(plain(100'000), "100,000");
}

TEST(ReportWords, CallNoShareAllOrNothingThatIsNot) {
  EXPECT_EQ(share(0, 8485), "0 %");
  EXPECT_EQ(share(1, 8485), "0.1 %");
  EXPECT_EQ(share(331, 8485), "3.9 %");
  EXPECT_EQ(share(6533, 8485), "77 %");
  EXPECT_EQ(share(8432, 8485), "99.4 %");
  EXPECT_EQ(share(8484, 8485), "99.9 %");
  EXPECT_EQ(share(8485, 8485), "100 %");
  EXPECT_EQ(share(0, 0), "n/a");
}

TEST(ReportWords, TellTheRhythm) {
  const struct {
    EpochSeconds seconds;
    const char* words;
  } cases[] = {{0, ""},
               {60, "every minute"},
               {300, "every 5 minutes"},
               {3590, "every hour"},
               {3660, "every hour"},
               {5400, "every 90 minutes"},
               {7200, "every 2 hours"},
               {86'400, "every day"}};
  for (const auto& c : cases) {
    EXPECT_EQ(rhythmInWords({c.seconds}), c.words);
  }
}

TEST(ReportWords, TellWhatIsKnownOfALength) {
  EXPECT_EQ(lengthInWords({0, 7 * kHour, kHour, 6 * kHour, 5, ""}), "5 h to 7 h");
  EXPECT_EQ(lengthInWords({0, 2 * kHour, kHour, kHour, 1, ""}), "up to 2 h");
  EXPECT_EQ(lengthInWords({0, 50 * kDay, kHour, 50 * kDay, 9, ""}), "50 days");
  EXPECT_EQ(lengthInWords({0, {}, kHour, 6 * kHour, 5, ""}), "5 h or more");
  EXPECT_EQ(lengthInWords({{}, kHour, 0, 0, 1, ""}), "not known");
}

TEST(ReportWords, TellDays) {
  const Zone berlin("Europe/Berlin");
  const Station station = lookAt({"", "", {}, {okRun(kNow - 365 * kDay), okRun(kNow)}}, Contract());

  EXPECT_EQ(fullDate(20'778), "21 November 2026");
  EXPECT_EQ(shortDay(20'778), "21 Nov");
  EXPECT_EQ(dateIn(station, 20'778), "21 November");
  EXPECT_EQ(dayIn(station, 20'413), "Fri 21 November 2025");
  EXPECT_EQ(momentIn(station, kNow), "Sat 21 November, 10:00");
  EXPECT_EQ(monthIn(station, 2026 * 12 + 4), "May");
  EXPECT_EQ(monthIn(station, 2025 * 12), "January 2025");
}

TEST(ReportWords, CutWhatAPageCannotHold) {
  EXPECT_EQ(foreign("a\tb\x01\xff"), "a?b??");
  EXPECT_EQ(foreign(std::string(1'000'000, 'x')),
            std::string(160, 'x') + "… (cut, 1,000,000 characters)");
}

TEST(ReportWords, TellWhereALineIs) {
  EXPECT_EQ(place({1, 7, 9}, {"a", "archive/b.log"}), "archive/b.log:7");
  EXPECT_EQ(place({}, {"a"}), "n/a");
}

}  // namespace
}  // namespace watch

#include "when.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

struct Named {
  const char* text;
  /// The first and the last second of what it names.
  const char* first;
  const char* last;
};

/// At 2026-11-21T10:00:00 in Berlin.
constexpr Named kNamed[] = {
    {"2026-11-21", "2026-11-21T00:00:00+01:00", "2026-11-21T23:59:59+01:00"},
    {"2024-02-29", "2024-02-29T00:00:00+01:00", "2024-02-29T23:59:59+01:00"},
    {"2026-11-21T05:00", "2026-11-21T05:00:00+01:00", "2026-11-21T05:00:59+01:00"},
    {"2026-11-21 05:00", "2026-11-21T05:00:00+01:00", "2026-11-21T05:00:59+01:00"},
    {"2026-11-21T05:00:12", "2026-11-21T05:00:12+01:00", "2026-11-21T05:00:12+01:00"},
    {"2026-11-21T05:00Z", "2026-11-21T06:00:00+01:00", "2026-11-21T06:00:59+01:00"},
    {"2026-11-21T05:00:12+01:00", "2026-11-21T05:00:12+01:00", "2026-11-21T05:00:12+01:00"},
    {"2026-11-21 05:00-03:30", "2026-11-21T09:30:00+01:00", "2026-11-21T09:30:59+01:00"},
    {"20 Nov", "2026-11-20T00:00:00+01:00", "2026-11-20T23:59:59+01:00"},
    {"21 Nov", "2026-11-21T00:00:00+01:00", "2026-11-21T23:59:59+01:00"},
    {"22 Nov", "2025-11-22T00:00:00+01:00", "2025-11-22T23:59:59+01:00"},
    {"1 dec", "2025-12-01T00:00:00+01:00", "2025-12-01T23:59:59+01:00"},
    {"29 Feb", "2024-02-29T00:00:00+01:00", "2024-02-29T23:59:59+01:00"},
    {"3 SEPTEMBER 2020", "2020-09-03T00:00:00+02:00", "2020-09-03T23:59:59+02:00"},
    {"20 Nov 20:00", "2026-11-20T20:00:00+01:00", "2026-11-20T20:00:59+01:00"},
    {"20 November 2025 20:00:01", "2025-11-20T20:00:01+01:00", "2025-11-20T20:00:01+01:00"},
    {"05:01", "2026-11-21T05:01:00+01:00", "2026-11-21T05:01:59+01:00"},
    {"5:01", "2026-11-21T05:01:00+01:00", "2026-11-21T05:01:59+01:00"},
    {"23:59:59", "2026-11-21T23:59:59+01:00", "2026-11-21T23:59:59+01:00"},
    {"today", "2026-11-21T00:00:00+01:00", "2026-11-21T23:59:59+01:00"},
    {"yesterday", "2026-11-20T00:00:00+01:00", "2026-11-20T23:59:59+01:00"},
    // The hour from 02:00 comes twice on this day, and not at all on the next one.
    {"2026-10-25", "2026-10-25T00:00:00+02:00", "2026-10-25T23:59:59+01:00"},
    {"2026-10-25T01:59", "2026-10-25T01:59:00+02:00", "2026-10-25T01:59:59+02:00"},
    {"2026-10-25T02:00", "2026-10-25T02:00:00+02:00", "2026-10-25T02:00:59+01:00"},
    {"2026-10-25T02:59", "2026-10-25T02:59:00+02:00", "2026-10-25T02:59:59+01:00"},
    {"2026-10-25T03:00", "2026-10-25T03:00:00+01:00", "2026-10-25T03:00:59+01:00"},
    {"2026-10-25T02:30+02:00", "2026-10-25T02:30:00+02:00", "2026-10-25T02:30:59+02:00"},
    {"2026-10-25T02:30+01:00", "2026-10-25T02:30:00+01:00", "2026-10-25T02:30:59+01:00"},
    {"2026-03-29", "2026-03-29T00:00:00+01:00", "2026-03-29T23:59:59+02:00"},
    {"2026-03-29T02:30", "2026-03-29T03:30:00+02:00", "2026-03-29T03:30:59+02:00"},
};

TEST(When, NamesADayAMinuteOrASecond) {
  const Zone berlin("Europe/Berlin");
  for (const auto& [text, first, last] : kNamed) {
    SCOPED_TRACE(text);

    const auto when = parseWhen(text, kNow);

    ASSERT_TRUE(when);
    EXPECT_EQ(isoLocal(when->begin), first);
    EXPECT_EQ(isoLocal(when->end - 1), last);
  }
}

TEST(When, NamesAMomentByItsAge) {
  constexpr struct {
    const char* text;
    EpochSeconds ago;
  } kAges[] = {{"now", 0},      {"0s", 0},        {"90s", 90},      {"30m", 1800},
               {"12h", 43'200}, {"7d", 7 * kDay}, {"4w", 28 * kDay}};
  for (const auto& [text, ago] : kAges) {
    SCOPED_TRACE(text);

    const auto when = parseWhen(text, kNow);

    ASSERT_TRUE(when);
    EXPECT_EQ(when->begin, kNow - ago);
    EXPECT_EQ(when->end, kNow - ago);
    EXPECT_FALSE(when->holds(kNow - ago));
  }
}

TEST(When, IsNothingForAnyOtherText) {
  constexpr const char* kTexts[] = {"",
                                    " ",
                                    "x",
                                    "7",
                                    "7x",
                                    "d",
                                    "-7d",
                                    "+7d",
                                    "1.5h",
                                    "1000000d",
                                    "7 d",
                                    "Today",
                                    "tomorrow",
                                    "2026",
                                    "2026-11",
                                    "2026-13-01",
                                    "2026-00-01",
                                    "2026-11-31",
                                    "2025-02-29",
                                    "2026-1-1",
                                    "26-11-21",
                                    "02026-11-21",
                                    "2026-11-21-",
                                    "2026-11-21T",
                                    "2026-11-21 ",
                                    " 2026-11-21",
                                    "2026-11-21T05",
                                    "2026-11-21T05:00:",
                                    "2026-11-21T24:00",
                                    "2026-11-21T05:60",
                                    "2026-11-21T05:00:60",
                                    "2026-11-21T5:0",
                                    "2026-11-21T05:00+1",
                                    "2026-11-21T05:00+0100",
                                    "2026-11-21T05:00+01:0x",
                                    "2026-11-21T05:00+24:00",
                                    "2026-11-21T05:00ZZ",
                                    "05:00Z",
                                    "2026-11-21 05:00 x",
                                    "20 No",
                                    "20 Nox",
                                    "20 Novembers",
                                    "0 Nov",
                                    "31 Nov",
                                    "32 Dec",
                                    "Nov 20",
                                    "20  Nov",
                                    "20 Nov 99999",
                                    "20 Nov 2026 ",
                                    "30 Feb",
                                    "5:1",
                                    "05:",
                                    ":05",
                                    "5",
                                    "۵:۰۱"};
  for (const char* const text : kTexts) {
    SCOPED_TRACE(text);

    EXPECT_FALSE(parseWhen(text, kNow));
  }
}

TEST(When, HoldsTheHourThatComesTwiceByTheWallClock) {
  const Zone berlin("Europe/Berlin");
  constexpr EpochSeconds kFirst = 1'792'886'400 + 1800;

  const auto when = parseWhen("2026-10-25T02:30", kNow);

  ASSERT_TRUE(when);
  EXPECT_TRUE(when->holds(kFirst));
  EXPECT_TRUE(when->holds(kFirst + kHour));
  EXPECT_FALSE(when->holds(kFirst + 60));
  EXPECT_FALSE(when->holds(kFirst - 1));
  EXPECT_FALSE(parseWhen("2026-10-25T02:30+02:00", kNow)->holds(kFirst + kHour));
}

TEST(When, SaysWhetherItIsATimeWithoutADay) {
  EXPECT_TRUE(parseWhen("05:01", kNow)->isOfAnyDay);
  for (const char* const text : {"2026-11-21T05:01", "20 Nov 05:01", "20 Nov", "today", "7d"}) {
    SCOPED_TRACE(text);

    EXPECT_FALSE(parseWhen(text, kNow)->isOfAnyDay);
  }
}

TEST(Length, HasAWholeNumberAndAUnit) {
  EXPECT_EQ(parseLength("90s"), 90);
  EXPECT_EQ(parseLength("999999w"), 999'999LL * 7 * kDay);
  for (const char* const text : {"", "s", "90", "1h30m", "-1h", "1000000h", "1H", "0x1h"}) {
    SCOPED_TRACE(text);

    EXPECT_EQ(parseLength(text), std::nullopt);
  }
}

}  // namespace
}  // namespace watch

#include "local_time.h"

#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <string>

namespace watch {
namespace {

TEST(Stamp, IsADateAndATimeOfTheCalendar) {
  const struct {
    const char* text;
    std::int64_t seconds;
  } cases[] = {{"19700101T000000", 0},
               {"19691231T235959", -1},
               {"20261116T054400", 1'794'807'840},
               {"20240229T120000", 1'709'208'000},
               {"20000229T000000", 951'782'400},
               {"20161231T235960", 1'483'228'800},
               {"00000101T000000", -62'167'219'200},
               {"99991231T235959", 253'402'300'799}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    const auto local = parseStamp(c.text);

    ASSERT_TRUE(local);
    EXPECT_EQ(local->seconds, c.seconds);
  }
}

TEST(Stamp, IsNothingElse) {
  const std::string texts[] = {"",
                               "20261116",
                               "20261116T05440",
                               "20261116T0544000",
                               "20261116 054400",
                               "20261116t054400",
                               "2026-11-16T0544",
                               " 0261116T054400",
                               "+0261116T054400",
                               "-0261116T054400",
                               "20261116T 54400",
                               "20261116T05440\n",
                               "20261116T05440x",
                               "20261316T054400",
                               "20260016T054400",
                               "20261132T054400",
                               "20261100T054400",
                               "20260229T054400",
                               "19000229T054400",
                               "20261116T244400",
                               "20261116T056000",
                               "20261116T054461",
                               std::string(15, '\0'),
                               std::string(1'000'000, '1')};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 100));

    EXPECT_FALSE(parseStamp(text));
  }
}

TEST(LocalTime, HasOneMomentOrTwo) {
  const struct {
    const char* zone;
    const char* stamp;
    EpochSeconds first;
    EpochSeconds second;
  } cases[] = {{"Europe/Berlin", "20261116T054400", 1794804240, 1794804240},
               {"Europe/Berlin", "20260701T120000", 1782900000, 1782900000},
               {"Europe/Berlin", "20261025T015959", 1792886399, 1792886399},
               {"Europe/Berlin", "20261025T020000", 1792886400, 1792890000},
               {"Europe/Berlin", "20261025T023000", 1792888200, 1792891800},
               {"Europe/Berlin", "20261025T025959", 1792889999, 1792893599},
               {"Europe/Berlin", "20261025T030000", 1792893600, 1792893600},
               {"Europe/Berlin", "20260329T015959", 1774745999, 1774745999},
               {"Europe/Berlin", "20260329T030000", 1774746000, 1774746000},
               {"Europe/Berlin", "19691231T235959", -3601, -3601},
               {"Europe/Berlin", "19450401T120000", -781102800, -781102800},
               {"Europe/Berlin", "00010101T000000", -62135600008, -62135600008},
               {"Europe/Berlin", "99991231T235959", 253402297199, 253402297199},
               {"America/New_York", "20261101T005959", 1793509199, 1793509199},
               {"America/New_York", "20261101T013000", 1793511000, 1793514600},
               {"America/New_York", "20261101T020000", 1793516400, 1793516400},
               {"America/New_York", "20260704T120000", 1783180800, 1783180800},
               {"America/St_Johns", "20261101T013000", 1793505600, 1793509200},
               {"Asia/Kolkata", "20261116T054400", 1794788040, 1794788040},
               {"Asia/Kolkata", "19700101T000000", -19800, -19800},
               {"Australia/Lord_Howe", "20260405T012959", 1775312999, 1775312999},
               {"Australia/Lord_Howe", "20260405T013000", 1775313000, 1775314800},
               {"Australia/Lord_Howe", "20260405T014500", 1775313900, 1775315700},
               {"Australia/Lord_Howe", "20260405T020000", 1775316600, 1775316600},
               {"Australia/Lord_Howe", "20261004T023000", 1791041400, 1791041400},
               {"Africa/Casablanca", "20260215T023000", 1771119000, 1771122600},
               {"CET-1CEST,M3.5.0,M10.5.0/3", "20261025T023000", 1792888200, 1792891800},
               {"CET-1CEST,M3.5.0,M10.5.0/3", "20260701T120000", 1782900000, 1782900000},
               {"<+0530>-5:30", "20261116T054400", 1794788040, 1794788040},
               {"UTC", "19700101T000000", 0, 0},
               {"UTC", "99991231T235959", 253402300799, 253402300799}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.zone) + " " + c.stamp);
    const Zone zone(c.zone);

    const Moments found = moments(*parseStamp(c.stamp));

    EXPECT_EQ(found.first, c.first);
    EXPECT_EQ(found.second, c.second);
    EXPECT_EQ(found.isUnique(), c.first == c.second);
    EXPECT_EQ(localTime(found.first), *parseStamp(c.stamp));
    EXPECT_EQ(localTime(found.second), *parseStamp(c.stamp));
  }
}

TEST(LocalTime, ThatTheClockLeftOutIsWhatItWouldHaveShown) {
  const struct {
    const char* zone;
    const char* stamp;
    EpochSeconds moment;
  } cases[] = {{"Europe/Berlin", "20260329T020000", 1774746000},
               {"Europe/Berlin", "20260329T023000", 1774747800},
               {"America/New_York", "20260308T023000", 1772955000},
               {"Australia/Lord_Howe", "20261004T021500", 1791042300}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.zone) + " " + c.stamp);
    const Zone zone(c.zone);

    const Moments found = moments(*parseStamp(c.stamp));

    EXPECT_EQ(found.first, c.moment);
    EXPECT_TRUE(found.isUnique());
  }
}

TEST(Moments, GiveTheNearest) {
  const Moments both = {1000, 4600};

  EXPECT_EQ(both.nearest(0), 1000);
  EXPECT_EQ(both.nearest(2799), 1000);
  EXPECT_EQ(both.nearest(2800), 1000);
  EXPECT_EQ(both.nearest(2801), 4600);
  EXPECT_EQ(both.nearest(9000), 4600);
}

TEST(IsoTime, HasTheOffsetOfItsMoment) {
  const struct {
    const char* zone;
    EpochSeconds moment;
    const char* local;
  } cases[] = {{"Europe/Berlin", 1795231272, "2026-11-21T04:21:12+01:00"},
               {"Europe/Berlin", 1792886399, "2026-10-25T01:59:59+02:00"},
               {"Europe/Berlin", 1792889999, "2026-10-25T02:59:59+02:00"},
               {"Europe/Berlin", 1792890000, "2026-10-25T02:00:00+01:00"},
               {"Europe/Berlin", 1774745999, "2026-03-29T01:59:59+01:00"},
               {"Europe/Berlin", 1774746000, "2026-03-29T03:00:00+02:00"},
               {"Europe/Berlin", -1, "1970-01-01T00:59:59+01:00"},
               {"Europe/Berlin", -1000000000, "1938-04-24T23:13:20+01:00"},
               {"America/New_York", 1793511000, "2026-11-01T01:30:00-04:00"},
               {"America/New_York", 1793514600, "2026-11-01T01:30:00-05:00"},
               {"America/St_Johns", 1795231272, "2026-11-20T23:51:12-03:30"},
               {"Asia/Kolkata", 0, "1970-01-01T05:30:00+05:30"},
               {"Asia/Kolkata", 1795231272, "2026-11-21T08:51:12+05:30"},
               {"Australia/Lord_Howe", 1775314799, "2026-04-05T01:59:59+11:00"},
               {"Australia/Lord_Howe", 1775314800, "2026-04-05T01:30:00+10:30"},
               {"Australia/Lord_Howe", 1791042300, "2026-10-04T02:45:00+11:00"},
               {"<-03>3", 1795231272, "2026-11-21T00:21:12-03:00"},
               {"UTC", -62135596800, "0001-01-01T00:00:00+00:00"},
               {"UTC", 253402300799, "9999-12-31T23:59:59+00:00"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.zone) + " " + std::to_string(c.moment));
    const Zone zone(c.zone);

    EXPECT_EQ(isoLocal(c.moment), c.local);
  }
}

TEST(IsoTime, IsTheSameInEveryZoneForUtc) {
  for (const char* const name : {"Europe/Berlin", "UTC"}) {
    const Zone zone(name);

    EXPECT_EQ(isoUtc(1795231272), "2026-11-21T03:21:12Z");
    EXPECT_EQ(isoUtc(-1), "1969-12-31T23:59:59Z");
    EXPECT_EQ(isoUtc(253402300799), "9999-12-31T23:59:59Z");
  }
}

TEST(UtcOffset, FollowsAClockThatWasSetInAnyMinute) {
  const Zone zone("Africa/Monrovia");
  constexpr EpochSeconds kSet = 63'593'070;  // 1972-01-07T00:44:30Z

  EXPECT_EQ(utcOffset(kSet - 1), -2670);
  EXPECT_EQ(utcOffset(kSet), 0);
  EXPECT_EQ(utcOffset(kSet - 1), -2670);
  EXPECT_EQ(utcOffset(kSet - 100'000), -2670);
  EXPECT_EQ(utcOffset(kSet + 100'000), 0);
}

TEST(UtcOffset, IsTheSameWhateverWasAskedBefore) {
  const Zone zone("Europe/Berlin");
  constexpr EpochSeconds kBegin = 1'774'700'000;
  constexpr EpochSeconds kSet = 1'774'746'000;
  constexpr EpochSeconds kEnd = 1'774'800'000;
  for (EpochSeconds moment = kBegin; moment < kEnd; moment += 100) {
    ASSERT_EQ(utcOffset(moment), moment < kSet ? 3600 : 7200) << moment;
  }
  for (EpochSeconds moment = kEnd; moment > kBegin; moment -= 100) {
    ASSERT_EQ(utcOffset(moment), moment < kSet ? 3600 : 7200) << moment;
  }
}

TEST(Calendar, HasTheDayOfTheWeekAndComesBack) {
  const struct {
    const char* stamp;
    unsigned weekday;
  } cases[] = {{"19700101T000000", 4}, {"20261116T054407", 1}, {"20261122T235959", 0},
               {"19691231T235959", 3}, {"20240229T120000", 4}, {"99991231T235959", 5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stamp);
    const LocalTime local = *parseStamp(c.stamp);

    const Calendar found = calendar(local);

    EXPECT_EQ(found.weekday, c.weekday);
    EXPECT_EQ(std::to_string(found.year * 10000 + static_cast<int>(found.month * 100 + found.day)),
              std::string(c.stamp, 8));
    EXPECT_EQ(found.hour * 3600 + found.minute * 60 + found.second,
              static_cast<unsigned>(((local.seconds % 86400) + 86400) % 86400));
    EXPECT_EQ(fromCalendar(found), local);
  }
}

TEST(Day, IsCountedByTheWallClock) {
  const Zone berlin("Europe/Berlin");

  EXPECT_EQ(dayNumber({0}), 0);
  EXPECT_EQ(dayNumber({-1}), -1);
  EXPECT_EQ(dayNumber({kDaySeconds - 1}), 0);
  EXPECT_EQ(isoLocal(noonOf(20'751)), "2026-10-25T12:00:00+01:00");
  EXPECT_EQ(isoLocal(noonOf(20'750)), "2026-10-24T12:00:00+02:00");
}

TEST(ZoneName, IsThatOfTheVariable) {
  const Zone berlin("Europe/Berlin");

  EXPECT_EQ(zoneName(), "Europe/Berlin");
}

TEST(ZoneName, IsWhatTheLibraryKnowsOfARule) {
  const Zone rule("XYZ-3");

  EXPECT_EQ(zoneName(), "XYZ");
}

}  // namespace
}  // namespace watch

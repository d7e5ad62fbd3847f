#include "time_services.h"

#include "support/run_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using testing::ElementsAre;
using testing::FieldsAre;

constexpr std::time_t kMarch5 = 1'772'694'489;       // 2026-03-05 07:08:09 UTC
constexpr std::time_t kOctober31 = 1'793'491'199;    // 2026-10-31 23:59:59 UTC
constexpr std::time_t kNewYear2100 = 4'102'444'800;  // 2100-01-01 00:00:00 UTC

class Stamp : public RunFixture {};

TEST_F(Stamp, HasFifteenCharactersOfLocalTime) {
  const struct {
    long time;
    const char* stamp;
  } cases[] = {{kMarch5, "20260305T070809"},
               {kOctober31, "20261031T235959"},
               {1'795'996'800, "20261130T000000"},
               {1'798'761'599, "20261231T235959"},
               {1'798'761'600, "20270101T000000"},
               {kNewYear2100, "21000101T000000"},
               {0, "19700101T000000"},
               {-1, "19691231T235959"},
               {-31'015'353'600, "09870301T000000"},
               {253'402'300'799, "99991231T235959"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stamp);
    char given[] = "#################";
    char current[] = "#################";
    fakeHost.now = c.time;

    EXPECT_EQ(getDateTimeString(given, c.time), 15);
    EXPECT_EQ(getDateTimeString(current), 15);

    EXPECT_EQ(std::string(given, 17), std::string(c.stamp) + '\0' + '#');
    EXPECT_STREQ(current, c.stamp);
  }
}

TEST_F(Stamp, IsCutToItsSixteenCharactersPastTheYear9999) {
  char stamp[16];

  EXPECT_EQ(getDateTimeString(stamp, 253'402'300'800), 16);

  EXPECT_STREQ(stamp, "100000101T00000");
}

class TimeTexts : public RunFixture {};

TEST_F(TimeTexts, HaveTwoDigitsAField) {
  const struct {
    std::time_t time;
    const char* timeOfDay;
    const char* date;
  } cases[] = {{kMarch5, "07:08:09", "03/05/26"},
               {kOctober31, "23:59:59", "10/31/26"},
               {1'798'761'599, "23:59:59", "12/31/26"},
               {1'798'761'600, "00:00:00", "01/01/27"},
               {kNewYear2100, "00:00:00", "01/01/00"},
               {kNewYear2100 - 1, "23:59:59", "12/31/99"},
               {-1, "23:59:59", "12/31/69"},
               {-3'783'974'400, "00:00:00", "02/03/50"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.date);
    char timeOfDay[] = "##########";
    char date[] = "##########";
    fakeHost.now = c.time;

    getTimeString(timeOfDay);
    getDateString(date);

    EXPECT_EQ(std::string(timeOfDay, 10), std::string(c.timeOfDay) + '\0' + '#');
    EXPECT_EQ(std::string(date, 10), std::string(c.date) + '\0' + '#');
  }
}

TEST_F(TimeTexts, FollowTheTimeZone) {
  char stamp[16];
  char timeOfDay[9];
  char date[9];
  fakeHost.now = kOctober31;
  setenv("TZ", "AAA-5:30", 1);
  tzset();

  getDateTimeString(stamp);
  getTimeString(timeOfDay);
  getDateString(date);

  EXPECT_STREQ(stamp, "20261101T052959");
  EXPECT_STREQ(timeOfDay, "05:29:59");
  EXPECT_STREQ(date, "11/01/26");
}

class DateTimeText : public RunFixture {
 protected:
  char buffer_[26] = {};
};

TEST_F(DateTimeText, IsThatOfCtimeInItsStaticOrTheCallersBuffer) {
  const struct {
    unsigned time;
    const char* text;
  } cases[] = {{kMarch5, "Thu Mar  5 07:08:09 2026\n"}, {UINT_MAX, "Sun Feb  7 06:28:15 2106\n"}};
  const std::time_t epoch = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);

    EXPECT_STREQ(dateTimeToString(&c.time), c.text);
    EXPECT_EQ(dateTimeToString(&c.time, &buffer_), buffer_);

    EXPECT_STREQ(buffer_, c.text);
    EXPECT_EQ(dateTimeToString(&c.time), std::ctime(&epoch));
  }
}

TEST_F(DateTimeText, IsThatOfTimeZeroOrEmptyWhenCtimeFails) {
  const unsigned time = kMarch5;

  fakeHost.failingTimeTexts = 1;
  EXPECT_STREQ(dateTimeToString(&time), "Thu Jan  1 00:00:00 1970\n");

  fakeHost.failingTimeTexts = 2;
  EXPECT_STREQ(dateTimeToString(&time), "");

  fakeHost.failingTimeTexts = 1;
  EXPECT_EQ(dateTimeToString(&time, &buffer_), nullptr);
}

class MonotonicClock : public RunFixture {};

TEST_F(MonotonicClock, HasItsFrequencyBeforeMainStarts) {
  EXPECT_DOUBLE_EQ(frequency, 24'000'000.0);
}

TEST_F(MonotonicClock, IsAskedForItsSpeedInEachCall) {
  EXPECT_DOUBLE_EQ(cpuSpeedMhz(), 24.0);

  fakeTimebase = {1, 2};

  EXPECT_DOUBLE_EQ(cpuSpeedMhz(), 2000.0);
}

TEST_F(MonotonicClock, GivesSecondsByTheFrequencyOfTheStart) {
  fakeHost.monotonic = {0, 36'000'000};
  fakeTimebase = {1, 1};

  EXPECT_DOUBLE_EQ(getFPTimeInSeconds(), 1.5);
}

TEST_F(MonotonicClock, GivesWholeMicrosecondsByTheSpeedOfTheMoment) {
  fakeHost.monotonic = {0, 47};
  EXPECT_EQ(getFPTimeInuSeconds(), 1U);

  fakeTimebase = {1, 1};
  fakeHost.monotonic = {7, 999'999'999};
  EXPECT_EQ(getFPTimeInuSeconds(), 7'999'999U);

  // Past the signed range.
  fakeHost.monotonic = {10'000'000, 0};
  fakeTimebase = {1'000'000, 1};

  EXPECT_EQ(getFPTimeInuSeconds(), 10'000'000'000'000'000'000U);
}

TEST_F(MonotonicClock, TicksOnceANanosecondOnThisPlatform) {
  const ClockTimebase timebase = platformTimebase();
  fakeHost.monotonic = {3, 5};

  EXPECT_EQ(timebase.numer, 1U);
  EXPECT_EQ(timebase.denom, 1U);
  EXPECT_EQ(monotonicTicks(), 3'000'000'005U);
}

class ServerTime : public RunFixture {};

TEST_F(ServerTime, IsTheCurrentTimeAndLoadsTheTimeZoneAtFirstOnly) {
  ASSERT_FALSE(tzsetDone);

  for (const char* const zone : {"AAA-1", "BBB-2"}) {
    setenv("TZ", zone, 1);

    EXPECT_EQ(getServerTimeInSeconds(), kStartTime);

    EXPECT_TRUE(tzsetDone);
    EXPECT_STREQ(tzname[0], "AAA");
  }
}

class Sleep : public RunFixture {};

TEST_F(Sleep, LastsItsMillisecondsButNeverLessThanThree) {
  const struct {
    int ms;
    std::time_t seconds;
    long nanoseconds;
  } cases[] = {{INT_MIN, 0, 3'000'000}, {-5, 0, 3'000'000}, {0, 0, 3'000'000},
               {2, 0, 3'000'000},       {3, 0, 3'000'000},  {4, 0, 4'000'000},
               {999, 0, 999'000'000},   {1000, 1, 0},       {1001, 1, 1'000'000},
               {1500, 1, 500'000'000},  {11'000, 11, 0},    {INT_MAX, 2'147'483, 647'000'000}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ms);
    fakeHost.sleeps.clear();

    EXPECT_EQ(Delay(c.ms), 0);

    EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(c.seconds, c.nanoseconds)));
  }
}

TEST_F(Sleep, IsNotResumedAfterASignal) {
  fakeHost.sleepStatus = -1;

  EXPECT_EQ(Delay(1500), -1);

  EXPECT_THAT(fakeHost.sleeps, ElementsAre(FieldsAre(1, 500'000'000)));
}

}  // namespace

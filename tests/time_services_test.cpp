#include "time_services.h"

#include "support/run_fixture.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

constexpr std::time_t kMarch5 = 1'772'694'489;       // 2026-03-05 07:08:09 UTC
constexpr std::time_t kOctober31 = 1'793'491'199;    // 2026-10-31 23:59:59 UTC
constexpr std::time_t kNewYear2100 = 4'102'444'800;  // 2100-01-01 00:00:00 UTC

void useTimeZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

class Stamp : public RunFixture {};

TEST_F(Stamp, HasFifteenCharactersOfLocalTime) {
  char stamp[] = "#################";

  EXPECT_EQ(getDateTimeString(stamp, kMarch5), 15);

  EXPECT_EQ(std::string(stamp, 17), std::string("20260305T070809") + '\0' + '#');
}

TEST_F(Stamp, FollowsTheTimeZone) {
  char stamp[16];

  useTimeZone("AAA-5:30");
  getDateTimeString(stamp, kMarch5);

  EXPECT_STREQ(stamp, "20260305T123809");
}

TEST_F(Stamp, IsOfTheCurrentTimeWithoutATime) {
  char stamp[16];

  fakeHost.now = kMarch5;
  EXPECT_EQ(getDateTimeString(stamp), 15);

  EXPECT_STREQ(stamp, "20260305T070809");
}

TEST_F(Stamp, CountsMonthsFromOneAndPadsEveryField) {
  const struct {
    long time;
    const char* stamp;
  } cases[] = {{kOctober31, "20261031T235959"},
               {1'795'996'800, "20261130T000000"},
               {1'798'761'599, "20261231T235959"},
               {1'798'761'600, "20270101T000000"},
               {kNewYear2100, "21000101T000000"},
               {0, "19700101T000000"},
               {-1, "19691231T235959"},
               {-31'015'353'600, "09870301T000000"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stamp);
    char stamp[16];

    EXPECT_EQ(getDateTimeString(stamp, c.time), 15);

    EXPECT_STREQ(stamp, c.stamp);
  }
}

TEST_F(Stamp, IsCutToItsSixteenCharactersPastTheYear9999) {
  char stamp[] = "################";

  EXPECT_EQ(getDateTimeString(stamp, 253'402'300'799), 15);
  EXPECT_STREQ(stamp, "99991231T235959");

  EXPECT_EQ(getDateTimeString(stamp, 253'402'300'800), 16);
  EXPECT_STREQ(stamp, "100000101T00000");
}

class TimeText : public RunFixture {};

TEST_F(TimeText, ShowsHoursMinutesAndSecondsWithTwoDigits) {
  const struct {
    std::time_t time;
    const char* text;
  } cases[] = {{kMarch5, "07:08:09"}, {kOctober31, "23:59:59"}, {kNewYear2100, "00:00:00"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    char text[] = "##########";

    fakeHost.now = c.time;
    getTimeString(text);

    EXPECT_EQ(std::string(text, 10), std::string(c.text) + '\0' + '#');
  }
}

TEST_F(TimeText, FollowsTheTimeZone) {
  char text[9];

  useTimeZone("AAA-5:30");
  fakeHost.now = kMarch5;
  getTimeString(text);

  EXPECT_STREQ(text, "12:38:09");
}

class DateText : public RunFixture {};

TEST_F(DateText, ShowsMonthDayAndTheYearsLastTwoDigits) {
  const struct {
    std::time_t time;
    const char* text;
  } cases[] = {{kMarch5, "03/05/26"},
               {kOctober31, "10/31/26"},
               {1'798'761'599, "12/31/26"},
               {1'798'761'600, "01/01/27"},
               {kNewYear2100, "01/01/00"},
               {kNewYear2100 - 1, "12/31/99"},
               {-1, "12/31/69"},
               {-3'783'974'400, "02/03/50"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    char text[] = "##########";

    fakeHost.now = c.time;
    getDateString(text);

    EXPECT_EQ(std::string(text, 10), std::string(c.text) + '\0' + '#');
  }
}

TEST_F(DateText, FollowsTheTimeZone) {
  char text[9];

  useTimeZone("AAA-5:30");
  fakeHost.now = kOctober31;
  getDateString(text);

  EXPECT_STREQ(text, "11/01/26");
}

class DateTimeText : public RunFixture {};

TEST_F(DateTimeText, IsThatOfCtime) {
  const unsigned time = kMarch5;

  EXPECT_STREQ(dateTimeToString(&time), "Thu Mar  5 07:08:09 2026\n");
}

TEST_F(DateTimeText, TakesTheTimeAsUnsigned) {
  const unsigned time = UINT_MAX;
  char buffer[26];

  EXPECT_STREQ(dateTimeToString(&time), "Sun Feb  7 06:28:15 2106\n");
  EXPECT_STREQ(dateTimeToString(&time, &buffer), "Sun Feb  7 06:28:15 2106\n");
}

TEST_F(DateTimeText, LiesInTheStaticBufferOfTheCLibrary) {
  const unsigned time = kMarch5;
  const std::time_t epoch = 0;

  EXPECT_EQ(dateTimeToString(&time), std::ctime(&epoch));
}

TEST_F(DateTimeText, IsThatOfTimeZeroWhenCtimeFails) {
  const unsigned time = kMarch5;

  fakeHost.failingTimeTexts = 1;

  EXPECT_STREQ(dateTimeToString(&time), "Thu Jan  1 00:00:00 1970\n");
}

TEST_F(DateTimeText, IsEmptyWhenCtimeFailsTwice) {
  const unsigned time = kMarch5;

  fakeHost.failingTimeTexts = 2;

  EXPECT_STREQ(dateTimeToString(&time), "");
}

TEST_F(DateTimeText, FillsTheCallersBufferAndReturnsIt) {
  const unsigned time = kMarch5;
  char buffer[26];

  EXPECT_EQ(dateTimeToString(&time, &buffer), buffer);

  EXPECT_STREQ(buffer, "Thu Mar  5 07:08:09 2026\n");
}

TEST_F(DateTimeText, IsNoneForTheCallersBufferWhenCtimeFails) {
  const unsigned time = kMarch5;
  char buffer[26];

  fakeHost.failingTimeTexts = 1;

  EXPECT_EQ(dateTimeToString(&time, &buffer), nullptr);
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
}

TEST_F(MonotonicClock, GivesMicrosecondsPastTheSignedRange) {
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

TEST_F(ServerTime, IsTheCurrentTime) {
  EXPECT_EQ(getServerTimeInSeconds(), kStartTime);
}

TEST_F(ServerTime, LoadsTheTimeZoneInTheFirstCallOnly) {
  ASSERT_FALSE(tzsetDone);

  setenv("TZ", "AAA-1", 1);
  getServerTimeInSeconds();
  EXPECT_TRUE(tzsetDone);
  EXPECT_STREQ(tzname[0], "AAA");

  setenv("TZ", "BBB-2", 1);
  getServerTimeInSeconds();
  EXPECT_TRUE(tzsetDone);
  EXPECT_STREQ(tzname[0], "AAA");
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

    Delay(c.ms);

    ASSERT_EQ(fakeHost.sleeps.size(), 1U);
    EXPECT_EQ(fakeHost.sleeps[0].tv_sec, c.seconds);
    EXPECT_EQ(fakeHost.sleeps[0].tv_nsec, c.nanoseconds);
  }
}

TEST_F(Sleep, ReturnsZeroAtItsEnd) {
  EXPECT_EQ(Delay(5), 0);
}

TEST_F(Sleep, IsNotResumedAfterASignal) {
  fakeHost.sleepStatus = -1;

  EXPECT_EQ(Delay(1500), -1);

  EXPECT_EQ(fakeHost.sleeps.size(), 1U);
}

}  // namespace

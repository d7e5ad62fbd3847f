#include "doctor/settings.h"

#include "run_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace watch {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Reads `text` on top of the defaults.
SettingsReading reading(const std::string& text) {
  ConfigurationParameters = {};
  return readSettings(text);
}

struct Case {
  const char* text;
  const char* finding;
  const char* remedy;
  const char* inForce;
};

constexpr char kDefaults[] = "10 pings, 10 s for each iperf3 test, rates in bps";

void expectOneLook(const Case& c) {
  SCOPED_TRACE(c.text);
  const SettingsReading settings = reading(c.text);
  EXPECT_THAT(settings.findings,
              ElementsAre(Finding{Level::look, "settings", c.finding, c.remedy}));
  EXPECT_FALSE(settings.endsRun);
  EXPECT_EQ(settingsInForce(), c.inForce);
}

TEST(Settings, AreInForceAsTheyAreWritten) {
  EXPECT_THAT(reading("numPings=5\niperfTestTime=20\noutputFormat=3\n").findings, IsEmpty());
  EXPECT_EQ(settingsInForce(), "5 pings, 20 s for each iperf3 test, rates in Megabps");

  EXPECT_THAT(reading("doPingTests=false\r\ndoIperf3Tests=false").findings, IsEmpty());
  EXPECT_EQ(settingsInForce(), "no pings, no iperf3 tests, rates in bps");
}

TEST(Settings, AreSoundWhereNothingMisleads) {
  const char* const texts[] = {
      "",
      "\n\n",
      "# a remark\n; another\nand one more\n",
      "# a = b\n",
      "# numPings=10\n#doPingTests=true\n",
      "numPings = 10 of them\n",
      "numPings= +10\r\n",
      "debugConfFile=false\nnumPings=10\niperfTestTime=10\npingTestServer=false\n"
      "debugPrintPing=false\ndebugPrintIperf=true\ndebugPrintLast=false\n"
      "debugPrintHistory=false\ndoPingTests=true\ndoIperf2Tests=false\ndoIperf3Tests=true\n"
      "outputFormat=1\n",
      "doPingTests = true\n",
      "debugPrintPing=true\ndebugPrintHistory=true\n",
      "doIperf3Tests =true\n"};
  for (const char* const text : texts) {
    SCOPED_TRACE(text);
    const SettingsReading settings = reading(text);
    EXPECT_THAT(settings.findings, IsEmpty());
    EXPECT_FALSE(settings.endsRun);
    EXPECT_EQ(settingsInForce(), kDefaults);
  }
}

TEST(Settings, WarnOfASwitchThatDoesNotSwitch) {
  const Case cases[] = {
      {"doPingTests = false",
       "line 1: \"doPingTests = false\" does nothing: the value must follow \"=\" at once. Write:",
       "doPingTests=false", kDefaults},
      {"\ndoPingTests=FALSE",
       "line 2: \"doPingTests=FALSE\" does nothing: the value must be in lower case. Write:",
       "doPingTests=false", kDefaults},
      {"doIperf3Tests=no",
       "line 1: \"doIperf3Tests=no\" does nothing: a switch knows only \"true\" and \"false\". "
       "Write:",
       "doIperf3Tests=false", kDefaults},
      {"pingTestServer=1",
       "line 1: \"pingTestServer=1\" does nothing: a switch knows only \"true\" and \"false\". "
       "Write:",
       "pingTestServer=true", kDefaults},
      {"debugPrintPing=", "line 1: \"debugPrintPing=\" does nothing: only true does. Write:",
       "debugPrintPing=true", kDefaults},
      {"doPingTests=maybe", "line 1: \"doPingTests=maybe\" does nothing: only false does. Write:",
       "doPingTests=false", kDefaults},
      {"doIperf2Tests=true",
       "line 1: \"doIperf2Tests=true\" does nothing: the iperf2 test is off, and no line switches "
       "it on. Remove it",
       "", kDefaults},
      {"debugPrintIperf=false",
       "line 1: \"debugPrintIperf=false\" does nothing: this key has no effect. Remove it", "",
       kDefaults},
      {"doPingTests=false\ndoPingTests=true",
       "line 2: \"doPingTests=true\" does nothing: what line 1 has switched stays so. Remove that "
       "line",
       "", "no pings, 10 s for each iperf3 test, rates in bps"}};
  for (const Case& c : cases) {
    expectOneLook(c);
  }
}

TEST(Settings, WarnOfALineThatDoesSomethingElse) {
  const Case cases[] = {
      {"# numPings=3",
       "line 1: \"# numPings=3\" is no comment: it counts as numPings. Remove the line, or its "
       "\"=\"",
       "", "3 pings, 10 s for each iperf3 test, rates in bps"},
      {"doPingTests=falsehood",
       "line 1: \"doPingTests=falsehood\" counts as false: what follows the value is ignored. "
       "Write:",
       "doPingTests=false", "no pings, 10 s for each iperf3 test, rates in bps"},
      {"numPings=5x", "line 1: \"numPings=5x\" is read up to what is no digit. Write:",
       "numPings=5", "5 pings, 10 s for each iperf3 test, rates in bps"},
      {"iperfTestTime=12.5",
       "line 1: \"iperfTestTime=12.5\" is read up to what is no digit. Write:", "iperfTestTime=12",
       "10 pings, 12 s for each iperf3 test, rates in bps"},
      {"mynumPings=4",
       "line 1: \"mynumPings=4\" counts as numPings, which stands in it. Remove the line, or "
       "write:",
       "numPings=4", "4 pings, 10 s for each iperf3 test, rates in bps"},
      {"iperfTestTime numPings=4",
       "line 1: \"iperfTestTime numPings=4\" counts as numPings alone. Write iperfTestTime on a "
       "line of its own",
       "", "4 pings, 10 s for each iperf3 test, rates in bps"},
      {"numPings=3\nnumPings=4",
       "line 2: \"numPings=4\" counts, and line 1 no more. Remove one of them", "",
       "4 pings, 10 s for each iperf3 test, rates in bps"},
      {"outputFormat=4",
       "line 1: \"outputFormat=4\" is no format of the rates, and counts as 1. Write one of 1, 2 "
       "and 3:",
       "outputFormat=1", kDefaults},
      {"pingTestServer=true",
       "line 1: \"pingTestServer=true\" pings 8.8.8.8 in place of the server: the latency is not "
       "that of its line. Remove it",
       "", kDefaults},
      {"debugConfFile=true",
       "line 1: \"debugConfFile=true\" traces the iperf3 tests, whatever its name says", "",
       kDefaults},
      {"debugPrintLast=true",
       "line 1: \"debugPrintLast=true\" traces the latest iperf2 report, which no run reads. "
       "Remove "
       "it",
       "", kDefaults}};
  for (const Case& c : cases) {
    expectOneLook(c);
  }
}

TEST(Settings, WarnOfALineThatDoesNothing) {
  const Case cases[] = {
      {"numpings=3", "line 1: \"numpings=3\" does nothing: keys have these capitals. Write:",
       "numPings=3", kDefaults},
      {"numPings 3", "line 1: \"numPings 3\" does nothing: it has no \"=\". Write:", "numPings=3",
       kDefaults},
      {"pings=3",
       "line 1: \"pings=3\" does nothing: it holds no key. The keys are in man connTester.conf", "",
       kDefaults},
      {"a\tname=that is longer than the forty characters that a message repeats",
       "line 1: \"a?name=that is longer than the forty cha\"... does nothing: it holds no key. The "
       "keys are in man connTester.conf",
       "", kDefaults}};
  for (const Case& c : cases) {
    expectOneLook(c);
  }
}

TEST(Settings, WarnOfATestWithoutAnEndAndOfAShortOne) {
  const Case cases[] = {
      {"numPings=0",
       "line 1: \"numPings=0\" is refused by some releases of ping, so that nothing is measured, "
       "and taken for \"until stopped\" by others: then it ends after a minute, without the "
       "adapter "
       "never. Write:",
       "numPings=10", "0 pings, 10 s for each iperf3 test, rates in bps"},
      {"iperfTestTime=-1",
       "line 1: \"iperfTestTime=-1\" is refused by some releases of iperf3, so that nothing is "
       "measured, and taken for \"until stopped\" by others: then it ends after a minute, without "
       "the adapter never. Write:",
       "iperfTestTime=10", "10 pings, -1 s for each iperf3 test, rates in bps"},
      {"iperfTestTime=9",
       "line 1: \"iperfTestTime=9\" shows too high a write rate, since the sender counts what "
       "still "
       "waits on its way. Write:",
       "iperfTestTime=10", "10 pings, 9 s for each iperf3 test, rates in bps"}};
  for (const Case& c : cases) {
    expectOneLook(c);
  }
}

TEST(Settings, FailWhereANumberEndsTheRunAndGoOnBehindIt) {
  const SettingsReading settings =
      reading("numPings=ten\niperfTestTime=99999999999\nthis=numPings\ndoPingTests=FALSE\n");

  EXPECT_TRUE(settings.endsRun);
  EXPECT_THAT(
      settings.findings,
      ElementsAre(
          Finding{Level::mend, "settings",
                  "line 1: numPings is \"ten\", which does not start with a number; write a whole "
                  "number, for example numPings=10. A run ends there, before it has measured "
                  "anything"},
          Finding{Level::mend, "settings",
                  "line 2: iperfTestTime is \"99999999999\", which is out of range; write a whole "
                  "number, for example iperfTestTime=10. A run ends there, before it has measured "
                  "anything"},
          Finding{Level::look, "settings",
                  "line 3: \"this=numPings\" counts as numPings, which stands in it. Remove the "
                  "line, or write:",
                  "numPings=numPings"},
          Finding{Level::mend, "settings",
                  "line 3: numPings is \"numPings\", which does not start with a number; write a "
                  "whole number, for example numPings=10. A run ends there, before it has measured "
                  "anything"},
          Finding{Level::look, "settings",
                  "line 4: \"doPingTests=FALSE\" does nothing: the value must be in lower case. "
                  "Write:",
                  "doPingTests=false"}));
}

TEST(Settings, FailWhereIperf3RefusesItsTime) {
  const SettingsReading settings = reading("iperfTestTime=86401");

  EXPECT_FALSE(settings.endsRun);
  EXPECT_THAT(settings.findings,
              ElementsAre(Finding{Level::mend, "settings",
                                  "line 1: \"iperfTestTime=86401\" is more than the 86400 s that "
                                  "iperf3 takes: neither rate is measured. Write:",
                                  "iperfTestTime=10"}));
}

TEST(Settings, PrintNothingOfTheReaders) {
  testing::internal::CaptureStdout();

  reading("outputFormat=7");

  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace watch

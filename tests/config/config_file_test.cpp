#include "config/config_file.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/run_fixture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

/// The settings that are not at their defaults, each with a blank behind it.
std::string changes() {
  const Configuration defaults;
  std::string text;
  const auto compare = [&](const char* key, auto Configuration::*field) {
    if (ConfigurationParameters.*field != defaults.*field) {
      text += std::string(key) + "=" + std::to_string(ConfigurationParameters.*field) + " ";
    }
  };
  compare("numPings", &Configuration::numPings);
  compare("iperfTestTime", &Configuration::iperfTestTime);
  compare("debugPrintPing", &Configuration::debugPrintPing);
  compare("debugConfFile", &Configuration::debugConfFile);
  compare("pingTestServer", &Configuration::pingTestServer);
  compare("debugPrintIperf", &Configuration::debugPrintIperf);
  compare("debugPrintLast", &Configuration::debugPrintLast);
  compare("debugPrintHistory", &Configuration::debugPrintHistory);
  compare("doPingTests", &Configuration::doPingTests);
  compare("doIperf2Tests", &Configuration::doIperf2Tests);
  compare("doIperf3Tests", &Configuration::doIperf3Tests);
  compare("outputFormat", &Configuration::outputFormat);
  return text;
}

/// A line that changes the setting of its key, and the change. There is none for debugPrintIperf
/// and doIperf2Tests, which the file cannot move from their defaults.
struct KeyLine {
  const char* key;
  const char* value;
  const char* change;
};
constexpr KeyLine kKeyLines[] = {{"debugConfFile", "true", "debugConfFile=1 "},
                                 {"numPings", "7", "numPings=7 "},
                                 {"iperfTestTime", "7", "iperfTestTime=7 "},
                                 {"pingTestServer", "true", "pingTestServer=1 "},
                                 {"debugPrintPing", "true", "debugPrintPing=1 "},
                                 {"debugPrintIperf", "true", ""},
                                 {"debugPrintLast", "true", "debugPrintLast=1 "},
                                 {"debugPrintHistory", "true", "debugPrintHistory=1 "},
                                 {"doPingTests", "false", "doPingTests=0 "},
                                 {"doIperf2Tests", "false", ""},
                                 {"doIperf3Tests", "false", "doIperf3Tests=0 "},
                                 {"outputFormat", "2", "outputFormat=2 "}};

class ConfigLine : public RunFixture {
 protected:
  /// Applies `line` to the defaults and returns the settings that it changed.
  static std::string changesBy(const std::string& line) {
    ConfigurationParameters = {};
    applyConfigLine(line, 1);
    return changes();
  }

  /// Returns the message of the `Error` that `line` throws.
  template <typename Error>
  static std::string complaintAbout(const std::string& line, unsigned lineNumber) {
    try {
      applyConfigLine(line, lineNumber);
    } catch (const Error& error) {
      return error.what();
    }
    return "no complaint";
  }
};

TEST_F(ConfigLine, ChangesTheSettingOfItsKey) {
  for (const KeyLine& line : kKeyLines) {
    SCOPED_TRACE(line.key);

    EXPECT_EQ(changesBy(std::string(line.key) + "=" + line.value), line.change);
  }
}

TEST_F(ConfigLine, HasTheFirstOfTwoKeysByTheOrderOfTheTable) {
  for (std::size_t first = 0; first < std::size(kKeyLines); ++first) {
    for (std::size_t second = first + 1; second < std::size(kKeyLines); ++second) {
      const KeyLine& line = kKeyLines[first];
      SCOPED_TRACE(std::string(line.key) + " and " + kKeyLines[second].key);

      EXPECT_EQ(changesBy(std::string(kKeyLines[second].key) + line.key + "=" + line.value),
                line.change);
    }
  }
}

TEST_F(ConfigLine, HoldsItsKeyAnywhereAndItsValueBehindTheFirstEqualsSign) {
  const struct {
    const char* line;
    const char* changes;
  } cases[] = {{"# numPings=3", "numPings=3 "},  // there is no comment syntax
               {"my numPings are=3", "numPings=3 "},
               {"something=3 numPings", "numPings=3 "},
               {"=3numPings", "numPings=3 "},
               {"numPings=3=4", "numPings=3 "},
               {"numPings=3, iperfTestTime=4", "numPings=3 "},
               {"doPingTests=false debugPrintPing=true", ""},
               {"debugPrintPing=true doPingTests=false", "debugPrintPing=1 "},
               {"doPingTests=false=true", "doPingTests=0 "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_EQ(changesBy(c.line), c.changes);
  }
}

TEST_F(ConfigLine, IsIgnoredWithoutAKeyOrAnEqualsSign) {
  for (const char* const line :
       {"", "=", "=true", "numPings", "numPings 3", "numPings:3", "doPingTests false",
        "doPingTests", "outputFormat", "numpings=3", "NUMPINGS=3", "num Pings=3", "Pings=3",
        "dopingtests=false", "unknown=true", "# a comment", "[section]"}) {
    SCOPED_TRACE(line);

    EXPECT_EQ(console([&] { EXPECT_EQ(changesBy(line), ""); }), "");
  }
}

TEST_F(ConfigLine, SwitchesOnByAValueThatBeginsWithTrue) {
  for (const char* const key : {"debugConfFile", "pingTestServer", "debugPrintPing",
                                "debugPrintLast", "debugPrintHistory"}) {
    for (const char* const value : {"true", "truely", "true\r", "true false", "true=false"}) {
      SCOPED_TRACE(std::string(key) + "=" + value);

      EXPECT_EQ(changesBy(std::string(key) + "=" + value), std::string(key) + "=1 ");
    }
  }
}

TEST_F(ConfigLine, SwitchesNothingOnByAnyOtherValue) {
  for (const char* const key : {"debugConfFile", "pingTestServer", "debugPrintPing",
                                "debugPrintLast", "debugPrintHistory"}) {
    for (const char* const value :
         {"", "tru", "TRUE", "True", "truE", " true", "\ttrue", "yes", "1", "false", "xtrue"}) {
      SCOPED_TRACE(std::string(key) + "=" + value);

      EXPECT_EQ(changesBy(std::string(key) + "=" + value), "");
    }
  }
}

TEST_F(ConfigLine, SwitchesATestOffByAValueThatBeginsWithFalse) {
  for (const char* const key : {"doPingTests", "doIperf3Tests"}) {
    for (const char* const value : {"false", "falsely", "false\r", "false true", "false=true"}) {
      SCOPED_TRACE(std::string(key) + "=" + value);

      EXPECT_EQ(changesBy(std::string(key) + "=" + value), std::string(key) + "=0 ");
    }
  }
}

TEST_F(ConfigLine, SwitchesNoTestOffByAnyOtherValue) {
  for (const char* const key : {"doPingTests", "doIperf3Tests"}) {
    for (const char* const value : {"", "fals", "FALSE", "False", "falsE", " false", "\tfalse",
                                    "no", "0", "true", "xfalse"}) {
      SCOPED_TRACE(std::string(key) + "=" + value);

      EXPECT_EQ(changesBy(std::string(key) + "=" + value), "");
    }
  }
}

TEST_F(ConfigLine, NeverSwitchesIperf2On) {
  for (const char* const value : {"true", "truely", "false", "1", "on", ""}) {
    SCOPED_TRACE(value);

    EXPECT_EQ(changesBy(std::string("doIperf2Tests=") + value), "");
  }
}

TEST_F(ConfigLine, SwitchesIperf2OffWhenItIsOn) {
  ConfigurationParameters.doIperf2Tests = true;

  applyConfigLine("doIperf2Tests=fals", 1);
  EXPECT_TRUE(ConfigurationParameters.doIperf2Tests);

  applyConfigLine("doIperf2Tests=falsely", 2);
  EXPECT_FALSE(ConfigurationParameters.doIperf2Tests);
}

TEST_F(ConfigLine, NeverSwitchesTheIperfPrintingOff) {
  EXPECT_EQ(changesBy("debugPrintIperf=false"), "");

  ConfigurationParameters.debugPrintIperf = false;
  applyConfigLine("debugPrintIperf=tru", 1);
  EXPECT_FALSE(ConfigurationParameters.debugPrintIperf);

  applyConfigLine("debugPrintIperf=truely", 2);
  EXPECT_TRUE(ConfigurationParameters.debugPrintIperf);
}

TEST_F(ConfigLine, TakesTheNumberThatItsValueStartsWith) {
  const struct {
    const char* value;
    int number;
  } cases[] = {{"5", 5},
               {" 5", 5},
               {"\t \v\f\r5", 5},
               {"+5", 5},
               {"-5", -5},
               {" -5 ", -5},
               {"05", 5},
               {"5x", 5},
               {"5 6", 5},
               {"5.9", 5},
               {"5\r", 5},
               {"1e3", 1},
               {"0x10", 0},
               {"0", 0},
               {"2147483647", INT_MAX},
               {"-2147483648", INT_MIN}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);

    applyConfigLine(std::string("numPings=") + c.value, 1);
    applyConfigLine(std::string("iperfTestTime=") + c.value, 2);

    EXPECT_EQ(ConfigurationParameters.numPings, c.number);
    EXPECT_EQ(ConfigurationParameters.iperfTestTime, c.number);
  }
}

TEST_F(ConfigLine, TakesANumberWhateverErrorTheProcessHadBefore) {
  errno = ERANGE;

  EXPECT_EQ(changesBy("numPings=5"), "numPings=5 ");
}

TEST_F(ConfigLine, TakesANumberBehindABlankButNoSwitchBehindOne) {
  EXPECT_EQ(changesBy("numPings = 5"), "numPings=5 ");
  EXPECT_EQ(changesBy("doPingTests = false"), "");
  EXPECT_EQ(changesBy("debugPrintPing = true"), "");
}

TEST_F(ConfigLine, ThrowsForAValueThatDoesNotStartWithANumber) {
  for (const char* const key : {"numPings", "iperfTestTime", "outputFormat"}) {
    for (const char* const value : {"", " ", "ten", "x5", "=5", "- 5", "+", "--5", ".5", "\r"}) {
      const std::string line = std::string(key) + "=" + value;
      SCOPED_TRACE(line);

      EXPECT_THROW(applyConfigLine(line, 1), std::invalid_argument);
      EXPECT_EQ(changes(), "");
    }
  }
}

TEST_F(ConfigLine, ThrowsForANumberOutside32Bits) {
  for (const char* const key : {"numPings", "iperfTestTime", "outputFormat"}) {
    for (const char* const value : {"2147483648", "-2147483649", "4294967297",
                                    "99999999999999999999", "-99999999999999999999"}) {
      const std::string line = std::string(key) + "=" + value;
      SCOPED_TRACE(line);

      EXPECT_THROW(applyConfigLine(line, 1), std::out_of_range);
      EXPECT_EQ(changes(), "");
    }
  }
}

TEST_F(ConfigLine, SaysWhereWhatAndHowWhenItThrows) {
  EXPECT_EQ(complaintAbout<std::invalid_argument>("numPings=ten", 3),
            "/usr/local/bin/Qelmora/connTester.conf, line 3: numPings is \"ten\", which does not "
            "start with a number; write a whole number, for example numPings=10");
  EXPECT_EQ(complaintAbout<std::invalid_argument>("my outputFormat=", 12),
            "/usr/local/bin/Qelmora/connTester.conf, line 12: outputFormat is \"\", which does not "
            "start with a number; write a whole number, for example outputFormat=1");
  EXPECT_EQ(
      complaintAbout<std::out_of_range>("iperfTestTime=3000000000", 1),
      "/usr/local/bin/Qelmora/connTester.conf, line 1: iperfTestTime is \"3000000000\", which "
      "is out of range; write a whole number, for example iperfTestTime=10");
}

TEST_F(ConfigLine, NamesTheDefaultWhateverTheSettingIsWhenItThrows) {
  ConfigurationParameters.numPings = 77;

  EXPECT_EQ(complaintAbout<std::invalid_argument>("numPings=x", 1),
            "/usr/local/bin/Qelmora/connTester.conf, line 1: numPings is \"x\", which does not "
            "start with a number; write a whole number, for example numPings=10");
  EXPECT_EQ(ConfigurationParameters.numPings, 77);
}

TEST_F(ConfigLine, RepeatsNoMoreThanFortyPrintableCharactersWhenItThrows) {
  EXPECT_EQ(complaintAbout<std::invalid_argument>("numPings= ~\t\x1b[31m\x7f\xc3\xa9\r", 1),
            "/usr/local/bin/Qelmora/connTester.conf, line 1: numPings is \" ~??[31m????\", which "
            "does not start with a number; write a whole number, for example numPings=10");
  EXPECT_EQ(complaintAbout<std::invalid_argument>("numPings=" + std::string(40, 'x'), 1),
            "/usr/local/bin/Qelmora/connTester.conf, line 1: numPings is "
            "\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\", which "
            "does not start with a number; write a whole number, for example numPings=10");
  EXPECT_EQ(complaintAbout<std::invalid_argument>("numPings=" + std::string(41, 'x'), 1),
            "/usr/local/bin/Qelmora/connTester.conf, line 1: numPings is "
            "\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"..., which "
            "does not start with a number; write a whole number, for example numPings=10");
}

TEST_F(ConfigLine, FailsForTheKeyInItsValueThatStandsEarlierInTheTable) {
  EXPECT_EQ(complaintAbout<std::invalid_argument>("pingTestServer=numPings", 1),
            "/usr/local/bin/Qelmora/connTester.conf, line 1: numPings is \"numPings\", which does "
            "not start with a number; write a whole number, for example numPings=10");
  EXPECT_EQ(changes(), "");
}

TEST_F(ConfigLine, ChoosesOneOfThreeOutputFormats) {
  const struct {
    const char* line;
    int format;
  } cases[] = {{"outputFormat=1", 1},  {"outputFormat=2", 2},  {"outputFormat=3", 3},
               {"outputFormat=3x", 3}, {"outputFormat= 2", 2}, {"outputFormat=2\r", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);

    EXPECT_EQ(console([&] { applyConfigLine(c.line, 1); }), "");

    EXPECT_EQ(ConfigurationParameters.outputFormat, c.format);
  }
}

TEST_F(ConfigLine, SetsAnOutputFormatOutOfRangeToOne) {
  for (const char* const value : {"0", "4", "-1", "-2147483648", "2147483647", "10", "4x"}) {
    SCOPED_TRACE(value);
    ConfigurationParameters.outputFormat = 2;

    const std::string text =
        console([&] { applyConfigLine(std::string("outputFormat=") + value, 1); });

    EXPECT_EQ(text, "outputFormat out of range (1-3). Set to 1.\n");
    EXPECT_EQ(ConfigurationParameters.outputFormat, 1);
  }
}

class ConfigFile : public RunFixture {};

TEST_F(ConfigFile, LeavesAllDefaultsWhenItIsMissing) {
  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), "");
}

TEST_F(ConfigFile, LeavesAllDefaultsWhenItCannotBeRead) {
  configure("");
  std::filesystem::remove(kConfigPath);
  std::filesystem::create_directory(kConfigPath);

  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), "");
}

TEST_F(ConfigFile, LeavesAllDefaultsWhenItIsEmpty) {
  configure("");

  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), "");
}

constexpr char kAllKeys[] =
    "debugConfFile=true\nnumPings=2\niperfTestTime=3\npingTestServer=true\ndebugPrintPing=true\n"
    "debugPrintIperf=true\ndebugPrintLast=true\ndebugPrintHistory=true\ndoPingTests=false\n"
    "doIperf2Tests=false\ndoIperf3Tests=false\noutputFormat=3\n";
constexpr char kAllChanges[] =
    "numPings=2 iperfTestTime=3 debugPrintPing=1 debugConfFile=1 pingTestServer=1 "
    "debugPrintLast=1 debugPrintHistory=1 doPingTests=0 doIperf3Tests=0 outputFormat=3 ";

TEST_F(ConfigFile, SetsAllKeys) {
  configure(kAllKeys);

  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), kAllChanges);
}

TEST_F(ConfigFile, SetsAllKeysWithCarriageReturns) {
  configure(withCarriageReturns(kAllKeys));

  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), kAllChanges);
}

TEST_F(ConfigFile, CountsALastLineWithoutANewline) {
  configure("numPings=2\niperfTestTime=3");

  readConfigFile();

  EXPECT_EQ(changes(), "numPings=2 iperfTestTime=3 ");
}

TEST_F(ConfigFile, IgnoresLinesThatSetNothing) {
  configure("\n\n# connTester\n[tests]\nnumPings\n = \nnumPings=4\n\nunknown=1\n");

  EXPECT_EQ(console([] { readConfigFile(); }), "");

  EXPECT_EQ(changes(), "numPings=4 ");
}

TEST_F(ConfigFile, TakesTheLastOfSeveralNumbers) {
  configure("numPings=2\noutputFormat=3\nnumPings=3\noutputFormat=7\nnumPings=4\n");

  const std::string text = console([] { readConfigFile(); });

  EXPECT_EQ(text, "outputFormat out of range (1-3). Set to 1.\n");
  EXPECT_EQ(changes(), "numPings=4 ");
}

TEST_F(ConfigFile, NeverSwitchesBack) {
  configure(
      "debugPrintPing=true\ndebugPrintPing=false\ndoPingTests=false\ndoPingTests=true\n"
      "pingTestServer=true\npingTestServer=false\ndoIperf3Tests=false\ndoIperf3Tests=true\n");

  readConfigFile();

  EXPECT_EQ(changes(), "debugPrintPing=1 pingTestServer=1 doPingTests=0 doIperf3Tests=0 ");
}

TEST_F(ConfigFile, StopsAtAMalformedNumberAndNamesItsLine) {
  configure("# a comment\n\nnumPings=2\niperfTestTime=ten\nnumPings=3\n");

  try {
    readConfigFile();
    ADD_FAILURE() << "nothing thrown";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(),
                 "/usr/local/bin/Qelmora/connTester.conf, line 4: iperfTestTime is \"ten\", which "
                 "does not start with a number; write a whole number, for example "
                 "iperfTestTime=10");
  }
  EXPECT_EQ(changes(), "numPings=2 ");
}

}  // namespace

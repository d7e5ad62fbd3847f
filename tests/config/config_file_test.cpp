#include "config/config_file.h"

#include "run_state.h"
#include "support/recordings.h"
#include "support/run_fixture.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <filesystem>
#include <initializer_list>
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

  /// Expects that each of `keys` with each of `values` makes the change "<key><outcome>", or none
  /// where there is no outcome.
  static void expectChanges(std::initializer_list<std::string> keys,
                            std::initializer_list<std::string> values, const std::string& outcome) {
    for (const std::string& key : keys) {
      for (const std::string& value : values) {
        SCOPED_TRACE(testing::Message() << key << "=" << value);

        EXPECT_EQ(changesBy(key + "=" + value), outcome.empty() ? "" : key + outcome);
      }
    }
  }

  static std::string endingBy(const std::string& line) {
    return endingOf([&line] { applyConfigLine(line, 1); });
  }

  /// Expects that each number with each of `values` ends by `exception`, and changes nothing.
  static void expectErrors(const std::string& exception,
                           std::initializer_list<std::string> values) {
    for (const std::string key : {"numPings", "iperfTestTime", "outputFormat"}) {
      for (const std::string& value : values) {
        const std::string line = key + "=" + value;
        SCOPED_TRACE(line);

        EXPECT_EQ(endingBy(line), exception);
        EXPECT_EQ(changes(), "");
      }
    }
  }

  /// Returns the message of the `Error` that `line`, the twelfth, throws.
  template <typename Error = std::invalid_argument>
  static std::string complaintAbout(const std::string& line) {
    try {
      applyConfigLine(line, 12);
    } catch (const Error& error) {
      return error.what();
    }
    return "no complaint";
  }

  /// What an error says of the setting of `key` to `value`.
  static std::string complaint(const std::string& key, const std::string& value,
                               const std::string& problem, const std::string& example) {
    return "/usr/local/bin/Qelmora/connTester.conf, line 12: " + key + " is " + value + ", which " +
           problem + "; write a whole number, for example " + key + "=" + example;
  }

  static std::string noNumber(const std::string& key, const std::string& value,
                              const std::string& example = "10") {
    return complaint(key, value, "does not start with a number", example);
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
               {"numPings = 5", "numPings=5 "},  // a switch takes no blank
               {"doPingTests = false", ""},
               {"debugPrintPing = true", ""},
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
  const auto keys = {std::string("debugConfFile"), std::string("pingTestServer"),
                     std::string("debugPrintPing"), std::string("debugPrintLast"),
                     std::string("debugPrintHistory")};

  expectChanges(keys, {"true", "truely", "true\r", "true false", "true=false"}, "=1 ");
  expectChanges(
      keys, {"", "tru", "TRUE", "True", "truE", " true", "\ttrue", "yes", "1", "false", "xtrue"},
      "");
}

TEST_F(ConfigLine, SwitchesATestOffByAValueThatBeginsWithFalse) {
  const auto keys = {std::string("doPingTests"), std::string("doIperf3Tests")};

  expectChanges(keys, {"false", "falsely", "false\r", "false true", "false=true"}, "=0 ");
  expectChanges(
      keys,
      {"", "fals", "FALSE", "False", "falsE", " false", "\tfalse", "no", "0", "true", "xfalse"},
      "");
}

TEST_F(ConfigLine, SwitchesIperf2OffOnly) {
  expectChanges({"doIperf2Tests"}, {"true", "truely", "false", "1", "on", ""}, "");

  ConfigurationParameters.doIperf2Tests = true;
  applyConfigLine("doIperf2Tests=fals", 1);
  EXPECT_TRUE(ConfigurationParameters.doIperf2Tests);

  applyConfigLine("doIperf2Tests=falsely", 2);
  EXPECT_FALSE(ConfigurationParameters.doIperf2Tests);
}

TEST_F(ConfigLine, SwitchesTheIperfPrintingOnOnly) {
  expectChanges({"debugPrintIperf"}, {"false", "true", ""}, "");

  ConfigurationParameters.debugPrintIperf = false;
  applyConfigLine("debugPrintIperf=tru", 1);
  EXPECT_FALSE(ConfigurationParameters.debugPrintIperf);

  applyConfigLine("debugPrintIperf=truely", 2);
  EXPECT_TRUE(ConfigurationParameters.debugPrintIperf);
}

TEST_F(ConfigLine, TakesTheNumberThatItsValueStartsWith) {
  errno = ERANGE;  // whatever error the process had before

  expectChanges({"numPings", "iperfTestTime"},
                {"5", " 5", "\t \v\f\r5", "+5", "05", "5x", "5 6", "5.9", "5\r"}, "=5 ");
  expectChanges({"numPings", "iperfTestTime"}, {"-5", " -5 "}, "=-5 ");
  expectChanges({"numPings", "iperfTestTime"}, {"1e3"}, "=1 ");
  expectChanges({"numPings", "iperfTestTime"}, {"0", "0x10"}, "=0 ");
  expectChanges({"numPings", "iperfTestTime"}, {"2147483647"}, "=2147483647 ");
  expectChanges({"numPings", "iperfTestTime"}, {"-2147483648"}, "=-2147483648 ");
}

TEST_F(ConfigLine, ThrowsForAValueThatIsNoNumberOf32Bits) {
  expectErrors("invalid_argument", {"", " ", "ten", "x5", "=5", "- 5", "+", "--5", ".5", "\r"});
  expectErrors("out_of_range", {"2147483648", "-2147483649", "4294967297", "99999999999999999999",
                                "-99999999999999999999"});
}

TEST_F(ConfigLine, SaysWhereWhatAndHowWhenItThrows) {
  ConfigurationParameters.numPings = 77;

  EXPECT_EQ(complaintAbout("numPings=ten"), noNumber("numPings", "\"ten\""));
  EXPECT_EQ(complaintAbout("my outputFormat="), noNumber("outputFormat", "\"\"", "1"));
  EXPECT_EQ(complaintAbout<std::out_of_range>("iperfTestTime=3000000000"),
            complaint("iperfTestTime", "\"3000000000\"", "is out of range", "10"));
  // The key in the value stands earlier in the table.
  EXPECT_EQ(complaintAbout("pingTestServer=numPings"), noNumber("numPings", "\"numPings\""));
  EXPECT_EQ(changes(), "numPings=77 ");
}

TEST_F(ConfigLine, RepeatsNoMoreThanFortyPrintableCharactersWhenItThrows) {
  const std::string forty(40, 'x');

  EXPECT_EQ(complaintAbout("numPings= ~\t\x1b[31m\x7f\xc3\xa9\r"),
            noNumber("numPings", "\" ~??[31m????\""));
  EXPECT_EQ(complaintAbout("numPings=" + forty), noNumber("numPings", "\"" + forty + "\""));
  EXPECT_EQ(complaintAbout("numPings=" + forty + "x"),
            noNumber("numPings", "\"" + forty + "\"..."));
}

TEST_F(ConfigLine, SetsAnOutputFormatOutOfRangeToOne) {
  const struct {
    const char* value;
    int format;
  } cases[] = {{"1", 1},   {"2", 2},  {"3", 3},  {"3x", 3},           {" 2", 2},
               {"2\r", 2}, {"0", -1}, {"4", -1}, {"-2147483648", -1}, {"2147483647", -1},
               {"10", -1}, {"4x", -1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const bool inRange = c.format > 0;
    ConfigurationParameters.outputFormat = 2;

    const std::string text =
        console([&] { applyConfigLine(std::string("outputFormat=") + c.value, 1); });

    EXPECT_EQ(text, inRange ? "" : "outputFormat out of range (1-3). Set to 1.\n");
    EXPECT_EQ(ConfigurationParameters.outputFormat, inRange ? c.format : 1);
  }
}

class ConfigFile : public RunFixture {
 protected:
  /// The settings that the file changes, silently.
  static std::string changesByFile() {
    EXPECT_EQ(console(readConfigFile), "");
    return changes();
  }
};

TEST_F(ConfigFile, LeavesAllDefaultsWhenItCannotBeReadOrIsEmpty) {
  EXPECT_EQ(changesByFile(), "");

  configure("");
  EXPECT_EQ(changesByFile(), "");

  std::filesystem::remove(kConfigPath);
  std::filesystem::create_directory(kConfigPath);
  EXPECT_EQ(changesByFile(), "");
}

TEST_F(ConfigFile, SetsAllKeys) {
  const std::string keys =
      "debugConfFile=true\nnumPings=2\niperfTestTime=3\npingTestServer=true\n"
      "debugPrintPing=true\ndebugPrintIperf=true\ndebugPrintLast=true\n"
      "debugPrintHistory=true\ndoPingTests=false\ndoIperf2Tests=false\ndoIperf3Tests=false\n"
      "outputFormat=3";
  configure(keys);

  for (const std::string& text : {keys, withCarriageReturns(keys + "\n")}) {
    SCOPED_TRACE(text);
    ConfigurationParameters = {};
    writeFile(kConfigPath, text);

    EXPECT_EQ(changesByFile(),
              "numPings=2 iperfTestTime=3 debugPrintPing=1 debugConfFile=1 pingTestServer=1 "
              "debugPrintLast=1 debugPrintHistory=1 doPingTests=0 doIperf3Tests=0 outputFormat=3 ");
  }
}

TEST_F(ConfigFile, TakesTheLastNumberAndNeverSwitchesBack) {
  configure(
      "\n\n# connTester\n[tests]\nnumPings\n = \nnumPings=2\noutputFormat=3\nunknown=1\n"
      "debugPrintPing=true\ndebugPrintPing=false\ndoPingTests=false\ndoPingTests=true\n"
      "numPings=3\noutputFormat=2\nnumPings=4\n");

  EXPECT_EQ(changesByFile(), "numPings=4 debugPrintPing=1 doPingTests=0 outputFormat=2 ");
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

#include "config/config_file.h"

#include "rate_units.h"
#include "run_state.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace {

constexpr char kFormatOutOfRange[] = "outputFormat out of range (1-%zu). Set to 1.\n";

/// Characters of a wrong value that an error message repeats.
constexpr std::size_t kQuotedLength = 40;

/// One "key=value" of the file, with the number of its line.
struct Setting {
  std::string_view key;
  std::string value;
  unsigned lineNumber;
};

std::string quoted(const std::string& text) {
  std::string shown = text.substr(0, kQuotedLength);
  for (char& c : shown) {
    c = c >= ' ' && c <= '~' ? c : '?';
  }
  return '"' + shown + (text.size() > kQuotedLength ? "\"..." : "\"");
}

std::string complaint(const Setting& setting, const char* problem, std::int32_t example) {
  return std::string(kConfigPath) + ", line " + std::to_string(setting.lineNumber) + ": " +
         std::string(setting.key) + " is " + quoted(setting.value) + ", which " + problem +
         "; write a whole number, for example " + std::string(setting.key) + "=" +
         std::to_string(example);
}

std::int32_t toNumber(const Setting& setting, std::int32_t example) {
  const char* const text = setting.value.c_str();
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text, &end, 10);
  if (end == text) {
    throw std::invalid_argument(complaint(setting, "does not start with a number", example));
  }
  using Limits = std::numeric_limits<std::int32_t>;
  if (errno == ERANGE || number < Limits::min() || number > Limits::max()) {
    throw std::out_of_range(complaint(setting, "is out of range", example));
  }
  return static_cast<std::int32_t>(number);
}

template <std::int32_t Configuration::*Number>
void takeNumber(const Setting& setting) {
  ConfigurationParameters.*Number = toNumber(setting, Configuration{}.*Number);
}

// Required (ConfigLine.SwitchesIperf2OffOnly): a switch only ever leaves its default, and
// doIperf2Tests, off by default, has only this way: no line turns iperf2 on.
template <bool Configuration::*Flag>
void switchOn(const Setting& setting) {
  if (setting.value.starts_with("true")) {
    ConfigurationParameters.*Flag = true;
  }
}

template <bool Configuration::*Flag>
void switchOff(const Setting& setting) {
  if (setting.value.starts_with("false")) {
    ConfigurationParameters.*Flag = false;
  }
}

void takeOutputFormat(const Setting& setting) {
  takeNumber<&Configuration::outputFormat>(setting);
  if (rateUnit(ConfigurationParameters.outputFormat) == nullptr) {
    std::printf(kFormatOutOfRange, std::size(kRateUnits));
    ConfigurationParameters.outputFormat = 1;
  }
}

/// A key, and what a line with it does.
struct Key {
  std::string_view name;
  void (*effect)(const Setting& setting);
};

constexpr Key kKeys[] = {{"debugConfFile", switchOn<&Configuration::debugConfFile>},
                         {"numPings", takeNumber<&Configuration::numPings>},
                         {"iperfTestTime", takeNumber<&Configuration::iperfTestTime>},
                         {"pingTestServer", switchOn<&Configuration::pingTestServer>},
                         {"debugPrintPing", switchOn<&Configuration::debugPrintPing>},
                         {"debugPrintIperf", switchOn<&Configuration::debugPrintIperf>},
                         {"debugPrintLast", switchOn<&Configuration::debugPrintLast>},
                         {"debugPrintHistory", switchOn<&Configuration::debugPrintHistory>},
                         {"doPingTests", switchOff<&Configuration::doPingTests>},
                         {"doIperf2Tests", switchOff<&Configuration::doIperf2Tests>},
                         {"doIperf3Tests", switchOff<&Configuration::doIperf3Tests>},
                         {"outputFormat", takeOutputFormat}};
static_assert(std::ranges::equal(kKeys, configFileKeys, {}, &Key::name));

}  // namespace

void readConfigFile() {
  std::ifstream file(kConfigPath);
  unsigned lineNumber = 0;
  for (std::string line; std::getline(file, line);) {
    applyConfigLine(line, ++lineNumber);
  }
}

void applyConfigLine(const std::string& line, unsigned lineNumber) {
  const std::size_t equals = line.find('=');
  if (equals == std::string::npos) {
    return;
  }
  // Required (ConfigLine.HasTheFirstOfTwoKeysByTheOrderOfTheTable): a key counts wherever it
  // stands, in the value too, and the first of the table wins.
  for (const Key& key : kKeys) {
    if (line.find(key.name) != std::string::npos) {
      key.effect({key.name, line.substr(equals + 1), lineNumber});
      return;
    }
  }
}

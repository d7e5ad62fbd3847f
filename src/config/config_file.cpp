#include "config/config_file.h"

#include "run_state.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace {

constexpr char kConfigPath[] = "/usr/local/bin/Qelmora/connTester.conf";
constexpr char kFormatOutOfRange[] = "outputFormat out of range (1-3). Set to 1.";

/// Characters of a wrong value that an error message repeats.
constexpr std::size_t kQuotedLength = 40;

/// One "key=value" of the file, with the number of its line.
struct Setting {
  const char* key;
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
         setting.key + " is " + quoted(setting.value) + ", which " + problem +
         "; write a whole number, for example " + setting.key + "=" + std::to_string(example);
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

// Required: a switch only ever leaves its default, and doIperf2Tests, off by default, has only this
// way: no line turns iperf2 on.
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
  if (ConfigurationParameters.outputFormat < 1 || ConfigurationParameters.outputFormat > 3) {
    std::puts(kFormatOutOfRange);
    ConfigurationParameters.outputFormat = 1;
  }
}

using Effect = void (*)(const Setting& setting);

// What each key of `configFileKeys` does, in the same order.
constexpr Effect kEffects[] = {
    switchOn<&Configuration::debugConfFile>,   takeNumber<&Configuration::numPings>,
    takeNumber<&Configuration::iperfTestTime>, switchOn<&Configuration::pingTestServer>,
    switchOn<&Configuration::debugPrintPing>,  switchOn<&Configuration::debugPrintIperf>,
    switchOn<&Configuration::debugPrintLast>,  switchOn<&Configuration::debugPrintHistory>,
    switchOff<&Configuration::doPingTests>,    switchOff<&Configuration::doIperf2Tests>,
    switchOff<&Configuration::doIperf3Tests>,  takeOutputFormat};
static_assert(std::size(kEffects) == std::size(configFileKeys));

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
  // Required: a key counts wherever it stands, in the value too, and the first of the table wins.
  for (std::size_t i = 0; i < std::size(configFileKeys); ++i) {
    if (line.find(configFileKeys[i]) != std::string::npos) {
      kEffects[i]({configFileKeys[i], line.substr(equals + 1), lineNumber});
      return;
    }
  }
}

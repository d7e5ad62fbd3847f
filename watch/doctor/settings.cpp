#include "doctor/settings.h"

#include "config/config_file.h"
#include "doctor/checks.h"
#include "evidence/log_directory.h"
#include "evidence/text.h"
#include "rate_units.h"
#include "run_state.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace watch {

namespace {

constexpr char kSubject[] = "settings";
constexpr std::string_view kBlanks = " \t\r\v\f";

/// Seconds that iperf3 tests at most, by its own word.
constexpr std::int32_t kLongestIperf3Time = 86400;

/// Where a key's value goes: a number or a switch.
struct Field {
  std::int32_t Configuration::*number;
  bool Configuration::*flag;
};

/// In the order of `configFileKeys`.
constexpr Field kFields[] = {
    {nullptr, &Configuration::debugConfFile},  {&Configuration::numPings, nullptr},
    {&Configuration::iperfTestTime, nullptr},  {nullptr, &Configuration::pingTestServer},
    {nullptr, &Configuration::debugPrintPing}, {nullptr, &Configuration::debugPrintIperf},
    {nullptr, &Configuration::debugPrintLast}, {nullptr, &Configuration::debugPrintHistory},
    {nullptr, &Configuration::doPingTests},    {nullptr, &Configuration::doIperf2Tests},
    {nullptr, &Configuration::doIperf3Tests},  {&Configuration::outputFormat, nullptr}};
static_assert(std::size(kFields) == std::size(configFileKeys));

/// Returns what is in force, of a switch 1 or 0.
std::int32_t valueOf(const Field& field) {
  return field.number != nullptr ? ConfigurationParameters.*field.number
                                 : static_cast<std::int32_t>(ConfigurationParameters.*field.flag);
}

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos
             ? std::string_view()
             : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

/// Returns `text` in quotes, as it may be shown; of a long one the beginning.
std::string quoted(std::string_view text) {
  constexpr std::size_t kMost = 40;
  const std::string_view shown = trimmed(text);
  return fmt::format("\"{}\"{}", printable(shown.substr(0, kMost)),
                     shown.size() > kMost ? "..." : "");
}

/// A line with a key: what the tester takes from it, and what it seems to say.
struct Line {
  unsigned number;
  std::string_view text;
  std::size_t equals;
  /// The place in `configFileKeys` of the key that counts.
  std::size_t key;
  /// Another key that stands there and does not count.
  std::optional<std::size_t> otherKey;

  std::string_view keyName() const { return configFileKeys[key]; }
  /// What stands before and behind the equals sign.
  std::string_view left() const { return trimmed(text.substr(0, equals)); }
  std::string_view right() const { return text.substr(equals + 1); }
  std::string written() const { return quoted(text); }
  bool seemsComment() const {
    return left().starts_with('#') || left().starts_with(';') || left().starts_with("//");
  }
};

/// Returns nothing for a line without a key or without an equals sign.
std::optional<Line> findKey(std::string_view text, unsigned number) {
  Line line{number, text, text.find('='), 0, std::nullopt};
  bool isFound = false;
  for (std::size_t key = 0; key < std::size(configFileKeys); ++key) {
    if (text.find(configFileKeys[key]) == std::string_view::npos) {
      continue;
    }
    if (isFound) {
      line.otherKey = key;
      break;
    }
    line.key = key;
    isFound = true;
  }
  return isFound && line.equals != std::string_view::npos ? std::optional(line) : std::nullopt;
}

std::string assignment(std::string_view key, std::string_view value) {
  return fmt::format("{}={}", key, value);
}

std::string assignment(const Line& line, bool value) {
  return assignment(line.keyName(), value ? "true" : "false");
}

/// Runs `action` and returns what it prints meanwhile on standard output, which nobody sees: a line
/// at most, for which a pipe has room.
std::string printedBy(const std::function<void()>& action) {
  int ends[2] = {-1, -1};
  const int output = dup(STDOUT_FILENO);
  if (output < 0 || pipe(ends) != 0) {
    throw std::runtime_error(std::string("a pipe for the settings: ") + std::strerror(errno));
  }
  std::fflush(stdout);
  dup2(ends[1], STDOUT_FILENO);
  close(ends[1]);
  std::exception_ptr thrown;
  try {
    action();
  } catch (...) {
    thrown = std::current_exception();
  }
  std::fflush(stdout);
  dup2(output, STDOUT_FILENO);
  close(output);
  char text[256] = {};
  const ssize_t length = read(ends[0], text, sizeof(text));
  close(ends[0]);
  if (thrown) {
    std::rethrow_exception(thrown);
  }
  return {text, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

/// What a switch seems to be set to.
std::optional<bool> meaning(std::string_view value) {
  const std::string word = lowerCase(trimmed(value));
  for (const char* const yes : {"true", "yes", "on", "1"}) {
    if (word == yes) {
      return true;
    }
  }
  for (const char* const no : {"false", "no", "off", "0"}) {
    if (word == no) {
      return false;
    }
  }
  return std::nullopt;
}

/// Reads the lines one after the other and notes what is wrong.
class Reader {
 public:
  void read(std::string_view text, unsigned number) {
    const std::optional<Line> line = findKey(text, number);
    if (!line) {
      lookAtLineWithoutEffect(text, number);
      return;
    }
    const Field& field = kFields[line->key];
    const std::int32_t before = valueOf(field);
    const std::size_t place = result_.findings.size();
    bool isRead = true;
    if (field.number != nullptr) {
      isRead = readNumber(*line, field.number);
    } else {
      readSwitch(*line, field.flag);
    }
    // Behind a "#" the default does no harm.
    if (!isRead || !line->seemsComment() || valueOf(field) != before) {
      lookAtPlaceOfKey(*line, place);
    }
  }

  SettingsReading result() && { return std::move(result_); }

 private:
  void add(Level level, unsigned line, const std::string& text, const std::string& remedy = {}) {
    result_.findings.push_back({level, kSubject, fmt::format("line {}: {}", line, text), remedy});
  }

  void look(const Line& line, const std::string& text, const std::string& remedy = {}) {
    add(Level::look, line.number, line.written() + " " + text, remedy);
  }

  /// Finds a key that was misspelt or has no equals sign. A comment has neither.
  void lookAtLineWithoutEffect(std::string_view text, unsigned number) {
    const std::size_t equals = text.find('=');
    const bool hasValue = equals != std::string_view::npos;
    const std::string word = lowerCase(trimmed(text.substr(0, equals)));
    const auto* const key = std::ranges::find_if(configFileKeys, [&](std::string_view name) {
      return word == lowerCase(name) || (!hasValue && word.starts_with(lowerCase(name) + " "));
    });
    if (key != std::end(configFileKeys)) {
      const std::string_view value =
          hasValue ? text.substr(equals + 1) : trimmed(text).substr(key->size());
      add(Level::look, number,
          quoted(text) + (hasValue ? " does nothing: keys have these capitals. Write:"
                                   : " does nothing: it has no \"=\". Write:"),
          assignment(*key, printable(trimmed(value))));
    } else if (hasValue && !word.starts_with('#') && !word.starts_with(';')) {
      add(Level::look, number,
          quoted(text) + " does nothing: it holds no key. The keys are in man connTester.conf");
    }
  }

  /// A key counts wherever it stands. What is found comes before what is wrong with the value.
  void lookAtPlaceOfKey(const Line& line, std::size_t place) {
    if (line.left() == line.keyName() && !line.otherKey) {
      return;
    }
    if (line.seemsComment()) {
      look(line, fmt::format("is no comment: it counts as {}. Remove the line, or its \"=\"",
                             line.keyName()));
    } else if (line.otherKey) {
      look(line, fmt::format("counts as {} alone. Write {} on a line of its own", line.keyName(),
                             configFileKeys[*line.otherKey]));
    } else {
      look(line,
           fmt::format("counts as {}, which stands in it. Remove the line, or write:",
                       line.keyName()),
           assignment(line.keyName(), printable(trimmed(line.right()))));
    }
    const auto begin = result_.findings.begin() + static_cast<std::ptrdiff_t>(place);
    std::rotate(begin, result_.findings.end() - 1, result_.findings.end());
  }

  /// Returns whether it is one, as it has to be.
  bool readNumber(const Line& line, std::int32_t Configuration::*number) {
    std::string printed;
    try {
      printed = printedBy([&] { applyConfigLine(std::string(line.text), line.number); });
    } catch (const std::logic_error& error) {
      // It names the file first, which is the same for all.
      const std::string_view said = std::string_view(error.what()).substr(sizeof(kConfigPath) + 1);
      result_.findings.push_back(
          {Level::mend, kSubject,
           fmt::format("{}. A run ends there, before it has measured anything", said)});
      result_.endsRun = true;
      return false;
    }
    if (!printed.empty()) {
      look(line, "is no format of the rates, and counts as 1. Write one of 1, 2 and 3:",
           assignment(line.keyName(), "1"));
    }
    const std::int32_t value = ConfigurationParameters.*number;
    lookAtRestOfNumber(line, value);
    lookAtSize(line, number, value);
    if (unsigned& before = lines_[line.key]; before != 0) {
      look(line, fmt::format("counts, and line {} no more. Remove one of them", before));
    }
    lines_[line.key] = line.number;
    return true;
  }

  /// Whatever follows a number is ignored: "5x", "1.5", "1e3". A remark behind a blank is clear.
  void lookAtRestOfNumber(const Line& line, std::int32_t value) {
    const std::string_view text = trimmed(line.right());
    const std::size_t end = text.find_first_not_of("0123456789", text.find_first_of("0123456789"));
    if (end != std::string_view::npos && kBlanks.find(text[end]) == std::string_view::npos) {
      look(line, "is read up to what is no digit. Write:",
           assignment(line.keyName(), std::to_string(value)));
    }
  }

  void lookAtSize(const Line& line, std::int32_t Configuration::*number, std::int32_t value) {
    const bool isPings = number == &Configuration::numPings;
    if (number == &Configuration::outputFormat) {
      return;
    }
    if (value <= 0) {
      look(line,
           fmt::format("is refused by some releases of {}, so that nothing is measured, and "
                       "taken for \"until stopped\" by others: then it ends after a minute, "
                       "without the adapter never. Write:",
                       isPings ? "ping" : "iperf3"),
           assignment(line.keyName(), "10"));
    } else if (!isPings && value > kLongestIperf3Time) {
      add(Level::mend, line.number,
          fmt::format(
              "{} is more than the {} s that iperf3 takes: neither rate is measured. Write:",
              line.written(), kLongestIperf3Time),
          assignment(line.keyName(), "10"));
    } else if (!isPings && value < Configuration{}.iperfTestTime) {
      look(line,
           "shows too high a write rate, since the sender counts what still waits on its "
           "way. Write:",
           assignment(line.keyName(), "10"));
    }
  }

  void readSwitch(const Line& line, bool Configuration::*flag) {
    const bool before = ConfigurationParameters.*flag;
    applyConfigLine(std::string(line.text), line.number);
    const bool now = ConfigurationParameters.*flag;
    const std::optional<bool> meant = meaning(line.right());
    if (now != before && !meant) {
      look(line, fmt::format("counts as {}: what follows the value is ignored. Write:", now),
           assignment(line, now));
    } else if (now != meant) {
      lookAtIdleSwitch(line, flag, meant);
    }
    if (now != before) {
      lines_[line.key] = line.number;
      lookAtEffect(line, flag);
    }
  }

  /// A line that has not switched as it seems to.
  void lookAtIdleSwitch(const Line& line, bool Configuration::*flag, std::optional<bool> meant) {
    const bool byDefault = Configuration{}.*flag;
    if (flag == &Configuration::doIperf2Tests) {
      look(line, "does nothing: the iperf2 test is off, and no line switches it on. Remove it");
    } else if (flag == &Configuration::debugPrintIperf) {
      look(line, "does nothing: this key has no effect. Remove it");
    } else if (!meant) {
      look(line, fmt::format("does nothing: only {} does. Write:", !byDefault),
           assignment(line, !byDefault));
    } else if (*meant == byDefault) {
      look(line, fmt::format("does nothing: what line {} has switched stays so. Remove that line",
                             lines_[line.key]));
    } else {
      look(line, fmt::format("does nothing: {}. Write:", whyIdle(line.right())),
           assignment(line, *meant));
    }
  }

  static std::string whyIdle(std::string_view value) {
    const std::string word = lowerCase(trimmed(value));
    if (word != "true" && word != "false") {
      return R"(a switch knows only "true" and "false")";
    }
    return trimmed(value) == word ? "the value must follow \"=\" at once"
                                  : "the value must be in lower case";
  }

  /// Switches that do something else than their names say.
  void lookAtEffect(const Line& line, bool Configuration::*flag) {
    if (flag == &Configuration::pingTestServer) {
      look(line,
           "pings 8.8.8.8 in place of the server: the latency is not that of its line. "
           "Remove it");
    } else if (flag == &Configuration::debugConfFile) {
      look(line, "traces the iperf3 tests, whatever its name says");
    } else if (flag == &Configuration::debugPrintLast) {
      look(line, "traces the latest iperf2 report, which no run reads. Remove it");
    }
  }

  SettingsReading result_;
  /// The line that last set each key, from 1 on.
  unsigned lines_[std::size(configFileKeys)] = {};
};

/// What keeps the file from being read, and "" where nothing does or there is none.
std::string whyUnreadable() {
  std::error_code error;
  if (std::filesystem::is_directory(kConfigPath, error)) {
    return "it is a directory";
  }
  return access(kConfigPath, R_OK) != 0 && errno != ENOENT ? std::strerror(errno) : "";
}

}  // namespace

SettingsReading readSettings(std::string_view text) {
  Reader reader;
  eachLine(text,
           [&reader](std::string_view line, std::uint32_t number) { reader.read(line, number); });
  return std::move(reader).result();
}

std::string settingsInForce() {
  const Configuration& settings = ConfigurationParameters;
  const std::string pings =
      settings.doPingTests ? fmt::format("{} pings", settings.numPings) : "no pings";
  const std::string tests = settings.doIperf3Tests
                                ? fmt::format("{} s for each iperf3 test", settings.iperfTestTime)
                                : "no iperf3 tests";
  return fmt::format("{}, {}, rates in {}", pings, tests, rateUnit(settings.outputFormat)->name);
}

SettingsReading readSettingsFile() {
  if (const std::string reason = whyUnreadable(); !reason.empty()) {
    return {{}, false, true, reason};
  }
  std::ifstream file(kConfigPath);
  if (!file) {
    return {};
  }
  std::ostringstream text;
  text << file.rdbuf();
  SettingsReading reading = readSettings(text.str());
  reading.isThere = true;
  return reading;
}

Findings checkSettings(const Workstation& workstation) {
  const SettingsReading& settings = workstation.settings;
  if (!settings.trouble.empty()) {
    return {{Level::look, kSubject,
             fmt::format("{} cannot be read: {}. All defaults count: {}", kConfigPath,
                         settings.trouble, settingsInForce())}};
  }
  Findings findings = settings.findings;
  if (!settings.endsRun) {
    findings.insert(
        findings.begin(),
        {Level::well, kSubject, settingsInForce() + (settings.isThere ? "" : ", all by default")});
  }
  if (!ConfigurationParameters.doPingTests && !ConfigurationParameters.doIperf3Tests) {
    findings.push_back({Level::look, kSubject,
                        "both tests are switched off: a run measures "
                        "nothing"});
  }
  return findings;
}

}  // namespace watch

#include "time_limit.h"

#include "messages.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>

namespace {

using std::chrono::seconds;

constexpr char kGraceVariable[] = "CONNTESTER_GRACE_SECONDS";
constexpr seconds kLimitOfAnEndlessRun{60};
constexpr seconds kLongestPatience{10};

/// The number at the start of `text`, or 0. Sets `rest` to what follows.
int numberIn(std::string_view text, std::string_view& rest) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result result = std::from_chars(text.data(), end, number);
  rest = std::string_view(result.ptr, static_cast<std::size_t>(end - result.ptr));
  return number;
}

seconds grace(const std::string& tool, seconds defaultGrace) {
  const char* const text = std::getenv(kGraceVariable);
  if (text == nullptr) {
    return defaultGrace;
  }
  std::string_view rest;
  const int number = numberIn(text, rest);
  if (number > 0 && rest.empty()) {
    return seconds(number);
  }
  complain(tool, std::string(kGraceVariable) + " is no number of seconds from 1: \"" + text +
                     "\"; it is taken as " + std::to_string(defaultGrace.count()));
  return defaultGrace;
}

}  // namespace

int lastNumber(char** arguments, const std::string& shortOption, const std::string& longOption) {
  std::string_view value;
  for (char** next = arguments; *next != nullptr; ++next) {
    const std::string_view argument = *next;
    if ((argument == shortOption || argument == longOption) && next[1] != nullptr) {
      value = *++next;
    } else if (argument.starts_with(longOption + "=")) {
      value = argument.substr(longOption.size() + 1);
    } else if (argument.starts_with(shortOption)) {
      value = argument.substr(shortOption.size());
    }
  }
  std::string_view rest;
  return numberIn(value, rest);
}

TimeLimit timeLimit(const std::string& tool, int secondsOfRun, seconds defaultGrace) {
  const seconds extra = grace(tool, defaultGrace);
  return {secondsOfRun > 0 ? seconds(secondsOfRun) + extra : kLimitOfAnEndlessRun,
          std::min(extra, kLongestPatience)};
}

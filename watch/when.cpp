#include "when.h"

#include "evidence/text.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <string>
#include <vector>

namespace watch {

namespace {

constexpr EpochSeconds kMinute = 60;
constexpr EpochSeconds kHour = 60 * kMinute;
constexpr EpochSeconds kDay = 24 * kHour;

constexpr std::string_view kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                        "jul", "aug", "sep", "oct", "nov", "dec"};

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

/// Returns what stands between the characters of `separators`.
std::vector<std::string_view> split(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(separators), text.size());
    parts.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

/// A day of the calendar as it is read, with a time of that day or without.
struct Reading {
  Calendar calendar;
  /// How much the text names: a day, a minute, a second.
  EpochSeconds length = kDay;
};

/// Reads "05:01" and "05:01:12".
bool readTime(std::string_view text, Reading& reading) {
  const std::vector<std::string_view> parts = split(text, ":");
  if (parts.size() != 2 && parts.size() != 3) {
    return false;
  }
  const auto hour = wholeNumber<unsigned>(parts[0]);
  const auto minute = wholeNumber<unsigned>(parts[1]);
  const auto second = parts.size() == 3 ? wholeNumber<unsigned>(parts[2]) : std::optional(0U);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) {
    return false;
  }
  reading.calendar.hour = *hour;
  reading.calendar.minute = *minute;
  reading.calendar.second = *second;
  reading.length = parts.size() == 3 ? 1 : kMinute;
  return true;
}

/// Reads "2026-11-21".
bool readIsoDate(std::string_view text, Reading& reading) {
  const std::vector<std::string_view> parts = split(text, "-");
  if (parts.size() != 3 || parts[0].size() != 4) {
    return false;
  }
  const auto year = wholeNumber<int>(parts[0]);
  const auto month = wholeNumber<unsigned>(parts[1]);
  const auto day = wholeNumber<unsigned>(parts[2]);
  if (!year || !month || !day) {
    return false;
  }
  reading.calendar.year = *year;
  reading.calendar.month = *month;
  reading.calendar.day = *day;
  return true;
}

/// Reads "20 Nov" and "20 November 2026" off the front of `parts`.
bool readNamedDate(std::vector<std::string_view>& parts, Reading& reading) {
  const auto day = parts.size() >= 2 ? wholeNumber<unsigned>(parts[0]) : std::nullopt;
  if (!day || parts[1].size() < 3) {
    return false;
  }
  const auto* const month = std::ranges::find(kMonths, lowerCase(parts[1].substr(0, 3)));
  if (month == std::end(kMonths)) {
    return false;
  }
  reading.calendar.day = *day;
  reading.calendar.month = static_cast<unsigned>(month - std::begin(kMonths)) + 1;
  parts.erase(parts.begin(), parts.begin() + 2);
  if (const auto year = parts.empty() ? std::nullopt : wholeNumber<int>(parts.front())) {
    reading.calendar.year = *year;
    parts.erase(parts.begin());
  }
  return true;
}

bool exists(const Calendar& c) {
  return (std::chrono::year(c.year) / std::chrono::month(c.month) / std::chrono::day(c.day)).ok();
}

/// Reads a date, a time of today, or both.
std::optional<Reading> readDate(std::string_view text, const Calendar& today) {
  std::vector<std::string_view> parts = split(text, text.find(' ') == text.npos ? "T" : " ");
  Reading reading{{today.year, today.month, today.day, 0, 0, 0, 0}, kDay};
  const bool isIso = !parts.empty() && readIsoDate(parts.front(), reading);
  if (isIso) {
    parts.erase(parts.begin());
  }
  const bool isNamed = !isIso && readNamedDate(parts, reading);
  const bool hasTime = parts.size() == 1 && readTime(parts.front(), reading);
  const bool isWhole = parts.empty() || hasTime;
  return isWhole && (isIso || isNamed || hasTime) && exists(reading.calendar)
             ? std::optional(reading)
             : std::nullopt;
}

When dayOf(LocalTime local) {
  Calendar day = calendar(local);
  day.hour = day.minute = day.second = 0;
  const LocalTime begin = fromCalendar(day);
  return {moments(begin).first, moments({begin.seconds + kDay}).first};
}

}  // namespace

std::optional<EpochSeconds> parseLength(std::string_view text) {
  constexpr struct {
    char unit;
    EpochSeconds seconds;
  } kUnits[] = {{'s', 1}, {'m', kMinute}, {'h', kHour}, {'d', kDay}, {'w', 7 * kDay}};
  constexpr EpochSeconds kMost = 1'000'000;
  const auto number =
      text.empty() ? std::nullopt : wholeNumber<EpochSeconds>(text.substr(0, text.size() - 1));
  for (const auto& [unit, seconds] : kUnits) {
    if (number && *number >= 0 && *number <= kMost && text.back() == unit) {
      return *number * seconds;
    }
  }
  return std::nullopt;
}

std::optional<When> parseWhen(std::string_view text, EpochSeconds now) {
  const LocalTime local = localTime(now);
  if (text == "now") {
    return When{now, now};
  }
  if (text == "today" || text == "yesterday") {
    return dayOf({local.seconds - (text == "today" ? 0 : kDay)});
  }
  if (const auto length = parseLength(text)) {
    return When{now - *length, now - *length};
  }
  const auto reading = readDate(text, calendar(local));
  if (!reading) {
    return std::nullopt;
  }
  const LocalTime begin = fromCalendar(reading->calendar);
  return When{moments(begin).first, moments({begin.seconds + reading->length}).first};
}

}  // namespace watch

#include "when.h"

#include "evidence/text.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <string>
#include <vector>

namespace watch {

namespace {

constexpr std::string_view kMonths[] = {"january",   "february", "march",    "april",
                                        "may",       "june",     "july",     "august",
                                        "september", "october",  "november", "december"};

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

/// Returns what stands between the characters `separator`.
std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  std::size_t begin = 0;
  for (std::size_t end = text.find(separator); end != std::string_view::npos;
       end = text.find(separator, begin)) {
    parts.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  parts.push_back(text.substr(begin));
  return parts;
}

/// Reads a number of so many digits, or of one less where it need not be filled.
std::optional<unsigned> digits(std::string_view text, std::size_t least, std::size_t most) {
  const bool isOfDigits = text.find_first_not_of("0123456789") == std::string_view::npos;
  return isOfDigits && text.size() >= least && text.size() <= most ? wholeNumber<unsigned>(text)
                                                                   : std::nullopt;
}

/// A day of the calendar as it is read, with a time of that day or without.
struct Reading {
  Calendar calendar;
  /// How much the text names: a day, a minute, a second.
  EpochSeconds length = kDaySeconds;
  bool namesYear = true;
  bool namesDay = true;
  std::optional<std::int32_t> utcOffset;
};

/// Takes "Z" and "+01:00" off the end of a time. Returns false for another offset.
bool takeOffset(std::string_view& time, Reading& reading) {
  if (time.ends_with('Z')) {
    reading.utcOffset = 0;
    time.remove_suffix(1);
    return true;
  }
  const std::size_t sign = time.find_first_of("+-");
  if (sign == std::string_view::npos) {
    return true;
  }
  const std::string_view offset = time.substr(sign + 1);
  const auto hours = digits(offset.substr(0, offset.find(':')), 2, 2);
  const auto minutes = offset.size() == 5 ? digits(offset.substr(3), 2, 2) : std::nullopt;
  if (!hours || !minutes || *hours > 23 || *minutes > 59) {
    return false;
  }
  const auto seconds = static_cast<std::int32_t>(*hours * kHourSeconds + *minutes * kMinuteSeconds);
  reading.utcOffset = time[sign] == '-' ? -seconds : seconds;
  time = time.substr(0, sign);
  return true;
}

/// Reads "05:01" and "05:01:12".
bool readTime(std::string_view text, Reading& reading) {
  const std::vector<std::string_view> parts = split(text, ':');
  if (parts.size() != 2 && parts.size() != 3) {
    return false;
  }
  const auto hour = digits(parts[0], 1, 2);
  const auto minute = digits(parts[1], 2, 2);
  const auto second = parts.size() == 3 ? digits(parts[2], 2, 2) : std::optional(0U);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 59) {
    return false;
  }
  reading.calendar.hour = *hour;
  reading.calendar.minute = *minute;
  reading.calendar.second = *second;
  reading.length = parts.size() == 3 ? 1 : kMinuteSeconds;
  return true;
}

/// Reads "2026-11-21".
bool readIsoDate(std::string_view text, Calendar& day) {
  const std::vector<std::string_view> parts = split(text, '-');
  if (parts.size() != 3) {
    return false;
  }
  const auto year = digits(parts[0], 4, 4);
  const auto month = digits(parts[1], 2, 2);
  const auto date = digits(parts[2], 2, 2);
  if (!year || !month || !date) {
    return false;
  }
  day.year = static_cast<int>(*year);
  day.month = *month;
  day.day = *date;
  return true;
}

/// Reads "Nov" and "november". Returns 1 to 12, or nothing.
std::optional<unsigned> readMonth(std::string_view text) {
  constexpr std::size_t kShortest = 3;
  const std::string lower = lowerCase(text);
  const auto* const month = std::ranges::find_if(
      kMonths, [&](std::string_view whole) { return whole.starts_with(lower); });
  return lower.size() < kShortest || month == std::end(kMonths)
             ? std::nullopt
             : std::optional(static_cast<unsigned>(month - std::begin(kMonths)) + 1);
}

/// Reads "20 Nov" and "20 November 2026" off the front of `parts`.
bool readNamedDate(std::vector<std::string_view>& parts, Reading& reading) {
  const auto day = digits(parts[0], 1, 2);
  const auto month = parts.size() >= 2 ? readMonth(parts[1]) : std::nullopt;
  if (!day || !month) {
    return false;
  }
  reading.calendar.day = *day;
  reading.calendar.month = *month;
  parts.erase(parts.begin(), parts.begin() + 2);
  const auto year = parts.empty() ? std::nullopt : digits(parts.front(), 4, 4);
  reading.namesYear = year.has_value();
  if (year) {
    reading.calendar.year = static_cast<int>(*year);
    parts.erase(parts.begin());
  }
  return true;
}

bool exists(const Calendar& c) {
  return (std::chrono::year(c.year) / std::chrono::month(c.month) / std::chrono::day(c.day)).ok();
}

/// The last such day that there was. A leap day may be eight years ago.
void findYear(Calendar& day, const Calendar& today) {
  constexpr int kMostYears = 8;
  for (day.year = today.year; day.year > today.year - kMostYears; --day.year) {
    const bool isToCome =
        day.year == today.year &&
        (day.month > today.month || (day.month == today.month && day.day > today.day));
    if (exists(day) && !isToCome) {
      return;
    }
  }
}

/// Reads a date, a time of today, or both.
std::optional<Reading> readDate(std::string_view text, const Calendar& today) {
  std::vector<std::string_view> parts =
      split(text, text.find(' ') == std::string_view::npos ? 'T' : ' ');
  Reading reading;
  reading.calendar = {today.year, today.month, today.day, 0, 0, 0, 0};
  const bool isIso = readIsoDate(parts.front(), reading.calendar);
  if (isIso) {
    parts.erase(parts.begin());
  }
  reading.namesDay = isIso || readNamedDate(parts, reading);
  if (!parts.empty()) {
    if (parts.size() > 1 || (isIso && !takeOffset(parts.front(), reading)) ||
        !readTime(parts.front(), reading)) {
      return std::nullopt;
    }
  }
  if (!reading.namesYear) {
    findYear(reading.calendar, today);
  }
  return exists(reading.calendar) ? std::optional(reading) : std::nullopt;
}

/// What begins then by the wall clock, and is so long.
When whenOf(LocalTime begin, EpochSeconds length) {
  const LocalTime end{begin.seconds + length};
  return {moments(begin).first, moments({end.seconds - 1}).second + 1, begin, end};
}

When dayOf(LocalTime local) {
  Calendar day = calendar(local);
  day.hour = day.minute = day.second = 0;
  return whenOf(fromCalendar(day), kDaySeconds);
}

When momentOf(EpochSeconds moment) {
  return {moment, moment, {}, {}};
}

}  // namespace

bool When::holds(EpochSeconds moment) const {
  if (localBegin && localEnd) {
    const LocalTime local = localTime(moment);
    return *localBegin <= local && local < *localEnd;
  }
  return begin <= moment && moment < end;
}

std::optional<EpochSeconds> parseLength(std::string_view text) {
  constexpr struct {
    char unit;
    EpochSeconds seconds;
  } kUnits[] = {{'s', 1},
                {'m', kMinuteSeconds},
                {'h', kHourSeconds},
                {'d', kDaySeconds},
                {'w', 7 * kDaySeconds}};
  constexpr std::size_t kMostDigits = 6;
  const auto number =
      text.empty() ? std::nullopt : digits(text.substr(0, text.size() - 1), 1, kMostDigits);
  for (const auto& [unit, seconds] : kUnits) {
    if (number && text.back() == unit) {
      return *number * seconds;
    }
  }
  return std::nullopt;
}

std::optional<When> parseWhen(std::string_view text, EpochSeconds now) {
  const LocalTime local = localTime(now);
  if (text == "now") {
    return momentOf(now);
  }
  if (text == "today" || text == "yesterday") {
    return dayOf({local.seconds - (text == "today" ? 0 : kDaySeconds)});
  }
  if (const auto length = parseLength(text)) {
    return momentOf(now - *length);
  }
  const auto reading = readDate(text, calendar(local));
  if (!reading) {
    return std::nullopt;
  }
  const LocalTime begin = fromCalendar(reading->calendar);
  if (reading->utcOffset) {
    const EpochSeconds moment = begin.seconds - *reading->utcOffset;
    return When{moment, moment + reading->length, {}, {}};
  }
  When when = whenOf(begin, reading->length);
  when.isOfAnyDay = !reading->namesDay;
  return when;
}

}  // namespace watch

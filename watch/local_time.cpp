#include "local_time.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fmt/compile.h>

namespace watch {

namespace {

/// A day that has one offset. Runs come in order of time, so that most questions have the answer of
/// the one before.
struct KnownOffset {
  EpochSeconds from = 0;
  EpochSeconds until = 0;
  std::int32_t offset = 0;
};

std::int32_t askForOffset(EpochSeconds moment) {
  const std::time_t time = moment;
  std::tm parts{};
  return localtime_r(&time, &parts) == nullptr ? 0 : static_cast<std::int32_t>(parts.tm_gmtoff);
}

std::optional<unsigned> digits(std::string_view text, std::size_t from, std::size_t count) {
  unsigned number = 0;
  for (const char c : text.substr(from, count)) {
    if (c < '0' || c > '9') {
      return std::nullopt;
    }
    number = number * 10 + static_cast<unsigned>(c - '0');
  }
  return number;
}

}  // namespace

EpochSeconds Moments::nearest(EpochSeconds moment) const {
  return std::llabs(second - moment) < std::llabs(first - moment) ? second : first;
}

std::int32_t utcOffset(EpochSeconds moment) {
  thread_local KnownOffset known;
  if (moment >= known.from && moment < known.until) {
    return known.offset;
  }
  const EpochSeconds from = moment - ((moment % kDaySeconds) + kDaySeconds) % kDaySeconds;
  const std::int32_t offset = askForOffset(from);
  // No clock is set twice a day.
  if (offset != askForOffset(from + kDaySeconds - 1)) {
    return askForOffset(moment);
  }
  known = {from, from + kDaySeconds, offset};
  return offset;
}

LocalTime localTime(EpochSeconds moment) {
  return {moment + utcOffset(moment)};
}

Moments moments(LocalTime local) {
  // A day before and a day after, the clock has been set at most once in between.
  const std::int64_t before = local.seconds - askForOffset(local.seconds - kDaySeconds);
  const std::int64_t after = local.seconds - askForOffset(local.seconds + kDaySeconds);
  const bool beforeHolds = localTime(before) == local;
  const bool afterHolds = localTime(after) == local;
  if (beforeHolds && afterHolds) {
    return {before, after};
  }
  return afterHolds ? Moments{after, after} : Moments{before, before};
}

Calendar calendar(LocalTime local) {
  using std::chrono::days;
  using std::chrono::floor;
  const std::chrono::sys_seconds whole{std::chrono::seconds{local.seconds}};
  const std::chrono::sys_days day = floor<days>(whole);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(whole - day);
  return {static_cast<int>(date.year()),
          static_cast<unsigned>(date.month()),
          static_cast<unsigned>(date.day()),
          static_cast<unsigned>(time.hours().count()),
          static_cast<unsigned>(time.minutes().count()),
          static_cast<unsigned>(time.seconds().count()),
          std::chrono::weekday(day).c_encoding()};
}

LocalTime fromCalendar(const Calendar& calendar) {
  const std::chrono::sys_days day = std::chrono::year(calendar.year) /
                                    std::chrono::month(calendar.month) /
                                    std::chrono::day(calendar.day);
  return {day.time_since_epoch().count() * kDaySeconds + std::int64_t{calendar.hour} * 3600 +
          std::int64_t{calendar.minute} * 60 + calendar.second};
}

std::int64_t dayNumber(LocalTime local) {
  return std::chrono::floor<std::chrono::days>(std::chrono::seconds(local.seconds)).count();
}

EpochSeconds noonOf(std::int64_t day) {
  return moments({day * kDaySeconds + kDaySeconds / 2}).first;
}

std::string zoneName() {
  constexpr std::string_view kFolder = "zoneinfo/";
  const char* const given = std::getenv("TZ");
  if (given != nullptr && std::strchr(given, '/') != nullptr && *given != ':') {
    return given;
  }
  std::error_code none;
  const std::string link =
      given == nullptr ? std::filesystem::read_symlink("/etc/localtime", none).string() : "";
  if (const std::size_t folder = link.find(kFolder); folder != std::string::npos) {
    return link.substr(folder + kFolder.size());
  }
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  return localtime_r(&now, &parts) == nullptr ? "UTC" : parts.tm_zone;
}

std::optional<LocalTime> parseStamp(std::string_view text) {
  if (text.size() != 15 || text[8] != 'T') {
    return std::nullopt;
  }
  const auto year = digits(text, 0, 4);
  const auto month = digits(text, 4, 2);
  const auto day = digits(text, 6, 2);
  const auto hour = digits(text, 9, 2);
  const auto minute = digits(text, 11, 2);
  const auto second = digits(text, 13, 2);
  if (!year || !month || !day || !hour || !minute || !second || *hour > 23 || *minute > 59 ||
      *second > 60) {
    return std::nullopt;
  }
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                         std::chrono::month(*month), std::chrono::day(*day)};
  if (!date.ok()) {
    return std::nullopt;
  }
  return fromCalendar({static_cast<int>(*year), *month, *day, *hour, *minute, *second});
}

std::string formatStamp(LocalTime local) {
  const Calendar c = calendar(local);
  return fmt::format("{:04}{:02}{:02}T{:02}{:02}{:02}", c.year, c.month, c.day, c.hour, c.minute,
                     c.second);
}

std::string isoLocal(EpochSeconds moment) {
  const std::int32_t offset = utcOffset(moment);
  const Calendar c = calendar({moment + offset});
  const std::int32_t minutes = std::abs(offset) / 60;
  return fmt::format(FMT_COMPILE("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}{:02}:{:02}"), c.year,
                     c.month, c.day, c.hour, c.minute, c.second, offset < 0 ? '-' : '+',
                     minutes / 60, minutes % 60);
}

std::string isoUtc(EpochSeconds moment) {
  const Calendar c = calendar({moment});
  return fmt::format(FMT_COMPILE("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z"), c.year, c.month, c.day,
                     c.hour, c.minute, c.second);
}

std::optional<EpochSeconds> parseIsoLocal(std::string_view text) {
  constexpr std::string_view kShape = "0000-00-00T00:00:00+00:00";
  if (text.size() != kShape.size()) {
    return std::nullopt;
  }
  std::string stamp;
  for (std::size_t i = 0; i < 19; ++i) {
    if (kShape[i] == '0' || kShape[i] == 'T') {
      stamp += text[i];
    } else if (text[i] != kShape[i]) {
      return std::nullopt;
    }
  }
  const auto local = parseStamp(stamp);
  const auto hours = digits(text, 20, 2);
  const auto minutes = digits(text, 23, 2);
  if (!local || !hours || !minutes || text[22] != ':' || (text[19] != '+' && text[19] != '-')) {
    return std::nullopt;
  }
  const std::int64_t offset = *hours * kHourSeconds + *minutes * kMinuteSeconds;
  return local->seconds - (text[19] == '-' ? -offset : offset);
}

}  // namespace watch

// The workstation's clock and its zone. The C library tells them, as it tells them the tester, so
// that a stamp is read by the rules by which it was written: TZ, or /etc/localtime.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// Seconds since 1970-01-01T00:00:00 UTC.
using EpochSeconds = std::int64_t;

/// A reading of the wall clock: seconds since 1970-01-01T00:00:00 of the wall clock itself.
struct LocalTime {
  std::int64_t seconds = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 means the zero of the comparison.
  auto operator<=>(const LocalTime&) const = default;
};

/// What a reading of the wall clock can have been. Both are the same but in the hour that comes
/// twice; in an hour that the clock left out, they are what it would have shown without that.
struct Moments {
  EpochSeconds first = 0;
  EpochSeconds second = 0;

  bool isUnique() const { return first == second; }
  /// Returns that of the two which is nearer to `moment`.
  EpochSeconds nearest(EpochSeconds moment) const;
};

inline constexpr EpochSeconds kMinuteSeconds = 60;
inline constexpr EpochSeconds kHourSeconds = 60 * kMinuteSeconds;
inline constexpr EpochSeconds kDaySeconds = 24 * kHourSeconds;

/// Reads a stamp: "YYYYMMDDTHHMMSS" and nothing else.
std::optional<LocalTime> parseStamp(std::string_view text);
std::string formatStamp(LocalTime local);

Moments moments(LocalTime local);

/// Seconds that the wall clock is ahead of UTC at `moment`.
std::int32_t utcOffset(EpochSeconds moment);
LocalTime localTime(EpochSeconds moment);

/// A day of the calendar and a time of the day.
struct Calendar {
  int year = 1970;
  unsigned month = 1;
  unsigned day = 1;
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  /// 0 is a Sunday.
  unsigned weekday = 4;
};
Calendar calendar(LocalTime local);
LocalTime fromCalendar(const Calendar& calendar);

/// Days of the wall clock since 1970-01-01, which was a Thursday.
std::int64_t dayNumber(LocalTime local);
/// A moment in the middle of such a day, when no clock is set.
EpochSeconds noonOf(std::int64_t day);

/// The name of the workstation's zone: "Europe/Berlin", or what the C library knows of it, "CET".
std::string zoneName();

/// "2026-11-21T05:01:12+01:00", and "2026-11-21T04:01:12Z".
std::string isoLocal(EpochSeconds moment);
std::string isoUtc(EpochSeconds moment);
/// Reads what isoLocal() has written, and nothing else.
std::optional<EpochSeconds> parseIsoLocal(std::string_view text);

}  // namespace watch

// Moments and lengths of time as people give them on the command line.
#pragma once

#include "local_time.h"

#include <optional>
#include <string_view>

namespace watch {

/// What a text names: a day, a minute, a second, or only a moment.
struct When {
  /// From the first moment that it can mean to behind the last one.
  EpochSeconds begin;
  EpochSeconds end;
  /// The same by the wall clock, for which an hour that comes twice is one. Nothing where the text
  /// names its offset from UTC, or only a moment.
  std::optional<LocalTime> localBegin;
  std::optional<LocalTime> localEnd;
  /// The text is a time without a day.
  bool isOfAnyDay = false;

  bool holds(EpochSeconds moment) const;
};

/// Reads "2026-11-21", "2026-11-21T05:00", "2026-11-21 05:00:12", these with an offset ("Z",
/// "+01:00"), "20 Nov" (the last one), "20 Nov 2026", "20 Nov 20:00", "05:01" (of today), "today",
/// "yesterday", "now", and the time before `now` of a length ("7d"). Returns nothing for anything
/// else.
std::optional<When> parseWhen(std::string_view text, EpochSeconds now);

/// Reads "90s", "30m", "12h", "7d", "4w". Returns seconds, or nothing.
std::optional<EpochSeconds> parseLength(std::string_view text);

}  // namespace watch

// Moments and lengths of time as people give them on the command line.
#pragma once

#include "local_time.h"

#include <optional>
#include <string_view>

namespace watch {

/// A moment, and the end of what its text names: a day, a minute or a second.
struct When {
  EpochSeconds begin;
  EpochSeconds end;
};

/// Reads "2026-11-21", "2026-11-21T05:00", "2026-11-21 05:00:12", "20 Nov", "20 Nov 2026",
/// "20 Nov 20:00", "05:01", "today", "yesterday", "now", and the time before `now` of a length
/// ("7d"). Returns nothing for anything else. The hour that comes twice is its first.
std::optional<When> parseWhen(std::string_view text, EpochSeconds now);

/// Reads "90s", "30m", "12h", "7d", "4w". Returns seconds, or nothing.
std::optional<EpochSeconds> parseLength(std::string_view text);

}  // namespace watch

// Figures and times as people read them.
#pragma once

#include "local_time.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace watch {

/// "85925", "243.9", "9.65", "0.163": Mbit/s with as many digits as tell something; "-" for
/// nothing.
std::string megabits(std::optional<double> value);
/// "12.7": milliseconds; "-" for nothing.
std::string milliseconds(std::optional<double> value);
/// "10", "33.3": percent; "-" for nothing.
std::string percent(std::optional<double> value);
/// "51.3 MB", of 10^6 bytes.
std::string megabytes(double bytes);

/// "3 h ago", "25 min ago", "4 days ago", "in 10 min".
std::string ago(EpochSeconds then, EpochSeconds now);
/// "90 s", "25 min", "3 h", "4 days": to the nearest.
std::string span(EpochSeconds seconds);

/// "07:02", "Sat 21 Nov 2026".
std::string clockTime(EpochSeconds moment);
std::string weekdayAndDate(EpochSeconds moment);
/// "Sat 21 November", "13 November"; with the year where it is not that of `now`.
std::string weekdayAndDay(EpochSeconds moment, EpochSeconds now);
std::string dayAndMonth(EpochSeconds moment, EpochSeconds now);
/// "24 October to 20 November 2026"
std::string dates(EpochSeconds first, EpochSeconds last);

/// "1 run", "2 runs".
std::string counted(std::size_t count, const char* one, const char* many);

/// Returns `text`, which is ASCII, in lines that end before the column `width`. The first begins in
/// the column `indent`, and so do the others, by blanks. A longer word stays whole.
std::string folded(std::string_view text, std::size_t width, std::size_t indent);

}  // namespace watch

// Figures and times as people read them.
#pragma once

#include "local_time.h"

#include <cstddef>
#include <optional>
#include <string>

namespace watch {

/// "243.9", "9.65", "0.163": Mbit/s with as many digits as tell something; "-" for nothing.
std::string megabits(std::optional<double> value);
/// "12.7": milliseconds; "-" for nothing.
std::string milliseconds(std::optional<double> value);
/// "10", "33.3": percent; "-" for nothing.
std::string percent(std::optional<double> value);
/// "51.3 MB", of 10^6 bytes.
std::string megabytes(double bytes);

/// "3 h ago", "25 min ago", "4 days ago".
std::string ago(EpochSeconds then, EpochSeconds now);
/// "3 h", "25 min", "4 days".
std::string span(EpochSeconds seconds);

/// "07:02", "Sat 21 November", "Sat 21 Nov 2026", "13 November".
std::string clockTime(EpochSeconds moment);
std::string weekdayAndDay(EpochSeconds moment);
std::string weekdayAndDate(EpochSeconds moment);
std::string dayAndMonth(EpochSeconds moment);
/// "24 October to 20 November 2026"
std::string days(EpochSeconds first, EpochSeconds last);

/// "1 run", "2 runs".
std::string counted(std::size_t count, const char* one, const char* many);

}  // namespace watch

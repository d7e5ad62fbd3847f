#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

Calendar local(EpochSeconds moment) {
  return calendar(localTime(moment));
}
const char* month(const Calendar& day) {
  return kMonths[day.month - 1];
}

}  // namespace

std::string megabits(std::optional<double> value) {
  if (!value) {
    return "-";
  }
  const int digits = *value >= 10000 ? 0 : *value >= 10 || *value == 0 ? 1 : *value >= 1 ? 2 : 3;
  return fmt::format("{:.{}f}", *value, digits);
}

std::string milliseconds(std::optional<double> value) {
  return value ? fmt::format("{:.1f}", *value) : "-";
}

std::string percent(std::optional<double> value) {
  if (!value) {
    return "-";
  }
  return *value == std::round(*value) ? fmt::format("{:.0f}", *value)
                                      : fmt::format("{:.1f}", *value);
}

std::string megabytes(double bytes) {
  constexpr double kMega = 1e6;
  return bytes < kMega / 10 ? fmt::format("{:.3f} MB", bytes / kMega)
                            : fmt::format("{:.1f} MB", bytes / kMega);
}

std::string span(EpochSeconds seconds) {
  constexpr struct {
    EpochSeconds length;
    EpochSeconds below;
    const char* name;
  } kUnits[] = {{1, 100, "s"},
                {kMinuteSeconds, 100 * kMinuteSeconds, "min"},
                {kHourSeconds, 48 * kHourSeconds, "h"}};
  for (const auto& [length, below, name] : kUnits) {
    if (seconds < below) {
      return fmt::format("{} {}", (seconds + length / 2) / length, name);
    }
  }
  return fmt::format("{} days", (seconds + kDaySeconds / 2) / kDaySeconds);
}

std::string ago(EpochSeconds then, EpochSeconds now) {
  return then > now ? "in " + span(then - now) : span(now - then) + " ago";
}

std::string clockTime(EpochSeconds moment) {
  const Calendar c = local(moment);
  return fmt::format("{:02}:{:02}", c.hour, c.minute);
}

std::string weekdayAndDate(EpochSeconds moment) {
  const Calendar c = local(moment);
  return fmt::format("{} {} {:.3} {}", kWeekdays[c.weekday], c.day, month(c), c.year);
}

std::string dayAndMonth(EpochSeconds moment, EpochSeconds now) {
  const Calendar c = local(moment);
  return fmt::format("{} {}{}", c.day, month(c),
                     c.year == local(now).year ? "" : fmt::format(" {}", c.year));
}

std::string weekdayAndDay(EpochSeconds moment, EpochSeconds now) {
  return fmt::format("{} {}", kWeekdays[local(moment).weekday], dayAndMonth(moment, now));
}

std::string dates(EpochSeconds first, EpochSeconds last) {
  const Calendar from = local(first);
  const Calendar to = local(last);
  const std::string end = fmt::format("{} {} {}", to.day, month(to), to.year);
  if (from.year != to.year) {
    return fmt::format("{} {} {} to {}", from.day, month(from), from.year, end);
  }
  if (from.month != to.month) {
    return fmt::format("{} {} to {}", from.day, month(from), end);
  }
  return from.day == to.day ? end : fmt::format("{} to {}", from.day, end);
}

std::string counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string folded(std::string_view text, std::size_t width, std::size_t indent) {
  std::string lines;
  std::size_t column = 0;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    if (column > 0 && indent + column + 1 + word.size() > width) {
      lines += '\n';
      lines.append(indent, ' ');
      column = 0;
    }
    lines += column > 0 ? " " : "";
    lines += word;
    column += word.size() + (column > 0 ? 1 : 0);
  }
  return lines;
}

}  // namespace watch

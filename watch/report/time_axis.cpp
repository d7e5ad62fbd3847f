#include "report/time_axis.h"

#include "report/words.h"

#include <fmt/format.h>

namespace watch {

namespace {

/// Behind this share of the axis, there is no room for a label.
constexpr double kLastLabel = 0.97;

Calendar dateOf(std::int64_t day) {
  return calendar({day * kDaySeconds});
}

std::string monthAlone(std::int64_t day) {
  return shortDay(day).substr(shortDay(day).find(' ') + 1);
}

/// How the axis of so many days is divided.
struct Division {
  std::int64_t upToDays;
  bool (*begins)(std::int64_t day);
  std::string (*label)(std::int64_t day);
  bool (*isMinor)(std::int64_t day);
};

bool never(std::int64_t /*day*/) {
  return false;
}

std::string yearOrMonth(std::int64_t day) {
  return dateOf(day).month == 1 ? fmt::format("{}", dateOf(day).year) : monthAlone(day);
}

constexpr Division kDivisions[] = {
    {14, [](std::int64_t) { return true; }, shortDay,
     [](std::int64_t day) { return day % 2 != 0; }},
    {80, [](std::int64_t day) { return dateOf(day).weekday == 1; }, shortDay,
     [](std::int64_t day) { return day / 7 % 2 != 0; }},
    {400, [](std::int64_t day) { return dateOf(day).day == 1; }, monthAlone,
     [](std::int64_t day) { return dateOf(day).month % 2 == 0; }},
    {1500, [](std::int64_t day) { return dateOf(day).day == 1 && dateOf(day).month % 3 == 1; },
     yearOrMonth, [](std::int64_t day) { return dateOf(day).month != 1; }},
    {kDaySeconds, [](std::int64_t day) { return dateOf(day).day == 1 && dateOf(day).month == 1; },
     yearOrMonth, never},
};

std::vector<Tick> hours(std::int64_t days) {
  constexpr int kHours[] = {0, 6, 12, 18};
  std::vector<Tick> ticks;
  for (std::int64_t day = 0; day < days; ++day) {
    for (const int hour : kHours) {
      const double at = (static_cast<double>(day) + hour / 24.0) / static_cast<double>(days);
      ticks.push_back({at, fmt::format("{:02}:00", hour), false});
    }
  }
  return ticks;
}

}  // namespace

double TimeAxis::xOf(EpochSeconds moment) const {
  return x(static_cast<double>(localTime(moment).seconds) / static_cast<double>(kDaySeconds));
}

std::vector<Tick> TimeAxis::ticks() const {
  if (days <= 2) {
    return hours(days);
  }
  const Division* division = kDivisions;
  while (days > division->upToDays) {
    ++division;
  }
  std::vector<Tick> ticks;
  for (std::int64_t day = firstDay; day < firstDay + days; ++day) {
    const double at = x(static_cast<double>(day)) / kWidth;
    if (division->begins(day) && at < kLastLabel) {
      ticks.push_back({at, division->label(day), division->isMinor(day)});
    }
  }
  return ticks;
}

std::vector<Tick> hourTicks() {
  return hours(1);
}

}  // namespace watch

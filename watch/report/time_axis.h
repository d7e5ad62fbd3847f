// The axis of time of a picture: whole days of the wall clock.
#pragma once

#include "local_time.h"
#include "report/chart.h"

#include <cstdint>
#include <vector>

namespace watch {

struct TimeAxis {
  std::int64_t firstDay;
  std::int64_t days;

  /// Where the day begins, from 0 to kWidth; parts of a day count.
  double x(double day) const {
    return kWidth * (day - static_cast<double>(firstDay)) / static_cast<double>(days);
  }
  double xOf(EpochSeconds moment) const;
  /// As many as there is room for: hours, days, Mondays, months, quarters or years.
  std::vector<Tick> ticks() const;
};

/// Those of one day.
std::vector<Tick> hourTicks();

}  // namespace watch

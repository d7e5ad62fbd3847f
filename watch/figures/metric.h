// The four things that runs measure.
#pragma once

#include "runs/run.h"

#include <optional>

namespace watch {

/// Bits per second that an Mbit/s stands for.
inline constexpr double kMegabit = 1e6;

struct Metric {
  const char* name;
  const char* unit;
  /// What was measured, in the unit; nothing where a run has no figure of the line.
  std::optional<double> (*of)(const Run& run);
  /// More is better.
  bool moreIsBetter;

  bool isWorse(double one, double other) const { return moreIsBetter ? one < other : one > other; }
};

/// Rates are in Mbit/s (10^6 bits per second), the latency in milliseconds, the loss in percent.
extern const Metric kRead;
extern const Metric kWrite;
extern const Metric kLatency;
extern const Metric kLoss;

}  // namespace watch

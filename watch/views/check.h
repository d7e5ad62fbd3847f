// A verdict on the line for scripts and monitoring, by the rules of the monitoring plugins.
#pragma once

#include "runs/run.h"
#include "views/style.h"

#include <optional>
#include <span>
#include <string>

namespace watch {

/// The exit statuses of a monitoring plugin.
enum class Verdict { ok = 0, warning = 1, critical = 2, unknown = 3 };

/// What is asked for. Rates are in Mbit/s, the latency in milliseconds.
struct Limits {
  std::optional<double> read;
  std::optional<double> write;
  std::optional<double> latency;
  /// Critical when `bad` of the last `of` runs are bad.
  std::size_t bad = 1;
  std::size_t of = 1;
  /// A warning when a rate is below this share of what is usual at that hour, in percent.
  std::optional<double> below;
  /// Seconds.
  std::optional<EpochSeconds> maxAge;
};

/// The text's first line is for people; behind a "|" stand the performance data, where it is no
/// terminal. Lines of the runs that are bad may follow.
struct Checked {
  Verdict verdict;
  std::string text;
};

/// Judges the last of `runs`; `known` are all that there are, for what is usual. Where the figure
/// that was asked for cannot be told, that is "unknown", and no guess.
Checked checkRuns(std::span<const Run> runs, std::span<const Run> known, const Limits& limits,
                  EpochSeconds now, const Style& style);

}  // namespace watch

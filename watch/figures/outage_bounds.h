// What is known of how long an outage was: the good runs around it.
#pragma once

#include "figures/period.h"

#include <optional>
#include <span>
#include <string>

namespace watch {

struct OutageBounds {
  /// The last run before it and the first behind it in which something came through; nothing where
  /// there is none.
  std::optional<EpochSeconds> lastGood;
  std::optional<EpochSeconds> nextGood;
  EpochSeconds firstBad;
  EpochSeconds lastBad;
  /// How many runs had no connection.
  std::size_t runs;
  /// What was wrong with the first of them.
  std::string reason;

  EpochSeconds atLeast() const { return lastBad - firstBad; }
  /// Nothing where a good run is missing.
  std::optional<EpochSeconds> atMost() const;
};

/// `outage` is one of outages(runs).
OutageBounds boundsOf(std::span<const Run> runs, const Outage& outage);

}  // namespace watch

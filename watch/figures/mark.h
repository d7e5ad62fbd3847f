// The marks by which a picture shows runs: how good the figure is beside what it should be, or why
// there is none.
#pragma once

#include "figures/metric.h"
#include "figures/outcome.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace watch {

/// From the best to the worst figure, then those without one.
enum class Mark : std::uint8_t {
  good,
  fair,
  slow,
  slower,
  slowest,
  /// It was not measured in full.
  partly,
  noServer,
  noConnection,
  /// A run was due, and there is none.
  noTest,
};
inline constexpr std::size_t kMarks = 9;

/// A figure of this share of what it should be, or more, has the mark of that place.
inline constexpr std::array kShares = {0.9, 0.75, 0.5, 0.25};

/// What the figures should be: what the contract says, or what is usual.
struct Reference {
  const Metric* metric;
  double value;
  bool isOfContract;

  /// How good `figure` is: 1 where it is what it should be, 0.5 for half a rate or twice a latency.
  double share(double figure) const;
  /// The figure of that share.
  double figure(double share) const;
};

Mark markOf(double figure, const Reference& reference);
/// Without a reference, nothing was measured.
Mark markOf(const Run& run, Outcome outcome, const std::optional<Reference>& reference);

}  // namespace watch

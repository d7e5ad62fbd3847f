// Lays two sequences beside each other, of which each has gaps: the partners that cost least, and
// what else would have cost the same.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <vector>

namespace watch {

inline constexpr std::size_t kAlone = std::numeric_limits<std::size_t>::max();
inline constexpr int kImpossible = std::numeric_limits<int>::max();

/// What is known of the two sequences, by places in them.
struct Costs {
  std::size_t lefts = 0;
  std::size_t rights = 0;
  /// What it costs to take the two for partners, or kImpossible.
  std::function<int(std::size_t left, std::size_t right)> pair;
  /// What it costs to leave one alone.
  std::function<int(std::size_t left)> left;
  std::function<int(std::size_t right)> right;
  /// Whether the two are partners beyond doubt. Must cost nothing then.
  std::function<bool(std::size_t left, std::size_t right)> isSure;
};

struct Alignment {
  /// The partner of each left, or kAlone; and of each right.
  std::vector<std::size_t> ofLeft;
  std::vector<std::size_t> ofRight;
  /// Another choice would have cost the same.
  std::vector<bool> leftDoubtful;
  std::vector<bool> rightDoubtful;
};

/// Takes time in proportion to the lengths, but between two partners beyond doubt in proportion to
/// the product of the lengths there.
Alignment align(const Costs& costs);

}  // namespace watch

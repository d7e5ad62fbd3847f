// Lays several sequences beside each other, each of which may have gaps: the rows that cost least
// together, and what else would have cost the same. A row takes the next element of some of the
// sequences.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

namespace watch {

inline constexpr std::size_t kAlone = std::numeric_limits<std::size_t>::max();
inline constexpr int kImpossible = std::numeric_limits<int>::max();

/// A set of sequences: the bit 1 << n stands for the sequence n.
using Members = unsigned;

/// A place in each sequence.
template <std::size_t Count>
using Places = std::array<std::size_t, Count>;

/// A row beyond doubt. Elements before its places are of rows before it, also of sequences of which
/// it takes none.
template <std::size_t Count>
struct SureRow {
  Members members = 0;
  Places<Count> places{};

  bool operator==(const SureRow&) const = default;
};

/// What is known of the sequences.
template <std::size_t Count>
struct Costs {
  Places<Count> lengths{};
  /// What a row costs that takes the elements at `places` of the sequences in `members`, or
  /// kImpossible. Never less than 0.
  std::function<int(Members members, const Places<Count>& places)> row;
  /// What all rows from `places` to before `ends` cost at least.
  std::function<int(const Places<Count>& places, const Places<Count>& ends)> atLeast;
  /// The next row beyond doubt from `places` on.
  std::function<std::optional<SureRow<Count>>(const Places<Count>& places)> nextSure;
};

template <std::size_t Count>
struct Row {
  /// kAlone where the row takes none.
  Places<Count> places{};
  /// The sequences of which it could have taken another element, or none, or one, at the same cost.
  Members doubtful = 0;
};

/// Returns the rows, in which each element is once and in its order. Takes time in proportion to
/// the lengths as long as few ways cost about the same.
template <std::size_t Count>
std::vector<Row<Count>> align(const Costs<Count>& costs);

/// Returns the places behind a row.
template <std::size_t Count>
Places<Count> behind(Members members, Places<Count> places) {
  for (std::size_t n = 0; n < Count; ++n) {
    places[n] += members >> n & 1U;
  }
  return places;
}

/// Returns the place from `from` to before `end`, and no further than `reach` from `expected`, of
/// which alone `isSought` is true.
template <class IsSought>
std::optional<std::size_t> findOnly(std::size_t expected, std::size_t from, std::size_t end,
                                    std::size_t reach, IsSought isSought) {
  std::optional<std::size_t> found;
  for (std::size_t i = expected > from + reach ? expected - reach : from;
       i < end && i <= expected + reach; ++i) {
    if (!isSought(i)) {
      continue;
    }
    if (found) {
      return std::nullopt;
    }
    found = i;
  }
  return found;
}

}  // namespace watch

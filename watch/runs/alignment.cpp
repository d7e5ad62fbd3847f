#include "runs/alignment.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace watch {

namespace {

/// How far around its expected place, and from the start, the next sure partner is looked for.
constexpr std::size_t kReach = 48;
/// A way through a segment leaves the straight one by this many places at most, and by as many more
/// as one sequence is longer there.
constexpr std::size_t kStray = 16;
/// Segments with more pairs than this are not weighed: all in them is doubtful.
constexpr std::size_t kMostPairs = 4'000'000;
/// Far from what a sum of costs can reach.
constexpr int kFar = 1 << 29;

/// What lies in both sequences between partners beyond doubt.
struct Segment {
  std::size_t left;
  std::size_t leftEnd;
  std::size_t right;
  std::size_t rightEnd;

  std::size_t lefts() const { return leftEnd - left; }
  std::size_t rights() const { return rightEnd - right; }
  /// The rights from `first` to `last` are weighed against the left `i`.
  std::size_t first(std::size_t i) const {
    const std::size_t back = kStray + (lefts() > rights() ? lefts() - rights() : 0);
    return i > back ? std::min(i - back, rights()) : 0;
  }
  std::size_t last(std::size_t i) const {
    return std::min(rights(), i + kStray + (rights() > lefts() ? rights() - lefts() : 0));
  }
  std::size_t width() const {
    return 2 * kStray + 1 + (std::max(lefts(), rights()) - std::min(lefts(), rights()));
  }
};

int add(int one, int other) {
  return other == kImpossible ? kFar : std::min(kFar, one + other);
}

/// The costs from one corner of a segment to each place near its straight way.
class Grid {
 public:
  explicit Grid(const Segment& segment)
      : segment_(segment), costs_((segment.lefts() + 1) * segment.width(), kFar) {}

  int get(std::size_t i, std::size_t j) const {
    return isInside(i, j) ? costs_[place(i, j)] : kFar;
  }
  void set(std::size_t i, std::size_t j, int cost) { costs_[place(i, j)] = cost; }

 private:
  bool isInside(std::size_t i, std::size_t j) const {
    return i <= segment_.lefts() && j >= segment_.first(i) && j <= segment_.last(i);
  }
  std::size_t place(std::size_t i, std::size_t j) const {
    return i * segment_.width() + (j - segment_.first(i));
  }

  const Segment& segment_;
  std::vector<int> costs_;
};

class Aligner {
 public:
  explicit Aligner(const Costs& costs) : costs_(costs) {
    result_.ofLeft.assign(costs.lefts, kAlone);
    result_.ofRight.assign(costs.rights, kAlone);
    result_.leftDoubtful.assign(costs.lefts, false);
    result_.rightDoubtful.assign(costs.rights, false);
  }

  Alignment run() {
    std::size_t left = 0;
    std::size_t right = 0;
    while (true) {
      const auto [nextLeft, nextRight] = findSure(left, right);
      weigh({left, nextLeft, right, nextRight});
      if (nextLeft == costs_.lefts) {
        return std::move(result_);
      }
      join(nextLeft, nextRight);
      left = nextLeft + 1;
      right = nextRight + 1;
    }
  }

 private:
  void join(std::size_t left, std::size_t right) {
    result_.ofLeft[left] = right;
    result_.ofRight[right] = left;
  }

  /// Returns the next partners beyond doubt, or the ends of both sequences.
  std::pair<std::size_t, std::size_t> findSure(std::size_t left, std::size_t right) const {
    for (std::size_t i = left; i < costs_.lefts; ++i) {
      const std::size_t expected = right + (i - left);
      const std::size_t near = expected > right + kReach ? expected - kReach : right;
      if (auto found = findSureIn(i, near, expected + kReach + 1)) {
        return {i, *found};
      }
      if (auto found = findSureIn(i, right, std::min(near, right + kReach))) {
        return {i, *found};
      }
    }
    return {costs_.lefts, costs_.rights};
  }

  std::optional<std::size_t> findSureIn(std::size_t left, std::size_t begin,
                                        std::size_t end) const {
    for (std::size_t right = begin; right < std::min(end, costs_.rights); ++right) {
      if (costs_.isSure(left, right)) {
        return right;
      }
    }
    return std::nullopt;
  }

  void weigh(const Segment& s) {
    if (s.lefts() == 0 || s.rights() == 0) {
      return;
    }
    if (s.lefts() > kMostPairs / s.width()) {
      std::fill_n(result_.leftDoubtful.begin() + static_cast<std::ptrdiff_t>(s.left), s.lefts(),
                  true);
      std::fill_n(result_.rightDoubtful.begin() + static_cast<std::ptrdiff_t>(s.right), s.rights(),
                  true);
      return;
    }
    const Grid before = costsBefore(s);
    const Grid after = costsAfter(s);
    takeCheapest(s, before, after);
    findDoubts(s, before, after);
  }

  // What the steps from the place (i, j) of a segment cost: with a partner, and without.
  int pairCost(const Segment& s, std::size_t i, std::size_t j) const {
    return i < s.lefts() && j < s.rights() ? costs_.pair(s.left + i, s.right + j) : kImpossible;
  }
  int leftCost(const Segment& s, std::size_t i) const {
    return i < s.lefts() ? costs_.left(s.left + i) : kImpossible;
  }
  int rightCost(const Segment& s, std::size_t j) const {
    return j < s.rights() ? costs_.right(s.right + j) : kImpossible;
  }

  Grid costsBefore(const Segment& s) const {
    Grid grid(s);
    for (std::size_t i = 0; i <= s.lefts(); ++i) {
      for (std::size_t j = s.first(i); j <= s.last(i); ++j) {
        int cost = i + j == 0 ? 0 : kFar;
        if (i > 0) {
          cost = std::min(cost, add(grid.get(i - 1, j), leftCost(s, i - 1)));
        }
        if (j > 0) {
          cost = std::min(cost, add(grid.get(i, j - 1), rightCost(s, j - 1)));
        }
        if (i > 0 && j > 0) {
          cost = std::min(cost, add(grid.get(i - 1, j - 1), pairCost(s, i - 1, j - 1)));
        }
        grid.set(i, j, cost);
      }
    }
    return grid;
  }

  Grid costsAfter(const Segment& s) const {
    Grid grid(s);
    for (std::size_t i = s.lefts() + 1; i-- > 0;) {
      for (std::size_t j = s.last(i) + 1; j-- > s.first(i);) {
        const bool isEnd = i == s.lefts() && j == s.rights();
        grid.set(i, j,
                 std::min({isEnd ? 0 : kFar, add(grid.get(i + 1, j), leftCost(s, i)),
                           add(grid.get(i, j + 1), rightCost(s, j)),
                           add(grid.get(i + 1, j + 1), pairCost(s, i, j))}));
      }
    }
    return grid;
  }

  /// Walks one of the cheapest ways through the segment: partners rather than gaps.
  void takeCheapest(const Segment& s, const Grid& before, const Grid& after) {
    const int best = after.get(0, 0);
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < s.lefts() || j < s.rights()) {
      const int here = before.get(i, j);
      if (add(add(here, pairCost(s, i, j)), after.get(i + 1, j + 1)) == best) {
        join(s.left + i++, s.right + j++);
      } else if (add(add(here, leftCost(s, i)), after.get(i + 1, j)) == best) {
        ++i;
      } else {
        ++j;
      }
    }
  }

  /// One is doubtful when cheapest ways differ in what they do with it.
  void findDoubts(const Segment& s, const Grid& before, const Grid& after) {
    const int best = after.get(0, 0);
    for (std::size_t i = 0; i <= s.lefts(); ++i) {
      for (std::size_t j = s.first(i); j <= s.last(i); ++j) {
        const int here = before.get(i, j);
        const bool pairs = add(add(here, pairCost(s, i, j)), after.get(i + 1, j + 1)) == best;
        const bool leaves = add(add(here, leftCost(s, i)), after.get(i + 1, j)) == best;
        const bool skips = add(add(here, rightCost(s, j)), after.get(i, j + 1)) == best;
        const std::size_t left = s.left + i;
        const std::size_t right = s.right + j;
        if ((pairs && result_.ofLeft[left] != right) ||
            (leaves && result_.ofLeft[left] != kAlone)) {
          result_.leftDoubtful[left] = true;
        }
        if ((pairs && result_.ofRight[right] != left) ||
            (skips && result_.ofRight[right] != kAlone)) {
          result_.rightDoubtful[right] = true;
        }
      }
    }
  }

  const Costs& costs_;
  Alignment result_;
};

}  // namespace

Alignment align(const Costs& costs) {
  return Aligner(costs).run();
}

}  // namespace watch

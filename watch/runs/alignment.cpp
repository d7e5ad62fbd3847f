#include "runs/alignment.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace watch {

namespace {

/// By how much a way may cost more than the best one so far, to be followed all the same. Without
/// a margin the best way is found when it costs the least that it can.
constexpr int kMargins[] = {0, 30, 100};
/// No more places are weighed than these, of which a longer stretch has more, up to a limit. What
/// was found with a smaller margin holds then. Where that is nothing, only the best few places of
/// each layer are, and all is doubtful.
constexpr std::size_t kPlacesOfAnyStretch = 20'000;
constexpr std::size_t kPlacesOfALayer = 16;
constexpr std::size_t kMostPlaces = 500'000;
constexpr std::size_t kFewPlaces = 4;

template <std::size_t Count>
constexpr Members kAll = (1U << Count) - 1;

constexpr bool has(Members members, std::size_t sequence) {
  return (members >> sequence & 1U) != 0;
}

template <std::size_t Count>
std::size_t sum(const Places<Count>& places) {
  std::size_t all = 0;
  for (const std::size_t place : places) {
    all += place;
  }
  return all;
}

/// Returns where a row began that ends at `places`; nothing when it would begin before `start`.
template <std::size_t Count>
std::optional<Places<Count>> before(Members members, Places<Count> places,
                                    const Places<Count>& start) {
  for (std::size_t n = 0; n < Count; ++n) {
    if (!has(members, n)) {
      continue;
    }
    if (places[n] == start[n]) {
      return std::nullopt;
    }
    --places[n];
  }
  return places;
}

template <std::size_t Count>
Row<Count> rowAt(Members members, const Places<Count>& places) {
  Row<Count> row;
  for (std::size_t n = 0; n < Count; ++n) {
    row.places[n] = has(members, n) ? places[n] : kAlone;
  }
  return row;
}

/// A stretch of the sequences, weighed place by place. Places with the same number of elements
/// before them are a layer.
template <std::size_t Count>
class Stretch {
 public:
  Stretch(const Costs<Count>& costs, const Places<Count>& start, const Places<Count>& end)
      : costs_(costs), start_(start), end_(end) {}

  std::vector<Row<Count>> rows() {
    const int least = costs_.atLeast(start_, end_);
    for (const int margin : kMargins) {
      std::optional<Weighed> weighed = weigh(margin);
      if (!weighed) {
        break;
      }
      weighed_ = std::move(*weighed);
      if (weighed_.nodes.back().cost <= least + margin) {
        break;
      }
    }
    if (!weighed_.nodes.empty()) {
      return walkBack();
    }
    weighed_ = *weigh(kMargins[0], kFewPlaces);
    std::vector<Row<Count>> rows = walkBack();
    for (Row<Count>& row : rows) {
      row.doubtful = kAll<Count>;
    }
    return rows;
  }

 private:
  struct Node {
    Places<Count> places;
    int cost;
    /// What a way over these places costs at least.
    int least;
    bool isOnBestWay = false;
  };
  struct Weighed {
    /// Ordered by layers, and in a layer by places.
    std::vector<Node> nodes;
    /// Where each layer begins among the nodes, and where the last one ends.
    std::vector<std::size_t> layers = {0};
  };
  /// What was found of a layer and of those that a row can come to from it.
  struct Frontier {
    std::array<std::vector<Node>, Count + 1> found;
    std::array<int, Count + 1> best;

    Frontier() { best.fill(kImpossible); }
    void add(std::size_t layer, const Node& node) {
      found[layer % found.size()].push_back(node);
      best[layer % best.size()] = std::min(best[layer % best.size()], node.least);
    }
  };

  std::size_t layerCount() const { return sum(end_) - sum(start_) + 1; }
  std::size_t mostPlaces() const {
    return std::min(kMostPlaces, kPlacesOfAnyStretch + kPlacesOfALayer * layerCount());
  }

  /// Finds what it costs to come to each place, up to the end. Without a limit for each layer,
  /// returns nothing if these are too many.
  std::optional<Weighed> weigh(int margin, std::optional<std::size_t> mostOfLayer = {}) const {
    Weighed weighed;
    Frontier frontier;
    frontier.add(0, nodeAt(start_, 0));
    for (std::size_t layer = 0; layer < layerCount(); ++layer) {
      close(frontier, layer, margin, mostOfLayer, weighed);
      if (!mostOfLayer && weighed.nodes.size() > mostPlaces()) {
        return std::nullopt;
      }
      for (std::size_t i = weighed.layers[layer]; i < weighed.layers[layer + 1]; ++i) {
        goOn(weighed.nodes[i], layer, frontier);
      }
    }
    return weighed;
  }

  Node nodeAt(const Places<Count>& places, int cost) const {
    return {places, cost, cost + costs_.atLeast(places, end_)};
  }

  /// Keeps what was found of a layer: each place once, and only what may be on the best way.
  static void close(Frontier& frontier, std::size_t layer, int margin,
                    std::optional<std::size_t> most, Weighed& weighed) {
    std::vector<Node>& found = frontier.found[layer % frontier.found.size()];
    std::ranges::sort(found, [](const Node& one, const Node& other) {
      return std::pair(one.places, one.cost) < std::pair(other.places, other.cost);
    });
    const auto isSamePlace = [](const Node& one, const Node& other) {
      return one.places == other.places;
    };
    found.erase(std::unique(found.begin(), found.end(), isSamePlace), found.end());
    if (most && found.size() > *most) {
      std::ranges::stable_sort(found, {}, &Node::least);
      found.resize(*most);
      std::ranges::sort(found, {}, &Node::places);
    }
    const int best = *std::ranges::min_element(frontier.best);
    for (const Node& node : found) {
      if (node.least <= best + margin) {
        weighed.nodes.push_back(node);
      }
    }
    weighed.layers.push_back(weighed.nodes.size());
    found.clear();
    frontier.best[layer % frontier.best.size()] = kImpossible;
  }

  void goOn(const Node& node, std::size_t layer, Frontier& frontier) const {
    for (Members members = 1; members <= kAll<Count>; ++members) {
      const Places<Count> next = behind(members, node.places);
      const int cost = isInside(next) ? costs_.row(members, node.places) : kImpossible;
      if (cost != kImpossible) {
        frontier.add(layer + static_cast<std::size_t>(std::popcount(members)),
                     nodeAt(next, node.cost + cost));
      }
    }
  }

  bool isInside(const Places<Count>& places) const {
    for (std::size_t n = 0; n < Count; ++n) {
      if (places[n] > end_[n]) {
        return false;
      }
    }
    return true;
  }

  Node* find(const Places<Count>& places) {
    const std::size_t layer = sum(places) - sum(start_);
    const auto begin = weighed_.nodes.begin();
    const auto first = begin + static_cast<std::ptrdiff_t>(weighed_.layers[layer]);
    const auto last = begin + static_cast<std::ptrdiff_t>(weighed_.layers[layer + 1]);
    const auto found = std::ranges::lower_bound(first, last, places, {}, &Node::places);
    return found != last && found->places == places ? &*found : nullptr;
  }

  /// Goes back from the end over all best ways, and takes the rows of one of them: that with the
  /// most members, as far as there is a choice.
  std::vector<Row<Count>> walkBack() {
    std::vector<Row<Count>> all;
    std::vector<Row<Count>> taken;
    std::vector<Node>& nodes = weighed_.nodes;
    nodes.back().isOnBestWay = true;
    Places<Count> here = end_;
    const auto goBack = [&](Members members, const Node& node) {
      Node* const from = cameFrom(members, node);
      if (from == nullptr) {
        return;
      }
      from->isOnBestWay = true;
      all.push_back(rowAt(members, from->places));
      if (here == node.places) {
        taken.push_back(all.back());
        here = from->places;
      }
    };
    for (std::size_t i = nodes.size(); i-- > 0;) {
      for (Members members = kAll<Count>; members > 0 && nodes[i].isOnBestWay; --members) {
        goBack(members, nodes[i]);
      }
    }
    std::ranges::reverse(taken);
    markDoubts(all, taken);
    return taken;
  }

  Node* cameFrom(Members members, const Node& node) {
    const std::optional<Places<Count>> places = before(members, node.places, start_);
    Node* const from = places ? find(*places) : nullptr;
    if (from == nullptr) {
      return nullptr;
    }
    const int cost = costs_.row(members, *places);
    return cost != kImpossible && from->cost + cost == node.cost ? from : nullptr;
  }

  /// A row is doubtful in what another one of the best ways does with one of its elements.
  void markDoubts(const std::vector<Row<Count>>& all, std::vector<Row<Count>>& taken) const {
    for (std::size_t n = 0; n < Count; ++n) {
      markDoubtsBy(n, all, taken);
    }
  }

  void markDoubtsBy(std::size_t n, const std::vector<Row<Count>>& all,
                    std::vector<Row<Count>>& taken) const {
    const std::vector<std::size_t> rowOf = rowsOfElements(n, taken);
    for (const Row<Count>& other : all) {
      if (other.places[n] != kAlone) {
        markDifferences(other, taken[rowOf[other.places[n] - start_[n]]]);
      }
    }
  }

  /// Which of the rows has each element of the sequence `n`.
  std::vector<std::size_t> rowsOfElements(std::size_t n,
                                          const std::vector<Row<Count>>& rows) const {
    std::vector<std::size_t> rowOf(end_[n] - start_[n]);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].places[n] != kAlone) {
        rowOf[rows[i].places[n] - start_[n]] = i;
      }
    }
    return rowOf;
  }

  static void markDifferences(const Row<Count>& other, Row<Count>& row) {
    for (std::size_t n = 0; n < Count; ++n) {
      row.doubtful |= other.places[n] != row.places[n] ? 1U << n : 0U;
    }
  }

  const Costs<Count>& costs_;
  const Places<Count> start_;
  const Places<Count> end_;
  Weighed weighed_;
};

}  // namespace

template <std::size_t Count>
std::vector<Row<Count>> align(const Costs<Count>& costs) {
  std::vector<Row<Count>> rows;
  Places<Count> from{};
  while (from != costs.lengths) {
    const std::optional<SureRow<Count>> sure = costs.nextSure(from);
    const Places<Count> end = sure ? sure->places : costs.lengths;
    if (from != end) {
      const std::vector<Row<Count>> between = Stretch<Count>(costs, from, end).rows();
      rows.insert(rows.end(), between.begin(), between.end());
    }
    if (!sure) {
      break;
    }
    rows.push_back(rowAt(sure->members, end));
    from = behind(sure->members, end);
  }
  return rows;
}

template std::vector<Row<2>> align(const Costs<2>& costs);
template std::vector<Row<4>> align(const Costs<4>& costs);

}  // namespace watch

#include "runs/alignment.h"

#include <algorithm>
#include <utility>

namespace watch {

namespace {

/// By how much a way may cost more than the best one so far, to be followed all the same. Without
/// a margin the best way is found when it costs the least that it can.
constexpr int kMargins[] = {0, 30, 100};
/// A stretch between rows beyond doubt that has more places than this is not weighed: its elements
/// stay alone, and all are doubtful.
constexpr std::size_t kMostPlaces = 4'000'000;

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
    if (has(members, n)) {
      if (places[n] == start[n]) {
        return std::nullopt;
      }
      --places[n];
    }
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
      const std::optional<int> cost = weigh(margin);
      if (cost && *cost <= least + margin) {
        break;
      }
    }
    return layers_.size() == layerCount() && !layers_.back().empty() ? walkBack() : allAlone();
  }

 private:
  struct Node {
    Places<Count> places;
    int cost;
    bool isOnBestWay = false;
  };
  /// Nodes of a layer stand together, ordered by their places.
  struct Layer {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool empty() const { return begin == end; }
  };
  using Found = std::vector<Node>;

  std::size_t layerCount() const { return sum(end_) - sum(start_) + 1; }

  /// Finds what it costs to come to each place. Returns the cost of coming to the end.
  std::optional<int> weigh(int margin) {
    nodes_.clear();
    layers_.clear();
    std::array<Found, Count + 1> found;  // of this layer and those that a row can come to
    found[0].push_back({start_, 0});
    std::array<int, Count> best;  // of this layer and those before it that a row leaps over
    best.fill(kImpossible);
    for (std::size_t layer = 0; layer < layerCount() && nodes_.size() < kMostPlaces; ++layer) {
      close(found[layer % found.size()], best, layer, margin);
      for (std::size_t i = layers_.back().begin; i < layers_.back().end; ++i) {
        goOn(nodes_[i], layer, found);
      }
    }
    return layers_.size() < layerCount() || layers_.back().empty()
               ? std::nullopt
               : std::optional(nodes_[layers_.back().begin].cost);
  }

  /// Keeps what was found of a layer: each place once, and only what may be on the best way.
  void close(Found& found, std::array<int, Count>& best, std::size_t layer, int margin) {
    std::ranges::sort(found, [](const Node& one, const Node& other) {
      return std::pair(one.places, one.cost) < std::pair(other.places, other.cost);
    });
    const auto same = std::ranges::unique(found, {}, &Node::places);
    found.erase(same.begin(), same.end());
    int& bestHere = best[layer % Count];
    bestHere = kImpossible;
    for (Node& node : found) {
      bestHere = std::min(bestHere, node.cost + costs_.atLeast(node.places, end_));
    }
    const int bestNear = *std::ranges::min_element(best);
    layers_.push_back({nodes_.size(), nodes_.size()});
    for (const Node& node : found) {
      if (node.cost + costs_.atLeast(node.places, end_) <= bestNear + margin) {
        nodes_.push_back(node);
      }
    }
    layers_.back().end = nodes_.size();
    found.clear();
  }

  void goOn(const Node node, std::size_t layer, std::array<Found, Count + 1>& found) {
    for (Members members = 1; members <= kAll<Count>; ++members) {
      const Places<Count> next = behind(members, node.places);
      if (!isInside(next)) {
        continue;
      }
      const int cost = costs_.row(members, node.places);
      if (cost != kImpossible) {
        const std::size_t to = layer + static_cast<std::size_t>(__builtin_popcount(members));
        found[to % found.size()].push_back({next, node.cost + cost});
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
    const Layer& layer = layers_[sum(places) - sum(start_)];
    const auto first = nodes_.begin() + static_cast<std::ptrdiff_t>(layer.begin);
    const auto last = nodes_.begin() + static_cast<std::ptrdiff_t>(layer.end);
    const auto found = std::ranges::lower_bound(first, last, places, {}, &Node::places);
    return found != last && found->places == places ? &*found : nullptr;
  }

  /// Goes back from the end over all best ways, and takes the rows of one of them: that with the
  /// most members, as far as there is a choice.
  std::vector<Row<Count>> walkBack() {
    std::vector<Row<Count>> all;
    std::vector<Row<Count>> taken;
    nodes_.back().isOnBestWay = true;
    Places<Count> here = end_;
    for (std::size_t i = nodes_.size(); i-- > 0;) {
      if (!nodes_[i].isOnBestWay) {
        continue;
      }
      const bool isTaken = nodes_[i].places == here;
      for (Members members = kAll<Count>; members > 0; --members) {
        if (Node* const from = cameFrom(members, nodes_[i])) {
          from->isOnBestWay = true;
          all.push_back(rowAt(members, from->places));
          if (isTaken && here == nodes_[i].places) {
            taken.push_back(all.back());
            here = from->places;
          }
        }
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
    std::array<std::vector<std::size_t>, Count> rowOf;
    for (std::size_t n = 0; n < Count; ++n) {
      rowOf[n].resize(end_[n] - start_[n]);
      for (std::size_t i = 0; i < taken.size(); ++i) {
        if (taken[i].places[n] != kAlone) {
          rowOf[n][taken[i].places[n] - start_[n]] = i;
        }
      }
    }
    for (const Row<Count>& other : all) {
      for (std::size_t n = 0; n < Count; ++n) {
        if (other.places[n] != kAlone) {
          markDifferences(other, taken[rowOf[n][other.places[n] - start_[n]]]);
        }
      }
    }
  }

  static void markDifferences(const Row<Count>& other, Row<Count>& row) {
    for (std::size_t n = 0; n < Count; ++n) {
      row.doubtful |= other.places[n] != row.places[n] ? 1U << n : 0U;
    }
  }

  std::vector<Row<Count>> allAlone() const {
    std::vector<Row<Count>> rows;
    for (std::size_t n = 0; n < Count; ++n) {
      for (std::size_t i = start_[n]; i < end_[n]; ++i) {
        rows.emplace_back().places.fill(kAlone);
        rows.back().places[n] = i;
        rows.back().doubtful = kAll<Count>;
      }
    }
    return rows;
  }

  const Costs<Count>& costs_;
  const Places<Count> start_;
  const Places<Count> end_;
  std::vector<Node> nodes_;
  std::vector<Layer> layers_;
};

}  // namespace

template <std::size_t Count>
std::vector<Row<Count>> align(const Costs<Count>& costs) {
  std::vector<Row<Count>> rows;
  Places<Count> from{};
  while (from != costs.lengths) {
    const std::optional<Places<Count>> sure = costs.nextSure(from);
    const Places<Count> end = sure.value_or(costs.lengths);
    if (from != end) {
      const std::vector<Row<Count>> between = Stretch<Count>(costs, from, end).rows();
      rows.insert(rows.end(), between.begin(), between.end());
    }
    if (!sure) {
      break;
    }
    rows.push_back(rowAt(kAll<Count>, end));
    from = behind(kAll<Count>, end);
  }
  return rows;
}

template std::vector<Row<2>> align(const Costs<2>& costs);
template std::vector<Row<4>> align(const Costs<4>& costs);

}  // namespace watch

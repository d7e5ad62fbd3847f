#include "evidence/file_order.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace watch {

namespace {

/// Before all times, and far enough from the limits to be subtracted.
constexpr std::int64_t kBeforeAll = std::numeric_limits<std::int64_t>::min() / 4;

std::int64_t middleOf(std::vector<std::int64_t> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

/// Finds a better place for each file whose times are no guide to it, since the clock was set back,
/// as it is at the end of summer time: where they go on from those before, and those behind go on
/// from them.
class OrderMender {
 public:
  OrderMender(const std::vector<FileTimes>& files, std::vector<std::size_t>& order)
      : files_(files), order_(order), longest_(kUsualPauses * usualPause()) {}

  void mend() {
    constexpr int kMostRounds = 10;
    int rounds = 0;
    while (moveAll() && ++rounds < kMostRounds) {
      // Each move can make room for another one.
    }
  }

 private:
  static constexpr std::int64_t kUsualPauses = 4;

  const FileTimes& file(std::size_t place) const { return files_[order_[place]]; }

  /// The median of the times from the end of a file to the start of the next.
  std::int64_t usualPause() const {
    std::vector<std::int64_t> pauses = {0};
    for (std::size_t i = 1; i < order_.size(); ++i) {
      if (file(i).first > file(i - 1).last) {
        pauses.push_back(file(i).first - file(i - 1).last);
      }
    }
    return middleOf(std::move(pauses));
  }

  /// How long nothing was written between two. A long break is as any longer one, or as a clock
  /// that was set.
  std::int64_t pause(const FileTimes* one, const FileTimes* next) const {
    if (one == nullptr || next == nullptr) {
      return 0;
    }
    const std::int64_t seconds = next->first - one->last;
    return seconds >= 0 ? std::min(seconds, longest_) : longest_;
  }

  /// Moves each file that has a better place. Returns whether there was any.
  bool moveAll() {
    bool hasMoved = false;
    for (std::size_t i = 0; i < order_.size(); ++i) {
      if (file(i).goesBack || (i > 0 && file(i).first < file(i - 1).last)) {
        const std::size_t place = betterPlace(i);
        move(i, place);
        hasMoved = hasMoved || place != i;
      }
    }
    return hasMoved;
  }

  const FileTimes* at(std::size_t place) const {
    return place < order_.size() ? &file(place) : nullptr;
  }

  /// By how much longer the pauses are with `between` between the two.
  std::int64_t cost(const FileTimes* before, const FileTimes& between,
                    const FileTimes* behind) const {
    return pause(before, &between) + pause(&between, behind) - pause(before, behind);
  }

  /// Returns before which place that at `i` is best: the nearest such, or where it stands if no
  /// other place is better.
  std::size_t betterPlace(std::size_t i) const {
    const auto distance = [&](std::size_t place) { return place < i ? i - place : place - i; };
    std::size_t best = i;
    std::int64_t least = cost(at(i - 1), file(i), at(i + 1));
    for (std::size_t place = 0; place <= order_.size(); ++place) {
      if (place == i || place == i + 1) {
        continue;
      }
      const std::int64_t here = cost(at(place - 1), file(i), at(place));
      if (here < least || (here == least && best != i && distance(place) < distance(best))) {
        least = here;
        best = place;
      }
    }
    return best;
  }

  void move(std::size_t from, std::size_t to) {
    const auto place = [&](std::size_t i) {
      return order_.begin() + static_cast<std::ptrdiff_t>(i);
    };
    if (to < from) {
      std::rotate(place(to), place(from), place(from + 1));
    } else if (to > from) {
      std::rotate(place(from), place(from + 1), place(to));
    }
  }

  const std::vector<FileTimes>& files_;
  std::vector<std::size_t>& order_;
  const std::int64_t longest_;
};

}  // namespace

FileTimes timesOfFile(std::vector<std::int64_t> times, std::optional<std::int64_t> named) {
  FileTimes file;
  file.isTimed = !times.empty();
  file.isNamed = named.has_value();
  if (times.empty()) {
    times.push_back(named.value_or(kBeforeAll));
  }
  file.first = times.front();
  // The last line may have no time, but its run has named the file.
  file.last = named.value_or(times.back());
  constexpr std::int64_t kLongestRun = 300;
  file.goesBack = !std::ranges::is_sorted(times) || file.last < times.back() - kLongestRun;
  // Far apart, the latest is right: a clock without its battery starts in the past.
  constexpr std::int64_t kFarApart = 90 * kDaySeconds;
  const auto [earliest, latest] = std::ranges::minmax(times);
  file.time = latest - earliest > kFarApart ? latest : middleOf(std::move(times));
  return file;
}

std::vector<std::size_t> orderOfWriting(const std::vector<FileTimes>& files) {
  std::vector<std::size_t> order(files.size());
  std::iota(order.begin(), order.end(), 0);
  std::ranges::stable_sort(order, {}, [&](std::size_t place) {
    return std::pair(files[place].time, files[place].isNamed);
  });
  OrderMender(files, order).mend();
  return order;
}

}  // namespace watch

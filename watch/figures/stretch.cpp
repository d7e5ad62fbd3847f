#include "figures/stretch.h"

#include <map>
#include <numeric>
#include <utility>

namespace watch {

namespace {

struct Collected {
  std::array<std::size_t, kMarks> marks{};
  std::vector<double> read;
  std::vector<double> write;
  std::vector<double> latency;
};

void addTo(std::vector<double>& values, const std::optional<double>& value) {
  if (value) {
    values.push_back(*value);
  }
}

}  // namespace

std::size_t Stretch::runs() const {
  return std::accumulate(marks.begin(), marks.end(), std::size_t{0}) - of(Mark::noTest);
}

const std::optional<Spread>& Stretch::spreadOf(const Metric& metric) const {
  return &metric == &kRead ? read : &metric == &kWrite ? write : latency;
}

std::vector<Stretch> stretches(std::span<const Placed> line, const KeyOf& keyOf) {
  std::map<std::int64_t, Collected> collected;
  for (const Placed& placed : line) {
    Collected& values = collected[keyOf(placed)];
    ++values.marks.at(static_cast<std::size_t>(placed.mark));
    if (placed.run != nullptr) {
      addTo(values.read, kRead.of(*placed.run));
      addTo(values.write, kWrite.of(*placed.run));
      addTo(values.latency, kLatency.of(*placed.run));
    }
  }
  std::vector<Stretch> found;
  found.reserve(collected.size());
  for (auto& [key, values] : collected) {
    found.push_back({key, values.marks, spread(std::move(values.read)),
                     spread(std::move(values.write)), spread(std::move(values.latency))});
  }
  return found;
}

std::int64_t dayKey(const Placed& placed) {
  return placed.day;
}

std::int64_t monthKey(const Placed& placed) {
  const Calendar date = calendar({placed.day * kDaySeconds});
  return std::int64_t{date.year} * 12 + date.month - 1;
}

std::int64_t hourKey(const Placed& placed) {
  return placed.hour;
}

std::int64_t hourOfWeekKey(const Placed& placed) {
  const unsigned weekday = calendar({placed.day * kDaySeconds}).weekday;
  return std::int64_t{(weekday + 6) % 7} * 24 + placed.hour;
}

Mark markOf(const Stretch& stretch, const std::optional<Reference>& reference) {
  if (stretch.of(Mark::noConnection) > 0) {
    return Mark::noConnection;
  }
  if (reference && stretch.spreadOf(*reference->metric)) {
    return markOf(stretch.spreadOf(*reference->metric)->middle, *reference);
  }
  for (const Mark mark : {Mark::noServer, Mark::partly}) {
    if (stretch.of(mark) > 0) {
      return mark;
    }
  }
  return Mark::noTest;
}

}  // namespace watch

#include "figures/usual.h"

#include "figures/statistics.h"

#include <algorithm>
#include <map>
#include <utility>

namespace watch {

namespace {

constexpr std::size_t kTwenty = 20;
constexpr double kOneInTwenty = 1.0 / kTwenty;
constexpr std::size_t kFewest = 3;

std::int64_t localDay(EpochSeconds moment) {
  return dayNumber(localTime(moment));
}

unsigned localHour(EpochSeconds moment) {
  return calendar(localTime(moment)).hour;
}

}  // namespace

Usual usual(std::span<const Run> runs, const Metric& metric) {
  std::vector<double> values;
  for (const Run& run : runs) {
    if (const auto value = metric.of(run)) {
      values.push_back(*value);
    }
  }
  const std::size_t count = values.size();
  const auto worse = count < kTwenty
                         ? std::nullopt
                         : quantile(values, metric.moreIsBetter ? kOneInTwenty : 1 - kOneInTwenty);
  return {median(std::move(values)), worse, count};
}

std::array<std::optional<double>, 24> byHour(std::span<const Run> runs, const Metric& metric) {
  std::array<std::vector<double>, 24> values;
  for (const Run& run : runs) {
    if (const auto value = metric.of(run); value && run.time) {
      values.at(localHour(*run.time)).push_back(*value);
    }
  }
  std::array<std::optional<double>, 24> middles;
  for (std::size_t hour = 0; hour < values.size(); ++hour) {
    middles.at(hour) = median(std::move(values.at(hour)));
  }
  return middles;
}

std::optional<Days> daysOf(std::span<const Run> runs) {
  std::optional<EpochSeconds> first;
  std::optional<EpochSeconds> last;
  for (const Run& run : runs) {
    if (run.time) {
      first = std::min(first.value_or(*run.time), *run.time);
      last = std::max(last.value_or(*run.time), *run.time);
    }
  }
  return first
             ? std::optional(Days{*first, *last,
                                  static_cast<std::size_t>(localDay(*last) - localDay(*first)) + 1})
             : std::nullopt;
}

std::vector<std::optional<double>> byDay(std::span<const Run> runs, const Metric& metric,
                                         const Days& days, std::size_t size) {
  const std::int64_t first = localDay(days.first);
  // Years can be between two runs when a clock was wrong.
  std::map<std::int64_t, std::vector<double>> values;
  for (const Run& run : runs) {
    if (const auto value = metric.of(run); value && run.time) {
      values[localDay(*run.time)].push_back(*value);
    }
  }
  std::vector<std::optional<double>> worst((days.count + size - 1) / size);
  for (auto& [day, ofDay] : values) {
    std::optional<double>& place = worst.at(static_cast<std::size_t>(day - first) / size);
    const double middle = *median(std::move(ofDay));
    place = !place || metric.isWorse(middle, *place) ? middle : *place;
  }
  return worst;
}

UsualThen usualThen(std::span<const Run> runs, const Metric& metric, EpochSeconds moment) {
  std::vector<double> ofAnyHour;
  std::vector<double> ofThatHour;
  const unsigned hour = localHour(moment);
  for (const Run& run : runs) {
    const auto value = metric.of(run);
    if (!value || !run.time || *run.time >= moment || *run.time < moment - kUsualPeriod) {
      continue;
    }
    ofAnyHour.push_back(*value);
    if (localHour(*run.time) == hour) {
      ofThatHour.push_back(*value);
    }
  }
  const bool enough = ofThatHour.size() >= kFewest;
  std::vector<double>& values = enough ? ofThatHour : ofAnyHour;
  const std::size_t count = values.size();
  return {count < kFewest ? std::nullopt : median(std::move(values)), count, enough};
}

}  // namespace watch

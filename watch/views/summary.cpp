#include "views/summary.h"

#include "figures/metric.h"
#include "figures/period.h"
#include "figures/usual.h"
#include "views/words.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <vector>

namespace watch {

namespace {

using Values = std::vector<std::optional<double>>;

constexpr std::size_t kMostDays = 62;

/// The values in groups of so many that at most kMostDays are left: the worst of each group.
Values worstOfGroups(const Values& days, std::size_t size, const Metric& metric) {
  Values groups;
  for (std::size_t i = 0; i < days.size(); i += size) {
    std::optional<double> worst;
    for (std::size_t j = i; j < std::min(i + size, days.size()); ++j) {
      if (days[j] && (!worst || (metric.moreIsBetter ? *days[j] < *worst : *days[j] > *worst))) {
        worst = days[j];
      }
    }
    groups.push_back(worst);
  }
  return groups;
}

double mostOf(const Values& values) {
  double most = 0;
  for (const std::optional<double>& value : values) {
    most = std::max(most, value.value_or(0));
  }
  return most;
}

std::string figure(const Metric& metric, const std::optional<double>& value) {
  return metric.moreIsBetter ? megabits(value) : milliseconds(value);
}

class Summary {
 public:
  Summary(std::span<const Run> runs, const Style& style) : runs_(runs), style_(style) {
    for (const Run& run : runs) {
      if (run.time) {
        first_ = first_ == 0 ? *run.time : std::min(first_, *run.time);
        last_ = std::max(last_, *run.time);
      }
    }
    for (const Gap& gap : gaps(runs)) {
      missing_ += gap.missing;
    }
  }

  std::string text() {
    text_ = paint(style_, Tone::strong, days(first_, last_)) + "   " +
            counted(runs_.size(), "run", "runs") + fmt::format(", {} missing\n\n", missing_);
    addUsual();
    addHours();
    addClasses();
    addOutages();
    return std::move(text_);
  }

 private:
  void addUsual() {
    const std::size_t count = byDay(runs_, kRead, first_, last_).size();
    const std::size_t size = (count + kMostDays - 1) / kMostDays;
    const std::string how = size == 1 ? fmt::format("by day, {}", counted(count, "day", "days"))
                                      : fmt::format("the worst of {} days each", size);
    text_ += paint(style_, Tone::dim, "           usual  1 in 20           " + how) + "\n";
    for (const Metric* const metric : {&kRead, &kWrite, &kLatency, &kLoss}) {
      const Usual values = usual(runs_, *metric);
      const Values groups = worstOfGroups(byDay(runs_, *metric, first_, last_), size, *metric);
      text_ += paint(style_, Tone::strong, left(metric->name, 8)) +
               right(figure(*metric, values.middle), 8) +
               right(figure(*metric, values.oneInTwenty), 9) + "  " + left(metric->unit, 6) + "  " +
               paint(style_, Tone::accent, sparkline(style_, groups, scale(*metric, groups))) +
               "\n";
    }
  }

  /// The highest bar. A loss of a few percent is no high bar.
  static double scale(const Metric& metric, const Values& values) {
    constexpr double kLeastLoss = 20;
    return &metric == &kLoss ? std::max(mostOf(values), kLeastLoss) : mostOf(values);
  }

  void addHours() {
    text_ += "\n" +
             paint(style_, Tone::dim, left("by hour of the day", 35) + "0     6     12    18") +
             "\n";
    for (const Metric* const metric : {&kRead, &kLatency}) {
      const auto hours = byHour(runs_, *metric);
      const Values values(hours.begin(), hours.end());
      text_ += paint(style_, Tone::strong, left(metric->name, 35)) +
               paint(style_, Tone::accent, sparkline(style_, values, mostOf(values))) + "\n";
    }
  }

  void addClasses() {
    std::array<std::size_t, 3> counts{};
    for (const Run& run : runs_) {
      ++counts.at(static_cast<std::size_t>(run.runClass));
    }
    text_ += fmt::format("\nok {}   partial {}   failed {}   missing {}\n", counts[0], counts[1],
                         counts[2], missing_);
  }

  void addOutages() {
    const std::vector<Outage> found = outages(runs_);
    if (found.empty()) {
      text_ += "No outage: in no run that was made, nothing came through.\n";
      return;
    }
    EpochSeconds all = 0;
    const Outage* longest = &found.front();
    for (const Outage& outage : found) {
      all += outage.end - outage.begin;
      longest = outage.end - outage.begin > longest->end - longest->begin ? &outage : longest;
    }
    text_ += fmt::format("No connection: about {} in {}, the longest about {} on {}\n", span(all),
                         counted(found.size(), "outage", "outages"),
                         span(longest->end - longest->begin), dayAndMonth(longest->begin));
  }

  std::span<const Run> runs_;
  const Style& style_;
  EpochSeconds first_ = 0;
  EpochSeconds last_ = 0;
  std::size_t missing_ = 0;
  std::string text_;
};

}  // namespace

std::string summaryView(std::span<const Run> runs, const Style& style) {
  return Summary(runs, style).text();
}

}  // namespace watch

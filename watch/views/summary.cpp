#include "views/summary.h"

#include "figures/counts.h"
#include "figures/metric.h"
#include "figures/period.h"
#include "figures/usual.h"
#include "views/words.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <vector>

namespace watch {

namespace {

using Values = std::vector<std::optional<double>>;

constexpr const Metric* kMetrics[] = {&kRead, &kWrite, &kLatency, &kLoss};

/// Where the bars begin, and how many there may be at most.
constexpr std::size_t kNames = 8;
constexpr std::size_t kFigures = 35;
constexpr std::size_t kMostBars = 62;
/// On a narrower terminal, bars stand below the figures.
constexpr std::size_t kWide = 70;

double mostOf(const Values& values) {
  double most = 0;
  for (const std::optional<double>& value : values) {
    most = std::max(most, value.value_or(0));
  }
  return most;
}

/// The highest bar. A loss of a few percent is no high bar.
double scale(const Metric& metric, const Values& values) {
  constexpr double kLeastLoss = 20;
  return &metric == &kLoss ? std::max(mostOf(values), kLeastLoss) : mostOf(values);
}

std::string figure(const Metric& metric, const std::optional<double>& value) {
  return metric.moreIsBetter ? megabits(value) : milliseconds(value);
}

class Summary {
 public:
  Summary(std::span<const Run> runs, const Style& style)
      : runs_(runs),
        style_(style),
        isWide_(style.width >= kWide),
        counts_(countRuns(runs)),
        days_(daysOf(runs)),
        daysOfABar_(days_ ? (days_->count + mostBars() - 1) / mostBars() : 1) {
    for (const Gap& gap : gaps(runs)) {
      missing_ += gap.missing;
    }
  }

  std::string text() {
    addHeading();
    addUsual();
    if (!isWide_ && days_) {
      addDays();
    }
    if (days_) {
      addHours();
    }
    addClasses();
    addDoubts();
    addOutages();
    return std::move(text_);
  }

 private:
  void add(Tone tone, const std::string& line) {
    text_ += paint(style_, tone, trimmed(line)) + "\n";
  }

  std::size_t mostBars() const {
    const std::size_t before = isWide_ ? kFigures : kNames;
    return std::clamp<std::size_t>(style_.width - std::min(style_.width, before), 10, kMostBars);
  }

  void addHeading() {
    const std::string period =
        days_ ? dates(days_->first, days_->last) : "Runs of which no time is known";
    const std::string counts =
        counted(counts_.all(), "run", "runs") + fmt::format(", {} missing", missing_);
    const bool hasRoom = period.size() + 3 + counts.size() <= style_.width;
    text_ += paint(style_, Tone::strong, period) + (hasRoom ? "   " : "\n") + counts + "\n\n";
  }

  std::string name(const Metric& metric) const {
    return paint(style_, Tone::strong, metric.name) +
           std::string(kNames - std::strlen(metric.name), ' ');
  }

  std::string dayBars(const Metric& metric) const {
    const Values values = byDay(runs_, metric, *days_, daysOfABar_);
    return paint(style_, Tone::accent, sparkline(style_, values, scale(metric, values)));
  }

  std::string daysTitle() const {
    const std::string count = counted(days_->count, "day", "days");
    return daysOfABar_ == 1 ? "by day, " + count
                            : fmt::format("{}, the worst of each {}", count, daysOfABar_);
  }

  void addUsual() {
    const bool hasBars = isWide_ && days_.has_value();
    add(Tone::dim, left(right("usual  1 in 20", 25), kFigures) + (hasBars ? daysTitle() : ""));
    for (const Metric* const metric : kMetrics) {
      const Usual values = usual(runs_, *metric);
      text_ += trimmed(name(*metric) + right(figure(*metric, values.middle), 8) +
                       right(figure(*metric, values.oneInTwenty), 9) + "  " +
                       left(metric->unit, 8) + (hasBars ? dayBars(*metric) : "")) +
               "\n";
    }
  }

  void addDays() {
    text_ += "\n";
    add(Tone::dim, daysTitle());
    for (const Metric* const metric : kMetrics) {
      text_ += name(*metric) + dayBars(*metric) + "\n";
    }
  }

  void addHours() {
    const std::size_t column = isWide_ ? kFigures : kNames;
    text_ += "\n";
    if (!isWide_) {
      add(Tone::dim, "by hour of the day");
    }
    add(Tone::dim, left(isWide_ ? "by hour of the day" : "", column) + "0     6     12    18");
    for (const Metric* const metric : {&kRead, &kLatency}) {
      const auto hours = byHour(runs_, *metric);
      const Values values(hours.begin(), hours.end());
      text_ += name(*metric) + std::string(column - kNames, ' ') +
               paint(style_, Tone::accent, sparkline(style_, values, mostOf(values))) + "\n";
    }
  }

  void addClasses() {
    const char* const between = isWide_ ? "   " : "\n";
    text_ += fmt::format("\nok {}{}partial {}{}failed {}{}missing {}\n", counts_.ok, between,
                         counts_.partial, between, counts_.failed, between, missing_);
  }

  void addDoubts() {
    if (counts_.unsure > 0) {
      addText(
          fmt::format("{} unsure: list marks them with a ?, and show says why", counts_.unsure));
    }
    if (counts_.orphans > 0) {
      addText(counted(counts_.orphans, "ping of no known run", "pings of no known run"));
    }
  }

  void addOutages() {
    const std::vector<Outage> found = outages(runs_);
    if (found.empty()) {
      const bool isCertain = counts_.all() > 0 && counts_.failed == 0;
      addText(isCertain ? "No outage" : "No outage can be told");
      return;
    }
    EpochSeconds all = 0;
    const Outage* longest = &found.front();
    for (const Outage& outage : found) {
      all += outage.end - outage.begin;
      longest = outage.end - outage.begin > longest->end - longest->begin ? &outage : longest;
    }
    addText(fmt::format("No connection: about {} in {}, the longest about {} on {}", span(all),
                        counted(found.size(), "outage", "outages"),
                        span(longest->end - longest->begin),
                        dayAndMonth(longest->begin, lastTime(runs_).value_or(longest->begin))));
  }

  void addText(const std::string& line) { text_ += folded(line, style_.width, 0) + "\n"; }

  std::span<const Run> runs_;
  const Style& style_;
  bool isWide_;
  Counts counts_;
  std::optional<Days> days_;
  std::size_t daysOfABar_;
  std::size_t missing_ = 0;
  std::string text_;
};

}  // namespace

std::string summaryView(std::span<const Run> runs, const Style& style) {
  return Summary(runs, style).text();
}

}  // namespace watch

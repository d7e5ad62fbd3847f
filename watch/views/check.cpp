#include "views/check.h"

#include "figures/metric.h"
#include "figures/usual.h"
#include "views/words.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

namespace watch {

namespace {

/// A limit of a figure that was asked for.
struct Limit {
  const Metric* metric;
  double value;

  bool isBroken(double figure) const {
    return metric->moreIsBetter ? figure < value : figure > value;
  }
};

std::vector<Limit> limitsOf(const Limits& limits) {
  std::vector<Limit> asked;
  const auto add = [&](const Metric& metric, const std::optional<double>& value) {
    if (value) {
      asked.push_back({&metric, *value});
    }
  };
  add(kRead, limits.read);
  add(kWrite, limits.write);
  add(kLatency, limits.latency);
  return asked;
}

std::string figureText(const Metric& metric, double value) {
  return fmt::format("{} {} {}", metric.name,
                     metric.moreIsBetter ? megabits(value) : milliseconds(value), metric.unit);
}

std::string limitText(const Limit& limit) {
  return fmt::format("{} {} {:g} {}", limit.metric->name,
                     limit.metric->moreIsBetter ? "below" : "above", limit.value,
                     limit.metric->unit);
}

/// Returns what is bad about the run, or nothing.
std::string badness(const Run& run, const std::vector<Limit>& limits) {
  std::vector<std::string> bad;
  for (const Limit& limit : limits) {
    const auto value = limit.metric->of(run);
    if (!value) {
      bad.push_back(std::string(limit.metric->name) + " not measured");
    } else if (limit.isBroken(*value)) {
      bad.push_back(figureText(*limit.metric, *value));
    }
  }
  if (limits.empty() && run.runClass == Class::failed) {
    bad.emplace_back("nothing measured");
  }
  if (bad.empty()) {
    return "";
  }
  const std::string why = reason(run);
  return fmt::format("{}{}", fmt::join(bad, ", "), why.empty() ? "" : " (" + why + ")");
}

/// "at 07:02", or "on 13 November at 07:02" when that is long ago.
std::string whenText(const Run& run, EpochSeconds now) {
  if (!run.time) {
    return "at a time that is not known";
  }
  const bool isRecent = *run.time > now - kDaySeconds && *run.time <= now;
  return isRecent ? "at " + clockTime(*run.time)
                  : "on " + dayAndMonth(*run.time) + " at " + clockTime(*run.time);
}

class Check {
 public:
  Check(std::span<const Run> runs, const Limits& limits, EpochSeconds now, const Style& style)
      : runs_(runs), limits_(limits), asked_(limitsOf(limits)), now_(now), style_(style) {}

  Checked run() {
    if (runs_.empty()) {
      return {Verdict::unknown, heading(Verdict::unknown) + "there are no runs\n"};
    }
    if (const std::string old = tooOld(); !old.empty()) {
      return {Verdict::unknown, heading(Verdict::unknown) + old + "\n"};
    }
    if (const std::string bad = tooManyBad(); !bad.empty()) {
      return {Verdict::critical, heading(Verdict::critical) + bad};
    }
    if (const std::string low = belowUsual(); !low.empty()) {
      return {Verdict::warning, heading(Verdict::warning) + low + data() + "\n"};
    }
    if (limits_.below && !knowsUsual()) {
      return {Verdict::unknown, heading(Verdict::unknown) + "too few runs to know what is usual\n"};
    }
    if (asked_.empty() && !limits_.below && last().runClass == Class::partial) {
      return {Verdict::warning,
              heading(Verdict::warning) + reason(last()) + " " + when() + data() + "\n"};
    }
    return {Verdict::ok, heading(Verdict::ok) + figures() + " " + when() + data() + "\n"};
  }

 private:
  const Run& last() const { return runs_.back(); }

  std::string when() const {
    return whenText(last(), now_) + (last().time ? " (" + ago(*last().time, now_) + ")" : "");
  }

  std::string heading(Verdict verdict) const {
    constexpr const char* kNames[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    constexpr Tone kTones[] = {Tone::good, Tone::warning, Tone::bad, Tone::accent};
    const auto place = static_cast<std::size_t>(verdict);
    return paint(style_, kTones[place], kNames[place]) + ": ";
  }

  std::string tooOld() const {
    const auto latest = std::ranges::find_if(runs_.rbegin(), runs_.rend(),
                                             [](const Run& run) { return run.time.has_value(); });
    if (!limits_.maxAge) {
      return "";
    }
    if (latest == runs_.rend()) {
      return "the time of the last run is not known";
    }
    const EpochSeconds age = now_ - *latest->time;
    return age > *limits_.maxAge ? "the last run is " + span(age) + " old" : "";
  }

  /// Returns what stands behind the heading when too many of the last runs are bad.
  std::string tooManyBad() const {
    const std::span<const Run> latest = runs_.last(std::min(limits_.of, runs_.size()));
    std::string list;
    std::size_t count = 0;
    for (const Run& run : latest) {
      if (const std::string bad = badness(run, asked_); !bad.empty()) {
        ++count;
        list += fmt::format("  {}  {}\n", run.time ? clockTime(*run.time) : "     ", bad);
      }
    }
    if (count < limits_.bad) {
      return "";
    }
    if (limits_.of == 1) {
      return badness(last(), asked_) + " " + when() + data() + "\n";
    }
    return fmt::format("{} of the last {} runs bad ({}){}\n", count, latest.size(), badMeans(),
                       data()) +
           list + lastGood();
  }

  std::string badMeans() const {
    std::vector<std::string> means;
    for (const Limit& limit : asked_) {
      means.push_back(limitText(limit));
    }
    return asked_.empty() ? "nothing measured"
                          : fmt::format("{}, or not measured", fmt::join(means, ", "));
  }

  std::string lastGood() const {
    const auto good = std::ranges::find_if(runs_.rbegin(), runs_.rend(), [&](const Run& run) {
      return run.time && badness(run, asked_).empty();
    });
    return good == runs_.rend() ? "  no good run before\n"
                                : fmt::format("  last good run: {}, {}\n", whenText(*good, now_),
                                              ago(*good->time, now_));
  }

  std::string belowUsual() const {
    if (!limits_.below || !last().time) {
      return "";
    }
    for (const Metric* const metric : {&kRead, &kWrite}) {
      const UsualThen then = usualThen(runs_, *metric, *last().time);
      const auto value = metric->of(last());
      constexpr double kPercent = 100;
      if (then.middle && value && *value * kPercent < *then.middle * *limits_.below) {
        return fmt::format("{} {}, {:.0f} % of what is usual{} ({})", figureText(*metric, *value),
                           whenText(last(), now_), kPercent * *value / *then.middle,
                           then.isOfThatHour ? " at that hour" : "", megabits(then.middle));
      }
    }
    return "";
  }

  bool knowsUsual() const {
    return last().time && (usualThen(runs_, kRead, *last().time).middle ||
                           usualThen(runs_, kWrite, *last().time).middle);
  }

  std::string figures() const {
    std::vector<std::string> texts;
    for (const Metric* const metric : {&kRead, &kWrite, &kLatency}) {
      if (const auto value = metric->of(last())) {
        texts.push_back(figureText(*metric, *value));
      }
    }
    return fmt::format("{}", fmt::join(texts, ", "));
  }

  /// 'label'=value[unit];warning;critical: a range that ends in ":" has no upper bound.
  std::string data() const {
    if (style_.isTerminal) {
      return "";
    }
    std::vector<std::string> parts;
    for (const Metric* const metric : {&kRead, &kWrite, &kLatency}) {
      const auto limit = std::ranges::find(asked_, metric, &Limit::metric);
      const std::string critical =
          limit == asked_.end()
              ? ""
              : fmt::format("{:g}{}", limit->value, metric->moreIsBetter ? ":" : "");
      if (const auto value = metric->of(last())) {
        parts.push_back(fmt::format("{}={:.3f}{};;{}", metric->name, *value,
                                    metric->moreIsBetter ? "" : metric->unit, critical));
      }
    }
    return parts.empty() ? "" : fmt::format("|{}", fmt::join(parts, " "));
  }

  std::span<const Run> runs_;
  const Limits& limits_;
  std::vector<Limit> asked_;
  EpochSeconds now_;
  const Style& style_;
};

}  // namespace

Checked checkRuns(std::span<const Run> runs, const Limits& limits, EpochSeconds now,
                  const Style& style) {
  return Check(runs, limits, now, style).run();
}

}  // namespace watch

#include "views/check.h"

#include "figures/metric.h"
#include "figures/period.h"
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

  bool isBroken(double figure) const { return metric->isWorse(figure, value); }
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

/// "200", "0.5": never with an exponent, which the plugins' rules do not have.
std::string number(double value) {
  std::string text = fmt::format("{:.3f}", value);
  text.erase(text.find_last_not_of('0') + 1);
  return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

std::string figureText(const Metric& metric, double value) {
  return fmt::format("{} {} {}", metric.name,
                     metric.moreIsBetter ? megabits(value) : milliseconds(value), metric.unit);
}

std::string limitText(const Limit& limit) {
  return fmt::format("{} {} {} {}", limit.metric->name,
                     limit.metric->moreIsBetter ? "below" : "above", number(limit.value),
                     limit.metric->unit);
}

/// Why the run is not ok, in parentheses. A "|" would begin the performance data.
std::string why(const Run& run) {
  std::string text = reason(run);
  if (!run.unsure.empty()) {
    text += (text.empty() ? "" : "; ") + run.unsure;
  }
  std::ranges::replace(text, '|', '/');
  return text.empty() ? "" : " (" + text + ")";
}

/// Whether the files leave open what the run has measured of the metric.
bool isDoubtful(const Run& run, const Metric& metric) {
  if (&metric == &kLatency) {
    return run.pingUnsure || run.ping.state == PingState::unknown;
  }
  return run.ratesUnsure || (&metric == &kRead ? run.read : run.write).state == RateState::unknown;
}

/// Whether it is a doubt about its ping alone that keeps the run from being ok.
bool isPartialByDoubt(const Run& run) {
  const auto isGood = [](const Rate& rate) {
    return rate.state == RateState::full || rate.state == RateState::off;
  };
  return run.finished && run.pingUnsure && isGood(run.write) && isGood(run.read);
}

/// What is bad about a run, and what of it cannot be told. Empty where there is nothing.
struct Judgement {
  std::string bad;
  std::string doubt;
};

Judgement judge(const Run& run, const std::vector<Limit>& limits) {
  std::vector<std::string> bad;
  std::vector<std::string> doubts;
  for (const Limit& limit : limits) {
    const auto value = limit.metric->of(run);
    if (isDoubtful(run, *limit.metric)) {
      doubts.push_back(std::string(limit.metric->name) + " cannot be told");
    } else if (!value) {
      bad.push_back(std::string(limit.metric->name) + " not measured");
    } else if (limit.isBroken(*value)) {
      bad.push_back(figureText(*limit.metric, *value));
    }
  }
  if (limits.empty() && run.runClass == Class::failed) {
    bad.emplace_back("nothing measured");
  }
  const auto text = [&](const std::vector<std::string>& parts) {
    return parts.empty() ? "" : fmt::format("{}{}", fmt::join(parts, ", "), why(run));
  };
  return {text(bad), text(doubts)};
}

bool isRecent(EpochSeconds moment, EpochSeconds now) {
  return moment > now - kDaySeconds && moment <= now;
}

/// "07:02", or "13 November 07:02" when that is long ago.
std::string momentText(EpochSeconds moment, EpochSeconds now) {
  return (isRecent(moment, now) ? "" : dayAndMonth(moment, now) + " ") + clockTime(moment);
}

class Check {
 public:
  Check(std::vector<const Run*> runs, std::span<const Run> known, const Limits& limits,
        EpochSeconds now, const Style& style)
      : runs_(std::move(runs)),
        known_(known),
        limits_(limits),
        asked_(limitsOf(limits)),
        now_(now),
        style_(style) {}

  Checked run() {
    if (runs_.empty()) {
      return verdict(Verdict::unknown, "there are no runs\n");
    }
    if (const std::string old = tooOld(); !old.empty()) {
      return verdict(Verdict::unknown, old + "\n");
    }
    judgeLastRuns();
    if (const std::size_t bad = lines_.bad; bad >= limits_.bad) {
      return verdict(Verdict::critical, limits_.of == 1 ? judged(lines_.last.bad) : badRuns());
    }
    judgeByUsual();
    if (!low_.bad.empty()) {
      return verdict(Verdict::warning, judged(low_.bad));
    }
    if (lines_.bad + lines_.doubtful >= limits_.bad) {
      return verdict(Verdict::unknown,
                     limits_.of == 1 ? judged(lines_.last.doubt) : doubtfulRuns());
    }
    if (!low_.doubt.empty()) {
      return verdict(Verdict::unknown, low_.doubt + "\n");
    }
    return asked_.empty() && !limits_.below ? withoutLimits() : ok();
  }

 private:
  const Run& last() const { return *runs_.back(); }

  Checked verdict(Verdict verdict, const std::string& text) const {
    constexpr const char* kNames[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
    constexpr Tone kTones[] = {Tone::good, Tone::warning, Tone::bad, Tone::accent};
    const auto place = static_cast<std::size_t>(verdict);
    return {verdict, paint(style_, kTones[place], kNames[place]) + ": " + text};
  }

  Checked ok() const { return verdict(Verdict::ok, judged(figures())); }

  Checked withoutLimits() const {
    if (last().runClass != Class::partial) {
      return ok();
    }
    const std::string what = figures() + (figures().empty() ? "partial" : "") + why(last());
    return isPartialByDoubt(last())
               ? verdict(Verdict::unknown, judged(what) + "  Name what counts:  --read, --write\n")
               : verdict(Verdict::warning, judged(what));
  }

  /// "at 07:02 (3 h ago)"
  std::string when() const {
    return last().time ? fmt::format("{} {} ({})", isRecent(*last().time, now_) ? "at" : "on",
                                     momentText(*last().time, now_), ago(*last().time, now_))
                       : "at a time that is not known";
  }

  /// The line of a verdict on the last run.
  std::string judged(const std::string& what) const { return what + " " + when() + data() + "\n"; }

  std::string tooOld() const {
    if (!limits_.maxAge) {
      return "";
    }
    const auto latest = std::ranges::find_if(runs_.rbegin(), runs_.rend(),
                                             [](const Run* run) { return run->time.has_value(); });
    if (latest == runs_.rend()) {
      return "the time of the last run is not known";
    }
    const EpochSeconds age = now_ - *(*latest)->time;
    constexpr EpochSeconds kSlack = 60;
    if (age < -kSlack) {
      return "the last run is " + span(-age) + " ahead of the clock";
    }
    const EpochSeconds rhythm = rhythmOf(known_).seconds;
    return age <= *limits_.maxAge
               ? ""
               : fmt::format("the last run is {} old{}", span(age),
                             rhythm == 0 ? ""
                                         : fmt::format("; runs came every {} until {}",
                                                       span(rhythm), momentText(now_ - age, now_)));
  }

  /// How many of the last runs are bad, and how many doubtful, with a line for each.
  struct Lines {
    std::size_t bad = 0;
    std::size_t doubtful = 0;
    std::string text;
    Judgement last;
  };

  void judgeLastRuns() {
    const std::size_t count = std::min(limits_.of, runs_.size());
    for (const Run* const run : std::span(runs_).last(count)) {
      lines_.last = judge(*run, asked_);
      const bool isBad = !lines_.last.bad.empty();
      const std::string& what = isBad ? lines_.last.bad : lines_.last.doubt;
      if (!what.empty()) {
        ++(isBad ? lines_.bad : lines_.doubtful);
        lines_.text +=
            fmt::format("  {}  {}\n", run->time ? momentText(*run->time, now_) : "  -  ", what);
      }
    }
  }

  std::string badRuns() const {
    std::vector<std::string> means;
    for (const Limit& limit : asked_) {
      means.push_back(limitText(limit));
    }
    means.emplace_back(asked_.empty() ? "nothing measured" : "or not measured");
    return fmt::format("{} of the last {} runs bad ({}){}\n", lines_.bad,
                       std::min(limits_.of, runs_.size()), fmt::join(means, ", "), data()) +
           lines_.text + lastGood();
  }

  std::string doubtfulRuns() const {
    return fmt::format("{} of the last {} runs bad, and {} cannot be told{}\n", lines_.bad,
                       std::min(limits_.of, runs_.size()), lines_.doubtful, data()) +
           lines_.text;
  }

  std::string lastGood() const {
    const auto good = std::ranges::find_if(runs_.rbegin(), runs_.rend(), [&](const Run* run) {
      const Judgement judgement = judge(*run, asked_);
      return run->time && judgement.bad.empty() && judgement.doubt.empty();
    });
    return good == runs_.rend()
               ? "  no good run before\n"
               : fmt::format("  last good run: {}, {}\n", momentText(*(*good)->time, now_),
                             ago(*(*good)->time, now_));
  }

  /// What was usual for a rate at the time of the last run.
  UsualThen usualOf(const Metric& metric) const {
    return last().time ? usualThen(known_, metric, *last().time) : UsualThen{};
  }

  /// Compares the rates with what is usual, where that was asked for.
  void judgeByUsual() {
    if (!limits_.below) {
      return;
    }
    bool isKnown = false;
    for (const Metric* const metric : {&kRead, &kWrite}) {
      const UsualThen then = usualOf(*metric);
      const auto value = metric->of(last());
      isKnown = isKnown || then.middle;
      if (then.middle && low_.bad.empty()) {
        judgeByUsual(*metric, value, then);
      } else if (value && !then.middle) {
        low_.doubt = fmt::format("too few runs to know what {} is usual", metric->name);
      }
    }
    if (!isKnown) {
      low_.doubt = "too few runs to know what is usual";
    }
  }

  void judgeByUsual(const Metric& metric, const std::optional<double>& value,
                    const UsualThen& then) {
    constexpr double kPercent = 100;
    const double share = value ? kPercent * *value / *then.middle : 0;
    if (isDoubtful(last(), metric)) {
      low_.doubt = std::string(metric.name) + " cannot be told" + why(last());
    } else if (!value) {
      low_.bad = std::string(metric.name) + " not measured" + why(last());
    } else if (share < *limits_.below) {
      low_.bad =
          fmt::format("{}, {:.0f} % of what is usual{} ({}),", figureText(metric, *value), share,
                      then.isOfThatHour ? " at that hour" : "", megabits(then.middle));
    }
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

  /// 'label'=value[unit];warning;critical: a range that ends in ":" has no upper bound, and a
  /// value that is not known is "U".
  std::string data() const {
    if (style_.isTerminal) {
      return "";
    }
    std::string data;
    for (const Metric* const metric : {&kRead, &kWrite, &kLatency}) {
      const auto value = metric->of(last());
      std::string part = fmt::format(
          "{}={};{};{}", metric->name,
          value ? fmt::format("{:.3f}", *value) + (metric->moreIsBetter ? "" : metric->unit) : "U",
          warningRange(*metric), criticalRange(*metric));
      part.erase(part.find_last_not_of(';') + 1);
      data += (data.empty() ? "|" : " ") + part;
    }
    return data;
  }

  std::string warningRange(const Metric& metric) const {
    constexpr double kPercent = 100;
    const auto usual = limits_.below && metric.moreIsBetter ? usualOf(metric).middle : std::nullopt;
    return usual ? number(*usual * *limits_.below / kPercent) + ":" : "";
  }

  std::string criticalRange(const Metric& metric) const {
    const auto limit = std::ranges::find(asked_, &metric, &Limit::metric);
    return limit == asked_.end() ? "" : number(limit->value) + (metric.moreIsBetter ? ":" : "");
  }

  std::vector<const Run*> runs_;
  std::span<const Run> known_;
  const Limits& limits_;
  std::vector<Limit> asked_;
  EpochSeconds now_;
  const Style& style_;
  Lines lines_;
  Judgement low_;
};

}  // namespace

Checked checkRuns(std::span<const Run> runs, std::span<const Run> known, const Limits& limits,
                  EpochSeconds now, const Style& style) {
  std::vector<const Run*> named;
  for (const Run& run : runs) {
    if (!run.orphan) {
      named.push_back(&run);
    }
  }
  return Check(std::move(named), known, limits, now, style).run();
}

}  // namespace watch

#include "views/list.h"

#include "figures/metric.h"
#include "figures/period.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace watch {

namespace {

constexpr std::size_t kMostBars = 60;
constexpr EpochSeconds kHour = 3600;

/// A rate of the line, or the kept rate of a test that was cut, with a mark.
std::string rateText(const Rate& rate) {
  constexpr double kMega = 1e6;
  if (rate.isMeasured()) {
    return megabits(rate.bps / kMega);
  }
  return rate.state == RateState::cut && rate.bps > 0 ? megabits(rate.bps / kMega) + "*" : "-";
}

/// The latency, also where the tester has recorded none and the replies tell it.
std::string latencyText(const Ping& ping) {
  return milliseconds(std::isnan(ping.avg) ? std::nullopt : std::optional(ping.avg));
}

const char* label(const Run& run) {
  return run.orphan ? "a ping" : run.finished ? name(run.runClass) : "unfinished";
}

Tone tone(const Run& run) {
  switch (run.runClass) {
    case Class::ok:
      return Tone::good;
    case Class::partial:
      return Tone::warning;
    case Class::failed:
      break;
  }
  return Tone::bad;
}

struct Counts {
  std::size_t ok = 0;
  std::size_t partial = 0;
  std::size_t failed = 0;
};

Counts countClasses(std::span<const Run> runs) {
  Counts counts;
  for (const Run& run : runs) {
    ++(run.runClass == Class::ok        ? counts.ok
       : run.runClass == Class::partial ? counts.partial
                                        : counts.failed);
  }
  return counts;
}

class TerminalList {
 public:
  TerminalList(std::span<const Run> runs, EpochSeconds now, const Style& style)
      : runs_(runs),
        now_(now),
        style_(style),
        places_(placesInTime(runs)),
        gaps_(gaps(runs)),
        isHourly_(std::llabs(rhythmOf(runs).seconds - kHour) < kHour / 4) {}

  std::string text() {
    text_ +=
        paint(style_, Tone::dim, "                      latency  loss     write      read") + "\n";
    auto gap = gaps_.begin();
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      for (; gap != gaps_.end() && gap->before == i; ++gap) {
        addDay(gap->begin);
        addGap(*gap);
      }
      if (places_[i]) {
        addDay(*places_[i]);
      }
      addRun(i);
    }
    addReadBars();
    addCounts();
    return std::move(text_);
  }

 private:
  void addDay(EpochSeconds moment) {
    const std::string day = weekdayAndDay(moment);
    if (day == day_) {
      return;
    }
    text_ += paint(style_, Tone::strong, left(day, 22));
    if (day_.empty()) {
      text_ += paint(style_, Tone::dim, "     ms     %    Mbit/s    Mbit/s");
    }
    while (text_.ends_with(' ')) {
      text_.pop_back();
    }
    text_ += '\n';
    day_ = day;
  }

  void addGap(const Gap& gap) {
    const std::string what = isHourly_
                                 ? counted(gap.missing, "hour without a run", "hours without a run")
                                 : counted(gap.missing, "run is missing", "runs are missing");
    text_ += paint(style_, Tone::dim, fmt::format("  {}   {}", clockTime(gap.begin), what)) + "\n";
  }

  void addRun(std::size_t i) {
    const Run& run = runs_[i];
    const std::string loss = percent(kLoss.of(run));
    text_ += fmt::format("  {} {} {}", places_[i] ? clockTime(*places_[i]) : "     ",
                         run.time ? ' ' : '~', paint(style_, tone(run), left(label(run), 10)));
    text_ += right(latencyText(run.ping), 10) + right(loss, 6);
    text_ += rateColumn(run.write) + rateColumn(run.read);
    std::string why = reason(run);
    if (!run.unsure.empty()) {
      why += why.empty() ? "unsure" : " (unsure)";
    }
    if (!why.empty()) {
      text_ += "  " + paint(style_, Tone::dim, shortened(why));
    }
    while (text_.ends_with(' ')) {
      text_.pop_back();
    }
    text_ += '\n';
  }

  std::string rateColumn(const Rate& rate) const {
    // The mark of a rate that was cut stands behind its column.
    const std::string text = rateText(rate);
    const bool isMarked = text.ends_with('*');
    return paint(style_, isMarked ? Tone::warning : Tone::plain,
                 isMarked ? right(text, 11) : right(text, 10) + " ");
  }

  std::string shortened(const std::string& why) const {
    constexpr std::size_t kBefore = 60;
    constexpr std::size_t kLeast = 20;
    const std::size_t room = std::max(style_.width, kBefore + kLeast) - kBefore;
    return why.size() <= room ? why : why.substr(0, room - 3) + "...";
  }

  void addReadBars() {
    if (runs_.size() > kMostBars || runs_.empty()) {
      return;
    }
    double most = 0;
    for (const Run& run : runs_) {
      most = std::max(most, kRead.of(run).value_or(0));
    }
    if (most == 0) {
      return;
    }
    text_ += "\n" + paint(style_, Tone::strong, "read") + "  ";
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      const auto value = kRead.of(runs_[i]);
      const bool failed = runs_[i].runClass == Class::failed;
      text_ += value ? paint(style_, Tone::accent, bar(style_, *value, most))
                     : paint(style_, failed ? Tone::bad : Tone::dim,
                             failed           ? "x"
                             : style_.hasBars ? "·"
                                              : ".");
    }
    text_ += fmt::format("  0 to {} Mbit/s", megabits(most));
  }

  void addCounts() {
    std::size_t missing = 0;
    for (const Gap& gap : gaps_) {
      missing += gap.missing;
    }
    const auto lastTime = std::ranges::find_if(runs_.rbegin(), runs_.rend(),
                                               [](const Run& run) { return run.time.has_value(); });
    const Counts counts = countClasses(runs_);
    text_ += "\n" + counted(runs_.size(), "run", "runs");
    if (lastTime != runs_.rend()) {
      text_ += ", the last " + ago(*lastTime->time, now_);
    }
    text_ +=
        fmt::format(": {} ok, {} partial, {} failed", counts.ok, counts.partial, counts.failed);
    text_ += missing > 0 ? fmt::format("; {} missing\n", missing) : "\n";
    addLegend();
  }

  void addLegend() {
    const bool placed =
        std::ranges::any_of(runs_, [](const Run& run) { return !run.time.has_value(); });
    const bool cut = std::ranges::any_of(runs_, [](const Run& run) {
      return run.write.state == RateState::cut || run.read.state == RateState::cut;
    });
    if (placed) {
      text_ += paint(style_, Tone::dim, "~ the time by the rhythm of the runs only") + "\n";
    }
    if (cut) {
      text_ += paint(style_, Tone::dim, "* cut short: no rate of the line") + "\n";
    }
  }

  std::span<const Run> runs_;
  EpochSeconds now_;
  const Style& style_;
  std::vector<std::optional<EpochSeconds>> places_;
  std::vector<Gap> gaps_;
  bool isHourly_;
  std::string day_;
  std::string text_;
};

std::string pipeList(std::span<const Run> runs) {
  std::string text =
      "time                       class   latency_ms loss_% write_Mbit/s  read_Mbit/s\n";
  const std::vector<std::optional<EpochSeconds>> places = placesInTime(runs);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const Run& run = runs[i];
    text += fmt::format("{:<25}{} {:<8}{:>10} {:>6} {:>12} {:>12}\n",
                        places[i] ? isoLocal(*places[i]) : "-", run.time ? ' ' : '~',
                        name(run.runClass), latencyText(run.ping), percent(kLoss.of(run)),
                        rateText(run.write), rateText(run.read));
  }
  return text;
}

}  // namespace

std::string listView(std::span<const Run> runs, EpochSeconds now, const Style& style) {
  return style.isTerminal ? TerminalList(runs, now, style).text() : pipeList(runs);
}

}  // namespace watch

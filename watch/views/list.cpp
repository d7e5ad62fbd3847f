#include "views/list.h"

#include "figures/counts.h"
#include "figures/metric.h"
#include "figures/period.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <vector>

namespace watch {

namespace {

constexpr std::size_t kMostBars = 60;

/// Where the columns stand. Those of the rates have one more character, for a mark.
struct Layout {
  std::size_t indent;
  std::size_t latency;
  std::size_t loss;
  std::size_t rate;

  static constexpr std::size_t kTime = 8;
  static constexpr std::size_t kLabel = 10;

  std::size_t label() const { return indent + kTime; }
  std::size_t figures() const { return label() + kLabel; }
  /// Behind the last column.
  std::size_t reason() const { return figures() + latency + loss + 2 * (rate + 1) + 2; }
};
constexpr Layout kWide = {2, 8, 6, 9};
/// For terminals on which the wide one has no room: without the loss.
constexpr Layout kNarrow = {0, 7, 0, 7};

/// A rate of the line, or the kept rate of a test that was cut, with a mark.
std::string rateText(const Rate& rate) {
  if (rate.isMeasured()) {
    return megabits(rate.bps / kMegabit);
  }
  return rate.state == RateState::cut && rate.bps > 0 ? megabits(rate.bps / kMegabit) + "*" : "-";
}

/// The latency, also where the tester has recorded none and the replies tell it.
std::string latencyText(const Ping& ping) {
  return milliseconds(std::isnan(ping.avg) ? std::nullopt : std::optional(ping.avg));
}

std::string lossText(const Ping& ping) {
  return percent(std::isnan(ping.loss()) ? std::nullopt : std::optional(ping.loss()));
}

const char* label(const Run& run) {
  return run.orphan     ? "a ping"
         : run.ongoing  ? "going on"
         : run.finished ? name(run.runClass)
                        : "unfinished";
}

/// "~" for a time that is not certain, "?" where the files leave something open.
std::string marks(const Run& run) {
  return std::string(!run.time || run.foldUnresolved ? "~" : "") + (run.unsure.empty() ? "" : "?");
}

bool isCut(const Run& run) {
  return run.write.state == RateState::cut || run.read.state == RateState::cut;
}

class TerminalList {
 public:
  TerminalList(std::span<const Run> runs, EpochSeconds now, const Style& style)
      : runs_(runs),
        now_(now),
        style_(style),
        layout_(style.width < kWide.reason() ? kNarrow : kWide),
        places_(placesInTime(runs)),
        gaps_(gaps(runs)),
        isHourly_(std::llabs(rhythmOf(runs).seconds - kHourSeconds) < kHourSeconds / 4) {}

  std::string text() {
    add(Tone::dim,
        std::string(layout_.figures(), ' ') + columns("latency", "loss", "write", "read"));
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
    text_ += '\n';
    addReadBars();
    addCounts();
    addLegend();
    return std::move(text_);
  }

 private:
  void add(Tone tone, const std::string& line) { text_ += paint(style_, tone, line) + "\n"; }

  std::string columns(const char* latency, const char* loss, const char* write,
                      const char* read) const {
    return right(latency, layout_.latency) + (layout_.loss > 0 ? right(loss, layout_.loss) : "") +
           right(write, layout_.rate) + " " + right(read, layout_.rate);
  }

  void addDay(EpochSeconds moment) {
    const std::string day = weekdayAndDay(moment, now_);
    if (day == day_) {
      return;
    }
    text_ += paint(style_, Tone::strong, day);
    if (day_.empty()) {
      // The blanks before the first unit make room for the day.
      const std::string units =
          std::string(layout_.figures(), ' ') + columns("ms", "%", "Mbit/s", "Mbit/s");
      text_ += paint(style_, Tone::dim, units.substr(std::min(day.size(), layout_.figures())));
    }
    text_ += '\n';
    day_ = day;
  }

  void addGap(const Gap& gap) {
    constexpr std::size_t kTwoDays = 48;
    const std::string what =
        !isHourly_ ? counted(gap.missing, "run is missing", "runs are missing")
        : gap.missing < kTwoDays
            ? counted(gap.missing, "hour without a run", "hours without a run")
            : span(static_cast<EpochSeconds>(gap.missing) * kHourSeconds) + " without a run";
    add(Tone::dim,
        std::string(layout_.indent, ' ') + left(clockTime(gap.begin), Layout::kTime) + what);
  }

  void addRun(std::size_t i) {
    const Run& run = runs_[i];
    const std::string loss = lossText(run.ping);
    std::string line = std::string(layout_.indent, ' ') +
                       left(places_[i] ? clockTime(*places_[i]) : "", 5) + left(marks(run), 3) +
                       paint(style_, run.ongoing ? Tone::dim : tone(run.runClass), label(run)) +
                       std::string(Layout::kLabel - std::strlen(label(run)), ' ') +
                       right(latencyText(run.ping), layout_.latency);
    if (layout_.loss > 0) {
      line += paint(style_, loss == "0" ? Tone::dim : Tone::plain, right(loss, layout_.loss));
    }
    line += rateColumn(run.write) + rateColumn(run.read);
    text_ += withReason(std::move(line), run.ongoing ? "" : reason(run)) + "\n";
  }

  std::string rateColumn(const Rate& rate) const {
    // The mark of a rate that was cut stands behind its column.
    const std::string text = rateText(rate);
    return text.ends_with('*') ? paint(style_, Tone::warning, right(text, layout_.rate + 1))
                               : right(text, layout_.rate) + " ";
  }

  /// Puts the reason behind the columns, or below them where there is no room.
  std::string withReason(std::string line, const std::string& why) const {
    constexpr std::size_t kLeast = 20;
    if (why.empty()) {
      return trimmed(std::move(line));
    }
    const bool hasRoom = style_.width >= layout_.reason() + kLeast;
    const std::size_t column = hasRoom ? layout_.reason() : layout_.label();
    return (hasRoom ? line + "  " : trimmed(std::move(line)) + "\n" + std::string(column, ' ')) +
           paint(style_, Tone::dim, folded(why, style_.width, column));
  }

  void addReadBars() {
    double most = 0;
    for (const Run& run : runs_) {
      most = std::max(most, kRead.of(run).value_or(0));
    }
    const std::string label = "read  ";
    const std::string scale = fmt::format("  0 to {} Mbit/s", megabits(most));
    const std::size_t bars = runs_.size() + gaps_.size();
    if (most == 0 || bars > kMostBars || label.size() + bars + scale.size() > style_.width) {
      return;
    }
    text_ += paint(style_, Tone::strong, "read") + "  ";
    auto gap = gaps_.begin();
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      for (; gap != gaps_.end() && gap->before == i; ++gap) {
        text_ += ' ';
      }
      text_ += readBar(runs_[i], most);
    }
    text_ += scale + "\n";
  }

  std::string readBar(const Run& run, double most) const {
    if (const auto value = kRead.of(run)) {
      return paint(style_, Tone::accent, bar(style_, *value, most));
    }
    const bool failed = run.runClass == Class::failed && !run.ongoing;
    return paint(style_, failed ? Tone::bad : Tone::warning, failed ? "x" : noBar(style_));
  }

  void addCounts() {
    const Counts counts = countRuns(runs_);
    std::size_t missing = 0;
    for (const Gap& gap : gaps_) {
      missing += gap.missing;
    }
    std::string line = counted(counts.all(), "run", "runs");
    if (const auto last = lastTime(runs_)) {
      line += ", the last " + ago(*last, now_);
    }
    line += fmt::format(": {} ok, {} partial, {} failed", counts.ok, counts.partial, counts.failed);
    line += missing > 0 ? fmt::format("; {} missing", missing) : "";
    line += counts.unsure > 0 ? fmt::format("; {} unsure", counts.unsure) : "";
    line += counts.orphans > 0
                ? "; " + counted(counts.orphans, "ping of no known run", "pings of no known run")
                : "";
    text_ += folded(line, style_.width, 0) + "\n";
  }

  void addLegend() {
    const auto hasMark = [&](char mark) {
      return std::ranges::any_of(
          runs_, [mark](const Run& run) { return marks(run).find(mark) != std::string::npos; });
    };
    if (hasMark('~')) {
      add(Tone::dim, "~ a time that is not certain");
    }
    if (hasMark('?')) {
      add(Tone::dim, "? unsure: show says why");
    }
    if (std::ranges::any_of(runs_, isCut)) {
      add(Tone::dim, "* cut short: no rate of the line");
    }
  }

  std::span<const Run> runs_;
  EpochSeconds now_;
  const Style& style_;
  const Layout& layout_;
  std::vector<std::optional<EpochSeconds>> places_;
  std::vector<Gap> gaps_;
  bool isHourly_;
  std::string day_;
  std::string text_;
};

std::string pipeList(std::span<const Run> runs) {
  std::string text =
      "time                        class   latency_ms loss_% write_Mbit/s  read_Mbit/s\n";
  const std::vector<std::optional<EpochSeconds>> places = placesInTime(runs);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const Run& run = runs[i];
    if (run.ongoing) {
      continue;
    }
    text += fmt::format("{:<27} {:<8}{:>10} {:>6} {:>12} {:>12}\n",
                        (places[i] ? isoLocal(*places[i]) : "-") + marks(run),
                        run.orphan ? "orphan" : name(run.runClass), latencyText(run.ping),
                        lossText(run.ping), rateText(run.write), rateText(run.read));
  }
  return text;
}

}  // namespace

std::string listView(std::span<const Run> runs, EpochSeconds now, const Style& style) {
  return style.isTerminal ? TerminalList(runs, now, style).text() : pipeList(runs);
}

}  // namespace watch

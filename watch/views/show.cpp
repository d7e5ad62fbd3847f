#include "views/show.h"

#include "evidence/ping_output.h"
#include "evidence/text.h"
#include "figures/metric.h"
#include "figures/usual.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace watch {

namespace {

std::optional<double> known(double value) {
  return std::isnan(value) ? std::nullopt : std::optional(value);
}

/// What a state of a ping means, where it is not as it should be.
const char* meaning(PingState state) {
  switch (state) {
    case PingState::falseZero:
      return "the tester has recorded 0; these are of the replies";
    case PingState::unread:
      return "the tester has not read this output; these are of the replies";
    case PingState::noReply:
      return "nothing came back";
    case PingState::noOutput:
      return "no ping has run";
    case PingState::stale:
      return "the ping of the run before once more: not measured";
    case PingState::unknown:
      return "cannot be told";
    case PingState::off:
      return "switched off";
    case PingState::replied:
      break;
  }
  return "";
}

const char* meaning(RateState state) {
  switch (state) {
    case RateState::cut:
      return "no rate of the line, left out of all figures";
    case RateState::nothingMoved:
      return "connected, but no byte was moved";
    case RateState::noTest:
      return "no test";
    case RateState::stale:
      return "the test of the run before once more: not measured";
    case RateState::off:
      return "switched off, or ended before";
    case RateState::unknown:
      return "its line is lost: for how long it was measured is not known";
    case RateState::full:
      break;
  }
  return "";
}

/// Where the figures begin, and what is said of them.
constexpr std::size_t kLabels = 10;
constexpr std::size_t kFigures = 34;

std::string label(std::string_view text) {
  return left(std::string("  ").append(text), kLabels);
}

/// The times of the replies of a ping's output, which is read again.
std::vector<double> repliesOf(const Source& from, const ShowContext& context) {
  std::vector<PingOutput> outputs;
  PingOutputReader reader(outputs);
  Troubles ignored;
  context.directory.readLines(context.files[from.file], ignored,
                              [&](std::string_view text, std::uint32_t number) {
                                if (number < from.first || number > from.last) {
                                  return;
                                }
                                reader.take(text, from.file, number);
                              });
  return outputs.empty() ? std::vector<double>() : std::move(outputs.front().replies);
}

/// Returns the line that `from` names.
std::string lineAt(const Source& from, const ShowContext& context) {
  Troubles ignored;
  std::string line;
  context.directory.readLines(context.files[from.file], ignored,
                              [&](std::string_view text, std::uint32_t number) {
                                if (number == from.first) {
                                  line = printable(text);
                                }
                              });
  return line;
}

std::string amount(const Rate& rate) {
  if (!rate.bytes || std::isnan(rate.seconds)) {
    return "";
  }
  return fmt::format("{} in {:.1f} s{}", megabytes(static_cast<double>(*rate.bytes)), rate.seconds,
                     rate.duration ? fmt::format(" of {} s", *rate.duration) : "");
}

class RunView {
 public:
  RunView(const Run& run, const ShowContext& context, const Style& style)
      : run_(run),
        context_(context),
        style_(style),
        width_(style.isTerminal ? style.width : std::string::npos) {}

  std::string text() {
    addHeading();
    addPing();
    if (!run_.orphan) {
      addRate("write", run_.write);
      addRate("read", run_.read);
    }
    addUsual();
    addDoubts();
    addSources();
    return std::move(text_);
  }

 private:
  void line(const std::string& text) { text_ += trimmed(text) + "\n"; }

  /// Adds a text behind `column` blanks, in lines that fit.
  void textFrom(std::size_t column, Tone tone, const std::string& text) {
    line(std::string(column, ' ') + paint(style_, tone, folded(text, width_, column)));
  }

  /// What is said of a figure stands beside it, or below where there is no room.
  void field(const char* name, const std::string& figure, const std::string& more) {
    const std::string begin = paint(style_, Tone::strong, label(name)) + figure;
    if (kFigures + columns(more) <= width_ || more.empty()) {
      line(left(begin, kFigures) + more);
    } else {
      line(begin);
      line(std::string(kLabels, ' ') + more);
    }
  }

  void addHeading() {
    if (run_.time) {
      const std::string iso = isoLocal(*run_.time);
      line(paint(style_, Tone::strong,
                 fmt::format("{}, {} {}", weekdayAndDate(*run_.time), iso.substr(11, 8),
                             iso.substr(19))) +
           " (" + ago(*run_.time, context_.now) + ")");
    } else {
      line(paint(style_, Tone::strong, "The time of this run is not known"));
    }
    if (run_.ongoing) {
      line(paint(style_, Tone::dim, "going on; up to now:"));
    } else {
      addClass();
    }
    if (run_.foldUnresolved) {
      textFrom(0, Tone::warning,
               "This hour of the clock came twice; which one it was cannot be told.");
    }
    if (!run_.server.empty()) {
      textFrom(0, Tone::plain, fmt::format("{} -> {}{}", run_.client, run_.server, tests()));
    }
    line("");
  }

  void addClass() {
    const std::string why = reason(run_);
    const std::string className = name(run_.runClass);
    line(paint(style_, tone(run_.runClass), className) +
         (why.empty() ? "" : ": " + folded(why, width_, className.size() + 2)));
  }

  std::string tests() const {
    const auto duration = run_.write.duration ? run_.write.duration : run_.read.duration;
    return (duration ? fmt::format(", iperf3 of {} s", *duration) : "") +
           (run_.ping.sent ? ", " + counted(*run_.ping.sent, "ping", "pings") : "");
  }

  void addPing() {
    const Ping& ping = run_.ping;
    const std::string figures =
        std::isnan(ping.avg)
            ? "-"
            : fmt::format("{} / {} / {} ms", milliseconds(known(ping.min)),
                          paint(style_, Tone::strong, milliseconds(known(ping.avg))),
                          milliseconds(known(ping.max)));
    std::string more;
    if (ping.sent && ping.received) {
      more = fmt::format("{} of {} back", *ping.received, *ping.sent);
    }
    if (!std::isnan(ping.stddev)) {
      more += fmt::format("{}deviation {}", more.empty() ? "" : ", ", milliseconds(ping.stddev));
    }
    field("ping", figures, more + replies(columns(more)));
    addMeaning(meaning(ping.state));
  }

  /// A bar for each reply, from the quickest to the slowest, where there is room behind `before`
  /// characters.
  std::string replies(std::size_t before) const {
    constexpr std::size_t kBlanks = 3;
    // Digits would look like one more figure.
    if (run_.outputs.empty() || !style_.hasBars) {
      return "";
    }
    const std::vector<double> times = repliesOf(run_.outputs.back(), context_);
    const std::size_t room = std::min<std::size_t>(width_, 80);
    if (times.size() < 2 || kFigures + before + kBlanks + times.size() > room) {
      return "";
    }
    const auto [least, most] = std::ranges::minmax(times);
    std::string bars;
    for (const double time : times) {
      bars += bar(style_, time - least, most - least);
    }
    return std::string(kBlanks, ' ') + paint(style_, Tone::accent, bars);
  }

  void addRate(const char* test, const Rate& rate) {
    const auto bps = known(rate.bps);
    const bool isFigure = bps && rate.state != RateState::nothingMoved;
    const Tone tone = rate.isMeasured() ? Tone::strong : Tone::warning;
    field(test, isFigure ? paint(style_, tone, megabits(*bps / kMegabit)) + " Mbit/s" : "-",
          amount(rate));
    addLoad(rate);
    const bool isToCome = run_.ongoing && rate.state == RateState::off;
    const std::string means = isToCome ? "not yet" : meaning(rate.state);
    if (rate.reason.empty()) {
      addMeaning(means);
    } else {
      addMeaning(rate.state == RateState::cut ? rate.reason + ": " + means
                                              : means + ": " + rate.reason);
    }
  }

  /// What the sender has seen.
  void addLoad(const Rate& rate) {
    std::vector<std::string> parts;
    if (rate.retransmits) {
      parts.push_back(counted(*rate.retransmits, "packet", "packets") + " sent once more");
    }
    if (const auto& times = rate.roundTrips) {
      parts.push_back(fmt::format("{} / {} / {} ms under load", milliseconds(times->least),
                                  milliseconds(times->mean), milliseconds(times->most)));
    }
    if (!parts.empty()) {
      textFrom(kLabels, Tone::dim, fmt::format("{}", fmt::join(parts, ", ")));
    }
  }

  void addMeaning(const std::string& meaning) {
    if (!meaning.empty()) {
      textFrom(kLabels, Tone::warning, meaning);
    }
  }

  void addUsual() {
    if (!run_.time) {
      return;
    }
    std::vector<std::string> atThatHour;
    std::vector<std::string> atAnyHour;
    for (const Metric* const metric : {&kLatency, &kWrite, &kRead}) {
      const UsualThen then = usualThen(context_.runs, *metric, *run_.time);
      if (then.middle) {
        (then.isOfThatHour ? atThatHour : atAnyHour)
            .push_back(
                fmt::format("{} {} {}", metric->name,
                            metric == &kLatency ? milliseconds(then.middle) : megabits(then.middle),
                            metric->unit));
      }
    }
    addUsual(" at " + clockTime(*run_.time).substr(0, 2) + ":00", atThatHour);
    addUsual("", atAnyHour);
  }

  void addUsual(const std::string& when, const std::vector<std::string>& figures) {
    if (!figures.empty()) {
      textFrom(2, Tone::dim,
               fmt::format("usual{} in the 28 days before: {}", when, fmt::join(figures, ", ")));
    }
  }

  void addDoubts() {
    if (!run_.unsure.empty()) {
      line("");
      line(paint(style_, Tone::warning, "Unsure: ") + folded(run_.unsure, width_, 8));
    }
  }

  void addSources() {
    line("");
    line(paint(style_, Tone::strong, "Kept in") + " " + context_.directory.path().string());
    addSources("ping", run_.pings);
    addSources(run_.pings.empty() ? "ping" : "", run_.outputs);
    addSource("write", run_.forward);
    addSource("read", run_.reverse);
    addSource("result", run_.result);
    if (run_.result.isThere()) {
      addResult();
    }
    addSource("journal", run_.journal);
  }

  void addSource(const char* name, const Source& from) {
    if (from.isThere()) {
      addSources(name, {from});
    }
  }

  void addSources(const char* name, const std::vector<Source>& sources) {
    for (const Source& from : sources) {
      line(fmt::format("{}{}:{}{}", label(name), printable(context_.files[from.file]), from.first,
                       from.first == from.last ? "" : fmt::format("-{}", from.last)));
      name = "";
    }
  }

  /// What the result line says, and what it does not.
  void addResult() {
    const std::string says = lineAt(run_.result, context_);
    const std::size_t latency = says.find("Latency");
    if (latency == std::string::npos) {
      return;
    }
    textFrom(kLabels, Tone::dim, "says \"" + trimmed(says.substr(latency)) + "\"");
    if (run_.write.state == RateState::cut || run_.read.state == RateState::cut) {
      textFrom(kLabels, Tone::dim, "which does not show the cut");
    }
  }

  const Run& run_;
  const ShowContext& context_;
  const Style& style_;
  std::size_t width_;
  std::string text_;
};

}  // namespace

std::string showView(const Run& run, const ShowContext& context, const Style& style) {
  return RunView(run, context, style).text();
}

}  // namespace watch

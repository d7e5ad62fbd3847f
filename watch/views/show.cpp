#include "views/show.h"

#include "figures/metric.h"
#include "figures/usual.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace watch {

namespace {

constexpr double kMega = 1e6;

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
      return "no rate of the line; left out of all figures";
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

class RunView {
 public:
  RunView(const Run& run, const ShowContext& context, const Style& style)
      : run_(run), context_(context), style_(style) {}

  std::string text() {
    addHeading();
    addPing();
    addRate("write", run_.write);
    addRate("read", run_.read);
    addUsual();
    addDoubts();
    addSources();
    return std::move(text_);
  }

 private:
  void line(const std::string& text) { text_ += text + "\n"; }
  void field(const std::string& label, const std::string& figure, const std::string& more) {
    std::string line =
        paint(style_, Tone::strong, left("  " + label, 10)) + left(figure, 25) + more;
    while (line.ends_with(' ')) {
      line.pop_back();
    }
    text_ += line + "\n";
  }

  void addHeading() {
    const std::string when =
        run_.time ? fmt::format("{}, {} {} ({})", weekdayAndDate(*run_.time),
                                isoLocal(*run_.time).substr(11, 8), isoLocal(*run_.time).substr(19),
                                ago(*run_.time, context_.now))
                  : "The time of this run is not known";
    const Tone tone = run_.runClass == Class::ok        ? Tone::good
                      : run_.runClass == Class::partial ? Tone::warning
                                                        : Tone::bad;
    const std::string reasons = reason(run_);
    line(paint(style_, Tone::strong, when));
    line(paint(style_, tone, name(run_.runClass)) + (reasons.empty() ? "" : ": " + reasons));
    if (run_.foldUnresolved) {
      line("This hour of the clock came twice; which one it was cannot be told.");
    }
    if (!run_.server.empty()) {
      line(fmt::format("{} -> {}{}", run_.client, run_.server, tests()));
    }
    line("");
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
                          milliseconds(known(ping.avg)), milliseconds(known(ping.max)));
    std::string more;
    if (ping.sent && ping.received) {
      more = fmt::format("{} of {} back", *ping.received, *ping.sent);
    }
    if (!std::isnan(ping.stddev)) {
      more += fmt::format("{}deviation {}", more.empty() ? "" : ", ", milliseconds(ping.stddev));
    }
    field("ping", figures, more);
    addMeaning(meaning(ping.state));
  }

  void addRate(const char* label, const Rate& rate) {
    const auto bps = known(rate.bps);
    const bool isFigure = bps && rate.state != RateState::nothingMoved;
    field(label, isFigure ? megabits(*bps / kMega) + " Mbit/s" : "-", amount(rate));
    std::string more = meaning(rate.state);
    if (!rate.reason.empty()) {
      more += (more.empty() ? "" : ": ") + rate.reason;
    }
    addMeaning(more);
  }

  static std::string amount(const Rate& rate) {
    if (!rate.bytes || std::isnan(rate.seconds)) {
      return "";
    }
    return fmt::format("{} in {:.1f} s{}", megabytes(static_cast<double>(*rate.bytes)),
                       rate.seconds, rate.duration ? fmt::format(" of {} s", *rate.duration) : "");
  }

  void addMeaning(const std::string& meaning) {
    if (!meaning.empty()) {
      line(std::string(10, ' ') + paint(style_, Tone::warning, meaning));
    }
  }

  void addUsual() {
    if (!run_.time) {
      return;
    }
    std::string usual;
    for (const Metric* const metric : {&kLatency, &kWrite, &kRead}) {
      const UsualThen then = usualThen(context_.runs, *metric, *run_.time);
      if (then.middle) {
        const std::string figure =
            metric == &kLatency ? milliseconds(then.middle) : megabits(then.middle);
        usual += fmt::format("{}{} {} {}", usual.empty() ? "" : ", ", metric->name, figure,
                             metric->unit);
      }
    }
    if (!usual.empty()) {
      line(paint(style_, Tone::dim,
                 fmt::format("  usual at {}:00 in the 28 days before: {}",
                             clockTime(*run_.time).substr(0, 2), usual)));
    }
  }

  void addDoubts() {
    if (!run_.unsure.empty()) {
      line("");
      line(paint(style_, Tone::warning, "Unsure: ") + run_.unsure);
    }
  }

  void addSources() {
    line("");
    line(paint(style_, Tone::strong, "Kept in ") + context_.directory.path().string());
    addSources("ping", run_.pings);
    addSources(run_.pings.empty() ? "ping" : "", run_.outputs);
    addSource("write", run_.forward);
    addSource("read", run_.reverse);
    addSource("result", run_.result);
    if (run_.result.isThere()) {
      addResult();
    }
  }

  void addSource(const char* label, const Source& from) {
    if (from.isThere()) {
      addSources(label, {from});
    }
  }

  void addSources(const char* label, const std::vector<Source>& sources) {
    for (const Source& from : sources) {
      const std::string lines = from.first == from.last
                                    ? fmt::format("{}", from.first)
                                    : fmt::format("{}-{}", from.first, from.last);
      line(left(std::string("  ") + label, 10) +
           fmt::format("{}:{}", context_.files[from.file], lines));
      label = "";
    }
  }

  /// What the result line says, and what it does not.
  void addResult() {
    Troubles ignored;
    std::string says;
    context_.directory.readLines(context_.files[run_.result.file], ignored,
                                 [&](std::string_view text, std::uint32_t number) {
                                   if (number == run_.result.first) {
                                     says = text;
                                   }
                                 });
    const std::size_t latency = says.find("Latency");
    if (latency == std::string::npos) {
      return;
    }
    says = says.substr(latency);
    while (says.ends_with(' ')) {
      says.pop_back();
    }
    line(std::string(10, ' ') + paint(style_, Tone::dim, "says \"" + says + "\""));
    if (run_.write.state == RateState::cut || run_.read.state == RateState::cut) {
      line(std::string(10, ' ') + paint(style_, Tone::dim, "which does not show the cut"));
    }
  }

  const Run& run_;
  const ShowContext& context_;
  const Style& style_;
  std::string text_;
};

}  // namespace

std::string showView(const Run& run, const ShowContext& context, const Style& style) {
  return RunView(run, context, style).text();
}

}  // namespace watch

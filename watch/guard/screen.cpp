#include "guard/screen.h"

#include "figures/metric.h"
#include "views/words.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <optional>
#include <vector>

namespace watch {

namespace {

constexpr std::size_t kLabelWidth = 10;
constexpr std::size_t kMostCells = 40;
/// Fewer cells of a bar tell nothing.
constexpr std::size_t kFewestCells = 8;

std::string label(const Style& style, const char* test) {
  return paint(style, Tone::strong, left(fmt::format("  {}", test), kLabelWidth));
}

/// How long the test goes on. One that is late ends by the limits of the adapters.
std::string secondsLeft(const GoingTest& test) {
  const int passed = static_cast<int>(test.seconds);
  if (passed <= test.planned.seconds) {
    return fmt::format("{} s left", test.planned.seconds - passed);
  }
  return passed <= test.planned.mostSeconds
             ? fmt::format("late, {} s at most", test.planned.mostSeconds - passed)
             : "late";
}

std::string progressBar(const GoingTest& test, std::size_t cells, const Style& style) {
  const double whole = std::max(test.planned.seconds, 1);
  const double share = std::clamp(test.seconds / whole, 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(std::lround(share * static_cast<double>(cells)));
  std::string done;
  std::string rest;
  for (std::size_t i = 0; i < cells; ++i) {
    (i < filled ? done : rest) += style.hasBars ? (i < filled ? "━" : "─") : i < filled ? "=" : "-";
  }
  return paint(style, Tone::accent, done) + paint(style, Tone::dim, rest);
}

/// Of the last `most` replies, and as many cells wide at most.
std::string sparklineOf(std::span<const double> replies, std::size_t most, const Style& style) {
  const auto last = replies.last(std::min(replies.size(), most));
  const std::vector<std::optional<double>> values(last.begin(), last.end());
  const double greatest = last.empty() ? 0 : *std::ranges::max_element(last);
  return sparkline(style, values, greatest);
}

/// A text without colours, and how it is to look.
struct Part {
  std::string text;
  Tone tone = Tone::plain;
};

/// Puts as many of `parts` behind the label as the terminal has room for, the first in any case.
std::string row(const Style& style, Step test, const std::vector<Part>& parts) {
  std::string line = label(style, name(test));
  std::size_t width = kLabelWidth;
  for (const Part& part : parts) {
    const bool isFirst = &part == &parts.front();
    const std::string gap = isFirst ? "" : "   ";
    const std::size_t wider = width + gap.size() + columns(part.text);
    if (!part.text.empty() && (isFirst || wider < style.width)) {
      line += gap + paint(style, part.tone, part.text);
      width = wider;
    }
  }
  return line + "\n";
}

std::string usualWords(const Metric& metric, const RowContext& context) {
  if (!context.usual.middle) {
    return "";
  }
  const std::string when =
      context.usual.isOfThatHour ? " at " + clockTime(context.start).substr(0, 2) + ":00" : "";
  const std::string figure =
      &metric == &kLatency ? milliseconds(context.usual.middle) : megabits(context.usual.middle);
  return fmt::format("usual{}: {}", when, figure);
}

/// What is to be said of a ping, beside its figures or in their place.
const char* words(PingState state) {
  switch (state) {
    case PingState::falseZero:
      return "recorded as 0";
    case PingState::unread:
      return "not read by the tester";
    case PingState::noReply:
      return "no reply";
    case PingState::noOutput:
      return "no ping";
    case PingState::stale:
      return "not measured, that of the run before once more";
    case PingState::unknown:
      return "cannot be told";
    case PingState::off:
      return "switched off";
    case PingState::replied:
      break;
  }
  return "";
}

const char* words(RateState state) {
  switch (state) {
    case RateState::cut:
      return "cut";
    case RateState::nothingMoved:
      // Bytes may have moved before a server that was killed lost count of them.
      return "no rate";
    case RateState::noTest:
      return "no test";
    case RateState::stale:
      return "not measured, that of the run before once more";
    case RateState::unknown:
      return "cannot be told";
    case RateState::off:
      return "switched off";
    case RateState::full:
      break;
  }
  return "";
}

/// "no test, the server is busy". The tool, or its adapter, knows better than the report why.
std::string withReason(std::string words, const std::string& complaint, const std::string& reason) {
  const std::string& why = complaint.empty() ? reason : complaint;
  return why.empty() ? std::move(words) : words + ", " + why;
}

std::string repliesOf(const Ping& ping) {
  return ping.sent && ping.received ? fmt::format("{} of {}", *ping.received, *ping.sent) : "";
}

bool hasFigures(const Ping& ping) {
  return !std::isnan(ping.avg);
}

std::string plainPing(const Ping& ping, const RowContext& context) {
  const std::string replies = repliesOf(ping);
  if (!hasFigures(ping)) {
    return fmt::format("ping: {}\n", withReason(words(ping.state), context.complaint, ""));
  }
  const std::string remark = words(ping.state);
  return fmt::format("ping {} ms{}{}\n", milliseconds(ping.avg),
                     replies.empty() ? "" : ", " + replies + " back",
                     remark.empty() ? "" : ", " + remark);
}

}  // namespace

std::string goingLine(const GoingTest& test, const Style& style) {
  const std::string left = secondsLeft(test);
  const std::string hint = "   ^C stops";
  const std::size_t taken = kLabelWidth + 2 + left.size() + 1;
  const std::size_t room = style.width > taken ? style.width - taken : 0;
  const bool hasHint = room >= kFewestCells + hint.size();
  const std::size_t cells = std::min(kMostCells, hasHint ? room - hint.size() : room);
  const std::string end = left + (hasHint ? paint(style, Tone::dim, hint) : "");
  if (cells < kFewestCells) {
    return left.size() < style.width ? left : "";
  }
  if (test.step == Step::ping) {
    const std::size_t replies = std::min(test.replies.size(), cells);
    return label(style, name(test.step)) +
           paint(style, Tone::accent, sparklineOf(test.replies, cells, style)) +
           std::string(cells - replies, ' ') + "  " + end;
  }
  return label(style, name(test.step)) + progressBar(test, cells, style) + "  " + end;
}

std::string pingRow(const Ping& ping, const RowContext& context, const Style& style) {
  if (!style.canRewrite) {
    return plainPing(ping, context);
  }
  const std::string remark = words(ping.state);
  if (!hasFigures(ping)) {
    return row(style, Step::ping, {{withReason(remark, context.complaint, ""), Tone::warning}});
  }
  constexpr std::size_t kMostReplies = 20;
  return row(style, Step::ping,
             {{fmt::format("{} / {} / {} ms", milliseconds(ping.min), milliseconds(ping.avg),
                           milliseconds(ping.max))},
              {remark, Tone::warning},
              {repliesOf(ping)},
              {sparklineOf(context.replies, kMostReplies, style), Tone::accent},
              {usualWords(kLatency, context), Tone::dim}});
}

std::string rateRow(Step step, const Rate& rate, const RowContext& context, const Style& style) {
  const bool isFigure = rate.isMeasured();
  const std::string figure = megabits(rate.bps / kMegabit) + " Mbit/s";
  const std::string instead = withReason(words(rate.state), context.complaint, rate.reason);
  if (!style.canRewrite) {
    return isFigure ? fmt::format("{} {}\n", name(step), figure)
                    : fmt::format("{}: {}\n", name(step), instead);
  }
  if (!isFigure) {
    return row(style, step, {{instead, Tone::warning}});
  }
  constexpr std::size_t kFigureWidth = 21;
  const std::string usual = usualWords(step == Step::write ? kWrite : kRead, context);
  return row(style, step,
             {{usual.empty() ? figure : left(figure, kFigureWidth)}, {usual, Tone::dim}});
}

const char* name(Step step) {
  constexpr const char* kNames[] = {"start", "ping", "write", "read", "end"};
  return kNames[static_cast<std::size_t>(step)];
}

}  // namespace watch
